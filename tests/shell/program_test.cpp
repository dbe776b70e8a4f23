#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <functional>

#include "company/backup.h"
#include "company/batch_list.h"
#include "company/run_mark.h"
#include "data/engine/run_journal.h"
#include "data/record/record_codec.h"
#include "data/windows1252.h"
#include "framework/core/definition_store.h"
#include "platform/user_settings.h"
#include "shell/schedule/schedule_note.h"
#include "tests/support/shop_company.h"
#include "vatchange/form/change_form.h"

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

using test::str;

namespace {

// The program itself, copied alone into a temporary folder, with its batch list next to it.
class Program : public ::testing::Test {
  protected:
    Program() {
        const QString built =
            qEnvironmentVariable("TAKSAVAIHE_BIN", QCoreApplication::applicationDirPath());
        EXPECT_TRUE(QFile::copy(built + str("/taksavaihe"), m_folder.filePath(str("taksavaihe"))));
        m_shop.addProducts(2);
        for (const char* target : {"6", "0"})
            m_store.save(m_form, {str(*target == '6' ? "Alv255" : "Ilman kohdetta"),
                                  {},
                                  {{str("LahdeAlvLuokkaEdit"), str("3")},
                                   {str("KohdeAlvLuokkaEdit"), str(target)},
                                   {str("HintaLahde1"), str("hinta")},
                                   {str("Hinta1Edit"), str("1.0120967741935485")},
                                   {str("Tuotteet"), str("1")}}});
    }

    ~Program() override {
        // Log lines beyond the system's own texts begin with one of these words.
        static const QRegularExpression kBeginnings(
            str("^(Aloitetaan |Rajaus: |Tryhmä |tarkastetaan |update |Tuotetiedot muutettu|Kohteen "
                "ALV|Huomaa: |Tarkastus: |Jatketaan keskeytynyttä ajoa|Ajo keskeytettiin|Ajo jäi "
                "vajaaksi|"
                "Virhe|Määrittelyä ei (ajeta: |löydy))"));
        for (const QString& line : m_shop.logMessages())
            EXPECT_TRUE(line.contains(kBeginnings)) << line.toStdString();
    }

    void setBatch(const char* first, const char* second = "", const char* third = "") {
        company::writeBatchList(m_folder.filePath(str("ALVMUUTOS.INI")),
                                {str(first), str(second), str(third), {}});
    }
    int runBatch(const char* switches = "/E /EP") {
        return run(QStringList(m_company) + str(switches).split(u' '));
    }
    QString generalLog() {
        return data::fromWindows1252(test::fileBytes(m_shop.file(str("loki.dat"))));
    }

    int run(const QStringList& parameters, const QString& platform = {}) {
        QProcess program;
        start(program, parameters, platform);
        EXPECT_TRUE(program.waitForFinished(60000)) << "the program waits for somebody";
        m_errors = QString::fromUtf8(program.readAllStandardError());
        m_output = QString::fromUtf8(program.readAllStandardOutput());
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return program.exitCode();
    }
    void start(QProcess& program, const QStringList& parameters, const QString& platform = {}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QLatin1String(name));
        if (!platform.isEmpty())
            environment.insert(str("QT_QPA_PLATFORM"), platform);
        environment.insert(str("XDG_RUNTIME_DIR"), m_folder.path());  // else a line about it
        program.setProcessEnvironment(environment);
        program.setWorkingDirectory(QDir::rootPath());
        program.start(m_folder.filePath(str("taksavaihe")), parameters);
    }

    bool marked() { return company::ExecutionMarkExists(m_shop.database()); }
    QString prices() { return m_shop.text(str("select sum(HINTA) from TUOTE")); }

    const QString m_form = vatchange::TAlvMuutosLomake::kFormName;
    test::ShopCompany m_shop;
    framework::DefinitionStore m_store;
    QTemporaryDir m_folder;
    QString m_errors;
    QString m_output;
    const QString m_company = company::currentCompany().name;
};

