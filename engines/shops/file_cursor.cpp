#include "engines/shops/file_cursor.h"

#include <QtEndian>
#include <algorithm>
#include <utility>

#include "engines/shops/call_status.h"

namespace engines::shops {

namespace {

constexpr int kPositionSize = 4;
constexpr int kMultipleLocks = -1;  // key number of unlock: the record of the given address

// Request of an extended read: its length, start, reject count, number of filter terms;
// number of records, number of fields; length and place of each field.
constexpr int kRequestSize = 16;
constexpr char kFromNext[] = "EG";
constexpr char kFromCurrent[] = "UC";
// Result: number of records; for each its length, address and bytes.
constexpr int kAnswerHeaderSize = 2;
constexpr int kRecordHeaderSize = 6;
constexpr int kMaxAnswerSize = 32000;

QByteArray readManyRequest(bool withCurrent, int count, int length) {
    QByteArray request(kRequestSize, '\0');
    char* out = request.data();
    const auto word = [&out](int value) {
        qToLittleEndian(static_cast<quint16>(value), out);
        out += 2;
    };
    word(kRequestSize);
    out = std::copy_n(withCurrent ? kFromCurrent : kFromNext, 2, out);
    word(0);  // as many rejected records as the engine allows; there are no terms to reject any
    word(0);
    word(count);
    word(1);
    word(length);
    word(0);
    return request;
}

}  // namespace

FileCursor::FileCursor(std::shared_ptr<CallSession> session, const QByteArray& fileName,
                       const QString& ownerName, QString table)
    : m_session(std::move(session)), m_table(std::move(table)) {
    if (fileName.size() >= kKeyBufferSize)
        throw DataError(ErrorKind::BadValue, m_table,
                        QStringLiteral("the file's name \"%1\" is longer than %2 bytes")
                            .arg(QString::fromLocal8Bit(fileName))
                            .arg(kKeyBufferSize - 1));
    QByteArray owner = ownerName.toLatin1();
    if (!owner.isEmpty())
        owner.append('\0');
    QByteArray key = fileName;
    const int status = call(kOpen, owner, key, 0);
    if (status != kOk)
        throw statusError(status, m_table, QString::fromLocal8Bit(fileName));
}

FileCursor::~FileCursor() {
    if (m_session->isLost())
        return;
    try {
        QByteArray none;
        QByteArray key;
        call(kClose, none, key, 0);
    } catch (const DataError& error) {
        // The session is lost, and all its open files with it.
        qWarning("%s: %s", qUtf8Printable(m_table), error.what());
    }
}

int FileCursor::call(int operation, QByteArray& data, QByteArray& key, int keyNumber) {
    return m_session->call(static_cast<quint16>(operation), m_block, data, key, keyNumber, m_table);
}

FileStat FileCursor::stat() {
    QByteArray data(kMaxStatLength, '\0');
    QByteArray key;
    const int status = call(kStat, data, key, 0);
    if (status != kOk)
        throw statusError(status, m_table);
    return parseFileStat(data, m_table);
}

int FileCursor::read(int operation, const QByteArray& key, int keyNumber, QByteArray& record) {
    record = QByteArray(m_recordCapacity, '\0');
    if (!key.isEmpty())
        m_key = key;
    return call(operation, record, m_key, keyNumber);
}

int FileCursor::position(RecordId& id) {
    QByteArray data(kPositionSize, '\0');
    QByteArray key;
    const int status = call(kGetPosition, data, key, 0);
    if (status == kOk && data.size() != kPositionSize)
        throw DataError(ErrorKind::Damaged, m_table,
                        QStringLiteral("a record's address has %1 bytes").arg(data.size()));
    if (status == kOk)
        id = qFromLittleEndian<quint32>(data.constData());
    return status;
}

int FileCursor::direct(RecordId id, int keyNumber, QByteArray& record, int bias) {
    record = QByteArray(std::max(m_recordCapacity, kPositionSize), '\0');
    qToLittleEndian(static_cast<quint32>(id), record.data());
    return call(kGetDirect + bias, record, m_key, keyNumber);
}

int FileCursor::maxRecordsPerCall(int length) {
    return (kMaxAnswerSize - kAnswerHeaderSize) / (length + kRecordHeaderSize);
}

int FileCursor::readMany(Direction direction, int keyNumber, bool withCurrent, int count,
                         int length, std::vector<StoredRecord>& found) {
    QByteArray data = readManyRequest(withCurrent, count, length);
    data.resize(
        std::max<qsizetype>(kRequestSize, kAnswerHeaderSize + count * (length + kRecordHeaderSize)),
        '\0');
    const int status =
        call(direction == Direction::Forward ? kGetNextExtended : kGetPreviousExtended, data, m_key,
             keyNumber);
    if (status != kOk && status != kEndOfFile && status != kRejectCountReached &&
        status != kFilterLimitReached)
        return status;
    if (data.size() < kAnswerHeaderSize)
        return status;
    const int answered = qFromLittleEndian<quint16>(data.constData());
    qsizetype place = kAnswerHeaderSize;
    for (int i = 0; i < answered; ++i) {
        const qsizetype bytes = place + kRecordHeaderSize;
        if (i >= count || bytes > data.size() ||
            qFromLittleEndian<quint16>(data.constData() + place) != length ||
            bytes + length > data.size())
            throw DataError(ErrorKind::Damaged, m_table,
                            QStringLiteral("record %1 of %2 in an answer of %3 bytes is cut off")
                                .arg(i + 1)
                                .arg(answered)
                                .arg(data.size()));
        found.push_back(
            {qFromLittleEndian<quint32>(data.constData() + place + 2), data.mid(bytes, length)});
        place = bytes + length;
    }
    return status;
}

int FileCursor::insert(const QByteArray& record) {
    QByteArray data = record;
    QByteArray key;
    return call(kInsert, data, key, 0);
}

int FileCursor::update(const QByteArray& record, int keyNumber) {
    QByteArray data = record;
    return call(kUpdate, data, m_key, keyNumber);
}

int FileCursor::remove(int keyNumber) {
    QByteArray none;
    return call(kDelete, none, m_key, keyNumber);
}

int FileCursor::unlock(RecordId id) {
    QByteArray data(kPositionSize, '\0');
    qToLittleEndian(static_cast<quint32>(id), data.data());
    QByteArray key;
    return call(kUnlock, data, key, kMultipleLocks);
}

}  // namespace engines::shops
