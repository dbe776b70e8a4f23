#include "vatchange/journal/earlier_runs.h"

#include <algorithm>
#include <utility>

#include "vatchange/definition/restrictions.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/journal/run_outcome.h"

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

bool sameClasses(const ChangeDefinition& one, const ChangeDefinition& other) {
    return one.sourceClass == other.sourceClass && one.targetClass == other.targetClass;
}

/// Whether a run has given all products of a definition their new class, but for those that its
/// percent limit passed over.
bool convertedProducts(const EarlierRun& run, const ChangeDefinition& definition) {
    static const ChangeDefinition kUnrestricted;
    return run.definition.products && sameClasses(run.definition, definition) &&
           (run.state == data::RunState::Done || run.state == data::RunState::Errors) &&
           (sameGroups(run.definition, definition) || sameGroups(run.definition, kUnrestricted));
}

LimitedRows limitedRows(data::RunJournal& journal, qint64 run, const ChangeDefinition& definition) {
    if (!definition.mostPercent)
        return LimitedRows::None;
    const RunOutcome outcome =
        outcomeOfNote(journal.note(run, kOutcomeNote).value_or(QByteArray()));
    if (outcome.limitedUnderLock)
        return LimitedRows::All;
    return outcome.overLimit.empty() ? LimitedRows::None : LimitedRows::QuantityDiscounts;
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
                return other.run >= run.run && other.limited == LimitedRows::None &&
                       convertedProducts(other, run.definition);
            });
        if (converted)
            continue;
        // the rows of products that it passed over from the start are unchanged, but for quantity
        // discounts
        const bool onlyDiscounts =
            run.limited == LimitedRows::QuantityDiscounts && convertedProducts(run, run.definition);
        EarlierChange rows{run.run, {}};
        for (const DependentTable& table : dependentTables()) {
            if (definition.*table.converted &&
                run.tables.contains(table.name, Qt::CaseInsensitive) &&
                (!onlyDiscounts || table.converted == &ChangeDefinition::quantityDiscounts))
                rows.tables += table.name;
        }
        if (!rows.tables.isEmpty())
            changes.push_back(std::move(rows));
    }
    return changes;
}

std::vector<EarlierDefinition> definitionsOfBatch(data::RunJournal& journal, qint64 batch,
                                                  qint64 run) {
    std::vector<EarlierDefinition> definitions;
    for (const data::JournalRun& other : journal.runs()) {
        if (other.kind != data::RunKind::Change || other.state == data::RunState::Undone ||
            other.number >= run || (other.number != batch && other.batch != batch))
            continue;
        if (auto definition = definitionOfRun(journal, other.number))
            definitions.push_back({other.definition, std::move(*definition)});
    }
    return definitions;
}

std::vector<EarlierRun> earlierRuns(data::RunJournal& journal, qint64 except) {
    std::vector<EarlierRun> earlier;
    for (const data::JournalRun& run : journal.runs()) {
        if (run.kind != data::RunKind::Change || run.number == except)
            continue;
        std::optional<ChangeDefinition> definition = definitionOfRun(journal, run.number);
        if (!definition)
            continue;
        const LimitedRows limited = limitedRows(journal, run.number, *definition);
        EarlierRun known{run.number, run.state, std::move(*definition), {}, limited};
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
