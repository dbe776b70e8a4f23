#include "engines/journal/journal_store.h"

#include <QCborMap>
#include <QCborValue>
#include <algorithm>

#include "data/clock.h"
#include "engines/journal/journal_places.h"

namespace engines::journal {

namespace {

const QString kTimeFormat = QStringLiteral("yyyy-MM-dd HH:mm:ss");
const QString kHeadNote = QStringLiteral("head");
constexpr int kChecksumLength = 4;

/// The place of the first entry of the next run.
qint64 endOf(qint64 run) {
    return placeOf(run + 1, 0);
}

QDateTime timeOf(const QCborValue& value) {
    return QDateTime::fromString(value.toString(), kTimeFormat);
}

}  // namespace

JournalStore::JournalStore(sqlite3* db, QString fileName, QByteArray onCreation,
                           std::function<bool()> runGoesOn)
    : m_db(db),
      m_fileName(std::move(fileName)),
      m_onCreation(std::move(onCreation)),
      m_runGoesOn(std::move(runGoesOn)) {}

JournalStore::~JournalStore() = default;

QStringList JournalStore::tableNames() {
    return {QStringLiteral("zdb_run"), QStringLiteral("zdb_table"), QStringLiteral("zdb_change"),
            QStringLiteral("zdb_note")};
}

bool JournalStore::exists() {
    if (!m_exists) {
        Statement table(m_db, "SELECT 1 FROM sqlite_master WHERE name = 'zdb_run'", m_fileName);
        m_exists = table.step();
    }
    return m_exists;
}

void JournalStore::create() {
    sqlite::execute(m_db,
                    "CREATE TABLE zdb_run(number INTEGER PRIMARY KEY, head BLOB NOT NULL);"
                    "CREATE TABLE zdb_table(place INTEGER PRIMARY KEY, entry BLOB NOT NULL);"
                    "CREATE TABLE zdb_change(place INTEGER PRIMARY KEY, entry BLOB NOT NULL);"
                    "CREATE TABLE zdb_note(run INTEGER, name TEXT, value BLOB NOT NULL,"
                    " checksum BLOB NOT NULL, PRIMARY KEY(run, name)) WITHOUT ROWID;" +
                        m_onCreation,
                    m_fileName);
}

void JournalStore::takeFrom(sqlite3* other) {
    struct Copied {
        const char* columns;
        const char* table;
        int count;
    };
    static constexpr Copied kTables[] = {{"number, head", "zdb_run", 2},
                                         {"place, entry", "zdb_table", 2},
                                         {"place, entry", "zdb_change", 2},
                                         {"run, name, value, checksum", "zdb_note", 4}};
    transact([&] {
        if (!exists())
            create();
        for (const Copied& table : kTables) {
            const QByteArray columns = table.columns;
            Statement rows(other, "SELECT " + columns + " FROM " + table.table, m_fileName);
            Statement insert(m_db,
                             QByteArray("INSERT INTO ") + table.table + "(" + columns +
                                 ") VALUES (?1, ?2" + (table.count == 4 ? ", ?3, ?4)" : ")"),
                             m_fileName);
            while (rows.step()) {
                for (int column = 0; column < table.count; ++column)
                    sqlite3_bind_value(insert.get(), column + 1,
                                       sqlite3_column_value(rows.get(), column));
                insert.run();
            }
        }
    });
    m_exists = true;
}

void JournalStore::transact(const std::function<void()>& body) {
    if (sqlite3_get_autocommit(m_db) == 0) {
        body();
        return;
    }
    sqlite::execute(m_db, "BEGIN IMMEDIATE", m_fileName);
    try {
        body();
        sqlite::execute(m_db, "COMMIT", m_fileName);
    } catch (...) {
        if (sqlite3_get_autocommit(m_db) == 0)
            sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

QByteArray JournalStore::encodeHead(const StoredHead& head) {
    const JournalRun& run = head.run;
    const QCborMap map{{QStringLiteral("kind"), static_cast<int>(run.kind)},
                       {QStringLiteral("state"), static_cast<int>(run.state)},
                       {QStringLiteral("definition"), run.definition},
                       {QStringLiteral("started"), run.started.toString(kTimeFormat)},
                       {QStringLiteral("ended"), run.ended.toString(kTimeFormat)},
                       {QStringLiteral("rows"), run.rows},
                       {QStringLiteral("user"), run.user},
                       {QStringLiteral("computer"), run.computer},
                       {QStringLiteral("batch"), run.batch},
                       {QStringLiteral("undone"), run.undoneRun},
                       {QStringLiteral("last"), head.last}};
    const QByteArray bytes = QCborValue(map).toCbor();
    return noteChecksum(run.number, kHeadNote, bytes) + bytes;
}

JournalStore::StoredHead JournalStore::decodeHead(qint64 number, const QByteArray& bytes) const {
    const QByteArray text = bytes.mid(kChecksumLength);
    if (bytes.left(kChecksumLength) != noteChecksum(number, kHeadNote, text))
        throw damaged(number, "its head is not as it was written");
    const QCborMap map = QCborValue::fromCbor(text).toMap();
    const qint64 kind = map[QStringLiteral("kind")].toInteger(-1);
    const qint64 state = map[QStringLiteral("state")].toInteger(-1);
    if (kind < 0 || kind > static_cast<int>(RunKind::Undo) || state < 0 ||
        state > static_cast<int>(RunState::Undone))
        throw damaged(number, "its head has an unknown kind or state");
    StoredHead head;
    head.run.number = number;
    head.run.kind = static_cast<RunKind>(kind);
    head.run.state = static_cast<RunState>(state);
    head.run.definition = map[QStringLiteral("definition")].toString();
    head.run.started = timeOf(map[QStringLiteral("started")]);
    head.run.ended = timeOf(map[QStringLiteral("ended")]);
    head.run.rows = map[QStringLiteral("rows")].toInteger();
    head.run.user = map[QStringLiteral("user")].toString();
    head.run.computer = map[QStringLiteral("computer")].toString();
    head.run.batch = map[QStringLiteral("batch")].toInteger();
    head.run.undoneRun = map[QStringLiteral("undone")].toInteger();
    head.last = map[QStringLiteral("last")].toInteger();
    return head;
}

std::optional<JournalStore::StoredHead> JournalStore::head(qint64 run) {
    if (!exists())
        return std::nullopt;
    Statement rows(m_db, "SELECT head FROM zdb_run WHERE number = ?1", m_fileName);
    rows.bind(1, run);
    if (!rows.step())
        return std::nullopt;
    return decodeHead(run, rows.bytes(0));
}

JournalStore::StoredHead JournalStore::existingHead(qint64 run) {
    std::optional<StoredHead> found = head(run);
    if (!found)
        throw DataError(ErrorKind::Gone, QStringLiteral("run journal"),
                        QStringLiteral("there is no run %1").arg(run))
            .inFinnish(QStringLiteral("ajoa %1 ei ole").arg(run));
    return *found;
}

void JournalStore::writeHead(const StoredHead& head) {
    const QByteArray bytes = encodeHead(head);
    Statement replace(m_db, "INSERT OR REPLACE INTO zdb_run(number, head) VALUES (?1, ?2)",
                      m_fileName);
    replace.bind(1, head.run.number);
    replace.bind(2, bytes);
    replace.run();
}

void JournalStore::requireWhole(std::initializer_list<const char*> tables) {
    for (const char* table : tables) {
        Statement check(m_db, QByteArray("PRAGMA integrity_check(") + table + ')', m_fileName);
        while (check.step()) {
            if (check.text(0) != QLatin1String("ok"))
                throw DataError(ErrorKind::Damaged, QStringLiteral("run journal"), check.text(0))
                    .inFinnish(QStringLiteral("ajopäiväkirja on vioittunut"));
        }
    }
}

void JournalStore::requireComplete(const StoredHead& head) {
    requireWhole({"zdb_table", "zdb_change", "zdb_note"});
    const qint64 run = head.run.number;
    if (head.last != 0 && lastEntry(run) != head.last)
        throw damaged(run, "its last entries are missing");
    Statement strays(m_db,
                     "SELECT 1 FROM (SELECT min(place) AS place FROM zdb_change UNION ALL "
                     "SELECT max(place) FROM zdb_change) WHERE place >> 32 NOT IN "
                     "(SELECT number FROM zdb_run)",
                     m_fileName);
    if (strays.step())
        throw damaged(run, "there are entries of no run");
}

std::vector<JournalRun> JournalStore::runs() {
    std::vector<JournalRun> runs;
    if (!exists())
        return runs;
    requireWhole({"zdb_run"});
    Statement rows(m_db, "SELECT number, head FROM zdb_run ORDER BY number", m_fileName);
    while (rows.step())
        runs.push_back(decodeHead(rows.integer(0), rows.bytes(1)).run);
    rows.reset();
    std::optional<bool> continues;
    for (JournalRun& run : runs) {
        if (run.state != RunState::Running)
            continue;
        run.rows = run.number == m_run ? m_records.count() : countRecords(run.number);
        if (run.number == m_run)
            continue;
        // a run resumed by another process looks the same as one left unfinished earlier
        if (!continues)
            continues = m_run == 0 && m_runGoesOn();
        if (!*continues)
            run.state = RunState::Interrupted;
    }
    return runs;
}

qint64 JournalStore::countRecords(qint64 run) {
    IdSets records;
    visit(run, Direction::Forward, [&records](const JournalEntry& entry) {
        if (!entry.isMark)
            records.add(entry.table, entry.record);
        return true;
    });
    return records.count();
}

qint64 JournalStore::begin(const JournalRun& head,
                           const std::vector<std::pair<QString, QByteArray>>& notes) {
    Q_ASSERT(m_run == 0);
    if (head.kind == RunKind::Undo)
        requireComplete(existingHead(head.undoneRun));
    StoredHead stored{head, 0};
    transact([&] {
        if (!exists())
            create();
        if (head.kind == RunKind::Change)  // an undo needs the run that it takes back
            removeOld();
        Statement largest(m_db, "SELECT ifnull(max(number), 0) FROM zdb_run", m_fileName);
        largest.step();
        // the number of a removed run is not reused
        const QByteArray removed = note(0, QStringLiteral("largest")).value_or(QByteArray());
        stored.run.number = std::max(largest.integer(0), removed.toLongLong()) + 1;
        stored.run.state = RunState::Running;
        stored.run.rows = 0;
        writeHead(stored);
        for (const auto& [name, value] : notes)
            writeNote(stored.run.number, name, value);
    });
    m_exists = true;
    startRecording(stored.run.number);
    return stored.run.number;
}

void JournalStore::resume(qint64 run) {
    Q_ASSERT(m_run == 0);
    StoredHead stored = existingHead(run);
    requireComplete(stored);
    IdSets records;
    visit(run, Direction::Forward, [&records](const JournalEntry& entry) {
        if (!entry.isMark)
            records.add(entry.table, entry.record);
        return true;
    });
    std::vector<JournalTable> known = tables(run);
    const qint64 last = lastEntry(run);
    stored.run.state = RunState::Running;
    stored.run.ended = {};
    stored.last = 0;
    transact([&] { writeHead(stored); });
    startRecording(run);
    m_records = std::move(records);
    m_next = m_storedNext = last + 1;
    m_tables = std::move(known);
    m_storedTables = m_tables.size();
}

void JournalStore::end(RunState state) {
    Q_ASSERT(m_run != 0);
    StoredHead stored = existingHead(m_run);
    stored.run.state = state;
    stored.run.ended = Clock::now();
    stored.run.rows = m_records.count();
    stored.last = m_storedNext - 1;
    stopRecording();
    writeHead(stored);
}

void JournalStore::setState(qint64 run, RunState state) {
    StoredHead stored = existingHead(run);
    if (stored.run.state == RunState::Running) {  // of a dead process
        stored.run.rows = countRecords(run);
        stored.last = lastEntry(run);
    }
    stored.run.state = state;
    writeHead(stored);
}

std::vector<JournalTable> JournalStore::tables(qint64 run) {
    if (!exists())
        return {};
    std::vector<JournalTable> tables;
    Statement rows(
        m_db, "SELECT place, entry FROM zdb_table WHERE place >= ?1 AND place < ?2 ORDER BY place",
        m_fileName);
    rows.bind(1, placeOf(run, 0));
    rows.bind(2, endOf(run));
    while (rows.step()) {
        const qint64 number = rows.integer(0) - placeOf(run, 0);
        if (number != static_cast<qint64>(tables.size()))
            throw damaged(run, "a table is missing");
        tables.push_back(decodeTable(rows.blob(1), run, number));
    }
    return tables;
}

std::vector<JournalEntry> JournalStore::entries(qint64 run, qint64 from, Direction direction,
                                                int max) {
    std::vector<JournalEntry> entries;
    if (!exists())
        return entries;
    const bool forward = direction == Direction::Forward;
    qint64 low = placeOf(run, forward ? from : 0);
    qint64 high = forward || from == 0 ? endOf(run) : placeOf(run, from);
    qint64 previous = forward ? low : from == 0 ? 0 : high;
    Statement rows(m_db,
                   QByteArray("SELECT place, entry FROM zdb_change WHERE place > ?1 AND place < ?2 "
                              "ORDER BY place ") +
                       (forward ? "" : "DESC"),
                   m_fileName);
    rows.bind(1, low);
    rows.bind(2, high);
    while (static_cast<int>(entries.size()) < max && rows.step()) {
        const qint64 place = rows.integer(0);
        if (previous != 0 && place != previous + (forward ? 1 : -1))
            throw damaged(run, "entries are missing");
        previous = place;
        entries.push_back(decodeEntry(rows.blob(1), run, place - placeOf(run, 0)));
    }
    return entries;
}

qint64 JournalStore::lastEntry(qint64 run) {
    if (!exists())
        return 0;
    Statement last(m_db, "SELECT max(place) FROM zdb_change WHERE place > ?1 AND place < ?2",
                   m_fileName);
    last.bind(1, placeOf(run, 0));
    last.bind(2, endOf(run));
    last.step();
    return sqlite3_column_type(last.get(), 0) == SQLITE_NULL ? 0
                                                             : last.integer(0) - placeOf(run, 0);
}

std::optional<QByteArray> JournalStore::note(qint64 run, const QString& name) {
    if (!exists())
        return std::nullopt;
    Statement rows(m_db, "SELECT value, checksum FROM zdb_note WHERE run = ?1 AND name = ?2",
                   m_fileName);
    rows.bind(1, run);
    rows.bindText(2, name);
    if (!rows.step())
        return std::nullopt;
    QByteArray value = rows.bytes(0);
    if (rows.bytes(1) != noteChecksum(run, name, value))
        throw damaged(run, "a note is not as it was written");
    return value;
}

void JournalStore::writeNote(qint64 run, const QString& name, const QByteArray& value) {
    const QByteArray checksum = noteChecksum(run, name, value);
    Statement replace(m_db,
                      value.isEmpty()
                          ? "DELETE FROM zdb_note WHERE run = ?1 AND name = ?2"
                          : "INSERT OR REPLACE INTO zdb_note(run, name, value, checksum) "
                            "VALUES (?1, ?2, ?3, ?4)",
                      m_fileName);
    replace.bind(1, run);
    replace.bindText(2, name);
    if (!value.isEmpty()) {
        replace.bind(3, value);
        replace.bind(4, checksum);
    }
    replace.run();
}

void JournalStore::setNote(qint64 run, const QString& name, const QByteArray& value) {
    transact([&] {
        if (!exists())
            create();
        writeNote(run, name, value);
    });
    m_exists = true;
}

void JournalStore::removeRun(qint64 run) {
    for (const char* sql :
         {"DELETE FROM zdb_change WHERE place >= ?1 << 32 AND place < "
          "(?1 + 1) << 32",
          "DELETE FROM zdb_table WHERE place >= ?1 << 32 AND place < "
          "(?1 + 1) << 32",
          "DELETE FROM zdb_note WHERE run = ?1", "DELETE FROM zdb_run WHERE number = ?1"}) {
        Statement remove(m_db, sql, m_fileName);
        remove.bind(1, run);
        remove.run();
    }
    const qint64 largest = note(0, QStringLiteral("largest")).value_or(QByteArray()).toLongLong();
    if (run > largest)
        writeNote(0, QStringLiteral("largest"), QByteArray::number(run));
}

void JournalStore::forget(qint64 run) {
    existingHead(run);
    transact([&] { removeRun(run); });
}

void JournalStore::removeOld() {
    const QDateTime oldest = Clock::now().addDays(-kKeptDays);
    Statement rows(m_db, "SELECT number, head FROM zdb_run ORDER BY number", m_fileName);
    std::vector<qint64> old;
    while (rows.step()) {
        const JournalRun run = decodeHead(rows.integer(0), rows.bytes(1)).run;
        const bool finished = run.state != RunState::Running && !isUnfinished(run.state);
        if (finished && std::max(run.started, run.ended) < oldest)
            old.push_back(run.number);
    }
    rows.reset();
    for (const qint64 run : old)
        removeRun(run);
}

}  // namespace engines::journal
