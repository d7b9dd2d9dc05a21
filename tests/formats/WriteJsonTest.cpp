// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/writeJson.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>

#include <gmock/gmock.h>

#include <strandview/formats/JsonReader.h>
#include <strandview/model/MemorySeries.h>

#include "support/FilesOfOthers.h"
#include "support/everythingOf.h"
#include "support/readBack.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string textOf(const Configuration& configuration)
{
    std::string text;
    EXPECT_TRUE(writeJson(configuration, sinkInto(text)));
    return text;
}

std::string textOf(Series& series, ReadReport& report)
{
    std::string text;
    EXPECT_TRUE(writeJson(series, sinkInto(text), {}, report)) << report.error;
    return text;
}

/// What is read from the text that is written.
Configuration readBack(const Configuration& configuration)
{
    ReadReport report;
    const std::string text = textOf(configuration);
    const auto read = readJson(text, "back.json", {}, report);
    EXPECT_TRUE(read) << report.error << "\n" << text;
    return read.value_or(Configuration());
}

// ---- Random configurations of everything, as readers may make them

class RandomConfiguration
{
public:
    explicit RandomConfiguration(unsigned seed) : random(seed) {}

    Configuration make()
    {
        Configuration data;
        for (std::size_t i = below(3); i-- > 0;)
            addRod(data.rods.emplace_back());
        for (std::size_t i = below(2); i-- > 0;)
            addBirod(data.birods.emplace_back());
        for (std::size_t i = below(3); i-- > 0;)
            addDna(data.dnas.emplace_back());
        for (std::size_t i = below(3); i-- > 0;)
            addMarker(data.markers.emplace_back());
        for (std::size_t i = below(3); i-- > 0;)
            data.frames.push_back({"", point(), rotation(), length()});
        for (std::size_t i = below(3); i-- > 0;)
            data.loneBases.push_back({"", "ACGTN"[below(5)], point(), rotation(), below(3)});
        data.arrows.push_back({"", point(), point(), length(), text()});
        return data;
    }

private:
    std::size_t below(std::size_t limit) { return random() % limit; }
    bool byChance() { return below(2) == 0; }
    /// Of any size at which points are apart, and zeros of either sign.
    double number()
    {
        const double share = double(random()) * 0x1p-32 + double(random()) * 0x1p-64 - 0.5;
        return below(10) == 0 ? std::copysign(0, share) : std::ldexp(share, int(below(20)) - 10);
    }
    algebra3d::Vector3<double> point() { return {number(), number(), number()}; }
    algebra3d::Quaternion<double> rotation()
    {
        const algebra3d::Quaternion<double> q(number(), number(), number(), number() + 1e-3);
        const double norm = q.getNorm();
        return {q[0] / norm, q[1] / norm, q[2] / norm, q[3] / norm};
    }
    std::optional<double> length()
    {
        return byChance() ? std::optional(1e-300 + std::abs(number())) : std::nullopt;
    }
    std::optional<std::string> text()
    {
        constexpr const char* texts[] = {"red", "\"\\\n\x01", "d\xc3\xa9j\xc3\xa0 vu", "a: [1, 2]"};
        return byChance() ? std::optional<std::string>(texts[below(4)]) : std::nullopt;
    }
    template <typename PointList, typename RotationList>
    void addCurve(std::size_t count, PointList& points, RotationList& rotations)
    {
        for (std::size_t i = 0; i < count; ++i) {
            points.push_back(point());
            points.back().x += double(100 * i); // apart from the one before
            rotations.push_back(rotation());
        }
    }
    void addRod(Rod& rod)
    {
        addCurve(2 + below(9), rod.points, rod.rotations);
        rod.hasFrames = byChance();
        rod.name = text().value_or("");
        rod.colour = text();
        rod.radius = length();
        rod.isBackbone = byChance();
        rod.molecule = below(3);
        rod.isClosed = rod.points.size() >= 3 && byChance();
        if (rod.isClosed) {
            rod.points.push_back(rod.points.front());
            rod.rotations.push_back(rod.rotations.front());
        }
        for (const char* name : {"s", "color", "odd: \"name\""})
            if (byChance())
                addScalar(rod.scalars.emplace_back(Scalar{name, {}}), rod.points.size());
    }
    void addScalar(Scalar& scalar, std::size_t count)
    {
        constexpr double extremes[] = {-0.0,
                                       5e-324,
                                       1.7976931348623157e308,
                                       9007199254740993.0,
                                       1e22,
                                       std::numeric_limits<double>::quiet_NaN()};
        for (std::size_t i = 0; i < count; ++i)
            scalar.values.push_back(byChance() ? number() : extremes[below(6)]);
    }
    void addBirod(Birod& birod)
    {
        const std::size_t count = 2 + below(5);
        addCurve(count, birod.points, birod.rotations);
        addCurve(count, birod.points1, birod.rotations1);
        addCurve(count, birod.points2, birod.rotations2);
    }
    void addDna(Dna& dna)
    {
        const std::size_t count = 1 + below(5);
        for (std::size_t i = 0; i < count; ++i)
            dna.bases += "ACGTN"[below(5)];
        addCurve(count, dna.pairPoints, dna.pairRotations);
        addCurve(count, dna.points1, dna.rotations1);
        addCurve(count, dna.points2, dna.rotations2);
        dna.name = text().value_or("");
        dna.isClosed = byChance();
        dna.molecule = below(3);
    }
    void addMarker(Marker& marker)
    {
        marker.point = point();
        marker.shape = Marker::Shape(below(3));
        marker.size = length();
        marker.colour = text();
        marker.transparency = double(below(5)) / 4;
        marker.id = (long long)((std::uint64_t(random()) << 32) | random());
    }

