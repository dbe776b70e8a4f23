#include <algorithm>

#include "tools/zavdb/demo/fill_tables.h"
#include "tools/zavdb/demo/table_filler.h"

namespace tools::demo {

namespace {

constexpr int kFirstOrder = 8001;
constexpr int kLastOpenState = 4;  // of Tila

struct Totals {
    double sum = 0;
    double sumVat0 = 0;
};

void addRow(TableFiller& table, const Facts& facts, Random& random, int order, int number,
            bool open, Totals& totals) {
    const Product product = facts.anyProduct(random);
    const bool variantParent = random.chance(4);
    const bool variantChild = !variantParent && random.chance(4);
    const double quantity = random.between(1, 20) * 6.0;
    const int percent = random.chance(25) ? random.pick({3, 5, 10, 25}) : 0;
    const double discount = percent;
    const double price = product.purchasePrice;
    const double priceVat0 = price / vatFactor(product.purchaseClass);
    double outstanding = 0;
    if (open && !random.chance(15))
        outstanding = random.chance(85) ? quantity : quantity / 2;
    const double share = 1.0 - discount / 100.0;
    const double sum = price * quantity * share;
    table.row()
        .set(u"TilausNro", order)
        .set(u"RiviNro", number)
        .set(u"Tuote", product.number)
        .set(u"Nimi", product.name)
        .set(u"TilausKoodi", QString::number(700000 + product.index * 7LL))
        .set(u"Maara", quantity)
        .set(u"MaaraTilausYks", quantity / 6.0)
        .set(u"TilausKoko", 6.0)
        .set(u"TilausYksikko", u"ltk")
        .set(u"OstoHinta", price)
        .set(u"OstoHintaAlv0", priceVat0)
        .set(u"NettoAhinta", price * share)
        .set(u"Alennus", discount)
        .set(u"Summa", sum)
        .set(u"Tulematta", outstanding)
        .set(u"Toimitetu", quantity - outstanding)
        .set(u"AlvLuokka", product.purchaseClass)
        .set(u"Tryhma", product.group)
        .set(u"OnVariKokoEmo", variantParent)
        .set(u"VariKokoLapsi", variantChild)
        .store();
    if (variantChild)
        return;  // its parent counts
    totals.sum += sum;
    totals.sumVat0 += priceVat0 * quantity * share;
}

}  // namespace

void fillPurchaseOrders(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller orders(database, QStringLiteral("WINOT"));
    TableFiller rows(database, QStringLiteral("WINOTRI"));
    inBatches(database, std::max(4, facts.productCount() / 10), [&](int i) {
        Random random = facts.random(Stream::PurchaseOrder, i);
        const int number = kFirstOrder + i;
        const int state = random.pick({0, 1, 2, 2, 3, 4, 5, 5, 6, 7});
        const bool open = state <= kLastOpenState;
        const QDate ordered = open ? dayBefore(random, 1, 60) : dayBefore(random, 30, 300);
        Totals totals;
        const int count = random.between(1, 9);
        for (int row = 1; row <= count; ++row)
            addRow(rows, facts, random, number, row, open, totals);
        orders.row()
            .set(u"TilausNro", number)
            .set(u"Toimittaja",
                 supplierCode(random.between(0, static_cast<int>(suppliers().size()) - 1)))
            .set(u"Tilaaja", random.between(1, 9))
            .set(u"LuontiPvm", ordered)
            .set(u"TilausPvm", ordered)
            .set(u"toimitusPvm", ordered.addDays(random.between(3, 60)))
            .set(u"Tila", state)
            .set(u"Varasto", random.between(1, kStores))
            .set(u"Toimittajanviite", QStringLiteral("Tarjous %1").arg(number * 3))
            .set(u"ToimAsNimi", u"Pohjantähden Kauppa Oy")
            .set(u"ToimAsOsoite", u"Kauppakatu 12")
            .set(u"ToimAsPostiNro", u"33100")
            .set(u"ToimAsPostiTmp", u"Tampere")
            .set(u"SalliOsatoimitus", random.chance(70))
            .set(u"Kiire", random.chance(8))
            .set(u"Summa", totals.sum)
            .set(u"SummaAlv0", totals.sumVat0)
            .set(u"MuutosPvm", dayBefore(random, 0, 20))
            .store();
    });
    progress(orders.table(), orders.rows());
    progress(rows.table(), rows.rows());
}

}  // namespace tools::demo
