// zavdb with files, pipes, permissions and lost output, beyond transcripts.txt.

#include "data/dictionary/tbl_res_reader.h"
#include "tests/tools/zavdb_program.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

using test::fileBytes;

class Files : public test::ZavdbProgram {
  protected:
    void SetUp() override { done({"create", "A", "a"}); }
};

TEST_F(Files, EveryTableSurvivesExportAndReplace) {
    done({"demo", "D", "d", "--products", "150"});
    const QStringList tables = tableNames("D");
    EXPECT_EQ(tables.size(), 30);
    for (const QString& table : tables) {
        done({"export", "D", table, path("1.csv")});
        done({"import", "D", table, path("1.csv"), "--replace"});
        EXPECT_EQ(done({"export", "D", table}), fileBytes(path("1.csv"))) << table.toStdString();
    }
    done({"check", "D"});
}

TEST_F(Files, DemoCompaniesOfOneSeedAreEqual) {
    const QStringList elsewhere = {"TZ=Asia/Tokyo", "LC_ALL=C"};
    done({"demo", "One", "one", "--products", "120", "--seed", "7"});
    done({"demo", "Two", "two", "--seed", "7", "--products", "120"}, elsewhere);
    done({"demo", "Other", "other", "--products", "120", "--seed", "8"});
    EXPECT_EQ(tableNames("One"), tableNames("Two"));
    for (const QString& table : tableNames("One"))
        EXPECT_EQ(done({"export", "One", table}), done({"export", "Two", table}, elsewhere))
            << table.toStdString();
    EXPECT_NE(done({"export", "One", "TUOTE"}), done({"export", "Other", "TUOTE"}));
}

TEST_F(Files, ADictionaryFileIsReadBack) {
    done({"dictionary", "A", "MT", "ASIAKAS", "own.dictionary"});
    data::TTblResReader::setModuleFile(path("own.dictionary"));
    data::TTblResBase orders;
    data::TTblResBase customers;
    EXPECT_TRUE(data::TTblResReader::ReadResource(QStringLiteral("mt"), orders));
    EXPECT_TRUE(data::TTblResReader::ReadResource(QStringLiteral("ASIAKAS"), customers));
    data::TTblResReader::setModuleFile(QString());
    ASSERT_EQ(orders.FFields.size(), 11U);
    EXPECT_EQ(orders.FFields[5].name, QStringLiteral("Toimituspaiva"));
    EXPECT_EQ(orders.FFields[5].offset, 55);
    EXPECT_EQ(orders.FFields[5].storage, data::Storage::Date);
    ASSERT_EQ(customers.FFields.size(), 102U);
    EXPECT_EQ(customers.FFields[76].mask, 1);
}

TEST_F(Files, LoadKeepsTheCatalogueDescribingTheTables) {
    done({"save", "A", "X$File", path("files")});
    QByteArray bytes = test::fileBytes(path("files"));
    const qsizetype header = bytes.indexOf(',') + 1;
    bytes[header] = '\x7F';  // another number for the first table
    bytes.truncate(bytes.indexOf("\r\n", header + bytes.left(header - 1).toInt()) + 2);
    const test::ProgramResult result =
        run({"load", "A", "X$File", file("changed", bytes + '\x1A')});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains("catalogue")) << result.err.constData();
}

TEST_F(Files, ADamagedDatabaseIsReported) {
    QFile database(path("a/YRITYS.ZDB"));
    ASSERT_TRUE(database.resize(database.size() / 2));
    for (const QStringList& command : {QStringList{"check", "A"}, {"backup", "A", "copy"}}) {
        const test::ProgramResult result = run(command);
        EXPECT_EQ(result.status, 1) << command.constFirst().toStdString();
        EXPECT_NE(result.out + result.err, QByteArray());
    }
}

#ifndef _WIN32
TEST_F(Files, NothingIsWorldWritable) {
    const mode_t before = ::umask(0);
    done({"create", "B", "b/c"});
    done({"copy", "B", "Copy", "copy"});
    done({"backup", "B", "backup.zdb"});
    ::umask(before);
    for (const char* name : {"b", "b/c", "b/c/YRITYS.ZDB", "b/c/YRITYS.ZDB-lock", "copy",
                             "copy/YRITYS.ZDB", "backup.zdb", "config/Taksavaihe"}) {
        EXPECT_TRUE(QFile::exists(path(name))) << name;
        EXPECT_FALSE(QFileInfo(path(name)).permissions() & QFile::WriteOther) << name;
    }
    EXPECT_TRUE(QFileInfo(path("copy/YRITYS.ZDB")).permissions() & QFile::WriteGroup);
}

