#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <bitset>
#include <optional>

#include "data/engine/engine.h"
#include "framework/ui/base_form.h"
#include "framework/ui/exit_checks.h"
#include "vatchange/definition/load_rules.h"
#include "vatchange/form/form_controls.h"
#include "vatchange/form/product_count.h"
#include "vatchange/form/search_windows.h"
#include "vatchange/run/run_summary.h"
#include "vatchange/views/changes_window.h"

namespace vatchange {

struct RateChange;

/// Shown when the VAT-free price cannot be kept because the target class does not exist.
inline const QString kCheckTargetClass = QStringLiteral("Tarkasta kohde -alvluokka!");

/// The VAT change form: edits, saves, loads and runs one change definition. During a run only
/// "Keskeytä" is enabled.
///
/// A coefficient computed by ticking keep-VAT0 follows the VAT classes until the user changes it,
/// by typing or shortcut, or unticks the box. It is recomputed whenever a class changes and both
/// classes exist (source class 0 has rate 0). A loaded coefficient follows the classes if it equals
/// the one that ticking would compute; loading itself computes nothing.
class TAlvMuutosLomake : public framework::TPerusForm {
    Q_OBJECT
  public:
    static inline const QString kFormName = QStringLiteral("AlvMuutosLomake");

    /// Builds the form and loads the definition "Normaali", if any.
    /// @throws data::DataError if the company's tables cannot be read or a price level is missing
    /// ("hintatasoa ei löydy").
    explicit TAlvMuutosLomake(data::Database& database, QWidget* parent = nullptr);

    /// Set in a batch: messages go to the change log only.
    bool Unattended = false;
    /// True if Unattended is set, the program was started with "/E", or no one can see a window.
    bool unattended() const override;

    /// Values that are off are not saved, and taken out of the file.
    framework::SavedDefinition currentDefinition(const QString& name,
                                                 const QString& description) const override;
    /// The definition in the controls.
    ChangeDefinition definitionFromForm() const;
    /// The definition to run, with its load findings: the loaded or saved one until the controls
    /// are edited, then the one in the controls.
    LoadedDefinition definitionToRun() const;

    /// Runs definitionToRun(). If it has an unfinished run, the user chooses whether to resume
    /// that; unattended `options` decide. Returns nullopt if a run is already going on or the user
    /// leaves it.
    std::optional<RunResult> EsikatseleClick(RunOptions options = {});
    /// Rehearses definitionToRun(), or the resumption of its unfinished run, and shows the changes.
    void KoeajoClick();
    bool isRunning() const { return m_running; }

    /// Writes the text to the change log and, unless unattended, shows it.
    void NaytaViesti(const QString& text) override;
    /// Sets the status line; a run shows it when it next processes events.
    void showStatus(const QString& text);

    const FormControls& controls() const { return m_controls; }

  Q_SIGNALS:
    void runningChanged(bool running);
    void closed();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    QMap<QString, QString> currentValues() const override;
    void showValues(const framework::SavedDefinition& definition) override;
    void afterLoad() override;
    void afterSave() override;
    void showFeedback(const QString& text) override { showStatus(text); }
    void showDescription(const QString& description) override;
    bool acceptTyped() override;
    framework::Report report() const override;

  private:
    friend class FormRunPorts;
    friend class FormProgress;

    void buildLayout();
    QLayout* buildDefinitionBar();
    QLayout* buildGroups();
    QLayout* buildFoot();
    void arrangeGroups(bool narrow);
    void readCompanyTables();
    void connectControls();
    void connectSearch(QPushButton* button, SearchKind kind, QLineEdit* target);
    void fitToScreen();

    void refreshClassLabels();
    void refreshRestrictionBoxes();
    std::optional<double> ratePercent(int vatClass) const;
    void showRate(QLabel* label, int vatClass) const;
    QString classText(int vatClass) const;
    void validateSource(int tag);
    void SailytaAlv0_CheckBox1Click(int tag, bool checked);
    std::optional<double> coefficientOfClasses() const;
    void followClasses();
    void watchExits();
    static QString checkDate(const framework::DateEdit* edit);
    void watchDrops();
    void chooseReadyDefinition();
    std::optional<int> classOfRate(double percent);
    void fillReady(const RateChange& change);
    void refreshAllKept();
    void keepAllClicked();
    void watchEdits();
    void showGroupNames();
    void showFindings();
    void showProductCount(qint64 products);
    QString checkCoefficient(framework::DecimalEdit* edit);
    bool chooseOptions(const ChangeDefinition& definition, RunOptions& options);
    void showChangesOfRun();
    bool agreesToRun(const LoadedDefinition& definition, RunOptions& options);
    struct RehearsalOutcome {
        QString status;                    ///< for the status line
        QString message;                   ///< to be shown; may be empty
        std::shared_ptr<ChangeList> list;  ///< nothing to show if empty
        ChangesContext context;
    };
    RehearsalOutcome rehearse(const LoadedDefinition& definition, const RunOptions& options);
    std::unique_ptr<RunPorts> runPorts();
    void setRunning(bool running);
    /// `share`: 0 to 1; negative: unknown.
    void showProgress(const QString& status, double share, const QString& step,
                      const QString& left);
    bool confirmClosing();

    data::Database& m_database;
    FormControls m_controls;
    FormGroups m_groups;
    QVBoxLayout* m_pinned = nullptr;  ///< between the scrolled groups and the buttons
    int m_wideFrom = 0;               ///< width from which three columns fit
    bool m_narrow = false;
    LoadedDefinition m_definition;  ///< as loaded or saved last
    QStringList m_levelNames;       ///< index 0: "Ei muutosta"
    QWidget* m_content = nullptr;
    QLabel* m_description = nullptr;  ///< of the loaded definition
    QLabel* m_status = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_rehearse = nullptr;
    QPushButton* m_interrupt = nullptr;
    QPushButton* m_close = nullptr;
    QPushButton* m_ready = nullptr;     ///< "Valmis määrittely..."
    QPushButton* m_findings = nullptr;  ///< hidden without findings
    QPushButton* m_changes = nullptr;   ///< "Näytä muutokset...", after a run that has a journal
    QStringList m_findingTexts;
    QTimer m_edited;  ///< runs out shortly after the last edit
    ProductCount m_count;
    std::optional<RunSummary> m_lastRun;
    framework::ExitChecks m_exits{*this};
    std::bitset<kCoefficients + 1> m_computed;  ///< by tag: coefficients of followClasses()
    bool m_running = false;
    bool m_cancelRequested = false;
    bool m_closeWhenDone = false;
};

}  // namespace vatchange
