#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "framework/core/saved_definition.h"

namespace framework {

/// The store of named parameter sets per form: the file FORM.INI in the folder "MAARITYS" of the
/// company's data folder (of its local folder when the form's flag PaikallinenMaaritys is set), one
/// section a definition. Needs no window. Names compare without regard to case and to blanks at
/// their ends. Two programs may save into one file: a save rereads it under a lock file.
/// All calls throw data::DataError naming the file when it cannot be read or written.
class DefinitionStore {
  public:
    /// For the current company's folders.
    DefinitionStore();
    /// For the file folder given (without "MAARITYS"); for tests and tools.
    explicit DefinitionStore(QString settingsFolder);

    static inline const QString kDefaultName = QStringLiteral("Normaali");
    /// The definition that a load means: the name without blanks at its ends, "Normaali" for none.
    static QString nameToLoad(const QString& name);

    QString fileName(const QString& formName) const;

    QStringList GetValues(const QString& formName) const;  ///< names, sorted
    bool has(const QString& formName, const QString& name) const;
    /// Nothing when there is no definition of that name. A line of it that is no setting is an
    /// error: a damaged definition must not run with defaults in place of its values.
    std::optional<SavedDefinition> load(const QString& formName, const QString& name) const;
    /// Replaces the values of the definition of that name, or adds it at the end; keys of the file
    /// that `definition` does not have are kept, lines of it that are no settings are not. @throws
    /// data::DataError(BadValue) for a name that nameProblem refuses, (Locked) when another program
    /// does not let go of the file.
    void save(const QString& formName, const SavedDefinition& definition);
    bool remove(const QString& formName, const QString& name);

    /// Why a text cannot be a definition's name (empty, brackets, control characters), in Finnish;
    /// empty when it can.
    static QString nameProblem(const QString& name);

  private:
    QString settingsFolder(const QString& formName) const;

    std::optional<QString> m_settingsFolder;  // none: by the current company and the form's flag
};

}  // namespace framework
