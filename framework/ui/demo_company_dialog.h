#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>

namespace framework {

/// Makes a company of invented data to try the program on. The administrator's tool "zavdb" beside
/// the program does the work, so that the program itself carries no demo data; the window shows
/// that it goes on and lets it be stopped, which leaves nothing behind.
class DemoCompanyDialog : public QDialog {
    Q_OBJECT
  public:
    explicit DemoCompanyDialog(QWidget* parent = nullptr);
    ~DemoCompanyDialog() override;

    /// The name under which the company was registered; empty when none was made.
    const QString& madeCompany() const { return m_made; }

    void reject() override;

  private:
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
    bool m_folderIsOurs = false;  ///< there was none before
    bool m_stopped = false;
    QString m_made;
};

}  // namespace framework
