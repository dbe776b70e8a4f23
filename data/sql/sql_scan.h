#pragma once

#include <QString>

namespace data {

/// The place behind what begins at `at`: a quoted text or name, a comment, or a single character.
/// A doubled quote inside a text counts as the end of one and the start of the next.
qsizetype endOfSqlPiece(const QString& sql, qsizetype at);

/// Length of the parameter (":name") that begins at `at`, colon included; 0 when none does.
qsizetype sqlParameterLength(const QString& sql, qsizetype at);

}  // namespace data
