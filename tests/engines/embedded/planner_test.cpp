#include <random>

#include "engines/embedded/functions.h"
#include "engines/sqlite/sqlite_handle.h"
#include "tests/engines/embedded/fixture.h"

using namespace data;

namespace {

// The same rows in an ordinary table without keys and automatic indexes, where SQLite compares
// every row itself. Without joins of texts with numbers: there SQLite's result for the ordinary
// table is the questionable one (order not kept, rows missed by its filters).
class EmbeddedPlanner : public test::EmbeddedCompany {
  protected:
    void SetUp() override {
        EmbeddedCompany::SetUp();
        engines::embedded::registerFunctions(m_plain.get());
        engines::sqlite::execute(
            m_plain.get(),
            "PRAGMA automatic_index = OFF; CREATE TABLE asale(AsiakasNumero INTEGER, "
            "Tuote TEXT COLLATE ZAVTEXT, "
            "AsikasTyyppi INTEGER, Maara REAL, Alkaa TEXT COLLATE ZAVDATE);"
            "CREATE TABLE uusihinta(Avain INTEGER, Tuote TEXT COLLATE ZAVTEXT, Pvm "
            "TEXT COLLATE ZAVDATE, Hinta1 REAL)");
    }

    void both(const QString& sql) {
        run(sql);
        engines::sqlite::execute(m_plain.get(), sql.toUtf8());
    }

    QStringList plainRows(const QString& sql) {
        engines::sqlite::Statement statement(m_plain.get(), sql.toUtf8());
        QStringList lines;
        while (statement.step()) {
            QStringList cells;
            for (int i = 0; i < sqlite3_column_count(statement.get()); ++i)
                cells.append(sqlite3_column_type(statement.get(), i) == SQLITE_FLOAT
                                 ? shortestText(sqlite3_column_double(statement.get(), i))
                                 : statement.text(i));
            lines.append(cells.join(QLatin1Char('|')));
        }
        return lines;
    }

  private:
    engines::sqlite::SqliteHandle m_plain{QStringLiteral(":memory:"),
                                          engines::sqlite::SqliteHandle::Mode::Create};
};

}  // namespace

TEST_F(EmbeddedPlanner, RandomConditionsFindWhatAnOrdinaryTableFinds) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto pick = [&random](const QStringList& from) {
        return from[static_cast<int>(random() % static_cast<unsigned>(from.size()))];
    };
    const auto texts =
        QString::fromUtf8("'' 'a' 'A' 'ab' 'b' 'ä' 'Ö' '€' '7' '07' 'zz'").split(' ');
    const auto numbers = QString("0 1 -1 7 2 100 -128 127 2147483647 -2147483648").split(' ');
    const auto types = QString("0 1 2 -1 127 -128").split(' ');
    const auto amounts = QString("0 1 -1.5 0.1 7 1e300 100").split(' ');
    const auto dates = QString("'' '2024-09-01' '2024-08-31' '1999-12-31'").split(' ');
    const auto odd = QString::fromUtf8(
                         "3.5 -0.5 1e19 -1e19 300 '7' 'x' null 7.0 '20240901' "
                         "'2024-09' '\u4e2d' 'aaaaaaaaaaaaaaaaaaaaaaaa' 'a\u4e2d' x'41'")
                         .split(' ');
    db->inTransaction([&] {
        for (int i = 0; i < 150; ++i) {
            both(QStringLiteral(
                     "insert into asale (AsiakasNumero, Tuote, AsikasTyyppi, Maara, Alkaa) "
                     "values (%1, %2, %3, %4, %5)")
                     .arg(pick(numbers), pick(texts), pick(types), pick(amounts), pick(dates)));
            both(QStringLiteral(
                     "insert into uusihinta (Avain, Tuote, Pvm, Hinta1) values (%1, %2, %3, %4)")
                     .arg(i * 3 + 1)
                     .arg(pick(texts), pick(dates), pick(amounts)));
        }
    });
    const QList<std::pair<QString, QStringList>> columns{
        {"AsiakasNumero", numbers}, {"asale.Tuote", texts},    {"AsikasTyyppi", types},
        {"Maara", amounts},         {"Alkaa", dates},          {"Pvm", dates},
        {"Avain", numbers},         {"uusihinta.Tuote", texts}};
    const QStringList operators{"=", "=", "=", "<", "<=", ">", ">=", "<>"};
    int found = 0;
    for (int i = 0; i < 1500; ++i) {
        const bool join = random() % 4 == 0;
        const bool second = !join && random() % 3 == 0;
        const int first = second ? 5 : 0;
        const int count = join ? 8 : second ? 3 : 5;
        const auto column = [&] {
            return columns[first + static_cast<int>(random() % static_cast<unsigned>(count))];
        };
        QStringList conditions;
        if (join)
            conditions.append(pick({"asale.Tuote = uusihinta.Tuote", "AsiakasNumero = Avain",
                                    "Alkaa = Pvm and AsikasTyyppi = Avain", "Maara = Avain"}));
        for (unsigned c = random() % 4; c > 0; --c) {
            const auto [name, values] = column();
            if (random() % 6 == 0)
                conditions.append(QStringLiteral("%1 in (%2, %3, %4)")
                                      .arg(name, pick(values), pick(values), pick(odd)));
            else
                conditions.append(
                    QStringLiteral("%1 %2 %3")
                        .arg(name, pick(operators), pick(random() % 4 == 0 ? odd : values)));
        }
        QStringList order;
        for (unsigned c = random() % 4; c > 0; --c)
            order.append(column().first + pick({"", "", " desc"}));
        QStringList shown;
        for (int c = first; c < first + count; ++c)
            shown.append(columns[c].first);
        const QString rest =
            QStringLiteral(" from %1%2%3")
                .arg(join     ? "asale, uusihinta"
                     : second ? "uusihinta"
                              : "asale",
                     conditions.isEmpty() ? "" : " where " + conditions.join(" and "),
                     order.isEmpty() ? "" : " order by " + order.join(", "));
        QStringList orderColumns = order;
        orderColumns.replaceInStrings(QStringLiteral(" desc"), QString());
        const QString ordered =
            QStringLiteral("select ") + (order.isEmpty() ? "1" : orderColumns.join(", ")) + rest;
        ASSERT_EQ(rows(ordered), plainRows(ordered)) << ordered.toStdString();
        const QString all = "select " + shown.join(", ") + rest;
        QStringList engine = rows(all);
        QStringList plain = plainRows(all);
        found += static_cast<int>(engine.size());
        engine.sort();
        plain.sort();
        ASSERT_EQ(engine, plain) << all.toStdString();
    }
    EXPECT_GT(found, 5000);
}
