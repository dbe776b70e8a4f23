// A loadable SQLite extension: a SQLite program (shell, ODBC driver) that opens a company's
// database file and loads it can use the company's tables, with the engine's functions, collations
// and record locks.

#include <sqlite3.h>

#include <memory>

#include "engines/embedded/connection.h"
#include "engines/embedded/sqlite_names.h"

// Declared without the macros that redirect every call through it.
struct sqlite3_api_routines;

namespace {

using engines::embedded::Connection;

// Shows that the extension is loaded. Owns the connection: SQLite calls the destructor when the
// database is closed, after the last statement.
constexpr char kVersionFunction[] = "zavrecord_version";

void returnVersion(sqlite3_context* context, int, sqlite3_value**) {
    sqlite3_result_int(context, engines::embedded::kFormatVersion);
}

// Numbers as texts with all digits, for programs that fetch everything as text: an integer as
// "\1I5", a double as "\1R0.1"; other values unchanged.
void returnTagged(sqlite3_context* context, int, sqlite3_value** values) {
    char text[40];
    const auto give = [&](const char* made) {
        sqlite3_result_text(context, made, -1, SQLITE_TRANSIENT);
    };
    switch (sqlite3_value_type(values[0])) {
        case SQLITE_INTEGER:
            give(sqlite3_snprintf(sizeof text, text, "\1I%lld", sqlite3_value_int64(values[0])));
            break;
        case SQLITE_FLOAT:
            give(sqlite3_snprintf(sizeof text, text, "\1R%!.17g", sqlite3_value_double(values[0])));
            break;
        default:
            sqlite3_result_value(context, values[0]);
    }
}

void removeConnection(void* connection) {
    delete static_cast<Connection*>(connection);
}

bool isLoaded(sqlite3* db) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(db, "SELECT zavrecord_version()", -1, &statement, nullptr);
    sqlite3_finalize(statement);
    return code == SQLITE_OK;
}

}  // namespace

#if defined(_WIN32)
#define TV_EXPORT __declspec(dllexport)
#else
#define TV_EXPORT __attribute__((visibility("default")))
#endif

extern "C" TV_EXPORT int sqlite3_extension_init(sqlite3* db, char** message,
                                                const sqlite3_api_routines* /*routines*/);

extern "C" TV_EXPORT int sqlite3_extension_init(sqlite3* db, char** message,
                                                const sqlite3_api_routines* /*routines*/) {
    try {
        if (isLoaded(db))
            return SQLITE_OK_LOAD_PERMANENTLY;
        auto connection = std::make_unique<Connection>(db);
        // SQLite calls the destructor also when the call fails.
        const int code =
            sqlite3_create_function_v2(db, kVersionFunction, 0, SQLITE_UTF8, connection.release(),
                                       returnVersion, nullptr, nullptr, removeConnection);
        if (code != SQLITE_OK)
            engines::embedded::throwSqlite(db, code, QString());
        const int tagged =
            sqlite3_create_function_v2(db, "zavrecord_tagged", 1, SQLITE_UTF8, nullptr,
                                       returnTagged, nullptr, nullptr, nullptr);
        if (tagged != SQLITE_OK)
            engines::embedded::throwSqlite(db, tagged, QString());
        // Qt does not support unloading.
        return SQLITE_OK_LOAD_PERMANENTLY;
    } catch (const std::exception& error) {
        *message = sqlite3_mprintf("%s", error.what());
        return SQLITE_ERROR;
    }
}
