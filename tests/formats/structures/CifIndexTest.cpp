// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/CifIndex.h>

#include <algorithm>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <strandview/formats/Source.h>
#include <strandview/formats/structures/StructureReader.h>
#include <strandview/formats/structures/nucleicAcid.h>
#include <strandview/formats/structures/readAtoms.h>
#include <strandview/formats/text/encoding.h>

#include "support/structureModels.h"
#include "support/structureTexts.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string cifModels(const std::string& letters, int count)
{
    return cifOf(modelsOf(letters, count));
}

std::vector<double> placesOf(Series& series)
{
    std::vector<double> places;
    for (std::size_t frame = 0; frame < series.count(); ++frame) {
        const LoadedFrame loaded = series.load(frame);
        EXPECT_TRUE(loaded.configuration) << loaded.error;
        places.push_back(placeOf(loaded.configuration));
    }
    return places;
}

struct ReadWhole
{
    std::vector<double> places;
    std::string error;
};

/// By the reader that goes through all of a text.
ReadWhole readWhole(const std::string& text)
{
    ReadWhole whole;
    ReadReport report;
    const auto take = [&](StructureModel model) {
        ReadReport ofModel;
        whole.places.push_back(placeOf(makeNucleicAcid(std::move(model), "here", ofModel)));
        return true;
    };
    readMmcif(withoutByteOrderMark(text), "here", {}, take, report);
    whole.error = report.error;
    return whole;
}

std::size_t lineAt(const std::string& text, std::size_t place)
{
    return 1 + std::size_t(std::count(text.begin(), text.begin() + long(place), '\n'));
}

/// The beginning of the row that has the first atom of a model, counted from 0.
std::size_t firstRowOf(const std::string& text, int model)
{
    std::size_t at = text.find('\n', text.rfind("\n_atom_site.") + 1);
    const std::size_t rows = duplexAtoms("ACG").size();
    for (std::size_t row = 0; row < rows * std::size_t(model); ++row)
        at = text.find('\n', at + 1);
    return at + 1;
}

std::size_t lastRowOf(const std::string& text, int model)
{
    return text.rfind('\n', firstRowOf(text, model + 1) - 2) + 1;
}

/// The first one, another one, and the last one.
std::vector<std::size_t> rowsOfTheSecond(const std::string& text)
{
    const std::size_t first = firstRowOf(text, 1);
    return {first, text.find('\n', first) + 1, lastRowOf(text, 1)};
}

/// The text with something else for a word of a row, counted from 0.
std::string withWord(std::string text, std::size_t row, int which, const std::string& word)
{
    std::size_t begin = row;
    for (; which > 0; --which)
        begin = text.find(' ', begin) + 1;
    return text.replace(begin, text.find_first_of(" \n", begin) - begin, word);
}

const int X = 7; // its word

/// Without the column that is a word, so that a row that takes a value of the next one has a number
/// more.
std::string startingWithNumbers(const std::string& text)
{
    return replaced(replaced(text, "_atom_site.group_PDB\n", ""), "\nATOM ", "\n");
}

/// With the model's number in the second column.
std::string withModelsFirst(const std::string& text)
{
    const std::string tag = "_atom_site.pdbx_PDB_model_num\n";
    std::istringstream lines(
        replaced(replaced(text, tag, ""), "_atom_site.id\n", tag + "_atom_site.id\n"));
    std::string changed;
    for (std::string line; std::getline(lines, line); changed += line + "\n") {
        const std::size_t last = line.rfind(' ');
        if (line.substr(0, 5) == "ATOM ")
            line = "ATOM" + line.substr(last) + line.substr(4, last - 4);
    }
    return changed;
}

/// A row of a table of atoms without a word for each line.
std::string inOneLine(const std::string& text)
{
    const std::size_t first = text.find("\nATOM ") + 1;
    return text.substr(0, first) + replaced(text.substr(first, text.size() - first - 2), "\n", " ");
}

} // namespace

