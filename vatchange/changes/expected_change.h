#pragma once

#include <optional>

#include "vatchange/changes/change_list.h"
#include "vatchange/journal/run_notes.h"

namespace vatchange {

/// What a definition is expected to make of a field: its own old value times a coefficient. Also of
/// a price that the run computes from another level or from the price without VAT: if the two did
/// not fit before, the change is far from the expected one, and somebody should look at it.
class ExpectedChange {
  public:
    ExpectedChange() = default;  ///< nothing is expected
    /// `rates`: of the run's beginning; empty if they are not known.
    ExpectedChange(const ChangeDefinition& definition, const VatRates& rates,
                   const ChangedField& field);

    /// Nothing for a field of which nothing is expected.
    std::optional<double> coefficient() const { return m_coefficient; }
    /// Whether a change is further from the expected one than rounding explains: by more than one
    /// step of the rounding, or a cent where nothing is rounded. Below the price change limit the
    /// price is expected to stay.
    bool isFar(double before, double after) const;

  private:
    std::optional<double> m_coefficient;
    double m_limit = 0.0;
    double m_tolerance = 0.0;
};

}  // namespace vatchange
