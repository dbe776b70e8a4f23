#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <vector>

namespace framework {

/// Stands around every nested event loop of a window (message box, menu, file dialog): the box is
/// the window's child, and the code that waits for it goes on in the window. While it lives, the
/// widget's window and the windows that own that one refuse to close; the close that was refused
/// follows from the event loop once the deferral is gone. Deferrals nest.
class CloseDeferral : public QObject {
    Q_OBJECT
  public:
    /// Without a widget it does nothing.
    explicit CloseDeferral(QWidget* widget);
    ~CloseDeferral() override;
    Q_DISABLE_COPY_MOVE(CloseDeferral)

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::vector<QPointer<QWidget>> m_refused;
};

}  // namespace framework