TEST(CifIndex, EachFrameIsTheModelThatTheReaderOfAllModelsHas)
{
    const std::string text = cifModels("ACG", 3);
    const std::string body = text.substr(text.find('\n') + 1);
    const std::string other =
        "loop_\n_other.id\n_other.text\n1\n;loop_\ndata_x\n;\n2 'a data_ b'\n";
    for (const std::string& one :
         {text,
          replaced(text, "\n", "\r\n"),
          replaced(text, " ", "\n"),
          inOneLine(text),
          replaced(text, "\n", "\r"),
          replaced("# a comment\ndata_a\n" + other + "_some.text\n;\nATOM\n;\n" + body, "\n", "\r"),
          replaced(text, "ATOM ", "\n#\nATOM # of a row\n"),
          replaced(text, " 1\n", " .\n"),
          replaced(text, " 2\n", "\n;2\n;\n"),
          replaced(text, " 2\n", " '2'\n"),
          replaced(text, " 2\n", " B\n"),
          replaced(text, " 3\n", " 1\n"),
          "\xEF\xBB\xBF# a comment\nDATA_x\n" + other + text,
          "data_a\n" + other + "_some.text\n;\nATOM\n;\n" + body + "stop_\n_last.tag 'x\ty'\n",
          text + "loop_\n_other.a\n_other.b\n1 2 3 4\ndata_second\n" + body + "'",
          "data_a\n_a.b c\nsave_frame\n" + other + "save_\n" + body + "save_other\n_x.y z\nsave_\n",
          std::string(text).insert(firstRowOf(text, 1), "# "), // a model's first row
          replaced(text, "loop_\n", "loop_# of atoms\n"),
          text + "global_\n" + body,
          text + body,
          text.substr(0, text.size() - 3)}) {
        SCOPED_TRACE(one.substr(0, 1000));
        const ReadWhole expected = readWhole(one);
        ASSERT_EQ(expected.error, "");
        EXPECT_GE(expected.places.size(), 2u);
        const OpenedStructures opened = openText(one);
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_THAT(opened.report.notices, IsEmpty());
        EXPECT_EQ(placesOf(*opened.series), expected.places);
    }
}

TEST(CifIndex, ModelsThatTakeTurnsAreFramesEachTime)
{
    std::vector<TestAtom> atoms;
    for (const int model : {1, 2, 1})
        for (TestAtom atom : duplexAtoms("AC")) {
            atom.model = model;
            atoms.push_back(atom);
        }
    const OpenedStructures opened = openText(cifOf(atoms));
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_EQ(opened.series->count(), 3u);
    EXPECT_EQ(readWhole(cifOf(atoms)).places.size(), 3u);
}

TEST(CifIndex, WithoutAModelNumberAllAtomsAreOneModel)
{
    const std::string text = replaced(cifModels("ACG", 2), "pdbx_PDB_model_num", "other");
    const OpenedStructures opened = openText(text);
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_EQ(opened.series->count(), 1u);
}

TEST(CifIndex, AModelThatCannotBeReadIsToldWithItsPlaceAndTheOthersStay)
{
    const std::string text = cifModels("ACG", 3);
    for (const std::size_t row : rowsOfTheSecond(text)) {
        const std::string place = "here:" + std::to_string(lineAt(text, row));
        SCOPED_TRACE(place);
        for (const auto& [word, error] : std::vector<std::pair<std::string, std::string>>{
                 {"x.0", ": Cartn_x: found 'x.0', expected a finite number"},
                 {"_x", ":"},
                 {"'x", ":"},
                 {"\x80", ":"}}) {
            const OpenedStructures opened = openText(withWord(text, row, X, word));
            ASSERT_TRUE(opened.series) << opened.report.error;
            ASSERT_EQ(opened.series->count(), word[0] == '_' ? 2u : 3u) << word;
            EXPECT_THAT(opened.series->load(1).error, testing::StartsWith(place + error)) << word;
            EXPECT_NEAR(placeOf(opened.series->load(0).configuration), 1, 0.01);
            if (word[0] != '_') {
                EXPECT_NEAR(placeOf(opened.series->load(2).configuration), 3, 0.01);
            }
        }
    }
}

