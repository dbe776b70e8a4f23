#pragma once

#include <QString>

namespace data::embedded {

/// The statement as the engine takes it: "select top N ..." (at the statement's beginning) becomes
/// "select ... LIMIT N", a trailing semicolon goes. Everything else stays as it is.
QString engineText(const QString& sql);

}  // namespace data::embedded
