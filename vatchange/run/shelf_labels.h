#pragma once

#include "data/sql/uni_query.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

/// What a run knows of the label table before it changes anything.
enum class LabelTable {
    NotWritten,  ///< labels are not wanted, or the table cannot be read
    Plain,
    WithQuantityDiscounts,  ///< has the columns of quantity discounts
};

/// Reads the label table's columns.
LabelTable findLabelTable(data::Database& database);

/// Writes shelf-edge label rows of changed products: resets the product's row, or inserts one.
class ShelfLabels {
  public:
    ShelfLabels(data::Database& database, RunPorts& ports, LabelTable table);

    /// Does nothing when labels are not written.
    /// @return false when a statement failed and the step must end: the failure has been shown, and
    /// there was nobody to ask, or the user ends the run.
    bool write(const QString& number, qint64 labels);
    /// What the first statement that failed reported, whether or not the user went on; empty when
    /// none has.
    const QString& failure() const { return m_failure; }
    qint64 written() const { return m_written; }

  private:
    bool goOnAfter(const QString& text, const std::exception& error);

    RunPorts& m_ports;
    const LabelTable m_table;
    data::TUniQuery m_update;
    data::TUniQuery m_insert;
    QString m_failure;
    qint64 m_written = 0;
};

}  // namespace vatchange