TEST(CifIndex, ARowOfTooFewOrTooManyValuesSpoilsItsModelAlone)
{
    const std::string text = cifModels("ACG", 3);
    for (const std::string& table : {text, startingWithNumbers(text), withModelsFirst(text)})
        for (const std::size_t row : rowsOfTheSecond(table))
            for (const char* word : {"", "1 2", "1 2 3 4 5", "'1' \"2\""}) {
                const std::string changed = withWord(table, row, X, word);
                SCOPED_TRACE(changed.substr(row, 100));
                const OpenedStructures opened = openText(changed);
                ASSERT_TRUE(opened.series) << opened.report.error;
                ASSERT_EQ(opened.series->count(), 3u) << word;
                EXPECT_THAT(opened.series->load(1).error, HasSubstr("here:")) << word;
                EXPECT_NEAR(placeOf(opened.series->load(0).configuration), 1, 0.01);
                EXPECT_NEAR(placeOf(opened.series->load(2).configuration), 3, 0.01);
                EXPECT_NE(readWhole(changed).error, "");
            }
}

TEST(CifIndex, OfTwoModelsEachIsSpoiltByItsOwnRows)
{
    const std::string text = cifModels("ACG", 4);
    std::string changed = withWord(text, firstRowOf(text, 2), X, "");
    changed = withWord(changed, lastRowOf(changed, 1), X, "");
    const OpenedStructures opened = openText(changed);
    ASSERT_TRUE(opened.series) << opened.report.error;
    ASSERT_EQ(opened.series->count(), 4u);
    EXPECT_NEAR(placeOf(opened.series->load(0).configuration), 1, 0.01);
    EXPECT_NE(opened.series->load(1).error, "");
    EXPECT_NE(opened.series->load(2).error, "");
    EXPECT_NEAR(placeOf(opened.series->load(3).configuration), 4, 0.01);
}

TEST(CifIndex, OfTheFirstModelWhatIsWrongInItsFirstRowIsTold)
{
    const std::string text = cifModels("ACG", 3);
    const OpenedStructures opened = openText(withWord(text, firstRowOf(text, 0), X, ""));
    ASSERT_TRUE(opened.series) << opened.report.error;
    ASSERT_EQ(opened.series->count(), 3u);
    EXPECT_NE(opened.series->load(0).error, "");
    EXPECT_NEAR(placeOf(opened.series->load(1).configuration), 2, 0.01);
}

TEST(CifIndex, ALastModelThatEndsWithinARowIsLeftOutAndAnOnlyOneRefused)
{
    const std::string text = cifModels("ACG", 3);
    const std::size_t row = firstRowOf(text, 2) + 300;
    for (const std::string& end : {std::string("ATOM 1 P"), std::string("ATOM 1 \"O3"),
                                   std::string("ATOM\n"), std::string("ATOM\n;text\n")}) {
        const std::string cut = text.substr(0, text.find('\n', row) + 1) + end;
        const OpenedStructures opened = openText(cut);
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_EQ(opened.series->count(), 2u);
        EXPECT_THAT(opened.report.notices,
                    ElementsAre(HasSubstr("; frame 2, the last one, is left out")));
        EXPECT_THAT(opened.report.notices[0], HasSubstr(readWhole(cut).error));
        const std::string only =
            text.substr(0, text.find('\n', firstRowOf(text, 0) + 300) + 1) + end;
        EXPECT_EQ(openText(only).report.error, readWhole(only).error);
        EXPECT_NE(readWhole(only).error, "");
    }
}

