#include "vatchange/rules/count_queries.h"

#include "vatchange/rules/order_selection.h"
#include "vatchange/rules/statements.h"

namespace vatchange {

QString countQuery(const QString& query) {
    const qsizetype from = query.indexOf(QStringLiteral(" from "), 0, Qt::CaseInsensitive);
    const qsizetype order =
        query.lastIndexOf(QStringLiteral(" order by "), -1, Qt::CaseInsensitive);
    QString rest = order < 0 ? query.mid(from) : query.mid(from, order - from);
    if (rest.endsWith(u';'))
        rest.chop(1);
    return QStringLiteral("select count(*) as rows_found") + rest;
}

QString salesOrderRowCount(const ChangeDefinition& definition) {
    QString text = QStringLiteral(
                       "select count(*) as rows_found from MT, MTRIVI where TilausNro = Numero and "
                       "Toimitustila <= %1 and verokanta = %2 and Toimitettava <> 0")
                       .arg(kLastOpenSalesState)
                       .arg(definition.sourceClass);
    for (const qint64 method : kSkippedChargingMethods)
        text += QStringLiteral(" and Veloitustapa <> %1").arg(method);
    if (definition.salesOrderDeliveryLimit.isValid())
        text += QStringLiteral(" and MT.toimituspaiva >= ") +
                dateLiteral(definition.salesOrderDeliveryLimit);
    return text;
}

QString purchaseOrderRowCount(const ChangeDefinition& definition) {
    return QStringLiteral(
               "select count(*) as rows_found from WINOT, WINOTRI where WINOTRI.TilausNro = "
               "WINOT.TilausNro and "
               "WINOT.Tila <= %1 and AlvLuokka = %2 and Tulematta <> 0")
        .arg(kLastOpenPurchaseState)
        .arg(definition.sourceClass);
}

}  // namespace vatchange
