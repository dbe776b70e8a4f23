// Converts the open orders of the company in a folder, class 3 to class 5. The crash test starts it
// and kills it. usage: crash_child FOLDER
#include <QCoreApplication>
#include <cstdio>

#include "data/embedded/embedded_database.h"
#include "vatchange/orders/order_module.h"

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 2)
        return 2;
    vatchange::OrderPorts ports;
    ports.log = [](const QString&) {};
    ports.showMessage = [](const QString&) {};
    ports.status = [](const QString&) {};
    ports.progress = [](qint64, qint64) {};
    ports.cancelled = [] { return false; };
    ports.ratePercent = [](int vatClass) { return vatClass == 5 ? 25.0 : 24.0; };
    try {
        const auto database =
            data::openEmbedded(QStringLiteral("Kaatuva Oy"), QString::fromLocal8Bit(argv[1]));
        vatchange::SalesOrderArguments sales;
        sales.sourceClass = 3;
        sales.targetClass = 5;
        sales.salesCoefficient = 1.0625;
        vatchange::AlvMuutosMyyntitilauksiin(*database, sales, ports);
        vatchange::PurchaseOrderArguments purchases;
        purchases.sourceClass = 3;
        purchases.targetClass = 5;
        purchases.purchaseCoefficient = 1.5;
        vatchange::AlvMuutosOstotilauksiin(*database, purchases, ports);
    } catch (const data::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
