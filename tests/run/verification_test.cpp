#include "vatchange/journal/verification.h"

#include <gtest/gtest.h>

#include <random>

#include "data/engine/run_journal.h"
#include "data/record/record_codec.h"
#include "engines/sqlite/sqlite_handle.h"
#include "tests/run/run_company.h"
#include "vatchange/journal/earlier_runs.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/journal/run_outcome.h"
#include "vatchange/journal/undo.h"
#include "vatchange/journal/verification_text.h"
#include "vatchange/rules/selection.h"

using namespace vatchange;

namespace {

class VerificationTest : public ::testing::Test {
  protected:
    data::RunJournal& journal() { return *company.database().journal(); }

    // Runs a definition. @return the run's number.
    qint64 run(const ChangeDefinition& definition) {
        last = company.run(definition);
        return last.run;
    }

    Verification verify(qint64 number) { return verifyRun(company.database(), number); }

    // Findings of all kinds but the prices that stayed, in English.
    QStringList findings(const Verification& verification) {
        QStringList texts;
        for (const Finding& finding : verification.findings) {
            if (finding.kind != FindingKind::PriceUnchanged)
                texts += findingEnglish(finding);
        }
        return texts;
    }

    // "TUOTE 2 restriction", for each table and reason.
    static QStringList remaining(const Verification& verification) {
        static const char* const kReasons[] = {
            "restriction",  "table not chosen", "rule",          "passed over", "over the limit",
            "not finished", "step failed",      "changed since", "undone",      "unknown"};
        QStringList texts;
        for (const Remainder& r : verification.remaining)
            texts += QStringLiteral("%1 %2 %3")
                         .arg(r.table)
                         .arg(r.records)
                         .arg(QLatin1String(kReasons[static_cast<int>(r.reason)]));
        return texts;
    }

    test::RunCompany company;
    RunResult last;
};

ChangeDefinition withOrders() {
    ChangeDefinition definition = test::plainDefinition();
    definition.salesOrders = definition.purchaseOrders = true;
    return definition;
}

}  // namespace

TEST_F(VerificationTest, SumsAndWhatSomebodyChangedSince) {
    company.execAll(
        {"insert into TUOTE (NUMERO, LVV, HINTA, KAKSOISHINTA) values "
         "('a', 3, 10, 4), ('b', 3, 20, 0), ('c', 3, 0, 0), ('d', 2, 5, 0)",
         "insert into TRYHMA (Nro, VERO) values (1, 3)"});
    ChangeDefinition definition = test::plainDefinition();
    definition.levels[1] = {1.5, QStringLiteral("hinta"), false};
    const qint64 number = run(definition);

    // 10 -> 10.12, 20 -> 20.24; level 2 from level 1: 4 -> 15, 0 -> 30
    Verification verification = verify(number);
    EXPECT_TRUE(verification.holds());
    EXPECT_FALSE(verification.unexplained());
    EXPECT_EQ(remaining(verification), QStringList());
    ASSERT_EQ(verification.sums.size(), 2U);
    const PriceSums& one = verification.sums.at(0);
    EXPECT_EQ(one.field.toUpper(), "HINTA");
    EXPECT_EQ(one.count, 2);
    EXPECT_DOUBLE_EQ(one.before, 30.0);
    EXPECT_NEAR(one.after, 30.36, 1e-9);
    EXPECT_NEAR(one.meanPercent, 1.2, 1e-9);
    const PriceSums& two = verification.sums.at(1);
    EXPECT_EQ(two.count, 2);
    EXPECT_EQ(two.compared, 1);
    EXPECT_NEAR(two.before, 4.0, 1e-9);
    EXPECT_NEAR(two.after, 45.0, 1e-9);
    EXPECT_NEAR(two.meanPercent, 275.0, 1e-9);

    // another field, a date of change and the same value again are no changes
    company.execAll(
        {"update TUOTE set NIMI = 'Eri', MUUTETTUPVM = '2024-10-01', HINTA = 10.12 "
         "where NUMERO = 'a'",
         "update TUOTE set HINTA = 21 where NUMERO = 'b'",
         "update TUOTE set LVV = 3 where NUMERO = 'c'", "delete from TRYHMA"});
    verification = verify(number);
    EXPECT_FALSE(verification.holds());
    EXPECT_EQ(findings(verification),
              (QStringList{"TUOTE c LVV: the run left 6, now 3",
                           "TUOTE b HINTA: the run left 20.24, now 21", "TRYHMA 1: is gone"}));
    EXPECT_EQ(remaining(verification), QStringList{"TUOTE 1 changed since"});
    EXPECT_FALSE(verification.unexplained());
}

