#include "engines/shops/sql_tokens.h"

#include "data/sql/sql_scan.h"

namespace engines::shops {

namespace {

bool isWordPart(QChar c) {
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('$') ||
           c == QLatin1Char('#');
}

template <typename Test>
qsizetype skipWhile(const QString& sql, qsizetype at, Test test) {
    while (at < sql.size() && test(sql.at(at)))
        ++at;
    return at;
}

// Digits, a decimal point, an exponent.
qsizetype endOfNumber(const QString& sql, qsizetype at) {
    const auto isDigit = [](QChar c) { return c.isDigit(); };
    at = skipWhile(sql, at, isDigit);
    if (at < sql.size() && sql.at(at) == QLatin1Char('.'))
        at = skipWhile(sql, at + 1, isDigit);
    if (at < sql.size() && sql.at(at).toLower() == QLatin1Char('e')) {
        qsizetype digits = at + 1;
        if (digits < sql.size() &&
            (sql.at(digits) == QLatin1Char('+') || sql.at(digits) == QLatin1Char('-')))
            ++digits;
        const qsizetype end = skipWhile(sql, digits, isDigit);
        if (end > digits)
            at = end;
    }
    return at;
}

}  // namespace

SqlTokens tokensOf(const QString& sql) {
    SqlTokens tokens;
    for (qsizetype at = 0; at < sql.size();) {
        const QChar c = sql.at(at);
        qsizetype end = endOfSqlPiece(sql, at);
        SqlToken::Kind kind = SqlToken::Symbol;
        if (c == QLatin1Char('\'')) {
            kind = SqlToken::Text;
            while (end < sql.size() && sql.at(end) == QLatin1Char('\''))  // a doubled quote
                end = endOfSqlPiece(sql, end);
        } else if (c == QLatin1Char('"')) {
            kind = SqlToken::QuotedName;
        } else if (end > at + 1) {
            kind = SqlToken::Comment;
        } else if (c.isSpace()) {
            kind = SqlToken::Blank;
        } else if (const qsizetype length = sqlParameterLength(sql, at); length > 0) {
            kind = SqlToken::Parameter;
            end = at + length;
        } else if (c.isDigit()) {
            kind = SqlToken::Number;
            end = endOfNumber(sql, at);
        } else if (isWordPart(c)) {
            kind = SqlToken::Word;
            end = skipWhile(sql, at, isWordPart);
        } else if (QStringLiteral("<>!").contains(c)) {
            end =
                skipWhile(sql, at, [](QChar part) { return QStringLiteral("<>=").contains(part); });
            end = std::max(end, at + 1);
        }
        tokens.append({kind, sql.mid(at, end - at)});
        at = end;
    }
    return tokens;
}

QString textOf(const SqlTokens& tokens) {
    QString text;
    for (const SqlToken& token : tokens)
        text += token.text;
    return text;
}

}  // namespace engines::shops
