#include "search/product_texts.h"

#include <QLocale>
#include <utility>

#include "data/record/display_format.h"

namespace search {

namespace {

QChar decimalSeparator() {
    return QLocale().decimalPoint().front();
}

StockUnit stockUnit(const GridRow& product) {
    return {product.text(QStringLiteral("VARASTOYKS")), product.number(QStringLiteral("ANNOSKOKO")),
            product.number(QStringLiteral("VARASTOKERROIN"))};
}

QString moneyText(double price) {
    return data::formatNumber(QStringLiteral("#0.00"), price, decimalSeparator());
}

QString productNumber(const GridRow& product) {
    return product.text(QStringLiteral("NUMERO"));
}

}  // namespace

ProductTexts::ProductTexts(data::Database& database, ProductSettings settings)
    : m_settings(std::move(settings)), m_lookups(database) {}

void ProductTexts::reread(ProductSettings settings) {
    m_settings = std::move(settings);
    m_lookups.clear();
}

QString ProductTexts::productGroup(const GridRow& product) {
    return m_lookups.productGroupName(product.integer(QStringLiteral("RYHMA")));
}

QString ProductTexts::mainGroup(const GridRow& product) {
    return m_lookups.mainGroupName(product.integer(QStringLiteral("PAARYHMA")));
}

QString ProductTexts::subGroup(const GridRow& product) {
    return m_lookups.subGroupName(product.integer(QStringLiteral("AliRyhma")));
}

QString ProductTexts::supplier(const GridRow& product) {
    return m_lookups.supplierName(product.text(QStringLiteral("TOIMITTAJA")));
}

std::optional<StockBalance> ProductTexts::stock(const GridRow& product) {
    if (!m_stockShown)
        return std::nullopt;
    return m_lookups.stock(m_settings.store, productNumber(product));
}

QString ProductTexts::quantity(const GridRow& product, double (*part)(const StockBalance&)) {
    const std::optional<StockBalance> found = stock(product);
    return found ? quantityText(part(*found), stockUnit(product), decimalSeparator()) : QString();
}

QString ProductTexts::balance(const GridRow& product) {
    return quantity(product, [](const StockBalance& stock) { return stock.balance; });
}

QString ProductTexts::ordered(const GridRow& product) {
    return quantity(product, [](const StockBalance& stock) { return stock.ordered; });
}

QString ProductTexts::reserved(const GridRow& product) {
    return quantity(product, [](const StockBalance& stock) { return stock.reserved; });
}

QString ProductTexts::free(const GridRow& product) {
    return quantity(product, &freeQuantity);
}

QString ProductTexts::situation(const GridRow& product) {
    const std::optional<StockBalance> found = stock(product);
    return found ? stockSituationText(*found, stockUnit(product), decimalSeparator()) : QString();
}

QString ProductTexts::shelfPlaces(const GridRow& product) {
    return m_lookups.shelfPlaces(m_settings.store, productNumber(product)).join(QLatin1Char(' '));
}

QString ProductTexts::priceWithoutVat(const GridRow& product) {
    return priceWithoutVatText(product.number(QStringLiteral("HINTA")),
                               m_lookups.vatPercent(product.integer(QStringLiteral("LVV"))),
                               decimalSeparator());
}

bool ProductTexts::purchasePriceShown(const GridRow& product) const {
    return !m_settings.purchasePricesHidden && !product.flag(QStringLiteral("OstohintaEiNay"));
}

QString ProductTexts::lastPurchasePrice(const GridRow& product) {
    return purchasePriceShown(product) ? moneyText(product.number(QStringLiteral("VIIMOSTOHINTA")))
                                       : QString();
}

QString ProductTexts::averagePurchasePrice(const GridRow& product) {
    return purchasePriceShown(product) ? moneyText(product.number(QStringLiteral("KESKIHINTA")))
                                       : QString();
}

// "Purchase price" without "last" means the average one throughout the program.
QString ProductTexts::purchasePriceWithoutVat(const GridRow& product) {
    if (!purchasePriceShown(product))
        return {};
    return priceWithoutVatText(product.number(QStringLiteral("KESKIHINTA")),
                               m_lookups.vatPercent(product.integer(QStringLiteral("OSTOVERO"))),
                               decimalSeparator());
}

}  // namespace search
