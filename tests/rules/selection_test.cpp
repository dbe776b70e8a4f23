#include "vatchange/rules/selection.h"

#include <gtest/gtest.h>

namespace {

using vatchange::ChangeDefinition;
using vatchange::GroupRestriction;

const char* const kClassTerm = "( lvv = 2 OR alv2 = 2 OR ostovero = 2)";

TEST(Selection, RangeAndIgnoreTerms) {
    const std::pair<GroupRestriction, const char*> cases[] = {
        {{false, 1, 5, QStringLiteral("3")}, ""},
        {{true, 0, 0, {}}, ""},
        {{true, 0, 0, QStringLiteral("x,,y")}, ""},
        {{true, 1, 5, {}}, "(AliRyhma >= 1) AND (AliRyhma <= 5) AND "},
        {{true, 10, 0, {}}, "(AliRyhma = 10) AND "},
        {{true, 0, 12, {}}, "(AliRyhma = 12) AND "},
        {{true, 7, 7, {}}, "(AliRyhma = 7) AND "},
        {{true, 0, 0, QStringLiteral("3,x, 05")}, "( AliRyhma not in ( 3,5 )) AND "},
        {{true, 1, 5, QStringLiteral("3")},
         "(AliRyhma >= 1) AND (AliRyhma <= 5) AND ( AliRyhma not in ( 3 )) AND "},
    };
    for (const auto& [sub, terms] : cases) {
        ChangeDefinition definition;
        definition.sourceClass = 2;
        definition.subGroup = sub;
        EXPECT_EQ(vatchange::selectionCondition(definition).toStdString(),
                  std::string(terms) + kClassTerm);
    }
}

TEST(Selection, KindsInTheirOrder) {
    ChangeDefinition definition;
    definition.sourceClass = 0;
    definition.mainGroup = {true, 3, 0, {}};
    definition.productGroup = {true, 4, 6, QStringLiteral("5")};
    definition.subGroup = {true, 0, 0, QStringLiteral("1,2")};
    definition.productRangeOn = true;
    definition.productFirst = QStringLiteral("A");
    EXPECT_EQ(vatchange::selectionCondition(definition).toStdString(),
              "( AliRyhma not in ( 1,2 )) AND (Ryhma >= 4) AND (Ryhma <= 6) AND "
              "( Ryhma not in ( 5 )) AND (PaaRyhma = 3) AND "
              "( lvv = 0 OR alv2 = 0 OR ostovero = 0)");
    EXPECT_EQ(vatchange::groupRangeCondition(definition).toStdString(),
              " and nro >= 4 and nro <= 6");
    definition.productGroup = {false, 0, 6, {}};  // the range counts with the restriction off, too
    EXPECT_EQ(vatchange::groupRangeCondition(definition).toStdString(), " and nro <= 6");
}

}  // namespace
