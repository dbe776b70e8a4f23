#include <QGridLayout>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include "framework/ui/cut_label.h"
#include "framework/ui/dialogs.h"
#include "vatchange/form/change_form.h"

namespace vatchange {

namespace {

constexpr int kFrameHeight = 40;  // title bar and borders, approximately
constexpr int kProgressWidth = 260;
constexpr int kNameLines = 3;  // of group names, which appear below the restrictions
constexpr int kMaxStretch = 1000;

}  // namespace

QLayout* TAlvMuutosLomake::buildDefinitionBar() {
    auto* name = new QLabel(QStringLiteral("Määritte&ly"), m_content);
    name->setBuddy(LatausCombo);
    m_description = new framework::CutLabel(m_content);
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
    m_ready = new QPushButton(QStringLiteral("&Valmis määrittely..."), m_content);
    m_ready->setObjectName(QStringLiteral("ValmisMaarittely"));
    m_ready->setToolTip(QStringLiteral("Täytä lomake lakiin perustuvasta verokannan muutoksesta"));
    bar->addWidget(m_ready);
    Tulosta->setParent(m_content);
    Tulosta->hide();
    bar->addWidget(m_description, 1);
    return bar;
}

// Created in reading order, which is the tab order.
QLayout* TAlvMuutosLomake::buildGroups() {
    m_groups.restrictions = buildRestrictions(m_controls, m_content);
    m_groups.vatClasses = buildVatClasses(m_controls, m_content);
    m_groups.prices = buildPrices(m_controls, m_content);
    m_groups.options = buildOptions(m_controls, m_content);
    m_groups.rounding = buildRounding(m_controls, m_content);
    m_groups.salesOrders = buildSalesOrders(m_controls, m_content);
    m_groups.purchaseOrders = buildPurchaseOrders(m_controls, m_content);
    m_groups.logging = buildLogging(m_controls, m_content);
    m_groups.grid = new QGridLayout;
    m_groups.grid->setSpacing(kGutter);
    return m_groups.grid;
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
    m_rehearse = new QPushButton(QStringLiteral("&Koeajo..."), this);
    m_rehearse->setObjectName(QStringLiteral("Koeajo"));
    m_rehearse->setToolTip(
        QStringLiteral("Tekee muutoksen yrityksen kopiolla ja näyttää, mikä muuttuisi"));
    m_interrupt = new QPushButton(QStringLiteral("Keske&ytä"), this);
    m_interrupt->setObjectName(QStringLiteral("Keskeyta"));
    m_interrupt->setToolTip(QStringLiteral("Lopettaa muutoksen kahden rivin välissä"));
    m_interrupt->setEnabled(false);
    m_close = new QPushButton(QStringLiteral("&Sulje"), this);
    m_close->setObjectName(QStringLiteral("Sulje"));

    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(kGutter, 0, kGutter, kGutter);
    foot->setSpacing(kColumnGap);
    foot->addWidget(m_status, 1);
    m_findings = new QPushButton(this);
    m_findings->setObjectName(QStringLiteral("Huomautukset"));
    m_findings->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
    m_findings->setAccessibleDescription(QStringLiteral("Näyttää, mitä määrittelystä on huomattu"));
    m_findings->setFlat(true);
    m_findings->hide();
    foot->addWidget(m_findings);
    m_changes = new QPushButton(QStringLiteral("&Näytä muutokset..."), this);
    m_changes->setObjectName(QStringLiteral("NaytaMuutokset"));
    m_changes->setToolTip(QStringLiteral("Näytä, mitä viimeisin ajo muutti"));
    m_changes->hide();
    foot->addWidget(m_changes);
    foot->addWidget(m_progress);
    const int width = fontMetrics().horizontalAdvance(QStringLiteral("Keskeytä")) + 44;
    for (QPushButton* button : {m_rehearse, Esikatsele, m_interrupt, m_close}) {
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
    m_pinned = new QVBoxLayout;  // for the VAT classes of a narrow window
    m_pinned->setContentsMargins(kGutter, 0, kGutter, 0);
    window->addLayout(m_pinned);
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
    arrangeGroups(false);
    m_wideFrom = m_content->minimumSizeHint().width();
    setTabOrder(Esikatsele, m_interrupt);
    setTabOrder(m_interrupt, m_close);
    LatausCombo->setFocus();
    framework::describeByHints(*this);
}

void TAlvMuutosLomake::fitToScreen() {
    // The size hint of a scroll area is small; open at the size of the content, up to the screen's.
    const QSize content = m_content->sizeHint();
    const int names = kNameLines * (fontMetrics().lineSpacing() + kRowGap);
    QSize wanted(content.width(),
                 content.height() + names + 2 * kGutter + m_close->sizeHint().height());
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        wanted = wanted.boundedTo(screen->availableSize() - QSize(0, kFrameHeight));
    resize(wanted);
}

}  // namespace vatchange
