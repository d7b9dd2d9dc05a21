// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/numpy/NumpyReader.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include <algebra3d/largePages.h>
#include <algebra3d/rotations.h>

#include <strandview/formats/Collector.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/directors.h>
#include <strandview/formats/numpy/NumpyFile.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Shape = std::vector<std::uint64_t>;

constexpr char EXPECTED_KEYS[] =
    "points, position* or center_line*, or frames and dr (see the guide)";

enum class Role { NONE, POINTS, CENTRE_LINE, QUATERNIONS, DIRECTORS, TIME, PAIR_FRAMES, STEPS };

struct KeyStart
{
    std::string_view text;
    Role role;
    bool isWhole; ///< nothing but a number may follow
};
constexpr KeyStart KEY_STARTS[] = {
    {"points", Role::POINTS, true},
    {"position", Role::POINTS, false},
    {"center_line", Role::CENTRE_LINE, false},
    {"quaternions", Role::QUATERNIONS, true},
    {"directors", Role::DIRECTORS, true},
    {"director_rod", Role::DIRECTORS, true},
    {"time", Role::TIME, true},
    {"frames", Role::PAIR_FRAMES, true},
    {"dr", Role::STEPS, true},
};

/// What a key says.
struct Key
{
    Role role = Role::NONE;
    std::uint64_t number = 0; ///< of the rod
    bool isNumbered = false;
};

Key parseKey(std::string_view name)
{
    const std::size_t last = name.find_last_not_of("0123456789");
    const std::string_view digits = name.substr(last == name.npos ? 0 : last + 1);
    std::string_view word = name.substr(0, name.size() - digits.size());
    if (!digits.empty() && !word.empty() && word.back() == '_')
        word.remove_suffix(1);
    if (digits.size() > 9) // more rods than anybody has
        return {};
    Key key;
    for (const KeyStart& start : KEY_STARTS)
        if (start.isWhole ? word == start.text : word.substr(0, start.text.size()) == start.text)
            key.role = start.role;
    key.isNumbered = !digits.empty();
    for (const char digit : digits)
        key.number = 10 * key.number + std::uint64_t(digit - '0');
    const bool isOfAll = key.role >= Role::TIME;
    return isOfAll && key.isNumbered ? Key() : key;
}

/// The arrays of one rod.
struct RodArrays
{
    std::optional<NumpyArray> points, quaternions, directors;
    bool areRows = true;           ///< (n, 3), not (3, n)
    bool areQuaternionRows = true; ///< likewise
    bool areDirectorRows = true;
    std::size_t count = 0;
    std::size_t rotationCount = 0;
};

struct DnaArrays
{
    NumpyArray frames, steps;
    std::size_t count = 0;
};

/// "points[3, 0]", with the frame's index in front where there are some.
std::string placeIn(const NumpyArray& array, std::optional<std::uint64_t> frame,
                    const std::vector<std::string>& indices)
{
    std::string text = frame ? std::to_string(*frame) : "";
    for (const std::string& index : indices)
        text += (text.empty() ? "" : ", ") + index;
    return array.path + (array.name.empty() ? ": " : "") + "[" + text + "]: ";
}

/// The arrays of a file with what they are, and the frames that they have.
class NumpyFrames
{
public:
    /// Null and report.error if the arrays do not fit together.
    static std::unique_ptr<NumpyFrames> open(Source& source, const ReadOptions& options,
                                             ReadReport& report)
    {
        auto file = NumpyFile::open(source, options, report);
        if (!file)
            return nullptr;
        std::unique_ptr<NumpyFrames> frames(
            new NumpyFrames(source.getName(), std::move(file), report));
        const bool isFit = frames->describe(options) && frames->findCount(options);
        return isFit ? std::move(frames) : nullptr;
    }

    std::uint64_t count() const { return frameCount.value_or(1); }
    std::optional<double> time(std::size_t frame) const
    {
        return frame < times.size() ? std::optional(times[frame]) : std::nullopt;
    }

