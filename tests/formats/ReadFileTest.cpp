// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/readFile.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <string_view>
#include <thread>

#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <strandview/formats/FibreReader.h>
#include <strandview/formats/IndexedSeries.h>
#include <strandview/formats/JsonReader.h>
#include <strandview/formats/PairFrameReader.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/StepParameterReader.h>
#include <strandview/formats/TableReader.h>
#include <strandview/formats/VectReader.h>
#include <strandview/formats/XyzReader.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/oxdna/OxdnaReader.h>

#include "support/TemporaryFolder.h"
#include "support/WrittenPipe.h"
#include "support/readText.h"

namespace strandview {

namespace {

using algebra3d::Quaternion;
using algebra3d::Vector3;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string table = "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n";
const std::string json = R"( {"strandview": 1, "rods": [{"points": [[0, 0, 0], [0, 0, 1]],
                             "quaternions": [[0, 0, 0, 1], [0, 0, 0, 1]]}]})";
const std::string byteOrderMark = "\xEF\xBB\xBF";

class ReadFile : public testing::Test
{
protected:
    std::string write(const std::string& name, const std::string& text) const
    {
        return temporary.write(name, text);
    }

    std::optional<Configuration> read(const std::string& path)
    {
        return readFile(path, {}, report);
    }

    std::optional<Configuration> readAsStandardInput(const std::string& text)
    {
        EXPECT_TRUE(std::freopen(write("input", text).c_str(), "rb", stdin));
        return read("-");
    }

    const TemporaryFolder temporary;
    const std::string folder = temporary.path();
    ReadReport report;
};

} // namespace

TEST_F(ReadFile, TheEndingDecidesTheFormat)
{
    for (const char* name :
         {"a.txt", "a.dat", "a.csv", "a.tsv", "a.xyz", "A.TXT", "a.json.Csv", ".txt.dat"})
        EXPECT_TRUE(read(write(name, table))) << report.error;
    for (const char* name : {"a.json", "A.JSON", "a.txt.Json"})
        EXPECT_TRUE(read(write(name, json))) << report.error;
    EXPECT_FALSE(read(write("b.json", table)));
    EXPECT_FALSE(read(write("b.txt", json)));
}

TEST_F(ReadFile, WithoutAKnownEndingTheContentDecidesTheFormat)
{
    for (const char* name : {"rod", "rod.out", "rod.0001", "txt", "rod.json.bak"}) {
        EXPECT_TRUE(read(write(name, table))) << report.error;
        EXPECT_TRUE(read(write(name, json))) << report.error;
        EXPECT_TRUE(read(write(name, byteOrderMark + json))) << report.error;
    }
    const std::string other = write("a.rod", "HEADER_OF DNA\n");
    EXPECT_FALSE(read(other));
    EXPECT_EQ(report.error, other +
                                ":1: column 1: found 'HEADER_OF', expected a number, or a header "
                                "that names x y z, and qx qy qz qw if there are quaternions");
}

TEST_F(ReadFile, RefusesBinaryDataThatNoEndingNames)
{
    using namespace std::string_literals;
    const std::string faults[] = {"\x89PNG\r\n\x1a\n\0\0\0\rIHDR"s, "PK\x03\x04\x14"s,
                                  "\x7f"
                                  "ELF\2\1\1\0"s,
                                  "{\0"s, "0 0 0\n0 0 \0"s};
    for (const std::string& text : faults) {
        const std::string path = write("rod.out", text);
        EXPECT_FALSE(read(path));
        EXPECT_EQ(report.error, path + ": found binary data, expected " + expectedFormats());
        EXPECT_FALSE(readAsStandardInput(text));
        EXPECT_EQ(report.error, "standard input: found binary data, expected " + expectedFormats());
    }
}

TEST_F(ReadFile, StopsAtTheBeginningOfBinaryDataWithoutEnd)
{
    EXPECT_FALSE(read("/dev/zero"));
    EXPECT_EQ(report.error, "/dev/zero: found binary data, expected " + expectedFormats());
}

TEST_F(ReadFile, ReadsAPipeByItsContent)
{
    for (const std::string& text : {table, json}) {
        const std::string path = folder + "/pipe";
        {
            const WrittenPipe pipe(path, text);
            EXPECT_TRUE(read(path)) << report.error;
        }
        std::filesystem::remove(path);
    }
}

TEST_F(ReadFile, ReadsStandardInputByItsNameAsADevice)
{
    for (const std::string& text : {table, json}) {
        ASSERT_TRUE(std::freopen(write("input", text).c_str(), "rb", stdin));
        EXPECT_TRUE(read("/dev/stdin")) << report.error;
    }
}

TEST_F(ReadFile, GivesTheSystemsReasonForWhatCannotBeRead)
{
    const std::string missing = folder + "/none.txt";
    EXPECT_FALSE(read(missing));
    EXPECT_EQ(report.error, missing + ": cannot be read: No such file or directory");

    const std::string insideAFile = write("a.txt", table) + "/b.txt";
    EXPECT_FALSE(read(insideAFile));
    EXPECT_EQ(report.error, insideAFile + ": cannot be read: Not a directory");

    EXPECT_FALSE(read(folder));
    EXPECT_EQ(report.error, folder + ": cannot be read: Is a directory");
    const std::string named = folder + "/folder.txt";
    std::filesystem::create_directory(named);
    EXPECT_FALSE(read(named));
    EXPECT_EQ(report.error, named + ": cannot be read: Is a directory");

    EXPECT_FALSE(read(""));
    EXPECT_EQ(report.error, ": cannot be read: No such file or directory");
}

