#include "search/search_controls.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

#include "framework/ui/cut_label.h"
#include "framework/ui/dialogs.h"

namespace search {

namespace {

constexpr int kIconSize = 16;
constexpr int kCompletionDelayMs = 2000;

template <class Widget, class... Arguments>
Widget* make(const char* name, Arguments... arguments) {
    auto* made = new Widget(arguments...);
    made->setObjectName(QLatin1String(name));
    return made;
}

// The style's own icons are dark lines, invisible in a dark window.
QIcon inTextColours(const QIcon& icon, const QWidget& widget) {
    QIcon coloured;
    const auto add = [&](QIcon::Mode mode, QPalette::ColorGroup group) {
        QPixmap shape = icon.pixmap(QSize(kIconSize, kIconSize), widget.devicePixelRatioF());
        QPainter painter(&shape);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(QRect(QPoint(0, 0), shape.deviceIndependentSize().toSize()),
                         widget.palette().color(group, QPalette::ButtonText));
        painter.end();
        coloured.addPixmap(shape, mode);
    };
    add(QIcon::Normal, QPalette::Active);
    add(QIcon::Disabled, QPalette::Disabled);
    return coloured;
}

}  // namespace

SearchControls::SearchControls(QDialog& window) {
    create(window);
    arrange(window);
    createMenu(window);
    framework::describeByHints(window);
}

void SearchControls::create(QDialog& window) {
    IndexCombo = make<QComboBox>("IndexCombo", &window);
    IndexCombo->setAccessibleName(QStringLiteral("Järjestys"));
    IndexCombo->setToolTip(QStringLiteral(
        "Valitse hakuavain eli järjestys. Numeronäppämistön + ja - muuttavat indeksiä"));
    SearchEdit = make<QLineEdit>("SearchEdit", &window);
    SearchEdit->setAccessibleName(QStringLiteral("Haku"));
    SearchEdit->setToolTip(QStringLiteral("Tässä voidaan hakea hakuavainten perusteella"));
    Suodatin = make<TAlkuMerkkiEdit>("Suodatin", &window);
    Suodatin->setAccessibleName(QStringLiteral("Hakuteksti"));
    Suodatin->setToolTip(
        QStringLiteral("Kirjoita hakuteksti ja vedä ruudusta haluamaasi kenttään"));
    AlueRajaus = make<QCheckBox>("AlueRajaus", QStringLiteral("Käytä aluerajausta"), &window);
    AlueRajaus->setToolTip(QStringLiteral(
        "Enter hakutekstissä rajaa rivit hakuavaimen ensimmäisen kentän mukaan:\n"
        "tekstikentässä hakutekstillä alkaviin, päiväyksessä ja numerossa samaan arvoon"));
    Passiiviset =
        make<QCheckBox>("Passiiviset", QStringLiteral("Näytä myös passiiviset "), &window);
    Jatahakuauki = make<QCheckBox>("Jatahakuauki", QStringLiteral("Jätä haku auki"), &window);
    Jatahakuauki->setToolTip(QStringLiteral("Tuplaklikkaus ei sulje hakuikkunaa"));
    HakuLabel = make<QLabel>("HakuLabel", QStringLiteral("HAKU KÄYNNISSÄ"), &window);
    HakuLabel->setStyleSheet(
        QStringLiteral("background: #C62828; color: white; font-weight: bold; "
                       "padding: 1px 8px"));
    HakuLabel->hide();
    DBGrid1 = make<SearchGrid>("DBGrid1", &window);
    DBGrid1->setAccessibleName(QStringLiteral("Rivit"));
    Timer = make<QTimer>("Timer", &window);
    Timer->setInterval(kCompletionDelayMs);
    createNavigator(window);
    TilaLabel = make<framework::CutLabel>("TilaLabel", &window);
    RiviLabel = make<QLabel>("RiviLabel", &window);
    EhtoLabel = make<framework::CutLabel>("EhtoLabel", &window);
    EhtoLabel->setTextFormat(Qt::PlainText);
    EhtoLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    SelitysLabel = make<QLabel>("SelitysLabel", &window);
    SelitysLabel->hide();
    const auto button = [&](const char* name, const QString& text) {
        auto* made = make<QPushButton>(name, text, &window);
        made->setAutoDefault(false);
        return made;
    };
    PoistaRajaus = button("PoistaRajaus", QStringLiteral("&Poista rajaus"));
    PoistaRajaus->setToolTip(QStringLiteral("Näytetään taas kaikki rivit"));
    Valitse = button("Valitse", QStringLiteral("&Valitse"));
    Valitse->setToolTip(QStringLiteral("Valitsee rivin, kuten tuplaklikkaus"));
}

void SearchControls::createNavigator(QDialog& window) {
    DBNavigator1 = make<QToolBar>("DBNavigator1", &window);
    DBNavigator1->setIconSize({kIconSize, kIconSize});
    const auto add = [&](const char* name, QStyle::StandardPixmap icon, const QString& tip) {
        QAction* action =
            DBNavigator1->addAction(inTextColours(window.style()->standardIcon(icon), window), tip);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    nbFirst = add("nbFirst", QStyle::SP_MediaSkipBackward, QStringLiteral("Ensimmäinen"));
    nbPrior = add("nbPrior", QStyle::SP_MediaSeekBackward, QStringLiteral("Edellinen"));
    nbNext = add("nbNext", QStyle::SP_MediaSeekForward, QStringLiteral("Seuraava"));
    nbLast = add("nbLast", QStyle::SP_MediaSkipForward, QStringLiteral("Viimeinen"));
    nbRefresh = add("nbRefresh", QStyle::SP_BrowserReload, QStringLiteral("Päivitä"));
}

void SearchControls::arrange(QDialog& window) {
    const auto label = [&](const QString& text, QWidget* buddy) {
        auto* made = new QLabel(text, &window);
        made->setBuddy(buddy);
        return made;
    };
    auto* top = new QGridLayout;
    top->setHorizontalSpacing(8);
    top->setVerticalSpacing(4);
    const std::pair<QString, QWidget*> edits[] = {{QStringLiteral("Järjestys"), IndexCombo},
                                                  {QStringLiteral("Haku"), SearchEdit},
                                                  {QStringLiteral("Hakuteksti"), Suodatin}};
    for (int column = 0; const auto& [caption, edit] : edits) {
        top->addWidget(label(caption, edit), 0, column);
        top->addWidget(edit, 1, column);
        top->setColumnStretch(column++, 1);
    }
    auto* choices = new QHBoxLayout;
    choices->setSpacing(16);
    choices->addWidget(AlueRajaus);
    choices->addWidget(Passiiviset);
    choices->addWidget(Jatahakuauki);
    choices->addStretch();
    choices->addWidget(HakuLabel);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(DBNavigator1);
    bottom->addWidget(TilaLabel, 1);
    bottom->addWidget(RiviLabel);
    bottom->addSpacing(8);
    bottom->addWidget(Valitse);
    auto* restriction = new QHBoxLayout;
    restriction->addWidget(EhtoLabel, 1);
    restriction->addWidget(PoistaRajaus);
    restriction->addWidget(SelitysLabel);
    auto* column = new QVBoxLayout(&window);
    column->setContentsMargins(8, 8, 8, 6);
    column->setSpacing(6);
    column->addLayout(top);
    column->addLayout(choices);
    column->addWidget(DBGrid1, 1);
    column->addLayout(restriction);
    column->addLayout(bottom);
    QWidget* before = IndexCombo;
    for (QWidget* next : {static_cast<QWidget*>(SearchEdit), static_cast<QWidget*>(Suodatin),
                          static_cast<QWidget*>(AlueRajaus), static_cast<QWidget*>(Passiiviset),
                          static_cast<QWidget*>(Jatahakuauki), static_cast<QWidget*>(DBGrid1),
                          static_cast<QWidget*>(PoistaRajaus), static_cast<QWidget*>(Valitse)}) {
        QWidget::setTabOrder(before, next);
        before = next;
    }
}

void SearchControls::createMenu(QDialog& window) {
    Tallenna = make<QAction>("Tallenna", QStringLiteral("Tallenna kentät"), &window);
    Tallennakorkeus = make<QAction>("Tallennakorkeus", QStringLiteral("Tallenna korkeus"), &window);
    Sarakkeet = make<QAction>("Sarakkeet", QStringLiteral("Sarakkeet..."), &window);
    DBGrid1->addActions({Sarakkeet, Tallenna, Tallennakorkeus});
    DBGrid1->setContextMenuPolicy(Qt::ActionsContextMenu);
    DBGrid1->horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
}

}  // namespace search