    std::optional<Configuration> read(std::uint64_t index, const ReadOptions& readOptions,
                                      ReadReport& readReport)
    {
        report = &readReport;
        const std::optional<std::uint64_t> frame = frameCount ? std::optional(index) : std::nullopt;
        Collector collector(readOptions);
        for (const RodArrays& rod : rods)
            if (!addRod(rod, frame, collector, readOptions))
                return {};
        if (dna && !addDna(*dna, frame, collector, readOptions))
            return {};
        return collector.finish(fileName, "rod or DNA", readReport);
    }

private:
    NumpyFrames(const std::string& name, std::unique_ptr<NumpyFile> openFile,
                ReadReport& readReport)
        : fileName(name), file(std::move(openFile)), report(&readReport)
    {}

    // ---- What the arrays are

    /// Of a role and a rod; that with a number rather than that without.
    using Names = std::map<std::pair<std::uint64_t, Role>, std::pair<bool, std::string>>;

    bool describe(const ReadOptions& options)
    {
        Names names;
        for (const std::string& name : file->getNames()) {
            const Key key = file->isArchive() ? parseKey(name) : Key{Role::POINTS};
            auto& [isNumbered, known] = names[{key.number, key.role}];
            if (known.empty() || (key.isNumbered && !isNumbered)) {
                known = name;
                isNumbered = key.isNumbered;
            }
        }
        for (const auto& [key, name] : names)
            if (!describeRod(names, key.first, key.second, options))
                return false;
        if (!describeDna(names, options) || !checkSize(names.count({0, Role::TIME}) > 0) ||
            !describeTimes(names, options))
            return false;
        return !rods.empty() || dna || failWithoutAny();
    }

    std::optional<NumpyArray> find(const Names& names, std::uint64_t number, Role role,
                                   const ReadOptions& options)
    {
        const auto found = names.find({number, role});
        return found == names.end() ? std::nullopt
                                    : file->describe(found->second.second, options, *report);
    }

    /// Once of each rod: by its points, or by its centre line where it has one.
    bool describeRod(const Names& names, std::uint64_t number, Role role,
                     const ReadOptions& options)
    {
        const auto have = [&](Role other) { return names.count({number, other}) > 0; };
        const bool havePoints = have(Role::POINTS) || have(Role::CENTRE_LINE);
        if (role == Role::QUATERNIONS || role == Role::DIRECTORS)
            return havePoints ||
                   fail(fileName + ": found " + inQuotes(names.at({number, role}).second) +
                        ", expected points of the same number beside it");
        if (role != Role::CENTRE_LINE && (role != Role::POINTS || have(Role::CENTRE_LINE)))
            return true;
        RodArrays rod;
        rod.points = find(names, number, role, options);
        if (!rod.points || !fitPoints(rod))
            return false;
        if (have(Role::QUATERNIONS)) {
            rod.quaternions = find(names, number, Role::QUATERNIONS, options);
            if (!rod.quaternions || !fitQuaternions(rod))
                return false;
        } else if (have(Role::DIRECTORS)) {
            rod.directors = find(names, number, Role::DIRECTORS, options);
            if (!rod.directors || !fitDirectors(rod))
                return false;
        }
        rods.push_back(std::move(rod));
        return true;
    }

