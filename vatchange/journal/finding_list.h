#pragma once

#include "vatchange/journal/verification.h"

namespace vatchange {

/// Counts findings, hands them on and keeps the first of each kind.
class FindingList {
  public:
    FindingList(Verification& verification, const VerifyOptions& options)
        : m_verification(verification), m_options(options) {}

    /// `make` gives the finding; it is called only for one that somebody sees.
    template <typename Make>
    void add(FindingKind kind, Make&& make) {
        const auto index = static_cast<size_t>(kind);
        const bool kept = m_verification.counts[index]++ < m_options.listed;
        if (!kept && !m_options.see)
            return;
        Finding finding = make();
        finding.kind = kind;
        if (m_options.see)
            m_options.see(finding);
        if (kept)
            m_verification.findings.push_back(std::move(finding));
    }

    /// Hands on what a rule leaves behind, if somebody asked for it.
    template <typename Make>
    void tellRule(Make&& make) const {
        if (m_options.see && m_options.seeRules)
            m_options.see(make());
    }

    /// To be called for each entry and record. @throws Cancelled if the caller has had enough.
    void tick() {
        if (m_options.goOn && ++m_ticks % kTicksPerCall == 0 && !m_options.goOn())
            throw Cancelled();
    }
    struct Cancelled {};

  private:
    static constexpr int kTicksPerCall = 500;
    int m_ticks = 0;
    Verification& m_verification;
    const VerifyOptions& m_options;
};

}  // namespace vatchange
