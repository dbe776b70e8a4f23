#include "framework/ui/base_form.h"

#include <QSignalBlocker>

#include "framework/ui/definition_window.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/pdf_report.h"

namespace framework {

TPerusForm::TPerusForm(const QString& formName, QWidget* parent)
    : QWidget(parent, Qt::Window),
      LatausCombo(new QComboBox(this)),
      Talletus(new QPushButton(QStringLiteral("&Talleta..."), this)),
      Esikatsele(new QPushButton(QStringLiteral("&Esikatsele"), this)),
      Tulosta(new QPushButton(QStringLiteral("Tul&osta"), this)),
      Pdf(new QPushButton(QStringLiteral("&Pdf..."), this)) {
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
    connect(Pdf, &QPushButton::clicked, this, &TPerusForm::PdfClick);
}

SavedDefinition TPerusForm::currentDefinition(const QString& name,
                                              const QString& description) const {
    return {name, description, controlValues(*this)};
}

void TPerusForm::applyDefinition(const SavedDefinition& definition) {
    const auto unreadable = setControlValues(*this, definition, m_defaults);
    m_loaded = definition;
    {
        const QSignalBlocker silence(LatausCombo);
        LatausCombo->setCurrentIndex(LatausCombo->findText(definition.name, Qt::MatchFixedString));
    }
    afterLoad();
    if (unreadable.empty())
        return;
    QStringList items;
    for (const UnreadableValue& item : unreadable)
        items.append(item.control + QLatin1Char('=') + item.value);
    NaytaViesti(QStringLiteral("Määrittelyn \"%1\" arvoja ei voitu lukea, käytetään oletusarvoja: ")
                    .arg(definition.name) +
                items.join(QStringLiteral("; ")));
}

void TPerusForm::definitionsChanged(const SavedDefinition& saved) {
    m_loaded = saved;
    refreshNames();
}

void TPerusForm::refreshNames() {
    const QSignalBlocker silence(LatausCombo);
    LatausCombo->clear();
    LatausCombo->addItems(TRapMaarForm::GetValues(formName()));
    LatausCombo->setCurrentIndex(LatausCombo->findText(m_loaded.name, Qt::MatchFixedString));
}

void TPerusForm::restoreLastState() {
    m_defaults = controlValues(*this);
    refreshNames();
    TRapMaarForm::LataaArvot(*this, QString());
}

void TPerusForm::NaytaViesti(const QString& text) {
    Dialogs::message(this, text);
}

void TPerusForm::LatausComboActivated() {
    reportErrors(this, [this] {
        const QString name = LatausCombo->currentText();
        if (TRapMaarForm::LataaArvot(*this, name))
            return;
        Dialogs::warning(this, QStringLiteral("Määrittelyä \"%1\" ei enää ole.").arg(name));
        refreshNames();
    });
}

void TPerusForm::TalletusClick() {
    if (acceptTyped())
        reportErrors(this, [this] { TRapMaarForm(*this).exec(); });
}

void TPerusForm::PdfClick() {
    if (!acceptTyped())
        return;
    reportErrors(this, [this] {
        QString name = m_loaded.name.isEmpty() ? windowTitle() : m_loaded.name;
        const QString fileName = Dialogs::saveFileName(this, QStringLiteral("Talleta PDF-raportti"),
                                                       name + QStringLiteral(".pdf"),
                                                       QStringLiteral("PDF-tiedostot (*.pdf)"));
        if (!fileName.isEmpty())
            writePdf(reportHtml(), fileName);
    });
}

}  // namespace framework
