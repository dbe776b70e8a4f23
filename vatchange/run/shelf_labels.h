#pragma once

#include "data/sql/uni_query.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

/// State of the label table, determined before any change.
enum class LabelTable {
    NotWritten,  ///< labels are off or the table cannot be read
    Plain,
    WithQuantityDiscounts,  ///< has the columns of quantity discounts
};

/// Reads the label table's columns.
LabelTable findLabelTable(data::Database& database);

/// Writes shelf label rows of changed products: resets existing rows or inserts one.
class ShelfLabels {
  public:
    ShelfLabels(data::Database& database, RunPorts& ports, LabelTable table);

    enum class Outcome {
        Done,
        Failed,       ///< the user continues without the label
        FailedAndEnd  ///< the step must end: the run is unattended or the user ends it
    };
    /// Does nothing for NotWritten. A failure has been shown.
    Outcome write(const QString& number, qint64 labels);
    /// Message of the first failure, even if the user continued; empty if none.
    const QString& failure() const { return m_failure; }
    qint64 written() const { return m_written; }

  private:
    Outcome failed(const QString& text, const std::exception& error);

    RunPorts& m_ports;
    const LabelTable m_table;
    data::TUniQuery m_update;
    data::TUniQuery m_insert;
    QString m_failure;
    qint64 m_written = 0;
};

}  // namespace vatchange
