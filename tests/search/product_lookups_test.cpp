#include <gtest/gtest.h>

#include "search/lookup_cache.h"
#include "search/product_settings.h"
#include "tests/support/shop_company.h"

namespace {

using search::LookupCache;

QString str(const char* text) {
    return QString::fromUtf8(text);
}

struct ProductLookups : ::testing::Test {
    test::ShopCompany m_shop;
};

TEST_F(ProductLookups, ReadsByKeyAndKeepsUntilCleared) {
    m_shop.exec(str("insert into TRYHMA (Nro, Nimi) values (12, 'Juomat')"));
    LookupCache groups(m_shop.database(), str("TRYHMA"), 0, {str("Nimi"), str("nro")});
    const LookupCache::Row* row = groups.find({12});
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->at(0).toString().toStdString(), "Juomat");
    EXPECT_EQ(row->at(1).toInt(), 12);
    EXPECT_EQ(groups.find({13}), nullptr);

    // Both the record and its absence are remembered.
    m_shop.exec(str("update TRYHMA set Nimi = 'Makeiset' where Nro = 12"));
    m_shop.exec(str("insert into TRYHMA (Nro, Nimi) values (13, 'Leivät')"));
    EXPECT_EQ(groups.find({12})->at(0).toString().toStdString(), "Juomat");
    EXPECT_EQ(groups.find({13}), nullptr);
    groups.clear();
    EXPECT_EQ(groups.find({12})->at(0).toString().toStdString(), "Makeiset");
    EXPECT_EQ(groups.find({13})->at(0).toString().toStdString(), "Leivät");
}

TEST_F(ProductLookups, StaysWithinItsBound) {
    m_shop.addProducts(50);
    LookupCache products(m_shop.database(), str("TUOTE"), 0, {str("HINTA")}, 10);
    for (int i = 1; i <= 50; ++i)
        ASSERT_NE(products.find({QString::number(i)}), nullptr);
    EXPECT_EQ(products.size(), 10);
    EXPECT_NE(products.find({str("1")}), nullptr);
}

TEST_F(ProductLookups, TableOrFieldThatTheCompanyLacks) {
    LookupCache none(m_shop.database(), str("EITAULUA"), 0, {str("Nimi")});
    EXPECT_EQ(none.find({1}), nullptr);
    LookupCache wrong(m_shop.database(), str("TRYHMA"), 0, {str("Eikenttää")});
    EXPECT_THROW(wrong.find({1}), data::DataError);
}

TEST_F(ProductLookups, SettingsOfTheSettingsTable) {
    const auto is = [&](int store, bool hidden, bool webShop, const char* format) {
        const search::ProductSettings found = search::readProductSettings(m_shop.database());
        EXPECT_EQ(found.store, store);
        EXPECT_EQ(found.purchasePricesHidden, hidden);
        EXPECT_EQ(found.webShopInUse, webShop);
        EXPECT_EQ(found.priceFormat.toStdString(), format);
    };
    is(1, false, false, "#######.##");
    for (const char* values :
         {"'ASETUKSIA', 'Myymala', ' 12 '", "'ASETUKSIA', 'OstoHintaEiNay', '1'",
          "'ASETUKSIA', 'Tuotehintamuoto', '##.###'", "'VERKKOKAUPPA', 'Kaytossa', 'K'"})
        m_shop.exec(QStringLiteral("insert into ini values ('ZAV.INI', %1)").arg(str(values)));
    is(12, true, true, "##.###");
    const std::pair<const char*, bool> texts[] = {{"", false}, {"0", false}, {" False ", false},
                                                  {"1", true}, {"K", true},  {"on", true}};
    for (const auto& [text, on] : texts)
        EXPECT_EQ(search::isSettingOn(str(text)), on) << text;
}

}  // namespace
