#pragma once

#include <map>

#include "data/record/tb_table.h"
#include "data/sql/uni_query.h"
#include "vatchange/orders/order_module.h"
#include "vatchange/orders/order_rules.h"

namespace vatchange {

/// The data module of the order conversions: four record tables and the query that lists the
/// orders. Every row is posted as soon as it is changed and every header as soon as it is summed;
/// a database error ends the conversion with the order and row added to its detail, and what is
/// locked is released with the module.
///
/// When the user stops a conversion, the order in hand gets its totals and no further one is begun.
class TAlvMuutosMt {
  public:
    /// Opens the tables on their primary index. @throws data::DataError.
    TAlvMuutosMt(data::Database& database, const OrderPorts& ports);
    ~TAlvMuutosMt();

    static QString caption() { return QStringLiteral("Alvmuutos myynti- ja ostotilauksiin"); }

    void setPriceDecimals(int decimals) { m_priceDecimals = decimals; }
    void setSalesCoefficient(double coefficient);     ///< not above 0: 1.0
    void setPurchaseCoefficient(double coefficient);  ///< not above 0: 1.0

    /// Converts the open sales orders that are delivered on the limit or later (invalid: all).
    void TeeAlvMuutosMt(bool keepVat0, int sourceClass, int targetClass,
                        const QDate& deliveryLimit);
    /// Converts the open purchase orders.
    void TeeAlvMuutosOt(bool keepVat0, int sourceClass, int targetClass);

    /// True when the user stopped the conversion before its last row.
    bool stopped() const { return m_stopped; }

  private:
    struct SalesFields;
    struct PurchaseFields;

    void MuutaMtTilaus(qint64 number);
    void MuutaMtRivi(bool special);
    void LaskeMtSummat();
    SalesRow readSalesRow() const;

    void MuutaOtTilaus(qint64 number);
    void MuutaOtRivi();
    void LaskeOtSummat();
    PurchaseRow readPurchaseRow() const;

    void walkOrders(const QString& numberField, const QString& statusName,
                    void (TAlvMuutosMt::*convert)(qint64));
    QString place(qint64 order, const QString& tableName) const;
    bool stopAsked();
    void trace(const QString& text) const;
    double factor(qint64 vatClass);

    const OrderPorts& m_ports;
    data::TtbTable MtTable;
    data::TtbTable MtRiviTable;
    data::TtbTable OtTable;
    data::TtbTable OtRiviTable;
    data::TUniQuery SQLKysely;
    std::unique_ptr<SalesFields> m_sales;
    std::unique_ptr<PurchaseFields> m_purchase;

    int m_priceDecimals = 2;
    double m_salesCoefficient = 1.0;
    double m_purchaseCoefficient = 1.0;
    bool m_keepVat0 = false;
    qint64 m_sourceClass = 0;
    qint64 m_targetClass = 0;
    std::map<qint64, double> m_factors;  // each class's rate is asked for once
    VatFactor m_factor;
    bool m_stopped = false;
};

}  // namespace vatchange
