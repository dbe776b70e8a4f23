#include "vatchange/changes/change_overview.h"

#include <algorithm>
#include <cmath>

#include "vatchange/changes/change_list.h"
#include "vatchange/changes/expected_change.h"

namespace vatchange {

namespace {

constexpr double kPercentPlaces = 1e6;  // coefficients that differ less are the same

/// What the definitions make of the fields that a picture counts, in percent.
std::vector<double> expectedPercents(const ChangeList& list, const std::vector<bool>& counted) {
    std::vector<double> percents;
    for (const ChangeList::Run& run : list.runs()) {
        if (!run.definition)
            continue;
        for (size_t field = 0; field < counted.size(); ++field) {
            if (!counted[field])
                continue;
            const ExpectedChange expected(*run.definition, run.rates, list.fields()[field]);
            if (expected.coefficient())
                percents.push_back(
                    std::round((*expected.coefficient() - 1.0) * 100.0 * kPercentPlaces) /
                    kPercentPlaces);
        }
    }
    return percents;
}

}  // namespace

ChangeOverview overviewOf(const ChangeList& list) {
    ChangeOverview overview;
    std::vector<ChangedPrices> prices(list.fields().size());
    std::vector<double> sums(list.fields().size());
    std::vector<bool> counted(list.fields().size());
    std::vector<bool> products(static_cast<size_t>(list.productCount()));
    std::vector<double> percents;
    for (int row = 0; row < list.rowCount(); ++row) {
        const ChangedField& field = list.field(row);
        if (list.kind(row) != ChangeKind::Field || !field.sold || list.isVoid(row))
            continue;
        const auto index = static_cast<size_t>(list.fieldIndex(row));
        ++prices[index].count;
        const std::optional<double> percent = list.percent(row);
        if (percent) {
            ++prices[index].compared;
            sums[index] += *percent;
        }
        if (!field.price)
            continue;
        counted[index] = true;
        if (percent)
            percents.push_back(*percent);
        if (list.productOf(row) >= 0)
            products[static_cast<size_t>(list.productOf(row))] = true;
        overview.endings.before.add(list.before(row));
        overview.endings.after.add(list.after(row));
        ++overview.endings.prices;
    }
    overview.products = std::count(products.begin(), products.end(), true);
    for (int table = 0; table < list.tables().size(); ++table) {
        if (list.changedRecords(table) > 0)
            overview.tables.push_back({list.tables()[table], list.changedRecords(table)});
        const size_t first = overview.prices.size();
        for (size_t index = 0; index < prices.size(); ++index) {
            const ChangedField& field = list.fields()[index];
            if (prices[index].count == 0 ||
                field.table.compare(list.tables()[table], Qt::CaseInsensitive) != 0)
                continue;
            ChangedPrices price = prices[index];
            price.table = field.table;
            price.title = field.title;
            price.field = static_cast<int>(index);
            price.level = field.level;
            if (price.compared > 0)
                price.meanPercent = sums[index] / static_cast<double>(price.compared);
            overview.prices.push_back(price);
        }
        std::stable_sort(
            overview.prices.begin() + static_cast<std::ptrdiff_t>(first), overview.prices.end(),
            [](const ChangedPrices& a, const ChangedPrices& b) { return a.level < b.level; });
    }
    overview.spread = spreadOf(std::move(percents), expectedPercents(list, counted));
    for (int finding = 0; finding < kChangeFindings; ++finding)
        overview.findings[static_cast<size_t>(finding)] =
            list.findingCount(static_cast<ChangeFinding>(finding));
    return overview;
}

}  // namespace vatchange
