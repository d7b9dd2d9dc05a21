// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_TRACKS_H
#define STRANDVIEW_ANALYSIS_TRACKS_H

#include <cstddef>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// A line of places that numbers can be told of: a rod, the average or a strand of a birod, the
/// pairs or a strand of a DNA. It looks at data that outlive it, and copies none.
struct Track
{
    enum class Kind { ROD, BIROD_AVERAGE, BIROD_STRAND, DNA_PAIRS, DNA_STRAND };

    Kind kind;
    std::size_t datum; ///< which of the rods, birods or DNAs, from 0
    int strand;        ///< 1 or 2, else 0
    const std::vector<algebra3d::Vector3<double>>& points;
    const std::vector<algebra3d::Quaternion<double>>& rotations; ///< one per point
    bool isClosed; ///< then the last point of a rod is the first one again, that of DNA is another
    double angstrom = 1;          ///< in the unit of the points, for lengths of DNA in ångström
    const Rod* rod = nullptr;     ///< of a rod
    const Dna* dna = nullptr;     ///< of DNA
    const Birod* birod = nullptr; ///< of a birod
};

/// Which of the lines of a configuration, for who keeps no track of it.
struct LineId
{
    Track::Kind kind = Track::Kind::ROD;
    std::size_t datum = 0;
    int strand = 0;

    bool operator==(const LineId& other) const
    {
        return kind == other.kind && datum == other.datum && strand == other.strand;
    }
};

STRANDVIEW_ANALYSIS_EXPORT LineId idOf(const Track& track);

/// That of some tracks, or null.
STRANDVIEW_ANALYSIS_EXPORT const Track* findTrack(const std::vector<Track>& tracks,
                                                  const LineId& id);

/// "rod 2", with a name "rod 2 'arm'", "birod 1, average", "birod 1, strand 2", "DNA 1, pairs",
/// "DNA 1, strand 1".
STRANDVIEW_ANALYSIS_EXPORT std::string titleOf(const Track& track);

/// The letter of each row: of the pairs and strand 1 of a DNA those of strand 1, of strand 2 their
/// complements, in the order of the pairs. Empty of all others.
STRANDVIEW_ANALYSIS_EXPORT std::string basesOf(const Track& track);

/// Its points as a curve whose last point is the first one again if it is closed.
STRANDVIEW_ANALYSIS_EXPORT std::vector<algebra3d::Vector3<double>> curveOf(const Track& track);

STRANDVIEW_ANALYSIS_EXPORT Track trackOf(const Rod& rod, std::size_t index = 0);

/// All lines of a configuration: rods, then of each birod its average and two strands, then of each
/// DNA its pairs, by the frames for numbers (pairFrames()), and two strands. Those are always
/// there, in this order.
STRANDVIEW_ANALYSIS_EXPORT std::vector<Track> tracksOf(const Configuration& configuration,
                                                       double angstrom = 1);

} // namespace strandview

#endif
