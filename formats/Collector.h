// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_COLLECTOR_H
#define STRANDVIEW_FORMATS_COLLECTOR_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// Completes what one file holds, and counts what it did for the report.
///
/// add() takes what has passed checks.h, with its sequences of one length. It answers
/// "found ..., expected ..." if there are too few points, else nothing.
class STRANDVIEW_FORMATS_EXPORT Collector
{
public:
    Collector() = default;
    /// Closes rods as ReadOptions::close asks for, but backbones of DNA.
    explicit Collector(const ReadOptions& options) : closes(options.close) {}

    /// The rotations may be missing altogether. They, and each of the scalars, may be one
    /// fewer than the points: then they belong to the elements between the points, and are
    /// taken to the points by the rules of elements.h.
    ///
    /// A point coincident with the one before it, or nearer to it than smallestEdge(),
    /// is left out, with its rotation and scalars; at least two must be left. Missing
    /// rotations come by parallel transport; of given ones a notice tells if d3 does not
    /// follow the points.
    ///
    /// A rod of at least three places whose last point is the first one again (model/points.h) is
    /// closed, and gets the first point there exactly. To one that is said to be closed, and to any
    /// whose ends are apart if all are to be closed, the first point is added at the end, with its
    /// rotation and scalars.
    std::string add(Rod rod);

    /// Rotations may be of elements, and points are left out, as of a rod: where any of the three
    /// curves has two in one place, from all of them. A notice tells if the average's d3 does not
    /// follow it.
    std::string add(Birod birod);

    /// Leaves out nothing. A notice tells if the pairs' d3 does not follow them.
    std::string add(Dna dna);
    /// Of at least one base each, without a copy where they are the first.
    void add(std::vector<Dna> dnas);

    /// Room for so many.
    void reserveRods(std::size_t count) { configuration.rods.reserve(count); }

    void add(Marker marker);
    void add(Frame frame);
    void add(Arrow arrow);
    void add(LoneBase base);
    /// All at once, without a copy where they are the first.
    void add(std::vector<LoneBase> bases);

    /// All of it, and a notice for each thing done; nothing and an error if there is
    /// nothing to show, with what could have been: "rod or DNA".
    std::optional<Configuration> finish(const std::string& fileName, const char* expected,
                                        ReadReport& report);

private:
    std::string close(Rod& rod, bool doEndsMeet);

    bool closes = false;
    Configuration configuration;
    std::size_t closedRods = 0;
    std::size_t mergedPoints = 0;
    std::size_t transportedRods = 0;
    std::size_t rodsOfElements = 0;
    std::size_t birodsOfElements = 0;
    std::size_t strayingRods = 0;
    std::size_t strayingBirods = 0;
    std::size_t strayingDnas = 0;
};

} // namespace strandview

#endif
