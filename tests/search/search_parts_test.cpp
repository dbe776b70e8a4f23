#include <gtest/gtest.h>

#include "data/windows1252.h"
#include "search/filter_state.h"
#include "search/filter_words.h"
#include "search/form_layout.h"
#include "search/key_search.h"
#include "search/text_match.h"
#include "tests/support/checks.h"

// Parts of a search window that need neither window nor company.

using data::Kind;
using namespace search;
using test::str;

namespace {

// "filter F=1", "lookup name" or "records".
std::string dropped(const char* text, const DropTarget& target) {
    const DropAction action = dropAction(str(text), target);
    const char* const kinds[] = {"filter ", "lookup ", "records"};
    return kinds[static_cast<int>(action.kind)] + action.text.toStdString();
}

}  // namespace

TEST(SearchParts, DroppedTexts) {
    const struct {
        Kind kind;
        std::vector<std::pair<const char*, const char*>> expressions;
    } cases[] = {
        {Kind::Integer, {{"12", "F=12"}, {"<>-1,5", "F<>-1,5"}, {"12a", "F='12a'"}, {">", "F>''"}}},
        {Kind::SmallInt, {{">=100", "F>=100"}}},
        {Kind::String,
         {{"ab", "F='ab*'"},
          {"12", "F='12*'"},
          {"<m", "F<'m*'"},
          {"", "F='*'"},
          {"O'Hara", "F='O''Hara*'"},
          {"<<<<<<<<<<<x", "F<<<<<<<<<<'<x*'"},
          {"!hinta>3 or lvv=1", "hinta>3 or lvv=1"},
          {"=!", "F='!*'"}}},  // an operator has at most ten characters
        {Kind::Float, {{"<=9,95", "F<='9,95'"}}},
        {Kind::Date, {{"1.9.2024", "F='1.9.2024'"}}},
        {Kind::Boolean, {{"true", "F='true'"}}},
    };
    for (const auto& c : cases)
        for (const auto& [text, expression] : c.expressions)
            EXPECT_EQ(dropped(text, {str("F"), c.kind}), std::string("filter ") + expression);
}

