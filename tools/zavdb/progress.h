#pragma once

#include <QString>
#include <chrono>

namespace tools {

/// Shows the progress of a long command on standard error, a few times a second. Silent if standard
/// error is not a terminal.
class Progress {
  public:
    Progress();
    ~Progress();  ///< clears the line
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
