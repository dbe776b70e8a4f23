// Undo of whole runs: a company with data for every step of a run.
#include <QDir>
#include <algorithm>

#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"
#include "engines/sqlite/sqlite_handle.h"
#include "tests/journal/undo_company.h"
#include "vatchange/journal/ignored_changes.h"

using namespace vatchange;
using data::RunState;
using test::RecordingUndo;
using test::refusalOf;
using test::stateOf;

namespace {

using Contents = std::map<QString, std::multiset<QByteArray>>;

class Undo : public testing::Test {
  protected:
    void SetUp() override {
        test::makeFullCompany(path("alku"), {5, 1});
        fresh();
        test::useCompany(path("yritys"));
        open();
        before = contents();
        run = makeRun(test::fullDefinition());
        after = contents();
        ASSERT_NE(before, after);
    }

    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    void fresh() {
        db.reset();
        QDir(path("yritys")).removeRecursively();
        test::copyCompany(path("alku"), path("yritys"));
    }
    void open(const char* folder = "yritys") {
        db.reset();
        db = test::openCompany(path(folder));
    }
    void exec(const char* sql) { test::exec(*db, QString::fromUtf8(sql)); }

    qint64 makeRun(const ChangeDefinition& definition) {
        test::LoggingPorts ports;
        const RunResult result = runChange(*db, definition, ports);
        EXPECT_TRUE(result.clean());
        return result.run;
    }
    UndoResult undo(qint64 number, const UndoOptions& options, RecordingUndo* ports = nullptr) {
        RecordingUndo own;
        return undoRun(*db, number, options, ports != nullptr ? *ports : own);
    }

    /// Records as an export has them: by their bytes, not by their addresses.
    Contents contents() {
        Contents all;
        for (const QString& name : db->tableNames()) {
            std::multiset<QByteArray>& records = all[name];
            db->openTable(name)->visitStored(std::nullopt, std::numeric_limits<int>::max(),
                                             [&records](data::RecordId, const QByteArray& bytes) {
                                                 records.emplace(bytes.constData(), bytes.size());
                                                 return true;
                                             });
        }
        return all;
    }

    /// The same without labels, web shop marks and dates of change.
    Contents withoutTraces(Contents all) {
        for (auto& [name, records] : all) {
            const auto file = db->openTable(name);
            std::multiset<QByteArray> plain;
            for (QByteArray record : records) {
                for (const data::TFieldCacheItem& field : file->layout().fields()) {
                    if (isChangeDate(name, field.name))
                        data::clearField(field, reinterpret_cast<uchar*>(record.data()));
                }
                plain.insert(record);
            }
            records = isConsumedTable(name) ? std::multiset<QByteArray>() : plain;
        }
        return all;
    }

    QString cell(const QString& sql) {
        data::TUniQuery query(db.get());
        query.sql().setText(sql);
        query.open();
        return query.eof() ? QStringLiteral("none")
                           : query.fieldByName(query.fieldNames().first()).asString();
    }

    std::unique_ptr<data::Database> db;
    Contents before;
    Contents after;
    qint64 run = 0;

