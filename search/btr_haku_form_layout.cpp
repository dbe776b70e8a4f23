#include <QAction>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <set>

#include "app/company/company.h"
#include "framework/ui/close_deferral.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"
#include "search/btr_haku_form.h"
#include "search/search_grid.h"
#include "search/table_model.h"

// The controls of the generic search window, and its layout in "FORMS.INI".

namespace search {

namespace {

constexpr int kDefaultWidth = 640;
constexpr int kDefaultHeight = 480;
constexpr int kNarrowestColumn = 40;
constexpr int kWidestColumn = 260;
constexpr int kIconSize = 16;
constexpr int kSmallestWindow = 120;  // a saved size below this is not taken

const QString kColumnCount = QStringLiteral("Sarakkeita");

QString columnKey(int place) {
    return QStringLiteral("Sarake") + QString::number(place);
}

QString widthKey(const QString& field) {
    return QStringLiteral("W_") + field;
}

std::optional<int> numberOf(const company::IniFile& file, const QString& section,
                            const QString& key) {
    bool isNumber = false;
    const int number = file.value(section, key).value_or(QString()).trimmed().toInt(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

// The style's own icons are dark lines that a dark window would swallow.
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

QString formsIni() {
    return company::dataFolderFile(QStringLiteral("FORMS.INI"));
}

}  // namespace

void TBtrHakuForm::buildControls() {
    setWindowTitle(QStringLiteral("Tuotteiden selailu"));
    setWindowFlags(windowFlags() | Qt::WindowMinMaxButtonsHint);
    resize(kDefaultWidth, kDefaultHeight);

    IndexCombo = new QComboBox(this);
    IndexCombo->setObjectName(QStringLiteral("IndexCombo"));
    IndexCombo->setAccessibleName(QStringLiteral("Järjestys"));
    IndexCombo->setToolTip(QStringLiteral(
        "Valitse hakuavain eli järjestys. Numeronäppämistön + ja - muuttavat indeksiä"));
    SearchEdit = new QLineEdit(this);
    SearchEdit->setObjectName(QStringLiteral("SearchEdit"));
    SearchEdit->setAccessibleName(QStringLiteral("Haku"));
    SearchEdit->setToolTip(QStringLiteral("Tässä voidaan hakea hakuavainten perusteella"));
    Suodatin = new TAlkuMerkkiEdit(this);
    Suodatin->setObjectName(QStringLiteral("Suodatin"));
    Suodatin->setAccessibleName(QStringLiteral("Hakuteksti"));
    Suodatin->setToolTip(
        QStringLiteral("Kirjoita hakuteksti ja vedä ruudusta haluamaasi kenttään"));
    AlueRajaus = new QCheckBox(QStringLiteral("Käytä aluerajausta"), this);
    AlueRajaus->setObjectName(QStringLiteral("AlueRajaus"));
    AlueRajaus->setToolTip(QStringLiteral(
        "Enter hakutekstissä rajaa rivit hakuavaimen ensimmäisen kentän mukaan:\n"
        "tekstikentässä hakutekstillä alkaviin, päiväyksessä ja numerossa samaan arvoon"));
    Passiiviset = new QCheckBox(QStringLiteral("Näytä myös passiiviset "), this);
    Passiiviset->setObjectName(QStringLiteral("Passiiviset"));
    Jatahakuauki = new QCheckBox(QStringLiteral("Jätä haku auki"), this);
    Jatahakuauki->setObjectName(QStringLiteral("Jatahakuauki"));
    Jatahakuauki->setToolTip(QStringLiteral("Tuplaklikkaus ei sulje hakuikkunaa"));
    HakuLabel = new QLabel(QStringLiteral("HAKU KÄYNNISSÄ"), this);
    HakuLabel->setObjectName(QStringLiteral("HakuLabel"));
    HakuLabel->setStyleSheet(
        QStringLiteral("background: #C62828; color: white; font-weight: bold; "
                       "padding: 1px 8px"));
    HakuLabel->hide();
    DBGrid1 = new SearchGrid(this);
    DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
    DBGrid1->setAccessibleName(QStringLiteral("Rivit"));
    Timer = new QTimer(this);
    Timer->setObjectName(QStringLiteral("Timer"));
    Timer->setInterval(2000);
    buildNavigator();
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("RiviLabel"));
    m_condition = new QLabel(this);
    m_condition->setObjectName(QStringLiteral("EhtoLabel"));
    m_condition->setTextFormat(Qt::PlainText);
    m_condition->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    const auto label = [this](const QString& text, QWidget* buddy) {
        auto* made = new QLabel(text, this);
        made->setBuddy(buddy);
        return made;
    };
    auto* top = new QGridLayout;
    top->setHorizontalSpacing(8);
    top->setVerticalSpacing(4);
    top->addWidget(label(QStringLiteral("Järjestys"), IndexCombo), 0, 0);
    top->addWidget(IndexCombo, 1, 0);
    top->addWidget(label(QStringLiteral("Haku"), SearchEdit), 0, 1);
    top->addWidget(SearchEdit, 1, 1);
    top->addWidget(label(QStringLiteral("Hakuteksti"), Suodatin), 0, 2);
    top->addWidget(Suodatin, 1, 2);
    top->setColumnStretch(0, 2);
    top->setColumnStretch(1, 2);
    top->setColumnStretch(2, 2);
    auto* choices = new QHBoxLayout;
    choices->setSpacing(16);
    choices->addWidget(AlueRajaus);
    choices->addWidget(Passiiviset);
    choices->addWidget(Jatahakuauki);
    choices->addStretch();
    choices->addWidget(HakuLabel);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(DBNavigator1);
    bottom->addWidget(m_condition, 1);
    bottom->addWidget(m_count);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 6);
    column->setSpacing(6);
    column->addLayout(top);
    column->addLayout(choices);
    column->addWidget(DBGrid1, 1);
    column->addLayout(bottom);
    setTabOrder(IndexCombo, SearchEdit);
    setTabOrder(SearchEdit, Suodatin);
    setTabOrder(Suodatin, AlueRajaus);
    setTabOrder(AlueRajaus, Passiiviset);
    setTabOrder(Passiiviset, Jatahakuauki);
    setTabOrder(Jatahakuauki, DBGrid1);
    buildMenu();
    framework::describeByHints(*this);
}

void TBtrHakuForm::buildNavigator() {
    DBNavigator1 = new QToolBar(this);
    DBNavigator1->setObjectName(QStringLiteral("DBNavigator1"));
    DBNavigator1->setIconSize({kIconSize, kIconSize});
    const auto add = [this](QStyle::StandardPixmap icon, const QString& name, const QString& tip,
                            auto&& work) {
        QAction* action =
            DBNavigator1->addAction(inTextColours(style()->standardIcon(icon), *this), tip);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, work);
        return action;
    };
    m_first = add(QStyle::SP_MediaSkipBackward, QStringLiteral("nbFirst"),
                  QStringLiteral("Ensimmäinen"), [this] { guarded([this] { goToRow(0); }); });
    m_prior =
        add(QStyle::SP_MediaSeekBackward, QStringLiteral("nbPrior"), QStringLiteral("Edellinen"),
            [this] { guarded([this] { goToRow(DBGrid1->currentIndex().row() - 1); }); });
    m_next = add(QStyle::SP_MediaSeekForward, QStringLiteral("nbNext"), QStringLiteral("Seuraava"),
                 [this] { guarded([this] { goToRow(DBGrid1->currentIndex().row() + 1); }); });
    m_last = add(QStyle::SP_MediaSkipForward, QStringLiteral("nbLast"), QStringLiteral("Viimeinen"),
                 [this] { guarded([this] { goToRow(m_model->lastRow()); }); });
    add(QStyle::SP_BrowserReload, QStringLiteral("nbRefresh"), QStringLiteral("Päivitä"),
        [this] { guarded([this] { refreshRows(true); }); });
}

