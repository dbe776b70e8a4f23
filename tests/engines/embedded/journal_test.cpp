#include "data/engine/run_journal.h"
#include "data/journal/entry_codec.h"
#include "data/journal/entry_fields.h"
#include "engines/sqlite/sqlite_handle.h"
#include "tests/engines/embedded/fixture.h"

using namespace data;
using test::thrownBy;

namespace {

class Journal : public test::EmbeddedCompany {
  protected:
    RunJournal& journal() { return *db->journal(); }

    void open() { db = engines::openEmbedded("KOE", folder()); }

    qint64 begin() {
        JournalRun head;
        head.definition = "koe";
        head.user = "tuija";
        head.started = QDateTime(QDate(2024, 9, 1), QTime(0, 30));
        return journal().begin(head, {{"rates", "24"}});
    }

    // "u TRYHMA 7: NIMI Maalit>Lakat": operation, table, key and changed fields of each change.
    QStringList changes(qint64 run) {
        QStringList lines;
        const std::vector<JournalTable> tables = journal().tables(run);
        journal().visit(run, Direction::Forward, [&](const JournalEntry& entry) {
            if (entry.isMark) {
                lines += "m " + entry.mark;
                return true;
            }
            const JournalTable& table = tables.at(static_cast<size_t>(entry.table));
            const auto file = db->openTable(table.name);
            EXPECT_TRUE(describes(table, file->layout(), file->keys()));
            QString line = QString("uid"[static_cast<int>(entry.operation)]) + ' ' + table.name +
                           ' ' + keyText(file->layout(), file->keys(), entry) + ':';
            for (const FieldChange& change : changedFields(file->layout(), entry))
                line += ' ' + file->layout().field(change.field).name.toUpper() + ' ' +
                        change.before + '>' + change.after;
            lines += line;
            return true;
        });
        return lines;
    }
};

}  // namespace

TEST_F(Journal, HoldsWhatWasStoredInItsOrderAndNothingElse) {
    run("insert into TRYHMA (Nro, NIMI, VERO) values (7, 'Maalit', 2)");
    EXPECT_TRUE(journal().runs().empty());
    const qint64 number = begin();
    run("update TRYHMA set VERO = 3, NIMI = 'Lakat' where Nro = 7");
    run("update TRYHMA set VERO = 3 where Nro = 7");  // changes nothing
    journal().setOrigin(5);
    run("insert into TRYHMA (Nro, NIMI) values (8, 'Liimat')");
    journal().mark("raja");
    // neither a failed statement nor a table first used by it leaves a trace
    EXPECT_EQ(thrownBy([&] { run("insert into TRYHMA (Nro) values (8)"); }).kind(),
              ErrorKind::DuplicateKey);
    run("delete from TRYHMA where Nro = 8");
    db.reset();  // the process dies
    open();
    ASSERT_EQ(journal().runs().size(), 1U);
    EXPECT_TRUE(db->beginRun());  // before it resumes anything
    EXPECT_EQ(journal().runs().front().state, RunState::Interrupted);
    EXPECT_EQ(journal().runs().front().rows, 2);

    journal().resume(number);
    run("update ALVKANTA set Prosentti = 1");  // no rows
    run("insert into ALVKANTA (luokka, Prosentti) values (4, 14)");
    journal().end(RunState::Done);
    run("update TRYHMA set NIMI = 'Muut'");  // after the run
    EXPECT_EQ(changes(number), (QStringList{"u TRYHMA 7: NIMI Maalit>Lakat VERO 2>3",
                                            "i TRYHMA 8: NRO >8 NIMI >Liimat", "m raja",
                                            "d TRYHMA 8: NRO 8> NIMI Liimat>",
                                            "i ALVKANTA 4: LUOKKA >4 PROSENTTI >14"}));
    const JournalRun head = journal().runs().front();
    EXPECT_EQ(head.rows, 3);
    EXPECT_EQ(head.state, RunState::Done);
    EXPECT_EQ(head.user, "tuija");
    EXPECT_EQ(journal().note(number, "rates"), QByteArray("24"));
    EXPECT_EQ(journal().check(), QStringList());
    const auto backward = journal().entries(number, 4, Direction::Backward, 2);
    ASSERT_EQ(backward.size(), 2U);
    EXPECT_EQ(backward.front().seq, 3);
    EXPECT_EQ(backward.back().origin, 5);

    journal().forget(number);
    EXPECT_TRUE(changes(number).isEmpty());
    EXPECT_EQ(begin(), number + 1);
}

// The first run of a company makes the journal's tables while other programs have it open.
TEST_F(Journal, ItsCreationDisturbsNoOtherProgram) {
    const QString known = "select NIMI from TRYHMA where Nro = 7";
    const QString rename = "update TRYHMA set NIMI = 'Lakat' where Nro = 7";
    for (const char* first : {"known", "new", "update", "record"}) {
        SCOPED_TRACE(first);
        engines::createEmbedded(folder() + '/' + first, data::allTableSources());
        db = engines::openEmbedded("KOE", folder() + '/' + first);
        run("insert into TRYHMA (Nro, NIMI) values (7, 'Maalit')");
        const auto other = engines::openEmbedded("KOE", folder() + '/' + first);
        const auto file = other->openTable("TRYHMA");
        EXPECT_EQ(test::rows(*other, known), QStringList("Maalit"));
        test::exec(*other, rename);
        begin();
        switch (*first) {
            case 'k':
                EXPECT_EQ(test::rows(*other, known), QStringList("Lakat"));
                break;
            case 'n':
                EXPECT_EQ(test::rows(*other, "select count(*) from TRYHMA"), QStringList("1"));
                break;
            case 'u':
                EXPECT_EQ(test::exec(*other, rename), 1);
                break;
            default:
                EXPECT_EQ(file->fromEnd(0, Direction::Forward, 9).size(), 1U);
        }
    }
}

