#include "vatchange/changes/changed_fields.h"

#include <map>

#include "vatchange/journal/record_fields.h"
#include "vatchange/journal/verified_fields.h"

namespace vatchange {

namespace {

using Titles = std::map<QString, QString>;

const Titles& fieldTitles() {
    static const Titles kTitles = {
        {QStringLiteral("TUOTE LVV"), QStringLiteral("Alv-luokka")},
        {QStringLiteral("TUOTE ALV2"), QStringLiteral("Alv-luokka 2")},
        {QStringLiteral("TUOTE OSTOVERO"), QStringLiteral("Oston alv-luokka")},
        {QStringLiteral("TUOTE KESKIHINTA"), QStringLiteral("Keskiostohinta")},
        {QStringLiteral("TUOTE ANNOSHINTA"), QStringLiteral("Annoshinta")},
        {QStringLiteral("TUOTE VIIMOSTOHINTA"), QStringLiteral("Viimeisin ostohinta")},
        {QStringLiteral("TUOTE VERKKOKAUPPA"), QStringLiteral("Verkkokaupassa")},
        {QStringLiteral("TRYHMA VERO"), QStringLiteral("Alv-luokka")},
        {QStringLiteral("TRYHMA ALV2"), QStringLiteral("Alv-luokka 2")},
        {QStringLiteral("TRYHMA OSTOVERO"), QStringLiteral("Oston alv-luokka")},
        {QStringLiteral("ASALE HINTA"), QStringLiteral("Hinta")},
        {QStringLiteral("ASALE HINTAALV0"), QStringLiteral("Veroton hinta")},
        {QStringLiteral("ASALE OSTOHINTA"), QStringLiteral("Ostohinta")},
        {QStringLiteral("KAMPPANJA MYYNTIHINTA"), QStringLiteral("Myyntihinta")},
        {QStringLiteral("KAMPPANJA OSTOHINTA"), QStringLiteral("Ostohinta")},
        {QStringLiteral("VAKIOLASKUTUS AHINTA"), QStringLiteral("Hinta")},
        {QStringLiteral("VAKIOLASKUTUS YHTEENSA"), QStringLiteral("Yhteensä")},
        {QStringLiteral("VAKIOLASKUTUS OSTOHINTA"), QStringLiteral("Ostohinta")},
        {QStringLiteral("MAARAALE ARVO"), QStringLiteral("Arvo")},
        {QStringLiteral("MAARAALE OSTOHINTA"), QStringLiteral("Ostohinta")},
        {QStringLiteral("MTRIVI VEROKANTA"), QStringLiteral("Alv-luokka")},
        {QStringLiteral("MTRIVI OSTOVERO"), QStringLiteral("Oston alv-luokka")},
        {QStringLiteral("MTRIVI AHINTA"), QStringLiteral("Hinta")},
        {QStringLiteral("MTRIVI AHINTAALV0"), QStringLiteral("Veroton hinta")},
        {QStringLiteral("MTRIVI OSTOHINTA"), QStringLiteral("Ostohinta")},
        {QStringLiteral("MTRIVI OSTOHINTAALV0"), QStringLiteral("Veroton ostohinta")},
        {QStringLiteral("MTRIVI NETTO"), QStringLiteral("Rivin summa")},
        {QStringLiteral("MTRIVI KATE"), QStringLiteral("Kate")},
        {QStringLiteral("MTRIVI KATEALV0"), QStringLiteral("Veroton kate")},
        {QStringLiteral("WINOTRI ALVLUOKKA"), QStringLiteral("Alv-luokka")},
        {QStringLiteral("WINOTRI OSTOHINTA"), QStringLiteral("Ostohinta")},
        {QStringLiteral("WINOTRI OSTOHINTAALV0"), QStringLiteral("Veroton ostohinta")},
        {QStringLiteral("WINOTRI SUMMA"), QStringLiteral("Rivin summa")},
        {QStringLiteral("MT SUMMA"), QStringLiteral("Summa")},
        {QStringLiteral("MT SUMMAALV0"), QStringLiteral("Veroton summa")},
        {QStringLiteral("MT KATE"), QStringLiteral("Kate")},
        {QStringLiteral("MT KATEALV0"), QStringLiteral("Veroton kate")},
        {QStringLiteral("WINOT SUMMA"), QStringLiteral("Summa")},
        {QStringLiteral("WINOT SUMMAALV0"), QStringLiteral("Veroton summa")}};
    return kTitles;
}

bool same(const QString& one, const QString& other) {
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

int levelOf(const QString& table, const QString& field) {
    for (int level = 1; level <= kPriceLevels; ++level) {
        if (same(table, QStringLiteral("TUOTE")) &&
            same(field, kPriceColumns[static_cast<size_t>(level)]))
            return level;
        if (same(table, QStringLiteral("MYYMALAHINNAT")) &&
            same(field, QStringLiteral("hinta%1").arg(level)))
            return level;
    }
    return 0;
}

QString titleOf(const QString& table, const QString& field, int level) {
    if (level > 0)
        return QStringLiteral("Taso %1").arg(level);
    if (same(table, QStringLiteral("MYYMALAHINNAT")) &&
        field.endsWith(QStringLiteral("alv0"), Qt::CaseInsensitive))
        return QStringLiteral("Taso %1 veroton").arg(field.mid(5, 1));
    const auto known = fieldTitles().find(table.toUpper() + u' ' + field.toUpper());
    return known == fieldTitles().end() ? field : known->second;
}

/// Prices that customers see before they order.
bool isShown(const QString& table) {
    static const QStringList kTables = {QStringLiteral("TUOTE"), QStringLiteral("MYYMALAHINNAT"),
                                        QStringLiteral("ASALE"), QStringLiteral("KAMPPANJA")};
    return kTables.contains(table, Qt::CaseInsensitive);
}

}  // namespace

QString tableTitle(const QString& table) {
    static const Titles kTitles = {
        {QStringLiteral("TUOTE"), QStringLiteral("Tuotteet")},
        {QStringLiteral("TRYHMA"), QStringLiteral("Tuoteryhmät")},
        {QStringLiteral("MYYMALAHINNAT"), QStringLiteral("Myymälähinnat")},
        {QStringLiteral("ASALE"), QStringLiteral("Asiakashinnastot")},
        {QStringLiteral("KAMPPANJA"), QStringLiteral("Kampanjat")},
        {QStringLiteral("VAKIOLASKUTUS"), QStringLiteral("Toistuvaislaskutus")},
        {QStringLiteral("MAARAALE"), QStringLiteral("Määräalennukset")},
        {QStringLiteral("MT"), QStringLiteral("Myyntitilaukset")},
        {QStringLiteral("MTRIVI"), QStringLiteral("Myyntitilausrivit")},
        {QStringLiteral("WINOT"), QStringLiteral("Ostotilaukset")},
        {QStringLiteral("WINOTRI"), QStringLiteral("Ostotilausrivit")},
        {QStringLiteral("HR"), QStringLiteral("Hyllyetiketit")},
        {QStringLiteral("WEBKLIITOS"), QStringLiteral("Verkkokauppamerkinnät")},
        {QStringLiteral("INI"), QStringLiteral("Asetukset")}};
    const auto known = kTitles.find(table.toUpper());
    return known == kTitles.end() ? table : known->second;
}

ChangedField describeField(const QString& table, const data::TFieldCacheItem& item) {
    ChangedField field;
    field.table = table;
    field.field = item.name;
    field.level = levelOf(table, item.name);
    field.title = titleOf(table, item.name, field.level);
    field.amount = item.kind() == data::Kind::Float;
    field.number = field.amount || isInteger(item);
    field.single = field.amount && item.storedLength == 4;
    for (const PriceField& price : priceFields()) {
        if (same(price.table, table) && same(price.field, item.name))
            field.sold = price.sold;
    }
    field.price = field.sold && isShown(table);
    return field;
}

}  // namespace vatchange
