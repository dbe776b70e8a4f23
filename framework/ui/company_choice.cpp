#include "framework/ui/company_choice.h"

#include <QDir>
#include <QHeaderView>
#include <QShortcut>
#include <QVBoxLayout>

#include "company/aliases.h"
#include "company/company.h"
#include "company/registration.h"
#include "data/error.h"
#include "framework/ui/add_company_dialog.h"
#include "framework/ui/demo_company_dialog.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"
#include "platform/command_line.h"
#include "platform/text_order.h"

namespace framework {

namespace {
constexpr int kNameColumn = 0;
constexpr int kFolderColumn = 1;
// In logical pixels.
constexpr int kMargin = 14;
constexpr int kWidth = 680;
constexpr int kHeight = 400;
constexpr int kButtonWidth = 96;
constexpr int kNarrowestName = 120;
constexpr int kWidestName = 320;
}  // namespace

TYritysValinta::TYritysValinta(QWidget* parent)
    : QDialog(parent),
      m_list(new QTreeWidget(this)),
      m_pages(new QStackedWidget(this)),
      m_hint(new QLabel(this)),
      m_demo(new QPushButton(QStringLiteral("Luo &esimerkkiyritys..."), this)),
      m_firstAdd(new QPushButton(QStringLiteral("&Lisää yritys..."), this)) {
    setObjectName(QStringLiteral("YritysValinta"));
    setWindowTitle(QStringLiteral("Yrityksen valinta"));

    auto* heading = new QLabel(QStringLiteral("&Valitse yritys, jonka tietoja muutetaan:"), this);
    heading->setBuddy(m_list);

    m_list->setObjectName(QStringLiteral("YritysLista"));
    m_list->setColumnCount(2);
    m_list->setHeaderLabels({QStringLiteral("Yritys"), QStringLiteral("Kansio")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setAccessibleName(QStringLiteral("Yritykset"));
    m_list->setTextElideMode(Qt::ElideMiddle);  // both ends of a path matter
    m_list->header()->setStretchLastSection(true);
    m_list->header()->setMinimumSectionSize(kNarrowestName);

    m_hint->setWordWrap(true);
    m_hint->setTextFormat(Qt::PlainText);

    m_choose = new QPushButton(QStringLiteral("V&alitse"), this);
    m_choose->setObjectName(QStringLiteral("ValitseButton"));
    m_choose->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Pe&ruuta"), this);
    cancel->setObjectName(QStringLiteral("PeruutaButton"));
    cancel->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addLayout(buildListButtons(), 1);
    for (QPushButton* button : {m_choose, cancel}) {
        button->setMinimumWidth(kButtonWidth);
        buttons->addWidget(button);
    }

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    m_pages->addWidget(m_list);
    m_pages->addWidget(buildOffer());
    column->addWidget(heading);
    column->addWidget(m_pages, 1);
    column->addLayout(buttons);
    resize(kWidth, kHeight);
    rememberPlace(*this, objectName());

    // Enter presses the default button; itemActivated would choose a second time.
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &TYritysValinta::choose);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &TYritysValinta::updateButtons);
    connect(m_choose, &QPushButton::clicked, this, &TYritysValinta::choose);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(new QShortcut(QKeySequence(Qt::Key_F5), this), &QShortcut::activated, this,
            &TYritysValinta::refresh);
    refresh();
    m_list->setFocus();
    describeByHints(*this);
}

QLayout* TYritysValinta::buildListButtons() {
    auto* row = new QHBoxLayout;
    const auto button = [&](const char* objectName, const QString& text, const QString& hint,
                            void (TYritysValinta::*pressed)()) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(QLatin1String(objectName));
        made->setToolTip(hint);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, pressed);
        row->addWidget(made);
        return made;
    };
    button("LisaaButton", QStringLiteral("L&isää..."),
           QStringLiteral("Lisää luetteloon yrityksen, jonka tietokanta on jo kansiossa"),
           &TYritysValinta::addCompany);
    button("UusiEsimerkkiButton", QStringLiteral("E&simerkki..."),
           QStringLiteral("Luo esimerkkiyrityksen, jonka tiedot ovat keksittyjä"),
           &TYritysValinta::makeDemoCompany);
    m_remove = button("PoistaButton", QStringLiteral("P&oista luettelosta"),
                      QStringLiteral("Ottaa yrityksen pois luettelosta; sen tiedostot jäävät"),
                      &TYritysValinta::removeCompany);
    button("PaivitaButton", QStringLiteral("&Päivitä (F5)"),
           QStringLiteral("Lukee luettelon uudelleen"), &TYritysValinta::refresh);
    row->addStretch();
    return row;
}

QString TYritysValinta::choice() {
    m_takesIntoUse = false;
    select(company::currentCompany().name);
    exec();
    return m_choice;
}

QString TYritysValinta::selected() const {
    return m_list->currentItem() != nullptr ? m_list->currentItem()->text(kNameColumn) : QString();
}

void TYritysValinta::select(const QString& name) {
    if (auto* row = m_list->findItems(name, Qt::MatchExactly, kNameColumn).value(0))
        m_list->setCurrentItem(row);
    m_list->setFocus();
}

