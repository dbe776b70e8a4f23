#include <QCoreApplication>
#include <QKeyEvent>

#include "framework/ui/dialogs.h"
#include "vatchange/form/change_form.h"

// Keys that no control of the change form has taken for itself.

namespace vatchange {

void TAlvMuutosLomake::keyPressEvent(QKeyEvent* event) {
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (plain && enter && focusWidget() != nullptr && !m_running) {
        // Enter takes what was typed and goes on to the next control. It never starts a run.
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

// Escape is pressed more easily than a button: what was typed and not saved is asked about.
void TAlvMuutosLomake::leaveByKey() {
    const bool loses = !m_running && !unattended() && hasUnsavedChanges();
    if (!loses || framework::Dialogs::ask(
                      this, QStringLiteral("Määrittelyä on muutettu, eikä sitä ole talletettu.\r"
                                           "Suljetaanko lomake?")))
        close();
}

}  // namespace vatchange
