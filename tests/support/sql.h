#pragma once

#include "data/record/record_codec.h"
#include "data/sql/uni_query.h"

namespace test {

using Parameters = std::vector<std::pair<QString, data::Value>>;

/// Runs a statement without rows. @return the rows affected.
inline qint64 exec(data::Database& database, const QString& sql, const Parameters& with = {}) {
    data::TUniQuery query(&database);
    query.sql().setText(sql);
    for (const auto& [name, value] : with)
        query.paramByName(name).setValue(value);
    return query.execSql();
}

/// Rows of a query: cells joined by '|', NULL as "NULL", doubles in their shortest form, bytes in
/// hexadecimal digits.
inline QStringList rows(data::Database& database, const QString& sql, const Parameters& with = {}) {
    const auto statement = database.prepare(sql);
    for (const auto& [name, value] : with)
        statement->bind(name, value);
    QStringList lines;
    while (statement->step()) {
        QStringList cells;
        for (size_t i = 0; i < statement->columns().size(); ++i) {
            const data::Value value = statement->value(static_cast<int>(i));
            const int type = value.typeId();
            cells += type == QMetaType::Double       ? data::shortestText(value.toDouble())
                     : type == QMetaType::QByteArray ? QString(value.toByteArray().toHex())
                     : value.isValid()               ? value.toString()
                                                     : QStringLiteral("NULL");
        }
        lines += cells.join(u'|');
    }
    return lines;
}

}  // namespace test
