#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace vatchange {

/// The amounts of a row or record in a fixed order of columns.
using Amounts = std::vector<double>;

/// Relative tolerances between an amount from a query and the stored one: drivers return singles
/// with six digits, doubles with fifteen.
inline constexpr double kSingleTolerance = 1e-5;
inline constexpr double kDoubleTolerance = 1e-12;

/// One of several records with the same key.
struct KeyRecord {
    Amounts amounts;     ///< before the run
    bool taken = false;  ///< already matched to a row
};

/// Finds the record a row was read from: the nearest unmatched one whose amounts all agree within
/// `tolerances`. Records with equal amounts are interchangeable, because new amounts depend on old
/// ones only. Returns its index, or nothing.
std::optional<size_t> recordOfRow(const Amounts& row, const std::vector<KeyRecord>& records,
                                  const Amounts& tolerances);

/// Compares texts without trailing blanks, which some drivers add.
bool sameText(const QString& left, const QString& right);

}  // namespace vatchange
