#include "engines/shops/write_target.h"

#include "data/error.h"
#include "engines/shops/sql_rewriting.h"
#include "engines/shops/sql_tokens.h"

namespace engines::shops {

namespace {

/// Iterates over the tokens, skipping blanks and comments.
class Cursor {
  public:
    explicit Cursor(const QString& sql) : m_sql(sql), m_tokens(tokensOf(sql)) {
        dropEnd(m_tokens);
        skipBlanks();
    }

    bool atEnd() const { return m_at >= m_tokens.size(); }
    const SqlToken& token() const {
        if (atEnd())
            fail();
        return m_tokens[m_at];
    }
    bool is(const char* word) const { return !atEnd() && token().is(QLatin1String(word)); }
    void advance() {
        ++m_at;
        skipBlanks();
    }
    bool skip(const char* word) {
        if (!is(word))
            return false;
        advance();
        return true;
    }
    void require(const char* word) {
        if (!skip(word))
            fail();
    }
    QString name() {
        QString text = token().text;
        if (token().kind == SqlToken::QuotedName)
            text = text.sliced(1, text.size() - 2);
        else if (token().kind != SqlToken::Word)
            fail();
        advance();
        return text;
    }
    SqlTokens rest() const { return m_tokens.sliced(m_at); }

    [[noreturn]] void fail() const {
        throw DataError(ErrorKind::Syntax, QString(),
                        QStringLiteral("the run journal cannot tell what is written by \"%1\"")
                            .arg(m_sql.trimmed()));
    }

  private:
    void skipBlanks() {
        while (!atEnd() && m_tokens[m_at].isBlankOrComment())
            ++m_at;
    }

    QString m_sql;
    SqlTokens m_tokens;
    qsizetype m_at = 0;
};

void readCondition(Cursor& at, WriteTarget& target) {
    int depth = 0;
    for (; !at.atEnd(); at.advance()) {
        depth += at.is("(") ? 1 : at.is(")") ? -1 : 0;
        if (depth == 0 && at.is("where"))
            break;
    }
    const SqlTokens condition = at.atEnd() ? SqlTokens() : at.rest();
    target.condition = u' ' + textOf(condition);
    for (const SqlToken& token : condition) {
        if (token.kind == SqlToken::Parameter)
            target.conditionParameters += token.text.sliced(1);
    }
}

QString readValue(Cursor& at) {
    QString text;
    for (int depth = 0; depth > 0 || !(at.is(",") || at.is(")")); at.advance()) {
        depth += at.is("(") ? 1 : at.is(")") ? -1 : 0;
        text += at.token().text;
    }
    return text;
}

template <typename Read>
QStringList readList(Cursor& at, Read read) {
    QStringList list;
    at.require("(");
    do
        list += read();
    while (at.skip(","));
    at.require(")");
    return list;
}

}  // namespace

std::optional<WriteTarget> writeTargetOf(const QString& sql) {
    if (returnsRows(tokensOf(sql)))
        return std::nullopt;
    Cursor at(sql);
    WriteTarget target{};
    if (at.skip("update")) {
        target.kind = WriteTarget::Kind::Update;
        target.table = at.name();
        at.require("set");
        readCondition(at, target);
        return target;
    }
    if (at.skip("delete")) {
        target.kind = WriteTarget::Kind::Delete;
        at.skip("from");
        target.table = at.name();
        readCondition(at, target);
        return target;
    }
    at.require("insert");
    at.require("into");
    target.kind = WriteTarget::Kind::Insert;
    target.table = at.name();
    if (at.is("("))
        target.columns = readList(at, [&at] { return at.name(); });
    at.require("values");
    target.values = readList(at, [&at] { return readValue(at); });
    if (!at.atEnd() || (!target.columns.isEmpty() && target.columns.size() != target.values.size()))
        at.fail();
    return target;
}

Value insertedValue(const QString& written, const std::map<QString, Value>& parameters) {
    if (written.startsWith(u':')) {
        const auto found = parameters.find(written.sliced(1).toLower());
        return found == parameters.end() ? Value() : found->second;
    }
    if (written.size() >= 2 && written.startsWith(u'\''))
        return written.sliced(1, written.size() - 2)
            .replace(QStringLiteral("''"), QStringLiteral("'"));
    if (written.compare(QLatin1String("null"), Qt::CaseInsensitive) == 0)
        return {};
    return written;
}

}  // namespace engines::shops
