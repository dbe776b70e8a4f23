#include "data/engine/run_journal.h"

#include <algorithm>

namespace data {

namespace {

constexpr int kBatch = 512;

}  // namespace

bool isUnfinished(RunState state) {
    return state == RunState::Interrupted || state == RunState::Stopped ||
           state == RunState::Incomplete;
}

std::optional<JournalRun> RunJournal::run(qint64 number) {
    for (JournalRun& run : runs()) {
        if (run.number == number)
            return std::move(run);
    }
    return std::nullopt;
}

void RunJournal::visit(qint64 run, Direction direction,
                       const std::function<bool(const JournalEntry&)>& see) {
    qint64 from = 0;
    for (;;) {
        const std::vector<JournalEntry> batch = entries(run, from, direction, kBatch);
        for (const JournalEntry& entry : batch) {
            if (!see(entry))
                return;
        }
        if (batch.size() < kBatch)
            return;
        from = batch.back().seq;
    }
}

}  // namespace data