TEST_F(Program, ABatchChangesTheCompanyOnceAndMarksIt) {
    EXPECT_EQ(runBatch(), 0);
    const QString list = m_folder.filePath(str("ALVMUUTOS.INI"));
    const QString empty = str("Eräajon luettelo \"%1\" on tyhjä: ").arg(list);
    EXPECT_EQ(m_errors, empty + str("tiedostoa ei ole. Mitään ei ajeta.\n"));
    test::writeFile(list, "[ASETUKSEET]\nmaar1=Alv255\n");
    EXPECT_EQ(runBatch(), 0);
    EXPECT_EQ(m_errors, empty + str("osaa [ASETUKSET] ei ole. Mitään ei ajeta.\n"));
    setBatch("");
    EXPECT_EQ(runBatch(), 0);
    EXPECT_EQ(m_errors,
              empty + str("osassa [ASETUKSET] ei ole yhtään määrittelyä. Mitään ei ajeta.\n"));
    EXPECT_EQ(generalLog().count(str("Eräajon luettelo \"") + list), 3);
    EXPECT_FALSE(QFile::exists(company::AlvMuutosLogName()));
    EXPECT_FALSE(marked());

    setBatch("", "ALV255");
    EXPECT_EQ(runBatch(), 0) << m_errors.toStdString();
    EXPECT_EQ(prices(), str("20.24"));
    EXPECT_TRUE(marked());
    const QStringList log = m_shop.logMessages();
    EXPECT_EQ(log.first(), str("Aloitetaan muutos määrittelylle: ALV255"));
    EXPECT_TRUE(generalLog().contains(str("Eräajon luettelo \"%1\": ALV255").arg(list)));
    EXPECT_EQ(m_shop.text(str("select count(*) from ini")), str("1"));  // the mark

    EXPECT_EQ(runBatch(), 3);
    EXPECT_EQ(m_shop.logMessages(), log);
    EXPECT_TRUE(generalLog().contains(str("Taksavaihe on kertaalleen ajettu")));
    EXPECT_EQ(runBatch("/E /EP /U"), 0);
    EXPECT_EQ(prices(), str("20.24"));  // no product has the source class any more
}

TEST_F(Program, ExitStatusSaysWhatWentWrong) {
    setBatch("Alv255", "Ilman kohdetta");
    EXPECT_EQ(run({str("/E"), str("Olematon")}), 2);
    EXPECT_TRUE(m_errors.contains(str("Olematon")));
    EXPECT_EQ(run({str("Olematon")}, str("offscreen")), 2);  // offscreen: no dialog waits
    EXPECT_EQ(run({str("/E")}), 2);
    for (const char* unknown : {"/KOEAJOT", "/e2", "--koeajo"}) {
        EXPECT_EQ(run({m_company, str("/E"), str(unknown)}), 2) << unknown;
        EXPECT_TRUE(m_errors.contains(str(unknown)));
    }
    EXPECT_EQ(run({m_company, str("/KOEAJO")}), 2);  // only with /E
    EXPECT_TRUE(m_errors.contains(str("/KOEAJO")));
    EXPECT_FALSE(QDir(company::dataFolderFile(str("KOEAJO"))).exists());
    EXPECT_EQ(runBatch("/E -koeajo"), 1);  // as the run itself: the second is refused
    EXPECT_TRUE(m_errors.contains(str("Kohteen ALV -luokka on oltava > 0!")));
    EXPECT_EQ(prices(), str("20"));
    EXPECT_FALSE(QFile::exists(company::AlvMuutosLogName()));
    setBatch("Alv255", "Puuttuva");
    EXPECT_EQ(runBatch("-e"), 2);
    EXPECT_EQ(prices(), str("20"));
    EXPECT_TRUE(m_shop.logMessages().last().endsWith(str("Puuttuva")));

    setBatch("Ilman kohdetta", "Alv255");  // the first is refused
    EXPECT_EQ(runBatch("/E"), 1);
    EXPECT_EQ(prices(), str("20.24"));
    EXPECT_TRUE(m_shop.logMessages().contains(str("Kohteen ALV -luokka on oltava > 0!")));

    const test::CompanyFolder empty(str("Tyhjä yritys"));
    EXPECT_EQ(run({str("Tyhjä yritys"), str("/E")}), 2);
    EXPECT_FALSE(m_errors.isEmpty());
    test::writeFile(empty.file(engines::kEmbeddedFileName), "ei tietokanta");
    EXPECT_EQ(run({str("Tyhjä yritys"), str("/E")}), 2);
}