TEST_F(ReadFile, GivesTheSystemsReasonForWhatOpensButDoesNotRead)
{
    // The memory of this process opens, but nothing can be read at its address 0.
    if (!std::filesystem::exists("/proc/self/mem"))
        GTEST_SKIP() << "skipped: no /proc/self/mem";
    const std::string path = folder + "/memory.txt";
    std::filesystem::create_symlink("/proc/self/mem", path);
    EXPECT_FALSE(read(path));
    EXPECT_EQ(report.error, path + ": cannot be read: Input/output error");
}

TEST_F(ReadFile, AFileNameWithALineEndStaysOneLine)
{
    EXPECT_FALSE(read(folder + "/a\nb.txt"));
    EXPECT_EQ(report.error, folder + "/a\\x0ab.txt: cannot be read: No such file or directory");
}

TEST_F(ReadFile, TheReadersNameTheFileInErrorsAndNotices)
{
    const std::string path = write("bad.csv", "0,0,0\n0,0,b\n");
    EXPECT_FALSE(read(path));
    EXPECT_EQ(report.error, path + ":2: column 3 (z): found 'b', expected a finite number");

    const std::string bare = write("bare.csv", "0,0,0\n0,0,1\n");
    EXPECT_TRUE(read(bare));
    EXPECT_EQ(report.error, "") << "of the file before";
    EXPECT_THAT(report.notices,
                ElementsAre(bare + ": 1 rod without frames: made by parallel transport, for a "
                                   "ribbon where one is asked for (--ribbon)"));
}

TEST_F(ReadFile, PassesTheOptionsOn)
{
    ReadOptions options;
    options.normalise = true;
    const auto fromTable =
        readFile(write("a.txt", "0 0 0 0 0 0 2\n0 0 1 0 0 0 3\n"), options, report);
    ASSERT_TRUE(fromTable) << report.error;
    EXPECT_EQ(fromTable->rods[0].rotations[0][3], 1);
    const auto fromJson = readFile(write("a.json", R"({"strandview": 1, "rods": [{
        "points": [[0, 0, 0], [0, 0, 1]], "quaternions": [[0, 0, 0, 4], [0, 0, 0, 5]]}]})"),
                                   options, report);
    ASSERT_TRUE(fromJson) << report.error;
    EXPECT_EQ(fromJson->rods[0].rotations[1][3], 1);
}

TEST_F(ReadFile, TellsHowFarItIsInALongFile)
{
    std::string rows, points;
    for (int i = 0; i < 50000; ++i) {
        rows += std::to_string(i) + " 0 0\n";
        points += (i == 0 ? "[" : ", [") + std::to_string(i) + ", 0, 0]";
    }
    for (const std::string& path :
         {write("a.txt", rows),
          write("a.json", R"({"strandview": 1, "rods": [{"points": [)" + points + "]}]}")}) {
        std::vector<double> shares;
        ReadOptions options;
        options.goOn = [&](double share) {
            shares.push_back(share);
            return true;
        };
        EXPECT_TRUE(readFile(path, options, report)) << report.error;
        EXPECT_GT(shares.size(), 5u) << path;
        EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end())) << path;
        EXPECT_EQ(shares.front(), 0) << path;
        EXPECT_GT(shares.back(), 0.8) << path;
        EXPECT_LE(shares.back(), 1) << path;

        options.goOn = [](double share) { return share < 0.3; };
        EXPECT_FALSE(readFile(path, options, report));
        EXPECT_THAT(report.error, AllOf(StartsWith(path + ":"), HasSubstr("reading was stopped")));
    }
}

TEST_F(ReadFile, DoesNotWaitForAPipeThatItIsNotToWaitFor)
{
    const std::string pipe = folder + "/pipe.txt";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    int asked = 0;
    ReadOptions options;
    options.goOn = [&](double) { return ++asked < 3; };
    EXPECT_FALSE(readFile(pipe, options, report)) << "nobody ever writes to it";
    EXPECT_EQ(report.error, pipe + ": reading was stopped");
    EXPECT_EQ(asked, 3);
}

TEST_F(ReadFile, WaitsForAPipeThatIsWrittenInPieces)
{
    const std::string pipe = folder + "/pipe.txt";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&] {
        std::ofstream stream(pipe);
        for (const char* piece : {"0 0 0\n0 0", " 1\n", "0 1 2\n"}) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            stream << piece << std::flush;
        }
    });
    const auto configuration = read(pipe);
    writer.join();
    ASSERT_TRUE(configuration) << report.error;
    EXPECT_EQ(configuration->rods[0].points.size(), 3u);
}

TEST_F(ReadFile, SkipsAByteOrderMark)
{
    EXPECT_TRUE(read(write("a.txt", byteOrderMark + table))) << report.error;
    EXPECT_TRUE(read(write("b.csv", byteOrderMark + "x,y,z\n0,0,0\n0,0,1\n"))) << report.error;
    EXPECT_TRUE(read(write("a.json", byteOrderMark + json))) << report.error;
    EXPECT_TRUE(readAsStandardInput(byteOrderMark + json)) << report.error;

    const std::string twice = write("c.json", byteOrderMark + "[\n");
    EXPECT_FALSE(read(twice));
    const std::string nothing = write("d.txt", byteOrderMark);
    EXPECT_FALSE(read(nothing));
    EXPECT_EQ(report.error, nothing + ": found nothing to show, expected at least one rod or DNA");
}

