#include "vatchange/changes/change_reader.h"

#include "vatchange/changes/run_reader.h"
#include "vatchange/changes/verified_rows.h"

namespace vatchange {

namespace {

constexpr std::chrono::milliseconds kProgressInterval(100);

}  // namespace

ChangeReader::ChangeReader(data::Database& database, std::vector<qint64> runs, ChangeList& list)
    : m_database(database), m_list(list), m_runs(std::move(runs)) {
    if (!m_runs.empty())
        m_reader = std::make_unique<RunReader>(m_database, m_runs.front(), m_list);
}

ChangeReader::~ChangeReader() = default;

bool ChangeReader::read(const QDeadlineTimer& deadline) {
    while (m_run < m_runs.size()) {
        if (m_journalRead) {
            addVerification(m_database, *m_reader, m_list);
            m_reader.reset();
            m_journalRead = false;
            ++m_run;
        } else {
            if (!m_reader)
                m_reader = std::make_unique<RunReader>(m_database, m_runs[m_run], m_list);
            m_journalRead = !m_reader->read(deadline);
            if (m_journalRead)
                return true;  // so that the user is told before it is verified
        }
        if (deadline.hasExpired())
            break;
    }
    return m_run < m_runs.size();
}

bool ChangeReader::readAll(const std::function<bool(double)>& progress) {
    while (read(QDeadlineTimer(kProgressInterval))) {
        if (progress && !progress(share()))
            return false;
    }
    return true;
}

double ChangeReader::share() const {
    if (m_runs.empty())
        return 1.0;
    const double part = m_reader ? m_reader->share() : 0.0;
    return (static_cast<double>(m_run) + part) / static_cast<double>(m_runs.size());
}

}  // namespace vatchange
