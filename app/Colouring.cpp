// SPDX-License-Identifier: GPL-3.0-or-later
#include "Colouring.h"

#include <algorithm>
#include <limits>

#include "Scalars.h"

namespace {

std::string availableScalars(const Rod& rod)
{
    std::string names;
    for (const Scalar& scalar : rod.scalars)
        names += scalar.name + ", ";
    for (const std::string& name : builtInScalars()) {
        const bool named = std::any_of(rod.scalars.begin(), rod.scalars.end(),
                                       [&name](const Scalar& s) { return s.name == name; });
        if (!named)
            names += name + ", ";
    }
    names.resize(names.size() - 2);
    return names;
}

ColourMapper makeMapper(const Options& options, const std::vector<std::vector<double>>& values)
{
    double min = std::numeric_limits<double>::infinity();
    double max = -min;
    for (const std::vector<double>& rod : values) {
        for (double value : rod) {
            min = std::min(min, value);
            max = std::max(max, value);
        }
    }
    if (min == max) {
        min -= 0.5;
        max += 0.5;
    }
    ColourMapper mapper(options.rangeMin.value_or(min), options.rangeMax.value_or(max));
    if (!options.ramp.empty()) {
        std::vector<ColourMapper::Colour> ramp;
        for (const Colour& colour : options.ramp)
            ramp.emplace_back(double(colour.red), double(colour.green), double(colour.blue));
        mapper.setColours(ramp);
    }
    return mapper;
}

} // namespace

std::optional<Colouring> makeColouring(const Options& options, const Configuration& configuration,
                                       std::string& error)
{
    if (configuration.rods.empty()) {
        error = "--colour-by: found no rod to colour, expected one";
        return std::nullopt;
    }
    Colouring colouring;
    colouring.name = *options.colourBy;
    for (const Rod& rod : configuration.rods) {
        std::optional<std::vector<double>> values = findScalar(rod, colouring.name);
        if (!values) {
            error = rod.origin + ": found no scalar '" + colouring.name + "', expected one of " +
                    availableScalars(rod);
            return std::nullopt;
        }
        colouring.values.push_back(std::move(*values));
    }
    colouring.mapper = makeMapper(options, colouring.values);
    return colouring;
}
