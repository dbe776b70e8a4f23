#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

#include "data/error.h"
#include "data/value.h"
#include "engines/data_names.h"

namespace engines::shops {

/// A statement in the form that one driver accepts.
struct RewrittenSql {
    QString text;            ///< parameters written as "?"
    QStringList parameters;  ///< the name of each "?" as written, without the colon
    QList<bool> dates;       ///< of each "?": a date, where the empty date is NULL
    bool returnsRows = false;
};

/// Differences of a SQL engine and its ODBC driver. Callers always write the shops' engine's SQL.
struct Dialect {
    enum class Text { Windows1252, Utf8 };
    enum class Top { Kept, Limit };
    enum class Whole { Bigint, WideLong };

    const char* name;          ///< for traces and messages
    const char* databaseName;  ///< prefix of the driver's SQL_DBMS_NAME, ignoring case
    Text text;                 ///< 8-bit texts of the ANSI calls
    Top top;                   ///< "select top N" or "... LIMIT N"
    Whole whole;               ///< integers as SQL_C_SBIGINT, or as a 64-bit SQL_C_SLONG
    bool quotesDollarNames;    ///< x$file must be quoted
    bool roundingDiffers;      ///< round() and floor() differ: expand them
    bool emptyDateIsNull;      ///< date columns hold NULL for the empty date
    bool describesParameters;  ///< and accepts no text for dates and times
    bool taggedResults;        ///< doubles lose digits: see taggedQuery()
    bool losesRows;            ///< unless queries with subqueries keep their table order
    bool recordLocksStopSql;   ///< a client library record lock also blocks this program's SQL
    const char* attributes;    ///< added to the connection string; nullptr: none
    const char* onConnect;     ///< statement for each new connection; nullptr: none
    const char* lockWait;      ///< statement that sets the lock wait, %1 its seconds; nullptr: none

    /// `isDateColumn`: whether a column of that name is a date; used with emptyDateIsNull.
    RewrittenSql rewritten(const QString& sql,
                           const std::function<bool(const QString&)>& isDateColumn) const;
};

/// A query with the rows of `sql` whose numbers are tagged texts with all digits (zavrecord_tagged
/// of the loadable module); untagged() converts such a cell back.
QString taggedQuery(const QString& sql, const QStringList& columns);
Value untagged(const QString& cell);

/// Returns the dialect of an SQL_DBMS_NAME; unknown names get the shops' engine's.
const Dialect& dialectFor(const QString& databaseName);

/// Classifies a driver's error. `native` and `message` come from the driver.
ErrorKind odbcErrorKind(const Dialect& dialect, const QByteArray& state, int native,
                        const QString& message);

}  // namespace engines::shops