  private:
    QTemporaryDir m_folder;
    const data::Clock::Override m_morning{test::changeMorning};
};

TEST_F(Undo, ExactLeavesEveryTableAsBeforeTheRun) {
    RecordingUndo ports;
    UndoOptions options = test::exactly();
    options.dryRun = true;
    EXPECT_TRUE(undo(run, options, &ports).clean());
    EXPECT_EQ(contents(), after);
    EXPECT_EQ(db->journal()->runs().size(), 1U);

    const UndoResult result = undo(run, test::exactly(), &ports);
    EXPECT_TRUE(result.clean());
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(ports.conflicts, QStringList());
    EXPECT_TRUE(ports.lines.first().startsWith(QStringLiteral("Perutaan ajo 1")));
    EXPECT_EQ(stateOf(*db, run), RunState::Undone);
    EXPECT_EQ(stateOf(*db, result.run), RunState::Done);
    EXPECT_EQ(db->journal()->check(), QStringList());
    EXPECT_TRUE(refusalOf([&] { undo(run, test::exactly()); }).contains("undone already"));
}

TEST_F(Undo, OrdinaryTellsTillsLabelsAndWebShopOfTheOldPrices) {
    // T00001 has labels, T00003 is in the web shop, A/1 was taken off it
    exec("update HR set TulPvm = '2024-09-01', TulAika = 7 where Tuote = 'T00001'");  // printed
    exec("delete from WEBKLIITOS");                                                   // read
    const QDateTime later(QDate(2024, 9, 2), QTime(8, 15));
    const data::Clock::Override clock([later] { return later; });
    EXPECT_TRUE(undo(run, UndoOptions()).clean());
    EXPECT_EQ(withoutTraces(contents()), withoutTraces(before));
    EXPECT_EQ(cell("select MUUTETTUPVM from TUOTE where NUMERO = 'T00002'"), "2024-09-02");
    EXPECT_EQ(cell("select MUUTETTUTIME from TUOTE where NUMERO = 'T00002'"), "08:15:00");
    EXPECT_EQ(cell("select MUUTOSPVM from TRYHMA where Nro = 1"), "2024-09-02");
    EXPECT_EQ(cell("select count(*) from HR where Tuote = 'T00001' and Tyyppi = 1 and Maara = 1 "
                   "and TulPvm = '' and TulAika = 0"),
              "1");
    EXPECT_EQ(cell("select count(*) from HR where Tuote = 'T00003'"), "0");  // was not printed
    EXPECT_EQ(cell("select Tyyppi from WEBKLIITOS where Tunniste = 'T00003'"), "M");
    EXPECT_EQ(cell("select Tyyppi from WEBKLIITOS where Tunniste = 'A/1'"), "L");
    EXPECT_EQ(cell("select count(*) from WEBKLIITOS"), "2");
}

TEST_F(Undo, InterruptedAnywhereAndRepeatedIsTheSame) {
    const qint64 last = db->journal()->lastEntry(run);
    ASSERT_GT(last, 30);
    for (qint64 stop = 0; stop < last; stop += 4) {
        const bool killed = stop % 8 == 0;
        SCOPED_TRACE(QStringLiteral("entry %1, killed %2").arg(stop).arg(killed).toStdString());
        fresh();
        open();
        const qint64 number = makeRun(test::fullDefinition());
        RecordingUndo ports;
        ports.stopAt = static_cast<int>(stop);
        qint64 seen = 0;
        if (killed) {  // what a dead process leaves: the files as they are at that moment
            ports.eachEntry = [&] {
                if (seen++ == stop) {
                    QDir().mkpath(path("kuollut"));
                    engines::backupEmbedded(path("yritys"), path("kuollut/YRITYS.ZDB"), nullptr);
                }
            };
        }
        EXPECT_THROW(undo(number, test::exactly(), &ports), std::runtime_error);
        open(killed ? "kuollut" : "yritys");
        EXPECT_EQ(stateOf(*db, number), RunState::PartlyUndone);
        EXPECT_TRUE(data::isUnfinished(stateOf(*db, number + 1)));
        EXPECT_TRUE(refusalOf([&] { undo(number, UndoOptions()); }).contains("unfinished"));
        const UndoResult result = undo(number, test::exactly());
        EXPECT_TRUE(result.clean() && result.resumed);
        EXPECT_EQ(result.run, number + 1);
        EXPECT_EQ(contents(), before);
        EXPECT_EQ(stateOf(*db, number), RunState::Undone);
        db.reset();
        QDir(path("kuollut")).removeRecursively();
    }
}

TEST_F(Undo, IsItselfUndoneAndAgain) {
    const qint64 first = undo(run, test::exactly()).run;
    const qint64 second = undo(first, test::exactly()).run;
    EXPECT_EQ(contents(), after);
    EXPECT_EQ(stateOf(*db, run), RunState::Done);
    EXPECT_EQ(stateOf(*db, first), RunState::Undone);
    EXPECT_TRUE(undo(run, test::exactly()).clean());
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(stateOf(*db, run), RunState::Undone);
    EXPECT_EQ(stateOf(*db, second), RunState::Done);
}

TEST_F(Undo, APartLeavesTheRestUndoable) {
    EXPECT_TRUE(undo(run, test::part("tuote", "T00002", true)).clean());
    EXPECT_EQ(cell("select LVV from TUOTE where NUMERO = 'T00002'"), "3");
    EXPECT_EQ(cell("select LVV from TUOTE where NUMERO = 'T00001'"), "6");
    EXPECT_EQ(stateOf(*db, run), RunState::PartlyUndone);
    EXPECT_TRUE(undo(run, test::part("MTRIVI", "1 2", true)).clean());
    EXPECT_EQ(contents()["MT"], after["MT"]);
    EXPECT_TRUE(refusalOf([&] { undo(run, test::part("TUOTE", "EI")); }).contains("no record"));
    const UndoResult rest = undo(run, test::exactly());
    EXPECT_TRUE(rest.clean());
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(stateOf(*db, run), RunState::Undone);
}

TEST_F(Undo, NewestFirst) {
    ChangeDefinition next;  // 6 to 3 again: the same products
    next.sourceClass = 6;
    next.targetClass = 3;
    next.levels[0] = {0.5, QStringLiteral("hinta"), false};
    const qint64 later = makeRun(next);
    ASSERT_EQ(later, run + 1);
    EXPECT_TRUE(refusalOf([&] { undo(run, UndoOptions()); }).contains("undo run 2 first"));
    EXPECT_TRUE(undo(run, test::part("KAMPPANJA", "", true)).clean());  // run 2 has none of these
    EXPECT_TRUE(undo(later, test::exactly()).clean());
    EXPECT_TRUE(undo(run, test::exactly()).clean());
    EXPECT_EQ(contents(), before);
}

TEST_F(Undo, HeldRecordsAreTakenUpByTheSameCommand) {
    const auto other = test::openCompany(path("yritys"));
    const auto products = other->openTable("TUOTE");
    const data::RecordId held =
        products->seek(0, data::SeekOp::Equal, {QStringLiteral("T00004")}, 1).front().id;
    ASSERT_TRUE(products->lock(held, std::chrono::milliseconds(0)));
    EXPECT_TRUE(other->beginRun());
    EXPECT_TRUE(refusalOf([&] { undo(run, test::exactly()); }).contains("going on"));
    other->endRun();
    RecordingUndo ports;
    const UndoResult result = undo(run, test::exactly(), &ports);
    EXPECT_EQ(ports.conflicts, QStringList{"TUOTE T00004 held"});
    EXPECT_EQ(stateOf(*db, result.run), RunState::Incomplete);
    products->unlock(held);
    EXPECT_EQ(undo(run, test::exactly()).run, result.run);
    EXPECT_EQ(contents(), before);
}

TEST_F(Undo, ADamagedJournalNeverGivesWrongValues) {
    const qint64 last = db->journal()->lastEntry(run);
    for (qint64 seq = 1; seq <= last; seq += 4) {
        SCOPED_TRACE(seq);
        fresh();
        open();
        makeRun(test::fullDefinition());
        db.reset();
        {
            const engines::sqlite::SqliteHandle handle(
                path("yritys/YRITYS.ZDB"), engines::sqlite::SqliteHandle::Mode::ReadWrite);
            const QByteArray where = " WHERE place = (1 << 32) + " + QByteArray::number(seq);
            engines::sqlite::Statement read(handle.get(), "SELECT entry FROM zdb_change" + where);
            ASSERT_TRUE(read.step());
            QByteArray bytes = read.bytes(0);
            read.reset();
            const auto at = static_cast<qsizetype>(seq * 7) % bytes.size();
            bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
            engines::sqlite::Statement update(handle.get(),
                                              "UPDATE zdb_change SET entry = ?1" + where);
            update.bind(1, bytes);
            update.run();
        }
        open();
        try {
            undo(run, test::exactly());
            ADD_FAILURE() << "not told";
        } catch (const data::DataError& error) {
            EXPECT_EQ(error.kind(), data::ErrorKind::Damaged);
        }
        EXPECT_EQ(contents(), after);  // it is read through before the first change
    }
}

TEST_F(Undo, AChangedCatalogueOrAnUnknownRunIsRefused) {
    EXPECT_TRUE(refusalOf([&] { undo(7, UndoOptions()); }).contains("no run 7"));
    exec("update X$Field set Xe$Name = 'HINTAX' where Xe$Name = 'Hinta3'");
    open();
    EXPECT_TRUE(refusalOf([&] { undo(run, UndoOptions()); }).contains("described otherwise"));
    EXPECT_TRUE(undo(run, test::part("TRYHMA", "", true)).clean());
}

}  // namespace
