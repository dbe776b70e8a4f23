#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTreeWidget>

namespace framework {

/// The company choice dialog: registered companies and their folders. F5 refreshes, double click or
/// Enter chooses, typing searches. Without any company it offers to create a demo company.
class TYritysValinta : public QDialog {
    Q_OBJECT
  public:
    explicit TYritysValinta(QWidget* parent = nullptr);

    /// Selects the company named by the first parameter that is a registered name (case of a to z
    /// ignored). @return false if there is none
    bool OnParametrina();

  private:
    void refresh();
    void choose();
    void makeDemoCompany();
    void updateButtons();
    QWidget* buildOffer();

    QTreeWidget* m_list;
    QStackedWidget* m_pages;  ///< the list, or the page shown instead
    QLabel* m_hint;
    QPushButton* m_demo;
    QPushButton* m_choose;
};

}  // namespace framework
