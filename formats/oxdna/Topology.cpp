// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/oxdna/Topology.h>

#include <algorithm>
#include <charconv>
#include <system_error>

#include <algebra3d/largePages.h>

#include <strandview/formats/Milestones.h>
#include <strandview/formats/RowScanner.h>
#include <strandview/formats/pairLetters.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/wording.h>
#include <strandview/model/Dna.h>

namespace strandview {

namespace {

constexpr std::string_view NEW_FORM = "5->3";
constexpr std::size_t MOST_STRANDS = UINT32_MAX; // numbers that a nucleotide has room for
constexpr std::int32_t BASES = 4;                ///< of codes that are letters

std::optional<std::int64_t> parseWhole(std::string_view field)
{
    std::int64_t number = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, status] = std::from_chars(field.data(), end, number);
    return status == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

class TopologyReader
{
public:
    TopologyReader(std::string_view wholeText, const std::string& fileName,
                   const ReadOptions& options, ReadReport& readReport)
        : text(wholeText),
          report(readReport),
          rows(wholeText, fileName, readReport),
          milestones(options, wholeText.size())
    {
        topology.name = fileName;
    }

    std::optional<OxdnaTopology> read()
    {
        if (!readBeginning() || !(isNewForm ? readStrands() : readNucleotides() && checkLinks()))
            return {};
        letters.tell(topology.name, report);
        if (numbers > 0)
            report.notices.push_back(topology.name + ": " + counted(numbers, "base") +
                                     " given as a number, shown by its remainder of 4");
        return std::move(topology);
    }

private:
    bool readBeginning()
    {
        constexpr char counts[] = "the numbers of nucleotides and strands";
        if (!rows.nextRow(counts) || !rows.takeCount(count, counts) ||
            !rows.takeCount(topology.strands, counts))
            return false;
        if (topology.strands > MOST_STRANDS)
            return rows.fail("found " + std::to_string(topology.strands) +
                             " strands, expected at most " + std::to_string(MOST_STRANDS));
        if (count == 0 || topology.strands == 0 || topology.strands > count)
            return rows.fail("found " + counted(count, "nucleotide") + " in " +
                             counted(topology.strands, "strand") +
                             ", expected at least one in each strand");
        isNewForm = rows.nextField() == NEW_FORM;
        const std::size_t possible = std::min(count, text.size());
        algebra3d::reserveMany(topology.nucleotides,
                               isNewForm ? possible : std::min(possible, countLines(text)));
        algebra3d::reserveMany(topology.codes, topology.nucleotides.capacity());
        return true;
    }

    // ---- The classic form

    bool readNucleotides()
    {
        while (rows.nextRow()) {
            if (!passMilestone() || !hasRoom())
                return false;
            std::size_t strand = 0;
            OxdnaNucleotide nucleotide;
            if (!rows.takeCount(strand, expectedStrand()))
                return false;
            if (strand == 0 || strand > topology.strands)
                return rows.failInColumn("found " + std::to_string(strand) + ", expected " +
                                         expectedStrand());
            nucleotide.strand = std::uint32_t(strand - 1);
            if (!takeBase(rows.nextField().value_or(""), nucleotide) ||
                !takeNeighbour(nucleotide.next) || !takeNeighbour(nucleotide.previous))
                return false;
            topology.nucleotides.push_back(nucleotide);
        }
        return checkCount();
    }

    bool takeNeighbour(std::size_t& neighbour)
    {
        const std::string_view field = rows.nextField().value_or("");
        const std::optional<std::int64_t> number = parseWhole(field);
        if (!number || *number < -1 || *number >= std::int64_t(count))
            return rows.failInColumn("found " + inQuotes(field) +
                                     ", expected -1 or a number below " + std::to_string(count));
        neighbour = *number < 0 ? NO_NUCLEOTIDE : std::size_t(*number);
        return true;
    }

    /// Neighbours are each other's, and of one strand.
    bool checkLinks()
    {
        const std::vector<OxdnaNucleotide>& all = topology.nucleotides;
        for (std::size_t i = 0; i < all.size(); ++i) {
            const std::size_t next = all[i].next, previous = all[i].previous;
            const bool nextAgrees =
                next == NO_NUCLEOTIDE ||
                (next != i && all[next].previous == i && all[next].strand == all[i].strand);
            if (nextAgrees && (previous == NO_NUCLEOTIDE || all[previous].next == i))
                continue;
            report.error = topology.name + ": nucleotide " + std::to_string(i) +
                           ": found neighbours that are not each other's or of another strand, "
                           "expected a chain or a circle of one strand";
            return false;
        }
        return true;
    }

    // ---- The new form

