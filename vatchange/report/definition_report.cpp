#include "vatchange/report/definition_report.h"

#include <QLocale>

#include "vatchange/definition/definition_codec.h"

namespace vatchange {

namespace {

QString yesNo(bool on) {
    return on ? QStringLiteral("kyllä") : QStringLiteral("ei");
}

QString label(const char* control) {
    return changeField(QLatin1String(control)).label;
}

QString chosenItem(const char* control, const ChangeDefinition& definition) {
    const ChangeField& field = changeField(QLatin1String(control));
    return field.items.value(fieldText(field, definition).toInt()).trimmed().toLower();
}

QString number(double value) {
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value, 'g', QLocale::FloatingPointShortest);
}

// One bound alone means equality, not a half-open range, as in the selection.
QString restrictionText(const GroupRestriction& restriction) {
    if (!restriction.on)
        return QStringLiteral("ei rajausta");
    QStringList parts;
    if (restriction.first != 0 && restriction.last != 0 && restriction.first != restriction.last) {
        parts.append(QStringLiteral("ryhmät %1-%2").arg(restriction.first).arg(restriction.last));
    } else if (restriction.first != 0 || restriction.last != 0) {
        parts.append(QStringLiteral("vain ryhmä %1")
                         .arg(restriction.first != 0 ? restriction.first : restriction.last));
    }
    if (!restriction.ignored.isEmpty())
        parts.append(label("edtAliryhmaIgnore") + QStringLiteral(": ") + restriction.ignored);
    return parts.isEmpty() ? QStringLiteral("ei rajausta") : parts.join(QStringLiteral(", "));
}

// Product group rows follow the range even when the restriction of products is off.
QString groupRowsText(const GroupRestriction& range) {
    QStringList parts;
    if (range.first != 0)
        parts.append(QStringLiteral("numerosta %1 alkaen").arg(range.first));
    if (range.last != 0)
        parts.append(QStringLiteral("numeroon %1 asti").arg(range.last));
    return parts.isEmpty() ? QStringLiteral("kaikki") : parts.join(u' ');
}

QString productRangeText(const ChangeDefinition& definition) {
    if (!definition.productRangeOn)
        return QStringLiteral("ei rajausta");
    return QStringLiteral("%1-%2 (ei käytössä: ei rajaa mitään)")
        .arg(definition.productFirst, definition.productLast);
}

QString classText(int vatClass, const DefinitionNames& names) {
    if (vatClass == 0)
        return QStringLiteral("0 (veroluokattomat)");
    const QString rate = names.rates.value(vatClass);
    return rate.isEmpty() ? QString::number(vatClass)
                          : QStringLiteral("%1 (%2)").arg(QString::number(vatClass), rate);
}

QString levelName(const QStringList& names, int level) {
    return names.value(level, QStringLiteral("Hinta %1").arg(level));
}

int levelOf(const QString& column) {
    int level = 1;
    while (level < kPriceLevels &&
           kPriceColumns[static_cast<std::size_t>(level)] != column.trimmed())
        ++level;
    return level;
}

void levels(ReportHtml& html, const ChangeDefinition& definition, const QStringList& names) {
    html.section(QStringLiteral("Hintojen muutoskertoimet"));
    html.beginTable({QStringLiteral("Hintataso"), QStringLiteral("Hinnan lähde"),
                     QStringLiteral("Säilytä alv0 hinta"), QStringLiteral("Kerroin")},
                    1);
    for (int level = 1; level <= kPriceLevels; ++level) {
        const PriceLevelChange& change = definition.levels[static_cast<std::size_t>(level - 1)];
        if (!isPriceColumn(change.source)) {
            html.tableRow({levelName(names, level), levelName(names, 0), {}, QStringLiteral("-")});
            continue;
        }
        html.tableRow({levelName(names, level), levelName(names, levelOf(change.source)),
                       yesNo(change.keepVat0), number(change.coefficient)});
    }
    html.tableRow({label("OstohintaEdit"),
                   {},
                   yesNo(definition.keepVat0Purchase),
                   number(definition.purchaseCoefficient)});
    html.tableRow({label("ViimOstohintaEdit"),
                   {},
                   yesNo(definition.keepVat0LastPurchase),
                   number(definition.lastPurchaseCoefficient)});
}

QString customerGroups(const ChangeDefinition& definition, const DefinitionNames& names) {
    QStringList groups;
    for (const int group : definition.customerGroups)
        groups.append(
            (QString::number(group) + u' ' + names.customerGroups.value(group)).trimmed());
    return groups.isEmpty() ? QStringLiteral("kaikki") : groups.join(QStringLiteral(", "));
}

QString orderText(bool on, bool fromVat0, double coefficient) {
    if (!on)
        return yesNo(false);
    return yesNo(true) + (fromVat0 ? QStringLiteral(", verollinen lasketaan alv0-hinnasta")
                                   : QStringLiteral(", kerroin ") + number(coefficient));
}

void options(ReportHtml& html, const ChangeDefinition& d, const DefinitionNames& names) {
    html.section(QStringLiteral("Mitä muutetaan"));
    html.row(label("Tuotteet"), yesNo(d.products));
    html.row(label("asiakashinnasto"), yesNo(d.customerPriceLists));
    html.row(label("WebKauppaAsHinCheckBox"),
             yesNo(d.customerPriceLists && d.webShopCustomerPriceLists));
    html.row(label("AsRyhmaCheckList"), customerGroups(d, names));
    html.row(label("DoNotUpdateCustomerPricelistVAT0"), yesNo(!d.keepCustomerPricelistVat0));
    html.row(label("Kampanjat"), yesNo(d.campaigns));
    html.row(label("MaaraAle"), yesNo(d.quantityDiscounts));
    html.row(label("cbVakioLaskutus"), yesNo(d.recurringInvoicing));
    QString sales = orderText(d.salesOrders, d.salesOrderFromVat0, d.salesOrderCoefficient);
    if (d.salesOrders && d.salesOrderDeliveryLimit.isValid())
        sales += QStringLiteral(", ") + label("MTToimPaivaRajaus") + u' ' +
                 QLocale().toString(d.salesOrderDeliveryLimit, QLocale::ShortFormat);
    html.row(label("MtCheckBox"), sales);
    html.row(label("OtCheckBox"),
             orderText(d.purchaseOrders, d.purchaseOrderFromVat0, d.purchaseOrderCoefficient));
    html.row(label("chkCheckWebstoreCompliantProductIds"), yesNo(d.checkProductCodes));
    html.row(label("VieHr"), yesNo(d.writeShelfLabels));
    html.row(label("Eiverkkokauppaa"), yesNo(!d.leaveWebShop));
    html.row(label("Tuoteloki"), yesNo(d.productLog));
}

}  // namespace

