#include "vatchange/report/company_names.h"

#include <QLocale>

#include "data/sql/uni_query.h"

namespace vatchange {

DefinitionNames companyNames(data::Database& database, const VatRates& rates) {
    DefinitionNames names;
    names.levels = {QStringLiteral("Ei muutosta")};
    for (int level = 1; level <= kPriceLevels; ++level)
        names.levels += QStringLiteral("Hinta %1").arg(level);
    data::TUniQuery query(&database);
    query.sql().setText(QStringLiteral("SELECT Nro, nimi FROM HINTATASO"));
    for (query.open(); !query.eof(); query.next()) {
        const qint64 level = query.fieldByName(QStringLiteral("Nro")).asInteger();
        const QString name = query.fieldByName(QStringLiteral("nimi")).asString().trimmed();
        if (level >= 1 && level <= kPriceLevels && !name.isEmpty())
            names.levels[level] = name;
    }
    query.close();
    query.sql().setText(QStringLiteral("SELECT NRO, NIMI FROM ASRYHMA"));
    for (query.open(); !query.eof(); query.next())
        names.customerGroups.insert(
            static_cast<int>(query.fieldByName(QStringLiteral("NRO")).asInteger()),
            query.fieldByName(QStringLiteral("NIMI")).asString().trimmed());
    for (const auto& [vatClass, percent] : rates)
        names.rates.insert(
            static_cast<int>(vatClass),
            QLocale(QLocale::Finnish).toString(percent, 'g', QLocale::FloatingPointShortest) +
                u'%');
    return names;
}

}  // namespace vatchange
