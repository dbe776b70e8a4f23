#pragma once

#include <QStringView>
#include <span>

/// The words and numbers of the demo company.
namespace tools::demo {

/// The company's VAT classes.
enum VatClass : int { kNoClass = 0, kVat24 = 1, kVat14 = 2, kVat10 = 3, kVat0 = 4, kVat255 = 5 };

struct VatClassWords {
    int number;
    QStringView name;
    float percent;
    QStringView account;
    QStringView receiptText;
    QStringView invoiceCode;
};

struct MainGroupWords {
    int number;
    QStringView name;
    QStringView account;
};

/// A product group and what is sold in it. Lists are separated by "|".
struct GroupWords {
    int mainGroup;
    QStringView name;
    VatClass vatClass;
    int lowestCents;  ///< consumer price
    int highestCents;
    QStringView unit;
    QStringView subGroups;
    QStringView nouns;
    QStringView variants;
    QStringView sizes;
};

struct CustomerGroupWords {
    int number;
    QStringView name;
    int priceLevel;
    double discountPercent;
    bool companies;
};

std::span<const VatClassWords> vatClasses();
std::span<const MainGroupWords> mainGroups();
std::span<const GroupWords> groups();
std::span<const CustomerGroupWords> customerGroups();
std::span<const QStringView> suppliers();
std::span<const QStringView> brands();
std::span<const QStringView> firstNames();
std::span<const QStringView> lastNames();
std::span<const QStringView> trades();  ///< what a customer company does: "Rakennus", "Ravintola"
std::span<const QStringView> streets();
std::span<const QStringView> towns();  ///< "00100 Helsinki"
std::span<const QStringView> priceLevelNames();

}  // namespace tools::demo
