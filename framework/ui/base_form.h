#pragma once

#include <QMap>
#include <QPushButton>
#include <QWidget>

#include "framework/ui/choice_controls.h"
#include "framework/ui/definition_owner.h"
#include "framework/ui/pdf_report.h"

namespace framework {

/// Base of forms whose controls make a definition that can be saved, loaded and run: the definition
/// list `LatausCombo` and the buttons `Talletus`, `Esikatsele`, `Tulosta`, `Pdf` and `Sahkoposti`.
/// A subclass creates its controls, lays these out, and ends its constructor with
/// restoreLastState(). The base knows values only as texts by control name; the subclass reads and
/// writes its controls.
class TPerusForm : public QWidget, public DefinitionOwner {
    Q_OBJECT
  public:
    /// `formName`: the object name and the name in the definition store.
    explicit TPerusForm(const QString& formName, QWidget* parent = nullptr);

    QString formName() const override { return objectName(); }
    ChoiceCombo* LatausCombo;
    QPushButton* Talletus;
    QPushButton* Esikatsele;
    QPushButton* Tulosta;
    QPushButton* Pdf;
    QPushButton* Sahkoposti;

    const SavedDefinition& loadedDefinition() const override { return m_loaded; }
    SavedDefinition currentDefinition(const QString& name,
                                      const QString& description) const override;
    void applyDefinition(const SavedDefinition& definition) override;
    void definitionSaved(const SavedDefinition& definition) override;
    /// Reads the names of the saved definitions into LatausCombo.
    void refreshNames() override;
    /// Whether the values are not those of a saved definition: they differ from the last load or
    /// save, were filled in without a file, or their definition has been deleted. False for the
    /// values that the form begins with.
    bool hasUnsavedChanges() const { return m_unsaved || currentValues() != m_known; }
    /// True if nobody may be asked.
    virtual bool unattended() const { return false; }

  protected:
    /// Loads "Normaali" if it exists. A damaged one is reported and leaves the values unchanged.
    void restoreLastState();
    /// Shows values that are in no file yet.
    void showUnsaved(const SavedDefinition& definition);
    /// Asks what to do with unsaved changes, which would be lost. @return false to stay
    bool mayLoseChanges();
    /// The values by control name, as in a definition file.
    virtual QMap<QString, QString> currentValues() const = 0;
    /// Shows a loaded definition in the controls without change signals.
    virtual void showValues(const SavedDefinition& definition) = 0;
    /// Called after every load: refresh what depends on the controls, report unreadable values.
    virtual void afterLoad() {}
    /// Called after every save of the current values.
    virtual void afterSave() {}
    /// Called after a load or save: the description may have changed.
    virtual void showDescription(const QString& /*description*/) {}
    /// Called before the values are saved, reported or run: accepts the text being typed. A form
    /// that refuses says why. @return false to refuse
    virtual bool acceptTyped() { return true; }
    /// Shows a text, or logs it when unattended.
    virtual void NaytaViesti(const QString& text);
    /// Shows what was saved and where.
    virtual void showFeedback(const QString& /*text*/) {}
    /// The report for `Pdf` and `Sahkoposti`.
    virtual Report report() const { return {}; }

  private:
    void LatausComboActivated();
    void TalletusClick();
    bool saveAgain();
    void PdfClick();
    void SahkopostiClick();
    QString reportFileName() const;
    void showLoadedName();

    QMap<QString, QString> m_known;  ///< values of the last load or save
    SavedDefinition m_loaded;
    bool m_unsaved = false;  ///< without a file, whatever the values
};

}  // namespace framework
