#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTreeWidget>

namespace framework {

/// The company choice dialog: the registered companies with their folders. F5 reads the list again,
/// double click and Enter choose, typing finds a name. Where there is no company yet it offers to
/// make one of invented data.
class TYritysValinta : public QDialog {
    Q_OBJECT
  public:
    explicit TYritysValinta(QWidget* parent = nullptr);

    /// Takes the company into use that the command line names: the first parameter that equals a
    /// company's name, the case of a to z ignored. @return false when no parameter does.
    bool OnParametrina();

  private:
    void refresh();
    void choose();
    void makeDemoCompany();
    void updateButtons();
    QWidget* buildOffer();

    QTreeWidget* m_list;
    QStackedWidget* m_pages;  ///< the list, or what is said where there is none
    QLabel* m_hint;
    QPushButton* m_demo;
    QPushButton* m_choose;
};

}  // namespace framework
