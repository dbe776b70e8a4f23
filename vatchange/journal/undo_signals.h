#pragma once

#include <memory>
#include <optional>

#include "vatchange/journal/net_change.h"
#include "vatchange/journal/undo.h"
#include "vatchange/journal/undo_tables.h"

namespace vatchange {

/// Labels and marks products again whose label or web shop mark of a run was consumed.
class UndoSignals {
  public:
    UndoSignals(data::Database& database, UndoPorts& ports)
        : m_database(database), m_ports(ports) {}

    /// `change`: of the product's label or mark. @throws data::DataError.
    void repeat(const UndoTable& table, const NetChange& change);

  private:
    void label(const UndoTable& table, const QString& product);
    void mark(const UndoTable& table, const NetChange& change);
    double labelsOf(const QString& product);

    data::Database& m_database;
    UndoPorts& m_ports;
    std::unique_ptr<data::TableFile> m_products;
    std::optional<bool> m_logged;
};

}  // namespace vatchange
