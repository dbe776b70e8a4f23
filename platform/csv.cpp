#include "platform/csv.h"

#include <QStringDecoder>
#include <algorithm>

namespace platform {

namespace {

constexpr int kEnd = -1;
constexpr qsizetype kInputBytes = 262144;
constexpr qsizetype kOutputBytes = 262144;

QString numbered(qint64 line, const QString& detail) {
    return line > 0 ? QStringLiteral("line %1: %2").arg(line).arg(detail) : detail;
}

}  // namespace

CsvError::CsvError(qint64 line, const QString& detail)
    : std::runtime_error(numbered(line, detail).toStdString()), m_line(line), m_detail(detail) {}

CsvReader::CsvReader(QIODevice& device) : m_device(device) {
    fill();
    if (m_input.startsWith("\xEF\xBB\xBF"))
        m_position = 3;
}

bool CsvReader::fill() {
    if (m_atEnd)
        return false;
    m_input.resize(kInputBytes);
    const qint64 got = m_device.read(m_input.data(), kInputBytes);
    if (got < 0)
        throw CsvError(m_line, QStringLiteral("cannot be read: ") + m_device.errorString());
    m_input.resize(got);
    m_position = 0;
    m_atEnd = got == 0;
    return !m_atEnd;
}

int CsvReader::peek() {
    if (m_position == m_input.size() && !fill())
        return kEnd;
    return static_cast<unsigned char>(m_input.at(m_position));
}

int CsvReader::get() {
    const int c = peek();
    if (c != kEnd)
        ++m_position;
    return c;
}

void CsvReader::append(const char* first, const char* end) {
    if (static_cast<qsizetype>(m_record.size()) + (end - first) > kMaxRecordBytes)
        throw CsvError(m_recordLine, QStringLiteral("the record is longer than %1 bytes; a closing "
                                                    "quote may be missing")
                                         .arg(kMaxRecordBytes));
    m_record.append(first, end);
}

// Appends what has been read of the input up to the next byte that has a meaning of its own.
void CsvReader::appendPlain() {
    const char* first = m_input.constData() + m_position;
    const char* stop = std::find_if(first, m_input.constData() + m_input.size(), [](char c) {
        return c == ',' || c == '"' || c == '\n' || c == '\r';
    });
    append(first, stop);
    m_position += stop - first;
}

// Reads from after the opening quote to after the closing one.
void CsvReader::readQuoted() {
    for (;;) {
        const int c = get();
        if (c == kEnd)
            throw CsvError(m_recordLine, QStringLiteral("a quoted field has no closing quote"));
        if (c == '"') {
            if (peek() != '"')
                return;
            get();
        } else if (c == '\n') {
            ++m_line;
        }
        const auto byte = static_cast<char>(c);
        append(&byte, &byte + 1);
        appendPlain();
    }
}

bool CsvReader::next() {
    m_record.clear();
    m_ends.clear();
    m_recordLine = m_line;
    m_blank = false;
    if (peek() == kEnd)
        return false;
    bool quoted = false;
    bool fieldStart = true;
    for (;;) {
        const int c = get();
        if (c == ',') {
            m_ends.push_back(static_cast<qsizetype>(m_record.size()));
            fieldStart = true;
            continue;
        }
        if (c == kEnd || c == '\n' || c == '\r') {
            if (c == '\r' && get() != '\n')
                throw CsvError(m_line, QStringLiteral("a carriage return without a line feed "
                                                      "stands outside of quotes"));
            if (c != kEnd)
                ++m_line;
            m_blank = m_ends.empty() && m_record.empty() && !quoted;
            m_ends.push_back(static_cast<qsizetype>(m_record.size()));
            return true;
        }
        if (c == '"') {
            if (!fieldStart)
                throw CsvError(m_line, QStringLiteral("a quote stands inside a field that does "
                                                      "not begin with one"));
            readQuoted();
            quoted = true;
            const int after = peek();
            if (after != ',' && after != '\n' && after != '\r' && after != kEnd)
                throw CsvError(m_line, QStringLiteral("text follows a closing quote"));
        } else {
            --m_position;
            appendPlain();
        }
        fieldStart = false;
    }
}

QByteArrayView CsvReader::field(int index) const {
    const auto i = static_cast<size_t>(index);
    Q_ASSERT(i < m_ends.size());
    const qsizetype begin = i == 0 ? 0 : m_ends[i - 1];
    return {m_record.data() + begin, m_ends[i] - begin};
}

CsvWriter::CsvWriter(QIODevice& device, char separator)
    : m_device(device), m_separator(separator) {}

void CsvWriter::add(const QString& text) {
    if (m_fields++ > 0)
        m_output.append(m_separator);
    // a byte order mark at the start would be taken for the file's own
    const bool quote =
        text.startsWith(QChar::ByteOrderMark) ||
        std::any_of(text.cbegin(), text.cend(), [this](QChar c) {
            return c == QLatin1Char(m_separator) || c == u'"' || c == u'\r' || c == u'\n';
        });
    if (!quote) {
        m_output.append(text.toUtf8());
        return;
    }
    m_output.append('"');
    m_output.append(text.toUtf8().replace('"', "\"\""));
    m_output.append('"');
}

void CsvWriter::endRecord() {
    // a lone empty field would be an empty line, which readers skip
    if (m_fields == 1 && m_output.size() == m_recordStart)
        m_output.append("\"\"");
    m_output.append("\r\n");
    m_fields = 0;
    if (m_output.size() >= kOutputBytes)
        flush();
    m_recordStart = m_output.size();
}

void CsvWriter::flush() {
    if (m_device.write(m_output) != m_output.size())
        throw CsvError(0, QStringLiteral("cannot be written: ") + m_device.errorString());
    m_output.resize(0);
    m_recordStart = 0;
}

bool decodeUtf8(QByteArrayView bytes, QString& text) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     QStringDecoder::Flag::ConvertInitialBom);
    text = decoder(bytes);
    return !decoder.hasError();
}

}  // namespace platform