TEST(SearchParts, DropsOnLookedUpAndComputedColumns) {
    const ColumnLookup lookup{str("G"), str("T"), str("Nro"), str("Nimi")};
    ColumnLookup digits = lookup;
    digits.digitsOnly = true;
    const struct {
        const char* text;
        DropTarget target;
        const char* action;
    } cases[] = {
        {"12", {str("F"), Kind::SmallInt, lookup, Kind::SmallInt}, "filter G=12"},
        {"<>mak", {str("F"), Kind::SmallInt, lookup, Kind::SmallInt}, "lookup mak"},
        {"12", {str("F"), Kind::String, lookup, Kind::String}, "lookup 12"},
        {"12", {str("F"), std::nullopt, lookup, std::nullopt}, "lookup 12"},
        {"12", {str("F"), Kind::Integer, digits, Kind::Integer}, "lookup 12"},
        {"1,2", {str("F"), Kind::Integer, digits, Kind::Integer}, "filter F=1,2"},
        {"12", {str("F"), std::nullopt}, "records"},
        {"!a=1", {str("F"), std::nullopt, lookup, std::nullopt}, "filter a=1"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(dropped(c.text, c.target), c.action) << c.text;
    EXPECT_EQ(lookupTerm(str("RYHMA"), str("7'")), str("RYHMA='7''' "));

    const struct {
        const char* text;
        const char* inEdit;
        const char* searched;
        bool anywhere;
        bool always;  // searched record by record on any column
    } searches[] = {{"kahvi", "kahvi", "kahvi", false, false},
                    {"*kahvi", "", "kahvi", true, true},
                    {"#kahvi", "#kahvi", "kahvi", true, true},
                    {"#kahvi", "", "#kahvi", false, true}};
    for (const auto& c : searches) {
        const SearchText search = asetaSuodatin(str(c.text), str(c.inEdit));
        EXPECT_EQ(search.text, str(c.searched)) << c.text;
        EXPECT_EQ(search.anywhere, c.anywhere) << c.text;
        EXPECT_EQ(isRecordSearch(str(c.text), false), c.always) << c.text;
        EXPECT_TRUE(isRecordSearch(str(c.text), true));
    }
}

TEST(SearchParts, BaseAndUserFilter) {
    const std::tuple<const char*, const char*, bool, const char*> cases[] = {
        {"", "", false, ""},
        {"", "u", false, "u"},
        {"b", "", false, "b"},
        {"b", "", true, ""},
        {"b", "u", true, "u"},
        {"b and Keskusvarasto=true", "", true, "Keskusvarasto=true"},
        {"b and keskusvarasto=true", "u or v", true, "Keskusvarasto=true and (u or v)"},
        {"Keskusvarasto=true", "keskusvarasto=false", true, "keskusvarasto=false"},
        {"Keskusvarasto=true", "u", false, "Keskusvarasto=true and (u)"}};
    for (const auto& [base, user, showPassive, expression] : cases) {
        FilterState filter;
        filter.setBaseFilter(str(base));
        filter.setUserFilter(str(user));
        filter.setShowPassive(showPassive);
        EXPECT_EQ(filter.expression(), str(expression)) << base << " / " << user;
        filter.clear();
        filter.setShowPassive(false);
        EXPECT_EQ(filter.expression(), str(base));
    }
    FilterState filter;
    filter.setUserFilter(str("u=1 "));
    filter.setRange({{1}, {2}}, str("34"));
    EXPECT_EQ(filter.description(), str("u=1   alue: 34"));
    filter.setRecordSearch(str("kahvi"));
    EXPECT_EQ(filter.description(), str("haku: kahvi   alue: 34"));
    filter.setUserFilter(str("RYHMA='0' and RYHMA<>'0'"), str("Ryhmä: ei löydy"));
    filter.setBaseFilter(str("d"));
    EXPECT_EQ(filter.description(), str("Ryhmä: ei löydy   alue: 34"));
    filter.setRecordSearch(str("kahvi"));
    filter.setBaseFilter(str("c"));
    EXPECT_EQ(filter.description(), str("alue: 34"));
}

TEST(SearchParts, FiltersInWords) {
    const std::tuple<Kind, const char*, const char*> cases[] = {
        {Kind::String, "tee", "Nimi alkaa \"tee\""}, {Kind::String, "<=m", "Nimi <= \"m\""},
        {Kind::Integer, "12", "Nimi = 12"},          {Kind::Float, ">=9,95", "Nimi >= 9,95"},
        {Kind::String, "! hinta<5 ", "hinta<5"},
    };
    for (const auto& [kind, text, words] : cases)
        EXPECT_EQ(filterWords(str("Nimi"), kind, str(text)), str(words));
    const std::pair<QStringList, const char*> lookups[] = {
        {{}, "Ryhmä alkaa \"h\" (ei löydy)"},
        {{str("Hiomakoneet")}, "Ryhmä = Hiomakoneet"},
        {{str("Hai"), str("Ha"), str("He"), str("Hi"), str("Ho")},
         "Ryhmä = Hai, Ha, He ja 2 muuta"},
    };
    for (const auto& [found, words] : lookups)
        EXPECT_EQ(lookupWords(str("Ryhmä"), str("h"), found), str(words));
    EXPECT_EQ(searchWords(str("Nimi"), {str("k"), true}), str("Nimi sisältää \"k\""));
}

TEST(SearchParts, RangesByTheKindOfTheKey) {
    const auto field = [](Kind kind, quint16 size, data::Storage storage) {
        return data::TFieldCacheItem{.number = 1,
                                     .name = str("F"),
                                     .kindWord = static_cast<quint32>(kind),
                                     .size = size,
                                     .storedLength = size,
                                     .storage = storage};
    };
    const auto text = field(Kind::String, 3, data::Storage::ZString);
    const auto date = field(Kind::Date, 4, data::Storage::Date);
    const auto number = field(Kind::SmallInt, 2, data::Storage::Integer);
    const auto decimal = field(Kind::Float, 8, data::Storage::Float);
    const struct {
        const data::TFieldCacheItem& field;
        const char* typed;
        const char* range;    // "low..high", or the message
        bool isValue = true;  // for the nearest search
    } cases[] = {
        {text, "34", "34..34ú"},
        {text, "abcd", "abc..abc"},
        {date, " 1.9.2024", "2024-09-01..2024-09-01"},
        {date, "31.9.2024", "virheellinen päiväys 31.9.2024", false},
        {number, " 12 ", "12..12"},
        {number, "2x", "Virheellinen numero 2x", false},
        {number, "40000", "Virheellinen numero 40000", false},
        {number, "", "Virheellinen numero ", false},
        {decimal, "1,5", "Tätä hakuavain tyyppiä ei tueta"},
        {decimal, "1,5x", "Tätä hakuavain tyyppiä ei tueta", false},
    };
    for (const auto& c : cases) {
        const TextRange found = textRange(c.field, str(c.typed));
        const auto shown = [](const data::KeyValues& values) { return values.at(0).toString(); };
        EXPECT_EQ((found.range ? shown(found.range->low) + str("..") + shown(found.range->high)
                               : found.message)
                      .toStdString(),
                  c.range);
        EXPECT_EQ(keyValue(c.field, str(c.typed)).has_value(), c.isValue) << c.typed;
    }
    EXPECT_EQ(keyValue(decimal, str(" 1,5")), data::Value(1.5));
}

TEST(SearchParts, OnlyALongerTextThatBeginsAlikeCompletes) {
    Completion completion;
    for (const char* found : {"pa", "p", "xpannu", ""})
        EXPECT_FALSE(completion.complete(str("pa"), str(found))) << found;
    EXPECT_EQ(completion.complete(str("pa"), str("Pannu")), str("Pannu"));
}

TEST(SearchParts, LayoutIsReadAndWritten) {
    const auto columns = [](const FormLayout& layout) {
        QStringList texts;
        for (const GridColumn& column : layout.columns)
            texts.append(QStringLiteral("%1%2:%3")
                             .arg(column.visible ? str("") : str("-"), column.field)
                             .arg(column.width));
        return texts.join(u' ').toStdString();
    };
    const std::vector<GridColumn> own = {
        {str("A"), {}, 10}, {str("B"), {}, 20, false}, {str("C"), {}}};
    const struct {
        const char* saved;
        const char* columns;
        int width, height, order;  // -1: none
    } cases[] = {
        {"", "A:10 -B:20 C:0", -1, -1, -1},
        {"sarakkeita=2\nSarake0=c\nSARAKE1=A\nW_b=33\nw_A=0", "C:0 A:10 -B:33", -1, -1, -1},
        {"Sarakkeita=9\nSarake0=X\nSarake1=B\nSarake2=b", "B:20 -A:10 -C:0", -1, -1, -1},
        {"Sarakkeita=2\nSarake0=X\nW_C=x", "A:10 -B:20 C:0", -1, -1, -1},
        {"LomakeLeveys=700\nLomakeKorkeus=119\nLajittelu=2", "A:10 -B:20 C:0", 700, -1, 2},
        {"LomakeLeveys=x\nLomakeKorkeus=120\nLajittelu=-1", "A:10 -B:20 C:0", -1, 120, -1},
    };
    for (const auto& c : cases) {
        const auto file = platform::IniFile::parse("[S]\n" + QByteArray(c.saved), {});
        const FormLayout layout = readLayout(file, str("S"), own);
        EXPECT_EQ(columns(layout), c.columns) << c.saved;
        EXPECT_EQ(layout.width.value_or(-1), c.width) << c.saved;
        EXPECT_EQ(layout.height.value_or(-1), c.height) << c.saved;
        EXPECT_EQ(layout.order.value_or(-1), c.order) << c.saved;
    }

    auto file = platform::IniFile::parse("[S]\nSarakkeita=4\nSarake2=Y\nSarake3=Z\nW_B=5\n", {});
    FormLayout layout{.columns = own, .width = 700, .order = -1};
    writeLayout(file, str("S"), layout);
    EXPECT_EQ(file.toBytes().toStdString(),
              "[S]\nSarakkeita=2\nW_B=5\nW_A=10\nSarake0=A\nSarake1=C\nLomakeleveys=700\n"
              "Lajittelu=0\n");
    layout.height = 333;
    writeLayout(file, str("S"), layout);
    EXPECT_EQ(file.value(str("S"), str("LomakeKorkeus")), str("333"));
}

TEST(SearchParts, TextsAtTheStartAndAnywhereIgnoringCase) {
    const std::tuple<const char*, const char*, bool, bool> cases[] = {
        // at the start, anywhere
        {"Äyräsmäki", "äYRÄS", true, true},
        {"Äyräsmäki", "MÄKI", false, true},
        {"Äyräsmäki", "maki", false, false},
        {"ab", "abc", false, false},
        {"aab", "ab", false, true},
        {"x", "", true, true},
        {"", "", true, true},
        {"", "x", false, false}};
    for (const auto& [held, text, atStart, within] : cases) {
        QByteArray bytes;
        ASSERT_TRUE(data::toWindows1252(str(held), bytes));
        for (const bool anywhere : {false, true}) {
            const TextMatch match(str(text), anywhere);
            const bool expected = anywhere ? within : atStart;
            EXPECT_EQ(match.matchesBytes(bytes), expected) << held << text;
            EXPECT_EQ(match.matchesText(str(held)), expected) << held << text;
        }
    }
    // A character outside Windows-1252 matches no record.
    EXPECT_FALSE(TextMatch(QStringLiteral("Ж"), true).matchesBytes("?"));
}
