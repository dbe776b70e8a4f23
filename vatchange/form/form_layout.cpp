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

    auto* left = new QVBoxLayout;
    left->addWidget(buildRestrictions(m_controls, m_content), 1);
    left->addWidget(buildVatClasses(m_controls, m_content));
    auto* middle = new QVBoxLayout;
    middle->addWidget(buildPrices(m_controls, m_content), 1);
    auto* right = new QVBoxLayout;
    right->addWidget(buildOptions(m_controls, m_content));
    right->addWidget(buildSalesOrders(m_controls, m_content));
    right->addWidget(buildPurchaseOrders(m_controls, m_content));
    buildRounding(m_controls, m_content);
    right->addWidget(m_controls.roundingRule);
    right->addWidget(m_controls.roundingStep);
    right->addWidget(buildLogging(m_controls, m_content));
    right->addStretch();

    auto* columns = new QHBoxLayout;
    columns->setSpacing(kMargin);
    columns->addLayout(left, 1);
    columns->addLayout(middle);
    columns->addLayout(right);
    auto* body = new QVBoxLayout(m_content);
    body->setContentsMargins(kMargin, kMargin, kMargin, 0);
    body->addLayout(top);
    body->addLayout(columns, 1);
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

    setTabOrder(m_controls.leaveWebShop, Esikatsele);
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
