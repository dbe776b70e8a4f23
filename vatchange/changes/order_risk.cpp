#include "vatchange/changes/order_risk.h"

#include <QStringList>

namespace vatchange {

QString orderRisk(const OpenOrderRow& row, const QDate& dayOfChange) {
    QStringList reasons;
    if (row.open != 0 && row.delivered > 0)
        reasons += QStringLiteral("osa tilauksesta toimitettu");
    if (row.open != 0 && row.delivery.isValid() && row.delivery < dayOfChange)
        reasons += QStringLiteral("toimitus %1 ennen muutospäivää")
                       .arg(row.delivery.toString(QStringLiteral("d.M.yyyy")));
    return reasons.join(QStringLiteral(", "));
}

}  // namespace vatchange
