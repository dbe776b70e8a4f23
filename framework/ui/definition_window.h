#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QStringList>
#include <QTreeWidget>

#include "framework/ui/definition_owner.h"

namespace framework {

/// The window that saves a form's values under a name and description and deletes saved
/// definitions. The static functions need no window.
class TRapMaarForm : public QDialog {
    Q_OBJECT
  public:
    explicit TRapMaarForm(DefinitionOwner& form, QWidget* parent = nullptr);

    /// Sorted names of a form's saved definitions.
    static QStringList GetValues(const QString& formName);
    /// Loads a definition into a form; "Normaali" for an empty name. @return false if there is none
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
