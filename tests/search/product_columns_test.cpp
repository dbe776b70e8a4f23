#include <gtest/gtest.h>

#include "search/lookup_cache.h"
#include "search/product_columns.h"
#include "search/product_settings.h"
#include "tests/search/product_support.h"

namespace {

using search::LookupCache;
using test::str;

TEST(ProductColumns, QuantitiesInPortionsAndPlain) {
    using Shown = std::vector<std::pair<double, const char*>>;
    const std::pair<search::StockUnit, Shown> cases[] = {
        // of -2.75 bottles three quarters are 30 cl; 2.9999999999 is a sum of decimals meaning 3
        {{str("PLO"), 4, 10},
         {{3.25, "3P 10.0cl"},
          {3, "3P 0.0cl"},
          {0, "0P 0.0cl"},
          {-2.75, "-2P 30.0cl"},
          {-0.25, "-0P 10.0cl"},
          {0.1 + 0.2 - 0.3, "0P 0.0cl"},
          {2.9999999999, "3P 0.0cl"}}},
        {{str("plo "), 4, 10}, {{3.25, "3P 10.0cl"}}},
        {{str("TYN"), 4, 12.5}, {{3.25, "3P 12.5cl"}, {12345.5, "12345P 25.0cl"}}},
        {{str("PLO"), 0, 10}, {{1.3, "1P 0.0cl"}}},  // no portion size
        {{str("KPL"), 4, 10},
         {{3.25, "3.25"}, {7, "7"}, {-1.5, "-1.5"}, {0.1234, "0.123"}, {0, "0"}}},
        {{QString(), 4, 10}, {{3.25, "3.25"}}},
    };
    for (const auto& [unit, texts] : cases)
        for (const auto& [quantity, shown] : texts)
            EXPECT_EQ(search::quantityText(quantity, unit, u'.').toStdString(), shown);
    EXPECT_EQ(search::quantityText(3.25, {str("PLO"), 4, 10}, u',').toStdString(), "3P 10,0cl");
}

TEST(ProductColumns, QuickSearchKeyByTheFirstLetter) {
    for (const char* name : {"kahvi", "a", "z", "äyriäinen", "åland", "öljy", "kAHVI 500"})
        EXPECT_EQ(search::quickSearchKey(str(name)).toStdString(), "5") << name;
    for (const char* number : {"Kahvi", "A", "Ä", "Å", "Ö", "64100", "0", "", " kahvi", "é", "*k"})
        EXPECT_EQ(search::quickSearchKey(str(number)).toStdString(), "1") << number;
}

struct ProductLookups : ::testing::Test {
    test::ShopCompany m_shop;
};

TEST_F(ProductLookups, CachesFoundAndMissingRowsUpToALimit) {
    m_shop.exec(str("insert into TRYHMA (Nro, Nimi) values (12, 'Juomat')"));
    LookupCache groups(m_shop.database(), str("TRYHMA"), 0, {str("Nimi"), str("nro")});
    const auto name = [&groups](int number) {
        const LookupCache::Row* row = groups.find({number});
        return row == nullptr ? std::string("none") : row->at(0).toString().toStdString();
    };
    EXPECT_EQ(groups.find({12})->at(1).toInt(), 12);
    EXPECT_EQ(name(12) + ' ' + name(13), "Juomat none");
    m_shop.exec(str("update TRYHMA set Nimi = 'Makeiset' where Nro = 12"));
    m_shop.exec(str("insert into TRYHMA (Nro, Nimi) values (13, 'Leivät')"));
    EXPECT_EQ(name(12) + ' ' + name(13), "Juomat none");
    groups.clear();
    EXPECT_EQ(name(12) + ' ' + name(13), "Makeiset Leivät");

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
