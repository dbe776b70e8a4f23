#pragma once

#include <QString>

namespace framework {

/// A report to be printed: its body as HTML and the texts of every page's head and foot. The page
/// number stands at the right of the foot.
struct Report {
    QString html;
    QString headLeft;
    QString headRight;
    QString footLeft;
};

/// Writes a report as an A4 PDF. A heading stays on the page of what follows it, and a table that
/// goes on over pages repeats its heading row. The file appears only when all of it is written.
/// @throws data::DataError(Io) naming the file.
void writePdf(const Report& report, const QString& fileName);

/// A file name (with ".pdf") made of a title: characters that file systems refuse become "-".
QString pdfFileName(const QString& title);

}  // namespace framework
