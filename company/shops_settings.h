#pragma once

#include "company/aliases.h"
#include "engines/shops/shops_database.h"

namespace company {

/// How a company of the shops' engine is reached: its alias and the settings of all companies.
engines::shops::ShopsDatabaseSettings shopsSettings(const Alias& alias);

}  // namespace company
