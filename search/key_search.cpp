#include "search/key_search.h"

#include "data/record/record_codec.h"
#include "data/record/value_conversion.h"

namespace search {

namespace {

// "ú": sorts after every letter that can follow the low end of a text range.
constexpr char16_t kAfterAllTexts = 250;

bool isInteger(data::Kind kind) {
    return kind == data::Kind::SmallInt || kind == data::Kind::Integer ||
           kind == data::Kind::Unsigned || kind == data::Kind::LargeInt;
}

QString titleOf(const QString& field, const std::vector<GridColumn>& columns) {
    for (const GridColumn& column : columns) {
        if (column.field.compare(field, Qt::CaseInsensitive) == 0 && !column.title.isEmpty())
            return column.title;
    }
    return field;
}

}  // namespace

std::optional<data::Value> keyValue(const data::TFieldCacheItem& field, const QString& text) {
    if (field.kind() == data::Kind::String)
        return data::Value(text.left(field.size));
    if (field.kind() == data::Kind::Date) {
        const QDate date = data::dateFromText(text.trimmed());
        return date.isValid() ? std::optional<data::Value>(date) : std::nullopt;
    }
    data::Value value;
    QString why;
    QString plain = text.trimmed();
    if (field.kind() == data::Kind::Float)
        plain.replace(QLatin1Char(','), QLatin1Char('.'));
    if (plain.isEmpty() || !data::textToValue(field, plain, value, &why))
        return std::nullopt;
    return value;
}

TextRange textRange(const data::TFieldCacheItem& field, const QString& text) {
    if (field.kind() == data::Kind::String)
        return {.range = KeyRange{{text.left(field.size)},
                                  {QString(text + QChar(kAfterAllTexts)).left(field.size)}}};
    if (field.kind() == data::Kind::Date) {
        const auto date = keyValue(field, text);
        if (!date)
            return {.message = QStringLiteral("virheellinen päiväys ") + text};
        return {.range = KeyRange{{*date}, {*date}}};
    }
    if (!isInteger(field.kind()))
        return {.message = QStringLiteral("Tätä hakuavain tyyppiä ei tueta")};
    bool isNumber = false;
    const qint64 number = text.trimmed().toLongLong(&isNumber);
    const auto value = isNumber ? keyValue(field, QString::number(number)) : std::nullopt;
    if (!value)
        return {.message = QStringLiteral("Virheellinen numero ") + text};
    return {.range = KeyRange{{*value}, {*value}}};
}

bool Completion::textChanged(const QString& text) {
    const bool typed = m_next == NextChange::Typed;
    m_next = NextChange::Typed;
    return typed && !text.isEmpty();
}

void Completion::aboutToDelete(bool changes) {
    m_next = changes ? NextChange::OwnOrDeleted : NextChange::Typed;
}

std::optional<QString> Completion::complete(const QString& typed, const QString& found) {
    if (found.size() <= typed.size() || !found.startsWith(typed, Qt::CaseInsensitive))
        return std::nullopt;
    m_next = NextChange::OwnOrDeleted;
    return found;
}

std::vector<KeySearch::Order> KeySearch::orders(const std::vector<GridColumn>& columns) const {
    std::vector<Order> orders;
    QStringList taken;
    for (const data::KeyDef& key : m_table.keys()) {
        QStringList names;
        for (const data::KeySegment& segment : key.segments)
            names.append(titleOf(m_table.layout().field(segment.fieldIndex).name, columns));
        QString title = names.join(QStringLiteral(", "));
        if (taken.contains(title))
            title += QStringLiteral(" (kirjainkoosta riippumatta)");
        taken.append(title);
        orders.push_back({key.number, title});
    }
    return orders;
}

const data::TFieldCacheItem& KeySearch::field() const {
    const data::KeyDef& current = m_table.keys()[static_cast<size_t>(key())];
    return m_table.layout().field(current.segments.front().fieldIndex);
}

QString KeySearch::currentText() const {
    return m_table.fieldByName(field().name).asString();
}

int KeySearch::nearestRow(const QString& text) {
    const auto value = keyValue(field(), text);
    return value ? m_model.nearest({*value}) : -1;
}

}  // namespace search
