#include "vatchange/views/history_window.h"

#include <gtest/gtest.h>

#include <QTest>

#include "company/run_mark.h"
#include "shell/main_form.h"
#include "tests/support/recording_ports.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "vatchange/report/log_excerpt.h"
#include "vatchange/report/run_report.h"
#include "vatchange/run/run_summary.h"

// What an administrator does with runs after they have been made: from the main window's line to
// the history and back.

using test::str;

namespace {

/// Ports whose lines go into the change log, as those of the program.
class LoggingPorts : public test::RecordingPorts {
  public:
    void NaytaViesti(const QString& text) override { log(text); }
    void log(const QString& line) override { company::WriteAlvMuutosLog(line); }
};

class History : public ::testing::Test {
  protected:
    History() {
        m_shop.addProducts(3);
        m_definition.sourceClass = 3;
        m_definition.targetClass = 6;
        m_definition.products = true;
        m_definition.levels[0] = {1.0120967741935485, str("hinta"), false};
        m_ports.program = str("taksavaihe");
    }

    vatchange::RunResult run() {
        return runWithSummary(m_shop.database(), {m_definition, {}}, m_ports).result;
    }
    QString mainLine() {
        m_main.showCompany();
        return m_main.findChild<QLabel*>(str("ViimeisinAjo"))->text();
    }
    QString prices() { return m_shop.text(str("select group_concat(HINTA, ' ') from TUOTE")); }
    bool marked() { return company::ExecutionMarkExists(m_shop.database()); }

