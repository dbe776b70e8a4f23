#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <vector>

namespace framework {

/// Guards a nested event loop of a window (message box, menu, file dialog). The box is the window's
/// child and the waiting code runs on in the window, so the window and its owners must not close
/// meanwhile: they refuse, and close from the event loop once the deferral is gone. Deferrals nest.
class CloseDeferral : public QObject {
    Q_OBJECT
  public:
    /// Does nothing for a null widget.
    explicit CloseDeferral(QWidget* widget);
    ~CloseDeferral() override;
    Q_DISABLE_COPY_MOVE(CloseDeferral)

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::vector<QPointer<QWidget>> m_refused;
};

}  // namespace framework
