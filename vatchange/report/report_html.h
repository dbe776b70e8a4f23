#pragma once

#include <QString>
#include <QStringList>

namespace vatchange {

/// Builds the body of a report. Takes plain texts and escapes them.
class ReportHtml {
  public:
    enum class Page { Same, New };
    void title(const QString& text, Page page = Page::Same);
    void section(const QString& title, Page page = Page::Same);
    void subsection(const QString& title);
    void paragraph(const QString& text);
    /// The place of the report's picture of this index.
    void picture(size_t index);
    /// A line of a log, in small type.
    void logLine(const QString& text);

    /// A name and its value; consecutive rows form a table.
    void row(const QString& name, const QString& value);
    /// Starts a table. The heading row is repeated on every page; the last `rightAligned` columns
    /// hold numbers.
    void beginTable(const QStringList& headings, int rightAligned = 0);
    void tableRow(const QStringList& cells);

    QString take();

  private:
    void closeTable();
    void cells(const QString& tag, const QStringList& texts);

    QString m_text;
    bool m_tableOpen = false;
    int m_rightAligned = 0;
};

/// A whole number with the locale's grouping.
QString countText(qint64 count);

}  // namespace vatchange
