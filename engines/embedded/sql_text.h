#pragma once

#include <QString>

#include "engines/data_names.h"

namespace engines::embedded {

/// The statement for SQLite: a leading "select top N ..." becomes "select ... LIMIT N", a trailing
/// semicolon is removed; otherwise unchanged.
QString engineText(const QString& sql);

}  // namespace engines::embedded
