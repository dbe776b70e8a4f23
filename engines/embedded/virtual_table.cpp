#include "engines/embedded/virtual_table.h"

#include <algorithm>
#include <exception>
#include <limits>

#include "data/record/record_codec.h"
#include "engines/embedded/column_codec.h"
#include "engines/embedded/connection.h"

// The bridge between SQLite's callbacks and the record tables. Exceptions must not pass through
// SQLite: they are kept in the connection and SQLite gets a result code.

namespace engines::embedded {

namespace {

struct SqlTable : sqlite3_vtab {
    SqlTable(Connection& c, StoredTable& t) : sqlite3_vtab{}, connection(&c), table(&t) {
        c.countSqlTables(1);
    }
    ~SqlTable() { connection->countSqlTables(-1); }
    SqlTable(const SqlTable&) = delete;
    SqlTable& operator=(const SqlTable&) = delete;
    Connection* connection;
    StoredTable* table;
};

struct Cursor : sqlite3_vtab_cursor {
    explicit Cursor(StoredTable& t) : sqlite3_vtab_cursor{}, table(&t) {
        t.connection().countCursors(1);
    }
    ~Cursor() { table->connection().countCursors(-1); }
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    StoredTable* table;
    ScanPlan plan;
    StatementLease rows;
    // Statement parameters point to these.
    QByteArray low;
    QByteArray high;
    bool atEnd = true;
    RecordId id = 0;
    const uchar* record = nullptr;
    QByteArray rebuilt;  // for scans that read only the key
    // Scans by a field's value: ids left to visit.
    std::vector<RecordId> ids;
    size_t nextId = 0;
};

SqlTable& tableOf(sqlite3_vtab* table) {
    return *static_cast<SqlTable*>(table);
}

Cursor& cursorOf(sqlite3_vtab_cursor* cursor) {
    return *static_cast<Cursor*>(cursor);
}

void setMessage(sqlite3_vtab* table, const char* message) {
    sqlite3_free(table->zErrMsg);
    table->zErrMsg = sqlite3_mprintf("%s", message);
}

QByteArray messageOf(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& error) {
        return error.what();
    } catch (const Connection::RecordIsHeld& held) {
        return "another program holds a record of " + held.table.toUtf8();
    }
}

// Result code that a host returns to its program.
int codeOf(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const Connection::RecordIsHeld&) {
        return SQLITE_LOCKED;
    } catch (const DataError& error) {
        switch (error.kind()) {
            case ErrorKind::Locked:
                return SQLITE_LOCKED;
            case ErrorKind::DuplicateKey:
                return SQLITE_CONSTRAINT;
            case ErrorKind::BadValue:
                return SQLITE_MISMATCH;
            default:
                return SQLITE_ERROR;
        }
    } catch (const std::exception&) {
        return SQLITE_ERROR;
    }
}

// Runs a callback's body; an exception is kept for the caller of the statement.
template <typename Body>
int guarded(sqlite3_vtab* table, Body body) {
    try {
        return body();
    } catch (...) {
        const std::exception_ptr failure = std::current_exception();
        setMessage(table, messageOf(failure).constData());
        Connection& connection = *tableOf(table).connection;
        if (connection.isHosted())
            return codeOf(failure);
        connection.keepFailure(failure);
        return SQLITE_ERROR;
    }
}

int connectTable(sqlite3* db, void* context, int, const char* const* arguments, sqlite3_vtab** made,
                 char** message) {
    auto& connection = *static_cast<Connection*>(context);
    try {
        const Connection::InternalUse internal(connection);
        StoredTable& table = connection.table(QString::fromUtf8(arguments[2]));
        QByteArray columns;
        for (const TFieldCacheItem& field : table.layout().fields())
            columns += (columns.isEmpty() ? "" : ", ") + columnDeclaration(table.name(), field);
        const int code = sqlite3_declare_vtab(db, ("CREATE TABLE x(" + columns + ")").constData());
        if (code != SQLITE_OK)
            throwSqlite(db, code, table.name());
        *made = new SqlTable(connection, table);
        return SQLITE_OK;
    } catch (const std::exception& error) {
        *message = sqlite3_mprintf("%s", error.what());
        if (!connection.isHosted())
            connection.keepFailure(std::current_exception());
        return SQLITE_ERROR;
    }
}

