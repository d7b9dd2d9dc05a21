// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/oxdna/OxdnaReader.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <algebra3d/Vector3.h>
#include <algebra3d/largePages.h>

#include <strandview/analysis/doubleStrands.h>
#include <strandview/analysis/keptPairs.h>
#include <strandview/analysis/mutuallyNearest.h>
#include <strandview/formats/Collector.h>
#include <strandview/formats/IndexedSeries.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/RowScanner.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/directors.h>
#include <strandview/formats/oxdna/files.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;

constexpr double UNIT = 8.518; ///< ångström

// Places along a1, in units.
constexpr double BASE_SITE = 0.4;
constexpr double BACKBONE_SITE = -0.4;
constexpr double FRAME_ORIGIN = 0.6; ///< of the base's frame, where that of its pair is

// Of two bases that are paired.
constexpr double FARTHEST_SITES = 0.6;
constexpr double LARGEST_COSINE = -0.5;
constexpr std::int64_t COMPLEMENTARY_SUM = 3;

std::string_view afterEquals(std::string_view line)
{
    return trimmed(line.substr(std::min(line.find('=') + 1, line.size())));
}

bool beginsConfiguration(std::string_view line)
{
    line = trimmed(line);
    return line.substr(0, 1) == "t" && trimmed(line.substr(1)).substr(0, 1) == "=";
}

/// Hands over chains of nucleotides from their 5' ends on, in the order of their lowest indices. A
/// circle begins at its lowest index, and its last nucleotide goes on to it. `use` answers whether
/// to go on.
template <typename Use>
bool useChains(const std::vector<Nucleotide>& nucleotides, Use use)
{
    std::vector<std::size_t> chain;
    std::vector<bool> isTaken(nucleotides.size());
    for (std::size_t i = 0; i < nucleotides.size(); ++i) {
        if (isTaken[i])
            continue;
        std::size_t start = i;
        while (nucleotides[start].previous != NO_NUCLEOTIDE && nucleotides[start].previous != i)
            start = nucleotides[start].previous;
        if (nucleotides[start].previous == i)
            start = i;
        chain.clear();
        for (std::size_t at = start; at != NO_NUCLEOTIDE && !isTaken[at];
             at = nucleotides[at].next) {
            isTaken[at] = true;
            chain.push_back(at);
        }
        if (!use(chain))
            return false;
    }
    return true;
}

/// Reads one configuration.
class ConfigurationReader
{
public:
    ConfigurationReader(const OxdnaTopology& oxdnaTopology, const FrameText& frame,
                        const std::string& name, const ReadOptions& readOptions,
                        ReadReport& readReport)
        : topology(oxdnaTopology),
          text(frame.text),
          number(frame.number),
          fileName(name),
          options(readOptions),
          report(readReport),
          rows(frame.text, name, readReport, frame.line),
          milestones(readOptions, frame.text.size()),
          pairs(readOptions.pairs ? *readOptions.pairs : ownPairs)
    {}

    FrameRead read()
    {
        if (!readHeader() || !readNucleotides())
            return {{}, isCut};
        if (!pairs.pair(nucleotides, [this] { findPairs(); }))
            report.notices.push_back(toldPairedAlone(fileName, number));
        return {makeConfiguration()};
    }

private:
    bool readHeader()
    {
        for (const char* key : {"t", "b", "E"}) {
            const std::string expected = "'" + std::string(key) + " = ...'";
            if (!rows.nextRow(expected))
                return failCut();
            const std::string_view line = trimmed(rows.getRestOfLine());
            if (line.substr(0, 1) != key || trimmed(line.substr(1)).substr(0, 1) != "=")
                return rows.fail("found " + inQuotes(line) + ", expected " + expected);
        }
        return true;
    }

    bool readNucleotides()
    {
        const std::size_t count = topology.nucleotides.size();
        const std::string expected =
            "expected " + std::to_string(count) + " as in " + topology.name;
        constexpr std::size_t shortestLine = 17; // nine digits and the blanks between
        const std::size_t most = std::min(count, text.size() / shortestLine);
        algebra3d::reserveMany(positions, most);
        algebra3d::reserveMany(axes, most);
        algebra3d::reserveMany(nucleotides, most);
        while (rows.nextRow()) {
            if (!milestones.pass(rows.getPosition())) {
                report.error = fileName + ": " + READING_STOPPED;
                return false;
            }
            if (nucleotides.size() == count)
                return rows.fail("found one more nucleotide, " + expected);
            if (!readNucleotide())
                return false;
        }
        if (nucleotides.size() == count)
            return true;
        rows.fail("found the end of the configuration after " +
                  counted(nucleotides.size(), "nucleotide") + ", " + expected);
        return failCut();
    }

