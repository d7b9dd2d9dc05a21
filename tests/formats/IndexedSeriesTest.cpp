// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/IndexedSeries.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/WrittenPipe.h"

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
    const WrittenPipe writer(folder.path("pipe"), THREE);
    const Opened pipe = open(Source::open(folder.path("pipe"), report));
    for (const Opened* opened : {&file, &pipe}) {
        ASSERT_TRUE(opened->series);
        EXPECT_EQ(opened->series->count(), 3u);
        for (const auto& [frame, line] : {std::pair(1, 4), std::pair(0, 1), std::pair(2, 8)})
            EXPECT_EQ(opened->series->load(std::size_t(frame)).configuration->markers[0].id, line);
    }
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

// ---- Opened at once

namespace {

/// Of some megabytes, each with its number as its time.
std::string longText(int frames)
{
    std::string text;
    for (int i = 0; i < frames; ++i)
        text += "frame " + std::to_string(i) + "\n" + std::string(1000, '5') + "\n.\n";
    return text;
}

Opened openAtOnce(const std::string& text)
{
    Opened opened;
    auto frames = std::make_unique<Heights>();
    opened.frames = frames.get();
    ReadOptions options;
    options.atOnce = true;
    opened.series = IndexedSeries::open(Source::ofBytes("here", text), std::move(frames), options,
                                        opened.report);
    return opened;
}

const auto STOP = [](double) { return false; };

} // namespace

TEST(IndexedSeries, AtOnceItHasTheFirstFrameAndFindsTheOthersLater)
{
    const Opened opened = openAtOnce(longText(4000));
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_LT(opened.frames->lines, 4000u) << "of 12000";
    const std::size_t first = opened.series->count();
    EXPECT_GE(first, 1u);
    EXPECT_EQ(opened.series->load(0).configuration->markers[0].id, 1);
    EXPECT_TRUE(opened.series->lookForMore(STOP));
    EXPECT_EQ(opened.series->count(), first) << "nothing was looked at";

    std::vector<double> shares;
    EXPECT_TRUE(opened.series->lookForMore([&](double share) {
        shares.push_back(share);
        return shares.size() < 3;
    }));
    EXPECT_GT(opened.series->count(), first);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_GT(shares.front(), 0);

    EXPECT_FALSE(opened.series->lookForMore({}));
    EXPECT_EQ(opened.series->count(), 4000u);
    EXPECT_EQ(opened.frames->lines, 12000u) << "each once";
    EXPECT_EQ(opened.series->time(3999), 3999.0);
    EXPECT_EQ(opened.series->load(3999).configuration->markers[0].id, 1 + 3 * 3999);
    EXPECT_FALSE(opened.series->lookForMore({}));
}

TEST(IndexedSeries, WhatIsShortIsKnownAtOnce)
{
    const Opened opened = openAtOnce(THREE);
    EXPECT_EQ(opened.series->count(), 3u);
    EXPECT_FALSE(opened.series->lookForMore({}));
    EXPECT_EQ(openAtOnce("frame 1\n5\n").report.error, "here:1: found no end");
    EXPECT_EQ(openAtOnce("x").report.error,
              "here: found nothing to show, expected at least one frame");
    EXPECT_EQ(openAtOnce("wrong").report.error, "here:1: found wrong, expected right");
}

TEST(IndexedSeries, ACutLastFrameThatIsFoundLaterIsToldThen)
{
    const Opened opened = openAtOnce(longText(2000) + "frame 1\n5");
    EXPECT_THAT(opened.report.notices, IsEmpty());
    std::vector<std::string> notices;
    EXPECT_FALSE(opened.series->lookForMore({}, &notices));
    EXPECT_EQ(opened.series->count(), 2000u);
    EXPECT_THAT(notices,
                ElementsAre("here:6001: found no end; frame 2000, the last one, is left out"));
    EXPECT_FALSE(opened.series->lookForMore({}, &notices));
    EXPECT_EQ(notices.size(), 1u) << "once";
    EXPECT_THAT(opened.series->load(7).notices, IsEmpty());
}

TEST(IndexedSeries, AFaultThatIsFoundLaterIsALastFrameThatFails)
{
    for (const int frames : {3, 2000}) { // in the first piece, and behind it
        const Opened opened = openAtOnce(longText(frames) + "wrong\nframe\n.\n");
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_EQ(opened.report.error, "");
        EXPECT_FALSE(opened.series->lookForMore({}));
        const std::size_t last = std::size_t(frames);
        ASSERT_EQ(opened.series->count(), last + 1);
        EXPECT_TRUE(opened.series->load(last - 1).configuration);
        EXPECT_EQ(opened.series->load(last).error,
                  "here:" + std::to_string(3 * frames + 1) + ": found wrong, expected right");
        EXPECT_EQ(opened.series->time(last), std::nullopt);
        EXPECT_FALSE(opened.series->lookForMore({}));
    }
}

TEST(IndexedSeries, AFrameMayBeLongerThanWhatIsLookedAtFirst)
{
    const Opened opened =
        openAtOnce("frame 1\n" + std::string(5'000'000, '\n') + ".\n" + longText(4000));
    EXPECT_TRUE(opened.series->load(0).configuration);
    EXPECT_GE(opened.series->count(), 1u);
    EXPECT_LT(opened.series->count(), 2000u);
    EXPECT_FALSE(opened.series->lookForMore({}));
    EXPECT_EQ(opened.series->count(), 4001u);
}

// ---- Of a file that is written to

