// Changes of real runs, read from the journal.
#include <QBuffer>
#include <QTemporaryDir>
#include <algorithm>
#include <set>

#include "data/record/record_codec.h"
#include "tests/faults/full_company.h"
#include "vatchange/changes/change_exports.h"
#include "vatchange/changes/change_overview.h"
#include "vatchange/changes/change_reader.h"
#include "vatchange/changes/change_texts.h"
#include "vatchange/journal/ignored_changes.h"
#include "vatchange/journal/record_fields.h"
#include "vatchange/journal/undo.h"

using namespace vatchange;

namespace {

/// "product TABLE key field before>after | findings" of the rows of a view.
QStringList textsOf(const ChangeList& list, const ChangeView& view) {
    QStringList texts;
    for (int place = 0; place < view.count(); ++place) {
        const int row = view.row(place);
        const ChangeList::Record record = list.record(list.recordIndex(row));
        const QString product =
            list.productOf(row) < 0 ? QStringLiteral("-") : list.productNumber(list.productOf(row));
        texts += QStringLiteral("%1 %2 %3 %4 %5>%6 | %7")
                     .arg(product, list.tables()[record.table], record.key,
                          list.field(row).field.toUpper(), list.beforeText(row),
                          list.afterText(row), findingsShown(list, row));
    }
    return texts;
}

QStringList rowsWith(const ChangeList& list, ChangeFinding finding) {
    ChangeView view(list);
    ChangeFilter filter;
    filter.findings = bitOf(finding);
    view.setFilter(filter);
    return textsOf(list, view);
}

ChangeList listOf(data::Database& database, qint64 run) {
    ChangeList list;
    EXPECT_TRUE(ChangeReader(database, {run}, list).readAll());
    return list;
}

class ChangeListTest : public testing::Test {
  protected:
    // Level 1 by 1.5, level 2 from level 1; prices below 0.50 stay.
    ChangeListTest() {
        for (const char* sql :
             {"insert into TUOTE (NUMERO, NIMI, RYHMA, LVV, HINTA, KAKSOISHINTA) values "
              "('a', 'Ruuvi; \"iso\"', 1, 3, 10, 4), ('b', '=1+1', 1, 3, 0.4, 0), "
              "('c', 'Äes', 1, 3, 0, 3), ('d', 'Muu', 9, 3, 7, 0)",
              "insert into MT (Numero, Toimitustila, Veloitustapa, Toimituspaiva) values "
              "(1, 1, 0, '2024-09-02'), (2, 1, 14, '2024-09-02'), (3, 1, 0, '2024-08-30')",
              "insert into MTRIVI (TilausNro, RiviNro, Tuote, Verokanta, Maara, Toimitettava, "
              "ToimitettuYhteensa, Ahinta) values (1, 1, 'a', 3, 3, 2, 1, 10), "
              "(1, 2, 'a', 3, 1, 1, 0, 20), (2, 1, 'a', 3, 1, 1, 0, 10), "
              "(3, 1, 'b', 3, 1, 1, 0, 10), (3, 2, 'b', 3, 1, 0, 1, 10)"})
            company.exec(QString::fromUtf8(sql));
        definition.sourceClass = 3;
        definition.targetClass = 6;
        definition.levels[0] = {1.5, QStringLiteral("hinta"), false};
        definition.levels[1] = {1.5, QStringLiteral("hinta"), false};
        definition.priceChangeLimit = 0.5;
        definition.salesOrderCoefficient = 1.5;
        definition.salesOrders = true;
        definition.writeShelfLabels = false;
        definition.productGroup = {true, 1, 5, {}};
        test::RecordingPorts ports;
        run = runChange(company.database(), definition, ports).run;
    }

    test::TestCompany company{{{3, 24}, {6, 25.5}}};
    ChangeDefinition definition;
    qint64 run = 0;
};

}  // namespace

