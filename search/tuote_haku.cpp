#include "search/tuote_haku.h"

#include <QBoxLayout>
#include <QKeyEvent>

#include "company/connection_module.h"
#include "data/record/record_codec.h"
#include "search/product_grid.h"
#include "search/product_shelf.h"

namespace search {

namespace {

const QString kComponent = QStringLiteral("TuoteHakuForm");
const QString kShowStockKey = QStringLiteral("NaytaSaldot");
const QString kShelfPlaceColumn = QStringLiteral("Hyllypaikka");

constexpr QSize kDefaultSize(960, 600);

bool sameField(const QString& a, const char* b) {
    return a.compare(QLatin1String(b), Qt::CaseInsensitive) == 0;
}

// The row of the window's layout that holds a control.
QBoxLayout* rowOf(QWidget* control, QLayout* layout) {
    for (int i = 0; i < layout->count(); ++i) {
        auto* row = qobject_cast<QBoxLayout*>(layout->itemAt(i)->layout());
        if (row != nullptr && row->indexOf(control) >= 0)
            return row;
    }
    return nullptr;
}

}  // namespace

TTuoteHakuForm::TTuoteHakuForm(QWidget* parent) : TBtrHakuForm(kComponent, parent) {
    data::Database& database = company::companyDatabase();
    setWindowTitle(QStringLiteral("Tuotehaku"));
    resize(kDefaultSize);
    setTableName(QStringLiteral("TUOTE"));
    setResultField(QStringLiteral("numero"));
    setBaseFilter(QStringLiteral("passiivinen = false"));
    m_priceNames = priceLevelNames(database);
    m_texts = std::make_unique<ProductTexts>(database, readProductSettings(database));
    addStockBox();
    FormCreate();
}

TTuoteHakuForm::~TTuoteHakuForm() = default;

void TTuoteHakuForm::addStockBox() {
    NaytaSaldot = new QCheckBox(QStringLiteral("Näytä saldot"), this);
    NaytaSaldot->setObjectName(kShowStockKey);
    NaytaSaldot->setToolTip(QStringLiteral("Näytetään varastosarakkeissa myymälän saldot"));
    NaytaSaldot->setChecked(true);
    QWidget::setTabOrder(Jatahakuauki, NaytaSaldot);
    QWidget::setTabOrder(NaytaSaldot, DBGrid1);
    QBoxLayout* row = rowOf(Jatahakuauki, QWidget::layout());
    row->insertWidget(row->indexOf(Jatahakuauki) + 1, NaytaSaldot);
    connect(NaytaSaldot, &QCheckBox::toggled, this, [this](bool on) {
        m_texts->setStockShown(on);
        DBGrid1->viewport()->update();
    });
}

TTuoteHakuForm* TTuoteHakuForm::instanssi(QWidget* parent) {
    return onlyForm<TTuoteHakuForm>(parent);
}

void TTuoteHakuForm::NaytaLomake(QWidget* parent) {
    TTuoteHakuForm* form = instanssi(parent);
    form->show();
    form->raise();
    form->activateWindow();
}

void TTuoteHakuForm::SuljeHaku() {
    if (TTuoteHakuForm* form = onlyForm<TTuoteHakuForm>())
        form->close();
}

qint64 TTuoteHakuForm::tuotelaji(const QString& product) {
    return m_texts->lookups().productKind(product);
}

std::vector<GridColumn> TTuoteHakuForm::defaultColumns() const {
    return productGrid(TBtrHakuForm::defaultColumns(), m_priceNames, *m_texts);
}

bool TTuoteHakuForm::columnAllowed(const QString& field) const {
    if (sameField(field, "VERKKOKAUPPA"))
        return m_texts->settings().webShopInUse;
    return TBtrHakuForm::columnAllowed(field);
}

void TTuoteHakuForm::afterOpen() {
    const QString format = priceDisplayFormat(m_texts->settings().priceFormat);
    for (const char* price : {"hinta", "kaksoishinta", "hinta3", "hinta4", "hinta5", "hinta6",
                              "hinta7", "hinta8", "hinta9"})
        Hakutable->fieldByName(QLatin1String(price)).setDisplayFormat(format);
}

void TTuoteHakuForm::saveExtra(platform::IniFile& file, const QString& section) const {
    file.setValue(section, kShowStockKey,
                  NaytaSaldot->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
}

void TTuoteHakuForm::loadExtra(const platform::IniFile& file, const QString& section) {
    const QString value = file.value(section, kShowStockKey).value_or(QStringLiteral("1"));
    NaytaSaldot->setChecked(value.trimmed() != QLatin1String("0"));
}

std::optional<ColumnLookup> TTuoteHakuForm::columnLookup(const QString& field) const {
    const QString number = QStringLiteral("Nro");
    const QString name = QStringLiteral("Nimi");
    if (sameField(field, "RYHMA"))
        return ColumnLookup{field, QStringLiteral("TRYHMA"), number, name};
    if (sameField(field, "PAARYHMA"))
        return ColumnLookup{field, QStringLiteral("PRYHMA"), number, name};
    if (sameField(field, "AliRyhma"))
        return ColumnLookup{field, QStringLiteral("ALIRYHMA"), number, name};
    if (sameField(field, "TOIMITTAJA"))
        return ColumnLookup{field, QStringLiteral("TOIMITTAJA"), QStringLiteral("Tunnus"), name};
    return TBtrHakuForm::columnLookup(field);
}

bool TTuoteHakuForm::dropOnColumn(const QString& text, const GridColumn& column) {
    // A complete filter expression does not depend on the column.
    if (column.field != kShelfPlaceColumn || text.startsWith(QLatin1Char('!')))
        return TBtrHakuForm::dropOnColumn(text, column);
    searchShelfPlace(text);
    return true;
}

void TTuoteHakuForm::searchShelfPlace(const QString& text) {
    QSet<QString> products =
        productsByShelfPlace(company::companyDatabase(), m_texts->settings().store, text);
    const data::TFieldCacheItem& number =
        recordLayout().field(recordLayout().indexOf(QStringLiteral("NUMERO")));
    searchRecords(
        [&number, products = std::move(products)](data::RecordId, const QByteArray& bytes) {
            return products.contains(
                data::readText(number, reinterpret_cast<const uchar*>(bytes.constData())));
        },
        QStringLiteral("%1 %2").arg(kShelfPlaceColumn, text));
}

bool TTuoteHakuForm::filterKey(QKeyEvent& event) {
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (!enter || AlueRajaus->isChecked())
        return TBtrHakuForm::filterKey(event);
    const QString text = Suodatin->text();
    gotoNearest(quickSearchKey(text), text);
    return true;
}

void TTuoteHakuForm::dropCaches() {
    m_texts->reread(readProductSettings(company::companyDatabase()));
}

}  // namespace search
