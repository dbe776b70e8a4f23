#include "vatchange/form/run_estimate.h"

#include <algorithm>
#include <cmath>

namespace vatchange {

namespace {

constexpr qint64 kEstimateAfterMs = 2000;
constexpr double kStepEstimateFrom = 0.02;  // share of a step from which its own speed counts

}  // namespace

double RunEstimate::plannedUntil(std::size_t step) const {
    double seconds = 0;
    for (std::size_t i = 0; i < step; ++i)
        seconds += m_steps[i].seconds;
    return seconds;
}

double RunEstimate::plannedDone() const {
    return m_begun ? plannedUntil(m_step) + m_share * m_steps[m_step].seconds : 0;
}

void RunEstimate::begin(RunStep step, qint64 now) {
    const auto found = std::find_if(m_steps.begin(), m_steps.end(),
                                    [step](const PlannedStep& s) { return s.step == step; });
    if (found == m_steps.end())
        return;
    m_step = static_cast<std::size_t>(found - m_steps.begin());
    m_begun = true;
    m_share = 0;
    m_stepBegan = now;
    m_done = std::max(m_done, plannedDone() / plannedUntil(m_steps.size()));
}

void RunEstimate::progress(qint64 done, qint64 total) {
    if (!m_begun || total <= 0)
        return;
    m_share = std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0);
    m_done = std::max(m_done, plannedDone() / plannedUntil(m_steps.size()));
}

QString RunEstimate::stepText() const {
    return m_begun ? QStringLiteral("vaihe %1/%2").arg(m_step + 1).arg(m_steps.size()) : QString();
}

qint64 RunEstimate::secondsLeft(qint64 now) const {
    const double before = m_begun ? plannedUntil(m_step) : 0;
    const double doneSeconds = plannedDone();
    if (now < kEstimateAfterMs || doneSeconds <= 0)
        return -1;
    // the steps to come: as planned, at the speed of the run so far
    const double slowness = static_cast<double>(now) / 1000 / doneSeconds;
    const double step = m_steps[m_step].seconds;
    const double later = (plannedUntil(m_steps.size()) - before - step) * slowness;
    double present = (1 - m_share) * step * slowness;
    if (m_share >= kStepEstimateFrom)
        present = static_cast<double>(now - m_stepBegan) / 1000 * (1 - m_share) / m_share;
    return std::llround(present + later) + 1;
}

QString leftText(qint64 seconds) {
    if (seconds < 0)
        return {};
    return seconds < 90 ? QStringLiteral("jäljellä noin %1 s").arg(seconds)
                        : QStringLiteral("jäljellä noin %1 min").arg((seconds + 59) / 60);
}

}  // namespace vatchange
