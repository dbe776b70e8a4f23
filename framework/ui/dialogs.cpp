#include "framework/ui/dialogs.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTextStream>

#include "data/error.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace framework {

namespace {

// Windows open also where no screen shows them: a task that runs with nobody logged on, and a
// service, have a window station of their own.
bool stationIsVisible() {
#ifdef Q_OS_WIN
    USEROBJECTFLAGS flags{};
    return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags,
                                     nullptr) != 0 &&
           (flags.dwFlags & WSF_VISIBLE) != 0;
#else
    return true;
#endif
}

class ProgramDialogs : public DialogHandler {
  public:
    bool someoneThere() const override {
        static const QStringList kInvisible = {QStringLiteral("offscreen"),
                                               QStringLiteral("minimal")};
        return !kInvisible.contains(QGuiApplication::platformName()) && stationIsVisible();
    }

    void message(QWidget* parent, MessageKind kind, const QString& text) override {
        if (!someoneThere()) {
            QTextStream(stderr) << text << '\n';
            return;
        }
        QMessageBox box(icon(kind), title(parent), text, QMessageBox::Ok, parent);
        box.setTextFormat(Qt::PlainText);
        box.setTextInteractionFlags(Qt::TextSelectableByMouse);
        box.exec();
    }

    bool ask(QWidget* parent, const QString& text) override {
        if (!someoneThere())
            return false;
        QMessageBox box(QMessageBox::Question, title(parent), text, QMessageBox::NoButton, parent);
        box.setTextFormat(Qt::PlainText);
        const QPushButton* yes =
            box.addButton(QStringLiteral("&Kyllä"), QMessageBox::ButtonRole::YesRole);
        QPushButton* no = box.addButton(QStringLiteral("&Ei"), QMessageBox::ButtonRole::NoRole);
        box.setDefaultButton(no);
        box.setEscapeButton(no);
        box.exec();
        return box.clickedButton() == yes;
    }

    QString saveFileName(QWidget* parent, const QString& dialogTitle, const QString& suggested,
                         const QString& filter) override {
        if (!someoneThere())
            return {};
        return QFileDialog::getSaveFileName(parent, dialogTitle, suggested, filter);
    }

  private:
    static QMessageBox::Icon icon(MessageKind kind) {
        switch (kind) {
            case MessageKind::Information:
                return QMessageBox::Information;
            case MessageKind::Warning:
                return QMessageBox::Warning;
            case MessageKind::Error:
                break;
        }
        return QMessageBox::Critical;
    }

    static QString title(const QWidget* parent) {
        return parent != nullptr ? parent->window()->windowTitle() : QStringLiteral("Taksavaihe");
    }
};

ProgramDialogs programDialogs;
DialogHandler* currentHandler = nullptr;

DialogHandler& handler() {
    if (currentHandler != nullptr)
        return *currentHandler;
    return programDialogs;
}

}  // namespace

bool Dialogs::someoneThere() {
    return handler().someoneThere();
}

void Dialogs::message(QWidget* parent, const QString& text) {
    handler().message(parent, MessageKind::Information, withLineBreaks(text));
}

void Dialogs::warning(QWidget* parent, const QString& text) {
    handler().message(parent, MessageKind::Warning, withLineBreaks(text));
}

void Dialogs::error(QWidget* parent, const QString& text) {
    handler().message(parent, MessageKind::Error, withLineBreaks(text));
}

bool Dialogs::ask(QWidget* parent, const QString& text) {
    return handler().ask(parent, withLineBreaks(text));
}

QString Dialogs::saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                              const QString& filter) {
    return handler().saveFileName(parent, title, suggested, filter);
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
