#include "framework/ui/backup_dialog.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

#include "company/company.h"
#include "company/logs.h"
#include "data/clock.h"
#include "framework/core/moment_text.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/work_dialog.h"

namespace framework {

namespace {

const QString kFilter = QStringLiteral("Varmuuskopiot (*.ZDB *.zdb);;Kaikki tiedostot (*)");

QString sizeText(qint64 bytes) {
    constexpr double kMegabyte = 1024.0 * 1024.0;
    return QLocale().toString(static_cast<double>(bytes) / kMegabyte, 'f', 1) +
           QStringLiteral(" Mt");
}

/// The last backup's folder, or the user's documents.
QString usualFolder(const QString& companyName) {
    const std::optional<company::Backup> last = company::lastBackup(companyName);
    const QString folder = last ? QFileInfo(last->file).absolutePath() : QString();
    return !folder.isEmpty() && QFileInfo(folder).isDir()
               ? folder
               : QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

/// Whether this program can back up and restore the company; tells the user if not.
bool canBackUp(QWidget* parent, const QString& companyName) {
    const QString problem = company::backupProblem(companyName);
    if (!problem.isEmpty())
        Dialogs::message(parent, problem);
    return problem.isEmpty();
}

company::BackupProgress shownIn(WorkDialog& work) {
    return [&work](company::BackupPhase phase, qint64 done, qint64 total) {
        return work.step(phase == company::BackupPhase::Copying
                             ? QStringLiteral("Kopioidaan tietokantaa")
                             : QStringLiteral("Tarkastetaan kopio: luetaan jokainen tietue ja "
                                              "avain"),
                         done, total);
    };
}

QString restoreQuestion(const QString& companyName, const QString& file) {
    return QStringLiteral(
               "Palautetaanko yrityksen \"%1\" tietokanta varmuuskopiosta?\r\r%2\rtallennettu %3, "
               "%4\r\rYritys palaa siihen tilaan, jossa se oli varmuuskopiota otettaessa: kaikki "
               "sen jälkeen tehdyt muutokset, myös kassojen ja muiden ohjelmien, poistuvat "
               "käytöstä. Varmuuskopio tarkastetaan ensin. Nykyinen tietokanta säilyy yrityksen "
               "kansiossa toisella nimellä.")
        .arg(companyName, QDir::toNativeSeparators(file),
             momentText(QFileInfo(file).lastModified()), sizeText(QFileInfo(file).size()));
}

}  // namespace

QString backupText(const company::Backup& backup) {
    return QStringLiteral("%1, %2 (%3)")
        .arg(momentText(backup.when), QDir::toNativeSeparators(backup.file),
             sizeText(backup.bytes));
}

std::optional<company::Backup> takeBackup(QWidget* parent) {
    const QString name = company::currentCompany().name;
    std::optional<company::Backup> made;
    reportErrors(parent, [&] {
        if (!canBackUp(parent, name))
            return;
        const QString suggested =
            QDir(usualFolder(name)).filePath(company::backupFileName(name, data::Clock::now()));
        const QString file =
            Dialogs::saveFileName(parent, QStringLiteral("Ota varmuuskopio"), suggested, kFilter);
        if (file.isEmpty())
            return;
        {
            WorkDialog work(parent, QStringLiteral("Varmuuskopio"));
            made = company::makeBackup(name, file, shownIn(work));
        }
        if (made)
            company::writeGeneralLog(QStringLiteral("Varmuuskopio: ") + backupText(*made));
    });
    return made;
}

bool restoreBackup(QWidget* parent, const std::function<void()>& closeCompany) {
    const QString name = company::currentCompany().name;
    QString kept;
    reportErrors(parent, [&] {
        if (!canBackUp(parent, name))
            return;
        const QString file = Dialogs::openFileName(
            parent, QStringLiteral("Palauta varmuuskopiosta"), usualFolder(name), kFilter);
        if (file.isEmpty() || !Dialogs::ask(parent, restoreQuestion(name, file)))
            return;
        closeCompany();
        {
            WorkDialog work(parent, QStringLiteral("Palautus varmuuskopiosta"));
            kept = company::restoreBackup(name, file, shownIn(work));
        }
        if (kept.isEmpty())
            return;
        const QString line =
            QStringLiteral(
                "Huomaa: tietokanta palautettiin varmuuskopiosta %1, aiempi on tallessa "
                "nimellä %2")
                .arg(QDir::toNativeSeparators(file), QDir::toNativeSeparators(kept));
        company::WriteAlvMuutosLog(line);
        company::writeGeneralLog(line);
    });
    if (kept.isEmpty())
        return false;
    Dialogs::message(parent, QStringLiteral("Tietokanta on palautettu. Aiempi tietokanta on "
                                            "tallessa nimellä\r%1")
                                 .arg(QDir::toNativeSeparators(kept)));
    return true;
}

}  // namespace framework
