#include "engines/embedded/sql_text.h"

#include <QRegularExpression>

namespace engines::embedded {

namespace {

// Position of the last character that is not blank, semicolon or comment; -1 if there is none.
qsizetype lastSignificant(const QString& sql) {
    qsizetype last = -1;
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const QChar c = sql[i];
        const QChar following = i + 1 < sql.size() ? sql[i + 1] : QChar();
        if (c == QLatin1Char('-') && following == QLatin1Char('-')) {
            const qsizetype end = sql.indexOf(QLatin1Char('\n'), i);
            if (end < 0)
                break;
            i = end;
        } else if (c == QLatin1Char('/') && following == QLatin1Char('*')) {
            const qsizetype end = sql.indexOf(QLatin1String("*/"), i + 2);
            if (end < 0)
                break;
            i = end + 1;
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"') || c == QLatin1Char('`')) {
            const qsizetype end = sql.indexOf(c, i + 1);  // a doubled quote starts the next piece
            if (end < 0)
                return sql.size() - 1;
            i = last = end;
        } else if (c != QLatin1Char(';') && !c.isSpace()) {
            last = i;
        }
    }
    return last;
}

}  // namespace

QString engineText(const QString& sql) {
    static const QRegularExpression top(
        QStringLiteral("^((?:\\s|--[^\\n]*\\n|/\\*.*?\\*/)*select\\s+(?:(?:all|distinct)\\s+)?)"
                       "top\\s+(\\d+)\\s+"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = top.match(sql);
    if (!match.hasMatch())
        return sql;
    QString text = sql.left(lastSignificant(sql) + 1);
    text.replace(0, match.capturedLength(), match.captured(1));
    return text + QStringLiteral(" LIMIT ") + match.captured(2);
}

}  // namespace engines::embedded
