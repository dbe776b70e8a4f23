#pragma once

#include <QHash>
#include <functional>
#include <memory>
#include <optional>

#include "data/engine/run_journal.h"
#include "data/journal/entry_codec.h"
#include "data/journal/id_sets.h"
#include "engines/sqlite/sqlite_handle.h"

namespace engines::journal {

using sqlite::Statement;

/// The run journal as tables of a SQLite database:
///     zdb_run(number, head)       a run's head as CBOR with a check sum
///     zdb_table(place, entry)     tables that it changed, under run * 2^32 + number
///     zdb_change(place, entry)    its entries (entry_codec.h), under run * 2^32 + seq
///     zdb_note(run, name, value, checksum)
/// The engine opens the database and reports writes and commits to this class.
class JournalStore : public RunJournal {
  public:
    /// `onCreation`: SQL to run when the tables are created, in the same transaction. `runGoesOn`:
    /// whether another process has a run in progress.
    JournalStore(sqlite3* db, QString fileName, QByteArray onCreation,
                 std::function<bool()> runGoesOn);
    ~JournalStore() override;
    JournalStore(const JournalStore&) = delete;
    JournalStore& operator=(const JournalStore&) = delete;

    std::vector<JournalRun> runs() override;
    qint64 begin(const JournalRun& head,
                 const std::vector<std::pair<QString, QByteArray>>& notes) override;
    void resume(qint64 run) override;
    void end(RunState state) override;
    qint64 recording() const override { return m_run; }
    void setOrigin(qint64 origin) override { m_origin = origin; }
    void mark(const QByteArray& text) override;
    void setState(qint64 run, RunState state) override;
    void forget(qint64 run) override;
    std::vector<JournalEntry> entries(qint64 run, qint64 from, Direction direction,
                                      int max) override;
    qint64 lastEntry(qint64 run) override;
    std::vector<JournalTable> tables(qint64 run) override;
    std::optional<QByteArray> note(qint64 run, const QString& name) override;
    void setNote(qint64 run, const QString& name, const QByteArray& value) override;
    QStringList check() override;

    /// Stores the entry of a change, in the transaction that changes the record. An update without
    /// a difference adds no entry. `before` empty: an insert; `after` empty: a delete.
    /// Only while recording().
    void record(const RecordLayout& layout, const std::vector<KeyDef>& keys, RecordId id,
                const QByteArray* before, const QByteArray* after);
    /// Copies all runs of another database's journal into this one, which must have none.
    void takeFrom(sqlite3* other);
    /// Stops recording as if the process had died: the run stays Running.
    void suspend() { stopRecording(); }

    /// The changes recorded since the last call are committed, or rolled back with their
    /// transaction.
    void stored();
    void undone();

    /// Names of the tables, which the engine's files may contain.
    static QStringList tableNames();

  private:
    struct Recorded {  // a table of the recording run
        int number;
        RecordDifference difference;
    };
    struct StoredHead {
        JournalRun run;
        qint64 last = 0;  // seq of the last entry; known once the run has ended
    };

    bool exists();
    void create();
    /// A page that claims fewer rows than it holds is valid for SQLite, and what is lost at the end
    /// of an unfinished run has no other trace: its changes would be made again.
    /// @throws data::DataError
    void requireWhole(std::initializer_list<const char*> tables);
    /// Before a run is resumed or taken back. @throws data::DataError
    void requireComplete(const StoredHead& head);
    void transact(const std::function<void()>& body);
    static QByteArray encodeHead(const StoredHead& head);
    StoredHead decodeHead(qint64 number, const QByteArray& bytes) const;
    std::optional<StoredHead> head(qint64 run);
    StoredHead existingHead(qint64 run);
    void writeHead(const StoredHead& head);
    void writeNote(qint64 run, const QString& name, const QByteArray& value);
    void append(const QByteArray& entry);
    Recorded& recordedTable(const RecordLayout& layout, const std::vector<KeyDef>& keys);
    void startRecording(qint64 run);
    void stopRecording();
    void removeOld();
    void removeRun(qint64 run);
    qint64 countRecords(qint64 run);
    void checkNotes(qint64 run);
    void checkRun(const StoredHead& head, QStringList& problems);

    sqlite3* m_db;
    QString m_fileName;
    QByteArray m_onCreation;
    std::function<bool()> m_runGoesOn;
    bool m_exists = false;

    qint64 m_run = 0;  // run being recorded
    qint64 m_origin = 0;
    qint64 m_next = 1;
    qint64 m_storedNext = 1;
    std::vector<JournalTable> m_tables;  // of the run being recorded
    size_t m_storedTables = 0;
    QHash<QString, std::shared_ptr<Recorded>> m_recorded;  // by name
    IdSets m_records;
    std::vector<std::pair<int, RecordId>> m_pending;
    Statement m_insert;
};

}  // namespace engines::journal
