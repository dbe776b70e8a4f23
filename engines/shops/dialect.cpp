#include "engines/shops/dialect.h"

#include <array>
#include <cstdlib>

#include "engines/shops/sql_rewriting.h"

namespace engines::shops {

namespace {

using Text = Dialect::Text;
using Top = Dialect::Top;
using Whole = Dialect::Whole;

// The shops' engine accepts the product's SQL unchanged.
constexpr Dialect kShops{
    .name = "shops' engine",
    .databaseName = "",
    .text = Text::Windows1252,
    .top = Top::Kept,
    .whole = Whole::Bigint,
    .quotesDollarNames = false,
    .roundingDiffers = false,
    .emptyDateIsNull = false,
    .describesParameters = false,
    .taggedResults = false,
    .losesRows = false,
    .recordLocksStopSql = true,
    .attributes = nullptr,
    .onConnect = nullptr,
    .lockWait = nullptr,
};

// round(x, n) ignores n, floor() returns integers, 1.255 is a decimal. The driver's long holds 64
// bits; its other 64-bit type does not work. With some of the planner's join orders, a join with
// "or" and a subquery in its condition loses rows, a different number after each server start.
constexpr Dialect kVirtuoso{
    .name = "Virtuoso",
    .databaseName = "OpenLink Virtuoso",
    .text = Text::Utf8,
    .top = Top::Kept,
    .whole = Whole::WideLong,
    .quotesDollarNames = true,
    .roundingDiffers = true,
    .emptyDateIsNull = true,
    .describesParameters = true,
    .taggedResults = false,
    .losesRows = true,
    .recordLocksStopSql = false,
    .attributes = nullptr,
    .onConnect = nullptr,
    .lockWait = nullptr,
};

// Option 2: rows affected are rows found, as with other engines. round() rounds halves to even.
constexpr Dialect kMariaDb{
    .name = "MariaDB",
    .databaseName = "MariaDB",
    .text = Text::Utf8,
    .top = Top::Limit,
    .whole = Whole::Bigint,
    .quotesDollarNames = false,
    .roundingDiffers = true,
    .emptyDateIsNull = true,
    .describesParameters = false,
    .taggedResults = false,
    .losesRows = false,
    .recordLocksStopSql = false,
    .attributes = "OPTION=2",
    .onConnect = "SET SESSION sql_mode = 'ANSI_QUOTES'",
    .lockWait = "SET SESSION innodb_lock_wait_timeout = %1",
};

// The embedded engine's tables through its loadable module. To the module's record locks, other
// connections of this program are foreign.
constexpr Dialect kSqlite{
    .name = "SQLite",
    .databaseName = "SQLite",
    .text = Text::Utf8,
    .top = Top::Limit,
    .whole = Whole::Bigint,
    .quotesDollarNames = false,
    .roundingDiffers = false,
    .emptyDateIsNull = false,
    .describesParameters = false,
    .taggedResults = true,
    .losesRows = false,
    .recordLocksStopSql = true,
    .attributes = nullptr,
    .onConnect = nullptr,
    .lockWait = nullptr,
};

constexpr std::array<const Dialect*, 3> kKnown{&kVirtuoso, &kMariaDb, &kSqlite};

struct StateMeaning {
    const char* state;  // how the SQLSTATE begins
    ErrorKind kind;
};

// Longer prefixes first.
constexpr std::array<StateMeaning, 27> kStates{{
    {"HYT01", ErrorKind::NoConnection}, {"HYT00", ErrorKind::Locked},
    {"S1T00", ErrorKind::Locked},       {"28", ErrorKind::NoConnection},
    {"08", ErrorKind::NoConnection},    {"IM", ErrorKind::NoConnection},
    {"40", ErrorKind::Locked},          {"42S02", ErrorKind::NoSuchTable},
    {"S0002", ErrorKind::NoSuchTable},  {"42S22", ErrorKind::NoSuchField},
    {"S0022", ErrorKind::NoSuchField},  {"42", ErrorKind::Syntax},
    {"37000", ErrorKind::Syntax},       {"07002", ErrorKind::Syntax},
    {"21S01", ErrorKind::Syntax},       {"23", ErrorKind::DuplicateKey},
    {"25006", ErrorKind::ReadOnly},     {"HY014", ErrorKind::Engine},
    {"HY001", ErrorKind::Engine},       {"22001", ErrorKind::BadValue},
    {"22003", ErrorKind::BadValue},     {"22005", ErrorKind::BadValue},
    {"22007", ErrorKind::BadValue},     {"22008", ErrorKind::BadValue},
    {"22018", ErrorKind::BadValue},     {"22", ErrorKind::BadValue},
    {"54", ErrorKind::Syntax},
}};

// Codes of the server or its client library with a general SQLSTATE.
ErrorKind mariaDbKind(int native, ErrorKind otherwise) {
    switch (native) {
        case 1205:  // the lock wait is over
        case 1213:  // deadlock
            return ErrorKind::Locked;
        case 2002:  // cannot connect, server gone, lost in mid-query
        case 2003:
        case 2006:
        case 2013:
        case 2055:
        case 1927:  // killed
            return ErrorKind::NoConnection;
        case 1021:
        case 1114:
            return ErrorKind::DiskFull;
        case 1290:
        case 1036:
            return ErrorKind::ReadOnly;
        default:
            return otherwise;
    }
}

// SQLite's codes, with the driver's name before the message.
ErrorKind sqliteKind(int native, const QString& message) {
    const QString text = message.section(QLatin1Char(']'), 1);
    switch (native & 0xFF) {
        case 1:  // an error in the statement
            if (text.startsWith(QLatin1String("no such table")))
                return ErrorKind::NoSuchTable;
            if (text.startsWith(QLatin1String("no such column")) ||
                text.startsWith(QLatin1String("table ")))  // "table T has no column named C"
                return ErrorKind::NoSuchField;
            return ErrorKind::Syntax;
        case 5:  // busy, locked
        case 6:
            return ErrorKind::Locked;
        case 8:
            return ErrorKind::ReadOnly;
        case 10:
            return ErrorKind::Io;
        case 11:  // corrupt, not a database
        case 26:
            return ErrorKind::Damaged;
        case 13:
            return ErrorKind::DiskFull;
        case 14:  // cannot open
            return ErrorKind::NoConnection;
        case 19:  // a constraint; of the extended codes those of keys
            return native == 19 || native == 1555 || native == 2067 ? ErrorKind::DuplicateKey
                                                                    : ErrorKind::Engine;
        case 20:  // a value of another type
            return ErrorKind::BadValue;
        default:
            return ErrorKind::Engine;
    }
}

// Status codes of the shops' engine, which its SQL passes on.
ErrorKind shopsKind(int native, ErrorKind otherwise) {
    const int status = std::abs(native);
    if (status >= 3000 && status < 3200)  // the network between client and server
        return ErrorKind::NoConnection;
    switch (status) {
        case 5:
            return ErrorKind::DuplicateKey;
        case 18:
            return ErrorKind::DiskFull;
        case 46:
        case 94:
            return ErrorKind::ReadOnly;
        case 78:
        case 84:
        case 85:
            return ErrorKind::Locked;
        default:
            return otherwise;
    }
}

}  // namespace

QString taggedQuery(const QString& sql, const QStringList& columns) {
    QStringList names;
    QStringList results;
    for (const QString& column : columns) {
        names += QStringLiteral("c%1").arg(names.size());
        QString name = column;
        name.replace(QLatin1Char('"'), QLatin1String("\"\""));
        results += QStringLiteral("zavrecord_tagged(%1) AS \"%2\"").arg(names.last(), name);
    }
    return QStringLiteral("WITH q(%1) AS (%2\n) SELECT %3 FROM q")
        .arg(names.join(QLatin1Char(',')), sql, results.join(QLatin1Char(',')));
}

Value untagged(const QString& cell) {
    if (cell.startsWith(QLatin1String("\1I")))
        return cell.mid(2).toLongLong();
    if (cell.startsWith(QLatin1String("\1R")))
        return cell.mid(2).toDouble();
    return cell;
}

const Dialect& dialectFor(const QString& databaseName) {
    for (const Dialect* dialect : kKnown) {
        if (databaseName.startsWith(QLatin1String(dialect->databaseName), Qt::CaseInsensitive))
            return *dialect;
    }
    return kShops;
}

ErrorKind odbcErrorKind(const Dialect& dialect, const QByteArray& state, int native,
                        const QString& message) {
    ErrorKind kind = ErrorKind::Engine;
    for (const StateMeaning& meaning : kStates) {
        if (state.startsWith(meaning.state)) {
            kind = meaning.kind;
            break;
        }
    }
    if (&dialect == &kMariaDb)
        return mariaDbKind(native, kind);
    if (&dialect == &kSqlite && kind == ErrorKind::Engine)
        return sqliteKind(native, message);
    if (&dialect == &kShops && kind == ErrorKind::Engine)
        return shopsKind(native, kind);
    return kind;
}

RewrittenSql Dialect::rewritten(const QString& sql,
                                const std::function<bool(const QString&)>& isDateColumn) const {
    SqlTokens tokens = tokensOf(sql);
    RewrittenSql rewritten;
    rewritten.returnsRows = returnsRows(tokens);
    dropEnd(tokens);
    if (top == Top::Limit)
        topToLimit(tokens);
    if (roundingDiffers)
        expandRounding(tokens);
    if (losesRows)
        keepOrderOfTables(tokens);
    QList<bool> dates(tokens.size());
    if (emptyDateIsNull)
        dates = datesToNull(tokens, isDateColumn);
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        const SqlToken& token = tokens[i];
        if (token.kind == SqlToken::Parameter) {
            rewritten.parameters.append(token.text.mid(1));
            rewritten.dates.append(dates[i]);
            rewritten.text += QLatin1Char('?');
        } else if (quotesDollarNames && token.kind == SqlToken::Word &&
                   token.text.contains(QLatin1Char('$'))) {
            rewritten.text += QLatin1Char('"') + token.text + QLatin1Char('"');
        } else {
            rewritten.text += token.text;
        }
    }
    return rewritten;
}

}  // namespace engines::shops
