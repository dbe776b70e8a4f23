#include "vatchange/journal/earlier_runs.h"

#include <algorithm>
#include <utility>

#include "vatchange/journal/run_notes.h"

namespace vatchange {

namespace {

struct DependentTable {
    QString name;
    bool ChangeDefinition::*converted;
    QString finnish;
};

const std::vector<DependentTable>& dependentTables() {
    static const std::vector<DependentTable> kTables = {
        {QStringLiteral("ASALE"), &ChangeDefinition::customerPriceLists,
         QStringLiteral("asiakashinnastot")},
        {QStringLiteral("KAMPPANJA"), &ChangeDefinition::campaigns, QStringLiteral("kampanjat")},
        {QStringLiteral("VAKIOLASKUTUS"), &ChangeDefinition::recurringInvoicing,
         QStringLiteral("toistuvaislaskutus")},
        {QStringLiteral("MAARAALE"), &ChangeDefinition::quantityDiscounts,
         QStringLiteral("määräalennukset")}};
    return kTables;
}

/// Whether two restrictions of the same kind admit no group in common.
bool disjoint(const GroupRestriction& one, const GroupRestriction& other) {
    const auto bounds = [](const GroupRestriction& restriction) {
        const qint64 first = restriction.first != 0 ? restriction.first : restriction.last;
        const qint64 last = restriction.last != 0 ? restriction.last : restriction.first;
        return std::pair(first, last);
    };
    const auto [first, last] = bounds(one);
    const auto [otherFirst, otherLast] = bounds(other);
    if (!one.on || !other.on || (first == 0 && last == 0) || (otherFirst == 0 && otherLast == 0))
        return false;
    return last < otherFirst || otherLast < first;
}

bool sameClasses(const ChangeDefinition& one, const ChangeDefinition& other) {
    return one.sourceClass == other.sourceClass && one.targetClass == other.targetClass;
}

bool sameGroups(const ChangeDefinition& one, const ChangeDefinition& other) {
    return one.subGroup == other.subGroup && one.productGroup == other.productGroup &&
           one.mainGroup == other.mainGroup;
}

bool disjointGroups(const ChangeDefinition& one, const ChangeDefinition& other) {
    return disjoint(one.subGroup, other.subGroup) ||
           disjoint(one.productGroup, other.productGroup) ||
           disjoint(one.mainGroup, other.mainGroup);
}

/// Whether a run has given all products of a definition their new class.
bool convertedProducts(const EarlierRun& run, const ChangeDefinition& definition) {
    static const ChangeDefinition kUnrestricted;
    return run.definition.products && sameClasses(run.definition, definition) &&
           (run.state == data::RunState::Done || run.state == data::RunState::Errors) &&
           (sameGroups(run.definition, definition) || sameGroups(run.definition, kUnrestricted));
}

}  // namespace

std::vector<EarlierChange> earlierRunsOfSameRows(const ChangeDefinition& definition,
                                                 const std::vector<EarlierRun>& earlier) {
    std::vector<EarlierChange> changes;
    for (const EarlierRun& run : earlier) {
        if (run.state == data::RunState::Undone || !sameClasses(run.definition, definition) ||
            disjointGroups(run.definition, definition))
            continue;
        const bool converted =
            std::any_of(earlier.begin(), earlier.end(), [&run](const EarlierRun& other) {
                return other.run >= run.run && convertedProducts(other, run.definition);
            });
        if (converted)
            continue;
        EarlierChange rows{run.run, {}};
        for (const DependentTable& table : dependentTables()) {
            if (definition.*table.converted && run.tables.contains(table.name, Qt::CaseInsensitive))
                rows.tables += table.name;
        }
        if (!rows.tables.isEmpty())
            changes.push_back(std::move(rows));
    }
    return changes;
}

std::vector<EarlierRun> earlierRuns(data::RunJournal& journal, qint64 except) {
    std::vector<EarlierRun> earlier;
    for (const data::JournalRun& run : journal.runs()) {
        if (run.kind != data::RunKind::Change || run.number == except)
            continue;
        std::optional<ChangeDefinition> definition = definitionOfRun(journal, run.number);
        if (!definition)
            continue;
        EarlierRun known{run.number, run.state, std::move(*definition), {}};
        for (const data::JournalTable& table : journal.tables(run.number))
            known.tables += table.name;
        earlier.push_back(std::move(known));
    }
    return earlier;
}

QString earlierChangeText(const EarlierChange& rows) {
    QStringList names;
    for (const DependentTable& table : dependentTables()) {
        if (rows.tables.contains(table.name))
            names += table.finnish;
    }
    return QStringLiteral(
               "ajo %1 on jo muuttanut samoilla alv-luokilla: %2. Tämä ajo muuttaa "
               "uudestaan ne rivit, joiden tuotteella on vielä vanha alv-luokka.")
        .arg(rows.run)
        .arg(names.join(QStringLiteral(", ")));
}

}  // namespace vatchange
