#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTreeWidget>

namespace framework {

/// The company choice dialog: registered companies and their folders, last used first. F5
/// refreshes, double click or Enter chooses, typing searches. Companies can be added, taken off the
/// list and, as examples, created; an empty list offers these instead.
class TYritysValinta : public QDialog {
    Q_OBJECT
  public:
    explicit TYritysValinta(QWidget* parent = nullptr);

    /// Selects the company named by the first parameter that is a registered name (case of a to z
    /// ignored). @return false if there is none
    bool OnParametrina();

    /// Shows the dialog without taking the chosen company into use. @return its name; empty if
    /// cancelled
    QString choice();

  private:
    void refresh();
    void choose();
    void addCompany();
    void makeDemoCompany();
    void removeCompany();
    void select(const QString& name);
    QString selected() const;
    QLayout* buildListButtons();
    void updateButtons();
    QWidget* buildOffer();

    QTreeWidget* m_list;
    QStackedWidget* m_pages;  ///< the list, or the page shown instead
    QLabel* m_hint;
    QPushButton* m_demo;      ///< on the page of an empty list
    QPushButton* m_firstAdd;  ///< on the page of an empty list
    QPushButton* m_remove;
    QPushButton* m_choose;
    bool m_takesIntoUse = true;
    QString m_choice;
};

}  // namespace framework
