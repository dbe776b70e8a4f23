#include <QLoggingCategory>

#include "vatchange/orders/order_module.h"
#include "vatchange/rules/rounding.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

namespace {

// Off unless QT_LOGGING_RULES="taksavaihe.orders.debug=true": one line a row.
Q_LOGGING_CATEGORY(kOrderTrace, "taksavaihe.orders", QtWarningMsg)

OrderPorts orderPorts(RunContext& run, const QString& rows) {
    OrderPorts ports;
    ports.log = [&run](const QString& line) { run.ports.log(line); };
    ports.showMessage = [&run](const QString& text) { run.ports.NaytaViesti(text); };
    ports.status = [&run](const QString& text) { run.ports.status(text); };
    ports.progress = [&run](qint64 done, qint64 total) { run.ports.progress(done, total); };
    if (kOrderTrace().isDebugEnabled())
        ports.trace = [](const QString& text) { qCDebug(kOrderTrace).noquote() << text; };
    ports.rowChanged = [&counter = run.changedRows(rows)] { ++counter; };
    ports.cancelled = [&run] { return run.stopRequested(); };
    ports.ratePercent = [&run](int vatClass) { return run.classes.ratePercent(vatClass); };
    return ports;
}

}  // namespace

void convertSalesOrders(RunContext& run) {
    run.ports.status(QStringLiteral("Päivitetään myyntitilaukset"));
    run.ports.log(QStringLiteral("Aloitetaan myyntitilausten päivitys"));
    const ChangeDefinition& definition = run.definition;
    SalesOrderArguments arguments;
    arguments.priceDecimals = priceDecimals(definition.roundingStep);
    arguments.keepVat0 = definition.salesOrderFromVat0;
    arguments.sourceClass = definition.sourceClass;
    arguments.purchaseCoefficient = definition.purchaseCoefficient;
    arguments.salesCoefficient = definition.salesOrderCoefficient;
    arguments.targetClass = definition.targetClass;
    arguments.deliveryLimit = definition.salesOrderDeliveryLimit;
    AlvMuutosMyyntitilauksiin(run.database, arguments,
                              orderPorts(run, QStringLiteral("Myyntitilausten rivit")));
}

void convertPurchaseOrders(RunContext& run) {
    run.ports.status(QStringLiteral("Päivitetään ostotilaukset"));
    run.ports.log(QStringLiteral("Aloitetaan ostotilausten päivitys"));
    const ChangeDefinition& definition = run.definition;
    PurchaseOrderArguments arguments;
    arguments.priceDecimals = priceDecimals(definition.roundingStep);
    arguments.keepVat0 = definition.purchaseOrderFromVat0;
    arguments.sourceClass = definition.sourceClass;
    arguments.purchaseCoefficient = definition.purchaseOrderCoefficient;
    arguments.targetClass = definition.targetClass;
    AlvMuutosOstotilauksiin(run.database, arguments,
                            orderPorts(run, QStringLiteral("Ostotilausten rivit")));
}

}  // namespace vatchange
