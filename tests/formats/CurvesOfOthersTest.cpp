// SPDX-License-Identifier: GPL-3.0-or-later
// Curves that others wrote, of every format of points, with their known numbers.
#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

#include "support/FilesOfOthers.h"
#include "support/writhe.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

std::vector<double> edgesOf(const Rod& rod)
{
    std::vector<double> edges;
    for (std::size_t i = 1; i < rod.points.size(); ++i)
        edges.push_back((rod.points[i] - rod.points[i - 1]).getNorm());
    return edges;
}

void expectEdges(const std::vector<double>& edges, double shortest, double longest)
{
    ASSERT_FALSE(edges.empty());
    EXPECT_NEAR(*std::min_element(edges.begin(), edges.end()), shortest, 5e-4);
    EXPECT_NEAR(*std::max_element(edges.begin(), edges.end()), longest, 5e-4);
}

class CurvesOfOthers : public FilesOfOthers
{
protected:
    Rod only(const std::string& name, bool shallClose = false)
    {
        ReadOptions options;
        options.close = shallClose;
        const auto read = readFile(folder + name, options, report);
        EXPECT_TRUE(read) << report.error;
        if (!read || read->rods.size() != 1)
            return {};
        EXPECT_FALSE(read->rods[0].hasFrames);
        return read->rods[0];
    }

    /// Of rows that do not repeat the first point: open as they are, and closed where that is asked
    /// for, with so long an edge more.
    Rod expectClosable(const std::string& name, std::size_t points, double gap)
    {
        const Rod open = only(name), closed = only(name, true);
        EXPECT_EQ(open.points.size(), points);
        EXPECT_FALSE(open.isClosed);
        EXPECT_EQ(closed.points.size(), points + 1);
        EXPECT_TRUE(closed.isClosed);
        const std::vector<double> edges = edgesOf(closed);
        EXPECT_NEAR(edges.empty() ? 0 : edges.back(), gap, 5e-4);
        return closed;
    }

    ReadReport report;
};

} // namespace

TEST_F(CurvesOfOthers, ACircleThatIsGoneRoundTwiceCloses)
{
    const Rod closed = expectClosable("calc_writhe_circle_x2.raw", 200, 14.328);
    expectEdges(edgesOf(closed), 12.004, 16.762);
    EXPECT_NEAR(writheOf(closed.points), 1.005543, 1e-6);
}

TEST_F(CurvesOfOthers, APlectonemeCloses)
{
    const Rod closed = expectClosable("calc_writhe_pletonemic_supercoil.raw", 1008, 1.001);
    expectEdges(edgesOf(closed), 1.000, 1.002);
    EXPECT_NEAR(writheOf(closed.points), -4.940250, 1e-6);
}

TEST_F(CurvesOfOthers, ASupercoiledRingCloses)
{
    const Rod closed = expectClosable("trefoil_supercoiled.xyz", 111, 3.912);
    EXPECT_NEAR(writheOf(closed.points), -8.890715, 1e-6);
}

TEST_F(CurvesOfOthers, AProteinIsOpen)
{
    const Rod open = only("protein_3kzn_a.xyz");
    EXPECT_EQ(open.points.size(), 331u);
    EXPECT_FALSE(open.isClosed);
}

TEST_F(CurvesOfOthers, ATightTrefoilIsClosedByItsFile)
{
    const Rod closed = only("trefoil_tight328.vect");
    ASSERT_EQ(closed.points.size(), 329u);
    EXPECT_TRUE(closed.isClosed);
    const std::vector<double> edges = edgesOf(closed);
    double length = 0;
    for (const double edge : edges)
        length += edge;
    EXPECT_NEAR(length, 16.376, 5e-4);
    expectEdges(edges, 0.0488, 0.0510);
    EXPECT_NEAR(writheOf(closed.points), -3.414866, 1e-6);
}

TEST_F(CurvesOfOthers, DnaHeldByItsEndsIsASeriesOfRodsThroughAtoms)
{
    const auto series = openSeries({folder + "tweezer10.xyz"}, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 10u);
    for (const auto& [frame, span, integral] :
         {std::tuple(9u, 1237.96, 18.62791), std::tuple(0u, 1147.58, 18.45322)}) {
        const LoadedFrame loaded = series->load(frame);
        ASSERT_TRUE(loaded.configuration) << loaded.error;
        const Rod& rod = loaded.configuration->rods.at(0);
        ASSERT_EQ(rod.points.size(), 800u);
        EXPECT_FALSE(rod.isClosed);
        EXPECT_NEAR(rod.points.back().z - rod.points.front().z, span, 5e-3);
        EXPECT_NEAR(writheOf(rod.points), integral, 1e-5);
        expectEdges(edgesOf(rod), 3.3995, 3.4005);
    }
}

TEST_F(CurvesOfOthers, FibresAreASeriesOfRodsWithTimes)
{
    const auto series = openSeries({folder + "fibers3x3.txt"}, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 3u);
    EXPECT_EQ(series->time(0), 0.1);
    for (std::size_t frame = 0; frame < 3; ++frame) {
        const LoadedFrame loaded = series->load(frame);
        ASSERT_TRUE(loaded.configuration) << loaded.error;
        std::vector<std::size_t> counts;
        for (const Rod& rod : loaded.configuration->rods)
            counts.push_back(rod.points.size());
        EXPECT_THAT(counts, testing::ElementsAre(3, 6, 4));
    }
    const LoadedFrame first = series->load(0);
    EXPECT_EQ(first.configuration->rods[0].points[0].x, -0.00370929) << "not the fibre's number";
}

TEST_F(CurvesOfOthers, BrokenReportsAreRefusedInOneLine)
{
    for (const auto& [name, error] :
         {std::pair("malformed_cytosim.txt", ":2: found '% fiber f0:1:228', expected '% frame' "
                                             "before it"),
          std::pair("malformed_medyan.traj", ":2: found a snapshot of filaments, expected a report "
                                             "of fibres ('% frame', '% fiber')")}) {
        ReadReport refused;
        EXPECT_FALSE(readFile(folder + name, {}, refused));
        EXPECT_EQ(refused.error, folder + name + error);
        EXPECT_FALSE(openSeries({folder + name}, {}, refused));
        EXPECT_EQ(refused.error, folder + name + error);
    }
}

} // namespace strandview
