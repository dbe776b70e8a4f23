#include <QGridLayout>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include "framework/ui/dialogs.h"
#include "vatchange/form/change_form.h"

namespace vatchange {

namespace {

constexpr int kFrameHeight = 40;  // title bar and borders, approximately
// Beyond this the form no longer grows with its window: rows too far apart are hard to follow.
constexpr QSize kLargestContent(1560, 800);
constexpr int kProgressWidth = 260;
constexpr int kMaxStretch = 1000;

}  // namespace

QLayout* TAlvMuutosLomake::buildDefinitionBar() {
    auto* name = new QLabel(QStringLiteral("Määritte&ly"), m_content);
    name->setBuddy(LatausCombo);
    m_description = new QLabel(m_content);
    m_description->setObjectName(QStringLiteral("SeliteLabel"));
    m_description->setTextFormat(Qt::PlainText);
    m_description->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto* bar = new QHBoxLayout;
    bar->setSpacing(kColumnGap);
    bar->addWidget(name);
    for (QWidget* inherited : {static_cast<QWidget*>(LatausCombo), static_cast<QWidget*>(Talletus),
                               static_cast<QWidget*>(Pdf), static_cast<QWidget*>(Sahkoposti)}) {
        inherited->setParent(m_content);
        bar->addWidget(inherited);
    }
    Tulosta->setParent(m_content);
    Tulosta->hide();
    bar->addWidget(m_description, 1);
    return bar;
}

// Created in reading order, which is the tab order. One grid aligns all edges.
QLayout* TAlvMuutosLomake::buildGroups() {
    enum Column { kLeft, kMiddle, kRight };
    auto* groups = new QGridLayout;
    groups->setSpacing(kGutter);
    groups->addWidget(buildRestrictions(m_controls, m_content), 0, kLeft, 1, 2);
    groups->addWidget(buildVatClasses(m_controls, m_content), 0, kRight);
    groups->addWidget(buildPrices(m_controls, m_content), 1, kLeft, 3, 1);
    groups->addWidget(buildOptions(m_controls, m_content), 1, kMiddle);
    buildRounding(m_controls, m_content);
    auto* rounding = new QHBoxLayout;
    rounding->setSpacing(kGutter);
    rounding->addWidget(m_controls.roundingRule, 1);
    rounding->addWidget(m_controls.roundingStep, 1);
    groups->addLayout(rounding, 1, kRight);
    groups->addWidget(buildSalesOrders(m_controls, m_content), 2, kMiddle);
    groups->addWidget(buildPurchaseOrders(m_controls, m_content), 2, kRight);
    groups->addWidget(buildLogging(m_controls, m_content), 3, kMiddle, 1, 2);

    // Proportional to their heights, so that all grow alike.
    const int stretches[] = {15, 20, 12, 5};
    for (int row = 0; row < 4; ++row)
        groups->setRowStretch(row, stretches[row]);
    groups->setColumnStretch(kMiddle, 1);
    groups->setColumnStretch(kRight, 1);
    return groups;
}

QLayout* TAlvMuutosLomake::buildFoot() {
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("StatusLabel"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ProgressBar"));
    m_progress->setFixedWidth(kProgressWidth);
    m_progress->setAccessibleName(QStringLiteral("Ajon eteneminen"));
    m_progress->hide();
    Esikatsele->setParent(this);
    Esikatsele->setText(QStringLiteral("&Muuta"));
    Esikatsele->setToolTip(QStringLiteral("Muuta tuotteiden tiedot"));
    m_interrupt = new QPushButton(QStringLiteral("&Keskeytä"), this);
    m_interrupt->setObjectName(QStringLiteral("Keskeyta"));
    m_interrupt->setToolTip(QStringLiteral("Lopettaa muutoksen kahden rivin välissä"));
    m_interrupt->setEnabled(false);
    m_close = new QPushButton(QStringLiteral("&Sulje"), this);
    m_close->setObjectName(QStringLiteral("Sulje"));

    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(kGutter, 0, kGutter, kGutter);
    foot->setSpacing(kColumnGap);
    foot->addWidget(m_status, 1);
    foot->addWidget(m_progress);
    const int width = fontMetrics().horizontalAdvance(QStringLiteral("Keskeytä")) + 44;
    for (QPushButton* button : {Esikatsele, m_interrupt, m_close}) {
        button->setMinimumWidth(width);
        foot->addWidget(button);
    }
    return foot;
}

void TAlvMuutosLomake::buildLayout() {
    setWindowTitle(QStringLiteral("ALV muutos"));
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);  // not in the tab order
    area->setWidgetResizable(true);
    area->setAlignment(Qt::AlignCenter);
    m_content = new QWidget(area);
    m_content->setMaximumSize(kLargestContent);
    auto* body = new QVBoxLayout(m_content);
    body->setContentsMargins(kGutter, kGutter, kGutter, 0);
    body->setSpacing(kGutter);
    body->addLayout(buildDefinitionBar());
    body->addLayout(buildGroups(), 1);
    area->setWidget(m_content);

    auto* window = new QVBoxLayout(this);
    window->setContentsMargins(0, 0, 0, 0);
    window->setSpacing(kGutter);
    window->addWidget(area, 1);
    auto* foot = new QWidget(this);
    foot->setLayout(buildFoot());
    foot->setMaximumWidth(kLargestContent.width());
    auto* footLine = new QHBoxLayout;  // below the content, centred with it
    footLine->addStretch(1);
    footLine->addWidget(foot, kMaxStretch);
    footLine->addStretch(1);
    window->addLayout(footLine);

    for (QPushButton* button : findChildren<QPushButton*>())
        button->setAutoDefault(true);  // Enter presses the button that has the focus
    Esikatsele->setDefault(true);
    setTabOrder(m_controls.leaveWebShop, Esikatsele);
    setTabOrder(Esikatsele, m_interrupt);
    setTabOrder(m_interrupt, m_close);
    LatausCombo->setFocus();
    framework::describeByHints(*this);
}

void TAlvMuutosLomake::fitToScreen() {
    // The size hint of a scroll area is small; open at the size of the content, up to the screen's.
    const QSize content = m_content->sizeHint();
    QSize wanted(content.width(), content.height() + 2 * kGutter + m_close->sizeHint().height());
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        wanted = wanted.boundedTo(screen->availableSize() - QSize(0, kFrameHeight));
    resize(wanted);
}

}  // namespace vatchange
