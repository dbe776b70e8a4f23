#pragma once

#include <QString>

namespace data {

/// End of the quoted text or name, comment or single character that begins at `at`. A doubled quote
/// inside a text counts as the end of one text and the start of the next.
qsizetype endOfSqlPiece(const QString& sql, qsizetype at);

/// Length of the parameter (":name") at `at`, including the colon; 0 if there is none.
qsizetype sqlParameterLength(const QString& sql, qsizetype at);

}  // namespace data