    bool describeDna(const Names& names, const ReadOptions& options)
    {
        if (names.count({0, Role::PAIR_FRAMES}) == 0 || names.count({0, Role::STEPS}) == 0)
            return true;
        std::optional<NumpyArray> frames = find(names, 0, Role::PAIR_FRAMES, options);
        std::optional<NumpyArray> steps =
            frames ? find(names, 0, Role::STEPS, options) : std::nullopt;
        if (!frames || !steps)
            return false;
        const std::string expected = "(n, 3, 3)" + orSeries("(t, n, 3, 3)");
        const std::optional<Shape> shape = shapeOfFrame(*frames, 3, expected);
        if (!shape)
            return false;
        const std::uint64_t count = (*shape)[0];
        if (count < 1 || (*shape)[1] != 3 || (*shape)[2] != 3)
            return failShape(*frames, expected);
        const std::optional<Shape> ofSteps = shapeOfFrame(*steps, 2, "(n, 3)");
        if (!ofSteps)
            return false;
        if (*ofSteps != Shape{count - 1, 3})
            return failShape(*steps, shapeText({count - 1, 3}) + " beside " +
                                         std::to_string(count) + " frames");
        dna = {std::move(*frames), std::move(*steps), std::size_t(count)};
        return true;
    }

    /// Whether the numbers of a frame, and the times, are no more than files have: packed zeros
    /// become a thousand times as much.
    bool checkSize(bool hasTimes)
    {
        constexpr double allowed = 1 << 30, largestRatio = 100; // bytes, of the file
        double size = hasTimes ? sizeof(double) * double(count()) : 0;
        const auto addFrame = [&](const NumpyArray& array) {
            double numbers = 1;
            for (std::size_t axis = frameCount ? 1 : 0; axis < array.header.shape.size(); ++axis)
                numbers *= double(array.header.shape[axis]);
            size += sizeof(double) *
                    std::min(numbers, double(array.size) / double(array.header.itemSize));
        };
        for (const RodArrays& rod : rods)
            for (const auto* array : {&rod.points, &rod.quaternions, &rod.directors})
                if (*array)
                    addFrame(**array);
        if (dna) {
            addFrame(dna->frames);
            addFrame(dna->steps);
        }
        if (!file->isArchive() || size <= allowed || size <= largestRatio * double(file->getSize()))
            return true;
        return fail(fileName + ": found more than 100 times as many bytes of numbers in a frame " +
                    "as the file has, expected fewer");
    }

    bool describeTimes(const Names& names, const ReadOptions& options)
    {
        if (!frameCount || names.count({0, Role::TIME}) == 0)
            return true;
        const std::optional<NumpyArray> array = find(names, 0, Role::TIME, options);
        if (!array)
            return false;
        if (array->header.shape != Shape{*frameCount})
            return failShape(*array, shapeText({*frameCount}) + ", a time of each frame");
        std::optional<std::vector<double>> numbers = file->read(*array, {}, options, *report);
        if (!numbers)
            return false;
        times = std::move(*numbers);
        return true;
    }

    bool failWithoutAny()
    {
        std::string found;
        std::size_t count = 0;
        for (const std::string& name : file->getNames())
            if (++count <= 8)
                found += (found.empty() ? "" : ", ") + shortened(name);
        return fail(
            fileName + ": found " +
            (count == 0 ? "no arrays" : "the arrays " + found + (count > 8 ? ", ..." : "")) +
            ", expected " + EXPECTED_KEYS);
    }

    // ---- Their shapes

    static std::string orSeries(const std::string& shape)
    {
        return ", or " + shape + " of a series";
    }

    /// Without the axis of time, which all or none have.
    std::optional<Shape> shapeOfFrame(const NumpyArray& array, std::size_t axes,
                                      const std::string& expected)
    {
        Shape shape = array.header.shape;
        if (shape.size() != axes && shape.size() != axes + 1) {
            failShape(array, expected);
            return {};
        }
        const bool hasTime = shape.size() == axes + 1;
        const std::uint64_t frames = hasTime ? shape[0] : 0;
        if (hasTime)
            shape.erase(shape.begin());
        if (!firstArray.empty() &&
            (hasTime != frameCount.has_value() || (hasTime && frames != *frameCount))) {
            failShape(array, frameCount ? std::to_string(*frameCount) + " frames in front, as in " +
                                              firstArray
                                        : "no axis of frames, as in " + firstArray);
            return {};
        }
        if (hasTime && frames == 0) {
            failShape(array, "at least one frame");
            return {};
        }
        if (firstArray.empty() && hasTime)
            frameCount = frames;
        firstArray = inQuotes(array.name);
        return shape;
    }

