#pragma once

#include <QDate>
#include <QString>
#include <QTime>
#include <array>

#include "tools/zavdb/demo/demo_company.h"
#include "tools/zavdb/demo/random.h"
#include "tools/zavdb/demo/vocabulary.h"

namespace tools::demo {

/// Kinds of items, each with its own random numbers.
enum class Stream : quint64 {
    Product = 1,
    Customer,
    ProductRow,
    Stock,
    StorePrice,
    Label,
    Text,
    FuturePrice,
    WebMark,
    CustomerRow,
    PriceList,
    Campaign,
    QuantityDiscount,
    Recurring,
    SalesOrder,
    PurchaseOrder
};

inline constexpr int kLevels = 9;

/// Facts of a product that other tables need. Recomputed from its index each time: a million
/// products take no memory.
struct Product {
    int index = 0;
    QString number;
    QString name;
    const GroupWords* words = nullptr;
    int group = 0;
    int subGroup = 0;
    int vatClass = 0;
    int secondClass = 0;
    int purchaseClass = 0;
    std::array<double, kLevels> prices{};  ///< with VAT, euros; 0: the level has no price
    double purchasePrice = 0;              ///< with VAT, euros, four decimals
    int supplier = 0;                      ///< index into suppliers()
    int quantityDiscount = 0;              ///< number of its MAARAALE row, 0: none
    bool webShop = false;
    int labels = 0;  ///< shelf-edge labels
};

struct Customer {
    int number = 0;
    int group = 0;
    QString name;
    bool company = false;
};

/// The invented company: pure functions of its options.
class Facts {
  public:
    explicit Facts(const Options& options) : m_options(options) {}

    int productCount() const { return m_options.products; }
    int customerCount() const;
    int quantityDiscountCount() const;

    /// Random numbers for one item of a kind.
    Random random(Stream kind, qint64 index) const {
        return Random(m_options.seed, static_cast<quint64>(kind), static_cast<quint64>(index));
    }

    Product product(int index) const;
    Product anyProduct(Random& random) const {
        return product(random.between(0, productCount() - 1));
    }
    Customer customer(int index) const;
    Customer anyCustomer(Random& random) const {
        return customer(random.between(0, customerCount() - 1));
    }

  private:
    QString productNumber(int index, Random& random) const;
    void setPrices(Product& product, Random& random) const;

    Options m_options;
};

double ratePercent(int vatClass);
/// 1 + rate / 100, the rate as stored in the VAT class table
double vatFactor(int vatClass);

double euros(qint64 cents);
double toCents(double amount);         ///< nearest cent, halves up
double toFourDecimals(double amount);  ///< nearest, halves up

int groupNumber(int groupIndex);
int subGroupNumber(int groupIndex, int subIndex);
/// The items of a list separated by "|".
QList<QStringView> items(QStringView list);

QString supplierCode(int index);

/// The last day in the data.
inline const QDate kToday(2024, 8, 23);
/// A day from `fewest` to `most` days before kToday (after it for negative numbers).
QDate dayBefore(Random& random, int fewest, int most);
QTime workingTime(Random& random);

/// Stores are numbered from 1.
inline constexpr int kStores = 4;

}  // namespace tools::demo
