// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/readAnything.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <algebra3d/rotations.h>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/scalars.h>
#include <strandview/formats/JsonReader.h>
#include <strandview/formats/JsonSeries.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/Unpacker.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/writeJson.h>

namespace strandview {

namespace {

// Between the bytes of a configuration and those of the topology beside it.
constexpr std::string_view SEPARATOR = "\n====\n";

void require(bool holds, const std::string& what)
{
    if (holds)
        return;
    std::fprintf(stderr, "not so: %s\n", what.c_str());
    std::abort();
}

bool isOneLine(const std::string& text)
{
    return !text.empty() && text.find('\n') == std::string::npos;
}

// ---- What is whole

using Points = std::vector<algebra3d::Vector3<double>>;
using Rotations = std::vector<algebra3d::Quaternion<double>>;

void requirePoint(const algebra3d::Vector3<double>& point)
{
    require(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z),
            "a point is finite");
}

void requireCurve(const Points& points, const Rotations& rotations, std::size_t count)
{
    require(points.size() == count && rotations.size() == count, "a frame for each point");
    for (const auto& point : points)
        requirePoint(point);
    for (const auto& rotation : rotations)
        require(algebra3d::isRotation(rotation), "a rotation is one");
}

void requireWhole(const Rod& rod)
{
    const std::size_t count = rod.points.size();
    require(count > 1, "a rod has points");
    requireCurve(rod.points, rod.rotations, count);
    for (const Scalar& scalar : rod.scalars)
        require(scalar.values.size() == count, "a value for each point");
    require(rod.lines.empty() || rod.lines.size() == count, "a line for each point");
    require(rod.indices.empty() || rod.indices.size() == count, "an index for each point");
    for (const std::string& name : builtInScalars())
        require(findScalar(rod, name).value_or(std::vector<double>()).size() == count,
                "a scalar for each point");
    const auto gap = rod.points.back() - rod.points.front();
    require(!rod.isClosed || (gap.x == 0 && gap.y == 0 && gap.z == 0),
            "a closed rod ends where it begins");
}

void requireWhole(const Birod& birod)
{
    const std::size_t count = birod.points.size();
    require(count > 1, "a birod has points");
    requireCurve(birod.points, birod.rotations, count);
    requireCurve(birod.points1, birod.rotations1, count);
    requireCurve(birod.points2, birod.rotations2, count);
}

template <typename Frames>
void requirePairs(const Frames& frames, std::size_t count)
{
    requireCurve(frames.pairPoints, frames.pairRotations, count);
    requireCurve(frames.points1, frames.rotations1, count);
    requireCurve(frames.points2, frames.rotations2, count);
}

void requireWhole(const Dna& dna)
{
    require(!dna.bases.empty(), "a DNA has pairs");
    require(dna.bases.find_first_not_of("ACGTN") == std::string::npos, "bases are known ones");
    requirePairs(dna, dna.bases.size());
    if (dna.standard)
        requirePairs(*dna.standard, dna.bases.size());
    require(std::isfinite(numbersOf(dna).length), "a length is finite");
    require(pairsOf(dna).size() == dna.bases.size(), "numbers for each pair");
}

void requireWhole(const LoneBase& base)
{
    requirePoint(base.point);
    require(algebra3d::isRotation(base.rotation), "a rotation is one");
}

void requireWhole(const Configuration& configuration)
{
    for (const Rod& rod : configuration.rods)
        requireWhole(rod);
    for (const Birod& birod : configuration.birods)
        requireWhole(birod);
    for (const Dna& dna : configuration.dnas)
        requireWhole(dna);
    for (const LoneBase& base : configuration.loneBases)
        requireWhole(base);
    for (const Frame& frame : configuration.frames)
        require(algebra3d::isRotation(frame.rotation), "a rotation is one");
}

// What is written is read again as the same number of everything.
void requireWritten(const Configuration& configuration)
{
    std::string text;
    writeJson(configuration, [&](std::string_view piece) {
        text += piece;
        return true;
    });
    ReadReport report;
    const std::optional<Configuration> again = readJson(text, "written", {}, report);
    require(again.has_value(), "what is written can be read: " + report.error);
    require(again->rods.size() == configuration.rods.size() &&
                again->birods.size() == configuration.birods.size() &&
                again->dnas.size() == configuration.dnas.size() &&
                again->loneBases.size() == configuration.loneBases.size(),
            "what is written is read");
    for (std::size_t i = 0; i < again->rods.size(); ++i)
        require(again->rods[i].points.size() == configuration.rods[i].points.size(),
                "a point that is written is read");
}

void requireWritten(Series& series)
{
    std::string text;
    ReadReport report;
    const auto take = [&](std::string_view piece) {
        text += piece;
        return true;
    };
    require(writeJson(series, take, {}, report), "a series is written");
    const std::unique_ptr<Series> again = openJson(text, "written", {}, report);
    require(again != nullptr, "what is written can be read: " + report.error);
    require(again->count() == series.count(), "a frame that is written is read");
}

// ---- What is read

// Of a folder of its own, where the second file may be beside the first.
class Files
{
public:
    Files()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "strandview-fuzz-XXXXXX";
        const char* const made = ::mkdtemp(pattern.data());
        require(made, "a temporary folder can be made");
        folder = made;
    }
    ~Files() { std::filesystem::remove_all(folder); }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    std::unique_ptr<Source> open(std::string_view bytes, ReadReport& report) const
    {
        const std::size_t separator = bytes.find(SEPARATOR);
        write("fuzzed.dat", bytes.substr(0, separator));
        if (separator != bytes.npos) {
            // Of the same name, or of another, by chance.
            const bool isOther = separator % 2 == 1;
            std::filesystem::remove(folder / (isOther ? "fuzzed.top" : "other.top"));
            write(isOther ? "other.top" : "fuzzed.top", bytes.substr(separator + SEPARATOR.size()));
        }
        return Source::open((folder / "fuzzed.dat").string(), report);
    }

private:
    void write(const char* name, std::string_view bytes) const
    {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }

    std::filesystem::path folder;
};

std::unique_ptr<Source> sourceOf(std::string_view bytes, ReadReport& report)
{
    static const Files files;
    const bool areOfFiles = bytes.find(SEPARATOR) != bytes.npos || Unpacker::of(bytes);
    return areOfFiles ? files.open(bytes, report) : Source::ofBytes("fuzzed", std::string(bytes));
}

void readAll(const Format& format, std::string_view bytes, bool writes)
{
    ReadReport report;
    const std::unique_ptr<Source> source = sourceOf(bytes, report);
    require(source != nullptr, "the bytes are there");
    const std::optional<Configuration> read = format.read(*source, {}, report);
    require(read ? report.error.empty() : isOneLine(report.error), "data or one line");
    if (!read)
        return;
    requireWhole(*read);
    if (writes)
        requireWritten(*read);
}

// A text in JSON that is read as a whole is the same frame by frame.
void requireSameFrames(std::string_view bytes)
{
    ReadReport report;
    const std::unique_ptr<Series> all =
        openJson(withoutByteOrderMark(bytes), "fuzzed", {}, report);
    if (!all)
        return;
    const std::unique_ptr<Series> series =
        openJson(Source::ofBytes("fuzzed", std::string(bytes)), {}, report);
    require(series && series->count() == all->count(), "all frames are found: " + report.error);
    for (std::size_t frame = 0; frame < all->count(); ++frame) {
        require(series->time(frame) == all->time(frame), "a time is found");
        require(series->load(frame).configuration.has_value(), "a frame is read");
    }
}

// With the options that a user may add.
void loadAll(const Format& format, std::string_view bytes, bool writes)
{
    ReadReport report;
    ReadOptions options;
    options.normalise = options.close = true;
    options.atOnce = bytes.size() % 16 >= 8;
    options.frameRows = bytes.size() % 8 < 3 ? bytes.size() % 8 : 0;
    const std::unique_ptr<Series> series =
        openSeries(sourceOf(bytes, report), format, options, report);
    require(series || isOneLine(report.error), "a series or one line");
    if (!series)
        return;
    const std::size_t first = series->count();
    require(!series->lookForMore({}) && first > 0 && series->count() >= first, "all are found");
    const std::size_t most = 8; // frames more are more of the same
    bool areAllThere = series->count() <= most;
    for (std::size_t frame = 0; frame < std::min(series->count(), most); ++frame) {
        series->time(frame);
        const LoadedFrame loaded = series->load(frame);
        require(loaded.configuration ? loaded.error.empty() : isOneLine(loaded.error),
                "a frame or one line");
        areAllThere = areAllThere && loaded.configuration;
        if (loaded.configuration)
            requireWhole(*loaded.configuration);
    }
    if (writes && areAllThere)
        requireWritten(*series);
}

} // namespace

void readAnything(const Format& format, std::string_view bytes, bool writes)
{
    format.recognises(bytes);
    if (format.name == "JSON")
        requireSameFrames(bytes);
    readAll(format, bytes, writes);
    loadAll(format, bytes, writes);
}

} // namespace strandview