    bool fitPoints(RodArrays& rod)
    {
        const std::string expected = "(n, 3) or (3, n)" + orSeries("(t, n, 3) or (t, 3, n)");
        const std::optional<Shape> shape = shapeOfFrame(*rod.points, 2, expected);
        if (!shape)
            return false;
        rod.areRows = (*shape)[1] == 3;
        rod.count = std::size_t((*shape)[rod.areRows ? 0 : 1]);
        return (rod.areRows || (*shape)[0] == 3) && rod.count > 1
                   ? true
                   : failShape(*rod.points, expected + ", of at least 2 points");
    }

    /// One for each point, or for each element between two.
    static bool isCountOf(const RodArrays& rod, std::uint64_t count)
    {
        return count == rod.count || count + 1 == rod.count;
    }

    bool fitQuaternions(RodArrays& rod)
    {
        const std::string n = std::to_string(rod.count);
        const std::string expected =
            "(" + n + ", 4) or (4, " + n + ") beside " + n + " points, or one fewer";
        const std::optional<Shape> shape = shapeOfFrame(*rod.quaternions, 2, expected);
        if (!shape)
            return false;
        const bool areRows = (*shape)[1] == 4 && isCountOf(rod, (*shape)[0]);
        const bool areColumns = (*shape)[0] == 4 && isCountOf(rod, (*shape)[1]);
        if (!areRows && !areColumns)
            return failShape(*rod.quaternions, expected);
        rod.areQuaternionRows = areRows && (rod.areRows || !areColumns);
        rod.rotationCount = std::size_t((*shape)[rod.areQuaternionRows ? 0 : 1]);
        return true;
    }

    bool fitDirectors(RodArrays& rod)
    {
        const std::string n = std::to_string(rod.count);
        const std::string expected =
            "(3, 3, " + n + ") or (" + n + ", 3, 3) beside " + n + " points, or one fewer";
        const std::optional<Shape> shape = shapeOfFrame(*rod.directors, 3, expected);
        if (!shape)
            return false;
        const auto [a, b, c] = std::array{(*shape)[0], (*shape)[1], (*shape)[2]};
        const bool areRows = b == 3 && c == 3 && isCountOf(rod, a);
        const bool areColumns = a == 3 && b == 3 && isCountOf(rod, c);
        if (!areRows && !areColumns)
            return failShape(*rod.directors, expected);
        rod.areDirectorRows = areRows && (rod.areRows || !areColumns);
        rod.rotationCount = std::size_t(rod.areDirectorRows ? a : c);
        return true;
    }

    /// How many frames are whole: a file may end before its arrays do.
    bool findCount(const ReadOptions&)
    {
        if (!frameCount)
            return true;
        std::uint64_t whole = *frameCount;
        for (const RodArrays& rod : rods)
            for (const auto* array : {&rod.points, &rod.quaternions, &rod.directors})
                if (*array)
                    whole = std::min(whole, (*array)->wholeCount());
        if (dna)
            whole = std::min({whole, dna->frames.wholeCount(), dna->steps.wholeCount()});
        if (whole == *frameCount)
            return true;
        const std::string found = fileName + ": found the end of the file within frame " +
                                  std::to_string(whole) + ", expected " +
                                  counted(std::size_t(*frameCount), "frame");
        if (whole == 0)
            return fail(found);
        report->notices.push_back(found + "; what is whole is shown");
        frameCount = whole;
        return true;
    }

    // ---- Their numbers

