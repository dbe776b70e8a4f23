#include <QTime>
#include <limits>
#include <optional>
#include <utility>

#include "data/error.h"
#include "data/record/filter_node.h"
#include "data/record/record_codec.h"
#include "data/record/value_conversion.h"
#include "data/windows1252.h"

// Recursive descent over the filter language:
//   any        = all { "or" all }
//   all        = one { "and" one }
//   one        = "not" one | "(" any ")" | field [ operator value ]
//   value      = 'text' | number | "true" | "false"

namespace data {

namespace {

using Node = Filter::Node;

// Nesting of parentheses and `not`.
constexpr int kMaxDepth = 200;

struct Token {
    enum class Type { End, Word, Text, Number, Operator, Open, Close };
    Type type = Type::End;
    QString text;          // a quoted text without its quotes
    qsizetype column = 1;  // 1-based
};

bool isWordStart(QChar c) {
    return c.isLetter() || c == QLatin1Char('_') || c == QLatin1Char('$');
}

bool isWordPart(QChar c) {
    return isWordStart(c) || c.isDigit();
}

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

class Parser {
  public:
    Parser(const QString& text, const RecordLayout& layout) : m_text(text), m_layout(layout) {
        advance();
    }

    Node parse() {
        Node root = any();
        if (m_token.type != Token::Type::End)
            fail(m_token.column, QStringLiteral("odotettiin and, or tai lausekkeen loppua"));
        return root;
    }

  private:
    [[noreturn]] void fail(qsizetype column, const QString& what) const {
        throw DataError(ErrorKind::Syntax, m_layout.tableName(),
                        QStringLiteral("kohta %1: %2").arg(column).arg(what));
    }

    // --- tokens

    QChar at(qsizetype place) const {
        return place < m_text.size() ? m_text.at(place) : QChar(QChar::Null);
    }

    void advance() {
        while (m_at < m_text.size() && m_text.at(m_at).isSpace())
            ++m_at;
        m_token = Token{Token::Type::End, QString(), m_at + 1};
        if (m_at >= m_text.size())
            return;
        const QChar c = m_text.at(m_at);
        if (isWordStart(c))
            takeWord();
        else if (c == QLatin1Char('\''))
            takeText();
        else if (isDigit(c) || QStringLiteral("+-.,").contains(c))
            takeNumber();
        else if (QStringLiteral("<>=").contains(c))
            takeOperator();
        else if (c == QLatin1Char('(') || c == QLatin1Char(')'))
            take(c == QLatin1Char('(') ? Token::Type::Open : Token::Type::Close, 1);
        else
            fail(m_at + 1, QStringLiteral("merkki \"%1\" ei kuulu suodattimeen").arg(c));
    }

    void take(Token::Type type, qsizetype length) {
        m_token.type = type;
        m_token.text = m_text.mid(m_at, length);
        m_at += length;
    }

    void takeWord() {
        qsizetype end = m_at;
        while (end < m_text.size() && isWordPart(m_text.at(end)))
            ++end;
        take(Token::Type::Word, end - m_at);
    }

    void takeText() {
        m_token.type = Token::Type::Text;
        qsizetype place = m_at + 1;
        for (;; ++place) {
            if (place >= m_text.size())
                fail(m_token.column, QStringLiteral("lainausmerkin ' pari puuttuu"));
            if (m_text.at(place) == QLatin1Char('\'')) {
                if (at(place + 1) != QLatin1Char('\''))
                    break;
                ++place;
            }
            m_token.text.append(m_text.at(place));
        }
        m_at = place + 1;
    }

    void takeNumber() {
        qsizetype end = m_at;
        if (at(end) == QLatin1Char('+') || at(end) == QLatin1Char('-'))
            ++end;
        int digits = 0;
        int points = 0;
        for (; end < m_text.size(); ++end) {
            if (isDigit(m_text.at(end)))
                ++digits;
            else if (m_text.at(end) == QLatin1Char('.') || m_text.at(end) == QLatin1Char(','))
                ++points;
            else
                break;
        }
        if (digits == 0 || points > 1 || isWordPart(at(end)))
            fail(m_token.column, QStringLiteral("odotettiin lukua"));
        take(Token::Type::Number, end - m_at);
    }

