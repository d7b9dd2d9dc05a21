// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/scalarAt.h>

#include <cmath>
#include <random>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/scalars.h>

namespace strandview {

namespace {

using algebra3d::Quaternion;
using algebra3d::Vector3;

class ScalarAtTest : public testing::Test
{
protected:
    double number() { return std::uniform_real_distribution<double>(-1, 1)(random); }
    Vector3<double> vector() { return {number(), number(), number()}; }
    Quaternion<double> rotation() { return algebra3d::about(vector(), 3 * number()); }

    // Along a coil, shaken.
    std::vector<Vector3<double>> points(std::size_t count, bool isClosed)
    {
        std::vector<Vector3<double>> line;
        for (std::size_t i = 0; i < count; ++i) {
            const double turn = 2 * M_PI * double(i) / double(isClosed ? count - 1 : count);
            const double radius = 40 + 5 * std::cos(9 * turn);
            line.push_back(Vector3<double>(radius * std::cos(turn), radius * std::sin(turn),
                                           5 * std::sin(9 * turn)) +
                           0.01 * vector());
        }
        if (isClosed)
            line.back() = line.front();
        return line;
    }
    std::vector<Quaternion<double>> rotations(std::size_t count)
    {
        std::vector<Quaternion<double>> all;
        for (std::size_t i = 0; i < count; ++i)
            all.push_back(rotation());
        return all;
    }
    Rod rod(std::size_t count, bool isClosed)
    {
        Rod made;
        made.points = points(count, isClosed);
        made.rotations = rotations(count);
        made.isClosed = isClosed;
        made.scalars = {{"load", std::vector<double>(count)}};
        for (double& value : made.scalars[0].values)
            value = number();
        return made;
    }
    Dna dna(std::size_t count, bool isClosed, bool hasStandard)
    {
        Dna made;
        made.bases = std::string(count, 'A');
        made.isClosed = isClosed;
        const auto fill = [&](auto& frames) {
            frames.pairPoints = points(count, false);
            frames.pairRotations = rotations(count);
            frames.points1 = points(count, false);
            frames.rotations1 = rotations(count);
            frames.points2 = points(count, false);
            frames.rotations2 = rotations(count);
        };
        fill(made);
        if (hasStandard)
            fill(made.standard.emplace());
        return made;
    }

    static void expectAllAsOfTheLine(const Track& track, std::size_t every = 1)
    {
        for (const std::string& name : scalarNames(track)) {
            SCOPED_TRACE(titleOf(track) + " " + name);
            const auto values = findScalar(track, name);
            ASSERT_TRUE(values);
            for (std::size_t row = 0; row < values->size(); row += every) {
                const auto value = scalarAt(track, name, row);
                ASSERT_TRUE(value);
                const double expected = (*values)[row];
                if (std::isnan(expected))
                    EXPECT_TRUE(std::isnan(*value)) << row;
                else
                    EXPECT_NEAR(*value, expected, 1e-9 * (1 + std::abs(expected))) << row;
            }
        }
    }

    std::mt19937 random{5};
};

TEST_F(ScalarAtTest, IsTheValueOfTheWholeLineAtEachPointOfARod)
{
    for (const bool isClosed : {false, true}) {
        for (const std::size_t count : {2u, 3u, 4u, 60u}) {
            if (isClosed && count < 4)
                continue;
            const Rod made = rod(count, isClosed);
            expectAllAsOfTheLine(trackOf(made));
        }
    }
}

TEST_F(ScalarAtTest, IsTheValueOfTheWholeLineOfLongRodsToo)
{
    for (const bool isClosed : {false, true}) {
        const Rod made = rod(LINE_AT_ONCE + 500, isClosed);
        expectAllAsOfTheLine(trackOf(made), 83); // 2500 rows: the ends, too
        const Track track = trackOf(made);
        for (const std::string& name : scalarNames(track))
            EXPECT_NEAR(*scalarAt(track, name, made.points.size() - 1),
                        findScalar(track, name)->back(), 1e-6)
                << name;
    }
}

TEST_F(ScalarAtTest, IsTheValueOfTheWholeLineOfPairsAndStrands)
{
    for (const bool isClosed : {false, true}) {
        for (const bool hasStandard : {false, true}) {
            for (const std::size_t count : {1u, 2u, 30u}) {
                Configuration data;
                data.dnas = {dna(count, isClosed && count > 2, hasStandard)};
                for (const Track& track : tracksOf(data, 0.1))
                    expectAllAsOfTheLine(track);
            }
        }
    }
}

TEST_F(ScalarAtTest, IsNothingWithoutSuchAScalarOrRow)
{
    const Rod made = rod(4, false);
    EXPECT_FALSE(scalarAt(trackOf(made), "roll", 1));
    EXPECT_FALSE(scalarAt(trackOf(made), "curvature", 4));
    EXPECT_TRUE(scalarAt(trackOf(made), "curvature", 3));
}

} // namespace

} // namespace strandview
