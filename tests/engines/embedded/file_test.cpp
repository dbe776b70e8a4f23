#include <QDir>
#include <QFile>
#include <filesystem>
#include <limits>

#include "engines/embedded/connection.h"
#include "engines/sqlite/sqlite_handle.h"
#include "tests/engines/embedded/fixture.h"
#include "tests/support/files.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif
#ifdef __linux__
#include <sys/fsuid.h>
#endif

using namespace data;
using test::thrownBy;

namespace {

class EmbeddedFile : public test::EmbeddedCompany {
  protected:
    // Changes the file bypassing the engine.
    void tamper(const QByteArray& sql) {
        db.reset();
        const engines::sqlite::SqliteHandle handle(file(),
                                                   engines::sqlite::SqliteHandle::Mode::ReadWrite);
        engines::sqlite::execute(handle.get(), sql);
    }

    DataError openingError() {
        return thrownBy([&] { engines::openEmbedded("KOE", folder()); });
    }
};

}  // namespace

TEST_F(EmbeddedFile, CreationNeverReplacesAndLeavesNothingWhenItFails) {
    EXPECT_EQ(thrownBy([&] { engines::createEmbedded(folder(), allTableSources()); }).kind(),
              ErrorKind::Engine);
    EXPECT_EQ(rows("select count(*) from hintataso"), QStringList{"9"});

    TableSource bad = allTableSources().front();
    bad.name = "TAULUNNIMIONAIVANLIIANPITKA";  // the catalogue holds 20 characters
    const QString elsewhere = folder() + "/uusi";
    EXPECT_EQ(thrownBy([&] { engines::createEmbedded(elsewhere, {bad}); }).kind(),
              ErrorKind::BadValue);
    EXPECT_FALSE(QDir(elsewhere).exists());
    EXPECT_FALSE(engines::hasEmbeddedDatabase(elsewhere));

    // A company with selected tables also gets the catalogue's own.
    engines::createEmbedded(elsewhere, {allTableSources().front()});
    EXPECT_EQ(engines::openEmbedded("X", elsewhere)->tableNames(),
              (QStringList{"ALIRYHMA", "X$Field", "X$File", "X$Index"}));
    EXPECT_EQ(QDir(elsewhere).entryList(QDir::Files, QDir::Name),
              (QStringList{"YRITYS.ZDB", "YRITYS.ZDB-lock"}));
}

TEST_F(EmbeddedFile, ForeignFilesAreRefused) {
    db.reset();
    EXPECT_EQ(thrownBy([&] { engines::openEmbedded("X", folder() + "/puuttuu"); }).kind(),
              ErrorKind::NoConnection);
    const QByteArray whole = test::fileBytes(file());
    const std::pair<const char*, QByteArray> files[] = {
        {"empty", {}},
        {"text", QByteArray("tämä on tekstiä\n").repeated(500)},
        {"beginning cut off", whole.mid(100)},
    };
    for (const auto& [what, bytes] : files) {
        test::writeFile(file(), bytes);
        EXPECT_EQ(openingError().kind(), ErrorKind::Damaged) << what;
    }
    QFile::remove(file());
    {
        const engines::sqlite::SqliteHandle foreign(file(),
                                                    engines::sqlite::SqliteHandle::Mode::Create);
        engines::sqlite::execute(foreign.get(), "CREATE TABLE tuote (numero)");
    }
    EXPECT_EQ(openingError().kind(), ErrorKind::Damaged);
    QFile::remove(file());
    test::writeFile(file(), whole);
    EXPECT_NO_THROW(engines::openEmbedded("KOE", folder()));
    tamper("PRAGMA user_version = 3");
    const DataError newer = openingError();
    EXPECT_EQ(newer.kind(), ErrorKind::Engine);
    EXPECT_TRUE(newer.detail().contains("newer")) << newer.english().toStdString();
}

TEST_F(EmbeddedFile, ACatalogueThatDisagreesNamesTheTable) {
    // A missing key column is found when the table is opened, a missing table immediately.
    tamper("DROP INDEX rec_TRYHMA_k2; ALTER TABLE rec_TRYHMA DROP COLUMN k2");
    db = engines::openEmbedded("KOE", folder());
    DataError error = thrownBy([&] { db->openTable("TRYHMA"); });
    EXPECT_EQ(error.kind(), ErrorKind::Damaged);
    EXPECT_EQ(error.table(), "TRYHMA");
    error = thrownBy([&] { db->prepare("select nro from tryhma"); });
    EXPECT_EQ(error.kind(), ErrorKind::Damaged);
    tamper("DROP TABLE rec_PRYHMA");
    error = openingError();
    EXPECT_EQ(error.kind(), ErrorKind::Damaged);
    EXPECT_EQ(error.table(), "PRYHMA");
}

