#include "data/sql/result_set.h"

#include <QDir>
#include <QtEndian>
#include <bit>

#include "data/error.h"

namespace data {

namespace {

enum Tag : char { kNull, kWhole, kDouble, kText };
constexpr qsizetype kLengthBytes = 4;

void putVarint(QByteArray& to, quint64 number) {
    for (; number >= 0x80; number >>= 7)
        to.append(static_cast<char>(number | 0x80));
    to.append(static_cast<char>(number));
}

quint64 getVarint(const QByteArray& from, qsizetype& at) {
    quint64 number = 0;
    for (int shift = 0;; shift += 7) {
        const auto byte = static_cast<uchar>(from.at(at++));
        number |= quint64{byte & 0x7FU} << shift;
        if (byte < 0x80)
            return number;
    }
}

void putValue(QByteArray& to, const Value& value) {
    if (!value.isValid()) {
        to.append(kNull);
        return;
    }
    switch (value.typeId()) {
        case QMetaType::LongLong:
        case QMetaType::Int:
        case QMetaType::Bool: {
            const qint64 number = value.toLongLong();
            to.append(kWhole);
            putVarint(to, (static_cast<quint64>(number) << 1) ^ static_cast<quint64>(number >> 63));
            break;
        }
        case QMetaType::Double: {
            to.append(kDouble);
            const auto bits = qToLittleEndian(std::bit_cast<quint64>(value.toDouble()));
            to.append(reinterpret_cast<const char*>(&bits), sizeof bits);
            break;
        }
        default: {
            const QByteArray text = value.toString().toUtf8();
            to.append(kText);
            putVarint(to, static_cast<quint64>(text.size()));
            to.append(text);
        }
    }
}

// Skips a cell.
void skipValue(const QByteArray& from, qsizetype& at) {
    switch (from.at(at++)) {
        case kWhole:
            getVarint(from, at);
            break;
        case kDouble:
            at += static_cast<qsizetype>(sizeof(double));
            break;
        case kText: {
            const auto length = static_cast<qsizetype>(getVarint(from, at));
            at += length;
            break;
        }
        default:
            break;
    }
}

[[noreturn]] void failed(const QTemporaryFile& file, const QString& what) {
    const bool isFull = file.error() == QFileDevice::ResourceError;
    throw DataError(isFull ? ErrorKind::DiskFull : ErrorKind::Io, QString(),
                    QStringLiteral("%1 of a query's result in %2: %3")
                        .arg(what, QDir::tempPath(), file.errorString()))
        .inFinnish(QStringLiteral("kyselyn tulosta ei voi säilyttää kansiossa %1 (%2)")
                       .arg(QDir::tempPath(), file.errorString()));
}

}  // namespace

ResultSet::ResultSet(int columns, qint64 memoryBound)
    : m_columns(columns), m_memoryBound(memoryBound), m_cells(static_cast<size_t>(columns)) {}

void ResultSet::append(const SqlStatement& statement) {
    m_row.resize(kLengthBytes);
    for (int column = 0; column < m_columns; ++column)
        putValue(m_row, statement.value(column));
    qToLittleEndian(static_cast<quint32>(m_row.size() - kLengthBytes), m_row.data());

    if (m_blocks.empty() || m_blocks.back().size + m_row.size() > kBlockSize) {
        if (m_file && !m_blocks.empty())
            writeOut(m_blocks.back());
        m_blocks.emplace_back();
    }
    Block& block = m_blocks.back();
    block.bytes.append(m_row);
    block.size = block.bytes.size();
    m_inMemory += m_row.size();
    ++m_rows;
    if (!m_file && m_inMemory > m_memoryBound)
        spill();
}

// Moves all blocks except the last, which is still being filled, to a file.
void ResultSet::spill() {
    auto file = std::make_unique<QTemporaryFile>();
    if (!file->open())
        failed(*file, QStringLiteral("opening"));
    m_file = std::move(file);
    for (size_t i = 0; i + 1 < m_blocks.size(); ++i)
        writeOut(m_blocks[i]);
}

void ResultSet::writeOut(Block& block) {
    if (!m_file->seek(m_fileSize) || m_file->write(block.bytes) != block.size || !m_file->flush())
        failed(*m_file, QStringLiteral("writing"));
    block.offset = m_fileSize;
    m_fileSize += block.size;
    block.bytes = QByteArray();
}

bool ResultSet::first() {
    if (m_rows == 0)
        return false;
    load(0);
    enterRow(0);
    m_rowIndex = 0;
    return true;
}

bool ResultSet::next() {
    if (m_rowIndex + 1 >= m_rows)
        return false;
    if (m_nextAt >= m_bytes.size()) {
        load(m_block + 1);
        m_nextAt = 0;
    }
    enterRow(m_nextAt);
    ++m_rowIndex;
    return true;
}

void ResultSet::load(size_t block) {
    const Block& wanted = m_blocks[block];
    if (wanted.offset < 0) {
        m_bytes = wanted.bytes;
    } else {
        if (!m_file->seek(wanted.offset))
            failed(*m_file, QStringLiteral("reading"));
        QByteArray bytes = m_file->read(wanted.size);
        if (bytes.size() != wanted.size)
            failed(*m_file, QStringLiteral("reading"));
        m_bytes = std::move(bytes);
    }
    m_block = block;
}

void ResultSet::enterRow(qsizetype at) {
    const auto length = qFromLittleEndian<quint32>(m_bytes.constData() + at);
    m_nextAt = at + kLengthBytes + static_cast<qsizetype>(length);
    qsizetype cell = at + kLengthBytes;
    for (qsizetype& place : m_cells) {
        place = cell;
        skipValue(m_bytes, cell);
    }
}

Value ResultSet::value(int column) const {
    qsizetype at = m_cells[static_cast<size_t>(column)];
    switch (m_bytes.at(at++)) {
        case kWhole: {
            const quint64 coded = getVarint(m_bytes, at);
            return static_cast<qint64>((coded >> 1) ^ (~(coded & 1) + 1));
        }
        case kDouble:
            return std::bit_cast<double>(qFromLittleEndian<quint64>(m_bytes.constData() + at));
        case kText: {
            const auto length = static_cast<qsizetype>(getVarint(m_bytes, at));
            return QString::fromUtf8(m_bytes.constData() + at, length);
        }
        default:
            return Value();
    }
}

}  // namespace data
