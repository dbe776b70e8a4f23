#include "vatchange/form/definition_report.h"

#include <QLocale>

namespace vatchange {

namespace {

QString yesNo(bool on) {
    return on ? QStringLiteral("kyllä") : QStringLiteral("ei");
}

QString number(double value) {
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value, 'g', QLocale::FloatingPointShortest);
}

/// Collects headings and rows of two or more columns.
class Html {
  public:
    void section(const QString& title) {
        closeTable();
        m_text += QStringLiteral("<h3>%1</h3>").arg(title.toHtmlEscaped());
    }
    void row(const QStringList& cells, bool heading = false) {
        if (!m_tableOpen)
            m_text += QStringLiteral("<table width='100%' cellspacing='0' cellpadding='3'>");
        m_tableOpen = true;
        const QString tag = heading ? QStringLiteral("th") : QStringLiteral("td");
        // the first of two columns is as wide in every section
        QString width = cells.size() == 2 ? QStringLiteral(" width='42%'") : QString();
        m_text += QStringLiteral("<tr>");
        for (const QString& cell : cells) {
            m_text +=
                QStringLiteral("<%1%2 align='left' style='border-bottom:1px solid #bbbbbb'>%3</%1>")
                    .arg(tag, width, cell.toHtmlEscaped());
            width.clear();
        }
        m_text += QStringLiteral("</tr>");
    }
    void raw(const QString& html) {
        closeTable();
        m_text += html;
    }
    QString take() {
        closeTable();
        return m_text;
    }

  private:
    void closeTable() {
        if (m_tableOpen)
            m_text += QStringLiteral("</table>");
        m_tableOpen = false;
    }
    QString m_text;
    bool m_tableOpen = false;
};

// One bound is an equality, not a half-open range: the words say what the selection does.
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
        parts.append(QStringLiteral("ulosrajatut: ") + restriction.ignored);
    return parts.isEmpty() ? QStringLiteral("ei rajausta") : parts.join(QStringLiteral(", "));
}

QString classText(int vatClass, const QString& rate) {
    if (vatClass == 0)
        return QStringLiteral("0 (veroluokattomat)");
    return rate.isEmpty() ? QString::number(vatClass)
                          : QStringLiteral("%1 (%2)").arg(QString::number(vatClass), rate);
}

QString levelName(const QStringList& names, int level) {
    return names.value(level, QStringLiteral("Hinta %1").arg(level));
}

void levels(Html& html, const ChangeDefinition& definition, const QStringList& names) {
    html.section(QStringLiteral("Hintatasot"));
    html.row({QStringLiteral("Hintataso"), QStringLiteral("Kerroin"),
              QStringLiteral("Hinnan lähde"), QStringLiteral("Säilytä alv0 hinta")},
             true);
    for (int level = 1; level <= kPriceLevels; ++level) {
        const PriceLevelChange& change = definition.levels[static_cast<std::size_t>(level - 1)];
        if (!isPriceColumn(change.source)) {
            html.row({levelName(names, level), QStringLiteral("-"), names.value(0), {}});
            continue;
        }
        int source = 1;
        while (source < kPriceLevels &&
               kPriceColumns[static_cast<std::size_t>(source)] != change.source.trimmed())
            ++source;
        html.row({levelName(names, level), number(change.coefficient), levelName(names, source),
                  yesNo(change.keepVat0)});
    }
    html.row({QStringLiteral("Ostohinta"),
              number(definition.purchaseCoefficient),
              {},
              yesNo(definition.keepVat0Purchase)});
    html.row({QStringLiteral("Viim. ostohinta"),
              number(definition.lastPurchaseCoefficient),
              {},
              yesNo(definition.keepVat0LastPurchase)});
}

QString customerGroups(const ChangeDefinition& definition) {
    QStringList groups;
    for (const int group : definition.customerGroups)
        groups.append(QString::number(group));
    return groups.isEmpty() ? QStringLiteral("kaikki") : groups.join(QStringLiteral(", "));
}

