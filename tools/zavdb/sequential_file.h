#pragma once

#include <QByteArray>
#include <QIODevice>
#include <stdexcept>

namespace tools {

/// Malformed sequential file; what() names the record, the byte and the error.
class SequentialFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Reads an unformatted sequential file as the shops' engine's maintenance utility saves it, record
/// by record: the record's length in decimal digits, a comma (or a blank), the bytes, a line end
/// (CR LF, or LF). The end mark 0x1A follows the last record; it may be missing.
class SequentialReader {
  public:
    static constexpr char kEndMark = '\x1A';

    /// Records shorter than `shortest` or longer than `longest` bytes are refused.
    SequentialReader(QIODevice& input, int shortest, int longest)
        : m_input(input), m_shortest(shortest), m_longest(longest) {}

    /// Reads the next record. @return false at the end. @throws SequentialFileError.
    bool next();
    const QByteArray& bytes() const { return m_bytes; }
    qint64 number() const { return m_number; }  ///< of the current record, from 1
    qint64 offset() const { return m_start; }   ///< of its length field, in bytes from 0
    bool hasEndMark() const { return m_hasEndMark; }

  private:
    [[noreturn]] void fail(qint64 offset, const QString& what) const;
    bool take(char& byte);
    void requireNothingMore();
    int readLength(char first);
    void readLineEnd();

    QIODevice& m_input;
    int m_shortest;
    int m_longest;
    QByteArray m_bytes;
    qint64 m_number = 0;
    qint64 m_start = 0;
    qint64 m_at = 0;
    bool m_hasEndMark = false;
};

/// Writes such a file.
class SequentialWriter {
  public:
    explicit SequentialWriter(QIODevice& output) : m_output(output) {}
    void add(const QByteArray& record);  ///< @throws SequentialFileError on a write failure
    void finish();                       ///< the end mark

  private:
    void write(const QByteArray& bytes);
    QIODevice& m_output;
    QByteArray m_line;
};

}  // namespace tools
