#include "shell/log/log_file.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <array>

#include "data/error.h"
#include "data/windows1252.h"

namespace shell {

namespace {

// "05.09.2024 14:03:27" and what stands between it and the message's two blanks
constexpr qsizetype kTimeLength = 19;
constexpr QByteArrayView kGap = "  ";
// A line longer than this is cut: it is no line of a log.
constexpr qsizetype kMaxLine = 1024 * 1024;

constexpr std::array<QByteArrayView, 8> kErrors = {"Virhe",
                                                   "VIRHE",
                                                   "Määrittelyä ei",
                                                   "Ajo keskeytettiin",
                                                   "Ajo jäi vajaaksi",
                                                   "Ennen virhettä",
                                                   "Yrityksen toinen ajo",
                                                   "Ajastettua er"};
constexpr std::array<QByteArrayView, 2> kNotices = {"Huomaa", "Tarkastus"};

bool hasTime(QByteArrayView line) {
    return line.size() > kTimeLength && line[2] == '.' && line[5] == '.' && line[13] == ':' &&
           line[16] == ':';
}

// Where the message begins; 0 if the line is none of a log.
qsizetype messageStart(QByteArrayView line) {
    if (!hasTime(line))
        return 0;
    qsizetype gap = line.indexOf(kGap, kTimeLength);
    if (gap == kTimeLength)  // the general log: the user follows
        gap = line.indexOf(kGap, gap + kGap.size());
    return gap < 0 ? 0 : gap + kGap.size();
}

template <std::size_t Count>
bool startsWithOne(QByteArrayView text, const std::array<QByteArrayView, Count>& words) {
    return std::any_of(words.begin(), words.end(),
                       [text](QByteArrayView word) { return text.startsWith(word); });
}

}  // namespace

LogParts logParts(const QString& line) {
    static const QRegularExpression shape(
        QStringLiteral("^(\\d\\d\\.\\d\\d\\.\\d{4} \\d\\d:\\d\\d:\\d\\d)(?:@|  )(.*?)  (.*)$"));
    const QRegularExpressionMatch match = shape.match(line);
    if (!match.hasMatch())
        return {{}, {}, line};
    return {match.captured(1), match.captured(2), match.captured(3)};
}

LogKind logKind(QByteArrayView line) {
    const QByteArrayView message = line.sliced(messageStart(line));
    if (startsWithOne(message, kErrors))
        return LogKind::Error;
    return startsWithOne(message, kNotices) ? LogKind::Notice : LogKind::Plain;
}

LogFile::LogFile(const QString& fileName, Encoding encoding)
    : m_fileName(fileName), m_encoding(encoding), m_file(fileName) {}

void LogFile::restart() {
    m_file.close();
    m_begin = m_end = 0;
    if (!exists())
        return;
    // a pipe or a device would be waited for
    if (!QFileInfo(m_fileName).isFile() ||
        !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw data::DataError(data::ErrorKind::Io, m_fileName, m_file.errorString());
    m_begin = m_end = m_file.size();
}

QByteArray LogFile::read(qint64 offset, qint64 length) {
    if (!m_file.seek(offset))
        throw data::DataError(data::ErrorKind::Io, m_fileName, m_file.errorString());
    QByteArray block = m_file.read(length);
    if (m_file.error() != QFileDevice::NoError)
        throw data::DataError(data::ErrorKind::Io, m_fileName, m_file.errorString());
    return block;
}

std::vector<LogLine> LogFile::linesOf(QByteArrayView block, qint64 offset) {
    std::vector<LogLine> lines;
    for (qsizetype start = 0; start < block.size();) {
        qsizetype end = block.indexOf('\n', start);
        if (end < 0)
            end = block.size();
        qsizetype length = std::min(end - start, kMaxLine);
        if (length > 0 && block[start + length - 1] == '\r')
            --length;
        if (length > 0)
            lines.push_back({offset + start, static_cast<qint32>(length),
                             logKind(block.sliced(start, length))});
        start = end + 1;
    }
    return lines;
}

std::vector<LogLine> LogFile::readOlder() {
    std::vector<LogLine> lines;
    for (qint64 size = kBlock; m_begin > 0 && lines.empty(); size *= 2) {
        const qint64 from = std::max<qint64>(0, m_begin - size);
        const QByteArray block = read(from, m_begin - from);
        // the line in which the block begins is read with the block before it
        const qsizetype first = from == 0 ? 0 : block.indexOf('\n') + 1;
        if (from > 0 && (first == 0 || first == block.size()))
            continue;
        lines = linesOf(QByteArrayView(block).sliced(first), from + first);
        m_begin = from + first;
    }
    std::reverse(lines.begin(), lines.end());
    return lines;
}

double LogFile::partRead() const {
    return m_end == 0 ? 1.0 : static_cast<double>(m_end - m_begin) / static_cast<double>(m_end);
}

bool LogFile::isCut() const {
    return QFileInfo(m_fileName).size() < m_end;
}

std::vector<LogLine> LogFile::readNewer() {
    if (!m_file.isOpen()) {
        if (!exists())
            return {};
        restart();  // its first lines
        m_begin = m_end = 0;
    }
    const QByteArray block = read(m_end, std::min(m_file.size() - m_end, kBlock));
    const qsizetype whole = block.lastIndexOf('\n') + 1;  // a line may still be being written
    std::vector<LogLine> lines = linesOf(QByteArrayView(block).first(whole), m_end);
    m_end += whole;
    return lines;
}

QByteArray LogFile::bytes(const LogLine& line) {
    return read(line.offset, line.length);
}

QString LogFile::text(const LogLine& line) {
    const QByteArray stored = bytes(line);
    return m_encoding == Encoding::Utf8 ? QString::fromUtf8(stored) : data::fromWindows1252(stored);
}

}  // namespace shell
