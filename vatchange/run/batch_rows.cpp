#include "vatchange/run/batch_rows.h"

#include <algorithm>

#include "vatchange/rules/selection.h"

namespace vatchange {

namespace {

/// The unfinished runs of a batch that have been made before.
std::vector<qint64> earlierRuns(data::RunJournal& journal, qint64 run) {
    const std::vector<data::JournalRun> runs = journal.runs();
    const auto self = std::find_if(runs.begin(), runs.end(),
                                   [run](const auto& other) { return other.number == run; });
    std::vector<qint64> numbers;
    if (self == runs.end() || self->batch == 0)
        return numbers;
    for (const data::JournalRun& other : runs) {
        if (other.number != run && data::isUnfinished(other.state) &&
            (other.number == self->batch || other.batch == self->batch))
            numbers.push_back(other.number);
    }
    return numbers;
}

}  // namespace

BatchRows::BatchRows(RunContext& run, const DependentStep& step)
    : m_step(step), m_table(run.database, step.table) {
    for (const qint64 number : earlierRuns(*run.journal, run.result.run)) {
        const auto definition = definitionOfRun(*run.journal, number);
        Earlier earlier{number, RunProgress::read(*run.journal, number).records(step.rows.table),
                        std::make_unique<data::TUniQuery>(&run.database)};
        if (earlier.records.count() == 0 || !definition)
            continue;
        earlier.waiting->sql().add(QStringLiteral("select numero from TUOTE where ") +
                                   step.productColumn + QStringLiteral(" = :p and ") +
                                   selectionCondition(*definition));
        m_runs.push_back(std::move(earlier));
    }
}

qint64 BatchRows::runThatChanged(const data::KeyValues& row) {
    for (Earlier& earlier : m_runs) {
        const std::vector<data::RecordId> ids = m_table.find(m_step.keyOf(row)).ids;
        if (std::none_of(ids.begin(), ids.end(),
                         [&](data::RecordId id) { return earlier.records.contains(id); }))
            continue;
        earlier.waiting->paramByName(QStringLiteral("p")).setValue(row[m_step.productValue]);
        earlier.waiting->open();
        const bool waits = !earlier.waiting->eof();
        earlier.waiting->close();
        if (waits)
            return earlier.number;
    }
    return 0;
}

}  // namespace vatchange
