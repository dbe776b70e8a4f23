#include "vatchange/journal/limited_products.h"

#include "vatchange/journal/row_list.h"

namespace vatchange {

namespace {

// The list's name among those of the tables' rows. A row: number, quantity discount, then level,
// price before and after for each price.
const QString kList = QStringLiteral("limited products");
constexpr size_t kHead = 2;
constexpr size_t kPriceCells = 3;

}  // namespace

void storeLimitedProducts(data::RunJournal& journal, qint64 run,
                          const std::vector<LimitedProduct>& products) {
    RowListWriter writer(journal, run, kList);
    for (const LimitedProduct& product : products) {
        data::KeyValues row{product.number, product.quantityDiscount};
        for (const LimitedProduct::Price& price : product.prices) {
            row.emplace_back(static_cast<qint64>(price.level));
            row.emplace_back(price.before);
            row.emplace_back(price.after);
        }
        writer.add(row);
    }
    writer.finish();
}

bool hasLimitedProducts(data::RunJournal& journal, qint64 run) {
    return RowList::open(journal, run, kList).has_value();
}

void visitLimitedProducts(data::RunJournal& journal, qint64 run,
                          const std::function<void(const LimitedProduct&)>& visitor) {
    std::optional<RowList> list = RowList::open(journal, run, kList);
    for (qint64 position = 1; list && position <= list->count(); ++position) {
        const data::KeyValues& row = list->row(position);
        LimitedProduct product;
        if (row.size() >= kHead) {
            product.number = row[0].toString();
            product.quantityDiscount = row[1].toLongLong();
        }
        for (size_t i = kHead; i + kPriceCells <= row.size(); i += kPriceCells)
            product.prices.push_back({static_cast<int>(row[i].toLongLong()), row[i + 1].toDouble(),
                                      row[i + 2].toDouble()});
        visitor(product);
    }
}

}  // namespace vatchange
