#include "vatchange/report/report_html.h"

#include <QLocale>
#include <utility>

#include "framework/ui/pdf_report.h"

namespace vatchange {

namespace {

QString heading(int level, const QString& text, ReportHtml::Page page) {
    return QStringLiteral("<h%1%2>%3</h%1>")
        .arg(QString::number(level),
             page == ReportHtml::Page::New ? QStringLiteral(" style='page-break-before: always'")
                                           : QString(),
             text.toHtmlEscaped());
}

}  // namespace

void ReportHtml::title(const QString& text, Page page) {
    closeTable();
    m_text += heading(1, text, page);
}

void ReportHtml::section(const QString& title, Page page) {
    closeTable();
    m_text += heading(2, title, page);
}

void ReportHtml::subsection(const QString& title) {
    closeTable();
    m_text += heading(3, title, Page::Same);
}

void ReportHtml::picture(size_t index) {
    paragraph(framework::Report::pictureMark(index));
}

void ReportHtml::paragraph(const QString& text) {
    closeTable();
    m_text += QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped());
}

void ReportHtml::logLine(const QString& text) {
    closeTable();
    m_text += QStringLiteral("<p style='font-family: monospace; font-size: 7pt; margin: 0'>%1</p>")
                  .arg(text.toHtmlEscaped());
}

void ReportHtml::row(const QString& name, const QString& value) {
    if (!m_tableOpen)
        m_text += QStringLiteral("<table width='100%' cellspacing='0'>");
    m_tableOpen = true;
    m_text += QStringLiteral("<tr><td width='42%'>%1</td><td>%2</td></tr>")
                  .arg(name.toHtmlEscaped(), value.toHtmlEscaped());
}

void ReportHtml::beginTable(const QStringList& headings, int rightAligned) {
    closeTable();
    m_rightAligned = rightAligned;
    m_tableOpen = true;
    m_text += QStringLiteral("<table width='100%' cellspacing='0'><thead>");
    cells(QStringLiteral("th"), headings);
    m_text += QStringLiteral("</thead>");
}

void ReportHtml::tableRow(const QStringList& texts) {
    cells(QStringLiteral("td"), texts);
}

void ReportHtml::cells(const QString& tag, const QStringList& texts) {
    m_text += QStringLiteral("<tr>");
    for (qsizetype i = 0; i < texts.size(); ++i) {
        const bool right = i >= texts.size() - m_rightAligned;
        m_text += QStringLiteral("<%1 align='%2'>%3</%1>")
                      .arg(tag, right ? QStringLiteral("right") : QStringLiteral("left"),
                           texts[i].toHtmlEscaped());
    }
    m_text += QStringLiteral("</tr>");
}

QString ReportHtml::take() {
    closeTable();
    return std::exchange(m_text, {});
}

void ReportHtml::closeTable() {
    if (m_tableOpen)
        m_text += QStringLiteral("</table>");
    m_tableOpen = false;
    m_rightAligned = 0;
}

QString countText(qint64 count) {
    return QLocale(QLocale::Finnish).toString(count);
}

}  // namespace vatchange
