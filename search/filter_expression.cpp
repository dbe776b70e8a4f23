#include "search/filter_expression.h"

#include <algorithm>

namespace search {

namespace {

constexpr int kMaxOperator = 10;
const QString kCentralStore = QStringLiteral("Keskusvarasto");
const QString kCentralStoreTrue = QStringLiteral("Keskusvarasto=true");

bool consistsOf(const QString& text, QLatin1String allowed) {
    return !text.isEmpty() && std::all_of(text.begin(), text.end(),
                                          [allowed](QChar c) { return allowed.contains(c); });
}

bool isInteger(data::Kind kind) {
    return kind == data::Kind::SmallInt || kind == data::Kind::Integer ||
           kind == data::Kind::Unsigned || kind == data::Kind::LargeInt;
}

QString quoted(QString text) {
    text.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + text;
}

}  // namespace

SearchText asetaSuodatin(const QString& dropped, const QString& inEdit) {
    const bool anywhere =
        dropped.startsWith(QLatin1Char('*')) || inEdit.startsWith(QLatin1Char('#'));
    return {anywhere ? dropped.mid(1) : dropped, anywhere};
}

bool isRecordSearch(const QString& dropped, bool onIndicator) {
    return onIndicator || dropped.startsWith(QLatin1Char('*')) ||
           dropped.startsWith(QLatin1Char('#'));
}

DropAction dropAction(const QString& text, const DropTarget& target) {
    if (auto own = ownExpression(text))
        return {DropAction::Kind::Filter, *own};
    const QString name = splitOperator(text).value;
    if (const auto& lookup = target.lookup; lookup && (!lookup->digitsOnly || isDigitText(name))) {
        const bool asNumber = target.localKind && target.localKind != data::Kind::String &&
                              isNumericText(name) && !lookup->digitsOnly;
        if (!asNumber)
            return {DropAction::Kind::Lookup, name};
        return {DropAction::Kind::Filter,
                dropExpression(lookup->localField, *target.localKind, text)};
    }
    if (!target.kind)
        return {DropAction::Kind::RecordSearch};
    return {DropAction::Kind::Filter, dropExpression(target.field, *target.kind, text)};
}

DroppedText splitOperator(const QString& text) {
    int length = 0;
    while (length < text.size() && length < kMaxOperator &&
           QLatin1String("<>=").contains(text[length]))
        ++length;
    return {length > 0 ? text.left(length) : QStringLiteral("="), text.mid(length)};
}

std::optional<QString> ownExpression(const QString& text) {
    return text.startsWith(QLatin1Char('!')) ? std::optional(text.mid(1)) : std::nullopt;
}

bool isNumericText(const QString& text) {
    return consistsOf(text, QLatin1String("0123456789,.-+"));
}

bool isDigitText(const QString& text) {
    return consistsOf(text, QLatin1String("0123456789-"));
}

QString dropExpression(const QString& field, data::Kind kind, const QString& text) {
    const DroppedText dropped = splitOperator(text);
    if (isInteger(kind) && isNumericText(dropped.value))
        return field + dropped.op + dropped.value;
    QString expression = field + dropped.op + quoted(dropped.value);
    if (kind == data::Kind::String)
        expression += QLatin1Char('*');
    return expression + QLatin1Char('\'');
}

QString lookupTerm(const QString& field, const QString& key) {
    return field + QLatin1Char('=') + quoted(key) + QStringLiteral("' ");
}

QString noRecord(const QString& field) {
    return QStringLiteral("%1='0' and %1<>'0'").arg(field);
}

QString composedFilter(const QString& base, const QString& user, bool showPassive) {
    if (!showPassive && !base.isEmpty())
        return user.isEmpty() ? base : base + QStringLiteral(" and (") + user + QLatin1Char(')');
    if (!base.contains(kCentralStore, Qt::CaseInsensitive) ||
        user.contains(kCentralStore, Qt::CaseInsensitive))
        return user;
    return user.isEmpty() ? kCentralStoreTrue
                          : kCentralStoreTrue + QStringLiteral(" and (") + user + QLatin1Char(')');
}

}  // namespace search
