#include "engines/embedded/record_visit.h"

namespace engines::embedded {

namespace {

constexpr char kPointerType[] = "RecordVisit";
constexpr int kArguments = 3;

void visitRecord(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto* visit = static_cast<RecordVisit*>(sqlite3_value_pointer(arguments[0], kPointerType));
    bool stops = true;
    if (visit == nullptr) {  // in a user's statement
        sqlite3_result_error(context, "not for statements of users", -1);
        return;
    }
    try {
        const void* bytes = sqlite3_value_blob(arguments[2]);
        stops = !visit->see(sqlite3_value_int64(arguments[1]),
                            {static_cast<const char*>(bytes), sqlite3_value_bytes(arguments[2])});
    } catch (...) {  // exceptions cannot pass through SQLite
        visit->failure = std::current_exception();
    }
    sqlite3_result_int(context, stops ? 1 : 0);
}

}  // namespace

void RecordVisit::run(sqlite::Statement& rows) {
    const int code = sqlite3_bind_pointer(rows.get(), 1, this, kPointerType, nullptr);
    if (code != SQLITE_OK)
        sqlite::throwSqlite(sqlite3_db_handle(rows.get()), code, QString());
    rows.step();
    rows.reset();
    sqlite3_clear_bindings(rows.get());
    if (failure)
        std::rethrow_exception(failure);
}

void registerRecordVisit(sqlite3* db) {
    const int code =
        sqlite3_create_function_v2(db, kVisitFunction, kArguments, SQLITE_UTF8 | SQLITE_DIRECTONLY,
                                   nullptr, visitRecord, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        sqlite::throwSqlite(db, code, QString());
}

}  // namespace engines::embedded