TEST_F(ReadFile, RefusesTextInUtf16)
{
    using namespace std::string_literals;
    for (const std::string& text : {"\xFF\xFE"
                                    "0\0 \0"s,
                                    "\xFE\xFF"
                                    "\0{"s,
                                    "\xFF\xFE"s}) {
        for (const char* name : {"a.txt", "a.json", "a"}) {
            const std::string path = write(name, text);
            EXPECT_FALSE(read(path));
            EXPECT_EQ(report.error, path + ": found UTF-16 text, expected UTF-8");
        }
        EXPECT_FALSE(readAsStandardInput(text));
        EXPECT_EQ(report.error, "standard input: found UTF-16 text, expected UTF-8");
    }
}

TEST_F(ReadFile, TheOriginOfARodHasTheFileNameOnOneLine)
{
    const auto fromTable = read(write("a\nb.txt", table));
    ASSERT_TRUE(fromTable) << report.error;
    EXPECT_EQ(fromTable->rods[0].origin, folder + "/a\\x0ab.txt:1: rod 1");
    const auto fromJson = read(write("a\nb.json", json));
    ASSERT_TRUE(fromJson) << report.error;
    EXPECT_EQ(fromJson->rods[0].origin, folder + "/a\\x0ab.json: rods[0]");
}

TEST_F(ReadFile, ReadsAllOfAFileOfSeveralMegabytes)
{
    const int rows = 200000;
    std::string text;
    for (int i = 0; i < rows; ++i)
        text += std::to_string(i) + " 0.25 -0.125 0 0 0 1 " + std::to_string(i % 7) + "\n";
    ASSERT_GT(text.size(), 1U << 22);
    const auto configuration = read(write("long.dat", text));
    ASSERT_TRUE(configuration) << report.error;
    const Rod& rod = configuration->rods[0];
    ASSERT_EQ(rod.points.size(), rows);
    for (int i = 0; i < rows; ++i) {
        ASSERT_EQ(rod.points[i].x, i);
        ASSERT_EQ(rod.scalars[0].values[i], i % 7);
    }
}

TEST_F(ReadFile, ADashIsStandardInputAndItsFirstCharacterTheFormat)
{
    EXPECT_TRUE(readAsStandardInput(table)) << report.error;
    EXPECT_TRUE(readAsStandardInput("\n # x y z\n" + table)) << report.error;
    EXPECT_TRUE(readAsStandardInput(json)) << report.error;
    EXPECT_TRUE(readAsStandardInput("\r\n\t" + json)) << report.error;

    EXPECT_FALSE(readAsStandardInput(""));
    EXPECT_EQ(report.error,
              "standard input: found nothing to show, expected at least one rod or DNA");
    EXPECT_FALSE(readAsStandardInput("0 0 0\n0 1\n"));
    EXPECT_EQ(report.error, "standard input:2: found 2 columns, expected 3 as in line 1");
    EXPECT_FALSE(readAsStandardInput("{\"strandview\": 3}"));
    EXPECT_EQ(report.error, "standard input: strandview: found 3, expected 1");
}

TEST_F(ReadFile, BytesThatAreOpenAlreadyAreReadByTheirContent)
{
    for (const std::string& text : {table, json, byteOrderMark + json}) {
        const auto source = Source::ofBytes("made.json", text);
        const auto configuration = readSource(*source, {}, report);
        ASSERT_TRUE(configuration) << report.error;
        EXPECT_THAT(configuration->rods[0].origin, StartsWith("made.json:"));
    }
    EXPECT_FALSE(readSource(*Source::ofBytes("made", "0 0"), {}, report));
    EXPECT_THAT(report.error, StartsWith("made:1: found 2 columns"));
    EXPECT_TRUE(readSource(*Source::ofBytes("made", table), {}, report));
    EXPECT_EQ(report.error, "") << "of the bytes before";
}

