#include "vatchange/run/product_record.h"

#include <QtGlobal>

#include "data/record/record_codec.h"

namespace vatchange {

namespace {

const QString kTable = QStringLiteral("TUOTE");

const uchar* bytesOf(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

}  // namespace

ProductRecords::ProductRecords(data::Database& database, int sourceClass)
    : m_file(database.openTable(kTable)),
      m_sourceClass(sourceClass),
      m_number(requireField("NUMERO")),
      m_averagePurchase(requireField("KESKIHINTA")),
      m_portion(requireField("ANNOSHINTA")),
      m_lastPurchase(requireField("VIIMOSTOHINTA")),
      m_salesClass(requireField("LVV")),
      m_secondClass(requireField("ALV2")),
      m_purchaseClass(requireField("OSTOVERO")),
      m_labels(requireField("HRKPL")),
      m_webShop(requireField("VERKKOKAUPPA")) {
    for (size_t i = 0; i < m_levels.size(); ++i)
        m_levels[i] = requireField(kPriceColumns[i + 1].toLatin1().constData());
    const auto& keys = m_file->keys();
    if (keys.empty() || keys.front().segments.empty() ||
        keys.front().segments.front().fieldIndex != m_number) {
        throw data::DataError(data::ErrorKind::NoSuchField, kTable,
                              QStringLiteral("key 0 does not begin with NUMERO"));
    }
}

int ProductRecords::requireField(const char* name) const {
    const int index = m_file->layout().indexOf(QLatin1String(name));
    if (index < 0)
        throw data::DataError(data::ErrorKind::NoSuchField, kTable, QLatin1String(name));
    return index;
}

double ProductRecords::amount(int field, const QByteArray& record) const {
    const data::TFieldCacheItem& item = m_file->layout().field(field);
    if (item.kind() == data::Kind::Float)
        return data::readFloat(item, bytesOf(record));
    return data::readValue(item, bytesOf(record)).toDouble();
}

qint64 ProductRecords::integer(int field, const QByteArray& record) const {
    return data::readValue(m_file->layout().field(field), bytesOf(record)).toLongLong();
}

void ProductRecords::read(const QByteArray& record, LockedProduct& product) const {
    for (size_t i = 0; i < m_levels.size(); ++i)
        product.prices.levels[i] = amount(m_levels[i], record);
    product.prices.averagePurchase = amount(m_averagePurchase, record);
    product.prices.portion = amount(m_portion, record);
    product.prices.lastPurchase = amount(m_lastPurchase, record);
    product.classes.sales = integer(m_salesClass, record) == m_sourceClass;
    product.classes.second = integer(m_secondClass, record) == m_sourceClass;
    product.classes.purchase = integer(m_purchaseClass, record) == m_sourceClass;
    product.labels = integer(m_labels, record);
    product.inWebShop = integer(m_webShop, record) != 0;
}

QString ProductRecords::read(data::RecordId id, LockedProduct& product) {
    const auto record = m_file->get(id);
    if (!record)
        return {};
    product.id = id;
    read(record->bytes, product);
    return data::readValue(m_file->layout().field(m_number), bytesOf(record->bytes)).toString();
}

ProductRecords::Outcome ProductRecords::lock(const QString& number, LockedProduct& product,
                                             std::chrono::milliseconds wait) {
    const auto found = m_file->seek(0, data::SeekOp::Equal, {number}, 1);
    if (found.empty())
        return Outcome::Gone;
    const data::RecordId id = found.front().id;
    if (!m_file->lock(id, wait))
        return Outcome::HeldByOther;
    m_locked = id;
    // only a read under the lock is certain to match what the update replaces
    const auto record = m_file->get(id);
    if (!record) {
        release();
        return Outcome::Gone;
    }
    product.id = id;
    read(record->bytes, product);
    return Outcome::Locked;
}

void ProductRecords::release() noexcept {
    if (!m_locked)
        return;
    try {
        m_file->unlock(*m_locked);
    } catch (const std::exception& error) {
        qWarning("ProductRecords: unlock failed: %s", error.what());
    }
    m_locked.reset();
}

}  // namespace vatchange
