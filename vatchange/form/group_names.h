#pragma once

#include <QString>

#include "data/engine/engine.h"

namespace vatchange {

/// The names of the groups at the ends of a range: "Hiomakoneet - Porat"; of a single group its
/// name; a number without a group is told. Empty without numbers, or if the table has no names.
/// `table`: ALIRYHMA, TRYHMA or PRYHMA. @throws data::DataError.
QString groupNames(data::Database& database, const QString& table, qint64 first, qint64 last);

}  // namespace vatchange
