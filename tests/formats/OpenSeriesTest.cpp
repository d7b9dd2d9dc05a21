// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/openSeries.h>

#include <cstdlib>

#include <gmock/gmock.h>

#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::HasSubstr;

constexpr char rod[] = "0 0 0\n0 0 1\n";

class OpenSeriesTest : public testing::Test
{
protected:
    std::unique_ptr<Series> open(const std::vector<std::string>& paths)
    {
        return openSeries(paths, {}, report);
    }

    const TemporaryFolder folder;
    ReadReport report;
};

// ---- A format of series: a digit a frame, read where it stands when it is loaded.

class DigitSeries : public Series
{
public:
    explicit DigitSeries(std::unique_ptr<Source> openSource) : source(std::move(openSource)) {}
    std::size_t count() const override { return std::size_t(source->getSize().value_or(0)); }
    std::optional<double> time(std::size_t frame) const override { return 0.5 * double(frame); }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
    {
        ReadReport report;
        const auto digit = source->readAt(frame, 1, {false, goOn}, report);
        if (!digit)
            return {{}, {}, report.error};
        Configuration configuration;
        configuration.markers.resize(1);
        configuration.markers[0].id = std::atoi(digit->c_str());
        return {configuration};
    }

    std::unique_ptr<Source> source;
};

std::unique_ptr<Series> openDigits(std::unique_ptr<Source> source, const ReadOptions&,
                                   ReadReport& report)
{
    if (source->getSize())
        return std::make_unique<DigitSeries>(std::move(source));
    report.error = source->getName() + ": found no digits";
    return nullptr;
}

std::optional<Configuration> readFirstDigit(Source&, const ReadOptions&, ReadReport&) { return {}; }

const Format digits = {"Digits", "digits", {".digits"}, nullptr, readFirstDigit, openDigits};

} // namespace

TEST_F(OpenSeriesTest, AFileOfOneConfigurationIsASeriesOfOneFrame)
{
    const auto series = open({folder.write("a.txt", rod)});
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 1u);
    EXPECT_EQ(series->load(0).configuration->rods.size(), 1u);
    EXPECT_EQ(series->time(0), std::nullopt);
    EXPECT_THAT(report.notices, testing::ElementsAre(HasSubstr("a.txt: 1 rod without frames")));
}

TEST_F(OpenSeriesTest, OfStandardInputIsThereAsOftenAsWanted)
{
    ASSERT_TRUE(std::freopen(folder.write("input", rod).c_str(), "rb", stdin));
    const auto series = open({"-"});
    ASSERT_TRUE(series) << report.error;
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(series->load(0).configuration);
}

TEST_F(OpenSeriesTest, SeveralFilesAreAFrameEach)
{
    const auto series = open({folder.write("a.txt", rod), folder.path("none.txt")});
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 2u);
    EXPECT_TRUE(series->load(0).configuration);
    EXPECT_THAT(series->load(1).error, HasSubstr("No such file"));
}

TEST_F(OpenSeriesTest, RefusesWhatCannotBeReadAtOnce)
{
    EXPECT_FALSE(open({}));
    EXPECT_EQ(report.error, "found no file, expected at least one");
    EXPECT_FALSE(open({folder.path("none.txt")}));
    EXPECT_EQ(report.error,
              folder.path("none.txt") + ": cannot be read: No such file or directory");
    EXPECT_FALSE(open({folder.write("bad.txt", "0 0 0\n0 1\n")}));
    EXPECT_THAT(report.error, HasSubstr("bad.txt:2: found 2 columns"));
    EXPECT_FALSE(open({folder.write("picture", "\x89PNG\r\n\x1a\n")}));
    EXPECT_THAT(report.error, HasSubstr("found binary data, expected " + expectedFormats()));
    EXPECT_TRUE(open({folder.write("good.txt", rod)}));
    EXPECT_EQ(report.error, "") << "of the one before";
}

TEST_F(OpenSeriesTest, OfAFormatOfSeriesReadsEachFrameFromItsSource)
{
    auto source = Source::open(folder.write("a.digits", "3141"), report);
    const auto series = openSeries(std::move(source), digits, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 4u);
    EXPECT_EQ(series->load(2).configuration->markers[0].id, 4);
    EXPECT_EQ(series->load(0).configuration->markers[0].id, 3);
    EXPECT_EQ(series->time(3), 1.5);
}

TEST_F(OpenSeriesTest, AFormatOfSeriesCanRefuse)
{
    auto source = Source::open(folder.write("a.digits", ""), report);
    EXPECT_FALSE(openSeries(std::move(source), digits, {}, report));
    EXPECT_THAT(report.error, HasSubstr("a.digits: found no digits"));
}

} // namespace strandview
