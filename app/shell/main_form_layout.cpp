#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "app/shell/build_stamp.h"
#include "app/shell/main_form.h"

namespace shell {

namespace {

const QColor kMissingBackground(0xC6, 0x28, 0x28);

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
    label->setMargin(6);
    label->setMinimumWidth(
        label->fontMetrics().horizontalAdvance(QStringLiteral("Alv 25.5% - LÖYTYY (-32768)")) + 12);
    return label;
}

}  // namespace

QWidget* TMainForm::buildBatchPart() {
    auto* part = new QWidget(this);
    auto* grid = new QGridLayout(part);
    grid->setContentsMargins(0, 0, 0, 0);
    auto* heading = new QLabel(QStringLiteral("Eräajossa ajettavat määrittelyt"), part);
    heading->setObjectName(QStringLiteral("Label1"));
    grid->addWidget(heading, 0, 0, 1, 2);
    for (std::size_t i = 0; i < m_definitions.size(); ++i) {
        const int number = static_cast<int>(i) + 1;
        auto* list = new QComboBox(part);
        list->setObjectName(QStringLiteral("Maar%1").arg(number));
        list->setEditable(true);
        list->setInsertPolicy(QComboBox::NoInsert);
        list->setAccessibleName(QStringLiteral("Eräajon määrittely %1").arg(number));
        list->setMinimumContentsLength(24);
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        auto* label = new QLabel(QStringLiteral("%1.").arg(number), part);
        label->setBuddy(list);
        grid->addWidget(label, number, 0);
        grid->addWidget(list, number, 1);
        m_definitions[i] = list;
    }
    auto* store = new QPushButton(QStringLiteral("Talleta"), part);
    store->setObjectName(QStringLiteral("Talleta"));
    store->setToolTip(QStringLiteral("Tallenta määrittelyt muistiin"));
    grid->addWidget(store, 5, 1, Qt::AlignRight);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(6, 1);
    connect(store, &QPushButton::clicked, this, &TMainForm::TalletaClick);
    return part;
}

QWidget* TMainForm::buildClassPart() {
    auto* part = new QWidget(this);
    auto* column = new QVBoxLayout(part);
    column->setContentsMargins(0, 0, 0, 0);
    auto* heading = new QLabel(QStringLiteral("Veroluokat"), part);
    heading->setObjectName(QStringLiteral("Label2"));
    column->addWidget(heading);
    m_rateLabels = {missingRateLabel(QStringLiteral("Alv255Label"), QStringLiteral("25.5"), part),
                    missingRateLabel(QStringLiteral("Alv24Label"), QStringLiteral("24"), part),
                    missingRateLabel(QStringLiteral("Alv14Label"), QStringLiteral("14"), part),
                    missingRateLabel(QStringLiteral("Alv10Label"), QStringLiteral("10"), part)};
    for (QLabel* label : m_rateLabels)
        column->addWidget(label);
    column->addStretch();
    return part;
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
    version->setEnabled(false);

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

    auto* parts = new QHBoxLayout;
    parts->setSpacing(24);
    parts->addWidget(buildBatchPart(), 1);
    parts->addWidget(buildClassPart());

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
