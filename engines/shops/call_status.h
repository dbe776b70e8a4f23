#pragma once

#include <QString>

#include "data/error.h"
#include "engines/data_names.h"

namespace engines::shops {

/// The error that a status of the shops' engine amounts to: its kind, what it means, and in Finnish
/// what to do about it. `what` is the call's subject (file or database name); may be empty.
DataError statusError(int status, const QString& table, const QString& what = QString());

/// The statuses after which nothing of the session works any more.
bool endsSession(int status);

}  // namespace engines::shops
