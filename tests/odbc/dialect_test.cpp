// Rewriting of statements by the dialects, where running servers would not show a fault.

#include <gtest/gtest.h>

#include <sql.h>

#include "engines/shops/dialect.h"
#include "engines/shops/prepared_odbc.h"

namespace {

using engines::shops::ColumnKind;
using engines::shops::Dialect;
using engines::shops::dialectFor;

std::string rewritten(const char* database, const char* sql) {
    const auto isDate = [](const QString& name) {
        return name.compare(QLatin1String("loppu"), Qt::CaseInsensitive) == 0;
    };
    return dialectFor(QLatin1String(database))
        .rewritten(QString::fromUtf8(sql), isDate)
        .text.toStdString();
}

TEST(Dialects, ShopsEngineStatementsStayUnchanged) {
    const char* text = "select top 0 round(a,2), x$f from t where loppu='' and b='a;''?:b' -- :c\n";
    EXPECT_EQ(rewritten("some other engine", text),
              std::string(text).substr(0, std::string(text).find(" --")));
    const auto sql =
        dialectFor("Something else").rewritten("update t set a=:x, b=:X where c=:y;", {});
    EXPECT_EQ(sql.text, "update t set a=?, b=? where c=?");
    EXPECT_EQ(sql.parameters, (QStringList{"x", "X", "y"}));
    EXPECT_FALSE(sql.returnsRows);
}

TEST(Dialects, CallsAreRewrittenAtAnyDepthUnlessMalformed) {
    // nested calls, an argument that contains a comma
    EXPECT_EQ(rewritten("MariaDB", "select floor(round(f(a,b),1))"),
              "select (FLOOR((CASE WHEN (f(a,b))<0 THEN -1e0 ELSE 1e0 END*"
              "(FLOOR(ABS(f(a,b))*10e0+0.5e0)+0e0)/10e0))+0e0)");
    const auto twice = dialectFor("MariaDB").rewritten("select round(:a)", {});
    EXPECT_EQ(twice.parameters, (QStringList{"a", "a"}));
    EXPECT_EQ(rewritten("MariaDB", "select round(a, b)"), "select round(a, b)");
    EXPECT_EQ(rewritten("MariaDB", "select round((a)"), "select round((a)");
    EXPECT_EQ(rewritten("MariaDB", "select round(a, 1, 2), floor(a, 1)"),
              "select round(a, 1, 2), floor(a, 1)");
    EXPECT_EQ(rewritten("MariaDB", "select round , 1.5, 'round(1.5)', 12"),
              "select round , 1.5e0, 'round(1.5)', 12");
}

TEST(Dialects, EmptyDates) {
    const std::pair<const char*, const char*> cases[] = {
        {"select a from t where t.loppu='' or Loppu >= '20240901'",
         "select a from t where t.loppu IS NULL or Loppu >= {d '2024-09-01'}"},
        {"delete from t where loppu < '2024-09-01'",
         "delete from t where (loppu < {d '2024-09-01'} OR loppu IS NULL)"},
        {"update t set loppu='', a='20240901' where loppu > ''",
         "update t set loppu = NULL, a='20240901' where loppu IS NOT NULL"},
        {"update t set loppu = '20241301'", "update t set loppu = '20241301'"},  // no date: stays
    };
    for (const auto& [sql, made] : cases)
        EXPECT_EQ(rewritten("OpenLink Virtuoso VDBMS", sql), made);
}

TEST(Dialects, QueriesWithSubqueries) {
    const std::string made = "select a from t where b in (select c from u) option (order)";
    EXPECT_EQ(rewritten("OpenLink Virtuoso VDBMS", "select a from t where b in (select c from u);"),
              made);
    for (const char* same : {"select 'select' from t", "update t set a = (select 1)"})
        EXPECT_EQ(rewritten("OpenLink Virtuoso VDBMS", same), same);
    EXPECT_EQ(rewritten("MariaDB", "select (select 1)"), "select (select 1)");
}

TEST(Dialects, TypesAndErrors) {
    EXPECT_EQ(engines::shops::columnKind(2008, 0), ColumnKind::Whole16);
    EXPECT_EQ(engines::shops::columnKind(SQL_DECIMAL, 0), ColumnKind::Whole);
    EXPECT_EQ(engines::shops::columnKind(SQL_DECIMAL, 2), ColumnKind::Real);
    const Dialect& shops = dialectFor("some other engine");
    using data::ErrorKind;
    EXPECT_EQ(odbcErrorKind(shops, "HY000", 84, {}), ErrorKind::Locked);
    EXPECT_EQ(odbcErrorKind(shops, "S1000", -3110, {}), ErrorKind::NoConnection);
    EXPECT_EQ(odbcErrorKind(shops, "08S01", 0, {}), ErrorKind::NoConnection);
    EXPECT_EQ(odbcErrorKind(shops, "HYT00", 0, {}), ErrorKind::Locked);
    EXPECT_EQ(odbcErrorKind(shops, "S0002", 0, {}), ErrorKind::NoSuchTable);
    EXPECT_EQ(odbcErrorKind(dialectFor("MariaDB"), "HY000", 1205, {}), ErrorKind::Locked);
    // the shops' engine takes Windows-1252 alone
    EXPECT_EQ(engines::shops::toDriver(QString::fromUtf8("ä€"), shops), QByteArray("\xE4\x80"));
    EXPECT_THROW(engines::shops::toDriver(QString::fromUtf8("ł"), shops), data::DataError);
}

}  // namespace
