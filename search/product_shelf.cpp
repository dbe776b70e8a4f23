#include "search/product_shelf.h"

#include <limits>

#include "data/record/filter.h"
#include "data/record/record_codec.h"
#include "search/filter_expression.h"

namespace search {

namespace {

const QString kShelfPlace = QStringLiteral("Hyllypaikka");
constexpr int kStoreKey = 0;  // VARASTO, TUOTE

const uchar* bytesOf(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

}  // namespace

QSet<QString> productsByShelfPlace(data::Database& database, int store, const QString& text) {
    const std::unique_ptr<data::TableFile> stock = database.openTable(QStringLiteral("VARSALDO"));
    const data::RecordLayout& layout = stock->layout();
    const data::TFieldCacheItem& product = layout.field(layout.indexOf(QStringLiteral("TUOTE")));
    const data::Filter filter(dropExpression(kShelfPlace, data::Kind::String, text), layout);

    QSet<QString> products;
    const data::KeyValues storeOnly{store};
    // @return false after the store's last record.
    const auto take = [&](const QByteArray& record) {
        if (stock->compare(kStoreKey, record, storeOnly) != 0)
            return false;
        if (filter.accepts(record))
            products.insert(data::readText(product, bytesOf(record)));
        return true;
    };
    const std::vector<data::StoredRecord> first =
        stock->seek(kStoreKey, data::SeekOp::Equal, storeOnly, 1);
    if (!first.empty() && take(first.front().bytes))
        stock->visit(kStoreKey, first.front(), data::Direction::Forward,
                     std::numeric_limits<int>::max(),
                     [&](data::RecordId, const QByteArray& bytes) { return take(bytes); });
    return products;
}

}  // namespace search
