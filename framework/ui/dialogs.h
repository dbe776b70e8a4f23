#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>

namespace framework {

enum class MessageKind { Information, Warning, Error };

/// How dialogs reach a person. The program's own handler shows message boxes when a person can see
/// a window and writes to standard error when nobody can; a test replaces it with a script.
class DialogHandler {
  public:
    virtual ~DialogHandler() = default;
    /// False when nobody can see a window (an offscreen platform, a Windows task without a logged
    /// on user): then nothing may wait for an answer.
    virtual bool someoneThere() const = 0;
    virtual void message(QWidget* parent, MessageKind kind, const QString& text) = 0;
    virtual bool ask(QWidget* parent, const QString& text) = 0;
    virtual QString saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                                 const QString& filter) = 0;
};

/// The one way to a dialog. Texts are plain; "\r", "\n" and "\r\n" break lines.
class Dialogs {
  public:
    static bool someoneThere();
    static void message(QWidget* parent, const QString& text);
    static void warning(QWidget* parent, const QString& text);
    static void error(QWidget* parent, const QString& text);
    /// A Yes/No question. @return true for Yes; false also when nobody is there.
    static bool ask(QWidget* parent, const QString& text);
    /// @return the chosen file, empty when cancelled.
    static QString saveFileName(QWidget* parent, const QString& title, const QString& suggested,
                                const QString& filter);

    /// @return the handler until now; nullptr stands for the program's own.
    static DialogHandler* setHandler(DialogHandler* handler);
};

/// Line ends of the quoted texts ("\r", "\r\n") as a window wants them ("\n").
QString withLineBreaks(QString text);

/// Gives a screen reader the hints of a window's controls as their descriptions.
void describeByHints(QWidget& window);

/// Runs a handler of a window and shows what it throws as an error message: no exception may pass
/// through the event loop. @return false when it threw.
bool reportErrors(QWidget* parent, const std::function<void()>& work);

}  // namespace framework
