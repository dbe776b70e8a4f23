#pragma once

#include <QString>

#include "engines/data_names.h"

namespace engines::embedded {

/// The statement as the engine takes it: "select top N ..." (at the statement's beginning) becomes
/// "select ... LIMIT N", a trailing semicolon goes. Everything else stays as it is.
QString engineText(const QString& sql);

}  // namespace engines::embedded
