#include "framework/ui/add_company_dialog.h"

#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "company/registration.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/folder_row.h"

namespace framework {

namespace {
constexpr int kMargin = 14;
}

AddCompanyDialog::AddCompanyDialog(QWidget* parent)
    : QDialog(parent), m_folder(new QLineEdit(this)), m_name(new QLineEdit(this)) {
    setObjectName(QStringLiteral("LisaaYritys"));
    setWindowTitle(QStringLiteral("Yrityksen lisäys"));

    auto* text = new QLabel(
        QStringLiteral("Valitse kansio, jossa yrityksen tietokanta YRITYS.ZDB on. Yritys tulee\n"
                       "luetteloon annetulla nimellä; sen tiedostoihin ei kosketa."),
        this);
    m_folder->setObjectName(QStringLiteral("KansioEdit"));
    m_folder->setToolTip(QStringLiteral("Kansio, jossa yrityksen tietokanta on"));
    m_name->setObjectName(QStringLiteral("NimiEdit"));
    m_name->setToolTip(QStringLiteral("Nimi, jolla yritys valitaan luettelosta ja eräajossa"));
    auto* fields = new QFormLayout;
    addFolderRow(*fields, QStringLiteral("&Kansio"), m_folder, [this] { browse(); });
    fields->addRow(QStringLiteral("&Nimi"), m_name);

    auto* addButton = new QPushButton(QStringLiteral("&Lisää"), this);
    addButton->setObjectName(QStringLiteral("LisaaButton"));
    addButton->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Pe&ruuta"), this);
    cancel->setObjectName(QStringLiteral("PeruutaButton"));
    cancel->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(addButton);
    buttons->addWidget(cancel);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    column->addWidget(text);
    column->addLayout(fields);
    column->addLayout(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    connect(addButton, &QPushButton::clicked, this,
            [this] { reportErrors(this, [this] { add(); }); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    describeByHints(*this);
}

void AddCompanyDialog::browse() {
    const QString folder = Dialogs::folder(this, QStringLiteral("Valitse yrityksen kansio"),
                                           QDir::fromNativeSeparators(m_folder->text()));
    if (folder.isEmpty())
        return;
    m_folder->setText(QDir::toNativeSeparators(folder));
    if (m_name->text().trimmed().isEmpty())
        m_name->setText(QFileInfo(folder).fileName());
    m_name->setFocus();
    m_name->selectAll();
}

void AddCompanyDialog::add() {
    const QString name = m_name->text().trimmed();
    company::addCompany(name, QDir::fromNativeSeparators(m_folder->text().trimmed()));
    m_added = name;
    accept();
}

}  // namespace framework
