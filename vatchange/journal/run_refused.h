#pragma once

#include <QString>
#include <stdexcept>

namespace vatchange {

/// Why something cannot be done with a run; nothing was changed. A whole sentence in each language.
class RunRefused : public std::runtime_error {
  public:
    RunRefused(const QString& english, QString finnish)
        : std::runtime_error(english.toStdString()),
          m_english(english),
          m_finnish(std::move(finnish)) {}
    const QString& english() const { return m_english; }
    const QString& finnish() const { return m_finnish; }

  private:
    QString m_english;
    QString m_finnish;
};

}  // namespace vatchange
