#include "vatchange/orders/alv_muutos_mt.h"
#include "vatchange/orders/alv_muutos_ot.h"
#include "vatchange/rules/rounding.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

namespace {

VatFactor factorOf(const VatClasses& classes) {
    return [&classes](qint64 vatClass) { return vatFactor(classes.ratePercent(vatClass)); };
}

OrderProgress progressOf(const RunContext& run, const QString& table) {
    if (!run.progress)
        return {run.journal, {}, {}};
    return {run.journal, run.progress->orders(table), run.progress->marginMarks};
}

}  // namespace

void convertSalesOrders(RunContext& run) {
    run.ports.stepStatus(QStringLiteral("Päivitetään myyntitilaukset"));
    run.ports.log(QStringLiteral("Aloitetaan myyntitilausten päivitys"));
    const ChangeDefinition& definition = run.definition;
    SalesOrderChange change;
    change.priceDecimals = priceDecimals(definition.roundingStep);
    change.keepVat0 = definition.salesOrderFromVat0;
    change.sourceClass = definition.sourceClass;
    change.targetClass = definition.targetClass;
    change.purchaseCoefficient = definition.purchaseCoefficient;
    change.salesCoefficient = definition.salesOrderCoefficient;
    change.deliveryLimit = definition.salesOrderDeliveryLimit;
    if (!AlvMuutosMyyntitilauksiin(run.database, change, factorOf(run.classes), run.ports,
                                   run.changedRows(QStringLiteral("Myyntitilausten rivit")),
                                   progressOf(run, kSalesOrderTables.header)))
        run.result.cancelled = true;
}

void convertPurchaseOrders(RunContext& run) {
    run.ports.stepStatus(QStringLiteral("Päivitetään ostotilaukset"));
    run.ports.log(QStringLiteral("Aloitetaan ostotilausten päivitys"));
    const ChangeDefinition& definition = run.definition;
    PurchaseOrderChange change;
    change.priceDecimals = priceDecimals(definition.roundingStep);
    change.keepVat0 = definition.purchaseOrderFromVat0;
    change.sourceClass = definition.sourceClass;
    change.targetClass = definition.targetClass;
    change.coefficient = definition.purchaseOrderCoefficient;
    if (!AlvMuutosOstotilauksiin(run.database, change, factorOf(run.classes), run.ports,
                                 run.changedRows(QStringLiteral("Ostotilausten rivit")),
                                 progressOf(run, kPurchaseOrderTables.header)))
        run.result.cancelled = true;
}

}  // namespace vatchange