// The catalogue row of the store price table may be missing although the table is stored.
TEST_F(EmbeddedFile, ATableThatIsNotListedTakesItsCompiledLayout) {
    run("insert into tuote (numero, nimi) values ('a', 'Eka')");
    EXPECT_EQ(run("delete from x$file where xf$name = 'TUOTE'"), 1);
    db = engines::openEmbedded("KOE", folder());
    EXPECT_FALSE(db->tableNames().contains("TUOTE"));
    EXPECT_EQ(db->openTable("TUOTE")->keys().size(), 7u);
    EXPECT_EQ(rows("select numero, nimi from tuote where numero = 'a'"), QStringList{"a|Eka"});
    EXPECT_EQ(engines::checkEmbedded(folder()).size(), 1);
}

TEST_F(EmbeddedFile, CheckFindsWhatIsWrong) {
    run("insert into tuote (numero, nimi) values ('a', 'Eka'), ('b', 'Toka')");
    run("insert into ini values ('a', 'b', 'c', 'd')");
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
    const std::tuple<QByteArray, QByteArray, QByteArray> cases[] = {
        {"UPDATE rec_TUOTE SET k5 = zeroblob(40) WHERE id = 2",
         "UPDATE rec_TUOTE SET k5 = (SELECT k5 FROM rec_TUOTE WHERE id = 1) WHERE id = 2", "key 5"},
        {"UPDATE rec_INI SET data = substr(data, 1, 1000)", "DELETE FROM rec_INI",
         "1000 bytes instead of 1187"},
        {"UPDATE rec_TUOTE SET data = cast(x'13' || substr(data, 2) AS BLOB) WHERE id = 1",
         "DELETE FROM rec_TUOTE WHERE id = 1", "text length"},
        {"CREATE TABLE \"rec_OMA\"(id INTEGER PRIMARY KEY, data BLOB NOT NULL)",
         "DROP TABLE rec_OMA", "not listed"},
        {"DROP INDEX rec_TUOTE_k1", "CREATE INDEX \"rec_TUOTE_k1\" ON \"rec_TUOTE\"(k1)",
         "TUOTE: key 1 has no index"},
    };
    for (const auto& [sql, undo, words] : cases) {
        tamper(sql);
        const QString said = engines::checkEmbedded(folder()).join('\n');
        EXPECT_TRUE(said.contains(words)) << sql.toStdString() << "\n" << said.toStdString();
        if (words.contains("1187")) {
            db = engines::openEmbedded("KOE", folder());
            EXPECT_EQ(thrownBy([&] { rows("select * from ini"); }).kind(), ErrorKind::Damaged);
            EXPECT_EQ(
                thrownBy([&] { db->openTable("INI")->fromEnd(0, Direction::Forward, 1); }).kind(),
                ErrorKind::Damaged);
        }
        tamper(undo);
    }
    tamper("DELETE FROM rec_TUOTE; DELETE FROM rec_INI");
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
}

