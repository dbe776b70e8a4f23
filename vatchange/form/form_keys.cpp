#include <QCoreApplication>
#include <QKeyEvent>

#include "framework/ui/dialogs.h"
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
        leaveByKey();
        return;
    }
    TPerusForm::keyPressEvent(event);
}

// Escape is easily pressed by mistake, so it asks before unsaved changes are lost.
void TAlvMuutosLomake::leaveByKey() {
    const bool loses = !m_running && !unattended() && hasUnsavedChanges();
    if (!loses || framework::Dialogs::ask(
                      this, QStringLiteral("Määrittelyä on muutettu, eikä sitä ole talletettu.\r"
                                           "Suljetaanko lomake?")))
        close();
}

}  // namespace vatchange
