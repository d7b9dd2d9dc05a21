// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_DNADRAWING_H
#define STRANDVIEW_DRAWING_DNADRAWING_H

#include <cstdint>
#include <vector>

#include <Inventor/SbMatrix.h>

#include "drawing/GlyphDrawing.h"
#include "drawing/drawNearestFirst.h"

class SoGroup;
class SoSeparator;
class SoState;
class SoSwitch;
struct PlacedNode;
template <typename Group>
class PlacedGroup;

/// Draws the pairs of a DNA from vertex buffers instead of traversing their graph: one small draw
/// per placed base or box, or under a program that can be followed one per kind. Where many of them
/// lie one behind the other, the nearest come first, and what they hide is not drawn.
///
/// The graph stays the only description of what is shown. It is read again where its nodes'
/// ids tell that it changed: as glyphs, what the pairs share, and placements, one matrix and
/// glyph per pair and frame, from the places themselves while their nodes are not made. What is not
/// understood is not drawn here: draw() then says so, and the graph is to be traversed.
class DnaDrawing
{
public:
    /// Whether spheres get as many corners as they need to look round where they are, and no
    /// more, or as many as Coin gives them. At first Coin's.
    void setRound(bool round) { roundSpheres = round; }
    bool isRound() const { return roundSpheres; }

    /// Draws what stands below root, whose children are to be the two groups: separators of
    /// a transform and what it places. Whether it was drawn.
    bool draw(SoGLRenderAction* action, SoGroup* root, const PlacedGroup<SoSwitch>* boxes,
              const PlacedGroup<SoSeparator>* bases);

private:
    using Placed = GlyphDrawing::Placed;

    struct Placements
    {
        std::vector<Placed> placed;
        std::vector<const SoNode*> transforms; // of each; none while they are not made
    };

    bool update(SoGroup* root, const PlacedGroup<SoSwitch>* boxes,
                const PlacedGroup<SoSeparator>* bases);
    template <typename Group>
    bool updatePlacements(const PlacedGroup<Group>* group, Placements& placements);
    bool readGraph(const SoGroup* group, Placements& placements);
    bool readPlaces(const std::vector<PlacedNode>& places, Placements& placements);
    int findGlyph(SoNode* node);
    void drawPlacements(const Placements& placements) const;
    void measure();
    int findCorners(SoState* state) const;
    bool setCorners(int newCorners);
    void drawAll(SoState* state) const;
    std::vector<InView<const Placed*>> findSeen(const Placements& placements,
                                                const DepthGrid& grid) const;
    void drawNearestFirst(std::vector<InView<const Placed*>>& seen, DepthGrid& grid,
                          double& unread) const;

    GlyphDrawing glyphs;
    std::vector<SoNode*> placed; // the node of each glyph
    Placements boxPlacements;
    Placements basePlacements;
    GlyphDrawing::Ball bound = {}; // about all that is shown
    double area = 0;               // of all of it seen one beside the other
    std::uint64_t seenId = 0;      // the root's node id when the graph was read last
    bool drawable = false;
    bool roundSpheres = false;
    int corners = 0; // of a sphere; 0: Coin's
    bool boxesShown = false;
};

#endif
