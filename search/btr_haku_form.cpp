#include "search/btr_haku_form.h"

#include <QApplication>
#include <QDebug>
#include <QDrag>
#include <QMenu>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "company/company.h"
#include "company/connection_module.h"
#include "data/error.h"
#include "framework/core/settings_table.h"
#include "framework/ui/close_deferral.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"
#include "search/column_dialog.h"
#include "search/drag_source.h"
#include "search/field_titles.h"
#include "search/product_settings.h"

// The life of the generic search window: creation, layout, rows, choosing, closing.

namespace search {

namespace {

constexpr QSize kDefaultSize(640, 480);
// Of the desktop around a window, at most.
constexpr QSize kFrame(16, 48);
constexpr int kFeedbackMs = 8000;

const QString kPassive = QStringLiteral("passiivinen");

// One choice at a time in the whole program: a window that a handler opens may not choose too.
bool choosing = false;

class Hourglass {
  public:
    Hourglass() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Hourglass() { QApplication::restoreOverrideCursor(); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;
};

QString formsIni() {
    return company::dataFolderFile(QStringLiteral("FORMS.INI"));
}

// The setting is the character itself, or its code.
QChar startCharacter(const QString& setting) {
    const QString text = setting.trimmed();
    if (text.size() == 1 && !text.front().isDigit())
        return text.front();
    return QChar(static_cast<ushort>(std::clamp(text.toInt(), 0, 0xFF)));
}

}  // namespace

TBtrHakuForm::View::View(TBtrHakuForm& form)
    : model(form.m_table),
      cursor(*form.DBGrid1, model, form.m_table),
      keys(form.m_table, model),
      header(*form.DBGrid1, model,
             [&form](const QString& field) { return form.columnAllowed(field); }) {}

TBtrHakuForm::TBtrHakuForm(const QString& componentName, QWidget* parent)
    : QDialog(parent), SearchControls(static_cast<QDialog&>(*this)), Hakutable(&m_table) {
    setObjectName(componentName);
    setWindowTitle(QStringLiteral("Tuotteiden selailu"));
    setWindowFlags(windowFlags() | Qt::WindowMinMaxButtonsHint);
    resize(kDefaultSize);
}

TBtrHakuForm::~TBtrHakuForm() {
    DBGrid1->setModel(nullptr);
}

// --- creation

void TBtrHakuForm::FormCreate() {
    if (m_view)
        return;
    const Hourglass hourglass;
    company::openCompanyTable(*Hakutable, m_tableName);
    m_view = std::make_unique<View>(*this);
    Passiiviset->setVisible(Hakutable->findField(kPassive) != nullptr);
    if (m_resultField.isEmpty())
        m_resultField = Hakutable->indexFields(QStringLiteral("0")).value(0);
    for (const auto& field : Hakutable->fields()) {
        if (field->kind() == data::Kind::Float && field->displayFormat().isEmpty())
            field->setDisplayFormat(QStringLiteral("#0.00"));
    }
    readSettings();
    afterOpen();

    DBGrid1->setModel(&model());
    DBGrid1->setColours([this](int row, int column) -> CellColours {
        const auto record = model().record(row);
        return record ? cellColours(GridRow(recordLayout(), *record), model().column(column))
                      : CellColours{};
    });
    fillIndexes();
    Lataus();
    Hakutable->setIndexName(QString::number(IndexCombo->currentData().toInt()));
    connectControls();
    applyFilter(changedFilter());
    showOrder();
    SearchEdit->setFocus();
}

void TBtrHakuForm::readSettings() {
    const auto setting = [](const char* key) {
        return framework::zavIniValue(company::companyDatabase(), QStringLiteral("ASETUKSIA"),
                                      QLatin1String(key));
    };
    AlueRajaus->setChecked(isSettingOn(setting("ALUERAJAUS")));
    m_bothNames = isSettingOn(setting("niminimi2haku"));
    const QChar start = startCharacter(setting("HakuAlkuMerkki"));
    TAlkuMerkkiEdit::setProgramStartCharacter(start);
    Suodatin->setStartCharacter(start);
}

void TBtrHakuForm::connectControls() {
    connect(IndexCombo, &QComboBox::activated, this, &TBtrHakuForm::IndexComboCloseUp);
    connect(SearchEdit, &QLineEdit::textChanged, this, &TBtrHakuForm::SearchEditChange);
    connect(Timer, &QTimer::timeout, this, &TBtrHakuForm::TimerTimer);
    connect(Suodatin, &QLineEdit::textChanged, this, &TBtrHakuForm::SuodatinChange);
    connect(AlueRajaus, &QCheckBox::toggled, this, &TBtrHakuForm::AlueRajausClick);
    connect(Passiiviset, &QCheckBox::clicked, this, &TBtrHakuForm::PassiivisetClick);
    connect(DBGrid1, &QTableView::doubleClicked, this, &TBtrHakuForm::DBGrid1DblClick);
    connect(DBGrid1, &SearchGrid::dragWanted, this, &TBtrHakuForm::startRowDrag);
    connect(DBGrid1, &SearchGrid::textDropped, this, [this](const QString& text, int column) {
        const bool onIndicator = column < 0;
        dropText(text, onIndicator ? std::max(DBGrid1->currentIndex().column(), 0) : column,
                 onIndicator);
    });
    connect(DBGrid1, &SearchGrid::scrolled, this,
            [this] { guarded([this] { m_view->cursor.wantVisible(); }); });
    connect(DBGrid1->horizontalHeader(), &QWidget::customContextMenuRequested, this,
            &TBtrHakuForm::columnMenu);
    connect(DBGrid1->horizontalHeader(), &QHeaderView::sectionClicked, this,
            &TBtrHakuForm::sortByColumn);
    connect(Sarakkeet, &QAction::triggered, this, &TBtrHakuForm::chooseColumns);
    connect(Valitse, &QPushButton::clicked, this, &TBtrHakuForm::DBGrid1DblClick);
    connect(PoistaRajaus, &QPushButton::clicked, this, [this] {
        const QSignalBlocker once(Suodatin);
        Suodatin->clear();
        Suodatin->setFocus();  // the button hides
        guarded([this] { NollaaSuodin(); });
    });
    connect(DBGrid1->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &TBtrHakuForm::currentChanged);
    connect(&model(), &TableModel::rowsShifted, this, [this](int by) {
        QScrollBar* bar = DBGrid1->verticalScrollBar();
        const QSignalBlocker blocker(bar);
        bar->setValue(bar->value() + by);
    });
    connect(&model(), &TableModel::countChanged, this, &TBtrHakuForm::updateNavigator);
    connect(&model(), &TableModel::outdated, this, [this] {
        // While choosing, the table is on the chosen record; the next activation rereads.
        if (!choosing)
            guarded([this] { m_view->cursor.showRechecked(); });
    });
    connect(&model(), &TableModel::failed, this, &TBtrHakuForm::showError);
    connect(Tallenna, &QAction::triggered, this, [this] { TallennaClick(false); });
    connect(Tallennakorkeus, &QAction::triggered, this, [this] { TallennaClick(true); });
    connectNavigator();
    for (QWidget* watched : {static_cast<QWidget*>(SearchEdit), static_cast<QWidget*>(Suodatin),
                             static_cast<QWidget*>(DBGrid1), static_cast<QWidget*>(IndexCombo),
                             static_cast<QWidget*>(AlueRajaus), static_cast<QWidget*>(Passiiviset),
                             static_cast<QWidget*>(Jatahakuauki)})
        watched->installEventFilter(this);
}

void TBtrHakuForm::connectNavigator() {
    const auto on = [this](QAction* action, auto work) {
        connect(action, &QAction::triggered, this, [this, work] { guarded(work); });
    };
    on(nbFirst, [this] { goToRow(0); });
    on(nbPrior, [this] { goToRow(m_view->cursor.row() - 1); });
    on(nbNext, [this] { goToRow(m_view->cursor.row() + 1); });
    on(nbLast, [this] { goToRow(model().lastRow()); });
    on(nbRefresh, [this] { refreshRows(true); });
}

bool TBtrHakuForm::guarded(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        showError(data::errorText(error));
    }
    return false;
}

// Closing the box activates the window. That activation must not reread: a table that cannot be
// read would show one box after another, and the window could not be closed.
void TBtrHakuForm::showError(const QString& text) {
    const QPointer<TBtrHakuForm> self(this);
    m_nextActivation = NextActivation::KeepsRows;
    framework::Dialogs::error(this, text);
    if (self && isActiveWindow())  // already activated
        m_nextActivation = NextActivation::Rereads;
}

// --- what descendants may replace

std::vector<GridColumn> TBtrHakuForm::defaultColumns() const {
    std::vector<GridColumn> columns;
    for (const auto& field : Hakutable->fields()) {
        if (field->kind() != data::Kind::RawBytes && field->kind() != data::Kind::VarBinary)
            columns.push_back({field->fieldName(), fieldTitle(field->fieldName())});
    }
    return columns;
}

bool TBtrHakuForm::columnAllowed(const QString&) const {
    return true;
}
void TBtrHakuForm::saveExtra(platform::IniFile&, const QString&) const {}
void TBtrHakuForm::loadExtra(const platform::IniFile&, const QString&) {}
bool TBtrHakuForm::PerusSuodata(const GridRow&) const {
    return true;
}
CellColours TBtrHakuForm::cellColours(const GridRow&, const GridColumn&) const {
    return {};
}
std::optional<ColumnLookup> TBtrHakuForm::columnLookup(const QString& field) const {
    const auto customer = [this](const char* number) -> std::optional<ColumnLookup> {
        if (Hakutable->findField(QLatin1String(number)) == nullptr)
            return std::nullopt;
        return ColumnLookup{QLatin1String(number), QStringLiteral("ASIAKAS"),
                            QStringLiteral("Asiakas"), QStringLiteral("Asiakas"), true};
    };
    if (field.compare(QLatin1String("ToimAsNimi"), Qt::CaseInsensitive) == 0)
        return customer("ToimitusAsiakas");
    if (field.compare(QLatin1String("LasAsNimi"), Qt::CaseInsensitive) == 0)
        return customer("LaskutusAsiakas");
    return std::nullopt;
}
bool TBtrHakuForm::dropOnColumn(const QString&, const GridColumn&) {
    return false;
}
bool TBtrHakuForm::filterKey(QKeyEvent&) {
    return false;
}

// --- layout

void TBtrHakuForm::Lataus() {
    const platform::IniFile file = platform::IniFile::read(formsIni());
    loadExtra(file, objectName());
    FormLayout layout = readLayout(file, objectName(), defaultColumns());
    model().setColumns(std::move(layout.columns));
    m_view->header.apply();
    // The window's position is in the user's settings, its size in the saved layout.
    framework::rememberPlace(*this, objectName());
    resize(size().expandedTo(m_firstSize));
    resize(layout.width.value_or(width()), layout.height.value_or(height()));
    resize(size().boundedTo(screen()->availableSize() - kFrame));
    if (layout.order && *layout.order < IndexCombo->count())
        IndexCombo->setCurrentIndex(*layout.order);
}

void TBtrHakuForm::setFirstSize(const QSize& size) {
    m_firstSize = size;
    resize(this->size().expandedTo(size));
}

void TBtrHakuForm::Tallennus(bool withHeight) {
    platform::IniFile file = platform::IniFile::read(formsIni());
    writeLayout(file, objectName(),
                {.columns = m_view->header.columns(),
                 .width = width(),
                 .height = withHeight ? std::optional(height()) : std::nullopt,
                 .order = IndexCombo->currentIndex()});
    saveExtra(file, objectName());
    file.write(formsIni());
}

void TBtrHakuForm::TallennaClick(bool withHeight) {
    if (!guarded([&] { Tallennus(withHeight); }))
        return;
    TilaLabel->setText(QStringLiteral("Asettelu talletettiin (FORMS.INI)"));
    QTimer::singleShot(kFeedbackMs, TilaLabel, &QLabel::clear);
}

void TBtrHakuForm::columnMenu(const QPoint& place) {
    QMenu menu(this);
    menu.addAction(Sarakkeet);
    menu.addAction(Tallenna);
    menu.addAction(Tallennakorkeus);
    const framework::CloseDeferral deferral(this);
    menu.exec(DBGrid1->horizontalHeader()->mapToGlobal(place));
}

void TBtrHakuForm::chooseColumns() {
    GridHeader& header = m_view->header;
    ColumnDialog dialog(header.allowed(header.columns()), header.allowed(defaultColumns()), this);
    const framework::CloseDeferral deferral(this);
    m_nextActivation = NextActivation::KeepsRows;
    if (dialog.exec() == QDialog::Accepted)
        header.arrange(dialog.columns());
}

// --- rows

void TBtrHakuForm::goToRow(int row) {
    m_view->cursor.goTo(row);
}

void TBtrHakuForm::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    if (previous.row() != current.row()) {
        guarded([&] { m_view->cursor.placeTable(current.row()); });
        updateNavigator();
    }
    DBGrid1->verticalHeader()->viewport()->update();
}

