#include "search/row_test.h"

#include <memory>

#include "data/record/filter.h"
#include "search/text_match.h"

namespace search {

namespace {

const QString kName = QStringLiteral("nimi");
const QString kSecondName = QStringLiteral("nimi2");

}  // namespace

RowTest expressionTest(const QString& expression, const data::RecordLayout& layout) {
    if (expression.trimmed().isEmpty())
        return {};
    auto filter = std::make_shared<data::Filter>(expression, layout);
    return [filter](data::RecordId, const QByteArray& bytes) { return filter->accepts(bytes); };
}

RowTest columnTest(const data::TtbTable& table, const GridColumn& column, const SearchText& search,
                   bool bothNames) {
    const TextMatch match(search.text, search.anywhere);
    if (column.text)
        return [&table, match, text = column.text](data::RecordId id, const QByteArray& bytes) {
            const data::StoredRecord record{id, bytes};
            return match.matchesText(text(GridRow(table.layout(), record)));
        };
    auto onField = match.onField(table, column.field);
    if (!bothNames || column.field.compare(kName, Qt::CaseInsensitive) != 0)
        return [onField](data::RecordId, const QByteArray& bytes) { return onField(bytes); };
    return
        [onField, onSecond = match.onField(table, kSecondName)](
            data::RecordId, const QByteArray& bytes) { return onField(bytes) || onSecond(bytes); };
}

std::optional<KeyTextTest> keyTextTest(data::TtbTable& table, const GridColumn& column,
                                       const SearchText& search, bool bothNames) {
    const int field = table.layout().indexOf(column.field);
    if (column.text || field < 0 ||
        (bothNames && column.field.compare(kName, Qt::CaseInsensitive) == 0))
        return std::nullopt;
    for (const data::KeyDef& key : table.keys()) {
        const data::KeySegment& first = key.segments.front();
        if (first.fieldIndex != field || !table.file().showsKeyTexts(key.number))
            continue;
        const TextMatch match(search.text, search.anywhere);
        if (first.ignoreCase)
            return KeyTextTest{key.number,
                               [match](QByteArrayView text) { return match.matchesFolded(text); }};
        return KeyTextTest{key.number,
                           [match](QByteArrayView text) { return match.matchesBytes(text); }};
    }
    return std::nullopt;
}

}  // namespace search
