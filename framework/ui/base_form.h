#pragma once

#include <QMap>
#include <QPushButton>
#include <QWidget>

#include "framework/ui/choice_controls.h"
#include "framework/ui/definition_owner.h"
#include "framework/ui/pdf_report.h"

namespace framework {

/// Base of the forms whose controls make a definition that can be saved, loaded and carried out:
/// the definition choice `LatausCombo` and the buttons `Talletus`, `Esikatsele`, `Tulosta`, `Pdf`
/// and `Sahkoposti`. A descendant builds its controls, places these, and calls restoreLastState()
/// at the end of its creation. What its controls say is known here only as texts by control name;
/// reading and writing them is the descendant's.
class TPerusForm : public QWidget, public DefinitionOwner {
    Q_OBJECT
  public:
    /// `formName` is the form's object name and the name of its definitions in the store.
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
    /// Whether the controls say something else than when they were last loaded or saved.
    bool hasUnsavedChanges() const { return currentValues() != m_known; }

  protected:
    /// Loads "Normaali" if there is one; a damaged one is reported, and the present values stay.
    void restoreLastState();
    /// What the controls say, by control name, as a definition file has it.
    virtual QMap<QString, QString> currentValues() const = 0;
    /// Shows a loaded definition in the controls. No control tells of its change.
    virtual void showValues(const SavedDefinition& definition) = 0;
    /// After every load: the form refreshes what depends on its controls and reports what could not
    /// be read.
    virtual void afterLoad() {}
    /// After every save of what the controls say.
    virtual void afterSave() {}
    /// The definition in the controls was loaded or saved: it may have another description.
    virtual void showDescription(const QString& /*description*/) {}
    /// Before the controls are saved, reported or carried out: whether the text being typed can be
    /// taken. A form that refuses tells why.
    virtual bool acceptTyped() { return true; }
    /// Reports a text to the person, or to the log when nobody is there.
    virtual void NaytaViesti(const QString& text);
    /// The report that `Pdf` writes and `Sahkoposti` sends.
    virtual Report report() const { return {}; }

  private:
    void LatausComboActivated();
    void TalletusClick();
    void PdfClick();
    void SahkopostiClick();
    QString reportFileName() const;
    void showLoadedName();

    QMap<QString, QString> m_known;  ///< the values as last loaded or saved
    SavedDefinition m_loaded;
};

}  // namespace framework
