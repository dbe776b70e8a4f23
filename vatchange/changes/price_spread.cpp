#include "vatchange/changes/price_spread.h"

#include <algorithm>
#include <cmath>

namespace vatchange {

namespace {

constexpr double kOutside = 0.01;       // share of the changes on each side that may be left out
constexpr double kNarrowest = 0.001;    // bin width, in percent
constexpr double kSmallestRange = 0.1;  // in percent

/// The smallest width of 1, 2 or 5 times a power of 10 with which bins from a multiple of it reach
/// over a range.
double binWidth(double low, double high) {
    const double least = std::max((high - low) / (kMaxSpreadBins - 1), kNarrowest);
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (step * power >= least * (1 - 1e-9))
            return step * power;
    }
    return 10.0 * power;
}

double nth(std::vector<double>& values, double share) {
    const auto place =
        static_cast<std::ptrdiff_t>(std::round(share * static_cast<double>(values.size() - 1)));
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<size_t>(place)];
}

}  // namespace

PriceSpread spreadOf(std::vector<double> percents, std::vector<double> expected) {
    PriceSpread spread;
    std::sort(expected.begin(), expected.end());
    expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
    spread.expected = std::move(expected);
    spread.count = static_cast<qint64>(percents.size());
    if (percents.empty())
        return spread;
    double sum = 0.0;
    for (const double percent : percents)
        sum += percent;
    spread.mean = sum / static_cast<double>(percents.size());
    spread.median = nth(percents, 0.5);
    double low = nth(percents, kOutside);
    double high = nth(percents, 1 - kOutside);
    if (!spread.expected.empty()) {
        low = std::min(low, spread.expected.front());
        high = std::max(high, spread.expected.back());
    }
    const double missing = kSmallestRange - (high - low);
    if (missing > 0) {
        low -= missing / 2;
        high += missing / 2;
    }
    spread.width = binWidth(low, high);
    // a value on a bin's edge belongs to the bin that begins there, also when it is not exact
    const double slack = spread.width * 1e-6;
    spread.from = std::floor((low + slack) / spread.width) * spread.width;
    const auto bins =
        static_cast<size_t>(std::floor((high - spread.from + slack) / spread.width)) + 1;
    spread.bins.assign(bins, 0);
    for (const double percent : percents) {
        const double place = std::floor((percent - spread.from + slack) / spread.width);
        if (place < 0)
            ++spread.below;
        else if (place >= static_cast<double>(bins))
            ++spread.above;
        else
            ++spread.bins[static_cast<size_t>(place)];
    }
    return spread;
}

}  // namespace vatchange
