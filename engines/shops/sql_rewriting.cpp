#include "engines/shops/sql_rewriting.h"

#include <QDate>
#include <algorithm>
#include <optional>

namespace engines::shops {

namespace {

constexpr QLatin1String kNull("NULL");

qsizetype nextSignificant(const SqlTokens& tokens, qsizetype at) {
    while (at < tokens.size() && tokens[at].isBlankOrComment())
        ++at;
    return at;
}

// Index of the parenthesis that closes `open`; -1 if missing.
qsizetype closing(const SqlTokens& tokens, qsizetype open) {
    int depth = 0;
    for (qsizetype i = open; i < tokens.size(); ++i) {
        if (tokens[i].text == QLatin1String("("))
            ++depth;
        else if (tokens[i].text == QLatin1String(")") && --depth == 0)
            return i;
    }
    return -1;
}

SqlToken symbols(const QString& text) {
    return {SqlToken::Symbol, text};
}

// A call's arguments, split at the commas between them.
QList<SqlTokens> argumentsOf(const SqlTokens& tokens, qsizetype open, qsizetype close) {
    QList<SqlTokens> arguments(1);
    int depth = 0;
    for (qsizetype i = open + 1; i < close; ++i) {
        const QString& text = tokens[i].text;
        if (text == QLatin1String(",") && depth == 0) {
            arguments.append(SqlTokens());
            continue;
        }
        depth += text == QLatin1String("(") ? 1 : text == QLatin1String(")") ? -1 : 0;
        arguments.last().append(tokens[i]);
    }
    return arguments;
}

SqlTokens flooredAsDouble(const SqlTokens& argument) {
    SqlTokens made{symbols(QStringLiteral("(FLOOR("))};
    made += argument;
    made.append(symbols(QStringLiteral(")+0e0)")));
    return made;
}

// floor(|e| * power + 0.5) / power with the sign of e.
SqlTokens roundedHalvesAway(const SqlTokens& argument, int decimals) {
    const QString power =
        QLatin1Char('1') + QString(std::abs(decimals), QLatin1Char('0')) + QStringLiteral("e0");
    const QLatin1Char times(decimals < 0 ? '/' : '*');
    const QLatin1Char back(decimals < 0 ? '*' : '/');
    SqlTokens scaled{symbols(QStringLiteral("ABS("))};
    scaled += argument;
    scaled.append(symbols(QStringLiteral(")%1%2+0.5e0").arg(times).arg(power)));
    SqlTokens made{symbols(QStringLiteral("(CASE WHEN ("))};
    made += argument;
    made.append(symbols(QStringLiteral(")<0 THEN -1e0 ELSE 1e0 END*")));
    made += flooredAsDouble(scaled);
    made.append(symbols(back + power + QLatin1Char(')')));
    return made;
}

// The expansion of the call at `name`; nullopt for other calls.
struct Call {
    SqlTokens spelt;
    qsizetype end;
};
std::optional<Call> spelt(const SqlTokens& tokens, qsizetype name) {
    const bool isRound = tokens[name].is(QLatin1String("round"));
    if (tokens[name].kind != SqlToken::Word ||
        !(isRound || tokens[name].is(QLatin1String("floor"))))
        return std::nullopt;
    const qsizetype open = nextSignificant(tokens, name + 1);
    if (open >= tokens.size() || tokens[open].text != QLatin1String("("))
        return std::nullopt;
    const qsizetype close = closing(tokens, open);
    if (close < 0)
        return std::nullopt;
    QList<SqlTokens> arguments = argumentsOf(tokens, open, close);
    for (SqlTokens& argument : arguments)
        expandRounding(argument);
    if (!isRound && arguments.size() == 1)
        return Call{flooredAsDouble(arguments[0]), close + 1};
    if (!isRound || arguments.size() > 2)
        return std::nullopt;
    bool isNumber = true;
    const int decimals =
        arguments.size() == 2 ? textOf(arguments[1]).trimmed().toInt(&isNumber) : 0;
    // more digits than a double has: left to the engine
    constexpr int kMaxDecimals = 30;
    if (!isNumber || decimals < -kMaxDecimals || decimals > kMaxDecimals)
        return std::nullopt;
    return Call{roundedHalvesAway(arguments[0], decimals), close + 1};
}

// The text of a quoted literal.
QString literal(const SqlToken& token) {
    QString text = token.text.mid(1, token.text.size() - 2);
    return text.replace(QLatin1String("''"), QLatin1String("'"));
}

QDate dateOf(const QString& text) {
    const QDate date = QDate::fromString(text, Qt::ISODate);
    return date.isValid() ? date : QDate::fromString(text, QStringLiteral("yyyyMMdd"));
}

// Compares a date column with a literal; the empty date sorts first.
QString comparison(const QString& column, const QString& sign, const QDate& date) {
    const bool withEmpty = sign == QLatin1String("<") || sign == QLatin1String("<=") ||
                           sign == QLatin1String("<>") || sign == QLatin1String("!=");
    if (date.isValid()) {
        const QString compared =
            QStringLiteral("%1 %2 {d '%3'}").arg(column, sign, date.toString(Qt::ISODate));
        return withEmpty ? QStringLiteral("(%1 OR %2 IS NULL)").arg(compared, column) : compared;
    }
    if (sign == QLatin1String("=") || sign == QLatin1String("<="))
        return column + QStringLiteral(" IS NULL");
    if (sign == QLatin1String("<"))
        return QStringLiteral("1 = 0");
    if (sign == QLatin1String(">="))
        return QStringLiteral("1 = 1");
    return column + QStringLiteral(" IS NOT NULL");
}

bool isComparison(const SqlToken& token) {
    static const QStringList signs{QStringLiteral("="), QStringLiteral("<>"), QStringLiteral("!="),
                                   QStringLiteral("<"), QStringLiteral("<="), QStringLiteral(">"),
                                   QStringLiteral(">=")};
    return token.kind == SqlToken::Symbol && signs.contains(token.text);
}

}  // namespace

bool returnsRows(const SqlTokens& tokens) {
    qsizetype at = 0;
    while (at < tokens.size() &&
           (tokens[at].isBlankOrComment() || tokens[at].text == QLatin1String("(")))
        ++at;
    if (at == tokens.size())
        return false;
    for (const char* word : {"select", "with", "show", "call", "values", "pragma", "explain"}) {
        if (tokens[at].is(QLatin1String(word)))
            return true;
    }
    return false;
}

void dropEnd(SqlTokens& tokens) {
    while (!tokens.isEmpty() &&
           (tokens.last().isBlankOrComment() || tokens.last().text == QLatin1String(";")))
        tokens.removeLast();
}

void topToLimit(SqlTokens& tokens) {
    qsizetype at = nextSignificant(tokens, 0);
    if (at >= tokens.size() || !tokens[at].is(QLatin1String("select")))
        return;
    at = nextSignificant(tokens, at + 1);
    if (at < tokens.size() &&
        (tokens[at].is(QLatin1String("all")) || tokens[at].is(QLatin1String("distinct"))))
        at = nextSignificant(tokens, at + 1);
    const qsizetype number = nextSignificant(tokens, at + 1);
    if (number >= tokens.size() || !tokens[at].is(QLatin1String("top")) ||
        tokens[number].kind != SqlToken::Number)
        return;
    const QString limit = QStringLiteral(" LIMIT ") + tokens[number].text;
    tokens.remove(at, number - at + 1);
    tokens.append(symbols(limit));
}

void expandRounding(SqlTokens& tokens) {
    SqlTokens made;
    for (qsizetype at = 0; at < tokens.size();) {
        if (std::optional<Call> call = spelt(tokens, at)) {
            made += call->spelt;
            at = call->end;
            continue;
        }
        made.append(tokens[at++]);
        SqlToken& last = made.last();
        if (last.kind == SqlToken::Number && last.text.contains(QLatin1Char('.')) &&
            !last.text.contains(QLatin1Char('e'), Qt::CaseInsensitive))
            last.text += QStringLiteral("e0");
    }
    tokens = made;
}

void keepOrderOfTables(SqlTokens& tokens) {
    const auto selects = std::count_if(tokens.begin(), tokens.end(), [](const SqlToken& token) {
        return token.kind == SqlToken::Word && token.is(QLatin1String("select"));
    });
    if (selects > 1 && returnsRows(tokens))
        tokens.append(symbols(QStringLiteral(" option (order)")));
}

QList<bool> datesToNull(SqlTokens& tokens,
                        const std::function<bool(const QString&)>& isDateColumn) {
    SqlTokens made;
    QList<bool> dates;
    bool sets = false;  // in the assignments of an UPDATE
    const auto add = [&](const SqlToken& token, bool isDate) {
        made.append(token);
        dates.append(isDate);
    };
    for (qsizetype at = 0; at < tokens.size(); ++at) {
        const SqlToken& column = tokens[at];
        const qsizetype sign = nextSignificant(tokens, at + 1);
        const qsizetype value = nextSignificant(tokens, sign + 1);
        const bool isWord = column.kind == SqlToken::Word;
        sets = (sets || (isWord && column.is(QLatin1String("set")))) &&
               !(isWord && column.is(QLatin1String("where")));
        if (!isWord || value >= tokens.size() || !isComparison(tokens[sign]) ||
            (tokens[value].kind != SqlToken::Text && tokens[value].kind != SqlToken::Parameter) ||
            !isDateColumn(column.text)) {
            add(column, false);
            continue;
        }
        const bool isParameter = tokens[value].kind == SqlToken::Parameter;
        const QString text = isParameter ? QString() : literal(tokens[value]);
        const QDate date = dateOf(text);
        if (isParameter || (!date.isValid() && !text.isEmpty())) {
            for (qsizetype i = at; i <= value; ++i)
                add(tokens[i], isParameter && i == value);
        } else if (sets) {
            add(column, false);
            add(symbols(date.isValid()
                            ? QStringLiteral(" = {d '%1'}").arg(date.toString(Qt::ISODate))
                            : QStringLiteral(" = ") + kNull),
                false);
        } else {
            // "table.column": the table's name is already out
            QString name = column.text;
            if (made.size() >= 2 && made.last().text == QLatin1String(".")) {
                name = made[made.size() - 2].text + QLatin1Char('.') + name;
                made.resize(made.size() - 2);
                dates.resize(made.size());
            }
            add(symbols(comparison(name, tokens[sign].text, date)), false);
        }
        at = value;
    }
    tokens = made;
    return dates;
}

}  // namespace engines::shops
