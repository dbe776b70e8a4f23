#include "vatchange/rules/row_matching.h"

#include <gtest/gtest.h>

namespace {

using vatchange::Amounts;
using vatchange::KeyRecord;

TEST(RowMatching, RecordOfARow) {
    struct Case {
        const char* what;
        Amounts row;
        std::vector<KeyRecord> records;
        std::optional<size_t> found;
    };
    // a double and a single
    const Amounts tolerances{vatchange::kDoubleTolerance, vatchange::kSingleTolerance};
    const auto third = static_cast<double>(1.0F / 3.0F);
    const std::vector<Case> cases = {
        {"its own", {80, 1}, {{{10, 1}}, {{80, 1}}}, 1},
        {"every amount counts", {80, 1}, {{{80, 2}}, {{80, 1}}}, 1},
        {"of equal ones the first", {10, 1}, {{{10, 1}}, {{10, 1}}}, 0},
        {"then the other", {10, 1}, {{{10, 1}, true}, {{10, 1}}}, 1},
        {"no record twice", {10, 1}, {{{10, 1}, true}}, std::nullopt},
        {"six digits of a single", {10, 0.333333}, {{{10, 0.34}}, {{10, third}}}, 1},
        {"fifteen digits of a double", {0.333333333333333, 1}, {{{1.0 / 3.0, 1}}}, 0},
        {"not six of a double", {0.333333, 1}, {{{1.0 / 3.0, 1}}}, std::nullopt},
        {"the nearest", {10, 0.333333}, {{{10, 0.333335}}, {{10, third}}}, 1},
        {"zero is no other amount", {10, 0}, {{{10, 1e-9}}, {{10, -0.0}}}, 1},
        {"none", {10, 1}, {}, std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(vatchange::recordOfRow(c.row, c.records, tolerances), c.found) << c.what;
}

}  // namespace
