// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/JsonSeries.h>

#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char NOTHING_SHOWN[] = "found nothing to show, expected at least one rod, birod, DNA, "
                                 "marker, frame, arrow or base";

std::string frameAt(int z, const std::string& time = "")
{
    return "{" + (time.empty() ? "" : "\"time\": " + time + ", ") +
           "\"rods\": [{\"points\": [[0, 0, 0], [0, 0, " + std::to_string(z) + "]]}]}";
}

std::string seriesOf(const std::string& frames)
{
    return "{\"strandview\": 1, \"series\": [" + frames + "]}";
}

/// Of some megabytes.
std::string manyFrames(int count)
{
    std::string frames;
    for (int i = 1; i <= count; ++i)
        frames += (i > 1 ? ",\n" : "") + frameAt(i, std::to_string(i));
    return frames;
}

ReadOptions atOnce()
{
    ReadOptions options;
    options.atOnce = true;
    return options;
}

struct Opened
{
    std::unique_ptr<Series> series;
    ReadReport report;
};

Opened open(const std::string& text, const ReadOptions& options = {})
{
    Opened opened;
    opened.series = openJson(Source::ofBytes("run.json", text), options, opened.report);
    return opened;
}

struct Read
{
    std::optional<Configuration> first;
    ReadReport report;
};

Read read(const std::string& text, const ReadOptions& options = {})
{
    Read result;
    result.first = readJson(*Source::ofBytes("run.json", text), options, result.report);
    return result;
}

double heightOf(const LoadedFrame& frame)
{
    EXPECT_TRUE(frame.configuration) << frame.error;
    return frame.configuration && !frame.configuration->rods.empty()
               ? frame.configuration->rods[0].points.back().z
               : -1;
}

} // namespace

TEST(JsonSeries, FramesAreReadWhenTheyAreLoaded)
{
    const Opened opened = open(seriesOf(manyFrames(5)));
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_THAT(opened.report.notices, IsEmpty());
    ASSERT_EQ(opened.series->count(), 5u);
    for (const std::size_t frame : {3, 0, 4, 4, 1}) {
        const LoadedFrame loaded = opened.series->load(frame);
        EXPECT_EQ(heightOf(loaded), double(frame + 1));
        EXPECT_THAT(loaded.notices, ElementsAre(HasSubstr("1 rod without frames")));
        EXPECT_EQ(opened.series->time(frame), double(frame + 1));
    }
}

TEST(JsonSeries, AFrameThatCannotBeReadLeavesTheOthers)
{
    const Opened opened = open(seriesOf(frameAt(1) + ", {\"rods\": 7}, " + frameAt(3)));
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_EQ(opened.series->load(1).error,
              "run.json: series[1].rods: found 7, expected an array of rods");
    EXPECT_EQ(heightOf(opened.series->load(2)), 3);
}

TEST(JsonSeries, TheFirstFrameIsReadAndTheOthersAreCounted)
{
    const std::string text = seriesOf(manyFrames(40000));
    const Read all = read(text);
    ASSERT_TRUE(all.first) << all.report.error;
    EXPECT_EQ(all.report.frames, 40000u);
    EXPECT_THAT(all.report.notices, ElementsAre(HasSubstr("1 rod without frames")));
    const Read first = read(text.substr(0, text.size() - 10) + "?", atOnce());
    ASSERT_TRUE(first.first) << first.report.error;
    EXPECT_EQ(first.report.frames, SEVERAL_FRAMES);
    EXPECT_FALSE(read(text.substr(0, text.size() - 10) + "?").first);
}

TEST(JsonSeries, OpenedAtOnceTheFirstFrameIsThereAndTheOthersAreFoundLater)
{
    const Opened opened = open(seriesOf(manyFrames(40000)), atOnce());
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_LT(opened.series->count(), 40000u);
    EXPECT_EQ(heightOf(opened.series->load(0)), 1);
    EXPECT_FALSE(opened.series->lookForMore({}));
    EXPECT_EQ(opened.series->count(), 40000u);
    EXPECT_EQ(opened.series->time(39999), 40000);
    EXPECT_EQ(heightOf(opened.series->load(39999)), 40000);
}

TEST(JsonSeries, OpenedAtOnceWhatIsWrongBehindTheFramesIsALastOneThatFails)
{
    const Opened opened = open("{\"series\": [" + manyFrames(40000) + "]}", atOnce());
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_FALSE(opened.series->lookForMore({}));
    ASSERT_EQ(opened.series->count(), 40001u);
    EXPECT_EQ(heightOf(opened.series->load(39999)), 40000);
    EXPECT_EQ(opened.series->load(40000).error, "run.json: found no key strandview, expected one");
}

TEST(JsonSeries, FramesMayHaveNothingToShowButOne)
{
    for (const ReadOptions& options : {ReadOptions(), atOnce()}) {
        std::string empty = "{}";
        for (int i = 0; i < 2000; ++i)
            empty += ",{" + std::string(1000, ' ') + "}";
        const Opened opened = open(seriesOf(empty + "," + frameAt(2)), options);
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_FALSE(opened.series->lookForMore({}));
        ASSERT_EQ(opened.series->count(), 2002u);
        EXPECT_TRUE(opened.series->load(0).configuration->rods.empty());
        EXPECT_EQ(heightOf(opened.series->load(2001)), 2);
        EXPECT_EQ(open(seriesOf("{}, {\"rods\": []}"), options).report.error,
                  std::string("run.json: series[0]: ") + NOTHING_SHOWN);
    }
    EXPECT_EQ(read(seriesOf("{}, " + frameAt(1))).report.error,
              std::string("run.json: series[0]: ") + NOTHING_SHOWN);
}