    void takeOperator() {
        const QString two = m_text.mid(m_at, 2);
        const bool isTwo =
            two == QLatin1String("<>") || two == QLatin1String("<=") || two == QLatin1String(">=");
        take(Token::Type::Operator, isTwo ? 2 : 1);
    }

    bool isWord(const char* word) const {
        return m_token.type == Token::Type::Word &&
               m_token.text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    }

    // --- junctions

    Node any() { return junction(Node::Type::Or, "or", &Parser::all); }
    Node all() { return junction(Node::Type::And, "and", &Parser::one); }

    Node junction(Node::Type type, const char* word, Node (Parser::*part)()) {
        Node first = (this->*part)();
        if (!isWord(word))
            return first;
        Node node;
        node.type = type;
        node.children.push_back(std::move(first));
        while (isWord(word)) {
            advance();
            node.children.push_back((this->*part)());
        }
        return node;
    }

    Node one() {
        if (++m_depth > kMaxDepth)
            fail(m_token.column, QStringLiteral("liian monta sisäkkäistä sulkua tai not-sanaa"));
        Node node;
        if (isWord("not")) {
            advance();
            node.type = Node::Type::Not;
            node.children.push_back(one());
        } else if (m_token.type == Token::Type::Open) {
            advance();
            node = any();
            if (m_token.type != Token::Type::Close)
                fail(m_token.column, QStringLiteral("odotettiin sulkua )"));
            advance();
        } else {
            node = condition();
        }
        --m_depth;
        return node;
    }

    // --- conditions

    Node condition() {
        if (m_token.type != Token::Type::Word || isWord("and") || isWord("or"))
            fail(m_token.column, QStringLiteral("odotettiin kentän nimeä"));
        Node node;
        node.field = m_layout.indexOf(m_token.text);
        if (node.field < 0)
            throw DataError(ErrorKind::NoSuchField, m_layout.tableName(),
                            QStringLiteral("%1 (kohta %2)").arg(m_token.text).arg(m_token.column));
        const TFieldCacheItem& field = m_layout.field(node.field);
        const Token name = std::exchange(m_token, Token());
        advance();
        if (m_token.type != Token::Type::Operator) {
            if (field.kind() != Kind::Boolean)
                fail(m_token.column, QStringLiteral("odotettiin vertailua =, <>, <, <=, > tai >="));
            node.type = Node::Type::Integer;
            node.op = Node::Op::NotEqual;
            return node;
        }
        node.op = comparison();
        advance();
        const bool isConstant = m_token.type == Token::Type::Text ||
                                m_token.type == Token::Type::Number || isWord("true") ||
                                isWord("false");
        if (!isConstant)
            fail(m_token.column, QStringLiteral("odotettiin arvoa"));
        setConstant(node, field, name);
        advance();
        return node;
    }

    Node::Op comparison() const {
        const QString& text = m_token.text;
        if (text == QLatin1String("="))
            return Node::Op::Equal;
        if (text == QLatin1String("<>"))
            return Node::Op::NotEqual;
        if (text == QLatin1String("<"))
            return Node::Op::Less;
        if (text == QLatin1String("<="))
            return Node::Op::LessOrEqual;
        return text == QLatin1String(">") ? Node::Op::Greater : Node::Op::GreaterOrEqual;
    }

    void setConstant(Node& node, const TFieldCacheItem& field, const Token& name) const {
        switch (field.kind()) {
            case Kind::String:
                return setText(node);
            case Kind::Memo:
                if (field.storage != Storage::Blob)
                    return setText(node);
                break;
            case Kind::Boolean:
                return setBoolean(node);
            case Kind::SmallInt:
            case Kind::Integer:
            case Kind::Unsigned:
            case Kind::LargeInt:
            case Kind::Float:
                return setNumber(node, field);
            case Kind::Date:
                return setDate(node);
            case Kind::Time:
                return setTime(node);
            case Kind::Timestamp:
                return setTimestamp(node);
            default:
                break;
        }
        fail(name.column, QStringLiteral("kenttää %1 ei voi verrata").arg(name.text));
    }

    void setText(Node& node) const {
        node.type = Node::Type::Text;
        QString text = m_token.text;
        if (m_token.type == Token::Type::Text && text.endsWith(QLatin1Char('*'))) {
            node.isPrefix = true;
            text.chop(1);
        } else {
            while (text.endsWith(QLatin1Char(' ')))
                text.chop(1);
        }
        QByteArray byte;
        for (const QChar c : std::as_const(text)) {
            const bool known = toWindows1252(QString(c), byte);
            node.weights.push_back(known ? kCaseFoldWeight[static_cast<uchar>(byte.at(0))]
                                         : Node::kForeign);
        }
    }

