#include "vatchange/changes/price_endings.h"

#include <cmath>

namespace vatchange {

void EndingCounts::add(double price) {
    // a price of single precision is off by up to a tenth of a cent at 10,000
    constexpr double kSameCent = 0.1;
    const double exact = std::fabs(price) * 100.0;
    const double whole = std::round(exact);
    if (!(std::fabs(exact - whole) < kSameCent) || whole > 1e15) {
        ++digits[Other];
        return;
    }
    const auto number = static_cast<qint64>(whole);
    switch (number % 10) {
        case 0:
            ++digits[Zero];
            break;
        case 5:
            ++digits[Five];
            break;
        case 9:
            ++digits[Nine];
            break;
        default:
            ++digits[Other];
    }
    switch (number % 100) {
        case 90:
            ++cents[Cents90];
            break;
        case 95:
            ++cents[Cents95];
            break;
        case 99:
            ++cents[Cents99];
            break;
        default:
            break;
    }
}

}  // namespace vatchange