    /// A row of the history in one text, without who ran it.
    static QString rowText(const vatchange::HistoryWindow& window, int row) {
        QStringList cells;
        for (const int column : {0, 1, 3, 4, 5})
            cells += window.model().index(row, column).data().toString();
        return cells.join(u'|');
    }
    static QPushButton* button(const vatchange::HistoryWindow& window, const char* name) {
        return window.findChild<QPushButton*>(str(name));
    }
    static void press(const vatchange::HistoryWindow& window, const char* name) {
        ASSERT_TRUE(button(window, name)->isEnabled()) << name;
        button(window, name)->click();
    }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
    vatchange::ChangeDefinition m_definition;
    LoggingPorts m_ports;
    shell::TMainForm m_main;
};

TEST_F(History, ARunIsReportedUndoneAndRedone) {
    EXPECT_EQ(mainLine(), QString());
    ASSERT_TRUE(run().clean());
    ASSERT_EQ(prices(), str("10.12 10.12 10.12"));
    const QString line = str("Ajettu 1.9.2024 klo 6.30: Koe, 3 tuotetta, ei virheitä");
    EXPECT_EQ(mainLine(), line);
    m_dialogs.expectAnyMessage();
    m_main.BitBtn1Click();
    EXPECT_TRUE(m_dialogs.lastText().contains(line)) << m_dialogs.lastText().toStdString();

    vatchange::HistoryWindow window(m_shop.database(), nullptr);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    EXPECT_EQ(rowText(window, 0), str("1|1.9.2024 klo 6.30|Koe|valmis|4"));  // and the mark
    EXPECT_FALSE(button(window, "Jatka")->isEnabled());
    EXPECT_FALSE(button(window, "Hyvaksy")->isEnabled());

    const QString file = m_shop.file(str("raportti.pdf"));
    m_dialogs.expectFileChoice(file);
    m_dialogs.expectChoice(str("Raportti on tiedostossa\n") + file, str("&Sulje"));
    press(window, "Raportti");
    EXPECT_TRUE(test::fileBytes(file).startsWith("%PDF"));
    const auto report = vatchange::runReport(
        m_shop.database(), {1}, {str("Kauppa"), QFileInfo(company::AlvMuutosLogName()).filePath()});
    for (const char* part :
         {"Ajo 1: Koe", ">tuotteet<", ">1,20 %<", "kaikki muutokset ovat tallessa", ">3 (24%)<",
          "Aloitetaan taksavaihe", "Tarkastus: muutoksia"})
        EXPECT_TRUE(report->html.contains(str(part))) << part;
    EXPECT_EQ(report->pictures.size(), 2);

    m_dialogs.expectAnyQuestion(false);
    press(window, "Peru");
    EXPECT_EQ(prices(), str("10.12 10.12 10.12"));
    for (const auto& [price, top] :
         {std::pair("10.0 10.0 10.0", "2|1.9.2024 klo 6.30|Ajon 1 peruminen|valmis|4"),
          std::pair("10.12 10.12 10.12", "3|1.9.2024 klo 6.30|Ajon 2 peruminen|valmis|4")}) {
        m_dialogs.expectAnyQuestion(true);
        m_dialogs.expectAnyMessage();
        window.select(window.model().run(0).head.number);
        press(window, "Peru");
        EXPECT_EQ(prices(), str(price));
        EXPECT_EQ(rowText(window, 0), str(top));
        EXPECT_EQ(marked(), str(price).startsWith(str("10.12")));
    }
    EXPECT_EQ(mainLine(), str("Peruttu 1.9.2024 klo 6.30: ajo 2, 4 riviä, ei virheitä"));

    // what somebody has edited since stays, and the user is told
    m_shop.exec(str("update TUOTE set HINTA = 8 where NUMERO = '2'"));
    m_dialogs.expectAnyQuestion(true);
    m_dialogs.expectAnyMessage();
    window.select(1);
    press(window, "Peru");
    EXPECT_EQ(prices(), str("10.0 8.0 10.0"));
    EXPECT_TRUE(m_dialogs.lastText().contains(str("ajo jätti 10.12, nyt 8")))
        << m_dialogs.lastText().toStdString();
}

TEST_F(History, AnUnfinishedRunIsResumedWithItsOwnDefinitionDespiteTheMark) {
    m_ports.stop = [this] { return prices().contains(str("10.12")); };
    const vatchange::RunResult stopped = run();
    ASSERT_EQ(stopped.state, data::RunState::Stopped);
    ASSERT_EQ(prices(), str("10.12 10.0 10.0"));
    EXPECT_EQ(mainLine(), str("Ajettu 1.9.2024 klo 6.30: Koe, 1 tuote, keskeytettiin"));
    company::writeExecutionMark(m_shop.database(), test::changeMorning());
    company::WriteAlvMuutosLog(str("Huomaa: ajojen välissä"));

    vatchange::HistoryWindow window(m_shop.database(), nullptr);
    EXPECT_FALSE(button(window, "PoistaPaivakirja")->isEnabled());
    m_dialogs.expectAnyQuestion(true);
    m_dialogs.expectMessage(str("Muutos valmis, tuotteita muutettu 2"));
    press(window, "Jatka");
    EXPECT_EQ(prices(), str("10.12 10.12 10.12"));
    EXPECT_EQ(window.model().run(0).head.state, data::RunState::Done);
    EXPECT_FALSE(button(window, "Hyvaksy")->isEnabled());

    data::RunJournal& journal = *m_shop.database().journal();
    const auto attempts = vatchange::runAttempts(journal, *journal.run(1));
    ASSERT_EQ(attempts.size(), 2U);
    QStringList lines;
    for (const auto& attempt : attempts)
        lines += logOfAttempt(journal, company::AlvMuutosLogName(), attempt).first;
    const QString all = lines.join(u'\n');
    EXPECT_TRUE(all.contains(str("Ajo keskeytettiin")));
    EXPECT_TRUE(all.contains(str("Jatketaan keskeytynyttä ajoa 1")));
    EXPECT_FALSE(all.contains(str("välissä")));
    EXPECT_EQ(all.count(str("Tarkastus: ")), 2);

    m_dialogs.expectAnyQuestion(true);
    press(window, "PoistaPaivakirja");
    EXPECT_EQ(window.model().rowCount(), 0);
    EXPECT_EQ(mainLine(), QString());
}

}  // namespace
