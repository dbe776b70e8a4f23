#include "data/record/record_codec.h"
#include "tools/zavdb/demo/fill_tables.h"
#include "tools/zavdb/demo/table_filler.h"

namespace tools::demo {

namespace {

const QTime kMorning(8, 0, 0);

void report(const TableFiller& filler, const Progress& progress) {
    progress(filler.table(), filler.rows());
}

void fillVatClasses(data::Database& database, const Progress& progress) {
    TableFiller table(database, QStringLiteral("ALVKANTA"));
    for (const VatClassWords& words : vatClasses())
        table.row()
            .set(u"luokka", words.number)
            .set(u"Selite", words.name)
            .set(u"Prosentti", static_cast<double>(words.percent))
            .set(u"KpTili", words.account)
            .set(u"Kuittiteksti", words.receiptText)
            .set(u"FinvoiceAlvKoodi", words.invoiceCode)
            .set(u"TaxFreeRaja", words.number == kVat0 ? 0.0 : 40.0)
            .set(u"EiMatkustajamyyntia", words.number == kVat0);
    table.store();
    report(table, progress);
}

void fillGroups(data::Database& database, const Progress& progress) {
    TableFiller mains(database, QStringLiteral("PRYHMA"));
    for (const MainGroupWords& words : mainGroups())
        mains.row()
            .set(u"NRO", words.number)
            .set(u"nimi", words.name)
            .set(u"tili", words.account)
            .set(u"MuutosPvm", QDate(2023, 1, 16))
            .set(u"MuutosKlo", kMorning)
            .set(u"OnWebKaupassa", words.number != 11)
            .set(u"WebKauppaJarjestys", words.number * 10);
    mains.store();
    report(mains, progress);

    TableFiller products(database, QStringLiteral("TRYHMA"));
    TableFiller subs(database, QStringLiteral("ALIRYHMA"));
    for (int i = 0; i < static_cast<int>(groups().size()); ++i) {
        const GroupWords& words = groups()[static_cast<size_t>(i)];
        const bool food = words.vatClass == kVat14;
        products.row()
            .set(u"Nro", groupNumber(i))
            .set(u"Nimi", words.name)
            .set(u"PaaRyhma", words.mainGroup)
            .set(u"TavoiteKatePros", food ? 22.5 : 35.0)
            .set(u"vero", static_cast<int>(words.vatClass))
            .set(u"Alv2", food ? static_cast<int>(kVat24) : 0)
            .set(u"ostovero", static_cast<int>(words.vatClass))
            .set(u"VYks", words.unit)
            .set(u"MYks", words.unit)
            .set(u"hretik", 1)
            .set(u"Tili", words.vatClass == kVat24 ? u"3000" : u"3010")
            .set(u"OnWebKaupassa", words.mainGroup != 11)
            .set(u"WebKauppaJarjestys", i + 1)
            .set(u"MuutosPvm", QDate(2023, 1, 16).addDays(i))
            .set(u"MuutosKlo", kMorning)
            .set(u"Nettohintainen", words.mainGroup == 12);
        const QList<QStringView> names = items(words.subGroups);
        for (int sub = 0; sub < names.size(); ++sub)
            subs.row()
                .set(u"Nro", subGroupNumber(i, sub))
                .set(u"Nimi", names[sub])
                .set(u"TuoteRyhma", groupNumber(i))
                .set(u"vero", static_cast<int>(words.vatClass))
                .set(u"ostovero", static_cast<int>(words.vatClass))
                .set(u"VYks", words.unit)
                .set(u"MYks", words.unit)
                .set(u"MuutosPvm", QDate(2023, 1, 16).addDays(i))
                .set(u"MuutosKlo", kMorning)
                .set(u"Verkkokaupassa", words.mainGroup != 11)
                .set(u"Maksimikerroin", 2.5);
    }
    products.store();
    subs.store();
    report(products, progress);
    report(subs, progress);
}

// Replaces the price level names of a new company, "Hinta 1" to "Hinta 9".
void renamePriceLevels(data::Database& database, const Progress& progress) {
    const auto file = database.openTable(QStringLiteral("HINTATASO"));
    const data::RecordLayout& layout = file->layout();
    const data::TFieldCacheItem& number = layout.field(layout.indexOf(QStringLiteral("Nro")));
    const data::TFieldCacheItem& name = layout.field(layout.indexOf(QStringLiteral("Nimi")));
    for (data::StoredRecord& record : file->fromEnd(0, data::Direction::Forward, kLevels)) {
        auto* bytes = reinterpret_cast<uchar*>(record.bytes.data());
        const qint64 level = data::readInteger(number, bytes);
        if (level < 1 || level > kLevels)
            continue;
        data::writeText(name, bytes, priceLevelNames()[static_cast<size_t>(level - 1)].toString(),
                        layout.tableName());
        file->update(record.id, record.bytes);
    }
    progress(QStringLiteral("HINTATASO"), file->recordCount());
}

void fillCustomerGroups(data::Database& database, const Progress& progress) {
    TableFiller table(database, QStringLiteral("ASRYHMA"));
    for (const CustomerGroupWords& words : customerGroups())
        table.row()
            .set(u"Nro", words.number)
            .set(u"Nimi", words.name)
            .set(u"AlePros", words.discountPercent)
            .set(u"HintaTaso", words.priceLevel)
            .set(u"ToimKuluRaja", words.companies ? 150.0 : 50.0);
    table.store();
    report(table, progress);
}

void fillSuppliers(data::Database& database, const Progress& progress) {
    TableFiller table(database, QStringLiteral("TOIMITTAJA"));
    for (int i = 0; i < static_cast<int>(suppliers().size()); ++i)
        table.row()
            .set(u"Tunnus", supplierCode(i))
            .set(u"Nimi", suppliers()[static_cast<size_t>(i)]);
    table.store();
    report(table, progress);
}

void fillSettings(data::Database& database, const Progress& progress) {
    struct Setting {
        const char16_t* section;
        const char16_t* key;
        const char16_t* value;
    };
    static constexpr Setting kSettings[] = {
        {u"ASETUKSIA", u"Tuotehintamuoto", u"#######.##"},
        {u"ASETUKSIA", u"ALUERAJAUS", u"0"},
        {u"ASETUKSIA", u"niminimi2haku", u"1"},
        {u"YRITYS", u"Nimi", u"Pohjantähden Kauppa Oy"},
        {u"YRITYS", u"Osoite", u"Kauppakatu 12, 33100 Tampere"},
        {u"YRITYS", u"YTunnus", u"0000000-0"},
        {u"MYYMALA", u"1", u"Tampere keskusta"},
        {u"MYYMALA", u"2", u"Turku Länsikeskus"},
        {u"MYYMALA", u"3", u"Oulu Satama"},
        {u"MYYMALA", u"4", u"Järvenpää"},
        {u"VERKKOKAUPPA", u"Kaytossa", u"1"},
        {u"LASKUTUS", u"Viivastyskorko", u"12,5"},
    };
    TableFiller table(database, QStringLiteral("INI"));
    for (const Setting& setting : kSettings)
        table.row()
            .set(u"IniNimi", u"ZAV.INI")
            .set(u"Sektio", setting.section)
            .set(u"Avain", setting.key)
            .set(u"Data", setting.value);
    table.store();
    report(table, progress);

    TableFiller columns(database, QStringLiteral("SARAKE"));
    columns.row()
        .set(u"Nimi", u"Tuotehaku")
        .set(u"Data", u"NUMERO=140\r\nNIMI=280\r\nHINTA=80\r\nKPL=60");
    columns.row().set(u"Nimi", u"Ryhmähaku").set(u"Data", u"Nro=60\r\nNimi=280");
    columns.store();
    report(columns, progress);
}

}  // namespace

void fillBaseTables(data::Database& database, const Facts&, const Progress& progress) {
    database.inTransaction([&] {
        fillVatClasses(database, progress);
        fillGroups(database, progress);
        renamePriceLevels(database, progress);
        fillCustomerGroups(database, progress);
        fillSuppliers(database, progress);
        fillSettings(database, progress);
    });
}

}  // namespace tools::demo
