// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/tracks.h>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using testing::ElementsAre;

Configuration oneOfEach()
{
    Configuration data;
    Rod rod;
    rod.name = "arm";
    rod.points = {{0, 0, 0}, {1, 0, 0}};
    rod.rotations.resize(2);
    data.rods = {rod};
    Birod birod;
    birod.points = {{0, 0, 1}, {1, 0, 1}};
    birod.points1 = {{0, 1, 1}, {1, 1, 1}};
    birod.points2 = {{0, 2, 1}, {1, 2, 1}};
    birod.rotations.resize(2);
    birod.rotations1.resize(2);
    birod.rotations2.resize(2);
    data.birods = {birod};
    Dna dna;
    dna.bases = "AGN";
    dna.pairPoints = {{0, 0, 2}, {1, 0, 2}, {2, 0, 2}};
    dna.points1 = dna.points2 = dna.pairPoints;
    dna.pairRotations.resize(3);
    dna.rotations1 = dna.rotations2 = dna.pairRotations;
    data.dnas = {dna};
    return data;
}

} // namespace

TEST(Tracks, AreThoseOfRodsThenBirodsThenDna)
{
    const Configuration data = oneOfEach();
    std::vector<std::string> titles, bases;
    for (const Track& track : tracksOf(data)) {
        titles.push_back(titleOf(track));
        bases.push_back(basesOf(track));
        EXPECT_EQ(track.rotations.size(), track.points.size());
    }
    EXPECT_THAT(titles, ElementsAre("rod 1 'arm'", "birod 1, average", "birod 1, strand 1",
                                    "birod 1, strand 2", "DNA 1, pairs", "DNA 1, strand 1",
                                    "DNA 1, strand 2"));
    EXPECT_THAT(bases, ElementsAre("", "", "", "", "AGN", "AGN", "TCN"));
}

TEST(Tracks, AreFoundByTheirKindDatumAndStrand)
{
    Configuration data = oneOfEach();
    data.dnas.push_back(data.dnas[0]);
    const std::vector<Track> tracks = tracksOf(data);
    for (const Track& track : tracks)
        EXPECT_EQ(findTrack(tracks, idOf(track)), &track) << titleOf(track);
    EXPECT_EQ(findTrack(tracks, {Track::Kind::DNA_STRAND, 1, 2}), &tracks.back());
    EXPECT_EQ(findTrack(tracks, {Track::Kind::ROD, 1, 0}), nullptr);
}

TEST(Tracks, LookAtTheDataThatTheyAreOf)
{
    const Configuration data = oneOfEach();
    const std::vector<Track> tracks = tracksOf(data);
    EXPECT_EQ(&tracks[0].points, &data.rods[0].points);
    EXPECT_EQ(&tracks[3].points, &data.birods[0].points2);
    EXPECT_EQ(&tracks[5].rotations, &data.dnas[0].rotations1);
}

TEST(Tracks, OfDnaAreByTheFramesForNumbers)
{
    Configuration data = oneOfEach();
    data.dnas[0].standard.emplace();
    data.dnas[0].standard->pairPoints = {{5, 5, 5}};
    EXPECT_EQ(&tracksOf(data)[4].points, &data.dnas[0].standard->pairPoints);
}

TEST(Tracks, OfClosedDnaGoOnToTheFirstPairAsCurves)
{
    Configuration data = oneOfEach();
    EXPECT_EQ(curveOf(tracksOf(data)[4]).size(), 3u);
    data.dnas[0].isClosed = true;
    const std::vector<Vector> curve = curveOf(tracksOf(data)[4]);
    ASSERT_EQ(curve.size(), 4u);
    EXPECT_EQ((curve.back() - curve.front()).getNorm(), 0);
    EXPECT_EQ(curveOf(tracksOf(data)[0]).size(), 2u);
}

TEST(Tracks, OfABirodAreClosedWhereAllThreeAre)
{
    Configuration data = oneOfEach();
    EXPECT_FALSE(tracksOf(data)[1].isClosed);
    for (auto* points : {&data.birods[0].points, &data.birods[0].points1})
        *points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}};
    EXPECT_FALSE(tracksOf(data)[1].isClosed);
    data.birods[0].points2 = data.birods[0].points;
    for (std::size_t track = 1; track < 4; ++track)
        EXPECT_TRUE(tracksOf(data)[track].isClosed);
}

} // namespace strandview
