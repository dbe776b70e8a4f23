#include "vatchange/form/change_form.h"

#include <QCloseEvent>
#include <QLocale>
#include <QSignalBlocker>
#include <cmath>

#include "company/company.h"
#include "company/logs.h"
#include "data/sql/uni_query.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"
#include "platform/command_line.h"
#include "vatchange/definition/coefficients.h"
#include "vatchange/form/definition_controls.h"
#include "vatchange/report/change_report.h"
#include "vatchange/views/run_problems.h"

namespace vatchange {

namespace {

// The pattern "0.#%" in the user's locale.
QString ratePattern(double percent) {
    const double tenths = std::round(percent * 10.0);
    const bool whole = std::fmod(tenths, 10.0) == 0.0;
    return QLocale().toString(tenths / 10.0, 'f', whole ? 0 : 1) + QLatin1Char('%');
}

}  // namespace

TAlvMuutosLomake::TAlvMuutosLomake(data::Database& database, QWidget* parent)
    : TPerusForm(kFormName, parent), m_database(database), m_count(database) {
    setAttribute(Qt::WA_DeleteOnClose);
    buildLayout();
    readCompanyTables();
    showInControls(*this, m_definition.definition);
    connectControls();
    fitToScreen();
    framework::rememberPlace(*this, formName());
    restoreLastState();
}

bool TAlvMuutosLomake::unattended() const {
    return Unattended || platform::hasSwitch(QStringLiteral("/E")) ||
           !framework::Dialogs::isInteractive();
}

void TAlvMuutosLomake::readCompanyTables() {
    m_levelNames = {QStringLiteral("Ei muutosta")};
    data::TUniQuery query(&m_database);
    query.sql().setText(QStringLiteral("SELECT nimi FROM HINTATASO WHERE Nro = :nro"));
    for (int level = 1; level <= kPriceLevels; ++level) {
        query.paramByName(QStringLiteral("nro")).setInteger(level);
        query.open();
        if (query.eof())
            throw data::DataError(data::ErrorKind::Damaged, QStringLiteral("HINTATASO"),
                                  QStringLiteral("hintatasoa ei löydy: %1").arg(level));
        m_levelNames.append(query.fieldByName(QStringLiteral("nimi")).asString().trimmed());
        query.close();
    }
    for (int level = 1; level <= kPriceLevels; ++level) {
        const QString& name = m_levelNames[level];
        m_controls.levelBoxes[static_cast<std::size_t>(level - 1)]->setTitle(name);
        m_controls.coefficient(level)->setAccessibleName(name + QStringLiteral(", kerroin"));
        m_controls.keep(level)->setAccessibleName(name + QStringLiteral(", säilytä alv0 hinta"));
        framework::LookupCombo* source = m_controls.source(level);
        source->setAccessibleName(name + QStringLiteral(", hinnan lähde"));
        source->addRow(kNoSource, m_levelNames[0]);
        for (int row = 1; row <= kPriceLevels; ++row)
            // cppcheck-suppress containerOutOfBounds ; the table has a place for level 0
            source->addRow(kPriceColumns[static_cast<std::size_t>(row)], m_levelNames[row]);
    }

    query.sql().setText(QStringLiteral("SELECT NRO, NIMI FROM ASRYHMA ORDER BY NRO"));
    for (query.open(); !query.eof(); query.next()) {
        m_controls.customerGroups->addNumbered(
            static_cast<int>(query.fieldByName(QStringLiteral("NRO")).asInteger()),
            query.fieldByName(QStringLiteral("NIMI")).asString());
    }
}

void TAlvMuutosLomake::connectControls() {
    for (framework::NumberEdit* edit : {m_controls.sourceClass, m_controls.targetClass}) {
        connect(edit, &QLineEdit::textChanged, this, [this] {
            framework::reportErrors(this, [this] {
                refreshClassLabels();
                followClasses();
            });
        });
    }
    for (QCheckBox* on : {m_controls.subGroup.on, m_controls.productGroup.on,
                          m_controls.mainGroup.on, m_controls.productRange})
        connect(on, &QCheckBox::toggled, this, &TAlvMuutosLomake::refreshRestrictionBoxes);

    auto shortcuts = [this](framework::DecimalEdit* edit, std::size_t tag) {
        connect(edit, &framework::DecimalEdit::altDigitReleased, this,
                [this, edit, tag](int digit) {
                    if (const auto coefficient = shortcutCoefficient(digit)) {
                        edit->setValue(*coefficient);
                        m_computed.reset(tag);
                    }
                });
        connect(edit, &QLineEdit::textEdited, this, [this, tag] { m_computed.reset(tag); });
    };
    for (int tag = 1; tag <= kCoefficients; ++tag)
        shortcuts(m_controls.coefficient(tag), static_cast<std::size_t>(tag));
    shortcuts(m_controls.priceChangeLimit, 0);
    watchExits();
    watchEdits();
    connect(m_ready, &QPushButton::clicked, this, &TAlvMuutosLomake::chooseReadyDefinition);

    for (int tag = 1; tag <= kLastPurchaseTag; ++tag) {
        connect(m_controls.keep(tag), &QCheckBox::toggled, this, [this, tag](bool checked) {
            framework::reportErrors(this, [&] { SailytaAlv0_CheckBox1Click(tag, checked); });
            refreshAllKept();
        });
    }
    connect(m_controls.keepAll, &QCheckBox::clicked, this,
            [this] { framework::reportErrors(this, [this] { keepAllClicked(); }); });
    for (int tag = 1; tag <= kPriceLevels; ++tag) {
        connect(m_controls.source(tag), &framework::LookupCombo::exited, this, [this, tag] {
            if (!m_exits.isRefusing())
                validateSource(tag);
        });
    }

    connectSearch(m_controls.subGroup.search, SearchKind::SubGroup, m_controls.subGroup.first);
    connectSearch(m_controls.productGroup.search, SearchKind::ProductGroup,
                  m_controls.productGroup.first);
    connectSearch(m_controls.mainGroup.search, SearchKind::MainGroup, m_controls.mainGroup.first);
    connectSearch(m_controls.productSearch, SearchKind::Product, m_controls.productFirst);

    watchDrops();

    connect(Esikatsele, &QPushButton::clicked, this,
            [this] { framework::reportErrors(this, [this] { EsikatseleClick(); }); });
    connect(m_rehearse, &QPushButton::clicked, this,
            [this] { framework::reportErrors(this, [this] { KoeajoClick(); }); });
    connect(m_close, &QPushButton::clicked, this, &QWidget::close);
    connect(m_changes, &QPushButton::clicked, this,
            [this] { reportProblems(this, [this] { showChangesOfRun(); }); });
    connect(m_interrupt, &QPushButton::clicked, this, [this] {
        m_cancelRequested = true;
        m_interrupt->setEnabled(false);
    });
}

void TAlvMuutosLomake::connectSearch(QPushButton* button, SearchKind kind, QLineEdit* target) {
    connect(button, &QPushButton::clicked, this, [this, kind, target] {
        framework::reportErrors(this, [&] {
            openSearchWindow(kind, formName(), this, target->text(),
                             [target](const QString& key) { target->setText(key); });
        });
    });
}

std::optional<double> TAlvMuutosLomake::ratePercent(int vatClass) const {
    data::TUniQuery query(&m_database);
    query.sql().setText(QStringLiteral("SELECT Prosentti FROM ALVKANTA WHERE luokka = :luokka"));
    query.paramByName(QStringLiteral("luokka")).setInteger(vatClass);
    query.open();
    if (query.eof())
        return std::nullopt;
    return query.fieldByName(QStringLiteral("Prosentti")).asFloat();
}

void TAlvMuutosLomake::watchDrops() {
    const auto watch = [this](framework::NumberEdit* edit, framework::NumberEdit::DropCheck check) {
        edit->setDropCheck(std::move(check));
        connect(edit, &framework::NumberEdit::dropRefused, this, &TAlvMuutosLomake::showStatus);
    };
    const std::pair<const RestrictionControls*, SearchKind> kinds[] = {
        {&m_controls.subGroup, SearchKind::SubGroup},
        {&m_controls.productGroup, SearchKind::ProductGroup},
        {&m_controls.mainGroup, SearchKind::MainGroup}};
    for (const auto& entry : kinds) {
        const SearchKind kind = entry.second;
        for (framework::NumberEdit* edit : {entry.first->first, entry.first->last})
            watch(edit, [kind](const QMimeData& dragged) { return dropRefusal(kind, dragged); });
    }
    for (framework::NumberEdit* edit : {m_controls.sourceClass, m_controls.targetClass})
        watch(edit, classDropRefusal);
}

// "1 (24%)"
QString TAlvMuutosLomake::classText(int vatClass) const {
    if (vatClass == 0)
        return QStringLiteral("0 (veroluokattomat)");
    const auto rate = ratePercent(vatClass);
    return QStringLiteral("%1 (%2)").arg(QString::number(vatClass),
                                         rate ? ratePattern(*rate) : QStringLiteral("ei löydy"));
}

void TAlvMuutosLomake::showRate(QLabel* label, int vatClass) const {
    label->clear();
    const auto rate = ratePercent(vatClass);
    if (vatClass != 0)
        label->setText(rate ? ratePattern(*rate) : QStringLiteral("Ei löydy!"));
    markWrong(label, vatClass != 0 && !rate);
}

void TAlvMuutosLomake::refreshClassLabels() {
    showRate(m_controls.sourceRate, static_cast<int>(m_controls.sourceClass->value()));
    showRate(m_controls.targetRate, static_cast<int>(m_controls.targetClass->value()));
}

void TAlvMuutosLomake::refreshRestrictionBoxes() {
    for (const RestrictionControls* kind :
         {&m_controls.subGroup, &m_controls.productGroup, &m_controls.mainGroup})
        kind->box->setEnabled(kind->on->isChecked());
    m_controls.productRangeBox->setEnabled(m_controls.productRange->isChecked());
}

void TAlvMuutosLomake::validateSource(int tag) {
    PriceLevelChange level = definitionFromForm().levels[static_cast<std::size_t>(tag - 1)];
    if (!resetWithoutSource(level))
        return;
    const QSignalBlocker blocker(m_controls.keep(tag));
    m_controls.source(tag)->setKey(level.source);
    m_controls.keep(tag)->setChecked(level.keepVat0);
    m_controls.coefficient(tag)->setValue(level.coefficient);
    refreshAllKept();
}

void TAlvMuutosLomake::showValues(const framework::SavedDefinition& definition) {
    m_definition = loadDefinition(definition);
    showInControls(*this, m_definition.definition, definition);
}

framework::SavedDefinition TAlvMuutosLomake::currentDefinition(const QString& name,
                                                               const QString& description) const {
    framework::SavedDefinition definition = TPerusForm::currentDefinition(name, description);
    for (const ChangeField& field : changeFields()) {
        if (field.optional && definition.values.value(field.control).isEmpty()) {
            definition.values.remove(field.control);
            definition.removed += field.control;
        }
    }
    return definition;
}

QMap<QString, QString> TAlvMuutosLomake::currentValues() const {
    return textsInControls(*this);
}

void TAlvMuutosLomake::afterLoad() {
    m_exits.forgetAll();
    refreshRestrictionBoxes();
    refreshClassLabels();
    refreshAllKept();
    m_edited.start();
    const auto computed = coefficientOfClasses();
    for (int tag = 1; tag <= kLastPurchaseTag; ++tag) {
        m_computed[static_cast<std::size_t>(tag)] =
            m_controls.keep(tag)->isChecked() && computed == m_controls.coefficient(tag)->value();
    }
    bool carriedOver = false;
    QStringList unreadable;
    for (const LoadFinding& finding : m_definition.findings) {
        if (finding.kind == LoadFinding::Kind::CarriedOver)
            carriedOver = true;
        else if (finding.kind != LoadFinding::Kind::MissingClass &&
                 finding.kind != LoadFinding::Kind::NoSource)
            unreadable.append(finding.control + QLatin1Char('=') + finding.saved);
    }
    if (carriedOver && !platform::hasSwitch(QStringLiteral("/E")))
        NaytaViesti(
            QStringLiteral("Kertoimia päivitetty edellisen taksavaiheen yhteydessä tallennetuista "
                           "asetuksista"));
    // unattended, the run itself refuses the definition or logs the finding
    if (m_definition.repeatedLine > 0 && !unattended())
        NaytaViesti(QStringLiteral("Huomaa: ") + repeatedText(m_definition.repeatedLine));
    if (!unreadable.isEmpty() && !unattended()) {
        NaytaViesti(
            QStringLiteral(
                "Huomaa: määrittelyn \"%1\" arvoja ei voitu lukea, käytetään oletusarvoja: ")
                .arg(loadedDefinition().name) +
            unreadable.join(QStringLiteral("; ")));
    }
}

void TAlvMuutosLomake::afterSave() {
    m_definition = {definitionFromForm(), {}};
}

void TAlvMuutosLomake::showDescription(const QString& description) {
    m_description->setText(description);
    m_description->setToolTip(description);
}

void TAlvMuutosLomake::SailytaAlv0_CheckBox1Click(int tag, bool checked) {
    framework::DecimalEdit* coefficient = m_controls.coefficient(tag);
    m_exits.forget(coefficient);
    m_computed.reset(static_cast<std::size_t>(tag));
    if (!checked) {
        coefficient->setValue(1.0);
        return;
    }
    const auto target = ratePercent(static_cast<int>(m_controls.targetClass->value()));
    if (!target) {
        NaytaViesti(kCheckTargetClass);
        const QSignalBlocker blocker(m_controls.keep(tag));
        m_controls.keep(tag)->setChecked(false);
        coefficient->setValue(1.0);
        return;
    }
    const auto source = ratePercent(static_cast<int>(m_controls.sourceClass->value()));
    coefficient->setValue(keepVat0Coefficient(source.value_or(0.0), *target));
    m_computed.set(static_cast<std::size_t>(tag));
    if (tag <= kPriceLevels)
        // cppcheck-suppress containerOutOfBounds
        m_controls.source(tag)->setKey(kPriceColumns[static_cast<std::size_t>(tag)]);
}

// The coefficient that keeps the VAT-free price with the classes in the form; source class 0 has
// rate 0. nullopt while a class does not exist, for example during typing.
std::optional<double> TAlvMuutosLomake::coefficientOfClasses() const {
    const auto sourceClass = static_cast<int>(m_controls.sourceClass->value());
    const auto source = ratePercent(sourceClass);
    const auto target = ratePercent(static_cast<int>(m_controls.targetClass->value()));
    if (!target || (!source && sourceClass != 0))
        return std::nullopt;
    return keepVat0Coefficient(source.value_or(0.0), *target);
}

void TAlvMuutosLomake::followClasses() {
    if (m_computed.none())
        return;
    const auto coefficient = coefficientOfClasses();
    for (int tag = 1; coefficient && tag <= kLastPurchaseTag; ++tag) {
        if (m_computed.test(static_cast<std::size_t>(tag)) && m_controls.keep(tag)->isChecked())
            m_controls.coefficient(tag)->setValue(*coefficient);
    }
}

void TAlvMuutosLomake::watchExits() {
    for (framework::DecimalEdit* edit : m_controls.coefficients)
        m_exits.watch(edit, [this, edit] { return checkCoefficient(edit); });
    framework::DecimalEdit* limit = m_controls.priceChangeLimit;
    m_exits.watch(limit, [this, limit] { return checkCoefficient(limit); });
    for (framework::DateEdit* date : {m_controls.deliveryLimit, m_controls.changeDay})
        m_exits.watch(date, [date] { return checkDate(date); });
}

QString TAlvMuutosLomake::checkDate(const framework::DateEdit* edit) {
    if (edit->isReadable())
        return {};
    return QStringLiteral("Päivämäärä ( %1 ) ei kelpaa, korjaa päivämäärä!").arg(edit->text());
}

// Only price levels have a range; a text that is not a number reverts to the last number.
QString TAlvMuutosLomake::checkCoefficient(framework::DecimalEdit* edit) {
    const int tag = edit->property(kTagProperty).toInt();
    if (tag < 1 || tag > kPriceLevels) {
        if (!edit->isReadable())
            edit->setValue(edit->value());
        return {};
    }
    if (edit->isReadable() && acceptableLevelCoefficient(edit->value()))
        return {};
    const QLocale locale;
    return QStringLiteral(
               "Hintakerroin ( %1 ) ei ole sallituissa rajoissa, korjaa hintakerroin!\r"
               "(kertoimen on oltava vähintään %2 ja enintään %3 )")
        .arg(edit->text(), locale.toString(kLowestLevelCoefficient, 'f', 2),
             locale.toString(kHighestLevelCoefficient, 'f', 2));
}

bool TAlvMuutosLomake::acceptTyped() {
    // A button pressed by its mnemonic does not take the focus: treat the focused control as left.
    if (const auto* source = qobject_cast<framework::LookupCombo*>(focusWidget()))
        validateSource(source->property(kTagProperty).toInt());
    return m_exits.checkAll();
}

ChangeDefinition TAlvMuutosLomake::definitionFromForm() const {
    return definitionInControls(*this);
}

LoadedDefinition TAlvMuutosLomake::definitionToRun() const {
    if (!hasUnsavedChanges())
        return m_definition;
    const ChangeDefinition edited = definitionFromForm();
    return {edited, remainingFindings(m_definition.findings, edited)};
}

framework::Report TAlvMuutosLomake::report() const {
    ChangeReport report;
    report.company = company::currentCompany().name;
    report.name = loadedDefinition().name;
    report.description = loadedDefinition().description;
    report.definition = definitionFromForm();
    report.lastRun = m_lastRun;
    report.names.levels = m_levelNames;
    for (int row = 0; row < m_controls.customerGroups->count(); ++row) {
        const QString group = m_controls.customerGroups->item(row)->text();
        report.names.customerGroups.insert(group.section(QLatin1Char('='), 0, 0).toInt(),
                                           group.section(QLatin1Char('='), 1));
    }
    const ChangeDefinition& run = m_lastRun ? m_lastRun->definition : report.definition;
    for (const int vatClass : {report.definition.sourceClass, report.definition.targetClass,
                               run.sourceClass, run.targetClass}) {
        if (const auto rate = ratePercent(vatClass))
            report.names.rates.insert(vatClass, ratePattern(*rate));
    }
    return changeReport(m_database, report);
}

void TAlvMuutosLomake::NaytaViesti(const QString& text) {
    company::WriteAlvMuutosLog(text);
    if (!unattended())
        framework::Dialogs::message(this, text);
}

void TAlvMuutosLomake::closeEvent(QCloseEvent* event) {
    m_exits.dropExits();  // a text that is left behind is no reason for a warning
    if ((m_running && !confirmClosing()) || !mayLoseChanges()) {
        event->ignore();
        return;
    }
    TPerusForm::closeEvent(event);
    Q_EMIT closed();
}

}  // namespace vatchange
