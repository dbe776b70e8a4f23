#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "data/engine/engine.h"
#include "engines/data_names.h"
#include "engines/shops/file_cursor.h"
#include "engines/shops/key_order.h"

namespace engines::shops {

/// The records of one table of the shops' engine. A record's id is its physical address. Every call
/// repositions the cursor and relies on no engine state between calls.
/// Duplicates of a key are in the file's order: by insertion into the key, or by address. The
/// position of a deleted record among its duplicates is known only from the records read last.
class ShopsTableFile : public TableFile {
  public:
    /// Opens a second cursor on the same file, for reads in storage order.
    using Opener = std::function<std::unique_ptr<FileCursor>()>;

    /// `keys`: the keys of `stat`, in its order, as fields of the layout.
    ShopsTableFile(std::unique_ptr<FileCursor> cursor, Opener opener, const FileStat& stat,
                   RecordLayout layout, std::vector<KeyDef> keys);
    ~ShopsTableFile() override;

    const RecordLayout& layout() const override { return m_layout; }
    const std::vector<KeyDef>& keys() const override { return m_keys; }
    qint64 recordCount() override { return m_cursor->stat().recordCount; }
    std::vector<StoredRecord> fromEnd(int key, Direction direction, int max) override;
    std::vector<StoredRecord> seek(int key, SeekOp op, const KeyValues& values, int max) override;
    std::vector<StoredRecord> next(int key, const StoredRecord& from, Direction direction,
                                   int max) override;
    std::optional<RecordId> visitStored(std::optional<RecordId> after, int max,
                                        const Visitor& see) override;
    int compare(int key, const QByteArray& record, const KeyValues& values) const override;
    std::optional<StoredRecord> get(RecordId id) override;
    bool lock(RecordId id, std::chrono::milliseconds wait) override;
    void unlock(RecordId id) override;
    RecordId insert(QByteArray& bytes) override;
    void update(RecordId id, const QByteArray& bytes) override;
    void remove(RecordId id) override;

  private:
    using Records = std::vector<StoredRecord>;

    [[noreturn]] void fail(int status) const;
    void checkKey(int key) const;
    const KeyOrder& orderOf(int key) const { return m_orders[static_cast<size_t>(key)]; }
    int valueCount(int key, const KeyValues& values) const;
    QByteArray recordOf(int key, const KeyValues& values) const;
    QByteArray whole(QByteArray bytes) const;
    QByteArray shortened(const QByteArray& bytes) const;

    // Reading along a key: position the cursor on a record, then continue from there.
    int move(int operation, int key, const QByteArray& keyBytes = {});
    bool found(int status) const;
    bool positionOn(int key, const StoredRecord& record);
    enum class Position {
        On,
        Before,
        Nowhere
    };  ///< Before: the cursor's record belongs to the result; Nowhere: the result is empty
    Position positionBeside(int key, const StoredRecord& from, Direction direction);
    std::optional<Position> positionByNeighbours(int key, const StoredRecord& from,
                                                 Direction direction);
    using Test = std::function<bool(const QByteArray& record)>;
    Records readOn(int key, Direction direction, int max, Position position,
                   std::optional<StoredRecord> from, const Test& belongs = {});
    int readSome(int key, Direction direction, bool withCurrent, int wanted, Records& records);
    void rememberRead(int key, Direction direction, RecordId from, const Records& records);

    template <typename Attempt>
    int whenUnlocked(std::chrono::milliseconds wait, Attempt attempt);
    void change(RecordId id, const std::function<int(const QByteArray& before)>& write);
    void release(RecordId id);

    std::unique_ptr<FileCursor> m_cursor;
    Opener m_opener;
    RecordLayout m_layout;
    std::vector<KeyDef> m_keys;
    std::vector<KeyOrder> m_orders;
    int m_fixedLength;
    bool m_variableLength;
    bool m_readsMany;
    bool m_numbersRecords;             // has an auto-increment field
    std::map<RecordId, int> m_locked;  // with the number of locks

    QByteArray m_current;  // the record of the last move

    // Addresses of the records read last along a key, in key order.
    int m_lastReadKey = -1;
    std::deque<RecordId> m_lastRead;

    std::unique_ptr<FileCursor> m_stored;  // reads in storage order
    std::optional<RecordId> m_storedAt;
};

}  // namespace engines::shops
