#include "vatchange/definition/definition_findings.h"

#include <QLocale>
#include <cmath>
#include <utility>

#include "vatchange/definition/coefficients.h"
#include "vatchange/definition/ignore_list.h"
#include "vatchange/definition/restrictions.h"

namespace vatchange {

namespace {

using Kind = DefinitionFindingKind;
using LoadKind = LoadFinding::Kind;

// A coefficient typed with six decimals still fits.
constexpr double kCoefficientTolerance = 1e-6;

/// Collects the findings about one definition.
class Findings {
  public:
    Findings(const LoadedDefinition& loaded, const CompanyFacts& facts)
        : m_loaded(loaded), m_definition(loaded.definition), m_facts(facts) {}

    void ofLoad();
    void ofClasses();
    void ofRestrictions();
    void ofCoefficients();
    void ofGroups();
    void ofLimits();
    void ofBatch(const std::vector<EarlierDefinition>& earlier);
    std::vector<DefinitionFinding> take() { return std::move(m_findings); }

  private:
    QString valueOf(const QString& control) const {
        return fieldText(changeField(control), m_definition);
    }
    void add(Kind kind, const QString& control, const QString& value, const QString& text) {
        m_findings.push_back({kind, control, value, text});
    }
    /// The text names control and value.
    void addNamed(Kind kind, const QString& control, const QString& value, const QString& text) {
        add(kind, control, value, DefinitionProblem{control, value, text}.text());
    }
    void ofCoefficient(const QString& control);
    void ofKeptVat0(const QString& control, bool keepsVat0);
    /// The rate of a class; nothing if the rates are not known. A missing class has rate 0.
    std::optional<double> rateOf(int vatClass) const;

