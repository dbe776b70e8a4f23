#pragma once

#include <QDeadlineTimer>
#include <functional>
#include <memory>
#include <vector>

#include "data/engine/run_journal.h"
#include "vatchange/changes/change_list.h"

namespace vatchange {

class RunReader;

/// Reads the changes of runs into a list, a slice of time after the other, so that a window shows
/// the first rows at once. When the journal is read, each run is verified, and what deserves a look
/// is marked or added.
class ChangeReader {
  public:
    /// Database and list must outlive the reader. What it throws: RunRefused if the engine keeps no
    /// journal, there is no such run, or a table's description has changed since; data::DataError.
    ChangeReader(data::Database& database, std::vector<qint64> runs, ChangeList& list);
    ~ChangeReader();

    /// Reads on until the deadline. The verification of a run is not divided.
    /// @return false once everything is read.
    bool read(const QDeadlineTimer& deadline);
    /// Reads everything. `progress` gets the share done (0 to 1) a few times a second; false
    /// cancels. @return false if cancelled: the list is incomplete.
    bool readAll(const std::function<bool(double)>& progress = {});

    double share() const;
    /// The next slice verifies a run, which may take seconds.
    bool verifiesNext() const { return m_journalRead; }

  private:
    data::Database& m_database;
    ChangeList& m_list;
    std::vector<qint64> m_runs;
    size_t m_run = 0;  // that is being read
    std::unique_ptr<RunReader> m_reader;
    bool m_journalRead = false;  // of that run
};

}  // namespace vatchange
