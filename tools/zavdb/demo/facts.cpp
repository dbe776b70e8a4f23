#include "tools/zavdb/demo/facts.h"

#include <algorithm>
#include <cmath>

namespace tools::demo {

namespace {

constexpr int kNameLength = 40;  // of product and customer names

template <typename T>
const T& anyOf(std::span<const T> list, Random& random) {
    return list[static_cast<size_t>(random.between(0, static_cast<int>(list.size()) - 1))];
}

QStringView anyItem(QStringView list, Random& random) {
    const QList<QStringView> all = items(list);
    return all[random.between(0, static_cast<int>(all.size()) - 1)];
}

/// A typical shop price: ends in .95, .90 or .99; below five euros in .x5 or .x9.
qint64 shopPrice(qint64 cents, Random& random) {
    if (cents < 500)
        return cents / 10 * 10 + (random.chance(70) ? 5 : 9);
    static constexpr int kEndings[] = {90, 95, 90, 95, 99, 50};
    return cents / 100 * 100 + random.pick(kEndings);
}

/// The check digit of a 13-digit article number.
QChar checkDigit(const QString& twelveDigits) {
    int sum = 0;
    for (int i = 0; i < twelveDigits.size(); ++i)
        sum += twelveDigits[i].digitValue() * (i % 2 == 0 ? 1 : 3);
    return QChar(u'0' + (10 - sum % 10) % 10);
}

}  // namespace

double ratePercent(int vatClass) {
    for (const VatClassWords& words : vatClasses())
        if (words.number == vatClass)
            return static_cast<double>(words.percent);
    return 0;
}

double vatFactor(int vatClass) {
    return 1.0 + ratePercent(vatClass) / 100.0;
}

double euros(qint64 cents) {
    return static_cast<double>(cents) / 100.0;
}

double toCents(double amount) {
    return std::floor(amount * 100.0 + 0.5) / 100.0;
}

double toFourDecimals(double amount) {
    return std::floor(amount * 10000.0 + 0.5) / 10000.0;
}

int groupNumber(int groupIndex) {
    const GroupWords& words = groups()[static_cast<size_t>(groupIndex)];
    int place = 1;
    for (int i = 0; i < groupIndex; ++i)
        if (groups()[static_cast<size_t>(i)].mainGroup == words.mainGroup)
            ++place;
    return words.mainGroup * 100 + place * 10;
}

int subGroupNumber(int groupIndex, int subIndex) {
    return groupNumber(groupIndex) * 100 + subIndex + 1;
}

QList<QStringView> items(QStringView list) {
    return list.split(u'|');
}

QString supplierCode(int index) {
    return QStringLiteral("T%1").arg(index + 1, 3, 10, QChar(u'0'));
}

QDate dayBefore(Random& random, int fewest, int most) {
    return kToday.addDays(-random.between(fewest, most));
}

QTime workingTime(Random& random) {
    const int hour = random.between(7, 20);
    const int minute = random.between(0, 59);
    return QTime(hour, minute, random.between(0, 59));
}

int Facts::customerCount() const {
    return std::clamp(m_options.products / 8, 40, 20000);
}

int Facts::quantityDiscountCount() const {
    return std::clamp(m_options.products / 60, 3, 5000);
}

// Every number format contains the index and the formats are distinguishable, so numbers are
// unique.
QString Facts::productNumber(int index, Random& random) const {
    const int form = random.between(1, 1000);
    const GroupWords& words = anyOf(groups(), random);
    const QStringView letters = words.name.left(2);
    if (form <= 550)
        return QString::number(100000 + index);
    if (form <= 850) {
        const QString digits = QStringLiteral("20%1").arg(index + 1, 10, 10, QChar(u'0'));
        return digits + checkDigit(digits);
    }
    if (form <= 960)
        return QStringLiteral("%1-%2")
            .arg(letters.toString().toUpper())
            .arg(index + 1, 5, 10, QChar(u'0'));
    if (form <= 990)
        return QStringLiteral("%1%2").arg(letters.toString().toLower()).arg(index + 1);
    // entered before the web shop, whose product numbers allow fewer characters
    static constexpr QStringView kForms[] = {u"TARJ %1", u"%1/12", u"VARA (%1)", u"KPL#%1",
                                             u"A&B %1",  u"%1*2",  u"10% %1",    u"[%1]"};
    QString number = random.pick(kForms).toString();
    return number.replace(QLatin1String("%1"), QString::number(index + 1));
}

void Facts::setPrices(Product& product, Random& random) const {
    const GroupWords& words = *product.words;
    // the lower of two draws: most products are cheap
    const int draw = std::min(random.between(words.lowestCents, words.highestCents),
                              random.between(words.lowestCents, words.highestCents));
    const qint64 tens = draw / 1000;
    const double price = euros(words.mainGroup == 12 ? tens * 1000 : shopPrice(draw, random));
    product.prices[0] = price;
    if (random.chance(40))
        product.prices[1] = euros(shopPrice(std::llround(price * random.between(80, 95)), random));
    // wholesale levels are computed from the consumer price, so they end in any digit
    const bool wholesale = words.mainGroup != 12 && random.chance(75);
    if (wholesale) {
        product.prices[2] = toCents(price * 0.90);
        product.prices[3] = toCents(price * 0.85);
        if (random.chance(60))
            product.prices[4] = toCents(price * 0.785);
    }
    if (words.mainGroup <= 2 && random.chance(50))
        product.prices[5] = toCents(price * 0.82);
    if (wholesale && random.chance(35))
        product.prices[6] = toCents(price * 0.70);
    if (product.webShop)
        product.prices[7] = random.chance(80) ? price : toCents(price * 0.97);
    const double marginShare = random.between(18, 48) / 100.0;
    const double cost = price / vatFactor(product.vatClass) * (1.0 - marginShare);
    product.purchasePrice = toFourDecimals(cost * vatFactor(product.purchaseClass));
    if (random.chance(30))
        product.prices[8] = toCents(product.purchasePrice * 1.1);
}

Product Facts::product(int index) const {
    Random random = this->random(Stream::Product, index);
    Product product;
    product.index = index;
    const int groupIndex = random.between(0, static_cast<int>(groups().size()) - 1);
    product.words = &groups()[static_cast<size_t>(groupIndex)];
    product.group = groupNumber(groupIndex);
    product.subGroup = subGroupNumber(
        groupIndex,
        random.between(0, static_cast<int>(items(product.words->subGroups).size()) - 1));
    product.number = productNumber(index, random);

    QStringList words = {anyItem(product.words->nouns, random).toString(),
                         anyItem(product.words->variants, random).toString(),
                         anyItem(product.words->sizes, random).toString(),
                         anyOf(brands(), random).toString()};
    while (words.join(u' ').size() > kNameLength)
        words.removeLast();
    product.name = words.join(u' ');

    product.vatClass = product.words->vatClass;
    if (random.perMille(8))
        product.vatClass = kNoClass;
    else if (random.perMille(4))
        product.vatClass = kVat255;  // entered ahead of time
    if (product.words->vatClass == kVat14 && random.perMille(40))
        product.secondClass = kVat24;  // served with a drink
    product.purchaseClass = random.perMille(20) ? static_cast<int>(kVat0) : product.vatClass;
    product.webShop = product.words->mainGroup != 11 && random.chance(35);
    product.labels = random.chance(70) ? random.between(1, 3) : 0;
    product.supplier = random.between(0, static_cast<int>(suppliers().size()) - 1);
    if (random.chance(5))
        product.quantityDiscount = random.between(1, quantityDiscountCount());
    setPrices(product, random);
    return product;
}

Customer Facts::customer(int index) const {
    Random random = this->random(Stream::Customer, index);
    Customer customer;
    customer.number = 1000 + index;
    const CustomerGroupWords& group = anyOf(customerGroups(), random);
    customer.group = group.number;
    customer.company = group.companies;
    const QString last = anyOf(lastNames(), random).toString();
    const QString trade = anyOf(trades(), random).toString();
    const QString first = anyOf(firstNames(), random).toString();
    if (!group.companies)
        customer.name = last + u' ' + first;
    else if (random.chance(60))
        customer.name = trade + u' ' + last + QStringLiteral(" Oy");
    else
        customer.name = last + u' ' + trade.toLower() + QStringLiteral(" Ky");
    return customer;
}

}  // namespace tools::demo
