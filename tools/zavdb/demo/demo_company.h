#pragma once

#include <QString>
#include <functional>

#include "data/engine/engine.h"

/// The data of an invented Finnish retail and wholesale company: what `zavdb demo` fills a new
/// database with. Everything follows from the options alone; no clock, locale or platform is asked.
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
