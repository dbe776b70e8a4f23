#pragma once

#include <QProgressBar>
#include <QWidget>

#include "framework/ui/close_deferral.h"

namespace search {

/// The window shown during a search record by record: "Haku käynnissä", how far it has come, and
/// Escape breaks off.
class WaitWindow : public QWidget {
    Q_OBJECT
  public:
    explicit WaitWindow(QWidget* owner);
    /// Shows how much is done (0 to 1) and takes key presses. @return false when broken off.
    bool goOn(double share);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    framework::CloseDeferral m_ownerStaysOpen;
    QProgressBar* m_progress;
    bool m_brokenOff = false;
};

}  // namespace search
