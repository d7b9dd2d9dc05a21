// SPDX-License-Identifier: GPL-3.0-or-later
// The samples in formats of other programs, read.
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <algebra3d/Matrix3.h>
#include <gtest/gtest.h>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>
#include <strandview/model/Configuration.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

constexpr double PI = 3.14159265358979323846;

std::string pathOf(const std::string& name)
{
    return (std::filesystem::path(SAMPLES_FOLDER) / name).string();
}

Configuration readSample(const std::string& name)
{
    ReadReport report;
    const auto configuration = readFile(pathOf(name), {}, report);
    EXPECT_EQ(report.error, "");
    return configuration.value_or(Configuration());
}

/// All frames of a file.
std::vector<Configuration> framesOf(const std::string& path)
{
    ReadReport report;
    const std::unique_ptr<Series> series = openSeries({path}, {}, report);
    EXPECT_EQ(report.error, "");
    std::vector<Configuration> frames;
    for (std::size_t i = 0; series && i < series->count(); ++i) {
        LoadedFrame loaded = series->load(i);
        EXPECT_EQ(loaded.error, "");
        frames.push_back(loaded.configuration.value_or(Configuration()));
    }
    return frames;
}

/// The only DNA; an empty one, and a failure, if there is not one.
Dna dnaOf(const Configuration& configuration)
{
    EXPECT_EQ(configuration.dnas.size(), 1u);
    return configuration.dnas.size() == 1 ? configuration.dnas[0] : Dna();
}

} // namespace

TEST(StickyEndSample, HasTwelvePairsAndTwoBasesInNone)
{
    const Configuration configuration = readSample("sticky_end.pdb");
    const Dna dna = dnaOf(configuration);
    EXPECT_EQ(dna.bases, "CGCGAATTCGCG");
    ASSERT_EQ(configuration.loneBases.size(), 2u);
    EXPECT_EQ(configuration.loneBases[0].base, 'T');
    EXPECT_EQ(configuration.loneBases[1].base, 'T');
    ASSERT_EQ(configuration.rods.size(), 2u); // through all phosphorus atoms but that of the 5' end
    EXPECT_EQ(configuration.rods[0].points.size(), 13u);
    EXPECT_EQ(configuration.rods[1].points.size(), 11u);
}

TEST(StickyEndSample, IsDrawnAsTheIdealDuplexThatItWasMadeFrom)
{
    const Dna dna = dnaOf(readSample("sticky_end.pdb"));
    for (std::size_t i = 0; i < dna.pairPoints.size(); ++i) {
        EXPECT_LT((dna.pairPoints[i] - Vector(0, 0, 3.38 * double(i))).getNorm(), 1e-3) << i;
        const double angle = PI / 5 * double(i);
        const Vector d1 = algebra3d::Matrix3<double>(dna.pairRotations[i]).getColumn(0);
        EXPECT_LT((d1 - Vector(std::cos(angle), std::sin(angle), 0)).getNorm(), 1e-3) << i;
    }
}

TEST(HairpinSample, IsOneStrandThatPairsWithItself)
{
    const Configuration configuration = readSample("hairpin.dat");
    const Dna dna = dnaOf(configuration);
    EXPECT_EQ(dna.bases, "GCATCGAGTCAC");
    const DnaNumbers numbers = numbersOf(dna);
    EXPECT_NEAR(*numbers.meanTwist, 36, 1e-3); // places are written to 1e-5 of 8.5 angstrom
    EXPECT_NEAR(*numbers.meanRise, 3.38, 1e-3);
    EXPECT_EQ(configuration.loneBases.size(), 6u);
    ASSERT_EQ(configuration.rods.size(), 1u);
    EXPECT_TRUE(configuration.rods[0].isBackbone);
    EXPECT_EQ(configuration.rods[0].points.size(), 30u);
}

TEST(HairpinSample, HasALoopWhoseNucleotidesAreAsFarApartAsThoseOfTheStem)
{
    const Configuration configuration = readSample("hairpin.dat");
    ASSERT_EQ(configuration.rods.size(), 1u);
    const std::vector<Vector>& points = configuration.rods[0].points;
    const double step = (points[1] - points[0]).getNorm();
    for (std::size_t i = 1; i < points.size(); ++i)
        EXPECT_NEAR((points[i] - points[i - 1]).getNorm(), step, 0.05) << i;
}

TEST(RingSample, IsTheMinicircleFromItsParameters)
{
    const Dna ring = dnaOf(readSample("ring.par"));
    const Dna minicircle = dnaOf(readSample("minicircle.json"));
    EXPECT_TRUE(ring.isClosed);
    EXPECT_EQ(ring.bases, minicircle.bases);
    const std::vector<StepParameters> steps = stepsOf(ring), expected = stepsOf(minicircle);
    ASSERT_EQ(steps.size(), 84u);
    ASSERT_EQ(expected.size(), 84u);
    for (std::size_t i = 0; i < 84; ++i) {
        SCOPED_TRACE(i);
        // What the step that closes it takes up of 83 that are rounded to 1e-5, and of places
        // that are rounded to 1e-4.
        EXPECT_NEAR(steps[i].shift, expected[i].shift, 5e-3);
        EXPECT_NEAR(steps[i].slide, expected[i].slide, 5e-3);
        EXPECT_NEAR(steps[i].rise, expected[i].rise, 5e-3);
        EXPECT_NEAR(steps[i].tilt, expected[i].tilt, 1e-3);
        EXPECT_NEAR(steps[i].roll, expected[i].roll, 1e-3);
        EXPECT_NEAR(steps[i].twist, expected[i].twist, 1e-3);
    }
}

