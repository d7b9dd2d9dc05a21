// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/JsonIndex.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <strandview/formats/Source.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Index
{
    std::unique_ptr<Source> source;
    std::unique_ptr<JsonIndex> index; ///< null where there is no series
    bool isRead = false;
    ReadReport report;

    std::size_t markersOf(std::size_t frame)
    {
        const FrameRead read = index->read(frame, *source, {}, report);
        EXPECT_TRUE(read.configuration) << report.error;
        return read.configuration ? read.configuration->markers.size() : 0;
    }
    std::string errorOf(std::size_t frame)
    {
        ReadReport ofFrame;
        EXPECT_FALSE(index->read(frame, *source, {}, ofFrame).configuration);
        return ofFrame.error;
    }
};

Index indexOf(const std::string& text, const ReadOptions& options = {})
{
    Index found;
    found.source = Source::ofBytes("run.json", text);
    found.index = JsonIndex::of(*found.source, options, found.report);
    found.isRead = found.index && found.index->lookOn(*found.source, options, found.report);
    return found;
}

std::string series(const std::string& frames)
{
    return R"({"strandview": 1, "series": [)" + frames + "]}";
}

const std::string ONE = R"({"markers": [{"point": [0, 0, 0]}]})";
const std::string TWO = R"({"markers": [{"point": [0, 0, 0]}, {"point": [0, 0, 1]}]})";

} // namespace

TEST(JsonIndex, FindsTheFramesBetweenAnyBlanks)
{
    for (const std::string& text :
         {series(ONE + "," + TWO + "," + ONE),
          "\xEF\xBB\xBF \r\n\t" + series("\n" + ONE + "\n,\r\n" + TWO + "\t,\n\n " + ONE + " \n") +
              "\n\n",
          R"({"series":[)" + ONE + "," + TWO + "," + ONE + R"(],"strandview":1})",
          R"({ "strandview" : 1.0 , "series" : [ )" + ONE + "," + TWO + "," + ONE + "]}"}) {
        Index found = indexOf(text);
        ASSERT_TRUE(found.isRead) << found.report.error;
        ASSERT_EQ(found.index->count(), 3u);
        for (const std::size_t frame : {2, 0, 1})
            EXPECT_EQ(found.markersOf(frame), frame == 1 ? 2u : 1u);
        EXPECT_THAT(found.report.notices, IsEmpty());
    }
}

TEST(JsonIndex, WhatDoesNotBeginWithASeriesHasNone)
{
    for (const char* text :
         {"", "[", "{", R"({"rods": []})", R"({"strandview": 1, "rods": [], "series": [{}]})",
          R"({"strandview": 2, "series": [{}]})", R"({"series": []})", R"({"series": [1]})",
          R"({"series": {}})", R"({"series": "[{"})", "\xFF\xFE{"}) {
        const Index found = indexOf(text);
        EXPECT_FALSE(found.index) << text;
        EXPECT_EQ(found.report.error, "") << text;
    }
}

TEST(JsonIndex, BracketsAndQuotesInStringsAreText)
{
    const std::string name =
        R"({"rods": [{"name": "}]\"{[\\", "points": [[0, 0, 0], [0, 0, 1]]}]})";
    Index found = indexOf(series(name + ", " + name));
    ASSERT_TRUE(found.isRead) << found.report.error;
    ASSERT_EQ(found.index->count(), 2u);
    const FrameRead read = found.index->read(1, *found.source, {}, found.report);
    ASSERT_TRUE(read.configuration) << found.report.error;
    EXPECT_EQ(read.configuration->rods[0].name, "}]\"{[\\");
    EXPECT_EQ(read.configuration->rods[0].origin, "run.json: series[1].rods[0]");
}

TEST(JsonIndex, TimesAreKnownWithoutReadingAFrame)
{
    const std::string rods =
        R"("rods": [{"scalars": {"time": [1, 2]}, "points": [[0, 0, 0], [0, 0, 1]]}])";
    const Index timed = indexOf(series("{\"time\": -0.5, " + rods + "}, {" + rods +
                                       ", \"time\" : 2e3}, {\"time\":7}, {\"\\u0074ime\": 8}"));
    ASSERT_TRUE(timed.isRead) << timed.report.error;
    EXPECT_EQ(timed.index->time(0), -0.5);
    EXPECT_EQ(timed.index->time(1), 2000);
    EXPECT_EQ(timed.index->time(2), 7);
    EXPECT_EQ(timed.index->time(3), 8);
    EXPECT_EQ(timed.index->time(4), std::nullopt);
    const Index untimed = indexOf(series("{" + rods + "}, {\"time\": 1}"));
    EXPECT_EQ(untimed.index->time(0), std::nullopt);
    EXPECT_EQ(untimed.index->time(1), std::nullopt) << "all have one or none";
}

