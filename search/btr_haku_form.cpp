#include "search/btr_haku_form.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDebug>
#include <QDrag>
#include <QHeaderView>
#include <QPointer>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "app/company/company.h"
#include "app/company/connection_module.h"
#include "data/error.h"
#include "framework/core/settings_table.h"
#include "framework/ui/dialogs.h"
#include "search/drag_source.h"
#include "search/product_settings.h"
#include "search/search_grid.h"
#include "search/table_model.h"

namespace search {

namespace {

const QString kZavSection = QStringLiteral("ASETUKSIA");
const QString kPassive = QStringLiteral("passiivinen");

// One choice at a time in the whole program: what a handler opens may not choose again through it.
bool& choosing() {
    static bool going = false;
    return going;
}

class Hourglass {
  public:
    Hourglass() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Hourglass() { QApplication::restoreOverrideCursor(); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;
};

// The start character is one character or its code.
QChar startCharacter(const QString& setting) {
    const QString text = setting.trimmed();
    if (text.size() == 1 && !text.front().isDigit())
        return text.front();
    return QChar(static_cast<ushort>(std::clamp(text.toInt(), 0, 0xFF)));
}

}  // namespace

TBtrHakuForm::TBtrHakuForm(const QString& componentName, QWidget* parent)
    : QDialog(parent), Hakutable(nullptr), m_table(std::make_unique<data::TtbTable>()) {
    Hakutable = m_table.get();
    setObjectName(componentName);
    buildControls();
}

TBtrHakuForm::~TBtrHakuForm() {
    DBGrid1->setModel(nullptr);
}

void TBtrHakuForm::FormCreate() {
    if (m_created)
        return;
    const Hourglass hourglass;
    company::openCompanyTable(*m_table, m_tableName);
    m_created = true;
    m_model = std::make_unique<TableModel>(*m_table);
    m_hasPassive = Hakutable->findField(kPassive) != nullptr;
    Passiiviset->setVisible(m_hasPassive);
    if (m_resultField.isEmpty())
        m_resultField = Hakutable->indexFields(QStringLiteral("0")).value(0);
    for (const auto& field : Hakutable->fields()) {
        if (field->kind() == data::Kind::Float && field->displayFormat().isEmpty())
            field->setDisplayFormat(QStringLiteral("#0.00"));
    }
    data::Database& database = company::companyDatabase();
    AlueRajaus->setChecked(
        isSettingOn(framework::zavIniValue(database, kZavSection, QStringLiteral("ALUERAJAUS"))));
    m_searchSecondName =
        isSettingOn(framework::zavIniValue(database, kZavSection, QStringLiteral("niminimi2haku")));
    const QChar start = startCharacter(
        framework::zavIniValue(database, kZavSection, QStringLiteral("HakuAlkuMerkki")));
    TAlkuMerkkiEdit::setProgramStartCharacter(start);
    Suodatin->setStartCharacter(start);
    afterOpen();

    DBGrid1->setModel(m_model.get());
    auto* grid = static_cast<SearchGrid*>(DBGrid1);
    grid->setColours([this](int row, int column) -> CellColours {
        const auto record = m_model->record(row);
        return record ? cellColours(RecordRow(recordLayout(), *record), m_model->column(column))
                      : CellColours{};
    });
    fillIndexes();
    Lataus();
    Hakutable->setIndexName(QString::number(IndexCombo->currentData().toInt()));
    connectControls();
    applyFilter();
    SearchEdit->setFocus();
}

void TBtrHakuForm::connectControls() {
    auto* grid = static_cast<SearchGrid*>(DBGrid1);
    connect(IndexCombo, &QComboBox::activated, this, &TBtrHakuForm::IndexComboCloseUp);
    connect(SearchEdit, &QLineEdit::textChanged, this, &TBtrHakuForm::SearchEditChange);
    connect(Timer, &QTimer::timeout, this, &TBtrHakuForm::TimerTimer);
    connect(Suodatin, &QLineEdit::textChanged, this, &TBtrHakuForm::SuodatinChange);
    connect(AlueRajaus, &QCheckBox::toggled, this, &TBtrHakuForm::AlueRajausClick);
    connect(Passiiviset, &QCheckBox::clicked, this, &TBtrHakuForm::PassiivisetClick);
    connect(DBGrid1, &QTableView::doubleClicked, this, &TBtrHakuForm::DBGrid1DblClick);
    connect(grid, &SearchGrid::dragWanted, this, &TBtrHakuForm::startRowDrag);
    connect(grid, &SearchGrid::textDropped, this, [this](const QString& text, int column) {
        const bool onIndicator = column < 0;
        dropText(text, onIndicator ? std::max(DBGrid1->currentIndex().column(), 0) : column,
                 onIndicator);
    });
    connect(grid, &SearchGrid::scrolled, this, &TBtrHakuForm::wantVisible);
    connect(m_model.get(), &TableModel::rowsShifted, this, [this](int by) {
        QScrollBar* bar = DBGrid1->verticalScrollBar();
        const QSignalBlocker silence(bar);
        bar->setValue(bar->value() + by);
    });
    connect(m_model.get(), &TableModel::countChanged, this, &TBtrHakuForm::updateNavigator);
    connect(m_model.get(), &TableModel::outdated, this,
            [this] { guarded([this] { showRechecked(); }); });
    connect(m_model.get(), &TableModel::failed, this, &TBtrHakuForm::tellError);
    for (QWidget* watched : {static_cast<QWidget*>(SearchEdit), static_cast<QWidget*>(Suodatin),
                             static_cast<QWidget*>(DBGrid1), static_cast<QWidget*>(IndexCombo),
                             static_cast<QWidget*>(AlueRajaus), static_cast<QWidget*>(Passiiviset),
                             static_cast<QWidget*>(Jatahakuauki)})
        watched->installEventFilter(this);
    connect(DBGrid1->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current, const QModelIndex& previous) {
                if (previous.row() != current.row())
                    currentChanged(current.row());
                DBGrid1->verticalHeader()->viewport()->update();
            });
}

bool TBtrHakuForm::guarded(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        tellError(data::errorText(error));
    }
    return false;
}