TEST_F(Program, ABatchMakesABackupFirstAndAReportAtItsEnd) {
    setBatch("Alv255");
    const QString list = m_folder.filePath(str("ALVMUUTOS.INI"));
    const QByteArray names = test::fileBytes(list);
    const auto withKeys = [&](const QString& report, const QString& backup) {
        test::writeFile(list, names + "raportti=" + report.toUtf8() +
                                  "\nvarmuuskopio=" + backup.toUtf8() + "\nvieras=1\n");
    };
    const std::pair<QString, int> refused[] = {{str("/ei/ole"), 1}, {str("suhteellinen"), 2}};
    for (const auto& [folder, status] : refused) {
        withKeys(str("1"), folder);
        EXPECT_EQ(runBatch(), status);
        EXPECT_EQ(prices(), str("20"));
        EXPECT_TRUE(m_shop.database().journal()->runs().empty());
    }
    EXPECT_EQ(m_shop.logMessages(),
              QStringList{str("Virhe: eräajoa ei tehdä, koska varmuuskopio ei onnistunut: Luku tai "
                              "kirjoitus epäonnistui: /ei/ole: kansiota ei ole. Tarkista levy ja "
                              "verkkoyhteys.")});
    QTemporaryDir backups;
    withKeys(str("kyllä"), backups.path());
    EXPECT_EQ(runBatch(), 2);

    test::writeFile(m_shop.file(str("RAPORTIT")), "tiedosto");  // where the folder would be
    withKeys(str("1"), backups.path());
    EXPECT_EQ(runBatch(), 1);
    EXPECT_EQ(prices(), str("20.24"));
    EXPECT_TRUE(m_shop.logMessages().last().startsWith(
        str("Virhe: eräajon raporttia ei voitu kirjoittaa: ")));
    const QStringList copies = QDir(backups.path()).entryList(QDir::Files);
    ASSERT_EQ(copies.size(), 1);
    EXPECT_TRUE(copies.first().startsWith(m_company + u' ')) << copies.first().toStdString();
    const QTemporaryDir copied;
    QFile::copy(backups.filePath(copies.first()), copied.filePath(engines::kEmbeddedFileName));
    EXPECT_EQ(test::rows(*engines::openEmbedded(str("kopio"), copied.path()),
                         str("select sum(HINTA) from TUOTE")),
              QStringList{str("20")});

    QFile::remove(m_shop.file(str("RAPORTIT")));
    company::writeBatchList(list, {str("Alv255")});  // keeps the other keys
    EXPECT_TRUE(test::fileBytes(list).contains("vieras=1"));
    QFile::remove(backups.filePath(copies.first()));
    EXPECT_EQ(runBatch("/E /EP /U"), 0) << m_errors.toStdString();
    const QDir reports(m_shop.file(str("RAPORTIT")));
    ASSERT_EQ(reports.entryList({str("* Alv255.pdf")}, QDir::Files).size(), 1);
    EXPECT_TRUE(test::fileBytes(reports.filePath(reports.entryList(QDir::Files).first()))
                    .startsWith("%PDF"));
}

TEST_F(Program, ARestoredBackupReplacesOnlyACompanyThatNobodyUses) {
    const QString zavdb =
        QFileInfo(QCoreApplication::applicationFilePath()).dir().filePath(str("zavdb"));
    const auto call = [&](const QStringList& parameters) {
        QProcess tool;
        tool.start(zavdb, parameters);
        EXPECT_TRUE(tool.waitForFinished(60000));
        m_errors = QString::fromUtf8(tool.readAllStandardError());
        return tool.exitCode();
    };
    const QString backup = m_folder.filePath(str("kopio.ZDB"));
    const QString damaged = m_folder.filePath(str("rikki.ZDB"));
    ASSERT_EQ(call({str("backup"), m_company, backup}), 0) << m_errors.toStdString();
    EXPECT_EQ(company::lastBackup(m_company)->file, backup);
    QByteArray bytes = test::fileBytes(backup);
    bytes.replace(bytes.size() / 2, 4096, QByteArray(4096, 'x'));
    test::writeFile(damaged, bytes);
    m_shop.exec(str("update TUOTE set HINTA = 7"));

    EXPECT_EQ(call({str("restore"), m_company, backup}), 1);  // this process has it open
    EXPECT_TRUE(m_errors.contains(str("open"))) << m_errors.toStdString();
    EXPECT_EQ(prices(), str("14"));
    company::TZavDbConnectionModule::shutDown();
    EXPECT_EQ(call({str("restore"), m_company, damaged}), 1);
    const QDir folder(m_shop.path());
    EXPECT_EQ(folder.entryList({str("YRITYS *.ZDB")}), QStringList());
    EXPECT_EQ(prices(), str("14"));
    company::TZavDbConnectionModule::shutDown();
    EXPECT_EQ(call({str("restore"), m_company, backup}), 0) << m_errors.toStdString();
    EXPECT_EQ(prices(), str("20"));
    const QStringList kept = folder.entryList({str("YRITYS *.ZDB")});
    ASSERT_EQ(kept.size(), 1);
    company::TZavDbConnectionModule::shutDown();
    EXPECT_EQ(call({str("restore"), m_company, folder.filePath(kept.first())}), 0);
    EXPECT_EQ(prices(), str("14"));
}

