#pragma once

#include <memory>

#include "vatchange/journal/order_progress.h"
#include "vatchange/orders/order_rules.h"
#include "vatchange/orders/order_walk.h"

namespace vatchange {

/// Converts the open sales orders. Posts each row once changed and each header once summed. A
/// database error ends the conversion: posted rows remain, the destructor releases locks.
class TAlvMuutosMt {
  public:
    /// Opens the tables. `changedRows` is incremented with every row posted. `progress`: of the
    /// run. The references must outlive the object. @throws data::DataError.
    TAlvMuutosMt(data::Database& database, const SalesOrderChange& change, const VatFactor& factor,
                 RunPorts& ports, qint64& changedRows, OrderProgress progress = {});
    ~TAlvMuutosMt();

    /// Converts all orders. Returns false if the user stopped before the last row; the totals of
    /// the current order are then updated.
    bool TeeAlvMuutosMt();

  private:
    struct Fields;

    void MuutaMtTilaus(qint64 number);
    void MuutaMtRivi(bool special);
    void LaskeMtSummat();
    SalesRow readRow() const;

    const SalesOrderChange& m_change;
    const VatFactor& m_factor;
    RunPorts& m_ports;
    qint64& m_changedRows;
    OrderProgress m_progress;
    OrderWalk m_walk;
    data::TtbTable MtTable;
    data::TtbTable MtRiviTable;
    data::TUniQuery SQLKysely;
    std::unique_ptr<Fields> m_fields;
};

/// Converts all open sales orders, then shows "Myyntitilaukset konvertoitu.". Returns false if the
/// user stopped. Orders that the run has finished before are passed over. Database errors
/// propagate.
bool AlvMuutosMyyntitilauksiin(data::Database& database, const SalesOrderChange& change,
                               const VatFactor& factor, RunPorts& ports, qint64& changedRows,
                               OrderProgress progress = {});

}  // namespace vatchange
