#include "vatchange/orders/alv_muutos_mt.h"

#include "vatchange/orders/order_fields.h"

namespace vatchange {

/// Fields of the header and row tables, looked up once.
struct TAlvMuutosMt::Fields {
    Fields(data::TtbTable& header, data::TtbTable& row)
        : veloitustapa(fieldOf(header, "Veloitustapa")),
          summa(header, "summa"),
          headerKate(header, "kate"),
          headerKateAlv0(header, "katealv0"),
          summaAlv0(header, "summaALV0"),
          tilausNro(fieldOf(row, "tilausnro")),
          riviNro(fieldOf(row, "rivinro")),
          verokanta(fieldOf(row, "verokanta")),
          ostoVero(fieldOf(row, "OstoVero")),
          toimitettava(fieldOf(row, "Toimitettava")),
          maara(fieldOf(row, "Maara")),
          alennus(fieldOf(row, "alennus")),
          ahinta(row, "Ahinta"),
          ahintaAlv0(row, "AhintaAlv0"),
          ostohinta(row, "ostohinta"),
          ostohintaAlv0(row, "OstohintaAlv0"),
          netto(row, "netto"),
          kate(row, "kate"),
          kateAlv0(row, "katealv0"),
          rakenneEmo(fieldOf(row, "rakenneEmo")),
          pakettiLapsi(fieldOf(row, "pakettilapsi")),
          onVariKokoEmo(fieldOf(row, "OnVariKokoEmo")) {}

    data::TField& veloitustapa;
    AmountField summa;
    AmountField headerKate;
    AmountField headerKateAlv0;
    AmountField summaAlv0;

