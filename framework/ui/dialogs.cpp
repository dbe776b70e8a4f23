#include "framework/ui/dialogs.h"

#include "data/error.h"
#include "framework/ui/close_deferral.h"
#include "framework/ui/program_dialogs.h"

namespace framework {

namespace {

ProgramDialogs programDialogs;
DialogHandler* currentHandler = nullptr;

DialogHandler& handler() {
    if (currentHandler != nullptr)
        return *currentHandler;
    return programDialogs;
}

}  // namespace

bool Dialogs::isInteractive() {
    return handler().isInteractive();
}

void Dialogs::message(QWidget* parent, const QString& text) {
    const CloseDeferral deferral(parent);
    handler().message(parent, MessageKind::Information, withLineBreaks(text));
}

void Dialogs::warning(QWidget* parent, const QString& text) {
    const CloseDeferral deferral(parent);
    handler().message(parent, MessageKind::Warning, withLineBreaks(text));
}

void Dialogs::error(QWidget* parent, const QString& text) {
    const CloseDeferral deferral(parent);
    handler().message(parent, MessageKind::Error, withLineBreaks(text));
}

void Dialogs::passingMessage(QWidget* parent, const QString& text, int seconds) {
    const CloseDeferral deferral(parent);
    handler().passingMessage(parent, withLineBreaks(text), seconds);
}

bool Dialogs::ask(QWidget* parent, const QString& text) {
    const CloseDeferral deferral(parent);
    return handler().ask(parent, withLineBreaks(text));
}

int Dialogs::choose(QWidget* parent, const QString& text, const QStringList& answers) {
    const CloseDeferral deferral(parent);
    return handler().choose(parent, withLineBreaks(text), answers);
}

bool Dialogs::exec(QDialog& dialog) {
    const CloseDeferral deferral(dialog.parentWidget());
    return handler().exec(dialog) == QDialog::Accepted;
}

QString Dialogs::saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                              const QString& filter) {
    const CloseDeferral deferral(parent);
    return handler().saveFileName(parent, title, suggested, filter);
}

QString Dialogs::openFileName(QWidget* parent, const QString& title, const QString& folder,
                              const QString& filter) {
    const CloseDeferral deferral(parent);
    return handler().openFileName(parent, title, folder, filter);
}

QString Dialogs::folder(QWidget* parent, const QString& title, const QString& start) {
    const CloseDeferral deferral(parent);
    return handler().folder(parent, title, start);
}

DialogHandler* Dialogs::setHandler(DialogHandler* handler) {
    DialogHandler* previous = currentHandler;
    currentHandler = handler;
    return previous;
}

QString withLineBreaks(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

void describeByHints(QWidget& window) {
    for (QWidget* control : window.findChildren<QWidget*>()) {
        if (control->accessibleDescription().isEmpty() && !control->toolTip().isEmpty())
            control->setAccessibleDescription(control->toolTip());
    }
}

bool reportErrors(QWidget* parent, const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const std::exception& e) {
        Dialogs::error(parent, data::errorText(e));
    }
    return false;
}

}  // namespace framework