    const LoadedDefinition& m_loaded;
    const ChangeDefinition& m_definition;
    const CompanyFacts& m_facts;
    std::vector<DefinitionFinding> m_findings;
};

void Findings::ofLoad() {
    if (m_loaded.repeatedLine > 0)
        add(Kind::Repeated, {}, {}, repeatedText(m_loaded.repeatedLine));
    for (const LoadFinding& finding : m_loaded.findings) {
        if (finding.kind == LoadKind::UnknownSource) {
            add(Kind::NoSource, finding.control, finding.saved,
                QStringLiteral("tuntematon hinnan lähde %1=%2, hintatasoa ei muuteta")
                    .arg(finding.control, finding.saved));
        } else if (finding.kind == LoadKind::NoSource) {
            addNamed(Kind::CoefficientUnused, finding.control, finding.saved,
                     QStringLiteral("hintatasolla ei ole lähdettä, hintaa ei muuteta"));
        } else if (finding.kind == LoadKind::CarriedOver) {
            addNamed(Kind::CoefficientReplaced, finding.control, finding.saved,
                     QStringLiteral("edellisen muutoksen kertoimen tilalla on nyt ") + finding.now);
        }
    }
}

void Findings::ofClasses() {
    if (m_definition.sourceClass == 0)
        addNamed(Kind::ClassZero, kSourceClassControl, QStringLiteral("0"),
                 QStringLiteral("muutos koskee tuotteita, joilla ei ole veroluokkaa"));
    if (m_definition.targetClass == 0)
        addNamed(Kind::ClassZero, kTargetClassControl, QStringLiteral("0"),
                 QStringLiteral("uusi luokka puuttuu"));
}

void Findings::ofRestrictions() {
    const std::pair<const char*, const GroupRestriction*> kinds[] = {
        {"Aliryhma", &m_definition.subGroup},
        {"Tuoteryhma", &m_definition.productGroup},
        {"Paaryhma", &m_definition.mainGroup}};
    for (const auto& [stem, restriction] : kinds) {
        // the range of product groups bounds the update of the groups even when it is off
        const bool used =
            restriction->on || (restriction == &m_definition.productGroup && m_definition.products);
        if (!used || !isInverted(*restriction))
            continue;
        const QString control = QLatin1String(stem) + QStringLiteral("AlkuEdit");
        addNamed(Kind::InvertedRange, control, valueOf(control),
                 QStringLiteral("alku on suurempi kuin loppu (%1), rajaus ei valitse mitään")
                     .arg(restriction->last));
    }
    for (const ChangeField& field : changeFields()) {
        if (field.kind != FieldKind::IgnoreList)
            continue;
        for (const QString& item : parseIgnoreList(fieldText(field, m_definition)).dropped) {
            add(Kind::DroppedItem, field.control, item,
                QStringLiteral("ulosrajattavissa ryhmissä (%1) on kohta, joka ei ole "
                               "ryhmän numero ja jota ei oteta huomioon: %2")
                    .arg(field.control, item));
        }
    }
}

void Findings::ofCoefficient(const QString& control) {
    const auto& member = std::get<DefinitionMember<double>>(changeField(control).member);
    if (acceptableLevelCoefficient(member.of(m_definition)))
        return;
    addNamed(Kind::CoefficientRange, control, valueOf(control),
             QStringLiteral("kerroin ei ole välillä %1 - %2")
                 .arg(kLowestLevelCoefficient)
                 .arg(kHighestLevelCoefficient));
}

void Findings::ofKeptVat0(const QString& control, bool keepsVat0) {
    const auto source = rateOf(m_definition.sourceClass);
    const auto target = rateOf(m_definition.targetClass);
    if (!keepsVat0 || !source || !target)
        return;
    const double fitting = keepVat0Coefficient(*source, *target);
    const auto& member = std::get<DefinitionMember<double>>(changeField(control).member);
    if (std::abs(member.of(m_definition) - fitting) <= kCoefficientTolerance)
        return;
    addNamed(Kind::KeepVat0Coefficient, control, valueOf(control),
             QStringLiteral("alv0-hinnan säilyttävä kerroin luokasta %1 luokkaan %2 on %3")
                 .arg(m_definition.sourceClass)
                 .arg(m_definition.targetClass)
                 .arg(QString::number(fitting, 'g', QLocale::FloatingPointShortest)));
}

std::optional<double> Findings::rateOf(int vatClass) const {
    if (m_facts.vatRates.empty())
        return std::nullopt;
    const auto rate = m_facts.vatRates.find(vatClass);
    return rate == m_facts.vatRates.end() ? 0.0 : rate->second;
}

void Findings::ofCoefficients() {
    const ChangeDefinition& d = m_definition;
    QStringList used = usedCoefficients(d);
    if (d.salesOrders && !used.contains(kPurchaseControl))
        used += kPurchaseControl;
    if (d.salesOrders && !d.salesOrderFromVat0)
        used += QStringLiteral("MtKerroinEdit");
    if (d.purchaseOrders && !d.purchaseOrderFromVat0)
        used += QStringLiteral("OtKerroinEdit");
    for (const QString& control : std::as_const(used))
        ofCoefficient(control);
    for (int level = 1; level <= kPriceLevels; ++level) {
        const PriceLevelChange& change = d.levels[static_cast<std::size_t>(level - 1)];
        const QString control = coefficientControl(level);
        const bool changed = d.products && isPriceColumn(change.source);
        ofKeptVat0(control, changed && change.keepVat0);
        if (!isPriceColumn(change.source) && change.coefficient != 1.0 && !used.contains(control))
            addNamed(Kind::CoefficientUnused, control, valueOf(control),
                     QStringLiteral("hintatasolla ei ole lähdettä, hintaa ei muuteta"));
    }
    ofKeptVat0(kPurchaseControl, used.contains(kPurchaseControl) && d.keepVat0Purchase);
    ofKeptVat0(kLastPurchaseControl, used.contains(kLastPurchaseControl) && d.keepVat0LastPurchase);
}

void Findings::ofGroups() {
    const std::vector<int> missing = missingGroups(m_definition, m_facts);
    if (missing == m_definition.customerGroups)  // none, or the definition is refused
        return;
    for (const int group : missing) {
        add(Kind::MissingGroup, kCustomerGroupsControl, QString::number(group),
            QStringLiteral("asiakasryhmää %1 ei enää ole (%2), sitä ei oteta huomioon")
                .arg(QString::number(group), kCustomerGroupsControl));
    }
}

void Findings::ofLimits() {
    if (m_definition.mostPercent && !m_definition.products)
        addNamed(Kind::LimitUnused, kMostPercentControl, valueOf(kMostPercentControl),
                 QStringLiteral("turvaraja koskee tuotteiden hintoja, ja tuotteita ei muuteta"));
}

void Findings::ofBatch(const std::vector<EarlierDefinition>& earlier) {
    const ChangeDefinition& d = m_definition;
    for (const EarlierDefinition& other : earlier) {
        if (other.definition == d) {
            add(Kind::Repeated, {}, other.name,
                QStringLiteral("sama kuin saman erän aiempi määrittely ") + other.name);
        } else if (other.definition.products && other.definition.targetClass == d.sourceClass &&
                   !disjointGroups(other.definition, d)) {
            addNamed(Kind::ChangedTwice, kSourceClassControl, QString::number(d.sourceClass),
                     QStringLiteral("saman erän määrittely %1 muuttaa tuotteita tähän luokkaan: "
                                    "samat tuotteet muuttuisivat kahdesti")
                         .arg(other.name));
        }
    }
}

}  // namespace

std::vector<DefinitionFinding> definitionFindings(const LoadedDefinition& loaded,
                                                  const CompanyFacts& facts,
                                                  const std::vector<EarlierDefinition>& earlier) {
    Findings findings(loaded, facts);
    findings.ofLoad();
    findings.ofClasses();
    findings.ofRestrictions();
    findings.ofCoefficients();
    findings.ofGroups();
    findings.ofLimits();
    findings.ofBatch(earlier);
    return findings.take();
}

}  // namespace vatchange
