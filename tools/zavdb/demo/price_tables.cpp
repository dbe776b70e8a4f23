#include <algorithm>

#include "tools/zavdb/demo/fill_tables.h"
#include "tools/zavdb/demo/table_filler.h"

namespace tools::demo {

namespace {

template <typename T>
const T& anyOf(std::span<const T> list, Random& random) {
    return list[static_cast<size_t>(random.between(0, static_cast<int>(list.size()) - 1))];
}

const CustomerGroupWords& groupOf(const Customer& customer) {
    return customerGroups()[static_cast<size_t>(customer.group - 1)];
}

void fillCustomers(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller table(database, QStringLiteral("ASIAKAS"));
    inBatches(database, facts.customerCount(), [&](int i) {
        const Customer customer = facts.customer(i);
        Random random = facts.random(Stream::CustomerRow, i);
        const QString town = anyOf(towns(), random).toString();
        const QString street = anyOf(streets(), random).toString();
        const QString address = street + u' ' + QString::number(random.between(1, 90));
        const QDate founded = dayBefore(random, 100, 4000);
        table.row()
            .set(u"Asiakas", customer.number)
            .set(u"LisaNumero", customer.number)
            .set(u"Ryhma", customer.group)
            .set(u"Nimi", customer.name)
            .set(u"POOsoite", address)
            .set(u"POPostiNro", town.left(5))
            .set(u"POPostiTmp", town.mid(6))
            .set(u"POMaa", u"Suomi")
            .set(u"LoOsoite", address)
            .set(u"LOPostiNro", town.left(5))
            .set(u"LOPostiTmp", town.mid(6))
            .set(u"Puh1", QStringLiteral("0400 %1").arg(random.between(100000, 999999)))
            .set(u"YritysAsiakas", customer.company)
            .set(u"KantaAsiakas", customer.group == 2)
            .set(u"MainosKielto", random.chance(20))
            .set(u"HintaTaso", groupOf(customer).priceLevel)
            .set(u"AlePros", random.chance(10) ? 5.0 : 0.0)
            .set(u"LuottoRajaLasku", customer.company ? random.between(1, 40) * 500.0 : 0.0)
            .set(u"LaskutusTapa", customer.company ? 1 : 0)
            .set(u"Mehto", customer.company ? 14 : 0)
            .set(u"PerustusPvm", founded)
            .set(u"PerustusKlo", workingTime(random))
            .set(u"MuutosPvm", dayBefore(random, 1, 100))
            .set(u"MuutosKlo", workingTime(random))
            .set(u"ViimOstoPvm", dayBefore(random, 0, 300))
            .set(u"YhtMaksettu", random.between(0, 500000) / 100.0)
            .set(u"Passiivinen", random.perMille(30));
        if (customer.company) {
            const QString first = anyOf(firstNames(), random).toString();
            table.set(u"YhteysHlo1", first + u' ' + anyOf(lastNames(), random).toString());
        }
        table.store();
    });
    progress(table.table(), table.rows());
}

// Fixed prices and percentages for a customer, a customer group or a web shop customer group.
void fillPriceLists(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller table(database, QStringLiteral("ASALE"));
    inBatches(database, facts.productCount() / 2, [&](int i) {
        Random random = facts.random(Stream::PriceList, i);
        const Product product = facts.anyProduct(random);
        const int customerType = random.pick({0, 0, 0, 1, 1, 2});
        const int owner = customerType == 0
                              ? facts.anyCustomer(random).number
                              : random.between(1, static_cast<int>(customerGroups().size()));
        const bool percent = random.chance(30);
        const bool fromPurchase = !percent && random.chance(8);
        table.row()
            .set(u"AsiakasNumero", owner)
            .set(u"AsikasTyyppi", customerType)
            .set(u"Tuote", product.number)
            .set(u"Tyyppi", 1)
            .set(u"Maara", random.chance(75) ? 0.0 : random.pick({5.0, 10.0, 12.0, 50.0}))
            .set(u"Prosentteina", percent)
            .set(u"OstohintaLahtoinen", fromPurchase)
            .set(u"OstoHinta", product.purchasePrice)
            .set(u"vainkortilla", customerType == 0 && random.chance(5))
            .set(u"VerkkokaupanTarjous", customerType == 2)
            .set(u"KplAle", random.chance(5));
        if (percent || fromPurchase) {
            table.set(u"Hinta", static_cast<double>(random.pick({5, 7, 10, 12, 15, 20, 25})));
        } else {
            const double price = toCents(product.prices[0] * random.between(70, 97) / 100.0);
            table.set(u"Hinta", price).set(u"HintaAlv0", price / vatFactor(product.vatClass));
        }
        if (random.chance(60)) {
            table.set(u"Alkaa", dayBefore(random, 30, 700));
            if (random.chance(50))
                table.set(u"Loppuu", dayBefore(random, -400, 20));
        }
        if (random.chance(15))
            table.set(u"Huom", u"Sopimushinta");
        table.store();
    });
    progress(table.table(), table.rows());
}

void fillCampaigns(data::Database& database, const Facts& facts, const Progress& progress) {
    // ended; ending the day before the change, on that day, later; open
    static const QDate kEnds[] = {QDate(2024, 6, 30), QDate(2024, 8, 31),  QDate(2024, 9, 1),
                                  QDate(2024, 9, 15), QDate(2024, 12, 31), QDate()};
    TableFiller table(database, QStringLiteral("KAMPPANJA"));
    inBatches(database, std::max(6, facts.productCount() * 8 / 100), [&](int i) {
        Random random = facts.random(Stream::Campaign, i);
        const Product product = facts.anyProduct(random);
        const QDate end = random.pick(kEnds);
        const bool percent = random.chance(20);
        const int week = random.between(20, 40);
        table.row()
            .set(u"Tuote", product.number)
            .set(u"RiviNro", random.between(1, 3))
            .set(u"Id", i + 1)
            .set(u"Tunnus", QStringLiteral("K%1").arg(week))
            .set(u"PitkaTunnus", QStringLiteral("Kesä 2024/%1").arg(week))
            .set(u"Alku",
                 (end.isValid() ? end : QDate(2024, 9, 30)).addDays(-random.between(7, 60)))
            .set(u"Loppu", end)
            .set(u"Prosentti", percent)
            .set(u"Myyntihinta", percent
                                     ? static_cast<double>(random.pick({10, 15, 20, 30}))
                                     : toCents(product.prices[0] * random.between(70, 92) / 100))
            .set(u"Ostohinta",
                 toFourDecimals(product.purchasePrice * random.between(90, 100) / 100))
            .set(u"Myymala", random.chance(70) ? 0 : random.between(1, kStores))
            .set(u"JulisteMaara", random.between(0, 3))
            .set(u"EiBonusta", random.chance(30))
            .set(u"AsHinnastoEsto", random.chance(10))
            .store();
    });
    progress(table.table(), table.rows());
}

void fillQuantityDiscounts(data::Database& database, const Facts& facts, const Progress& progress) {
    static const QDate kEnds[] = {QDate(),
                                  QDate(),
                                  QDate(2024, 5, 31),
                                  QDate(2024, 7, 1),
                                  QDate(2024, 8, 31),
                                  QDate(2024, 12, 31)};
    TableFiller table(database, QStringLiteral("MAARAALE"));
    inBatches(database, facts.quantityDiscountCount(), [&](int i) {
        Random random = facts.random(Stream::QuantityDiscount, i);
        const int pieces = random.between(2, 6);
        const double value = random.between(3, 40) * 1.0 - (random.chance(50) ? 0.05 : 0.1);
        table.row()
            .set(u"Numero", i + 1)
            .set(u"Nimi", QStringLiteral("%1 kpl %2 €")
                              .arg(pieces)
                              .arg(QString::number(value, 'f', 2).replace(u'.', u',')))
            .set(u"Tyyppi", random.between(0, 2))
            .set(u"Maara", static_cast<double>(pieces))
            .set(u"EnimmaisMaara", random.chance(30) ? pieces * 10.0 : 0.0)
            .set(u"Arvo", value)
            .set(u"Ostohinta", random.chance(40) ? toFourDecimals(value * 0.6) : 0.0)
            .set(u"Alku", QDate(2024, 1, 1).addDays(random.between(0, 120)))
            .set(u"Loppu", random.pick(kEnds))
            .set(u"KimppaKpl", pieces)
            .store();
    });
    progress(table.table(), table.rows());
}

void fillRecurringInvoices(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller table(database, QStringLiteral("VAKIOLASKUTUS"));
    inBatches(database, std::max(4, facts.productCount() / 20), [&](int i) {
        Random random = facts.random(Stream::Recurring, i);
        const Customer customer = facts.anyCustomer(random);
        const Product product = facts.anyProduct(random);
        const double count = random.pick({1.0, 1.0, 2.0, 5.0, 0.5, 12.0});
        const double price = product.prices[2] != 0 ? product.prices[2] : product.prices[0];
        const QDate start = dayBefore(random, 60, 1500);
        table.row()
            .set(u"Asiakas", customer.number)
            .set(u"Tuote", product.number)
            .set(u"ahinta", price)
            .set(u"ahintaalv0", price / vatFactor(product.vatClass))
            .set(u"Maara", count)
            .set(u"Yhteensa", toCents(price * count))
            .set(u"ostohinta", product.purchasePrice)
            .set(u"Laskutusvali", random.pick({1.0, 1.0, 3.0, 6.0, 12.0}))
            .set(u"Laskutuspaivat", u"1,15")
            .set(u"LaskutettuPvm", QDate(2024, 8, 1))
            .set(u"LuontiPvm", start)
            .set(u"LuontiAika", workingTime(random))
            .set(u"MuutosPvm", dayBefore(random, 5, 50))
            .set(u"MuutosAika", workingTime(random))
            .set(u"LaskutusAlkaa", start.addDays(10))
            .set(u"Passiivinen", random.chance(8))
            .set(u"Lisatieto", random.chance(40) ? u"Kuukausisopimus, ks. liite ä" : u"")
            .set(u"Jarjestys", i + 1)
            .store();
    });
    progress(table.table(), table.rows());
}

}  // namespace

void fillPriceTables(data::Database& database, const Facts& facts, const Progress& progress) {
    fillCustomers(database, facts, progress);
    fillPriceLists(database, facts, progress);
    fillCampaigns(database, facts, progress);
    fillQuantityDiscounts(database, facts, progress);
    fillRecurringInvoices(database, facts, progress);
}

}  // namespace tools::demo