TEST_F(ReadFile, OfSeveralFramesTheFirstIsReadAndANoticeTells)
{
    const auto markers = [](const char* id) {
        return std::string(R"({"markers": [{"point": [0, 0, 0], "id": )") + id + "}]}";
    };
    const auto source = Source::ofBytes("run", R"({"strandview": 1, "series": [)" + markers("7") +
                                                   ", " + markers("8") + "]}");
    const auto first = readSource(*source, {}, report);
    ASSERT_TRUE(first) << report.error;
    EXPECT_EQ(first->markers[0].id, 7);
    EXPECT_THAT(report.notices,
                ElementsAre("run: the first of 2 frames; --frame N takes another, counted from 0"));
    ASSERT_TRUE(readSource(*Source::ofBytes("one", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n"), {}, report));
    EXPECT_EQ(report.notices.size(), 1U) << "the next source has one frame";
}

TEST_F(ReadFile, BothFormatsGiveTheSameRods)
{
    const auto fromTable = read(write("a.txt", "x y z s\n0 0 0 5\n1 0 0 6\n1 1 0 7\n\n"
                                               "0 0 9 1\n0 0 9 2\n0 2 8 3\n"));
    const auto fromJson = read(write("a.json", R"({"strandview": 1, "rods": [
        {"points": [[0, 0, 0], [1, 0, 0], [1, 1, 0]], "scalars": {"s": [5, 6, 7]}},
        {"points": [[0, 0, 9], [0, 0, 9], [0, 2, 8]], "scalars": {"s": [1, 2, 3]}}]})"));
    ASSERT_TRUE(fromTable && fromJson) << report.error;
    ASSERT_EQ(fromTable->rods.size(), 2U);
    ASSERT_EQ(fromJson->rods.size(), 2U);
    for (std::size_t r = 0; r < 2; ++r) {
        const Rod &a = fromTable->rods[r], &b = fromJson->rods[r];
        ASSERT_EQ(a.points.size(), b.points.size());
        for (std::size_t i = 0; i < a.points.size(); ++i)
            for (int k = 0; k < 4; ++k) {
                EXPECT_EQ(a.points[i][k % 3], b.points[i][k % 3]);
                EXPECT_EQ(a.rotations[i][k], b.rotations[i][k]);
            }
        EXPECT_EQ(a.scalars[0].name, b.scalars[0].name);
        EXPECT_EQ(a.scalars[0].values, b.scalars[0].values);
    }
}

TEST_F(ReadFile, BothFormatsGiveTheSameDna)
{
    const auto fromTable =
        read(write("a.txt", "g 1 2 3 0 0 0 1  4 5 6 1 0 0 0  7 8 9 0.6 0 0 0.8\n"
                            "T 1 2 4 0 0 1 0  4 5 7 0 1 0 0  7 8 8 0 0.6 0.8 0\n"));
    const auto fromJson = read(write("a.json", R"({"strandview": 1, "dna": [{"sequence": "GT",
        "pairs": {"points": [[1, 2, 3], [1, 2, 4]], "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0]]},
        "strand1": {"points": [[4, 5, 6], [4, 5, 7]], "quaternions": [[1, 0, 0, 0], [0, 1, 0, 0]]},
        "strand2": {"points": [[7, 8, 9], [7, 8, 8]],
                    "quaternions": [[0.6, 0, 0, 0.8], [0, 0.6, 0.8, 0]]}}]})"));
    ASSERT_TRUE(fromTable && fromJson) << report.error;
    ASSERT_EQ(fromTable->dnas.size(), 1U);
    ASSERT_EQ(fromJson->dnas.size(), 1U);
    expectSameDna(fromTable->dnas[0], fromJson->dnas[0]);
    EXPECT_THAT(report.notices, IsEmpty());
}

// ---- Whatever the text

namespace {

bool isRotation(const Quaternion<double>& q) { return std::abs(q.getNorm() - 1) <= 0.01; }

bool isPoint(const Vector3<double>& p)
{
    return std::abs(p.x) <= 1e18 && std::abs(p.y) <= 1e18 && std::abs(p.z) <= 1e18;
}

bool haveNormalSquaredDistance(const Vector3<double>& a, const Vector3<double>& b)
{
    return std::isnormal((a - b).dot(a - b));
}

bool arePoints(const std::vector<Vector3<double>>& points)
{
    return std::all_of(points.begin(), points.end(), isPoint);
}

/// Of the count, with points that are apart from the one before.
void expectCurve(const std::vector<Vector3<double>>& points, std::size_t count)
{
    ASSERT_EQ(points.size(), count);
    EXPECT_TRUE(arePoints(points));
    for (std::size_t i = 1; i < points.size(); ++i)
        EXPECT_TRUE(haveNormalSquaredDistance(points[i - 1], points[i]));
}

void expectRotations(const std::vector<Quaternion<double>>& rotations, std::size_t count)
{
    ASSERT_EQ(rotations.size(), count);
    EXPECT_TRUE(std::all_of(rotations.begin(), rotations.end(), isRotation));
}

/// What Configuration.h promises, and what the formulas need.
void expectPromises(const Rod& rod)
{
    const std::size_t count = rod.points.size();
    ASSERT_GE(count, 2U);
    expectCurve(rod.points, count);
    expectRotations(rod.rotations, count);
    for (const Scalar& scalar : rod.scalars) {
        EXPECT_EQ(scalar.values.size(), count);
        EXPECT_TRUE(std::none_of(scalar.values.begin(), scalar.values.end(),
                                 [](double value) { return std::isinf(value); }));
    }
}

void expectPromises(const Birod& birod)
{
    const std::size_t count = birod.points.size();
    ASSERT_GE(count, 2U);
    for (const auto& points : {birod.points, birod.points1, birod.points2})
        expectCurve(points, count);
    for (const auto& rotations : {birod.rotations, birod.rotations1, birod.rotations2})
        expectRotations(rotations, count);
}

void expectPromises(const Dna& dna)
{
    const std::size_t count = dna.bases.size();
    ASSERT_GE(count, 1U);
    EXPECT_EQ(dna.bases.find_first_not_of("ACGTN"), std::string::npos);
    for (const auto& points : {dna.pairPoints, dna.points1, dna.points2}) {
        EXPECT_EQ(points.size(), count);
        EXPECT_TRUE(arePoints(points));
    }
    for (const auto& rotations : {dna.pairRotations, dna.rotations1, dna.rotations2})
        expectRotations(rotations, count);
}

void expectPromises(const LoneBase& base)
{
    EXPECT_NE(std::string_view("ACGTN").find(base.base), std::string_view::npos);
    EXPECT_TRUE(arePoints({base.point}));
    expectRotations({base.rotation}, 1);
}

bool isLength(const std::optional<double>& length)
{
    return !length || (*length > 0 && *length <= 1e18);
}

void expectPromises(const Marker& marker)
{
    EXPECT_TRUE(isPoint(marker.point));
    EXPECT_TRUE(isLength(marker.size));
    EXPECT_TRUE(marker.transparency >= 0 && marker.transparency <= 1);
}

void expectPromises(const Frame& frame)
{
    EXPECT_TRUE(isPoint(frame.point));
    EXPECT_TRUE(isRotation(frame.rotation));
    EXPECT_TRUE(isLength(frame.size));
}

void expectPromises(const Arrow& arrow)
{
    EXPECT_TRUE(isPoint(arrow.from) && isPoint(arrow.to));
    EXPECT_TRUE(isLength(arrow.radius));
}

/// Of all things of one kind; how many there are.
template <typename Things>
std::size_t expectPromisesOfAll(const Things& things)
{
    for (const auto& thing : things) {
        EXPECT_THAT(thing.origin, testing::StartsWith("file:"));
        expectPromises(thing);
    }
    return things.size();
}

void expectOneLine(const std::string& error)
{
    EXPECT_EQ(error.compare(0, 5, "file:"), 0) << error;
    EXPECT_THAT(error, testing::HasSubstr(", expected "));
    EXPECT_LT(error.size(), 400U);
    for (const unsigned char c : error)
        EXPECT_TRUE(c >= 0x20 && c != 0x7f) << "code " << int(c) << " in " << error;
}

/// Texts made from others by a few random changes.
class Mutator
{
public:
    Mutator(std::vector<std::string> originalTexts, std::vector<std::string> snippetTexts)
        : originals(std::move(originalTexts)), snippets(std::move(snippetTexts))
    {}

    std::string next()
    {
        std::string text = pick(originals);
        for (std::size_t changes = 1 + below(3); changes > 0; --changes)
            change(text);
        return text;
    }

private:
    void change(std::string& text)
    {
        const std::size_t at = below(text.size() + 1);
        const std::size_t length = std::min(below(12), text.size() - at);
        switch (below(6)) {
        case 0:
            text.erase(at, length);
            break;
        case 1:
            text.insert(at, 1, static_cast<char>(random()));
            break;
        case 2:
            text.replace(at, std::min<std::size_t>(1, length), 1, static_cast<char>(random()));
            break;
        case 3:
            text.insert(at, pick(snippets));
            break;
        case 4:
            text.replace(at, length, pick(snippets));
            break;
        case 5:
            text.insert(below(text.size() + 1), text.substr(at, 3 * length));
            break;
        }
        if (below(50) == 0)
            text.resize(below(text.size() + 1));
    }

    std::size_t below(std::size_t limit) { return random() % limit; }
    const std::string& pick(const std::vector<std::string>& texts)
    {
        return texts[below(texts.size())];
    }

    std::vector<std::string> originals, snippets;
    std::mt19937 random{20};
};

using Reader = TextReader;

/// Every text either gives what keeps the promises or one line of error; both happen
/// often.
void expectReaderHoldsFor(Mutator mutator, Reader reader)
{
    int accepted = 0, refused = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = mutator.next();
        SCOPED_TRACE(testing::PrintToString(text));
        ReadOptions options;
        options.normalise = i % 2 == 0;
        options.close = i % 3 == 0;
        ReadReport report;
        if (const auto configuration = reader(text, "file", options, report)) {
            ++accepted;
            EXPECT_EQ(report.error, "");
            EXPECT_GT(expectPromisesOfAll(configuration->rods) +
                          expectPromisesOfAll(configuration->birods) +
                          expectPromisesOfAll(configuration->dnas) +
                          expectPromisesOfAll(configuration->markers) +
                          expectPromisesOfAll(configuration->frames) +
                          expectPromisesOfAll(configuration->loneBases) +
                          expectPromisesOfAll(configuration->arrows),
                      0U);
        } else {
            ++refused;
            expectOneLine(report.error);
            EXPECT_THAT(report.notices, IsEmpty());
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    EXPECT_GT(accepted, 500);
    EXPECT_GT(refused, 500);
}

const std::vector<std::string> numberSnippets = {
    "0",     "-1",           "1e18", "1e19", "1e308",   "1e999", "1e-160", "5e-324",
    "nan",   "inf",          "1e",   "-",    "+",       ".",     "0x1",    "1D3",
    "0 0 0", "\n\n",         "\r",   "#",    "%",       "\"",    "0,5",    "x [m]",
    ",",     ",,",           ";",    "\t",   " ",       "x",     "qx",     "x y z",
    "s",     "\xEF\xBB\xBF", "\x1b", "\x7f", "\xc3\xa9"};

} // namespace

TEST(AnyTable, GivesGoodRodsOrOneLineOfError)
{
    std::vector<std::string> snippets = numberSnippets;
    snippets.emplace_back(1, '\0');
    snippets.emplace_back(100, 'y');
    expectReaderHoldsFor(Mutator({"0 0 0\n0 0 1\n0 1 1\n\n1 1 1\n1 1 1\n1 2 1\n",
                                  "0 0 0 0 0 0 1\n0 0 1 0 0.6 0 0.8\n0 1 1 1 0 0 0\n",
                                  "x,y,z,s,t\n0,0,0,4,5\n1,0,0,4.5,-1e3\n\nx,y,z,s,t\n5,5,5,0,0\n"
                                  "6,6,6,1,1\n",
                                  "x,y,z,d1x,d1y,d1z,d3x,d3y,d3z,s\n0,0,0,1,0,0,0,0,1,5\n"
                                  "0,0,1,1,0,0,0,0,1,6\n0,0,2,,,,,,,\n",
                                  "x y z qx qy qz qw s\n0 0 0 0 0 0 1 5\n0 0 1 0 0 0.6 0.8 5\n"
                                  "0 0 2 nan nan nan nan nan\n",
                                  "\"\";\"x [m]\";y;z;\n0;0,5;0;0;\n1;\"0\";1,5;0;\n",
                                  "# rod\r\nqw qx qy qz z y x u\r\n1 0 0 0 1 2 3 4 # a\r\n"
                                  "0 1 0 0 5 6 7 8\r\n"},
                                 snippets),
                         readTableText);
}

namespace {

/// Opens a text as a series and loads all of its frames: the first that is one, if any is.
std::optional<Configuration> loadFrames(std::string_view text, const std::string& fileName,
                                        const ReadOptions& options, ReadReport& report)
{
    const auto series = openTable(Source::ofBytes(fileName, std::string(text)), options, report);
    std::optional<Configuration> first;
    for (std::size_t i = series ? series->count() : 0; i-- > 0;) {
        LoadedFrame loaded = series->load(i);
        if (!loaded.configuration)
            expectOneLine(loaded.error);
        else
            first = std::move(loaded.configuration);
        report.error = first ? "" : loaded.error;
    }
    if (!first)
        report.notices.clear();
    return first;
}

} // namespace

TEST(AnyTableOfFrames, GivesGoodFramesOrOneLineOfErrorForEach)
{
    std::vector<std::string> snippets = numberSnippets;
    for (const char* snippet : {"\n\n\n", "\r\r\r", "\r\n\r\n\r\n", "t", "time [s]", "frame", "A"})
        snippets.emplace_back(snippet);
    expectReaderHoldsFor(Mutator({"0 0 0\n0 0 1\n\n\n1 1 1\n1 2 1\n\n1 1 1\n3 4 5\n",
                                  "t x y z\n0 0 0 0\n0 0 0 1\n1 0 0 0\n1 0 0 2\n1 0 0 3\n2 1 1 1\n",
                                  "x,y,z,frame,s\n0,0,0,1,4\n1,0,0,1,5\n\n0,0,0,2,3\n0,0,1,2,,\n",
                                  "base x y z qx qy qz qw time\nA 0 0 0 0 0 0 1 0\nC 0 0 3 0 0 0 1 "
                                  "0\nA 0 0 0 0 0 0 1 1\nC 0 0 4 0 0 0 1 1\n"},
                                 snippets),
                         loadFrames);
}

TEST(AnyJson, GivesGoodRodsOrOneLineOfError)
{
    std::vector<std::string> snippets = numberSnippets;
    for (const char* snippet :
         {"[", "]", "{", "}", "\"", ":", "null", "true", "\"points\"", "\"quaternions\"",
          "\"scalars\": {}", "\"directors\"", "[[1, 0, 0], [0, 1, 0], [0, 0, 1]],",
          "\"s\": [1, 2],", "[0, 0, 0],", "[[[", "\\n", "\\u0000", "{},"})
        snippets.emplace_back(snippet);
    snippets.emplace_back(1, '\0');
    expectReaderHoldsFor(
        Mutator({json,
                 R"({"strandview": 1, "rods": [{"points": [[0, 0, 0], [0, 0, 1], [2, 2, 2]],
                     "scalars": {"a": [1, 2, 3], "b c": [0.5, 1e-5, 6]}},
                     {"points": [[0, 0, 0], [0, 0, 0], [1, 1, 1]],
                      "quaternions": [[0, 0, 0, 1], [0, 0, 0.6, 0.8], [1, 0, 0, 0]]}]})",
                 R"({"strandview": 1, "rods": [{"points": [[0, 0, 0], [0, 0, 1], [0, 0, 3]],
                     "directors": [[[1, 0, 0], [0, 1, 0], [0, 0, 1]],
                                   [[0, -1, 0], [1, 0, 0], [0, 0, 1]]],
                     "scalars": {"a": [1, 2]}}]})"},
                snippets),
        readJson);
}

