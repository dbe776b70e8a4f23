#pragma once

#include "data/sql/uni_query.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

/// Writes shelf-edge label rows of changed products: resets the product's row, or inserts one.
class ShelfLabels {
  public:
    ShelfLabels(data::Database& database, RunPorts& ports, bool quantityDiscountColumns);

    /// @return false when a statement failed and the step must end: the failure has been shown, and
    /// there was nobody to go on, or the user would not.
    bool write(const QString& number, qint64 labels);
    /// What the first statement that failed reported, whether or not the user went on; empty when
    /// none has.
    const QString& failure() const { return m_failure; }
    qint64 written() const { return m_written; }

  private:
    bool goOnAfter(const QString& text, const std::exception& error);

    RunPorts& m_ports;
    data::TUniQuery m_update;
    data::TUniQuery m_insert;
    QString m_failure;
    qint64 m_written = 0;
};

/// Reads the label table's columns. @return whether it has those of quantity discounts.
bool hasQuantityDiscountColumns(data::Database& database);

}  // namespace vatchange
