#include "data/sql/uni_query.h"

#include <QFile>

#include "tests/data/watched_engine.h"

namespace {

using namespace data;
using test::errorOf;

TEST(Parameters, AreFoundOutsideTextsNamesAndComments) {
    const std::map<const char*, const char*> cases{
        {"select 1", ""},
        {"where tuote = :tuote and maara=:maara", "tuote maara"},
        {"SET VERO = :UUSIVERO WHERE VERO=:VANHAVERO and x=:uusivero", "UUSIVERO VANHAVERO"},
        {"a=:a,b=:b_2;c=:_c", "a b_2 _c"},
        {"where klo='12:30' and nimi='it''s :ei' and t=:t", "t"},
        {"select \":ei\", 1 /* :ei ' */ from x -- :ei\n where t=:t", "t"},
        {"where t=:t -- loppu :ei", "t"},
        {"where a = 10:30 and b = : x", ""},
        {"where nimi='auki :ei", ""},
        {":tuotekäännös", "tuotekäännös"},
        {"x=:", ""},
        {"/* auki :ei", ""}};
    for (const auto& [sql, names] : cases)
        EXPECT_EQ(parameterNames(sql).join(' '), names) << sql;
}

class QueryTest : public ::testing::Test {
  protected:
    test::WatchedTestEngine m_engine;
    TUniQuery m_query{&m_engine.database()};
};

TEST_F(QueryTest, ParametersFollowTheText) {
    m_query.sql().add("select :hinta, :tuote as tuote ");
    m_query.sql().add("  , :pvm as pvm");
    TParam& price = m_query.paramByName("HINTA");
    price.setFloat(12.55);
    m_query.paramByName("Tuote").setString("100");
    m_query.paramByName("pvm").setDate(QDate(2024, 9, 1));
    EXPECT_EQ(m_query.findParam("uusihinta"), nullptr);
    EXPECT_EQ(errorOf([&] { m_query.paramByName("uusihinta"); }), ErrorKind::NoSuchField);
    m_query.open();
    EXPECT_EQ(m_query.fieldByName(":hinta").value(), Value(12.55));
    EXPECT_EQ(m_query.fieldByName("pvm").value(), Value("2024-09-01"));

    // The same text is prepared once. No date is the empty text, not NULL.
    m_query.sql().setText(m_query.sql().text());
    m_query.paramByName("pvm").setDate(QDate());
    m_query.open();
    EXPECT_EQ(m_engine.calls.prepared, 1);
    EXPECT_EQ(m_query.fieldByName("pvm").value(), Value(QString("")));

    // Parameters that both texts have keep their values; new ones are NULL.
    m_query.sql().setText("select :hinta as hinta, :maara as maara");
    EXPECT_EQ(m_query.findParam("tuote"), nullptr);
    EXPECT_EQ(&m_query.paramByName("hinta"), &price);
    m_query.open();
    EXPECT_EQ(m_engine.calls.prepared, 2);
    EXPECT_EQ(m_query.fieldByName("hinta").value(), Value(12.55));
    EXPECT_TRUE(m_query.fieldByName("maara").isNull());
}

TEST_F(QueryTest, WalksAResult) {
    const std::vector<std::vector<Value>> rows{
        {qint64{-5}, 12.5, QStringLiteral("Åbo"), Value(), QStringLiteral("20240901")},
        {std::numeric_limits<qint64>::min(), 1.0 / 3, QString(""), QStringLiteral("7,5"),
         QStringLiteral("2024-09-01")},
        {std::numeric_limits<qint64>::max(), -1e300, QStringLiteral("x").repeated(300000),
         qint64{64}, QString("")},
    };
    QStringList selects;
    for (size_t i = 0; i < rows.size(); ++i)
        selects +=
            QString("select :n%1 Numero, :h%1 HINTA, :t%1 nimi, :m%1 muu, :p%1 pvm, 99 numero")
                .arg(i);
    EXPECT_EQ(errorOf([&] { m_query.recordCount(); }), ErrorKind::Engine);
    m_query.sql().setText(selects.join(" union all "));
    for (size_t i = 0; i < rows.size(); ++i)
        for (size_t c = 0; c < 5; ++c)
            m_query
                .paramByName(QStringLiteral("nhtmp").mid(static_cast<int>(c), 1) +
                             QString::number(i))
                .setValue(rows[i][c]);
    m_query.open();
    EXPECT_EQ(m_query.recordCount(), 3);
    const auto field = [&](const char* name) -> TQueryField& { return m_query.fieldByName(name); };
    for (int round = 0; round < 2; ++round) {
        size_t row = 0;
        for (m_query.first(); !m_query.eof(); m_query.next(), ++row) {
            size_t column = 0;
            for (const char* name : {"NUMERO", "hinta", "Nimi", "MUU", "PVM"}) {
                const Value& expected = rows[row][column++];
                EXPECT_EQ(field(name).value(), expected) << name << row;
                EXPECT_EQ(field(name).value().typeId(), expected.typeId()) << name << row;
            }
        }
        EXPECT_EQ(row, 3U);
    }
    m_query.first();
    EXPECT_EQ(field("pvm").asDate(), QDate(2024, 9, 1));
    EXPECT_EQ(field("hinta").asInteger(), 12);
    EXPECT_EQ(field("hinta").asString(), "12.5");
    EXPECT_EQ(field("muu").asFloat(), 0);
    m_query.next();
    EXPECT_EQ(field("pvm").asDate(), QDate(2024, 9, 1));
    EXPECT_EQ(field("muu").asFloat(), 7.5);
    m_query.next();
    EXPECT_FALSE(field("pvm").asDate().isValid());
    EXPECT_EQ(errorOf([&] { field("olematon"); }), ErrorKind::NoSuchField);

    // A query that fails while being read is closed and can be used again.
    m_query.sql().setText("select 1 x union all select abs(-9223372036854775807 - 1)");
    errorOf([&] { m_query.open(); });
    EXPECT_FALSE(m_query.isOpen());
    m_query.sql().setText("select top 0 * from koe");
    m_query.open();
    EXPECT_TRUE(m_query.eof());
    EXPECT_EQ(m_query.fieldNames().size(), 12);
    EXPECT_EQ(errorOf([&] { field("nimi").asString(); }), ErrorKind::Engine);
    m_query.sql().setText("delete from koe");
    EXPECT_EQ(errorOf([&] { m_query.open(); }), ErrorKind::Engine);
}

// Anonymous memory of this process in kilobytes; 0 where it cannot be measured (a memory checker
// keeps freed blocks).
qint64 anonymousMemory() {
#ifdef __SANITIZE_ADDRESS__
    return 0;
#endif
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("RssAnon:"))
            return line.mid(8).trimmed().split(' ').first().toLongLong();
    return 0;
}

TEST_F(QueryTest, ALargeResultGoesToAFile) {
    constexpr qint64 kRows = 250000;  // about 95 MB
    m_query.sql().setText(
        "with recursive n(i) as (values (0) union all select i + 1 from n where i < 249999) "
        "select i, substr(printf('%500c', 'n'), 1, i % 1000) teksti, i + 0.5 hinta from n");
    const qint64 before = anonymousMemory();
    m_query.open();
    EXPECT_LT(anonymousMemory() - before, 32000);
    EXPECT_EQ(m_query.recordCount(), kRows);
    for (int round = 0; round < 2; ++round) {
        qint64 row = 0;
        for (m_query.first(); !m_query.eof(); m_query.next(), ++row) {
            ASSERT_EQ(m_query.fieldByName("i").asInteger(), row);
            ASSERT_EQ(m_query.fieldByName("hinta").asFloat(), static_cast<double>(row) + 0.5);
            ASSERT_EQ(m_query.fieldByName("teksti").asString().size(),
                      std::min<qint64>(row % 1000, 500));
        }
        ASSERT_EQ(row, kRows);
    }
}

}  // namespace
