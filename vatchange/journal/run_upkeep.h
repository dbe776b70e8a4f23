#pragma once

#include "data/engine/run_journal.h"

namespace vatchange {

/// The company's run journal. @throws RunRefused if its engine keeps none.
data::RunJournal& requireJournal(data::Database& database);
enum class EvenRunning { No, Yes };
/// The head of a run. @throws RunRefused if there is no such run, or it is going on.
data::JournalRun requireRun(data::RunJournal& journal, qint64 run,
                            EvenRunning evenRunning = EvenRunning::No);

/// The company's run lock. @throws RunRefused if another program holds it.
class RunLock {
  public:
    explicit RunLock(data::Database& database);
    ~RunLock();
    RunLock(const RunLock&) = delete;
    RunLock& operator=(const RunLock&) = delete;

  private:
    data::Database& m_database;
};

/// Leaves an unfinished run as it is: it counts as finished. @throws RunRefused, data::DataError.
void acceptRun(data::Database& database, qint64 run);
/// Removes a run's journal. `force`: also that of an unfinished run, and of an undo that took back
/// a part of a run. @throws RunRefused, data::DataError.
void forgetRun(data::Database& database, qint64 run, bool force);

}  // namespace vatchange