// Code and rules of others in the file could change or refuse what a run stores.
TEST_F(EmbeddedFile, SchemaObjectsOfOthersAreRefusedAndTold) {
    run("insert into tuote (numero, nimi) values ('a', 'Eka')");
    const struct {
        const char* name;
        QByteArray sql;
        QByteArray undo;
    } cases[] = {
        {"trigger \"t\"",
         "CREATE TRIGGER t AFTER UPDATE ON rec_TUOTE BEGIN DELETE FROM rec_MT; END",
         "DROP TRIGGER t"},
        {"view \"zdb_v\"", "CREATE VIEW zdb_v AS SELECT * FROM rec_TUOTE", "DROP VIEW zdb_v"},
        {"table \"muu\"", "CREATE TABLE muu(a)", "DROP TABLE muu"},
        {"table \"zdb_muu\"", "CREATE TABLE zdb_muu(a)", "DROP TABLE zdb_muu"},
        {"index \"rec_TUOTE_k9\"", "CREATE INDEX rec_TUOTE_k9 ON rec_TUOTE(k1)",
         "DROP INDEX rec_TUOTE_k9"},
        {"index \"i\"", "CREATE UNIQUE INDEX i ON rec_TUOTE(length(data))", "DROP INDEX i"},
        // SQLite's own check finds nothing wrong with an index of a part
        {"index \"rec_TUOTE_k1\"",
         "DROP INDEX rec_TUOTE_k1; CREATE INDEX rec_TUOTE_k1 ON rec_TUOTE(k1) WHERE id <> 1",
         "DROP INDEX rec_TUOTE_k1; CREATE INDEX \"rec_TUOTE_k1\" ON \"rec_TUOTE\"(k1)"},
        {"table \"rec_OMA\"",
         "CREATE TABLE rec_OMA(id INTEGER PRIMARY KEY, data BLOB NOT NULL CHECK (id < 2))",
         "DROP TABLE rec_OMA"},
        {"table \"haku\"", "CREATE VIRTUAL TABLE haku USING fts5(a)", "DROP TABLE haku"},
    };
    for (const auto& c : cases) {
        tamper(c.sql);
        const DataError error = openingError();
        EXPECT_EQ(error.kind(), ErrorKind::Damaged) << c.sql.constData();
        EXPECT_TRUE(error.detail().contains(c.name)) << error.english().toStdString();
        EXPECT_TRUE(error.finnish().contains("eivät ole tämän ohjelman"));
        const QString said = engines::checkEmbedded(folder()).join('\n');
        EXPECT_TRUE(said.contains(c.name)) << said.toStdString();
        tamper(c.undo);
        EXPECT_EQ(engines::checkEmbedded(folder()), QStringList()) << c.sql.constData();
    }
    // a trigger that another program makes while the database is open
    db = engines::openEmbedded("KOE", folder());
    {
        const engines::embedded::SqliteHandle other(
            file(), engines::embedded::SqliteHandle::Mode::ReadWrite);
        engines::embedded::execute(other.get(), cases[0].sql);
    }
    run("insert into mt (numero) values (1)");
    EXPECT_EQ(run("update tuote set hinta = 2"), 1);
    EXPECT_EQ(rows("select count(*) from mt"), QStringList{"1"});
}

TEST_F(EmbeddedFile, CheckComparesEveryKeyWithItsRecords) {
    for (const char* number : {"a", "b", "c"})
        run(QStringLiteral("insert into tuote (numero, nimi, ryhma, aliryhma, toimittaja) "
                           "values ('%1', 'Nimi %1', 1, 2, 3)")
                .arg(number));
    // Takes an index out of the schema for a while, so that it does not follow what is done.
    const auto behindIndex = [&](int key, const QByteArray& sql) {
        const QByteArray name = "'rec_TUOTE_k" + QByteArray::number(key) + '\'';
        tamper(
            "ATTACH ':memory:' AS keep; CREATE TABLE keep.saved AS SELECT * FROM "
            "sqlite_master WHERE name = " +
            name +
            "; PRAGMA writable_schema = RESET; "
            "PRAGMA writable_schema = ON; DELETE FROM sqlite_master WHERE name = " +
            name + "; PRAGMA writable_schema = RESET; " + sql +
            "; PRAGMA writable_schema = ON; INSERT INTO sqlite_master SELECT * FROM keep.saved;"
            "PRAGMA writable_schema = RESET");
    };
    for (int key = 0; key <= 6; ++key) {
        const QByteArray k = QByteArray::number(key);
        const struct {
            QByteArray sql;
            QByteArray undo;
            QByteArray said;
        } cases[] = {
            {"CREATE TABLE kept AS SELECT * FROM rec_TUOTE WHERE id = 2; "
             "DELETE FROM rec_TUOTE WHERE id = 2",
             "INSERT INTO rec_TUOTE SELECT * FROM kept; DROP TABLE kept",
             "TUOTE: the index of key " + k + " has record 2, which is not there"},
            {"INSERT INTO rec_TUOTE SELECT 9, cast(k0 || x'01' AS BLOB), k1, k2, k3, k4, k5, k6, "
             "data "
             "FROM rec_TUOTE WHERE id = 3",
             "DELETE FROM rec_TUOTE WHERE id = 9",
             "TUOTE: the index of key " + k + " lacks record 9 (NUMERO \"c\")"},
            {"UPDATE rec_TUOTE SET k" + k + " = cast(k" + k + " || x'02' AS BLOB) WHERE id = 1",
             "UPDATE rec_TUOTE SET k" + k + " = substr(k" + k + ", 1, length(k" + k +
                 ") - 1) WHERE id = 1",
             "TUOTE: the index of key " + k + " has record 1 under another value"},
        };
        for (const auto& c : cases) {
            behindIndex(key, c.sql);
            const QString said = engines::checkEmbedded(folder()).join('\n');
            EXPECT_TRUE(said.contains(c.said)) << c.said.constData() << '\n' << said.toStdString();
            behindIndex(key, c.undo);
            ASSERT_EQ(engines::checkEmbedded(folder()), QStringList()) << c.said.constData();
        }
    }
}

