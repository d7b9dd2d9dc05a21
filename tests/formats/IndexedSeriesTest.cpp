// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/IndexedSeries.h>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Frames "frame TIME" with a line for each point's z, the last one ".".
class Heights : public TextFrames
{
public:
    void see(std::string_view line, FrameIndex& index) override
    {
        longest = std::max(longest, line.size());
        ++lines;
        if (line.substr(0, 5) == "wrong")
            index.refuse("found wrong, expected right");
        if (line.substr(0, 5) != "frame")
            return;
        index.begin();
        if (line.size() > 6)
            index.setTime(std::stod(std::string(line.substr(6))));
    }

    FrameRead read(const FrameText& frame, const std::string& fileName, const ReadOptions& options,
                   ReadReport& report) override
    {
        texts.emplace_back(frame.text);
        if (options.goOn && !options.goOn(0.5)) {
            report.error = "stopped";
            return {};
        }
        if (frame.text.find('.') == frame.text.npos) {
            report.error = fileName + ":" + std::to_string(frame.line) + ": found no end";
            return {{}, true};
        }
        Configuration read;
        read.markers.emplace_back().id = (long long)frame.line;
        return {std::move(read)};
    }

    std::size_t longest = 0, lines = 0;
    std::vector<std::string> texts;
};

struct Opened
{
    Heights* frames; ///< the series'
    std::unique_ptr<Series> series;
    ReadReport report;
};

Opened open(std::unique_ptr<Source> source)
{
    Opened opened;
    auto frames = std::make_unique<Heights>();
    opened.frames = frames.get();
    opened.series = IndexedSeries::open(std::move(source), std::move(frames), {}, opened.report);
    return opened;
}
Opened open(const std::string& text) { return open(Source::ofBytes("here", text)); }

const std::string THREE = "frame 1\n0\n.\nframe\n5\n6\n.\nframe 3.5\n.\n";

} // namespace

TEST(IndexedSeries, FindsFramesWithTheirTimesAndReadsEachByItself)
{
    const Opened opened = open(THREE);
    ASSERT_TRUE(opened.series) << opened.report.error;
    ASSERT_EQ(opened.series->count(), 3u);
    EXPECT_EQ(opened.series->time(0), 1.0);
    EXPECT_EQ(opened.series->time(1), std::nullopt);
    EXPECT_EQ(opened.series->time(2), 3.5);
    EXPECT_EQ(opened.series->time(3), std::nullopt);
    opened.frames->texts.clear();
    EXPECT_EQ(opened.series->load(1).configuration->markers[0].id, 4) << "the line";
    EXPECT_EQ(opened.series->load(0).configuration->markers[0].id, 1);
    EXPECT_EQ(opened.series->load(2).configuration->markers[0].id, 8);
    EXPECT_THAT(opened.frames->texts,
                ElementsAre("frame\n5\n6\n.\n", "frame 1\n0\n.\n", "frame 3.5\n.\n"));
    EXPECT_EQ(opened.series->load(3).error, "found frame 3, expected 0 to 2");
}

TEST(IndexedSeries, ReadsFilesAnywhereAndPipesFromWhatWasKept)
{
    const TemporaryFolder folder;
    ReadReport report;
    const Opened file = open(Source::open(folder.write("a.txt", THREE), report));
    ASSERT_TRUE(file.series);
    EXPECT_EQ(file.series->count(), 3u);
    EXPECT_EQ(file.series->load(1).configuration->markers[0].id, 4);
}

TEST(IndexedSeries, LinesMayEndWithCarriageReturnsAndTheFileWithoutAny)
{
    const Opened opened = open("\xEF\xBB\xBF"
                               "frame 1\r\n.\r\nframe 2\r\n.");
    ASSERT_TRUE(opened.series) << opened.report.error;
    ASSERT_EQ(opened.series->count(), 2u);
    EXPECT_EQ(opened.series->time(1), 2.0);
    opened.frames->texts.clear();
    opened.series->load(0);
    opened.series->load(1);
    EXPECT_THAT(opened.frames->texts, ElementsAre("frame 1\r\n.\r\n", "frame 2\r\n."));
}

TEST(IndexedSeries, LinesAcrossPiecesAreOneAndOfLongOnesTheBeginningIsSeen)
{
    // A frame begins so that its first line lies across the end of the first MiB.
    for (const std::size_t before : {(1u << 20) - 3, (1u << 20) - 8, 1u << 20}) {
        const Opened opened = open(std::string(before - 1, 'x') + "\nframe 7\n.\n");
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_EQ(opened.series->count(), 1u);
        EXPECT_EQ(opened.series->time(0), 7.0);
        EXPECT_EQ(opened.frames->longest, 4096u);
        EXPECT_EQ(opened.frames->lines, 3u);
        EXPECT_EQ(opened.series->load(0).configuration->markers[0].id, 2);
    }
}

TEST(IndexedSeries, ACutLastFrameIsLeftOutWithANotice)
{
    const Opened opened = open("frame 1\n.\nframe 2\n5\n");
    ASSERT_TRUE(opened.series);
    EXPECT_EQ(opened.series->count(), 1u);
    EXPECT_THAT(opened.report.notices,
                ElementsAre("here:3: found no end; frame 1, the last one, is left out"));
    opened.frames->texts.clear();
    opened.series->load(0);
    EXPECT_THAT(opened.frames->texts, ElementsAre("frame 1\n.\n"));
}

TEST(IndexedSeries, RefusesACutOnlyFrameAndFilesWithoutFrames)
{
    EXPECT_EQ(open("frame 1\n5\n").report.error, "here:1: found no end");
    for (const char* text : {"", "\n", "x\ny"})
        EXPECT_EQ(open(text).report.error,
                  "here: found nothing to show, expected at least one frame");
    EXPECT_EQ(open("frame 1\n.\nwrong\nframe\n").report.error,
              "here:3: found wrong, expected right");
    EXPECT_THAT(open("\xFF\xFE").report.error, HasSubstr("UTF-16"));
}

TEST(IndexedSeries, TheFirstFrameIsReadWithoutALookAtTheOthers)
{
    Heights frames;
    ReadReport report;
    const auto source = Source::ofBytes("here", THREE + "wrong\n");
    const auto read = IndexedSeries::readFirst(*source, frames, {}, report);
    ASSERT_TRUE(read) << report.error;
    EXPECT_EQ(frames.lines, 4u) << "up to the line that begins the second one";
    EXPECT_THAT(frames.texts, ElementsAre("frame 1\n0\n.\n"));
    EXPECT_THAT(report.notices, IsEmpty());
}

TEST(IndexedSeries, AsksWhetherToGoOn)
{
    Heights frames;
    ReadReport report;
    ReadOptions options;
    options.goOn = [](double) { return false; };
    const auto source = Source::ofBytes("here", THREE);
    EXPECT_FALSE(IndexedSeries::readFirst(*source, frames, options, report));
    EXPECT_EQ(report.error, "here: reading was stopped");
    EXPECT_EQ(open(THREE).series->load(0, [](double) { return false; }).error, "stopped");
}

} // namespace strandview
