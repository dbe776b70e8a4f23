#include "vatchange/orders/alv_muutos_ot.h"

#include "vatchange/orders/order_fields.h"

namespace vatchange {

/// The fields of a purchase order's header and rows, looked up once.
struct TAlvMuutosOt::Fields {
    Fields(data::TtbTable& header, data::TtbTable& row)
        : summa(header, "summa"),
          summaAlv0(header, "SummaAlv0"),
          alvLuokka(fieldOf(row, "AlvLuokka")),
          tulematta(fieldOf(row, "Tulematta")),
          ostoHinta(row, "OstoHinta"),
          ostoHintaAlv0(row, "OstoHintaAlv0"),
          maara(fieldOf(row, "Maara")),
          alennus(fieldOf(row, "Alennus")),
          rowSumma(row, "Summa"),
          variKokoLapsi(fieldOf(row, "VariKokoLapsi")) {}

    /// The persistent fields of the row table; the others of its dictionary are not opened.
    static std::vector<data::FieldDeclaration> declarations() {
        std::vector<data::FieldDeclaration> fields;
        for (const char* name : {"TilausNro", "RiviNro", "AlvLuokka", "Tulematta", "OstoHinta",
                                 "OstoHintaAlv0", "Maara", "Alennus", "Summa", "VariKokoLapsi"}) {
            data::FieldDeclaration field;
            field.name = QString::fromLatin1(name);
            if (field.name == QLatin1String("OstoHinta"))
                field.displayFormat = QStringLiteral("#0.00");
            fields.push_back(field);
        }
        return fields;
    }

    AmountField summa;
    AmountField summaAlv0;

    data::TField& alvLuokka;
    data::TField& tulematta;
    AmountField ostoHinta;
    AmountField ostoHintaAlv0;
    data::TField& maara;
    data::TField& alennus;
    AmountField rowSumma;
    data::TField& variKokoLapsi;
};

TAlvMuutosOt::TAlvMuutosOt(data::Database& database, const PurchaseOrderChange& change,
                           const VatFactor& factor, RunPorts& ports, qint64& changedRows,
                           OrderProgress progress)
    : m_change(change),
      m_factor(factor),
      m_changedRows(changedRows),
      m_progress(std::move(progress)),
      m_walk(ports) {
    OtRiviTable.setFieldDeclarations(Fields::declarations());
    openOrderTable(OtTable, database, "WINOT");
    openOrderTable(OtRiviTable, database, "WINOTRI");
    SQLKysely.setConnection(&database);
    m_fields = std::make_unique<Fields>(OtTable, OtRiviTable);
}

TAlvMuutosOt::~TAlvMuutosOt() = default;

bool TAlvMuutosOt::TeeAlvMuutosOt() {
    SQLKysely.sql().add(QStringLiteral("SELECT TilausNro"));
    SQLKysely.sql().add(QStringLiteral("FROM WINOT"));
    SQLKysely.sql().add(QStringLiteral("WHERE Tila <= 4"));
    m_walk.run(SQLKysely, QStringLiteral("TilausNro"), QStringLiteral("Ostotilaus"), OtRiviTable,
               [this](qint64 order) { MuutaOtTilaus(order); });
    return !m_walk.stopped();
}

void TAlvMuutosOt::MuutaOtTilaus(qint64 number) {
    if (m_progress.isFinished(number))
        return;
    const data::KeyValues key{data::Value(number)};
    if (!OtTable.findKey(key))
        return;
    OtRiviTable.setRange(key, key);
    for (; !OtRiviTable.eof() && !m_walk.stopRequested(); OtRiviTable.next())
        if (isPurchaseRowConverted(readRow(), m_change.sourceClass))
            MuutaOtRivi();
    const bool complete = OtRiviTable.eof();  // false after the user's stop
    LaskeOtSummat();
    OtRiviTable.cancelRange();
    if (complete)
        m_progress.finish(OtTable.tableName(), number, OtTable.file(), OtRiviTable.file());
}

void TAlvMuutosOt::MuutaOtRivi() {
    Fields& f = *m_fields;
    OtRiviTable.edit();
    PurchaseRow row = readRow();
    if (!isPurchaseRowConverted(row, m_change.sourceClass)) {
        // Another program changed the row between reading and locking.
        OtRiviTable.cancel();
        return;
    }
    const auto tracePrice = [&](const QString& when) {
        if (m_change.keepVat0 && kOrderTrace().isDebugEnabled())
            traceOrders(when + f.ostoHinta.field().displayText() + QStringLiteral(" hintades: ") +
                        QString::number(m_change.priceDecimals));
    };
    tracePrice(QStringLiteral("Ennen: "));
    convertPurchaseRow(row, m_change, m_factor);
    f.alvLuokka.setInteger(row.alvLuokka);
    f.ostoHinta.set(row.ostoHinta);
    f.ostoHintaAlv0.set(row.ostoHintaAlv0);
    f.rowSumma.set(row.summa);
    tracePrice(QStringLiteral("Jälkseen: "));
    OtRiviTable.post();
    ++m_changedRows;
}

void TAlvMuutosOt::LaskeOtSummat() {
    Fields& f = *m_fields;
    PurchaseTotals totals;
    for (OtRiviTable.first(); !OtRiviTable.eof(); OtRiviTable.next())
        addPurchaseRow(totals, readRow());
    OtTable.edit();
    f.summa.set(totals.summa);
    f.summaAlv0.set(totals.summaAlv0);
    OtTable.post();
}

PurchaseRow TAlvMuutosOt::readRow() const {
    const Fields& f = *m_fields;
    PurchaseRow row;
    row.alvLuokka = f.alvLuokka.asInteger();
    row.tulematta = f.tulematta.asFloat();
    row.maara = f.maara.asFloat();
    row.alennus = f.alennus.asFloat();
    row.ostoHinta = f.ostoHinta.get();
    row.ostoHintaAlv0 = f.ostoHintaAlv0.get();
    row.summa = f.rowSumma.get();
    row.variKokoLapsi = f.variKokoLapsi.asBoolean();
    return row;
}

bool AlvMuutosOstotilauksiin(data::Database& database, const PurchaseOrderChange& change,
                             const VatFactor& factor, RunPorts& ports, qint64& changedRows,
                             OrderProgress progress) {
    TAlvMuutosOt orders(database, change, factor, ports, changedRows, std::move(progress));
    if (!orders.TeeAlvMuutosOt())
        return false;
    database.flush();
    ports.stepFinished(QStringLiteral("Ostotilaukset konvertoitu."));
    return true;
}

}  // namespace vatchange
