// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/IndexedText.h>

#include <string>
#include <utility>

#include <gmock/gmock.h>

namespace strandview {

namespace {

/// A frame begins with each line "frame".
class Lines : public TextFrames
{
public:
    void see(std::string_view line, FrameIndex& index) override
    {
        ++seen;
        if (line == "frame")
            index.begin();
        if (line == "wrong")
            index.refuse("found wrong, expected right");
    }
    bool mayBeWhole() const override { return isWhole; }
    FrameRead read(const FrameText& frame, const std::string&, const ReadOptions&,
                   ReadReport&) override
    {
        text = frame.text;
        return {Configuration()};
    }

    std::size_t seen = 0;
    bool isWhole = true;
    std::string text;
};

/// Goes on so many times.
ReadOptions goOn(int times)
{
    ReadOptions options;
    options.goOn = [times](double) mutable { return times-- > 0; };
    return options;
}

} // namespace

TEST(IndexedText, GoesOnFromWhereItWasStopped)
{
    Lines lines;
    IndexedText text(lines);
    ReadReport report;
    std::string long1 = "frame\n", filler(4000, 'x');
    for (int i = 0; i < 1000; ++i) // 4 MB
        long1 += filler + "\n";
    const auto source = Source::ofBytes("here", long1 + "frame\n");
    int stops = 0;
    while (!text.lookOn(*source, goOn(1), report) && stops < 100) {
        EXPECT_EQ(report.error, "here: reading was stopped");
        report.error.clear();
        ++stops;
    }
    EXPECT_EQ(stops, 3) << "a piece is a mebibyte";
    EXPECT_EQ(lines.seen, 1002u) << "each line once";
    EXPECT_EQ(text.count(), 2u);
    text.read(0, *source, {}, report);
    EXPECT_EQ(lines.text, long1);
}

TEST(IndexedText, LooksForSoManyFramesAtMost)
{
    Lines lines;
    IndexedText text(lines);
    ReadReport report;
    const auto source = Source::ofBytes("here", "frame\n1\nframe\n2\nframe\n3\nwrong\n");
    EXPECT_TRUE(text.lookFor(2, *source, {}, report));
    EXPECT_EQ(lines.seen, 3u);
    EXPECT_TRUE(text.lookFor(3, *source, {}, report));
    EXPECT_EQ(lines.seen, 5u);
    EXPECT_FALSE(text.lookOn(*source, {}, report));
    EXPECT_EQ(report.error, "here:7: found wrong, expected right");
    EXPECT_EQ(text.count(), 3u);
    text.read(2, *source, {}, report);
    EXPECT_EQ(lines.text, "frame\n3\n") << "up to the line that is refused";
}

TEST(IndexedText, LinesEndAsOnAnySystem)
{
    const std::size_t piece = 1 << 20;
    // A piece may end within an end of a line.
    for (const std::string end : {"\n", "\r\n", "\r"})
        for (std::size_t filling = piece - 12; filling < piece; ++filling) {
            Lines lines;
            IndexedText text(lines);
            ReadReport report;
            const std::string first = "frame" + end + end + std::string(filling - 7, 'x') + end;
            const auto source =
                Source::ofBytes("here", first + "frame" + end + "1" + end + "wrong" + end);
            ASSERT_FALSE(text.lookOn(*source, {}, report));
            ASSERT_EQ(report.error, "here:6: found wrong, expected right");
            ASSERT_EQ(lines.seen, 6u);
            text.read(0, *source, {}, report);
            ASSERT_EQ(lines.text, first);
            text.read(1, *source, {}, report);
            ASSERT_EQ(lines.text, "frame" + end + "1" + end);
        }
}

TEST(IndexedText, OfAGrowingTextAReturnAtItsEndMayBeHalfOfALineEnd)
{
    Lines lines;
    IndexedText text(lines);
    ReadReport report;
    ReadOptions growing;
    growing.growing = true;
    const std::pair<const char*, std::size_t> steps[] = {{"frame\r\n1\r", 1},
                                                         {"frame\r\n1\r\n", 2},
                                                         {"frame\r\n1\r\n2\r", 2},
                                                         {"frame\r\n1\r\n2\rframe\r", 3}};
    for (const auto& [written, seen] : steps) {
        EXPECT_TRUE(text.lookOn(*Source::ofBytes("here", written), growing, report));
        EXPECT_TRUE(text.lookOn(*Source::ofBytes("here", written), growing, report)) << "again";
        EXPECT_EQ(lines.seen, seen);
    }
}

TEST(IndexedText, TheLastLineOfATextThatGrowsIsSeenOnceItIsWhole)
{
    Lines lines;
    IndexedText text(lines);
    ReadReport report;
    ReadOptions growing;
    growing.growing = true;
    const auto shorter = Source::ofBytes("here", "frame\n1\nfra");
    EXPECT_TRUE(text.lookOn(*shorter, growing, report));
    EXPECT_EQ(lines.seen, 2u);
    const auto longer = Source::ofBytes("here", "frame\n1\nframe\n2");
    EXPECT_TRUE(text.lookOn(*longer, growing, report));
    EXPECT_EQ(lines.seen, 3u);
    EXPECT_EQ(text.count(), 2u);
    text.read(1, *longer, growing, report);
    EXPECT_EQ(lines.text, "frame\n");
}

TEST(IndexedText, WhatIsGoneIsNoFrame)
{
    Lines lines;
    IndexedText text(lines);
    ReadReport report;
    const auto longer = Source::ofBytes("here", "frame\n1\n2\n");
    ASSERT_TRUE(text.lookOn(*longer, {}, report));
    const auto shorter = Source::ofBytes("here", "frame\n1\n");
    EXPECT_FALSE(text.read(0, *shorter, {}, report).configuration);
    EXPECT_EQ(report.error, "here: found its end at byte 8, expected the frame up to byte 10: it "
                            "has become shorter");
}

TEST(IndexedText, OfAGrowingTextALastFrameThatCannotBeWholeIsNotRead)
{
    Lines lines;
    IndexedText text(lines);
    ReadReport report;
    ReadOptions growing;
    growing.growing = true;
    const auto source = Source::ofBytes("here", "frame\n1\nframe\n2\n");
    ASSERT_TRUE(text.lookOn(*source, growing, report));
    lines.isWhole = false;
    EXPECT_TRUE(text.read(0, *source, growing, report).configuration);
    EXPECT_EQ(lines.text, "frame\n1\n");
    const FrameRead last = text.read(1, *source, growing, report);
    EXPECT_TRUE(last.isCut && !last.configuration);
    EXPECT_EQ(lines.text, "frame\n1\n");
    EXPECT_EQ(report.error, "here:5: found the end of the file, expected more of the frame");
    EXPECT_TRUE(text.read(1, *source, {}, report).configuration) << "of one that is as it is";
    lines.isWhole = true;
    EXPECT_TRUE(text.read(1, *source, growing, report).configuration);
}

} // namespace strandview
