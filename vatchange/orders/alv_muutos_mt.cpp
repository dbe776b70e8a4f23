#include "vatchange/orders/alv_muutos_mt.h"

#include <limits>

#include "data/clock.h"
#include "vatchange/orders/order_fields.h"

namespace vatchange {

namespace {

using namespace std::chrono_literals;
constexpr auto kLockWait = 2000ms;

void openTable(data::TtbTable& table, data::Database& database, const char* name) {
    table.setDatabaseName(data::kDdfDatabase);
    table.setDatabase(&database);
    table.setTableName(QString::fromLatin1(name));
    table.setLockWait(kLockWait);
    table.open();
}

double positiveOrOne(double coefficient) {
    return coefficient > 0 ? coefficient : 1.0;
}

data::KeyValues orderKey(qint64 number) {
    return {data::Value(number)};
}

}  // namespace

TAlvMuutosMt::TAlvMuutosMt(data::Database& database, const OrderPorts& ports)
    : m_ports(ports), m_factor([this](qint64 vatClass) { return factor(vatClass); }) {
    OtRiviTable.setFieldDeclarations(PurchaseFields::declarations());
    openTable(MtTable, database, "MT");
    openTable(MtRiviTable, database, "MTRIVI");
    openTable(OtTable, database, "WINOT");
    openTable(OtRiviTable, database, "WINOTRI");
    SQLKysely.setConnection(&database);
    m_sales = std::make_unique<SalesFields>(MtTable, MtRiviTable);
    m_purchase = std::make_unique<PurchaseFields>(OtTable, OtRiviTable);
}

TAlvMuutosMt::~TAlvMuutosMt() = default;

void TAlvMuutosMt::setSalesCoefficient(double coefficient) {
    m_salesCoefficient = positiveOrOne(coefficient);
}

void TAlvMuutosMt::setPurchaseCoefficient(double coefficient) {
    m_purchaseCoefficient = positiveOrOne(coefficient);
}

// --- sales orders

void TAlvMuutosMt::TeeAlvMuutosMt(bool keepVat0, int sourceClass, int targetClass,
                                  const QDate& deliveryLimit) {
    m_keepVat0 = keepVat0;
    m_sourceClass = sourceClass;
    m_targetClass = targetClass;

    SQLKysely.close();
    SQLKysely.sql().clear();
    SQLKysely.sql().add(QStringLiteral("SELECT Numero"));
    SQLKysely.sql().add(QStringLiteral("FROM MT "));
    SQLKysely.sql().add(QStringLiteral("WHERE MT.Toimitustila <= 3"));
    if (deliveryLimit.isValid())
        SQLKysely.sql().add(QStringLiteral("AND toimituspaiva >= '%1'")
                                .arg(deliveryLimit.toString(QStringLiteral("yyyy-MM-dd"))));
    walkOrders(QStringLiteral("Numero"), QStringLiteral("Myyntitilaus"),
               &TAlvMuutosMt::MuutaMtTilaus);
}

void TAlvMuutosMt::MuutaMtTilaus(qint64 number) {
    if (!MtTable.findKey(orderKey(number)))
        return;
    const qint64 method = m_sales->veloitustapa.asInteger();
    if (isSkippedChargingMethod(method)) {
        m_ports.log(QStringLiteral("tilaus %1 ohitetaan ").arg(number));
        return;
    }
    const bool special = OnHintaVeloitustapa(method);
    MtRiviTable.setRange(orderKey(number), orderKey(number));
    for (; !MtRiviTable.eof() && !stopAsked(); MtRiviTable.next())
        if (isSalesRowConverted(readSalesRow(), m_sourceClass))
            MuutaMtRivi(special);
    LaskeMtSummat();
    MtRiviTable.cancelRange();
}

void TAlvMuutosMt::MuutaMtRivi(bool special) {
    SalesFields& f = *m_sales;
    if (m_ports.trace)
        trace(QStringLiteral("%1 %2").arg(f.tilausNro.asInteger()).arg(f.riviNro.asInteger()));

    MtRiviTable.edit();
    SalesRow row = readSalesRow();
    if (!isSalesRowConverted(row, m_sourceClass)) {
        // Somebody else changed the row between reading and locking it.
        MtRiviTable.cancel();
        return;
    }
    SalesRowChange change;
    change.priceDecimals = m_priceDecimals;
    change.keepVat0 = m_keepVat0;
    change.special = special;
    change.sourceClass = m_sourceClass;
    change.targetClass = m_targetClass;
    change.purchaseCoefficient = m_purchaseCoefficient;
    change.salesCoefficient = m_salesCoefficient;
    convertSalesRow(row, change, m_factor);

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
    if (m_ports.rowChanged)
        m_ports.rowChanged();
}

void TAlvMuutosMt::LaskeMtSummat() {
    SalesFields& f = *m_sales;
    MtTable.edit();
    SalesTotals totals{f.summa.empty(), f.headerKate.empty(), f.headerKateAlv0.empty(),
                       f.summaAlv0.empty()};
    for (MtRiviTable.first(); !MtRiviTable.eof(); MtRiviTable.next()) {
        SalesRow row = readSalesRow();
        bool marked = false;
        if (needsMarginMark(row)) {
            MtRiviTable.edit();
            row = readSalesRow();
            marked = needsMarginMark(row);
            if (marked) {
                f.kate.set(kMarginMark);
                MtRiviTable.post();
            } else {
                MtRiviTable.cancel();
            }
        }
        addSalesRow(totals, row, marked);
    }
    roundSalesTotals(totals, m_priceDecimals);
    f.summa.set(totals.summa);
    f.headerKate.set(totals.kate);
    f.summaAlv0.set(totals.summaAlv0);
    f.headerKateAlv0.set(totals.kateAlv0);
    MtTable.post();
}

SalesRow TAlvMuutosMt::readSalesRow() const {
    const SalesFields& f = *m_sales;
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

// --- purchase orders

void TAlvMuutosMt::TeeAlvMuutosOt(bool keepVat0, int sourceClass, int targetClass) {
    m_keepVat0 = keepVat0;
    m_sourceClass = sourceClass;
    m_targetClass = targetClass;

    SQLKysely.close();
    SQLKysely.sql().clear();
    SQLKysely.sql().add(QStringLiteral("SELECT TilausNro"));
    SQLKysely.sql().add(QStringLiteral("FROM WINOT"));
    SQLKysely.sql().add(QStringLiteral("WHERE Tila <= 4"));
    walkOrders(QStringLiteral("TilausNro"), QStringLiteral("Ostotilaus"),
               &TAlvMuutosMt::MuutaOtTilaus);
}

void TAlvMuutosMt::MuutaOtTilaus(qint64 number) {
    if (!OtTable.findKey(orderKey(number)))
        return;
    OtRiviTable.setRange(orderKey(number), orderKey(number));
    for (; !OtRiviTable.eof() && !stopAsked(); OtRiviTable.next())
        if (isPurchaseRowConverted(readPurchaseRow(), m_sourceClass))
            MuutaOtRivi();
    LaskeOtSummat();
    OtRiviTable.cancelRange();
}

void TAlvMuutosMt::MuutaOtRivi() {
    PurchaseFields& f = *m_purchase;
    OtRiviTable.edit();
    PurchaseRow row = readPurchaseRow();
    if (!isPurchaseRowConverted(row, m_sourceClass)) {
        OtRiviTable.cancel();
        return;
    }
    const auto tracePrice = [&](const QString& when) {
        if (m_keepVat0 && m_ports.trace)
            trace(when + f.ostoHinta.field().displayText() + QStringLiteral(" hintades: ") +
                  QString::number(m_priceDecimals));
    };
    tracePrice(QStringLiteral("Ennen: "));

    PurchaseRowChange change;
    change.keepVat0 = m_keepVat0;
    change.sourceClass = m_sourceClass;
    change.targetClass = m_targetClass;
    change.coefficient = m_purchaseCoefficient;
    convertPurchaseRow(row, change, m_factor);

    f.alvLuokka.setInteger(row.alvLuokka);
    f.ostoHinta.set(row.ostoHinta);
    f.ostoHintaAlv0.set(row.ostoHintaAlv0);
    f.rowSumma.set(row.summa);
    tracePrice(QStringLiteral("Jälkseen: "));
    OtRiviTable.post();
    if (m_ports.rowChanged)
        m_ports.rowChanged();
}

void TAlvMuutosMt::LaskeOtSummat() {
    PurchaseFields& f = *m_purchase;
    PurchaseTotals totals;
    for (OtRiviTable.first(); !OtRiviTable.eof(); OtRiviTable.next())
        addPurchaseRow(totals, readPurchaseRow());
    OtTable.edit();
    f.summa.set(totals.summa);
    f.summaAlv0.set(totals.summaAlv0);
    OtTable.post();
}

PurchaseRow TAlvMuutosMt::readPurchaseRow() const {
    const PurchaseFields& f = *m_purchase;
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

// --- both

void TAlvMuutosMt::walkOrders(const QString& numberField, const QString& statusName,
                              void (TAlvMuutosMt::*convert)(qint64)) {
    m_stopped = false;
    SQLKysely.open();
    const qint64 total = SQLKysely.recordCount();
    if (total > 0) {
        m_ports.progress(0, total);
        SQLKysely.first();
        const data::TQueryField& number = SQLKysely.fieldByName(numberField);
        for (qint64 done = 0; !SQLKysely.eof() && !stopAsked(); SQLKysely.next()) {
            const qint64 order = number.asInteger();
            ++done;
            m_ports.status(
                QStringLiteral("%1 %2 (%3 / %4)").arg(statusName).arg(order).arg(done).arg(total));
            try {
                (this->*convert)(order);
            } catch (const data::DataError& error) {
                throw data::DataError(error.kind(), error.table(),
                                      place(order, error.table()) + error.detail(),
                                      error.nativeCode());
            }
            m_ports.progress(done, total);
        }
    }
    SQLKysely.close();
}

// Where a failure in a table was met, for its report.
QString TAlvMuutosMt::place(qint64 order, const QString& tableName) const {
    QString text = QStringLiteral("tilaus %1").arg(order);
    for (const auto& [table, row] : {std::pair{&MtRiviTable, &m_sales->riviNro},
                                     std::pair{&OtRiviTable, &m_purchase->riviNro}})
        if (tableName.compare(table->tableName(), Qt::CaseInsensitive) == 0 && !table->isEmpty())
            text += QStringLiteral(", rivi %1").arg(row->asInteger());
    return text + QStringLiteral(": ");
}

bool TAlvMuutosMt::stopAsked() {
    m_stopped = m_stopped || m_ports.cancelled();
    return m_stopped;
}

void TAlvMuutosMt::trace(const QString& text) const {
    m_ports.trace(data::Clock::preciseNow().toString(QStringLiteral("hh:mm:ss:zzz ")) + text);
}

double TAlvMuutosMt::factor(qint64 vatClass) {
    const auto known = m_factors.find(vatClass);
    if (known != m_factors.end())
        return known->second;
    const bool askable =
        vatClass >= std::numeric_limits<int>::min() && vatClass <= std::numeric_limits<int>::max();
    const double rate = askable ? m_ports.ratePercent(static_cast<int>(vatClass)) : 0.0;
    return m_factors[vatClass] = 1 + rate / 100;
}

}  // namespace vatchange
