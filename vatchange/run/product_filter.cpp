#include "vatchange/run/product_filter.h"

#include <algorithm>

#include "data/record/record_codec.h"
#include "vatchange/rules/selection.h"

namespace vatchange {

namespace {

const QString kTable = QStringLiteral("TUOTE");

}  // namespace

ProductFilter::ProductFilter(RunContext& run) : m_run(run), m_file(run.database.openTable(kTable)) {
    for (const char* name : {"LVV", "ALV2", "OSTOVERO"}) {
        const int index = m_file->layout().indexOf(QLatin1String(name));
        if (index < 0)
            throw data::DataError(data::ErrorKind::NoSuchField, kTable, QLatin1String(name));
        m_classes.push_back(index);
    }
}

bool ProductFilter::accepts(const QString& number) {
    const auto found = m_file->seek(0, data::SeekOp::Equal, {number}, 1);
    if (found.empty())
        return false;
    const data::StoredRecord& product = found.front();
    if (m_run.progress && m_run.progress->products.contains(product.id))
        return true;
    const auto* bytes = reinterpret_cast<const uchar*>(product.bytes.constData());
    return std::any_of(m_classes.begin(), m_classes.end(), [&](int field) {
        return data::readValue(m_file->layout().field(field), bytes).toLongLong() ==
               m_run.definition.sourceClass;
    });
}

data::IdSet ProductFilter::quantityDiscounts() {
    data::TUniQuery products(&m_run.database);
    products.sql().add(
        QStringLiteral("select numero, maaraale from TUOTE where maaraale <> 0 and ") +
        selectionWithConverted(m_run.definition));
    products.open();
    const auto& number = products.fieldByName(QStringLiteral("numero"));
    const auto& discount = products.fieldByName(QStringLiteral("maaraale"));
    data::IdSet discounts;
    for (; !products.eof(); products.next()) {
        if (accepts(number.asString()))
            discounts.add(discount.asInteger());
    }
    return discounts;
}

}  // namespace vatchange
