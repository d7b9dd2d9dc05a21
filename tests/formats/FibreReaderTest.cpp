// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/FibreReader.h>

#include <gmock/gmock.h>

#include <strandview/formats/readFile.h>

#include "support/TemporaryFolder.h"
#include "support/readText.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const std::string FIRST = "% frame 0\n% time 0.5\n% start 0.5\n% id pos_x pos_y pos_z\n"
                          "% fiber f0:1:228\n\n 1 0 0 0\n 1 0 0 1 0.25\n"
                          "% fiber f0:2\n 2 5 0 0\n 2 5 0 1\n 2 5 0 2\n% end\n\n";
const std::string SECOND = "% frame 7\n% fiber f0:1\n 1 1 0 0\n 1 0 0 1\n% end\n";

Reading read(const std::string& text) { return readWith(readFibres, text); }

std::unique_ptr<Series> open(const std::string& text, ReadReport& report)
{
    return openFibres(Source::ofBytes("here", text), {}, report);
}

} // namespace

TEST(FibreReader, FibresAreRodsOfTheirNamesWithoutTheirNumbers)
{
    const std::vector<Rod> rods = acceptedRods(read(FIRST + SECOND));
    ASSERT_EQ(rods.size(), 2u);
    EXPECT_EQ(numbersOf(rods[0].points), Points({{0, 0, 0}, {0, 0, 1}}));
    EXPECT_EQ(numbersOf(rods[1].points), Points({{5, 0, 0}, {5, 0, 1}, {5, 0, 2}}));
    EXPECT_EQ(rods[0].name, "f0:1:228");
    EXPECT_EQ(rods[1].name, "f0:2");
    EXPECT_EQ(rods[1].origin, "here:9: rod 2");
    EXPECT_THAT(rods[1].lines, ElementsAre(10, 11, 12));
}

TEST(FibreReader, FramesMayHaveOtherFibresAndTimesOrNone)
{
    ReadReport report;
    const auto series = open(FIRST + SECOND, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 2u);
    EXPECT_EQ(series->time(0), 0.5);
    EXPECT_EQ(series->time(1), std::nullopt);
    EXPECT_EQ(series->load(1).configuration->rods.size(), 1u);
    EXPECT_EQ(series->load(1).configuration->rods[0].lines[0], 17u) << "of the file";
    EXPECT_EQ(series->load(0).configuration->rods.size(), 2u);
}

TEST(FibreReader, ItsContentIsCertainWhateverItsName)
{
    EXPECT_EQ(likenessToFibres(FIRST), Likeness::CERTAIN);
    EXPECT_EQ(likenessToFibres("\n0\nFILAMENT 0 0 2 0 0\n1 2 3 4 5 6\n"), Likeness::CERTAIN);
    for (const char* text : {"", "% frame 3\n0 0 0\n", "% fibre\n", "FILAMENT x y\n0 0 0\n"})
        EXPECT_EQ(likenessToFibres(text), Likeness::NONE) << text;
    const TemporaryFolder folder;
    ReadReport report;
    EXPECT_TRUE(readFile(folder.write("run.csv", FIRST), {}, report)) << report.error;
}

TEST(FibreReader, RefusesBadReportsInOneLine)
{
    const std::pair<std::string, std::string> faults[] = {
        {"% fiber f0:1\n 1 0 0 0\n", "here:1: found '% fiber f0:1', expected '% frame' before it"},
        {"1 0 0 0\n% frame 1\n", "here:1: found '1 0 0 0', expected '% frame' before it"},
        {"0\n FILAMENT 0 0 2\n",
         "here:2: found a snapshot of filaments, expected a report of fibres"},
        {"% frame 0\n% fiber f\n1 0 0 0\n1 0 0 1\n",
         "here:5: found the end of the frame, expected '% end'"},
        {"% frame 0\n1 0 0 0\n", "here:2: found a row, expected '% fiber' before it"},
        {"% frame 0\n% fiber f\nx 0 0 0\n% end\n",
         "here:3: column 1: found 'x', expected the number of the fibre"},
        {"% frame 0\n% fiber f\n1 0 0\n% end\n",
         "here:3: column 4 (z): found the end of the line, expected x y z"},
        {"% frame 0\n% fiber f\n1 0 0 nan\n% end\n", "here:3: column 4 (z): found 'nan', expected"},
        {"% frame 0\n% fiber f\n1 0 0 0\n% end\n",
         "here:2: found 1 distinct point, expected at least 2 in a rod"},
        {"% frame 0\n% fiber f\n% end\n", "here:2: found 0 distinct points, expected at least 2"},
        {"% frame 0\n% end\n", "here: found nothing to show, expected at least one fibre"},
        {"", "here: found nothing to show"},
    };
    for (const auto& [text, error] : faults) {
        const Reading reading = read(text);
        EXPECT_FALSE(reading.configuration) << text;
        EXPECT_THAT(reading.report.error, StartsWith(error));
        ReadReport report;
        EXPECT_FALSE(open(text, report)) << text;
        EXPECT_EQ(report.error, reading.report.error);
    }
}

TEST(FibreReader, ACutLastFrameIsLeftOutWhereverItIsCut)
{
    const std::size_t marked = SECOND.find('\n'); // the frame's mark is there
    for (std::size_t kept = marked; kept < SECOND.size() - 1; ++kept) {
        ReadReport report;
        const auto series = open(FIRST + SECOND.substr(0, kept), report);
        ASSERT_TRUE(series) << kept << report.error;
        EXPECT_EQ(series->count(), 1u) << kept;
        ASSERT_EQ(report.notices.size(), 1u) << kept;
        EXPECT_THAT(report.notices[0], HasSubstr("; frame 1, the last one, is left out"));
    }
}

} // namespace strandview
