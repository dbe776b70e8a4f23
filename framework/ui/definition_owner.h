#pragma once

#include <QString>

#include "framework/core/saved_definition.h"

namespace framework {

/// Implemented by forms whose definitions the definition window saves, loads and deletes.
class DefinitionOwner {
  public:
    virtual ~DefinitionOwner() = default;

    /// The form's name in the definition store.
    virtual QString formName() const = 0;
    /// The last definition loaded or saved; without a name if none.
    virtual const SavedDefinition& loadedDefinition() const = 0;
    /// The form's current values under this name and description.
    virtual SavedDefinition currentDefinition(const QString& name,
                                              const QString& description) const = 0;
    /// Shows a loaded definition and reports unreadable values.
    virtual void applyDefinition(const SavedDefinition& definition) = 0;
    /// Called after the current values were saved as this definition.
    virtual void definitionSaved(const SavedDefinition& definition) = 0;
    /// Rereads the names: a definition was added or deleted.
    virtual void refreshNames() = 0;
};

}  // namespace framework
