#pragma once

#include <QString>
#include <array>

namespace company {

/// The definitions that "/E" runs, in this order; empty names are skipped.
using BatchList = std::array<QString, 4>;

/// Full path of "ALVMUUTOS.INI": beside the program, or in the user's settings folder if the
/// program's folder is not writable.
QString AlvMuutosIniName();

/// Section "ASETUKSET", keys maar1..maar4; missing keys read as empty.
/// @throws data::DataError naming the file.
BatchList readBatchList(const QString& fileName);
void writeBatchList(const QString& fileName, const BatchList& list);

}  // namespace company
