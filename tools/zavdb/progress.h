#pragma once

#include <QString>
#include <chrono>

namespace tools {

/// One line on standard error that tells how far a long command is, a few times a second. Silent
/// where standard error is no terminal.
class Progress {
  public:
    Progress();
    ~Progress();  ///< takes the line away
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `total` 0: unknown.
    void show(const QString& what, qint64 done, qint64 total = 0);

  private:
    bool m_terminal;
    qsizetype m_width = 0;
    std::chrono::steady_clock::time_point m_next;
};

}  // namespace tools
