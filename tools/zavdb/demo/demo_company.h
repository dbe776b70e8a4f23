#pragma once

#include <QString>
#include <functional>

#include "data/engine/engine.h"

/// Data of an invented Finnish retail and wholesale company, for `zavdb demo`. Depends only on the
/// options, not on clock, locale or platform.
namespace tools::demo {

inline constexpr int kMinProducts = 10;
inline constexpr int kMaxProducts = 5'000'000;

struct Options {
    int products = 2000;
    quint64 seed = 1;
};

/// Called when a table is filled.
using Progress = std::function<void(const QString& table, qint64 rows)>;

/// Fills the tables of a new company. @throws data::DataError.
void fill(data::Database& database, const Options& options, const Progress& progress);

}  // namespace tools::demo
