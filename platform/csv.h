#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <stdexcept>
#include <string>
#include <vector>

/// Comma-separated values by RFC 4180, in UTF-8: the import and export format of the tables.
namespace platform {

/// Malformed CSV, or a device that cannot be read or written.
class CsvError : public std::runtime_error {
  public:
    CsvError(qint64 line, const QString& detail);
    qint64 line() const { return m_line; }  ///< from 1; 0: not about a line
    const QString& detail() const { return m_detail; }

  private:
    qint64 m_line;
    QString m_detail;
};

/// Reads record by record; memory is bounded by the longest record. Lines end with CR LF or LF;
/// skips a byte order mark.
class CsvReader {
  public:
    /// A longer record is taken for an unclosed quote.
    static constexpr qsizetype kMaxRecordBytes = 4194304;

    /// The device must be open for reading and outlive the reader.
    explicit CsvReader(QIODevice& device);

    /// Reads the next record. @return false at the end of the file. @throws CsvError for a quote
    /// inside an unquoted field, text after a closing quote, an unclosed quote, a lone carriage
    /// return, an overlong record and a read failure.
    bool next();

    int fieldCount() const { return static_cast<int>(m_ends.size()); }
    /// Bytes of a field of the last record, unquoted; valid until next().
    QByteArrayView field(int index) const;
    /// First line of the last record, from 1.
    qint64 line() const { return m_recordLine; }
    /// True if the last record was an empty line, without quotes.
    bool isBlank() const { return m_blank; }

  private:
    int get();
    int peek();
    bool fill();
    void append(const char* first, const char* end);
    void appendPlain();
    void readQuoted();

    QIODevice& m_device;
    QByteArray m_input;
    qsizetype m_position = 0;
    bool m_atEnd = false;
    std::string m_record;           // the fields' bytes, one after another
    std::vector<qsizetype> m_ends;  // end of each field in m_record
    qint64 m_line = 1;
    qint64 m_recordLine = 0;
    bool m_blank = false;
};

/// Writes records with CR LF; quotes only where necessary.
class CsvWriter {
  public:
    /// `separator`: ASCII.
    explicit CsvWriter(QIODevice& device, char separator = ',');

    void add(const QString& text);
    void endRecord();
    /// Writes the buffer to the device. @throws CsvError on failure.
    void flush();

  private:
    QIODevice& m_device;
    const char m_separator;
    QByteArray m_output;
    qsizetype m_recordStart = 0;
    int m_fields = 0;
};

/// Strict UTF-8. @return false if invalid; `text` is then undefined.
bool decodeUtf8(QByteArrayView bytes, QString& text);

}  // namespace platform
