// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/PdbFrames.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <strandview/formats/Source.h>
#include <strandview/formats/structures/nucleicAcid.h>
#include <strandview/formats/structures/readAtoms.h>

#include "support/structureModels.h"
#include "support/structureTexts.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string pdbModels(const std::string& letters, int count)
{
    return pdbOf(modelsOf(letters, count));
}

/// Up to some text, counted from 0, and without that.
std::string before(const std::string& text, const std::string& end, int which = 0)
{
    std::size_t at = text.find(end);
    for (; which > 0; --which)
        at = text.find(end, at + 1);
    return text.substr(0, at);
}

} // namespace

TEST(PdbFrames, EachFrameIsTheModelThatTheReaderOfAllModelsHas)
{
    const std::string text = pdbModels("ACG", 3);
    for (const std::string& one :
         {text, replaced(text, "ENDMDL\n", ""), replaced(text, "\n", "\r\n"),
          replaced(replaced(text, "ENDMDL", "END"), "MODEL ", "REMARK"),
          replaced(text, "TER\n", "TER\nREMARK\n\n"), before(text, "END\n"),
          replaced(text, "\n", "\r")}) {
        std::vector<double> expected, found;
        ReadReport report;
        const auto take = [&](StructureModel model) {
            expected.push_back(
                makeNucleicAcid(std::move(model), "here", report)->dnas.at(0).pairPoints[0].x);
            return true;
        };
        ASSERT_TRUE(readPdb(one, "here", {}, take, report)) << report.error;
        const OpenedStructures opened = openText(one);
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_THAT(opened.report.notices, IsEmpty());
        for (std::size_t frame = 0; frame < opened.series->count(); ++frame)
            found.push_back(placeOf(opened.series->load(frame).configuration));
        EXPECT_EQ(found.size(), 3u);
        EXPECT_EQ(found, expected);
    }
}

TEST(PdbFrames, AModelThatCannotBeReadIsToldWithItsPlaceAndTheOthersStay)
{
    std::string text = pdbModels("ACG", 3);
    const std::size_t second = text.find("ATOM", text.find("ENDMDL"));
    text.replace(second + 30, 8, "   x.000");
    const auto line = 1 + std::count(text.begin(), text.begin() + long(second), '\n');
    const OpenedStructures opened = openText(text);
    ASSERT_TRUE(opened.series) << opened.report.error;
    ASSERT_EQ(opened.series->count(), 3u);
    EXPECT_EQ(opened.series->load(1).error,
              "here:" + std::to_string(line) +
                  ": column 31 (x): found 'x.000', expected a finite number");
    EXPECT_NEAR(placeOf(opened.series->load(0).configuration), 1, 0.01);
    EXPECT_NEAR(placeOf(opened.series->load(2).configuration), 3, 0.01);
}

TEST(PdbFrames, ALastModelWithoutItsEndIsLeftOutAndAnOnlyOneRefused)
{
    const std::string text = pdbModels("ACG", 3);
    for (const std::string& cut : {before(text, "ENDMDL", 2), before(text, "TER", 4),
                                   before(text, "TER", 4) + "ATOM     70  N1   D"}) {
        const OpenedStructures opened = openText(cut);
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_EQ(opened.series->count(), 2u);
        EXPECT_THAT(opened.report.notices,
                    ElementsAre(HasSubstr("found the end of the file within a model, expected "
                                          "ENDMDL or END; frame 2, the last one, is left out")));
    }
    const std::string ends = replaced(replaced(text, "ENDMDL", "END"), "MODEL ", "REMARK");
    EXPECT_EQ(openText(before(ends, "TER", 4)).series->count(), 2u);
    EXPECT_THAT(openText(before(text, "ENDMDL")).report.error,
                HasSubstr(": found the end of the file within a model, expected ENDMDL or END"));
}

