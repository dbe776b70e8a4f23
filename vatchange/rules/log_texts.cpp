#include "vatchange/rules/log_texts.h"

#include <QStringList>
#include <array>
#include <cmath>

#include "vatchange/rules/statements.h"

namespace vatchange {

namespace {

QString threeDecimals(double amount) {
    return QString::number(amount, 'f', 3);
}

QString euros(double amount) {
    return QString::number(amount, 'f', 4) + QStringLiteral("€ ");
}

/// A quantity in its shortest form: 1, 2.5.
QString quantityText(double quantity) {
    QString text = factorText(quantity);
    if (text.endsWith(QLatin1String(".0")))
        text.chop(2);
    return text;
}

QString arrow(double before, double after) {
    return euros(before) + QStringLiteral(" -> ") + euros(after);
}

}  // namespace

QString roundingText(const ChangeDefinition& definition) {
    static const std::array<QString, 3> kRules = {
        QStringLiteral("Normaali"), QStringLiteral("Aina ylös"), QStringLiteral("Aina alas")};
    static const std::array<QString, 5> kSteps = {QStringLiteral("0,1"), QStringLiteral("1"),
                                                  QStringLiteral("5"), QStringLiteral("10"),
                                                  QStringLiteral("0,01")};
    return kRules[static_cast<size_t>(definition.roundingRule)] + QStringLiteral(", ") +
           kSteps[static_cast<size_t>(definition.roundingStep)] + QStringLiteral(" senttiä");
}

QString productLine(const QString& number, const PriceRules& rules, const ProductPrices& before,
                    const ProductPrices& after) {
    QString line = QStringLiteral("Tuote: ") + number;
    for (int level = 1; level <= kPriceLevels; ++level) {
        const auto index = static_cast<size_t>(level - 1);
        const auto source = static_cast<size_t>(rules.sources()[index]);
        if (source == 0)
            continue;
        line += QStringLiteral(" VANHAHINTA(=") + kPriceColumns[source] + QStringLiteral(" )") +
                QString::number(level) + u'=' + threeDecimals(before.levels[source - 1]) +
                QStringLiteral(", UUSIHINTA=") + threeDecimals(after.levels[index]);
    }
    if (rules.changesPurchase()) {
        line += QStringLiteral(" VANHAOSTOHINTA=") + threeDecimals(before.averagePurchase) +
                QStringLiteral(", UUSIOSTOHINTA=") + threeDecimals(after.averagePurchase);
    }
    if (rules.changesLastPurchase()) {
        line += QStringLiteral(" VANHAVIIMOH=") + threeDecimals(before.lastPurchase) +
                QStringLiteral(", UUSIVIIMOH=") + threeDecimals(after.lastPurchase);
    }
    return line;
}

QString limitedProductText(const QString& number, const ChangeDefinition& definition,
                           const PriceRules& rules, const ProductPrices& before,
                           const ProductPrices& after) {
    QStringList prices;
    for (size_t i = 0; i < before.levels.size(); ++i) {
        if (rules.sources()[i] == 0)
            continue;
        const double old = before.levels[i];
        QString price = kPriceColumns[i + 1] + u' ' + threeDecimals(old) + QStringLiteral(" -> ") +
                        threeDecimals(after.levels[i]);
        if (old != 0.0) {
            const double percent = (after.levels[i] - old) / std::abs(old) * 100.0;
            price += QString::asprintf(" (%+.2f %%)", percent);
        }
        prices += price;
    }
    return QStringLiteral("tuotetta %1 ei muuteta, turvaraja %2 % ylittyy: %3")
        .arg(number, quantityText(definition.mostPercent.value_or(0.0)),
             prices.join(QStringLiteral(", ")));
}

QString customerPriceLine(int customerType, qint64 customer, const QString& product,
                          double quantity, const AmountChange& price, const AmountChange& priceVat0,
                          const AmountChange& purchase) {
    QString who = QStringLiteral("Asiakas ");
    if (customerType == 1)
        who = QStringLiteral("As.ryhmä ");
    else if (customerType == 2)
        who = QStringLiteral("Webas.ryhmä ");
    return who + QString::number(customer) + QStringLiteral(" tuote: ") + product +
           QStringLiteral(" määrä: ") + quantityText(quantity) + QStringLiteral("  hinta: ") +
           arrow(price.before, price.after) + QStringLiteral("  hintaalv0: ") +
           arrow(priceVat0.before, priceVat0.after) + QStringLiteral(" ostohinta: ") +
           arrow(purchase.before, purchase.after);
}

QString campaignLine(const QString& product, qint64 row, const AmountChange& sales,
                     const AmountChange& purchase) {
    return QStringLiteral("Kampanja: ") + product + u' ' + QString::number(row) +
           QString::asprintf("; %5.2f;%5.2f;%5.2f;%5.2f", sales.before, sales.after,
                             purchase.before, purchase.after);
}

QString recurringInvoiceLine(qint64 customer, const QString& product, const AmountChange& price,
                             const AmountChange& total, const AmountChange& purchase) {
    return QStringLiteral("Asiakas ") + QString::number(customer) + QStringLiteral(", tuote ") +
           product +
           QString::asprintf("%5.2f; %5.2f; %5.2f; %5.2f; %5.2f;%5.2f", price.before, price.after,
                             total.before, total.after, purchase.before, purchase.after);
}

QString quantityDiscountLine(const QString& name, qint64 number, const AmountChange& value,
                             const AmountChange& purchase) {
    return QStringLiteral("Määräale ") + name + QStringLiteral(" ( ") + QString::number(number) +
           QStringLiteral(" )") +
           QString::asprintf(" arvo: %.4f -> %.4f ostohinta: %.4f -> %.4f", value.before,
                             value.after, purchase.before, purchase.after);
}

QString rowCountLine(qint64 rows) {
    return QStringLiteral(" ( ") + QString::number(rows) + QStringLiteral(" rivi)");
}

}  // namespace vatchange
