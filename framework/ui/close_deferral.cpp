#include "framework/ui/close_deferral.h"

#include <QEvent>

namespace framework {

CloseDeferral::CloseDeferral(QWidget* widget) {
    for (; widget != nullptr; widget = widget->parentWidget()) {
        if (widget->isWindow())
            widget->installEventFilter(this);
    }
}

CloseDeferral::~CloseDeferral() {
    for (QWidget* window : m_refused) {
        if (window == nullptr)
            continue;
        const auto closeIfStillOpen = [window] {
            if (window->isVisible())
                window->close();
        };
        QMetaObject::invokeMethod(window, closeIfStillOpen, Qt::QueuedConnection);
    }
}

bool CloseDeferral::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Close)
        return false;
    event->ignore();
    m_refused.emplace_back(qobject_cast<QWidget*>(watched));
    return true;
}

}  // namespace framework