TEST(JsonSeries, ALastFrameThatIsCutIsLeftOutAndAnOnlyOneRefused)
{
    const std::string text = seriesOf(frameAt(1) + ",\n" + frameAt(2));
    const Opened opened = open(text.substr(0, text.size() - 6));
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_EQ(opened.series->count(), 1u);
    EXPECT_THAT(opened.report.notices,
                ElementsAre(HasSubstr("run.json:2:43: found the end of the file, expected ',' or "
                                      "']'; frame 1, the last one, is left out"),
                            HasSubstr("1 rod without frames")));
    const std::string only = seriesOf(frameAt(1));
    EXPECT_THAT(open(only.substr(0, only.size() - 6)).report.error,
                HasSubstr(": found the end of the file, expected"));
    EXPECT_FALSE(read(only.substr(0, only.size() - 6)).first);
}

TEST(JsonSeries, AnOnlyFrameKeepsItsTime)
{
    const Opened opened = open(seriesOf(frameAt(1, "2.5")));
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_EQ(opened.series->time(0), 2.5);
    EXPECT_THAT(opened.report.notices, ElementsAre(HasSubstr("1 rod without frames")));
}

TEST(JsonSeries, RodsAreClosedWhereThatIsAsked)
{
    ReadOptions options;
    options.close = true;
    const std::string bent = R"({"rods": [{"points": [[0, 0, 0], [0, 0, 1], [0, 1, 1]]}]})";
    const Opened opened = open(seriesOf(bent + "," + bent), options);
    ASSERT_TRUE(opened.series) << opened.report.error;
    EXPECT_TRUE(opened.series->load(1).configuration->rods[0].isClosed);
}

TEST(JsonSeries, WhatHasNoSeriesIsReadAsAWhole)
{
    const std::string one = R"({"strandview": 1, "rods": [{"points": [[0, 0, 0], [0, 0, 1]]}]})";
    EXPECT_EQ(heightOf(open(one).series->load(0)), 1);
    EXPECT_EQ(open(one + "x").report.error,
              "run.json:1:64: found 'x', expected the end of the file");
    EXPECT_EQ(open("\xFF\xFE{").report.error, "run.json: found UTF-16 text, expected UTF-8");
    EXPECT_EQ(read("\xFF\xFE{").report.error, "run.json: found UTF-16 text, expected UTF-8");
    EXPECT_EQ(read("").report.error, "run.json:1:1: found the end of the file, expected a value");
}

TEST(JsonSeries, AFileThatFramesAreWrittenToGrows)
{
    const TemporaryFolder folder;
    ReadReport report;
    ReadOptions options;
    options.growing = true;
    const std::string path = folder.write("run.json", "{\"strandview\": 1, \"series\": [\n{");
    EXPECT_FALSE(openSeries({path}, options, report));
    EXPECT_THAT(report.error, HasSubstr("run.json:2:1: series[0]: found no end of the frame"));
    folder.append("run.json", frameAt(1).substr(1));
    report = {};
    const auto series = openSeries({path}, options, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_THAT(report.notices, IsEmpty());
    const auto after = [&](const std::string& text) {
        folder.append("run.json", text);
        EXPECT_TRUE(series->lookForMore({}));
        return series->count();
    };
    EXPECT_EQ(after(""), 1u);
    EXPECT_EQ(after(",\n"), 1u);
    EXPECT_EQ(after(frameAt(2).substr(0, 20)), 1u);
    EXPECT_EQ(after(frameAt(2).substr(20)), 2u);
    EXPECT_EQ(after("," + frameAt(3) + "]"), 3u);
    EXPECT_EQ(after("}\n"), 3u);
    EXPECT_EQ(heightOf(series->load(1)), 2);
    EXPECT_EQ(heightOf(series->load(2)), 3);
    folder.append("run.json", "{}");
    EXPECT_FALSE(series->lookForMore({}));
    EXPECT_THAT(series->load(3).error,
                HasSubstr("run.json:4:1: found '{', expected the end of the file"));
}

TEST(JsonSeries, AGrowingFileKeepsItsFramesWhereItGoesWrong)
{
    const TemporaryFolder folder;
    ReadReport report;
    ReadOptions options;
    options.growing = true;
    const std::string path = folder.write("run.json", seriesOf(frameAt(1) + ", {\"rods\": 7}"));
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 2); // "]}"
    const auto series = openSeries({path}, options, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 2u);
    folder.append("run.json", " 3");
    EXPECT_FALSE(series->lookForMore({}));
    ASSERT_EQ(series->count(), 3u);
    EXPECT_EQ(heightOf(series->load(0)), 1);
    EXPECT_THAT(series->load(1).error, HasSubstr("series[1].rods: found 7"));
    EXPECT_THAT(series->load(2).error, HasSubstr("found '3', expected ',' or ']'"));
}

} // namespace strandview