    std::mt19937 random;
};

/// Frames of which some cannot be loaded.
class BrokenSeries : public Series
{
public:
    std::size_t count() const override { return 3; }
    std::optional<double> time(std::size_t frame) const override
    {
        return frame == 1 ? std::nullopt : std::optional(1.0);
    }
    std::size_t broken = 2;

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn&) override
    {
        if (frame == broken)
            return {{}, {}, "a.dat:7: found nothing"};
        Configuration configuration;
        configuration.markers.resize(1);
        return {configuration, {"a.dat: always said", "frame " + std::to_string(frame)}};
    }
};

} // namespace

TEST(WriteJson, RandomConfigurationsAreReadBackBitForBit)
{
    for (unsigned seed = 0; seed < 500; ++seed) {
        SCOPED_TRACE(seed);
        const Configuration configuration = RandomConfiguration(seed).make();
        ASSERT_EQ(everythingOf(readBack(configuration)), everythingOf(configuration));
    }
}

TEST(WriteJson, SeriesAreReadBackWithTheirTimes)
{
    for (unsigned seed = 0; seed < 50; ++seed) {
        SCOPED_TRACE(seed);
        std::vector<Configuration> frames;
        for (unsigned i = 0; i < 2 + seed % 4; ++i)
            frames.push_back(RandomConfiguration(1000 * seed + i).make());
        std::vector<double> times = {-0.0, 1.0 / 3, 1e300, 7, 8};
        times.resize(frames.size());
        MemorySeries series(frames, seed % 2 ? times : std::vector<double>());
        ReadReport report;
        const auto back = openJson(textOf(series, report), "back.json", {}, report);
        ASSERT_TRUE(back) << report.error;
        ASSERT_EQ(back->count(), frames.size());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            EXPECT_EQ(everythingOf(*back->load(i).configuration), everythingOf(frames[i]));
            ASSERT_EQ(back->time(i), series.time(i));
            EXPECT_EQ(std::signbit(back->time(i).value_or(0)),
                      std::signbit(series.time(i).value_or(0)));
        }
    }
}

TEST(WriteJson, ASeriesOfOneFrameIsWrittenAsThatFrame)
{
    const Configuration configuration = RandomConfiguration(3).make();
    MemorySeries series({configuration});
    ReadReport report;
    EXPECT_EQ(textOf(series, report), textOf(configuration));
}

TEST(WriteJson, AFewLinesSayWhatThereIs)
{
    Configuration configuration;
    Rod& rod = configuration.rods.emplace_back();
    rod.points = {{0, 0, 0}, {0, 0.1, -0.0}};
    rod.rotations = {{0, 0, 0, 1}, {0, 0, 0, 1}};
    rod.scalars = {{"s", {1, INFINITY}}};
    rod.hasFrames = false;
    Dna& dna = configuration.dnas.emplace_back();
    dna.bases = "N";
    dna.isClosed = true;
    dna.pairPoints = dna.points1 = dna.points2 = {{1, 2, 3}};
    dna.pairRotations = dna.rotations1 = dna.rotations2 = {{0, 0, 1, 0}};
    dna.standard = StandardFrames{{{9, 9, 9}}, {}, {}, {}, {}, {}, 0};
    const std::string frame = "{\"points\": [[1, 2, 3]],\n\"quaternions\": [[0, 0, 1, 0]]}";
    EXPECT_EQ(textOf(configuration),
              "{\"strandview\": 1,\n"
              "\"rods\": [{\"frames\": \"made\", \"points\": [[0, 0, 0],\n[0, 0.1, -0.0]],\n"
              "\"quaternions\": [[0, 0, 0, 1],\n[0, 0, 0, 1]],\n"
              "\"scalars\": {\"s\": [1, null]}}],\n"
              "\"dna\": [{\"closed\": true, \"sequence\": null,\n\"pairs\": " +
                  frame + ",\n\"strand1\": " + frame + ",\n\"strand2\": " + frame + "}]}\n");
}

