#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "data/engine/engine.h"
#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// Rows of a price table whose prices would be multiplied a second time. Rows that agree in the
/// columns of the step's UPDATE count as one.
struct RepeatedRows {
    static constexpr int kListed = 10;

    QString table;
    std::vector<data::RecordId> records;  ///< ascending
    QStringList keys;                     ///< of the first kListed, as keyText()
};

/// Rows of customer price lists, campaigns, recurring invoices and quantity discounts that a run
/// changed, whose product that run has not converted yet, and that a definition would change again.
/// @throws data::DataError.
std::vector<RepeatedRows> repeatedRows(data::Database& database, qint64 run,
                                       const ChangeDefinition& definition);
/// "asiakashinnastojen rivit 2 (1001 A1 0 1; 1002 A1 0 1), kampanjarivit 1 (A1 3)"
QString repeatedRowsText(const std::vector<RepeatedRows>& tables);

}  // namespace vatchange
