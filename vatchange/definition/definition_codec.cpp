#include "vatchange/definition/definition_codec.h"

#include <QLocale>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <optional>

namespace vatchange {

namespace {

const QString kDateFormat = QStringLiteral("yyyy-MM-dd");

// --- value to text

QString textOf(bool value) {
    return value ? QStringLiteral("1") : QStringLiteral("0");
}
QString textOf(int value) {
    return QString::number(value);
}
QString textOf(qint64 value) {
    return QString::number(value);
}
QString textOf(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}
QString textOf(const QString& value) {
    return value;
}
QString textOf(const QDate& value) {
    return value.isValid() ? value.toString(kDateFormat) : QString();
}
template <typename T>
QString textOf(const std::optional<T>& value) {
    return value ? textOf(*value) : QString();
}
QString textOf(const std::vector<int>& numbers) {
    QStringList texts;
    for (const int number : numbers)
        texts.append(QString::number(number));
    return texts.join(u',');
}
QString textOf(RoundingRule rule) {
    return QString::number(static_cast<int>(rule));
}
QString textOf(RoundingStep step) {
    return QString::number(static_cast<int>(step));
}

// --- text to value; nullopt if unreadable

std::optional<qint64> number(const QString& text, int mostDigits) {
    static const QRegularExpression kDigits(QStringLiteral("^[0-9]+$"));
    if (text.size() > mostDigits || !kDigits.match(text).hasMatch())
        return std::nullopt;
    return text.toLongLong();
}

template <typename T>
std::optional<T> read(const ChangeField& field, const QString& text);

template <>
std::optional<bool> read(const ChangeField& /*field*/, const QString& text) {
    if (text != QLatin1String("0") && text != QLatin1String("1"))
        return std::nullopt;
    return text == QLatin1String("1");
}

template <>
std::optional<int> read(const ChangeField& field, const QString& text) {
    const auto value = number(text, field.digits);
    return value ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

template <>
std::optional<qint64> read(const ChangeField& field, const QString& text) {
    return text.isEmpty() ? std::optional<qint64>(0) : number(text, field.digits);
}

template <>
std::optional<double> read(const ChangeField& field, const QString& text) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    const bool bounded = field.kind == FieldKind::Amount || field.kind == FieldKind::MostAmount;
    if (bounded && (value < 0 || value > field.highest))
        return std::nullopt;
    return value;
}

template <>
std::optional<QDate> read(const ChangeField& /*field*/, const QString& text) {
    const QDate date = QDate::fromString(text, kDateFormat);
    return date.isValid() || text.isEmpty() ? std::optional(date) : std::nullopt;
}

// Numbers in ascending order, each once, as the list of groups shows them.
template <>
std::optional<std::vector<int>> read(const ChangeField& /*field*/, const QString& text) {
    std::vector<int> numbers;
    for (const QString& part : text.split(u',', Qt::SkipEmptyParts)) {
        bool ok = false;
        numbers.push_back(part.trimmed().toInt(&ok));
        if (!ok)
            return std::nullopt;
    }
    if (numbers.empty() && !text.isEmpty())
        return std::nullopt;  // an empty list would mean all groups
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

template <typename Enumeration>
std::optional<Enumeration> readChoice(const ChangeField& field, const QString& text) {
    bool ok = false;
    const int index = text.toInt(&ok);
    if (!ok || index < 0 || index >= field.items.size())
        return std::nullopt;
    return static_cast<Enumeration>(index);
}

template <>
std::optional<RoundingRule> read(const ChangeField& field, const QString& text) {
    return readChoice<RoundingRule>(field, text);
}

template <>
std::optional<RoundingStep> read(const ChangeField& field, const QString& text) {
    return readChoice<RoundingStep>(field, text);
}

template <typename T>
bool assign(const ChangeField& field, const DefinitionMember<T>& member, const QString& text,
            ChangeDefinition& definition) {
    const std::optional<T> value = read<T>(field, text.trimmed());
    if (value)
        member.of(definition) = *value;
    return value.has_value();
}

template <typename T>
bool assign(const ChangeField& field, const DefinitionMember<std::optional<T>>& member,
            const QString& text, ChangeDefinition& definition) {
    std::optional<T> value;
    if (!text.trimmed().isEmpty()) {
        value = read<T>(field, text.trimmed());
        if (!value)
            return false;
    }
    member.of(definition) = value;
    return true;
}

// Texts are kept as they are; the key of a price source is trimmed, empty means "0".
bool assign(const ChangeField& field, const DefinitionMember<QString>& member, const QString& text,
            ChangeDefinition& definition) {
    QString value = text;
    if (field.kind == FieldKind::Source) {
        value = text.trimmed();
        if (value.isEmpty())
            value = kNoSource;
    }
    member.of(definition) = value;
    return true;
}

}  // namespace

QString fieldText(const ChangeField& field, const ChangeDefinition& definition) {
    return std::visit([&](const auto& member) { return textOf(member.of(definition)); },
                      field.member);
}

bool isWholeNumber(const ChangeField& field) {
    return field.kind == FieldKind::Number || field.kind == FieldKind::Class ||
           field.kind == FieldKind::MostCount;
}

bool setFieldText(const ChangeField& field, const QString& text, ChangeDefinition& definition) {
    return std::visit([&](const auto& member) { return assign(field, member, text, definition); },
                      field.member);
}

DecodedDefinition decodeDefinition(const framework::SavedDefinition& saved) {
    DecodedDefinition decoded;
    for (const ChangeField& field : changeFields()) {
        const auto text = saved.value(field.control);
        if (!text) {
            if (!field.optional)
                decoded.missing.push_back(field.control);
        } else if (!setFieldText(field, *text, decoded.definition))
            decoded.unreadable.push_back({field.control, *text});
    }
    return decoded;
}

QMap<QString, QString> encodeDefinition(const ChangeDefinition& definition,
                                        const framework::SavedDefinition& typed) {
    QMap<QString, QString> texts;
    for (const ChangeField& field : changeFields()) {
        QString text = fieldText(field, definition);
        if (isWholeNumber(field)) {
            const QString spelt = typed.value(field.control).value_or(text).trimmed();
            ChangeDefinition meant;
            if (setFieldText(field, spelt, meant) && fieldText(field, meant) == text)
                text = spelt;
        }
        texts.insert(field.control, text);
    }
    return texts;
}

}  // namespace vatchange
