// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_COMPARISON_H
#define STRANDVIEW_ANALYSIS_COMPARISON_H

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <strandview/analysis/scalars.h>
#include <strandview/analysisExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/SeriesAround.h>

namespace strandview {

/// The names of the scalars that a comparison adds.
constexpr std::array<const char*, 5> COMPARISON_SCALARS{"reference_distance", "reference_rotation",
                                                        "shear1", "shear2", "extension"};

/// What they mean, in this order.
STRANDVIEW_ANALYSIS_EXPORT const std::vector<Quantity>& comparisonQuantities();

/// That of a name, or null.
STRANDVIEW_ANALYSIS_EXPORT const Quantity* findComparisonQuantity(const std::string& name);

/// Adds scalars that compare rods, birods and DNA with those of the same index in a reference,
/// where they have as many points:
///
/// reference_distance: from each point to that of the reference, once the whole of the
/// configuration is superposed on it (findSuperposition()). reference_rotation: the angle between
/// the two frames then, in degrees, of what has frames of its own. Along rods and the averages of
/// birods that have frames also shear1, shear2 and extension: shearsOfElements() with the lengths
/// that the elements have in the reference, brought to points as the strains are (curveNumbers.h).
///
/// What a file brings under one of these names stays. Returns a line that says what has no
/// counterpart, or nothing. May be called from any thread.
STRANDVIEW_ANALYSIS_EXPORT std::string addComparison(Configuration& configuration,
                                                     const Configuration& reference);

/// A series whose frames are compared with a configuration, or without one with the first frame of
/// the series that can be loaded, of the first hundred. That is their reference.
class STRANDVIEW_ANALYSIS_EXPORT ComparedSeries : public SeriesAround
{
public:
    ComparedSeries(std::unique_ptr<Series> seriesToCompare,
                   std::optional<Configuration> configurationToCompareWith);

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::shared_ptr<const Configuration> reference; ///< once it was needed
};

} // namespace strandview

#endif