TEST_F(Journal, EveryFlippedByteIsTold) {
    run("insert into TRYHMA (Nro, NIMI) values (7, 'Maalit')");
    const qint64 number = begin();
    run("update TRYHMA set NIMI = 'Lakat' where Nro = 7");
    journal().mark("raja");
    journal().end(RunState::Done);
    const QStringList whole = changes(number);
    db.reset();
    const QPair<QByteArray, QByteArray> columns[] = {{"zdb_run", "head"},
                                                     {"zdb_table", "entry"},
                                                     {"zdb_change", "entry"},
                                                     {"zdb_note", "value"}};
    for (const auto& names : columns) {
        const QByteArray& table = names.first;
        const QByteArray& column = names.second;
        const engines::sqlite::SqliteHandle handle(file(),
                                                   engines::sqlite::SqliteHandle::Mode::ReadWrite);
        const QByteArray where = table == "zdb_note" ? " WHERE run > 0" : " LIMIT 1";
        engines::sqlite::Statement read(handle.get(),
                                        "SELECT " + column + " FROM " + table + where);
        ASSERT_TRUE(read.step()) << table.constData();
        const QByteArray stored = read.bytes(0);
        read.reset();
        const auto write = [&](const QByteArray& bytes) {
            engines::sqlite::Statement update(handle.get(), "UPDATE " + table + " SET " + column +
                                                                " = ?1 WHERE " + column + " = ?2");
            engines::sqlite::Statement all(handle.get(),
                                           "SELECT " + column + " FROM " + table + where);
            all.step();
            const QByteArray present = all.bytes(0);
            all.reset();
            update.bind(1, bytes);
            update.bind(2, present);
            update.run();
        };
        for (qsizetype i = 0; i <= stored.size(); ++i) {
            QByteArray bytes = stored.left(i);  // cut, or with its last byte flipped
            if (i > 0)
                bytes[i - 1] = static_cast<char>(bytes[i - 1] ^ 1);
            write(i % 2 == 0 ? bytes : bytes + stored.mid(i));
            open();
            EXPECT_FALSE(journal().check().isEmpty()) << table.constData() << " byte " << i;
            db.reset();
        }
        write(stored);
    }
    open();
    EXPECT_EQ(journal().check(), QStringList());
    EXPECT_EQ(changes(number), whole);
}

// Such a page is valid for SQLite, and the end of an unfinished run leaves no gap in its numbers.
TEST_F(Journal, LostRowsAreToldBeforeARunIsResumed) {
    const qint64 number = begin();
    run("insert into TRYHMA (Nro, NIMI) values (7, 'Maalit')");
    run("insert into TRYHMA (Nro, NIMI) values (8, 'Lakat')");
    db.reset();
    for (const QByteArray table : {"zdb_change", "zdb_table", "zdb_note", "zdb_run"}) {
        SCOPED_TRACE(table.constData());
        qint64 page = 0;
        {
            const engines::sqlite::SqliteHandle handle(
                file(), engines::sqlite::SqliteHandle::Mode::ReadWrite);
            engines::sqlite::Statement root(
                handle.get(), "SELECT rootpage FROM sqlite_master WHERE name = '" + table + '\'');
            ASSERT_TRUE(root.step());
            page = root.integer(0);
        }
        QFile bytes(file());
        ASSERT_TRUE(bytes.open(QIODevice::ReadWrite));
        const QByteArray whole = bytes.readAll();
        const qint64 pageSize =
            (static_cast<uchar>(whole[16]) << 8) | static_cast<uchar>(whole[17]);
        const qint64 cells = (page - 1) * pageSize + 4;  // the low byte of the number of cells
        ASSERT_GT(whole[cells], 0);
        bytes.seek(cells);
        bytes.putChar(static_cast<char>(whole[cells] - 1));
        bytes.close();
        open();
        EXPECT_EQ(thrownBy([&] {
                      journal().runs();
                      journal().resume(number);
                  }).kind(),
                  ErrorKind::Damaged);
        db.reset();
        ASSERT_TRUE(bytes.open(QIODevice::ReadWrite));
        bytes.write(whole);
    }
    // the rows of another table in the place of the entries
    {
        const engines::sqlite::SqliteHandle handle(file(),
                                                   engines::sqlite::SqliteHandle::Mode::ReadWrite);
        engines::sqlite::execute(handle.get(), "UPDATE zdb_change SET place = place & 255");
    }
    open();
    EXPECT_EQ(thrownBy([&] { journal().resume(number); }).kind(), ErrorKind::Damaged);
}
