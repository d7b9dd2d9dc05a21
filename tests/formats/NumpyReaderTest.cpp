// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/numpy/NumpyReader.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <numeric>
#include <random>

#include <gmock/gmock.h>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>

#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

#include "support/FilesOfOthers.h"
#include "support/TemporaryFolder.h"
#include "support/everythingOf.h"
#include "support/pack.h"
#include "support/readText.h"

namespace strandview {

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// ---- Arrays as NumPy writes them

std::string header(const std::string& dictionary, char version = 1)
{
    std::string bytes = "\x93NUMPY"s + version + '\0';
    for (int i = 0; i < (version == 1 ? 2 : 4); ++i)
        bytes += char(dictionary.size() >> (8 * i) & 255);
    return bytes + dictionary;
}

std::string dictionary(const std::string& type, bool isFortran, const std::string& shape)
{
    return "{'descr': '" + type + "', 'fortran_order': " + (isFortran ? "True" : "False") +
           ", 'shape': " + shape + ", }          \n";
}

template <typename Float>
std::string bytesOf(const std::vector<double>& numbers, bool isBigEndian)
{
    std::string bytes;
    for (const double number : numbers) {
        const Float value = Float(number);
        std::string one(sizeof(Float), '\0');
        std::memcpy(&one[0], &value, sizeof(Float));
        if (isBigEndian)
            std::reverse(one.begin(), one.end());
        bytes += one;
    }
    return bytes;
}

std::string array(const std::string& shape, const std::vector<double>& numbers,
                  bool isFortran = false)
{
    return header(dictionary("<f8", isFortran, shape)) + bytesOf<double>(numbers, false);
}

Reading read(const std::string& bytes)
{
    Reading reading;
    const auto source = Source::ofBytes("here", bytes);
    reading.configuration = readNumpy(*source, {}, reading.report);
    return reading;
}

struct OpenedSeries
{
    std::unique_ptr<Series> series;
    ReadReport report;
};

OpenedSeries open(const std::string& bytes)
{
    OpenedSeries opened;
    opened.series = openNumpySeries(Source::ofBytes("here", bytes), {}, opened.report);
    return opened;
}

Reading readOwn(const std::string& name)
{
    Reading reading;
    reading.configuration = readFile(std::string(TEST_FILES) + "/" + name, {}, reading.report);
    return reading;
}

double lengthOf(const std::vector<algebra3d::Vector3<double>>& points)
{
    double length = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        length += (points[i] - points[i - 1]).getNorm();
    return length;
}

void expectNear(const algebra3d::Vector3<double>& actual,
                const algebra3d::Vector3<double>& expected, double tolerance = 1e-14)
{
    EXPECT_LE((actual - expected).getNorm(), tolerance)
        << actual.x << " " << actual.y << " " << actual.z;
}

const Points CORNERS = {{0, 0, 0}, {1, 0, 0}, {1, 2, 0}, {1, 2, 4}};
const std::vector<double> IN_ROWS = {0, 0, 0, 1, 0, 0, 1, 2, 0, 1, 2, 4};
const std::vector<double> IN_COLUMNS = {0, 1, 1, 1, 0, 0, 2, 2, 0, 0, 0, 4};

} // namespace

// ---- One array

TEST(NumpyReader, TakesPointsAsRowsOrColumnsInEitherOrder)
{
    for (const std::string& bytes :
         {array("(4, 3)", IN_ROWS), array("(3, 4)", IN_COLUMNS), array("(4, 3)", IN_COLUMNS, true),
          array("(3, 4)", IN_ROWS, true), array("(1, 4, 3)", IN_ROWS)})
        EXPECT_EQ(numbersOf(onlyRod(read(bytes)).points), CORNERS);
}

TEST(NumpyReader, ThreePointsOfThreeNumbersAreRows)
{
    EXPECT_EQ(numbersOf(onlyRod(read(array("(3, 3)", {0, 0, 0, 1, 0, 0, 1, 2, 0}))).points),
              Points({{0, 0, 0}, {1, 0, 0}, {1, 2, 0}}));
}