    bool addRod(const RodArrays& arrays, std::optional<std::uint64_t> frame, Collector& collector,
                const ReadOptions& options)
    {
        Rod rod;
        rod.name = arrays.points->name;
        rod.origin = arrays.points->path + (file->isArchive() ? "" : ": points");
        if (!readPoints(*arrays.points, arrays.areRows, arrays.count, frame, rod.points, options))
            return false;
        if (arrays.quaternions && !readQuaternions(arrays, frame, rod, options))
            return false;
        if (arrays.directors && !readDirectors(*arrays.directors, arrays.areDirectorRows,
                                               arrays.rotationCount, frame, rod.rotations, options))
            return false;
        const std::string fault = collector.add(std::move(rod));
        return fault.empty() || fail(placeIn(*arrays.points, frame, {":"}) + fault);
    }

    /// Hands over what belongs to each of some points, as many numbers as rows have, in the order
    /// of C. The points are the first index, or else the last. `add` answers whether to go on.
    template <typename Add>
    bool readRows(const NumpyArray& array, bool areRows, std::size_t width,
                  std::optional<std::uint64_t> frame, const ReadOptions& options, Add add)
    {
        const std::vector<std::size_t> strides = NumpyFile::stridesOf(array, frame.has_value());
        const std::size_t along = strides[areRows ? 0 : strides.size() - 1];
        const std::vector<std::size_t> places = placesInRow(strides, areRows, width);
        const bool isInPlace = std::is_sorted(places.begin(), places.end()) && along == width;
        if (isInPlace && !(frame && array.header.isFortranOrder))
            return file->readPieces(array, frame, options, *report, [&](const auto& piece) {
                return add(piece.data(), piece.size() / width);
            });
        const auto numbers = file->read(array, frame, options, *report);
        std::vector<double> row(width);
        for (std::size_t at = 0; numbers && at < numbers->size() / width; ++at) {
            for (std::size_t k = 0; k < width; ++k)
                row[k] = (*numbers)[at * along + places[k]];
            if (!add(row.data(), 1))
                return false;
        }
        return numbers.has_value();
    }

    /// Of each number behind the first of what belongs to a point, by what the indices but the
    /// points' go on.
    static std::vector<std::size_t> placesInRow(const std::vector<std::size_t>& strides,
                                                bool areRows, std::size_t width)
    {
        const std::size_t* const across = &strides[areRows ? 1 : 0];
        std::vector<std::size_t> places;
        for (std::size_t k = 0; k < width; ++k)
            places.push_back(strides.size() == 2 ? k * across[0]
                                                 : k / 3 * across[0] + k % 3 * across[1]);
        return places;
    }

    bool readPoints(const NumpyArray& array, bool areRows, std::size_t count,
                    std::optional<std::uint64_t> frame, std::vector<Vector>& points,
                    const ReadOptions& options)
    {
        reserveRows(points, count, array, 3);
        return readRows(array, areRows, 3, frame, options, [&](const double* at, std::size_t rows) {
            const bool areFine = areCoordinates(at, 3 * rows);
            for (; rows > 0 && (areFine || areCoordinates(at, 3)); --rows, at += 3)
                points.emplace_back(at[0], at[1], at[2]);
            if (rows == 0)
                return true;
            const std::size_t axis = !isCoordinate(at[0]) ? 0 : !isCoordinate(at[1]) ? 1 : 2;
            const std::string point = std::to_string(points.size()), xyz = std::to_string(axis);
            return fail(placeIn(array, frame, {areRows ? point : xyz, areRows ? xyz : point}) +
                        "found " + formatted(at[axis]) + ", expected " + EXPECTED_COORDINATE);
        });
    }

    /// The same row by row.
    template <typename Add>
    bool readEachRow(const NumpyArray& array, bool areRows, std::size_t width,
                     std::optional<std::uint64_t> frame, const ReadOptions& options, Add add)
    {
        return readRows(array, areRows, width, frame, options,
                        [&](const double* at, std::size_t rows) {
                            for (; rows > 0 && add(at); --rows)
                                at += width;
                            return rows == 0;
                        });
    }

