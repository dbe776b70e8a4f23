#include "data/record/filter.h"

#include "data/record/record_codec.h"
#include "tests/data/table_fixture.h"

namespace {

using namespace data;

// The record that the conditions below are asked of.
class FilterTest : public ::testing::Test {
  protected:
    FilterTest() : m_layout(m_source.name, m_source.fields, m_source.span()) {
        m_record = QByteArray(m_layout.recordLength(), '\0');
        const std::vector<std::pair<const char*, Value>> values{
            {"Nro", 34},
            {"Ryhma", -5},
            {"Nimi", QStringLiteral("Åland öl  ")},
            {"Hinta", 12.5},
            {"Prosentti", 0.1},
            {"Pvm", QDate(2024, 9, 1)},
            {"Passiivinen", true},
            {"Kello", QTime(12, 30)},
            {"Muutettu", QDateTime(QDate(2024, 8, 31), QTime(15, 0))},
            {"Huom", QStringLiteral("O'Hara")},
            {"Tarkka", 0.1},
        };
        for (const auto& [name, value] : values)
            set(name, value);
    }

    void set(const char* name, const Value& value) {
        writeValue(m_layout.field(m_layout.indexOf(QString::fromUtf8(name))),
                   reinterpret_cast<uchar*>(m_record.data()), value, m_layout.tableName());
    }
    bool accepts(const QString& expression) const {
        return Filter(expression, m_layout).accepts(m_record);
    }

