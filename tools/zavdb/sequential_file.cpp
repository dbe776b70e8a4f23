#include "tools/zavdb/sequential_file.h"

#include <QString>
#include <algorithm>

namespace tools {

namespace {

QString named(char byte) {
    return QStringLiteral("0x%1").arg(static_cast<uchar>(byte), 2, 16, QLatin1Char('0'));
}

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

}  // namespace

void SequentialReader::fail(qint64 offset, const QString& what) const {
    throw SequentialFileError(
        QStringLiteral("record %1, byte %2: %3").arg(m_number).arg(offset).arg(what).toStdString());
}

bool SequentialReader::take(char& byte) {
    if (!m_input.getChar(&byte)) {
        if (!m_input.atEnd())
            fail(m_at, QStringLiteral("the file cannot be read: %1").arg(m_input.errorString()));
        return false;
    }
    ++m_at;
    return true;
}

bool SequentialReader::next() {
    if (m_hasEndMark)
        return false;
    ++m_number;
    m_start = m_at;
    char first = 0;
    if (!take(first))
        return false;
    if (first == kEndMark) {
        m_hasEndMark = true;
        requireNothingMore();
        return false;
    }
    const int length = readLength(first);
    m_bytes.resize(length);
    const qint64 got = m_input.read(m_bytes.data(), length);
    if (got != length)
        fail(m_at, QStringLiteral("the file ends after %1 of the record's %2 bytes")
                       .arg(std::max<qint64>(got, 0))
                       .arg(length));
    m_at += length;
    readLineEnd();
    return true;
}

// Some writers fill the last block with end marks.
void SequentialReader::requireNothingMore() {
    char byte = 0;
    while (take(byte)) {
        if (byte != kEndMark && byte != '\r' && byte != '\n' && byte != '\0')
            fail(m_at - 1, QStringLiteral("%1 after the end mark").arg(named(byte)));
    }
}

int SequentialReader::readLength(char first) {
    if (!isDigit(first))
        fail(m_start, QStringLiteral("the record's length is expected, not %1").arg(named(first)));
    const auto expected = [this] {
        return m_shortest == m_longest
                   ? QStringLiteral("%1 bytes").arg(m_longest)
                   : QStringLiteral("%1 to %2 bytes").arg(m_shortest).arg(m_longest);
    };
    constexpr qint64 kTooLong = 1'000'000'000;
    qint64 length = first - '0';
    char byte = 0;
    while (true) {
        if (!take(byte))
            fail(m_at, QStringLiteral("the file ends within the record's length"));
        if (!isDigit(byte))
            break;
        length = 10 * length + (byte - '0');
        if (length > kTooLong)
            fail(m_start, QStringLiteral("the record's length is no sensible number; the table's "
                                         "records have %1")
                              .arg(expected()));
    }
    if (byte != ',' && byte != ' ')
        fail(m_at - 1,
             QStringLiteral("a comma is expected after the length, not %1").arg(named(byte)));
    if (length < m_shortest || length > m_longest)
        fail(m_start, QStringLiteral("the record has %1 bytes; the table's records have %2")
                          .arg(length)
                          .arg(expected()));
    return static_cast<int>(length);
}

void SequentialReader::readLineEnd() {
    char byte = 0;
    bool more = take(byte);
    if (more && byte == '\r')
        more = take(byte);
    if (!more)
        fail(m_at, QStringLiteral("the file ends before the record's line end"));
    if (byte != '\n')
        fail(m_at - 1, QStringLiteral(
                           "a line end is expected after the record's %1 bytes, not %2; the length "
                           "at byte %3 is wrong, or bytes are missing")
                           .arg(m_bytes.size())
                           .arg(named(byte))
                           .arg(m_start));
}

void SequentialWriter::write(const QByteArray& bytes) {
    if (m_output.write(bytes) != bytes.size())
        throw SequentialFileError(QStringLiteral("the file cannot be written: %1")
                                      .arg(m_output.errorString())
                                      .toStdString());
}

void SequentialWriter::add(const QByteArray& record) {
    m_line.setNum(record.size());
    m_line += ',';
    m_line += record;
    m_line += "\r\n";
    write(m_line);
}

void SequentialWriter::finish() {
    write(QByteArray(1, SequentialReader::kEndMark));
}

}  // namespace tools
