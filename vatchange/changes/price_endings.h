#pragma once

#include <QtGlobal>
#include <array>

namespace vatchange {

/// The last digits of prices in cents.
struct EndingCounts {
    enum Digit { Zero, Five, Nine, Other };  ///< x,x0 x,x5 x,x9 and all others
    enum Cents { Cents90, Cents95, Cents99 };
    std::array<qint64, 4> digits{};
    std::array<qint64, 3> cents{};

    /// A price with fractions of a cent counts as Other.
    void add(double price);
    bool operator==(const EndingCounts&) const = default;
};

/// Endings of the same prices before and after the run.
struct PriceEndings {
    EndingCounts before;
    EndingCounts after;
    qint64 prices = 0;
};

}  // namespace vatchange