void TBtrHakuForm::buildMenu() {
    Tallenna = new QAction(QStringLiteral("Tallenna kentät"), this);
    Tallenna->setObjectName(QStringLiteral("Tallenna"));
    Tallennakorkeus = new QAction(QStringLiteral("Tallenna korkeus"), this);
    Tallennakorkeus->setObjectName(QStringLiteral("Tallennakorkeus"));
    connect(Tallenna, &QAction::triggered, this, &TBtrHakuForm::TallennaClick);
    connect(Tallennakorkeus, &QAction::triggered, this, &TBtrHakuForm::TallennaClick);
    DBGrid1->addActions({Tallenna, Tallennakorkeus});
    DBGrid1->setContextMenuPolicy(Qt::ActionsContextMenu);
    DBGrid1->horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(DBGrid1->horizontalHeader(), &QWidget::customContextMenuRequested, this,
            &TBtrHakuForm::columnMenu);
}

// The menu of the column titles: which columns are shown.
void TBtrHakuForm::columnMenu(const QPoint& place) {
    QMenu menu(this);
    for (int i = 0; i < m_model->columnCount(); ++i) {
        const GridColumn& column = m_model->column(i);
        if (!columnAllowed(column.field))
            continue;
        QAction* action = menu.addAction(column.title.isEmpty() ? column.field : column.title);
        action->setCheckable(true);
        action->setChecked(!DBGrid1->isColumnHidden(i));
        connect(action, &QAction::toggled, this, [this, i](bool on) {
            const int shown =
                DBGrid1->model()->columnCount() - DBGrid1->horizontalHeader()->hiddenSectionCount();
            if (on || shown > 1)  // a grid without columns could not be clicked any more
                DBGrid1->setColumnHidden(i, !on);
        });
    }
    menu.addSeparator();
    menu.addAction(Tallenna);
    menu.addAction(Tallennakorkeus);
    const framework::CloseDeferral deferral(this);
    menu.exec(DBGrid1->horizontalHeader()->mapToGlobal(place));
}