    /// No more than the file has bytes for: a size in an archive alone takes no memory.
    template <typename T>
    void reserveRows(std::vector<T>& rows, std::size_t count, const NumpyArray& array,
                     std::size_t width) const
    {
        const std::uint64_t there = file->getSize() / (width * array.header.itemSize);
        algebra3d::reserveMany(rows, std::size_t(std::min<std::uint64_t>(count, there)));
    }

    bool readQuaternions(const RodArrays& arrays, std::optional<std::uint64_t> frame, Rod& rod,
                         const ReadOptions& options)
    {
        const NumpyArray& array = *arrays.quaternions;
        const bool areRows = arrays.areQuaternionRows;
        reserveRows(rod.rotations, arrays.rotationCount, array, 4);
        return readEachRow(array, areRows, 4, frame, options, [&](const double* at) {
            const std::size_t i = rod.rotations.size();
            auto& rotation = rod.rotations.emplace_back(at[0], at[1], at[2], at[3]);
            if (!options.normalise && algebra3d::isRotation(rotation)) // most often
                return true;
            const std::string fault =
                areFinite(at, 4) ? checkRotation(rotation, options) : FOUND_NOT_FINITE;
            return fault.empty() || fail(placeIn(array, frame,
                                                 {areRows ? std::to_string(i) : ":",
                                                  areRows ? ":" : std::to_string(i)}) +
                                         fault);
        });
    }

    /// isCoordinate() of many at a time: magnitudes are ordered as their bits, not-a-number last.
    static bool areCoordinates(const double* numbers, std::size_t count)
    {
        const auto magnitude = [](double number) {
            std::uint64_t bits;
            std::memcpy(&bits, &number, sizeof bits);
            return bits & (~std::uint64_t(0) >> 1);
        };
        const std::uint64_t largest = magnitude(LARGEST_COORDINATE);
        std::uint64_t differences = 0; // the first bit is set where one is negative
        for (std::size_t i = 0; i < count; ++i)
            differences |= largest - magnitude(numbers[i]);
        return differences >> 63 == 0;
    }

    static bool areFinite(const double* numbers, std::size_t count)
    {
        double sum = 0; // of zeros, or not-a-number
        for (std::size_t i = 0; i < count; ++i)
            sum += 0 * numbers[i];
        return sum == 0;
    }

    bool readDirectors(const NumpyArray& array, bool areRows, std::size_t count,
                       std::optional<std::uint64_t> frame,
                       std::vector<algebra3d::Quaternion<double>>& rotations,
                       const ReadOptions& options)
    {
        reserveRows(rotations, count, array, 9);
        return readEachRow(array, areRows, 9, frame, options, [&](const double* at) {
            const std::string fault =
                areFinite(at, 9) ? findRotation({Vector(at), Vector(at + 3), Vector(at + 6)},
                                                options, rotations.emplace_back())
                                 : FOUND_NOT_FINITE;
            if (fault.empty())
                return true;
            const std::string index = std::to_string(rotations.size() - areFinite(at, 9));
            return fail(placeIn(array, frame,
                                areRows ? std::vector<std::string>{index, ":", ":"}
                                        : std::vector<std::string>{":", ":", index}) +
                        fault);
        });
    }

