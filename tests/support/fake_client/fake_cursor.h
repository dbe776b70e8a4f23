#pragma once

#include <QByteArray>
#include <memory>
#include <optional>
#include <set>

#include "engines/embedded/table_file.h"

namespace fake {

/// The buffers of one call; writes check their size.
struct CallBuffers {
    char* data = nullptr;
    quint32* dataLength = nullptr;
    char* key = nullptr;
    int keyLength = 0;
};

/// Deviations of a database's files, for tests.
struct Quirks {
    bool shortRecord = false;  ///< report record lengths one byte too short
    bool movedKey = false;     ///< report key 0 one byte too far
    bool linked = false;       ///< report duplicates in insertion order
    bool plain = false;        ///< reject extended reads
    bool stuck = false;        ///< lose the session on unlock
    bool cut = false;          ///< answer extended reads without their last byte
    /// Another session, which locks every record that is unlocked.
    std::shared_ptr<engines::embedded::Connection> taker = {};
};

/// One open file: a table of an embedded company with the shops' engine's file operations.
class FakeCursor {
  public:
    FakeCursor(std::shared_ptr<engines::embedded::Connection> connection,
               engines::embedded::StoredTable& table, Quirks quirks);

    /// Runs one operation with its lock bias. @return the status.
    int run(int operation, CallBuffers& buffers, int keyNumber);

  private:
    int seek(int operation, CallBuffers& buffers, int key);
    int walk(int operation, CallBuffers& buffers, int key);
    int step(bool first, CallBuffers& buffers);
    int direct(CallBuffers& buffers, int key, int bias);
    int readMany(data::Direction direction, CallBuffers& buffers, int key);
    int insert(CallBuffers& buffers, int key);
    int update(CallBuffers& buffers);
    int remove();
    int unlock(CallBuffers& buffers, int key);
    void unlock(data::RecordId id);
    int stat(CallBuffers& buffers);
    int givePosition(CallBuffers& buffers);

    int lockRecord(data::RecordId id, int bias);
    int give(std::optional<data::StoredRecord> record, int key, CallBuffers& buffers, int bias);
    bool isLost() const;
    QByteArray keyBytes(const QByteArray& record, int key) const;
    QByteArray recordOf(const char* keyBuffer, int key) const;

    std::shared_ptr<engines::embedded::Connection> m_connection;
    engines::embedded::StoredTable& m_table;
    mutable engines::embedded::EmbeddedTableFile m_file;
    Quirks m_quirks;
    std::unique_ptr<engines::embedded::EmbeddedTableFile> m_taker;
    std::optional<data::StoredRecord> m_current;
    int m_currentKey = -1;
    std::optional<data::RecordId> m_physical;
    std::optional<data::RecordId> m_singleLock;
    std::multiset<data::RecordId> m_locks;
};

}  // namespace fake
