#pragma once

#include <QString>

#include "data/error.h"
#include "engines/data_names.h"

namespace engines::shops {

/// Converts a status of the shops' engine to an error: kind, meaning, and advice in Finnish.
/// `what`: file or database name; may be empty.
DataError statusError(int status, const QString& table, const QString& what = QString());

/// Returns whether the session is unusable after this status.
bool endsSession(int status);

}  // namespace engines::shops