// Closing the box activates the window. That activation reads nothing anew: a table that cannot be
// read would bring one box after the other, and the window could not be left any more.
void TBtrHakuForm::tellError(const QString& text) {
    const QPointer<TBtrHakuForm> self(this);
    m_ownActivation = true;
    framework::Dialogs::error(this, text);
    if (self && isActiveWindow())  // activated already
        m_ownActivation = false;
}

// --- what descendants may replace

std::vector<GridColumn> TBtrHakuForm::defaultColumns() const {
    std::vector<GridColumn> columns;
    for (const auto& field : Hakutable->fields()) {
        if (field->kind() != data::Kind::RawBytes && field->kind() != data::Kind::VarBinary)
            columns.push_back({field->fieldName(), {}});
    }
    return columns;
}

bool TBtrHakuForm::columnAllowed(const QString&) const {
    return true;
}
void TBtrHakuForm::saveExtra(company::IniFile&, const QString&) const {}
void TBtrHakuForm::loadExtra(const company::IniFile&, const QString&) {}
bool TBtrHakuForm::PerusSuodata(const RecordRow&) const {
    return true;
}
CellColours TBtrHakuForm::cellColours(const RecordRow&, const GridColumn&) const {
    return {};
}
std::optional<ColumnLookup> TBtrHakuForm::columnLookup(const QString&) const {
    return std::nullopt;
}
bool TBtrHakuForm::dropOnColumn(const QString&, const GridColumn&) {
    return false;
}
bool TBtrHakuForm::filterKey(QKeyEvent&) {
    return false;
}

// --- rows

void TBtrHakuForm::currentChanged(int row) {
    guarded([&] { placeTable(row); });
    updateNavigator();
}

// Makes the table stand on a row's record. @return false, with the table where it was, when the row
// is not known yet or its record is gone.
bool TBtrHakuForm::placeTable(int row) {
    const auto record = m_model->record(row);
    return record && Hakutable->gotoBookmark({record->id, record->bytes});
}

