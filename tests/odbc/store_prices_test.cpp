// The store price update rounds in the database: every step and rule on every engine.

#include "tests/odbc/sql_drivers.h"
#include "vatchange/rules/price_rules.h"
#include "vatchange/rules/statements.h"

namespace {

using test::exec;
using test::rows;
using vatchange::RoundingRule;
using vatchange::RoundingStep;

class StorePrices : public ::testing::TestWithParam<const char*> {};

TEST_P(StorePrices, AreRoundedByEveryStepAndRule) {
    const QString name = QLatin1String(GetParam());
    if (!test::SqlEngine::isAvailable(name))
        GTEST_SKIP() << "the SQL servers are not running";
    const test::SqlEngine engine(name, {"MYYMALAHINNAT"});
    // normal, up, down; null: not valid SQL
    // 8.12 x 1.255 = 10.1906; x 20 = 203.812; x 10 = 101.906
    const std::pair<RoundingStep, std::array<const char*, 3>> cases[] = {
        {RoundingStep::Tenth, {"10.191", "10.191", "10.191"}},
        {RoundingStep::One, {"10.19", "10.19", "10.19"}},
        {RoundingStep::Five, {nullptr, "10.2", "10.15"}},
        {RoundingStep::Ten, {nullptr, "10.2", "10.1"}},
        {RoundingStep::Hundredth, {"10.1906", "10.1906", "10.1906"}},
    };
    exec(engine.database(),
         "insert into MYYMALAHINNAT (Myymala, Tuote, Hinta1, Hinta1Alv0) values (1, 'A', 1, 8.12)");
    vatchange::ChangeDefinition definition;
    definition.levels[0] = {1.0, QStringLiteral("hinta"), true};
    for (const auto& [step, byRule] : cases) {
        definition.roundingStep = step;
        for (int rule = 0; rule < 3; ++rule) {
            SCOPED_TRACE(std::to_string(static_cast<int>(step)) + " " + std::to_string(rule));
            const char* expected = byRule.at(static_cast<size_t>(rule));
            definition.roundingRule = static_cast<RoundingRule>(rule);
            const QString update = vatchange::storePriceUpdate(
                vatchange::storePriceAssignments(definition, vatchange::vatFactor(25.5)));
            const auto change = [&] {
                return exec(engine.database(), update, {{"t", QStringLiteral("A")}});
            };
            exec(engine.database(), "update MYYMALAHINNAT set Hinta1 = 1");
            if (expected == nullptr)
                EXPECT_THROW(change(), data::DataError);
            else
                EXPECT_EQ(change(), 1);
            EXPECT_EQ(rows(engine.database(), "select Hinta1 from MYYMALAHINNAT"),
                      QStringList{expected == nullptr ? "1" : expected});
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Engines, StorePrices,
                         ::testing::Values("embedded", "sqlite", "virtuoso", "mariadb"),
                         [](const auto& engine) { return std::string(engine.param); });

}  // namespace
