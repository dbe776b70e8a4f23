#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QStringList>
#include <QTreeWidget>

#include "framework/ui/definition_owner.h"

namespace framework {

/// The window of the definition store: saves what a form says under a name and a description, and
/// deletes saved definitions. The static operations work from the store's files alone.
class TRapMaarForm : public QDialog {
    Q_OBJECT
  public:
    explicit TRapMaarForm(DefinitionOwner& form, QWidget* parent = nullptr);

    /// Names of the definitions saved for a form, sorted.
    static QStringList GetValues(const QString& formName);
    /// Loads a definition into a form; without a name the one named "Normaali".
    /// @return false when there is none of that name.
    static bool LataaArvot(DefinitionOwner& form, const QString& name);
    static void TalletaRapMaaritys(DefinitionOwner& form, const QString& name,
                                   const QString& description);

  private:
    void refresh();
    void pick();
    void save();
    void removeChosen();
    QTreeWidgetItem* itemOf(const QString& name) const;

    DefinitionOwner& m_form;
    QTreeWidget* m_list;
    QLineEdit* m_name;
    QLineEdit* m_description;
    QPushButton* m_remove;
};

}  // namespace framework
