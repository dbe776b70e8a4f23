#pragma once

#include <sqlite3.h>

#include <QByteArrayView>
#include <exception>
#include <functional>

#include "data/engine/engine.h"
#include "engines/data_names.h"
#include "engines/sqlite/sqlite_handle.h"

namespace engines::embedded {

/// SQL function that shows records to a RecordVisit where SQLite has them in memory: a row of a
/// result would be copied first. True ends the visit.
inline constexpr char kVisitFunction[] = "zdb_visit";

/// What kVisitFunction(visit, id, data) calls; bound to its first parameter.
struct RecordVisit {
    /// The bytes are valid only during the call. @return false to stop.
    std::function<bool(RecordId, QByteArrayView)> see;
    std::exception_ptr failure;  ///< what `see` has thrown; ends the visit

    /// Runs a SELECT whose condition calls the function with its parameter 1. Rethrows `failure`.
    void run(sqlite::Statement& rows);
};

/// @throws DataError.
void registerRecordVisit(sqlite3* db);

}  // namespace engines::embedded
