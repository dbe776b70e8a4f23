#include "vatchange/rehearsal/results.h"

#include <QCryptographicHash>
#include <QDir>

#include "company/company.h"
#include "platform/ini_file.h"
#include "vatchange/journal/run_notes.h"

namespace vatchange {

namespace {

const QString kDescription = QStringLiteral("koeajo.ini");
const QString kFolderNames = QStringLiteral("2*-*-* *");

QString sectionOf(size_t index) {
    return QStringLiteral("AJO%1").arg(index + 1);
}

struct NumberKey {
    const char* key;
    qint64 RehearsedRun::*value;
};
constexpr NumberKey kNumbers[] = {
    {"Ajo", &RehearsedRun::run}, {"Alku", &RehearsedRun::first}, {"Loppu", &RehearsedRun::last}};
struct FlagKey {
    const char* key;
    bool RehearsedRun::*value;
};
constexpr FlagKey kFlags[] = {{"Loppuun", &RehearsedRun::whole},
                              {"PyoristettyMuualla", &RehearsedRun::rounded}};
const QString kDefinition = QStringLiteral("Maarittely");
const QString kValues = QStringLiteral("Arvot");

}  // namespace

QString rehearsalsFolder() {
    return QDir(company::dataFolderFile(QStringLiteral("KOEAJO"))).absolutePath();
}

QByteArray valuesDigest(data::RunJournal& journal, qint64 run) {
    const std::optional<QByteArray> note = journal.note(run, kDefinitionNote);
    if (!note)
        return {};
    return QCryptographicHash::hash(*note, QCryptographicHash::Sha256).toHex();
}

void writeDescription(const QString& folder, const std::vector<RehearsedRun>& runs) {
    platform::IniFile file;
    for (size_t i = 0; i < runs.size(); ++i) {
        const QString section = sectionOf(i);
        file.setValue(section, kDefinition, runs[i].definition);
        file.setValue(section, kValues, QString::fromLatin1(runs[i].values));
        for (const NumberKey& number : kNumbers)
            file.setValue(section, QLatin1String(number.key),
                          QString::number(runs[i].*number.value));
        for (const FlagKey& flag : kFlags)
            file.setValue(section, QLatin1String(flag.key),
                          runs[i].*flag.value ? QStringLiteral("1") : QStringLiteral("0"));
    }
    file.write(QDir(folder).filePath(kDescription));
}

std::vector<RehearsedRun> readDescription(const QString& folder) {
    const platform::IniFile file = platform::IniFile::read(QDir(folder).filePath(kDescription));
    std::vector<RehearsedRun> runs;
    for (size_t i = 0; file.hasSection(sectionOf(i)); ++i) {
        const auto text = [&file, section = sectionOf(i)](const QString& key) {
            return file.value(section, key).value_or(QString());
        };
        RehearsedRun run;
        run.folder = folder;
        run.definition = text(kDefinition);
        run.values = text(kValues).toLatin1();
        for (const NumberKey& number : kNumbers)
            run.*number.value = text(QLatin1String(number.key)).toLongLong();
        for (const FlagKey& flag : kFlags)
            run.*flag.value = text(QLatin1String(flag.key)) == u"1";
        runs.push_back(std::move(run));
    }
    return runs;
}

QStringList rehearsalFolders() {
    const QDir all(rehearsalsFolder());
    QStringList folders =
        all.entryList({kFolderNames}, QDir::Dirs | QDir::NoSymLinks, QDir::Name | QDir::Reversed);
    for (QString& name : folders)
        name = all.filePath(name);
    return folders;
}

}  // namespace vatchange
