#include "engines/shops/shops_table_file.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "data/record/record_codec.h"
#include "engines/shops/call_status.h"

// Addresses, locks and changes. shops_table_file_walk.cpp reads along keys.

namespace engines::shops {

namespace {

constexpr int kNoKey = -1;
constexpr int kLongestRecord = 65535;
constexpr std::chrono::milliseconds kFirstPause{2};
constexpr std::chrono::milliseconds kLongestPause{50};

bool isLockConflict(int status) {
    constexpr int kTryAgain = 77;
    return status == kRecordLocked || status == kFileLocked || status == kTryAgain ||
           status == kDeadlock || status == kConflict;
}

bool isGone(int status) {
    return status == kInvalidRecordAddress || status == kKeyNotFound || status == kEndOfFile;
}

bool hasNumberedField(const RecordLayout& layout) {
    return std::any_of(
        layout.fields().begin(), layout.fields().end(),
        [](const TFieldCacheItem& field) { return field.storage == Storage::AutoIncrement; });
}

}  // namespace

ShopsTableFile::ShopsTableFile(std::unique_ptr<FileCursor> cursor, Opener opener,
                               const FileStat& stat, RecordLayout layout, std::vector<KeyDef> keys)
    : m_cursor(std::move(cursor)),
      m_opener(std::move(opener)),
      m_layout(std::move(layout)),
      m_keys(std::move(keys)),
      m_fixedLength(stat.recordLength),
      m_variableLength(stat.variableLength),
      // Extended reads need records of one length.
      m_readsMany(!stat.variableLength && FileCursor::maxRecordsPerCall(stat.recordLength) > 0),
      m_numbersRecords(hasNumberedField(m_layout)) {
    for (const KeyStat& key : stat.keys)
        m_orders.emplace_back(key);
    m_cursor->setRecordCapacity(m_variableLength ? kLongestRecord : m_fixedLength);
}

ShopsTableFile::~ShopsTableFile() = default;

void ShopsTableFile::fail(int status) const {
    throw statusError(status, m_layout.tableName());
}

void ShopsTableFile::checkKey(int key) const {
    if (key < 0 || key >= static_cast<int>(m_keys.size()))
        throw DataError(ErrorKind::NoSuchField, m_layout.tableName(),
                        QStringLiteral("the table has no key %1").arg(key));
}

// Pads or cuts a record to the layout's length.
QByteArray ShopsTableFile::whole(QByteArray bytes) const {
    if (bytes.size() < m_fixedLength)
        throw DataError(ErrorKind::Damaged, m_layout.tableName(),
                        QStringLiteral("a record has %1 bytes instead of %2")
                            .arg(bytes.size())
                            .arg(m_fixedLength));
    bytes.resize(m_layout.recordLength(), '\0');
    return bytes;
}

// A new record without the empty end of its variable part.
QByteArray ShopsTableFile::shortened(const QByteArray& bytes) const {
    qsizetype length = bytes.size();
    while (length > m_fixedLength && bytes[length - 1] == '\0')
        --length;
    return bytes.left(length);
}

std::optional<StoredRecord> ShopsTableFile::get(RecordId id) {
    QByteArray record;
    const int status = m_cursor->direct(id, kNoKey, record);
    if (isGone(status))
        return std::nullopt;
    if (status != kOk)
        fail(status);
    return StoredRecord{id, whole(std::move(record))};
}

// Repeats `attempt` until it is not refused by another session's lock or the time is over.
template <typename Attempt>
int ShopsTableFile::whenUnlocked(std::chrono::milliseconds wait, Attempt attempt) {
    const auto end = std::chrono::steady_clock::now() + wait;
    std::chrono::milliseconds pause = kFirstPause;
    for (;;) {
        const int status = attempt();
        const auto now = std::chrono::steady_clock::now();
        if (!isLockConflict(status) || now >= end)
            return status;
        std::this_thread::sleep_for(
            std::min<std::chrono::steady_clock::duration>(pause, end - now));
        pause = std::min(pause * 2, kLongestPause);
    }
}

bool ShopsTableFile::lock(RecordId id, std::chrono::milliseconds wait) {
    const auto held = m_locked.find(id);
    if (held != m_locked.end()) {
        ++held->second;
        return true;
    }
    QByteArray record;
    const int status =
        whenUnlocked(wait, [&] { return m_cursor->direct(id, kNoKey, record, kMultipleNoWait); });
    if (isLockConflict(status))
        return false;
    if (isGone(status))  // counts as locked; get() reports that it is gone
        return true;
    if (status != kOk)
        fail(status);
    m_locked.emplace(id, 1);
    return true;
}

void ShopsTableFile::unlock(RecordId id) {
    const auto held = m_locked.find(id);
    if (held == m_locked.end() || --held->second > 0)
        return;
    m_locked.erase(held);
    release(id);
}

void ShopsTableFile::release(RecordId id) {
    constexpr int kNotLocked = 81;  // deleting a record releases its lock
    const int status = m_cursor->unlock(id);
    if (status != kOk && status != kNotLocked && !isGone(status))
        fail(status);
}

RecordId ShopsTableFile::insert(QByteArray& bytes) {
    const QByteArray record = shortened(bytes);
    const int status =
        whenUnlocked(m_cursor->session().lockWait, [&] { return m_cursor->insert(record); });
    if (status != kOk)
        fail(status);
    RecordId id = 0;
    if (const int at = m_cursor->position(id); at != kOk)
        fail(at);
    if (m_numbersRecords) {
        if (std::optional<StoredRecord> stored = get(id))
            bytes = std::move(stored->bytes);
    }
    return id;
}

// Reads the record under its lock, then calls `write`, which returns a status.
void ShopsTableFile::change(RecordId id,
                            const std::function<int(const QByteArray& before)>& write) {
    const bool held = m_locked.contains(id);
    const int key = m_keys.empty() ? kNoKey : 0;
    const int status = whenUnlocked(m_cursor->session().lockWait, [&] {
        QByteArray before;
        if (const int read = m_cursor->direct(id, key, before, held ? 0 : kMultipleNoWait);
            read != kOk)
            return isGone(read) ? static_cast<int>(kInvalidRecordAddress) : read;
        const int written = write(before);
        if (!held)
            release(id);
        return written;
    });
    if (status != kOk)
        fail(status);
}

void ShopsTableFile::update(RecordId id, const QByteArray& bytes) {
    const int key = m_keys.empty() ? kNoKey : 0;
    change(id, [&](const QByteArray& before) {
        if (!m_variableLength)
            return m_cursor->update(bytes, key);
        // Bytes beyond the layout stay unchanged.
        QByteArray after = before;
        const QByteArray wanted = shortened(bytes);
        after.resize(std::max(before.size(), wanted.size()), '\0');
        const qsizetype known = std::min(after.size(), bytes.size());
        after.replace(0, known, bytes.left(known));
        return m_cursor->update(after, key);
    });
}

void ShopsTableFile::remove(RecordId id) {
    const int key = m_keys.empty() ? kNoKey : 0;
    change(id, [&](const QByteArray&) { return m_cursor->remove(key); });
}

std::optional<RecordId> ShopsTableFile::visitStored(std::optional<RecordId> after, int max,
                                                    const Visitor& see) {
    if (!m_stored) {
        m_stored = m_opener();
        m_stored->setRecordCapacity(m_variableLength ? kLongestRecord : m_fixedLength);
        m_storedAt.reset();
    }
    QByteArray record;
    const auto step = [&](int operation) {
        const int status = m_stored->read(operation, {}, 0, record);
        if (status == kEndOfFile)
            return false;
        RecordId id = 0;
        if (status != kOk)
            fail(status);
        if (const int at = m_stored->position(id); at != kOk)
            fail(at);
        m_storedAt = id;
        return true;
    };
    bool more = true;
    if (!after) {
        m_storedAt.reset();
    } else if (m_storedAt != after) {
        // Not the last position: find it again from the beginning.
        more = step(kStepFirst);
        while (more && m_storedAt != after)
            more = step(kStepNext);
        if (!more)
            throw DataError(ErrorKind::Gone, m_layout.tableName(),
                            QStringLiteral("the record was removed meanwhile"))
                .inFinnish(QStringLiteral("toinen ohjelma poisti sen"));
    }
    std::optional<RecordId> last;
    for (int shown = 0; shown < max; ++shown) {
        if (!step(m_storedAt ? kStepNext : kStepFirst))
            break;
        last = m_storedAt;
        if (!see(*last, whole(std::exchange(record, {}))))
            break;
    }
    return last;
}

}  // namespace engines::shops