int disconnectTable(sqlite3_vtab* table) {
    delete &tableOf(table);
    return SQLITE_OK;
}

int planScan(sqlite3_vtab* table, sqlite3_index_info* info) {
    return guarded(table, [&] {
        const Connection::InternalUse internal(*tableOf(table).connection);
        return bestIndex(*tableOf(table).table, info);
    });
}

int openCursor(sqlite3_vtab* table, sqlite3_vtab_cursor** cursor) {
    return guarded(table, [&] {
        *cursor = new Cursor(*tableOf(table).table);
        return SQLITE_OK;
    });
}

int closeCursor(sqlite3_vtab_cursor* cursor) {
    delete &cursorOf(cursor);
    return SQLITE_OK;
}

int advance(Cursor& cursor) {
    cursor.record = nullptr;
    if (!cursor.ids.empty()) {
        cursor.rows->reset();
        cursor.atEnd = cursor.nextId == cursor.ids.size();
        if (cursor.atEnd)
            return SQLITE_OK;
        cursor.rows->bind(1, cursor.ids[cursor.nextId++]);
    }
    cursor.atEnd = !cursor.rows->step();
    if (cursor.atEnd) {
        cursor.rows = {};
        return SQLITE_OK;
    }
    cursor.id = cursor.rows->integer(0);
    return SQLITE_OK;
}

// Bytes of the current row's record, or those that the key gives.
const uchar* currentRecord(Cursor& cursor) {
    if (cursor.record != nullptr)
        return cursor.record;
    const QByteArrayView column = cursor.rows->blob(1);
    if (!cursor.plan.imageOnly) {
        cursor.record = reinterpret_cast<const uchar*>(cursor.table->checked(column).data());
        return cursor.record;
    }
    const KeyImage& image = cursor.table->image(cursor.plan.key);
    cursor.table->checkImage(cursor.plan.key, column);
    if (cursor.rebuilt.isEmpty())
        cursor.rebuilt = cursor.table->emptyRecord();
    auto* bytes = reinterpret_cast<uchar*>(cursor.rebuilt.data());
    for (int i = 0; i < static_cast<int>(image.segments().size()); ++i) {
        if (image.isReversible(i))
            image.restore(i, reinterpret_cast<const uchar*>(column.data()), bytes);
    }
    cursor.record = bytes;
    return bytes;
}

// Whether the field is restored from the key.
bool isRebuilt(const Cursor& cursor, int column) {
    const KeyImage& image = cursor.table->image(cursor.plan.key);
    for (size_t i = 0; i < image.segments().size(); ++i) {
        if (image.segments()[i].fieldIndex == column && image.isReversible(static_cast<int>(i)))
            return true;
    }
    return false;
}

// Sets the scan's bounds from plan and values.
// @return false if no record can match.
bool setBounds(Cursor& cursor, sqlite3_value** values, ScanShape::Bounds& bounds) {
    using Answer = ImageRange::Answer;
    const ScanPlan& plan = cursor.plan;
    const KeyImage& image = cursor.table->image(plan.key);
    QByteArray prefix;
    int argument = 0;
    int segment = 0;
    for (; segment < plan.equalCount; ++segment) {
        const ImageRange range = image.range(segment, Comparison::Equal, values[argument++]);
        if (range.answer == Answer::Nothing)
            return false;
        if (range.answer == Answer::Unknown)
            break;
        prefix += range.low;
    }
    cursor.low = prefix;
    cursor.high = successor(prefix);
    bounds = ScanShape::Bounds::Range;
    if (prefix.size() == image.length())
        bounds = ScanShape::Bounds::Equal;
    else if (segment == plan.equalCount) {
        const auto narrow = [&](Comparison op) {
            const ImageRange range = image.range(segment, op, values[argument++]);
            if (range.answer == Answer::Nothing)
                return false;
            if (!range.low.isEmpty())
                cursor.low = std::max(cursor.low, prefix + range.low);
            if (!range.high.isEmpty())
                cursor.high = cursor.high.isEmpty() ? prefix + range.high
                                                    : std::min(cursor.high, prefix + range.high);
            return true;
        };
        if (plan.low != 0 &&
            !narrow(plan.low == 2 ? Comparison::GreaterOrEqual : Comparison::Greater))
            return false;
        if (plan.high != 0 && !narrow(plan.high == 2 ? Comparison::LessOrEqual : Comparison::Less))
            return false;
    }
    if (cursor.high.isEmpty())
        cursor.high = cursor.table->topImage(plan.key);
    if (bounds == ScanShape::Bounds::Range && cursor.low.isEmpty() &&
        cursor.high == cursor.table->topImage(plan.key))
        bounds = ScanShape::Bounds::None;
    return true;
}

