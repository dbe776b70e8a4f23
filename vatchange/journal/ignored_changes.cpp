#include "vatchange/journal/ignored_changes.h"

#include <array>

namespace vatchange {

namespace {

struct DateField {
    const char* table;
    const char* field;
};
constexpr std::array<DateField, 7> kDateFields{{{"TUOTE", "MUUTETTUPVM"},
                                                {"TUOTE", "MUUTETTUTIME"},
                                                {"TRYHMA", "MUUTOSPVM"},
                                                {"TRYHMA", "MUUTOSKLO"},
                                                {"VAKIOLASKUTUS", "MUUTOSPVM"},
                                                {"VAKIOLASKUTUS", "MUUTOSAIKA"},
                                                {"MYYMALAHINNAT", "MUUTETTU"}}};

bool same(const QString& name, const QString& other) {
    return name.compare(other, Qt::CaseInsensitive) == 0;
}

}  // namespace

bool isChangeDate(const QString& table, const QString& field) {
    for (const DateField& date : kDateFields) {
        if (same(table, QLatin1String(date.table)) && same(field, QLatin1String(date.field)))
            return true;
    }
    return false;
}

bool isConsumedTable(const QString& table) {
    return same(table, kLabelTable) || same(table, kWebShopTable);
}

bool isRunMark(const QString& table, const QString& key) {
    return same(table, QStringLiteral("INI")) &&
           same(key, QStringLiteral("ZAV.INI TAKSAVAIHE 20240901"));
}

}  // namespace vatchange