TEST_F(ChangeListTest, FindingsOfARunAfterItsDatabaseIsClosed) {
    auto database = company.otherProgram();
    const ChangeList list = listOf(*database, run);
    database.reset();

    EXPECT_EQ(rowsWith(list, ChangeFinding::FarFromExpected),
              (QStringList{"a TUOTE a KAKSOISHINTA 4>15 | Poikkeaa odotetusta",
                           "b TUOTE b KAKSOISHINTA 0>0.4 | Poikkeaa odotetusta",
                           "c TUOTE c KAKSOISHINTA 3>0 | Poikkeaa odotetusta; Nolla tai "
                           "negatiivinen"}));
    EXPECT_EQ(rowsWith(list, ChangeFinding::NotPositive),
              (QStringList{"c TUOTE c KAKSOISHINTA 3>0 | Poikkeaa odotetusta; Nolla tai "
                           "negatiivinen",
                           "c TUOTE c HINTA 0>0 | Nolla tai negatiivinen"}));
    EXPECT_EQ(rowsWith(list, ChangeFinding::PriceUnchanged),
              QStringList{"b TUOTE b HINTA 0.4>0.4 | hinta ennallaan: hinnan muutosraja"});
    EXPECT_EQ(rowsWith(list, ChangeFinding::OrderAtRisk),
              (QStringList{"a MTRIVI 1 1 AHINTA 10>15 | osa tilauksesta toimitettu",
                           "b MTRIVI 3 1 AHINTA 10>15 | toimitus 30.8.2024 ennen muutospäivää"}));
    EXPECT_EQ(rowsWith(list, ChangeFinding::OrderPassedOver),
              QStringList{"a MTRIVI 2 1 VEROKANTA 3>3 | tilaus ohitettu: veloitustapa 14"});
    EXPECT_EQ(rowsWith(list, ChangeFinding::LeftBehind),
              (QStringList{"d TUOTE d LVV 3>3 | vanha alv-luokka jäi: rajaus",
                           "a MTRIVI 2 1 VEROKANTA 3>3 | tilaus ohitettu: veloitustapa 14",
                           "b MTRIVI 3 2 VEROKANTA 3>3 | vanha alv-luokka jäi: ei kuulu "
                           "muunnokseen"}));
    EXPECT_EQ(rowsWith(list, ChangeFinding::LevelOrder), QStringList());
}

TEST_F(ChangeListTest, FiltersAndOrders) {
    const ChangeList list = listOf(company.database(), run);
    ChangeView view(list);
    ChangeFilter filter;
    filter.table = static_cast<int>(list.tables().indexOf("TUOTE"));
    filter.level = 2;
    ASSERT_TRUE(view.setFilter(filter));
    // a price that was 0 has no percent, and comes last in either order
    ASSERT_TRUE(view.sort(ChangeColumn::Percent, Qt::DescendingOrder));
    EXPECT_EQ(textsOf(list, view).replaceInStrings(QRegularExpression(" \\|.*"), ""),
              (QStringList{"a TUOTE a KAKSOISHINTA 4>15", "c TUOTE c KAKSOISHINTA 3>0",
                           "b TUOTE b KAKSOISHINTA 0>0.4"}));
    EXPECT_NEAR(list.percent(view.row(0)).value(), 275.0, 1e-9);
    ASSERT_TRUE(view.sort(ChangeColumn::Name, Qt::DescendingOrder));
    EXPECT_EQ(list.productName(list.productOf(view.row(0))), "Äes");  // å, ä, ö come after z

    // words of number, name, key and field; all of them
    filter = {};
    filter.text = QStringLiteral("RUUVI taso");
    ASSERT_TRUE(view.setFilter(filter));
    EXPECT_EQ(view.count(), 2);
    filter.text = QStringLiteral("\"iso\" 1 luokka");  // rows 1 1, 1 2 and 2 1 of the orders
    ASSERT_TRUE(view.setFilter(filter));
    EXPECT_EQ(view.count(), 3);
    EXPECT_FALSE(view.setFilter({}, [](double) { return false; }));
    EXPECT_EQ(view.count(), 3);  // cancelled: as before
    view.unsort();
}

TEST_F(ChangeListTest, FilesForPeopleAndPrograms) {
    ChangeList list = listOf(company.database(), run);
    const auto priceList = [&](PriceListForm form) {
        QBuffer file;
        file.open(QIODevice::WriteOnly);
        writePriceList(list, form, file);
        EXPECT_TRUE(file.data().startsWith("\xEF\xBB\xBF"));
        return QString::fromUtf8(file.data()).split("\r\n");
    };
    EXPECT_EQ(priceList(PriceListForm::Prices),
              (QStringList{"Tuotenumero;Nimi;Taso;Vanha hinta;Uusi hinta",
                           "a;\"Ruuvi; \"\"iso\"\"\";1;10,00;15,00",
                           "a;\"Ruuvi; \"\"iso\"\"\";2;4,00;15,00", "b;=1+1;2;0,00;0,40",
                           "c;Äes;2;3,00;0,00", ""}));
    EXPECT_EQ(priceList(PriceListForm::Products).value(2), "b;=1+1;;;0,00;0,40;;;;;;;;;;;;;;");

    ChangeView view(list);
    ChangeFilter filter;
    filter.level = 2;
    view.setFilter(filter);
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    ASSERT_TRUE(writeSpreadsheet(list, view, file));
    const QStringList lines = QString::fromUtf8(file.data()).split("\r\n");
    EXPECT_EQ(lines.value(0),
              "Ajo;Tuote;Nimi;Taulu;Avain;Taso tai kenttä;Ennen;Jälkeen;"
              "Muutos;Muutos %;Havainto");
    EXPECT_EQ(lines.value(1),
              "1;a;\"Ruuvi; \"\"iso\"\"\";Tuotteet;a;Taso 2;4;15;11,00;275,00;"
              "Poikkeaa odotetusta");
    EXPECT_EQ(lines.value(2), "1;b;'=1+1;Tuotteet;b;Taso 2;0;0,4;0,40;;Poikkeaa odotetusta");

    // what has been taken back is in no price list
    struct Quiet : UndoPorts {
        void log(const QString&) override {}
        void conflict(const UndoConflict&) override {}
    } quiet;
    UndoOptions options;
    options.scope.records = {{"TUOTE", "a"}, {"TUOTE", "c"}};
    EXPECT_TRUE(undoRun(company.database(), run, options, quiet).clean());
    EXPECT_EQ(company.text("select hinta, kaksoishinta, lvv from TUOTE where NUMERO = 'a'"),
              "10|4|3");
    EXPECT_EQ(company.number("select kaksoishinta from TUOTE where NUMERO = 'b'"), 0.4);
    EXPECT_EQ(company.database().journal()->run(run)->state, data::RunState::PartlyUndone);
    list = listOf(company.database(), run);
    EXPECT_EQ(priceList(PriceListForm::Prices).value(1), "b;=1+1;2;0,00;0,40");
    EXPECT_EQ(list.findingCount(ChangeFinding::Undone), 3 + 2);  // fields of a and c
}