TEST(AnyTableOfDna, GivesGoodDnaOrOneLineOfError)
{
    std::vector<std::string> snippets = numberSnippets;
    for (const char* snippet : {"A", "c", "N", "AT", "base", "x1", "qw2", "1e", "\n\nG ", "\"T\""})
        snippets.emplace_back(snippet);
    expectReaderHoldsFor(
        Mutator({"A 0 0 0 0 0 0 1 0 1 0 0 0 0 1 0 -1 0 0 0 0 1\n"
                 "c 0 0 3 0 0 0.6 0.8 0 1 3 0 0 0 1 0 -1 3 1 0 0 0\n\n"
                 "G 0 0 0 0 0 0 1 0 1 0 0 0 0 1 0 -1 0 0 0 0 1\n",
                 "base,x,y,z,qx,qy,qz,qw,x1,y1,z1,qx1,qy1,qz1,qw1,x2,y2,z2,qx2,qy2,qz2,qw2\n"
                 "T,0,0,0,0,0,0,1,0,1,0,0,0,0,1,0,-1,0,0,0,0,1\n",
                 "C 0 0 0 0 0 0 1\nG 0 0 3 0 0 0.6 0.8\n",
                 "base x y z d1x d1y d1z d2x d2y d2z\na 0 0 0 1 0 0 0 1 0\n",
                 "g;0;0;0;0;0;0;1;0;1,5;0;0;0;0;1;0;-1,5;0;0;0;0;1;\n"},
                snippets),
        readTableText);
}

