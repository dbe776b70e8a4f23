#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <vector>

#include "framework/ui/value_edits.h"

namespace framework {

/// Checks what a person types into the edits of a form. An edit is checked when the focus has left
/// it for another control, and, by checkAll(), before what the form says is used. A refused edit
/// gets a warning and the focus back; that the focus leaves another edit for it is no exit of that
/// one. Values that were set (loaded, computed) are not checked until a person enters the edit.
class ExitChecks : public QObject {
    Q_OBJECT
  public:
    /// Tells what is wrong with an edit's text, nothing when it can stay. May tidy the edit.
    using Check = std::function<QString()>;

    /// Warnings are boxes of `form`.
    explicit ExitChecks(QWidget& form);

    void watch(ExitEdit* edit, Check check);

    /// Checks every edit that was typed into since it was last accepted, or that was left, or that
    /// has the focus. @return false when one was refused, after its warning.
    bool checkAll();

    /// Exits that were not checked yet count as none: the controls were disabled, say.
    void dropExits();
    /// The edit has been given another value: nothing of it is typed any more.
    void forget(const ExitEdit* edit);
    void forgetAll();

    /// Whether a warning is open or a refused edit is just taking the focus back.
    bool isRefusing() const { return m_refusing; }

  private:
    struct Watched {
        ExitEdit* edit;
        Check check;
        bool typed = false;  ///< since it was last accepted
        bool left = false;   ///< not yet checked
    };

    void checkExits();
    bool accept(Watched& watched);
    void refuse(ExitEdit& edit, const QString& problem);

    QWidget& m_form;
    std::vector<Watched> m_watched;
    QTimer m_soon;
    bool m_refusing = false;
};

}  // namespace framework
