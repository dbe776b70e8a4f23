#include <gtest/gtest.h>

#include "company/unfinished_note.h"
#include "tests/run/run_company.h"
#include "vatchange/journal/repeated_rows.h"

namespace {

using test::plainDefinition;
using test::RunCompany;
using vatchange::ChangeDefinition;

void leaveNotes(const RunCompany& company, const char* notes) {
    test::writeFile(company.file(QStringLiteral("ALVMUUTOS.KESKEN")), notes);
}

TEST(UnfinishedRunNote, OfAnOlderVersionStopsWhatChangesDependentRows) {
    RunCompany company;
    company.ports.definition = QStringLiteral("Alv255");
    const char* const note = "[AJO]\nMaarittely=Alv255\nAlkoi=2024-09-01 05:06:07\nKone=K1\n";
    leaveNotes(company, note);
    const auto left = QStringLiteral(
        "Edellinen ajo jäi kesken, määrittely Alv255, aloitettu 01.09.2024 05:06:07, kone K1. ");
    EXPECT_TRUE(company.run(plainDefinition()).clean());
    EXPECT_EQ(company.ports.linesWith(QStringLiteral("Huomaa: ") + left), 1);

    ChangeDefinition definition = plainDefinition();
    definition.campaigns = true;
    const vatchange::RunResult result = company.run(definition);
    EXPECT_TRUE(result.refused && result.blocked);
    ASSERT_EQ(company.ports.messages.size(), 2);  // after the first run's closing message
    EXPECT_TRUE(
        company.ports.messages.last().startsWith(QStringLiteral("Määrittelyä ei ajeta: ") + left));
    EXPECT_TRUE(company.ports.messages.last().contains(
        QStringLiteral("zavdb accept-run \"Koeyritys Äyräs\" 0")));

    company.ports.isUnattended = false;
    company.ports.answers = {"no", "yes"};
    EXPECT_TRUE(company.run(definition).refused);
    ASSERT_EQ(company::readUnfinishedNotes().size(), 1U);
    EXPECT_TRUE(company.run(definition).clean());
    EXPECT_TRUE(company.ports.questions.last().startsWith(left));
    EXPECT_TRUE(company::readUnfinishedNotes().empty());

    leaveNotes(company, (QByteArray(note) + "[AJO 2]\nMaarittely=Toinen\n").constData());
    company.ports.answers = {"yes"};
    EXPECT_TRUE(company.run(definition).clean());
    ASSERT_EQ(company::readUnfinishedNotes().size(), 1U);
    EXPECT_EQ(company::readUnfinishedNotes().front().definition, QStringLiteral("Toinen"));

    leaveNotes(company, "[rikki");  // as good as any run's note
    company.ports.answers = {"yes"};
    EXPECT_TRUE(company.run(definition).clean());
    EXPECT_TRUE(company::readUnfinishedNotes().empty());
}

// A1 and A2 with a price row of every kind, and other rows. The first run passes over A2, which
// another program holds, so A2's rows are changed and A2 is not.
class UnfinishedRun : public ::testing::Test {
  protected:
    UnfinishedRun() {
        for (const char* product : {"A1", "A2"}) {
            for (const char* sql :
                 {"insert into TUOTE (NUMERO, LVV, HINTA, RYHMA, MaaraAle) "
                  "values ('#1', 3, 10, #2, #2)",
                  "insert into ASALE (AsiakasNumero, Tuote, Maara, Hinta, Tyyppi) "
                  "values (7, '#1', 1.5, 100, 1)",
                  "insert into KAMPPANJA (Tuote, RiviNro, Myyntihinta) values ('#1', 1, 100)",
                  "insert into VAKIOLASKUTUS (Asiakas, Tuote, Ahinta) values (7, '#1', 100)",
                  "insert into MAARAALE (Numero, Arvo) values (#2, 100)"})
                m_company.exec(QString::fromUtf8(sql)
                                   .replace(QLatin1String("#1"), QLatin1String(product))
                                   .replace(QLatin1String("#2"), QLatin1String(product + 1)));
        }
        const auto other = m_company.otherProgram();
        const auto products = other->openTable(QStringLiteral("TUOTE"));
        const auto held = products->seek(0, data::SeekOp::Equal, {QStringLiteral("A2")}, 1);
        EXPECT_TRUE(products->lock(held.at(0).id, std::chrono::milliseconds(0)));
        m_company.ports.definition = QStringLiteral("Ensimmäinen");
        const vatchange::RunResult first = m_company.run(all());
        EXPECT_EQ(first.state, data::RunState::Incomplete);
        EXPECT_EQ(first.run, 1);
        m_company.ports.definition = QStringLiteral("Toinen");
        m_company.ports.messages.clear();
    }

