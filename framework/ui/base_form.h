#pragma once

#include <QMap>
#include <QPushButton>
#include <QWidget>

#include "framework/core/definition_store.h"
#include "framework/ui/choice_controls.h"
#include "framework/ui/control_values.h"
#include "framework/ui/pdf_report.h"

namespace framework {

/// Base of the forms whose controls make a definition that can be saved, loaded and carried out:
/// the definition choice `LatausCombo` and the buttons `Talletus`, `Esikatsele`, `Tulosta`, `Pdf`
/// and `Sahkoposti`. A descendant builds its controls, places these, and calls restoreLastState()
/// at the end of its creation.
class TPerusForm : public QWidget {
    Q_OBJECT
  public:
    /// `formName` is the form's object name and the name of its definitions in the store.
    explicit TPerusForm(const QString& formName, QWidget* parent = nullptr);

    QString formName() const { return objectName(); }
    ChoiceCombo* LatausCombo;
    QPushButton* Talletus;
    QPushButton* Esikatsele;
    QPushButton* Tulosta;
    QPushButton* Pdf;
    QPushButton* Sahkoposti;

    /// The definition now in the controls, as loaded or saved last; no name when none was.
    const SavedDefinition& loadedDefinition() const { return m_loaded; }
    /// What the controls say, under a name and description.
    SavedDefinition currentDefinition(const QString& name, const QString& description) const;

    /// Puts a definition into the controls; what could not be read is reported.
    void applyDefinition(const SavedDefinition& definition);
    /// Called by the definition window after it has saved or deleted.
    void definitionsChanged(const SavedDefinition& saved);
    /// Whether the controls say something else than when they were last loaded or saved.
    bool hasUnsavedChanges() const { return controlValues(*this) != m_known; }
    /// Reads the names of the saved definitions into LatausCombo.
    void refreshNames();

  protected:
    /// Remembers the present values as the controls' defaults and loads "Normaali" if there is one;
    /// a damaged one is reported, and the defaults stay.
    void restoreLastState();
    /// After every load: the form refreshes what depends on its controls.
    virtual void afterLoad() {}
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

    QMap<QString, QString> m_defaults;
    QMap<QString, QString> m_known;  ///< the values as last loaded or saved
    SavedDefinition m_loaded;
};

}  // namespace framework
