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

/// One open file of a session: the single operations, with the engine's statuses as they come.
class FileCursor {
  public:
    /// Opens a file by what the key buffer takes: a path or a database URI.
    /// @throws DataError of the status, naming `table`.
    FileCursor(std::shared_ptr<CallSession> session, const QByteArray& fileName,
               const QString& ownerName, QString table);
    ~FileCursor();
    FileCursor(const FileCursor&) = delete;
    FileCursor& operator=(const FileCursor&) = delete;

    CallSession& session() const { return *m_session; }
    const QString& table() const { return m_table; }

    FileStat stat();

    /// Room for a record. A file of variable length wants room for the longest.
    void setRecordRoom(int bytes) { m_recordRoom = bytes; }

    /// Any reading operation (a lock bias added where wanted): by `key`, or from the current record
    /// when that is empty. `record` gets the bytes read.
    int read(int operation, const QByteArray& key, int keyNumber, QByteArray& record);
    /// The current record's address.
    int position(RecordId& id);
    /// The record at an address; it becomes current in the key, with -1 in none.
    int direct(RecordId id, int keyNumber, QByteArray& record, int bias = 0);

    /// Reads up to `count` records of `length` bytes along a key in one call, from the current
    /// record (itself included or not), and appends them. The last becomes current.
    int readMany(Direction direction, int keyNumber, bool withCurrent, int count, int length,
                 std::vector<StoredRecord>& found);
    /// How many records of that length one such call can bring.
    static int mostAtOnce(int length);

    /// The new record becomes current.
    int insert(const QByteArray& record);
    // Of the record that was read last, with the key number it was read with.
    int update(const QByteArray& record, int keyNumber);
    int remove(int keyNumber);
    int unlock(RecordId id);  ///< a multiple record lock

  private:
    int call(int operation, QByteArray& data, QByteArray& key, int keyNumber);

    std::shared_ptr<CallSession> m_session;
    QString m_table;
    std::shared_ptr<PositionBlock> m_block = std::make_shared<PositionBlock>();
    QByteArray m_key;  // what the last reading left in the key buffer; the next one wants it back
    int m_recordRoom = 0;
};

}  // namespace engines::shops
