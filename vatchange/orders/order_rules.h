#pragma once

#include <QDate>
#include <functional>

#include "vatchange/rules/order_selection.h"

/// The arithmetic of one order row and of an order's totals: values in, values out. Operations are
/// done in doubles in the order written, one rounding each.
namespace vatchange {

/// An amount with the precision of the field that stores it: a single-precision field rounds the
/// value before the next operation uses it.
class Amount {
  public:
    enum class Precision { Double, Single };

    Amount() = default;
    explicit Amount(double value, Precision precision = Precision::Double)
        : m_precision(precision) {
        *this = value;
    }
    Amount& operator=(double value) {
        m_value = m_precision == Precision::Single ? double(static_cast<float>(value)) : value;
        return *this;
    }
    operator double() const { return m_value; }

  private:
    double m_value = 0.0;
    Precision m_precision = Precision::Double;
};

/// 1 + rate / 100 of a VAT class.
using VatFactor = std::function<double(qint64 vatClass)>;

/// Charging methods are numbered from 0 to this.
inline constexpr qint64 kLastChargingMethod = 31;

/// True for charging methods whose rows keep their sales price and row total; false for numbers
/// that are no method.
bool OnHintaVeloitustapa(qint64 method);

/// One row of a sales order. Prices are per unit; "Alv0" is without VAT.
struct SalesRow {
    qint64 verokanta = 0;  ///< VAT class of the sales price
    qint64 ostoVero = 0;   ///< VAT class of the purchase price
    double toimitettava = 0.0;
    double maara = 0.0;
    double alennus = 0.0;  ///< percent; applies only above 0 and up to 100
    Amount ahinta;
    Amount ahintaAlv0;
    Amount ostohinta;
    Amount ostohintaAlv0;
    Amount netto;  ///< row total with VAT after discount
    Amount kate;
    Amount kateAlv0;
    bool rakenneEmo = false;
    bool pakettiLapsi = false;
    bool onVariKokoEmo = false;

    /// Structure parents, package children and variant parents are not summed into the header.
    bool countsInTotals() const { return !rakenneEmo && !pakettiLapsi && !onVariKokoEmo; }
};

/// How the open sales orders are converted.
struct SalesOrderChange {
    int priceDecimals = 2;
    bool keepVat0 = false;  ///< compute prices from the price without VAT
    qint64 sourceClass = 0;
    qint64 targetClass = 0;
    double purchaseCoefficient = 1.0;  ///< not above 0: 1.0
    double salesCoefficient = 1.0;     ///< not above 0: 1.0
    QDate deliveryLimit;               ///< orders delivered earlier are skipped; invalid: no limit
};

/// True for rows of the source class with an undelivered quantity, negative ones included.
bool isSalesRowConverted(const SalesRow& row, qint64 sourceClass);

/// `special`: the order's charging method keeps the row's sales price and total.
void convertSalesRow(SalesRow& row, const SalesOrderChange& change, bool special,
                     const VatFactor& factor);

/// Totals of a sales order's header.
struct SalesTotals {
    Amount summa;
    Amount kate;
    Amount kateAlv0;
    Amount summaAlv0;
};

/// A row with a total but zero margin gets margin mark 1 and is not summed into the header's
/// margins.
bool needsMarginMark(const SalesRow& row);
inline constexpr double kMarginMark = 1.0;

/// Adds a row to the totals, without its margins if `marked`.
void addSalesRow(SalesTotals& totals, const SalesRow& row, bool marked);
void roundSalesTotals(SalesTotals& totals, int priceDecimals);

/// One row of a purchase order.
struct PurchaseRow {
    qint64 alvLuokka = 0;
    double tulematta = 0.0;  ///< quantity still to arrive
    double maara = 0.0;
    double alennus = 0.0;  ///< percent, any value
    Amount ostoHinta;
    Amount ostoHintaAlv0;
    Amount summa;
    bool variKokoLapsi = false;
};

/// How the open purchase orders are converted.
struct PurchaseOrderChange {
    int priceDecimals = 2;  ///< for the trace only; nothing is rounded
    bool keepVat0 = false;  ///< compute prices from the price without VAT
    qint64 sourceClass = 0;
    qint64 targetClass = 0;
    double coefficient = 1.0;  ///< not above 0: 1.0
};

bool isPurchaseRowConverted(const PurchaseRow& row, qint64 sourceClass);

void convertPurchaseRow(PurchaseRow& row, const PurchaseOrderChange& change,
                        const VatFactor& factor);

/// Totals of a purchase order's header: doubles, unrounded until stored.
struct PurchaseTotals {
    double summa = 0.0;
    double summaAlv0 = 0.0;
};

/// Adds a row unless it is a variant child.
void addPurchaseRow(PurchaseTotals& totals, const PurchaseRow& row);

}  // namespace vatchange
