#pragma once

#include <QString>
#include <array>
#include <vector>

#include "vatchange/changes/change_finding.h"
#include "vatchange/changes/price_endings.h"
#include "vatchange/changes/price_spread.h"

namespace vatchange {

class ChangeList;

/// The changes of one price field of a table.
struct ChangedPrices {
    QString table;             ///< as the catalogue writes it
    QString title;             ///< of the field: "Taso 1"
    int field = 0;             ///< index into ChangeList::fields()
    int level = 0;             ///< 1..9; 0: no level
    qint64 count = 0;          ///< records in which it changed
    qint64 compared = 0;       ///< of them with a price above 0 before
    double meanPercent = 0.0;  ///< mean change of those
};

struct ChangedTable {
    QString table;
    qint64 records = 0;
};

/// What people look at first.
struct ChangeOverview {
    qint64 products = 0;                ///< products of which a price changed
    std::vector<ChangedTable> tables;   ///< in the order of the run, with changed records only
    std::vector<ChangedPrices> prices;  ///< the same order, levels ascending
    PriceSpread spread;
    PriceEndings endings;
    std::array<qint64, kChangeFindings> findings{};  ///< rows with each finding
};

ChangeOverview overviewOf(const ChangeList& list);

}  // namespace vatchange
