#pragma once

#include <QString>
#include <array>

namespace company {

/// The batch list: names of the definitions that "/E" runs, in this order; empty ones are skipped.
using BatchList = std::array<QString, 4>;

/// Full path of "ALVMUUTOS.INI" beside the program's executable; in the user's settings folder when
/// the program's folder cannot be written.
QString AlvMuutosIniName();

/// Section "ASETUKSET", keys maar1..maar4; what is missing reads as empty.
/// @throws data::DataError naming the file.
BatchList readBatchList(const QString& fileName);
void writeBatchList(const QString& fileName, const BatchList& list);

}  // namespace company
