#include "vatchange/journal/verified_fields.h"

namespace vatchange {

namespace {

std::vector<PriceField> allPriceFields() {
    std::vector<PriceField> fields;
    const auto add = [&fields](const char* table, std::initializer_list<const char*> sold,
                               std::initializer_list<const char*> others) {
        for (const char* name : sold)
            fields.push_back({QLatin1String(table), QLatin1String(name), {}, true});
        for (const char* name : others)
            fields.push_back({QLatin1String(table), QLatin1String(name), {}, false});
    };
    for (int level = 1; level <= kPriceLevels; ++level)
        fields.push_back(
            {QStringLiteral("TUOTE"), kPriceColumns[static_cast<size_t>(level)], {}, true});
    add("TUOTE", {}, {"keskihinta", "annoshinta", "viimostohinta"});
    for (int level = 1; level <= kPriceLevels; ++level) {
        const QString price = QStringLiteral("hinta%1").arg(level);
        const QString vat0 = price + QStringLiteral("alv0");
        fields.push_back({QStringLiteral("MYYMALAHINNAT"), price, vat0, true});
        fields.push_back({QStringLiteral("MYYMALAHINNAT"), vat0, {}, false});
    }
    add("ASALE", {"hinta"}, {"hintaalv0", "ostohinta"});
    add("KAMPPANJA", {"myyntihinta"}, {"ostohinta"});
    add("VAKIOLASKUTUS", {"ahinta"}, {"yhteensa", "ostohinta"});
    add("MAARAALE", {"arvo"}, {"ostohinta"});
    fields.push_back(
        {QStringLiteral("MTRIVI"), QStringLiteral("ahinta"), QStringLiteral("ahintaalv0"), true});
    add("MTRIVI", {}, {"ahintaalv0", "ostohinta", "ostohintaalv0", "netto"});
    fields.push_back({QStringLiteral("WINOTRI"), QStringLiteral("ostohinta"),
                      QStringLiteral("ostohintaalv0"), true});
    add("WINOTRI", {}, {"ostohintaalv0", "summa"});
    add("MT", {}, {"summa", "summaalv0"});
    add("WINOT", {}, {"summa", "summaalv0"});
    return fields;
}

}  // namespace

const std::vector<PriceField>& priceFields() {
    static const std::vector<PriceField> kFields = allPriceFields();
    return kFields;
}

bool computedFromVat0(const PriceField& price, const ChangeDefinition& definition) {
    if (price.vat0.isEmpty())
        return false;
    if (price.table == u"MTRIVI")
        return definition.salesOrderFromVat0;
    if (price.table == u"WINOTRI")
        return definition.purchaseOrderFromVat0;
    const int level = price.field.right(1).toInt();  // hinta1..hinta9 of the stores
    return definition.levels[static_cast<size_t>(level - 1)].keepVat0;
}

}  // namespace vatchange
