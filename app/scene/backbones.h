// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BACKBONES_H
#define STRANDVIEW_APP_SCENE_BACKBONES_H

#include <cstddef>
#include <set>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/model/Configuration.h>

#include "request/Options.h"

namespace strandview {

/// What belongs together in a configuration: the rods, DNA and bases of one molecule.
class Molecules
{
public:
    explicit Molecules(const Configuration& configuration);

    /// Whether a rod is a backbone of that molecule: then no ideal one is drawn.
    bool hasBackbone(std::size_t molecule) const { return withBackbone.count(molecule) > 0; }

    /// The colour, counted from 0, of all that is of a molecule; of what is of none that of its
    /// index within its kind, behind those of all molecules.
    std::size_t colourOf(std::size_t molecule, std::size_t index) const
    {
        return molecule > 0 ? molecule - 1 : largest + index;
    }

private:
    std::set<std::size_t> withBackbone;
    std::size_t largest = 0;
};

/// The strands of a double one, counted as in what is told of them.
enum class Strand { FIRST, SECOND };

/// Where the phosphorus atom of B-DNA would be of a strand's base in a pair, counted from 0. In the
/// data's coordinates, in which an ångström has the length `angstrom`.
algebra3d::Vector3<double> idealPhosphorus(const Dna& dna, Strand strand, std::size_t pair,
                                           double angstrom);

/// Where those of a whole strand would be: one for each base, from 5' to 3', which is along
/// the pairs in strand 1 and against them in strand 2, and a last one where the next base's would
/// be. Of a closed DNA the last point is the first one again. As idealPhosphorus().
std::vector<algebra3d::Vector3<double>> idealBackbone(const Dna& dna, Strand strand,
                                                      double angstrom);

/// Points without those that are no points of their own to the formulas of curves.
std::vector<algebra3d::Vector3<double>>
withoutCoincident(const std::vector<algebra3d::Vector3<double>>& points);

/// Of all rods and birods, and of the ideal backbones that are drawn in this look.
long long countSegments(const Configuration& configuration, const DnaLook& look);

} // namespace strandview

#endif
