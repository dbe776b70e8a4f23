#pragma once

#include <sqlite3.h>

#include "engines/data_names.h"

namespace engines::embedded {

/// Collation of texts: by Windows-1252 code, as in keys; characters without a code sort last. Equal
/// means identical.
inline constexpr char kTextCollation[] = "ZAVTEXT";
/// Collation of dates: ignores '-', so that '2024-09-01' equals '20240901'.
inline constexpr char kDateCollation[] = "ZAVDATE";
/// Collation of catalogue names: ignores the case of ASCII letters.
inline constexpr char kNameCollation[] = "NOCASE";

/// Registers SQL functions and collations: CURDATE(), CURTIME() and now() by data::Clock, FLOOR(x),
/// round(x) and round(x, decimals) on doubles.
void registerFunctions(sqlite3* db);

}  // namespace engines::embedded
