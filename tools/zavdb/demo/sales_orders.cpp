#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/zavdb/demo/fill_tables.h"
#include "tools/zavdb/demo/table_filler.h"

namespace tools::demo {

namespace {

constexpr int kFirstOrder = 50001;
constexpr int kLastOpenState = 3;  // of Toimitustila

/// What a row is within its order.
enum class Part {
    Plain,
    PackageParent,
    PackageChild,
    StructureParent,
    StructureChild,
    VariantParent,
    VariantChild
};

bool countsInTotals(Part part) {
    return part != Part::PackageChild && part != Part::StructureParent &&
           part != Part::VariantParent;
}

struct OrderRow {
    Product product;
    Part part = Part::Plain;
    double quantity = 0;
    double left = 0;  // still to deliver
    double discount = 0;
    double price = 0;     // with VAT
    double purchase = 0;  // with VAT, as the single-precision field keeps it

    double factor() const { return vatFactor(product.vatClass); }
    double share() const { return 1.0 - discount / 100.0; }
    double priceVat0() const { return price / factor(); }
    double purchaseVat0() const { return purchase / vatFactor(product.purchaseClass); }
    double gross0() const { return priceVat0() * quantity * share(); }
    double net() const { return toCents(price * quantity * share()); }
    double margin() const { return toCents(net() - quantity * purchase); }
    double marginVat0() const { return toCents(gross0() - quantity * purchaseVat0()); }
};

int chargingMethod(Random& random) {
    if (random.chance(45))
        return 1;  // invoice
    if (random.chance(40))
        return 2;  // cash
    return random.between(0, 21);
}

OrderRow makeRow(const Facts& facts, Random& random, const Customer& customer, bool open,
                 Part part) {
    OrderRow row;
    row.part = part;
    row.product = facts.anyProduct(random);
    const bool byWeight = row.product.words->unit == u"kg" || row.product.words->unit == u"h";
    row.quantity = byWeight ? random.between(1, 30) / 2.0 : random.between(1, 24);
    if (random.chance(2))
        row.quantity = -row.quantity;  // returned goods
    if (open) {
        row.left = row.quantity;
        if (random.chance(15))
            row.left = 0;
        else if (!byWeight && random.chance(12))
            row.left = std::trunc(row.quantity / 2.0);
    }
    if (random.chance(25))
        row.discount = random.pick({2.0, 5.0, 7.5, 10.0, 15.0, 20.0, 33.3});
    else if (random.perMille(5))
        row.discount = 100.0;  // given away
    const auto level = static_cast<size_t>(
        customerGroups()[static_cast<size_t>(customer.group - 1)].priceLevel - 1);
    row.price = row.product.prices[level] != 0 ? row.product.prices[level] : row.product.prices[0];
    row.purchase = static_cast<double>(static_cast<float>(row.product.purchasePrice));
    if (random.perMille(8)) {  // sold at cost
        row.discount = 0;
        row.price = row.purchase;
    }
    return row;
}

std::vector<OrderRow> makeRows(const Facts& facts, Random& random, const Customer& customer,
                               bool open) {
    std::vector<OrderRow> rows;
    const int few = random.between(1, 8);
    const int wanted = std::min(few, random.between(1, 12));
    const auto add = [&](Part part) {
        rows.push_back(makeRow(facts, random, customer, open, part));
    };
    while (static_cast<int>(rows.size()) < wanted) {
        const int kind = random.between(1, 100);
        if (kind <= 4) {
            add(Part::PackageParent);
            add(Part::PackageChild);
            add(Part::PackageChild);
        } else if (kind <= 8) {
            add(Part::StructureParent);
            add(Part::StructureChild);
            add(Part::StructureChild);
        } else if (kind <= 10) {
            add(Part::VariantParent);
            add(Part::VariantChild);
        } else {
            add(Part::Plain);
        }
    }
    return rows;
}

void addRow(TableFiller& table, int order, int number, const OrderRow& row) {
    table.row()
        .set(u"TilausNro", order)
        .set(u"RiviNro", number)
        .set(u"Tuote", row.product.number)
        .set(u"Nimi", row.product.name)
        .set(u"Maara", row.quantity)
        .set(u"Toimitettava", row.left)
        .set(u"ToimitettuYhteensa", row.quantity - row.left)
        .set(u"Myyntiyks", row.product.words->unit)
        .set(u"Alennus", row.discount)
        .set(u"Ahinta", row.price)
        .set(u"AhintaAlv0", row.priceVat0())
        .set(u"AsiakasListaHinta", row.price)
        .set(u"Netto", row.net())
        .set(u"Ostohinta", row.purchase)
        .set(u"OstohintaAlv0", row.purchaseVat0())
        .set(u"Verokanta", row.product.vatClass)
        .set(u"OstoVero", row.product.purchaseClass)
        .set(u"Kate", row.margin())
        .set(u"KateAlv0", row.marginVat0())
        .set(u"Varastopaikka", 1)
        .set(u"PakettiEmo", row.part == Part::PackageParent)
        .set(u"PakettiLapsi", row.part == Part::PackageChild)
        .set(u"RakenneEmo", row.part == Part::StructureParent)
        .set(u"RakenneLapsi", row.part == Part::StructureChild)
        .set(u"OnVariKokoEmo", row.part == Part::VariantParent)
        .set(u"VariKokoLapsi", row.part == Part::VariantChild)
        .store();
}

}  // namespace

void fillSalesOrders(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller orders(database, QStringLiteral("MT"));
    TableFiller rows(database, QStringLiteral("MTRIVI"));
    inBatches(database, std::max(5, facts.productCount() / 4), [&](int i) {
        Random random = facts.random(Stream::SalesOrder, i);
        const int number = kFirstOrder + i;
        const Customer customer = facts.anyCustomer(random);
        const int state = random.pick({0, 0, 1, 1, 1, 2, 2, 3, 3, 3, 4, 5, 5, 6});
        const bool open = state <= kLastOpenState;
        const QDate ordered = open ? dayBefore(random, 0, 90) : dayBefore(random, 20, 250);
        QDate delivery;  // not agreed
        if (!open)
            delivery = ordered.addDays(random.between(1, 15));
        else if (random.chance(88))
            delivery = kToday.addDays(random.between(-5, 70));
        double sum = 0;
        double sumVat0 = 0;
        double margin = 0;
        double marginVat0 = 0;
        int rowNumber = 0;
        for (const OrderRow& row : makeRows(facts, random, customer, open)) {
            addRow(rows, number, ++rowNumber, row);
            if (!countsInTotals(row.part))
                continue;
            sum += row.net();
            sumVat0 += row.gross0();
            margin += row.net() - row.quantity * row.purchase;
            marginVat0 += row.gross0() - row.quantity * row.purchaseVat0();
        }
        orders.row()
            .set(u"Numero", number)
            .set(u"Asiakas", customer.number)
            .set(u"AsiakasNimi", customer.name)
            .set(u"TilausPvm", ordered)
            .set(u"Toimitustila", state)
            .set(u"Toimituspaiva", delivery)
            .set(u"Veloitustapa", chargingMethod(random))
            .set(u"Summa", toCents(sum))
            .set(u"SummaAlv0", toCents(sumVat0))
            .set(u"Kate", toCents(margin))
            .set(u"KateAlv0", toCents(marginVat0))
            .store();
    });
    progress(orders.table(), orders.rows());
    progress(rows.table(), rows.rows());
}

}  // namespace tools::demo
