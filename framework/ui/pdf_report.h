#pragma once

#include <QString>

namespace framework {

/// A report: HTML body and the texts of each page's header and footer. The page number is at the
/// right end of the footer.
struct Report {
    QString html;
    QString headLeft;
    QString headRight;
    QString footLeft;
};

/// Writes an A4 PDF. A heading stays with the text after it; tables repeat their heading row on
/// each page. The file appears only when complete.
/// @throws data::DataError(Io) naming the file
void writePdf(const Report& report, const QString& fileName);

/// Makes a file name (with ".pdf") from a title: characters that file systems reject become "-".
QString pdfFileName(const QString& title);

}  // namespace framework
