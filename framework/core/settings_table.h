#pragma once

#include <QString>

#include "data/engine/engine.h"

namespace framework {

/// Reads one setting of the framework's settings file "ZAV.INI", which is kept in the settings
/// table (IniNimi "ZAV.INI"). `fallback` when there is no such row.
QString zavIniValue(data::Database& database, const QString& section, const QString& key,
                    const QString& fallback = {});

}  // namespace framework
