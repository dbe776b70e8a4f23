#include "search/product_shelf.h"

#include <limits>

#include "data/record/filter.h"
#include "data/record/record_codec.h"

namespace search {

namespace {

const QString kShelfPlace = QStringLiteral("Hyllypaikka");
constexpr int kStoreKey = 0;  // VARASTO TUOTE

/// What a typed text asks of a shelf place.
struct ShelfPlaceTest {
    explicit ShelfPlaceTest(const QString& typed) : text(typed.trimmed()) {
        if (text.startsWith(QLatin1Char('*')) || text.startsWith(QLatin1Char('#'))) {
            anywhere = true;
            text.remove(0, 1);
            return;
        }
        qsizetype length = 0;
        while (length < text.size() && QStringLiteral("<>=").contains(text[length]))
            ++length;
        if (length > 0)
            op = text.left(length);
        text.remove(0, length);
    }
    /// The filter of all but a text that may stand anywhere.
    QString filter() const {
        QString quoted = text;
        quoted.replace(QLatin1Char('\''), QLatin1String("''"));
        return anywhere ? QString()
                        : kShelfPlace + op + QLatin1Char('\'') + quoted + QStringLiteral("*'");
    }
    QString op = QStringLiteral("=");
    QString text;
    bool anywhere = false;
};

const uchar* bytesOf(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

}  // namespace

QSet<QString> productsByShelfPlace(data::Database& database, int store, const QString& text) {
    const std::unique_ptr<data::RecordFile> stock = database.openTable(QStringLiteral("VARSALDO"));
    const data::RecordLayout& layout = stock->layout();
    const data::TFieldCacheItem& product = layout.field(layout.indexOf(QStringLiteral("TUOTE")));
    const data::TFieldCacheItem& place = layout.field(layout.indexOf(kShelfPlace));
    const ShelfPlaceTest test(text);
    const data::Filter filter(test.filter(), layout);

    QSet<QString> products;
    const data::KeyValues storeOnly{store};
    // @return false behind the store's records.
    const auto take = [&](const QByteArray& record) {
        if (stock->compare(kStoreKey, record, storeOnly) != 0)
            return false;
        const bool matches =
            filter.accepts(record) &&
            (!test.anywhere ||
             data::readText(place, bytesOf(record)).contains(test.text, Qt::CaseInsensitive));
        if (matches)
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
