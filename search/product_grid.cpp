#include "search/product_grid.h"

#include <QSet>
#include <algorithm>
#include <utility>

namespace search {

namespace {

using Text = QString (ProductTexts::*)(const GridRow&);

struct Column {
    const char16_t* field;
    const char16_t* title;  // empty: the field's name
    int width;
    Text text = nullptr;  // null: the field's own text
    bool alignRight = false;
};

// Before the other fields of the table.
constexpr Column kFirstColumns[] = {
    {u"NUMERO", u"Numero", 120},
    {u"RYHMA", u"Tuoteyhmä", 140, &ProductTexts::productGroup},
    {u"PAARYHMA", u"Pääryhmä", 140, &ProductTexts::mainGroup},
    {u"NIMI", u"Nimi", 260},
    {u"HINTA", u"Hinta", 80},
    {u"AliRyhma", u"Aliryhmä", 140, &ProductTexts::subGroup},
    {u"HintaProsentteina", u"Hinta-%", 60},
    {u"VIIMSISOSTO", u"Viim. osto", 90},
    {u"VIIMOSTOHINTA", u"Viim. ostohinta", 100, &ProductTexts::lastPurchasePrice, true},
    {u"TOIMITTAJA", u"Toimittaja", 160, &ProductTexts::supplier},
    {u"OTETTUEKA", u"Otettu 1. kerran", 90},
    {u"VIIMMYYNTI", u"Viim. myynti", 90},
    {u"KPL", u"Kpl", 70},
    {u"KESKIHINTA", u"Keskihinta", 90, &ProductTexts::averagePurchasePrice, true},
    {u"VAIHTOTUOTE", u"Vaihtotuote", 90},
    {u"INVENKPL", u"Inventoitu kpl", 80},
    {u"INVENKHINTA", u"Inventoitu hinta", 80},
    {u"YKS", u"Yks", 50},
    {u"LVV", u"Alv", 40},
    {u"NIMIKASSALLA", u"Nimi kassalla", 220},
};

// After the fields of the table.
constexpr Column kComputedColumns[] = {
    {u"Saldo", u"", 80, &ProductTexts::balance, true},
    {u"Tilattu", u"", 80, &ProductTexts::ordered, true},
    {u"Varattu", u"", 80, &ProductTexts::reserved, true},
    {u"Vapaa", u"", 80, &ProductTexts::free, true},
    {u"VarastoTilanne", u"Varastotilanne", 180, &ProductTexts::situation},
    {u"Hyllypaikka", u"", 120, &ProductTexts::shelfPlaces},
    {u"HintaAlv0", u"Hinta alv 0", 90, &ProductTexts::priceWithoutVat, true},
    {u"OhHintaALV0", u"Ostohinta alv 0", 110, &ProductTexts::purchasePriceWithoutVat, true},
};

GridColumn gridColumn(const Column& column, ProductTexts& texts) {
    GridColumn result{QString::fromUtf16(column.field), QString::fromUtf16(column.title),
                      column.width};
    result.alignRight = column.alignRight;
    if (column.text != nullptr)
        result.text = [&texts, text = column.text](const GridRow& product) {
            return (texts.*text)(product);
        };
    return result;
}

// Shown without a saved layout; the web shop's column only if there is one.
bool isShownAtFirst(const QString& field) {
    static const QSet<QString> kShown = {
        QStringLiteral("numero"),      QStringLiteral("nimi"),         QStringLiteral("ryhma"),
        QStringLiteral("paaryhma"),    QStringLiteral("aliryhma"),     QStringLiteral("toimittaja"),
        QStringLiteral("hinta"),       QStringLiteral("kaksoishinta"), QStringLiteral("hinta3"),
        QStringLiteral("lvv"),         QStringLiteral("saldo"),        QStringLiteral("vapaa"),
        QStringLiteral("verkkokauppa")};
    return kShown.contains(field.toLower());
}

QString priceName(const QString& field, const QStringList& names) {
    static const QStringList kPrices = {
        QStringLiteral("hinta"),  QStringLiteral("kaksoishinta"), QStringLiteral("hinta3"),
        QStringLiteral("hinta4"), QStringLiteral("hinta5"),       QStringLiteral("hinta6"),
        QStringLiteral("hinta7"), QStringLiteral("hinta8"),       QStringLiteral("hinta9")};
    const auto level = kPrices.indexOf(field.toLower());
    return level < 0 ? QString() : names.value(level);
}

bool isFirstColumn(const GridColumn& field) {
    return std::any_of(
        std::begin(kFirstColumns), std::end(kFirstColumns), [&](const Column& column) {
            return field.field.compare(QStringView(column.field), Qt::CaseInsensitive) == 0;
        });
}

}  // namespace

std::vector<GridColumn> productGrid(std::vector<GridColumn> tableFields,
                                    const QStringList& priceNames, ProductTexts& texts) {
    std::vector<GridColumn> columns;
    for (const Column& column : kFirstColumns)
        columns.push_back(gridColumn(column, texts));
    for (GridColumn& field : tableFields) {
        if (!isFirstColumn(field))
            columns.push_back(std::move(field));
    }
    for (const Column& column : kComputedColumns)
        columns.push_back(gridColumn(column, texts));
    for (GridColumn& column : columns) {
        column.visible = isShownAtFirst(column.field);
        if (const QString name = priceName(column.field, priceNames); !name.isEmpty()) {
            column.title = name;
            column.width = 0;  // by the name
        }
    }
    return columns;
}

}  // namespace search
