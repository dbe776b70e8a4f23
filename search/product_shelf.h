#pragma once

#include <QSet>
#include <QString>

#include "data/engine/engine.h"

namespace search {

/// Numbers of the products whose shelf place in a store begins with a text; a leading "<", ">",
/// "<=", ">=" or "<>" compares instead, as in a filter. Case-insensitive. Reads all stock records
/// of the store.
QSet<QString> productsByShelfPlace(data::Database& database, int store, const QString& text);

}  // namespace search