    bool readStrands()
    {
        std::size_t strand = 0;
        for (; rows.nextRow(); ++strand) {
            if (!passMilestone())
                return false;
            if (strand == topology.strands)
                return rows.fail("found one more line, expected " + counted(strand, "strand"));
            const std::size_t first = topology.nucleotides.size();
            if (!readSequence(rows.nextField().value_or(""), strand))
                return false;
            bool isCircular = false;
            while (const std::optional<std::string_view> field = rows.nextField())
                isCircular = isCircular || tellsCircle(*field);
            link(first, isCircular);
        }
        if (strand < topology.strands)
            return rows.fail("found the end of the file after " + counted(strand, "strand") +
                             ", expected " + std::to_string(topology.strands));
        return checkCount();
    }

    bool readSequence(std::string_view sequence, std::size_t strand)
    {
        OxdnaNucleotide nucleotide;
        nucleotide.strand = std::uint32_t(strand);
        for (std::size_t at = 0, length = 0; at < sequence.size(); at += length) {
            const std::size_t close = sequence.find(')', at);
            const bool isNumber = sequence[at] == '(';
            if (isNumber && close == std::string_view::npos)
                return rows.failInColumn("found no ')', expected one behind '('");
            length = isNumber ? close - at + 1 : 1;
            if (!hasRoom() ||
                !takeBase(isNumber ? sequence.substr(at + 1, length - 2) : sequence.substr(at, 1),
                          nucleotide))
                return false;
            topology.nucleotides.push_back(nucleotide);
        }
        return true;
    }

    static bool tellsCircle(std::string_view field)
    {
        const std::string small = inSmallLetters(field);
        return small == "circular=true" || small == "circular=1";
    }

    /// The nucleotides of a strand from the first one on, towards the 3' end.
    void link(std::size_t first, bool isCircular)
    {
        std::vector<OxdnaNucleotide>& all = topology.nucleotides;
        for (std::size_t i = first; i + 1 < all.size(); ++i) {
            all[i].next = i + 1;
            all[i + 1].previous = i;
        }
        if (isCircular && all.size() > first + 1) {
            all.back().next = first;
            all[first].previous = all.size() - 1;
        }
    }

    // ---- Both

    bool takeBase(std::string_view field, OxdnaNucleotide& nucleotide)
    {
        constexpr std::string_view letterOfCode = "ACGT";
        const std::optional<std::int64_t> number = parseWhole(field);
        if (number && *number > INT32_MIN && *number <= INT32_MAX) {
            ++numbers;
            nucleotide.base = letterOfCode[std::size_t((*number % BASES + BASES) % BASES)];
            topology.codes.push_back(std::int32_t(*number));
            return true;
        }
        if (number || field.size() != 1)
            return rows.failInColumn("found " + inQuotes(field) +
                                     ", expected the letter of a base, or a number");
        nucleotide.base = letters.take(field[0]);
        const std::size_t code = letterOfCode.find(nucleotide.base);
        topology.codes.push_back(code < BASES ? std::int32_t(code) : UNPAIRED_CODE);
        return true;
    }

    bool hasRoom()
    {
        return topology.nucleotides.size() < count ||
               rows.fail("found one more nucleotide, expected " + std::to_string(count));
    }

    bool checkCount()
    {
        return topology.nucleotides.size() == count ||
               rows.fail("found the end of the file after " +
                         counted(topology.nucleotides.size(), "nucleotide") + ", expected " +
                         std::to_string(count));
    }

    bool passMilestone()
    {
        if (milestones.pass(rows.getPosition()))
            return true;
        report.error = topology.name + ": " + READING_STOPPED;
        return false;
    }

    std::string expectedStrand() const
    {
        return "a strand from 1 to " + std::to_string(topology.strands);
    }

    std::string_view text;
    ReadReport& report;
    RowScanner rows;
    Milestones milestones;
    std::size_t count = 0; ///< of nucleotides, as the first line says
    bool isNewForm = false;
    std::size_t numbers = 0;
    LetterCounts letters;
    OxdnaTopology topology;
};

} // namespace

std::optional<OxdnaTopology> readOxdnaTopology(std::string_view text, const std::string& name,
                                               const ReadOptions& options, ReadReport& report)
{
    if (!isUtf16(text))
        return TopologyReader(withoutByteOrderMark(text), name, options, report).read();
    report.error = name + ": " + FOUND_UTF16;
    return {};
}

std::optional<std::size_t> countInOxdnaTopology(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return {};
    ReadReport ignored;
    const std::string name;
    RowScanner rows(withoutByteOrderMark(beginning), name, ignored);
    std::size_t count = 0, strands = 0, strand = 0;
    if (!rows.nextRow() || !rows.takeCount(count, "") || !rows.takeCount(strands, ""))
        return {};
    const std::optional<std::string_view> form = rows.nextField();
    if (form)
        return form == NEW_FORM ? std::optional(count) : std::nullopt;
    if (!rows.nextRow() || !rows.takeCount(strand, "") || !rows.nextField())
        return {};
    for (int i = 0; i < 2; ++i)
        if (!parseWhole(rows.nextField().value_or("")))
            return {};
    return rows.nextField() ? std::nullopt : std::optional(count);
}

} // namespace strandview
