// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/VectReader.h>

#include <charconv>
#include <cstdint>
#include <deque>
#include <system_error>
#include <utility>

#include <algebra3d/largePages.h>

#include <strandview/formats/Collector.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/pointRows.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

constexpr std::string_view FIRST_WORD = "VECT";
/// Of vertices, and of anything else: more than memory holds, and no sum of two overflows.
constexpr std::int64_t LARGEST_COUNT = std::int64_t(1) << 60;

/// The next word, in whatever line it is.
std::optional<std::string_view> nextWord(FieldScanner& scanner)
{
    for (; !scanner.isAtEnd(); scanner.nextLine())
        if (const auto field = scanner.nextField())
            return field;
    return {};
}

class VectReader
{
public:
    VectReader(std::string_view text, const std::string& vectName, const ReadOptions& readOptions,
               ReadReport& readReport)
        : scanner(text),
          fileName(vectName),
          report(readReport),
          milestones(readOptions, text.size()),
          collector(readOptions)
    {}

    std::optional<Configuration> read()
    {
        if (nextWord(scanner) != FIRST_WORD) {
            fail("found another word, expected VECT");
            return {};
        }
        std::int64_t polylines = 0, vertices = 0, colours = 0;
        if (!takeCount(polylines, "the number of polylines") ||
            !takeCount(vertices, "the number of vertices") ||
            !takeCount(colours, "the number of colours") || !takeSizes(polylines, vertices))
            return {};
        for (const std::int64_t size : sizes)
            if (!takeRod(size))
                return {};
        return collector.finish(fileName, "polyline", report);
    }

private:
    bool takeSizes(std::int64_t polylines, std::int64_t vertices)
    {
        std::int64_t sum = 0;
        for (std::int64_t i = 0; i < polylines; ++i) {
            if (!milestones.pass(scanner.getPosition()))
                return fail(READING_STOPPED);
            std::int64_t& size = sizes.emplace_back();
            if (!takeInteger(size, "the number of vertices of a polyline"))
                return false;
            sum += std::abs(size);
            if (sum > vertices)
                return fail("found polylines of " + std::to_string(sum) +
                            " vertices or more, expected " + std::to_string(vertices) + " of all");
        }
        if (sum != vertices)
            return fail("found polylines of " + std::to_string(sum) + " vertices, expected " +
                        std::to_string(vertices) + " of all");
        std::int64_t ignored = 0;
        for (std::int64_t i = 0; i < polylines; ++i)
            if (!takeCount(ignored, "the number of colours of a polyline"))
                return false;
        return true;
    }

    bool takeRod(std::int64_t size)
    {
        Rod rod;
        rod.isClosed = size < 0;
        for (std::int64_t i = 0; i < std::abs(size); ++i) {
            if (!milestones.pass(scanner.getPosition()))
                return fail(READING_STOPPED);
            algebra3d::reserveNext(rod.points);
            algebra3d::reserveNext(rod.lines);
            algebra3d::Vector3<double>& point = rod.points.emplace_back();
            for (int axis = 0; axis < 3; ++axis)
                if (!takeCoordinate(point[axis], rod.points.size(), std::abs(size)))
                    return false;
            if (i == 0)
                rod.origin = placeOf(fileName, scanner) + "rod " + std::to_string(++rods);
            rod.lines.push_back(scanner.getLine());
        }
        if (size == 0)
            return fail("found a polyline of 0 vertices, expected at least 2");
        const std::size_t line = rod.lines.front();
        const std::string fault = collector.add(std::move(rod));
        report.error = fault.empty() ? "" : fileName + ":" + std::to_string(line) + ": " + fault;
        return fault.empty();
    }

    bool takeCoordinate(double& number, std::size_t vertex, std::int64_t ofSize)
    {
        if (scanner.nextNumber(number)) // of 16 digits at most
            return true;
        const auto word = nextWord(scanner);
        if (word && parseNumber(*word, number) == std::errc() && isCoordinate(number))
            return true;
        return fail(found(word) + " in vertex " + std::to_string(vertex) + " of " +
                    std::to_string(ofSize) + ", expected " + EXPECTED_COORDINATE);
    }

    bool takeCount(std::int64_t& count, const char* what)
    {
        return takeInteger(count, what) &&
               (count >= 0 || fail("found " + std::to_string(count) + ", expected " + what));
    }

    bool takeInteger(std::int64_t& number, const char* what)
    {
        const auto word = nextWord(scanner);
        const std::string_view digits = word.value_or("");
        const char* const end = digits.data() + digits.size();
        const auto [stop, status] = std::from_chars(digits.data(), end, number);
        const bool isInteger = status == std::errc() && stop == end && number >= -LARGEST_COUNT &&
                               number <= LARGEST_COUNT;
        return isInteger || fail(found(word) + ", expected " + what);
    }

    static std::string found(const std::optional<std::string_view>& word)
    {
        return word ? "found " + inQuotes(*word) : "found the end of the file";
    }

    /// Always false.
    bool fail(const std::string& text)
    {
        report.error = placeOf(fileName, scanner) + text;
        return false;
    }

    FieldScanner scanner;
    const std::string& fileName;
    ReadReport& report;
    Milestones milestones;
    Collector collector;
    std::deque<std::int64_t> sizes; ///< of the polylines
    std::size_t rods = 0;
};

} // namespace

Likeness likenessToVect(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return Likeness::NONE;
    FieldScanner scanner(withoutByteOrderMark(beginning));
    return nextWord(scanner) == FIRST_WORD ? Likeness::CERTAIN : Likeness::NONE;
}

std::optional<Configuration> readVect(std::string_view text, const std::string& fileName,
                                      const ReadOptions& options, ReadReport& report)
{
    return VectReader(text, fileName, options, report).read();
}

} // namespace strandview
