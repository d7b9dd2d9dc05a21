// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_COLOURING_H
#define STRANDVIEW_APP_COLOURING_H

#include <optional>
#include <string>
#include <vector>

#include <ColourMapper.h>

#include "Configuration.h"
#include "Options.h"

/// A scalar shown as colours: its name, how its values are mapped, and the values, one
/// per point of each rod.
struct Colouring
{
    std::string name;
    ColourMapper mapper;
    std::vector<std::vector<double>> values;
};

/// The colouring that the options ask for by name. Its limits are those of all values
/// unless given; around a constant they are half a unit away. Nothing and one line in
/// `error` if a rod has no such scalar.
std::optional<Colouring> makeColouring(const Options& options, const Configuration& configuration,
                                       std::string& error);

#endif
