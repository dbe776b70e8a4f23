#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <vector>

namespace shell {

enum class LogKind : quint8 { Plain, Notice, Error };

/// A line's place in its file, without the line end.
struct LogLine {
    qint64 offset = 0;
    qint32 length = 0;  ///< bytes
    LogKind kind = LogKind::Plain;
};

/// A line taken apart: "05.09.2024 14:03:27@KASSA1  message" of the change log, or
/// "05.09.2024 14:03:27  USER@KASSA1  message" of the general log.
struct LogParts {
    QString time;
    QString origin;  ///< computer, or user and computer
    QString message;
};

/// The message of any other line is the whole line.
LogParts logParts(const QString& line);
LogKind logKind(QByteArrayView line);

/// A log of any size, read in blocks from its end towards its beginning, so that the newest lines
/// are there at once. Other programs may append meanwhile.
class LogFile {
  public:
    enum class Encoding { Utf8, Windows1252 };
    static constexpr qint64 kBlock = qint64{2} * 1024 * 1024;

    LogFile(const QString& fileName, Encoding encoding);

    const QString& fileName() const { return m_fileName; }
    bool exists() const { return QFile::exists(m_fileName); }
    /// Starts again at the present end of the file. A missing file has no lines.
    /// @throws data::DataError naming the file.
    void restart();
    /// The next lines before those that were read, newest first; empty at the beginning.
    /// @throws data::DataError
    std::vector<LogLine> readOlder();
    bool atBeginning() const { return m_begin == 0; }
    /// Read so far, from 0 to 1.
    double partRead() const;
    /// The lines appended since, oldest first. @throws data::DataError
    std::vector<LogLine> readNewer();
    /// Whether the file has become shorter: what was read of it is no longer true.
    bool isCut() const;

    QByteArray bytes(const LogLine& line);
    QString text(const LogLine& line);

  private:
    QByteArray read(qint64 offset, qint64 length);
    static std::vector<LogLine> linesOf(QByteArrayView block, qint64 offset);

    QString m_fileName;
    Encoding m_encoding;
    QFile m_file;
    qint64 m_begin = 0;  ///< first byte read
    qint64 m_end = 0;    ///< behind the last byte read
};

}  // namespace shell
