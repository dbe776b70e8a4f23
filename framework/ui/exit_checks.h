#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <vector>

#include "framework/ui/value_edits.h"

namespace framework {

/// Checks typed text in a form's edits: when the focus moves to another control and, by checkAll(),
/// before the form's values are used. A refused edit shows a warning and gets the focus back; that
/// focus change does not count as leaving the other edit. Values set by code are not checked until
/// the user enters the edit.
class ExitChecks : public QObject {
    Q_OBJECT
  public:
    /// Returns what is wrong with an edit's text, or empty. May normalise the edit.
    using Check = std::function<QString()>;

    /// `form` is the parent of the warnings.
    explicit ExitChecks(QWidget& form);

    void watch(ExitEdit* edit, Check check);

    /// Checks every edit that was typed into since it was last accepted, was left, or has the
    /// focus. @return false if one was refused, after its warning
    bool checkAll();

    /// Drops pending checks, for example because the controls were disabled.
    void dropExits();
    /// The edit's value was set by code: there is no typed text to check.
    void forget(const ExitEdit* edit);
    void forgetAll();

    /// Whether a warning is open or a refused edit is taking the focus back.
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