    data::TField& tilausNro;
    data::TField& riviNro;
    data::TField& verokanta;
    data::TField& ostoVero;
    data::TField& toimitettava;
    data::TField& maara;
    data::TField& alennus;
    AmountField ahinta;
    AmountField ahintaAlv0;
    AmountField ostohinta;
    AmountField ostohintaAlv0;
    AmountField netto;
    AmountField kate;
    AmountField kateAlv0;
    data::TField& rakenneEmo;
    data::TField& pakettiLapsi;
    data::TField& onVariKokoEmo;
};

TAlvMuutosMt::TAlvMuutosMt(data::Database& database, const SalesOrderChange& change,
                           const VatFactor& factor, RunPorts& ports, qint64& changedRows,
                           OrderProgress progress)
    : m_change(change),
      m_factor(factor),
      m_ports(ports),
      m_changedRows(changedRows),
      m_progress(std::move(progress)),
      m_walk(ports) {
    openOrderTable(MtTable, database, "MT");
    openOrderTable(MtRiviTable, database, "MTRIVI");
    SQLKysely.setConnection(&database);
    m_fields = std::make_unique<Fields>(MtTable, MtRiviTable);
}

TAlvMuutosMt::~TAlvMuutosMt() = default;

bool TAlvMuutosMt::TeeAlvMuutosMt() {
    SQLKysely.sql().add(QStringLiteral("SELECT Numero"));
    SQLKysely.sql().add(QStringLiteral("FROM MT "));
    SQLKysely.sql().add(QStringLiteral("WHERE MT.Toimitustila <= 3"));
    if (m_change.deliveryLimit.isValid())
        SQLKysely.sql().add(
            QStringLiteral("AND toimituspaiva >= '%1'")
                .arg(m_change.deliveryLimit.toString(QStringLiteral("yyyy-MM-dd"))));
    m_walk.run(SQLKysely, QStringLiteral("Numero"), QStringLiteral("Myyntitilaus"), MtRiviTable,
               [this](qint64 order) { MuutaMtTilaus(order); });
    return !m_walk.stopped();
}

void TAlvMuutosMt::MuutaMtTilaus(qint64 number) {
    if (m_progress.isFinished(number))
        return;
    const data::KeyValues key{data::Value(number)};
    if (!MtTable.findKey(key))
        return;
    const qint64 method = m_fields->veloitustapa.asInteger();
    if (isSkippedChargingMethod(method)) {
        m_ports.log(QStringLiteral("tilaus %1 ohitetaan ").arg(number));
        return;
    }
    const bool special = OnHintaVeloitustapa(method);
    MtRiviTable.setRange(key, key);
    for (; !MtRiviTable.eof() && !m_walk.stopRequested(); MtRiviTable.next())
        if (isSalesRowConverted(readRow(), m_change.sourceClass))
            MuutaMtRivi(special);
    const bool complete = MtRiviTable.eof();  // false after the user's stop
    LaskeMtSummat();
    MtRiviTable.cancelRange();
    if (complete)
        m_progress.finish(MtTable.tableName(), number, MtTable.file(), MtRiviTable.file());
}

void TAlvMuutosMt::MuutaMtRivi(bool special) {
    Fields& f = *m_fields;
    if (kOrderTrace().isDebugEnabled())
        traceOrders(
            QStringLiteral("%1 %2").arg(f.tilausNro.asInteger()).arg(f.riviNro.asInteger()));

    MtRiviTable.edit();
    SalesRow row = readRow();
    if (!isSalesRowConverted(row, m_change.sourceClass)) {
        // Another program changed the row between reading and locking.
        MtRiviTable.cancel();
        return;
    }
    convertSalesRow(row, m_change, special, m_factor);
    f.verokanta.setInteger(row.verokanta);
    f.ostoVero.setInteger(row.ostoVero);
    f.ostohinta.set(row.ostohinta);
    f.ostohintaAlv0.set(row.ostohintaAlv0);
    f.ahinta.set(row.ahinta);
    f.ahintaAlv0.set(row.ahintaAlv0);
    f.netto.set(row.netto);
    f.kate.set(row.kate);
    f.kateAlv0.set(row.kateAlv0);
    MtRiviTable.post();
    m_progress.clearMarginMark(MtRiviTable.recordId());
    ++m_changedRows;
}

void TAlvMuutosMt::LaskeMtSummat() {
    Fields& f = *m_fields;
    MtTable.edit();
    SalesTotals totals{f.summa.empty(), f.headerKate.empty(), f.headerKateAlv0.empty(),
                       f.summaAlv0.empty()};
    for (MtRiviTable.first(); !MtRiviTable.eof(); MtRiviTable.next()) {
        SalesRow row = readRow();
        // an attempt that was broken off has left its marks, which are no margins
        bool marked = m_progress.hasMarginMark(MtRiviTable.recordId());
        if (needsMarginMark(row)) {
            MtRiviTable.edit();
            row = readRow();
            marked = needsMarginMark(row);
            if (marked) {
                f.kate.set(kMarginMark);
                m_progress.setMarginMark(true);
                MtRiviTable.post();
                m_progress.setMarginMark(false);
            } else {
                MtRiviTable.cancel();
            }
        }
        addSalesRow(totals, row, marked);
    }
    roundSalesTotals(totals, m_change.priceDecimals);
    f.summa.set(totals.summa);
    f.headerKate.set(totals.kate);
    f.summaAlv0.set(totals.summaAlv0);
    f.headerKateAlv0.set(totals.kateAlv0);
    MtTable.post();
}

SalesRow TAlvMuutosMt::readRow() const {
    const Fields& f = *m_fields;
    SalesRow row;
    row.verokanta = f.verokanta.asInteger();
    row.ostoVero = f.ostoVero.asInteger();
    row.toimitettava = f.toimitettava.asFloat();
    row.maara = f.maara.asFloat();
    row.alennus = f.alennus.asFloat();
    row.ahinta = f.ahinta.get();
    row.ahintaAlv0 = f.ahintaAlv0.get();
    row.ostohinta = f.ostohinta.get();
    row.ostohintaAlv0 = f.ostohintaAlv0.get();
    row.netto = f.netto.get();
    row.kate = f.kate.get();
    row.kateAlv0 = f.kateAlv0.get();
    row.rakenneEmo = f.rakenneEmo.asBoolean();
    row.pakettiLapsi = f.pakettiLapsi.asBoolean();
    row.onVariKokoEmo = f.onVariKokoEmo.asBoolean();
    return row;
}

bool AlvMuutosMyyntitilauksiin(data::Database& database, const SalesOrderChange& change,
                               const VatFactor& factor, RunPorts& ports, qint64& changedRows,
                               OrderProgress progress) {
    TAlvMuutosMt orders(database, change, factor, ports, changedRows, std::move(progress));
    if (!orders.TeeAlvMuutosMt())
        return false;
    database.flush();
    ports.stepFinished(QStringLiteral("Myyntitilaukset konvertoitu."));
    return true;
}

}  // namespace vatchange
