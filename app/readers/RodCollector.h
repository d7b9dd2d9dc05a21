// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_READERS_RODCOLLECTOR_H
#define STRANDVIEW_APP_READERS_RODCOLLECTOR_H

#include <cstddef>
#include <optional>
#include <string>

#include "Configuration.h"
#include "readers/ReadReport.h"

/// Completes the rods of one file, and counts what it did for the report.
class RodCollector
{
public:
    /// Takes a rod whose points and rotations have passed RodChecks.h, all sequences
    /// of one length; the rotations may be missing altogether.
    ///
    /// A point coincident with the one before it, or nearer to it than smallestEdge(),
    /// is left out, with its rotation and scalars. Missing rotations come by parallel transport; of
    /// given ones a notice tells if d3 does not follow the points. "found ..., expected ..." if
    /// fewer than two points are left, else nothing.
    std::string add(Rod rod);

    std::size_t getRodCount() const { return configuration.rods.size(); }

    /// All rods, and a notice for each thing done; nothing and an error if there are none.
    std::optional<Configuration> finish(const std::string& fileName, ReadReport& report);

private:
    Configuration configuration;
    std::size_t mergedPoints = 0;
    std::size_t transportedRods = 0;
    std::size_t strayingRods = 0;
};

#endif