namespace {

/// The last frame of a text.
template <auto openSeries>
std::optional<Configuration> readLast(std::string_view text, const std::string& name,
                                      const ReadOptions& options, ReadReport& report)
{
    const auto series = openSeries(Source::ofBytes(name, std::string(text)), options, report);
    if (!series)
        return {};
    LoadedFrame loaded = series->load(series->count() - 1);
    report.notices = loaded.notices;
    report.error = loaded.error;
    return std::move(loaded.configuration);
}

std::vector<std::string> numbersAnd(std::initializer_list<const char*> more)
{
    std::vector<std::string> snippets = numberSnippets;
    snippets.insert(snippets.end(), more.begin(), more.end());
    return snippets;
}

} // namespace

TEST(AnyListOfAtoms, GivesGoodRodsOrOneLineOfError)
{
    expectReaderHoldsFor(Mutator({"3\n\nC 0 0 0\nC 0 0 1\nC 1 0 1\n2\nx\n6 1 2 3 4\n7 2 3 4 5\n",
                                  "2 \r\nstep\r\nA 0.5 0 0\r\nB 0 0 -1.5e2"},
                                 numbersAnd({"\n", "2\n\n", "C 0 0 0\n", "#", ","})),
                         readLast<openXyz>);
}

TEST(AnyFibreReport, GivesGoodRodsOrOneLineOfError)
{
    expectReaderHoldsFor(
        Mutator(
            {"% frame 0\n% time 1\n% fiber f0:1\n 1 0 0 0\n 1 0 0 1\n% end\n"
             "% frame 1\n% fiber f0:1\n 1 0 0 0\n 1 0 0 1\n 1 0 1 1\n% fiber f0:2\n"
             " 2 0 0 0\n 2 0 0 1\n% end\n"},
            numbersAnd({"\n", "% ", "% end\n", "% frame 2\n", "% fiber x\n", "FILAMENT 0 1\n"})),
        readLast<openFibres>);
}

