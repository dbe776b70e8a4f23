#include "vatchange/views/history_window.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

#include "company/company.h"
#include "framework/core/moment_text.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"
#include "vatchange/journal/stored_verification.h"
#include "vatchange/report/run_text.h"

namespace vatchange {

namespace {

using data::JournalRun;
using data::RunKind;
using data::RunState;

constexpr int kMargin = 14;
constexpr int kGap = 10;
constexpr int kGroupGap = 12;
constexpr int kColumnGap = 14;
constexpr int kDetailLines = 4;
constexpr QSize kSize(1040, 560);

bool hasEnded(const JournalRun& run) {
    return run.number > 0 && run.state != RunState::Running;
}

bool canResume(const JournalRun& run) {
    return run.number > 0 && (data::isUnfinished(run.state) ||
                              (run.kind == RunKind::Change && run.state == RunState::Errors));
}

bool canUndo(const JournalRun& run) {
    return hasEnded(run) && run.state != RunState::Undone;
}

bool canAccept(const JournalRun& run) {
    return data::isUnfinished(run.state);
}

bool canForget(const JournalRun& run) {
    return hasEnded(run) && !data::isUnfinished(run.state);
}

QString detailText(data::RunJournal& journal, const HistoryRun& run) {
    QStringList lines{runTitle(run.head), stateMeaning(run.head)};
    if (const std::optional<StoredVerification> stored =
            storedVerification(journal, run.head.number)) {
        lines += QStringLiteral("Muutettu: ") + changedRecordsText(stored->records);
        lines += QStringLiteral("Tarkastettu %1: ").arg(framework::momentText(stored->when)) +
                 (stored->holds ? QStringLiteral("kaikki muutokset ovat tallessa.")
                                : QStringLiteral("jotakin huomattavaa, katso raportti."));
    }
    return lines.join(u'\n');
}

}  // namespace

HistoryWindow::HistoryWindow(data::Database& database, QWidget* parent)
    : QDialog(parent, Qt::Window), m_database(database), m_model(new HistoryModel(this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::ApplicationModal);
    setObjectName(QStringLiteral("Ajohistoria"));
    setWindowTitle(QStringLiteral("Ajohistoria - ") + company::currentCompany().name);
    buildLayout();
    refresh();
    resize(kSize.boundedTo(screen()->availableSize() * 0.95));
    framework::rememberPlace(*this, objectName());
}

QTableView* HistoryWindow::buildTable() {
    auto* table = new QTableView(this);
    table->setObjectName(QStringLiteral("Ajot"));
    table->setAccessibleName(QStringLiteral("Ajot"));
    table->setModel(m_model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { framework::reportErrors(this, [this] { showSelected(); }); });
    return table;
}

void HistoryWindow::addAction(QLayout* column, const QString& text, const QString& name,
                              const QString& hint, bool (*possible)(const JournalRun&),
                              void (HistoryWindow::*work)()) {
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setToolTip(hint);
    button->setAutoDefault(true);
    column->addWidget(button);
    connect(button, &QPushButton::clicked, this,
            [this, work] { framework::reportErrors(this, [this, work] { (this->*work)(); }); });
    m_actions.push_back({button, possible});
}

QLayout* HistoryWindow::buildActions() {
    auto* column = new QVBoxLayout;
    addAction(column, QStringLiteral("&Raportti..."), QStringLiteral("Raportti"),
              QStringLiteral("Kirjoittaa ajosta PDF-raportin"), hasEnded, &HistoryWindow::report);
    addAction(column, QStringLiteral("&Muutokset..."), QStringLiteral("Muutokset"),
              QStringLiteral("Näyttää jokaisen ajon tekemän muutoksen"), hasEnded,
              &HistoryWindow::changes);
    addAction(column, QStringLiteral("&Tarkastus..."), QStringLiteral("Tarkastus"),
              QStringLiteral("Vertaa tietokantaa siihen, mitä ajo jätti"), hasEnded,
              &HistoryWindow::verify);
    addAction(column, QStringLiteral("&Lokirivit..."), QStringLiteral("Lokirivit"),
              QStringLiteral("Näyttää ajon rivit muutoslokista"), hasEnded,
              &HistoryWindow::logLines);
    column->addSpacing(kGroupGap);
    addAction(column, QStringLiteral("&Jatka ajoa..."), QStringLiteral("Jatka"),
              QStringLiteral("Tekee kesken jääneen ajon loppuun; mitään ei muuteta kahdesti"),
              canResume, &HistoryWindow::resume);
    addAction(column, QStringLiteral("&Peru ajo..."), QStringLiteral("Peru"),
              QStringLiteral("Palauttaa arvot, jotka olivat ennen ajoa"), canUndo,
              &HistoryWindow::undo);
    addAction(column, QStringLiteral("&Hyväksy..."), QStringLiteral("Hyvaksy"),
              QStringLiteral("Jättää kesken jääneen ajon sellaiseksi kuin se on"), canAccept,
              &HistoryWindow::acceptSelected);
    addAction(column, QStringLiteral("P&oista päiväkirja..."), QStringLiteral("PoistaPaivakirja"),
              QStringLiteral("Poistaa ajon päiväkirjan; ajoa ei voi sen jälkeen perua"), canForget,
              &HistoryWindow::forget);
    column->addStretch();
    auto* leave = new QPushButton(QStringLiteral("&Sulje"), this);
    leave->setObjectName(QStringLiteral("Sulje"));
    leave->setAutoDefault(true);
    connect(leave, &QPushButton::clicked, this, &QWidget::close);
    column->addWidget(leave);
    return column;
}

void HistoryWindow::buildLayout() {
    m_table = buildTable();
    m_details = new QLabel(this);
    m_details->setObjectName(QStringLiteral("Tiedot"));
    m_details->setTextFormat(Qt::PlainText);
    m_details->setWordWrap(true);
    m_details->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_details->setMinimumHeight(kDetailLines * fontMetrics().lineSpacing());
    auto* left = new QVBoxLayout;
    left->setSpacing(kGap);
    left->addWidget(m_table, 1);
    left->addWidget(m_details);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    row->setSpacing(kGap);
    row->addLayout(left, 1);
    row->addLayout(buildActions());
    framework::describeByHints(*this);
    m_table->setFocus();
}

void HistoryWindow::refresh() {
    const HistoryRun* before = selected();
    const qint64 number = before != nullptr ? before->head.number : -1;
    m_model->read(m_database.journal());
    m_table->resizeColumnsToContents();
    for (int column = 0; column < HistoryModel::Columns; ++column)
        m_table->setColumnWidth(column, m_table->columnWidth(column) + kColumnGap);
    m_table->horizontalHeader()->setSectionResizeMode(HistoryModel::What, QHeaderView::Stretch);
    select(number);
    showSelected();
}

void HistoryWindow::select(qint64 run) const {
    if (m_model->rowCount() > 0)
        m_table->selectRow(std::max(m_model->rowOf(run), 0));
}

const HistoryRun* HistoryWindow::selected() const {
    const QModelIndex current = m_table->currentIndex();
    return current.isValid() ? &m_model->run(current.row()) : nullptr;
}

void HistoryWindow::showSelected() {
    const HistoryRun* run = selected();
    for (const Action& action : m_actions)
        action.button->setEnabled(run != nullptr && action.possible(run->head));
    if (run == nullptr)
        m_details->setText(QStringLiteral("Yrityksessä ei ole ajettu muutoksia."));
    else if (run->head.number == 0)
        m_details->setText(QStringLiteral(
            "Ohjelman aiempi versio jätti ajon kesken, eikä siitä ole päiväkirjaa. Tarkasta rivit "
            "ja hyväksy ajo."));
    else
        m_details->setText(detailText(*m_database.journal(), *run));
}

void HistoryWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F5)
        framework::reportErrors(this, [this] { refresh(); });
    else
        QDialog::keyPressEvent(event);
}

}  // namespace vatchange
