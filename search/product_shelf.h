#pragma once

#include <QSet>
#include <QString>

#include "data/engine.h"

namespace search {

/// Numbers of the products whose shelf place in a store matches a text: begins with it, or, after
/// "<", ">", "<=", ">=" or "<>", compares so with its beginning. Case is ignored. Reads the store's
/// stock records once.
QSet<QString> productsByShelfPlace(data::Database& database, int store, const QString& text);

}  // namespace search
