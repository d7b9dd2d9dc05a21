// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_SUPERPOSE_H
#define STRANDVIEW_ANALYSIS_SUPERPOSE_H

#include <memory>
#include <optional>

#include <strandview/analysis/fitFrame.h>
#include <strandview/analysisExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/SeriesAround.h>

namespace strandview {

/// The rigid motion that takes a configuration nearest to another, by the sum of the squares of the
/// distances of their points (fitFrame()): those of rods, birods and DNA, and lone bases, that have
/// as many in both, index by index. Nothing if nothing has. May be called from any thread.
STRANDVIEW_ANALYSIS_EXPORT std::optional<FittedFrame>
findSuperposition(const Configuration& moved, const Configuration& reference);

/// The way back.
STRANDVIEW_ANALYSIS_EXPORT FittedFrame inverse(const FittedFrame& motion);

/// Turns all that a configuration has about the origin, and shifts it by motion.point.
STRANDVIEW_ANALYSIS_EXPORT void move(Configuration& configuration, const FittedFrame& motion);

/// The first frame of a series that can be loaded, of the first hundred, and which that is; nothing
/// if none can, or if goOn, which is asked where it is given, stops it.
struct ReferenceFrame
{
    std::size_t frame = 0;
    Configuration configuration;
};
STRANDVIEW_ANALYSIS_EXPORT std::optional<ReferenceFrame> findReference(Series& series,
                                                                       const Series::GoOn& goOn);

/// A series with each frame superposed on the first one that can be loaded, of the first hundred,
/// which stays as it is, bit for bit. A frame that has nothing in common with it stays where it is,
/// with a notice. It asks goOn between its steps, too.
class STRANDVIEW_ANALYSIS_EXPORT SuperposedSeries : public SeriesAround
{
public:
    explicit SuperposedSeries(std::unique_ptr<Series> seriesToMove);

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::optional<ReferenceFrame> reference; ///< once it was needed
};

} // namespace strandview

#endif