namespace {

/// What differs between two states of a company, a text for each field; dates of change left out,
/// and the byte of the web shop flag, which is shown flag by flag.
std::multiset<QString> differences(data::Database& database, const test::Records& before,
                                   const test::Records& after) {
    std::multiset<QString> texts;
    for (const auto& [table, records] : after) {
        const auto file = database.openTable(table);
        for (const auto& [id, record] : records) {
            const auto old = before.at(table).find(id);
            if (old == before.at(table).end()) {
                texts.insert(QStringLiteral("%1 %2 new").arg(table).arg(id));
                continue;
            }
            for (const data::TFieldCacheItem& field : file->layout().fields()) {
                const QString was = textOf(field, old->second);
                const QString is = textOf(field, record);
                if (was != is && !isChangeDate(table, field.name) && field.name != "Bit5")
                    texts.insert(QStringLiteral("%1 %2 %3 %4>%5")
                                     .arg(table)
                                     .arg(id)
                                     .arg(field.name, was, is));
            }
        }
    }
    return texts;
}

}  // namespace

// The list holds every difference between the company before and after a run, once, also of a run
// that was stopped and resumed and changed records twice; its means are those of verification.
TEST(ChangeListOfARun, IsWhatTheRunDidToTheCompany) {
    for (const int stopAfter : {-1, 25, 60}) {
        const QTemporaryDir folder;
        test::makeFullCompany(folder.path(), {12, 4});
        test::useCompany(folder.path());
        const test::Records before = test::readCompany(folder.path());
        const auto database = test::openCompany(folder.path());
        test::LoggingPorts ports;
        int polls = 0;
        ports.stop = [&] { return stopAfter >= 0 && ++polls > stopAfter; };
        RunResult result = test::runOrResume(*database, ports);
        EXPECT_EQ(result.cancelled, stopAfter >= 0);
        if (result.cancelled) {
            ports.stop = {};
            result = test::runOrResume(*database, ports);
        }
        ASSERT_TRUE(result.clean());

        const ChangeList list = listOf(*database, result.run);
        std::multiset<QString> listed;
        for (int row = 0; row < list.rowCount(); ++row) {
            const ChangeList::Record record = list.record(list.recordIndex(row));
            const QString place =
                QStringLiteral("%1 %2 ").arg(list.tables()[record.table]).arg(record.id);
            if (list.kind(row) == ChangeKind::Inserted)
                listed.insert(place + QStringLiteral("new"));
            else if (list.kind(row) == ChangeKind::Field && list.before(row) != list.after(row))
                listed.insert(place + list.field(row).field + u' ' + list.beforeText(row) + u'>' +
                              list.afterText(row));
        }
        std::multiset<QString> expected =
            differences(*database, before, test::readCompany(folder.path()));
        std::vector<QString> wrong;
        std::set_symmetric_difference(listed.begin(), listed.end(), expected.begin(),
                                      expected.end(), std::back_inserter(wrong));
        EXPECT_EQ(wrong, std::vector<QString>());
        EXPECT_EQ(list.findingCount(ChangeFinding::FarFromExpected), 0);
        EXPECT_EQ(list.findingCount(ChangeFinding::ChangedSince), 0);

        const Verification verification = verifyRun(*database, result.run);
        size_t compared = 0;
        for (const ChangedPrices& price : overviewOf(list).prices) {
            const QString field = list.fields()[static_cast<size_t>(price.field)].field;
            for (const PriceSums& sums : verification.sums) {
                if (sums.table != price.table || sums.field != field)
                    continue;
                EXPECT_EQ(price.count, sums.count) << field.toStdString();
                EXPECT_NEAR(price.meanPercent, sums.meanPercent, 1e-9) << field.toStdString();
                ++compared;
            }
        }
        EXPECT_GE(compared, 8U);
    }
}