void TBtrHakuForm::refreshRows(bool all) {
    if (!m_view)
        return;
    const Hourglass hourglass;
    dropCaches();
    Hakutable->refresh();
    const ViewRows& rows = model().rows();
    if (all || (rows.isPlain() && Hakutable->recordCount() != rows.total())) {
        showRows(m_filter, rows.test());
        return;
    }
    model().reread();
    model().recheck();
}

void TBtrHakuForm::updateNavigator() {
    const int row = m_view->cursor.row();
    const int rows = model().rowCount();
    nbFirst->setEnabled(row > 0);
    nbPrior->setEnabled(row > 0);
    nbNext->setEnabled(row < rows - 1);
    nbLast->setEnabled(row < rows - 1);
    Valitse->setEnabled(rows > 0);
    if (!model().isCountExact())
        RiviLabel->setText(QStringLiteral("noin %L1 riviä, lasketaan...").arg(rows));
    else if (rows == 1)
        RiviLabel->setText(QStringLiteral("1 rivi"));
    else
        RiviLabel->setText(QStringLiteral("%L1 riviä").arg(rows));
}

data::Value TBtrHakuForm::KenttaArvo(const QString& field) const {
    const data::TField& found = Hakutable->fieldByName(field);
    return Hakutable->isEmpty() ? data::Value() : found.value();
}

