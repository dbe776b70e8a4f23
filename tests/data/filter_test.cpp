#include "data/record/filter.h"

#include "data/record/record_codec.h"
#include "tests/data/table_fixture.h"

namespace {

using namespace data;

// The record that the conditions below are tested on.
class FilterTest : public ::testing::Test {
  protected:
    FilterTest() : m_layout(m_source.name, m_source.fields, m_source.span()) {
        m_record = QByteArray(m_layout.recordLength(), '\0');
        const std::vector<std::pair<const char*, Value>> values{
            {"Nro", 34},
            {"Ryhma", -5},
            {"Nimi", QString("Åland öl  ")},
            {"Hinta", 12.5},
            {"Prosentti", 0.1},
            {"Pvm", QDate(2024, 9, 1)},
            {"Passiivinen", true},
            {"Kello", QTime(12, 30)},
            {"Muutettu", QDateTime(QDate(2024, 8, 31), QTime(15, 0))},
            {"Huom", QString("O'Hara")},
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
    // "and" binds more strongly than "or", "not" more strongly than both.
    const QString holding =
        "|  \n |nro=34|nro>=34 and nro<=34|nro < 34.5|nro > 33,9|nro = +34|nro = '34'|"
        "ryhma = -5|nro < 99999999999999999999|hinta=12,5|hinta = '12.5'|prosentti = 0.1|"
        "tarkka = ,1|prosentti < 1000000000000000000000000000000000000000000000000|"
        "nimi = 'åLAND ÖL'|nimi = 'Åland öl   '|nimi = 'Ål*'|nimi = '*'|nimi > 'Zorro'|"
        "nimi < 'ä'|nimi < 'ö'|nimi >= 'å*'|nimi > 'å'|nimi <= 'ål*'|nimi <> 'Ωmega'|"
        "nimi < 'Ω'|huom = 'o''hara'|pvm = '2024-09-01'|pvm = '20240901'|pvm >= '1.9.2024'|"
        "pvm > ''|kello >= '12:30'|kello < '12:30:01'|muutettu = '2024-08-31'|"
        "muutettu > '2024-08-31 14:59:59'|passiivinen|passiivinen = true|passiivinen <> 0|"
        "passiivinen = 'K'|nro=34 or nro=1 and hinta=0|nro=1 and nro=2 or nro=34|"
        "not nro=1 and nro=34|NOT NOT passiivinen|passiivinen AND ( nro=34 )and(hinta>12)|"
        "nro='1' or nro='34' or nro='35' ";
    for (const QString& expression : holding.split(u'|'))
        EXPECT_TRUE(accepts(expression)) << expression.toStdString();
    const QString others =
        "NRO <> 34|ryhma < -5,0|prosentti < 0.1|nimi = 'aland ol'|nimi <> 'ål*'|"
        "nimi = 'Åland öl, iso*'|nimi = 'and*'|nimi > 'å*'|nimi = 'Ωmega'|huom = ''|"
        "huom = 34|pvm < '01.09.2024'|pvm = ''|muutettu > '31.8.2024 15:00:00'|"
        "Passiivinen = FALSE|(nro=34 or nro=1) and hinta=0|not (nro=34 or nro=1)";
    for (const QString& expression : others.split(u'|'))
        EXPECT_FALSE(accepts(expression)) << expression.toStdString();
}

TEST_F(FilterTest, EmptyValues) {
    set("Pvm", QDate());
    set("Nimi", QString());
    EXPECT_TRUE(accepts("pvm = '' and pvm < '1.1.1900' and nimi = ''"));
    EXPECT_FALSE(accepts("nimi = 'a*' or nimi > '*'"));
}

TEST_F(FilterTest, MalformedExpressionsShowThePlace) {
    // Words of the error; columns and expressions.
    const std::map<const char*, const char*> cases{
        {"odotettiin vertailua", "4~nro|5~nro 34"},
        {"odotettiin arvoa", "6~nro =|6~nro => 3|7~nro = = 3|7~nro = hinta"},
        {"odotettiin lukua", "7~nro = 1.2.3|7~nro = 12kpl|7~nro = -|7~nro = 'kaksi'|7~nro = ''"},
        {"lainausmerkin", "8~nimi = 'auki|8~nimi = 'auki''"},
        {"odotettiin sulkua )", "9~(nro = 1"},
        {"lausekkeen loppua", "8~nro = 1)|9~nro = 1 nro = 2"},
        {"odotettiin kentän nimeä",
         "12~nro = 1 and|1~and nro = 1|13~nro = 1 and or nro = 2|2~()|4~not|1~'x' = nimi"},
        {"merkki \"&\"", "9~nro = 1 & nro = 2"},
        {"odotettiin päiväystä", "7~pvm = '2024-02-30'|7~pvm = 'eilen'|7~pvm = '2024-09-01 12:00'"},
        {"odotettiin kellonaikaa", "9~kello = '25:00'"},
        {"odotettiin true tai false", "15~passiivinen = 2"},
        {"totuusarvoa", "15~passiivinen > true"}};
    QString detail;
    for (const auto& [expected, places] : cases)
        for (const QString& place : QString(places).split(u'|')) {
            EXPECT_EQ(test::errorOf([&] { accepts(place.section('~', 1)); }, &detail),
                      ErrorKind::Syntax);
            EXPECT_TRUE(detail.startsWith("kohta " + place.section('~', 0, 0) + ": ") &&
                        detail.contains(expected))
                << place.toStdString() << " -> " << detail.toStdString();
        }
    EXPECT_EQ(test::errorOf([&] { accepts("nro=1 or hintta=2"); }, &detail),
              ErrorKind::NoSuchField);
    EXPECT_EQ(detail, "hintta (kohta 10)");
}

TEST_F(FilterTest, DepthIsBoundedAndLengthIsNot) {
    const auto nested = [](int depth) {
        return QString(depth, QLatin1Char('(')) + "nro=34" + QString(depth, QLatin1Char(')'));
    };
    EXPECT_TRUE(accepts(nested(150)));
    EXPECT_EQ(test::errorOf([&] { accepts(nested(100000)); }), ErrorKind::Syntax);
    EXPECT_EQ(test::errorOf([&] { accepts(QString("not ").repeated(100000)); }), ErrorKind::Syntax);
    // One term for each matching row of a looked-up table.
    EXPECT_TRUE(accepts(QString("nro='1' or ").repeated(50000) + "nro=34"));
    EXPECT_TRUE(accepts(QString("(nro=34) and ").repeated(50000) + "nro=34"));
}

}  // namespace
