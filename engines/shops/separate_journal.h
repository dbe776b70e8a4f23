#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "data/engine/engine.h"
#include "engines/data_names.h"
#include "engines/journal/journal_store.h"
#include "engines/shops/write_target.h"

namespace engines::shops {

/// The run journal of an engine whose transactions it cannot join: a SQLite file in the company's
/// folder. Before a write is sent, the records that it may change are stored with their bytes
/// (pending). Afterwards they are read again, and the changes become entries, which are stored
/// together with the next write's pending records. After an interruption, pending records are
/// compared with the current ones. A server may still be carrying out the last statement of a lost
/// connection or of a dead process: unchanged records are therefore watched for a while first.
/// The file uses a rollback journal instead of a write-ahead log, since the folder may be on a
/// network drive.
class SeparateJournal : public RunJournal {
  public:
    using TableOpener = std::function<std::unique_ptr<TableFile>(const QString& table)>;

    static QString fileIn(const QString& folder);

    /// Longer than a statement waits for another program's record lock.
    static constexpr std::chrono::milliseconds kWatch{5000};

    /// `open`: opens a table without journal. `watch`: how long the records of a statement without
    /// an answer are watched for its changes.
    SeparateJournal(const QString& folder, TableOpener open, std::function<bool()> runGoesOn,
                    std::chrono::milliseconds watch = kWatch);
    ~SeparateJournal() override;

    std::vector<JournalRun> runs() override;
    qint64 begin(const JournalRun& head,
                 const std::vector<std::pair<QString, QByteArray>>& notes) override;
    void resume(qint64 run) override;
    void end(RunState state) override;
    qint64 recording() const override;
    void setOrigin(qint64 origin) override;
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

    // Writes during a recorded run; each function sends the write itself.
    void write(const WriteTarget& target, const std::map<QString, Value>& parameters, Database& sql,
               const std::function<void()>& send);
    void insertRecord(const QString& table, const QByteArray& record,
                      const std::function<void()>& send);
    void changeRecord(const QString& table, RecordId id, const std::function<void()>& send);

  private:
    /// A record that a write may change, or a key under which it may insert one.
    struct Pending {
        QString table;
        RecordId id = 0;
        QByteArray bytes;  ///< the record before; of an insert: the key's values
        bool isInsert = false;
        int keyFields = 0;            ///< of an insert: leading fields of key 0 in `bytes`
        std::vector<RecordId> known;  ///< of an insert: the existing records of that key
    };

    /// What a pending write's entries are recorded with.
    struct Sender {
        qint64 run = 0;
        qint64 origin = 0;
    };

    journal::JournalStore* store();
    journal::JournalStore& madeStore();
    TableFile& table(const QString& name);
    std::vector<StoredRecord> recordsOf(TableFile& file, const QByteArray& key, int keyFields);
    std::vector<Pending> changedBy(const WriteTarget& target,
                                   const std::map<QString, Value>& parameters, Database& sql);
    Pending insertedBy(const QString& table, const QByteArray& record, int keyFields);
    Pending insertedBy(const WriteTarget& target, const std::map<QString, Value>& parameters);
    void around(const std::vector<Pending>& pending, const std::function<void()>& send);
    void complete(const std::vector<Pending>& pending);
    bool isDone(const Pending& pending);
    void watch(const std::vector<Pending>& pending);
    void settle();
    void commit();
    static QByteArray encode(const Sender& sender, const std::vector<Pending>& pending);
    static std::vector<Pending> decode(const QByteArray& note, Sender& sender);

    QString m_fileName;
    TableOpener m_open;
    std::function<bool()> m_runGoesOn;
    std::chrono::milliseconds m_watch;
    qint64 m_origin = 0;
    sqlite::SqliteHandle m_handle;
    std::unique_ptr<journal::JournalStore> m_store;
    std::map<QString, std::unique_ptr<TableFile>> m_tables;
};

/// A table whose writes are recorded in the journal.
std::unique_ptr<TableFile> journaled(std::unique_ptr<TableFile> file, SeparateJournal& journal);
/// A statement whose writes are recorded; `database` reads the records that it may change.
std::unique_ptr<SqlStatement> journaled(std::unique_ptr<SqlStatement> statement, const QString& sql,
                                        SeparateJournal& journal, Database& database);

}  // namespace engines::shops
