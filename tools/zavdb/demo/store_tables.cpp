#include "tools/zavdb/demo/fill_tables.h"
#include "tools/zavdb/demo/table_filler.h"

namespace tools::demo {

namespace {

constexpr const char16_t* kGrossFields[kLevels] = {u"Hinta1", u"Hinta2", u"Hinta3",
                                                   u"Hinta4", u"Hinta5", u"Hinta6",
                                                   u"Hinta7", u"Hinta8", u"Hinta9"};
constexpr const char16_t* kNetFields[kLevels] = {u"Hinta1Alv0", u"Hinta2Alv0", u"Hinta3Alv0",
                                                 u"Hinta4Alv0", u"Hinta5Alv0", u"Hinta6Alv0",
                                                 u"Hinta7Alv0", u"Hinta8Alv0", u"Hinta9Alv0"};
constexpr const char16_t* kLabelFields[kLevels] = {u"H1", u"H2", u"H3", u"H4", u"H5",
                                                   u"H6", u"H7", u"H8", u"H9"};

void addStock(TableFiller& stock, int store, const Product& product, Random& random) {
    const int balance = random.between(0, 120);
    const int reserved = random.between(0, balance) / 4;
    stock.row()
        .set(u"VARASTO", store)
        .set(u"TUOTE", product.number)
        .set(u"SALDO", static_cast<double>(balance))
        .set(u"VARATTU", static_cast<double>(reserved))
        .set(u"TILATTU", random.chance(15) ? static_cast<double>(random.between(1, 40)) : 0.0)
        .set(u"MINIMI", static_cast<double>(random.between(0, 10)))
        .set(u"MAXVARASTO", static_cast<double>(random.between(20, 200)))
        .set(u"VIIMMYYNTIPVM", dayBefore(random, 0, 60))
        .set(u"VIIMLISAYSPVM", dayBefore(random, 1, 90))
        .set(u"INVPVM", QDate(2023, 12, 31))
        .set(u"INVKHINTA", product.purchasePrice)
        .set(u"INVKPL", static_cast<double>(random.between(0, 100)))
        .set(u"MuutosPvm", dayBefore(random, 0, 30))
        .set(u"MuutosKlo", workingTime(random))
        .set(u"LuontiPvm", dayBefore(random, 200, 2000));
    if (random.chance(60)) {
        const QChar aisle(u'A' + random.between(0, 11));
        const int shelf = random.between(1, 40);
        stock.set(u"Hyllypaikka",
                  QStringLiteral("%1%2-%3").arg(aisle).arg(shelf).arg(random.between(1, 6)));
    }
    stock.store();
}

void addStorePrice(TableFiller& prices, int store, const Product& product, Random& random) {
    prices.row().set(u"Myymala", store).set(u"Tuote", product.number);
    // a store sets its own consumer and member price and uses the central wholesale prices
    const double factor = random.pick({1.0, 1.0, 1.03, 0.97, 1.05});
    for (int level = 0; level < kLevels; ++level) {
        const double chain = product.prices[static_cast<size_t>(level)];
        if (chain == 0 || level > 4)
            continue;
        const double gross = level < 2 ? toCents(chain * factor) : chain;
        prices.set(kGrossFields[level], gross)
            .set(kNetFields[level], gross / vatFactor(product.vatClass));
    }
    const QDate day = dayBefore(random, 3, 300);
    prices.set(u"Muutettu", QDateTime(day, workingTime(random))).store();
}

void addLabel(TableFiller& labels, const Product& product, Random& random) {
    labels.row()
        .set(u"Tyyppi", random.chance(90) ? 1 : 2)
        .set(u"Tuote", product.number)
        .set(u"Maara", static_cast<double>(random.between(1, 4)));
    if (random.chance(60)) {  // printed once, with that day's prices
        labels.set(u"TulPvm", dayBefore(random, 5, 400))
            .set(u"TulAika", random.between(7 * 3600, 20 * 3600))
            .set(u"Voimassa", dayBefore(random, -60, 30));
        for (int level = 0; level < kLevels; ++level)
            labels.set(kLabelFields[level], product.prices[static_cast<size_t>(level)]);
        if (product.words->mainGroup == 2)
            labels.set(u"Pantti", 0.15);
        if (product.quantityDiscount != 0)
            labels.set(u"MaaraAle", u"3 kpl")
                .set(u"MaaraAleKpl", 3.0)
                .set(u"MaaraAleHinta", toCents(product.prices[0] * 2.7))
                .set(u"MaaraAleHinPanttilla", toCents(product.prices[0] * 2.7));
    }
    labels.store();
}

}  // namespace

void fillStoreTables(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller stock(database, QStringLiteral("VARSALDO"));
    TableFiller prices(database, QStringLiteral("MYYMALAHINNAT"));
    TableFiller labels(database, QStringLiteral("HR"));
    inBatches(database, facts.productCount(), [&](int i) {
        const Product product = facts.product(i);
        Random random = facts.random(Stream::Stock, i);
        if (product.words->mainGroup < 11)
            for (int store = 1; store <= kStores; ++store)
                if (store == 1 || random.chance(25))
                    addStock(stock, store, product, random);
        if (random.chance(20))
            for (int store = 2; store <= kStores; ++store)
                if (random.chance(80))
                    addStorePrice(prices, store, product, random);
        if (product.labels > 0 && random.chance(30))
            addLabel(labels, product, random);
    });
    for (const TableFiller* table : {&stock, &prices, &labels})
        progress(table->table(), table->rows());
}

}  // namespace tools::demo