// A command removes what killed ones left in its folder, but not what is still in use.
TEST_F(Files, WorkFoldersOfKilledCommandsAreRemoved) {
    QDir().mkpath(path("b"));
    const auto workFolders = [this] {
        return QDir(path("b")).entryList({".zavdb-*"}, QDir::Dirs | QDir::Hidden);
    };
    QProcess demo;
    prepare(demo);
    demo.start(program(), {"demo", "D", "b", "--products", "1000000"});
    while (workFolders().isEmpty() || !QFile::exists(path("b/" + workFolders()[0] + "/YRITYS.ZDB")))
        ASSERT_FALSE(demo.waitForFinished(5));
    const QStringList used = workFolders();
    done({"backup", "A", "b/copy.zdb"});
    EXPECT_EQ(workFolders(), used);
    EXPECT_FALSE(demo.waitForFinished(5));
    demo.kill();
    demo.waitForFinished();
    EXPECT_EQ(workFolders(), used);
    // what has no lock is somebody else's, unless it is empty
    QDir().mkpath(path("b/.zavdb-ABCDEF/x"));
    QDir().mkpath(path("b/.zavdb-GHIJKL"));
    done({"backup", "A", "b/again.zdb"});
    EXPECT_EQ(workFolders(), QStringList{".zavdb-ABCDEF"});
    done({"create", "B", "b"});
    EXPECT_EQ(workFolders(), QStringList{".zavdb-ABCDEF"});
}

TEST_F(Files, WhatTheSystemRefusesIsAClearError) {
    const struct {
        const char* script;  // "$0" is zavdb
        int status;
        const char* said;
    } cases[] = {
        {"\"$0\" create B \"$(printf 'b\\344')\"", 2, "Argument 3 is not valid UTF-8: \"b%E4\""},
        {"mkdir \"$(printf 'b\\344')\" && cd b* && \"$0\" create B c; s=$?; rm -r ../b*; exit $s",
         1, "not valid UTF-8"},
        {"ulimit -f 400; \"$0\" demo B c --products 5000", 1, "File too large"},
    };
    for (const auto& c : cases) {
        const test::ProgramResult result =
            run({"--version"}, {}, QString("> c; rm c; ") + c.script);
        EXPECT_EQ(result.status, c.status) << c.script;
        EXPECT_TRUE(result.err.contains(c.said)) << result.err.constData();
        EXPECT_FALSE(QFile::exists(path("c/YRITYS.ZDB"))) << c.script;
    }
    EXPECT_TRUE(done({"list"}).startsWith("A\t"));
    EXPECT_EQ(done({"list"}).count('\n'), 1);
}

TEST_F(Files, OutputToAPipeDoesNotReplaceIt) {
    const QByteArray name = QFile::encodeName(path("pipe"));
    ASSERT_EQ(::mkfifo(name.constData(), 0600), 0);
    const int pipe = ::open(name.constData(), O_RDWR | O_NONBLOCK);  // buffers 64 KB
    ASSERT_GE(pipe, 0);
    for (const char* command : {"export", "save", "dictionary"}) {
        done({command, "A", "HINTATASO", path("pipe")});
        QByteArray bytes(65536, '\0');
        bytes.truncate(std::max<qsizetype>(0, ::read(pipe, bytes.data(), 65536)));
        done({command, "A", "HINTATASO", path("plain")});
        EXPECT_EQ(bytes, fileBytes(path("plain"))) << command;
        struct stat status = {};
        ASSERT_EQ(::lstat(name.constData(), &status), 0);
        EXPECT_TRUE(S_ISFIFO(status.st_mode)) << command;
    }
    ::close(pipe);
}

TEST_F(Files, LostOutputIsAnError) {
    // works without a UTF-8 locale
    for (const QString command : {"--help", "--version", "import --help"})
        EXPECT_NE(done(QProcess::splitCommand(command), {"LC_ALL=C"}), QByteArray());
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no full device";
    for (const QString command :
         {"list", "tables A", "fields A TUOTE", "check A", "sql A \"select Nro from HINTATASO\"",
          "sql A \"delete from HINTATASO where Nro > 99\"", "export A HINTATASO", "--help"}) {
        for (const char* redirection : {"> /dev/full", ">&-"}) {
            const test::ProgramResult result =
                run(QProcess::splitCommand(command), {}, redirection);
            EXPECT_EQ(result.status, 1) << command.toStdString() << redirection;
            EXPECT_NE(result.err, QByteArray()) << command.toStdString() << redirection;
        }
    }
}
#endif

}  // namespace
