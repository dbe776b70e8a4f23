#pragma once

#include <memory>

#include "engines/data_names.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/stored_table.h"

namespace engines::embedded {

/// The embedded engine's TableFile.
class EmbeddedTableFile : public TableFile {
  public:
    EmbeddedTableFile(std::shared_ptr<Connection> connection, StoredTable& table);
    ~EmbeddedTableFile() override;

    const RecordLayout& layout() const override { return m_table.layout(); }
    const std::vector<KeyDef>& keys() const override { return m_table.keys(); }
    qint64 recordCount() override { return m_table.count(); }
    std::vector<StoredRecord> fromEnd(int key, Direction direction, int max) override;
    std::vector<StoredRecord> seek(int key, SeekOp op, const KeyValues& values, int max) override;
    std::vector<StoredRecord> next(int key, const StoredRecord& from, Direction direction,
                                   int max) override;
    std::optional<StoredRecord> skip(int key, const std::optional<StoredRecord>& from,
                                     Direction direction, qint64 count) override;
    qint64 countBetween(int key, const std::optional<StoredRecord>& from,
                        const StoredRecord& to) override;
    std::optional<StoredRecord> visit(int key, const std::optional<StoredRecord>& from,
                                      Direction direction, int max, const Visitor& see) override;
    std::optional<RecordId> visitStored(std::optional<RecordId> after, int max,
                                        const Visitor& see) override;
    std::optional<StoredRecord> visitIds(int key, const std::optional<StoredRecord>& from, int max,
                                         const std::function<void(RecordId)>& see) override;
    bool showsKeyTexts(int key) const override;
    std::optional<KeyEntry> visitKeyTexts(int key, const std::optional<KeyEntry>& after, int max,
                                          const TextVisitor& see) override;
    int compare(int key, const QByteArray& record, const KeyValues& values) const override;
    std::optional<StoredRecord> get(RecordId id) override;
    bool lock(RecordId id, std::chrono::milliseconds wait) override;
    void unlock(RecordId id) override;
    RecordId insert(QByteArray& bytes) override;
    void update(RecordId id, const QByteArray& bytes) override;
    void remove(RecordId id) override;

  private:
    void checkKey(int key) const;
    QByteArray stored(RecordId id);
    QByteArray imageOf(int key, const StoredRecord& record) const;
    QByteArray above(int key, const QByteArray& image) const;
    std::vector<StoredRecord> collect(StatementLease& rows, int max) const;
    std::vector<StoredRecord> range(int key, const QByteArray& low, const QByteArray& high,
                                    Direction direction, int max);

    std::shared_ptr<Connection> m_connection;
    StoredTable& m_table;
    struct Locked {
        int count = 0;
        QByteArray seen;  // the record as last read or written under the lock
    };
    std::map<RecordId, Locked> m_locked;
};

}  // namespace engines::embedded
