#include "framework/ui/pdf_report.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextDocument>

#include "data/error.h"

namespace framework {

namespace {

constexpr int kResolution = 300;  // dots per inch

void paint(QTextDocument& document, QPdfWriter& writer) {
    const QRectF page(QPointF(0, 0), QSizeF(writer.width(), writer.height()));
    const qreal footer = kResolution / 3.0;
    const QRectF body = page.adjusted(0, 0, 0, -footer);
    document.documentLayout()->setPaintDevice(&writer);
    document.setPageSize(body.size());

    QPainter painter(&writer);
    const int pages = document.pageCount();
    for (int i = 0; i < pages; ++i) {
        if (i > 0)
            writer.newPage();
        painter.save();
        painter.translate(0, -i * body.height());
        document.drawContents(&painter, QRectF(0, i * body.height(), body.width(), body.height()));
        painter.restore();
        painter.setFont(document.defaultFont());
        painter.drawText(page, Qt::AlignRight | Qt::AlignBottom,
                         QStringLiteral("%1 (%2)").arg(i + 1).arg(pages));
    }
}

}  // namespace

void writePdf(const QString& html, const QString& fileName) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(kResolution);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                         QMarginsF(18, 16, 18, 14), QPageLayout::Millimeter));
        writer.setCreator(QStringLiteral("Taksavaihe"));
        QTextDocument document;
        document.setDefaultFont(QFont(QStringLiteral("Sans Serif"), 9));
        document.setDocumentMargin(0);
        document.setHtml(html);
        paint(document, writer);
    }
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(buffer.data()) != buffer.size() ||
        !file.commit())
        throw data::DataError(data::ErrorKind::Io, fileName, file.errorString());
}

}  // namespace framework