TEST_F(EmbeddedFile, CheckTellsNumbersThatAreNoAmounts) {
    run("insert into tuote (numero) values ('a')");
    const int offset = db->openTable("TUOTE")
                           ->layout()
                           .field(db->openTable("TUOTE")->layout().indexOf("HINTA"))
                           .offset;
    const struct {
        double price;
        const char* said;  // nullptr: nothing
    } cases[] = {{std::numeric_limits<double>::quiet_NaN(), "field HINTA: not a number (NaN)"},
                 {std::numeric_limits<double>::infinity(), "field HINTA: infinite"},
                 {1e12, "field HINTA: no amount: 1000000000000"},
                 {-9.1e11, "field HINTA: no amount: -910000000000"},
                 {4.9e-324, "field HINTA: no amount"},
                 {-9e11, nullptr},
                 {5.5e-17, nullptr}};  // 0.1 + 0.2 - 0.3
    for (const auto& c : cases) {
        const QByteArray bytes(reinterpret_cast<const char*>(&c.price), sizeof c.price);
        tamper("UPDATE rec_TUOTE SET data = cast(substr(data, 1, " + QByteArray::number(offset) +
               ") || x'" + bytes.toHex() + "' || substr(data, " + QByteArray::number(offset + 9) +
               ") AS BLOB)");
        const QStringList said = engines::checkEmbedded(folder());
        EXPECT_EQ(said.size(), c.said == nullptr ? 0 : 1) << c.price;
        EXPECT_TRUE(said.join(' ').contains(c.said == nullptr ? "" : c.said))
            << said.join('\n').toStdString();
    }
}

TEST_F(EmbeddedFile, AFileWithSeveralNamesIsRefused) {
    db.reset();
    const QTemporaryDir elsewhere;
    const QString second = elsewhere.filePath(engines::kEmbeddedFileName);
    std::filesystem::create_hard_link(file().toStdU16String(), second.toStdU16String());
    for (const QString& by : {folder(), elsewhere.path()}) {
        const DataError error = thrownBy([&] { engines::openEmbedded("KOE", by); });
        EXPECT_TRUE(error.english().contains("2 names (hard links)")) << error.what();
        EXPECT_TRUE(error.finnish().contains("Poista muut nimet")) << error.what();
        thrownBy([&] { engines::checkEmbedded(by); });
        thrownBy([&] { engines::backupEmbedded(by, folder() + "/kopio", {}); });
    }
    QFile::remove(second);
    EXPECT_NO_THROW(engines::openEmbedded("KOE", folder()));
    // a symbolic link is another way to the one name
    std::filesystem::create_symlink(file().toStdU16String(), second.toStdU16String());
    EXPECT_NO_THROW(engines::openEmbedded("KOE", elsewhere.path()));
}

// On a network drive or by a careless program. A mapped file would end the process here.
TEST_F(EmbeddedFile, AFileThatIsCutWhileItIsOpenIsAnError) {
    db->inTransaction([&] {
        for (int i = 0; i < 500; ++i)
            run(QStringLiteral("insert into tuote (numero) values ('%1')").arg(i));
    });
    db.reset();  // puts everything into the file
    db = engines::openEmbedded("KOE", folder());
    EXPECT_EQ(rows("select count(*) from hintataso"), QStringList{"9"});
    QFile cut(file());
    ASSERT_TRUE(cut.resize(cut.size() / 2));
    const DataError error = thrownBy([&] { rows("select * from tuote"); });
    EXPECT_TRUE(error.kind() == ErrorKind::Damaged || error.kind() == ErrorKind::Io)
        << error.what();
}

TEST_F(EmbeddedFile, AFailedStatementLeavesTheRestOfItsTransaction) {
    db->inTransaction([&] {
        run("insert into tryhma (nro) values (1)");
        // A failed statement leaves earlier changes.
        EXPECT_THROW(run("insert into tryhma (nro) values (2), (1)"), DataError);
        db->inTransaction([&] { run("insert into tryhma (nro) values (3)"); });
    });
    EXPECT_EQ(rows("select nro from tryhma order by nro"), (QStringList{"1", "3"}));
}

