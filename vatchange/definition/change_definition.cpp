#include "vatchange/definition/change_definition.h"

#include <algorithm>

namespace vatchange {

const std::array<QString, kPriceLevels + 1> kPriceColumns = {
    QString(),
    QStringLiteral("hinta"),
    QStringLiteral("kaksoishinta"),
    QStringLiteral("hinta3"),
    QStringLiteral("hinta4"),
    QStringLiteral("hinta5"),
    QStringLiteral("hinta6"),
    QStringLiteral("hinta7"),
    QStringLiteral("hinta8"),
    QStringLiteral("hinta9"),
};

bool isPriceColumn(const QString& source) {
    return std::find(kPriceColumns.begin() + 1, kPriceColumns.end(), source.trimmed()) !=
           kPriceColumns.end();
}

}  // namespace vatchange