// @return false if there is no index to use.
bool startByField(Cursor& cursor, sqlite3_value* value) {
    const TransientIndexes::Entries* entries =
        cursor.table->connection().transientIndexes().find(*cursor.table, cursor.plan.field);
    if (entries == nullptr)
        return false;
    const int type = sqlite3_value_numeric_type(value);
    const double number = sqlite3_value_double(value);
    const qint64 whole = sqlite3_value_int64(value);
    if (type == SQLITE_INTEGER || (type == SQLITE_FLOAT && static_cast<double>(whole) == number)) {
        auto entry = std::lower_bound(entries->begin(), entries->end(),
                                      std::pair(whole, std::numeric_limits<RecordId>::min()));
        for (; entry != entries->end() && entry->first == whole; ++entry)
            cursor.ids.push_back(entry->second);
    }
    if (!cursor.ids.empty())
        cursor.rows = cursor.table->scan({-1, ScanShape::Bounds::Equal, false, false, false});
    return true;
}

int startScan(sqlite3_vtab_cursor* handle, int planNumber, const char*, int,
              sqlite3_value** values) {
    Cursor& cursor = cursorOf(handle);
    return guarded(handle->pVtab, [&] {
        cursor.rows = {};
        cursor.atEnd = true;
        cursor.ids.clear();
        cursor.nextId = 0;
        cursor.plan = ScanPlan::unpacked(planNumber);
        ScanPlan& plan = cursor.plan;
        if (plan.key == ScanPlan::kByField) {
            if (startByField(cursor, values[0]))
                return cursor.ids.empty() ? SQLITE_OK : advance(cursor);
            plan.key = ScanPlan::kById;
        }
        if (plan.key == ScanPlan::kOneId) {
            if (sqlite3_value_numeric_type(values[0]) != SQLITE_INTEGER)
                return SQLITE_OK;
            cursor.rows = cursor.table->scan({-1, ScanShape::Bounds::Equal, false, false, false});
            cursor.rows->bind(1, sqlite3_value_int64(values[0]));
            return advance(cursor);
        }
        auto bounds = ScanShape::Bounds::None;
        if (plan.key >= 0 && !setBounds(cursor, values, bounds))
            return SQLITE_OK;
        cursor.rows = cursor.table->scan({plan.key, bounds, plan.backward, plan.imageOnly, false});
        if (bounds != ScanShape::Bounds::None)
            cursor.rows->bind(1, cursor.low);
        if (bounds == ScanShape::Bounds::Range)
            cursor.rows->bind(2, cursor.high);
        return advance(cursor);
    });
}

int nextRow(sqlite3_vtab_cursor* cursor) {
    return guarded(cursor->pVtab, [&] { return advance(cursorOf(cursor)); });
}

int isAtEnd(sqlite3_vtab_cursor* cursor) {
    return cursorOf(cursor).atEnd ? 1 : 0;
}

int readColumn(sqlite3_vtab_cursor* handle, sqlite3_context* context, int column) {
    if (sqlite3_vtab_nochange(context) != 0)
        return SQLITE_OK;  // the UPDATE does not change this column
    return guarded(handle->pVtab, [&] {
        Cursor& cursor = cursorOf(handle);
        const TFieldCacheItem& field = cursor.table->layout().field(column);
        if (cursor.plan.imageOnly && !isRebuilt(cursor, column)) {
            const std::optional<QByteArray> record = cursor.table->read(cursor.id);
            if (record)
                resultField(context, field, reinterpret_cast<const uchar*>(record->constData()));
            return SQLITE_OK;
        }
        resultField(context, field, currentRecord(cursor));
        return SQLITE_OK;
    });
}