    TableSource m_source = test::koeSource();
    RecordLayout m_layout;
    QByteArray m_record;
};

TEST_F(FilterTest, Conditions) {
    const std::vector<std::pair<const char*, bool>> cases{
        {"", true},
        {"  \n ", true},
        // numbers
        {"nro=34", true},
        {"NRO <> 34", false},
        {"nro>=34 and nro<=34", true},
        {"nro < 34.5", true},
        {"nro > 33,9", true},
        {"nro = +34", true},
        {"nro = '34'", true},
        {"ryhma = -5", true},
        {"ryhma < -5,0", false},
        {"nro < 99999999999999999999", true},
        {"hinta=12,5", true},
        {"hinta = '12.5'", true},
        {"prosentti = 0.1", true},
        {"prosentti < 0.1", false},
        {"tarkka = ,1", true},
        {"prosentti < 1000000000000000000000000000000000000000000000000", true},
        // texts
        {"nimi = 'åLAND ÖL'", true},
        {"nimi = 'aland ol'", false},
        {"nimi = 'Åland öl   '", true},
        {"nimi = 'Ål*'", true},
        {"nimi <> 'ål*'", false},
        {"nimi = 'Åland öl, iso*'", false},
        {"nimi = '*'", true},
        {"nimi = 'and*'", false},
        {"nimi > 'Zorro'", true},
        {"nimi < 'ä'", true},
        {"nimi < 'ö'", true},
        {"nimi >= 'å*'", true},
        {"nimi > 'å*'", false},
        {"nimi > 'å'", true},
        {"nimi <= 'ål*'", true},
        {"nimi = 'Ωmega'", false},
        {"nimi <> 'Ωmega'", true},
        {"nimi < 'Ω'", true},
        {"huom = 'o''hara'", true},
        {"huom = ''", false},
        {"huom = 34", false},
        // dates and times
        {"pvm = '2024-09-01'", true},
        {"pvm = '20240901'", true},
        {"pvm >= '1.9.2024'", true},
        {"pvm < '01.09.2024'", false},
        {"pvm > ''", true},
        {"pvm = ''", false},
        {"kello >= '12:30'", true},
        {"kello < '12:30:01'", true},
        {"muutettu = '2024-08-31'", true},
        {"muutettu > '2024-08-31 14:59:59'", true},
        {"muutettu > '31.8.2024 15:00:00'", false},
        // booleans
        {"passiivinen", true},
        {"passiivinen = true", true},
        {"Passiivinen = FALSE", false},
        {"passiivinen <> 0", true},
        {"passiivinen = 'K'", true},
        // and binds stronger than or, not stronger than both
        {"nro=34 or nro=1 and hinta=0", true},
        {"(nro=34 or nro=1) and hinta=0", false},
        {"nro=1 and nro=2 or nro=34", true},
        {"not nro=1 and nro=34", true},
        {"not (nro=34 or nro=1)", false},
        {"NOT NOT passiivinen", true},
        {"passiivinen AND ( nro=34 )and(hinta>12)", true},
        {"nro='1' or nro='34' or nro='35' ", true},
    };
    for (const auto& [expression, expected] : cases)
        EXPECT_EQ(accepts(QString::fromUtf8(expression)), expected) << expression;
}

TEST_F(FilterTest, EmptyValues) {
    set("Pvm", QDate());
    set("Nimi", QString());
    EXPECT_TRUE(accepts(QStringLiteral("pvm = '' and pvm < '1.1.1900' and nimi = ''")));
    EXPECT_FALSE(accepts(QStringLiteral("nimi = 'a*' or nimi > '*'")));
}

TEST_F(FilterTest, MalformedExpressionsShowThePlace) {
    struct Case {
        const char* expression;
        int column;
        const char* expected;
    };
    const std::vector<Case> cases{
        {"nro", 4, "odotettiin vertailua"},
        {"nro 34", 5, "odotettiin vertailua"},
        {"nro =", 6, "odotettiin arvoa"},
        {"nro => 3", 6, "odotettiin arvoa"},
        {"nro = = 3", 7, "odotettiin arvoa"},
        {"nro = hinta", 7, "odotettiin arvoa"},
        {"nro = 1.2.3", 7, "odotettiin lukua"},
        {"nro = 12kpl", 7, "odotettiin lukua"},
        {"nro = -", 7, "odotettiin lukua"},
        {"nro = 'kaksi'", 7, "odotettiin lukua"},
        {"nro = ''", 7, "odotettiin lukua"},
        {"nimi = 'auki", 8, "lainausmerkin"},
        {"nimi = 'auki''", 8, "lainausmerkin"},
        {"(nro = 1", 9, "odotettiin sulkua )"},
        {"nro = 1)", 8, "lausekkeen loppua"},
        {"nro = 1 nro = 2", 9, "lausekkeen loppua"},
        {"nro = 1 and", 12, "odotettiin kentän nimeä"},
        {"and nro = 1", 1, "odotettiin kentän nimeä"},
        {"nro = 1 and or nro = 2", 13, "odotettiin kentän nimeä"},
        {"()", 2, "odotettiin kentän nimeä"},
        {"not", 4, "odotettiin kentän nimeä"},
        {"'x' = nimi", 1, "odotettiin kentän nimeä"},
        {"nro = 1 & nro = 2", 9, "merkki \"&\""},
        {"pvm = '2024-02-30'", 7, "odotettiin päiväystä"},
        {"pvm = 'eilen'", 7, "odotettiin päiväystä"},
        {"pvm = '2024-09-01 12:00'", 7, "odotettiin päiväystä"},
        {"kello = '25:00'", 9, "odotettiin kellonaikaa"},
        {"passiivinen = 2", 15, "odotettiin true tai false"},
        {"passiivinen > true", 15, "totuusarvoa"},
    };
    for (const Case& c : cases) {
        QString detail;
        EXPECT_EQ(test::errorOf([&] { accepts(QString::fromUtf8(c.expression)); }, &detail),
                  ErrorKind::Syntax)
            << c.expression;
        EXPECT_TRUE(detail.startsWith(QStringLiteral("kohta %1: ").arg(c.column)) &&
                    detail.contains(QString::fromUtf8(c.expected)))
            << c.expression << " -> " << detail.toStdString();
    }
    QString detail;
    EXPECT_EQ(test::errorOf([&] { accepts(QStringLiteral("nro=1 or hintta=2")); }, &detail),
              ErrorKind::NoSuchField);
    EXPECT_EQ(detail, QStringLiteral("hintta (kohta 10)"));
}

TEST_F(FilterTest, DepthIsBoundedAndLengthIsNot) {
    const auto nested = [](int depth) {
        return QString(depth, QLatin1Char('(')) + QStringLiteral("nro=34") +
               QString(depth, QLatin1Char(')'));
    };
    EXPECT_TRUE(accepts(nested(150)));
    EXPECT_EQ(test::errorOf([&] { accepts(nested(100000)); }), ErrorKind::Syntax);
    EXPECT_EQ(test::errorOf([&] { accepts(QStringLiteral("not ").repeated(100000)); }),
              ErrorKind::Syntax);
    // One term for each matching row of a looked-up table.
    EXPECT_TRUE(accepts(QStringLiteral("nro='1' or ").repeated(50000) + QStringLiteral("nro=34")));
    EXPECT_TRUE(
        accepts(QStringLiteral("(nro=34) and ").repeated(50000) + QStringLiteral("nro=34")));
}

}  // namespace