    void setBoolean(Node& node) const {
        node.type = Node::Type::Integer;
        if (node.op != Node::Op::Equal && node.op != Node::Op::NotEqual)
            fail(m_token.column, QStringLiteral("totuusarvoa verrataan vain merkeillä = ja <>"));
        const QString text = m_token.text.trimmed().toCaseFolded();
        const bool isFalse = text == QLatin1String("false") || text == QLatin1String("0") ||
                             text == QLatin1String("e") || text == QLatin1String("ei");
        node.integer = isFalse ? 0 : 1;
        if (!isFalse && text != QLatin1String("true") && text != QLatin1String("1") &&
            text != QLatin1String("k") && text != QStringLiteral("kyllä"))
            fail(m_token.column, QStringLiteral("odotettiin true tai false"));
    }

    void setNumber(Node& node, const TFieldCacheItem& field) const {
        bool isNumber = false;
        const double number = numberFromText(m_token.text, &isNumber);
        if (!isNumber)
            fail(m_token.column, QStringLiteral("odotettiin lukua"));
        node.type = Node::Type::Number;
        node.number = field.kind() == Kind::Float ? inFieldPrecision(field, number) : number;
        if (field.kind() == Kind::Float)
            return;
        bool isWhole = false;
        const qint64 integer = m_token.text.trimmed().toLongLong(&isWhole);
        if (isWhole) {
            node.type = Node::Type::Integer;
            node.integer = integer;
        }
    }

    // 0.1 in a single-precision field is a different double: round the constant the same way.
    static double inFieldPrecision(const TFieldCacheItem& field, double number) {
        TFieldCacheItem alone = field;
        alone.offset = 0;
        QByteArray bytes(alone.storedLength, '\0');
        auto* record = reinterpret_cast<uchar*>(bytes.data());
        try {
            writeFloat(alone, record, number, QString());
        } catch (const DataError&) {
            return number;  // out of the field's range: compared unrounded
        }
        return readFloat(alone, record);
    }

    qint64 day(const QString& text) const {
        if (text.trimmed().isEmpty())
            return std::numeric_limits<qint64>::min();
        const QDate date = dateFromText(text);
        if (!date.isValid())
            fail(m_token.column,
                 QStringLiteral("odotettiin päiväystä '2024-09-01' tai '1.9.2024'"));
        return date.toJulianDay();
    }

    qint64 timeOfDay(const QString& text) const {
        QTime time = QTime::fromString(text, QStringLiteral("h:m:s"));
        if (!time.isValid())
            time = QTime::fromString(text, QStringLiteral("h:m"));
        if (!time.isValid())
            fail(m_token.column, QStringLiteral("odotettiin kellonaikaa '12:30' tai '12:30:00'"));
        return time.msecsSinceStartOfDay();
    }

    void setDate(Node& node) const {
        node.type = Node::Type::Date;
        if (m_token.text.trimmed().contains(QLatin1Char(' ')))
            fail(m_token.column,
                 QStringLiteral("odotettiin päiväystä '2024-09-01' tai '1.9.2024'"));
        node.integer = day(m_token.text);
    }

    void setTime(Node& node) const {
        node.type = Node::Type::Time;
        const QString text = m_token.text.trimmed();
        node.integer = text.isEmpty() ? -1 : timeOfDay(text);
    }

    void setTimestamp(Node& node) const {
        node.type = Node::Type::Timestamp;
        const QString text = m_token.text.trimmed();
        const QString time = text.section(QLatin1Char(' '), 1).trimmed();
        node.integer = day(text.section(QLatin1Char(' '), 0, 0));
        node.wholeDay = time.isEmpty();
        if (!node.wholeDay)
            node.milliseconds = timeOfDay(time);
    }

    const QString& m_text;
    const RecordLayout& m_layout;
    qsizetype m_at = 0;
    Token m_token;
    int m_depth = 0;
};

}  // namespace

Filter::Node parseFilter(const QString& expression, const RecordLayout& layout) {
    return Parser(expression, layout).parse();
}

}  // namespace data
