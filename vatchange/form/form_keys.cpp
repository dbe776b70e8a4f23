#include <QCoreApplication>
#include <QKeyEvent>

#include "vatchange/form/change_form.h"

// Keys that the controls of the change form leave unhandled.

namespace vatchange {

void TAlvMuutosLomake::keyPressEvent(QKeyEvent* event) {
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (plain && enter && focusWidget() != nullptr && !m_running) {
        // Enter commits the edit and moves to the next control. It never starts a run.
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QCoreApplication::sendEvent(focusWidget(), &tab);
        return;
    }
    if (plain && event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    TPerusForm::keyPressEvent(event);
}

}  // namespace vatchange