    bool readNucleotide()
    {
        Vector position, a1, a3;
        if (!rows.takePoint(position) || !rows.takePoint(a1) || !rows.takePoint(a3))
            return isLastLine() ? failCut() : false;
        for (int i = 0; i < 3; ++i)
            if (!isCoordinate(UNIT * (std::abs(position[i]) + std::abs(a1[i]))))
                return rows.fail("found " + formatted(position[i]) +
                                 " units of 8.518 ångström, expected " + EXPECTED_COORDINATE);
        BaseFrame frame;
        frame.point = UNIT * (position + a1 * FRAME_ORIGIN);
        const std::string fault = findRotation({std::nullopt, -a1, -a3}, options, frame.rotation);
        if (!fault.empty())
            return rows.fail("axes a1 and a3: " + fault);
        const OxdnaNucleotide& of = topology.nucleotides[nucleotides.size()];
        Nucleotide& nucleotide = nucleotides.emplace_back();
        nucleotide.base = of.base;
        nucleotide.strand = of.strand;
        nucleotide.previous = of.previous;
        nucleotide.next = of.next;
        nucleotide.frame = frame;
        positions.push_back(position);
        axes.push_back(a1);
        return true;
    }

    bool isLastLine() const
    {
        return text.find('\n', rows.getPosition()) == std::string_view::npos;
    }

    bool failCut()
    {
        isCut = true;
        return false;
    }

    void findPairs()
    {
        Points sites;
        algebra3d::reserveMany(sites, positions.size());
        for (std::size_t i = 0; i < positions.size(); ++i)
            sites.push_back(positions[i] + axes[i] * BASE_SITE);
        const auto partners =
            mutuallyNearest(sites, FARTHEST_SITES, [&](std::size_t i, std::size_t j) {
                const std::int64_t sum =
                    std::int64_t(topology.codes[i]) + std::int64_t(topology.codes[j]);
                return sum == COMPLEMENTARY_SUM && axes[i].dot(axes[j]) < LARGEST_COSINE
                           ? (sites[i] - sites[j]).getNorm()
                           : std::numeric_limits<double>::infinity();
            });
        for (std::size_t i = 0; i < partners.size(); ++i)
            nucleotides[i].partner = partners[i];
    }

    std::optional<Configuration> makeConfiguration()
    {
        Collector collector;
        if (!addBackbones(collector))
            return {};
        positions = Points(); // {} would keep the memory
        axes = Points();
        const auto nameOf = [](std::size_t strand) { return std::to_string(strand + 1); };
        const auto placeOf = [](std::size_t i) { return "nucleotide " + std::to_string(i); };
        DoubleStrands all =
            makeDoubleStrands(nucleotides, {fileName, topology.strands, nameOf, placeOf}, {},
                              pairs.findHelices(nucleotides));
        nucleotides = std::vector<Nucleotide>();
        collector.add(std::move(all.dnas));
        collector.add(std::move(all.loneBases));
        return collector.finish(fileName, "strand", report);
    }

    bool addBackbones(Collector& collector)
    {
        const std::vector<std::size_t> molecules = findMolecules(nucleotides, topology.strands);
        collector.reserveRods(std::size_t(
            std::count_if(nucleotides.begin(), nucleotides.end(), [](const Nucleotide& one) {
                return one.previous == NO_NUCLEOTIDE && one.next != NO_NUCLEOTIDE;
            })));
        const bool areAdded = useChains(nucleotides, [&](const std::vector<std::size_t>& chain) {
            return addBackbone(chain, molecules, collector);
        });
        if (areAdded && lone > 0)
            report.notices.push_back(fileName + ": " + counted(lone, "strand") +
                                     " without a backbone, of 1 nucleotide: " +
                                     andMore("strand " + std::to_string(firstLone + 1), lone));
        return areAdded;
    }

    bool addBackbone(const std::vector<std::size_t>& chain,
                     const std::vector<std::size_t>& molecules, Collector& collector)
    {
        if (chain.size() < 2) {
            if (++lone == 1)
                firstLone = nucleotides[chain.front()].strand;
            return true;
        }
        Rod rod;
        const std::size_t strand = nucleotides[chain.front()].strand;
        const bool isCircle = nucleotides[chain.back()].next == chain.front();
        rod.name = "strand " + std::to_string(strand + 1);
        rod.origin = fileName + ": " + rod.name;
        rod.isBackbone = true;
        rod.molecule = molecules[strand];
        algebra3d::reserveMany(rod.points, chain.size() + isCircle);
        for (const std::size_t i : chain)
            rod.points.push_back(UNIT * (positions[i] + axes[i] * BACKBONE_SITE));
        if (isCircle) {
            rod.isClosed = true;
            rod.points.push_back(rod.points.front());
        }
        const std::string origin = rod.origin, fault = collector.add(std::move(rod));
        if (!fault.empty())
            report.error = origin + ": " + fault;
        return fault.empty();
    }

