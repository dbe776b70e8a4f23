#pragma once

#include <QString>

#include "data/engine/engine.h"

namespace framework {

/// Reads a setting of "ZAV.INI", which is kept in the settings table (IniNimi "ZAV.INI"). Returns
/// `fallback` without such a row.
QString zavIniValue(data::Database& database, const QString& section, const QString& key,
                    const QString& fallback = {});

}  // namespace framework