TEST_F(VerificationTest, ALaterRunIsNamed) {
    company.execAll({"insert into TUOTE (NUMERO, LVV, HINTA) values ('a', 3, 10), ('b', 3, 20)"});
    const qint64 first = run(test::plainDefinition());
    ChangeDefinition back = test::plainDefinition();
    std::swap(back.sourceClass, back.targetClass);
    back.levels[0].coefficient = 2.0;
    company.exec("update TUOTE set LVV = 2 where NUMERO = 'b'");
    const qint64 second = run(back);
    EXPECT_EQ(
        findings(verify(first)),
        (QStringList{
            "TUOTE b LVV: the run left 6, now 2",
            QStringLiteral("TUOTE a HINTA: the run left 10.12, now 20.24 (run %1)").arg(second),
            QStringLiteral("TUOTE a LVV: the run left 6, now 3 (run %1)").arg(second)}));
}

TEST_F(VerificationTest, WhatAnUndoTakesBackIsNoLaterChange) {
    struct Ports : UndoPorts {
        void log(const QString&) override {}
        void conflict(const UndoConflict& conflict) override {
            ADD_FAILURE() << conflict.key.toStdString();
        }
    } ports;
    company.execAll({"insert into TUOTE (NUMERO, LVV, HINTA) values ('a', 3, 10), ('b', 3, 20)"});
    const qint64 first = run(test::plainDefinition());
    UndoOptions options;
    options.scope.table = "TUOTE";
    options.scope.key = "a";
    const qint64 undo = undoRun(company.database(), first, options, ports).run;
    Verification verification = verify(first);
    EXPECT_EQ(verification.changes, 2);
    EXPECT_EQ(verification.undone, 1);
    EXPECT_EQ(remaining(verification), QStringList{"TUOTE 1 undone"});
    EXPECT_TRUE(verification.holds());
    EXPECT_TRUE(verify(undo).holds());
    undoRun(company.database(), undo, {}, ports);
    verification = verify(first);
    EXPECT_EQ(verification.undone, 0);
    EXPECT_EQ(remaining(verification), QStringList());
    EXPECT_TRUE(verification.holds());
}

TEST_F(VerificationTest, AFieldThatTheRunChangedTwiceCountsOnce) {
    company.exec("insert into TUOTE (NUMERO, LVV, HINTA) values ('a', 3, 10)");
    data::JournalRun head;
    const qint64 number =
        journal().begin(head, {{kDefinitionNote, definitionNote(test::plainDefinition())}});
    company.execAll({"update TUOTE set HINTA = 12, LVV = 6", "update TUOTE set HINTA = 15"});
    journal().setNote(number, kOutcomeNote, outcomeNote({}));
    journal().end(data::RunState::Done);
    const Verification verification = verify(number);
    EXPECT_TRUE(verification.holds()) << findings(verification).join('\n').toStdString();
    ASSERT_EQ(verification.sums.size(), 1U);
    EXPECT_EQ(verification.sums.front().count, 1);
    EXPECT_DOUBLE_EQ(verification.sums.front().before, 10.0);
    EXPECT_DOUBLE_EQ(verification.sums.front().after, 15.0);
    EXPECT_NEAR(verification.sums.front().meanPercent, 50.0, 1e-9);
}

