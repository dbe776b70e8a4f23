#pragma once

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QWidget>
#include <array>
#include <memory>

#include "company/batch_list.h"
#include "shell/batch.h"
#include "shell/rehearsed_batch.h"
#include "vatchange/form/change_form.h"

namespace shell {

class LogWindow;
class ScheduleLine;

/// The main window: VAT classes, batch list, and buttons for the change form, the change log and
/// the run mark. With "/E" it runs the batch and exits.
class TMainForm : public QWidget {
    Q_OBJECT
  public:
    explicit TMainForm(QWidget* parent = nullptr);
    ~TMainForm() override;

    /// Set before show(), which then starts the batch.
    bool BatchMode = false;
    /// Set before show() if the batch is rehearsed.
    RehearsedBatch* Rehearsal = nullptr;

    /// Fills the window: definition names, batch list, VAT classes. Called again when the change
    /// form closes; the names are then added once more to Maar2..Maar4, and VAT class labels are
    /// set but never reset. A part that fails does not stop the others.
    /// @return why parts could not be read, in Finnish; empty if all were
    QStringList alusta();
    /// Shows the company in use.
    void showCompany();

    void BitBtn1Click();
    void BtnLogClick();
    void TalletaClick();
    void Button1Click();

    void scheduleClick();
    void removeScheduleClick();
    void companiesClick();

    void historyClick();
    void backupClick();
    void restoreClick();

    /// Shows in the window what was done and where; replaces the previous text.
    void showFeedback(const QString& text);

    company::BatchList batchList() const;
    vatchange::TAlvMuutosLomake* changeForm() const { return m_changeForm; }

  protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildLayout();
    QGroupBox* buildBatchPart();
    QGroupBox* buildClassPart();
    QLayout* buildHead();
    QLayout* buildStatus();
    QLayout* buildButtons();
    QLayout* buildFoot();
    QPushButton* buildHistoryButton();
    QPushButton* buildBackupButton();
    /// Shows what was last done in this company and how it ended.
    void refreshLastRun();
    /// That the change has been run, when, and what can be done.
    static QString alreadyRunAdvice();
    void readNames();
    void readBatchList();
    void showBatchList(const company::BatchList& list);
    void readVatClasses();
    bool alreadyRun() const;
    void openChangeForm();
    void changeFormClosed();
    void runBatchAndLeave();
    ExitStatus runWholeBatch();

    std::array<QComboBox*, 4> m_definitions{};
    std::array<QLabel*, 4> m_rateLabels{};
    QLabel* m_company = nullptr;
    QPushButton* m_open = nullptr;
    QPushButton* m_schedule = nullptr;
    QPushButton* m_history = nullptr;
    QLabel* m_lastRun = nullptr;
    QPushButton* m_companies = nullptr;
    ScheduleLine* m_scheduleLine = nullptr;
    QLabel* m_feedback = nullptr;
    std::unique_ptr<LogWindow> m_logWindow;  ///< no child: it stays usable during a run
    QPointer<vatchange::TAlvMuutosLomake> m_changeForm;
    QStringList m_problems;   ///< what alusta() could not read
    BatchSource m_batch;      ///< the list as alusta() found it
    bool m_listRead = false;  ///< the file's batch list was shown: saving may replace it
    bool m_batchStarted = false;
    bool m_inRun = false;  ///< a batch is running a definition, or an error ended that
    ExitStatus m_exitStatus = ExitStatus::Done;  ///< of the program, when the window closes
};

}  // namespace shell
