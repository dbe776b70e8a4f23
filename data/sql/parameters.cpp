#include "data/sql/sql_scan.h"
#include "data/sql/uni_query.h"

namespace data {

namespace {

bool isNameStart(QChar c) {
    return c.isLetter() || c == QLatin1Char('_');
}

bool isNamePart(QChar c) {
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

}  // namespace

qsizetype endOfSqlPiece(const QString& sql, qsizetype at) {
    const auto after = [&](QLatin1String end, qsizetype from) {
        const qsizetype found = sql.indexOf(end, from);
        return found < 0 ? sql.size() : found + end.size();
    };
    const QChar c = sql.at(at);
    if (c == QLatin1Char('\''))
        return after(QLatin1String("'"), at + 1);
    if (c == QLatin1Char('"'))
        return after(QLatin1String("\""), at + 1);
    const QStringView rest = QStringView(sql).mid(at, 2);
    if (rest == QLatin1String("--"))
        return after(QLatin1String("\n"), at);
    if (rest == QLatin1String("/*"))
        return after(QLatin1String("*/"), at + 2);
    return at + 1;
}

qsizetype sqlParameterLength(const QString& sql, qsizetype at) {
    if (sql.at(at) != QLatin1Char(':') || at + 1 >= sql.size() || !isNameStart(sql.at(at + 1)))
        return 0;
    qsizetype end = at + 1;
    while (end < sql.size() && isNamePart(sql.at(end)))
        ++end;
    return end - at;
}

QStringList parameterNames(const QString& sql) {
    QStringList names;
    for (qsizetype at = 0; at < sql.size(); at = endOfSqlPiece(sql, at)) {
        const qsizetype length = sqlParameterLength(sql, at);
        const QString name = sql.mid(at + 1, length - 1);
        if (length > 0 && !names.contains(name, Qt::CaseInsensitive))
            names.append(name);
    }
    return names;
}

}  // namespace data
