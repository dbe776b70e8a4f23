#pragma once

#include <QtGlobal>
#include <vector>

namespace vatchange {

/// How changes of prices, in percent, are spread: bins of equal width that hold all but the most
/// extreme 2 % of them and every expected change; the others are counted outside.
struct PriceSpread {
    double from = 0.0;   ///< where the first bin begins, in percent
    double width = 0.0;  ///< of a bin: 1, 2 or 5 times a power of 10
    std::vector<qint64> bins;
    qint64 below = 0;
    qint64 above = 0;
    qint64 count = 0;  ///< all changes
    double mean = 0.0;
    double median = 0.0;
    std::vector<double> expected;  ///< by the coefficients, ascending, each once
};

inline constexpr int kMaxSpreadBins = 30;

PriceSpread spreadOf(std::vector<double> percents, std::vector<double> expected);

}  // namespace vatchange
