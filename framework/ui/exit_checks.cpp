#include "framework/ui/exit_checks.h"

#include <QPointer>
#include <utility>

#include "framework/ui/dialogs.h"

namespace framework {

ExitChecks::ExitChecks(QWidget& form) : m_form(form) {
    // From the event loop: the new control has the focus by then.
    m_soon.setSingleShot(true);
    m_soon.setInterval(0);
    connect(&m_soon, &QTimer::timeout, this, &ExitChecks::checkExits);
}

void ExitChecks::watch(ExitEdit* edit, Check check) {
    const std::size_t place = m_watched.size();
    m_watched.push_back({edit, std::move(check)});
    connect(edit, &QLineEdit::textEdited, this, [this, place] { m_watched[place].typed = true; });
    connect(edit, &ExitEdit::exited, this, [this, place] {
        if (m_refusing)
            return;
        m_watched[place].left = true;
        m_soon.start();
    });
}

void ExitChecks::checkExits() {
    if (!m_form.isVisible()) {  // closed, and about to be destroyed
        dropExits();
        return;
    }
    for (Watched& watched : m_watched) {
        if (watched.left && !accept(watched))
            return;
    }
}

bool ExitChecks::checkAll() {
    if (m_refusing)
        return false;
    const QWidget* focused = m_form.focusWidget();
    for (Watched& watched : m_watched) {
        const bool due = watched.typed || watched.left || watched.edit == focused;
        if (due && !accept(watched))
            return false;
    }
    return true;
}

bool ExitChecks::accept(Watched& watched) {
    const QString problem = watched.check();
    if (problem.isEmpty()) {
        watched.typed = false;
        watched.left = false;
        return true;
    }
    refuse(*watched.edit, problem);
    return false;
}

void ExitChecks::refuse(ExitEdit& edit, const QString& problem) {
    dropExits();
    m_refusing = true;
    const QPointer<ExitChecks> alive(this);
    Dialogs::warning(&m_form, problem);
    if (alive == nullptr)
        return;
    edit.setFocus();
    edit.selectAll();
    m_refusing = false;
}

void ExitChecks::dropExits() {
    for (Watched& watched : m_watched)
        watched.left = false;
}

void ExitChecks::forget(const ExitEdit* edit) {
    for (Watched& watched : m_watched) {
        if (watched.edit == edit)
            watched.typed = watched.left = false;
    }
}

void ExitChecks::forgetAll() {
    for (Watched& watched : m_watched)
        watched.typed = watched.left = false;
}

}  // namespace framework
