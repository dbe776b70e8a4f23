#include "tools/zavdb/sql_guard.h"

#include <QStringList>
#include <vector>

namespace tools {

namespace {

enum class TokenKind { Word, Name, Text, Sign };

struct Token {
    TokenKind kind = TokenKind::Sign;
    QString text;  // a name or text without its quotes
};

bool isWordCharacter(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'$';
}

/// The closing character of a quoted token that begins with `open`; null when none does.
QChar closingQuote(QChar open) {
    switch (open.unicode()) {
        case u'\'':
        case u'"':
        case u'`':
            return open;
        case u'[':
            return u']';
        default:
            return QChar();
    }
}

/// Splits a statement, without comments and blanks. @return false when a quote or comment is open
/// at the end.
bool tokenize(const QString& sql, std::vector<Token>& tokens) {
    qsizetype i = 0;
    while (i < sql.size()) {
        const QChar c = sql[i];
        if (c.isSpace()) {
            ++i;
        } else if (c == u'-' && sql.mid(i, 2) == u"--") {
            const qsizetype end = sql.indexOf(u'\n', i);
            i = end < 0 ? sql.size() : end + 1;
        } else if (c == u'/' && sql.mid(i, 2) == u"/*") {
            const qsizetype end = sql.indexOf(QLatin1String("*/"), i + 2);
            if (end < 0)
                return false;
            i = end + 2;
        } else if (const QChar close = closingQuote(c); !close.isNull()) {
            Token token{c == u'\'' ? TokenKind::Text : TokenKind::Name, {}};
            for (++i;; ++i) {
                if (i >= sql.size())
                    return false;
                if (sql[i] != close)
                    token.text += sql[i];
                else if (close != u']' && i + 1 < sql.size() && sql[i + 1] == close)
                    token.text += sql[i++];
                else
                    break;
            }
            ++i;
            tokens.push_back(token);
        } else if (isWordCharacter(c)) {
            qsizetype end = i;
            while (end < sql.size() && isWordCharacter(sql[end]))
                ++end;
            tokens.push_back({TokenKind::Word, sql.mid(i, end - i)});
            i = end;
        } else {
            tokens.push_back({TokenKind::Sign, QString(c)});
            ++i;
        }
    }
    return true;
}

bool isOneOf(const Token& token, const QStringList& words) {
    return token.kind == TokenKind::Word && words.contains(token.text, Qt::CaseInsensitive);
}

bool isEnginesOwn(const QString& name) {
    for (const char* prefix : {"rec_", "sqlite_", "pragma_"})
        if (name.startsWith(QLatin1String(prefix), Qt::CaseInsensitive))
            return true;
    return false;
}

/// A quoted text stands for a name where the grammar wants a table's.
bool standsForTable(const std::vector<Token>& tokens, size_t index) {
    static const QStringList before = {QStringLiteral("from"), QStringLiteral("join"),
                                       QStringLiteral("into"), QStringLiteral("update"),
                                       QStringLiteral("in")};
    if (index == 0)
        return false;
    const Token& previous = tokens[index - 1];
    if (previous.kind == TokenKind::Sign && previous.text == u".")
        return true;
    if (isOneOf(previous, before))
        return true;
    // "from a, 'b'": a comma counts when only tables have come since FROM
    for (size_t i = index; i-- > 0;) {
        const Token& token = tokens[i];
        if (isOneOf(token, {QStringLiteral("from"), QStringLiteral("join")}))
            return true;
        if (token.kind == TokenKind::Sign && token.text != u"," && token.text != u"(" &&
            token.text != u".")
            return false;
        if (isOneOf(token, {QStringLiteral("where"), QStringLiteral("on"), QStringLiteral("select"),
                            QStringLiteral("values"), QStringLiteral("set"), QStringLiteral("by"),
                            QStringLiteral("and"), QStringLiteral("or"), QStringLiteral("having"),
                            QStringLiteral("limit")}))
            return false;
    }
    return false;
}

}  // namespace

QString statementProblem(const QString& sql) {
    std::vector<Token> tokens;
    if (!tokenize(sql, tokens))
        return QStringLiteral("the statement ends inside a quoted text or a comment");
    while (!tokens.empty() && tokens.back().kind == TokenKind::Sign && tokens.back().text == u";")
        tokens.pop_back();
    if (tokens.empty())
        return QStringLiteral("the statement is empty");
    static const QStringList allowed = {QStringLiteral("select"), QStringLiteral("insert"),
                                        QStringLiteral("update"), QStringLiteral("delete"),
                                        QStringLiteral("with")};
    if (!isOneOf(tokens.front(), allowed))
        return QStringLiteral(
                   "only SELECT, INSERT, UPDATE and DELETE statements are run, not \"%1\"")
            .arg(tokens.front().text);
    for (size_t i = 0; i < tokens.size(); ++i) {
        const Token& token = tokens[i];
        if (token.kind == TokenKind::Sign && token.text == u";")
            return QStringLiteral("only one statement is run at a time");
        const bool name = token.kind == TokenKind::Word || token.kind == TokenKind::Name ||
                          (token.kind == TokenKind::Text && standsForTable(tokens, i));
        if (name && isEnginesOwn(token.text))
            return QStringLiteral("\"%1\" is the engine's own and no table of the company")
                .arg(token.text);
    }
    return {};
}

}  // namespace tools
