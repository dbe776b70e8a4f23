#include "vatchange/run/run_context.h"

namespace vatchange {

void updateProductGroups(RunContext& run, const GroupUpdate& update) {
    qint64& rows = run.changedRows(QStringLiteral("Tuoteryhmien alv-kentät"));
    if (!update.status.isEmpty())
        run.ports.status(update.status);
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

    data::TUniQuery rows(&run.database);
    rows.sql().add(storePriceQuery(run.definition.sourceClass));
    rows.open();
    const auto& store = rows.fieldByName(QStringLiteral("myymala"));
    const auto& product = rows.fieldByName(QStringLiteral("tuote"));
    data::TUniQuery update(&run.database);
    update.sql().add(storePriceUpdate(assignments));
    qint64& changed = run.changedRows(QStringLiteral("Myymälähintojen rivit"));
    run.walk(rows, [&] {
        const QString number = product.asString();
        run.ports.status(QStringLiteral("myymalahinnat ") + QString::number(store.asInteger()) +
                         u' ' + number);
        update.paramByName(QStringLiteral("t")).setString(number);
        update.execSql();
        ++changed;
    });
}

}  // namespace vatchange
