#pragma once

#include "vatchange/run/run_context.h"

namespace vatchange {

/// Tells which products a resumed run changes or has changed: those that the definition selects
/// now, and those that the run has converted.
class ProductFilter {
  public:
    /// @throws data::DataError if the table or a field is missing.
    explicit ProductFilter(RunContext& run);

    /// False for a product that does not exist. The product must meet the definition's group
    /// restrictions, or not have been converted.
    bool accepts(const QString& number);
    /// Quantity discounts of such products.
    data::IdSet quantityDiscounts();

  private:
    RunContext& m_run;
    std::unique_ptr<data::TableFile> m_file;
    std::vector<int> m_classes;
};

}  // namespace vatchange
