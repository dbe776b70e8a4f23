#include "vatchange/run/webshop_mark_writer.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include "framework/core/settings_table.h"
#include "tests/support/test_company.h"

using test::str;
using vatchange::WebShopMarkWriter;

namespace {

class WebShopMarkTest : public ::testing::Test {
  protected:
    WebShopMarkTest() { m_company.setNow(QDateTime(QDate(2024, 9, 1), QTime(3, 4, 5, 670))); }

    /// Rows of a key in the order in which they were written.
    QString rows(const QString& key) {
        data::TtbTable table;
        company::openCompanyTable(table, str("WEBKLIITOS"));
        QString text;
        for (table.setRange({str("TUOTE"), key}, {str("TUOTE"), key}); !table.eof(); table.next()) {
            for (const auto& field : table.fields())
                text += field->asString() + u'|';
            text += u' ';
        }
        return text;
    }

    test::TestCompany m_company{{}};
    QStringList m_reports;
    WebShopMarkWriter::Report m_report = [this](const QString& text) { m_reports.append(text); };
};

TEST_F(WebShopMarkTest, LetterDependsOnThePendingMark) {
    const std::pair<const char*, const char*> cases[] = {
        // letters asked for, letters stored
        {"M", "M"},   {"MM", "MM"}, {"LM", "LL"},   {"LMM", "LLL"}, {"LP", "LP"},
        {"PM", "PM"}, {"PL", "PL"}, {"MPL", "MPL"}, {"LPM", "LPM"}, {"ML", "ML"},
    };
    WebShopMarkWriter writer(company::companyDatabase());
    for (const auto& [asked, stored] : cases) {
        for (const QChar letter : str(asked))
            writer.mark(str("TUOTE"), str(asked), letter, m_report);
        QString found;
        const QStringList written = rows(str(asked)).split(u' ', Qt::SkipEmptyParts);
        for (const QString& row : written)
            found += row.split(u'|').at(2);
        EXPECT_EQ(found, str(stored)) << asked;
    }
    EXPECT_TRUE(m_reports.isEmpty());
}

TEST_F(WebShopMarkTest, ReportsAFailureAndWritesTheNextMark) {
    WebShopMarkWriter writer(company::companyDatabase());
    writer.mark(str("TUOTE"), QString(81, u'x'), u'M', m_report);
    writer.mark(str("TUOTE"), str("Ω"), u'M', m_report);
    ASSERT_EQ(m_reports.size(), 2);
    for (const QString& report : m_reports) {
        EXPECT_TRUE(report.startsWith(str("VIRHE: TryPost -> "))) << report.toStdString();
        EXPECT_TRUE(report.endsWith(u' '));
    }
    writer.mark(str("TUOTE"), str("x"), u'M', m_report);
    EXPECT_EQ(m_reports.size(), 2);
    EXPECT_EQ(rows(str("x")).count(u' '), 1);
}

TEST_F(WebShopMarkTest, WritesTheLogWhenEnabled) {
    m_company.exec(str("insert into ini values ('ZAV.INI', 'VERKKOKAUPPA', 'Loki', '1')"));
    m_company.exec(str("insert into ini values ('MUU.INI', 'VERKKOKAUPPA', 'Loki', '0')"));
    WebShopMarkWriter writer(company::companyDatabase());
    writer.mark(str("TUOTE"), str("a%1b"), u'P', m_report);
    const QString log = QString::fromUtf8(test::fileBytes(m_company.file(str("WEBKAUPPA.LOG"))));
    EXPECT_TRUE(log.startsWith(str("01.09.2024 03:04:05@"))) << log.toStdString();
    EXPECT_TRUE(log.trimmed().endsWith(
        str("  WebkauppaMuutospyyntö:   Taulu: |TUOTE|    Tyyppi: |P|    Tunnus: |a%1b|")))
        << log.toStdString();
}

TEST_F(WebShopMarkTest, SettingsTableValues) {
    data::Database& database = company::companyDatabase();
    m_company.exec(str("insert into ini values ('ZAV.INI', 'HAKU', 'O''Hara', 'ä')"));
    m_company.exec(str("insert into ini values ('ZAV.INI', 'HAKU', 'tyhjä', '')"));
    EXPECT_EQ(framework::zavIniValue(database, str("HAKU"), str("O'Hara"), str("x")), str("ä"));
    EXPECT_EQ(framework::zavIniValue(database, str("HAKU"), str("tyhjä"), str("x")), QString());
    EXPECT_EQ(framework::zavIniValue(database, str("HAKU"), str("puuttuu"), str("x")), str("x"));
}

}  // namespace
