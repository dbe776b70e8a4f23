#include "vatchange/report/change_sections.h"

#include <QLocale>

#include "vatchange/journal/history.h"
#include "vatchange/report/charts.h"

namespace vatchange {

namespace {

constexpr int kListedRows = 20;
constexpr int kListedPassedOver = 200;
constexpr double kSpreadMm = 62;
constexpr double kEndingsMm = 52;

/// Reports are Finnish whatever the locale of the task that writes them.
QString amountText(double amount) {
    return QLocale(QLocale::Finnish).toString(amount, 'f', 2);
}

/// A value as the report shows it: numbers in the user's locale.
QString valueText(const ChangeList& list, int row, bool after) {
    if (list.kind(row) != ChangeKind::Field && list.kind(row) != ChangeKind::Unchanged)
        return {};
    QString text = after ? list.afterText(row) : list.beforeText(row);
    if (!list.field(row).amount || text.isEmpty())
        return text;
    return amountText(after ? list.after(row) : list.before(row));
}

/// Product number and name, or the record's key.
QString subjectText(const ChangeList& list, int row) {
    const int product = list.productOf(row);
    QString key = list.record(list.recordIndex(row)).key;
    if (product < 0)
        return key;
    const QString& name = list.productName(product);
    return list.productNumber(product) + (name.isEmpty() ? QString() : u' ' + name);
}

/// Table, field, and the record's key if it is not the product itself: "myyntitilausten rivit 50017
/// 2, Hinta".
QString placeText(const ChangeList& list, int row) {
    QString text = tableText(list.tables().value(list.tableOf(row)));
    const int product = list.productOf(row);
    const QString key = list.record(list.recordIndex(row)).key;
    if (product >= 0 && key != list.productNumber(product))
        text += u' ' + key;
    const QString& title = list.field(row).title;
    return title.isEmpty() ? text : text + QStringLiteral(", ") + title;
}

bool isPassedOver(ChangeFinding finding) {
    return finding == ChangeFinding::ProductPassedOver || finding == ChangeFinding::OrderPassedOver;
}

template <typename Row>
void visitRows(const ChangeList& list, ChangeFinding finding, int max, Row&& add) {
    for (int row = 0; row < list.rowCount() && max > 0; ++row) {
        if ((list.findings(row) & bitOf(finding)) == 0)
            continue;
        add(row);
        --max;
    }
}

void tellRest(ReportHtml& html, qint64 count, qint64 listed) {
    if (count > listed)
        html.paragraph(QStringLiteral("... ja %1 muuta. Kaikki näkyvät muutosikkunassa.")
                           .arg(countText(count - listed)));
}

void listFinding(ReportHtml& html, const ChangeList& list, ChangeFinding finding) {
    const qint64 count = list.findingCount(finding);
    html.subsection(QStringLiteral("%1: %2").arg(findingName(finding), countText(count)));
    html.paragraph(findingHint(finding));
    html.beginTable({QStringLiteral("Tuote tai tietue"), QStringLiteral("Missä"),
                     QStringLiteral("Syy"), QStringLiteral("Ennen"), QStringLiteral("Jälkeen")},
                    2);
    visitRows(list, finding, kListedRows, [&](int row) {
        html.tableRow({subjectText(list, row), placeText(list, row), list.reason(row),
                       valueText(list, row, false), valueText(list, row, true)});
    });
    tellRest(html, count, kListedRows);
}

}  // namespace

void countSections(ReportHtml& html, const ChangeOverview& overview) {
    html.section(QStringLiteral("Muutetut tietueet"));
    if (overview.tables.empty()) {
        html.paragraph(QStringLiteral("Mitään ei muutettu."));
        return;
    }
    html.beginTable({QStringLiteral("Mitä"), QStringLiteral("Tietueita")}, 1);
    for (const ChangedTable& table : overview.tables)
        html.tableRow({tableText(table.table), countText(table.records)});
    if (overview.prices.empty())
        return;
    html.section(QStringLiteral("Hintojen muutokset"));
    html.beginTable({QStringLiteral("Hinta"), QStringLiteral("Taso"), QStringLiteral("Muuttui"),
                     QStringLiteral("Muutos keskimäärin")},
                    2);
    for (const ChangedPrices& price : overview.prices)
        html.tableRow({tableText(price.table), price.title, countText(price.count),
                       price.compared > 0 ? amountText(price.meanPercent) + QStringLiteral(" %")
                                          : QString()});
}

void pictureSections(ReportHtml& html, std::vector<framework::ReportPicture>& pictures,
                     const ChangeOverview& overview) {
    if (overview.spread.count == 0)
        return;
    html.section(QStringLiteral("Hintojen muutosten jakauma"));
    html.picture(pictures.size());
    pictures.push_back(
        {kSpreadMm, [spread = overview.spread](QPainter& painter, const QRectF& place) {
             paintSpread(painter, place, spread);
         }});
    html.section(QStringLiteral("Hintojen päätteet ennen ja jälkeen"));
    html.picture(pictures.size());
    pictures.push_back(
        {kEndingsMm, [endings = overview.endings](QPainter& painter, const QRectF& place) {
             paintEndings(painter, place, endings);
         }});
}

void findingSections(ReportHtml& html, const ChangeList& list) {
    html.section(QStringLiteral("Katsottavaa"));
    bool any = false;
    for (int i = 0; i < kChangeFindings; ++i) {
        const auto finding = static_cast<ChangeFinding>(i);
        if (isPassedOver(finding) || list.findingCount(finding) == 0)
            continue;
        listFinding(html, list, finding);
        any = true;
    }
    if (!any)
        html.paragraph(QStringLiteral("Muutoksissa ei ole mitään erityistä."));
}

void passedOverSections(ReportHtml& html, const ChangeList& list) {
    for (const ChangeFinding finding :
         {ChangeFinding::ProductPassedOver, ChangeFinding::OrderPassedOver}) {
        const qint64 count = list.findingCount(finding);
        if (count == 0)
            continue;
        const bool products = finding == ChangeFinding::ProductPassedOver;
        html.section(products ? QStringLiteral("Ohitetut tuotteet: %1").arg(countText(count))
                              : QStringLiteral("Ohitetut tilaukset: %1").arg(countText(count)));
        html.beginTable({QStringLiteral("Tuote"), QStringLiteral("Missä"), QStringLiteral("Syy")});
        visitRows(list, finding, kListedPassedOver, [&](int row) {
            html.tableRow({subjectText(list, row), placeText(list, row), list.reason(row)});
        });
        tellRest(html, count, kListedPassedOver);
    }
}

}  // namespace vatchange