TEST_F(Program, OnlyDamagedDefinitionsAreNotRun) {
    const QString file = m_store.fileName(m_form);
    const QByteArray sound = test::fileBytes(file);
    test::writeFile(file, sound + "[Normaali]\nVieH\n");
    setBatch("Normaali", "Alv255");
    EXPECT_EQ(runBatch(), 1);
    EXPECT_EQ(prices(), str("20.24"));
    EXPECT_EQ(m_shop.logMessages().filter(str("\"Normaali\" ei ole asetus")).size(), 2);

    setBatch("Alv255");
    EXPECT_EQ(runBatch("/E /EP /U"), 0);
    test::writeFile(file, sound + "[rikki\n");
    EXPECT_EQ(runBatch(), 3);  // the mark is checked before the file is read
    EXPECT_TRUE(generalLog().contains(str("Taksavaihe on kertaalleen ajettu")));
    EXPECT_EQ(runBatch("/E /U"), 1);
    EXPECT_TRUE(m_errors.contains(file)) << m_errors.toStdString();
}

TEST_F(Program, AMissingPriceLevelEndsTheBatchWithALine) {
    setBatch("Alv255");
    m_shop.exec(str("delete from HINTATASO where Nro = 4"));
    // a display that is set but not there
    EXPECT_EQ(run({m_company, str("/E")}, str("xcb")), 1);
    EXPECT_TRUE(m_shop.logMessages().last().startsWith(
        str("Virhe: eräajo päättyi virheeseen: Tiedot ovat vioittuneet: HINTATASO: hintatasoa ei "
            "löydy")));
    EXPECT_EQ(prices(), str("20"));
}

TEST_F(Program, HelpAndVersionNeedNoDisplay) {
    EXPECT_EQ(run({str("--help")}), 0);
    EXPECT_TRUE(m_output.contains(str("/EP")));
    EXPECT_EQ(run({str("--version")}), 0);
    EXPECT_TRUE(m_output.startsWith(str("Taksavaihe ")));
}

TEST_F(Program, AWindowThatNobodySeesIsNotWaitedFor) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "Näyttöä ei ole (DISPLAY tai WAYLAND_DISPLAY). "},
        {"offscreen", "Ohjelman ikkunoita ei näkisi kukaan (näyttöalusta offscreen). "},
        {"minimal", "Ohjelman ikkunoita ei näkisi kukaan (näyttöalusta minimal). "},
        {"xcb",  // the tests remove DISPLAY
         "Näyttöön ei saada yhteyttä (QT_QPA_PLATFORM=xcb). Tarkista nämä asetukset ja oikeus "
         "näyttöön. "}};
    for (const auto& [platform, reason] : cases) {
        EXPECT_EQ(run({m_company}, str(platform)), 2) << platform;
        EXPECT_EQ(m_errors, str(reason) + str("Ilman näyttöä ohjelma toimii eräajona: taksavaihe "
                                              "YRITYS /E\n"));
    }
}

TEST_F(Program, AChangeLogThatCannotBeWrittenFailsTheBatch) {
    setBatch("Alv255");
    const QString log = company::AlvMuutosLogName();
    const std::function<bool()> obstacles[] = {
        [&] { return QFile::link(str("/dev/full"), log); }, [&] { return QDir().mkpath(log); },
        [&] { return ::mkfifo(QFile::encodeName(log).constData(), 0600) == 0; }};
    for (const auto& putInTheWay : obstacles) {
        ASSERT_TRUE(putInTheWay());
        EXPECT_EQ(runBatch("/E /EP /U"), 1);
        EXPECT_EQ(prices(), str("20.24"));
        EXPECT_TRUE(m_errors.contains(log)) << m_errors.toStdString();
        m_shop.exec(str("update TUOTE set HINTA = 10, LVV = 3"));
        ASSERT_TRUE(QFile::remove(log) || QDir().rmdir(log));
    }
}

