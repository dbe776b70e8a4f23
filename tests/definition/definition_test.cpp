#include <gtest/gtest.h>

#include <random>

#include "vatchange/definition/coefficients.h"
#include "vatchange/definition/definition_problems.h"
#include "vatchange/definition/ignore_list.h"

using framework::SavedDefinition;
using vatchange::ChangeDefinition;
using vatchange::ChangeField;
using vatchange::CompanyFacts;
using vatchange::FieldKind;
using vatchange::LoadedDefinition;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

using Values = std::vector<std::pair<const char*, const char*>>;

SavedDefinition savedWith(const Values& values) {
    SavedDefinition saved;
    for (const auto& [control, value] : values)
        saved.values.insert(str(control), str(value));
    return saved;
}

TEST(DefinitionCodec, ATextIsReadAndWrittenOrRefused) {
    constexpr const char* kUnreadable = nullptr;
    const struct {
        const char* control;
        const char* text;
        const char* written;
    } cases[] = {
        {"Tuotteet", "0", "0"},
        {"Tuotteet", " 1 ", "1"},
        {"Tuotteet", "kyllä", kUnreadable},
        {"Tuotteet", "", kUnreadable},
        {"LahdeAlvLuokkaEdit", "999", "999"},
        {"LahdeAlvLuokkaEdit", "03", "03"},
        {"LahdeAlvLuokkaEdit", "1000", kUnreadable},
        {"LahdeAlvLuokkaEdit", "-3", kUnreadable},
        {"LahdeAlvLuokkaEdit", "3.0", kUnreadable},
        {"KohdeAlvLuokkaEdit", "", kUnreadable},
        {"AliryhmaAlkuEdit", "007", "007"},
        {"AliryhmaAlkuEdit", "", ""},
        {"AliryhmaAlkuEdit", "99999999999", "99999999999"},
        {"AliryhmaAlkuEdit", "100000000000", kUnreadable},
        {"Hinta1Edit", "1.0120967741935485", "1.0120967741935485"},
        {"Hinta1Edit", "1.01209677419354838", "1.0120967741935485"},
        {"Hinta1Edit", "1.0120967741935483", "1.0120967741935483"},
        {"Hinta1Edit", " 1.10 ", "1.1"},
        {"Hinta1Edit", "-1", "-1"},
        {"Hinta1Edit", "1,01", kUnreadable},
        {"Hinta1Edit", "", kUnreadable},
        {"Hinta1Edit", "nan", kUnreadable},
        {"Hinta1Edit", "inf", kUnreadable},
        {"Hinta1Edit", "1e400", kUnreadable},
        {"PriceChangeLimitEdit", "10.005", "10.005"},
        {"PriceChangeLimitEdit", "-0.01", kUnreadable},
        {"PriceChangeLimitEdit", "1000000000000", kUnreadable},
        {"HintaLahde2", " hinta3 ", "hinta3"},
        {"HintaLahde2", "", "0"},
        {"HintaLahde2", "hinta10", "hinta10"},
        {"MTToimPaivaRajaus", "2024-09-01", "2024-09-01"},
        {"MTToimPaivaRajaus", "", ""},
        {"MTToimPaivaRajaus", "1.9.2024", kUnreadable},
        {"MTToimPaivaRajaus", "2024-02-30", kUnreadable},
        {"AsRyhmaCheckList", "5,1,,5", "1,5"},
        {"AsRyhmaCheckList", "", ""},
        {"AsRyhmaCheckList", "1;2", kUnreadable},
        {"AsRyhmaCheckList", ",", kUnreadable},
        {"AsRyhmaCheckList", "3000000000", kUnreadable},
        {"PyoristysRadioGroup", "4", "4"},
        {"PyoristysRadioGroup", "5", kUnreadable},
        {"PyoristysSaantoRadioGroup", "-1", kUnreadable},
        {"edtPaaryhmaIgnore", " 610; x", " 610; x"},
        {"TuotenroAlkuEdit", " 12 ", " 12 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(str("%1=%2").arg(str(c.control), str(c.text)).toStdString());
        const SavedDefinition saved = savedWith({{c.control, c.text}});
        const auto decoded = vatchange::decodeDefinition(saved);
        const QString defaultText =
            vatchange::fieldText(vatchange::changeField(str(c.control)), ChangeDefinition());
        if (c.written == kUnreadable) {
            ASSERT_EQ(decoded.unreadable.size(), 1U);
            EXPECT_EQ(decoded.unreadable[0].control, str(c.control));
            EXPECT_EQ(decoded.unreadable[0].value, str(c.text));
        } else {
            EXPECT_TRUE(decoded.unreadable.empty());
        }
        EXPECT_EQ(vatchange::encodeDefinition(decoded.definition, saved).value(str(c.control)),
                  c.written == kUnreadable ? defaultText : str(c.written));
        EXPECT_EQ(decoded.missing.size(), vatchange::changeFields().size() - 1);
    }
}

// Two fields with one member, or one that is read and written in different ways, would be seen.
TEST(DefinitionCodec, EveryFieldComesBackByItselfAlone) {
    const std::map<FieldKind, const char*> samples = {
        {FieldKind::Class, "27"},        {FieldKind::Number, "12345"},
        {FieldKind::Text, "A 1"},        {FieldKind::IgnoreList, "3,5"},
        {FieldKind::Amount, "12.5"},     {FieldKind::Source, "hinta7"},
        {FieldKind::Date, "2024-09-01"}, {FieldKind::Groups, "1,5"},
        {FieldKind::Choice, "2"},        {FieldKind::Coefficient, "1.1"}};
    const auto defaults = vatchange::encodeDefinition({});
    EXPECT_EQ(static_cast<std::size_t>(defaults.size()), vatchange::changeFields().size());
    for (const ChangeField& field : vatchange::changeFields()) {
        SCOPED_TRACE(field.control.toStdString());
        auto texts = defaults;
        texts[field.control] = field.kind == FieldKind::Check
                                   ? (texts[field.control] == str("1") ? str("0") : str("1"))
                                   : str(samples.at(field.kind));
        const auto decoded = vatchange::decodeDefinition({str("x"), {}, texts});
        EXPECT_TRUE(decoded.unreadable.empty());
        EXPECT_NE(decoded.definition, ChangeDefinition());
        EXPECT_EQ(vatchange::encodeDefinition(decoded.definition), texts);
        EXPECT_FALSE(field.spoken.isEmpty());
    }
    std::mt19937 random(7);
    const ChangeField& coefficient = vatchange::changeField(str("OtKerroinEdit"));
    for (int i = 0; i < 2000; ++i) {
        ChangeDefinition original;
        original.purchaseOrderCoefficient = std::uniform_real_distribution<>(0.0, 2.0)(random);
        ChangeDefinition read;
        ASSERT_TRUE(vatchange::setFieldText(coefficient,
                                            vatchange::fieldText(coefficient, original), read));
        ASSERT_EQ(read, original);  // to the last bit
    }
}

TEST(LoadRules, CoefficientsOfThePreviousChangeAreCarriedOver) {
    constexpr double k24To255 = 1.0120967741935485;
    const std::pair<const char*, double> cases[] = {
        {"1.00813008", k24To255},         {"1.008131", k24To255},
        {"1.0081312", 1.0081312},         {"1.008849557522124", 1.1008771929824561},
        {"1.0092592592592593", 0.0},      {"1.0092594", 1.0092594},
        {"1.0120967741935485", k24To255}, {"1", 1.0}};
    for (const auto& [text, now] : cases) {
        SCOPED_TRACE(text);
        const LoadedDefinition loaded =
            vatchange::loadDefinition(savedWith({{"LahdeAlvLuokkaEdit", "3"},
                                                 {"KohdeAlvLuokkaEdit", "6"},
                                                 {"HintaLahde2", "hinta"},
                                                 {"Hinta2Edit", text},
                                                 {"OtKerroinEdit", text}}));
        EXPECT_EQ(loaded.definition.levels[1].coefficient, now);
        EXPECT_EQ(loaded.definition.purchaseOrderCoefficient, now);
        const bool replaced = str(text).toDouble() != now;
        ASSERT_EQ(loaded.findings.size(), replaced ? 2U : 0U);
        if (replaced) {
            EXPECT_EQ(loaded.findings[1].control, str("OtKerroinEdit"));
            EXPECT_EQ(loaded.findings[1].saved, str(text));
            EXPECT_EQ(loaded.findings[1].now.toDouble(), now);
        }
        ChangeDefinition again = loaded.definition;
        EXPECT_TRUE(vatchange::applyLoadRules(again).empty());
        EXPECT_EQ(again, loaded.definition);
    }
}

// VAT classes 3, 6 and 200, customer groups 1 and 2.
const CompanyFacts kFacts = {{{3, 6, 200}}, {{1, 2}}};

LoadedDefinition loadedWith(const Values& values) {
    SavedDefinition saved = savedWith({{"LahdeAlvLuokkaEdit", "3"},
                                       {"KohdeAlvLuokkaEdit", "6"},
                                       {"HintaLahde1", "hinta"},
                                       {"Hinta1Edit", "1.0120967741935485"}});
    for (const auto& [control, value] : values) {
        if (value == nullptr)
            saved.values.remove(str(control));
        else
            saved.values.insert(str(control), str(value));
    }
    return vatchange::loadDefinition(saved);
}

TEST(DefinitionProblems, WhatIsRefusedAndWhatIsNot) {
    constexpr const char* kRuns = "";
    constexpr const char* kMissing = nullptr;
    constexpr const char* kZero = "0";
    constexpr const char* kBecomesZero = "1.0092592592592593";
    const struct {
        Values values;
        const char* problem;  // how its text begins
    } cases[] = {
        {{}, kRuns},
        {{{"MtKerroinEdit", "x"}}, "MtKerroinEdit=x (Myyntitilauskerroin): "},
        {{{"MTToimPaivaRajaus", "1.9.2024"}}, "MTToimPaivaRajaus=1.9.2024 "},
        {{{"Kampanjat", "on"}}, "Kampanjat=on "},
        {{{"AsRyhmaCheckList", "1;2"}}, "AsRyhmaCheckList=1;2 "},
        {{{"LahdeAlvLuokkaEdit", kMissing}}, "LahdeAlvLuokkaEdit= (Vanha luokka): "},
        {{{"KohdeAlvLuokkaEdit", kMissing}}, "KohdeAlvLuokkaEdit= "},
        {{{"LahdeAlvLuokkaEdit", "kolme"}}, "LahdeAlvLuokkaEdit=kolme "},
        {{{"LahdeAlvLuokkaEdit", "77"}}, "LahdeAlvLuokkaEdit=77 "},
        {{{"LahdeAlvLuokkaEdit", "0"}}, kRuns},
        {{{"KohdeAlvLuokkaEdit", "77"}}, kRuns},  // the run's own check has its words
        {{{"KohdeAlvLuokkaEdit", "0"}}, kRuns},
        // target classes that order rows cannot hold
        {{{"KohdeAlvLuokkaEdit", "200"}}, kRuns},
        {{{"KohdeAlvLuokkaEdit", "200"}, {"MtCheckBox", "1"}}, "KohdeAlvLuokkaEdit=200 "},
        {{{"KohdeAlvLuokkaEdit", "127"}, {"MtCheckBox", "1"}}, kRuns},
        {{{"KohdeAlvLuokkaEdit", "128"}, {"OtCheckBox", "1"}}, kRuns},
        // coefficients: a level with a source and the products
        {{{"Hinta1Edit", kZero}}, "Hinta1Edit=0 (Hinta 1, kerroin): "},
        {{{"Hinta1Edit", "-1"}}, "Hinta1Edit=-1 "},
        {{{"Hinta1Edit", kBecomesZero}}, "Hinta1Edit=1.0092592592592593 "},
        {{{"Hinta1Edit", kZero}, {"Tuotteet", "0"}}, kRuns},
        {{{"Hinta1Edit", kZero}, {"HintaLahde1", "hinta10"}}, kRuns},
        {{{"Hinta9Edit", kZero}, {"HintaLahde9", "hinta"}}, "Hinta9Edit=0 "},
        {{{"Hinta9Edit", kZero}, {"HintaLahde9", "hinta"}, {"Tuotteet", "0"}, {"MaaraAle", "1"}},
         kRuns},
        // level 1 and the dependent tables
        {{{"Hinta1Edit", kZero}, {"Tuotteet", "0"}, {"asiakashinnasto", "1"}}, "Hinta1Edit=0 "},
        {{{"Hinta1Edit", kZero}, {"Tuotteet", "0"}, {"Kampanjat", "1"}}, "Hinta1Edit=0 "},
        {{{"Hinta1Edit", kZero}, {"Tuotteet", "0"}, {"cbVakioLaskutus", "1"}}, "Hinta1Edit=0 "},
        {{{"Hinta1Edit", kZero}, {"Tuotteet", "0"}, {"MaaraAle", "1"}}, "Hinta1Edit=0 "},
        {{{"Hinta1Edit", kZero}, {"Tuotteet", "0"}, {"MtCheckBox", "1"}}, kRuns},
        // purchase prices
        {{{"OstohintaEdit", kZero}}, "OstohintaEdit=0 "},
        {{{"OstohintaEdit", kZero}, {"Tuotteet", "0"}, {"Kampanjat", "1"}}, "OstohintaEdit=0 "},
        {{{"OstohintaEdit", kZero}, {"Tuotteet", "0"}}, kRuns},
        {{{"ViimOstohintaEdit", "-0.5"}}, "ViimOstohintaEdit=-0.5 "},
        {{{"ViimOstohintaEdit", kZero}, {"Tuotteet", "0"}, {"Kampanjat", "1"}}, kRuns},
        {{{"MtKerroinEdit", kZero}, {"MtCheckBox", "1"}}, kRuns},  // taken as 1
        // customer groups
        {{{"AsRyhmaCheckList", "8,9"}, {"asiakashinnasto", "1"}}, "AsRyhmaCheckList=8,9 "},
        {{{"AsRyhmaCheckList", "8,9"}}, kRuns},
        {{{"AsRyhmaCheckList", "1,9"}, {"asiakashinnasto", "1"}}, kRuns},
        {{{"AsRyhmaCheckList", ""}, {"asiakashinnasto", "1"}}, kRuns},
        {{{"edtAliryhmaIgnore", "x"}, {"HintaLahde3", "hinta10"}}, kRuns},
    };
    for (const auto& c : cases) {
        std::string name;
        for (const auto& [control, value] : c.values)
            name += std::string(control) + '=' + (value == nullptr ? "(missing)" : value) + ' ';
        SCOPED_TRACE(name);
        const auto problems = vatchange::definitionProblems(loadedWith(c.values), kFacts);
        ASSERT_EQ(problems.size(), std::string(c.problem).empty() ? 0U : 1U);
        if (problems.empty())
            continue;
        EXPECT_TRUE(problems[0].text().startsWith(str(c.problem)))
            << problems[0].text().toStdString();
        EXPECT_EQ(problems[0].final, problems[0].value == str("77"));
    }
    EXPECT_EQ(
        vatchange::definitionProblems(
            loadedWith({{"Tuotteet", "on"}, {"OstohintaEdit", "0"}, {"Hinta1Edit", "0"}}), kFacts)
            .size(),
        3U);
    // tables that could not be read judge nothing
    EXPECT_TRUE(
        vatchange::definitionProblems(loadedWith({{"LahdeAlvLuokkaEdit", "77"}}), {}).empty());
}

TEST(DefinitionNotes, TellWhatIsNotTakenIntoAccount) {
    LoadedDefinition loaded = loadedWith({{"HintaLahde3", "hinta10"},
                                          {"HintaLahde4", "0"},
                                          {"HintaLahde5", ""},
                                          {"edtPaaryhmaIgnore", "610, 620,,x 1"},
                                          {"AsRyhmaCheckList", "1,9"}});
    EXPECT_EQ(vatchange::definitionNotes(loaded, kFacts),
              QStringList({str("tuntematon hinnan lähde HintaLahde3=hinta10, hintatasoa ei "
                               "muuteta"),
                           str("ulosrajattavissa ryhmissä (edtPaaryhmaIgnore) on kohta, joka ei "
                               "ole ryhmän numero ja jota ei oteta huomioon: x 1"),
                           str("asiakasryhmää 9 ei enää ole (AsRyhmaCheckList), sitä ei oteta "
                               "huomioon")}));
    EXPECT_EQ(loaded.definition.levels[2], vatchange::PriceLevelChange());
    vatchange::dropMissingGroups(loaded.definition, kFacts);
    EXPECT_EQ(loaded.definition.customerGroups, std::vector<int>({1}));

    // the last group is not dropped: none at all would mean every customer
    loaded = loadedWith({{"AsRyhmaCheckList", "8,9"}});
    vatchange::dropMissingGroups(loaded.definition, kFacts);
    EXPECT_EQ(loaded.definition.customerGroups, std::vector<int>({8, 9}));
    EXPECT_TRUE(vatchange::definitionNotes(loaded, kFacts).isEmpty());
}

TEST(LoadFindings, GoWithTheValueThatTheyAreAbout) {
    LoadedDefinition loaded = loadedWith({{"OstohintaEdit", "x"}, {"KohdeAlvLuokkaEdit", nullptr}});
    EXPECT_EQ(vatchange::stillHolding(loaded.findings, loaded.definition), loaded.findings);
    loaded.definition.targetClass = 6;
    const auto holding = vatchange::stillHolding(loaded.findings, loaded.definition);
    ASSERT_EQ(holding.size(), 1U);
    EXPECT_EQ(holding[0].control, str("OstohintaEdit"));
}

TEST(IgnoreList, KeepsDigitsOnlyAndTellsWhatItDropped) {
    const struct {
        const char* text;
        QList<qint64> numbers;
        const char* dropped;  // joined with "|"
    } cases[] = {
        {"", {}, ""},
        {"610, 620", {610, 620}, ""},
        {"3;5", {}, "3;5"},
        {",003,,+1,-2, 5 ,1.5,0x7,", {3, 5}, "+1|-2|1.5|0x7"},
        {"000,9223372036854775807,9223372036854775808",
         {0, 9223372036854775807},
         "9223372036854775808"},
        {"1) OR (1=1", {}, "1) OR (1=1"},
        {"٣,6 7", {}, "٣|6 7"},  // an Arabic digit
    };
    for (const auto& c : cases) {
        const auto list = vatchange::parseIgnoreList(str(c.text));
        EXPECT_EQ(list.numbers, c.numbers) << c.text;
        EXPECT_EQ(list.dropped.join(u'|'), str(c.dropped));
    }
}

}  // namespace
