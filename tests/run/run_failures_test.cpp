#include <gtest/gtest.h>

#include <QRegularExpression>
#include <optional>

#include "company/run_mark.h"
#include "tests/run/run_company.h"

namespace {

using test::plainDefinition;
using test::RunCompany;
using vatchange::ChangeDefinition;
using vatchange::RunResult;

void addProducts(RunCompany& company, int count) {
    for (int i = 1; i <= count; ++i)
        company.exec(QStringLiteral("insert into TUOTE (NUMERO, LVV, HINTA, HRKPL, Verkkokauppa) "
                                    "values ('A%1', 3, 12.4, 1, 1)")
                         .arg(i));
}

/// Holds a record's lock as another program during its lifetime.
class HeldRecord {
  public:
    HeldRecord(const RunCompany& company, const QString& table, const data::KeyValues& key)
        : m_program(company.otherProgram()), m_file(m_program->openTable(table)) {
        const auto found = m_file->seek(0, data::SeekOp::Equal, key, 1);
        EXPECT_TRUE(!found.empty() && m_file->lock(found.front().id, std::chrono::milliseconds(0)));
    }

  private:
    std::unique_ptr<data::Database> m_program;
    std::unique_ptr<data::TableFile> m_file;
};

TEST(RefusedRun, ClassChecksChangeNothing) {
    const std::tuple<int, int, const char*> cases[] = {
        {3, 0, "Kohteen ALV -luokka on oltava > 0!"},
        {3, -1, "Kohteen ALV -luokka on oltava > 0!"},
        {3, 5, "Kohteen ALV -luokkaa ei ole olemassa!"},
        {6, 6, "Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!"},
        {3, 7, "Lähteen ALV -luokan prosentti on sama kuin kohteen ALV -luokan prosentti!"},
    };
    RunCompany company;
    addProducts(company, 1);
    const auto before = company.everything();
    for (const auto& [source, target, message] : cases) {
        company.ports.lines.clear();
        company.ports.program = QStringLiteral("taksavaihe");
        ChangeDefinition definition = plainDefinition();
        definition.sourceClass = source;
        definition.targetClass = target;
        EXPECT_TRUE(company.run(definition).refused) << message;
        EXPECT_EQ(company.ports.lines, QStringList(QString::fromUtf8(message)));
    }
    EXPECT_EQ(company.everything(), before);
    // products without a class may go to a class of any rate, their own 0 % included
    ChangeDefinition definition = plainDefinition();
    definition.sourceClass = 0;
    definition.targetClass = 9;
    EXPECT_FALSE(company.run(definition).refused);
}

TEST(RefusedRun, EarlyDate) {
    const auto warning =
        QStringLiteral("Olet vaihtamassa veroluokkaa, vaikka kuukausi ei ole vielä vaihtunut!");
    RunCompany company;
    company.setNow(QDateTime(QDate(2024, 8, 31), QTime(14, 59, 59)));
    EXPECT_TRUE(company.run(plainDefinition()).refused);
    EXPECT_EQ(company.ports.lines, QStringList(warning));

    company.ports.isUnattended = false;
    company.ports.answers = {"no", "yes"};
    EXPECT_TRUE(company.run(plainDefinition()).refused);
    EXPECT_FALSE(company.run(plainDefinition()).refused);
    EXPECT_EQ(company.ports.questions.last(), warning + QStringLiteral("\r\rJatketaanko?"));

    company.ports.skipEarlyDate = true;
    EXPECT_FALSE(company.run(plainDefinition()).refused);
    company.ports.skipEarlyDate = false;
    company.setNow(QDateTime(QDate(2024, 8, 31), QTime(15, 0)));
    EXPECT_FALSE(company.run(plainDefinition()).refused);
}

TEST(FailingRun, LockedProductIsSkippedAndLogged) {
    RunCompany company;
    addProducts(company, 3);
    std::optional<HeldRecord> held(std::in_place, company, "TUOTE", data::KeyValues{"A2"});
    const RunResult result = company.run(plainDefinition());
    EXPECT_EQ(result.skippedProducts, 1);
    EXPECT_EQ(result.skippedNumbers, QStringList("A2"));
    EXPECT_EQ(result.products, 2);
    EXPECT_EQ(result.failedSteps, 0);
    EXPECT_FALSE(result.markWritten) << "another program's name";
    EXPECT_TRUE(company.ports.hasLine("Virhe tuotteen päivityksessä: A2 tuotetta ei voi muokata"));
    EXPECT_TRUE(company.ports.hasLine("Tuotetiedot muutettu ( 2 kpl)"));
    held.reset();
    EXPECT_EQ(company.number("select HINTA from TUOTE where NUMERO='A2'"), 12.4);
    EXPECT_EQ(company.run(plainDefinition()).products, 1) << "the rerun takes the rest";
}

TEST(FailingRun, ReadsPricesAndClassesFromTheLockedRecord) {
    RunCompany company;
    addProducts(company, 4);
    company.ports.onStatus = [&company](const QString& text) {
        if (text == QStringLiteral("Tuote A1")) {  // somebody else, between query and lock
            company.exec("update TUOTE set HINTA=99.9, OSTOVERO=3 where NUMERO='A2'");
            company.exec("update TUOTE set LVV=2 where NUMERO='A3'");
            company.exec("delete from TUOTE where NUMERO='A4'");
        }
    };
    const RunResult result = company.run(plainDefinition());
    EXPECT_TRUE(result.clean());
    EXPECT_EQ(result.products, 2);
    EXPECT_EQ(company.number("select HINTA from TUOTE where NUMERO='A2'"), 101.11);
    EXPECT_EQ(company.number("select OSTOVERO from TUOTE where NUMERO='A2'"), 6);
    EXPECT_EQ(company.number("select HINTA from TUOTE where NUMERO='A3'"), 12.4);
    EXPECT_EQ(company.number("select count(*) from TUOTE"), 3);
}

TEST(FailingRun, CatchesEachStepSeparately) {
    RunCompany company({"MYYMALAHINNAT", "ASALE", "KAMPPANJA", "VAKIOLASKUTUS", "MAARAALE",
                        "TRYHMA", "MT", "WINOT"});
    addProducts(company, 1);
    ChangeDefinition definition = plainDefinition();
    definition.customerPriceLists = definition.campaigns = true;
    definition.recurringInvoicing = definition.quantityDiscounts = true;
    definition.salesOrders = definition.purchaseOrders = definition.checkProductCodes = true;
    company.ports.program = QStringLiteral("Taksavaihe");
    const RunResult result = company.run(definition);
    EXPECT_EQ(result.failedSteps, 9) << "the groups' three fields count each";
    EXPECT_EQ(result.failures.size(), 9);
    EXPECT_TRUE(result.failures.first().startsWith("Virhe asiakashinnaston päivityksessä: "));
    EXPECT_EQ(result.products, 1);
    EXPECT_TRUE(result.markWritten) << "a reported error does not suppress the mark";
    for (const char* wording :
         {"^Virhe asiakashinnaston päivityksessä: .", "^Virhe kampanjan päivityksessä: .",
          "^Virhe .+ vakiolaskutuksen päivityksessä. $", "^Virhe .+ määräalen päivityksessä. $",
          "^Virhe tuoteryhmän päivityksessä: .", "^Virhe myyntitilausten päivityksessä: .",
          "^Virhe ostotilausten päivityksessä: ."})
        EXPECT_FALSE(
            company.ports.messages.filter(QRegularExpression(QString::fromUtf8(wording))).isEmpty())
            << wording;
    EXPECT_TRUE(company.ports.hasLine("Ei myymälähinnat taulua"));
    EXPECT_TRUE(company.ports.hasLine("Verkkokauppa -valinta poistettiin 0 tuotteelta"));
}

TEST(FailingRun, UpdatesEachGroupFieldSeparately) {
    RunCompany company;
    company.execAll({"insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (10, 3, 2, 2)",
                     "insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (11, 2, 3, 2)",
                     "insert into TRYHMA (Nro, VERO, ALV2, OSTOVERO) values (12, 2, 2, 3)"});
    company.database().setLockWait(std::chrono::milliseconds(10));
    const HeldRecord held(company, "TRYHMA", {10});
    const RunResult result = company.run(plainDefinition());
    EXPECT_EQ(result.failedSteps, 1);
    EXPECT_EQ(company.ports.linesWith("Virhe tuoteryhmän päivityksessä: "), 1);
    EXPECT_EQ(company.number("select VERO from TRYHMA where Nro=10"), 3);
    EXPECT_EQ(company.number("select ALV2 from TRYHMA where Nro=11"), 6);
    EXPECT_EQ(company.number("select OSTOVERO from TRYHMA where Nro=12"), 6);
}

TEST(FailingRun, ConvertsProductsWithoutALabelTable) {
    for (const bool unattended : {true, false}) {
        RunCompany company({"HR"});
        addProducts(company, 3);
        company.ports.isUnattended = unattended;  // nobody is asked
        const RunResult result = company.run(plainDefinition());
        EXPECT_EQ(result.products, 3);
        EXPECT_FALSE(result.cancelled);
        EXPECT_EQ(result.failedSteps, 1);
        EXPECT_EQ(company.ports.linesWith("Virhe hr "), 1);
        EXPECT_TRUE(company.ports.lines[0].startsWith("Huomaa: hyllynreunaetikettien taulua HR"));
        EXPECT_TRUE(company.ports.lines[1].startsWith("Virhe hr ")) << "before any change";
    }
    RunCompany company({"HR"});
    addProducts(company, 2);
    ChangeDefinition definition = plainDefinition();
    definition.writeShelfLabels = false;
    EXPECT_TRUE(company.run(definition).clean()) << "the table is not needed without labels";
}

TEST(FailingRun, LabelFailureEndsTheProductsStepOrTheRun) {
    ChangeDefinition definition = plainDefinition();
    definition.checkProductCodes = true;
    const auto checked = QStringLiteral("Verkkokauppa -valinta poistettiin 0 tuotteelta");
    for (const bool unattended : {true, false}) {
        RunCompany company;
        addProducts(company, 3);
        company.execAll({"insert into HR (Tyyppi, Tuote) values (1, 'A1')",
                         "insert into HR (Tyyppi, Tuote) values (1, 'A2')"});
        company.database().setLockWait(std::chrono::milliseconds(10));
        const HeldRecord first(company, "HR", {1, "A1"});
        const HeldRecord second(company, "HR", {1, "A2"});
        company.ports.program = QStringLiteral("taksavaihe");
        company.ports.isUnattended = unattended;
        company.ports.answers = QStringList{"yes", "no"};
        const RunResult result = company.run(definition);
        EXPECT_EQ(result.failedSteps, 1);
        EXPECT_EQ(company.ports.hasLine(checked), unattended);
        EXPECT_EQ(company::ExecutionMarkExists(company.database()), unattended);
        EXPECT_EQ(result.cancelled, !unattended);
        if (unattended) {
            EXPECT_EQ(result.products, 1) << "changed, but its label failed";
            continue;
        }
        EXPECT_EQ(result.products, 2);
        EXPECT_EQ(company.ports.questions, (QStringList{"Jatketaanko? ", "Jatketaanko? "}));
        EXPECT_EQ(company.ports.messages.last(),
                  "Ajo keskeytettiin hyllynreunaetiketin virheen jälkeen. Tehdyt muutokset jäävät "
                  "voimaan: tuotteet 2, verkkokaupan muutosmerkinnät 2.");
    }
}

TEST(FailingRun, SharedKeyRowHeldOrChangedByAnotherProgram) {
    {
        RunCompany company;
        ChangeDefinition definition = test::addSharedKeys(company);
        const auto before = company.everything();
        const HeldRecord held(company, "ASALE", {1, "A1", 0, 0.0});  // the first of its key
        const RunResult result = company.run(definition);
        EXPECT_EQ(result.failedSteps, 1);
        // no "try again": once the product is converted, a rerun does not find the row
        ASSERT_EQ(result.failures.size(), 1);
        EXPECT_EQ(result.failures.first(),
                  QString("Virhe asiakashinnaston päivityksessä: Tietue on toisen ohjelman "
                          "käytössä: ASALE. Riviä ei muutettu, ja vaihe päättyi siihen."));
        EXPECT_EQ(company.everything().at("ASALE"), before.at("ASALE"));
    }
    RunCompany company;
    ChangeDefinition definition = test::addSharedKeys(company);
    definition.productLog = true;
    company.ports.stop = [&company] {  // between the first row and the others
        if (company.ports.linesWith("Asiakas 1 ") == 1) {
            company.exec("update ASALE set Hinta = 81 where Huom = 'next'");
            company.exec("delete from ASALE where Huom = 'period'");
        }
        return false;
    };
    const RunResult result = company.run(definition);
    EXPECT_EQ(result.failedSteps, 1) << "logged per row, counted once";
    EXPECT_EQ(result.failures.size(), 1);
    EXPECT_EQ(company.ports.linesWith("Virhe asiakashinnaston päivityksessä: Asiakas 1 "), 2);
    EXPECT_TRUE(company.ports.hasLine(" ( 6 rivi)"));
    EXPECT_EQ(company.number("select Hinta from ASALE where Huom='next'"), 81);
    EXPECT_EQ(company.number("select count(*) from ASALE where Hinta = 5.06"), 2);
}

TEST(FailingRun, ReportsMarkFailuresOnce) {
    RunCompany company({"WEBKLIITOS"});
    addProducts(company, 2);
    const RunResult result = company.run(plainDefinition());
    EXPECT_EQ(result.products, 2);
    EXPECT_EQ(result.failedSteps, 1);
    EXPECT_EQ(company.ports.linesWith("VIRHE: TryPost -> "), 2);
    EXPECT_EQ(company.ports.messages.filter("VIRHE: TryPost").size(), 1);

    company.exec("update TUOTE set LVV=3");
    ChangeDefinition definition = plainDefinition();
    definition.leaveWebShop = true;
    EXPECT_TRUE(company.run(definition).clean());
}

TEST(StoppedRun, KeepsAndReportsWhatIsDone) {
    RunCompany company;
    addProducts(company, 3);
    company.ports.program = QStringLiteral("taksavaihe.exe");
    bool pressed = false;
    company.ports.onStatus = [&pressed](const QString& text) {
        pressed = pressed || text == QStringLiteral("Tuote A2");
    };
    company.ports.stop = [&pressed] { return pressed; };
    ChangeDefinition definition = plainDefinition();
    definition.checkProductCodes = true;
    const RunResult result = company.run(definition);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.products, 2) << "the product in hand is finished";
    EXPECT_EQ(company.number("select count(*) from TUOTE where LVV=3"), 1);
    EXPECT_FALSE(result.markWritten);
    EXPECT_FALSE(company::ExecutionMarkExists(company.database()));
    ASSERT_EQ(company.ports.messages.size(), 1);
    EXPECT_TRUE(company.ports.messages.front().startsWith(QStringLiteral("Ajo keskeytettiin.")));
    EXPECT_TRUE(company.ports.messages.front().contains(QStringLiteral("voimaan: tuotteet 2, ")));
    EXPECT_EQ(company.ports.lines.at(company.ports.lines.size() - 2),
              company.ports.messages.front());
    // two products, their labels and web shop marks
    EXPECT_TRUE(company.ports.lines.last().startsWith(QStringLiteral(
        "Tarkastus: muutoksia 6; vanha alv-luokka jäi: TUOTE 1 (ajo jäi kesken); ")));
}

TEST(StoppedRun, NamesTheRowsOfAStepThatFailed) {
    RunCompany company;
    company.execAll({"insert into MYYMALAHINNAT (Myymala, Tuote) values (1, 'A1')",
                     "insert into MYYMALAHINNAT (Myymala, Tuote) values (2, 'A2')"});
    addProducts(company, 2);
    bool failed = false;
    company.ports.onStatus = [&failed](const QString& text) {
        if (text == QStringLiteral("myymalahinnat 2 A2")) {
            failed = true;
            throw data::DataError(data::ErrorKind::Io, QStringLiteral("MYYMALAHINNAT"), QString());
        }
    };
    company.ports.stop = [&failed] { return failed; };
    EXPECT_EQ(company.run(plainDefinition()).failedSteps, 1);
    EXPECT_TRUE(company.ports.messages.last().endsWith(
        QStringLiteral("voimaan: myymälähintojen rivit 1.")));
}

}  // namespace