int readId(sqlite3_vtab_cursor* cursor, sqlite3_int64* id) {
    *id = cursorOf(cursor).id;
    return SQLITE_OK;
}

// Writes a statement's values into a record. Bits come after the byte fields that contain them, so
// that a named bit wins; columns not named keep their bytes.
template <typename IsGiven>
void applyValues(const StoredTable& table, QByteArray& record, sqlite3_value** values,
                 IsGiven isGiven) {
    auto* bytes = reinterpret_cast<uchar*>(record.data());
    for (const bool bits : {false, true}) {
        for (int i = 0; i < table.layout().fieldCount(); ++i) {
            const TFieldCacheItem& field = table.layout().field(i);
            if ((field.storage == Storage::Bit) == bits && isGiven(i, values[i]))
                storeField(table.name(), field, bytes, values[i]);
        }
    }
}

int writeRow(sqlite3_vtab* handle, int count, sqlite3_value** values, sqlite3_int64* newId) {
    return guarded(handle, [&] {
        StoredTable& table = *tableOf(handle).table;
        if (sqlite3_value_type(values[0]) == SQLITE_NULL) {
            if (sqlite3_value_type(values[1]) != SQLITE_NULL)
                throw DataError(ErrorKind::Engine, table.name(),
                                QStringLiteral("a record's id cannot be chosen"));
            QByteArray record = table.emptyRecord();
            applyValues(table, record, values + 2, [](int, sqlite3_value* value) {
                return sqlite3_value_type(value) != SQLITE_NULL;
            });
            *newId = table.insert(record);
            return SQLITE_OK;
        }
        const RecordId id = sqlite3_value_int64(values[0]);
        const std::optional<QByteArray> before = table.read(id);
        if (!before)
            throw DataError(ErrorKind::Gone, table.name(),
                            QStringLiteral("the record was removed meanwhile"))
                .inFinnish(QStringLiteral("toinen ohjelma poisti sen"));
        if (count == 1) {
            table.remove(id, *before);
            return SQLITE_OK;
        }
        if (sqlite3_value_int64(values[1]) != id)
            throw DataError(ErrorKind::Engine, table.name(),
                            QStringLiteral("a record's id cannot be changed"));
        QByteArray after = *before;
        applyValues(table, after, values + 2,
                    [](int, sqlite3_value* value) { return sqlite3_value_nochange(value) == 0; });
        table.update(id, *before, after);
        return SQLITE_OK;
    });
}

const sqlite3_module kModule = [] {
    sqlite3_module module = {};
    module.iVersion = 1;
    module.xCreate = connectTable;
    module.xConnect = connectTable;
    module.xBestIndex = planScan;
    module.xDisconnect = disconnectTable;
    module.xDestroy = disconnectTable;
    module.xOpen = openCursor;
    module.xClose = closeCursor;
    module.xFilter = startScan;
    module.xNext = nextRow;
    module.xEof = isAtEnd;
    module.xColumn = readColumn;
    module.xRowid = readId;
    module.xUpdate = writeRow;
    return module;
}();

int beginWriting(sqlite3_vtab*) {
    return SQLITE_OK;
}

// The host's transaction has ended: release its statements' locks.
int endWriting(sqlite3_vtab* table) {
    tableOf(table).connection->locks().endStatement();
    return SQLITE_OK;
}

const sqlite3_module kHostedModule = [] {
    sqlite3_module module = kModule;
    module.xBegin = beginWriting;
    module.xCommit = endWriting;
    module.xRollback = endWriting;
    return module;
}();

constexpr char kModuleName[] = "zavrecord";

}  // namespace

void registerVirtualTables(Connection& connection) {
    const int code = sqlite3_create_module_v2(connection.db(), kModuleName,
                                              connection.isHosted() ? &kHostedModule : &kModule,
                                              &connection, nullptr);
    if (code != SQLITE_OK)
        throwSqlite(connection.db(), code, QString());
}

QByteArray virtualTableSql(const QString& tableName) {
    return "CREATE VIRTUAL TABLE " + quotedName(tableName) + " USING " + kModuleName;
}

}  // namespace engines::embedded