TEST(NumpyReader, TakesSingleAndDoublePrecisionOfEitherByteOrder)
{
    for (const bool isBig : {false, true}) {
        const std::string order = isBig ? ">" : "<";
        EXPECT_EQ(numbersOf(onlyRod(read(header(dictionary(order + "f8", false, "(4, 3)")) +
                                         bytesOf<double>(IN_ROWS, isBig)))
                                .points),
                  CORNERS);
        EXPECT_EQ(numbersOf(onlyRod(read(header(dictionary(order + "f4", false, "(4, 3)")) +
                                         bytesOf<float>(IN_ROWS, isBig)))
                                .points),
                  CORNERS);
    }
}

TEST(NumpyReader, TakesVersions1To3AndKeysInAnyOrder)
{
    const std::string numbers = bytesOf<double>(IN_ROWS, false);
    for (const char version : {1, 2, 3})
        EXPECT_EQ(onlyRod(read(header(dictionary("<f8", false, "(4, 3)"), version) + numbers))
                      .points.size(),
                  4u);
    EXPECT_EQ(
        onlyRod(read(header("{\"shape\":(4L,3L),'fortran_order':False,'descr':'<f8'}") + numbers))
            .points.size(),
        4u);
    EXPECT_EQ(read(header("{}", 4)).report.error,
              "here: found version 4 of the format, expected 1, 2 or 3");
}

TEST(NumpyReader, ALeadingAxisMakesASeriesInEitherOrder)
{
    // Two frames of two points, the second twice as far apart.
    const std::vector<double> inC = {0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 2};
    const std::vector<double> inFortran = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2};
    for (const std::string& bytes :
         {array("(2, 2, 3)", inC), array("(2, 2, 3)", inFortran, true)}) {
        const OpenedSeries opened = open(bytes);
        ASSERT_TRUE(opened.series) << opened.report.error;
        ASSERT_EQ(opened.series->count(), 2u);
        EXPECT_EQ(opened.series->time(0), std::nullopt);
        for (const std::size_t frame : {1u, 0u, 1u}) {
            const LoadedFrame loaded = opened.series->load(frame);
            ASSERT_TRUE(loaded.configuration) << loaded.error;
            EXPECT_EQ(lengthOf(loaded.configuration->rods.at(0).points), double(frame + 1));
        }
    }
}

TEST(NumpyReader, ACutSeriesHasTheFramesThatAreWhole)
{
    const std::string whole =
        array("(3, 2, 3)", {0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 3});
    for (const std::size_t lost : {1u, 8u, 47u, 48u}) {
        const OpenedSeries opened = open(whole.substr(0, whole.size() - lost));
        ASSERT_TRUE(opened.series) << opened.report.error;
        EXPECT_EQ(opened.series->count(), 2u);
        EXPECT_THAT(opened.report.notices,
                    ElementsAre("here: found the end of the file within frame 2, expected 3 "
                                "frames; what is whole is shown"));
        EXPECT_TRUE(opened.series->load(1).configuration);
    }
    EXPECT_EQ(open(whole.substr(0, whole.size() - 97)).report.error,
              "here: found the end of the file within frame 0, expected 3 frames");
}

// ---- What is refused

struct BadArray
{
    const char* name;
    std::string bytes;
    std::string error;
};

void PrintTo(const BadArray& bad, std::ostream* stream) { *stream << bad.name; }

class NumpyReaderRefuses : public testing::TestWithParam<BadArray>
{
};

TEST_P(NumpyReaderRefuses, InOneLine)
{
    const Reading reading = read(GetParam().bytes);
    EXPECT_FALSE(reading.configuration);
    EXPECT_THAT(reading.report.error, StartsWith(GetParam().error));
    EXPECT_EQ(reading.report.error.find('\n'), std::string::npos);
    const OpenedSeries opened = open(GetParam().bytes);
    if (opened.series)
        EXPECT_EQ(opened.series->load(0).error, reading.report.error);
    else
        EXPECT_EQ(opened.report.error, reading.report.error);
}

std::string typed(const std::string& type)
{
    return header(dictionary(type, false, "(4, 3)")) + bytesOf<double>(IN_ROWS, false);
}

std::string shaped(const std::string& shape) { return array(shape, IN_ROWS); }

