#include "data/sql/uni_query.h"

#include <QFile>

#include "data/sql/result_set.h"
#include "tests/data/watched_engine.h"

namespace {

using namespace data;
using test::errorOf;

TEST(Parameters, AreFoundOutsideOfTextsNamesAndComments) {
    const std::vector<std::pair<const char*, QStringList>> cases{
        {"select 1", {}},
        {"where tuote = :tuote and maara=:maara", {"tuote", "maara"}},
        {"SET VERO = :UUSIVERO WHERE VERO=:VANHAVERO and x=:uusivero", {"UUSIVERO", "VANHAVERO"}},
        {"a=:a,b=:b_2;c=:_c", {"a", "b_2", "_c"}},
        {"where klo='12:30' and nimi=':ei' and t=:t", {"t"}},
        {"where nimi='it''s :ei' and t=:t", {"t"}},
        {"select \":ei\" from x where t=:t", {"t"}},
        {"select 1 -- :ei\n where t=:t", {"t"}},
        {"select 1 /* :ei ' */ where t=:t", {"t"}},
        {"where t=:t -- loppu :ei", {"t"}},
        {"where a = 10:30 and b = : x", {}},
        {"where nimi='auki :ei", {}},
        {":tuotekäännös", {"tuotekäännös"}},
        {"x=:", {}},
        {"/* auki :ei", {}},
    };
    for (const auto& [sql, names] : cases)
        EXPECT_EQ(parameterNames(QString::fromUtf8(sql)), names) << sql;
}

// A statement with rows made up by a function, which keeps what was bound.
struct Script {
    QStringList columns;
    qint64 rows = 0;
    std::function<Value(qint64 row, int column)> cell;
    std::map<QString, Value> bound;
    int prepared = 0;
    qint64 failAtRow = -1;
};

class ScriptedStatement : public SqlStatement {
  public:
    ScriptedStatement(Script& script, const QString& sql)
        : m_script(script), m_names(data::parameterNames(sql)) {
        for (const QString& name : script.columns)
            m_columns.push_back({name});
    }
    QStringList parameterNames() const override { return m_names; }
    void bind(const QString& name, const Value& value) override { m_script.bound[name] = value; }
    const std::vector<SqlColumn>& columns() const override { return m_columns; }
    bool step() override {
        if (++m_row == m_script.failAtRow)
            throw DataError(ErrorKind::Io, QString(), QStringLiteral("levy"));
        return m_row < m_script.rows;
    }
    Value value(int column) const override { return m_script.cell(m_row, column); }
    qint64 execute() override { return 3; }
    void reset() override { m_row = -1; }

  private:
    Script& m_script;
    QStringList m_names;
    std::vector<SqlColumn> m_columns;
    qint64 m_row = -1;
};

class QueryTest : public ::testing::Test {
  protected:
    QueryTest() {
        m_engine.database().makeStatement = [this](const QString& sql) {
            ++m_script.prepared;
            m_sent = sql;
            return std::make_unique<ScriptedStatement>(m_script, sql);
        };
    }
    Database& database() { return m_engine.database(); }

