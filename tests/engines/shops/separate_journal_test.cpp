#include "engines/shops/separate_journal.h"

#include <thread>

#include "tests/engines/embedded/fixture.h"
#include "tests/support/taken_back.h"

// The journal of an engine whose transactions it cannot join, over an embedded company whose own
// journal is off.

using namespace data;
using engines::shops::SeparateJournal;
using engines::shops::WriteTarget;

namespace {

class SeparateJournalTest : public test::EmbeddedCompany {
  protected:
    void SetUp() override {
        test::EmbeddedCompany::SetUp();
        run("insert into TRYHMA (Nro, NIMI, VERO) values (7, 'Maalit', 2)");
        run("insert into TRYHMA (Nro, NIMI, VERO) values (8, 'Liimat', 3)");
        run("insert into HR (tyyppi, tuote, maara) values (2, 'A1', 4)");
        m_before = everything();
        reopen();
        JournalRun head;
        head.started = QDateTime(QDate(2024, 9, 1), QTime(0, 30));
        m_run = m_journal->begin(head, {});
    }

    void reopen() {
        m_journal.reset();
        m_journal = std::make_unique<SeparateJournal>(
            folder(), [this](const QString& table) { return db->openTable(table); },
            [] { return false; }, m_watch);
    }

    // Runs a statement as an engine with the journal would; `dies`: after it the process is gone.
    void journaled(const QString& sql, const std::map<QString, Value>& with = {}, bool sent = true,
                   bool dies = false) {
        struct Death {};
        try {
            m_journal->write(*engines::shops::writeTargetOf(sql), with, *db, [&] {
                const auto statement = db->prepare(sql);
                for (const auto& [name, value] : with)
                    statement->bind(name, value);
                if (sent)
                    statement->execute();
                if (dies)
                    throw Death();
            });
        } catch (const Death&) {
            reopen();
        }
    }

    using Records = std::map<RecordId, QByteArray>;
    std::map<QString, Records> everything() {
        std::map<QString, Records> tables;
        for (const char* name : {"TRYHMA", "HR", "INI"})
            db->openTable(name)->visitStored(
                std::nullopt, 1000, [&](RecordId id, const auto& bytes) {
                    tables[name][id] = QByteArray(bytes.constData(), bytes.size());
                    return true;
                });
        return tables;
    }

    std::unique_ptr<SeparateJournal> m_journal;
    std::map<QString, Records> m_before;
    qint64 m_run = 0;
    std::chrono::milliseconds m_watch{0};
};

}  // namespace

TEST_F(SeparateJournalTest, KnowsEveryChangeWhereverTheProcessDies) {
    struct Write {
        const char* sql;
        std::map<QString, Value> with;
    };
    const Write writes[] = {
        {"update TRYHMA set VERO = :uusi where VERO = :vanha and Nro < 100",
         {{"uusi", 6}, {"vanha", 2}}},
        {"update hr set maara = :maara where tuote = :tuote and tyyppi=1",
         {{"maara", 3}, {"tuote", "A1"}}},
        {"insert into hr (tyyppi,tuote,maara) values (1,:tuote,:maara)",
         {{"maara", 3}, {"tuote", "A1"}}},
        {"insert into ini values ( 'ZAV.INI', 'TAKSAVAIHE', '20240901','2024' )", {}},
        {"update ini set data = '2025' where ininimi='ZAV.INI' AND sektio='TAKSAVAIHE'", {}},
        {"update TRYHMA set NIMI = 'x''y' where Nro in (7, 8);", {}},
        {"delete from ini where ininimi='ZAV.INI'", {}},
    };
    qint64 origin = 0;
    for (const Write& write : writes) {
        for (const auto& [sent, dies] : {std::pair(false, true), std::pair(true, false)}) {
            journaled(write.sql, write.with, sent, dies);
            EXPECT_TRUE(test::takenBack(*m_journal, m_run, everything()) == m_before)
                << write.sql << " sent " << sent;
            if (dies)
                m_journal->resume(m_run);
        }
        // once more, stored by the engine and not yet known to the journal
        m_journal->setOrigin(++origin);
        const qint64 last = m_journal->lastEntry(m_run);
        journaled(write.sql, write.with, true, true);
        EXPECT_TRUE(test::takenBack(*m_journal, m_run, everything()) == m_before) << write.sql;
        EXPECT_EQ(m_journal->run(m_run)->state, RunState::Interrupted);
        for (const JournalEntry& entry : m_journal->entries(m_run, last, Direction::Forward, 9))
            EXPECT_EQ(entry.origin, origin) << write.sql;
        m_journal->resume(m_run);
    }
    EXPECT_EQ(everything()["HR"].size(), 3U);
    EXPECT_GE(m_journal->lastEntry(m_run), 7);
    m_journal->end(RunState::Done);
    reopen();
    EXPECT_EQ(m_journal->run(m_run)->state, RunState::Done);
    EXPECT_EQ(m_journal->check(), QStringList());
}

// A server goes on with the statement that it was sent, whatever becomes of the sender.
TEST_F(SeparateJournalTest, KnowsAStatementThatEndsAfterItsProcessOrConnection) {
    m_watch = std::chrono::minutes(1);
    const auto later = [this](const char* sql) {
        return std::thread([this, sql] {
            const auto server = engines::openEmbedded(QStringLiteral("KOE"), folder());
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            test::exec(*server, QLatin1String(sql));
        });
    };
    for (const char* sql : {"update TRYHMA set VERO = 6 where Nro in (7, 8)",
                            "insert into hr (tyyppi,tuote,maara) values (1,'A1',3)"}) {
        journaled(sql, {}, false, true);
        std::thread server = later(sql);
        m_journal->resume(m_run);
        server.join();
        EXPECT_TRUE(test::takenBack(*m_journal, m_run, everything()) == m_before) << sql;
    }
    const char* const sql = "delete from hr";
    std::thread server;
    const auto lose = [&] {
        server = later(sql);
        throw DataError(ErrorKind::NoConnection, "hr", "lost");
    };
    EXPECT_THROW(m_journal->write(*engines::shops::writeTargetOf(sql), {}, *db, lose), DataError);
    server.join();
    EXPECT_TRUE(test::takenBack(*m_journal, m_run, everything()) == m_before);
    EXPECT_EQ(m_journal->lastEntry(m_run), 5);
}