TEST(WriteJson, TextThatIsNotUtf8IsStillJson)
{
    Configuration configuration = RandomConfiguration(1).make();
    configuration.arrows[0].colour = "caf\xe9";
    EXPECT_EQ(readBack(configuration).arrows[0].colour, "caf\xef\xbf\xbd");
}

TEST(WriteJson, HandsItOnInPiecesUntilTheSinkTakesNoMore)
{
    Configuration configuration;
    configuration.markers.resize(10000); // some 600 KB
    std::size_t pieces = 0, largest = 0;
    EXPECT_TRUE(writeJson(configuration, [&](std::string_view piece) {
        ++pieces;
        largest = std::max(largest, piece.size());
        return true;
    }));
    EXPECT_GT(pieces, 3U);
    EXPECT_LT(largest, 70000U);
    for (std::size_t taken = 0; taken < pieces; ++taken) {
        std::size_t asked = 0;
        EXPECT_FALSE(writeJson(configuration, [&](std::string_view) { return ++asked <= taken; }));
        EXPECT_EQ(asked, taken + 1);
    }
}

TEST(WriteJson, AFrameThatCannotBeLoadedEndsItAndNoticesAreToldOnce)
{
    BrokenSeries series;
    ReadReport report;
    const TextSink all = [](std::string_view) { return true; };
    EXPECT_FALSE(writeJson(series, all, {}, report));
    EXPECT_EQ(report.error, "a.dat:7: found nothing");
    EXPECT_THAT(report.notices, ElementsAre("a.dat: always said", "frame 0", "frame 1"));

    series.broken = 3;
    EXPECT_THAT(textOf(series, report), Not(HasSubstr("time"))) << "one of them is not known";
    EXPECT_EQ(report.error, "");
    EXPECT_FALSE(writeJson(
        series, [](std::string_view) { return false; }, {}, report));
    EXPECT_EQ(report.error, "") << "the sink knows why";
}

TEST(WriteJson, IsStoppedByWhoeverIsAsked)
{
    BrokenSeries series;
    series.broken = 3;
    ReadReport report;
    std::vector<double> shares;
    const auto goOn = [&shares](double share) {
        shares.push_back(share);
        return shares.size() < 2;
    };
    EXPECT_FALSE(writeJson(
        series, [](std::string_view) { return true; }, goOn, report));
    EXPECT_EQ(report.error, "reading was stopped");
    EXPECT_THAT(shares, ElementsAre(testing::DoubleEq(1. / 3), testing::DoubleEq(2. / 3)));
}

// ---- What is in files

namespace {

std::set<std::string> filesReadBack(const std::string& folder)
{
    const auto writeAndRead = [](Series& series) {
        ReadReport report;
        auto back = openJson(textOf(series, report), "back.json", {}, report);
        EXPECT_TRUE(back) << report.error;
        return back;
    };
    return readBackAll(folder, writeAndRead, [](const auto& frame, const auto& expected) {
        EXPECT_TRUE(everythingOf(frame) == everythingOf(expected));
    });
}

using WriteJsonOfOthers = FilesOfOthers;

} // namespace

TEST(WriteJson, EverySampleIsReadBackBitForBit)
{
    EXPECT_THAT(filesReadBack(SAMPLES_FOLDER),
                testing::IsSupersetOf({"dna.txt", "glyphs.json", "helix.txt", "minicircle.json",
                                       "random.txt", "rods.json"}));
}

TEST_F(WriteJsonOfOthers, IsReadBackBitForBit)
{
    EXPECT_THAT(filesReadBack(folder),
                testing::IsSupersetOf({"protein_3kzn_a.xyz", "trefoil_supercoiled.xyz"}));
}

} // namespace strandview
