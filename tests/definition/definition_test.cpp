#include <gtest/gtest.h>

#include "tests/support/checks.h"
#include "vatchange/definition/coefficients.h"
#include "vatchange/definition/definition_findings.h"
#include "vatchange/definition/ignore_list.h"

using framework::SavedDefinition;
using test::str;
using vatchange::ChangeDefinition;
using vatchange::ChangeField;
using vatchange::CompanyFacts;
using vatchange::FieldKind;
using vatchange::LoadedDefinition;

namespace {

// "Control=value;Control=value"; a control without "=" is left out of the definition.
SavedDefinition savedWith(const char* text, const char* basis = "") {
    SavedDefinition saved;
    for (const QString& setting :
         (str(basis) + u';' + str(text)).split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        if (setting.contains(u'='))
            saved.values.insert(setting.section(u'=', 0, 0), setting.section(u'=', 1));
        else
            saved.values.remove(setting);
    }
    return saved;
}

TEST(DefinitionCodec, ATextIsReadAndWrittenOrRefused) {
    const struct {
        const char* control;
        std::vector<std::pair<const char*, const char*>> taken;  // and how it is written
        std::vector<const char*> refused;
    } cases[] = {
        {"Tuotteet", {{"0", "0"}, {" 1 ", "1"}}, {"kyllä", ""}},
        {"LahdeAlvLuokkaEdit", {{"999", "999"}, {"03", "03"}}, {"1000", "-3", "3.0", ""}},
        {"AliryhmaAlkuEdit",
         {{"007", "007"}, {"", ""}, {"99999999999", "99999999999"}},
         {"100000000000"}},
        {"Hinta1Edit",
         {{"1.0120967741935485", "1.0120967741935485"},
          {"1.01209677419354838", "1.0120967741935485"},
          {"1.0120967741935483", "1.0120967741935483"},
          {" 1.10 ", "1.1"},
          {"-1", "-1"}},
         {"1,01", "", "nan", "inf", "1e400"}},
        {"PriceChangeLimitEdit", {{"10.005", "10.005"}}, {"-0.01", "1000000000000"}},
        {"HintaLahde2", {{" hinta3 ", "hinta3"}, {"", "0"}, {"hinta10", "hinta10"}}, {}},
        {"MTToimPaivaRajaus", {{"2024-09-01", "2024-09-01"}, {"", ""}}, {"1.9.2024", "2024-02-30"}},
        {"TurvarajaTuotteet", {{"0", "0"}, {" 050 ", "050"}, {" ", ""}}, {"-1", "1.5", "1e3"}},
        {"TurvarajaProsentti", {{"2.50", "2.5"}, {"0", "0"}, {"", ""}}, {"2,5", "-1", "nan"}},
        {"Muutospaiva", {{"2026-01-01", "2026-01-01"}, {"", ""}}, {"1.1.2026", "2026-13-01"}},
        {"AsRyhmaCheckList", {{"5,1,,5", "1,5"}, {"", ""}}, {"1;2", ",", "3000000000"}},
        {"PyoristysRadioGroup", {{"4", "4"}}, {"5", "-1"}},
        {"edtPaaryhmaIgnore", {{" 610; x", " 610; x"}}, {}},
        {"TuotenroAlkuEdit", {{" 12 ", " 12 "}}, {}}};
    for (const auto& c : cases) {
        const QString control = str(c.control);
        const auto decode = [&](const char* text, SavedDefinition& saved) {
            saved.values = {{control, str(text)}};
            const auto decoded = vatchange::decodeDefinition(saved);
            const std::size_t required = vatchange::changeFields().size() - 3;
            EXPECT_EQ(decoded.missing.size(),
                      required - (vatchange::changeField(control).optional ? 0 : 1));
            return decoded;
        };
        SavedDefinition saved;
        for (const auto& [text, written] : c.taken) {
            const auto decoded = decode(text, saved);
            EXPECT_TRUE(decoded.unreadable.empty()) << c.control << '=' << text;
            EXPECT_EQ(vatchange::encodeDefinition(decoded.definition, saved).value(control),
                      str(written));
        }
        for (const char* text : c.refused) {
            const auto decoded = decode(text, saved);
            ASSERT_EQ(decoded.unreadable.size(), 1U) << c.control << '=' << text;
            EXPECT_EQ(decoded.unreadable[0].control, control);
            EXPECT_EQ(decoded.unreadable[0].value, str(text));
            EXPECT_EQ(decoded.definition, ChangeDefinition());
        }
    }
}

// Finds fields that share a member and fields read and written in different ways.
TEST(DefinitionCodec, EveryFieldAloneIsReadBack) {
    const std::map<FieldKind, const char*> samples = {
        {FieldKind::Class, "27"},        {FieldKind::Number, "12345"},
        {FieldKind::Text, "A 1"},        {FieldKind::IgnoreList, "3,5"},
        {FieldKind::Amount, "12.5"},     {FieldKind::Source, "hinta7"},
        {FieldKind::Date, "2024-09-01"}, {FieldKind::Groups, "1,5"},
        {FieldKind::Choice, "2"},        {FieldKind::Coefficient, "1.1"},
        {FieldKind::MostCount, "7"},     {FieldKind::MostAmount, "7.5"}};
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
        EXPECT_FALSE(field.accessibleName.isEmpty());
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
        const LoadedDefinition loaded = vatchange::loadDefinition(
            savedWith(("Hinta2Edit=" + std::string(text) + ";OtKerroinEdit=" + text).c_str(),
                      "LahdeAlvLuokkaEdit=3;KohdeAlvLuokkaEdit=6;HintaLahde2=hinta"));
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

LoadedDefinition loadedWith(const char* text) {
    return vatchange::loadDefinition(
        savedWith(text,
                  "LahdeAlvLuokkaEdit=3;KohdeAlvLuokkaEdit=6;HintaLahde1=hinta;"
                  "Hinta1Edit=1.0120967741935485"));
}

TEST(DefinitionProblems, RefusedDefinitions) {
    // The problem is that of the first setting.
    for (const char* refused :
         {"MTToimPaivaRajaus=1.9.2024", "MtKerroinEdit=x", "Kampanjat=on", "AsRyhmaCheckList=1,x",
          "LahdeAlvLuokkaEdit", "KohdeAlvLuokkaEdit", "LahdeAlvLuokkaEdit=kolme",
          "LahdeAlvLuokkaEdit=77",
          // target classes that order rows cannot hold
          "KohdeAlvLuokkaEdit=200;MtCheckBox=1",
          // coefficients of a level with a source, while products are changed
          "Hinta1Edit=0", "Hinta1Edit=-1", "Hinta1Edit=1.0092592592592593",
          "Hinta9Edit=0;HintaLahde9=hinta",
          // level 1 also counts for the dependent tables
          "Hinta1Edit=0;Tuotteet=0;asiakashinnasto=1", "Hinta1Edit=0;Tuotteet=0;Kampanjat=1",
          "Hinta1Edit=0;Tuotteet=0;cbVakioLaskutus=1", "Hinta1Edit=0;Tuotteet=0;MaaraAle=1",
          "OstohintaEdit=0", "OstohintaEdit=0;Tuotteet=0;Kampanjat=1", "ViimOstohintaEdit=-0.5",
          "AsRyhmaCheckList=8,9;asiakashinnasto=1"}) {
        SCOPED_TRACE(refused);
        const auto problems = vatchange::definitionProblems(loadedWith(refused), kFacts);
        ASSERT_EQ(problems.size(), 1U);
        const QString first = str(refused).section(u';', 0, 0);
        const QString begin = first + (first.contains(u'=') ? str(" (") : str("= ("));
        EXPECT_TRUE(problems[0].text().startsWith(begin)) << problems[0].text().toStdString();
        EXPECT_EQ(problems[0].final, problems[0].value == str("77"));
    }
    EXPECT_TRUE(
        vatchange::definitionProblems(loadedWith("Hinta1Edit=0"), kFacts)[0].text().startsWith(
            str("Hinta1Edit=0 (Hinta 1, kerroin): ")));
    for (const char* runs :
         {"", "LahdeAlvLuokkaEdit=0", "KohdeAlvLuokkaEdit=0",
          "KohdeAlvLuokkaEdit=77",  // the run itself checks it
          "KohdeAlvLuokkaEdit=200", "KohdeAlvLuokkaEdit=127;MtCheckBox=1",
          "KohdeAlvLuokkaEdit=128;OtCheckBox=1", "Hinta1Edit=0;Tuotteet=0",
          "Hinta1Edit=0;HintaLahde1=hinta10",
          "Hinta9Edit=0;HintaLahde9=hinta;Tuotteet=0;MaaraAle=1",
          "Hinta1Edit=0;Tuotteet=0;MtCheckBox=1", "OstohintaEdit=0;Tuotteet=0",
          "ViimOstohintaEdit=0;Tuotteet=0;Kampanjat=1",
          "MtKerroinEdit=0;MtCheckBox=1",  // means 1
          "AsRyhmaCheckList=8,9", "AsRyhmaCheckList=1,9;asiakashinnasto=1",
          "AsRyhmaCheckList=;asiakashinnasto=1", "edtAliryhmaIgnore=x;HintaLahde3=hinta10"})
        EXPECT_TRUE(vatchange::definitionProblems(loadedWith(runs), kFacts).empty()) << runs;
    EXPECT_EQ(vatchange::definitionProblems(loadedWith("Tuotteet=on;OstohintaEdit=0;Hinta1Edit=0"),
                                            kFacts)
                  .size(),
              3U);
    // without the company's tables nothing is checked against them
    EXPECT_TRUE(vatchange::definitionProblems(loadedWith("LahdeAlvLuokkaEdit=77"), {}).empty());
}

// VAT classes 3 (24 %), 6 (25.5 %) and 200.
const CompanyFacts kFactsWithRates = {{{3, 6, 200}}, {{1, 2}}, {{3, 24}, {6, 25.5}, {200, 14}}};

TEST(DefinitionFindings, WhatLooksLikeAMistake) {
    using enum vatchange::DefinitionFindingKind;
    const struct {
        const char* settings;
        std::vector<std::pair<vatchange::DefinitionFindingKind, const char*>> found;
    } cases[] = {
        {"", {}},
        {"LahdeAlvLuokkaEdit=0", {{ClassZero, "LahdeAlvLuokkaEdit=0"}}},
        {"KohdeAlvLuokkaEdit=0", {{ClassZero, "KohdeAlvLuokkaEdit=0"}}},
        {"HintaLahde3=hinta10",
         {{NoSource, "tuntematon hinnan lähde HintaLahde3=hinta10, hintatasoa ei muuteta"}}},
        {"Hinta2Edit=1.1",
         {{CoefficientUnused, "Hinta2Edit=1.1 (Hinta 2, kerroin): hintatasolla"}}},
        {"Hinta1Edit=1.00813008",
         {{CoefficientReplaced,
           "Hinta1Edit=1.00813008 (Hinta 1, kerroin): "
           "edellisen muutoksen kertoimen tilalla on nyt "
           "1.0120967741935485"}}},
        {"edtPaaryhmaIgnore=610, 620,,x 1",
         {{DroppedItem,
           "ulosrajattavissa ryhmissä (edtPaaryhmaIgnore) on kohta, joka ei ole "
           "ryhmän numero ja jota ei oteta huomioon: x 1"}}},
        {"AsRyhmaCheckList=1,9",
         {{MissingGroup,
           "asiakasryhmää 9 ei enää ole (AsRyhmaCheckList), sitä ei oteta "
           "huomioon"}}},
        // the last group is not dropped: none at all would mean every customer
        {"AsRyhmaCheckList=8,9", {}},
        // used coefficients only
        {"Hinta1Edit=0.9;OstohintaEdit=1.25", {}},
        {"Hinta1Edit=0.89", {{CoefficientRange, "Hinta1Edit=0.89 (Hinta 1, kerroin): kerroin"}}},
        {"OstohintaEdit=1.26;ViimOstohintaEdit=2;MtKerroinEdit=2;OtKerroinEdit=2",
         {{CoefficientRange, "OstohintaEdit=1.26"}, {CoefficientRange, "ViimOstohintaEdit=2"}}},
        {"Tuotteet=0;OstohintaEdit=2;MtKerroinEdit=2;MtCheckBox=1;OtKerroinEdit=2;OtCheckBox=1;"
         "SailytaAlv0_CheckBoxOT=1",
         {{CoefficientRange, "OstohintaEdit=2"}, {CoefficientRange, "MtKerroinEdit=2"}}},
        // a range bounds nothing where its restriction is off, but for the product groups' own
        {"AliryhmaAlkuEdit=5;AliryhmaLoppuEdit=3", {}},
        {"AliryhmaAlkuEdit=5;AliryhmaLoppuEdit=3;AliryhmaCheckBox=1",
         {{InvertedRange, "AliryhmaAlkuEdit=5 (Aliryhmä, alku): alku on suurempi kuin loppu (3)"}}},
        {"TuoteryhmaAlkuEdit=5;TuoteryhmaLoppuEdit=3", {{InvertedRange, "TuoteryhmaAlkuEdit=5"}}},
        {"PaaryhmaAlkuEdit=5;PaaryhmaCheckBox=1", {}},
        {"SailytaAlv0_CheckBox1=1", {}},
        {"SailytaAlv0_CheckBox1=1;Hinta1Edit=1.012097", {}},
        {"SailytaAlv0_CheckBox1=1;Hinta1Edit=1.0121",
         {{KeepVat0Coefficient,
           "Hinta1Edit=1.0121 (Hinta 1, kerroin): alv0-hinnan säilyttävä "
           "kerroin luokasta 3 luokkaan 6 on 1.0120967741935485"}}},
        {"SailytaAlv0_CheckBox1=1;Hinta1Edit=1.1;Tuotteet=0", {}},
        {"SailytaAlv0_CheckBoxOstohinta=1", {{KeepVat0Coefficient, "OstohintaEdit=1 ("}}},
        {"TurvarajaProsentti=5", {}},
        {"TurvarajaProsentti=5;Tuotteet=0", {{LimitUnused, "TurvarajaProsentti=5"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        const auto findings =
            vatchange::definitionFindings(loadedWith(c.settings), kFactsWithRates);
        ASSERT_EQ(findings.size(), c.found.size());
        for (size_t i = 0; i < findings.size(); ++i) {
            EXPECT_EQ(findings[i].kind, c.found[i].first);
            EXPECT_TRUE(findings[i].text.startsWith(str(c.found[i].second)))
                << findings[i].text.toStdString();
        }
    }
    LoadedDefinition loaded = loadedWith("");
    loaded.repeatedLine = 12;
    EXPECT_EQ(vatchange::definitionFindings(loaded, {}).at(0).text,
              str("määrittelyn nimi on tiedostossa toisen kerran rivillä 12: vain ensimmäinen "
                  "luetaan"));

    // the batch has run 3 -> 6 before, but for the product groups from 10 on
    const std::vector<vatchange::EarlierDefinition> earlier = {
        {str("A"),
         loadedWith("TuoteryhmaCheckBox=1;TuoteryhmaAlkuEdit=1;TuoteryhmaLoppuEdit=9").definition}};
    const auto inBatch = [&](const char* settings) {
        const auto found = vatchange::definitionFindings(loadedWith(settings), {}, earlier);
        return found.size() == 1 ? std::optional(found[0].kind) : std::nullopt;
    };
    EXPECT_EQ(inBatch(""), std::nullopt);  // the rest of the groups
    EXPECT_EQ(inBatch("TuoteryhmaCheckBox=1;TuoteryhmaAlkuEdit=1;TuoteryhmaLoppuEdit=9"), Repeated);
    EXPECT_EQ(inBatch("LahdeAlvLuokkaEdit=6;KohdeAlvLuokkaEdit=200"), ChangedTwice);
    EXPECT_EQ(inBatch("LahdeAlvLuokkaEdit=6;KohdeAlvLuokkaEdit=200;TuoteryhmaCheckBox=1;"
                      "TuoteryhmaAlkuEdit=10;TuoteryhmaLoppuEdit=20"),
              std::nullopt);
}

TEST(CustomerGroups, MissingOnesAreDroppedUnlessAllAreMissing) {
    LoadedDefinition loaded = loadedWith("AsRyhmaCheckList=1,9");
    vatchange::dropMissingGroups(loaded.definition, kFacts);
    EXPECT_EQ(loaded.definition.customerGroups, std::vector<int>({1}));
    loaded = loadedWith("AsRyhmaCheckList=8,9");
    vatchange::dropMissingGroups(loaded.definition, kFacts);
    EXPECT_EQ(loaded.definition.customerGroups, std::vector<int>({8, 9}));
}

TEST(LoadFindings, ApplyUntilTheirValueIsEdited) {
    LoadedDefinition loaded = loadedWith("OstohintaEdit=x;KohdeAlvLuokkaEdit");
    EXPECT_EQ(vatchange::remainingFindings(loaded.findings, loaded.definition), loaded.findings);
    loaded.definition.targetClass = 6;
    const auto remaining = vatchange::remainingFindings(loaded.findings, loaded.definition);
    ASSERT_EQ(remaining.size(), 1U);
    EXPECT_EQ(remaining[0].control, str("OstohintaEdit"));
}

TEST(IgnoreList, KeepsNumbersAndReportsTheRest) {
    // text, numbers, what is dropped
    const std::tuple<const char*, QList<qint64>, const char*> cases[] = {
        {"", {}, ""},
        {",003,,+1,-2, 5 ,1.5,0x7,", {3, 5}, "+1|-2|1.5|0x7"},
        {"000,9223372036854775807,9223372036854775808",
         {0, 9223372036854775807},
         "9223372036854775808"},
        {"1) OR (1=1", {}, "1) OR (1=1"},
        {"٣,6 7", {}, "٣|6 7"},  // an Arabic digit
    };
    for (const auto& [text, numbers, dropped] : cases) {
        const auto list = vatchange::parseIgnoreList(str(text));
        EXPECT_EQ(list.numbers, numbers) << text;
        EXPECT_EQ(list.dropped.join(u'|'), str(dropped));
    }
}

}  // namespace