TEST(CifIndex, WhatIsWrongInFrontOfTheAtomsRefusesTheText)
{
    const std::string text = replaced(cifModels("ACG", 2), "#\n_entry", "_a.b c\n_entry");
    for (const std::string& wrong :
         {replaced(text, "_entry.id TEST", "_entry.id 'TEST"),
          replaced(text, "_entry.id TEST", "TEST"), replaced(text, "_entry.id TEST", "loop_ 1 2"),
          replaced(text, "_entry.id TEST", "save_x\n"), replaced(text, "Cartn_y", "y"),
          replaced(text, "loop_", "save_x loop_"), std::string("data_x\n_entry.id x\n;text\n")}) {
        const std::string expected = readWhole(wrong).error;
        EXPECT_NE(expected, "");
        EXPECT_EQ(openText(wrong).report.error, expected);
        ReadReport report;
        EXPECT_FALSE(readStructure(*Source::ofBytes("here", wrong), {}, report));
        EXPECT_EQ(report.error, expected);
    }
    EXPECT_EQ(openText("data_x\n_entry.id x\n").report.error, "here: found no atoms, expected DNA");
}

TEST(CifIndex, WhatStandsInFrontOfTheAtomsHoldsForAllModels)
{
    const std::string table = "loop_\n_chem_comp.id\n_chem_comp.mon_nstd_parent_comp_id\n"
                              "ZZZ DC\nYYY\n;DG\n;\n";
    std::string text = replaced(cifModels("ACG", 3), " DC ", " ZZZ ");
    text.insert(text.find("loop_"), table);
    const OpenedStructures opened = openText(text);
    ASSERT_TRUE(opened.series) << opened.report.error;
    ASSERT_EQ(opened.series->count(), 3u);
    for (const std::size_t frame : {2, 0, 1})
        EXPECT_THAT(opened.series->load(frame).notices, testing::Contains(HasSubstr("ZZZ as C")));
}

TEST(CifIndex, OpenedAtOnceTheFirstModelIsThereAndTheOthersAreFoundLater)
{
    const int count = 300; // some megabytes
    const std::string text = cifModels("ACGTACGT", count);
    const OpenedStructures opened = openText(text, atOnce());
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_LT(opened.series->count(), std::size_t(count));
    EXPECT_NEAR(placeOf(opened.series->load(0).configuration), 1, 0.01);
    EXPECT_FALSE(opened.series->lookForMore({}));
    EXPECT_EQ(opened.series->count(), std::size_t(count));
    EXPECT_NEAR(placeOf(opened.series->load(count - 1).configuration), count, 0.01);
    EXPECT_EQ(openText(text).series->count(), std::size_t(count));
    EXPECT_EQ(openText(inOneLine(text), atOnce()).series->count(), std::size_t(count));
}

TEST(CifIndex, OfATextThatGrowsAModelIsWholeOnceSomethingElseFollows)
{
    const std::string text = cifModels("ACG", 3);
    ReadOptions growing;
    growing.growing = true;
    const auto wholeOf = [&](const std::string& part) {
        const auto source = Source::ofBytes("here", part);
        CifIndex index;
        ReadReport report;
        EXPECT_TRUE(index.lookOn(*source, growing, report)) << report.error;
        std::size_t whole = 0;
        for (std::size_t frame = 0; frame < index.count(); ++frame) {
            const FrameRead read = index.read(frame, *source, growing, report);
            EXPECT_NE(read.configuration.has_value(), read.isCut);
            whole += read.configuration.has_value();
        }
        return whole;
    };
    const std::size_t second = firstRowOf(text, 1);
    const std::size_t behind = text.find('\n', second) + 1;
    EXPECT_EQ(wholeOf(text.substr(0, second)), 0u);
    EXPECT_EQ(wholeOf(text.substr(0, behind - 1)), 0u) << "a line counts once its end is there";
    EXPECT_EQ(wholeOf(text.substr(0, behind)), 1u);
    EXPECT_EQ(wholeOf(text), 3u) << "behind it stands #";
    EXPECT_EQ(wholeOf(text.substr(0, text.size() - 2)), 2u);
    EXPECT_EQ(wholeOf(text.substr(0, text.size() - 2) + "_some.tag\n"), 3u);
    EXPECT_EQ(wholeOf(text.substr(0, text.size() - 2) + "ATOM\n#\n"), 2u);
}

