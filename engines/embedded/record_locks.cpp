#include "engines/embedded/record_locks.h"

#include <algorithm>
#include <thread>

namespace engines::embedded {

namespace {

constexpr int kIdBits = 40;
constexpr RecordId kLastId = (RecordId{1} << kIdBits) - 1;
// The kernel walks a list of ranges at every lock: beyond this, one range for the table is cheaper.
constexpr size_t kMaxRanges = 1000;
constexpr std::chrono::milliseconds kFirstPause{1};
constexpr std::chrono::milliseconds kLongestPause{20};

std::int64_t byteOf(const RecordAddress& record) {
    return (static_cast<std::int64_t>(record.table + 1) << kIdBits) + record.id;
}

// Calls `attempt` until it succeeds or the time is over.
template <typename Attempt>
bool keepTrying(std::chrono::steady_clock::time_point end, Attempt attempt) {
    std::chrono::milliseconds pause = kFirstPause;
    while (!attempt()) {
        const auto now = std::chrono::steady_clock::now();
        if (now >= end)
            return false;
        std::this_thread::sleep_for(
            std::min<std::chrono::steady_clock::duration>(pause, end - now));
        pause = std::min(pause * 2, kLongestPause);
    }
    return true;
}

}  // namespace

RecordLocks::RecordLocks(const QString& lockFile) : m_file(lockFile) {}

bool RecordLocks::lockBytes(const RecordAddress& record, std::int64_t length) {
    return m_file.tryLock(byteOf(record), length);
}

bool RecordLocks::isTaken(const RecordAddress& record) const {
    const auto table = m_statement.find(record.table);
    if (table == m_statement.end())
        return false;
    if (table->second.wholeTable)
        return true;
    auto range = table->second.ranges.upper_bound(record.id);
    return range != table->second.ranges.begin() && (--range)->second >= record.id;
}

bool RecordLocks::tryHold(const RecordAddress& record) {
    const auto held = m_held.find(record);
    if (held != m_held.end()) {
        ++held->second;
        return true;
    }
    if (!isTaken(record) && !lockBytes(record, 1))
        return false;
    m_held.emplace(record, 1);
    return true;
}

bool RecordLocks::hold(const RecordAddress& record, std::chrono::milliseconds wait) {
    return keepTrying(std::chrono::steady_clock::now() + wait, [&] { return tryHold(record); });
}

void RecordLocks::release(const RecordAddress& record) {
    const auto held = m_held.find(record);
    if (held == m_held.end() || --held->second > 0)
        return;
    m_held.erase(held);
    if (!isTaken(record))  // else endStatement() unlocks it
        m_file.unlock(byteOf(record), 1);
}

void RecordLocks::add(std::map<RecordId, RecordId>& ranges, RecordId id) {
    RecordId first = id;
    RecordId last = id;
    auto after = ranges.upper_bound(id);
    if (after != ranges.begin()) {
        const auto before = std::prev(after);
        if (before->second >= id)
            return;
        if (before->second == id - 1) {
            first = before->first;
            ranges.erase(before);
        }
    }
    if (after != ranges.end() && after->first == id + 1) {
        last = after->second;
        ranges.erase(after);
    }
    ranges.emplace(first, last);
}

bool RecordLocks::tryForStatement(const RecordAddress& record) {
    TableRanges& table = m_statement[record.table];
    if (table.wholeTable || isTaken(record))
        return true;
    if (ByteRangeLock::kRangesMerge && table.ranges.size() >= kMaxRanges) {
        m_conflictIsTable = true;
        if (!lockBytes({record.table, 0}, kLastId + 1)) {
            m_conflict = record;
            return false;
        }
        table.wholeTable = true;
        return true;
    }
    m_conflictIsTable = false;
    if (!m_held.contains(record) && !lockBytes(record, 1)) {
        m_conflict = record;
        return false;
    }
    add(table.ranges, record.id);
    return true;
}

void RecordLocks::unlockExceptHeld(int table, RecordId first, RecordId last) {
    auto held = m_held.lower_bound({table, first});
    while (first <= last) {
        const bool stops =
            held != m_held.end() && held->first.table == table && held->first.id <= last;
        const RecordId end = stops ? held->first.id : last + 1;
        if (end > first) {
            if (ByteRangeLock::kRangesMerge) {
                m_file.unlock(byteOf({table, first}), end - first);
            } else {
                for (RecordId id = first; id < end; ++id)
                    m_file.unlock(byteOf({table, id}), 1);
            }
        }
        first = end + 1;
        if (stops)
            ++held;
    }
}

void RecordLocks::endStatement() {
    for (const auto& [number, table] : m_statement) {
        if (table.wholeTable) {
            unlockExceptHeld(number, 0, kLastId);
            continue;
        }
        for (const auto& [first, last] : table.ranges)
            unlockExceptHeld(number, first, last);
    }
    m_statement.clear();
}

bool RecordLocks::waitForConflict(std::chrono::steady_clock::time_point end) {
    if (!m_conflict)
        return true;
    const RecordAddress probe =
        m_conflictIsTable ? RecordAddress{m_conflict->table, 0} : *m_conflict;
    const std::int64_t length = m_conflictIsTable ? kLastId + 1 : 1;
    return keepTrying(end, [&] {
        if (!lockBytes(probe, length))
            return false;
        if (m_conflictIsTable)
            unlockExceptHeld(probe.table, 0, kLastId);
        else
            m_file.unlock(byteOf(probe), 1);
        return true;
    });
}

}  // namespace engines::embedded