bool TYritysValinta::OnParametrina() {
    for (const QString& parameter : platform::parameters()) {
        for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
            const QString name = m_list->topLevelItem(row)->text(kNameColumn);
            if (!platform::sameIgnoringAsciiCase(parameter, name))
                continue;
            m_list->setCurrentItem(m_list->topLevelItem(row));
            return company::takeIntoUse(name);
        }
    }
    return false;
}

void TYritysValinta::refresh() {
    const QString chosen = selected();
    m_list->clear();
    QString problem;
    try {
        for (const QString& name : company::companiesByUse()) {
            const auto alias = company::findAlias(name);
            auto* row = new QTreeWidgetItem(
                m_list, {name, alias ? QDir::toNativeSeparators(alias->physicalName) : QString()});
            row->setToolTip(kNameColumn, row->text(kNameColumn));
            row->setToolTip(kFolderColumn, row->text(kFolderColumn));
            if (name == chosen)
                m_list->setCurrentItem(row);
        }
    } catch (const std::exception& e) {
        problem = data::errorText(e);
    }
    if (m_list->currentItem() == nullptr && m_list->topLevelItemCount() > 0)
        m_list->setCurrentItem(m_list->topLevelItem(0));
    m_list->resizeColumnToContents(kNameColumn);
    m_list->setColumnWidth(
        kNameColumn, qBound(kNarrowestName, m_list->columnWidth(kNameColumn) + 16, kWidestName));

    const bool none = problem.isEmpty() && m_list->topLevelItemCount() == 0;
    if (none) {
        problem = QStringLiteral(
            "Yhtään yritystä ei ole vielä.\n\n"
            "Lisää yritys luetteloon valitsemalla kansio, jossa sen tietokanta on. Ohjelmaa voi "
            "myös kokeilla esimerkkiyrityksellä, jonka tiedot ovat keksittyjä.");
    }
    m_hint->setText(problem);
    m_pages->setCurrentIndex(problem.isEmpty() ? 0 : 1);
    m_demo->setVisible(none);
    m_firstAdd->setVisible(none);
    if (none)
        m_firstAdd->setFocus();
    updateButtons();
}

// Shown instead of an empty list: the reason, and buttons for a first company.
QWidget* TYritysValinta::buildOffer() {
    auto* page = new QFrame(this);
    page->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    m_demo->setObjectName(QStringLiteral("EsimerkkiButton"));
    m_demo->setAutoDefault(true);
    m_firstAdd->setObjectName(QStringLiteral("EnsimmainenButton"));
    m_firstAdd->setAutoDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_firstAdd);
    buttons->addWidget(m_demo);
    buttons->addStretch();
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(3 * kMargin, kMargin, 3 * kMargin, kMargin);
    column->addStretch();
    column->addWidget(m_hint);
    column->addSpacing(kMargin);
    column->addLayout(buttons);
    column->addStretch();
    connect(m_demo, &QPushButton::clicked, this, &TYritysValinta::makeDemoCompany);
    connect(m_firstAdd, &QPushButton::clicked, this, &TYritysValinta::addCompany);
    return page;
}

void TYritysValinta::makeDemoCompany() {
    reportErrors(this, [this] {
        DemoCompanyDialog dialog(this);
        if (dialog.exec() != QDialog::Accepted)
            return;
        refresh();
        select(dialog.madeCompany());
    });
}

void TYritysValinta::addCompany() {
    reportErrors(this, [this] {
        AddCompanyDialog dialog(this);
        if (dialog.exec() != QDialog::Accepted)
            return;
        refresh();
        select(dialog.addedCompany());
    });
}

void TYritysValinta::removeCompany() {
    const QString name = selected();
    if (name.isEmpty())
        return;
    if (name == company::currentCompany().name) {
        Dialogs::warning(this, QStringLiteral("Yritys \"%1\" on nyt käytössä. Poista se "
                                              "luettelosta, kun olet valinnut toisen yrityksen.")
                                   .arg(name));
        return;
    }
    reportErrors(this, [this, &name] {
        if (!Dialogs::ask(this, QStringLiteral("Poistetaanko yritys \"%1\" luettelosta?\r"
                                               "Sen tiedostot jäävät kansioon %2.")
                                    .arg(name, m_list->currentItem()->text(kFolderColumn))))
            return;
        company::removeAlias(name);
        refresh();
    });
}

void TYritysValinta::choose() {
    const QString name = selected();
    if (name.isEmpty())
        return;
    reportErrors(this, [this, &name] {
        if (m_takesIntoUse ? company::takeIntoUse(name) : company::findAlias(name).has_value()) {
            m_choice = name;
            accept();
            return;
        }
        Dialogs::warning(this, QStringLiteral("Yritystä \"%1\" ei enää ole.").arg(name));
        refresh();
    });
}

void TYritysValinta::updateButtons() {
    m_choose->setEnabled(m_list->currentItem() != nullptr);
    m_remove->setEnabled(m_list->currentItem() != nullptr);
}

}  // namespace framework
