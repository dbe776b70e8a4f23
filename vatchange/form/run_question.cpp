#include "vatchange/form/run_question.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QStyle>
#include <QVBoxLayout>
#include <utility>

#include "framework/ui/dialogs.h"
#include "vatchange/form/form_controls.h"
#include "vatchange/report/report_html.h"

namespace vatchange {

namespace {

constexpr int kMargin = 14;
constexpr int kButtonWidth = 110;
constexpr int kWidth = 600;
constexpr int kLineCharacters = 70;
constexpr int kNotesHeight = 150;  // at most; more are scrolled
constexpr int kColumns = 2;        // of the counts

QLabel* plainLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setFocusPolicy(Qt::NoFocus);
    return label;
}

QFont bold(const QWidget* widget) {
    QFont font = widget->font();
    font.setBold(true);
    return font;
}

}  // namespace

RunQuestion::RunQuestion(QWidget* parent, data::Database& database,
                         const ChangeDefinition& definition, RunQuestionFacts facts)
    : QDialog(parent),
      m_database(database),
      m_facts(std::move(facts)),
      m_counts(rowCounts(definition)) {
    setObjectName(QStringLiteral("AjonKysymys"));
    setWindowTitle(QStringLiteral("Muutoksen vahvistus"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    auto* heading = new QLabel(QStringLiteral("Tehdäänkö muutos?"), this);
    QFont large = bold(heading);
    large.setPointSizeF(large.pointSizeF() * 1.3);
    heading->setFont(large);
    column->addWidget(heading);
    column->addLayout(buildFacts());
    column->addWidget(buildCounts());

    m_notesTitle = new QLabel(this);
    m_notesTitle->setFont(bold(m_notesTitle));
    m_notesTitle->setTextFormat(Qt::PlainText);
    m_notes = new QListWidget(this);
    m_notes->setObjectName(QStringLiteral("AjonHuomautukset"));
    m_notes->setAccessibleName(QStringLiteral("Huomautukset"));
    m_notes->setWordWrap(true);
    m_notes->setSelectionMode(QAbstractItemView::NoSelection);
    m_notes->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    column->addWidget(m_notesTitle);
    column->addWidget(m_notes);
    addNotes(m_facts.problems, true);
    addNotes(m_facts.findings, false);
    column->addLayout(buildButtons());
    resize(kWidth, minimumSizeHint().height());

    m_next.setSingleShot(true);
    m_next.setInterval(0);
    connect(&m_next, &QTimer::timeout, this, &RunQuestion::countNext);
    connect(this, &QDialog::finished, &m_next, &QTimer::stop);
    m_next.start();
}

QLayout* RunQuestion::buildFacts() {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(2 * kColumnGap);
    grid->setVerticalSpacing(kRowGap);
    const auto row = [&](const QString& title, const QString& text) {
        const int line = grid->rowCount();
        grid->addWidget(new QLabel(title, this), line, 0, Qt::AlignTop);
        QLabel* value = plainLabel(text, this);
        value->setWordWrap(true);
        grid->addWidget(value, line, 1);
        return value;
    };
    row(QStringLiteral("Yritys"), m_facts.company)->setFont(bold(this));
    row(QStringLiteral("Määrittely"), m_facts.definition);
    row(QStringLiteral("Alv-luokka"), m_facts.classes)->setFont(bold(this));
    m_backup = row(QStringLiteral("Varmuuskopio"), m_facts.backup);
    m_backup->setObjectName(QStringLiteral("VarmuuskopioLabel"));
    grid->setColumnStretch(1, 1);
    return grid;
}

QWidget* RunQuestion::buildCounts() {
    auto* box = new QGroupBox(QStringLiteral("Muuttuvat rivit"), this);
    QGridLayout* grid = groupGrid(box);
    grid->setHorizontalSpacing(2 * kColumnGap);
    if (m_counts.empty())
        grid->addWidget(new QLabel(QStringLiteral("Määrittely ei muuta yhtään taulua."), box), 0,
                        0);
    const int lines = (static_cast<int>(m_counts.size()) + kColumns - 1) / kColumns;
    int place = 0;
    for (const RowCount& count : m_counts) {
        const int line = place % lines;
        const int column = place / lines * 3;
        auto* rows = new QLabel(QStringLiteral("lasketaan..."), box);
        rows->setObjectName(QStringLiteral("Rivit") + count.what.section(u' ', 0, 0));
        rows->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        rows->setAccessibleName(count.what);
        grid->addWidget(new QLabel(count.what, box), line, column);
        grid->addWidget(rows, line, column + 1);
        grid->setColumnMinimumWidth(column + 2, 2 * kColumnGap);
        m_rows.push_back(rows);
        ++place;
    }
    grid->setColumnStretch(3 * kColumns, 1);
    return box;
}

QLayout* RunQuestion::buildButtons() {
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(kColumnGap);
    buttons->setContentsMargins(0, kMargin / 2, 0, 0);
    if (m_facts.makeBackup) {
        auto* backup = new QPushButton(QStringLiteral("&Ota varmuuskopio..."), this);
        backup->setObjectName(QStringLiteral("OtaVarmuuskopio"));
        backup->setToolTip(QStringLiteral("Tekee yrityksestä varmuuskopion ja tarkastaa sen"));
        backup->setAutoDefault(false);
        connect(backup, &QPushButton::clicked, this, &RunQuestion::backUp);
        buttons->addWidget(backup);
    }
    buttons->addStretch();
    auto* go = new QPushButton(QStringLiteral("&Muuta"), this);
    go->setObjectName(QStringLiteral("Muuta"));
    go->setAutoDefault(false);
    auto* cancel = new QPushButton(QStringLiteral("&Peruuta"), this);
    cancel->setObjectName(QStringLiteral("Peruuta"));
    cancel->setDefault(true);
    for (QPushButton* button : {go, cancel}) {
        button->setMinimumWidth(kButtonWidth);
        buttons->addWidget(button);
    }
    connect(go, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    cancel->setFocus();
    return buttons;
}

// Serious ones are marked by an icon and stand first.
void RunQuestion::addNotes(const QStringList& texts, bool serious) {
    const QIcon icon = style()->standardIcon(serious ? QStyle::SP_MessageBoxWarning
                                                     : QStyle::SP_MessageBoxInformation);
    for (const QString& text : texts)
        new QListWidgetItem(icon, text, m_notes);
    m_notesTitle->setText(
        m_facts.problems.isEmpty()
            ? QStringLiteral("Huomattavaa")
            : QStringLiteral("Määrittelyssä on arvoja, joilla sitä ei pitäisi ajaa"));
    fitNotes();
}

void RunQuestion::fitNotes() {
    const bool any = m_notes->count() > 0;
    m_notesTitle->setVisible(any);
    m_notes->setVisible(any);
    const int width = kLineCharacters * fontMetrics().averageCharWidth();
    int height = 2 * m_notes->frameWidth();
    for (int row = 0; row < m_notes->count(); ++row) {
        const int lines = 1 + fontMetrics().horizontalAdvance(m_notes->item(row)->text()) / width;
        height += qMax(m_notes->sizeHintForRow(row), lines * fontMetrics().lineSpacing() + 6);
    }
    m_notes->setFixedHeight(qMin(height, kNotesHeight));
}

// One table in each turn of the event loop, so that "Peruuta" works in between.
void RunQuestion::countNext() {
    if (m_counted == m_counts.size() && m_facts.lateFindings)
        addNotes(m_facts.lateFindings(m_products,
                                      [this] {
                                          QCoreApplication::processEvents();
                                          return isHidden();
                                      }),
                 false);
    if (m_counted++ >= m_counts.size())
        return;
    const RowCount& count = m_counts[m_counted - 1];
    QLabel* label = m_rows[m_counted - 1];
    try {
        const qint64 rows = countRows(m_database, count);
        label->setText(countText(rows));
        if (count.step == RunStep::Products) {
            label->setFont(bold(this));
            m_products = rows;
        }
    } catch (const std::exception& error) {
        label->setText(QStringLiteral("ei voitu laskea"));
        label->setToolTip(data::errorText(error));
    }
    m_next.start();
}

void RunQuestion::backUp() {
    m_next.stop();
    framework::reportErrors(this, [this] {
        const QString made = m_facts.makeBackup(this);
        if (!made.isEmpty())
            m_backup->setText(made);
    });
    m_next.start();
}

}  // namespace vatchange
