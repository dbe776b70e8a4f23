#include "vatchange/report/change_report.h"

#include <QAbstractButton>
#include <QRegularExpression>

#include "framework/ui/help_manual.h"
#include "tests/form/form_test.h"
#include "vatchange/definition/definition_codec.h"
#include "vatchange/report/log_excerpt.h"

using test::str;

namespace {

void expectParts(const QString& html, std::initializer_list<const char*> parts) {
    for (const char* part : parts)
        EXPECT_TRUE(html.contains(str(part))) << part;
}

TEST(DefinitionReport, DescribesRestrictionsAsTheSelectionAppliesThem) {
    vatchange::ChangeDefinition d;
    d.sourceClass = 3;
    d.subGroup = {true, 10, 20, str("12,13")};
    d.productGroup = {true, 0, 7, {}};  // one bound is one group
    d.mainGroup = {false, 1, 2, {}};
    d.levels[1] = {1.1, str("hinta3"), false};
    d.customerGroups = {2, 9};
    vatchange::DefinitionNames names;
    names.rates = {{3, str("24%")}};
    names.customerGroups = {{2, str("A & B <Oy>")}};
    vatchange::ReportHtml html;
    describeDefinition(html, d, names);
    expectParts(html.take(), {"2 A &amp; B &lt;Oy&gt;, 9", ">3 (24%)<", ">0 (veroluokattomat)<",
                              ">ryhmät 10-20, ulosrajatut: 12,13<", ">vain ryhmä 7<",
                              ">ei rajausta<", ">Hinta 3<", ">numeroon 7 asti<"});
}

TEST(ChangeReport, ARefusedRunIsToldWithItsLogLines) {
    const test::ShopCompany shop;
    vatchange::ChangeReport report;
    report.company = str("Koe <Oy>");
    report.name = str("Alv255");
    expectParts(changeReport(shop.database(), report).html, {"ei ole ajettu muutosta"});
    vatchange::RunSummary run;
    run.started = QDateTime(QDate(2024, 9, 1), QTime(6, 30));
    run.ended = run.started.addSecs(3725);
    run.result.refused = true;
    run.result.refusal = str("Kohteen ALV -luokan on oltava > 0!");
    run.logName = shop.file(str("ALVMUUTOS.LOG"));
    test::writeFile(run.logName, "01.09.2024 06:30:00@KONE  Aloitetaan taksavaihe\n");
    run.logTo = QFileInfo(run.logName).size();
    report.lastRun = run;
    const framework::Report made = changeReport(shop.database(), report);
    EXPECT_EQ(made.headLeft, report.company);
    expectParts(made.html, {"kesto 1 h 2 min", "Muutosta ei tehty", "oltava &gt; 0!",
                            "06:30:00@KONE  Aloitetaan taksavaihe"});
}

TEST(LogExcerpt, HoldsTheLinesOfTheRangeAndIsBounded) {
    using vatchange::LogExcerpt;
    const test::CompanyFolder company;
    const QString log = company.file(str("loki"));
    QByteArray bytes = "ennen ajoa\n";
    const qint64 from = bytes.size();
    for (int i = 1; i <= 100000; ++i)
        bytes += "rivi " + QByteArray::number(i) + '\n';
    test::writeFile(log, bytes + "ajon jälkeen\n");
    const LogExcerpt excerpt = vatchange::readLog(log, from, bytes.size());
    EXPECT_EQ(excerpt.problem, QString());
    EXPECT_EQ(excerpt.first.size(), LogExcerpt::kFirstLines);
    EXPECT_EQ(excerpt.first.first(), str("rivi 1"));
    EXPECT_EQ(excerpt.last.size(), LogExcerpt::kLastLines);
    EXPECT_EQ(excerpt.last.last(), str("rivi 100000"));
    EXPECT_EQ(excerpt.leftOut, 100000 - LogExcerpt::kFirstLines - LogExcerpt::kLastLines);
    test::writeFile(log, "lyhyt");
    EXPECT_FALSE(vatchange::readLog(log, from, bytes.size()).problem.isEmpty());
    QFile::remove(log);
    EXPECT_FALSE(vatchange::readLog(log, 0, -1).problem.isEmpty());
}

int pagesOf(const QString& html, const QString& file) {
    framework::writePdf({html, {}, {}, {}}, file);
    static const QRegularExpression kPage(str("/Type /Page\\b"));
    return static_cast<int>(QString::fromLatin1(test::fileBytes(file)).count(kPage));
}

// A heading at any height of the page; a page holds about 85 lines.
TEST(Pdf, ContentAfterAMovedHeadingIsComplete) {
    test::CompanyFolder company;
    for (int before = 40; before <= 60; ++before) {
        vatchange::ReportHtml html;
        for (int i = 0; i < before; ++i)
            html.row(QString::number(i), str("x"));
        html.section(str("Otsikko"));
        html.beginTable({str("Mitä"), str("Rivejä")}, 1);
        html.tableRow({str("a"), str("1")});
        html.section(str("Toinen"));
        for (int i = 0; i < 400; ++i)
            html.logLine(str("rivi"));
        EXPECT_GE(pagesOf(html.take(), company.file(str("raportti.pdf"))), 5) << before;
    }
}

TEST(Pdf, LongTablesContinueOnTheNextPage) {
    test::CompanyFolder company;
    vatchange::ReportHtml html;
    html.beginTable({str("Mitä"), str("Rivejä")}, 1);
    for (int i = 0; i < 320; ++i)
        html.tableRow({QString::number(i), str("x")});
    const int pages = pagesOf(html.take(), company.file(str("raportti.pdf")));
    EXPECT_GE(pages, 4);
    EXPECT_LE(pages, 8);
    EXPECT_THROW(framework::writePdf({}, company.file(str("puuttuu/x.pdf"))), data::DataError);
    EXPECT_EQ(framework::pdfFileName(str("Alv 24/25,5: \"A\"")), str("Alv 24-25,5- -A-.pdf"));
}

using FormReport = test::FormTest;

TEST_F(FormReport, IsSavedAsPdfAndMailed) {
    const QString saved = m_shop.file(str("raportti.pdf"));
    m_dialogs.expectFileChoice(saved);
    m_form->Pdf->click();
    EXPECT_TRUE(test::fileBytes(saved).startsWith("%PDF"));

    test::RecordedDesktop desktop;
    m_form->Sahkoposti->click();
    const QString file = desktop.arguments.value(desktop.arguments.indexOf(str("--attach")) + 1);
    EXPECT_TRUE(test::fileBytes(file).startsWith("%PDF")) << file.toStdString();
    EXPECT_TRUE(desktop.opened.isEmpty());

    desktop.outcome = framework::Desktop::Outcome::Failed;
    for (const bool opens : {true, false}) {
        desktop.opens = opens;
        m_dialogs.expectAnyMessage();
        m_form->Sahkoposti->click();
        EXPECT_EQ(m_dialogs.lastKind(),
                  opens ? framework::MessageKind::Information : framework::MessageKind::Error);
    }
    ASSERT_EQ(desktop.opened.size(), 3);
    EXPECT_EQ(desktop.opened[0].scheme(), str("mailto"));
    EXPECT_TRUE(desktop.opened[0].toString(QUrl::FullyDecoded).contains(str(".pdf")));
    EXPECT_TRUE(desktop.opened[1].isLocalFile());
    EXPECT_TRUE(m_dialogs.lastText().contains(str(".pdf")));
}

TEST_F(FormReport, TheManualExplainsEveryControlOfTheForm) {
    const auto& manual = framework::HelpManual::compiledIn();
    int explained = 0;
    const QStringList fields = vatchange::encodeDefinition({}).keys();
    for (const QWidget* control : m_form->findChildren<QWidget*>()) {
        const bool value = fields.contains(control->objectName());
        const bool button = qobject_cast<const QAbstractButton*>(control) != nullptr;
        if ((!value && !button) || control->objectName().isEmpty() ||
            control->objectName().startsWith(str("qt_")))
            continue;
        ++explained;
        EXPECT_TRUE(manual.names().contains(control->objectName()))
            << control->objectName().toStdString();
    }
    EXPECT_GT(explained, 70);
    EXPECT_EQ(manual.sectionOf(c().coefficient(3)), str("hintojen-muutoskertoimet"));
}

}  // namespace
