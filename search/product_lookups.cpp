#include "search/product_lookups.h"

namespace search {

namespace {

QString text(LookupCache& cache, const data::Value& key) {
    const LookupCache::Row* row = cache.find({key});
    return row == nullptr ? QString() : row->front().toString();
}

}  // namespace

ProductLookups::ProductLookups(data::Database& database)
    : m_productGroups(database, QStringLiteral("TRYHMA"), 0, {QStringLiteral("Nimi")}),
      m_mainGroups(database, QStringLiteral("PRYHMA"), 0, {QStringLiteral("nimi")}),
      m_subGroups(database, QStringLiteral("ALIRYHMA"), 0, {QStringLiteral("Nimi")}),
      m_suppliers(database, QStringLiteral("TOIMITTAJA"), 0, {QStringLiteral("Nimi")}),
      m_vatClasses(database, QStringLiteral("ALVKANTA"), 0, {QStringLiteral("Prosentti")}),
      m_stock(database, QStringLiteral("VARSALDO"), 0,
              {QStringLiteral("SALDO"), QStringLiteral("ODOTUS"), QStringLiteral("TILATTU"),
               QStringLiteral("VARATTU"), QStringLiteral("Hyllypaikka")}),
      m_kinds(database, QStringLiteral("TUOTE2"), 0, {QStringLiteral("Tuotelaji")}) {}

QString ProductLookups::productGroupName(qint64 number) {
    return text(m_productGroups, number);
}

QString ProductLookups::mainGroupName(qint64 number) {
    return text(m_mainGroups, number);
}

QString ProductLookups::subGroupName(qint64 number) {
    return text(m_subGroups, number);
}

QString ProductLookups::supplierName(const QString& code) {
    return text(m_suppliers, code);
}

double ProductLookups::vatPercent(qint64 vatClass) {
    const LookupCache::Row* row = m_vatClasses.find({vatClass});
    return row == nullptr ? 0.0 : row->front().toDouble();
}

std::optional<StockBalance> ProductLookups::stock(int store, const QString& product) {
    const LookupCache::Row* row = m_stock.find({store, product});
    if (row == nullptr)
        return std::nullopt;
    const LookupCache::Row& values = *row;
    return StockBalance{values[0].toDouble(), values[1].toDouble(), values[2].toDouble(),
                        values[3].toDouble()};
}

// One field, which may hold several places separated by blanks.
QStringList ProductLookups::shelfPlaces(int store, const QString& product) {
    const LookupCache::Row* row = m_stock.find({store, product});
    return row == nullptr ? QStringList()
                          : row->back().toString().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

qint64 ProductLookups::productKind(const QString& product) {
    const LookupCache::Row* row = m_kinds.find({product});
    return row == nullptr ? 0 : row->front().toLongLong();
}

void ProductLookups::clear() {
    for (LookupCache* cache : {&m_productGroups, &m_mainGroups, &m_subGroups, &m_suppliers,
                               &m_vatClasses, &m_stock, &m_kinds})
        cache->clear();
}

}  // namespace search
