// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_TOPOLOGY_H
#define STRANDVIEW_ANALYSIS_TOPOLOGY_H

#include <optional>

#include <strandview/analysis/tracks.h>
#include <strandview/analysisExport.h>

namespace strandview {

/// How a line winds around itself, and a ribbon around it.
struct Topology
{
    std::optional<double> writhe;        ///< of a closed one (gaussIntegral.h)
    std::optional<double> gaussIntegral; ///< the same sum of an open one, which is no writhe
    std::optional<double> twist;         ///< Tw of the ribbon, in turns (ribbonTwist.h)
    /// Lk = Tw + Wr of a closed one, whose ribbon is closed, too (G. Calugareanu, Rev. Math. Pures
    /// Appl. 4, 1959, 5; J. H. White, Am. J. Math. 91, 1969, 693). Nothing of one that meets
    /// itself: then the sum is no whole number within 1e-6.
    std::optional<long long> linkingNumber;
};

/// The ribbon is along d1 of a rod and of each strand, from the average of a birod to its strand 1,
/// and from the pairs of a DNA along d2, to strand 1. The frames of a rod that came without, which
/// were made, have no twist. Time grows with the square of the number of points, as of
/// gaussIntegral(). Fewer than two points have nothing. May be called from any thread.
STRANDVIEW_ANALYSIS_EXPORT Topology topologyOf(const Track& track);

/// How many pairs of edges topologyOf() of a line goes through, and writhe_density of scalars.h,
/// too: what their time grows with. 5e8 take about two seconds.
STRANDVIEW_ANALYSIS_EXPORT double edgePairsOf(const Track& track);

/// Tw of that ribbon alone, in turns: nothing where topologyOf() has none. Takes little time.
STRANDVIEW_ANALYSIS_EXPORT std::optional<double> ribbonTwistOf(const Track& track);

} // namespace strandview

#endif
