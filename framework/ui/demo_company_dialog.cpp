#include "framework/ui/demo_company_dialog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "company/aliases.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/folder_row.h"

namespace framework {

namespace {

constexpr int kMinProducts = 10;
constexpr int kMaxProducts = 1'000'000;
constexpr int kProducts = 2000;
constexpr int kMargin = 14;

QString toolProgram() {
#ifdef Q_OS_WIN
    const QString name = QStringLiteral("zavdb.exe");
#else
    const QString name = QStringLiteral("zavdb");
#endif
    return QDir(QCoreApplication::applicationDirPath()).filePath(name);
}

QString suggestedFolder(const QString& name) {
    const QDir documents(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    return QDir::toNativeSeparators(documents.filePath(QStringLiteral("Taksavaihe/") + name));
}

QString freeName() {
    const QString stem = QStringLiteral("Esimerkki");
    QString name = stem;
    for (int number = 2; company::findAlias(name); ++number)
        name = stem + QString::number(number);
    return name;
}

}  // namespace

DemoCompanyDialog::DemoCompanyDialog(QWidget* parent)
    : QDialog(parent),
      m_name(new QLineEdit(freeName(), this)),
      m_folder(new QLineEdit(suggestedFolder(m_name->text()), this)),
      m_products(new QSpinBox(this)),
      m_status(new QLabel(this)),
      m_progress(new QProgressBar(this)),
      m_makeButton(new QPushButton(QStringLiteral("&Luo"), this)) {
    setObjectName(QStringLiteral("EsimerkkiYritys"));
    setWindowTitle(QStringLiteral("Esimerkkiyrityksen luonti"));

    auto* text = new QLabel(
        QStringLiteral("Esimerkkiyrityksen tiedot ovat keksittyjä. Sillä ohjelmaa voi kokeilla\n"
                       "koskematta oikean yrityksen tietoihin."),
        this);
    m_name->setObjectName(QStringLiteral("NimiEdit"));
    m_folder->setObjectName(QStringLiteral("KansioEdit"));
    m_folder->setToolTip(QStringLiteral("Kansio, johon yrityksen tietokanta luodaan"));
    m_products->setObjectName(QStringLiteral("TuotteitaEdit"));
    m_products->setRange(kMinProducts, kMaxProducts);
    m_products->setValue(kProducts);
    m_products->setGroupSeparatorShown(true);
    m_products->setSingleStep(1000);
    auto* fields = new QFormLayout;
    fields->addRow(QStringLiteral("&Nimi"), m_name);
    addFolderRow(*fields, QStringLiteral("&Kansio"), m_folder, [this] { browse(); });
    fields->addRow(QStringLiteral("&Tuotteita"), m_products);
    m_status->setTextFormat(Qt::PlainText);
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(QStringLiteral("Luonti on käynnissä"));
    QSizePolicy policy = m_progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(policy);

    m_makeButton->setObjectName(QStringLiteral("LuoButton"));
    m_makeButton->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Pe&ruuta"), this);
    cancel->setObjectName(QStringLiteral("PeruutaButton"));
    cancel->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_status, 1);
    buttons->addWidget(m_makeButton);
    buttons->addWidget(cancel);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    column->addWidget(text);
    column->addLayout(fields);
    column->addWidget(m_progress);
    column->addLayout(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_makeButton, &QPushButton::clicked, this,
            [this] { reportErrors(this, [this] { make(); }); });
    connect(cancel, &QPushButton::clicked, this, &DemoCompanyDialog::reject);
    connect(&m_tool, &QProcess::finished, this, &DemoCompanyDialog::finished);
    setWorking(false);
    describeByHints(*this);
}

DemoCompanyDialog::~DemoCompanyDialog() {
    m_tool.disconnect(this);
    if (m_tool.state() != QProcess::NotRunning) {
        m_tool.kill();
        m_tool.waitForFinished();
        removeRemains();
    }
}

void DemoCompanyDialog::setWorking(bool working) {
    for (QWidget* control : {static_cast<QWidget*>(m_name), static_cast<QWidget*>(m_folder),
                             static_cast<QWidget*>(m_products), static_cast<QWidget*>(m_makeButton),
                             findChild<QWidget*>(QStringLiteral("SelaaButton"))})
        control->setEnabled(!working);
    m_progress->setVisible(working);
    m_status->setText(working ? QStringLiteral("Luodaan yritystä...") : QString());
}

// The company gets a folder of its own in the chosen one: it must be empty.
void DemoCompanyDialog::browse() {
    const QString folder = Dialogs::folder(
        this, QStringLiteral("Valitse kansio, johon yrityksen kansio luodaan"),
        QFileInfo(QDir::fromNativeSeparators(m_folder->text().trimmed())).absolutePath());
    if (!folder.isEmpty())
        m_folder->setText(
            QDir::toNativeSeparators(QDir(folder).filePath(m_name->text().trimmed())));
}

void DemoCompanyDialog::make() {
    const QString name = m_name->text().trimmed();
    const QString folder = QDir::fromNativeSeparators(m_folder->text().trimmed());
    const QString tool = toolProgram();
    QString problem = company::aliasNameProblemFinnish(name);
    if (problem.isEmpty() && company::findAlias(name))
        problem = QStringLiteral("Yritys \"%1\" on jo olemassa.").arg(name);
    if (problem.isEmpty() && folder.isEmpty())
        problem = QStringLiteral("Anna kansio, johon yritys luodaan.");
    if (problem.isEmpty() && !QFileInfo(tool).isExecutable()) {
        problem = QStringLiteral("Esimerkkiyritystä ei voi luoda: apuohjelmaa ei ole.\r%1")
                      .arg(QDir::toNativeSeparators(tool));
    }
    if (!problem.isEmpty()) {
        Dialogs::warning(this, problem);
        return;
    }
    m_made = name;
    m_stopped = false;
    m_folderIsOurs = !QFileInfo::exists(folder);
    setWorking(true);
    m_tool.start(tool, {QStringLiteral("demo"), name, folder, QStringLiteral("--products"),
                        QString::number(m_products->value())});
    if (!m_tool.waitForStarted())
        finished(-1, QProcess::CrashExit);
}

void DemoCompanyDialog::finished(int exitCode, QProcess::ExitStatus status) {
    setWorking(false);
    if (status == QProcess::NormalExit && exitCode == 0) {
        accept();
        return;
    }
    removeRemains();
    m_made.clear();
    if (m_stopped) {
        QDialog::reject();
        return;
    }
    QString reason = QString::fromLocal8Bit(m_tool.readAllStandardError()).trimmed();
    if (reason.isEmpty())
        reason = m_tool.errorString();
    Dialogs::error(this,
                   QStringLiteral("Esimerkkiyrityksen luonti ei onnistunut.\r%1").arg(reason));
}

void DemoCompanyDialog::reject() {
    if (m_tool.state() == QProcess::NotRunning) {
        QDialog::reject();
        return;
    }
    m_stopped = true;
    m_status->setText(QStringLiteral("Keskeytetään..."));
    m_tool.kill();
}

// Cleans up after a killed zavdb. Keeps a folder that existed before.
void DemoCompanyDialog::removeRemains() {
    if (m_folderIsOurs)
        QDir(QDir::fromNativeSeparators(m_folder->text().trimmed())).removeRecursively();
}

}  // namespace framework
