#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <stdexcept>
#include <vector>

/// Comma-separated values by RFC 4180, in UTF-8: the import and export format of the tables.
namespace tools {

/// A file that is no CSV, or a device that cannot be read or written.
class CsvError : public std::runtime_error {
  public:
    CsvError(qint64 line, const QString& detail);
    qint64 line() const { return m_line; }  ///< 1 is the first; 0: no line is concerned
    const QString& detail() const { return m_detail; }

  private:
    qint64 m_line;
    QString m_detail;
};

/// Reads record by record, so memory stays bounded by the longest record. Lines end with CR LF or
/// LF; a byte order mark at the start is passed over.
class CsvReader {
  public:
    /// A record longer than this is taken for a quote that nobody closed.
    static constexpr qsizetype kMaxRecordBytes = 4194304;

    /// The device is open for reading and outlives the reader.
    explicit CsvReader(QIODevice& device);

    /// Reads the next record. @return false at the end of the file. @throws CsvError for a quote
    /// inside an unquoted field, text after a closing quote, a quote that is never closed, a
    /// carriage return on its own, a record that is too long and a read failure.
    bool next();

    int fieldCount() const { return static_cast<int>(m_ends.size()); }
    /// Bytes of a field of the last record, unquoted; valid until the next call of next().
    QByteArrayView field(int index) const;
    /// The line on which the last record began, from 1.
    qint64 line() const { return m_recordLine; }
    /// The last record was an empty line: one field without a character and without quotes.
    bool isBlank() const { return m_blank; }

  private:
    int get();
    int peek();
    bool fill();
    void append(char c);
    void readQuoted();

    QIODevice& m_device;
    QByteArray m_input;
    qsizetype m_position = 0;
    bool m_atEnd = false;
    QByteArray m_record;            // the fields' bytes, one after another
    std::vector<qsizetype> m_ends;  // end of each field in m_record
    qint64 m_line = 1;
    qint64 m_recordLine = 0;
    bool m_blank = false;
};

/// Writes records with CR LF; quotes what needs quotes and nothing else.
class CsvWriter {
  public:
    explicit CsvWriter(QIODevice& device);

    void add(const QString& text);
    void endRecord();
    /// Hands everything to the device. @throws CsvError when the device does not take it.
    void flush();

  private:
    QIODevice& m_device;
    QByteArray m_output;
    qsizetype m_recordStart = 0;
    int m_fields = 0;
};

/// Strict UTF-8. @return false when the bytes are none; `text` is then undefined.
bool decodeUtf8(QByteArrayView bytes, QString& text);

}  // namespace tools
