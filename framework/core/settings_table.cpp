#include "framework/core/settings_table.h"

#include "data/sql/uni_query.h"

namespace framework {

QString zavIniValue(data::Database& database, const QString& section, const QString& key,
                    const QString& fallback) {
    data::TUniQuery query(&database);
    query.sql().add(QStringLiteral(
        "select data from ini where ininimi='ZAV.INI' and sektio=:sektio and avain=:avain"));
    query.paramByName(QStringLiteral("sektio")).setString(section);
    query.paramByName(QStringLiteral("avain")).setString(key);
    query.open();
    return query.eof() ? fallback : query.fieldByName(QStringLiteral("data")).asString();
}

}  // namespace framework