TEST_F(EmbeddedFile, BackupIsConsistentAndNeverReplaces) {
    run("insert into tryhma (nro, nimi) values (1, 'ennen')");
    const QString copy = folder() + "/kopio/YRITYS.ZDB";
    QDir().mkpath(folder() + "/kopio");
    bool wrote = false;
    engines::backupEmbedded(folder(), copy, [&](engines::CopyPhase, qint64 done, qint64 total) {
        EXPECT_LE(done, total);
        if (!wrote)
            run("update tryhma set nimi = 'aikana'");
        wrote = true;
        return true;
    });
    EXPECT_TRUE(wrote);
    const auto copied = engines::openEmbedded("KOPIO", folder() + "/kopio");
    EXPECT_EQ(test::rows(*copied, "select nimi from tryhma"), QStringList{"ennen"});
    EXPECT_EQ(rows("select nimi from tryhma"), QStringList{"aikana"});
    EXPECT_EQ(engines::checkEmbedded(folder() + "/kopio"), QStringList());
    EXPECT_EQ(thrownBy([&] { engines::backupEmbedded(folder(), copy, {}); }).kind(), ErrorKind::Io);
    // a longer name is another program's file
    test::writeFile(folder() + "/toinen.zdb.part", "muun");
    engines::backupEmbedded(folder(), folder() + "/toinen.zdb", {});
    EXPECT_EQ(QDir(folder()).entryList({"toinen*"}, QDir::AllEntries | QDir::Hidden, QDir::Name),
              (QStringList{"toinen.zdb", "toinen.zdb.part"}));
    const QString stopped = folder() + "/kesken.zdb";
    engines::backupEmbedded(folder(), stopped,
                            [](engines::CopyPhase, qint64, qint64) { return false; });
    EXPECT_EQ(QDir(folder()).entryList({"kesken*"}), QStringList());
}

#ifdef __linux__
TEST_F(EmbeddedFile, AFolderThatMayNotBeReadIsNotTakenForAnEmptyOne) {
    EXPECT_TRUE(engines::hasEmbeddedDatabase(folder()));
    const QTemporaryDir outer;
    QDir(outer.path()).mkdir("sisin");
    ASSERT_EQ(::chmod(QFile::encodeName(outer.path()).constData(), 0), 0);
    const int before = ::setfsuid(65534);  // root may read everything
    const DataError error = thrownBy([&] { engines::hasEmbeddedDatabase(outer.path()); });
    EXPECT_THROW(engines::hasEmbeddedDatabase(outer.filePath("sisin")), DataError);
    ::setfsuid(static_cast<uid_t>(before));
    ASSERT_EQ(::chmod(QFile::encodeName(outer.path()).constData(), 0700), 0);
    EXPECT_EQ(error.kind(), ErrorKind::NoConnection);
    EXPECT_TRUE(error.english().contains("the folder cannot be read: Permission denied"))
        << error.what();
    EXPECT_TRUE(error.finnish().contains("kansiota ei voi lukea"));
    EXPECT_FALSE(engines::hasEmbeddedDatabase(outer.path()));
}
#endif

#ifndef _WIN32
// Users of a group share a company if their umask allows; others never get write permission.
TEST_F(EmbeddedFile, RightsFollowTheUmask) {
    const std::pair<mode_t, mode_t> cases[] = {{002, 0664}, {022, 0644}, {077, 0600}, {0, 0664}};
    const auto rightsOf = [](const QString& name) -> mode_t {
        struct stat status = {};
        EXPECT_EQ(::stat(QFile::encodeName(name).constData(), &status), 0) << name.toStdString();
        return status.st_mode & 07777;
    };
    const mode_t before = ::umask(0);
    for (const auto& [mask, rights] : cases) {
        const QTemporaryDir company;
        ::umask(mask);
        engines::createEmbedded(company.path(), allTableSources());
        const auto open = engines::openEmbedded("X", company.path());
        for (const char* suffix : {"", "-wal", "-lock"})
            EXPECT_EQ(rightsOf(company.filePath("YRITYS.ZDB") + suffix), rights) << suffix;
        engines::backupEmbedded(company.path(), company.filePath("kopio"), {});
        EXPECT_EQ(rightsOf(company.filePath("kopio")), rights);
    }
    ::umask(before);
}
#endif
