#include "framework/ui/pdf_report.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QCoreApplication>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextObjectInterface>

#include "data/error.h"

namespace framework {

namespace {

constexpr int kResolution = 300;  // dots per inch
constexpr qreal kHead = kResolution * 0.32;
constexpr qreal kFoot = kResolution * 0.32;
constexpr qreal kSmallPoints = 8;
const QColor kGrey(0x55, 0x55, 0x55);

const QString kStyle = QStringLiteral(
    "h1 { font-size: 17pt; margin-top: 0; margin-bottom: 4px; }"
    "h2 { font-size: 12pt; margin-top: 16px; margin-bottom: 5px; color: #1f4e79; }"
    "h3 { font-size: 10pt; margin-top: 10px; margin-bottom: 3px; }"
    "p { margin-top: 0; margin-bottom: 4px; }"
    "th { background-color: #e8eef5; text-align: left; }"
    "th, td { border-bottom: 1px solid #c4c4c4; padding: 2px 4px; }");

constexpr int kPictureObject = QTextFormat::UserObject + 1;
constexpr int kPictureIndex = QTextFormat::UserProperty + 1;
constexpr double kMmPerInch = 25.4;

// Paints a report's pictures where the text has an object for each.
class PictureObject : public QObject, public QTextObjectInterface {
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)
  public:
    explicit PictureObject(const std::vector<ReportPicture>& pictures) : m_pictures(pictures) {}

    QSizeF intrinsicSize(QTextDocument* document, int /*position*/,
                         const QTextFormat& format) override {
        return {document->pageSize().width(), picture(format).heightMm / kMmPerInch * kResolution};
    }
    void drawObject(QPainter* painter, const QRectF& place, QTextDocument* document,
                    int /*position*/, const QTextFormat& format) override {
        painter->save();
        painter->setFont(document->defaultFont());
        picture(format).paint(*painter, place);
        painter->restore();
    }

  private:
    const ReportPicture& picture(const QTextFormat& format) const {
        return m_pictures[static_cast<size_t>(format.intProperty(kPictureIndex))];
    }

    const std::vector<ReportPicture>& m_pictures;
};

void putPictures(QTextDocument& document, PictureObject& object, size_t count) {
    document.documentLayout()->registerHandler(kPictureObject, &object);
    for (size_t i = 0; i < count; ++i) {
        QTextCursor mark = document.find(Report::pictureMark(i));
        if (mark.isNull())
            continue;
        QTextCharFormat format;
        format.setObjectType(kPictureObject);
        format.setProperty(kPictureIndex, static_cast<int>(i));
        mark.insertText(QString(QChar::ObjectReplacementCharacter), format);
    }
}

int pageOf(const QTextDocument& document, qreal y) {
    return static_cast<int>(y / document.pageSize().height());
}

// Bottom of the first line at the top of a block: its own, or that of a table beginning with it.
qreal firstLineBottom(const QTextDocument& document, const QTextBlock& block) {
    const QRectF place = document.documentLayout()->blockBoundingRect(block);
    const qreal line = block.layout()->lineCount() > 0 ? block.layout()->lineAt(0).height() : 0;
    return place.top() + line;
}

// Breaks the page before a heading that would be the last line on it. A break moves only later
// text, so one pass suffices.
void keepHeadingsWithText(QTextDocument& document) {
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextBlock next = block.next();
        if (block.blockFormat().headingLevel() == 0 || !next.isValid())
            continue;
        const qreal top = document.documentLayout()->blockBoundingRect(block).top();
        if (pageOf(document, top) == pageOf(document, firstLineBottom(document, next)))
            continue;
        QTextCursor cursor(block);
        QTextBlockFormat format = block.blockFormat();
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        cursor.setBlockFormat(format);
        // full layout: an incremental one omits lines further down
        document.markContentsDirty(0, document.characterCount());
    }
}

void paintMargins(QPainter& painter, const QRectF& page, const Report& report, int number,
                  int pages) {
    QFont small = painter.font();
    small.setPointSizeF(kSmallPoints);
    painter.setFont(small);
    painter.setPen(kGrey);
    painter.drawText(page, Qt::AlignLeft | Qt::AlignTop, report.headLeft);
    painter.drawText(page, Qt::AlignRight | Qt::AlignTop, report.headRight);
    painter.drawText(page, Qt::AlignLeft | Qt::AlignBottom, report.footLeft);
    painter.drawText(page, Qt::AlignRight | Qt::AlignBottom,
                     QStringLiteral("Sivu %1/%2").arg(number).arg(pages));
    painter.setPen(QPen(kGrey, kResolution / 200.0));
    const qreal headLine = page.top() + kHead * 0.6;
    const qreal footLine = page.bottom() - kFoot * 0.6;
    painter.drawLine(QPointF(page.left(), headLine), QPointF(page.right(), headLine));
    painter.drawLine(QPointF(page.left(), footLine), QPointF(page.right(), footLine));
}

void paint(QTextDocument& document, QPdfWriter& writer, const Report& report) {
    const QRectF page(QPointF(0, 0), QSizeF(writer.width(), writer.height()));
    const QRectF body = page.adjusted(0, kHead, 0, -kFoot);
    document.documentLayout()->setPaintDevice(&writer);
    document.setPageSize(body.size());
    keepHeadingsWithText(document);

    QPainter painter(&writer);
    const int pages = document.pageCount();
    for (int i = 0; i < pages; ++i) {
        if (i > 0)
            writer.newPage();
        painter.save();
        painter.translate(0, body.top() - i * body.height());
        document.drawContents(&painter, QRectF(0, i * body.height(), body.width(), body.height()));
        painter.restore();
        painter.save();
        painter.setFont(document.defaultFont());
        paintMargins(painter, page, report, i + 1, pages);
        painter.restore();
    }
}

}  // namespace

QString Report::pictureMark(size_t index) {
    return QStringLiteral("\ue000%1\ue000").arg(index);
}

void writePdf(const Report& report, const QString& fileName) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(kResolution);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                         QMarginsF(18, 14, 18, 12), QPageLayout::Millimeter));
        writer.setCreator(QCoreApplication::applicationName());
        writer.setTitle(report.headRight);
        QTextDocument document;
        document.setDefaultFont(QFont(QStringLiteral("Sans Serif"), 9));
        document.setDocumentMargin(0);
        document.setDefaultStyleSheet(kStyle);
        document.setHtml(report.html);
        PictureObject pictures(report.pictures);
        putPictures(document, pictures, report.pictures.size());
        paint(document, writer, report);
    }
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(buffer.data()) != buffer.size() ||
        !file.commit())
        throw data::DataError(data::ErrorKind::Io, fileName, file.errorString());
}

QString pdfFileName(const QString& title) {
    static const QRegularExpression kRefused(QStringLiteral("[\\\\/:*?\"<>|\\x00-\\x1f]"));
    return QString(title).replace(kRefused, QStringLiteral("-")).trimmed() + QStringLiteral(".pdf");
}

}  // namespace framework

#include "pdf_report.moc"
