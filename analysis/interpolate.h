// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_INTERPOLATE_H
#define STRANDVIEW_ANALYSIS_INTERPOLATE_H

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include <strandview/analysisExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/SeriesAround.h>

namespace strandview {

/// A configuration between two others of as many things, each of as many points, and of the same
/// bases: what has the same index goes from the one to the other. At `share` 0 it is the first one,
/// at 1 the other.
///
/// Points and other numbers go straight, rotations the shorter way at constant angular velocity (K.
/// Shoemake, Animating rotation with quaternion curves, SIGGRAPH 1985), and stay of norm 1. Frames
/// that were made for a rod are made again, for its points. What is no number is as in the first
/// one; scalars are those that both have.
///
/// Nothing, and in `refusal` "found 3 points in rod 1, expected 4", if they differ in what has to
/// be alike, or if neighbouring points of a curve would be in one place. May be called from any
/// thread.
STRANDVIEW_ANALYSIS_EXPORT std::optional<Configuration>
interpolate(const Configuration& from, const Configuration& to, double share, std::string& refusal);

/// A series with so many more frames between each two of another one, evenly in time: frame
/// k (steps + 1) is frame k of that one. A frame between two that interpolate() refuses fails as
/// "between frames 3 and 4: found ...", counted as in the other series; one beside a frame that
/// cannot be loaded, as that one does.
class STRANDVIEW_ANALYSIS_EXPORT InterpolatedSeries : public SeriesAround
{
public:
    InterpolatedSeries(std::unique_ptr<Series> seriesToFill, std::size_t framesBetween);

    std::size_t count() const override;
    /// Nothing between two frames of which one has none.
    std::optional<double> time(std::size_t frame) const override;

    /// Why the first of the frames that interpolate() has refused so far failed; empty before.
    const std::string& getRefusal() const { return refusal; }

private:
    struct End
    {
        std::size_t frame; ///< of the other series
        LoadedFrame loaded;
    };

    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;
    const LoadedFrame& loadEnd(std::size_t frame, const GoOn& goOn);

    const std::size_t steps; ///< from a frame to the next one
    /// The last two that were loaded, for the next frames between them: even and odd ones.
    std::array<std::optional<End>, 2> ends;
    std::string refusal;
};

} // namespace strandview

#endif
