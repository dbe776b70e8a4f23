#include "shell/log/log_window.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLocale>
#include <QSaveFile>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "company/company.h"
#include "company/logs.h"
#include "data/error.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/mail.h"
#include "framework/ui/window_place.h"

namespace shell {

namespace {

constexpr int kMargin = 14;
constexpr int kGap = 8;
constexpr int kWidth = 860;
constexpr int kHeight = 520;
constexpr int kWatchMs = 700;
constexpr int kTypingMs = 250;
constexpr int kDetailLines = 4;
constexpr int kMostDetails = 200;  // selected lines shown in full

QString counted(qint64 count, const QString& one, const QString& many) {
    return QLocale().toString(count) + u' ' + (count == 1 ? one : many);
}

}  // namespace

LogTable::LogTable(QWidget* parent) : QTableView(parent) {}

bool LogTable::isAtEnd() const {
    return verticalScrollBar()->value() >= verticalScrollBar()->maximum();
}

void LogTable::moveBy(int rows) {
    executeDelayedItemsLayout();  // the scroll bar's range
    verticalScrollBar()->setValue(verticalScrollBar()->value() + rows);
}

LogWindow::LogWindow(QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_log(new QComboBox(this)),
      m_kind(new QComboBox(this)),
      m_search(new QLineEdit(this)),
      m_follow(new QCheckBox(QStringLiteral("S&euraa"), this)),
      m_table(new LogTable(this)),
      m_details(new QPlainTextEdit(this)),
      m_state(new QLabel(this)) {
    setObjectName(QStringLiteral("LokiIkkuna"));
    setWindowTitle(QStringLiteral("Loki"));
    buildTable();
    m_details->setObjectName(QStringLiteral("LokiRivi"));
    m_details->setReadOnly(true);
    m_details->setAccessibleName(QStringLiteral("Valitut rivit kokonaan"));
    m_details->setMinimumHeight(kDetailLines * fontMetrics().lineSpacing());
    m_state->setObjectName(QStringLiteral("LokiTila"));
    m_state->setTextFormat(Qt::PlainText);
    m_state->setWordWrap(true);

    auto* parts = new QSplitter(Qt::Vertical, this);
    parts->addWidget(m_table);
    parts->addWidget(m_details);
    parts->setStretchFactor(0, 1);
    parts->setCollapsible(0, false);
    parts->setSizes({kHeight, kDetailLines * fontMetrics().lineSpacing() + kGap});
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kGap);
    column->addLayout(buildChoices());
    column->addWidget(parts, 1);
    column->addWidget(m_state);
    column->addLayout(buildButtons());
    resize(kWidth, kHeight);
    framework::rememberPlace(*this, objectName());
    framework::describeByHints(*this);

    m_typed.setSingleShot(true);
    m_typed.setInterval(kTypingMs);
    m_watch.setInterval(kWatchMs);
    connect(&m_typed, &QTimer::timeout, this, &LogWindow::applyFilter);
    connect(&m_scan, &QTimer::timeout, this, &LogWindow::readOlder);
    connect(&m_watch, &QTimer::timeout, this, &LogWindow::readNewer);
    connect(&m_model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { rowsInserted(first, last); });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, m_search,
            [this] { m_search->setFocus(); });
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            &QWidget::close);
    m_table->setFocus();
}

