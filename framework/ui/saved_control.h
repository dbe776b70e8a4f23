#pragma once

#include <QString>

namespace framework {

/// A control whose value belongs to a saved definition, under the control's object name.
class SavedControl {
  public:
    virtual ~SavedControl() = default;
    /// The value as the definition file has it, whatever the user's locale.
    virtual QString savedValue() const = 0;
    /// Shows a value of the file. @return false, with the control unchanged, when it cannot be
    /// read.
    virtual bool setSavedValue(const QString& value) = 0;
};

}  // namespace framework
