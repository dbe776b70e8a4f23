#include "framework/ui/definition_window.h"

#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

#include "data/error.h"
#include "framework/core/definition_store.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"

namespace framework {

namespace {
constexpr int kNameColumn = 0;
constexpr int kDescriptionColumn = 1;
constexpr int kDescriptionRole = Qt::UserRole;  // the column may show an error instead
constexpr int kMargin = 14;
constexpr int kButtonWidth = 96;
}  // namespace

TRapMaarForm::TRapMaarForm(DefinitionOwner& form, QWidget* parent)
    : QDialog(parent),
      m_form(form),
      m_list(new QTreeWidget(this)),
      m_name(new QLineEdit(this)),
      m_description(new QLineEdit(this)),
      m_remove(new QPushButton(QStringLiteral("P&oista"), this)) {
    setObjectName(QStringLiteral("RapMaarForm"));
    setWindowTitle(QStringLiteral("Määritysarvojen talletus"));

    m_name->setObjectName(QStringLiteral("NimiEdit"));
    m_description->setObjectName(QStringLiteral("SeliteEdit"));
    auto* fields = new QFormLayout;
    fields->addRow(QStringLiteral("&Nimi"), m_name);
    fields->addRow(QStringLiteral("&Selite"), m_description);

    m_list->setObjectName(QStringLiteral("MaaritysLista"));
    m_list->setAccessibleName(QStringLiteral("Talletetut määritykset"));
    m_list->setHeaderLabels({QStringLiteral("Nimi"), QStringLiteral("Selite")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    auto* listLabel = new QLabel(QStringLiteral("Talletetut &määritykset"), this);
    listLabel->setBuddy(m_list);

    auto* store = new QPushButton(QStringLiteral("&Talleta"), this);
    store->setObjectName(QStringLiteral("TalletaButton"));
    store->setDefault(true);
    m_remove->setObjectName(QStringLiteral("PoistaButton"));
    m_remove->setAutoDefault(false);
    auto* cancel = new QPushButton(QStringLiteral("Pe&ruuta"), this);
    cancel->setObjectName(QStringLiteral("PeruutaButton"));
    cancel->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_remove);
    buttons->addStretch();
    buttons->addWidget(store);
    buttons->addWidget(cancel);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    column->addLayout(fields);
    column->addWidget(listLabel);
    column->addWidget(m_list, 1);
    column->addLayout(buttons);
    for (QPushButton* button : {m_remove, store, cancel})
        button->setMinimumWidth(kButtonWidth);
    resize(560, 400);
    rememberPlace(*this, objectName());

    connect(m_list, &QTreeWidget::itemClicked, this, &TRapMaarForm::pick);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            [this](const QTreeWidgetItem* current) { m_remove->setEnabled(current != nullptr); });
    connect(store, &QPushButton::clicked, this, &TRapMaarForm::save);
    connect(m_remove, &QPushButton::clicked, this, &TRapMaarForm::removeChosen);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    m_name->setText(form.loadedDefinition().name);
    m_description->setText(form.loadedDefinition().description);
    refresh();
    m_name->setFocus();
    m_name->selectAll();
}

QStringList TRapMaarForm::GetValues(const QString& formName) {
    return DefinitionStore().GetValues(formName);
}

bool TRapMaarForm::LataaArvot(DefinitionOwner& form, const QString& name) {
    const auto definition =
        DefinitionStore().load(form.formName(), DefinitionStore::nameToLoad(name));
    if (!definition)
        return false;
    form.applyDefinition(*definition);
    return true;
}

void TRapMaarForm::TalletaRapMaaritys(DefinitionOwner& form, const QString& name,
                                      const QString& description) {
    const SavedDefinition definition = form.currentDefinition(name, description);
    DefinitionStore().save(form.formName(), definition);
    form.definitionSaved(definition);
}

void TRapMaarForm::refresh() {
    m_list->clear();
    const DefinitionStore store;
    for (const QString& name : store.GetValues(m_form.formName())) {
        auto* row = new QTreeWidgetItem(m_list, {name});
        try {
            if (const auto definition = store.load(m_form.formName(), name)) {
                row->setText(kDescriptionColumn, definition->description);
                row->setData(kDescriptionColumn, kDescriptionRole, definition->description);
            }
        } catch (const data::DataError& e) {  // it can still be replaced or deleted
            row->setText(kDescriptionColumn, QStringLiteral("(vioittunut) ") + e.finnish());
        }
        row->setToolTip(kDescriptionColumn, row->text(kDescriptionColumn));
    }
    m_list->resizeColumnToContents(kNameColumn);
    m_list->setColumnWidth(kNameColumn, qMax(180, m_list->columnWidth(kNameColumn) + 16));
    m_list->setCurrentItem(itemOf(m_form.loadedDefinition().name));
    m_remove->setEnabled(m_list->currentItem() != nullptr);
}

QTreeWidgetItem* TRapMaarForm::itemOf(const QString& name) const {
    return m_list->findItems(name, Qt::MatchFixedString, kNameColumn).value(0);
}

void TRapMaarForm::pick() {
    if (const QTreeWidgetItem* row = m_list->currentItem()) {
        m_name->setText(row->text(kNameColumn));
        m_description->setText(row->data(kDescriptionColumn, kDescriptionRole).toString());
    }
}

void TRapMaarForm::save() {
    const QString name = m_name->text().trimmed();
    const QString problem = DefinitionStore::nameProblem(name);
    if (!problem.isEmpty()) {
        Dialogs::warning(this, problem);
        m_name->setFocus();
        return;
    }
    const bool replacesAnother =
        itemOf(name) != nullptr &&
        name.compare(m_form.loadedDefinition().name, Qt::CaseInsensitive) != 0;
    if (replacesAnother &&
        !Dialogs::ask(
            this, QStringLiteral("Määritys \"%1\" on jo talletettu. Korvataanko se?").arg(name)))
        return;
    if (reportErrors(this,
                     [&] { TalletaRapMaaritys(m_form, name, m_description->text().trimmed()); }))
        accept();
}

void TRapMaarForm::removeChosen() {
    const QTreeWidgetItem* row = m_list->currentItem();
    if (row == nullptr)
        return;
    const QString name = row->text(kNameColumn);
    if (!Dialogs::ask(this, QStringLiteral("Poistetaanko määritys \"%1\"?").arg(name)))
        return;
    reportErrors(this, [this, &name] {
        DefinitionStore().remove(m_form.formName(), name);
        m_form.refreshNames();
        refresh();
    });
}

}  // namespace framework
