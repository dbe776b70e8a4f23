#pragma once

#include <QString>
#include <vector>

#include "vatchange/definition/change_definition.h"

namespace vatchange {

// Which of the fields that a run changes matter to verification, and how.

/// A price or amount that a run converts.
struct PriceField {
    QString table;
    QString field;
    QString vat0 = {};  ///< its price without VAT, where the price may be computed from that
    bool sold = false;  ///< somebody is charged it: 0 or less is worth a look
};
const std::vector<PriceField>& priceFields();

/// Whether the definition computes a price from the one without VAT.
bool computedFromVat0(const PriceField& price, const ChangeDefinition& definition);

}  // namespace vatchange
