#pragma once

#include <memory>

#include "vatchange/orders/order_rules.h"
#include "vatchange/orders/order_walk.h"

namespace vatchange {

/// The conversion of the open sales orders. Every row is posted as soon as it is changed and every
/// header as soon as it is summed; a database error ends the conversion, rows posted so far stay,
/// and what is locked is released with the object.
class TAlvMuutosMt {
  public:
    /// Opens the tables. `changedRows` is incremented with every row posted. The references must
    /// outlive the object. @throws data::DataError.
    TAlvMuutosMt(data::Database& database, const SalesOrderChange& change, const VatFactor& factor,
                 RunPorts& ports, qint64& changedRows);
    ~TAlvMuutosMt();

    /// Converts all of them. @return false when the user stopped it before the last row; the order
    /// in hand has its totals then.
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
    OrderWalk m_walk;
    data::TtbTable MtTable;
    data::TtbTable MtRiviTable;
    data::TUniQuery SQLKysely;
    std::unique_ptr<Fields> m_fields;
};

/// Converts all open sales orders, then shows "Myyntitilaukset konvertoitu.". @return false when
/// the user stopped it. Database errors reach the caller.
bool AlvMuutosMyyntitilauksiin(data::Database& database, const SalesOrderChange& change,
                               const VatFactor& factor, RunPorts& ports, qint64& changedRows);

}  // namespace vatchange