TEST(AnyVect, GivesGoodRodsOrOneLineOfError)
{
    expectReaderHoldsFor(Mutator({"VECT\n2 5 1\n-3 2\n1 0\n0 0 0\n1 0 0\n0 1 0\n5 5 5\n6 6 6\n"
                                  "0 1 0 1\n",
                                  "VECT # one\n1 4 0\n4\n0\n0 0 0 1 0 0 1 1 0 0 0 0"},
                                 numbersAnd({"\n", "-3", "9223372036854775807", "#", "VECT"})),
                         readVect);
}

TEST(AnyJsonOfEverything, GivesGoodThingsOrOneLineOfError)
{
    std::vector<std::string> snippets = numberSnippets;
    for (const char* snippet : {"[",
                                "]",
                                "{",
                                "}",
                                "\"",
                                ":",
                                "null",
                                "\"ACGT\"",
                                "\"points\"",
                                "\"strand1\"",
                                "\"dna\"",
                                "\"average\"",
                                "\"pairs\"",
                                "\"frames\"",
                                "\"size\": 1,",
                                "\"id\": 4,",
                                "\"colour\": \"x\",",
                                "\"from\"",
                                "[0, 0, 0],",
                                "{},",
                                "\"cube\"",
                                "a",
                                "\\u0000",
                                "9223372036854775808"})
        snippets.emplace_back(snippet);
    expectReaderHoldsFor(Mutator({R"({"strandview": 1, "birods": [{
                     "average": {"points": [[0,0,0],[0,0,1]], "quaternions": [[0,0,0,1],[0,0,1,0]]},
                     "strand1": {"points": [[1,0,0],[1,0,1]], "quaternions": [[0,0,0,1],[0,0,1,0]]},
                     "strand2": {"points": [[2,0,0],[2,0,1]], "quaternions": [[0,0,0,1],[0,0,1,0]]}
                     }], "markers": [{"point": [1, 2, 3]}]})",
                                  R"({"strandview": 1, "dna": [{"sequence": "aC",
                     "pairs": {"points": [[0,0,0],[0,0,1]], "quaternions": [[0,0,0,1],[0,0,1,0]]},
                     "strand1": {"points": [[0,0,0],[0,0,1]], "quaternions": [[0,0,0,1],[0,0,1,0]]},
                     "strand2": {"points": [[0,0,0],[0,0,1]], "quaternions": [[0,0,0,1],[0,0,1,0]]}
                     }]})",
                                  R"({"strandview": 1, "markers": [
                     {"point": [1, 2, 3], "shape": "cross", "size": 2, "colour": "#123456",
                      "transparency": 0.5, "id": -3}, {"point": [1, 2, 3]}],
                     "frames": [{"point": [0, 0, 0], "quaternion": [0, 0.6, 0, 0.8], "size": 2}],
                     "arrows": [{"from": [0, 0, 0], "to": [0, 1, 2], "radius": 0.1,
                                 "colour": "tan"}]})"},
                                 snippets),
                         readJson);
}

namespace {

const std::vector<std::string> pairSnippets = {
    "A-T",  "G-U",     "X-N",         "{",       "}",
    "{{",   "}}",      "*^",          "3 ",      "0 ",
    "... ", "0 0 1\n", "5->3",        "(-1)",    "circular=true",
    "-1",   "t = 1\n", "b = 1 1 1\n", "E = 0\n", "1 A -1 1\n",
    "\f"};

std::vector<std::string> snippetsOfPairs()
{
    std::vector<std::string> snippets = numberSnippets;
    snippets.insert(snippets.end(), pairSnippets.begin(), pairSnippets.end());
    return snippets;
}

/// A topology and, behind a form feed, a configuration.
std::optional<Configuration> readOxdnaText(std::string_view text, const std::string& fileName,
                                           const ReadOptions& options, ReadReport& report)
{
    const std::size_t feed = std::min(text.find('\f'), text.size());
    auto topology = readOxdnaTopology(text.substr(0, feed), fileName, options, report);
    if (!topology)
        return {};
    const auto frames = makeOxdnaFrames(std::move(*topology));
    const auto source =
        Source::ofBytes(fileName, std::string(text.substr(std::min(feed + 1, text.size()))));
    auto read = IndexedSeries::readFirst(*source, *frames, options, report);
    if (!read)
        report.notices.clear(); // of the topology
    return read;
}

} // namespace

