#include "vatchange/orders/order_rules.h"

#include "vatchange/rules/rounding.h"

namespace vatchange {

namespace {

constexpr quint32 methodBits(std::initializer_list<int> methods) {
    quint32 bits = 0;
    for (const int method : methods)
        bits |= quint32{1} << method;
    return bits;
}

constexpr quint32 kKeepsPrices = methodBits({4, 5, 7, 8, 10, 11, 13, 14, 16, 19, 20, 21});

bool contains(quint32 set, qint64 method) {
    return method >= 0 && method <= kLastChargingMethod && ((set >> method) & 1U) != 0;
}

// Sales rows ignore discounts outside 0..100 %; purchase rows apply any.
double discounted(double amount, double percent) {
    return percent > 0 && percent <= 100 ? amount * (1 - percent / 100) : amount;
}

double positiveOrOne(double coefficient) {
    return coefficient > 0 ? coefficient : 1.0;
}

double netVat0(const SalesRow& row) {
    return discounted(row.ahintaAlv0 * row.maara, row.alennus);
}

}  // namespace

bool OnHintaVeloitustapa(qint64 method) {
    return contains(kKeepsPrices, method);
}

bool isSalesRowConverted(const SalesRow& row, qint64 sourceClass) {
    return row.verokanta == sourceClass && row.toimitettava != 0;
}

void convertSalesRow(SalesRow& row, const SalesOrderChange& change, bool special,
                     const VatFactor& factor) {
    row.verokanta = change.targetClass;
    if (row.ostoVero == change.sourceClass)
        row.ostoVero = change.targetClass;
    row.ostohinta = row.ostohinta * positiveOrOne(change.purchaseCoefficient);
    row.ostohintaAlv0 = row.ostohinta / factor(row.ostoVero);

    if (change.keepVat0 && !special) {
        row.ahinta = factor(row.verokanta) * row.ahintaAlv0;
        row.ahinta = roundHalfAway(row.ahinta, change.priceDecimals);
    } else {
        if (!special) {
            const double coefficient = positiveOrOne(change.salesCoefficient);
            row.ahinta = row.ahinta * coefficient;
            if (coefficient != 1.0)
                row.ahinta = roundHalfAway(row.ahinta, change.priceDecimals);
        }
        row.ahintaAlv0 = row.ahinta / factor(row.verokanta);
    }

    if (!special)
        row.netto =
            roundBankers(discounted(row.ahinta * row.maara, row.alennus), change.priceDecimals);
    row.kate = row.netto - row.maara * row.ostohinta;
    row.kateAlv0 = netVat0(row) - row.maara * row.ostohintaAlv0;
    row.kate = roundBankers(row.kate, change.priceDecimals);
    row.kateAlv0 = roundBankers(row.kateAlv0, change.priceDecimals);
}

bool needsMarginMark(const SalesRow& row) {
    return row.kate == 0 && row.netto != 0;
}

void addSalesRow(SalesTotals& totals, const SalesRow& row, bool marked) {
    if (!row.countsInTotals())
        return;
    totals.summa = totals.summa + row.netto;
    const double vat0 = netVat0(row);
    totals.summaAlv0 = totals.summaAlv0 + vat0;
    if (!marked) {
        totals.kate = totals.kate + row.netto - row.maara * row.ostohinta;
        totals.kateAlv0 = totals.kateAlv0 + vat0 - row.maara * row.ostohintaAlv0;
    }
}

void roundSalesTotals(SalesTotals& totals, int priceDecimals) {
    for (Amount* amount : {&totals.summa, &totals.kate, &totals.summaAlv0, &totals.kateAlv0})
        *amount = roundBankers(*amount, priceDecimals);
}

bool isPurchaseRowConverted(const PurchaseRow& row, qint64 sourceClass) {
    return row.alvLuokka == sourceClass && row.tulematta != 0;
}

void convertPurchaseRow(PurchaseRow& row, const PurchaseOrderChange& change,
                        const VatFactor& factor) {
    row.alvLuokka = change.targetClass;
    if (change.keepVat0) {
        row.ostoHinta = row.ostoHintaAlv0 * factor(row.alvLuokka);
    } else {
        row.ostoHinta = row.ostoHinta * positiveOrOne(change.coefficient);
        row.ostoHintaAlv0 = row.ostoHinta / factor(row.alvLuokka);
    }
    row.summa = row.ostoHinta * row.maara * (1 - row.alennus / 100);
}

void addPurchaseRow(PurchaseTotals& totals, const PurchaseRow& row) {
    if (row.variKokoLapsi)
        return;
    totals.summa += row.summa;
    totals.summaAlv0 += row.ostoHintaAlv0 * row.maara * (1 - row.alennus / 100);
}

}  // namespace vatchange
