#include <QElapsedTimer>
#include <chrono>
#include <thread>

#include "tests/engines/embedded/fixture.h"

using namespace data;
using namespace std::chrono_literals;
using test::setField;
using test::thrownBy;

namespace {

// A second connection acts as another program: its locks and the first one's conflict.
class EmbeddedLocks : public test::EmbeddedCompany {
  protected:
    void SetUp() override {
        EmbeddedCompany::SetUp();
        other = engines::openEmbedded("KOE", folder());
        run("insert into tryhma (nro, nimi, vero) values (1,'A',0), (2,'B',0), (3,'C',0)");
        mine = db->openTable("TRYHMA");
        theirs = other->openTable("TRYHMA");
    }

    StoredRecord group(int number) { return mine->seek(0, SeekOp::Equal, {number}, 1).at(0); }

    std::unique_ptr<Database> other;
    std::unique_ptr<TableFile> mine;
    std::unique_ptr<TableFile> theirs;
};

}  // namespace

TEST_F(EmbeddedLocks, AWaitEndsAtUnlockOrTimeout) {
    const RecordId id = group(1).id;
    ASSERT_TRUE(theirs->lock(id, 0ms));
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(mine->lock(id, 150ms));
    EXPECT_GE(timer.elapsed(), 150);
    std::thread holder([&] {
        std::this_thread::sleep_for(100ms);
        theirs->unlock(id);
    });
    EXPECT_TRUE(mine->lock(id, 5000ms));
    holder.join();
}

TEST_F(EmbeddedLocks, AStatementStopsAtAHeldRecordAndChangesNothing) {
    db->setLockWait(50ms);
    const StoredRecord held = group(2);
    ASSERT_TRUE(theirs->lock(held.id, 0ms));
    for (const char* sql : {"update tryhma set vero = vero + 1", "delete from tryhma",
                            "update tryhma set nimi = 'x' where nro = 2"}) {
        const DataError error = thrownBy([&] { run(sql); });
        EXPECT_EQ(error.kind(), ErrorKind::Locked) << sql;
        EXPECT_EQ(error.table(), "TRYHMA");
        EXPECT_TRUE(error.detail().contains("Nro \"2\"")) << error.english().toStdString();
        EXPECT_TRUE(error.finnish().contains("TRYHMA: tietue Nro \"2\". "));
    }
    EXPECT_EQ(thrownBy([&] { mine->update(held.id, held.bytes); }).kind(), ErrorKind::Locked);
    EXPECT_EQ(thrownBy([&] { mine->remove(held.id); }).kind(), ErrorKind::Locked);
    EXPECT_EQ(
        thrownBy([&] { db->inTransaction([&] { run("update tryhma set vero = 9"); }); }).kind(),
        ErrorKind::Locked);
    EXPECT_EQ(rows("select nro, nimi, vero from tryhma order by nro"),
              (QStringList{"1|A|0", "2|B|0", "3|C|0"}));
    // The failed statements left no lock; the holder's own statements succeed and keep its lock.
    EXPECT_TRUE(theirs->lock(group(1).id, 0ms));
    EXPECT_EQ(test::exec(*other, "update tryhma set vero = vero + 1"), 3);
    EXPECT_FALSE(mine->lock(held.id, 0ms));
    EXPECT_TRUE(mine->lock(group(3).id, 0ms));
    EXPECT_EQ(run("update tryhma set vero = 7 where nro = 3"), 1);
}

TEST_F(EmbeddedLocks, AStatementWaitsOutsideTheWriteLock) {
    const StoredRecord held = group(2);
    ASSERT_TRUE(theirs->lock(held.id, 0ms));
    std::thread holder([&] {
        std::this_thread::sleep_for(100ms);
        // The holder writes while the other statement waits, then unlocks.
        QByteArray bytes = theirs->get(held.id)->bytes;
        setField(theirs->layout(), bytes, "Vero", 40);
        theirs->update(held.id, bytes);
        theirs->unlock(held.id);
    });
    EXPECT_EQ(run("update tryhma set vero = vero + 1"), 3);
    holder.join();
    EXPECT_EQ(rows("select vero from tryhma order by nro"), (QStringList{"1", "41", "1"}));
}

// Very many separate records become a lock on the table's whole range, tried like a record's.
TEST_F(EmbeddedLocks, ManyRecordsOfOneStatement) {
    db->setLockWait(50ms);
    db->inTransaction([&] {
        for (int i = 10; i < 5000; ++i)
            run("insert into tryhma (nro) values (:n)", {{"n", i}});
    });
    const QString odd = "update tryhma set vero = 5 where nro >= 10 and nro % 2 = 1";
    const RecordId even = group(4000).id;  // not written by the statement, but in its table
    const RecordId own = group(4001).id;
    ASSERT_TRUE(theirs->lock(even, 0ms));
    EXPECT_EQ(thrownBy([&] { run(odd); }).kind(), ErrorKind::Locked);
    EXPECT_EQ(rows("select count(*) from tryhma where vero = 5"), QStringList{"0"});
    theirs->unlock(even);
    ASSERT_TRUE(mine->lock(own, 0ms));
    EXPECT_EQ(run(odd), 2495);
    EXPECT_FALSE(theirs->lock(own, 0ms));
    EXPECT_TRUE(theirs->lock(even, 0ms));
    EXPECT_TRUE(theirs->lock(group(4003).id, 0ms));
}