TEST(PdbFrames, LinesMayEndWithReturnsFromAnyPlaceOn)
{
    const int count = 300; // some megabytes
    const std::string text = pdbModels("ACGTACGT", count);
    for (const std::size_t from : {std::size_t(0), text.find('\n', text.size() / 2)}) {
        const std::string old = text.substr(0, from) + replaced(text.substr(from), "\n", "\r");
        const OpenedStructures opened = openText(old);
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_EQ(opened.series->count(), std::size_t(count));
        EXPECT_NEAR(placeOf(opened.series->load(count - 1).configuration), count, 0.01);
        const OpenedStructures cut = openText(before(old, "ENDMDL", count - 1));
        ASSERT_TRUE(cut.series) << cut.report.error;
        EXPECT_EQ(cut.series->count(), std::size_t(count - 1));
    }
    EXPECT_THAT(openText(replaced(before(text, "ENDMDL"), "\n", "\r")).report.error,
                HasSubstr(": found the end of the file within a model, expected ENDMDL or END"));
}

TEST(PdbFrames, AnOnlyModelNeedsNoEnd)
{
    const std::string text = pdbModels("ACG", 1);
    ASSERT_EQ(text.find("MODEL"), text.npos);
    const std::string atoms = before(text, "TER", 1);
    EXPECT_TRUE(openText(atoms).series);
    EXPECT_THAT(openText(atoms.substr(0, atoms.size() - 40)).report.error,
                HasSubstr("found an atom of 43 characters"));
}

TEST(PdbFrames, WhatStandsBeforeTheFirstModelHoldsForAllThatFollow)
{
    const std::string modified = "MODRES 1ABC ZZZ A    2   DC  SOMETHING\n";
    const std::string text = replaced(pdbModels("ACG", 3), " DC A", "ZZZ A");
    const auto tellsOf = [](Series& series, std::size_t frame) {
        const LoadedFrame loaded = series.load(frame);
        return std::any_of(loaded.notices.begin(), loaded.notices.end(), [](const auto& notice) {
            return notice.find("ZZZ as C") != notice.npos;
        });
    };
    const OpenedStructures opened = openText(modified + text);
    ASSERT_TRUE(opened.series) << opened.report.error;
    for (const std::size_t frame : {2, 0, 1})
        EXPECT_TRUE(tellsOf(*opened.series, frame));

    const std::size_t second = text.find("MODEL", text.find("ENDMDL"));
    const OpenedStructures later =
        openText(text.substr(0, second) + "MODRES 1ABC ZZZ A    2   DG\n" + text.substr(second));
    ASSERT_TRUE(later.series) << later.report.error;
    const auto basesOf = [&](std::size_t frame) {
        return later.series->load(frame).configuration->dnas.at(0).bases;
    };
    EXPECT_EQ(basesOf(0), "ACG") << "by its atoms";
    EXPECT_NE(basesOf(1), "ACG");
    EXPECT_EQ(basesOf(0), "ACG");
}

TEST(PdbFrames, OpenedAtOnceTheFirstModelIsThereAndTheOthersAreFoundLater)
{
    const int count = 300; // some megabytes
    const OpenedStructures opened = openText(pdbModels("ACGTACGT", count), atOnce());
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_LT(opened.series->count(), std::size_t(count));
    EXPECT_NEAR(placeOf(opened.series->load(0).configuration), 1, 0.01);
    EXPECT_FALSE(opened.series->lookForMore({}));
    EXPECT_EQ(opened.series->count(), std::size_t(count));
    EXPECT_NEAR(placeOf(opened.series->load(count - 1).configuration), count, 0.01);
}

TEST(PdbFrames, ModelsWithoutDnaBeforeTheFirstOneWithItAreEmptyFrames)
{
    std::string water = "REMARK\n";
    for (int model = 0; model < 20000; ++model)
        water += pdbLine(waterAtom(), 1) + "ENDMDL\n";
    for (const ReadOptions& options : {ReadOptions(), atOnce()}) {
        const OpenedStructures opened = openText(water + pdbModels("ACG", 2), options);
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_FALSE(opened.series->lookForMore({}));
        ASSERT_EQ(opened.series->count(), 20002u);
        EXPECT_TRUE(opened.series->load(0).configuration->dnas.empty());
        EXPECT_NEAR(placeOf(opened.series->load(20001).configuration), 2, 0.01);
        EXPECT_EQ(openText(water, options).report.error, "here: found water alone, expected DNA");
    }
}

} // namespace strandview