namespace {

class GrowingFile : public testing::Test
{
protected:
    void open(const std::string& text)
    {
        ReadOptions options;
        options.growing = true;
        series = IndexedSeries::open(Source::open(folder.write("run.txt", text), report),
                                     std::make_unique<Heights>(), options, report);
    }
    /// The number of frames after that was written, too, of which nothing is told.
    std::size_t after(const std::string& text)
    {
        std::vector<std::string> notices;
        folder.append("run.txt", text);
        EXPECT_TRUE(series->lookForMore({}, &notices));
        EXPECT_THAT(notices, IsEmpty());
        return series->count();
    }
    /// Nothing more comes, and the last frame says why.
    void expectEnd(const std::string& why)
    {
        EXPECT_FALSE(series->lookForMore({}));
        EXPECT_THAT(series->load(series->count() - 1).error, HasSubstr(why));
        EXPECT_FALSE(series->lookForMore({}));
    }

    const TemporaryFolder folder;
    std::unique_ptr<Series> series;
    ReadReport report;
};

} // namespace

TEST_F(GrowingFile, HasTheFramesThatAreWhole)
{
    open("frame 1\n0\n.\nframe 2\n1\n");
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(series->count(), 1u);
    EXPECT_THAT(report.notices,
                ElementsAre(HasSubstr("found no end; frame 1 is left out until it is whole")));
    EXPECT_EQ(after(""), 1u);
    EXPECT_EQ(after("2\n"), 1u);
    EXPECT_EQ(after("."), 1u) << "a line that is not whole";
    EXPECT_EQ(after("\n"), 2u);
    EXPECT_EQ(after("fra"), 2u);
    EXPECT_EQ(after("me 3"), 2u);
    EXPECT_EQ(after("1\n.\nframe 4\n.\n"), 4u);
    EXPECT_EQ(series->time(2), 31.0);
    EXPECT_EQ(series->time(3), 4.0);
    EXPECT_EQ(series->load(1).configuration->markers[0].id, 4);
    EXPECT_EQ(series->load(3).configuration->markers[0].id, 10);
    EXPECT_THAT(series->load(0).notices, IsEmpty());
}

TEST_F(GrowingFile, WrittenByteByByteItHasTheSameFrames)
{
    const std::string begin = THREE.substr(0, 12);
    open(begin);
    ASSERT_TRUE(series) << report.error;
    std::size_t count = series->count();
    for (const char byte : THREE.substr(12) + longText(3)) {
        const std::size_t now = after(std::string(1, byte));
        EXPECT_GE(now, count);
        for (; count < now; ++count)
            EXPECT_TRUE(series->load(count).configuration) << count;
    }
    EXPECT_EQ(count, 6u);
}

TEST_F(GrowingFile, BeforeItsFirstFrameIsWholeItIsRefused)
{
    open("frame 1\n0\n");
    EXPECT_FALSE(series);
    EXPECT_THAT(report.error, HasSubstr("run.txt:1: found no end"));
    report = {};
    open("");
    EXPECT_FALSE(series);
    EXPECT_THAT(report.error, HasSubstr("found nothing to show"));
}

TEST_F(GrowingFile, ThatBecomesShorterEnds)
{
    open(THREE);
    EXPECT_TRUE(series->lookForMore({}));
    std::filesystem::resize_file(folder.path("run.txt"), 20);
    EXPECT_THAT(series->load(2).error, HasSubstr("it has become shorter"));
    expectEnd("it has become shorter");
    EXPECT_EQ(series->count(), 4u);
    EXPECT_TRUE(series->load(0).configuration);
}

TEST_F(GrowingFile, ThatIsReplacedOrRemovedEndsAndKeepsItsFrames)
{
    open(THREE);
    std::filesystem::rename(folder.write("other.txt", THREE + THREE), folder.path("run.txt"));
    expectEnd("found another file of this name");
    EXPECT_TRUE(series->load(2).configuration);
    open(THREE);
    std::filesystem::remove(folder.path("run.txt"));
    expectEnd("cannot be read");
    EXPECT_TRUE(series->load(2).configuration);
}

TEST_F(GrowingFile, ThatIsRefusedLaterEnds)
{
    open(THREE);
    folder.append("run.txt", "frame 4\n.\nwrong\nframe\n.\n");
    expectEnd("run.txt:12: found wrong, expected right");
    EXPECT_EQ(series->count(), 5u);
    EXPECT_TRUE(series->load(3).configuration);
}

TEST_F(GrowingFile, CanBeOpenedAtOnceToo)
{
    ReadOptions options;
    options.growing = options.atOnce = true;
    series = IndexedSeries::open(Source::open(folder.write("run.txt", longText(4000)), report),
                                 std::make_unique<Heights>(), options, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_LT(series->count(), 2000u);
    EXPECT_TRUE(series->lookForMore(STOP));
    EXPECT_EQ(after("frame"), 4000u);
    EXPECT_EQ(after("\n.\n"), 4001u);
}

TEST_F(GrowingFile, IsNeitherPackedNorAPipe)
{
    ReadOptions options;
    options.growing = true;
    const std::string packed("\x1f\x8b\x08\0\0\0\0\0", 8);
    for (const auto& [source, name] :
         {std::pair(folder.write("run.txt.gz", packed), "run.txt.gz: is packed"),
          std::pair(std::string("-"), "standard input: cannot be followed")}) {
        report = {};
        EXPECT_FALSE(IndexedSeries::open(Source::open(source, report), std::make_unique<Heights>(),
                                         options, report));
        EXPECT_THAT(report.error, HasSubstr(name));
    }
}

} // namespace strandview