std::string repeated(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

const std::string EXPECTED_TYPE = ", expected '<f4', '<f8', '>f4' or '>f8'";
const std::string EXPECTED_POINTS =
    ", expected (n, 3) or (3, n), or (t, n, 3) or (t, 3, n) of a series";

INSTANTIATE_TEST_SUITE_P(
    Arrays, NumpyReaderRefuses,
    testing::Values(
        BadArray{"Nothing", "", "here: found no array of NumPy, expected one"},
        BadArray{"NoVersion", "\x93NUMPY", "here: found the end within the header"},
        BadArray{"CutHeader", shaped("(4, 3)").substr(0, 40),
                 "here: found the end within the header"},
        BadArray{"LongHeader", "\x93NUMPY\x02\0\xFF\xFF\xFF\xFF{"s,
                 "here: found a header of 4294967295 bytes, expected fewer than 65536"},
        BadArray{"NoDictionary", header("[1, 2]"), "here: found the header '[1, 2]', expected {"},
        BadArray{"NoShape", header("{'descr': '<f8', 'fortran_order': False}"),
                 "here: found the header"},
        BadArray{"UnknownKey", header("{'descr': '<f8', 'x': 1}"), "here: found the header"},
        BadArray{"NegativeShape", shaped("(-4, 3)"), "here: found the header"},
        BadArray{"OpenShape", header("{'descr': '<f8', 'shape': (4, 3"), "here: found the header"},
        BadArray{"EndlessShape", shaped("(" + std::string(200, '1') + ",)"),
                 "here: found the header"},
        BadArray{"ManyAxes", shaped("(" + repeated("1, ", 40) + ")"), "here: found the header"},
        BadArray{"Integers", typed("<i8"), "here: found dtype '<i8'" + EXPECTED_TYPE},
        BadArray{"Halves", typed("<f2"), "here: found dtype '<f2'" + EXPECTED_TYPE},
        BadArray{"Complex", typed("<c16"), "here: found dtype '<c16'" + EXPECTED_TYPE},
        BadArray{"Structured",
                 header("{'descr': [('x', '<f8')], 'fortran_order': False, 'shape': (4,)}"),
                 "here: found dtype '[('x', '<f8')]"},
        BadArray{"Overflow", shaped("(4294967296, 4294967296, 3)"),
                 "here: found shape (4294967296, 4294967296, 3), expected one of at most 2^61"},
        BadArray{"TooFewAxes", shaped("(12,)"), "here: found shape (12,)" + EXPECTED_POINTS},
        BadArray{"NoAxis", array("()", {1}), "here: found shape ()" + EXPECTED_POINTS},
        BadArray{"TooManyAxes", shaped("(1, 1, 4, 3)"), "here: found shape (1, 1, 4, 3)"},
        BadArray{"NoThree", shaped("(6, 2)"),
                 "here: found shape (6, 2)" + EXPECTED_POINTS + ", of at least 2 points"},
        BadArray{"OnePoint", shaped("(1, 3)"), "here: found shape (1, 3)"},
        BadArray{"NoPoint", shaped("(0, 3)"), "here: found shape (0, 3)"},
        BadArray{"NoFrame", shaped("(0, 4, 3)"),
                 "here: found shape (0, 4, 3), expected at least one frame"},
        BadArray{
            "FewerNumbers", shaped("(5, 3)"),
            "here: found the end of the file within the numbers, expected all of shape (5, 3)"},
        BadArray{"CountThatIsNotThere", shaped("(500000000000000000, 3)"),
                 "here: found the end of the file within the numbers"},
        BadArray{"NotANumber", array("(2, 3)", {0, 0, 0, 0, NAN, 1}),
                 "here: [1, 1]: found nan, expected a coordinate"},
        BadArray{"NotANumberInColumns", array("(3, 2)", {0, 0, 0, 0, 1, INFINITY}),
                 "here: [2, 1]: found inf, expected a coordinate"},
        BadArray{"TooFar", array("(1, 2, 3)", {0, 0, 0, 0, 2e18, 1}),
                 "here: [0, 1, 1]: found 2e+18, expected a coordinate"},
        BadArray{"OnePlace", array("(2, 3)", {1, 1, 1, 1, 1, 1}),
                 "here: [:]: found 1 distinct point, expected at least 2 in a rod"}),
    [](const auto& test) { return test.param.name; });

// ---- Pickles

TEST(NumpyReader, NeverOpensAPickleAndPrintsWhatConvertsIt)
{
    for (const char* name : {"run.pkl", "objects.npy"}) {
        const Reading reading = readOwn(name);
        EXPECT_FALSE(reading.configuration);
        EXPECT_THAT(reading.report.error, HasSubstr("a pickle, which can run any program"));
        EXPECT_THAT(reading.report.error, HasSubstr(": import numpy"));
        EXPECT_THAT(reading.report.error, testing::EndsWith("; numpy.savez('run.npz', **data)"));
        EXPECT_EQ(reading.report.error.find('\n'), std::string::npos);
    }
}

TEST(NumpyReader, TheGuideHasTheThreeStatements)
{
    std::ifstream file(FILES_GUIDE);
    const std::string guide{std::istreambuf_iterator<char>(file), {}};
    for (const char* statement :
         {"`import numpy, pickle`", "`data = pickle.load(open('run.pkl', 'rb'))`",
          "`numpy.savez('run.npz', **data)`"}) {
        EXPECT_THAT(guide, HasSubstr(statement));
        const std::string bare(statement + 1, std::strlen(statement) - 2);
        EXPECT_THAT(readOwn("run.pkl").report.error, HasSubstr(bare));
    }
}

TEST(NumpyReader, KnowsPicklesOfEveryProtocolWithoutAText)
{
    for (const char protocol : {2, 3, 4, 5})
        EXPECT_EQ(likenessToNumpy("\x80"s + protocol + "}q\x00."s), Likeness::CERTAIN);
    EXPECT_EQ(likenessToNumpy("\x80\x06}"), Likeness::NONE);
    EXPECT_EQ(likenessToNumpy("\x80"), Likeness::NONE);
}

// ---- Archives

class NumpyArchive : public testing::TestWithParam<const char*>
{
protected:
    const std::string path = std::string(TEST_FILES) + "/" + GetParam();
};

TEST_P(NumpyArchive, HasRodsWithFramesOfTheirElementsOverTime)
{
    ReadReport report;
    const auto series = openSeries({path}, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 3u);
    EXPECT_EQ(series->time(0), 0.0);
    EXPECT_EQ(series->time(1), 0.5);
    EXPECT_EQ(series->time(2), 1.25);
    for (const std::size_t frame : {1u, 2u, 0u, 1u}) {
        SCOPED_TRACE(frame);
        const LoadedFrame loaded = series->load(frame);
        ASSERT_TRUE(loaded.configuration) << loaded.error;
        // The centres of the elements beside the centre line are no rods of their own.
        ASSERT_EQ(loaded.configuration->rods.size(), 2u);
        const Rod &arm = loaded.configuration->rods[0], &other = loaded.configuration->rods[1];
        EXPECT_EQ(arm.name, "center_line");
        EXPECT_EQ(arm.origin, path + ": center_line");
        EXPECT_TRUE(arm.hasFrames);
        ASSERT_EQ(arm.points.size(), 7u);
        const double pitch = 0.3 + 0.1 * double(frame);
        for (std::size_t i = 0; i < 7; ++i) {
            const double angle = 0.25 * double(i);
            expectNear(arm.points[i], {std::cos(angle), std::sin(angle), pitch * angle});
        }
        EXPECT_EQ(other.name, "position_rod_1");
        EXPECT_FALSE(other.hasFrames);
        ASSERT_EQ(other.points.size(), 6u);
        expectNear(other.points[0], {6, 5, 5}, 1e-6); // in single precision
    }
}

TEST_P(NumpyArchive, TakesDirectorsOfElementsToThePoints)
{
    ReadReport report;
    const auto read = readFile(path, {}, report);
    ASSERT_TRUE(read) << report.error;
    const Rod& arm = read->rods.at(0);
    // d1 is level and d3 the element's tangent.
    const auto frameOf = [&arm](std::size_t element) {
        const auto d3 = (arm.points[element + 1] - arm.points[element]).getUnit();
        const auto d1 = algebra3d::Vector3<double>(0, 0, 1).cross(d3).getUnit();
        return algebra3d::Matrix3<double>(d1, d3.cross(d1), d3).getQuaternion();
    };
    for (std::size_t i = 1; i + 1 < arm.points.size(); ++i) {
        const auto expected = algebra3d::slerp(frameOf(i - 1), frameOf(i), 0.5);
        EXPECT_NEAR(std::abs(algebra3d::dot(arm.rotations[i], expected)), 1, 1e-14) << i;
    }
    EXPECT_THAT(report.notices,
                testing::Contains(path + ": 1 rod with frames or scalars of elements: taken to the "
                                         "points"));
}

INSTANTIATE_TEST_SUITE_P(StoredAndPacked, NumpyArchive,
                         testing::Values("arm.npz", "arm_packed.npz"), [](const auto& test) {
                             const std::string name = test.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(NumpyReader, FramesAndStepsAreThePairsOfADnaOfUnknownLetters)
{
    const Reading reading = readOwn("pairs.npz");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_THAT(reading.configuration->rods, IsEmpty());
    const Dna& dna = reading.configuration->dnas.at(0);
    EXPECT_EQ(dna.bases, "NNNN");
    ASSERT_EQ(dna.pairPoints.size(), 4u);
    // Each step is along d3 of the pair that it begins at: the rows of a frame are its axes.
    for (std::size_t i = 0; i < 3; ++i)
        expectNear(dna.pairPoints[i + 1] - dna.pairPoints[i],
                   algebra3d::Matrix3<double>(dna.pairRotations[i]).getColumn(2) * 3.4, 1e-12);
    EXPECT_EQ(numbersOf(dna.points1), numbersOf(dna.pairPoints));
    EXPECT_EQ(numbersOf(dna.rotations2), numbersOf(dna.pairRotations));
}

TEST(NumpyReader, ArchivesAreKnownByWhatTheyHoldWhateverTheirName)
{
    const std::string bytes = [] {
        ReadReport report;
        const auto source = Source::open(std::string(TEST_FILES) + "/arm.npz", report);
        return std::string(*source->readAll({}, report));
    }();
    EXPECT_EQ(likenessToNumpy(bytes.substr(0, 64 * 1024)), Likeness::CERTAIN);
    EXPECT_EQ(likenessToNumpy(bytes.substr(0, 31)), Likeness::NONE);
    const TemporaryFolder folder;
    ReadReport report;
    EXPECT_TRUE(readFile(folder.write("arm.txt", bytes), {}, report)) << report.error;
    const Reading cut = read(bytes.substr(0, bytes.size() / 2));
    EXPECT_THAT(cut.report.error, StartsWith("here: found no whole ZIP archive ("));
    EXPECT_THAT(read("PK").report.error, StartsWith("here: found no whole ZIP archive ("));
}

// ---- Archives, put together here

namespace {

std::uint32_t crcOf(const std::string& bytes)
{
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const unsigned char byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
    }
    return ~crc;
}

std::string littleEndian(std::uint32_t number, int bytes)
{
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += char(number >> (8 * i) & 255);
    return text;
}

/// A ZIP archive of stored arrays.
std::string archive(const std::vector<std::pair<std::string, std::string>>& arrays)
{
    std::string files, directory;
    for (const auto& [key, bytes] : arrays) {
        const std::string name = key + ".npy";
        const std::uint32_t size = std::uint32_t(bytes.size());
        const std::string facts = littleEndian(20, 2) + std::string(8, '\0') +
                                  littleEndian(crcOf(bytes), 4) + littleEndian(size, 4) +
                                  littleEndian(size, 4) +
                                  littleEndian(std::uint32_t(name.size()), 2);
        directory += "PK\x01\x02"s + littleEndian(20, 2) + facts + std::string(12, '\0') +
                     littleEndian(std::uint32_t(files.size()), 4) + name;
        files += "PK\x03\x04"s + facts + std::string(2, '\0') + name + bytes;
    }
    const std::uint32_t count = std::uint32_t(arrays.size());
    return files + directory + "PK\x05\x06"s + std::string(4, '\0') + littleEndian(count, 2) +
           littleEndian(count, 2) + littleEndian(std::uint32_t(directory.size()), 4) +
           littleEndian(std::uint32_t(files.size()), 4) + std::string(2, '\0');
}

const std::string POINTS_OF_ROD = array("(4, 3)", IN_ROWS);

} // namespace

TEST(NumpyReader, TakesQuaternionsOfPointsAndOfElementsAsRowsOrColumns)
{
    const double s = std::sqrt(0.5);
    for (const std::string& quaternions :
         {array("(4, 4)", {0, 0, s, s, 0, 0, s, s, 0, 0, s, s, 0, 0, s, s}),
          array("(3, 4)", {0, 0, s, s, 0, 0, s, s, 0, 0, s, s}),
          array("(4, 3)", {0, 0, 0, 0, 0, 0, s, s, s, s, s, s})}) {
        const Rod rod =
            onlyRod(read(archive({{"points", POINTS_OF_ROD}, {"quaternions", quaternions}})));
        EXPECT_TRUE(rod.hasFrames);
        ASSERT_EQ(rod.rotations.size(), 4u);
        for (const auto& q : rod.rotations) {
            EXPECT_NEAR(std::abs(q[2]), s, 1e-15);
            EXPECT_NEAR(std::abs(q[3]), s, 1e-15);
        }
    }
}

TEST(NumpyReader, TakesDirectorsAsRowsBesideRowsOfPoints)
{
    // d1 = y, d2 = z, d3 = x of three elements between four points.
    std::vector<double> rows, columns(27, 0);
    for (int e = 0; e < 3; ++e)
        rows.insert(rows.end(), {0, 1, 0, 0, 0, 1, 1, 0, 0});
    for (int d = 0; d < 3; ++d)
        for (int e = 0; e < 3; ++e)
            columns[std::size_t(9 * d + 3 * ((d + 1) % 3) + e)] = 1;
    for (const auto& [points, directors] :
         {std::pair(POINTS_OF_ROD, array("(3, 3, 3)", rows)),
          std::pair(array("(3, 4)", IN_COLUMNS), array("(3, 3, 3)", columns))}) {
        const Rod rod = onlyRod(read(archive({{"position", points}, {"directors", directors}})));
        ASSERT_EQ(rod.rotations.size(), 4u);
        for (const auto& rotation : rod.rotations)
            expectNear(algebra3d::Matrix3<double>(rotation).getColumn(2), {1, 0, 0});
    }
}

TEST(NumpyReader, NumbersOfKeysTellRodsAndOneWithoutIsTheFirst)
{
    const auto read3 = read(archive({{"position_12", POINTS_OF_ROD},
                                     {"points", POINTS_OF_ROD},
                                     {"center_line_1", POINTS_OF_ROD},
                                     {"position_rod_1", POINTS_OF_ROD},
                                     {"pointsOfInterest", POINTS_OF_ROD}}));
    std::vector<std::string> names;
    for (const Rod& rod : acceptedRods(read3))
        names.push_back(rod.name);
    EXPECT_THAT(names, ElementsAre("points", "center_line_1", "position_12"));
}

TEST(NumpyReader, RefusesArchivesWhoseArraysDoNotFitInOneLine)
{
    const std::string quaternion = array("(1, 4)", {0, 0, 0, 1});
    const std::string twoFrames = array("(2, 2, 3)", std::vector<double>(12, 0));
    const std::pair<std::string, std::string> faults[] = {
        {archive({}), "here: found no arrays, expected points"},
        {archive({{"a", POINTS_OF_ROD}, {"b", ""}}),
         "here: found the arrays a, b, expected points, position* or center_line*"},
        {archive({{"frames", POINTS_OF_ROD}}), "here: found the arrays frames, expected"},
        {archive({{"quaternions_3", quaternion}}),
         "here: found 'quaternions_3', expected points of the same number beside it"},
        {archive({{"points", POINTS_OF_ROD}, {"quaternions", quaternion}}),
         "here: quaternions: found shape (1, 4), expected (4, 4) or (4, 4) beside 4 points"},
        {archive({{"points", POINTS_OF_ROD}, {"directors", POINTS_OF_ROD}}),
         "here: directors: found shape (4, 3), expected (3, 3, 4) or (4, 3, 3) beside 4 points"},
        {archive({{"points_1", POINTS_OF_ROD}, {"points_2", twoFrames}}),
         "here: points_2: found shape (2, 2, 3), expected no axis of frames, as in 'points_1'"},
        {archive({{"points_1", twoFrames}, {"points_2", array("(1, 2, 3)", {})}}),
         "here: points_2: found shape (1, 2, 3), expected 2 frames in front, as in 'points_1'"},
        {archive({{"points", twoFrames}, {"time", array("(3,)", {0, 1, 2})}}),
         "here: time: found shape (3,), expected (2,), a time of each frame"},
        {archive({{"points", ""}}), "here: points: found no array of NumPy, expected one"},
        {archive({{"frames", array("(2, 3, 3)", std::vector<double>(18, 0))},
                  {"dr", array("(2, 3)", std::vector<double>(6, 0))}}),
         "here: dr: found shape (2, 3), expected (1, 3) beside 2 frames"},
        {archive({{"frames", array("(1, 3, 3)", {1, 0, 0, 0, 1, 0, 0, 0, -1})},
                  {"dr", array("(0, 3)", {})}}),
         "here: frames[0, :, :]: found left-handed directors, expected d3 = d1 x d2"},
        {archive({{"points", array("(2, 3)", {0, 0, 0, 0, 0, 1})},
                  {"quaternions", array("(1, 4)", {0, 0, 0, 2})}}),
         "here: quaternions[0, :]: found a quaternion of norm 2, expected 1"},
        {archive({{"points", array("(2, 3)", {0, 0, 0, 0, 0, 1})},
                  {"quaternions", array("(1, 4)", {0, 0, 0, NAN})}}),
         "here: quaternions[0, :]: found a number that is not finite"},
    };
    for (const auto& [bytes, error] : faults) {
        const Reading reading = read(bytes);
        EXPECT_FALSE(reading.configuration);
        EXPECT_THAT(reading.report.error, StartsWith(error));
    }
}

TEST(NumpyReader, RefusesAFrameThatIsFarLargerThanTheFileBeforeItIsUnpacked)
{
    // 3 GB, as the directory has it, of which there are the first 80 KB. Between its head and its
    // tail gzip has what archives have.
    const std::string there = array("(125000000, 3)", std::vector<double>(10000, 0));
    const std::string packed = packedByGzip(there);
    std::string bytes = archive({{"points", packed.substr(10, packed.size() - 18)}});
    const std::size_t inDirectory = bytes.find("PK\x01\x02");
    bytes[inDirectory + 10] = 8; // the method
    bytes.replace(inDirectory + 24, 4, littleEndian(3000000000u, 4));
    const Reading reading = read(bytes);
    EXPECT_FALSE(reading.configuration);
    EXPECT_EQ(reading.report.error, "here: found more than 100 times as many bytes of numbers in "
                                    "a frame as the file has, expected fewer");
}

TEST(NumpyReader, AnArchiveThatIsPackedOnceMoreIsReadAsItIs)
{
    std::vector<double> numbers;
    for (int i = 0; i < 3 * 5000; ++i)
        numbers.push_back(i % 7 + i);
    const std::string bytes = archive({{"points", array("(5000, 3)", numbers)}});
    const Reading plain = read(bytes);
    ASSERT_TRUE(plain.configuration) << plain.report.error;
    const TemporaryFolder folder;
    for (const std::string& path : {folder.write("arm.npz.gz", packedByGzip(bytes)),
                                    folder.write("arm.npz.zst", packedByZstandard(bytes))}) {
        ReadReport report;
        const auto unpacked = readFile(path, {}, report);
        ASSERT_TRUE(unpacked) << report.error;
        EXPECT_EQ(everythingOf(*unpacked), everythingOf(*plain.configuration));
    }
}

TEST(NumpyReader, AStoredArrayHasAsManyBytesAsTheDirectorySays)
{
    std::string bytes = archive({{"points", array("(2, 3)", {0, 0, 0, 1, 0, 0})}});
    const std::size_t inDirectory = bytes.find("PK\x01\x02");
    bytes[inDirectory + 24] = char(bytes[inDirectory + 24] + 1); // the size, unpacked
    const Reading reading = read(bytes);
    EXPECT_FALSE(reading.configuration);
    EXPECT_THAT(reading.report.error, StartsWith("here: points.npy: "));
}

TEST(NumpyReader, AWrongByteOfAPackedArrayIsToldInOneLine)
{
    ReadReport report;
    const auto source = Source::open(std::string(TEST_FILES) + "/arm_packed.npz", report);
    const std::string bytes(*source->readAll({}, report));
    std::mt19937 random(20);
    for (int i = 0; i < 2000; ++i) {
        std::string broken = bytes;
        for (int faults = int(random() % 4); faults >= 0; --faults)
            broken[random() % broken.size()] = char(random());
        if (i % 3 == 0)
            broken.resize(random() % broken.size());
        const OpenedSeries opened = open(broken);
        const LoadedFrame loaded = opened.series ? opened.series->load(opened.series->count() - 1)
                                                 : LoadedFrame{{}, {}, opened.report.error};
        EXPECT_EQ(loaded.error.empty(), loaded.configuration.has_value());
        EXPECT_EQ(loaded.error.find('\n'), std::string::npos) << loaded.error;
    }
}

namespace {

/// Of some pieces, the last one shorter.
std::string longArray()
{
    std::vector<double> numbers(90000);
    std::iota(numbers.begin(), numbers.end(), 0.0);
    return array("(30000, 3)", numbers);
}

constexpr char ANOTHER_SUM[] = "here: points.npy: found bytes of another CRC-32 than the archive "
                               "has, expected those that were written";

} // namespace

TEST(NumpyReader, AWrongByteOfAStoredArrayIsTold)
{
    const std::string bytes = archive({{"points", longArray()}});
    EXPECT_TRUE(read(bytes).configuration);
    // The last digits of a coordinate: what is there is a number as any.
    const std::size_t begin = bytes.find('\n', bytes.find("shape")) + 1;
    for (const std::size_t number : {0, 45000, 89999}) {
        std::string broken = bytes;
        broken[begin + 8 * number] ^= 1;
        const Reading reading = read(broken);
        EXPECT_FALSE(reading.configuration) << number;
        EXPECT_EQ(reading.report.error, ANOTHER_SUM);
    }
}

TEST(NumpyReader, AWrongSumOfAPackedArrayIsTold)
{
    const std::string there = longArray(), packed = packedByGzip(there);
    for (const std::uint32_t wrong : {0u, 1u}) {
        std::string bytes = archive({{"points", packed.substr(10, packed.size() - 18)}});
        const std::size_t inDirectory = bytes.find("PK\x01\x02");
        bytes[inDirectory + 10] = 8; // the method
        bytes.replace(inDirectory + 16, 4, littleEndian(crcOf(there) ^ wrong, 4));
        bytes.replace(inDirectory + 24, 4, littleEndian(std::uint32_t(there.size()), 4));
        const Reading reading = read(bytes);
        EXPECT_EQ(reading.configuration.has_value(), wrong == 0);
        EXPECT_EQ(reading.report.error, wrong ? ANOTHER_SUM : "");
    }
}

TEST(NumpyReader, AsksWhetherToGoOn)
{
    ReadOptions options;
    options.goOn = [](double) { return false; };
    ReadReport report;
    EXPECT_FALSE(readFile(std::string(TEST_FILES) + "/arm.npz", options, report));
    EXPECT_THAT(report.error, HasSubstr("reading was stopped"));
}

// ---- Files of others

using NumpyOfOthers = FilesOfOthers;

TEST_F(NumpyOfOthers, ASoftArmHasARodWithFramesBesideTwoMoreOverTime)
{
    ReadReport report;
    const auto series = openSeries({folder + "softarm_br2.npz"}, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 26u);
    EXPECT_EQ(series->time(0), 0.0);
    EXPECT_NEAR(*series->time(25), 1.0, 1e-9);
    for (const std::size_t frame : {0u, 25u, 13u}) {
        const LoadedFrame loaded = series->load(frame);
        ASSERT_TRUE(loaded.configuration) << loaded.error;
        ASSERT_EQ(loaded.configuration->rods.size(), 3u);
        const Rod& arm = loaded.configuration->rods[0];
        EXPECT_TRUE(arm.hasFrames);
        EXPECT_EQ(arm.points.size(), 41u);
        EXPECT_FALSE(arm.isClosed);
        EXPECT_NEAR(lengthOf(arm.points), 0.15, frame == 0 ? 1e-12 : 0.01);
        // d3 is the element's tangent, so at a point nearly the mean of two.
        for (std::size_t i = 1; i + 1 < arm.points.size(); ++i) {
            const auto before = (arm.points[i] - arm.points[i - 1]).getUnit();
            const auto after = (arm.points[i + 1] - arm.points[i]).getUnit();
            expectNear(algebra3d::Matrix3<double>(arm.rotations[i]).getColumn(2),
                       (before + after).getUnit(), 5e-3);
        }
        EXPECT_EQ(loaded.configuration->rods[1].points.size(), 40u);
        EXPECT_FALSE(loaded.configuration->rods[1].hasFrames);
    }
}

TEST_F(NumpyOfOthers, AChainOfPairsHasItsKnownLengths)
{
    ReadReport report;
    const auto read = readFile(folder + "helixmc_data0.npz", {}, report);
    ASSERT_TRUE(read) << report.error;
    const Dna& dna = read->dnas.at(0);
    ASSERT_EQ(dna.pairPoints.size(), 3000u);
    EXPECT_NEAR(lengthOf(dna.pairPoints), 10406.545, 5e-4);
    EXPECT_NEAR((dna.pairPoints.back() - dna.pairPoints.front()).getNorm(), 8780.477, 5e-4);
    EXPECT_THAT(report.notices, IsEmpty()) << "d3 follows the pairs: rows are axes";
}

} // namespace strandview