TEST(SuperhelixSample, WindsToTheLeftAsANucleosome)
{
    const Dna dna = dnaOf(readSample("superhelix.bplist"));
    ASSERT_EQ(dna.pairPoints.size(), 134u);
    EXPECT_EQ(dna.bases, std::string(134, UNKNOWN_BASE));
    EXPECT_FALSE(dna.isClosed);
    double turns = 0;
    for (std::size_t i = 0; i < 134; ++i) {
        const Vector& p = dna.pairPoints[i];
        EXPECT_NEAR(std::hypot(p.x, p.y), 41.9, 1e-3) << i;
        if (i == 0)
            continue;
        const Vector& q = dna.pairPoints[i - 1];
        EXPECT_NEAR((p - q).getNorm(), 3.38, 2e-3) << i; // the chord is a little shorter
        turns += std::atan2(q.x * p.y - q.y * p.x, q.x * p.x + q.y * p.y) / (2 * PI);
    }
    EXPECT_NEAR(turns, -1.67, 0.05);
    EXPECT_NEAR(dna.pairPoints[133].z - dna.pairPoints[0].z, -25.9 * turns, 1e-3);
}

TEST(ArmSample, UncurlsWithFramesOfItsElements)
{
    const std::vector<Configuration> frames = framesOf(pathOf("arm.npz"));
    ASSERT_EQ(frames.size(), 5u);
    double reach = 0;
    for (const Configuration& frame : frames) {
        ASSERT_EQ(frame.rods.size(), 1u);
        const Rod& rod = frame.rods[0];
        ASSERT_EQ(rod.points.size(), 31u);
        EXPECT_TRUE(rod.hasFrames);
        const double endToEnd = (rod.points.back() - rod.points.front()).getNorm();
        EXPECT_GT(endToEnd, reach);
        reach = endToEnd;
        for (std::size_t i = 1; i + 1 < 31; ++i) {
            const Vector along = (rod.points[i + 1] - rod.points[i - 1]).getUnit();
            const Vector d3 = algebra3d::Matrix3<double>(rod.rotations[i]).getColumn(2);
            EXPECT_GT(along.dot(d3), 0.99) << i; // a step turns by up to 31 degrees
        }
    }
    EXPECT_LT(reach, 1); // its length
}

TEST(ArmSample, IsWhatItsGeneratorWrites)
{
    const std::filesystem::path folder =
        std::filesystem::path(testing::TempDir()) / "strandview_arm";
    std::filesystem::create_directories(folder);
    const std::string command = std::string("\"") + MAKE_SAMPLES + "\" \"" + folder.string() + "\"";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::vector<Configuration> made = framesOf((folder / "arm.npz").string());
    const std::vector<Configuration> kept = framesOf(pathOf("arm.npz"));
    ASSERT_EQ(made.size(), kept.size());
    for (std::size_t frame = 0; frame < made.size(); ++frame) {
        ASSERT_EQ(made[frame].rods.size(), 1u);
        ASSERT_EQ(kept[frame].rods.size(), 1u);
        const Rod &a = made[frame].rods[0], &b = kept[frame].rods[0];
        ASSERT_EQ(a.points.size(), b.points.size());
        for (std::size_t i = 0; i < a.points.size(); ++i) { // written in single precision
            EXPECT_LT((a.points[i] - b.points[i]).getNorm(), 1e-6);
            for (int k = 0; k < 4; ++k)
                EXPECT_NEAR(a.rotations[i][k], b.rotations[i][k], 1e-6);
        }
    }
    std::filesystem::remove_all(folder);
}

TEST(AsterSample, HasSevenFibresThatGrow)
{
    const std::vector<Configuration> frames = framesOf(pathOf("aster.txt"));
    ASSERT_EQ(frames.size(), 3u);
    for (std::size_t frame = 0; frame < 3; ++frame) {
        ASSERT_EQ(frames[frame].rods.size(), 7u);
        for (std::size_t k = 0; k < 7; ++k)
            EXPECT_EQ(frames[frame].rods[k].points.size(), 8 + k % 3 + 2 * frame);
    }
}

TEST(PulledSample, IsAHelixOfBondsThatKeepTheirLengthWhileItGrowsLonger)
{
    const std::vector<Configuration> frames = framesOf(pathOf("pulled.xyz"));
    ASSERT_EQ(frames.size(), 4u);
    for (std::size_t frame = 0; frame < 4; ++frame) {
        ASSERT_EQ(frames[frame].rods.size(), 1u);
        const std::vector<Vector>& points = frames[frame].rods[0].points;
        ASSERT_EQ(points.size(), 30u);
        EXPECT_NEAR(points[29].x - points[0].x, 29 * (1.5 + 0.5 * double(frame)), 1e-3);
        for (std::size_t i = 1; i < 30; ++i)
            EXPECT_NEAR((points[i] - points[i - 1]).getNorm(), 3.8, 5e-4);
    }
}

TEST(KnotSample, IsEveryFourthPointOfTheTrefoilClosed)
{
    const Configuration knot = readSample("knot.vect"), trefoil = readSample("trefoil.txt");
    ASSERT_EQ(knot.rods.size(), 1u);
    ASSERT_EQ(trefoil.rods.size(), 1u);
    EXPECT_TRUE(knot.rods[0].isClosed);
    ASSERT_EQ(knot.rods[0].points.size(), 76u); // of which the last is the first
    for (std::size_t i = 0; i < 76; ++i)
        EXPECT_LT((knot.rods[0].points[i] - trefoil.rods[0].points[4 * i]).getNorm(), 1e-5) << i;
}

} // namespace strandview
