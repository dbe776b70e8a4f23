#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "framework/ui/close_deferral.h"

namespace framework {

/// Shows the progress of long work and lets the user stop it ("Keskeytä", Escape). Blocks the other
/// windows of the program while it lives, but appears only if the work takes longer than a moment.
class WorkDialog : public QDialog {
    Q_OBJECT
  public:
    WorkDialog(QWidget* parent, const QString& title);

    /// What is being done; total 0: it is not known how much there is. Processes events at most
    /// every 50 ms, so it may be called for every record.
    /// @return false if the user has stopped the work.
    bool step(const QString& text, qint64 done = 0, qint64 total = 0);
    bool cancelled() const { return m_cancelled; }

    void reject() override;

  private:
    CloseDeferral m_deferral;
    QLabel* m_text;
    QProgressBar* m_progress;
    QPushButton* m_stop;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceEvents;
    QElapsedTimer m_sinceText;
    QString m_shown;
    bool m_cancelled = false;
};

}  // namespace framework
