#include "vatchange/views/changes_window.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QScopedValueRollback>
#include <QScreen>

#include "company/logs.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"
#include "vatchange/changes/change_texts.h"
#include "vatchange/changes/changed_fields.h"
#include "vatchange/report/charts.h"
#include "vatchange/report/run_report.h"
#include "vatchange/views/run_problems.h"

// The changes window: reading, overview, filters and orders. Exports and undo:
// changes_commands.cpp.

namespace vatchange {

namespace {

constexpr std::chrono::milliseconds kSlice(25);
constexpr int kPauseMs = 50;  // so that a text is painted before work that blocks
constexpr int kOverviewMs = 1000;
constexpr int kSearchMs = 250;
constexpr QSize kFirstSize(1240, 690);
constexpr QSize kFrame(16, 48);
constexpr int kPercentDecimals = 2;

constexpr int kTableRole = Qt::UserRole;      // of a summary's row: index of the table
constexpr int kLevelRole = Qt::UserRole + 1;  // and its price level

QString countText(qint64 count) {
    return QLocale(QLocale::Finnish).toString(count);
}

QString signedPercent(double percent) {
    const QString text = QLocale(QLocale::Finnish).toString(percent, 'f', kPercentDecimals);
    return percent > 0 ? u'+' + text : text;
}

class Hourglass {
  public:
    Hourglass() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Hourglass() { QApplication::restoreOverrideCursor(); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;
};

}  // namespace

ChangesWindow::ChangesWindow(std::shared_ptr<ChangeList> list, ChangesContext context,
                             QWidget* parent)
    : QDialog(parent),
      m_context(std::move(context)),
      m_list(std::move(list)),
      m_controls(*this),
      m_model(this) {
    start();
    finishReading();
}

ChangesWindow::ChangesWindow(const std::vector<qint64>& runs, ChangesContext context,
                             QWidget* parent)
    : QDialog(parent),
      m_context(std::move(context)),
      m_runs(runs),
      m_list(std::make_shared<ChangeList>()),
      m_reader(std::make_unique<ChangeReader>(*m_context.database, runs, *m_list)),
      m_controls(*this),
      m_model(this) {
    start();
    readOn();  // the first rows are there when the window appears
}

ChangesWindow::~ChangesWindow() = default;

void ChangesWindow::start() {
    setObjectName(QStringLiteral("Muutokset"));
    setWindowTitle(QStringLiteral("Muutokset: ") + m_context.title);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    m_controls.title->setText(m_context.title);
    m_controls.company->setText(m_context.company);
    m_controls.pdf->setVisible(static_cast<bool>(m_context.writePdf));
    m_controls.undo->setVisible(m_context.database != nullptr && m_context.run > 0);
    m_model.show(*m_list);
    m_controls.grid->setModel(&m_model);
    QHeaderView& header = *m_controls.grid->horizontalHeader();
    const int unit = fontMetrics().horizontalAdvance(u'0');
    for (const auto& [column, characters] :
         {std::pair(ChangeColumn::Product, 14), std::pair(ChangeColumn::Name, 25),
          std::pair(ChangeColumn::Table, 17), std::pair(ChangeColumn::Key, 14),
          std::pair(ChangeColumn::Field, 14), std::pair(ChangeColumn::Before, 10),
          std::pair(ChangeColumn::After, 10), std::pair(ChangeColumn::Difference, 9),
          std::pair(ChangeColumn::Percent, 10)})
        header.resizeSection(static_cast<int>(column), characters * unit);
    header.setStretchLastSection(true);
    fillChoices();
    connectControls();
    m_search.setSingleShot(true);
    m_search.setInterval(kSearchMs);
    m_read.setSingleShot(true);
    const QSize room = screen()->availableSize() - kFrame;
    if (!framework::rememberPlace(*this, QStringLiteral("Muutokset")))
        resize(kFirstSize.boundedTo(room));
    m_controls.search->setFocus();
}

void ChangesWindow::connectControls() {
    ChangesControls& c = m_controls;
    connect(&m_read, &QTimer::timeout, this, [this] { readOn(); });
    connect(&m_search, &QTimer::timeout, this, [this] { applyFilter(); });
    connect(c.search, &QLineEdit::textChanged, &m_search, qOverload<>(&QTimer::start));
    c.search->installEventFilter(this);
    for (QPushButton* button : c.finding)
        connect(button, &QPushButton::toggled, this, [this] {
            applyFilter();
            showFindings();
        });
    connect(c.table, &QComboBox::activated, this, [this] { applyFilter(); });
    connect(c.level, &QComboBox::activated, this, [this] { applyFilter(); });
    connect(c.order, &QComboBox::activated, this, [this] { applyOrder(); });
    connect(c.clear, &QPushButton::clicked, this, [this] { clearFilter(); });
    connect(c.summary, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* item) { filterBySummary(*item); });
    connect(c.grid->horizontalHeader(), &QHeaderView::sectionClicked, this,
            [this](int column) { orderByColumn(column); });
    connect(c.grid->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { updateButtons(); });
    connect(c.spreadsheet, &QPushButton::clicked, this, [this] { exportSpreadsheet(); });
    connect(c.priceList, &QPushButton::clicked, this, [this] { exportPriceList(); });
    connect(c.pdf, &QPushButton::clicked, this, [this] { exportPdf(); });
    connect(c.undo, &QPushButton::clicked, this, [this] { undoSelected(); });
    connect(c.close, &QPushButton::clicked, this, &QDialog::reject);
}

// --- reading

void ChangesWindow::readOn() {
    if (!m_reader)
        return;
    bool more = false;
    const bool verifies = m_reader->verifiesNext();
    const bool done = reportProblems(this, [&] {
        std::optional<Hourglass> hourglass;
        if (verifies)
            hourglass.emplace();
        more = m_reader->read(QDeadlineTimer(kSlice));
    });
    m_model.takeNewRows();
    if (!done) {
        m_reader.reset();
        finishReading();
        showStatus(QStringLiteral("Muutoksia ei voitu lukea loppuun"));
        return;
    }
    if (!more) {
        m_reader.reset();
        finishReading();
        return;
    }
    m_controls.progress->show();
    m_controls.progress->setValue(static_cast<int>(m_reader->share() * 1000));
    showStatus(m_reader->verifiesNext() ? QStringLiteral("Tarkastetaan ajoa")
                                        : QStringLiteral("Luetaan muutoksia"));
    if (!m_sinceOverview.isValid() || m_sinceOverview.elapsed() > kOverviewMs)
        showOverview();
    showRowCount();
    updateButtons();
    m_read.start(m_reader->verifiesNext() ? kPauseMs : 0);
}

void ChangesWindow::finishReading() {
    m_controls.progress->hide();
    showStatus({});
    showOverview();
    if (m_controls.order->currentIndex() > 0)
        applyOrder();  // the last rows too
    showRowCount();
    updateButtons();
}

void ChangesWindow::showStatus(const QString& text) {
    m_controls.status->setText(text);
}

// --- overview

void ChangesWindow::showOverview() {
    m_overview = overviewOf(*m_list);
    m_sinceOverview.start();
    const PriceSpread& spread = m_overview.spread;
    m_controls.products.value->setText(countText(m_overview.products));
    m_controls.prices.value->setText(countText(spread.count));
    m_controls.mean.value->setText(spread.count == 0
                                       ? QStringLiteral("-")
                                       : signedPercent(spread.mean) + QStringLiteral(" %"));
    qint64 findings = 0;
    for (const qint64 count : m_overview.findings)
        findings += count;
    m_controls.findings.value->setText(isReading() ? QStringLiteral("...") : countText(findings));
    showSummary();
    showFindings();
    showPictures();
    fillChoices();
}

void ChangesWindow::showPictures() {
    const ChartColours colours = ChartColours::forPalette(palette());
    m_controls.spread->show(
        [spread = m_overview.spread, colours](QPainter& painter, const QRectF& place) {
            paintSpread(painter, place, spread, colours);
        },
        spreadText(m_overview.spread));
    m_controls.endings->show(
        [endings = m_overview.endings, colours](QPainter& painter, const QRectF& place) {
            paintEndings(painter, place, endings, colours);
        },
        endingsText(m_overview.endings));
}

void ChangesWindow::showSummary() {
    QTreeWidget& summary = *m_controls.summary;
    const int current = summary.indexOfTopLevelItem(summary.currentItem());
    summary.clear();
    const auto add = [&](const QString& title, qint64 count, const QString& mean, int table,
                         int level) {
        auto* item = new QTreeWidgetItem(&summary, {title, countText(count), mean});
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        item->setData(0, kTableRole, table);
        item->setData(0, kLevelRole, level);
        return item;
    };
    for (const ChangedTable& table : m_overview.tables) {
        const auto index = static_cast<int>(m_list->tables().indexOf(table.table));
        QTreeWidgetItem* item = add(tableTitle(table.table), table.records, {}, index, 0);
        QFont bold = item->font(0);
        bold.setBold(true);
        item->setFont(0, bold);
        for (const ChangedPrices& price : m_overview.prices) {
            if (price.table == table.table)
                add(QStringLiteral("    ") + price.title, price.count,
                    price.compared == 0 ? QString() : signedPercent(price.meanPercent), index,
                    price.level);
        }
    }
    if (current >= 0)
        summary.setCurrentItem(summary.topLevelItem(current));
}

void ChangesWindow::showFindings() {
    bool any = false;
    for (int i = 0; i < kChangeFindings; ++i) {
        const auto kind = static_cast<ChangeFinding>(i);
        QPushButton& button = *m_controls.finding[static_cast<size_t>(i)];
        const qint64 count = m_overview.findings[static_cast<size_t>(i)];
        button.setText((button.isChecked() ? QStringLiteral("✓ ") : QString()) + findingName(kind) +
                       QStringLiteral("  ") + countText(count));
        button.setVisible(count > 0 || button.isChecked());
        any = any || count > 0;
    }
    m_controls.findingsLabel->setText(any           ? QStringLiteral("Katsottavaa:")
                                      : isReading() ? QStringLiteral("Havaintoja etsitään...")
                                                    : QStringLiteral("Ei katsottavaa."));
    m_controls.arrangeFindings();
}

void ChangesWindow::fillChoices() {
    const auto fill = [](QComboBox& combo, const QStringList& texts, const QList<int>& values) {
        if (combo.count() == texts.size())
            return;
        const QVariant chosen = combo.currentData();
        combo.clear();
        for (qsizetype i = 0; i < texts.size(); ++i)
            combo.addItem(texts[i], values[i]);
        combo.setCurrentIndex(std::max(0, combo.findData(chosen)));
    };
    QStringList titles{QStringLiteral("Kaikki taulut")};
    QList<int> tables{-1};
    for (int table = 0; table < m_list->tables().size(); ++table) {
        titles += tableTitle(m_list->tables()[table]);
        tables += table;
    }
    fill(*m_controls.table, titles, tables);
    QStringList levelTitles{QStringLiteral("Kaikki tasot")};
    QList<int> levels{0};
    for (int level = 1; level <= kPriceLevels; ++level) {
        const auto& fields = m_list->fields();
        if (std::none_of(fields.begin(), fields.end(),
                         [level](const ChangedField& field) { return field.level == level; }))
            continue;
        levelTitles += QStringLiteral("Taso %1").arg(level);
        levels += level;
    }
    fill(*m_controls.level, levelTitles, levels);
    if (m_controls.order->count() > 0)
        return;
    m_controls.order->addItem(QStringLiteral("Ajon järjestys"), -1);
    for (int i = 0; i < kChangeColumns; ++i) {
        const auto column = static_cast<ChangeColumn>(i);
        const bool number = ChangesModel::isNumber(column);
        for (int order = 0; order < 2; ++order)
            m_controls.order->addItem(
                ChangesModel::title(column) +
                    (order == 0 ? (number ? QStringLiteral(", pienin ensin") : QString())
                                : (number ? QStringLiteral(", suurin ensin")
                                          : QStringLiteral(", lopusta alkuun"))),
                2 * i + order);
    }
}

void ChangesWindow::showRowCount() {
    const int shown = m_model.rowCount();
    const int all = m_list->rowCount();
    const bool restricted = m_model.view().filter() != ChangeFilter{};
    m_controls.rows->setText(
        restricted ? QStringLiteral("%1 / %2 riviä").arg(countText(shown), countText(all))
                   : QStringLiteral("%1 riviä").arg(countText(shown)));
    m_controls.clear->setEnabled(restricted);
}

void ChangesWindow::updateButtons() {
    const bool ready = !isReading();
    m_controls.spreadsheet->setEnabled(ready && m_model.rowCount() > 0);
    m_controls.priceList->setEnabled(ready && m_overview.spread.count > 0);
    m_controls.pdf->setEnabled(ready);
    m_controls.undo->setEnabled(ready && m_controls.grid->selectionModel()->hasSelection());
}

// --- filters and orders

ChangeFilter ChangesWindow::chosenFilter() const {
    ChangeFilter filter;
    for (int i = 0; i < kChangeFindings; ++i) {
        if (m_controls.finding[static_cast<size_t>(i)]->isChecked())
            filter.findings =
                static_cast<FindingSet>(filter.findings | bitOf(static_cast<ChangeFinding>(i)));
    }
    filter.table = m_controls.table->currentData().toInt();
    filter.level = m_controls.level->currentData().toInt();
    filter.text = m_controls.search->text().simplified();
    return filter;
}

void ChangesWindow::changeRows(const std::function<void(const ViewProgress&)>& change) {
    const QModelIndex current = m_controls.grid->currentIndex();
    const int listRow = current.isValid() ? m_model.listRow(current.row()) : -1;
    {
        const Hourglass hourglass;
        QProgressBar& bar = *m_controls.progress;
        QElapsedTimer timer;
        timer.start();
        change([&](double share) {
            // painted without events: nothing may change the rows meanwhile
            if (timer.elapsed() > 200 && !isReading()) {
                bar.show();
                bar.setValue(static_cast<int>(share * 1000));
                bar.repaint();
            }
            return true;
        });
        if (!isReading())
            bar.hide();
    }
    const int row = listRow < 0 ? -1 : m_model.rowOf(listRow);
    if (m_model.rowCount() > 0)
        m_controls.grid->setCurrentIndex(
            m_model.index(std::max(0, row), std::max(0, current.column())));
    showRowCount();
    updateButtons();
}

void ChangesWindow::applyFilter() {
    m_search.stop();
    const ChangeFilter filter = chosenFilter();
    if (filter == m_model.view().filter())
        return;
    changeRows([&](const ViewProgress& progress) { m_model.restrict(filter, progress); });
}

void ChangesWindow::clearFilter() {
    for (QPushButton* button : m_controls.finding) {
        const QSignalBlocker blocker(button);
        button->setChecked(false);
    }
    m_controls.table->setCurrentIndex(0);
    m_controls.level->setCurrentIndex(0);
    m_controls.search->clear();
    applyFilter();
    showFindings();
    m_controls.search->setFocus();  // the button is disabled now
}

void ChangesWindow::filterBySummary(const QTreeWidgetItem& item) {
    m_controls.table->setCurrentIndex(m_controls.table->findData(item.data(0, kTableRole)));
    m_controls.level->setCurrentIndex(
        std::max(0, m_controls.level->findData(item.data(0, kLevelRole))));
    applyFilter();
    m_controls.grid->setFocus();
}

void ChangesWindow::orderByColumn(int column) {
    const int present = m_controls.order->currentData().toInt();
    const int ascending = 2 * column;
    m_controls.order->setCurrentIndex(
        m_controls.order->findData(present == ascending ? ascending + 1 : ascending));
    applyOrder();
}

void ChangesWindow::applyOrder() {
    const int chosen = m_controls.order->currentData().toInt();
    const Qt::SortOrder order = chosen % 2 == 0 ? Qt::AscendingOrder : Qt::DescendingOrder;
    std::optional<ChangeColumn> column;
    if (chosen >= 0)
        column = static_cast<ChangeColumn>(chosen / 2);
    m_controls.grid->horizontalHeader()->setSortIndicator(chosen < 0 ? -1 : chosen / 2, order);
    changeRows([&](const ViewProgress& progress) { m_model.order(column, order, progress); });
}

bool ChangesWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_controls.search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Down) {
            applyFilter();
            if (key == Qt::Key_Down)
                m_controls.grid->setFocus();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void ChangesWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Find)) {
        m_controls.search->setFocus();
        m_controls.search->selectAll();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ChangesWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_sinceOverview.isValid())
        showPictures();
}

// --- opening

namespace {

ChangesWindow* opened(ChangesWindow* window) {
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowModality(Qt::WindowModal);
    window->show();
    return window;
}

}  // namespace

ChangesWindow* showChanges(std::shared_ptr<ChangeList> list, const ChangesContext& context,
                           QWidget* parent) {
    return opened(new ChangesWindow(std::move(list), context, parent));
}

ChangesWindow* showRunChanges(const std::vector<qint64>& runs, const ChangesContext& context,
                              QWidget* parent) {
    ChangesContext full = context;
    if (!full.writePdf) {
        full.writePdf = [runs, context](const QString& fileName) {
            writeRunReport(*context.database, runs,
                           {context.company, company::AlvMuutosLogName(), context.title}, fileName);
        };
    }
    return opened(new ChangesWindow(runs, full, parent));
}

}  // namespace vatchange
