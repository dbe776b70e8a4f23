#pragma once

#include <QDateTime>
#include <functional>

namespace data {

/// The product's clock: local time. CURDATE(), CURTIME() and now() of the SQL, the logs and the
/// early-date check all ask it, so that a test can set the time of all of them at once.
class Clock {
  public:
    /// To the second: a run asks for every row, and the system's zone is looked up once a second.
    static QDateTime now();
    /// With milliseconds, for traces.
    static QDateTime preciseNow();
    static QDate today() { return now().date(); }

    /// Replaces the source of time until the object goes; for tests.
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