// --- layout

// The columns in the saved order; those that the layout does not list follow, hidden.
void TBtrHakuForm::buildColumns(const company::IniFile& file) {
    const QString section = objectName();
    std::vector<GridColumn> columns = defaultColumns();
    const int saved = numberOf(file, section, kColumnCount).value_or(0);
    if (saved > 0) {
        std::vector<GridColumn> ordered;
        std::set<QString> taken;
        for (int i = 0; i < std::min(saved, static_cast<int>(columns.size())); ++i) {
            const QString name =
                file.value(section, columnKey(i)).value_or(QString()).toCaseFolded();
            const auto found = std::find_if(
                columns.begin(), columns.end(),
                [&name](const GridColumn& column) { return column.field.toCaseFolded() == name; });
            if (found == columns.end() || !taken.insert(name).second)
                continue;
            ordered.push_back(*found);
            ordered.back().visible = true;
        }
        if (!ordered.empty()) {
            for (GridColumn& column : columns) {
                if (taken.contains(column.field.toCaseFolded()))
                    continue;
                ordered.push_back(std::move(column));
                ordered.back().visible = false;
            }
            columns = std::move(ordered);
        }
    }
    for (GridColumn& column : columns) {
        if (const auto width = numberOf(file, section, widthKey(column.field)); width > 0)
            column.width = *width;
    }
    m_model->setColumns(std::move(columns));
}

void TBtrHakuForm::applyHeader() {
    const QFontMetrics metrics(DBGrid1->font());
    const int digit = metrics.horizontalAdvance(QLatin1Char('0'));
    for (int i = 0; i < m_model->columnCount(); ++i) {
        const GridColumn& column = m_model->column(i);
        int width = column.width;
        if (width <= 0) {
            const data::TField* field = Hakutable->findField(column.field);
            const bool isText = field != nullptr && field->kind() == data::Kind::String;
            const int characters = column.text ? 14 : (isText ? field->size() : 9);
            const QString& title = column.title.isEmpty() ? column.field : column.title;
            width = std::clamp(std::max(characters * digit, metrics.horizontalAdvance(title)) + 14,
                               kNarrowestColumn, kWidestColumn);
        }
        DBGrid1->setColumnHidden(i, !column.visible || !columnAllowed(column.field));
        DBGrid1->horizontalHeader()->resizeSection(i, width);
    }
}

void TBtrHakuForm::Lataus() {
    const company::IniFile file = company::IniFile::read(formsIni());
    const QString section = objectName();
    loadExtra(file, section);
    buildColumns(file);
    applyHeader();
    const int width = numberOf(file, section, QStringLiteral("LomakeLeveys")).value_or(0);
    const int height = numberOf(file, section, QStringLiteral("LomakeKorkeus")).value_or(0);
    // Where the window stood is the person's own; a saved layout gives the size.
    framework::rememberPlace(*this, section);
    resize(width >= kSmallestWindow ? width : this->width(),
           height >= kSmallestWindow ? height : this->height());
    if (const auto place = numberOf(file, section, QStringLiteral("Lajittelu"));
        place >= 0 && place < IndexCombo->count())
        IndexCombo->setCurrentIndex(*place);
}

void TBtrHakuForm::Tallennus(bool withHeight) {
    company::IniFile file = company::IniFile::read(formsIni());
    const QString section = objectName();
    const QHeaderView* header = DBGrid1->horizontalHeader();
    int count = 0;
    for (int visual = 0; visual < header->count(); ++visual) {
        const int i = header->logicalIndex(visual);
        const GridColumn& column = m_model->column(i);
        // A column that is only not allowed now keeps its place in the layout.
        const bool kept =
            columnAllowed(column.field) ? !DBGrid1->isColumnHidden(i) : column.visible;
        if (!kept)
            continue;
        const int width = header->sectionSize(i) > 0 ? header->sectionSize(i) : column.width;
        if (width > 0)
            file.setValue(section, widthKey(column.field), QString::number(width));
        file.setValue(section, columnKey(count++), column.field);
    }
    const int before = numberOf(file, section, kColumnCount).value_or(0);
    constexpr int kMostColumns = 10000;  // a damaged number is no reason to loop
    for (int i = count; i < std::min(before, kMostColumns); ++i)
        file.removeKey(section, columnKey(i));
    file.setValue(section, kColumnCount, QString::number(count));
    file.setValue(section, QStringLiteral("Lomakeleveys"), QString::number(width()));
    file.setValue(section, QStringLiteral("Lajittelu"),
                  QString::number(std::max(IndexCombo->currentIndex(), 0)));
    if (withHeight)
        file.setValue(section, QStringLiteral("LomakeKorkeus"), QString::number(height()));
    saveExtra(file, section);
    file.write(formsIni());
}

void TBtrHakuForm::TallennaClick() {
    const bool withHeight = sender() == Tallennakorkeus;
    guarded([this, withHeight] { Tallennus(withHeight); });
}

}  // namespace search
