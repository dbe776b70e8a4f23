#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

namespace framework {

/// How the program reaches the desktop's other programs. The program's own starts them; a test
/// replaces it, so that no test starts anything.
class Desktop {
  public:
    virtual ~Desktop() = default;

    enum class Outcome { Done, Failed, NotThere };

    /// Runs a program of the search path and waits a few seconds for its end; one that is still
    /// running then counts as Done (a mail program that stays open). Failed: an exit status other
    /// than 0.
    virtual Outcome run(const QString& program, const QStringList& arguments);
    /// Opens an address with the program that the desktop keeps for it. @return false when there is
    /// none.
    virtual bool open(const QUrl& address);
    /// Hands a message with one attachment to the mail program through the system's own mail
    /// interface, where it has one. A user who gives up counts as Done.
    virtual Outcome sendThroughSystem(const QString& subject, const QString& text,
                                      const QString& attachment);

    static Desktop& instance();
    /// @return the one until now; nullptr stands for the program's own.
    static Desktop* setInstance(Desktop* desktop);
};

/// How a message was begun.
enum class MailResult {
    Attached,  ///< the mail program shows the message with the file
    ByHand,    ///< the mail program shows a message that names the file, the folder is open
    Impossible
};

/// Opens the desktop's mail program on a new message with a file attached where the desktop allows
/// it.
MailResult composeMail(const QString& subject, const QString& text, const QString& fileName);

}  // namespace framework