TEST(AnyStepParameters, GiveGoodDnaOrOneLineOfError)
{
    const std::string flat = "0 0 0 0 0 0 0.1 0 3.4 0 5 36\n";
    expectReaderHoldsFor(
        Mutator({"3 # base pairs\n0 # ***local base-pair & step parameters***\n# Shear Stretch "
                 "Stagger Buckle Prop-Tw Opening Shift Slide Rise Tilt Roll Twist\nA-T " +
                     flat + "C-G " + flat + "G-C " + flat,
                 "4\r\n0\r\nU-A " + flat + "X-A " + flat + "G-T " + flat + "A-T " + flat,
                 "4\n0\nA-T 0 0 0 0 0 0 0 0 3 0 90 0\nA-T 0 0 0 0 0 0 0 0 3 0 120 0\n"
                 "A-T 0 0 0 0 0 0 0 0 3 0 120 0\nA-T 0 0 0 0 0 0 0 0 3 0 120 0\n"},
                snippetsOfPairs()),
        readStepParameters);
}

TEST(AnyPairFrames, GiveGoodDnaOrOneLineOfError)
{
    const std::string axes = "1 0 0 # x\n0 1 0\n0 0 1\n";
    expectReaderHoldsFor(
        Mutator(
            {"2 pairs\n... 1 A-T # one\n0 0 0 # origin\n" + axes + "... 2 C-G\n0 0 3.4\n" + axes,
             "{{0,0,0},{{1,0,0},{0,1,0},{0,0,1}}}\n{{0,0,3},{{0,1,0},{-1,0,0},{0,0,1}}}\n",
             "[[[0, 0, 0], [[1, 0, 0], [0, 1, 0], [0, 0, 1]]], ((0 0 3) ((1. 0 0) (0 1 0) (0 0 "
             "1.*^0)))]"},
            snippetsOfPairs()),
        readPairFrames);
}

TEST(AnyOxdna, GivesGoodThingsOrOneLineOfError)
{
    const std::string head = "t = 0\nb = 20 20 20\nE = 0 0 0\n";
    const std::string pair = "0 -0.6 0 0 1 0 0 0 -1 0 0 0 0 0 0\n0.3 -0.5 0.4 -0.5 0.9 0 0 0 -1\n"
                             "-0.3 0.5 0.4 0.5 -0.9 0 0 0 1\n0 0.6 0 0 -1 0 0 0 1\n";
    expectReaderHoldsFor(
        Mutator({"4 2 5->3\nAC\nGT circular=true\n\f" + head + pair,
                 "4 2\n1 A -1 1\n1 U 0 -1\n2 7 -1 3\n2 x 2 -1\n\f" + head + pair + head + pair},
                snippetsOfPairs()),
        readOxdnaText);
}

// ---- Curves from elsewhere

namespace {

/// The points of a file that others wrote, in the folder that STRANDVIEW_TEST_DATA names; skips
/// the test where it names none.
class CurveOfOthers : public testing::Test
{
protected:
    void load(const std::string& name)
    {
        const char* const folder = std::getenv("STRANDVIEW_TEST_DATA");
        if (!folder)
            GTEST_SKIP() << "skipped: STRANDVIEW_TEST_DATA is not set";
        const auto configuration = readFile(std::string(folder) + "/" + name, {}, report);
        ASSERT_TRUE(configuration) << report.error;
        ASSERT_EQ(configuration->rods.size(), 1U);
        expectPromises(configuration->rods[0]);
        points = configuration->rods[0].points;
        for (std::size_t i = 1; i < points.size(); ++i)
            edges.push_back((points[i] - points[i - 1]).getNorm());
        ASSERT_FALSE(edges.empty());
        shortest = *std::min_element(edges.begin(), edges.end());
        longest = *std::max_element(edges.begin(), edges.end());
    }

    ReadReport report;
    std::vector<Vector3<double>> points;
    std::vector<double> edges;
    double shortest = 0, longest = 0;
};

} // namespace

TEST_F(CurveOfOthers, OfAProteinHasItsKnownLengths)
{
    load("protein_3kzn_a.xyz");
    if (IsSkipped() || HasFatalFailure())
        return;
    EXPECT_EQ(points.size(), 331U);
    EXPECT_EQ(points[0].x, 81.76);
    EXPECT_NEAR(shortest, 3.00, 0.005);
    EXPECT_NEAR(longest, 5.54, 0.005);
    double length = 0;
    for (const double edge : edges)
        length += edge;
    EXPECT_NEAR(length, 1257.1, 0.05);
    EXPECT_EQ(report.notices.size(), 1U) << "made frames, left out no point";
}

TEST_F(CurveOfOthers, OfASupercoiledRingHasItsKnownLengths)
{
    load("trefoil_supercoiled.xyz");
    if (IsSkipped() || HasFatalFailure())
        return;
    EXPECT_EQ(points.size(), 111U);
    EXPECT_NEAR(shortest, 2.62, 0.005);
    EXPECT_NEAR(longest, 3.24, 0.005);
    EXPECT_NEAR((points.back() - points.front()).getNorm(), 3.912, 0.0005);
}

} // namespace strandview
