#pragma once

#include <QDateTime>
#include <functional>

namespace data {

/// The program's clock, in local time. SQL functions (CURDATE(), CURTIME(), now()), logs and the
/// early-date check all use it, so that tests can set the time for all of them.
class Clock {
  public:
    /// To the second. Fast enough for every row of a run: the time zone is looked up once a second.
    static QDateTime now();
    /// With milliseconds, for traces.
    static QDateTime preciseNow();
    static QDate today() { return now().date(); }

    /// Replaces the time source during its lifetime. For tests.
    class Override {
      public:
        explicit Override(std::function<QDateTime()> source);
        ~Override();
        Override(const Override&) = delete;
        Override& operator=(const Override&) = delete;

      private:
        std::function<QDateTime()> m_previous;
    };
};

}  // namespace data
