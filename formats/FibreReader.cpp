// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/FibreReader.h>

#include <cmath>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <strandview/formats/Collector.h>
#include <strandview/formats/IndexedSeries.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/pointRows.h>
#include <strandview/formats/text/characters.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

/// "% fiber f0:1:228" is a mark with a text.
struct Mark
{
    std::string_view word, text; ///< empty where the line has none
};

Mark markIn(std::string_view line)
{
    line = trimmed(line);
    if (line.empty() || line.front() != '%')
        return {};
    line = trimmed(line.substr(1));
    const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
    return {line.substr(0, end), trimmed(line.substr(end))};
}

bool isOfFilament(std::string_view line)
{
    line = trimmed(line);
    if (line.empty() || line.front() != 'F')
        return false;
    const std::vector<std::string_view> fields = remainingFields(FieldScanner(line));
    return fields.size() > 2 && fields[0] == "FILAMENT" && isNumber(fields[1]) &&
           isNumber(fields[2]);
}

/// The line that the scanner begins.
std::string_view lineAt(std::string_view text, const FieldScanner& scanner)
{
    const std::size_t start = scanner.getPosition();
    return text.substr(start, findLineEnd(text, start) - start);
}

/// One frame, line by line.
class FibreFrame
{
public:
    FibreFrame(const FrameText& frame, const std::string& reportName,
               const ReadOptions& readOptions, ReadReport& readReport)
        : text(frame.text),
          firstLine(frame.line),
          scanner(frame.text),
          fileName(reportName),
          report(readReport),
          milestones(readOptions, frame.text.size()),
          collector(readOptions)
    {}

    FrameRead read()
    {
        for (; !scanner.isAtEnd(); scanner.nextLine()) {
            if (!milestones.pass(scanner.getPosition()))
                return fail(READING_STOPPED);
            const Mark mark = markIn(lineAt(text, scanner));
            if (mark.word == "end")
                return finish();
            if (mark.word == "fiber" && !(finishFibre() && beginFibre(mark.text)))
                return {};
            if (!scanner.isLineBlank() && !scanner.isLineComment() && !takeRow())
                return {{}, isCut};
        }
        isCut = true;
        return fail("found the end of the frame, expected '% end'");
    }

private:
    bool beginFibre(std::string_view name)
    {
        rod = Rod();
        rod.name = shortened(name);
        rod.origin = placeOf(fileName, scanner, firstLine) + "rod " + std::to_string(++fibres);
        fibreLine = firstLine + scanner.getLine() - 1;
        return true;
    }

    bool takeRow()
    {
        if (fibres == 0)
            fail("found a row, expected '% fiber' before it");
        else if (const auto number = scanner.nextField(); !number || !isNumber(*number))
            fail("column 1: found " + inQuotes(number.value_or("")) +
                 ", expected the number of the fibre");
        else if (const std::string fault = takePoint(scanner, 2, rod.points.emplace_back());
                 !fault.empty())
            fail(fault);
        rod.lines.push_back(firstLine + scanner.getLine() - 1);
        isCut = !report.error.empty() && text.find('\n', scanner.getPosition()) == text.npos;
        return report.error.empty();
    }

    bool finishFibre()
    {
        const std::string fault = fibres == 0 ? "" : collector.add(std::move(rod));
        if (!fault.empty())
            report.error = fileName + ":" + std::to_string(fibreLine) + ": " + fault;
        return fault.empty();
    }

    FrameRead finish()
    {
        return {finishFibre() ? collector.finish(fileName, "fibre", report) : std::nullopt};
    }

    FrameRead fail(const std::string& what)
    {
        report.error = placeOf(fileName, scanner, firstLine) + what;
        return {{}, isCut};
    }

    std::string_view text;
    std::size_t firstLine;
    FieldScanner scanner;
    const std::string& fileName;
    ReadReport& report;
    Milestones milestones;
    Collector collector;
    Rod rod; ///< of the fibre that is read
    std::size_t fibres = 0;
    std::size_t fibreLine = 0;
    bool isCut = false;
};

class FibreFrames : public TextFrames
{
public:
    void see(std::string_view line, FrameIndex& index) override
    {
        const bool isMark = !line.empty() && line.front() == '%';
        if (!isMark && index.count() > 0) // most often
            return;
        const Mark mark = markIn(line);
        double time = 0;
        if (mark.word == "frame")
            index.begin();
        else if (mark.word == "time" && parseNumber(mark.text, time) == std::errc() &&
                 std::isfinite(time))
            index.setTime(time);
        else if (index.count() == 0 &&
                 (mark.word == "fiber" || (mark.word.empty() && !trimmed(line).empty())))
            index.refuse("found " + inQuotes(trimmed(line)) + ", expected '% frame' before it");
    }

    FrameRead read(const FrameText& frame, const std::string& fileName, const ReadOptions& options,
                   ReadReport& report) override
    {
        return FibreFrame(frame, fileName, options, report).read();
    }
};

/// What the beginning of a file makes of it.
struct Beginning
{
    bool hasFibre = false;
    std::size_t filamentLine = 0; ///< of a snapshot of filaments; else 0
};

Beginning lookAt(std::string_view text)
{
    for (FieldScanner scanner(text); !scanner.isAtEnd(); scanner.nextLine()) {
        const std::string_view line = lineAt(text, scanner);
        if (isOfFilament(line))
            return {false, scanner.getLine()};
        if (markIn(line).word == "fiber")
            return {true, 0};
    }
    return {};
}

/// False and report.error for a snapshot, or where nothing can be read.
bool isNoSnapshot(Source& source, const ReadOptions& options, ReadReport& report)
{
    constexpr std::size_t enough = 64 * 1024;
    const auto beginning = source.readBeginning(enough, options, report);
    const std::size_t line = beginning ? lookAt(*beginning).filamentLine : 0;
    if (line > 0)
        report.error = source.getName() + ":" + std::to_string(line) +
                       ": found a snapshot of filaments, expected a report of fibres "
                       "('% frame', '% fiber')";
    return beginning && line == 0;
}

} // namespace

Likeness likenessToFibres(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return Likeness::NONE;
    const Beginning found = lookAt(withoutByteOrderMark(beginning));
    return found.hasFibre || found.filamentLine > 0 ? Likeness::CERTAIN : Likeness::NONE;
}

std::optional<Configuration> readFibres(Source& source, const ReadOptions& options,
                                        ReadReport& report)
{
    FibreFrames frames;
    return isNoSnapshot(source, options, report)
               ? IndexedSeries::readFirst(source, frames, options, report)
               : std::nullopt;
}

std::unique_ptr<Series> openFibres(std::unique_ptr<Source> source, const ReadOptions& options,
                                   ReadReport& report)
{
    if (!isNoSnapshot(*source, options, report))
        return nullptr;
    return IndexedSeries::open(std::move(source), std::make_unique<FibreFrames>(), options, report);
}

} // namespace strandview
