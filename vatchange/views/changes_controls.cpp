#include "vatchange/views/changes_controls.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "framework/ui/dialogs.h"

namespace vatchange {

namespace {

constexpr int kFindingsInRow = 6;
constexpr int kSpace = 8;
constexpr int kCardMargin = 8;

template <class Widget, class... Arguments>
Widget* make(const char* name, Arguments... arguments) {
    auto* made = new Widget(arguments...);
    made->setObjectName(QLatin1String(name));
    return made;
}

QFont scaled(QFont font, double factor, bool bold) {
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(bold);
    return font;
}

QGroupBox* boxed(const QString& title, QWidget* content, QWidget* window) {
    auto* box = new QGroupBox(title, window);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(kCardMargin, 2, kCardMargin, kCardMargin);
    column->addWidget(content);
    return box;
}

}  // namespace

ChangesControls::ChangesControls(QDialog& window) {
    create(window);
    m_findings = new QGridLayout;
    m_findings->setSpacing(4);
    auto* heading = new QHBoxLayout;
    heading->addWidget(title);
    heading->addStretch();
    heading->addWidget(company);
    auto* looks = new QHBoxLayout;
    looks->setSpacing(kSpace);
    m_findings->addWidget(findingsLabel, 0, 0);
    looks->addLayout(m_findings);
    looks->addStretch();
    auto* column = new QVBoxLayout(&window);
    column->setContentsMargins(10, 8, 10, 8);
    column->setSpacing(6);
    column->addLayout(heading);
    column->addLayout(cards(window));
    column->addLayout(overview(window));
    column->addLayout(looks);
    column->addLayout(filters(window));
    column->addWidget(grid, 1);
    column->addLayout(bottom());
    arrangeFindings();
    QWidget* before = summary;
    const auto follow = [&before](QWidget* next) {
        QWidget::setTabOrder(before, next);
        before = next;
    };
    for (QPushButton* button : finding)
        follow(button);
    for (QWidget* next : std::initializer_list<QWidget*>{search, table, level, order, clear, grid,
                                                         spreadsheet, priceList, pdf, undo, close})
        follow(next);
    framework::describeByHints(window);
}

void ChangesControls::create(QDialog& window) {
    title = make<QLabel>("Otsikko", &window);
    title->setTextFormat(Qt::PlainText);
    title->setFont(scaled(title->font(), 1.25, true));
    company = make<QLabel>("Yritys", &window);
    company->setTextFormat(Qt::PlainText);
    summary = make<QTreeWidget>("Yhteenveto", &window);
    summary->setAccessibleName(QStringLiteral("Muutokset tauluittain ja hintatasoittain"));
    summary->setToolTip(QStringLiteral(
        "Muuttuneet tietueet tauluittain; hinnoista kappaleet ja muutos keskimäärin.\n"
        "Enter tai tuplaklikkaus rajaa luettelon riviin"));
    summary->setRootIsDecorated(false);
    summary->setUniformRowHeights(true);
    summary->setColumnCount(3);
    summary->setHeaderLabels(
        {QStringLiteral("Taulu ja taso"), QStringLiteral("Muuttui"), QStringLiteral("Keskim. %")});
    summary->headerItem()->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    summary->headerItem()->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    summary->header()->setStretchLastSection(false);
    summary->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    summary->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    summary->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    spread = make<ChartWidget>("Jakauma", &window);
    spread->setAccessibleName(QStringLiteral("Hintojen muutosten jakauma"));
    endings = make<ChartWidget>("Paatteet", &window);
    endings->setAccessibleName(QStringLiteral("Hintojen päätteet ennen ja jälkeen"));
    findingsLabel = make<QLabel>("KatsottavaaLabel", &window);
    for (int i = 0; i < kChangeFindings; ++i) {
        const auto kind = static_cast<ChangeFinding>(i);
        auto* button = make<QPushButton>("Havainto", &window);
        button->setObjectName(QStringLiteral("Havainto%1").arg(i));
        button->setCheckable(true);
        button->setAutoDefault(false);
        button->setToolTip(findingHint(kind) + QStringLiteral(".\nPainettuna luettelossa on vain "
                                                              "valitut havainnot"));
        button->hide();
        finding[static_cast<size_t>(i)] = button;
    }
    search = make<QLineEdit>("Haku", &window);
    search->setClearButtonEnabled(true);
    search->setAccessibleName(QStringLiteral("Haku"));
    search->setToolTip(QStringLiteral(
        "Sanat, jotka ovat tuotenumerossa, nimessä, avaimessa tai kentän nimessä (Ctrl+F).\n"
        "Nuoli alas siirtyy luetteloon"));
    const auto combo = [&window](const char* name, const QString& accessible, const QString& hint) {
        auto* made = make<QComboBox>(name, &window);
        made->setAccessibleName(accessible);
        made->setToolTip(hint);
        made->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        return made;
    };
    table = combo("Taulu", QStringLiteral("Taulu"), QStringLiteral("Näytettävä taulu"));
    level = combo("Taso", QStringLiteral("Taso"), QStringLiteral("Näytettävä hintataso"));
    order = combo("Jarjestys", QStringLiteral("Järjestys"),
                  QStringLiteral("Rivien järjestys, kuten otsikon klikkaus"));
    clear = make<QPushButton>("PoistaRajaus", QStringLiteral("&Poista rajaus"), &window);
    clear->setAutoDefault(false);
    clear->setToolTip(QStringLiteral("Näytetään taas kaikki rivit"));
    rows = make<QLabel>("RiviLabel", &window);
    grid = make<search::SearchGrid>("Rivit", &window);
    grid->setAccessibleName(QStringLiteral("Muutokset"));
    status = make<QLabel>("Tila", &window);
    status->setTextFormat(Qt::PlainText);
    status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    progress = make<QProgressBar>("Edistyminen", &window);
    progress->setAccessibleName(QStringLiteral("Edistyminen"));
    progress->setRange(0, 1000);
    progress->setMaximumWidth(14 * progress->fontMetrics().height());
    progress->hide();
    const auto button = [&window](const char* name, const QString& text, const QString& hint) {
        auto* made = make<QPushButton>(name, text, &window);
        made->setAutoDefault(false);
        made->setToolTip(hint);
        return made;
    };
    spreadsheet = button("VieCsv", QStringLiteral("&Vie taulukkoon..."),
                         QStringLiteral("Näkyvät rivit CSV-tiedostoon taulukkolaskentaa varten"));
    priceList = button("Hinnasto", QStringLiteral("&Hinnasto..."),
                       QStringLiteral("Muuttuneet hinnat tiedostoon etikettejä, kassoja ja "
                                      "verkkokauppaa varten"));
    pdf = button("Pdf", QStringLiteral("PDF-&raportti..."),
                 QStringLiteral("Ajon raportti PDF-tiedostoon"));
    undo = button("PeruValitut", QStringLiteral("Peru va&litut..."),
                  QStringLiteral("Palauttaa valittujen rivien tietueet siksi, mitä ne olivat ennen "
                                 "ajoa"));
    close = button("Sulje", QStringLiteral("&Sulje"), QStringLiteral("Sulkee ikkunan (Esc)"));
}

QLayout* ChangesControls::cards(QDialog& window) {
    auto* row = new QHBoxLayout;
    row->setSpacing(kSpace);
    const auto card = [&](const char* name, Card& made, const QString& caption) {
        auto* frame = new QFrame(&window);
        frame->setFrameShape(QFrame::StyledPanel);
        frame->setAutoFillBackground(true);
        frame->setBackgroundRole(QPalette::Base);
        made.value = make<QLabel>(name, frame);
        made.value->setFont(scaled(made.value->font(), 1.5, true));
        made.value->setForegroundRole(QPalette::Text);
        made.caption = new QLabel(caption, frame);
        made.caption->setForegroundRole(QPalette::Text);
        for (QLabel* label : {made.value, made.caption})
            label->setBackgroundRole(QPalette::Base);
        auto* line = new QHBoxLayout(frame);
        line->setContentsMargins(12, 4, 12, 4);
        line->setSpacing(10);
        line->addWidget(made.value);
        line->addWidget(made.caption, 1);
        row->addWidget(frame, 1);
    };
    card("Tuotteita", products, QStringLiteral("tuotteen hinta muuttui"));
    card("Hintoja", prices, QStringLiteral("hintaa muuttui"));
    card("Keskimaarin", mean, QStringLiteral("keskimäärin"));
    card("Katsottavaa", findings, QStringLiteral("havaintoa"));
    return row;
}

QLayout* ChangesControls::overview(QDialog& window) {
    auto* row = new QHBoxLayout;
    row->setSpacing(kSpace);
    row->addWidget(boxed(QStringLiteral("Yhteenveto"), summary, &window), 10);
    row->addWidget(boxed(QStringLiteral("Hintojen muutokset"), spread, &window), 13);
    row->addWidget(boxed(QStringLiteral("Hintojen päätteet"), endings, &window), 13);
    summary->setFixedHeight(spread->sizeHint().height());
    spread->setFixedHeight(spread->sizeHint().height());
    endings->setFixedHeight(spread->sizeHint().height());
    return row;
}

QLayout* ChangesControls::filters(QDialog& window) {
    auto* row = new QHBoxLayout;
    row->setSpacing(kSpace);
    const auto add = [&](const QString& caption, QWidget* widget, int stretch) {
        auto* label = new QLabel(caption, &window);
        label->setBuddy(widget);
        row->addWidget(label);
        row->addWidget(widget, stretch);
    };
    add(QStringLiteral("Ha&ku"), search, 1);
    add(QStringLiteral("&Taulu"), table, 0);
    add(QStringLiteral("Tas&o"), level, 0);
    add(QStringLiteral("&Järjestys"), order, 0);
    row->addWidget(clear);
    row->addWidget(rows);
    return row;
}

QLayout* ChangesControls::bottom() {
    auto* row = new QHBoxLayout;
    row->setSpacing(kSpace);
    for (QPushButton* button : {spreadsheet, priceList, pdf, undo})
        row->addWidget(button);
    row->addSpacing(kSpace);
    row->addWidget(status, 1);
    row->addWidget(progress);
    row->addWidget(close);
    return row;
}

void ChangesControls::arrangeFindings() {
    int place = 0;
    for (QPushButton* button : finding) {
        m_findings->removeWidget(button);
        if (button->isHidden())
            continue;
        m_findings->addWidget(button, place / kFindingsInRow, 1 + place % kFindingsInRow);
        ++place;
    }
}

}  // namespace vatchange
