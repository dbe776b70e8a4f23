#pragma once

#include <sqlite3.h>

#include "engines/data_names.h"

namespace engines::embedded {

/// Collation of texts: the order of their Windows-1252 codes, which is the order of the keys;
/// characters without a code stand behind all others. Equal means the same characters.
inline constexpr char kTextCollation[] = "ZAVTEXT";
/// Collation of dates: '-' is passed over, so that '2024-09-01' equals '20240901'.
inline constexpr char kDateCollation[] = "ZAVDATE";
/// Collation of the catalogue's names: the ASCII letters' case ignored.
inline constexpr char kNameCollation[] = "NOCASE";

/// Registers the product's SQL functions and collations: CURDATE(), CURTIME() and now() on the
/// product's clock, FLOOR(x), round(x) and round(x, decimals) on doubles.
void registerFunctions(sqlite3* db);

}  // namespace engines::embedded
