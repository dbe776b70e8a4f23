#include <QRadioButton>

#include "framework/ui/dialogs.h"
#include "vatchange/form/change_form.h"
#include "vatchange/form/group_names.h"
#include "vatchange/report/report_html.h"
#include "vatchange/run/company_findings.h"

// What the form tells of a definition while it is edited.

namespace vatchange {

namespace {

constexpr int kAfterTypingMs = 300;

}  // namespace

void TAlvMuutosLomake::watchEdits() {
    m_edited.setSingleShot(true);
    m_edited.setInterval(kAfterTypingMs);
    connect(&m_edited, &QTimer::timeout, this, &TAlvMuutosLomake::showFindings);
    const auto soon = [this] { m_edited.start(); };
    for (const ChangeField& field : changeFields()) {
        auto* control = findChild<QWidget*>(field.control);
        if (auto* edit = qobject_cast<QLineEdit*>(control))
            connect(edit, &QLineEdit::textChanged, this, soon);
        else if (auto* box = qobject_cast<QCheckBox*>(control))
            connect(box, &QCheckBox::toggled, this, soon);
        else if (auto* combo = qobject_cast<QComboBox*>(control))
            connect(combo, &QComboBox::currentIndexChanged, this, soon);
        else if (auto* list = qobject_cast<QListWidget*>(control))
            connect(list, &QListWidget::itemChanged, this, soon);
        for (auto* button : control->findChildren<QRadioButton*>())
            connect(button, &QRadioButton::toggled, this, soon);
    }
    connect(&m_count, &ProductCount::counted, this, &TAlvMuutosLomake::showProductCount);
    connect(&m_count, &ProductCount::failed, this, [this](const QString& problem) {
        m_controls.productCount->setText(QStringLiteral("tuotteita ei voitu laskea"));
        m_controls.productCount->setToolTip(problem);
    });
    connect(m_findings, &QPushButton::clicked, this, [this] {
        framework::Dialogs::message(this, m_findingTexts.join(QStringLiteral("\n\n")));
    });
}

void TAlvMuutosLomake::showGroupNames() {
    const std::pair<const RestrictionControls*, const char*> kinds[] = {
        {&m_controls.subGroup, "ALIRYHMA"},
        {&m_controls.productGroup, "TRYHMA"},
        {&m_controls.mainGroup, "PRYHMA"}};
    for (const auto& [kind, table] : kinds) {
        QString names;
        if (kind->on->isChecked()) {
            try {
                names = groupNames(m_database, QLatin1String(table), kind->first->value(),
                                   kind->last->value());
            } catch (const std::exception& error) {
                names = QStringLiteral("nimiä ei voi lukea: ") + data::errorText(error);
            }
        }
        kind->names->setText(names);
        kind->names->setToolTip(names);
        kind->names->setVisible(!names.isEmpty());
    }
}

void TAlvMuutosLomake::showFindings() {
    if (m_running || unattended())
        return;
    showGroupNames();
    const LoadedDefinition edited = definitionToRun();
    m_findingTexts.clear();
    if (edited.definition != ChangeDefinition()) {  // an empty form has nothing to remark on
        const CompanyFacts facts = readCompanyFacts(m_database, edited.definition);
        for (const DefinitionProblem& problem : definitionProblems(edited, facts))
            m_findingTexts += problem.text();
        for (const DefinitionFinding& finding : definitionFindings(edited, facts))
            m_findingTexts += finding.text;
    }
    m_findings->setText(QStringLiteral("H&uomautuksia: %1").arg(m_findingTexts.size()));
    m_findings->setToolTip(m_findingTexts.join(u'\n'));
    m_findings->setVisible(!m_findingTexts.isEmpty());

    m_count.start(edited.definition);
    if (m_count.products())
        showProductCount(*m_count.products());
    else
        m_controls.productCount->setText(QStringLiteral("lasketaan tuotteita..."));
}

void TAlvMuutosLomake::showProductCount(qint64 products) {
    QLabel* label = m_controls.productCount;
    label->setText(products == 0   ? QStringLiteral("ei koske yhtään tuotetta")
                   : products == 1 ? QStringLiteral("koskee 1 tuotetta")
                                   : QStringLiteral("koskee %1 tuotetta").arg(countText(products)));
    markWrong(label, products == 0 && definitionFromForm() != ChangeDefinition());
}

}  // namespace vatchange
