#include "vatchange/orders/order_module.h"

#include "vatchange/orders/alv_muutos_mt.h"

namespace vatchange {

void AlvMuutosMyyntitilauksiin(data::Database& database, const SalesOrderArguments& arguments,
                               const OrderPorts& ports) {
    TAlvMuutosMt module(database, ports);
    module.setPriceDecimals(arguments.priceDecimals);
    module.setSalesCoefficient(arguments.salesCoefficient);
    module.setPurchaseCoefficient(arguments.purchaseCoefficient);
    module.TeeAlvMuutosMt(arguments.keepVat0, arguments.sourceClass, arguments.targetClass,
                          arguments.deliveryLimit);
    if (!module.stopped())
        ports.showMessage(QStringLiteral("Myyntitilaukset konvertoitu."));
}

void AlvMuutosOstotilauksiin(data::Database& database, const PurchaseOrderArguments& arguments,
                             const OrderPorts& ports) {
    TAlvMuutosMt module(database, ports);
    module.setPriceDecimals(arguments.priceDecimals);
    module.setPurchaseCoefficient(arguments.purchaseCoefficient);
    module.TeeAlvMuutosOt(arguments.keepVat0, arguments.sourceClass, arguments.targetClass);
    if (!module.stopped())
        ports.showMessage(QStringLiteral("Ostotilaukset konvertoitu."));
}

}  // namespace vatchange