TEST(JsonIndex, AFrameWithATimeOfItsOwnKindIsToldAndTheOthersStay)
{
    const std::string timed = R"({"time": 1, "markers": [{"point": [0, 0, 0]}]})";
    Index found = indexOf(series(timed + "," + ONE + "," + timed));
    EXPECT_EQ(found.errorOf(1),
              "run.json: series[1]: found no key time, expected one as in series[0]");
    EXPECT_EQ(found.markersOf(2), 1u);
    found = indexOf(series(ONE + "," + timed + "," + ONE));
    EXPECT_EQ(found.errorOf(1),
              "run.json: series[1]: found a key time, expected none as in series[0]");
    EXPECT_EQ(found.markersOf(2), 1u);
    found = indexOf(series(R"({"time": "1"}, )" + timed));
    EXPECT_EQ(found.errorOf(0),
              "run.json: series[0].time: found the string '1', expected a finite number");
    EXPECT_EQ(found.markersOf(1), 1u) << "the first one has a time, too";
}

// ---- What is wrong

namespace {

/// What is told of a text, first by the pass, then frame by frame.
std::string toldOf(const std::string& text)
{
    Index found = indexOf(text);
    if (!found.isRead)
        return found.report.error;
    for (std::size_t frame = 0; frame < found.index->count(); ++frame) {
        ReadReport ofFrame;
        const FrameRead read = found.index->read(frame, *found.source, {}, ofFrame);
        if (!read.configuration && !read.isEmpty)
            return ofFrame.error;
    }
    const std::vector<std::string>& notices = found.report.notices;
    return notices.empty() ? "" : notices[0].substr(0, notices[0].find("; the frames"));
}

std::string toldByTheReaderOfAll(const std::string& text)
{
    ReadReport report;
    openJson(text, "run.json", {}, report);
    return report.error;
}

/// Three frames on several lines, with times, names and numbers of all kinds.
std::string manyThings()
{
    const std::string frame = "  {\"time\": 0.5,\n   \"rods\": [{\"name\": \"\xC3\xA4\\\"b\\\\\",\n"
                              "     \"points\": [[0, 0, 0], [0, 1e-3, -1.5]], \"closed\": false,\n"
                              "     \"scalars\": {\"s\": [1, null]}}],\n   \"markers\": []}";
    return "{\"strandview\": 1,\n \"series\": [\n" + frame + ",\n" + frame + ", " + frame +
           "\n ]\n}\n";
}

} // namespace

TEST(JsonIndex, WhatIsWrongInAFrameIsToldWhenItIsReadAndTheOthersStay)
{
    Index found = indexOf(series(ONE + ",\n\n {\"markers\": [\n{\"point\": [0, 0]}]}, {\"\xC3\xA4" +
                                 "\": 1, \"x\" 5}, " + TWO));
    ASSERT_TRUE(found.isRead) << found.report.error;
    EXPECT_EQ(found.errorOf(1),
              "run.json: series[1].markers[0].point: found 2 numbers, expected 3");
    EXPECT_THAT(found.errorOf(2),
                HasSubstr("run.json: series[2]['\xC3\xA4']: found an unknown key"));
    EXPECT_EQ(found.markersOf(0), 1u);
    EXPECT_EQ(found.markersOf(3), 2u);
}

TEST(JsonIndex, PlacesInAFrameAreThoseInTheFile)
{
    Index found =
        indexOf("\n" + series("{\"rods\": [], \"markers\": []},\n{},\n  {\"rods\": [{\"name\": "
                              "\"\xC3\xA4\xC3\xA4\", \"closed\": nul}]}, {\n\"rods\" 7}"));
    ASSERT_TRUE(found.isRead) << found.report.error;
    EXPECT_EQ(found.errorOf(2), "run.json:4:41: found '}', expected valid JSON in UTF-8");
    EXPECT_EQ(found.errorOf(3), "run.json:5:8: found '7', expected ':'");
}

TEST(JsonIndex, WhatNoJsonHasEndsThePassAndIsToldAsByTheReaderOfAll)
{
    const std::string deep(100, '[');
    for (const std::string& rest :
         {ONE + " " + ONE + "]}", ONE + ",]}", ONE + ", 3]}", ONE + ",\n,{}]}", ONE + "}}",
          ONE + ", {\"rods\": [1, 2}, {}]}", ONE + ", {\"rods\": {]}, {}]}",
          ONE + ", {\"rods\": " + deep + "}]}", ONE + ", {\"rods\": ?}]}",
          ONE + ", {\"rods\": [{\"name\": \"a\nb\"}]}]}",
          ONE + ", {\"rods\": [{\"name\": \"a\", b\"}]}]}",
          ONE + ", {\"rods\": \"" + std::string(1, '\0') + "\"}]}",
          ONE + ", " + std::string(1, '\0'), ONE + "],\n \"rods\": []}",
          ONE + "], \"strandview\": 1}", ONE + "] \"x\"", ONE + "]}\n\n {",
          ONE + "], \"series\": []}", ONE + "], \"other\": 1}"}) {
        const std::string text = "{\"strandview\": 1,\n \"series\": [" + rest;
        const Index found = indexOf(text);
        EXPECT_FALSE(found.isRead) << text;
        EXPECT_EQ(found.report.error, toldByTheReaderOfAll(text)) << text;
        EXPECT_EQ(found.index->count(), 1u) << text;
    }
    EXPECT_EQ(indexOf("{\"series\": [" + ONE + "]}").report.error,
              "run.json: found no key strandview, expected one");
    EXPECT_EQ(indexOf("{\"series\": [" + ONE + "],\n \"strandview\": 2}").report.error,
              "run.json: strandview: found 2, expected 1");
}

