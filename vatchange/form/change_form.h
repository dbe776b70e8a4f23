#pragma once

#include <QElapsedTimer>
#include <bitset>
#include <optional>

#include "data/engine/engine.h"
#include "framework/ui/base_form.h"
#include "framework/ui/exit_checks.h"
#include "vatchange/definition/load_rules.h"
#include "vatchange/form/form_controls.h"
#include "vatchange/form/search_windows.h"
#include "vatchange/run/run_summary.h"

namespace vatchange {

/// The VAT change form: holds one change definition in its controls, saves and loads it, and
/// carries it out. While a run goes on, everything but "Keskeytä" is disabled.
///
/// A coefficient that ticking keep-VAT0 computed follows the VAT classes until a person types
/// another, by key or shortcut, or unticks the box. It is computed again whenever a class is
/// changed and both classes exist (source class 0 stands for rate 0); while the number being typed
/// is no class yet, it stays as it is. A loaded coefficient follows the classes when it is the one
/// that the tick would compute; loading itself computes none.
class TAlvMuutosLomake : public framework::TPerusForm {
    Q_OBJECT
  public:
    static inline const QString kFormName = QStringLiteral("AlvMuutosLomake");

    /// Builds the form and loads the definition "Normaali" when there is one.
    /// @throws data::DataError when the company's tables cannot be read, or a price level is
    /// missing ("hintatasoa ei löydy").
    explicit TAlvMuutosLomake(data::Database& database, QWidget* parent = nullptr);

    /// Set by a batch: messages go to the change log, no dialog is shown.
    bool Unattended = false;
    /// The flag, or a program started with "/E", or nobody there to see a window.
    bool unattended() const;

    /// What the controls say, as a plain value.
    ChangeDefinition definitionFromForm() const;
    /// The definition that a run takes, with what its load found: the loaded or saved value while
    /// the controls show nothing else, the controls' value once they were edited.
    LoadedDefinition definitionToRun() const;

    /// Carries out definitionToRun(). While another run of this form goes on it does
    /// nothing.
    std::optional<RunResult> EsikatseleClick();
    bool isRunning() const { return m_running; }

    /// Writes the text to the change log and, when somebody is there, shows it.
    void NaytaViesti(const QString& text) override;
    /// Status line; shown with the next breath of a run.
    void showStatus(const QString& text);

    const FormControls& controls() const { return m_controls; }

  Q_SIGNALS:
    void runningChanged(bool running);
    void closed();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    QMap<QString, QString> currentValues() const override;
    void showValues(const framework::SavedDefinition& definition) override;
    void afterLoad() override;
    void afterSave() override;
    void showDescription(const QString& description) override;
    bool acceptTyped() override;
    framework::Report report() const override;

  private:
    friend class FormRunPorts;

    void buildLayout();
    QLayout* buildDefinitionBar();
    QLayout* buildGroups();
    QLayout* buildFoot();
    void readCompanyTables();
    void connectControls();
    void connectSearch(QPushButton* button, SearchKind kind, QLineEdit* target);
    void fitToScreen();
    void leaveByKey();

    void refreshClassLabels();
    void refreshRestrictionBoxes();
    std::optional<double> ratePercent(int vatClass) const;
    void showRate(QLabel* label, int vatClass) const;
    void validateSource(int tag);
    void SailytaAlv0_CheckBox1Click(int tag, bool checked);
    std::optional<double> coefficientOfClasses() const;
    void followClasses();
    void watchExits();
    QString checkDeliveryLimit();
    QString checkCoefficient(framework::DecimalEdit* edit);
    void setRunning(bool running);
    void showProgress(const QString& status, qint64 done, qint64 total, const QString& remaining);
    bool confirmClosing();

    data::Database& m_database;
    FormControls m_controls;
    LoadedDefinition m_definition;  ///< as loaded or saved last
    QStringList m_levelNames;       ///< index 0: "Ei muutosta"
    QWidget* m_content = nullptr;
    QLabel* m_description = nullptr;  ///< of the loaded definition
    QLabel* m_status = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_interrupt = nullptr;
    QPushButton* m_close = nullptr;
    std::optional<RunSummary> m_lastRun;
    framework::ExitChecks m_exits{*this};
    std::bitset<kCoefficients + 1> m_computed;  ///< by tag: coefficients of followClasses()
    bool m_running = false;
    bool m_cancelRequested = false;
    bool m_closeWhenDone = false;
};

}  // namespace vatchange