void options(Html& html, const ChangeDefinition& d) {
    html.section(QStringLiteral("Mitä muutetaan"));
    html.row({QStringLiteral("Tuotteet ja ryhmät"), yesNo(d.products)});
    html.row({QStringLiteral("Asiakashinnastot"), yesNo(d.customerPriceLists)});
    html.row({QStringLiteral("Verkkokaupan asiakashinnastot"),
              yesNo(d.customerPriceLists && d.webShopCustomerPriceLists)});
    html.row({QStringLiteral("Asiakasryhmät"), customerGroups(d)});
    html.row({QStringLiteral("Asiakashinnaston alv0 hinta päivitetään"),
              yesNo(!d.keepCustomerPricelistVat0)});
    html.row({QStringLiteral("Kampanjat"), yesNo(d.campaigns)});
    html.row({QStringLiteral("Määräalennukset"), yesNo(d.quantityDiscounts)});
    html.row({QStringLiteral("Toistuvaislaskutus"), yesNo(d.recurringInvoicing)});
    QString sales = yesNo(d.salesOrders);
    if (d.salesOrders) {
        sales += d.salesOrderFromVat0
                     ? QStringLiteral(", verollinen lasketaan alv0-hinnasta")
                     : QStringLiteral(", kerroin ") + number(d.salesOrderCoefficient);
        if (d.salesOrderDeliveryLimit.isValid())
            sales += QStringLiteral(", toimituspäivä alkaen ") +
                     QLocale().toString(d.salesOrderDeliveryLimit, QLocale::ShortFormat);
    }
    html.row({QStringLiteral("Myyntitilaukset"), sales});
    QString purchases = yesNo(d.purchaseOrders);
    if (d.purchaseOrders) {
        purchases += d.purchaseOrderFromVat0
                         ? QStringLiteral(", verollinen lasketaan alv0-hinnasta")
                         : QStringLiteral(", kerroin ") + number(d.purchaseOrderCoefficient);
    }
    html.row({QStringLiteral("Ostotilaukset"), purchases});
    html.row({QStringLiteral("Tuotekoodien tarkastus"), yesNo(d.checkProductCodes)});
    html.row({QStringLiteral("Hyllynreunaetiketit"), yesNo(d.writeShelfLabels)});
    html.row({QStringLiteral("Verkkokauppa päivitetään"), yesNo(!d.leaveWebShop)});
    html.row({QStringLiteral("Tuotekohtainen loki"), yesNo(d.productLog)});
}

}  // namespace

QString definitionReport(const ChangeDefinition& d, const ReportHeading& heading) {
    static const QStringList kRules = {QStringLiteral("normaali"), QStringLiteral("aina ylös"),
                                       QStringLiteral("aina alas")};
    static const QStringList kSteps = {QStringLiteral("0,1"), QStringLiteral("1"),
                                       QStringLiteral("5"), QStringLiteral("10"),
                                       QStringLiteral("0,01")};
    Html html;
    html.raw(QStringLiteral("<h2>ALV muutos: %1</h2><p>%2<br/>%3, %4</p>")
                 .arg((heading.name.isEmpty() ? QStringLiteral("tallettamaton määrittely")
                                              : heading.name)
                          .toHtmlEscaped(),
                      heading.description.toHtmlEscaped(), heading.company.toHtmlEscaped(),
                      heading.printed));
    html.section(QStringLiteral("Veroluokat ja rajaukset"));
    html.row({QStringLiteral("Vanha luokka"), classText(d.sourceClass, heading.sourceRate)});
    html.row({QStringLiteral("Uusi luokka"), classText(d.targetClass, heading.targetRate)});
    html.row({QStringLiteral("Aliryhmät"), restrictionText(d.subGroup)});
    html.row({QStringLiteral("Tuoteryhmät"), restrictionText(d.productGroup)});
    html.row({QStringLiteral("Pääryhmät"), restrictionText(d.mainGroup)});
    levels(html, d, heading.levelNames);
    html.section(QStringLiteral("Pyöristys ja raja"));
    html.row({QStringLiteral("Pyöristyssääntö"), kRules.value(static_cast<int>(d.roundingRule))});
    html.row(
        {QStringLiteral("Pyöristys (senttiä)"), kSteps.value(static_cast<int>(d.roundingStep))});
    html.row({QStringLiteral("Hinnanmuutosraja"), number(d.priceChangeLimit)});
    options(html, d);
    return html.take();
}

}  // namespace vatchange
