#include "vatchange/run/dependent_step.h"

namespace vatchange {

void updateProductGroups(RunContext& run, const GroupUpdate& update) {
    qint64& rows = run.changedRows(QStringLiteral("Tuoteryhmien alv-kentät"));
    if (!update.status.isEmpty())
        run.ports.stepStatus(update.status);
    run.ports.log(update.log);
    data::TUniQuery query(&run.database);
    query.sql().add(update.statement);
    query.paramByName(QStringLiteral("VANHAVERO")).setInteger(run.definition.sourceClass);
    query.paramByName(QStringLiteral("UUSIVERO")).setInteger(run.definition.targetClass);
    rows += query.execSql();
}

void updateStorePrices(RunContext& run) {
    data::TUniQuery tables(&run.database);
    tables.sql().add(kStoreTableQuery);
    tables.open();
    if (tables.recordCount() == 0) {
        run.ports.log(QStringLiteral("Ei myymälähinnat taulua"));
        return;
    }
    run.ports.log(QStringLiteral("tarkastetaan myymalahinnat"));
    const QString assignments = storePriceAssignments(run.definition, run.targetFactor);
    if (assignments.isEmpty())
        return;
    run.ports.log(QStringLiteral("update myymalahinnat: ") + assignments);

    const StepRows step = storePriceRows(run);
    RowSource rows(run, step);
    data::TUniQuery update(&run.database);
    update.sql().add(storePriceUpdate(assignments));
    qint64& changed = run.changedRows(QStringLiteral("Myymälähintojen rivit"));
    QString finished;  // product whose rows a broken-off attempt has changed
    QString updated;
    while (rows.next()) {
        const qint64 store = rows.row()[0].toLongLong();
        const QString number = rows.row()[1].toString();
        if (rows.followsChangedRow())
            finished = rows.rowAt(rows.position() - 1)[1].toString();
        if (number == finished)
            continue;
        run.ports.status(QStringLiteral("myymalahinnat ") + QString::number(store) + u' ' + number);
        // one statement changes all of a product's rows
        if (changed == 0 || number != updated) {
            update.paramByName(QStringLiteral("t")).setString(number);
            update.execSql();
            updated = number;
        }
        ++changed;
    }
    if (!run.result.cancelled)
        rows.reportUnlisted();
}

}  // namespace vatchange
