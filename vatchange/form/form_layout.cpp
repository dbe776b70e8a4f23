#include <QGridLayout>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include "vatchange/form/change_form.h"

namespace vatchange {

namespace {
constexpr int kMargin = 8;
constexpr int kFrameHeight = 40;  // title bar and borders of the desktop, about
}  // namespace

void TAlvMuutosLomake::buildLayout() {
    setWindowTitle(QStringLiteral("ALV muutos"));

    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    m_content = new QWidget(area);

    auto* top = new QHBoxLayout;
    auto* name = new QLabel(QStringLiteral("Määritte&ly"), m_content);
    for (QWidget* inherited : {static_cast<QWidget*>(LatausCombo), static_cast<QWidget*>(Talletus),
                               static_cast<QWidget*>(Tulosta), static_cast<QWidget*>(Pdf),
                               static_cast<QWidget*>(Esikatsele)})
        inherited->setParent(m_content);
    name->setBuddy(LatausCombo);
    top->addWidget(name);
    top->addWidget(LatausCombo);
    top->addWidget(Talletus);
    top->addWidget(Pdf);
    top->addStretch();
    Tulosta->hide();
    Esikatsele->setText(QStringLiteral("&Muuta"));
    Esikatsele->setToolTip(QStringLiteral("Muuta tuotteiden tiedot"));

    // Created in the order that the eye and the tab key go.
    auto* groups = new QGridLayout;
    groups->setSpacing(kMargin);
    groups->addWidget(buildRestrictions(m_controls, m_content), 0, 0, 1, 2);
    auto* topRight = new QVBoxLayout;
    topRight->addWidget(buildVatClasses(m_controls, m_content));
    topRight->addWidget(buildLogging(m_controls, m_content));
    groups->addLayout(topRight, 0, 2);
    groups->addWidget(buildPrices(m_controls, m_content), 1, 0);
    auto* middle = new QVBoxLayout;
    middle->addWidget(buildOptions(m_controls, m_content));
    middle->addWidget(buildSalesOrders(m_controls, m_content));
    middle->addWidget(buildPurchaseOrders(m_controls, m_content));
    middle->addStretch();
    groups->addLayout(middle, 1, 1);
    buildRounding(m_controls, m_content);
    auto* right = new QVBoxLayout;
    right->addWidget(m_controls.roundingRule);
    right->addWidget(m_controls.roundingStep);
    right->addStretch();
    groups->addLayout(right, 1, 2);
    groups->setColumnStretch(1, 1);
    groups->setRowStretch(1, 1);

    auto* body = new QVBoxLayout(m_content);
    body->setContentsMargins(kMargin, kMargin, kMargin, 0);
    body->addLayout(top);
    body->addLayout(groups, 1);
    area->setWidget(m_content);

    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("StatusLabel"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setMinimumWidth(200);
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ProgressBar"));
    m_progress->setFixedWidth(260);
    m_progress->setAccessibleName(QStringLiteral("Ajon eteneminen"));
    m_progress->hide();
    m_interrupt = new QPushButton(QStringLiteral("&Keskeytä"), this);
    m_interrupt->setObjectName(QStringLiteral("Keskeyta"));
    m_interrupt->setToolTip(QStringLiteral("Lopettaa muutoksen kahden rivin välissä"));
    m_interrupt->setEnabled(false);
    m_close = new QPushButton(QStringLiteral("&Sulje"), this);
    m_close->setObjectName(QStringLiteral("Sulje"));
    Esikatsele->setParent(this);
    Esikatsele->setMinimumWidth(Esikatsele->fontMetrics().horizontalAdvance(Esikatsele->text()) +
                                64);

    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(kMargin, 0, kMargin, kMargin);
    foot->addWidget(m_status, 1);
    foot->addWidget(m_progress);
    foot->addWidget(Esikatsele);
    foot->addWidget(m_interrupt);
    foot->addWidget(m_close);
    auto* window = new QVBoxLayout(this);
    window->setContentsMargins(0, 0, 0, 0);
    window->addWidget(area, 1);
    window->addLayout(foot);

    setTabOrder(m_controls.roundingStep, Esikatsele);
    setTabOrder(Esikatsele, m_interrupt);
    setTabOrder(m_interrupt, m_close);
}

void TAlvMuutosLomake::fitToScreen() {
    // A scroll area asks for little; the window should open at what its content needs, as far as
    // the screen has room.
    const QSize content = m_content->sizeHint();
    QSize wanted(content.width() + 4, content.height() + m_close->sizeHint().height() + 24);
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        wanted = wanted.boundedTo(screen->availableSize() - QSize(0, kFrameHeight));
    resize(wanted);
}

}  // namespace vatchange
