#pragma once

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

namespace shell {

/// The main window's line about the company's schedule, with buttons that change and remove it.
/// Hidden while there is none.
class ScheduleLine : public QWidget {
    Q_OBJECT
  public:
    explicit ScheduleLine(QWidget* parent = nullptr);

    /// Reads the schedule of the company in use again. A schedule that cannot be read is told in
    /// the line.
    void refresh();

  Q_SIGNALS:
    void changeWanted();
    void removeWanted();

  private:
    void showText();

    QLabel* m_text;
    QPushButton* m_change;
    QPushButton* m_remove;
    QTimer m_timer;         ///< the run goes on in another process
    bool m_isKnown = true;  ///< the scheduler knows the task
};

}  // namespace shell
