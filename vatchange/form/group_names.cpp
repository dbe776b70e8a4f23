#include "vatchange/form/group_names.h"

#include <QStringList>

#include "data/sql/uni_query.h"

namespace vatchange {

QString groupNames(data::Database& database, const QString& table, qint64 first, qint64 last) {
    QStringList names;
    data::TUniQuery query(&database);
    query.sql().setText(QStringLiteral("SELECT Nimi FROM %1 WHERE Nro = :nro").arg(table));
    for (const qint64 number : {first, last}) {
        if (number == 0 || (number == first && !names.isEmpty()))
            continue;
        query.paramByName(QStringLiteral("nro")).setInteger(number);
        query.open();
        names += query.eof() ? QStringLiteral("ryhmää %1 ei ole").arg(number)
                             : query.fieldByName(QStringLiteral("Nimi")).asString().trimmed();
        query.close();
    }
    return names.join(QStringLiteral(" – "));
}

}  // namespace vatchange