    Script m_script;
    QString m_sent;
    test::WatchedTestEngine m_engine;
};

TEST_F(QueryTest, ParametersFollowTheText) {
    TUniQuery query(&database());
    query.sql().add(QStringLiteral("UPDATE ASALE set hinta = :uusihinta "));
    query.sql().add(QStringLiteral("where tuote = :tuote and alkaa = :pvm"));
    TParam& price = query.paramByName(QStringLiteral("UUSIHINTA"));
    price.setFloat(12.55);
    query.paramByName(QStringLiteral("Tuote")).setString(QStringLiteral("100"));
    query.paramByName(QStringLiteral("pvm")).setDate(QDate(2024, 9, 1));
    EXPECT_EQ(query.findParam(QStringLiteral("hinta")), nullptr);
    EXPECT_EQ(errorOf([&] { query.paramByName(QStringLiteral("hinta")); }), ErrorKind::NoSuchField);
    EXPECT_EQ(query.execSql(), 3);
    EXPECT_EQ(query.rowsAffected(), 3);
    EXPECT_EQ(m_sent, QStringLiteral("UPDATE ASALE set hinta = :uusihinta \n"
                                     "where tuote = :tuote and alkaa = :pvm"));
    EXPECT_EQ(m_script.bound[QStringLiteral("uusihinta")], Value(12.55));
    EXPECT_EQ(m_script.bound[QStringLiteral("pvm")], Value(QStringLiteral("2024-09-01")));

    // The same text, again: prepared once. No date is the empty text, not NULL.
    query.sql().setText(query.sql().text());
    query.paramByName(QStringLiteral("pvm")).setDate(QDate());
    query.execSql();
    EXPECT_EQ(m_script.prepared, 1);
    EXPECT_EQ(m_script.bound[QStringLiteral("pvm")], Value(QString("")));
    EXPECT_FALSE(m_script.bound[QStringLiteral("pvm")].toString().isNull());

    // Another text: parsed again, what both have keeps its value, what is new is NULL.
    m_script.bound.clear();
    query.sql().clear();
    query.sql().add(QStringLiteral("update x set h = :uusihinta where k = :maara"));
    EXPECT_EQ(query.findParam(QStringLiteral("tuote")), nullptr);
    EXPECT_EQ(&query.paramByName(QStringLiteral("uusihinta")), &price);
    query.execSql();
    EXPECT_EQ(m_script.prepared, 2);
    EXPECT_EQ(m_script.bound[QStringLiteral("uusihinta")], Value(12.55));
    EXPECT_FALSE(m_script.bound[QStringLiteral("maara")].isValid());
}

TEST_F(QueryTest, WalksAResult) {
    const std::vector<std::vector<Value>> rows{
        {qint64{-5}, 12.5, QStringLiteral("Åbo"), Value(), QStringLiteral("20240901")},
        {std::numeric_limits<qint64>::min(), -0.0, QString(""), QStringLiteral("7,5"),
         QStringLiteral("2024-09-01")},
        {std::numeric_limits<qint64>::max(), 1.0 / 3, QStringLiteral("x").repeated(300000),
         qint64{64}, QString("")},
    };
    m_script.columns = {"Numero", "HINTA", "nimi", "muu", "pvm", "numero"};
    m_script.rows = 3;
    m_script.cell = [&](qint64 row, int column) {
        return column == 5 ? Value(qint64{99})
                           : rows[static_cast<size_t>(row)][static_cast<size_t>(column)];
    };
    TUniQuery query(&database());
    EXPECT_EQ(errorOf([&] { query.recordCount(); }), ErrorKind::Engine);
    query.sql().add(QStringLiteral("select ..."));
    query.open();
    EXPECT_EQ(query.recordCount(), 3);
    for (int round = 0; round < 2; ++round) {
        int row = 0;
        for (query.first(); !query.eof(); query.next(), ++row) {
            for (int column = 0; column < 5; ++column) {
                const Value& expected = rows[static_cast<size_t>(row)][static_cast<size_t>(column)];
                const Value value = query.fieldByName(m_script.columns[column].toUpper()).value();
                // The first of two columns of one name.
                EXPECT_EQ(value, expected) << row << " " << column;
                EXPECT_EQ(value.typeId(), expected.typeId()) << row << " " << column;
            }
            EXPECT_EQ(std::signbit(query.fieldByName(QStringLiteral("hinta")).asFloat()), row == 1);
        }
        EXPECT_EQ(row, 3);
    }
    query.first();
    EXPECT_EQ(query.fieldByName(QStringLiteral("pvm")).asDate(), QDate(2024, 9, 1));
    EXPECT_EQ(query.fieldByName(QStringLiteral("hinta")).asInteger(), 12);
    EXPECT_EQ(query.fieldByName(QStringLiteral("hinta")).asString(), QStringLiteral("12.5"));
    EXPECT_TRUE(query.fieldByName(QStringLiteral("muu")).isNull());
    EXPECT_EQ(query.fieldByName(QStringLiteral("muu")).asFloat(), 0);
    query.next();
    EXPECT_EQ(query.fieldByName(QStringLiteral("pvm")).asDate(), QDate(2024, 9, 1));
    EXPECT_EQ(query.fieldByName(QStringLiteral("muu")).asFloat(), 7.5);
    query.next();
    EXPECT_FALSE(query.fieldByName(QStringLiteral("pvm")).asDate().isValid());
    EXPECT_EQ(query.findField(QStringLiteral("olematon")), nullptr);
    EXPECT_EQ(errorOf([&] { query.fieldByName(QStringLiteral("olematon")); }),
              ErrorKind::NoSuchField);

    // Failing on the way: closed, and usable again.
    m_script.failAtRow = 2;
    EXPECT_EQ(errorOf([&] { query.open(); }), ErrorKind::Io);
    EXPECT_FALSE(query.isOpen());
    m_script.failAtRow = -1;
    m_script.rows = 0;
    query.open();
    EXPECT_TRUE(query.eof());
    EXPECT_EQ(query.recordCount(), 0);
    EXPECT_EQ(query.fieldNames(), m_script.columns);
    EXPECT_EQ(errorOf([&] { query.fieldByName(QStringLiteral("nimi")).asString(); }),
              ErrorKind::Engine);
    m_script.columns.clear();
    EXPECT_EQ(errorOf([&] {
                  TUniQuery other(&database());
                  other.sql().setText(QStringLiteral("update x"));
                  other.open();
              }),
              ErrorKind::Engine);
}

// Anonymous memory of this process in kilobytes; 0 where it cannot be told (a memory checker keeps
// freed blocks).
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
    constexpr qint64 kRows = 300000;  // about 50 MB
    m_script.columns = {"numero", "nimi"};
    for (int i = 0; i < 16; ++i)
        m_script.columns.append(QStringLiteral("hinta%1").arg(i));
    m_script.rows = kRows;
    m_script.cell = [](qint64 row, int column) -> Value {
        if (column == 0)
            return row;
        if (column == 1)
            return QString(static_cast<int>(row % 50), QLatin1Char('n'));
        return static_cast<double>(row) + column;
    };
    const qint64 before = anonymousMemory();
    TUniQuery query(&database());
    query.sql().setText(QStringLiteral("select"));
    query.open();
    EXPECT_LT(anonymousMemory() - before, 32000);
    EXPECT_EQ(query.recordCount(), kRows);
    TQueryField& number = query.fieldByName(QStringLiteral("numero"));
    TQueryField& name = query.fieldByName(QStringLiteral("nimi"));
    TQueryField& price = query.fieldByName(QStringLiteral("hinta15"));
    for (int round = 0; round < 2; ++round) {
        qint64 row = 0;
        for (query.first(); !query.eof(); query.next(), ++row) {
            ASSERT_EQ(number.asInteger(), row);
            ASSERT_EQ(price.asFloat(), static_cast<double>(row) + 17);
            ASSERT_EQ(name.value().toString().size(), row % 50);
        }
        ASSERT_EQ(row, kRows);
    }
}

