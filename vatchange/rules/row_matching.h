#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace vatchange {

/// The amounts of a row or record in a fixed order of columns.
using Amounts = std::vector<double>;

/// How far an amount read with a query may differ from the record's own, as a share of it: drivers
/// hand over a single with six digits, a double with fifteen.
inline constexpr double kSingleTolerance = 1e-5;
inline constexpr double kDoubleTolerance = 1e-12;

/// A record of a key that several records share.
struct KeyRecord {
    Amounts amounts;     ///< before the run
    bool taken = false;  ///< belongs to an earlier row
};

/// Which record a row was read from, by the amounts of both: the nearest one not taken yet whose
/// amounts all agree within `tolerances`. Records that agree in all amounts are interchangeable,
/// because new amounts come from the old ones alone.
/// @return the index of the record; nothing when none agrees.
std::optional<size_t> recordOfRow(const Amounts& row, const std::vector<KeyRecord>& records,
                                  const Amounts& tolerances);

/// Texts of a record and a query compare without trailing blanks, which some drivers add.
bool sameText(const QString& left, const QString& right);

}  // namespace vatchange
