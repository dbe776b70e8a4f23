#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "framework/ui/choice_controls.h"
#include "framework/ui/dialogs.h"
#include "shell/main_form.h"

namespace shell {

namespace {

const QColor kMissingBackground(0xC6, 0x28, 0x28);

// In logical pixels.
constexpr int kMargin = 14;
constexpr int kGap = 10;
constexpr int kCardMargin = 12;
constexpr int kRowHeight = 28;
constexpr int kButtonWidth = 112;  // six in a row fit 1366 pixels at 150 %
constexpr int kDefinitionCharacters = 24;

QLabel* heading(const QString& text, const QString& objectName, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

// A group with its heading as a label in the first row.
QGridLayout* cardGrid(QGroupBox* card) {
    auto* grid = new QGridLayout(card);
    grid->setContentsMargins(kCardMargin, 2, kCardMargin, kCardMargin);
    grid->setHorizontalSpacing(kGap);
    grid->setVerticalSpacing(6);
    for (int row = 1; row <= 4; ++row)
        grid->setRowMinimumHeight(row, kRowHeight);
    return grid;
}

QLabel* missingRateLabel(const QString& objectName, const QString& rate, QWidget* parent) {
    auto* label =
        heading(QStringLiteral("Alv ") + rate + QStringLiteral("% - EI LÖYDY"), objectName, parent);
    QPalette red = label->palette();
    red.setColor(QPalette::Window, kMissingBackground);
    red.setColor(QPalette::WindowText, Qt::white);
    label->setPalette(red);
    label->setAutoFillBackground(true);
    label->setContentsMargins(8, 0, 8, 0);
    label->setFixedHeight(qMax(kRowHeight, label->fontMetrics().height() + 10));
    label->setMinimumWidth(
        label->fontMetrics().horizontalAdvance(QStringLiteral("Alv 25.5% - LÖYTYY (-32768)")) + 16);
    return label;
}

}  // namespace

QGroupBox* TMainForm::buildBatchPart() {
    auto* card = new QGroupBox(this);
    QGridLayout* grid = cardGrid(card);
    grid->addWidget(
        heading(QStringLiteral("Eräajossa ajettavat määrittelyt"), QStringLiteral("Label1"), card),
        0, 0, 1, 2);
    for (std::size_t i = 0; i < m_definitions.size(); ++i) {
        const int number = static_cast<int>(i) + 1;
        auto* list = new framework::ChoiceCombo(card);
        list->setObjectName(QStringLiteral("Maar%1").arg(number));
        list->setEditable(true);
        list->setInsertPolicy(QComboBox::NoInsert);
        list->setAccessibleName(QStringLiteral("Eräajon määrittely %1").arg(number));
        list->setMinimumContentsLength(kDefinitionCharacters);
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        auto* label = new QLabel(QStringLiteral("%1.").arg(number), card);
        label->setBuddy(list);
        grid->addWidget(label, number, 0);
        grid->addWidget(list, number, 1);
        m_definitions[i] = list;
    }
    auto* store = new QPushButton(QStringLiteral("Talleta"), card);
    store->setObjectName(QStringLiteral("Talleta"));
    store->setToolTip(QStringLiteral("Tallenta määrittelyt muistiin"));
    store->setAutoDefault(true);
    grid->addWidget(store, 5, 1, Qt::AlignRight);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(6, 1);
    connect(store, &QPushButton::clicked, this, &TMainForm::TalletaClick);
    return card;
}

QGroupBox* TMainForm::buildClassPart() {
    auto* card = new QGroupBox(this);
    QGridLayout* grid = cardGrid(card);
    grid->addWidget(heading(QStringLiteral("Veroluokat"), QStringLiteral("Label2"), card), 0, 0);
    m_rateLabels = {missingRateLabel(QStringLiteral("Alv255Label"), QStringLiteral("25.5"), card),
                    missingRateLabel(QStringLiteral("Alv24Label"), QStringLiteral("24"), card),
                    missingRateLabel(QStringLiteral("Alv14Label"), QStringLiteral("14"), card),
                    missingRateLabel(QStringLiteral("Alv10Label"), QStringLiteral("10"), card)};
    for (std::size_t i = 0; i < m_rateLabels.size(); ++i)
        grid->addWidget(m_rateLabels[i], static_cast<int>(i) + 1, 0);
    grid->setRowStretch(5, 1);
    return card;
}

QLayout* TMainForm::buildButtons() {
    m_open = new QPushButton(QStringLiteral("Alvmuutokset"), this);
    m_open->setObjectName(QStringLiteral("BitBtn1"));
    m_open->setDefault(true);
    QPushButton* history = buildHistoryButton();
    m_schedule = new QPushButton(QStringLiteral("Ajasta..."), this);
    m_schedule->setObjectName(QStringLiteral("Ajasta"));
    m_schedule->setToolTip(
        QStringLiteral("Käynnistää eräajon tai sen koeajon itsestään valittuna hetkenä"));
    auto* log = new QPushButton(QStringLiteral("Avaa loki"), this);
    log->setObjectName(QStringLiteral("BtnLog"));
    auto* removeMark = new QPushButton(QStringLiteral("Poista\najomerkintä"), this);
    removeMark->setObjectName(QStringLiteral("Button1"));
    auto* leave = new QPushButton(QStringLiteral("&Sulje"), this);
    leave->setObjectName(QStringLiteral("BitBtn2"));
    connect(m_open, &QPushButton::clicked, this, &TMainForm::BitBtn1Click);
    connect(log, &QPushButton::clicked, this, &TMainForm::BtnLogClick);
    connect(removeMark, &QPushButton::clicked, this, &TMainForm::Button1Click);
    connect(m_schedule, &QPushButton::clicked, this, &TMainForm::scheduleClick);
    connect(leave, &QPushButton::clicked, this, &QWidget::close);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(kGap);
    const int height = removeMark->sizeHint().height();
    for (QPushButton* button : {m_open, history, m_schedule, log, removeMark, leave}) {
        button->setAutoDefault(true);  // Enter presses the focused button
        button->setMinimumSize(kButtonWidth, height);
        buttons->addWidget(button, 1);
    }
    return buttons;
}

void TMainForm::buildLayout() {
    auto* cards = new QHBoxLayout;
    cards->setSpacing(kGap);
    cards->addWidget(buildBatchPart(), 3);
    cards->addWidget(buildClassPart(), 2);

    // made in the order of the Tab key
    QLayout* buttons = buildButtons();
    QLayout* head = buildHead();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kGap);
    column->setSpacing(kGap);
    column->addLayout(head);
    column->addLayout(cards, 1);
    column->addLayout(buildStatus());
    column->addLayout(buttons);
    column->addLayout(buildFoot());
    framework::describeByHints(*this);
}

}  // namespace shell