TEST_F(Program, WhatCannotBeReadIsToldByItsName) {
    const QString list = m_folder.filePath(str("ALVMUUTOS.INI"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(list).constData(), 0600), 0);
    EXPECT_EQ(runBatch(), 2);
    const QString noFile = str(": se ei ole tavallinen tiedosto");
    EXPECT_TRUE(m_errors.startsWith(str("Eräajon luetteloa ei voitu lukea: ")));
    EXPECT_TRUE(m_errors.contains(list + noFile)) << m_errors.toStdString();
    EXPECT_TRUE(generalLog().contains(list + noFile));
    EXPECT_FALSE(QFile::exists(company::AlvMuutosLogName()));
    ASSERT_TRUE(QFile::remove(list));

    setBatch("Alv255");
    const QString definitions = m_store.fileName(m_form);
    ASSERT_TRUE(QFile::remove(definitions) && QDir().mkpath(definitions));
    EXPECT_EQ(runBatch(), 1);
    EXPECT_TRUE(m_errors.contains(definitions + noFile)) << m_errors.toStdString();

    const QString companies = platform::userSettingsFolder() + str("/aliases.ini");
    const QByteArray sound = test::fileBytes(companies);
    test::writeFile(companies, sound + "rikki\n");
    EXPECT_EQ(runBatch(), 2);
    EXPECT_TRUE(m_errors.startsWith(str("Tiedot ovat vioittuneet: ") + companies))
        << m_errors.toStdString();
    test::writeFile(companies, sound);
}

// Three definitions of which the order matters: class 1 to 2, class 3 to 6 with customer prices and
// labels, class 2 to 3.
class InterruptedProgram : public Program {
  protected:
    static constexpr int kProducts = 400;

    InterruptedProgram() {
        company::takeIntoUse(m_company);
        for (const auto& [name, from, to] :
             {std::tuple{"Ensin", "1", "2"}, {"Toiseksi", "3", "6"}, {"Lopuksi", "2", "3"}})
            m_store.save(m_form, {str(name),
                                  {},
                                  {{str("LahdeAlvLuokkaEdit"), str(from)},
                                   {str("KohdeAlvLuokkaEdit"), str(to)},
                                   {str("HintaLahde1"), str("hinta")},
                                   {str("Hinta1Edit"), str("1.1")},
                                   {str("asiakashinnasto"), str("1")}}});
        m_shop.exec(str("delete from TUOTE"));
        m_shop.addProducts(kProducts);
        m_shop.exec(str("update TUOTE set HRKPL = 1, Verkkokauppa = 1"));
        m_shop.exec(str("update TUOTE set LVV = 1 where NUMERO < '2'"));
        m_shop.database().inTransaction([this] {
            for (int i = 1; i <= kProducts; ++i)
                m_shop.exec(str("insert into ASALE (AsiakasNumero, Tuote, Hinta, Tyyppi) "
                                "values (1, '%1', %1, 1)")
                                .arg(i));
        });
        setBatch("Ensin", "Toiseksi", "Lopuksi");
        engines::backupEmbedded(m_shop.path(), m_whole.file(engines::kEmbeddedFileName), {});
        const QString definitions = str("MAARITYS/AlvMuutosLomake.INI");
        EXPECT_TRUE(QDir(m_whole.path()).mkdir(str("MAARITYS")) &&
                    QFile::copy(m_shop.file(definitions), m_whole.file(definitions)));
        EXPECT_EQ(run({str("Keskeytymätön"), str("/E")}), 0) << m_errors.toStdString();
    }

    /// Starts the batch and ends it between the first and the last product of "Toiseksi".
    int interrupt(void (QProcess::*end)()) {
        const QString changed = str("select count(*) from TUOTE where LVV = 6");
        QProcess program;
        start(program, {m_company, str("/E")});
        while (m_shop.number(changed) < 10 && !program.waitForFinished(1)) {
        }
        (program.*end)();
        EXPECT_TRUE(program.waitForFinished(10000));
        EXPECT_LT(m_shop.number(changed), m_shop.number(str("select count(*) from TUOTE")) / 2);
        return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
    }

    /// Everything but dates and times.
    static QStringList everything(data::Database& database) {
        QStringList rows;
        for (const QString& table : database.tableNames()) {
            const auto file = database.openTable(table);
            for (const auto& record : file->fromEnd(0, data::Direction::Forward, 1000000)) {
                QStringList row(table);
                for (const auto& field : file->layout().fields()) {
                    const QString value = data::valueToText(
                        field, data::readValue(field, reinterpret_cast<const uchar*>(
                                                          record.bytes.constData())));
                    static const QRegularExpression kTimes(str("(?i)time|pvm|aika|klo|muutettu"));
                    if (!field.name.contains(kTimes) && table != u"INI")
                        row += value;
                }
                rows += row.join(u'|');
            }
        }
        return rows;
    }
    void isAsIfNeverInterrupted() {
        const auto whole = engines::openEmbedded(str("Keskeytymätön"), m_whole.path());
        const QStringList expected = everything(*whole);
        const QStringList found = everything(m_shop.database());
        ASSERT_EQ(found.size(), expected.size());
        for (qsizetype i = 0; i < found.size(); ++i)
            ASSERT_EQ(found[i].toStdString(), expected[i].toStdString());
    }
    QStringList started() {
        return m_shop.logMessages().filter(
            QRegularExpression(str("^(Aloitetaan muutos|Jatketaan)")));
    }

