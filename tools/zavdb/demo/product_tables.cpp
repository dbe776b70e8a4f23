#include "tools/zavdb/demo/fill_tables.h"
#include "tools/zavdb/demo/table_filler.h"

namespace tools::demo {

namespace {

constexpr const char16_t* kPriceFields[kLevels] = {u"HINTA",  u"KAKSOISHINTA", u"HINTA3",
                                                   u"HINTA4", u"HINTA5",       u"HINTA6",
                                                   u"HINTA7", u"HINTA8",       u"HINTA9"};

bool isFood(const Product& product) {
    return product.words->mainGroup <= 2;
}

void setProductFields(TableFiller& row, const Product& product, Random& random) {
    const GroupWords& words = *product.words;
    for (int level = 0; level < kLevels; ++level)
        row.set(kPriceFields[level], product.prices[static_cast<size_t>(level)]);
    row.set(u"NUMERO", product.number)
        .set(u"NIMI", product.name)
        .set(u"NIMIKASSALLA", product.name.left(20).toUpper())
        .set(u"RYHMA", product.group)
        .set(u"PAARYHMA", words.mainGroup)
        .set(u"AliRyhma", product.subGroup)
        .set(u"LVV", product.vatClass)
        .set(u"Alv2", product.secondClass)
        .set(u"OSTOVERO", product.purchaseClass)
        .set(u"KESKIHINTA", product.purchasePrice)
        .set(u"VIIMOSTOHINTA",
             toFourDecimals(product.purchasePrice * random.between(97, 105) / 100))
        .set(u"YKS", words.unit)
        .set(u"VARASTOYKS", words.unit)
        .set(u"VARASTOKERROIN", 1.0)
        .set(u"TILYKS", words.unit)
        .set(u"TILAUSKOKO", static_cast<double>(random.between(1, 24)))
        .set(u"hryksikko", words.unit)
        .set(u"HRKERROIN", 1.0)
        .set(u"HRKPL", product.labels)
        .set(u"TOIMITTAJA", supplierCode(product.supplier))
        .set(u"TOIMTUNNUS", QString::number(700000 + product.index * 7LL))
        .set(u"maaraAle", product.quantityDiscount)
        .set(u"Verkkokauppa", product.webShop)
        .set(u"Hinnastoon", random.chance(60))
        .set(u"ESLTuote", random.chance(15))
        .set(u"Nettohinta", words.mainGroup == 12)
        .set(u"VARASTOARVOTON", words.mainGroup >= 11)
        .set(u"Passiivinen", random.perMille(20));
    if (isFood(product)) {
        row.set(u"ANNOSKOKO", 0.125)
            .set(u"ANNOSHINTA", toFourDecimals(product.purchasePrice * 0.125))
            .set(u"Vaakatuote", words.unit == u"kg")
            .set(u"Sailyvyys", random.between(3, 365))
            .set(u"Pakaste", words.name == u"Pakasteet" ? 1 : 0);
    }
    if (random.chance(70))
        row.set(u"AlkuperaMaa", random.chance(75) ? u"Suomi" : u"Ruotsi");
    if (random.chance(20))
        row.set(u"NIMI2", u"Myös tilauksesta, kysy myyjältä");
    const QDate founded = dayBefore(random, 60, 4000);
    row.set(u"PERUSTETTUPVM", founded)
        .set(u"MUUTETTUPVM", dayBefore(random, 5, 60))
        .set(u"muutettutime", workingTime(random))
        .set(u"OTETTUEKA", founded.addDays(random.between(0, 14)));
    if (words.mainGroup < 11) {
        row.set(u"KPL", static_cast<double>(random.between(0, 250)))
            .set(u"VIIMSISOSTO", dayBefore(random, 1, 120))
            .set(u"VIIMMYYNTI", dayBefore(random, 0, 45))
            .set(u"BruttoPaino", random.between(1, 2500) / 100.0);
    }
}

void setFurtherFields(TableFiller& row, const Product& product, Random& random) {
    row.row()
        .set(u"Numero", product.number)
        .set(u"Tuotelaji", product.words->mainGroup)
        .set(u"ToimitusAika", random.between(1, 21))
        .set(u"TavaraRyhma", QString::number(product.group))
        .set(u"EiToimitusSu", true)
        .set(u"EiToimitusLa", random.chance(50))
        .set(u"HintaOptimoitava", random.chance(10))
        .set(u"Verkkokauppatyyppi", product.webShop ? 1 : 0)
        .set(u"Leveys", random.between(5, 120) / 2.0)
        .set(u"Korkeus", random.between(5, 120) / 2.0)
        .set(u"Pituus", random.between(5, 120) / 2.0);
    if (product.words->vatClass == kVat10)
        row.set(u"Painovuosi", QString::number(random.between(1998, 2024)));
    if (random.chance(30))
        row.set(u"ViimeinenMyyntipaiva", dayBefore(random, -200, -30));
}

void fillTexts(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller texts(database, QStringLiteral("TUOTETXT"));
    // few: each record reserves 32 KB for text
    inBatches(database, facts.productCount() / 100, [&](int i) {
        Random random = facts.random(Stream::Text, i);
        const Product product = facts.product(i * 100);
        texts.row()
            .set(u"TuoteNro", product.number)
            .set(u"Otsikko", u"Kuvaus")
            .set(u"MuutettuPvm", dayBefore(random, 10, 500))
            .set(u"MuutettuKlo", workingTime(random))
            .set(u"Kieli", 1)
            .set(u"Teksti", product.name +
                                QStringLiteral(".\r\n\r\nTilaa \"heti\", toimitusaika noin ") +
                                QString::number(random.between(2, 10)) +
                                QStringLiteral(" päivää; määräalennus yli 10 kpl."))
            .store();
    });
    progress(texts.table(), texts.rows());
}

void fillFuturePrices(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller future(database, QStringLiteral("UUSIHINTA"));
    inBatches(database, facts.productCount() / 50, [&](int i) {
        Random random = facts.random(Stream::FuturePrice, i);
        const Product product = facts.anyProduct(random);
        future.row()
            .set(u"Tuote", product.number)
            .set(u"Pvm", dayBefore(random, -90, -10))
            .set(u"Hinta1", toCents(product.prices[0] * 1.05))
            .set(u"Hinta3", toCents(product.prices[2] * 1.05))
            .set(u"OstoHinta", toFourDecimals(product.purchasePrice * 1.04))
            .set(u"KatePros1", 30.0)
            .store();
    });
    progress(future.table(), future.rows());
}

void fillWebMarks(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller marks(database, QStringLiteral("WEBKLIITOS"));
    inBatches(database, facts.productCount() / 200, [&](int i) {
        Random random = facts.random(Stream::WebMark, i);
        marks.row()
            .set(u"taulu", u"TUOTE")
            .set(u"Tunniste", facts.anyProduct(random).number)
            .set(u"Tyyppi", random.chance(80) ? u"M" : u"L")
            .set(u"MuutosPvm", kToday)
            .set(u"muutosKlo", workingTime(random))
            .store();
    });
    progress(marks.table(), marks.rows());
}

}  // namespace

void fillProducts(data::Database& database, const Facts& facts, const Progress& progress) {
    TableFiller products(database, QStringLiteral("TUOTE"));
    TableFiller further(database, QStringLiteral("TUOTE2"));
    TableFiller webShop(database, QStringLiteral("VERKKOKAUPASSA"));
    inBatches(database, facts.productCount(), [&](int i) {
        const Product product = facts.product(i);
        Random random = facts.random(Stream::ProductRow, i);
        products.row();
        setProductFields(products, product, random);
        products.store();
        if (product.webShop || random.chance(15)) {
            setFurtherFields(further, product, random);
            further.store();
        }
        if (product.webShop)
            webShop.row().set(u"Tuote", product.number).store();
        if ((i + 1) % 100000 == 0 && i + 1 < facts.productCount())
            progress(products.table(), i + 1);
    });
    for (const TableFiller* table : {&products, &further, &webShop})
        progress(table->table(), table->rows());
    fillTexts(database, facts, progress);
    fillFuturePrices(database, facts, progress);
    fillWebMarks(database, facts, progress);
}

}  // namespace tools::demo
