#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

namespace framework {

/// One saved definition: control names with their values, as the file has them.
struct SavedDefinition {
    QString name;
    QString description;            ///< key "Selite"
    QMap<QString, QString> values;  ///< control name -> value; look up through value()
    /// The value of a control, name compared without regard to case.
    std::optional<QString> value(const QString& control) const;
};

/// The store of named parameter sets per form: the file FORM.INI in the folder "MAARITYS" of the
/// company's data folder (of its local folder when the form's flag PaikallinenMaaritys is set), one
/// section a definition. Needs no window. Names compare without regard to case.
/// All calls throw data::DataError naming the file when it cannot be read or written.
class DefinitionStore {
  public:
    /// For the current company's folders.
    DefinitionStore();
    /// For the file folder given (without "MAARITYS"); for tests and tools.
    explicit DefinitionStore(QString settingsFolder);

    static inline const QString kDefaultName = QStringLiteral("Normaali");

    QString fileName(const QString& formName) const;

    QStringList GetValues(const QString& formName) const;  ///< names, sorted
    std::optional<SavedDefinition> load(const QString& formName, const QString& name) const;
    /// Replaces the definition of that name; keys that the form does not know are kept.
    void save(const QString& formName, const SavedDefinition& definition);
    bool remove(const QString& formName, const QString& name);

    /// Why a text cannot be a definition's name (empty, brackets, control characters), in Finnish;
    /// empty when it can.
    static QString nameProblem(const QString& name);

  private:
    QString m_settingsFolder;
};

}  // namespace framework
