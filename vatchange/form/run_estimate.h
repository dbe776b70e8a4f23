#pragma once

#include <QString>
#include <vector>

#include "vatchange/ports/run_steps.h"

namespace vatchange {

/// How far a whole run is and how long the rest takes. Times in milliseconds since the run began,
/// without those in which a message waits for the user.
class RunEstimate {
  public:
    void plan(std::vector<PlannedStep> steps) { m_steps = std::move(steps); }
    bool isPlanned() const { return !m_steps.empty(); }
    /// A step begins; the ones before it are finished. A step that is not planned is ignored.
    void begin(RunStep step, qint64 now);
    /// Of the present step; total 0: unknown.
    void progress(qint64 done, qint64 total);

    /// "vaihe 3/9"; empty before the first step.
    QString stepText() const;
    /// Share of the run that is done, 0 to 1; never falls.
    double done() const { return m_done; }
    /// Seconds that the rest takes; -1 while it cannot be told.
    qint64 secondsLeft(qint64 now) const;

  private:
    double plannedUntil(std::size_t step) const;  ///< seconds of the steps before
    double plannedDone() const;

    std::vector<PlannedStep> m_steps;
    std::size_t m_step = 0;
    bool m_begun = false;
    double m_share = 0;  ///< of the present step
    double m_done = 0;
    qint64 m_stepBegan = 0;
};

/// "jäljellä noin 40 s"; empty for a negative number.
QString leftText(qint64 seconds);

}  // namespace vatchange