// Whether the table's record, read just now, still is the row that was shown: it belongs to the
// view, and its place was not given to another record.
bool TBtrHakuForm::isStillShown(const data::StoredRecord& shown) const {
    return m_model->rows().isWanted(Hakutable->recordId(), Hakutable->recordBytes()) &&
           Hakutable->fieldByName(m_resultField).asString() ==
               RecordRow(recordLayout(), shown).text(m_resultField);
}

void TBtrHakuForm::goToRow(int row) {
    if (m_model->rowCount() == 0)
        return;
    row = std::clamp(row, 0, m_model->rowCount() - 1);
    m_model->want(row, row, true);
    row = std::min(row, m_model->rowCount() - 1);
    int column = DBGrid1->currentIndex().column();
    if (column < 0)
        column = std::max(DBGrid1->horizontalHeader()->logicalIndexAt(1), 0);
    const QModelIndex cell = m_model->index(row, column);
    DBGrid1->selectionModel()->setCurrentIndex(
        cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    const int horizontal = DBGrid1->horizontalScrollBar()->value();
    DBGrid1->scrollTo(cell);
    DBGrid1->horizontalScrollBar()->setValue(horizontal);
    placeTable(row);
}

// Rows have come into sight.
void TBtrHakuForm::wantVisible() {
    const int first = DBGrid1->rowAt(0);
    if (first < 0)
        return;
    const int last = DBGrid1->rowAt(DBGrid1->viewport()->height() - 1);
    const bool mayRestart = DBGrid1->selectionModel()->selectedRows().size() <= 1;
    const int top = DBGrid1->verticalScrollBar()->value();
    guarded([&] {
        if (!m_model->want(first, last < 0 ? m_model->rowCount() - 1 : last, mayRestart))
            return;
        // The rows are others, and the current one has followed the scroll bar.
        const QSignalBlocker silence(DBGrid1->verticalScrollBar());
        goToRow(first);
        DBGrid1->verticalScrollBar()->setValue(top);
    });
}

void TBtrHakuForm::refreshRows(bool all) {
    if (!m_created)
        return;
    const Hourglass hourglass;
    dropCaches();
    Hakutable->refresh();
    const RecordRows& rows = m_model->rows();
    if (all || (rows.isPlain() && Hakutable->recordCount() != rows.total())) {
        showRows(rows.range(), rows.accept());
        return;
    }
    m_model->reread();
    m_model->recheck();
}

// What was changed elsewhere has brought other rows: the current one stays where it is seen.
void TBtrHakuForm::showRechecked() {
    if (choosing())  // the table stands on what is handed over; the next activation looks again
        return;
    QScrollBar* bar = DBGrid1->verticalScrollBar();
    const int above = DBGrid1->currentIndex().row() - bar->value();
    const std::optional<data::StoredRecord> stay = currentRecord();
    m_model->showRechecked();
    const int row = std::max(stay ? m_model->rowOf(*stay) : 0, 0);
    goToRow(row);
    bar->setValue(row - above);
}

// The record that the table stands on.
std::optional<data::StoredRecord> TBtrHakuForm::currentRecord() const {
    if (Hakutable->isEmpty())
        return std::nullopt;
    return data::StoredRecord{Hakutable->recordId(), Hakutable->recordBytes()};
}

// Shows other rows, staying on the current record where it is among them.
void TBtrHakuForm::showRows(std::optional<RecordRows::Range> range, RecordRows::Accept accept) {
    const std::optional<data::StoredRecord> stay = currentRecord();
    m_model->show(Hakutable->indexName().toInt(), std::move(range), std::move(accept));
    const bool isFirst = !m_shown;
    m_shown = true;
    const int row = stay && !isFirst ? m_model->rowOf(*stay) : 0;
    goToRow(std::max(row, 0));
}

void TBtrHakuForm::updateNavigator() {
    const int row = DBGrid1->currentIndex().row();
    const int rows = m_model->rowCount();
    m_first->setEnabled(row > 0);
    m_prior->setEnabled(row > 0);
    m_next->setEnabled(row < rows - 1);
    m_last->setEnabled(row < rows - 1);
    m_count->setText(m_model->isCountExact()
                         ? QStringLiteral("%L1 riviä").arg(rows)
                         : QStringLiteral("noin %L1 riviä, lasketaan...").arg(rows));
}

// --- what a caller gets

std::vector<data::StoredRecord> TBtrHakuForm::Valitut() {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : DBGrid1->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    std::vector<data::StoredRecord> records;
    for (const int row : rows) {
        if (auto record = m_model->record(row))
            records.push_back(std::move(*record));
    }
    return records;
}

int TBtrHakuForm::Valittuja() const {
    int count = 0;
    for (const QItemSelectionRange& range : DBGrid1->selectionModel()->selection())
        count += range.height();
    return count;
}

data::Value TBtrHakuForm::KenttaArvo(const QString& field) const {
    const data::TField& found = Hakutable->fieldByName(field);
    return Hakutable->isEmpty() ? data::Value() : found.value();
}

void TBtrHakuForm::startRowDrag() {
    const auto record = m_model->record(DBGrid1->currentIndex().row());
    if (!record)
        return;
    auto* drag = new QDrag(DBGrid1);
    drag->setMimeData(
        dragData(DBGrid1->objectName(), RecordRow(recordLayout(), *record).text(m_resultField)));
    drag->exec(Qt::CopyAction);
}

void TBtrHakuForm::DBGrid1DblClick() {
    if (choosing() || Hakutable->isEmpty() || m_model->rowCount() == 0)
        return;
    struct Going {
        Going() { choosing() = true; }
        ~Going() { choosing() = false; }
    } const going;
    qDebug().noquote() << "sender is" << DBGrid1->metaObject()->className();
    guarded([this] {
        const int row = DBGrid1->currentIndex().row();
        const auto shown = m_model->record(row);
        if (!shown && !m_model->rows().isKnown(row)) {
            goToRow(row);  // still blank: once it is read, the next time chooses it
            return;
        }
        if (!placeTable(row) || !isStillShown(*shown)) {
            rowIsGone(shown);
            return;
        }
        if (!Jatahakuauki->isChecked()) {
            if (isModal())
                accept();
            else
                close();
        }
        if (m_choose)
            m_choose(DBGrid1, *Hakutable);
    });
}

// The row to be chosen is no longer what it shows: nothing is chosen in its stead.
void TBtrHakuForm::rowIsGone(const std::optional<data::StoredRecord>& shown) {
    refreshRows(true);
    if (shown)
        goToRow(std::max(m_model->rowOf(*shown), 0));
    framework::Dialogs::message(
        this, QStringLiteral("Riviä ei voi valita: se on poistettu tai sitä on muutettu muualla. "
                             "Rivit luettiin uudelleen."));
}

void TBtrHakuForm::Peruuta() {
    if (isModal())
        reject();
    else
        close();
}

// --- users and the form's life

void TBtrHakuForm::lisaaKayttaja(const QString& caller) {
    if (!OnkoKayttajia(caller) && !caller.isEmpty())
        m_users.append(caller);
}

void TBtrHakuForm::poistaKayttaja(const QString& caller) {
    m_users.removeIf(
        [&caller](const QString& user) { return user.compare(caller, Qt::CaseInsensitive) == 0; });
}

bool TBtrHakuForm::OnkoKayttajia(const QString& caller) const {
    return caller.isEmpty() ? !m_users.isEmpty() : m_users.contains(caller, Qt::CaseInsensitive);
}

void TBtrHakuForm::done(int result) {
    Timer->stop();
    if (m_users.isEmpty() && !m_leaving) {
        m_leaving = true;
        deleteLater();
    }
    QDialog::done(result);
}

void TBtrHakuForm::showEvent(QShowEvent* event) {
    guarded([this] { FormCreate(); });
    QDialog::showEvent(event);
}

bool TBtrHakuForm::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && m_created) {
        const bool own = std::exchange(m_ownActivation, false);
        if (m_activatedOnce && !own && !choosing())
            guarded([this] { refreshRows(false); });
        m_activatedOnce = true;
    }
    return QDialog::event(event);
}

}  // namespace search
