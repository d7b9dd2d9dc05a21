// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_ROWCOLOURS_H
#define STRANDVIEW_APP_SCENE_ROWCOLOURS_H

#include <array>
#include <memory>
#include <vector>

#include <ArcLengths.h>
#include <Inventor/SbColor.h>

class BiarcRibbonMesh;
class BiarcTubeMesh;

namespace strandview {

struct Colouring;
struct SceneGeometry;

/// Where the rows of a tube and of its ribbon are along their curves; shared with the meshes.
struct CurveRows
{
    bool operator==(const CurveRows& other) const
    {
        return tube == other.tube && ribbon == other.ribbon;
    }

    std::shared_ptr<const ArcLengths> tube, ribbon;
};

/// Of each rod, and of the average and the strands of each birod. For any thread, whatever becomes
/// of the meshes meanwhile.
struct RowsOfData
{
    std::vector<CurveRows> rods;
    std::vector<std::array<CurveRows, 3>> birods;
};

/// The colours of data of all rows of some curves, the rows of each tube before those of its
/// ribbon.
struct RowColours
{
    std::vector<CurveRows> curves; ///< whose rows they are; none if there are no colours
    std::unique_ptr<SbColor[]> colours;
    int count = 0;
};

/// In Coin's thread, if a node has the meshes.
CurveRows rowsOf(const BiarcTubeMesh& tube, const BiarcRibbonMesh& ribbon);
RowsOfData rowsOf(const SceneGeometry& geometry);

/// Those of curves whose points have these places; in any thread. Of a ribbon that cannot be drawn
/// there are some, too.
RowColours makeRowColours(const Colouring& colouring,
                          const std::vector<const std::vector<double>*>& places,
                          std::vector<CurveRows> curves);
/// Of all that the colouring has places of; they go with the geometry, which need not have
/// anything else. In any thread.
void addRowColours(const Colouring& colouring, const RowsOfData& rows, SceneGeometry& geometry);
/// The same of the geometry's own rows.
void addRowColours(const Colouring& colouring, SceneGeometry& geometry);

} // namespace strandview

#endif