    const test::CompanyFolder m_whole{str("Keskeytymätön")};
};

TEST_F(InterruptedProgram, AKilledBatchIsContinuedAndRepeatsNothing) {
    EXPECT_EQ(interrupt(&QProcess::kill), -1);
    // what has been edited is not continued, and nothing changes
    auto edited = *m_store.load(m_form, str("Lopuksi"));
    const auto sound = edited;
    edited.values[str("Hinta1Edit")] = str("1.2");
    m_store.save(m_form, edited);
    const QStringList before = everything(m_shop.database());
    for (const char* switches : {"/E", "/E /U"})
        EXPECT_EQ(runBatch(switches), 1);
    EXPECT_TRUE(m_shop.logMessages().last().contains(str("hyväksy ajo 2 (määrittely Toiseksi, ")));
    EXPECT_EQ(everything(m_shop.database()), before);
    m_store.save(m_form, sound);

    EXPECT_EQ(runBatch("/E /U"), 0) << m_errors.toStdString();
    isAsIfNeverInterrupted();
    EXPECT_EQ(started(),
              QStringList({str("Aloitetaan muutos määrittelylle: Ensin"),
                           str("Aloitetaan muutos määrittelylle: Toiseksi"),
                           str("Jatketaan keskeytynyttä ajoa: eräajosta on jäljellä Toiseksi, "
                               "Lopuksi"),
                           str("Jatketaan keskeytynyttä ajoa 2"),
                           str("Aloitetaan muutos määrittelylle: Lopuksi")}));
    EXPECT_EQ(runBatch("/E"), 3);
    isAsIfNeverInterrupted();
}

TEST_F(InterruptedProgram, ARequestToEndStopsTheBatchBetweenTwoRows) {
    EXPECT_EQ(interrupt(&QProcess::terminate), 1);
    EXPECT_TRUE(m_shop.logMessages().filter(str("Ajo keskeytettiin")).size() == 1);
    data::RunJournal& journal = *m_shop.database().journal();
    ASSERT_EQ(journal.runs().size(), 2U);
    EXPECT_EQ(journal.runs().back().state, data::RunState::Stopped);
    EXPECT_EQ(journal.runs().back().batch, 1);
    EXPECT_EQ(runBatch("/E"), 0) << m_errors.toStdString();
    isAsIfNeverInterrupted();
    EXPECT_EQ(journal.runs().size(), 3U);
    EXPECT_EQ(runBatch("/E"), 3);
}

TEST_F(Program, AScheduledStartRunsOnlyAtItsMoment) {
    setBatch("Alv255");
    const auto start = [this](const QString& moment) {
        return run({m_company, str("/E"), str("/EP"), str("/AJASTETTU=") + moment});
    };
    const auto scheduled = [this](int minutesAgo) {
        const QDateTime now = QDateTime::currentDateTime();
        shell::ScheduleNote note{m_company, now.addSecs(-60 * minutesAgo)};
        note.moment.setTime(QTime(note.moment.time().hour(), note.moment.time().minute()));
        shell::writeSchedule(note);
        return shell::scheduleSwitch(note.moment).section(u'=', 1);
    };
    const QString before = prices();
    EXPECT_EQ(start(str("huomenna")), 2);
    EXPECT_EQ(start(str("2024-08-31T21:15Z")), 1);  // removed since
    EXPECT_EQ(start(scheduled(62)), 1);
    EXPECT_TRUE(shell::readSchedule(m_company)->late);
    for (const char* reason : {"on poistettu", "yli tunnin myöhässä"})
        EXPECT_EQ(generalLog().count(str(reason)), 1) << reason;
    EXPECT_EQ(prices(), before);
    EXPECT_EQ(start(scheduled(1)), 0);
    EXPECT_EQ(shell::readSchedule(m_company)->status, 0);
    EXPECT_NE(prices(), before);
    shell::removeSchedule(m_company);
}

}  // namespace