void TBtrHakuForm::startRowDrag() {
    const auto record = model().record(m_view->cursor.row());
    if (!record)
        return;
    auto* drag = new QDrag(DBGrid1);
    drag->setMimeData(dragData(DBGrid1->objectName(),
                               GridRow(recordLayout(), *record).text(m_resultField),
                               Hakutable->tableName()));
    const framework::CloseDeferral deferral(this);
    drag->exec(Qt::CopyAction);
}

// --- choosing

void TBtrHakuForm::DBGrid1DblClick() {
    if (choosing || Hakutable->isEmpty() || model().rowCount() == 0)
        return;
    const QScopedValueRollback<bool> one(choosing, true);
    qDebug().noquote() << "sender is" << DBGrid1->metaObject()->className();
    guarded([this] { choose(); });
}

void TBtrHakuForm::choose() {
    const int row = m_view->cursor.row();
    const auto shown = model().record(row);
    if (!shown && !model().rows().isKnown(row)) {
        goToRow(row);  // still blank: reads it; the next attempt chooses it
        return;
    }
    if (!m_view->cursor.placeTable(row) || !isStillShown(*shown)) {
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
}

// Whether the table's record, just reread, is still the row shown: in the view, with the same value
// of the result field.
bool TBtrHakuForm::isStillShown(const data::StoredRecord& shown) const {
    return model().rows().isWanted(Hakutable->recordId(), Hakutable->recordBytes()) &&
           Hakutable->fieldByName(m_resultField).asString() ==
               GridRow(recordLayout(), shown).text(m_resultField);
}

// The row no longer shows its record: nothing is chosen.
void TBtrHakuForm::rowIsGone(const std::optional<data::StoredRecord>& shown) {
    refreshRows(true);
    if (shown)
        m_view->cursor.goTo(shown);
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

// --- users and closing

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
    if (m_users.isEmpty() && m_stage != Stage::Leaving) {
        m_stage = Stage::Leaving;
        deleteLater();
    }
    QDialog::done(result);
}

void TBtrHakuForm::showEvent(QShowEvent* event) {
    guarded([this] { FormCreate(); });
    QDialog::showEvent(event);
}

bool TBtrHakuForm::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && m_view) {
        const auto now = std::exchange(m_nextActivation, NextActivation::Rereads);
        if (now == NextActivation::Rereads && !choosing)
            guarded([this] { refreshRows(false); });
    }
    return QDialog::event(event);
}

}  // namespace search
