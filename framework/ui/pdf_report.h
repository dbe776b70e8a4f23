#pragma once

#include <QString>

namespace framework {

/// Writes an HTML report as an A4 PDF with page numbers. The file appears only when all of it is
/// written. @throws data::DataError(Io) naming the file.
void writePdf(const QString& html, const QString& fileName);

}  // namespace framework
