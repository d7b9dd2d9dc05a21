// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/superpose.h>

#include <cmath>
#include <random>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/model/MemorySeries.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Point = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

// Data and motions at random, from one seed.
class Chance
{
public:
    double number() { return normal(engine); }
    Point point() { return {number(), number(), number()}; }
    Rotation rotation()
    {
        return algebra3d::scaledToUnit(Rotation(number(), number(), number(), number()));
    }
    FittedFrame motion() { return {5.0 * point(), rotation()}; }
    std::vector<Point> points(int count)
    {
        std::vector<Point> all;
        for (int i = 0; i < count; ++i)
            all.push_back(point());
        return all;
    }
    std::vector<Rotation> rotations(int count)
    {
        std::vector<Rotation> all;
        for (int i = 0; i < count; ++i)
            all.push_back(rotation());
        return all;
    }

    // Something of every kind.
    Configuration everything()
    {
        Configuration all;
        Rod rod;
        rod.points = points(7);
        rod.rotations = rotations(7);
        all.rods = {rod};
        all.birods = {
            {"", points(4), rotations(4), points(4), rotations(4), points(4), rotations(4)}};
        Dna dna{"",        "ACG",        points(3), rotations(3),
                points(3), rotations(3), points(3), rotations(3)};
        dna.standard = StandardFrames{points(3),    rotations(3), points(3),
                                      rotations(3), points(3),    rotations(3)};
        all.dnas = {dna};
        all.loneBases = {{"", 'A', point(), rotation()}};
        Marker marker;
        marker.point = point();
        all.markers = {marker};
        Arrow arrow;
        arrow.from = point();
        arrow.to = point();
        all.arrows = {arrow};
        Frame frame;
        frame.point = point();
        frame.rotation = rotation();
        all.frames = {frame};
        return all;
    }

private:
    std::mt19937 engine{17};
    std::normal_distribution<double> normal;
};

// Every place of a configuration, and for every frame the ends of its directors.
std::vector<Point> placesOf(const Configuration& data)
{
    std::vector<Point> places;
    const auto add = [&places](const Point& point, const Rotation& rotation) {
        places.push_back(point);
        for (const Point& axis : {Point(1, 0, 0), Point(0, 1, 0), Point(0, 0, 1)})
            places.push_back(point + algebra3d::rotated(axis, rotation));
    };
    const auto addAll = [&add](const std::vector<Point>& points,
                               const std::vector<Rotation>& rotations) {
        for (std::size_t i = 0; i < points.size(); ++i)
            add(points[i], rotations[i]);
    };
    for (const Rod& rod : data.rods)
        addAll(rod.points, rod.rotations);
    for (const Birod& birod : data.birods) {
        addAll(birod.points, birod.rotations);
        addAll(birod.points1, birod.rotations1);
        addAll(birod.points2, birod.rotations2);
    }
    const auto addPairs = [&addAll](const auto& frames) {
        addAll(frames.pairPoints, frames.pairRotations);
        addAll(frames.points1, frames.rotations1);
        addAll(frames.points2, frames.rotations2);
    };
    for (const Dna& dna : data.dnas) {
        addPairs(dna);
        if (dna.standard)
            addPairs(*dna.standard);
    }
    for (const LoneBase& base : data.loneBases)
        add(base.point, base.rotation);
    for (const Frame& frame : data.frames)
        add(frame.point, frame.rotation);
    for (const Marker& marker : data.markers)
        places.push_back(marker.point);
    for (const Arrow& arrow : data.arrows) {
        places.push_back(arrow.from);
        places.push_back(arrow.to);
    }
    return places;
}

double largestDistance(const Configuration& one, const Configuration& other)
{
    const std::vector<Point> a = placesOf(one), b = placesOf(other);
    EXPECT_EQ(a.size(), b.size());
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, (a[i] - b[i]).getNorm());
    return largest;
}

Configuration rodOf(const std::vector<Point>& points)
{
    Configuration configuration;
    Rod rod;
    rod.points = points;
    rod.rotations.assign(points.size(), Rotation(0, 0, 0, 1));
    configuration.rods = {rod};
    return configuration;
}

// Its first frame cannot be loaded.
class LateSeries : public Series
{
public:
    explicit LateSeries(std::vector<Configuration> all) : frames(std::move(all)) {}
    std::size_t count() const override { return frames.size() + 1; }
    std::optional<double> time(std::size_t frame) const override { return 2.0 * double(frame); }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& /*goOn*/) override
    {
        if (frame == 0)
            return {std::nullopt, {}, "cut"};
        return {frames[frame - 1]};
    }

    std::vector<Configuration> frames;
};

} // namespace