    bool addDna(const DnaArrays& arrays, std::optional<std::uint64_t> frame, Collector& collector,
                const ReadOptions& options)
    {
        Dna pairs;
        pairs.origin = fileName + ": frames";
        std::vector<Vector> steps;
        if (!readDirectors(arrays.frames, true, arrays.count, frame, pairs.pairRotations,
                           options) ||
            !readPoints(arrays.steps, true, arrays.count - 1, frame, steps, options))
            return false;
        pairs.bases.assign(arrays.count, UNKNOWN_BASE);
        pairs.pairPoints.emplace_back(0, 0, 0);
        for (const Vector& step : steps) {
            const Vector& point = pairs.pairPoints.emplace_back(pairs.pairPoints.back() + step);
            if (!isCoordinate(point.x) || !isCoordinate(point.y) || !isCoordinate(point.z))
                return fail(arrays.steps.path + ": found steps to a place beyond 1e18, expected " +
                            EXPECTED_COORDINATE);
        }
        pairs.points1 = pairs.points2 = pairs.pairPoints;
        pairs.rotations1 = pairs.rotations2 = pairs.pairRotations;
        const std::string fault = collector.add(std::move(pairs));
        return fault.empty() || fail(arrays.frames.path + ": " + fault);
    }

    static constexpr char FOUND_NOT_FINITE[] =
        "found a number that is not finite, expected finite ones";

    /// Always false.
    bool failShape(const NumpyArray& array, const std::string& expected)
    {
        return fail(array.path + ": found shape " + shapeText(array.header.shape) + ", expected " +
                    expected);
    }
    bool fail(const std::string& text)
    {
        report->error = text;
        return false;
    }

    std::string fileName;
    std::unique_ptr<NumpyFile> file;
    ReadReport* report; ///< of whatever is being done
    std::vector<RodArrays> rods;
    std::optional<DnaArrays> dna;
    std::optional<std::uint64_t> frameCount; ///< nothing without an axis of time
    std::string firstArray;                  ///< that told so
    std::vector<double> times;
};

/// It owns what it reads from.
class NumpySeries : public Series
{
public:
    NumpySeries(std::unique_ptr<Source> openSource, std::unique_ptr<NumpyFrames> openFrames,
                const ReadOptions& readOptions)
        : source(std::move(openSource)), frames(std::move(openFrames)), options(readOptions)
    {
        options.goOn = {};
    }

    std::size_t count() const override { return std::size_t(frames->count()); }
    std::optional<double> time(std::size_t frame) const override { return frames->time(frame); }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
    {
        ReadReport report;
        ReadOptions asking = options;
        asking.goOn = goOn;
        std::optional<Configuration> read = frames->read(frame, asking, report);
        return {std::move(read), std::move(report.notices), std::move(report.error)};
    }

    std::unique_ptr<Source> source;
    std::unique_ptr<NumpyFrames> frames;
    ReadOptions options;
};

/// Whether the first file of an archive is an array.
bool beginsWithArray(std::string_view archive)
{
    constexpr std::string_view magic = "PK\x03\x04", ending = ".npy";
    constexpr std::size_t lengthAt = 26, nameAt = 30;
    if (archive.size() < nameAt || archive.substr(0, magic.size()) != magic)
        return false;
    const std::size_t length = static_cast<unsigned char>(archive[lengthAt]) +
                               256u * static_cast<unsigned char>(archive[lengthAt + 1]);
    const std::string_view name = archive.substr(nameAt, length);
    return name.size() > ending.size() && name.substr(name.size() - ending.size()) == ending;
}

} // namespace

Likeness likenessToNumpy(std::string_view beginning)
{
    return beginning.substr(0, NPY_MAGIC.size()) == NPY_MAGIC || beginsWithArray(beginning) ||
                   isPickle(beginning)
               ? Likeness::CERTAIN
               : Likeness::NONE;
}

std::optional<Configuration> readNumpy(Source& source, const ReadOptions& options,
                                       ReadReport& report)
{
    const auto frames = NumpyFrames::open(source, options, report);
    if (!frames)
        return {};
    report.frames = std::size_t(frames->count());
    return frames->read(0, options, report);
}

std::unique_ptr<Series> openNumpySeries(std::unique_ptr<Source> source, const ReadOptions& options,
                                        ReadReport& report)
{
    auto frames = NumpyFrames::open(*source, options, report);
    return frames ? std::make_unique<NumpySeries>(std::move(source), std::move(frames), options)
                  : nullptr;
}

} // namespace strandview
