// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/lineNumbers.h>

#include <algorithm>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/shape.h>
#include <strandview/analysis/topology.h>

namespace strandview {

namespace {

using Number = std::optional<double>;

// A line, and what several of its numbers need, found when the first of them does.
class MeasuredLine
{
public:
    explicit MeasuredLine(const Track& trackToMeasure)
        : track(trackToMeasure), curve(curveOf(trackToMeasure))
    {}

    const Topology& topology()
    {
        if (!knownTopology)
            knownTopology = topologyOf(track);
        return *knownTopology;
    }

    // Of the pairs of a DNA, else nothing.
    const std::optional<DnaNumbers>& steps()
    {
        if (!knownSteps && track.kind == Track::Kind::DNA_PAIRS)
            knownSteps = numbersOf(*track.dna);
        return knownSteps;
    }

    const Track& track;
    const std::vector<algebra3d::Vector3<double>> curve;

private:
    std::optional<Topology> knownTopology;
    std::optional<DnaNumbers> knownSteps;
};

struct Row
{
    LineQuantity quantity;
    Number (*formula)(MeasuredLine& line);
};

template <double (*formula)(const std::vector<algebra3d::Vector3<double>>& curve)>
Number ofCurve(MeasuredLine& line)
{
    return line.curve.empty() ? Number() : formula(line.curve);
}

template <std::optional<double> Topology::*member>
Number ofTopology(MeasuredLine& line)
{
    return line.topology().*member;
}

template <std::optional<double> DnaNumbers::*member>
Number ofSteps(MeasuredLine& line)
{
    return line.steps() ? *line.steps().*member : Number();
}

Number contact(MeasuredLine& line)
{
    const std::optional<Contact> nearest = contactOf(line.curve);
    return nearest ? Number(nearest->distance) : Number();
}

Number linkingNumberOf(MeasuredLine& line)
{
    const std::optional<long long> link = line.topology().linkingNumber;
    return link ? Number(double(*link)) : Number();
}

Number meanRise(MeasuredLine& line)
{
    const Number rise = ofSteps<&DnaNumbers::meanRise>(line);
    return rise ? Number(*rise / line.track.angstrom) : Number();
}

// Without what else topologyOf() finds, which takes long.
Number twist(MeasuredLine& line) { return ribbonTwistOf(line.track); }

const std::vector<Row>& rows()
{
    static const std::vector<Row> all = {
        {{"length", "length", "of all edges", true}, ofCurve<lengthOf>},
        {{"endToEnd", "length", "from the first point to the last", true}, ofCurve<endToEndOf>},
        {{"radiusOfGyration", "length", "root of the mean square of distances from the mean", true},
         ofCurve<radiusOfGyrationOf>},
        {{"contact", "length", "where the curve comes nearest to itself", true}, contact},
        {{"writhe", "turns", "of a closed curve", false}, ofTopology<&Topology::writhe>},
        {{"gaussIntegral", "turns", "the same sum of an open curve", false},
         ofTopology<&Topology::gaussIntegral>},
        {{"twist", "turns", "of the ribbon along the curve", true}, twist},
        {{"linkingNumber", "", "of a closed curve and its ribbon", false}, linkingNumberOf},
        {{"totalTwist", "°", "sum of the twists of a DNA's steps", true},
         ofSteps<&DnaNumbers::totalTwist>},
        {{"meanTwist", "°", "of a DNA's steps", true}, ofSteps<&DnaNumbers::meanTwist>},
        {{"meanRise", "Å", "of a DNA's steps", true}, meanRise},
    };
    return all;
}

const Row* findRow(const std::string& name)
{
    const auto found = std::find_if(rows().begin(), rows().end(),
                                    [&name](const Row& row) { return row.quantity.name == name; });
    return found == rows().end() ? nullptr : &*found;
}

} // namespace

const std::vector<LineQuantity>& lineQuantities()
{
    static const std::vector<LineQuantity> all = [] {
        std::vector<LineQuantity> quantities;
        for (const Row& row : rows())
            quantities.push_back(row.quantity);
        return quantities;
    }();
    return all;
}

const LineQuantity* findLineQuantity(const std::string& name)
{
    const Row* const row = findRow(name);
    return row ? &row->quantity : nullptr;
}

std::vector<std::optional<double>> lineNumbersOf(const Track& track,
                                                 const std::vector<std::string>& names)
{
    MeasuredLine line(track);
    std::vector<std::optional<double>> numbers;
    for (const std::string& name : names) {
        const Row* const row = findRow(name);
        numbers.push_back(row ? row->formula(line) : std::nullopt);
    }
    return numbers;
}

} // namespace strandview
