#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

#include "data/error.h"
#include "data/value.h"
#include "engines/data_names.h"

namespace engines::shops {

/// A statement as one driver takes it.
struct RewrittenSql {
    QString text;            ///< parameters written as "?"
    QStringList parameters;  ///< the name of each "?", without the colon, as written
    QList<bool> dates;       ///< of each "?": it is a date where the empty date is NULL
    bool returnsRows = false;
};

/// What is peculiar to a SQL engine and its ODBC driver; callers write the shops' engine's SQL and
/// know none of it.
struct Dialect {
    enum class Text { Windows1252, Utf8 };
    enum class Top { Kept, Limit };
    enum class Whole { Bigint, WideLong };

    const char* name;          ///< for traces and messages
    const char* databaseName;  ///< how the driver's SQL_DBMS_NAME begins, case ignored
    Text text;                 ///< 8-bit texts of the ANSI calls
    Top top;                   ///< "select top N" or "... LIMIT N"
    Whole whole;  ///< whole numbers as SQL_C_SBIGINT, or as SQL_C_SLONG that takes 64 bits
    bool quotesDollarNames;    ///< x$file has to be "x$file"
    bool roundsItsOwnWay;      ///< round() and floor() give something else: spelt out
    bool emptyDateIsNull;      ///< date columns hold NULL where the shops' hold the empty date
    bool describesParameters;  ///< and takes no text for a date or time among them
    bool taggedResults;        ///< doubles come in too few digits: see taggedQuery()
    bool losesRows;            ///< unless a query with subqueries joins its tables as they stand
    bool recordLocksStopSql;   ///< a record lock of the client library stops this program's SQL too
    const char* attributes;    ///< more of the connection string; nullptr: none
    const char* onConnect;     ///< statement run on each new connection; nullptr: none
    const char* lockWait;      ///< statement that sets the lock wait, %1 its seconds; nullptr: none

    /// `isDateColumn` is asked when emptyDateIsNull: whether a column of that name is a date.
    RewrittenSql rewritten(const QString& sql,
                           const std::function<bool(const QString&)>& isDateColumn) const;
};

/// A query whose rows are those of `sql` with every number as a tagged text in all its digits
/// (by the loadable module's function zavrecord_tagged), and what such a cell means.
QString taggedQuery(const QString& sql, const QStringList& columns);
Value untagged(const QString& cell);

/// The dialect of a driver by its SQL_DBMS_NAME; an unknown one is taken for the shops' engine.
const Dialect& dialectFor(const QString& databaseName);

/// What a driver's error means. `native` and `message` are the driver's own.
ErrorKind odbcErrorKind(const Dialect& dialect, const QByteArray& state, int native,
                        const QString& message);

}  // namespace engines::shops
