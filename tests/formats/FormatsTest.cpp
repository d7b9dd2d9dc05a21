// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/formats.h>

#include <cctype>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include <strandview/formats/Source.h>

namespace strandview {

namespace {

std::string nameOf(const Format* format) { return format ? format->name : "none"; }

/// The headings of the guide that name endings: "Tables: `.txt` `.dat`", one a line.
std::string headingsOfTheGuide()
{
    static const std::regex heading("^## (.*: `\\..*)$");
    std::string headings;
    std::ifstream guide(FILES_GUIDE);
    EXPECT_TRUE(guide);
    for (std::string line; std::getline(guide, line);) {
        std::smatch match;
        if (std::regex_match(line, match, heading))
            headings += match[1].str() + "\n";
    }
    return headings;
}

} // namespace

TEST(Formats, TheGuideHasASectionForEachWithItsEndings)
{
    std::string headings;
    for (const Format& format : formats()) {
        headings += format.name + ":";
        for (const std::string& ending : format.endings)
            headings += " `" + ending + "`";
        headings += "\n";
    }
    EXPECT_EQ(headings, headingsOfTheGuide());
}

TEST(Formats, AnEndingIsNamedOnceAndWrittenSmall)
{
    for (const Format& format : formats()) {
        EXPECT_FALSE(format.endings.empty()) << format.name;
        std::set<std::string> seen;
        for (const std::string& ending : format.endings) {
            EXPECT_EQ(ending.find('.'), 0u) << ending;
            EXPECT_TRUE(seen.insert(ending).second) << ending;
            for (const unsigned char c : ending)
                EXPECT_FALSE(std::isupper(c)) << ending;
        }
    }
}

TEST(Formats, TheEndingOfAPathTellsOneInAnyCase)
{
    EXPECT_EQ(nameOf(formatOfEnding("a/b.c/rods.CSV")), "Tables");
    EXPECT_EQ(nameOf(formatOfEnding("rods.txt.json")), "JSON");
    EXPECT_EQ(nameOf(formatOfEnding("rods.json.GZ")), "JSON");
    EXPECT_EQ(nameOf(formatOfEnding("run.oxdna.zst")), "oxDNA");
    for (const char* path : {"", "-", "rods", ".json", "a.json/rods", "rods.jsonx", "rods.pdbx"})
        EXPECT_EQ(formatOfEnding(path), nullptr) << path;
}

TEST(Formats, TheContentTellsOne)
{
    using namespace std::string_literals;
    EXPECT_EQ(nameOf(formatOfContent(" \r\n\t{")), "JSON");
    EXPECT_EQ(nameOf(formatOfContent("\xEF\xBB\xBF{")), "JSON");
    EXPECT_EQ(nameOf(formatOfContent("0 0 0\n{")), "Tables");
    EXPECT_EQ(nameOf(formatOfContent("")), "Tables");
    for (const std::string& bytes : {"{\0"s, "PK\x03\x04"s, "\xFF\xFE{"s})
        EXPECT_EQ(formatOfContent(bytes), nullptr);
}

TEST(Formats, WhatIsExpectedNamesThemAll)
{
    const std::string last = " or " + formats().back().expected;
    EXPECT_EQ(expectedFormats().rfind("a table, JSON, ", 0), 0u);
    EXPECT_EQ(expectedFormats().find(last), expectedFormats().size() - last.size());
    EXPECT_EQ(endingsOf(formats()[0]), ".txt .dat .csv .tsv .xyz .raw");
    EXPECT_EQ(endingsOf(formats()[1], "*"), "*.json");
}

TEST(Formats, EachReadsASourceUnderItsName)
{
    using namespace std::string_literals;
    const std::map<std::string, std::string> texts = {
        {"Tables", "0 0 0\n0 0 1\n"},
        {"JSON", R"({"strandview": 1, "rods": [{"points": [[0, 0, 0], [0, 0, 1]]}]})"},
        {"Step parameters", "2\n0 # parameters\nA-T 0 0 0 0 0 0 0 0 0 0 0 0\n"
                            "C-G 0 0 0 0 0 0 0 0 3.4 0 0 36\n"},
        {"PDB and mmCIF",
         "ATOM      1  P    DA A   1       0.000   0.000   0.000  1.00  0.00           P\n"
         "ATOM      2  O3'  DA A   1       4.000   0.000   0.000  1.00  0.00           O\n"
         "ATOM      3  P    DA A   2       5.600   0.000   0.000  1.00  0.00           P\n"},
        {"Pair frames", "{{0,0,0},{{1,0,0},{0,1,0},{0,0,1}}}\n"
                        "{{0,0,3},{{1,0,0},{0,1,0},{0,0,1}}}\n"},
        {"Fibre reports", "% frame 0\n% fiber f0:1\n1 0 0 0\n1 0 0 1\n% end\n"},
        {"Multi-frame XYZ", "2\n\nC 0 0 0\nC 0 0 1\n"},
        {"Geomview", "VECT\n1 2 0\n2\n0\n0 0 0\n0 0 1\n"},
        {"NumPy",
         "\x93NUMPY\x01\0\x3B\0{'descr': '<f8', 'fortran_order': False, 'shape': (2, 3)}  "s +
             std::string(46, '\0') + "\xF0\x3F"},
    };
    for (const Format& format : formats()) {
        SCOPED_TRACE(format.name);
        if (format.name == "oxDNA")
            continue; // of two files: OxdnaReaderTest.cpp
        ASSERT_EQ(texts.count(format.name), 1u) << "a text for each";
        const std::string& text = texts.at(format.name);
        EXPECT_EQ(nameOf(formatOfContent(text)), format.name);
        ReadReport report;
        const auto source = Source::ofBytes("here", text);
        const auto read = format.read(*source, {}, report);
        ASSERT_TRUE(read) << report.error;
        ASSERT_EQ(read->rods.size() + read->dnas.size(), 1u);
        const bool isRod = !read->rods.empty();
        EXPECT_EQ((isRod ? read->rods[0].points : read->dnas[0].pairPoints).size(), 2u);
        EXPECT_EQ((isRod ? read->rods[0].origin : read->dnas[0].origin).rfind("here:", 0), 0u);
    }
}

} // namespace strandview