void describeDefinition(ReportHtml& html, const ChangeDefinition& d, const DefinitionNames& names) {
    html.section(QStringLiteral("Veroluokat ja rajaukset"));
    html.row(label("LahdeAlvLuokkaEdit"), classText(d.sourceClass, names));
    html.row(label("KohdeAlvLuokkaEdit"), classText(d.targetClass, names));
    if (d.changeDay.isValid())
        html.row(label("Muutospaiva"), QLocale().toString(d.changeDay, QLocale::ShortFormat));
    html.row(label("AliryhmaCheckBox"), restrictionText(d.subGroup));
    html.row(label("TuoteryhmaCheckBox"), restrictionText(d.productGroup));
    html.row(label("PaaryhmaCheckBox"), restrictionText(d.mainGroup));
    html.row(label("TuotenroCheckBox"), productRangeText(d));
    html.row(QStringLiteral("Päivitettävät tuoteryhmät"), groupRowsText(d.productGroup));
    levels(html, d, names.levels);
    html.section(QStringLiteral("Pyöristys ja raja"));
    for (const char* choice : {"PyoristysSaantoRadioGroup", "PyoristysRadioGroup"})
        html.row(label(choice), chosenItem(choice, d));
    html.row(label("PriceChangeLimitEdit"), number(d.priceChangeLimit));
    html.row(label("TurvarajaTuotteet"),
             d.mostProducts ? QString::number(*d.mostProducts) : yesNo(false));
    html.row(label("TurvarajaProsentti"), d.mostPercent ? number(*d.mostPercent) : yesNo(false));
    options(html, d, names);
}

}  // namespace vatchange
