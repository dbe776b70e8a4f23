#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "framework/core/saved_definition.h"

namespace framework {

/// Named parameter sets of a form, one INI section each, in "MAARITYS/FORM.INI" of the company's
/// data folder (of its local folder if the form's flag PaikallinenMaaritys is set). Needs no
/// window. Names ignore case and blanks at their ends. Saving rereads the file under a lock file,
/// so that two programs can save.
/// @throws data::DataError naming the file, from all functions that read or write it.
class DefinitionStore {
  public:
    /// Uses the current company's folders.
    DefinitionStore();
    /// Uses this folder (without "MAARITYS"); for tests and tools.
    explicit DefinitionStore(QString settingsFolder);

    static inline const QString kDefaultName = QStringLiteral("Normaali");
    /// The name to load: without blanks at its ends, "Normaali" if empty.
    static QString nameToLoad(const QString& name);

    QString fileName(const QString& formName) const;

    QStringList GetValues(const QString& formName) const;  ///< names, sorted
    bool has(const QString& formName, const QString& name) const;
    /// Returns nothing if there is no such definition. Of two whose names differ only in case the
    /// first one counts. A malformed line in it is an error: a
    /// damaged definition must not run with defaults for lost values.
    std::optional<SavedDefinition> load(const QString& formName, const QString& name) const;
    /// Replaces the values of a definition, or appends a new one. Keys in the file that
    /// `definition` neither has nor removes are kept, malformed lines dropped.
    /// @throws data::DataError(BadValue) if nameProblem() refuses the name, (Locked) if another
    /// program keeps the lock.
    void save(const QString& formName, const SavedDefinition& definition);
    bool remove(const QString& formName, const QString& name);

    /// Why a text cannot be a name (empty, brackets, control characters), in Finnish; empty if it
    /// can.
    static QString nameProblem(const QString& name);

  private:
    QString settingsFolder(const QString& formName) const;

    std::optional<QString> m_settingsFolder;  // unset: the current company's
};

}  // namespace framework
