#include "search/filter_expression.h"

#include <gtest/gtest.h>

#include "data/record/windows1252.h"
#include "search/text_match.h"

using data::Kind;
using namespace search;

TEST(FilterExpression, DroppedTexts) {
    const struct {
        Kind kind;
        const char* text;
        const char* expression;
    } cases[] = {
        {Kind::Integer, "12", "F=12"},
        {Kind::SmallInt, ">=100", "F>=100"},
        {Kind::Integer, "<>-1,5", "F<>-1,5"},
        {Kind::Integer, "12a", "F='12a'"},
        {Kind::Integer, ">", "F>''"},
        {Kind::String, "ab", "F='ab*'"},
        {Kind::String, "12", "F='12*'"},
        {Kind::String, "<m", "F<'m*'"},
        {Kind::String, "", "F='*'"},
        {Kind::String, "O'Hara", "F='O''Hara*'"},
        {Kind::Float, "<=9,95", "F<='9,95'"},
        {Kind::Date, "1.9.2024", "F='1.9.2024'"},
        {Kind::Boolean, "true", "F='true'"},
        // At most ten characters are the operator.
        {Kind::String, "<<<<<<<<<<<x", "F<<<<<<<<<<'<x*'"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(dropExpression(QStringLiteral("F"), c.kind, QString::fromUtf8(c.text)),
                  QString::fromUtf8(c.expression))
            << c.text;
    EXPECT_EQ(ownExpression(QStringLiteral("!hinta>3 or lvv=1")),
              QStringLiteral("hinta>3 or lvv=1"));
    EXPECT_FALSE(ownExpression(QStringLiteral("=!")).has_value());
    EXPECT_EQ(lookupTerm(QStringLiteral("RYHMA"), QStringLiteral("7")),
              QStringLiteral("RYHMA='7' "));
}

TEST(FilterExpression, BaseAndUserFilter) {
    const struct {
        const char* base;
        const char* user;
        bool showPassive;
        const char* filter;
    } cases[] = {
        {"", "", false, ""},
        {"", "u", false, "u"},
        {"b", "", false, "b"},
        {"b", "u", false, "b and (u)"},
        {"b", "", true, ""},
        {"b", "u", true, "u"},
        {"b and Keskusvarasto=true", "", true, "Keskusvarasto=true"},
        {"b and keskusvarasto=true", "u or v", true, "Keskusvarasto=true and (u or v)"},
        {"Keskusvarasto=true", "keskusvarasto=false", true, "keskusvarasto=false"},
        {"Keskusvarasto=true", "u", false, "Keskusvarasto=true and (u)"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(composedFilter(QLatin1String(c.base), QLatin1String(c.user), c.showPassive),
                  QLatin1String(c.filter))
            << c.base << " / " << c.user;
}

TEST(TextMatch, StartAndAnywhereIgnoringCase) {
    const struct {
        const char* held;
        const char* text;
        bool atStart;
        bool anywhere;
    } cases[] = {
        {"Äyräsmäki", "äYRÄS", true, true},
        {"Äyräsmäki", "MÄKI", false, true},
        {"Äyräsmäki", "maki", false, false},
        {"ab", "abc", false, false},
        {"aab", "ab", false, true},
        {"x", "", true, true},
        {"", "", true, true},
        {"", "x", false, false},
    };
    for (const auto& c : cases) {
        const QString held = QString::fromUtf8(c.held);
        const QString text = QString::fromUtf8(c.text);
        QByteArray bytes;
        ASSERT_TRUE(data::toWindows1252(held, bytes));
        EXPECT_EQ(TextMatch(text, false).matchesBytes(bytes), c.atStart) << c.held << c.text;
        EXPECT_EQ(TextMatch(text, true).matchesBytes(bytes), c.anywhere) << c.held << c.text;
        EXPECT_EQ(TextMatch(text, false).matchesText(held), c.atStart) << c.held << c.text;
        EXPECT_EQ(TextMatch(text, true).matchesText(held), c.anywhere) << c.held << c.text;
    }
    // No record holds a character that records cannot hold.
    EXPECT_FALSE(TextMatch(QStringLiteral("Ж"), true).matchesBytes("?"));
}
