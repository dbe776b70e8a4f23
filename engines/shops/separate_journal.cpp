#include "engines/shops/separate_journal.h"

#include <QCborArray>
#include <QCborMap>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <thread>

#include "data/record/record_codec.h"

namespace engines::shops {

namespace {

const QString kFile = QStringLiteral("AJOPAIVAKIRJA.DAT");
const QString kPendingNote = QStringLiteral("pending");
constexpr int kBusyTimeoutMs = 10000;
constexpr std::chrono::milliseconds kPoll{20};
constexpr int kMaxRecords = 1 << 20;
constexpr int kApplicationId = 0x5A444A31;  // "ZDJ1"

uchar* bytesOf(QByteArray& record) {
    return reinterpret_cast<uchar*>(record.data());
}

const uchar* bytesOf(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

QByteArray emptyRecord(const RecordLayout& layout) {
    QByteArray record(layout.recordLength(), '\0');
    for (const TFieldCacheItem& field : layout.fields())
        clearField(field, bytesOf(record));
    return record;
}

}  // namespace

QString SeparateJournal::fileIn(const QString& folder) {
    return QDir(folder).filePath(kFile);
}

SeparateJournal::SeparateJournal(const QString& folder, TableOpener open,
                                 std::function<bool()> runGoesOn, std::chrono::milliseconds watch)
    : m_fileName(fileIn(folder)),
      m_open(std::move(open)),
      m_runGoesOn(std::move(runGoesOn)),
      m_watch(watch) {}

SeparateJournal::~SeparateJournal() {
    m_store.reset();
}

journal::JournalStore& SeparateJournal::madeStore() {
    if (m_store)
        return *m_store;
    const bool isNew = !QFile::exists(m_fileName);
    sqlite::SqliteHandle handle(m_fileName, isNew ? sqlite::SqliteHandle::Mode::Create
                                                  : sqlite::SqliteHandle::Mode::ReadWrite);
    sqlite3_busy_timeout(handle.get(), kBusyTimeoutMs);
    sqlite::Statement id(handle.get(), "PRAGMA application_id", m_fileName);
    id.step();
    if (!isNew && id.integer(0) != kApplicationId && id.integer(0) != 0)
        throw DataError(ErrorKind::Damaged, m_fileName, QStringLiteral("not a run journal"))
            .inFinnish(QStringLiteral("tiedosto ei ole ajopäiväkirja"));
    id.reset();
    sqlite::execute(handle.get(),
                    "PRAGMA journal_mode = TRUNCATE; PRAGMA synchronous = FULL; PRAGMA "
                    "trusted_schema = OFF",
                    m_fileName);
    m_store = std::make_unique<journal::JournalStore>(
        handle.get(), m_fileName, "PRAGMA application_id = " + QByteArray::number(kApplicationId),
        m_runGoesOn);
    m_handle = std::move(handle);
    return *m_store;
}

journal::JournalStore* SeparateJournal::store() {
    if (!m_store && !QFile::exists(m_fileName))
        return nullptr;
    journal::JournalStore& made = madeStore();
    settle();
    return &made;
}

TableFile& SeparateJournal::table(const QString& name) {
    std::unique_ptr<TableFile>& file = m_tables[name.toUpper()];
    if (!file)
        file = m_open(name);
    return *file;
}

// --- RunJournal

std::vector<JournalRun> SeparateJournal::runs() {
    journal::JournalStore* present = store();
    return present != nullptr ? present->runs() : std::vector<JournalRun>();
}

qint64 SeparateJournal::begin(const JournalRun& head,
                              const std::vector<std::pair<QString, QByteArray>>& notes) {
    madeStore();
    settle();
    m_tables.clear();
    m_origin = 0;
    return m_store->begin(head, notes);
}

void SeparateJournal::resume(qint64 run) {
    madeStore();
    settle();
    m_tables.clear();
    m_origin = 0;
    m_store->resume(run);
}

void SeparateJournal::end(RunState state) {
    m_store->end(state);
    commit();
}

qint64 SeparateJournal::recording() const {
    return m_store ? m_store->recording() : 0;
}

void SeparateJournal::setOrigin(qint64 origin) {
    m_origin = origin;
    if (m_store)
        m_store->setOrigin(origin);
}

void SeparateJournal::mark(const QByteArray& text) {
    m_store->mark(text);
    commit();
}

void SeparateJournal::setState(qint64 run, RunState state) {
    madeStore();
    settle();
    m_store->setState(run, state);
}

void SeparateJournal::forget(qint64 run) {
    madeStore();
    settle();
    m_store->forget(run);
}

std::vector<JournalEntry> SeparateJournal::entries(qint64 run, qint64 from, Direction direction,
                                                   int max) {
    journal::JournalStore* present = store();
    return present != nullptr ? present->entries(run, from, direction, max)
                              : std::vector<JournalEntry>();
}

qint64 SeparateJournal::lastEntry(qint64 run) {
    journal::JournalStore* present = store();
    return present != nullptr ? present->lastEntry(run) : 0;
}

std::vector<JournalTable> SeparateJournal::tables(qint64 run) {
    journal::JournalStore* present = store();
    return present != nullptr ? present->tables(run) : std::vector<JournalTable>();
}

std::optional<QByteArray> SeparateJournal::note(qint64 run, const QString& name) {
    journal::JournalStore* present = store();
    return present != nullptr ? present->note(run, name) : std::nullopt;
}

void SeparateJournal::setNote(qint64 run, const QString& name, const QByteArray& value) {
    madeStore();
    settle();
    m_store->setNote(run, name, value);
    commit();
}

QStringList SeparateJournal::check() {
    journal::JournalStore* present = store();
    return present != nullptr ? present->check() : QStringList();
}

// --- records that a write may change

std::vector<StoredRecord> SeparateJournal::recordsOf(TableFile& file, const QByteArray& key,
                                                     int keyFields) {
    KeyValues values;
    if (keyFields == 0)
        return file.fromEnd(0, Direction::Forward, kMaxRecords);
    for (int i = 0; i < keyFields; ++i) {
        const int field = file.keys().front().segments[static_cast<size_t>(i)].fieldIndex;
        values.push_back(readValue(file.layout().field(field), bytesOf(key)));
    }
    return file.seek(0, SeekOp::Equal, values, kMaxRecords);
}

std::vector<SeparateJournal::Pending> SeparateJournal::changedBy(
    const WriteTarget& target, const std::map<QString, Value>& parameters, Database& sql) {
    TableFile& file = table(target.table);
    // Leading fields of key 0 that compare exactly through any driver. Selecting too many rows is
    // harmless.
    QStringList columns;
    std::vector<int> fields;
    for (const KeySegment& segment : file.keys().front().segments) {
        const TFieldCacheItem& field = file.layout().field(segment.fieldIndex);
        if (field.kind() == Kind::Float)
            break;
        columns += field.name;
        fields.push_back(segment.fieldIndex);
    }
    std::vector<Pending> pending;
    const auto addAll = [&](const std::vector<StoredRecord>& records) {
        for (const StoredRecord& record : records)
            pending.push_back({target.table, record.id, record.bytes, false, 0, {}});
    };
    if (columns.isEmpty()) {
        addAll(recordsOf(file, {}, 0));
        return pending;
    }
    const auto query = sql.prepare(QStringLiteral("select ") + columns.join(QStringLiteral(", ")) +
                                   QStringLiteral(" from ") + target.table + target.condition);
    for (const QString& name : target.conditionParameters)
        query->bind(name, parameters.at(name.toLower()));
    std::vector<QByteArray> keys;
    while (query->step()) {
        QByteArray key = emptyRecord(file.layout());
        for (size_t i = 0; i < fields.size(); ++i)
            writeValue(file.layout().field(fields[i]), bytesOf(key),
                       query->value(static_cast<int>(i)), target.table);
        keys.push_back(std::move(key));
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    for (const QByteArray& key : keys)
        addAll(recordsOf(file, key, static_cast<int>(fields.size())));
    return pending;
}

SeparateJournal::Pending SeparateJournal::insertedBy(const QString& tableName,
                                                     const QByteArray& record, int keyFields) {
    Pending pending{tableName, 0, record, true, keyFields, {}};
    for (const StoredRecord& known : recordsOf(table(tableName), record, keyFields))
        pending.known.push_back(known.id);
    return pending;
}

SeparateJournal::Pending SeparateJournal::insertedBy(const WriteTarget& target,
                                                     const std::map<QString, Value>& parameters) {
    TableFile& file = table(target.table);
    const RecordLayout& layout = file.layout();
    QByteArray record = emptyRecord(layout);
    std::vector<bool> given(static_cast<size_t>(layout.fieldCount()), target.columns.isEmpty());
    for (qsizetype i = 0; i < target.values.size(); ++i) {
        const int field =
            target.columns.isEmpty() ? static_cast<int>(i) : layout.indexOf(target.columns[i]);
        if (field < 0 || field >= layout.fieldCount())
            throw DataError(ErrorKind::NoSuchField, target.table, target.columns.value(i));
        writeValue(layout.field(field), bytesOf(record),
                   insertedValue(target.values[i], parameters), target.table);
        given[static_cast<size_t>(field)] = true;
    }
    int keyFields = 0;
    for (const KeySegment& segment : file.keys().front().segments) {
        const TFieldCacheItem& field = layout.field(segment.fieldIndex);
        if (!given[static_cast<size_t>(segment.fieldIndex)] || field.kind() == Kind::Float ||
            field.storage == Storage::AutoIncrement)
            break;
        ++keyFields;
    }
    return insertedBy(target.table, record, keyFields);
}

// --- pending writes

QByteArray SeparateJournal::encode(const Sender& sender, const std::vector<Pending>& pending) {
    QCborArray all{sender.run, sender.origin};
    for (const Pending& one : pending) {
        QCborArray known;
        for (const RecordId id : one.known)
            known.append(id);
        all.append(QCborArray{one.table, one.id, one.bytes, one.isInsert, one.keyFields, known});
    }
    return all.toCborValue().toCbor();
}

std::vector<SeparateJournal::Pending> SeparateJournal::decode(const QByteArray& note,
                                                              Sender& sender) {
    const QCborArray all = QCborValue::fromCbor(note).toArray();
    sender = {all.at(0).toInteger(), all.at(1).toInteger()};
    std::vector<Pending> pending;
    for (qsizetype i = 2; i < all.size(); ++i) {
        const QCborArray one = all.at(i).toArray();
        pending.push_back({one.at(0).toString(),
                           one.at(1).toInteger(),
                           one.at(2).toByteArray(),
                           one.at(3).toBool(),
                           static_cast<int>(one.at(4).toInteger()),
                           {}});
        for (const auto& id : one.at(5).toArray())
            pending.back().known.push_back(id.toInteger());
    }
    return pending;
}

void SeparateJournal::commit() {
    if (m_handle.get() != nullptr && sqlite3_get_autocommit(m_handle.get()) == 0)
        sqlite::execute(m_handle.get(), "COMMIT", m_fileName);
}

void SeparateJournal::around(const std::vector<Pending>& pending,
                             const std::function<void()>& send) {
    m_store->setNote(0, kPendingNote, encode({m_store->recording(), m_origin}, pending));
    commit();
    const auto readAgain = [&] {
        sqlite::execute(m_handle.get(), "BEGIN", m_fileName);
        complete(pending);
        m_store->stored();
    };
    try {
        send();
    } catch (const std::exception& error) {
        // it may have been carried out in part; records that cannot be read now stay pending
        const auto* failure = dynamic_cast<const DataError*>(&error);
        try {
            if (failure != nullptr && failure->kind() == ErrorKind::NoConnection)
                watch(pending);
            readAgain();
        } catch (const DataError&) {
            m_store->undone();
            sqlite3_exec(m_handle.get(), "ROLLBACK", nullptr, nullptr, nullptr);
            m_tables.clear();  // their session may be lost
        }
        throw;
    }
    readAgain();
}

void SeparateJournal::complete(const std::vector<Pending>& pending) {
    for (const Pending& one : pending) {
        TableFile& file = table(one.table);
        const auto record = [&](RecordId id, const QByteArray* before, const QByteArray* after) {
            m_store->record(file.layout(), file.keys(), id, before, after);
        };
        if (!one.isInsert) {
            const std::optional<StoredRecord> now = file.get(one.id);
            record(one.id, &one.bytes, now ? &now->bytes : nullptr);
            continue;
        }
        for (const StoredRecord& found : recordsOf(file, one.bytes, one.keyFields)) {
            if (std::find(one.known.begin(), one.known.end(), found.id) == one.known.end())
                record(found.id, nullptr, &found.bytes);
        }
    }
    m_store->setNote(0, kPendingNote, {});
}

bool SeparateJournal::isDone(const Pending& pending) {
    TableFile& file = table(pending.table);
    if (pending.isInsert)
        return recordsOf(file, pending.bytes, pending.keyFields).size() > pending.known.size();
    const std::optional<StoredRecord> now = file.get(pending.id);
    return !now || now->bytes != pending.bytes;
}

// A record that the statement does not change costs the whole time, but only after such a failure.
void SeparateJournal::watch(const std::vector<Pending>& pending) {
    const auto end = std::chrono::steady_clock::now() + m_watch;
    while (!std::all_of(pending.begin(), pending.end(), [this](const Pending& one) {
        return isDone(one);
    }) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(kPoll);
}

void SeparateJournal::settle() {
    if (sqlite3_get_autocommit(m_handle.get()) == 0)
        return;
    const std::optional<QByteArray> note = m_store->note(0, kPendingNote);
    const bool isOwn = m_store->recording() != 0;
    if (note && (isOwn || !m_runGoesOn())) {
        Sender sender;
        const std::vector<Pending> pending = decode(*note, sender);
        watch(pending);
        if (!isOwn)
            m_store->resume(sender.run);
        m_store->setOrigin(sender.origin);
        sqlite::execute(m_handle.get(), "BEGIN IMMEDIATE", m_fileName);
        try {
            complete(pending);
            commit();
        } catch (...) {
            sqlite3_exec(m_handle.get(), "ROLLBACK", nullptr, nullptr, nullptr);
            m_store->undone();
            m_store->setOrigin(m_origin);
            if (!isOwn)
                m_store->suspend();
            throw;
        }
        m_store->stored();
        m_store->setOrigin(m_origin);
        if (!isOwn)
            m_store->suspend();
    }
}

void SeparateJournal::write(const WriteTarget& target, const std::map<QString, Value>& parameters,
                            Database& sql, const std::function<void()>& send) {
    settle();
    std::vector<Pending> pending;
    if (target.kind == WriteTarget::Kind::Insert)
        pending.push_back(insertedBy(target, parameters));
    else
        pending = changedBy(target, parameters, sql);
    around(pending, send);
}

void SeparateJournal::insertRecord(const QString& tableName, const QByteArray& record,
                                   const std::function<void()>& send) {
    settle();
    const TableFile& file = table(tableName);
    int keyFields = 0;
    for (const KeySegment& segment : file.keys().front().segments) {
        if (file.layout().field(segment.fieldIndex).storage == Storage::AutoIncrement)
            break;
        ++keyFields;
    }
    around({insertedBy(tableName, record, keyFields)}, send);
}

void SeparateJournal::changeRecord(const QString& tableName, RecordId id,
                                   const std::function<void()>& send) {
    settle();
    std::vector<Pending> pending;
    if (const std::optional<StoredRecord> now = table(tableName).get(id))
        pending.push_back({tableName, id, now->bytes, false, 0, {}});
    around(pending, send);
}

}  // namespace engines::shops
