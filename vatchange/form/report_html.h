#pragma once

#include <QString>
#include <QStringList>

namespace vatchange {

/// Builds the body of a report. All texts are plain; they are escaped here.
class ReportHtml {
  public:
    void title(const QString& text);
    enum class Page { Same, New };
    void section(const QString& title, Page page = Page::Same);
    void paragraph(const QString& text);
    /// A line of a log, in small type.
    void logLine(const QString& text);

    /// A name and its value; rows one after another make a table.
    void row(const QString& name, const QString& value);
    /// The heading row of a table of its own columns, repeated on every page; `rightAligned` counts
    /// the columns from the right that hold numbers.
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
