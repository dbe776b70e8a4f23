#include <QElapsedTimer>
#include <algorithm>
#include <unordered_set>
#include <vector>

#include "search/view_rows.h"

// Walking all records at once: record search.

namespace search {

using data::RecordId;
using data::StoredRecord;

namespace {

constexpr int kBatch = 16384;
constexpr int kIdBatch = 65536;
constexpr int kRecordBatch = 256;
constexpr size_t kHints = size_t{1} << 23;  // bits
constexpr int kReportMs = 40;
// Above this share of all records, reading them one by one takes longer than all in storage order.
constexpr qint64 kMostByKey = 20;

}  // namespace

/// Accepted records, and the caller's progress.
class ViewRows::Search {
  public:
    Search(ViewRows& view, const std::function<bool(double)>& onProgress)
        : m_view(view),
          m_onProgress(onProgress),
          m_total(std::max<qint64>(view.m_places.count(), 1)),
          m_hints(kHints) {
        m_sinceReport.start();
    }

    enum class Outcome { Done, Cancelled, TooMany };

    /// Reads only the records whose text in a key is accepted.
    Outcome findByKey(const KeyTextTest& byKey) {
        std::vector<RecordId> candidates;
        const auto most = static_cast<size_t>(m_total / kMostByKey);
        std::optional<data::TableFile::KeyEntry> at;
        qint64 seen = 0;
        do {
            at = m_view.m_file->visitKeyTexts(byKey.key, at, kIdBatch,
                                              [&](RecordId id, QByteArrayView text) {
                                                  ++seen;
                                                  if (byKey.accepts(text))
                                                      candidates.push_back(id);
                                                  return candidates.size() <= most;
                                              });
            if (candidates.size() > most)
                return Outcome::TooMany;
            if (!report(seen))
                return Outcome::Cancelled;
        } while (at);
        std::sort(candidates.begin(), candidates.end());  // the order of storage
        for (size_t i = 0; i < candidates.size(); ++i) {
            const std::optional<StoredRecord> record = m_view.m_file->get(candidates[i]);
            if (record)
                see(record->id, record->bytes);
            if (i % kRecordBatch == 0 && !report(m_total))
                return Outcome::Cancelled;
        }
        return Outcome::Done;
    }

    /// Visits all records in the fastest order. @return false if cancelled.
    bool findInAll() {
        std::optional<RecordId> at;
        qint64 seen = 0;
        do {
            at = m_view.m_file->visitStored(at, kBatch, [&](RecordId id, const QByteArray& bytes) {
                ++seen;
                see(id, bytes);
                return true;
            });
            if (!report(seen))
                return false;
        } while (at);
        return true;
    }

    /// The accepted records in the view's key order.
    void collect(std::deque<RecordId>& ids) const {
        std::optional<StoredRecord> last;
        do {
            last = m_view.m_file->visitIds(m_view.key(), last, kIdBatch, [&](RecordId id) {
                if (m_hints[static_cast<size_t>(id) % kHints] && m_accepted.contains(id))
                    ids.push_back(id);
            });
        } while (last && ids.size() < m_accepted.size());
    }

  private:
    void see(RecordId id, const QByteArray& bytes) {
        if (!m_view.isWanted(id, bytes))
            return;
        m_accepted.insert(id);
        m_hints[static_cast<size_t>(id) % kHints] = true;
    }

    bool report(qint64 seen) {
        if (m_sinceReport.elapsed() < kReportMs)
            return true;
        m_sinceReport.restart();
        return m_onProgress(
            std::min(1.0, static_cast<double>(seen) / static_cast<double>(m_total)));
    }

    ViewRows& m_view;
    const std::function<bool(double)>& m_onProgress;
    qint64 m_total;
    std::unordered_set<RecordId> m_accepted;
    std::vector<bool> m_hints;  // avoids most lookups in the set
    QElapsedTimer m_sinceReport;
};

bool ViewRows::learnAll(const std::function<bool(double)>& onProgress,
                        const std::optional<KeyTextTest>& byKey) {
    Search found(*this, onProgress);
    const Search::Outcome outcome = byKey ? found.findByKey(*byKey) : Search::Outcome::TooMany;
    if (outcome == Search::Outcome::Cancelled)
        return false;
    if (outcome == Search::Outcome::TooMany && !found.findInAll())
        return false;
    m_ids.clear();
    m_probes.clear();
    found.collect(m_ids);
    m_before = m_after = 0;
    m_firstPlace = m_low;
    m_endPlace = m_high;
    m_startReached = m_endReached = true;
    return true;
}

}  // namespace search
