#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>
#include <functional>

namespace framework {

enum class MessageKind { Information, Warning, Error };

/// Shows dialogs. The program's own handler shows message boxes, or writes to standard error if
/// nobody can see a window; tests use a script.
class DialogHandler {
  public:
    virtual ~DialogHandler() = default;
    /// False if nobody can see a window (offscreen platform, Windows task without a logged-on
    /// user). Nothing may wait for an answer then.
    virtual bool isInteractive() const = 0;
    virtual void message(QWidget* parent, MessageKind kind, const QString& text) = 0;
    /// A message that closes by itself after some seconds.
    virtual void passingMessage(QWidget* parent, const QString& text, int /*seconds*/) {
        message(parent, MessageKind::Information, text);
    }
    virtual bool ask(QWidget* parent, const QString& text) = 0;
    /// Runs a window of its own. @return QDialog::Accepted or Rejected
    virtual int exec(QDialog& dialog) = 0;
    virtual int choose(QWidget* parent, const QString& text, const QStringList& answers) = 0;
    virtual QString saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                                 const QString& filter) = 0;
    virtual QString openFileName(QWidget* parent, const QString& title, const QString& folder,
                                 const QString& filter) = 0;
    virtual QString folder(QWidget* parent, const QString& title, const QString& start) = 0;
};

/// All dialogs go through this class. Texts are plain; "\r", "\n" and "\r\n" break lines.
class Dialogs {
  public:
    static bool isInteractive();
    static void message(QWidget* parent, const QString& text);
    static void warning(QWidget* parent, const QString& text);
    static void error(QWidget* parent, const QString& text);
    /// A message that nobody has to answer: it closes after `seconds`, counted on its button.
    static void passingMessage(QWidget* parent, const QString& text, int seconds);
    /// Asks a Yes/No question. @return true for Yes; false if nobody is there
    static bool ask(QWidget* parent, const QString& text);
    /// Asks with one button for each answer; the first is the default, Escape gives the last.
    /// @return the answer's index; the last if nobody is there
    static int choose(QWidget* parent, const QString& text, const QStringList& answers);
    /// Runs a window that asks more than a message box can. @return false if it was rejected or
    /// nobody is there
    static bool exec(QDialog& dialog);
    /// @return the chosen file; empty if cancelled
    static QString saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                                const QString& filter);
    /// @return the chosen file, which exists; empty if cancelled
    static QString openFileName(QWidget* parent, const QString& title, const QString& folder,
                                const QString& filter);
    /// @return the chosen folder; empty if cancelled
    static QString folder(QWidget* parent, const QString& title, const QString& start);

    /// @return the previous handler. nullptr sets the program's own.
    static DialogHandler* setHandler(DialogHandler* handler);
};

/// Converts "\r" and "\r\n" to "\n".
QString withLineBreaks(QString text);

/// Sets the controls' tool tips as their descriptions for screen readers.
void describeByHints(QWidget& window);

/// Runs a window's handler and shows its exception as an error message: none may pass through the
/// event loop. @return false if it threw
bool reportErrors(QWidget* parent, const std::function<void()>& work);

}  // namespace framework
