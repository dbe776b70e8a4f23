#include "search/product_columns.h"

#include <gtest/gtest.h>

namespace {

using search::StockUnit;

QString str(const char* text) {
    return QString::fromUtf8(text);
}

TEST(ProductColumns, QuantitiesInPortionsAndPlain) {
    struct Case {
        double quantity;
        const char* unit;
        double portion;
        double factor;
        const char* shown;
    };
    const Case cases[] = {
        {3.25, "PLO", 4, 10, "3P 10.0cl"},
        {3.25, "TYN", 4, 10, "3P 10.0cl"},
        {3.25, "plo ", 4, 10, "3P 10.0cl"},
        {3, "PLO", 4, 10, "3P 0.0cl"},
        {0, "PLO", 4, 10, "0P 0.0cl"},
        {12345.5, "TYN", 4, 12.5, "12345P 25.0cl"},
        {-2.75, "PLO", 4, 10, "-2P 30.0cl"},  // three quarters of 40 cl
        {-0.25, "PLO", 4, 10, "-0P 10.0cl"},  // less than a bottle missing
        {0.1 + 0.2 - 0.3, "PLO", 4, 10, "0P 0.0cl"},
        {2.9999999999, "PLO", 4, 10, "3P 0.0cl"},  // a sum of decimals that means 3
        {1.3, "PLO", 0, 10, "1P 0.0cl"},           // no portion size
        {3.25, "KPL", 4, 10, "3.25"},
        {3.25, "", 4, 10, "3.25"},
        {7, "KG", 4, 10, "7"},
        {-1.5, "KG", 0, 0, "-1.5"},
        {0.1234, "KG", 0, 0, "0.123"},
        {0, "KPL", 0, 0, "0"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(search::quantityText(c.quantity, {str(c.unit), c.portion, c.factor}, u'.')
                      .toStdString(),
                  c.shown)
            << c.quantity << ' ' << c.unit;
    EXPECT_EQ(search::quantityText(3.25, {str("PLO"), 4, 10}, u',').toStdString(), "3P 10,0cl");
}

TEST(ProductColumns, FreeQuantityAndSituation) {
    EXPECT_EQ(search::freeQuantity({5, 0, 2, 3}), 4);
    EXPECT_EQ(search::freeQuantity({1, 2, 4, 8}), -1);
    EXPECT_EQ(search::stockSituationText({5, 0.5, 2, 3}, {}, u',').toStdString(), "5=0,5/2,  3");
    EXPECT_EQ(
        search::stockSituationText({3.25, 0, 1, 0.5}, {str("PLO"), 4, 10}, u'.').toStdString(),
        "3P 10.0cl=0P 0.0cl/1P 0.0cl,  0P 20.0cl");
}

TEST(ProductColumns, PricesWithoutVat) {
    struct Case {
        double price;
        double rate;
        const char* shown;
    };
    const Case cases[] = {{12.4, 24, "10.00"}, {12.55, 25.5, "10.00"}, {10, 0, "10.00"},
                          {1, 24, "0.81"},     {0, 24, "0.00"},        {-12.4, 24, "-10.00"}};
    for (const Case& c : cases)
        EXPECT_EQ(search::priceWithoutVatText(c.price, c.rate, u'.').toStdString(), c.shown);
}

TEST(ProductColumns, PriceFormatGivesTheDecimals) {
    const std::pair<const char*, const char*> cases[] = {
        {"#######.##", "#0.00"},
        {"#####.###", "#0.000"},
        {"0.0000", "#0.0000"},
        {"######", "#0."},
        {"", "#0."},
        {"###.", "#0."},
        {"#.#.#", "#0.000"},  // everything behind the first point counts
    };
    for (const auto& [setting, format] : cases)
        EXPECT_EQ(search::priceDisplayFormat(str(setting)).toStdString(), format) << setting;
}

TEST(ProductColumns, QuickSearchKeyByTheFirstLetter) {
    for (const char* name : {"kahvi", "a", "z", "äyriäinen", "åland", "öljy", "kAHVI 500"})
        EXPECT_EQ(search::quickSearchKey(str(name)).toStdString(), "5") << name;
    for (const char* number : {"Kahvi", "A", "Ä", "Å", "Ö", "64100", "0", "", " kahvi", "é", "*k"})
        EXPECT_EQ(search::quickSearchKey(str(number)).toStdString(), "1") << number;
}

}  // namespace
