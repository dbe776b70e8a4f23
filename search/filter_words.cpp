#include "search/filter_words.h"

namespace search {

namespace {

constexpr int kMostNames = 3;

QString beginsWith(const QString& heading, const QString& text) {
    return QStringLiteral("%1 alkaa \"%2\"").arg(heading, text);
}

}  // namespace

QString filterWords(const QString& heading, data::Kind kind, const QString& text) {
    if (const auto own = ownExpression(text))
        return own->trimmed();
    const DroppedText dropped = splitOperator(text);
    if (kind != data::Kind::String)
        return QStringList({heading, dropped.op, dropped.value}).join(u' ');
    if (dropped.op == QLatin1String("="))
        return beginsWith(heading, dropped.value);
    return QStringLiteral("%1 %2 \"%3\"").arg(heading, dropped.op, dropped.value);
}

QString lookupWords(const QString& heading, const QString& name, const QStringList& found) {
    if (found.isEmpty())
        return beginsWith(heading, name) + QStringLiteral(" (ei löydy)");
    QString words = heading + QStringLiteral(" = ") + found.mid(0, kMostNames).join(u", ");
    if (found.size() > kMostNames)
        words += QStringLiteral(" ja %1 muuta").arg(found.size() - kMostNames);
    return words;
}

QString searchWords(const QString& heading, const SearchText& search) {
    return search.anywhere ? QStringLiteral("%1 sisältää \"%2\"").arg(heading, search.text)
                           : beginsWith(heading, search.text);
}

}  // namespace search