TEST(ResultSet, SpillsBeyondItsBound) {
    Script script;
    script.columns = {"teksti"};
    script.rows = 1;
    script.cell = [](qint64, int) { return Value(QString(100000, QLatin1Char('x'))); };
    ScriptedStatement statement(script, QString());
    ResultSet rows(1, 1000000);
    for (int i = 0; i < 9; ++i)
        rows.append(statement);
    EXPECT_FALSE(rows.isSpilled());
    rows.append(statement);
    EXPECT_TRUE(rows.isSpilled());
    rows.append(statement);
    ASSERT_TRUE(rows.first());
    int count = 1;
    for (; rows.next(); ++count)
        ASSERT_EQ(rows.value(0).toString().size(), 100000);
    EXPECT_EQ(count, 11);
    EXPECT_EQ(rows.value(0).toString().size(), 100000);  // still on the last row
}

// The engine under it: SQL and record tables see the same bytes, and a result stays as it was.
TEST(QueryOnTheEngine, ResultIsFixedWhenOpened) {
    test::EmbeddedTestEngine engine;
    test::KoeTable table(engine.database());
    for (int i = 1; i <= 50; ++i)
        table.add(i, i % 5, QStringLiteral("öljy %1").arg(i), i * 1.25);
    TUniQuery query(&engine.database());
    query.sql().add(QStringLiteral("SELECT Nro, nimi, hinta, pvm"));
    query.sql().add(QStringLiteral("FROM KOE "));
    query.sql().add(QStringLiteral("WHERE ryhma = :ryhma order by nro"));
    query.paramByName(QStringLiteral("RYHMA")).setInteger(2);
    query.open();
    ASSERT_EQ(query.recordCount(), 10);
    TUniQuery update(&engine.database());
    update.sql().setText(QStringLiteral("update koe set hinta = :h, pvm = :p where nro = :n"));
    for (; !query.eof(); query.next()) {
        const qint64 number = query.fieldByName(QStringLiteral("nro")).asInteger();
        EXPECT_EQ(query.fieldByName(QStringLiteral("hinta")).asFloat(),
                  static_cast<double>(number) * 1.25);
        EXPECT_FALSE(query.fieldByName(QStringLiteral("PVM")).asDate().isValid());
        update.paramByName(QStringLiteral("h")).setFloat(0.1);
        update.paramByName(QStringLiteral("p")).setDate(QDate(2024, 9, 1));
        update.paramByName(QStringLiteral("n")).setInteger(number + 5);  // a row still ahead
        EXPECT_EQ(update.execSql(), number + 5 <= 50 ? 1 : 0);
    }
    ASSERT_TRUE(table.findKey({47}));
    EXPECT_EQ(table["hinta"].asFloat(), 0.1);
    EXPECT_EQ(table["pvm"].asDate(), QDate(2024, 9, 1));
    query.paramByName(QStringLiteral("ryhma")).setInteger(9);
    query.open();
    EXPECT_TRUE(query.eof());
    query.sql().setText(QStringLiteral("select top 0 * from koe"));
    query.open();
    EXPECT_EQ(query.recordCount(), 0);
    EXPECT_NE(query.findField(QStringLiteral("PASSIIVINEN")), nullptr);
    query.sql().setText(QStringLiteral("select * from olematon"));
    EXPECT_TRUE(errorOf([&] { query.open(); }).has_value());
}

}  // namespace
