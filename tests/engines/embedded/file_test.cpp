#include <QDir>
#include <QFile>

#include "engines/embedded/connection.h"
#include "engines/sqlite/sqlite_handle.h"
#include "tests/engines/embedded/fixture.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

using namespace data;
using test::errorOf;

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
        return errorOf([&] { engines::openEmbedded("KOE", folder()); });
    }
};

void writeBytes(const QString& fileName, const QByteArray& bytes) {
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

}  // namespace

TEST_F(EmbeddedFile, CreationNeverReplacesAndLeavesNothingWhenItFails) {
    EXPECT_EQ(errorOf([&] { engines::createEmbedded(folder(), allTableSources()); }).kind(),
              ErrorKind::Engine);
    EXPECT_EQ(rows("select count(*) from hintataso"), QStringList{"9"});

    TableSource bad = allTableSources().front();
    bad.name = "TAULUNNIMIONAIVANLIIANPITKA";  // the catalogue holds 20 characters
    const QString elsewhere = folder() + "/uusi";
    EXPECT_EQ(errorOf([&] { engines::createEmbedded(elsewhere, {bad}); }).kind(),
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
    EXPECT_EQ(errorOf([&] { engines::openEmbedded("X", folder() + "/puuttuu"); }).kind(),
              ErrorKind::NoConnection);
    const QByteArray whole = [&] {
        QFile stored(file());
        return stored.open(QIODevice::ReadOnly) ? stored.readAll() : QByteArray();
    }();
    const struct {
        const char* what;
        QByteArray bytes;
    } files[] = {
        {"empty", {}},
        {"text", QByteArray("tämä on tekstiä\n").repeated(500)},
        {"beginning cut off", whole.mid(100)},
    };
    for (const auto& f : files) {
        writeBytes(file(), f.bytes);
        EXPECT_EQ(openingError().kind(), ErrorKind::Damaged) << f.what;
    }
    QFile::remove(file());
    {
        const engines::sqlite::SqliteHandle foreign(file(),
                                                    engines::sqlite::SqliteHandle::Mode::Create);
        engines::sqlite::execute(foreign.get(), "CREATE TABLE tuote (numero)");
    }
    EXPECT_EQ(openingError().kind(), ErrorKind::Damaged);
    QFile::remove(file());
    writeBytes(file(), whole);
    EXPECT_NO_THROW(engines::openEmbedded("KOE", folder()));
    tamper("PRAGMA user_version = 3");
    const DataError newer = openingError();
    EXPECT_EQ(newer.kind(), ErrorKind::Engine);
    EXPECT_TRUE(newer.detail().contains("newer")) << newer.english().toStdString();
}

TEST_F(EmbeddedFile, ACatalogueThatDisagreesNamesTheTable) {
    // A missing key column is found when the table is opened, a missing table immediately.
    tamper("ALTER TABLE rec_KAMPPANJA DROP COLUMN data; ALTER TABLE rec_KAMPPANJA ADD data");
    db = engines::openEmbedded("KOE", folder());
    EXPECT_NO_THROW(db->openTable("KAMPPANJA"));
    tamper("DROP INDEX rec_TRYHMA_k2; ALTER TABLE rec_TRYHMA DROP COLUMN k2");
    db = engines::openEmbedded("KOE", folder());
    DataError error = errorOf([&] { db->openTable("TRYHMA"); });
    EXPECT_EQ(error.kind(), ErrorKind::Damaged);
    EXPECT_EQ(error.table(), "TRYHMA");
    error = errorOf([&] { db->prepare("select nro from tryhma"); });
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
    const struct {
        QByteArray sql;
        QByteArray undo;
        const char* said;
    } cases[] = {
        {"UPDATE rec_TUOTE SET k5 = zeroblob(40) WHERE id = 2",
         "UPDATE rec_TUOTE SET k5 = (SELECT k5 FROM rec_TUOTE WHERE id = 1) WHERE id = 2", "key 5"},
        {"UPDATE rec_INI SET data = substr(data, 1, 1000)", "DELETE FROM rec_INI",
         "1000 bytes instead of 1187"},
        {"UPDATE rec_TUOTE SET data = cast(x'13' || substr(data, 2) AS BLOB) WHERE id = 1",
         "DELETE FROM rec_TUOTE WHERE id = 1", "text length"},
        {"CREATE TABLE rec_OMA(id INTEGER PRIMARY KEY, data BLOB)", "DROP TABLE rec_OMA",
         "not listed"},
    };
    for (const auto& c : cases) {
        tamper(c.sql);
        const QString said = engines::checkEmbedded(folder()).join('\n');
        EXPECT_TRUE(said.contains(c.said)) << c.sql.toStdString() << "\n" << said.toStdString();
        if (QByteArray(c.said).contains("1187")) {
            db = engines::openEmbedded("KOE", folder());
            EXPECT_EQ(errorOf([&] { rows("select * from ini"); }).kind(), ErrorKind::Damaged);
            EXPECT_EQ(
                errorOf([&] { db->openTable("INI")->fromEnd(0, Direction::Forward, 1); }).kind(),
                ErrorKind::Damaged);
        }
        tamper(c.undo);
    }
    tamper("DELETE FROM rec_TUOTE; DELETE FROM rec_INI");
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
}

TEST_F(EmbeddedFile, TransactionsAreAllOrNothing) {
    EXPECT_EQ(errorOf([&] {
                  db->inTransaction([&] {
                      run("insert into tryhma (nro) values (1)");
                      run("insert into tryhma (nro) values (1)");
                  });
              }).kind(),
              ErrorKind::DuplicateKey);
    EXPECT_EQ(rows("select count(*) from tryhma"), QStringList{"0"});
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
    engines::backupEmbedded(folder(), copy, [&](int done, int total) {
        EXPECT_LE(done, total);
        if (!wrote)
            run("update tryhma set nimi = 'aikana'");
        wrote = true;
        return true;
    });
    EXPECT_TRUE(wrote);
    const auto copied = engines::openEmbedded("KOPIO", folder() + "/kopio");
    EXPECT_EQ(rows("select nimi from tryhma", {}, copied.get()), QStringList{"ennen"});
    EXPECT_EQ(rows("select nimi from tryhma"), QStringList{"aikana"});
    EXPECT_EQ(engines::checkEmbedded(folder() + "/kopio"), QStringList());
    EXPECT_EQ(errorOf([&] { engines::backupEmbedded(folder(), copy, {}); }).kind(), ErrorKind::Io);
    // a longer name is another program's file
    writeBytes(folder() + "/toinen.zdb.part", "muun");
    engines::backupEmbedded(folder(), folder() + "/toinen.zdb", {});
    EXPECT_EQ(QDir(folder()).entryList({"toinen*"}, QDir::AllEntries | QDir::Hidden, QDir::Name),
              (QStringList{"toinen.zdb", "toinen.zdb.part"}));
    const QString stopped = folder() + "/kesken.zdb";
    engines::backupEmbedded(folder(), stopped, [](int, int) { return false; });
    EXPECT_EQ(QDir(folder()).entryList({"kesken*"}), QStringList());
}

#ifndef _WIN32
// Users of a group share a company if their umask allows; others never get write permission.
TEST_F(EmbeddedFile, RightsFollowTheUmask) {
    const struct {
        mode_t mask;
        mode_t rights;
    } cases[] = {{002, 0664}, {022, 0644}, {077, 0600}, {0, 0664}};
    const auto rightsOf = [](const QString& name) -> mode_t {
        struct stat status = {};
        EXPECT_EQ(::stat(QFile::encodeName(name).constData(), &status), 0) << name.toStdString();
        return status.st_mode & 07777;
    };
    const mode_t before = ::umask(0);
    for (const auto& c : cases) {
        const QTemporaryDir company;
        ::umask(c.mask);
        engines::createEmbedded(company.path(), allTableSources());
        const auto open = engines::openEmbedded("X", company.path());
        for (const char* suffix : {"", "-wal", "-lock"})
            EXPECT_EQ(rightsOf(company.filePath("YRITYS.ZDB") + suffix), c.rights) << suffix;
        engines::backupEmbedded(company.path(), company.filePath("kopio"), {});
        EXPECT_EQ(rightsOf(company.filePath("kopio")), c.rights);
    }
    ::umask(before);
}
#endif