TEST(JsonIndex, WhicheverCharacterIsAnotherOneTheSameIsTold)
{
    const std::string text = manyThings();
    ASSERT_EQ(toldOf(text), "");
    std::mt19937 random(7);
    constexpr std::string_view others = "{}[],:\"\\ \n0a-\xFF";
    for (int i = 0; i < 2000; ++i) {
        std::string changed = text;
        const std::size_t place = 35 + random() % (text.size() - 36); // in the series, or behind
        changed[place] = others[random() % others.size()];
        EXPECT_EQ(toldOf(changed), toldByTheReaderOfAll(changed)) << changed;
    }
}

// ---- Where a text ends

TEST(JsonIndex, BlanksBehindTheSeriesAreNone)
{
    const std::string blanks(3 << 20, '\n');
    EXPECT_EQ(toldOf("{\"strandview\": 1, \"series\": [" + ONE + "]" + blanks + "}" + blanks), "");
    EXPECT_THAT(toldOf(series(ONE) + blanks + "x"), HasSubstr("expected the end of the file"));
}

TEST(JsonIndex, OfATextThatEndsInAFrameThatOneIsCut)
{
    const std::string text = "{\"strandview\": 1, \"series\": [" + ONE + ",\n " + ONE;
    for (std::size_t less = 1; less < ONE.size(); ++less) {
        Index found = indexOf(text.substr(0, text.size() - less));
        ASSERT_TRUE(found.isRead) << found.report.error;
        EXPECT_THAT(found.report.notices, IsEmpty());
        ASSERT_EQ(found.index->count(), 2u);
        EXPECT_EQ(found.markersOf(0), 1u);
        ReadReport report;
        EXPECT_TRUE(found.index->read(1, *found.source, {}, report).isCut);
        EXPECT_EQ(report.error, toldByTheReaderOfAll(text.substr(0, text.size() - less)));
    }
    Index broken = indexOf("{\"strandview\": 1, \"series\": [" + ONE + ", {\"rods\": 1, \"");
    ReadReport report;
    EXPECT_FALSE(broken.index->read(1, *broken.source, {}, report).isCut) << "it is wrong before";
}

TEST(JsonIndex, OfATextThatEndsBehindAFrameANoticeTells)
{
    for (const auto& [rest, where] :
         {std::pair("", ":2:36: found the end of the file, expected ',' or ']'"),
          {" ,", ":2:38: found the end of the file, expected a value"},
          {"\n]", ":3:2: found the end of the file, expected ',' or '}'"},
          {"],", ":2:38: found the end of the file, expected a key in double quotes"}}) {
        Index found = indexOf("{\"strandview\": 1, \"series\": [\n" + ONE + rest);
        ASSERT_TRUE(found.isRead) << found.report.error;
        EXPECT_EQ(found.markersOf(0), 1u);
        EXPECT_THAT(found.report.notices, ElementsAre("run.json" + std::string(where) +
                                                      "; the frames before it are read"));
    }
}

TEST(JsonIndex, WhereverAPieceEndsTheFramesAreTheSame)
{
    // Frames around the end of the first MiB.
    const std::string tail =
        ",{\"time\":3,\"rods\":[{\"name\":\"\\\"]}\xC3\xA4\",\"points\":[[0,0,0],"
        "[0,0,1]]}]},\n{\"time\":4,\"markers\":[{\"point\":[0,0]}]}]}";
    for (std::size_t at = 0; at <= tail.size(); ++at) {
        std::string text = R"({"strandview":1,"series":[{"time":2,"rods":[)";
        text += std::string((std::size_t(1) << 20) - text.size() - 2 - at, ' ') + "]}" + tail;
        Index found = indexOf(text);
        ASSERT_TRUE(found.isRead) << found.report.error;
        ASSERT_EQ(found.index->count(), 3u);
        EXPECT_EQ(found.index->time(1), 3);
        EXPECT_EQ(found.index->time(2), 4);
        const FrameRead read = found.index->read(1, *found.source, {}, found.report);
        ASSERT_TRUE(read.configuration) << found.report.error;
        EXPECT_EQ(read.configuration->rods[0].name, "\"]}\xC3\xA4");
        EXPECT_EQ(found.errorOf(2),
                  "run.json: series[2].markers[0].point: found 2 numbers, expected 3");
    }
}

TEST(JsonIndex, AsksWhetherToGoOn)
{
    ReadOptions options;
    options.goOn = [](double) { return false; };
    Index stopped = indexOf(series(ONE), options);
    EXPECT_FALSE(stopped.isRead);
    EXPECT_EQ(stopped.report.error, "run.json: reading was stopped");
    stopped.report.error.clear();
    EXPECT_TRUE(stopped.index->lookOn(*stopped.source, {}, stopped.report));
    EXPECT_EQ(stopped.index->count(), 1u);
}

} // namespace strandview
