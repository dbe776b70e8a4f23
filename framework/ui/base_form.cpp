#include "framework/ui/base_form.h"

#include <QDir>
#include <QSignalBlocker>
#include <QTemporaryDir>

#include "data/error.h"
#include "framework/core/definition_store.h"
#include "framework/ui/close_deferral.h"
#include "framework/ui/definition_window.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/mail.h"
#include "framework/ui/pdf_report.h"

namespace framework {

TPerusForm::TPerusForm(const QString& formName, QWidget* parent)
    : QWidget(parent, Qt::Window),
      LatausCombo(new ChoiceCombo(this)),
      Talletus(new QPushButton(QStringLiteral("&Talleta..."), this)),
      Esikatsele(new QPushButton(QStringLiteral("&Esikatsele"), this)),
      Tulosta(new QPushButton(QStringLiteral("Tul&osta"), this)),
      Pdf(new QPushButton(QStringLiteral("&Pdf..."), this)),
      Sahkoposti(new QPushButton(QStringLiteral("Sä&hköposti..."), this)) {
    setObjectName(formName);
    LatausCombo->setObjectName(QStringLiteral("LatausCombo"));
    LatausCombo->setAccessibleName(QStringLiteral("Määrittely"));
    LatausCombo->setToolTip(QStringLiteral("Lataa talletettu määrittely"));
    LatausCombo->setPlaceholderText(QStringLiteral("(ei ladattu)"));
    LatausCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    LatausCombo->setMinimumContentsLength(28);
    Talletus->setObjectName(QStringLiteral("Talletus"));
    Talletus->setToolTip(QStringLiteral("Talleta määrittely nimellä"));
    Esikatsele->setObjectName(QStringLiteral("Esikatsele"));
    Tulosta->setObjectName(QStringLiteral("Tulosta"));
    Pdf->setObjectName(QStringLiteral("Pdf"));
    Pdf->setToolTip(QStringLiteral("Kirjoita määrittelystä PDF-raportti"));

    connect(LatausCombo, &QComboBox::activated, this, &TPerusForm::LatausComboActivated);
    connect(Talletus, &QPushButton::clicked, this, &TPerusForm::TalletusClick);
    Sahkoposti->setObjectName(QStringLiteral("Sahkoposti"));
    Sahkoposti->setToolTip(QStringLiteral("Lähetä PDF-raportti sähköpostilla"));

    connect(Pdf, &QPushButton::clicked, this, &TPerusForm::PdfClick);
    connect(Sahkoposti, &QPushButton::clicked, this, &TPerusForm::SahkopostiClick);
}

SavedDefinition TPerusForm::currentDefinition(const QString& name,
                                              const QString& description) const {
    return {name, description, currentValues()};
}

void TPerusForm::applyDefinition(const SavedDefinition& definition) {
    showValues(definition);
    m_loaded = definition;
    m_known = currentValues();
    m_unsaved = false;
    showLoadedName();
    showDescription(definition.description);
    afterLoad();
}

void TPerusForm::showUnsaved(const SavedDefinition& definition) {
    applyDefinition(definition);
    m_unsaved = true;
}

void TPerusForm::definitionSaved(const SavedDefinition& definition) {
    m_loaded = definition;
    m_known = currentValues();
    m_unsaved = false;
    showDescription(definition.description);
    afterSave();
    refreshNames();
}

void TPerusForm::refreshNames() {
    const QSignalBlocker blocker(LatausCombo);
    LatausCombo->clear();
    LatausCombo->addItems(TRapMaarForm::GetValues(formName()));
    showLoadedName();
    if (!m_loaded.name.isEmpty() && LatausCombo->currentIndex() < 0)
        m_unsaved = true;  // deleted: what the controls show is nowhere else
}

void TPerusForm::showLoadedName() {
    const QSignalBlocker blocker(LatausCombo);
    LatausCombo->setCurrentIndex(LatausCombo->findText(m_loaded.name, Qt::MatchFixedString));
}

void TPerusForm::restoreLastState() {
    m_known = currentValues();
    refreshNames();
    std::optional<SavedDefinition> usual;
    try {
        usual = DefinitionStore().load(formName(), DefinitionStore::kDefaultName);
    } catch (const data::DataError& e) {
        NaytaViesti(
            QStringLiteral("Huomaa: määrittelyä \"%1\" ei voitu lukea, käytetään oletusarvoja: ")
                .arg(DefinitionStore::kDefaultName) +
            e.finnish());
    }
    if (usual)
        applyDefinition(*usual);
}

void TPerusForm::NaytaViesti(const QString& text) {
    Dialogs::message(this, text);
}

bool TPerusForm::mayLoseChanges() {
    if (unattended() || !hasUnsavedChanges())
        return true;
    const QString question =
        m_loaded.name.isEmpty()
            ? QStringLiteral("Määrittelyä on muutettu, eikä sitä ole talletettu.")
            : QStringLiteral("Määrittelyn \"%1\" muutoksia ei ole talletettu.").arg(m_loaded.name);
    enum Answer { kSave, kDiscard };
    switch (Dialogs::choose(this, question,
                            {QStringLiteral("&Talleta"), QStringLiteral("&Hylkää muutokset"),
                             QStringLiteral("&Jatka muokkausta")})) {
        case kSave:
            return saveAgain();
        case kDiscard:
            return true;
        default:
            return false;
    }
}

// Under the name that it was loaded from, if there is one.
bool TPerusForm::saveAgain() {
    if (!acceptTyped())
        return false;
    bool saved = false;
    reportErrors(this, [&] {
        if (LatausCombo->findText(m_loaded.name, Qt::MatchFixedString) < 0) {
            TRapMaarForm window(*this, this);
            saved = Dialogs::exec(window);
        } else {
            TRapMaarForm::TalletaRapMaaritys(*this, m_loaded.name, m_loaded.description);
            saved = true;
        }
    });
    return saved;
}

void TPerusForm::LatausComboActivated() {
    const QString name = LatausCombo->currentText();
    if (!mayLoseChanges()) {
        showLoadedName();
        return;
    }
    const bool done = reportErrors(this, [this, &name] {
        if (TRapMaarForm::LataaArvot(*this, name))
            return;
        Dialogs::warning(this, QStringLiteral("Määrittelyä \"%1\" ei enää ole.").arg(name));
        refreshNames();
    });
    if (!done)
        showLoadedName();
}

void TPerusForm::TalletusClick() {
    if (!acceptTyped())
        return;
    reportErrors(this, [this] {
        const CloseDeferral deferral(this);
        TRapMaarForm(*this, this).exec();
    });
}

QString TPerusForm::reportFileName() const {
    return pdfFileName(m_loaded.name.isEmpty() ? windowTitle() : m_loaded.name);
}

void TPerusForm::PdfClick() {
    if (!acceptTyped())
        return;
    reportErrors(this, [this] {
        const QString fileName =
            Dialogs::saveFileName(this, QStringLiteral("Talleta PDF-raportti"), reportFileName(),
                                  QStringLiteral("PDF-tiedostot (*.pdf)"));
        if (fileName.isEmpty())
            return;
        writePdf(report(), fileName);
        showFeedback(QStringLiteral("Raportti talletettiin: ") +
                     QDir::toNativeSeparators(fileName));
    });
}

void TPerusForm::SahkopostiClick() {
    if (!acceptTyped())
        return;
    reportErrors(this, [this] {
        const CloseDeferral deferral(this);
        // The mail program reads the file when the message is sent, perhaps after this program's
        // end: the folder stays, the system cleans it up with its other temporary files.
        QTemporaryDir folder(QDir::temp().filePath(QStringLiteral("taksavaihe-XXXXXX")));
        folder.setAutoRemove(false);
        if (!folder.isValid())
            throw data::DataError(data::ErrorKind::Io, folder.path(), folder.errorString());
        const QString fileName = folder.filePath(reportFileName());
        const Report content = report();
        writePdf(content, fileName);
        const QString text =
            QStringLiteral("Liitteenä raportti: %1 (%2).").arg(content.headRight, content.headLeft);
        const QString shown = QDir::toNativeSeparators(fileName);
        switch (composeMail(content.headRight, text, fileName)) {
            case MailResult::Attached:
                showFeedback(QStringLiteral("Viestin liite on tilapäistiedostossa ") + shown);
                break;
            case MailResult::ByHand:
                Dialogs::message(this, QStringLiteral("Sähköpostiohjelma ei ottanut raporttia "
                                                      "liitteeksi. Liitä se viestiin itse:\r%1")
                                           .arg(shown));
                break;
            case MailResult::Impossible:
                Dialogs::error(this, QStringLiteral("Sähköpostiohjelmaa ei voitu avata. Raportti "
                                                    "on tilapäistiedostossa; siirrä se talteen "
                                                    "tai poista:\r%1")
                                         .arg(shown));
                break;
        }
    });
}

}  // namespace framework
