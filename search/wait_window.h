#pragma once

#include <QProgressBar>
#include <QWidget>

#include "framework/ui/close_deferral.h"

namespace search {

/// The window shown during a record-by-record search: "Haku käynnissä", progress, and Escape to
/// cancel.
class WaitWindow : public QWidget {
    Q_OBJECT
  public:
    explicit WaitWindow(QWidget* owner);
    /// Shows the share done (0 to 1) and processes events. @return false if cancelled.
    bool onProgress(double share);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    framework::CloseDeferral m_ownerStaysOpen;
    QProgressBar* m_progress;
    bool m_cancelled = false;
};

}  // namespace search