    static ChangeDefinition all() {
        ChangeDefinition definition = plainDefinition();
        definition.customerPriceLists = definition.campaigns = definition.recurringInvoicing =
            definition.quantityDiscounts = true;
        return definition;
    }
    double multiplied(const char* table, const char* column) const {
        return m_company.number(
            QStringLiteral("select count(*) from %1 where %2 > 100 and %2 < 102")
                .arg(QLatin1String(table), QLatin1String(column)));
    }
    void eachRowIsMultipliedOnce() const {
        EXPECT_EQ(multiplied("ASALE", "Hinta"), 2);
        EXPECT_EQ(multiplied("KAMPPANJA", "Myyntihinta"), 2);
        EXPECT_EQ(multiplied("VAKIOLASKUTUS", "Ahinta"), 2);
        EXPECT_EQ(multiplied("MAARAALE", "Arvo"), 2);
    }

    RunCompany m_company;
};

TEST_F(UnfinishedRun, StandsInTheWayOfWhatWouldMultiplyItsRowsAgain) {
    EXPECT_EQ(vatchange::repeatedRowsText(vatchange::repeatedRows(m_company.database(), 1, all())),
              QStringLiteral("asiakashinnastojen rivit 1 (7 A2 0 1.5), kampanjarivit 1 (A2 1), "
                             "toistuvaislaskutuksen rivit 1 (2), määräalennukset 1 (2)"));
    ChangeDefinition campaigns = plainDefinition();
    campaigns.campaigns = true;
    campaigns.targetClass = 2;
    const vatchange::RunResult result = m_company.run(campaigns);
    EXPECT_TRUE(result.refused && result.blocked);
    EXPECT_EQ(m_company.ports.messages.join(u'|'),
              QStringLiteral("Määrittelyä ei ajeta: ajo 1 (määrittely Ensimmäinen, 01.09.2024 "
                             "06:30:00, vajaa) on jo muuttanut rivejä, jotka tämä ajo muuttaisi "
                             "uudestaan: kampanjarivit 1 (A2 1). Jatka ajoa 1, peru se (zavdb undo "
                             "\"%1\" 1) tai hyväksy se (zavdb accept-run \"%1\" 1), ja aja "
                             "uudestaan.")
                  .arg(QStringLiteral("Koeyritys Äyräs")));
    m_company.ports.isUnattended = false;
    m_company.ports.answers = {"no"};
    EXPECT_TRUE(m_company.run(campaigns).refused);
    eachRowIsMultipliedOnce();

    // an accepted run stands in nobody's way
    m_company.database().journal()->setState(1, data::RunState::Accepted);
    m_company.ports.isUnattended = true;
    EXPECT_TRUE(m_company.run(campaigns).clean());
    EXPECT_EQ(multiplied("KAMPPANJA", "Myyntihinta"), 1);
}

// Only runs of the same batch leave such rows out.
TEST_F(UnfinishedRun, OfTheFormIsRepeatedIfTheUserWantsIt) {
    ChangeDefinition campaigns = plainDefinition();
    campaigns.campaigns = true;
    m_company.ports.isUnattended = false;
    m_company.ports.answers = {"yes", "yes"};
    EXPECT_TRUE(m_company.run(campaigns).clean());
    EXPECT_EQ(multiplied("KAMPPANJA", "Myyntihinta"), 1);  // that of A2 twice
}

TEST_F(UnfinishedRun, LetsPassWhatDoesNotTouchItsRows) {
    ChangeDefinition converted = all();  // A1, which it has converted
    converted.sourceClass = 6;
    converted.targetClass = 2;
    ChangeDefinition others = all();  // without A2
    others.productGroup = {true, 1, 1, {}};
    for (const ChangeDefinition& definition : {converted, others, plainDefinition()})
        EXPECT_FALSE(m_company.run(definition).refused);
    EXPECT_EQ(m_company.text(QStringLiteral("select LVV from TUOTE where NUMERO = 'A2'")),
              QStringLiteral("6"));
}

}  // namespace
