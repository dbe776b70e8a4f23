#pragma once

#include <QString>
#include <QtGlobal>

namespace vatchange {

/// What deserves a look in the changes of a run; each is a filter of their table.
enum class ChangeFinding : quint8 {
    FarFromExpected,     ///< the new price is not what the coefficient makes of the old one
    NotPositive,         ///< a price became or stayed 0 or negative
    PriceUnchanged,      ///< the product's class changed, a price above 0 did not
    LevelOrder,          ///< a product's price levels end in a new order
    ProductPassedOver,   ///< a product that the run should have changed and did not
    OrderPassedOver,     ///< the same of an order, also one of a kind that is never converted
    OrderAtRisk,         ///< a converted order row that is partly delivered, or delivered too early
    LeftBehind,          ///< still carries the source class
    ChangedSince,        ///< somebody has changed it after the run
    OtherThanRehearsed,  ///< the rehearsal changed it differently, or not at all
    Undone,              ///< the change has been taken back
};
inline constexpr int kChangeFindings = 11;

/// Findings of a row, a bit each.
using FindingSet = quint16;
constexpr FindingSet bitOf(ChangeFinding finding) {
    return static_cast<FindingSet>(1U << static_cast<unsigned>(finding));
}

/// The finding's name in the window: "Poikkeaa odotetusta".
QString findingName(ChangeFinding finding);
/// What it means, a sentence.
QString findingHint(ChangeFinding finding);

}  // namespace vatchange
