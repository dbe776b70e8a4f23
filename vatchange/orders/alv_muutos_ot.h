#pragma once

#include <memory>

#include "vatchange/orders/order_rules.h"
#include "vatchange/orders/order_walk.h"

namespace vatchange {

/// The conversion of the open purchase orders; the same guarantees as TAlvMuutosMt gives.
class TAlvMuutosOt {
  public:
    /// Opens the tables. `changedRows` is incremented with every row posted. The references must
    /// outlive the object. @throws data::DataError.
    TAlvMuutosOt(data::Database& database, const PurchaseOrderChange& change,
                 const VatFactor& factor, RunPorts& ports, qint64& changedRows);
    ~TAlvMuutosOt();

    /// Converts all of them. @return false when the user stopped it before the last row; the order
    /// in hand has its totals then.
    bool TeeAlvMuutosOt();

  private:
    struct Fields;

    void MuutaOtTilaus(qint64 number);
    void MuutaOtRivi();
    void LaskeOtSummat();
    PurchaseRow readRow() const;

    const PurchaseOrderChange& m_change;
    const VatFactor& m_factor;
    qint64& m_changedRows;
    OrderWalk m_walk;
    data::TtbTable OtTable;
    data::TtbTable OtRiviTable;
    data::TUniQuery SQLKysely;
    std::unique_ptr<Fields> m_fields;
};

/// Converts all open purchase orders, then shows "Ostotilaukset konvertoitu.". @return false when
/// the user stopped it. Database errors reach the caller.
bool AlvMuutosOstotilauksiin(data::Database& database, const PurchaseOrderChange& change,
                             const VatFactor& factor, RunPorts& ports, qint64& changedRows);

}  // namespace vatchange
