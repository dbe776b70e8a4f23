#include "framework/ui/program_dialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTextStream>
#include <QTimer>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace framework {

namespace {

// Windows can also be created where no screen shows them: services, and tasks without a logged-on
// user, have their own window station.
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

QMessageBox::Icon icon(MessageKind kind) {
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

QString title(const QWidget* parent) {
    return parent != nullptr ? parent->window()->windowTitle() : QStringLiteral("Taksavaihe");
}

}  // namespace

bool ProgramDialogs::isInteractive() const {
    static const QStringList kInvisible = {QStringLiteral("offscreen"), QStringLiteral("minimal")};
    return !kInvisible.contains(QGuiApplication::platformName()) && stationIsVisible();
}

void ProgramDialogs::message(QWidget* parent, MessageKind kind, const QString& text) {
    if (!isInteractive()) {
        QTextStream(stderr) << text << '\n';
        return;
    }
    QMessageBox box(icon(kind), title(parent), text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.exec();
}

void ProgramDialogs::passingMessage(QWidget* parent, const QString& text, int seconds) {
    if (!isInteractive()) {
        QTextStream(stderr) << text << '\n';
        return;
    }
    QMessageBox box(QMessageBox::Information, title(parent), text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    QAbstractButton* ok = box.button(QMessageBox::Ok);
    const auto showRest = [ok](int rest) { ok->setText(QStringLiteral("OK (%1 s)").arg(rest)); };
    showRest(seconds);
    QTimer second;
    second.callOnTimeout(&box, [&box, &showRest, rest = seconds]() mutable {
        if (--rest <= 0)
            box.accept();
        else
            showRest(rest);
    });
    second.start(std::chrono::seconds(1));
    box.exec();
}

bool ProgramDialogs::ask(QWidget* parent, const QString& text) {
    if (!isInteractive())
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

int ProgramDialogs::choose(QWidget* parent, const QString& text, const QStringList& answers) {
    const int last = static_cast<int>(answers.size()) - 1;
    if (!isInteractive())
        return last;
    QMessageBox box(QMessageBox::Question, title(parent), text, QMessageBox::NoButton, parent);
    box.setTextFormat(Qt::PlainText);
    QList<QAbstractButton*> buttons;
    // one role keeps the order on every platform
    for (const QString& answer : answers)
        buttons += box.addButton(answer, QMessageBox::ButtonRole::ActionRole);
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.first()));
    box.setEscapeButton(buttons.last());
    box.exec();
    const auto chosen = static_cast<int>(buttons.indexOf(box.clickedButton()));
    return chosen < 0 ? last : chosen;
}

int ProgramDialogs::exec(QDialog& dialog) {
    return isInteractive() ? dialog.exec() : QDialog::Rejected;
}

QString ProgramDialogs::saveFileName(QWidget* parent, const QString& dialogTitle,
                                     const QString& suggested, const QString& filter) {
    if (!isInteractive())
        return {};
    return QFileDialog::getSaveFileName(parent, dialogTitle, suggested, filter);
}

QString ProgramDialogs::openFileName(QWidget* parent, const QString& dialogTitle,
                                     const QString& folder, const QString& filter) {
    if (!isInteractive())
        return {};
    return QFileDialog::getOpenFileName(parent, dialogTitle, folder, filter);
}

QString ProgramDialogs::folder(QWidget* parent, const QString& dialogTitle, const QString& start) {
    if (!isInteractive())
        return {};
    QString existing = start;
    while (!existing.isEmpty() && !QFileInfo(existing).isDir())
        existing.truncate(qMax<qsizetype>(0, existing.lastIndexOf(QLatin1Char('/'))));
    return QFileDialog::getExistingDirectory(parent, dialogTitle,
                                             existing.isEmpty() ? QDir::homePath() : existing);
}

}  // namespace framework
