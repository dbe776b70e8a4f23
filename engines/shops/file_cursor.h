#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <vector>

#include "data/engine/engine.h"
#include "engines/data_names.h"
#include "engines/shops/call_session.h"
#include "engines/shops/file_stat.h"

namespace engines::shops {

/// One open file of a session. Operations return the engine's status.
class FileCursor {
  public:
    /// Opens a file by path or database URI.
    /// @throws DataError of the status, naming `table`.
    FileCursor(std::shared_ptr<CallSession> session, const QByteArray& fileName,
               const QString& ownerName, QString table);
    ~FileCursor();
    FileCursor(const FileCursor&) = delete;
    FileCursor& operator=(const FileCursor&) = delete;

    CallSession& session() const { return *m_session; }
    const QString& table() const { return m_table; }

    FileStat stat();

    /// Sets the read buffer's size: the longest record for files of variable length.
    void setRecordCapacity(int bytes) { m_recordCapacity = bytes; }

    /// Runs a read operation, with a lock bias if any: by `key`, or from the current record if
    /// `key` is empty. `record` gets the bytes read.
    int read(int operation, const QByteArray& key, int keyNumber, QByteArray& record);
    /// Gets the current record's address.
    int position(RecordId& id);
    /// Reads the record at an address and makes it current in the key; -1: in none.
    int direct(RecordId id, int keyNumber, QByteArray& record, int bias = 0);

    /// Reads up to `count` records of `length` bytes along a key in one call, from the current
    /// record (included or not), and appends them. The last becomes current.
    int readMany(Direction direction, int keyNumber, bool withCurrent, int count, int length,
                 std::vector<StoredRecord>& found);
    /// Most records of that length in one such call.
    static int maxRecordsPerCall(int length);

    /// The new record becomes current.
    int insert(const QByteArray& record);
    // These change the record read last; `keyNumber` as in that read.
    int update(const QByteArray& record, int keyNumber);
    int remove(int keyNumber);
    int unlock(RecordId id);  ///< of a multiple record lock

  private:
    int call(int operation, QByteArray& data, QByteArray& key, int keyNumber);

    std::shared_ptr<CallSession> m_session;
    QString m_table;
    std::shared_ptr<PositionBlock> m_block = std::make_shared<PositionBlock>();
    QByteArray m_key;  // key buffer after the last read; the next one needs it
    int m_recordCapacity = 0;
};

}  // namespace engines::shops
