#pragma once

#include <QDate>
#include <QString>
#include <array>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

/// A change of rates by law, of which the form can make the definition.
struct RateChange {
    double source;  ///< percent
    double target;
    QDate from;  ///< the first day of the new rate

    /// "24 % → 25,5 % (1.9.2024), veroton hinta säilyy"
    QString caption() const;
};

/// "25,5 %"
QString percentText(double percent);

/// The Finnish changes: 24 to 25.5, 10 to 14, 14 to 13.5 percent.
extern const std::array<RateChange, 3> kRateChanges;

/// The definition of a change that keeps the VAT-free price of every price level. The classes are
/// those of the company with the rates. Everything else has its default.
ChangeDefinition readyDefinition(const RateChange& change, int sourceClass, int targetClass);

}  // namespace vatchange
