#pragma once

#include "data/sql/uni_query.h"
#include "vatchange/run/run_ports.h"

namespace vatchange {

/// Writes shelf-edge label rows of changed products: resets the product's row, or inserts one.
class ShelfLabels {
  public:
    ShelfLabels(data::Database& database, RunPorts& ports, bool quantityDiscountColumns);

    /// @return false when a statement failed and the step must end: the failure has been shown, and
    /// there was nobody to go on, or the user would not.
    bool write(const QString& number, qint64 labels);
    /// A statement has failed, whether or not the user went on.
    bool failed() const { return m_failed; }

  private:
    bool goOnAfter(const QString& text, const std::exception& error);

    RunPorts& m_ports;
    data::TUniQuery m_update;
    data::TUniQuery m_insert;
    bool m_failed = false;
};

/// Reads the label table's columns. @return whether it has those of quantity discounts.
bool hasQuantityDiscountColumns(data::Database& database);

}  // namespace vatchange
