#pragma once

#include <QPainter>
#include <QRectF>
#include <QString>
#include <functional>
#include <vector>

namespace framework {

/// A picture in a report, painted on the page.
struct ReportPicture {
    double heightMm = 0.0;  ///< it is as wide as the text
    std::function<void(QPainter&, const QRectF&)> paint;
};

/// A report: HTML body and the texts of each page's header and footer. The page number is at the
/// right end of the footer.
struct Report {
    QString html;
    QString headLeft;
    QString headRight;
    QString footLeft;
    std::vector<ReportPicture> pictures = {};  ///< each stands where the HTML has its mark

    /// The mark of pictures[index], to be put into a paragraph of its own.
    static QString pictureMark(size_t index);
};

/// Writes an A4 PDF. A heading stays with the text after it; tables repeat their heading row on
/// each page. The file appears only when complete.
/// @throws data::DataError(Io) naming the file
void writePdf(const Report& report, const QString& fileName);

/// Makes a file name (with ".pdf") from a title: characters that file systems reject become "-".
QString pdfFileName(const QString& title);

}  // namespace framework