QLayout* LogWindow::buildChoices() {
    m_log->setObjectName(QStringLiteral("LokiValinta"));
    m_log->addItem(QStringLiteral("Muutosloki (ALVMUUTOS.LOG)"));
    m_log->addItem(QStringLiteral("Yleinen loki (loki.dat)"));
    m_kind->setObjectName(QStringLiteral("LokiRajaus"));
    m_kind->addItem(QStringLiteral("Kaikki rivit"));
    m_kind->addItem(QStringLiteral("Virheet ja huomautukset"));
    m_kind->addItem(QStringLiteral("Virheet"));
    m_search->setObjectName(QStringLiteral("LokiHaku"));
    m_search->setPlaceholderText(QStringLiteral("Rivit, joilla on tämä teksti"));
    m_search->setClearButtonEnabled(true);
    m_follow->setObjectName(QStringLiteral("LokiSeuraa"));
    m_follow->setToolTip(QStringLiteral("Näyttää uudet rivit heti, kun ne kirjoitetaan"));
    m_follow->setChecked(true);
    auto* row = new QHBoxLayout;
    row->setSpacing(kGap);
    const auto add = [&](const QString& title, QWidget* control, int stretch) {
        auto* label = new QLabel(title, this);
        label->setBuddy(control);
        row->addWidget(label);
        row->addWidget(control, stretch);
    };
    add(QStringLiteral("&Loki"), m_log, 0);
    add(QStringLiteral("&Näytä"), m_kind, 0);
    add(QStringLiteral("&Haku"), m_search, 1);
    row->addWidget(m_follow);
    connect(m_log, &QComboBox::currentIndexChanged, this, &LogWindow::reload);
    connect(m_kind, &QComboBox::currentIndexChanged, this, &LogWindow::applyFilter);
    connect(m_search, &QLineEdit::textChanged, this, [this] { m_typed.start(); });
    connect(m_follow, &QCheckBox::toggled, this, [this](bool on) {
        if (on)
            m_table->scrollToBottom();
    });
    return row;
}

void LogWindow::buildTable() {
    m_table->setObjectName(QStringLiteral("LokiTaulu"));
    m_table->setAccessibleName(QStringLiteral("Lokin rivit"));
    m_table->setModel(&m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setWordWrap(false);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    QHeaderView* header = m_table->horizontalHeader();
    header->setStretchLastSection(true);
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const auto width = [this](const char* text) {
        return fontMetrics().horizontalAdvance(QLatin1String(text)) + 16;
    };
    m_table->setColumnWidth(LogModel::Time, width("28.08.2024 00:00:00"));
    m_table->setColumnWidth(LogModel::Origin, width("TOIMISTO-KONE12"));
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &LogWindow::showSelected);
    auto* copy = new QShortcut(QKeySequence::Copy, m_table);
    copy->setContext(Qt::WidgetShortcut);
    connect(copy, &QShortcut::activated, this, &LogWindow::copySelected);
}

QLayout* LogWindow::buildButtons() {
    auto* row = new QHBoxLayout;
    const auto button = [&](const char* objectName, const QString& text, const QString& hint,
                            void (LogWindow::*pressed)()) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(QLatin1String(objectName));
        made->setToolTip(hint);
        made->setAutoDefault(true);
        connect(made, &QPushButton::clicked, this, pressed);
        row->addWidget(made);
    };
    button("LokiVie", QStringLiteral("&Vie tiedostoon..."),
           QStringLiteral("Tallettaa näkyvissä olevat rivit tekstitiedostoon"),
           &LogWindow::exportLines);
    button("LokiTyopoyta", QStringLiteral("&Avaa tekstiohjelmassa"),
           QStringLiteral("Avaa koko lokin siinä ohjelmassa, jolla työpöytä avaa sen"),
           &LogWindow::openOnDesktop);
    row->addStretch();
    auto* leave = new QPushButton(QStringLiteral("&Sulje"), this);
    leave->setAutoDefault(true);
    connect(leave, &QPushButton::clicked, this, &QWidget::close);
    row->addWidget(leave);
    return row;
}

QString LogWindow::fileName() const {
    return m_log->currentIndex() == 0 ? company::AlvMuutosLogName() : company::generalLogName();
}

// A log that cannot be read is told in the window, not in a dialog at every look at it.
bool LogWindow::reportOnce(const std::function<void()>& work) {
    try {
        work();
        m_problem.clear();
    } catch (const std::exception& e) {
        m_problem = data::errorText(e);
        m_scan.stop();
    }
    showState();
    return m_problem.isEmpty();
}

void LogWindow::reload() {
    setWindowTitle(QStringLiteral("Loki - ") + company::currentCompany().name);
    const bool read = reportOnce([this] {
        m_model.open(fileName(), m_log->currentIndex() == 0 ? LogFile::Encoding::Utf8
                                                            : LogFile::Encoding::Windows1252);
    });
    if (read) {
        m_table->scrollToBottom();
        m_scan.start();
    }
    m_watch.start();
}

