#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "company/batch_list.h"
#include "company/run_mark.h"
#include "framework/core/definition_store.h"
#include "tests/support/shop_company.h"
#include "vatchange/form/change_form.h"

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

// The program itself, copied alone into a folder of its own: its batch list stands beside it.
class Program : public ::testing::Test {
  protected:
    Program() {
        const QString built =
            qEnvironmentVariable("TAKSAVAIHE_BIN", QCoreApplication::applicationDirPath());
        EXPECT_TRUE(QFile::copy(built + str("/taksavaihe"), m_folder.filePath(str("taksavaihe"))));
        m_shop.addProducts(2);
        framework::DefinitionStore().save(vatchange::TAlvMuutosLomake::kFormName,
                                          {str("Alv255"),
                                           {},
                                           {{str("LahdeAlvLuokkaEdit"), str("3")},
                                            {str("KohdeAlvLuokkaEdit"), str("6")},
                                            {str("HintaLahde1"), str("hinta")},
                                            {str("Hinta1Edit"), str("1.0120967741935485")},
                                            {str("Tuotteet"), str("1")}}});
        framework::DefinitionStore().save(
            vatchange::TAlvMuutosLomake::kFormName,
            {str("Ilman kohdetta"),
             {},
             {{str("LahdeAlvLuokkaEdit"), str("3")}, {str("KohdeAlvLuokkaEdit"), str("0")}}});
    }

    void setBatch(const company::BatchList& list) {
        company::writeBatchList(m_folder.filePath(str("ALVMUUTOS.INI")), list);
    }

    int run(const QStringList& parameters, const QString& platform = {}) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QLatin1String(name));
        if (!platform.isEmpty())
            environment.insert(str("QT_QPA_PLATFORM"), platform);
        program.setProcessEnvironment(environment);
        program.setWorkingDirectory(QDir::rootPath());
        program.start(m_folder.filePath(str("taksavaihe")), parameters);
        EXPECT_TRUE(program.waitForFinished(60000)) << "the program waits for somebody";
        m_errors = QString::fromUtf8(program.readAllStandardError());
        m_output = QString::fromUtf8(program.readAllStandardOutput());
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return program.exitCode();
    }

    bool marked() { return company::ExecutionMarkExists(m_shop.database()); }
    QString prices() { return m_shop.text(str("select sum(HINTA) from TUOTE")); }

    test::ShopCompany m_shop;
    QTemporaryDir m_folder;
    QString m_errors;
    QString m_output;
    const QString m_company = company::currentCompany().name;
};

TEST_F(Program, ABatchChangesTheCompanyOnceAndMarksIt) {
    setBatch({str(""), str("ALV255"), str(""), str("")});
    const QStringList batch = {m_company, str("/E"), str("/EP")};
    EXPECT_EQ(run(batch), 0) << m_errors.toStdString();
    EXPECT_EQ(prices(), str("20.24"));
    EXPECT_TRUE(marked());
    EXPECT_EQ(m_shop.logMessages().first(), str("Aloitetaan muutos määrittelylle: ALV255"));
    EXPECT_EQ(m_shop.text(str("select count(*) from ini")), str("1"));  // the mark, nothing else

    const QStringList log = m_shop.logMessages();
    EXPECT_EQ(run(batch), 3);
    EXPECT_EQ(m_shop.logMessages(), log);
    EXPECT_TRUE(
        test::fileBytes(m_shop.file(str("loki.dat"))).contains("Taksavaihe on kertaalleen ajettu"));
    EXPECT_EQ(run(batch + QStringList(str("/U"))), 0);
    EXPECT_EQ(prices(), str("20.24"));  // nothing carries the source class any more
}

TEST_F(Program, ExitStatusesTellWhatWentWrong) {
    setBatch({str("Alv255"), str("Ilman kohdetta"), str(""), str("")});
    EXPECT_EQ(run({str("/E"), str("Olematon")}), 2);
    EXPECT_TRUE(m_errors.contains(str("Olematon")));
    EXPECT_EQ(run({str("Olematon")}, str("offscreen")), 2);  // offscreen, no batch: no dialog waits
    EXPECT_EQ(run({str("/E")}), 2);
    for (const char* unknown : {"/KOEAJO", "/e2", "--koeajo"}) {
        setBatch({str("Alv255"), str(""), str(""), str("")});
        EXPECT_EQ(run({m_company, str("/E"), str(unknown)}), 2) << unknown;
        EXPECT_TRUE(m_errors.contains(str(unknown)));
        EXPECT_FALSE(QFile::exists(company::AlvMuutosLogName()));
    }
    EXPECT_EQ(prices(), str("20"));

    setBatch({str("Alv255"), str("Puuttuva"), str(""), str("")});
    EXPECT_EQ(run({m_company, str("-e")}), 2);
    EXPECT_EQ(prices(), str("20"));
    EXPECT_TRUE(m_shop.logMessages().last().endsWith(str("Puuttuva")));

    setBatch({str("Ilman kohdetta"), str("Alv255"), str(""), str("")});  // the first is refused
    EXPECT_EQ(run({m_company, str("/E")}), 1);
    EXPECT_EQ(prices(), str("20.24"));
    EXPECT_TRUE(m_shop.logMessages().contains(str("Kohteen ALV -luokka on oltava > 0!")));
}

