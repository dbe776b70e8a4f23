#pragma once

#include <QString>

#include "framework/core/saved_definition.h"

namespace framework {

/// What the definition window needs of the form whose definitions it saves, loads and deletes.
class DefinitionOwner {
  public:
    virtual ~DefinitionOwner() = default;

    /// The form's name in the store.
    virtual QString formName() const = 0;
    /// The definition that was loaded or saved last; no name when none was.
    virtual const SavedDefinition& loadedDefinition() const = 0;
    /// What the form says now, under a name and description.
    virtual SavedDefinition currentDefinition(const QString& name,
                                              const QString& description) const = 0;
    /// Takes a loaded definition; what could not be read is reported.
    virtual void applyDefinition(const SavedDefinition& definition) = 0;
    /// What the form says has been saved as this definition.
    virtual void definitionSaved(const SavedDefinition& definition) = 0;
    /// Another definition was deleted or added: lists of names are read again.
    virtual void refreshNames() = 0;
};

}  // namespace framework
