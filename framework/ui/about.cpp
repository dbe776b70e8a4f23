#include "framework/ui/about.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "company/connection_module.h"

namespace framework {

namespace {

struct Library {
    QString name;
    QString licence;
};

QList<Library> libraries() {
    return {{QStringLiteral("Qt %1").arg(QLatin1String(qVersion())), QStringLiteral("LGPL 3")},
            {QStringLiteral("SQLite %1").arg(company::databaseLibraryVersion()),
             QStringLiteral("ilman tekijänoikeutta (public domain)")},
#ifndef Q_OS_WIN
            {QStringLiteral("unixODBC"), QStringLiteral("LGPL 2.1")}
#endif
    };
}

}  // namespace

AboutBox::AboutBox(const QString& title, const QString& version, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("TietojaIkkuna"));
    setWindowTitle(QStringLiteral("Tietoja ohjelmasta"));

    auto* name = new QLabel(title, this);
    QFont large = name->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    name->setFont(large);
    auto* what = new QLabel(
        QStringLiteral("Siirtää yrityksen tiedot arvonlisäveroluokasta toiseen ja laskee niistä "
                       "riippuvat hinnat uudelleen talletetun määrittelyn mukaan."),
        this);
    what->setWordWrap(true);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(18);
    const auto row = [&](const QString& left, const QString& right) {
        const int at = grid->rowCount();
        grid->addWidget(new QLabel(left, this), at, 0, Qt::AlignTop);
        auto* value = new QLabel(right, this);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        grid->addWidget(value, at, 1);
        return value;
    };
    row(QStringLiteral("Versio"), version);
    row(QStringLiteral("Käännetty"), QCoreApplication::applicationVersion())
        ->setObjectName(QStringLiteral("KoontiLabel"));
    for (const Library& library : libraries())
        row(library.name, library.licence);
    grid->setColumnStretch(1, 1);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(QStringLiteral("&Sulje"), QDialogButtonBox::RejectRole)
        ->setObjectName(QStringLiteral("SuljeButton"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 18, 20, 14);
    column->setSpacing(12);
    column->addWidget(name);
    column->addWidget(what);
    column->addLayout(grid);
    column->addStretch();
    column->addWidget(buttons);
    resize(460, sizeHint().height());
}

}  // namespace framework
