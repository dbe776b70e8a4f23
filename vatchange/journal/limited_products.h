#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "data/engine/run_journal.h"

namespace vatchange {

/// A product that a run passes over because a price would change by more than the definition
/// allows.
struct LimitedProduct {
    struct Price {
        int level = 0;  ///< 1..9
        double before = 0.0;
        double after = 0.0;  ///< what the run would have set
    };
    QString number;
    qint64 quantityDiscount = 0;  ///< its number; 0: none
    std::vector<Price> prices;    ///< of all levels with a source
};

/// Stores the products that a run passes over by its judgement before the first change.
void storeLimitedProducts(data::RunJournal& journal, qint64 run,
                          const std::vector<LimitedProduct>& products);
/// Whether they have been stored, also if there are none.
bool hasLimitedProducts(data::RunJournal& journal, qint64 run);
/// Visits them in the order in which they were judged. @throws data::DataError(Damaged).
void visitLimitedProducts(data::RunJournal& journal, qint64 run,
                          const std::function<void(const LimitedProduct&)>& visitor);

}  // namespace vatchange
