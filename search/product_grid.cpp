#include "search/product_grid.h"

#include <algorithm>
#include <utility>

namespace search {

namespace {

using Text = QString (ProductTexts::*)(const GridRow&);

struct Column {
    const char16_t* field;
    const char16_t* title;  // empty: the field's name
    int width;
    bool visible = true;
    Text text = nullptr;  // null: the field's own text
    bool alignRight = false;
};

// Before the other fields of the table.
constexpr Column kFirstColumns[] = {
    {u"NUMERO", u"Numero", 120},
    {u"RYHMA", u"Tuoteyhmä", 140, true, &ProductTexts::productGroup},
    {u"PAARYHMA", u"Pääryhmä", 140, true, &ProductTexts::mainGroup},
    {u"NIMI", u"Nimi", 260},
    {u"HINTA", u"Hinta", 80},
    {u"AliRyhma", u"Aliryhmä", 140, true, &ProductTexts::subGroup},
    {u"HintaProsentteina", u"Hinta-%", 60},
    {u"VIIMSISOSTO", u"Viim. osto", 90},
    {u"VIIMOSTOHINTA", u"Viim. ostohinta", 100, true, &ProductTexts::lastPurchasePrice, true},
    {u"TOIMITTAJA", u"Toimittaja", 160, true, &ProductTexts::supplier},
    {u"OTETTUEKA", u"", 90, false},
    {u"VIIMMYYNTI", u"Viim. myynti", 90},
    {u"KPL", u"Kpl", 70, false},
    {u"KESKIHINTA", u"Keskihinta", 90, true, &ProductTexts::averagePurchasePrice, true},
    {u"VAIHTOTUOTE", u"Vaihtotuote", 90},
    {u"INVENKPL", u"", 80, false},
    {u"INVENKHINTA", u"", 80, false},
    {u"YKS", u"Yks", 50},
    {u"LVV", u"Alv", 40},
    {u"NIMIKASSALLA", u"Nimi kassalla", 220},
};

// After the fields of the table.
constexpr Column kComputedColumns[] = {
    {u"Saldo", u"", 80, true, &ProductTexts::balance, true},
    {u"Tilattu", u"", 80, true, &ProductTexts::ordered, true},
    {u"Varattu", u"", 80, true, &ProductTexts::reserved, true},
    {u"Vapaa", u"", 80, true, &ProductTexts::free, true},
    {u"VarastoTilanne", u"Varastotilanne", 180, true, &ProductTexts::situation},
    {u"Hyllypaikka", u"", 120, true, &ProductTexts::shelfPlaces},
    {u"HintaAlv0", u"Hinta alv 0", 90, true, &ProductTexts::priceWithoutVat, true},
    {u"OhHintaALV0", u"Ostohinta alv 0", 110, true, &ProductTexts::purchasePriceWithoutVat, true},
};

GridColumn gridColumn(const Column& column, ProductTexts& texts) {
    GridColumn result{QString::fromUtf16(column.field), QString::fromUtf16(column.title),
                      column.width};
    result.visible = column.visible;
    result.alignRight = column.alignRight;
    if (column.text != nullptr)
        result.text = [&texts, text = column.text](const GridRow& product) {
            return (texts.*text)(product);
        };
    return result;
}

bool isFirstColumn(const GridColumn& field) {
    return std::any_of(
        std::begin(kFirstColumns), std::end(kFirstColumns), [&](const Column& column) {
            return field.field.compare(QStringView(column.field), Qt::CaseInsensitive) == 0;
        });
}

}  // namespace

std::vector<GridColumn> productGrid(std::vector<GridColumn> tableFields, ProductTexts& texts) {
    std::vector<GridColumn> columns;
    for (const Column& column : kFirstColumns)
        columns.push_back(gridColumn(column, texts));
    for (GridColumn& field : tableFields) {
        if (!isFirstColumn(field))
            columns.push_back(std::move(field));
    }
    for (const Column& column : kComputedColumns)
        columns.push_back(gridColumn(column, texts));
    return columns;
}

}  // namespace search
