// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/Findings.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>
#include <utility>

#include <nlohmann/json.hpp>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/superpose.h>
#include <strandview/analysis/tracks.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/groupFiles.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/text/wording.h>

#include "info/LineNumbers.h"
#include "info/words.h"

namespace strandview {

namespace {

using Json = nlohmann::ordered_json;
using Points = std::vector<algebra3d::Vector3<double>>;

// Whatever has points along a line, and is open or closed.
struct CurveNumbers
{
    std::size_t points; // those of a closed curve once
    double length;
    double endToEnd;
};

CurveNumbers measure(const Points& points, bool isClosed)
{
    CurveNumbers numbers{points.size() - (isClosed ? 1 : 0), 0, 0};
    for (std::size_t i = 1; i < points.size(); ++i)
        numbers.length += (points[i] - points[i - 1]).getNorm();
    numbers.endToEnd = (points.back() - points.front()).getNorm();
    return numbers;
}

// Of the letters, nothing if none is known.
std::optional<std::string> knownSequence(const Dna& dna)
{
    const bool isKnown = dna.bases.find_first_not_of(UNKNOWN_BASE) != std::string::npos;
    return isKnown ? std::optional(dna.bases) : std::nullopt;
}

std::optional<double> scaled(const std::optional<double>& length, double factor)
{
    return length ? std::optional(*length * factor) : std::nullopt;
}

// Numbers for people

std::string titled(const char* kind, std::size_t index, const std::string& name)
{
    std::string text = kind + (" " + std::to_string(index + 1));
    if (!name.empty())
        text += " " + inQuotes(name);
    return text + ": ";
}

// Of closed lines, else of open ones; Tw alone where the others are left out.
std::string inWords(const Topology& topology)
{
    std::string text;
    const auto add = [&text](const std::string& name, const std::optional<double>& turns) {
        const double rounding = 1e-9;
        if (turns)
            text += (text.empty() ? "" : ", ") + name + " " +
                    shortNumber(std::abs(*turns) < rounding ? 0 : *turns) + " turns";
    };
    add("Tw", topology.twist);
    add("Wr", topology.writhe);
    add("Gauss integral", topology.gaussIntegral);
    if (topology.linkingNumber)
        text += ", Lk " + std::to_string(*topology.linkingNumber);
    return text.empty() ? "" : "\n    " + text;
}

std::string inWords(const LineNumbers& numbers, double unit, const std::string& unitName)
{
    std::string text =
        "\n    radius of gyration " + shortNumber(numbers.radiusOfGyration / unit) + unitName;
    if (numbers.contact)
        text += ", contact " + shortNumber(*numbers.contact / unit) + unitName;
    return text + inWords(numbers.topology);
}

// Of rods counted from 1, as they are titled; those alone that are linked, or meet.
std::string inWords(const std::vector<Link>& links)
{
    const std::size_t most = 20;
    std::size_t told = 0;
    std::string text;
    for (const Link& link : links) {
        if (link.number == 0 || ++told > most)
            continue;
        text += "rods " + std::to_string(link.first + 1) + " and " +
                std::to_string(link.second + 1) +
                (link.number ? " are linked, Lk " + std::to_string(*link.number) : " meet") + "\n";
    }
    if (told > most)
        text += "and " + std::to_string(told - most) + " more; --json has all\n";
    return !links.empty() && text.empty() ? "no two closed rods are linked\n" : text;
}

std::string slowLeftOut(const AllNumbers& numbers)
{
    return numbers.areSlowLeftOut
               ? "writhe, Gauss integrals and links are left out: of so many points they take "
                 "long; --all-numbers tells them all the same"
               : "";
}

// "12 points, closed, length 7.5, end to end 2.5".
std::string inWords(const CurveNumbers& numbers, bool isClosed)
{
    std::string text = counted(numbers.points, "point") + ", length " + shortNumber(numbers.length);
    return text + (isClosed ? ", closed" : ", end to end " + shortNumber(numbers.endToEnd));
}

std::string describe(const Rod& rod)
{
    std::string text = inWords(measure(rod.points, rod.isClosed), rod.isClosed);
    if (rod.isBackbone)
        text += ", backbone of a strand";
    text += rod.hasFrames ? ", with frames" : ", without frames";
    for (std::size_t i = 0; i < rod.scalars.size(); ++i)
        text += (i == 0 ? ", scalars " : " ") + onOneLine(rod.scalars[i].name);
    return text;
}

std::string describe(const Dna& dna, double angstrom)
{
    const DnaNumbers numbers = numbersOf(dna);
    const std::optional<std::string> sequence = knownSequence(dna);
    const std::size_t most = 60;
    std::string text = counted(dna.bases.size(), "pair") + (dna.isClosed ? ", closed" : "");
    text += sequence ? ", " + sequence->substr(0, most) + (sequence->size() > most ? "..." : "")
                     : ", without letters";
    text += "\n    length " + shortNumber(numbers.length / angstrom) + " Å";
    if (!dna.isClosed)
        text += ", end to end " + shortNumber(numbers.endToEnd / angstrom) + " Å";
    if (numbers.meanTwist)
        text += "\n    twist " + shortNumber(*numbers.meanTwist) + "° a step, " +
                shortNumber(*numbers.totalTwist) + "° or " +
                shortNumber(*numbers.totalTwist / 360) + " turns in all, rise " +
                shortNumber(*numbers.meanRise / angstrom) + " Å a step";
    if (dna.standard)
        text += "\n    bases fit within " + shortNumber(dna.standard->rms) + " Å rms";
    return text;
}

std::string describe(const Findings::File& file)
{
    return onOneLine(file.name) + ": " + file.format +
           (file.frames == 1 ? "" : ", " + counted(file.frames, "frame"));
}

// Numbers for scripts

template <typename Value>
Json orNull(const std::optional<Value>& value)
{
    return value ? Json(*value) : Json();
}

Json orNull(const std::string& name) { return name.empty() ? Json() : Json(name); }

// Those of a whole line, behind others; lengths in a unit.
Json with(const LineNumbers& numbers, Json json, double unit = 1)
{
    const Topology& topology = numbers.topology;
    json["writhe"] = orNull(topology.writhe);
    json["twist"] = orNull(topology.twist);
    json["linkingNumber"] = orNull(topology.linkingNumber);
    json["gaussIntegral"] = orNull(topology.gaussIntegral);
    json["radiusOfGyration"] = numbers.radiusOfGyration / unit;
    json["contact"] = orNull(scaled(numbers.contact, 1 / unit));
    return json;
}

Json toJson(const std::vector<Link>& links)
{
    Json list = Json::array();
    for (const Link& link : links)
        list.push_back({link.first, link.second, orNull(link.number)});
    return list;
}

Json toJson(const std::vector<Findings::Measured>& all)
{
    Json list = Json::array();
    for (const Findings::Measured& measured : all)
        list.push_back({{"what", textOf(measured.measurement)},
                        {"kind", nameOf(measured.measurement.kind)},
                        {"name", orNull(measured.measurement.name)},
                        {"value", orNull(measured.value)},
                        {"unit", measured.unit}});
    return list;
}

// In the usual order.
Json pairParametersOf(const Dna& dna, double angstrom)
{
    Json rows = Json::array();
    for (const PairParameters& pair : pairsOf(dna))
        rows.push_back({pair.shear / angstrom, pair.stretch / angstrom, pair.stagger / angstrom,
                        pair.buckle, pair.propeller, pair.opening});
    return rows;
}

Json stepParametersOf(const Dna& dna, double angstrom)
{
    Json rows = Json::array();
    for (const StepParameters& step : stepsOf(dna))
        rows.push_back({step.shift / angstrom, step.slide / angstrom, step.rise / angstrom,
                        step.tilt, step.roll, step.twist});
    return rows;
}

Json toJson(const Rod& rod)
{
    const CurveNumbers numbers = measure(rod.points, rod.isClosed);
    Json scalars = Json::array();
    for (const Scalar& scalar : rod.scalars)
        scalars.push_back(scalar.name);
    return {{"name", orNull(rod.name)}, {"points", numbers.points},
            {"length", numbers.length}, {"endToEnd", numbers.endToEnd},
            {"closed", rod.isClosed},   {"frames", rod.hasFrames ? "given" : "made"},
            {"scalars", scalars}};
}

Json toJson(const Birod& birod)
{
    const CurveNumbers numbers = measure(birod.points, false);
    return {{"points", numbers.points}, {"length", numbers.length}, {"endToEnd", numbers.endToEnd}};
}

Json toJson(const Dna& dna, double angstrom)
{
    const DnaNumbers numbers = numbersOf(dna);
    return {{"name", orNull(dna.name)},
            {"pairs", dna.bases.size()},
            {"sequence", orNull(knownSequence(dna))},
            {"closed", dna.isClosed},
            {"length", numbers.length / angstrom},
            {"endToEnd", numbers.endToEnd / angstrom},
            {"meanTwist", orNull(numbers.meanTwist)},
            {"totalTwist", orNull(numbers.totalTwist)},
            {"meanRise", orNull(scaled(numbers.meanRise, 1 / angstrom))},
            {"fitRms", dna.standard ? Json(dna.standard->rms) : Json()},
            {"stepTwistTurns", orNull(scaled(numbers.totalTwist, 1.0 / 360))},
            {"pairParameters", pairParametersOf(dna, angstrom)},
            {"stepParameters", stepParametersOf(dna, angstrom)}};
}

template <typename Items, typename Tell>
Json listOf(const Items& items, const std::vector<LineNumbers>& numbers, Tell tell, double unit = 1)
{
    Json list = Json::array();
    for (std::size_t i = 0; i < items.size(); ++i)
        list.push_back(with(numbers[i], tell(items[i]), unit));
    return list;
}

Json filesOf(const Findings& findings)
{
    Json list = Json::array();
    for (const Findings::File& file : findings.files)
        list.push_back({{"file", file.name}, {"format", file.format}, {"frames", file.frames}});
    return list;
}

// One file's part of the findings, and of what they are compared with, if that is wanted.
bool readInto(Findings& findings, const FileGroup& group, bool areSeveral, ReadOptions options,
              ReadReport& report, Configuration* first)
{
    options.topology = group.topology;
    std::unique_ptr<Source> source = Source::open(group.path, report);
    const Format* const format = source ? formatOf(*source, options, report) : nullptr;
    if (!format)
        return false;
    const std::string name = source->getName();
    const std::unique_ptr<Series> series = openSeries(std::move(source), *format, options, report);
    if (!series)
        return false;
    const bool isInEveryFrame = areSeveral && series->count() == 1;
    const std::size_t frame = isInEveryFrame ? 0 : findings.frame;
    LoadedFrame loaded = series->load(frame, options.goOn);
    if (!loaded.configuration) {
        report.error =
            (findings.frame >= series->count() ? onOneLine(name) + ": " : "") + loaded.error;
        return false;
    }
    findings.files.push_back({name, format->name, series->count()});
    if (first && frame == 0)
        append(*first, Configuration(*loaded.configuration));
    else if (first)
        if (std::optional<ReferenceFrame> found = findReference(*series, options.goOn))
            append(*first, std::move(found->configuration));
    append(findings.data, std::move(*loaded.configuration));
    report.notices.insert(report.notices.end(), loaded.notices.begin(), loaded.notices.end());
    return true;
}

// What a file brings under the name of one of the scalars that this adds stays.
void compare(Findings& findings, const Configuration& reference, ReadReport& report)
{
    std::set<std::string> ofFiles;
    for (const Track& track : tracksOf(findings.data))
        for (const Scalar& scalar : givenScalars(track))
            ofFiles.insert(scalar.name);
    const std::string notice = addComparison(findings.data, reference);
    if (!notice.empty())
        report.notices.push_back(notice);
    for (const Quantity& quantity : comparisonQuantities())
        if (ofFiles.count(quantity.name) == 0)
            findings.compared.insert(quantity.name);
}

} // namespace

std::optional<Findings> findIn(const std::vector<std::string>& files, std::size_t frame,
                               const ReadOptions& options, ReadReport& report,
                               const std::optional<Comparison>& comparison)
{
    Findings findings;
    findings.frame = frame;
    Configuration first;
    const bool isWithFirst = comparison && !comparison->reference;
    const std::vector<FileGroup> groups = groupFiles(files);
    for (const FileGroup& group : groups)
        if (!readInto(findings, group, groups.size() > 1, options, report,
                      isWithFirst ? &first : nullptr))
            return {};
    if (comparison)
        compare(findings, isWithFirst ? first : *comparison->reference, report);
    findings.notices = report.notices;
    return findings;
}

std::string describe(const Findings& findings, double angstrom, double mostEdgePairs)
{
    const Configuration& data = findings.data;
    const AllNumbers numbers = numbersOf(data, mostEdgePairs);
    std::string text;
    for (const Findings::File& file : findings.files)
        text += describe(file) + "\n";
    const bool hasFrames = std::any_of(findings.files.begin(), findings.files.end(),
                                       [](const auto& file) { return file.frames > 1; });
    if (hasFrames)
        text += "frame " + std::to_string(findings.frame) + ", counted from 0:\n";
    for (std::size_t i = 0; i < data.rods.size(); ++i)
        text += titled("rod", i, data.rods[i].name) + describe(data.rods[i]) +
                inWords(numbers.rods[i], 1, "") + "\n";
    for (std::size_t i = 0; i < data.birods.size(); ++i)
        text += titled("birod", i, "") + inWords(measure(data.birods[i].points, false), false) +
                inWords(numbers.birods[i], 1, "") + "\n";
    for (std::size_t i = 0; i < data.dnas.size(); ++i)
        text += titled("DNA", i, data.dnas[i].name) + describe(data.dnas[i], angstrom) +
                inWords(numbers.dnas[i], angstrom, " Å") + "\n";
    text += inWords(numbers.links);
    if (!data.loneBases.empty())
        text += counted(data.loneBases.size(), "base") + " in no pair\n";
    const std::pair<const char*, std::size_t> glyphs[] = {{"marker", data.markers.size()},
                                                          {"frame glyph", data.frames.size()},
                                                          {"arrow", data.arrows.size()}};
    for (const auto& [noun, count] : glyphs)
        if (count > 0)
            text += counted(count, noun) + "\n";
    for (const Findings::Measured& measured : findings.measured)
        text += onOneLine(namedTextOf(measured.measurement)) + ": " + measured.words + "\n";
    for (const std::string& notice : noticesOf(findings, slowLeftOut(numbers)))
        text += "note: " + notice + "\n";
    return text;
}

std::string toJson(const Findings& findings, double angstrom, double mostEdgePairs)
{
    const Configuration& data = findings.data;
    const AllNumbers numbers = numbersOf(data, mostEdgePairs);
    const Json json = {
        {"files", filesOf(findings)},
        {"frame", findings.frame},
        {"rods", listOf(data.rods, numbers.rods, [](const Rod& rod) { return toJson(rod); })},
        {"birods",
         listOf(data.birods, numbers.birods, [](const Birod& birod) { return toJson(birod); })},
        {"dna", listOf(
                    data.dnas, numbers.dnas, [&](const Dna& dna) { return toJson(dna, angstrom); },
                    angstrom)},
        {"links", numbers.areSlowLeftOut ? Json() : toJson(numbers.links)},
        {"unpairedBases", data.loneBases.size()},
        {"measurements", toJson(findings.measured)},
        {"notices", noticesOf(findings, slowLeftOut(numbers))}};
    // A name need not be UTF-8: what is not is replaced.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace strandview