TEST(CifIndex, GoesOnFromWhereItWasStopped)
{
    const std::string text = cifModels("ACGTACGT", 300);
    const auto source = Source::ofBytes("here", text);
    CifIndex index;
    ReadReport report;
    int stops = 0;
    const auto once = [] {
        ReadOptions options;
        options.goOn = [times = 1](double) mutable { return times-- > 0; };
        return options;
    };
    while (!index.lookOn(*source, once(), report) && stops < 100) {
        EXPECT_EQ(report.error, "here: reading was stopped");
        report.error.clear();
        ++stops;
    }
    EXPECT_EQ(stops, int(text.size() >> 20));
    EXPECT_EQ(index.count(), 300u);
}

// ---- Any change of one character

namespace {

/// Two data blocks, tables before, between and behind, and words of all forms.
std::string manyThings()
{
    std::string text = cifModels("AC", 3);
    text.insert(text.find("loop_"),
                "loop_\n_chem_comp.id\n_chem_comp.mon_nstd_parent_comp_id\nZZZ DC\nYYY 'D G'\n"
                "_some.text\n;loop_\n it's\n;\n");
    return replaced(text, " DC ", " ZZZ ") + "loop_\n_other.a\n_other.b\n1 \"2\"\n'3' ?\nstop_\n" +
           "save_x\n_y.z 1\nsave_\ndata_y\n_entry.id y\n";
}

/// The frames that are good up to the first one that is not, and what is told of that one.
ReadWhole readFrames(const std::string& text)
{
    ReadWhole found;
    const auto source = Source::ofBytes("here", text);
    CifIndex index;
    ReadReport report;
    if (!index.lookOn(*source, {}, report)) {
        found.error = report.error;
        return found;
    }
    for (std::size_t frame = 0; frame < index.count(); ++frame) {
        ReadReport ofFrame;
        const FrameRead read = index.read(frame, *source, {}, ofFrame);
        if (!read.configuration && !read.isEmpty) {
            found.error = ofFrame.error;
            return found;
        }
        found.places.push_back(placeOf(read.configuration));
    }
    return found;
}

} // namespace

TEST(CifIndex, WhateverCharacterIsChangedItTellsWhatTheReaderOfAllTells)
{
    const std::string text = manyThings();
    const std::vector<double> whole = readWhole(text).places;
    ASSERT_EQ(whole.size(), 3u) << readWhole(text).error;
    std::mt19937 random(7);
    const std::string characters = " \n\r\t#'\";_$?.1aZ-~\x01\x80";
    std::size_t wrong = 0, sameError = 0;
    for (int i = 0; i < 4000; ++i) {
        std::string changed = text;
        const std::size_t place = random() % text.size();
        switch (random() % 3) {
        case 0:
            changed.erase(place, 1);
            break;
        case 1:
            changed[place] = characters[random() % characters.size()];
            break;
        default:
            changed.insert(place, 1, characters[random() % characters.size()]);
        }
        SCOPED_TRACE(changed.substr(place < 40 ? 0 : place - 40, 80));
        const ReadWhole expected = readWhole(changed), found = readFrames(changed);
        if (expected.error.empty() && expected.places.empty()) {
            EXPECT_EQ(found.error, "here: found no atoms, expected DNA");
            continue;
        }
        ASSERT_EQ(found.error.empty(), expected.error.empty()) << found.error << "\n"
                                                               << expected.error;
        if (expected.error.empty()) {
            ASSERT_EQ(found.places, expected.places);
            continue;
        }
        // Of a wrong first row of a model the reader of all has not finished the one before.
        ASSERT_LE(found.places.size(), expected.places.size() + 1);
        for (std::size_t k = 0; k < found.places.size(); ++k)
            ASSERT_EQ(found.places[k], k < expected.places.size() ? expected.places[k] : whole[k]);
        ++wrong;
        sameError += found.error == expected.error;
        if (found.error == expected.error)
            continue;
        ASSERT_THAT(found.error, testing::AnyOf(HasSubstr("found an atom of model"),
                                                HasSubstr("found a table that ends in a row of")));
    }
    EXPECT_GT(wrong, 500u);
    EXPECT_GT(sameError, wrong / 2) << "all but where a row has too few values, or too many";
}

} // namespace strandview
