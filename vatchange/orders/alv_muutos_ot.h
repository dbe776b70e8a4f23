#pragma once

#include <memory>

#include "vatchange/journal/order_progress.h"
#include "vatchange/orders/order_rules.h"
#include "vatchange/orders/order_walk.h"

namespace vatchange {

/// Converts the open purchase orders, with the guarantees of TAlvMuutosMt.
class TAlvMuutosOt {
  public:
    /// Opens the tables. `changedRows` is incremented with every row posted. `progress`: of the
    /// run. The references must outlive the object. @throws data::DataError.
    TAlvMuutosOt(data::Database& database, const PurchaseOrderChange& change,
                 const VatFactor& factor, RunPorts& ports, qint64& changedRows,
                 OrderProgress progress = {});
    ~TAlvMuutosOt();

    /// Converts all orders. Returns false if the user stopped before the last row; the totals of
    /// the current order are then updated.
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
    OrderProgress m_progress;
    OrderWalk m_walk;
    data::TtbTable OtTable;
    data::TtbTable OtRiviTable;
    data::TUniQuery SQLKysely;
    std::unique_ptr<Fields> m_fields;
};

/// Converts all open purchase orders, then shows "Ostotilaukset konvertoitu.". Returns false if the
/// user stopped. Orders that the run has finished before are passed over. Database errors
/// propagate.
bool AlvMuutosOstotilauksiin(data::Database& database, const PurchaseOrderChange& change,
                             const VatFactor& factor, RunPorts& ports, qint64& changedRows,
                             OrderProgress progress = {});

}  // namespace vatchange