TEST(Superpose, TakesAllOfAMovedConfigurationBack)
{
    Chance chance;
    for (int round = 0; round < 50; ++round) {
        const Configuration reference = chance.everything();
        Configuration moved = reference;
        move(moved, chance.motion());
        EXPECT_GT(largestDistance(moved, reference), 0.1);
        const auto back = findSuperposition(moved, reference);
        ASSERT_TRUE(back);
        EXPECT_LT(back->rms, 1e-12);
        move(moved, *back);
        EXPECT_LT(largestDistance(moved, reference), 1e-12);
    }
}

// Of all motions none leaves less.
TEST(Superpose, LeavesTheLeastSquares)
{
    Chance chance;
    const auto squares = [](const Configuration& one, const Configuration& other) {
        double sum = 0;
        for (std::size_t i = 0; i < one.rods[0].points.size(); ++i) {
            const Point left = one.rods[0].points[i] - other.rods[0].points[i];
            sum += left.dot(left);
        }
        return sum;
    };
    const Configuration reference = rodOf(chance.points(10)), other = rodOf(chance.points(10));
    Configuration best = other;
    const FittedFrame motion = *findSuperposition(other, reference);
    move(best, motion);
    EXPECT_NEAR(squares(best, reference), 10 * motion.rms * motion.rms, 1e-9);
    for (int round = 0; round < 200; ++round) {
        Configuration disturbed = best;
        const Rotation little(0.01 * chance.number(), 0.01 * chance.number(),
                              0.01 * chance.number(), 1);
        move(disturbed, {0.01 * chance.point(), algebra3d::scaledToUnit(little)});
        EXPECT_GE(squares(disturbed, reference), squares(best, reference));
    }
}

TEST(Superpose, OnlyWhatHasAsManyPointsInBothCounts)
{
    Chance chance;
    Configuration reference = rodOf(chance.points(6)), moved = reference;
    move(moved, chance.motion());
    reference.rods.push_back(rodOf(chance.points(3)).rods[0]);
    moved.rods.push_back(rodOf(chance.points(5)).rods[0]);
    moved.rods.push_back(rodOf(chance.points(5)).rods[0]);
    moved.loneBases.emplace_back();
    EXPECT_LT(findSuperposition(moved, reference)->rms, 1e-12);
    EXPECT_FALSE(findSuperposition(rodOf(chance.points(4)), rodOf(chance.points(5))));
    EXPECT_FALSE(findSuperposition({}, {}));
}

TEST(SuperposedSeries, HasEveryFrameOnTheFirst)
{
    Chance chance;
    const Configuration first = chance.everything();
    std::vector<Configuration> frames(4, first);
    for (std::size_t i = 1; i < frames.size(); ++i)
        move(frames[i], chance.motion());
    SuperposedSeries series(
        std::make_unique<MemorySeries>(frames, std::vector<double>{0, 1, 2, 3}));
    EXPECT_EQ(series.count(), 4U);
    EXPECT_EQ(series.time(2), 2);
    for (const std::size_t frame : {3, 0, 1, 2}) { // in any order
        const LoadedFrame loaded = series.load(frame);
        EXPECT_LT(largestDistance(*loaded.configuration, first), 1e-12);
        EXPECT_THAT(loaded.notices, IsEmpty());
    }
}

TEST(SuperposedSeries, AClosedRodStaysClosed)
{
    Chance chance;
    std::vector<Point> points = chance.points(9);
    points.back() = points.front();
    Configuration moved = rodOf(points);
    move(moved, chance.motion());
    SuperposedSeries series(
        std::make_unique<MemorySeries>(std::vector<Configuration>{rodOf(points), moved}));
    const std::vector<Point> turned = series.load(1).configuration->rods[0].points;
    EXPECT_EQ((turned.front() - turned.back()).getNorm(), 0);
}

TEST(SuperposedSeries, TheFirstFrameIsTheFirstThatThereIs)
{
    Chance chance;
    const Configuration first = rodOf(chance.points(5));
    Configuration second = first;
    move(second, chance.motion());
    SuperposedSeries series(std::make_unique<LateSeries>(
        std::vector<Configuration>{first, second, rodOf(chance.points(4))}));
    EXPECT_EQ(series.load(0).error, "cut");
    EXPECT_LT(largestDistance(*series.load(2).configuration, first), 1e-12);
    EXPECT_THAT(series.load(3).notices,
                ElementsAre("frame 3: found nothing of as many points as in the first frame, not "
                            "superposed"));
}

} // namespace strandview
