#pragma once

#include <QDialog>
#include <QLineEdit>

namespace framework {

/// Adds a company, whose database is in a folder already, to the list of companies.
class AddCompanyDialog : public QDialog {
    Q_OBJECT
  public:
    explicit AddCompanyDialog(QWidget* parent = nullptr);

    /// The registered name; empty if no company was added.
    const QString& addedCompany() const { return m_added; }

  private:
    void browse();
    void add();

    QLineEdit* m_folder;
    QLineEdit* m_name;
    QString m_added;
};

}  // namespace framework
