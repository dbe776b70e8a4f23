#include "search/column_lookup.h"

#include "company/connection_module.h"
#include "search/filter_expression.h"
#include "search/text_match.h"

namespace search {

LookupFilter lookupFilter(const ColumnLookup& lookup, const QString& name) {
    data::TtbTable table;
    company::openCompanyTable(table, lookup.table);
    const TextMatch match(name, false);
    const auto matches = match.onField(table, lookup.shownField);
    QStringList terms;
    QStringList names;
    for (table.first(); !table.eof(); table.next()) {
        if (!matches(table.recordBytes()))
            continue;
        terms.append(lookupTerm(lookup.localField, table.fieldByName(lookup.keyField).asString()));
        names.append(table.fieldByName(lookup.shownField).asString());
    }
    return {terms.isEmpty() ? noRecord(lookup.localField) : terms.join(QStringLiteral(" or ")),
            names};
}

}  // namespace search