void LogWindow::applyFilter() {
    m_typed.stop();
    const bool read = reportOnce([this] {
        m_model.setFilter(
            {static_cast<LogKind>(m_kind->currentIndex()), m_search->text().trimmed()});
    });
    m_details->clear();
    if (read) {
        m_table->scrollToBottom();
        m_scan.start();
    }
}

void LogWindow::readOlder() {
    reportOnce([this] {
        if (!m_model.readOlder())
            m_scan.stop();
    });
}

void LogWindow::readNewer() {
    if (isVisible())
        reportOnce([this] { m_model.readNewer(); });
}

void LogWindow::rowsInserted(int first, int last) {
    const bool older = first == 0 && last + 1 < m_model.rowCount();
    if (older)
        m_table->moveBy(last - first + 1);
    else if (m_follow->isChecked())
        m_table->scrollToBottom();
}

void LogWindow::showState() {
    if (!m_problem.isEmpty()) {
        m_state->setText(m_problem);
        return;
    }
    if (!m_model.exists()) {
        m_state->setText(
            QStringLiteral("Lokia ei vielä ole: siihen ei ole kirjoitettu mitään (%1).")
                .arg(QDir::toNativeSeparators(fileName())));
        return;
    }
    QString text = counted(m_model.rowCount(), QStringLiteral("rivi"), QStringLiteral("riviä"));
    text += QStringLiteral(" näkyvissä. Lokissa ") +
            counted(m_model.count(LogKind::Error), QStringLiteral("virhe"),
                    QStringLiteral("virhettä")) +
            QStringLiteral(", ") +
            counted(m_model.count(LogKind::Notice), QStringLiteral("huomautus"),
                    QStringLiteral("huomautusta"));
    text += m_model.complete()
                ? QStringLiteral(".")
                : QStringLiteral("; luettu %1 %").arg(static_cast<int>(100 * m_model.partRead()));
    m_state->setText(text);
}

void LogWindow::showSelected() {
    QStringList lines;
    QModelIndexList rows = m_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    for (const QModelIndex& row : rows.first(qMin<qsizetype>(rows.size(), kMostDetails)))
        lines.append(m_model.line(row.row()));
    m_details->setPlainText(lines.join(u'\n'));
}

void LogWindow::copySelected() {
    QModelIndexList rows = m_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QString text;
    for (const QModelIndex& row : rows)
        text += m_model.line(row.row()) + u'\n';
    QGuiApplication::clipboard()->setText(text);
}

void LogWindow::exportLines() {
    framework::reportErrors(this, [this] {
        const QString suggested =
            QFileInfo(fileName()).completeBaseName().toLower() + QStringLiteral(".txt");
        const QString target =
            framework::Dialogs::saveFileName(this, QStringLiteral("Vie loki tiedostoon"), suggested,
                                             QStringLiteral("Tekstitiedostot (*.txt)"));
        if (target.isEmpty())
            return;
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        QSaveFile file(target);
        bool written = false;
        try {
            while (m_model.readOlder()) {
            }
            written = file.open(QIODevice::WriteOnly | QIODevice::Text);
            for (int row = 0; written && row < m_model.rowCount(); ++row)
                written = file.write(m_model.line(row).toUtf8() + '\n') >= 0;
            written = written && file.commit();
        } catch (...) {
            QGuiApplication::restoreOverrideCursor();
            throw;
        }
        QGuiApplication::restoreOverrideCursor();
        if (!written)
            throw data::DataError(data::ErrorKind::Io, target, file.errorString());
        m_state->setText(
            counted(m_model.rowCount(), QStringLiteral("rivi"), QStringLiteral("riviä")) +
            QStringLiteral(" vietiin tiedostoon ") + QDir::toNativeSeparators(target));
    });
}

// The desktop reports a missing log.
void LogWindow::openOnDesktop() {
    if (!framework::Desktop::instance().open(
            QUrl::fromLocalFile(QFileInfo(fileName()).absoluteFilePath())))
        framework::Dialogs::error(this, QStringLiteral("Lokia ei voitu avata: ") + fileName());
}

}  // namespace shell
