#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

namespace framework {

/// Access to the desktop's other programs. Tests replace it, so that they start none.
class Desktop {
  public:
    virtual ~Desktop() = default;

    enum class Outcome { Done, Failed, NotThere };

    /// Runs a program from the search path and waits some seconds for its end. One still running
    /// counts as Done (a mail program stays open); an exit status other than 0 is Failed.
    virtual Outcome run(const QString& program, const QStringList& arguments);
    /// Opens an address in the desktop's program for it. @return false if there is none
    virtual bool open(const QUrl& address);
    /// Passes a message with an attachment to the mail program through the system's mail interface,
    /// if there is one. A user's cancel counts as Done.
    virtual Outcome sendThroughSystem(const QString& subject, const QString& text,
                                      const QString& attachment);

    static Desktop& instance();
    /// @return the previous one. nullptr sets the program's own.
    static Desktop* setInstance(Desktop* desktop);
};

/// How the message was started.
enum class MailResult {
    Attached,  ///< the mail program shows the message with the file
    ByHand,    ///< the mail program shows a message that names the file, the folder is open
    Impossible
};

/// Opens a new message in the desktop's mail program, with the file attached if possible.
MailResult composeMail(const QString& subject, const QString& text, const QString& fileName);

}  // namespace framework
