#include <QGridLayout>
#include <QVBoxLayout>

#include "app/shell/build_stamp.h"
#include "app/shell/main_form.h"

namespace shell {

namespace {

const QColor kMissingBackground(0xC6, 0x28, 0x28);

// The batch list and the rates stand in one grid, so that their rows are level.
enum Column { kNumberColumn, kListColumn, kGapColumn, kRateColumn };
constexpr int kRows = 5;  // heading and four entries

QLabel* missingRateLabel(const QString& objectName, const QString& rate, QWidget* parent) {
    auto* label =
        new QLabel(QStringLiteral("Alv ") + rate + QStringLiteral("% - EI LÖYDY"), parent);
    label->setObjectName(objectName);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    QPalette red = label->palette();
    red.setColor(QPalette::Window, kMissingBackground);
    red.setColor(QPalette::WindowText, Qt::white);
    label->setPalette(red);
    label->setAutoFillBackground(true);
    label->setMargin(5);
    label->setMinimumWidth(
        label->fontMetrics().horizontalAdvance(QStringLiteral("Alv 25.5% - LÖYTYY (-32768)")) + 12);
    return label;
}

}  // namespace

void TMainForm::buildBatchPart(QGridLayout* grid) {
    auto* heading = new QLabel(QStringLiteral("Eräajossa ajettavat määrittelyt"), this);
    heading->setObjectName(QStringLiteral("Label1"));
    grid->addWidget(heading, 0, kNumberColumn, 1, 2);
    for (std::size_t i = 0; i < m_definitions.size(); ++i) {
        const int number = static_cast<int>(i) + 1;
        auto* list = new QComboBox(this);
        list->setObjectName(QStringLiteral("Maar%1").arg(number));
        list->setEditable(true);
        list->setInsertPolicy(QComboBox::NoInsert);
        list->setAccessibleName(QStringLiteral("Eräajon määrittely %1").arg(number));
        list->setMinimumContentsLength(24);
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        auto* label = new QLabel(QStringLiteral("%1.").arg(number), this);
        label->setBuddy(list);
        grid->addWidget(label, number, kNumberColumn);
        grid->addWidget(list, number, kListColumn);
        m_definitions[i] = list;
    }
    auto* store = new QPushButton(QStringLiteral("Talleta"), this);
    store->setObjectName(QStringLiteral("Talleta"));
    store->setToolTip(QStringLiteral("Tallenta määrittelyt muistiin"));
    grid->addWidget(store, kRows, kListColumn, Qt::AlignRight);
    connect(store, &QPushButton::clicked, this, &TMainForm::TalletaClick);
}

void TMainForm::buildClassPart(QGridLayout* grid) {
    auto* heading = new QLabel(QStringLiteral("Veroluokat"), this);
    heading->setObjectName(QStringLiteral("Label2"));
    grid->addWidget(heading, 0, kRateColumn);
    m_rateLabels = {missingRateLabel(QStringLiteral("Alv255Label"), QStringLiteral("25.5"), this),
                    missingRateLabel(QStringLiteral("Alv24Label"), QStringLiteral("24"), this),
                    missingRateLabel(QStringLiteral("Alv14Label"), QStringLiteral("14"), this),
                    missingRateLabel(QStringLiteral("Alv10Label"), QStringLiteral("10"), this)};
    for (std::size_t i = 0; i < m_rateLabels.size(); ++i)
        grid->addWidget(m_rateLabels[i], static_cast<int>(i) + 1, kRateColumn);
}

void TMainForm::buildLayout() {
    m_company = new QLabel(QStringLiteral("Yritys"), this);
    m_company->setObjectName(QStringLiteral("Yritys"));
    m_company->setTextFormat(Qt::PlainText);
    QFont large = m_company->font();
    large.setPointSizeF(large.pointSizeF() * 1.3);
    large.setBold(true);
    m_company->setFont(large);

    m_open = new QPushButton(QStringLiteral("Alvmuutokset"), this);
    m_open->setObjectName(QStringLiteral("BitBtn1"));
    m_open->setDefault(true);
    auto* log = new QPushButton(QStringLiteral("Avaa loki"), this);
    log->setObjectName(QStringLiteral("BtnLog"));
    auto* removeMark = new QPushButton(QStringLiteral("Poista\najomerkintä"), this);
    removeMark->setObjectName(QStringLiteral("Button1"));
    auto* leave = new QPushButton(QStringLiteral("&Sulje"), this);
    leave->setObjectName(QStringLiteral("BitBtn2"));
    auto* version = new QLabel(QStringLiteral("Versio %1").arg(buildStamp()), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    version->setForegroundRole(QPalette::PlaceholderText);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    const int height = removeMark->sizeHint().height();
    for (QPushButton* button : {m_open, log, removeMark, leave}) {
        button->setMinimumHeight(height);
        button->setMinimumWidth(120);
        if (button == leave)
            buttons->addStretch();
        buttons->addWidget(button);
    }

    auto* parts = new QGridLayout;
    buildBatchPart(parts);
    buildClassPart(parts);
    parts->setColumnMinimumWidth(kGapColumn, 24);
    parts->setColumnStretch(kListColumn, 1);
    parts->setRowStretch(kRows + 1, 1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 14, 16, 10);
    column->setSpacing(14);
    column->addWidget(m_company);
    column->addLayout(parts, 1);
    column->addLayout(buttons);
    column->addWidget(version);

    connect(m_open, &QPushButton::clicked, this, &TMainForm::BitBtn1Click);
    connect(log, &QPushButton::clicked, this, &TMainForm::BtnLogClick);
    connect(removeMark, &QPushButton::clicked, this, &TMainForm::Button1Click);
    connect(leave, &QPushButton::clicked, this, &QWidget::close);
}

}  // namespace shell
