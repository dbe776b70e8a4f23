#include "vatchange/run/row_lists.h"

#include "vatchange/run/batch_rows.h"

namespace vatchange {

namespace {

const QString kListsNote = QStringLiteral("lists");

using Accepts = std::function<bool(const data::KeyValues& row)>;

void listStep(RunContext& run, const StepRows& step, const Accepts& accepts) {
    data::TUniQuery query(&run.database);
    try {
        openRows(query, step.query, step.columns);
    } catch (const data::DataError&) {
        return;  // reported by the step, which finds no list and opens the query itself
    }
    storeRows(run, step, query, accepts);
}

void listDependentStep(RunContext& run, const DependentStep& step) {
    BatchRows earlier(run, step);
    qint64 left = 0;
    listStep(run, step.rows, [&](const data::KeyValues& row) {
        const qint64 other = earlier.runThatChanged(row);
        if (other != 0) {
            ++left;
            run.ports.log(QStringLiteral("Huomaa: taulun %1 riviä ei muuteta, koska saman erän "
                                         "kesken jäänyt ajo %2 on jo muuttanut sitä: %3")
                              .arg(step.rows.table)
                              .arg(other)
                              .arg(rowText(step.rows, row)));
        }
        return other == 0;
    });
    if (left == 0)
        return;
    ++run.result.failedSteps;
    run.result.failures +=
        QStringLiteral("Taulun %1 rivejä jätettiin muuttamatta: %2").arg(step.rows.table).arg(left);
}

}  // namespace

void listRows(RunContext& run) {
    const qint64 number = run.result.run;
    if (!run.journal || run.journal->note(number, kListsNote))
        return;
    for (const DependentStep& step : dependentSteps(run))
        listDependentStep(run, step);
    if (run.definition.products &&
        !storePriceAssignments(run.definition, run.targetFactor).isEmpty())
        listStep(run, storePriceRows(run), {});
    run.journal->setNote(number, kListsNote, QByteArrayLiteral("complete"));
}

}  // namespace vatchange
