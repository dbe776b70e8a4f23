#pragma once

#include <QString>

namespace search {

/// The Finnish title of a field of the product and group tables (name case-insensitive); empty if
/// it has none.
QString fieldTitle(const QString& field);

}  // namespace search