    const OxdnaTopology& topology;
    std::string_view text;
    std::size_t number; ///< of the frame
    const std::string& fileName;
    const ReadOptions& options;
    ReadReport& report;
    RowScanner rows;
    Milestones milestones;
    KeptPairs ownPairs; ///< of no series
    KeptPairs& pairs;
    // What is kept of a line: what nothing is made of any more goes, to spare memory.
    Points positions, axes; ///< r and a1, in units
    std::vector<Nucleotide> nucleotides;
    std::size_t lone = 0, firstLone = 0; ///< strands of one nucleotide, and one of them
    bool isCut = false;
};

class OxdnaFrames : public TextFrames
{
public:
    explicit OxdnaFrames(OxdnaTopology ofStrands) : topology(std::move(ofStrands)) {}

    void see(std::string_view line, FrameIndex& index) override
    {
        if (beginsConfiguration(line)) {
            index.begin();
            rows = 1;
            double time = 0;
            if (parseNumber(afterEquals(line), time) == std::errc())
                index.setTime(time);
        } else if (trimmed(line).empty()) {
            return;
        } else if (index.count() == 0) {
            index.refuse("found " + inQuotes(line) + ", expected 't = ...'");
        } else {
            ++rows;
        }
    }

    bool mayBeWhole() const override
    {
        constexpr std::size_t headerRows = 3;
        return rows >= headerRows + topology.nucleotides.size();
    }

    FrameRead read(const FrameText& frame, const std::string& fileName, const ReadOptions& options,
                   ReadReport& report) override
    {
        return ConfigurationReader(topology, frame, fileName, options, report).read();
    }

private:
    OxdnaTopology topology;
    std::size_t rows = 0; ///< of the configuration that is indexed
};

/// Whether it is a topology that was named, of which the configuration is another file.
std::optional<bool> isTopology(Source& source, const ReadOptions& options, ReadReport& report)
{
    constexpr std::size_t enough = 4096;
    const auto beginning = source.readBeginning(enough, options, report);
    if (!beginning)
        return {};
    return countInOxdnaTopology(*beginning).has_value();
}

std::unique_ptr<TextFrames> framesFor(Source& configuration, const std::string& topologyPath,
                                      ReadOptions options, ReadReport& report)
{
    if (!topologyPath.empty())
        options.topology = topologyPath;
    std::optional<OxdnaTopology> topology = findOxdnaTopology(configuration, options, report);
    return topology ? makeOxdnaFrames(std::move(*topology)) : nullptr;
}

/// What was told of a topology whose configuration then failed is not told.
template <typename Result>
Result withoutNoticesOfFailure(Result result, std::size_t before, ReadReport& report)
{
    if (!result)
        report.notices.resize(before);
    return result;
}

} // namespace

std::unique_ptr<TextFrames> makeOxdnaFrames(OxdnaTopology topology)
{
    return std::make_unique<OxdnaFrames>(std::move(topology));
}

std::optional<Configuration> readOxdna(Source& source, const ReadOptions& options,
                                       ReadReport& report)
{
    const std::optional<bool> isNamedByTopology = isTopology(source, options, report);
    if (!isNamedByTopology)
        return {};
    std::unique_ptr<Source> found;
    if (*isNamedByTopology && !(found = findOxdnaConfiguration(source, options, report)))
        return {};
    Source& configuration = found ? *found : source;
    const std::size_t before = report.notices.size();
    const auto frames = framesFor(configuration, found ? source.getPath() : "", options, report);
    return frames ? withoutNoticesOfFailure(
                        IndexedSeries::readFirst(configuration, *frames, options, report), before,
                        report)
                  : std::nullopt;
}

std::unique_ptr<Series> openOxdna(std::unique_ptr<Source> source, const ReadOptions& options,
                                  ReadReport& report)
{
    const std::optional<bool> isNamedByTopology = isTopology(*source, options, report);
    if (!isNamedByTopology)
        return nullptr;
    std::string topology;
    if (*isNamedByTopology) {
        topology = source->getPath();
        source = findOxdnaConfiguration(*source, options, report);
    }
    const std::size_t before = report.notices.size();
    auto frames = source ? framesFor(*source, topology, options, report) : nullptr;
    return frames ? withoutNoticesOfFailure(
                        IndexedSeries::open(std::move(source), std::move(frames), options, report),
                        before, report)
                  : nullptr;
}

Likeness likenessToOxdna(std::string_view beginning)
{
    const bool isOne = isOxdnaConfiguration(beginning) || countInOxdnaTopology(beginning);
    return isOne ? Likeness::CERTAIN : Likeness::NONE;
}

} // namespace strandview