TEST_F(Program, DamagedDefinitionsAreTheOnlyOnesNotRun) {
    const QString file =
        framework::DefinitionStore().fileName(vatchange::TAlvMuutosLomake::kFormName);
    const QByteArray sound = test::fileBytes(file);
    test::writeFile(file, sound + "[Normaali]\nVieH\n");
    setBatch({str("Normaali"), str("Alv255"), str(""), str("")});
    EXPECT_EQ(run({m_company, str("/E"), str("/EP")}), 1);
    EXPECT_EQ(prices(), str("20.24"));
    EXPECT_EQ(m_shop.logMessages().filter(str("\"Normaali\" ei ole asetus")).size(), 2);

    setBatch({str("Alv255"), str(""), str(""), str("")});
    EXPECT_EQ(run({m_company, str("/E"), str("/EP"), str("/U")}), 0);
    // the mark comes before a file that cannot be read at all
    test::writeFile(file, sound + "[rikki\n");
    EXPECT_EQ(run({m_company, str("/E")}), 3);
    EXPECT_TRUE(
        test::fileBytes(m_shop.file(str("loki.dat"))).contains("Taksavaihe on kertaalleen ajettu"));
    EXPECT_EQ(run({m_company, str("/E"), str("/U")}), 1);
    EXPECT_TRUE(m_errors.contains(file)) << m_errors.toStdString();
}

TEST_F(Program, ADefinitionWithProblemsIsRefusedAndChangesNothing) {
    framework::DefinitionStore store;
    auto bad = *store.load(vatchange::TAlvMuutosLomake::kFormName, str("Alv255"));
    bad.name = str("Huono");
    bad.values.remove(str("LahdeAlvLuokkaEdit"));  // 0 would select every product without a class
    bad.values.insert(str("OstohintaEdit"), str("1,1"));
    store.save(vatchange::TAlvMuutosLomake::kFormName, bad);
    m_shop.exec(str("insert into TUOTE (NUMERO, HINTA, LVV) values ('ilman', 10, 0)"));
    setBatch({str("Huono"), str(""), str(""), str("")});
    EXPECT_EQ(run({m_company, str("/E"), str("/EP")}), 1);
    const QString line =
        str("Määrittelyä ei ajeta: OstohintaEdit=1,1 (Ostohinta): arvoa ei voi lukea; "
            "LahdeAlvLuokkaEdit= (Vanha luokka): arvo puuttuu määrittelystä");
    EXPECT_EQ(m_shop.logMessages(),
              QStringList({str("Aloitetaan muutos määrittelylle: Huono"), line}));
    EXPECT_EQ(prices(), str("30"));
    EXPECT_FALSE(marked());

    setBatch({str("Huono"), str("Alv255"), str(""), str("")});
    EXPECT_EQ(run({m_company, str("/E"), str("/EP")}), 1);
    EXPECT_EQ(prices(), str("30.24"));
    EXPECT_EQ(m_shop.cell(str("select LVV from TUOTE where NUMERO = 'ilman'")), str("0"));
    EXPECT_TRUE(marked());
}

TEST_F(Program, AnEmptyBatchLeavesNoTrace) {
    EXPECT_EQ(run({m_company, str("/E")}), 0);
    EXPECT_FALSE(QFile::exists(company::AlvMuutosLogName()));
    EXPECT_FALSE(marked());
}

TEST_F(Program, AMissingPriceLevelEndsTheBatchWithALine) {
    setBatch({str("Alv255"), str(""), str(""), str("")});
    m_shop.exec(str("delete from HINTATASO where Nro = 4"));
    // a display that a login shell's settings name, and that is not there
    EXPECT_EQ(run({m_company, str("/E")}, str("xcb")), 1);
    EXPECT_TRUE(m_shop.logMessages().join(QLatin1Char('\n')).contains(str("hintatasoa ei löydy")));
    EXPECT_EQ(prices(), str("20"));
}

TEST_F(Program, ACompanyWithoutItsDatabaseIsUnavailable) {
    const test::CompanyFolder empty(str("Tyhjä yritys"));
    EXPECT_EQ(run({str("Tyhjä yritys"), str("/E")}), 2);
    EXPECT_FALSE(m_errors.isEmpty());
    test::writeFile(empty.file(engines::kEmbeddedFileName), "ei tietokanta");
    EXPECT_EQ(run({str("Tyhjä yritys"), str("/E")}), 2);
}

TEST_F(Program, HelpAndVersionNeedNoDisplay) {
    EXPECT_EQ(run({str("--help")}), 0);
    EXPECT_TRUE(m_output.contains(str("/EP")));
    EXPECT_EQ(run({str("--version")}), 0);
    EXPECT_TRUE(m_output.startsWith(str("Taksavaihe ")));
    EXPECT_EQ(run({m_company}), 2);  // a window is wanted and there is no display
    EXPECT_TRUE(m_errors.contains(str("DISPLAY")));
}

}  // namespace
