#include "vatchange/rules/change_day.h"

namespace vatchange {

namespace {

const QDate kChangeDay(2024, 9, 1);
const QDate kQuantityDiscountsEndingFrom(2024, 7, 1);
const QTime kEarliestTime(15, 0);  // on the day before

}  // namespace

QDate changeDay(const ChangeDefinition& definition) {
    return definition.changeDay.isValid() ? definition.changeDay : kChangeDay;
}

QDateTime earliestRun(const ChangeDefinition& definition) {
    return {changeDay(definition).addDays(-1), kEarliestTime};
}

QDate campaignsEndingFrom(const ChangeDefinition& definition) {
    return changeDay(definition);
}

QDate quantityDiscountsEndingFrom(const ChangeDefinition& definition) {
    return definition.changeDay.isValid() ? definition.changeDay : kQuantityDiscountsEndingFrom;
}

}  // namespace vatchange
