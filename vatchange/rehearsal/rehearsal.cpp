#include "vatchange/rehearsal/rehearsal.h"

#include <QDir>
#include <QLocale>
#include <QSaveFile>
#include <QStorageInfo>

#include "company/connection_module.h"
#include "company/logs.h"
#include "data/clock.h"
#include "data/error.h"
#include "vatchange/changes/changes_csv.h"
#include "vatchange/rehearsal/rehearsal_ports.h"
#include "vatchange/rehearsal/results.h"

namespace vatchange {

namespace {

/// A run of all products adds about a seventh to a database, its list of changes as much, and the
/// copy's write-ahead log stays below 64 MB.
constexpr qint64 kLargestLog = qint64{96} * 1024 * 1024;

QString sizeText(qint64 bytes) {
    constexpr qint64 kMegabyte = qint64{1024} * 1024;
    constexpr qint64 kGigabyte = 1024 * kMegabyte;
    const QLocale finnish(QLocale::Finnish);
    if (bytes >= 10 * kGigabyte)
        return finnish.toString(bytes / kGigabyte) + QStringLiteral(" Gt");
    return finnish.toString((bytes + kMegabyte - 1) / kMegabyte) + QStringLiteral(" Mt");
}

/// Tables that a run or the change form reads or writes, besides the catalogue.
const QStringList& tablesOfRun() {
    static const QStringList kTables =
        QStringLiteral(
            "ALVKANTA ALIRYHMA ASALE ASIAKAS ASRYHMA HINTATASO HR INI KAMPPANJA MAARAALE MT MTRIVI "
            "MYYMALAHINNAT PRYHMA TRYHMA TUOTE TUOTE2 VAKIOLASKUTUS VERKKOKAUPASSA WEBKLIITOS "
            "WINOT "
            "WINOTRI")
            .split(u' ');
    return kTables;
}

data::DataError noRoom(const RehearsalRoom& room) {
    return data::DataError(data::ErrorKind::DiskFull, room.folder,
                           QStringLiteral("a rehearsal needs %1 bytes, %2 are free")
                               .arg(room.needed)
                               .arg(room.free))
        .inFinnish(QStringLiteral("koeajo tarvitsee tilaa %1, vapaana on %2")
                       .arg(sizeText(room.needed), sizeText(room.free)),
                   QStringLiteral("Vapauta levytilaa ja yritä uudestaan."));
}

data::DataError cannotWrite(const QFileDevice& file) {
    return data::DataError(data::ErrorKind::Io, file.fileName(), file.errorString());
}

}  // namespace

QString RehearsalRoom::text() const {
    QString text =
        QStringLiteral("Kopioidaan %1; tilaa tarvitaan %2").arg(sizeText(copied), sizeText(needed));
    if (free >= 0)
        text += QStringLiteral(", vapaana %1").arg(sizeText(free));
    return text;
}

RehearsalRoom rehearsalRoom() {
    RehearsalRoom room;
    room.folder = rehearsalsFolder();
    room.copied = company::PrivateCopy::size(tablesOfRun());
    room.needed = room.copied + room.copied / 2 + kLargestLog;
    const QStorageInfo disk(QDir(room.folder).exists() ? room.folder
                                                       : QFileInfo(room.folder).path());
    room.free = disk.isValid() ? disk.bytesAvailable() : -1;
    return room;
}

std::unique_ptr<Rehearsal> Rehearsal::begin(const company::CopyProgress& progress) {
    const RehearsalRoom room = rehearsalRoom();
    if (!room.enough())
        throw noRoom(room);
    std::unique_ptr<Rehearsal> rehearsal(new Rehearsal);
    rehearsal->m_all = room.folder;
    QDir().mkdir(room.folder);  // a failure is the copy's
    rehearsal->m_copy = company::PrivateCopy::make(room.folder, tablesOfRun(), progress);
    if (!rehearsal->m_copy)
        return nullptr;
    rehearsal->m_database = rehearsal->m_copy->open();
    rehearsal->makeFolder();
    return rehearsal;
}

Rehearsal::~Rehearsal() {
    if (m_inUse) {
        company::TZavDbConnectionModule::shutDown();
        company::TZavDbConnectionModule::setOpener(company::TZavDbConnectionModule::openByAlias);
    }
    m_inUse.reset();
    m_database.reset();
    m_copy.reset();
    for (const QString& folder : {m_folder, m_all}) {
        if (!folder.isEmpty())
            QDir().rmdir(folder);  // only if it is empty: nothing came of it
    }
}

void Rehearsal::makeFolder() {
    m_started = data::Clock::now();
    for (QDateTime time = m_started; m_folder.isEmpty(); time = time.addSecs(1)) {
        const QString folder =
            QDir(m_all).filePath(time.toString(QStringLiteral("yyyy-MM-dd HHmmss")));
        if (QDir().mkdir(folder))
            m_folder = folder;
        else if (!QDir(folder).exists())
            throw data::DataError(data::ErrorKind::Io, folder,
                                  QStringLiteral("the folder cannot be made"))
                .inFinnish(QStringLiteral("kansiota ei voi luoda"));
    }
}

QString Rehearsal::file(const QString& name) const {
    return QDir(m_folder).filePath(name);
}

data::Database& Rehearsal::database() {
    return m_database ? *m_database : company::companyDatabase();
}

RunSummary Rehearsal::run(const LoadedDefinition& definition, RunPorts& ports,
                          const RunOptions& options) {
    company::Company copy = m_copy->company();
    copy.logFolder = m_folder;
    RehearsalPorts rehearsed(ports, company::currentCompany());
    const company::CompanySubstitution substitution(std::move(copy));
    return runWithSummary(database(), definition, rehearsed, options);
}

void Rehearsal::takeIntoUse() {
    m_database.reset();
    company::Company copy = m_copy->company();
    copy.logFolder = m_folder;
    m_inUse = std::make_unique<company::CompanySubstitution>(std::move(copy));
    company::TZavDbConnectionModule::setOpener(
        [this](const QString& /*dataSource*/) { return m_copy->open(); });
}

void Rehearsal::discard() {
    QDir(m_folder).removeRecursively();
}

bool Rehearsal::holdsResults(const std::vector<qint64>& runs) const {
    return !runs.empty() || !QDir(m_folder).isEmpty();
}

void Rehearsal::writeResults(const std::vector<qint64>& runs) {
    data::RunJournal* journal = database().journal();
    QSaveFile changes(file(kChangesFile));
    if (!changes.open(QIODevice::WriteOnly))
        throw cannotWrite(changes);
    std::vector<RehearsedRun> rehearsed;
    try {
        ChangesCsvWriter writer(changes);
        qint64 last = 0;
        for (const qint64 number : runs) {
            const std::optional<data::JournalRun> head = journal->run(number);
            if (!head)
                continue;
            const qint64 first = last + 1;
            last = writer.add(database(), number);
            rehearsed.push_back({m_folder, head->definition, valuesDigest(*journal, number), number,
                                 first, last, head->state != data::RunState::Stopped,
                                 m_copy->isConverted()});
        }
        writer.flush();
    } catch (const platform::CsvError&) {
        throw cannotWrite(changes);
    }
    if (!changes.commit())
        throw cannotWrite(changes);
    writeDescription(m_folder, rehearsed);
}

QString rehearsalTitle(data::Database& copy, const std::vector<qint64>& runs) {
    QStringList names;
    for (const qint64 number : runs) {
        const std::optional<data::JournalRun> run = copy.journal()->run(number);
        if (run && !run->definition.isEmpty())
            names += run->definition;
    }
    const QString title = QStringLiteral("Koeajo");
    return names.isEmpty() ? title
                           : title + QStringLiteral(": ") + names.join(QStringLiteral(", "));
}

void removeAbandonedCopies() {
    data::removeAbandonedWorkFolders(rehearsalsFolder());
}

}  // namespace vatchange
