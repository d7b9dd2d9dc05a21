// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/XyzReader.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <algebra3d/largePages.h>

#include <strandview/formats/Collector.h>
#include <strandview/formats/IndexedSeries.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/pointRows.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

/// Of a line that is nothing else.
std::optional<std::uint64_t> countIn(std::string_view line)
{
    line = trimmed(line);
    std::uint64_t count = 0;
    const char* const end = line.data() + line.size();
    const auto [stop, status] = std::from_chars(line.data(), end, count);
    return status == std::errc() && stop == end ? std::optional(count) : std::nullopt;
}

class XyzFrames : public TextFrames
{
public:
    void see(std::string_view line, FrameIndex& index) override
    {
        if (linesLeft > 0) {
            --linesLeft;
            return;
        }
        if (trimmed(line).empty())
            return;
        const std::optional<std::uint64_t> count = countIn(line);
        if (!count || *count < 2 || *count > LARGEST_COUNT)
            return index.refuse("found " + inQuotes(trimmed(line)) +
                                ", expected the number of atoms of a frame, at least 2");
        index.begin();
        linesLeft = *count + 1;
    }

    bool mayBeWhole() const override { return linesLeft == 0; }

    FrameRead read(const FrameText& frame, const std::string& fileName, const ReadOptions& options,
                   ReadReport& report) override
    {
        FieldScanner scanner(frame.text);
        const auto fail = [&](const std::string& text, bool isCut = false) {
            report.error = placeOf(fileName, scanner, frame.line) + text;
            return FrameRead{{}, isCut};
        };
        const std::uint64_t count = countIn(scanner.nextField().value_or("")).value_or(0);
        Rod rod;
        rod.origin = placeOf(fileName, scanner, frame.line) + "rod 1";
        scanner.nextLine();
        scanner.nextLine();
        constexpr std::size_t shortestAtom = 8; // "C 0 0 0" and the end of the line
        algebra3d::reserveMany(rod.points,
                               std::min<std::uint64_t>(count, frame.text.size() / shortestAtom));
        algebra3d::reserveMany(rod.lines, rod.points.capacity());
        Milestones milestones(options, frame.text.size());
        for (; rod.points.size() < count; scanner.nextLine()) {
            if (!milestones.pass(scanner.getPosition()))
                return fail(READING_STOPPED);
            if (scanner.isAtEnd())
                return fail("found the end of the file after " +
                                counted(rod.points.size(), "atom") + ", expected " +
                                std::to_string(count),
                            true);
            rod.lines.push_back(frame.line + scanner.getLine() - 1);
            if (!scanner.nextField())
                return fail("found an empty line, expected an atom: its name, and x y z");
            const std::string fault = takePoint(scanner, 2, rod.points.emplace_back());
            if (!fault.empty())
                return fail(fault, isLastLine(frame.text, scanner));
        }
        Collector collector(options);
        const std::string fault = collector.add(std::move(rod));
        if (fault.empty())
            return {collector.finish(fileName, "rod", report)};
        report.error = fileName + ":" + std::to_string(frame.line) + ": " + fault;
        return {};
    }

private:
    static constexpr std::uint64_t LARGEST_COUNT = std::uint64_t(1) << 60;

    /// Whether the text ends within this line.
    static bool isLastLine(std::string_view text, const FieldScanner& scanner)
    {
        return text.find('\n', scanner.getPosition()) == text.npos;
    }

    std::uint64_t linesLeft = 0; ///< of the frame that is indexed
};

} // namespace

Likeness likenessToXyz(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return Likeness::NONE;
    FieldScanner scanner(withoutByteOrderMark(beginning));
    const std::vector<std::string_view> first = remainingFields(scanner);
    scanner.nextLine();
    scanner.nextLine();
    const std::vector<std::string_view> atom = remainingFields(scanner);
    // A name, or the number of an element; the letters of a pair ("A-T") begin steps.
    const bool isName = !atom.empty() && (isNumber(atom[0]) ? countIn(atom[0]).has_value()
                                                            : atom[0].find('-') == atom[0].npos);
    const bool isList = first.size() == 1 && countIn(first[0]) && atom.size() > 3 && isName &&
                        isNumber(atom[1]) && isNumber(atom[2]) && isNumber(atom[3]);
    return isList ? Likeness::CERTAIN : Likeness::NONE;
}

std::optional<Configuration> readXyz(Source& source, const ReadOptions& options, ReadReport& report)
{
    XyzFrames frames;
    return IndexedSeries::readFirst(source, frames, options, report);
}

std::unique_ptr<Series> openXyz(std::unique_ptr<Source> source, const ReadOptions& options,
                                ReadReport& report)
{
    return IndexedSeries::open(std::move(source), std::make_unique<XyzFrames>(), options, report);
}

} // namespace strandview
