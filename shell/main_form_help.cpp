#include <QHBoxLayout>
#include <QPushButton>

#include "framework/ui/about.h"
#include "framework/ui/help.h"
#include "shell/build_stamp.h"
#include "shell/main_form.h"
#include "shell/program_title.h"

namespace shell {

QLayout* TMainForm::buildFoot() {
    auto* version = new QLabel(QStringLiteral("Versio %1").arg(buildStamp()), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    auto* help = new QPushButton(QStringLiteral("&Ohje"), this);
    help->setObjectName(QStringLiteral("Ohje"));
    help->setToolTip(QStringLiteral("Avaa käyttöohjeen (F1)"));
    auto* about = new QPushButton(QStringLiteral("T&ietoja"), this);
    about->setObjectName(QStringLiteral("Tietoja"));
    about->setToolTip(QStringLiteral("Ohjelman versio ja kirjastot"));
    connect(help, &QPushButton::clicked, this, [] { framework::showHelp(nullptr); });
    connect(about, &QPushButton::clicked, this,
            [this] { framework::AboutBox(kProgramTitle, kProgramVersion, this).exec(); });

    auto* foot = new QHBoxLayout;
    foot->addWidget(version, 1);
    for (QPushButton* button : {help, about}) {
        button->setFlat(true);
        button->setAutoDefault(true);
        foot->addWidget(button);
    }
    return foot;
}

}  // namespace shell
