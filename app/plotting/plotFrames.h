// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PLOTTING_PLOTFRAMES_H
#define STRANDVIEW_APP_PLOTTING_PLOTFRAMES_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <strandview/analysis/tracks.h>
#include <strandview/model/Configuration.h>

#include "plotting/Plot.h"
#include "request/PlotRequest.h"
#include "scene/Style.h"

namespace strandview {

/// The lines that are plotted: rods, averages of birods, pairs of DNA; backbones only where there
/// is nothing else. In the order of tracksOf(); they look at the configuration.
std::vector<Track> plottedTracks(const Configuration& configuration, double angstrom);

/// That of these tracks, or null.
const Track* findTrack(const std::vector<Track>& tracks, const LineId& id);

/// The names of all scalars that one of them has at least, in the order of scalarNames().
std::vector<std::string> plottableScalars(const Configuration& configuration);

/// The scalars that are plotted where none are asked for: curvature and kappa3 of rods and birods,
/// without frames torsion; roll and twist of DNA.
std::vector<std::string> standardScalars(const Configuration& configuration);

/// The scalars of a request along the lines of one frame, in the colours that they are shown in.
/// Nothing, and one line in `error`, if no line has a scalar of that name.
std::optional<Plot> plotOf(const Configuration& configuration, const Style& style,
                           const PlotRequest& request, std::string& error);

/// A line of one frame with a panel for each of these scalars, for whoever has their values from
/// elsewhere: without x and values. Nothing if there is no such line.
std::optional<Plot> outlineOf(const LineId& id, const Configuration& configuration,
                              const Style& style, const std::vector<std::string>& scalars);

/// Numbers of whole lines (lineNumbers.h), or with PlotRequest::at scalars of one of their places,
/// over the frames of a series, which are added in their order.
class TimePlot
{
public:
    explicit TimePlot(PlotRequest plotRequest);

    /// Over the frames' numbers, unless each frame has its time.
    void add(const Configuration& configuration, const Style& style, std::size_t frame,
             std::optional<double> time);
    /// A gap.
    void addMissing(std::size_t frame, std::optional<double> time);

    /// What was added. Nothing, and one line in `error`, if no frame has the numbers asked for.
    std::optional<Plot> finish(std::string& error) const;

private:
    void begin(const Configuration& configuration, const Style& style);
    std::size_t lineOf(const Track& track, const Configuration& configuration, const Style& style);
    std::vector<std::optional<double>> numbersOf(const Track& track) const;
    std::string faultOf(std::size_t panel) const;

    PlotRequest request;
    Plot plot; ///< its lines without x
    std::vector<double> frames, times;
    bool areTimed = true, hasBegun = false;
    std::vector<std::string> known; ///< the scalars of the first frame
    std::size_t places = 0;         ///< of the longest line that has one of the scalars
    bool areNumbered = false;       ///< from 1, as pairs are
};

/// One line about names that are no numbers of whole lines, or nothing.
std::string checkLineNumbers(const PlotRequest& request);

} // namespace strandview

#endif
