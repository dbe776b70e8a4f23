#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>

namespace framework {

/// Creates a demo company with invented data. Runs the administrator's tool "zavdb" from the
/// program's folder, so that the program itself carries no demo data. Shows progress; a cancel
/// leaves nothing behind.
class DemoCompanyDialog : public QDialog {
    Q_OBJECT
  public:
    explicit DemoCompanyDialog(QWidget* parent = nullptr);
    ~DemoCompanyDialog() override;

    /// The registered name; empty if no company was created.
    const QString& madeCompany() const { return m_made; }

    void reject() override;

  private:
    void browse();
    void make();
    void finished(int exitCode, QProcess::ExitStatus status);
    void setWorking(bool working);
    void removeRemains();

    QLineEdit* m_name;
    QLineEdit* m_folder;
    QSpinBox* m_products;
    QLabel* m_status;
    QProgressBar* m_progress;
    QPushButton* m_makeButton;
    QProcess m_tool;
    bool m_folderIsOurs = false;  ///< it did not exist before
    bool m_stopped = false;
    QString m_made;
};

}  // namespace framework
