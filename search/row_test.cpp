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

}  // namespace search