TEST_F(VerificationTest, WhatIsLeftHasItsReason) {
    company.execAll(
        {"insert into TUOTE (NUMERO, LVV, OSTOVERO, RYHMA) values ('a', 3, 0, 1), "
         "('b', 2, 3, 9)",
         "insert into TRYHMA (Nro, VERO, OSTOVERO) values (1, 3, 0), (9, 2, 3)",
         // open, delivered, a skipped charging method, delivery before the limit
         "insert into MT (Numero, Toimitustila, Toimituspaiva, Veloitustapa) values "
         "(1, 3, '2024-10-01', 1), (2, 4, '2024-10-01', 1), (3, 1, '2024-10-01', 14), "
         "(4, 1, '2024-08-31', 1)",
         "insert into MTRIVI (TilausNro, RiviNro, Verokanta, OstoVero, Toimitettava, Kate) values "
         "(1, 1, 3, 0, 1, 1), (1, 2, 3, 0, 0, 1), (1, 3, 2, 3, 1, 1), (2, 1, 3, 0, 1, 1), "
         "(3, 1, 3, 0, 1, 1), (4, 1, 3, 0, 1, 1)",
         "insert into WINOT (TilausNro, Tila) values (1, 4), (2, 5)",
         "insert into WINOTRI (TilausNro, RiviNro, AlvLuokka, Tulematta) values "
         "(1, 1, 3, 1), (1, 2, 3, 0), (2, 1, 3, 1)"});
    struct Case {
        const char* name;
        std::function<void(ChangeDefinition&)> change;
        RunOutcome outcome;
        bool recorded;  // false: no step was run
        QStringList remaining;
        bool unexplained;
    };
    const QStringList none;
    const auto nothing = [](ChangeDefinition&) {};
    const QStringList rules{"MTRIVI 1 restriction", "MTRIVI 3 rule", "WINOTRI 1 rule"};
    const Case cases[] = {
        {"orders only",
         [](ChangeDefinition& d) {
             d.products = false;
             d.salesOrderDeliveryLimit = QDate(2024, 9, 1);
         },
         {},
         true,
         QStringList{"TUOTE 2 table not chosen", "TRYHMA 2 table not chosen"} + rules,
         false},
        {"restriction",
         [](ChangeDefinition& d) {
             d.salesOrders = d.purchaseOrders = false;
             d.productGroup = {true, 1, 1, {}};
         },
         {},
         true,
         {"TUOTE 1 restriction", "TRYHMA 1 restriction", "MTRIVI 5 table not chosen",
          "WINOTRI 2 table not chosen"},
         false},
        {"stopped",
         nothing,
         {true, {}, {}},
         false,
         {"TUOTE 2 not finished", "TRYHMA 2 not finished", "MTRIVI 3 rule", "MTRIVI 2 not finished",
          "WINOTRI 1 rule", "WINOTRI 1 not finished"},
         false},
        {"passed over and failed",
         [](ChangeDefinition& d) { d.salesOrders = d.purchaseOrders = false; },
         {false, {"TRYHMA"}, {"a"}},
         false,
         {"TUOTE 1 passed over", "TUOTE 1 unknown", "TRYHMA 2 step failed",
          "MTRIVI 5 table not chosen", "WINOTRI 2 table not chosen"},
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ChangeDefinition definition = withOrders();
        c.change(definition);
        qint64 number = 0;
        if (c.recorded) {
            // what the run changes is put back afterwards
            number = run(definition);
            const Verification verification = verify(number);
            EXPECT_EQ(remaining(verification), c.remaining);
            EXPECT_EQ(verification.unexplained(), c.unexplained);
            company.execAll({"update TUOTE set LVV = 3 where NUMERO = 'a'",
                             "update TUOTE set OSTOVERO = 3 where NUMERO = 'b'",
                             "update TRYHMA set VERO = 3 where Nro = 1",
                             "update TRYHMA set OSTOVERO = 3 where Nro = 9",
                             "update MTRIVI set Verokanta = 3 where TilausNro = 1 and RiviNro = 1",
                             "update WINOTRI set AlvLuokka = 3 where TilausNro = 1"});
            continue;
        }
        number = journal().begin({}, {{kDefinitionNote, definitionNote(definition)},
                                      {kOutcomeNote, outcomeNote(c.outcome)}});
        journal().end(data::RunState::Stopped);
        const Verification verification = verify(number);
        EXPECT_EQ(remaining(verification), c.remaining);
        EXPECT_EQ(verification.unexplained(), c.unexplained);
        EXPECT_FALSE(verification.holds());
    }
}

TEST_F(VerificationTest, PricesWorthALook) {
    company.execAll(
        {// level 2 has no source, level 3 stays below the limit, level 4 has coefficient 1, level 5
         // is rounded back; the zero of level 6 is none
         "insert into TUOTE (NUMERO, LVV, HINTA, KAKSOISHINTA, HINTA3, HINTA4, HINTA5, HINTA7) "
         "values ('a', 3, 10, 8, 0.5, 7, 1, 3)",
         "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, Hinta1Alv0, Hinta2) values "
         "(1, 'a', 10, 0, 10), (2, 'a', 12.4, 10, 10)",
         "insert into MT (Numero, Toimitustila) values (1, 1)",
         "insert into MTRIVI (TilausNro, RiviNro, Verokanta, Toimitettava, Ahinta, AhintaAlv0, "
         "Kate) values (1, 1, 3, 1, 10, 0, 1), (1, 2, 3, 1, 12.4, 10, 1)"});
    ChangeDefinition definition = withOrders();
    definition.salesOrderFromVat0 = true;
    definition.levels[0].keepVat0 = true;
    definition.priceChangeLimit = 0.6;
    definition.levels[2] = {1.2, QStringLiteral("hinta3"), false};
    definition.levels[3] = {1.0, QStringLiteral("hinta4"), false};
    definition.levels[4] = {1.001, QStringLiteral("hinta5"), false};
    definition.levels[6] = {0.001, QStringLiteral("hinta7"), false};
    const Verification verification = verify(run(definition));
    QStringList found = findings(verification);
    found.sort();
    EXPECT_EQ(
        found,
        (QStringList{"MTRIVI 1 1 Ahinta: before 10, after the run 0 (empty VAT-free price)",
                     "MYYMALAHINNAT 1 a Hinta1: before 10, after the run 0 (empty VAT-free price)",
                     "TUOTE a HINTA7: before 3, after the run 0 (0 or negative)"}));
    QStringList stayed;
    for (const Finding& finding : verification.findings) {
        if (finding.kind == FindingKind::PriceUnchanged)
            stayed += findingEnglish(finding);
    }
    EXPECT_EQ(stayed, (QStringList{"TUOTE a KAKSOISHINTA = 8: price unchanged, no source",
                                   "TUOTE a HINTA3 = 0.5: price unchanged, price change "
                                   "limit",
                                   "TUOTE a HINTA4 = 7: price unchanged, coefficient 1",
                                   "TUOTE a HINTA5 = 1: price unchanged, rounding"}));
    EXPECT_TRUE(verification.holds());
}

TEST_F(VerificationTest, FindsWhatTheIndexLacks) {
    // record 2 of each table is in the table and not in the index of its key
    const auto takeFromIndex = [this](QByteArray sql, const QByteArray& table) {
        const engines::sqlite::SqliteHandle handle(company.folder() + "/YRITYS.ZDB",
                                                   engines::sqlite::SqliteHandle::Mode::ReadWrite);
        engines::sqlite::execute(handle.get(), sql.replace("TUOTE", table));
    };
    const QByteArray sql =
        "CREATE TEMP TABLE old AS SELECT sql FROM sqlite_master WHERE name = 'rec_TUOTE_k0';"
        "DROP INDEX rec_TUOTE_k0; CREATE UNIQUE INDEX rec_TUOTE_k0 ON rec_TUOTE(k0) WHERE id "
        "<> 2; PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = (SELECT sql FROM "
        "old) WHERE name = 'rec_TUOTE_k0'";
    company.execAll(
        {"insert into TUOTE (NUMERO, LVV, HINTA) values ('a', 3, 10), ('b', 3, 20), "
         "('c', 3, 30)",
         "insert into MT (Numero, Toimitustila) values (1, 1)",
         "insert into MTRIVI (TilausNro, RiviNro, Verokanta, Toimitettava) values (1, 1, 3, 1), "
         "(1, 2, 3, 1)"});
    run([] {
        ChangeDefinition other = test::plainDefinition();
        other.sourceClass = 7;
        return other;
    }());
    company.ports.lines.clear();
    takeFromIndex(sql, "TUOTE");
    const Verification verification = verify(run(test::plainDefinition()));
    EXPECT_EQ(findings(verification), QStringList{"TUOTE b LVV: left behind, unknown"});
    EXPECT_TRUE(verification.unexplained());
    EXPECT_EQ(verificationLine(verification).toStdString(),
              "Tarkastus: muutoksia 2; vanha alv-luokka jäi: TUOTE 1 (syy ei tiedossa), MTRIVI 2 "
              "(taulua ei "
              "valittu); muuttamatta jääneitä 1. TUOTE b LVV: jäi muuttamatta, syy ei tiedossa.");

    takeFromIndex(sql, "MTRIVI");
    ChangeDefinition orders = withOrders();
    orders.products = false;
    const Verification ofOrders = verify(run(orders));
    EXPECT_EQ(findings(ofOrders), QStringList{"MTRIVI 1 2 Verokanta: left behind, unknown"});
    EXPECT_TRUE(ofOrders.unexplained());
}

TEST_F(VerificationTest, CountsAllAndKeepsTheFirst) {
    company.execAll(
        {"insert into TUOTE (NUMERO, LVV, HINTA) values ('a', 3, 10), ('b', 3, 20), "
         "('c', 3, 30)"});
    const qint64 number = run(test::plainDefinition());
    company.exec("update TUOTE set HINTA = 1");
    int seen = 0;
    const Verification verification =
        verifyRun(company.database(), number, {2, [&](const Finding&) { ++seen; }});
    EXPECT_EQ(verification.count(FindingKind::ChangedSince), 3);
    EXPECT_EQ(verification.findings.size(), 2U);
    EXPECT_EQ(seen, 3);
    EXPECT_THROW(verify(number + 1), data::DataError);
}

TEST_F(VerificationTest, EachGroupRestrictionExplainsWhatItLeavesOut) {
    company.exec(
        "insert into TUOTE (NUMERO, LVV, HINTA, AliRyhma, RYHMA, PAARYHMA) values ('a', 3, 10, 15, "
        "15, 15)");
    for (const auto member : {&ChangeDefinition::subGroup, &ChangeDefinition::productGroup,
                              &ChangeDefinition::mainGroup}) {
        ChangeDefinition definition = test::plainDefinition();
        definition.*member = {true, 0, 0, QStringLiteral("15")};
        EXPECT_EQ(remaining(verify(run(definition))), QStringList{"TUOTE 1 restriction"});
    }
}

// The selection on a record and in SQL choose the same products, whatever the restrictions.
TEST_F(VerificationTest, SelectionOnRecordsEqualsTheCondition) {
    std::mt19937 random(7);
    const auto any = [&random](int below) {
        return static_cast<int>(random() % static_cast<unsigned>(below));
    };
    QStringList rows;
    for (int i = 0; i < 400; ++i)
        rows += QStringLiteral("('%1', %2, %3, %4, %5, %6, %7)")
                    .arg(i)
                    .arg(any(6) - 1)
                    .arg(any(6) - 1)
                    .arg(any(6) - 1)
                    .arg(any(4))
                    .arg(any(4))
                    .arg(any(4));
    company.exec(
        "insert into TUOTE (NUMERO, AliRyhma, RYHMA, PAARYHMA, LVV, ALV2, OSTOVERO) values " +
        rows.join(','));
    company.exec("insert into TRYHMA (Nro) values (0), (1), (2), (3), (4)");
    static const char* const kIgnored[] = {"", "", "3", "1,x, 02,,99999999999999999999", "4,4"};
    const auto restriction = [&] {
        return GroupRestriction{any(3) > 0, any(6), any(6), QLatin1String(kIgnored[any(5)])};
    };
    const auto products = company.database().openTable("TUOTE");
    const auto value = [&](const QByteArray& record, const char* name) {
        const data::RecordLayout& layout = products->layout();
        return data::readInteger(layout.field(layout.indexOf(QLatin1String(name))),
                                 reinterpret_cast<const uchar*>(record.constData()));
    };
    int chosen = 0;
    for (int round = 0; round < 200; ++round) {
        ChangeDefinition definition;
        definition.sourceClass = any(4);
        definition.subGroup = restriction();
        definition.productGroup = restriction();
        definition.mainGroup = restriction();
        const ProductSelection selection(definition);
        int selected = 0;
        for (const auto& record : products->fromEnd(0, data::Direction::Forward, 1000)) {
            const QByteArray& r = record.bytes;
            selected +=
                selection.selects({value(r, "ALIRYHMA"), value(r, "RYHMA"), value(r, "PAARYHMA"),
                                   value(r, "LVV"), value(r, "ALV2"), value(r, "OSTOVERO")})
                    ? 1
                    : 0;
        }
        EXPECT_EQ(selected, company.number("select count(*) from TUOTE where " +
                                           selectionCondition(definition)))
            << selectionCondition(definition).toStdString();
        chosen += selected;
        int groups = 0;
        for (int i = 0; i < 5; ++i)
            groups += selection.inGroupRange(i) ? 1 : 0;
        EXPECT_EQ(groups, company.number("select count(*) from TRYHMA where Nro >= 0" +
                                         groupRangeCondition(definition)));
    }
    EXPECT_GT(chosen, 1000);
}

TEST_F(VerificationTest, EarlierRunsThatChangedTheSameDependentRows) {
    const auto definition = [](const std::function<void(ChangeDefinition&)>& change) {
        ChangeDefinition d = test::plainDefinition();
        d.customerPriceLists = d.campaigns = true;
        change(d);
        return d;
    };
    const auto nothing = [](ChangeDefinition&) {};
    const auto noProducts = [](ChangeDefinition& d) { d.products = false; };
    const QStringList both{"TUOTE", "ASALE", "KAMPPANJA"};
    using data::RunState;
    struct Case {
        const char* name;
        std::function<void(ChangeDefinition&)> now;
        std::vector<EarlierRun> earlier;
        std::vector<EarlierChange> found;
    };
    const Case cases[] = {
        {"products were converted", nothing, {{1, RunState::Done, definition(nothing), both}}, {}},
        {"products were switched off",
         [](ChangeDefinition& d) { d.campaigns = false; },
         {{1, RunState::Done, definition(noProducts), both}},
         {{1, {"ASALE"}}}},
        {"each such run",
         noProducts,
         {{1, RunState::Done, definition(noProducts), both},
          {4, RunState::Done, definition(noProducts), {"KAMPPANJA"}}},
         {{1, {"ASALE", "KAMPPANJA"}}, {4, {"KAMPPANJA"}}}},
        {"products were converted by a later run",
         nothing,
         {{1, RunState::Done, definition(noProducts), both},
          {2, RunState::Errors, definition([](ChangeDefinition& d) { d.campaigns = false; }), {}}},
         {}},
        {"products were left behind",
         nothing,
         {{1, RunState::Accepted, definition(nothing), both}},
         {{1, {"ASALE", "KAMPPANJA"}}}},
        {"undone", nothing, {{1, RunState::Undone, definition(noProducts), both}}, {}},
        {"other classes",
         nothing,
         {{1, RunState::Done, definition([](ChangeDefinition& d) {
               d.products = false;
               d.sourceClass = 7;
           }),
           both}},
         {}},
        {"other groups",
         [](ChangeDefinition& d) {
             d.productGroup = {true, 10, 20, {}};
         },
         {{1, RunState::Done, definition([](ChangeDefinition& d) {
               d.products = false;
               d.productGroup = {true, 0, 9, {}};
           }),
           both},
          {2, RunState::Done, definition([](ChangeDefinition& d) {
               d.products = false;
               d.productGroup = {true, 20, 30, {}};
           }),
           both}},
         {{2, {"ASALE", "KAMPPANJA"}}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(earlierRunsOfSameRows(definition(c.now), c.earlier), c.found) << c.name;

    // in a run
    company.execAll({"insert into TUOTE (NUMERO, LVV) values ('a', 3)",
                     "insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta) values ('a', 1, 10)"});
    run(definition(noProducts));
    EXPECT_EQ(company.ports.linesWith("Huomaa: "), 0);
    run(definition(noProducts));
    EXPECT_EQ(company.ports.lines.filter("Huomaa: ").join('|').toStdString(),
              "Huomaa: ajo 1 on jo muuttanut samoilla alv-luokilla: kampanjat. Tämä ajo muuttaa "
              "uudestaan ne rivit, joiden tuotteella on vielä vanha alv-luokka.");
}
