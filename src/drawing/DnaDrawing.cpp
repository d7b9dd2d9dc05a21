// SPDX-License-Identifier: GPL-3.0-or-later
#include "drawing/DnaDrawing.h"

#include <algorithm>
#include <cmath>

#include <Inventor/SbBox3f.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>

#include "detail/PlacedGroup.h"
#include "detail/exactly.h"

namespace {

// Of spheres that cover two pixels at most.
const int FEWEST_CORNERS = 4;
const double FEWEST_PIXELS = 2;

// Of round spheres; multiples of the smallest, so that few steps of a zoom compile them.
const int SMALLEST_CORNERS = 6;
const int MANY_CORNERS = 12; // with more of them what is out of view is not drawn
const int LARGEST_CORNERS = 96;
const double LARGEST_ERROR = 0.5; // of the outline, in pixels
const double LARGEST_TRIANGLES = 2e7;
const double ATOMS_PER_BASE = 9;

} // namespace

// Reading the graph

bool DnaDrawing::update(SoGroup* root, const PlacedGroup<SoSwitch>* boxes,
                        const PlacedGroup<SoSeparator>* bases)
{
    const std::uint64_t id = root->getNodeId();
    if (id == seenId)
        return drawable;
    placed.clear();
    drawable = root->getNumChildren() == 2 && root->getChild(0) == boxes &&
               root->getChild(1) == bases && isAllOrNothing(boxes) &&
               updatePlacements(boxes, boxPlacements) && updatePlacements(bases, basePlacements) &&
               glyphs.update(placed, corners);
    boxesShown = boxes->whichChild.getValue() == SO_SWITCH_ALL;
    seenId = id;
    if (!drawable)
        boxPlacements = basePlacements = {};
    measure();
    return drawable;
}

template <typename Group>
bool DnaDrawing::updatePlacements(const PlacedGroup<Group>* group, Placements& placements)
{
    return group->areMade() ? readGraph(group, placements)
                            : readPlaces(group->getPlaced(), placements);
}

bool DnaDrawing::readPlaces(const std::vector<PlacedNode>& places, Placements& placements)
{
    placements.placed.resize(places.size());
    placements.transforms.clear();
    for (std::size_t i = 0; i < places.size(); ++i) {
        const int glyph = findGlyph(places[i].node);
        if (glyph < 0)
            return false;
        placements.placed[i].glyph = std::uint32_t(glyph);
        placements.placed[i].matrix = matrixOf(places[i]);
    }
    return true;
}

// Matrices are made again only where the transform is another one, or changed.
bool DnaDrawing::readGraph(const SoGroup* group, Placements& placements)
{
    const int n = group->getNumChildren();
    placements.placed.resize(std::size_t(n));
    placements.placed.shrink_to_fit();
    placements.transforms.resize(std::size_t(n));
    for (int i = 0; i < n; ++i) {
        const auto* separator = exactly<SoSeparator>(group->getChild(i));
        if (!separator || separator->getNumChildren() != 2)
            return false;
        const auto* transform = exactly<SoTransform>(separator->getChild(0));
        if (!transform)
            return false;
        Placed& placed = placements.placed[std::size_t(i)];
        const int glyph = findGlyph(separator->getChild(1));
        if (glyph < 0)
            return false;
        placed.glyph = std::uint32_t(glyph);
        const SoNode*& read = placements.transforms[std::size_t(i)];
        if (read == transform && transform->getNodeId() <= seenId)
            continue;
        read = transform;
        placed.matrix.setTransform(
            transform->translation.getValue(), transform->rotation.getValue(),
            transform->scaleFactor.getValue(), transform->scaleOrientation.getValue(),
            transform->center.getValue());
    }
    return true;
}

// Nine nodes are shared; with many more the graph is not ours any more.
int DnaDrawing::findGlyph(SoNode* node)
{
    const auto found = std::find(placed.begin(), placed.end(), node);
    if (found != placed.end())
        return int(found - placed.begin());
    if (placed.size() >= 16)
        return -1;
    placed.push_back(node);
    return int(placed.size()) - 1;
}

// What is needed to find out quickly that hardly anything lies behind anything.
void DnaDrawing::measure()
{
    SbBox3f box;
    double reach = 0;
    area = 0;
    for (const auto* placements : {&boxPlacements, &basePlacements}) {
        if (placements == &boxPlacements && !boxesShown)
            continue;
        const bool areRigid = placements->transforms.empty();
        for (const Placed& placed : placements->placed) {
            const GlyphDrawing::Ball& ball = glyphs.getBound(placed.glyph);
            const double stretch = areRigid ? 1 : DepthGrid::stretchOf(placed.matrix);
            SbVec3f centre;
            placed.matrix.multVecMatrix(ball.centre, centre);
            box.extendBy(centre);
            reach = std::max(reach, ball.radius * stretch);
            area += glyphs.getArea(placed.glyph) * stretch * stretch;
        }
    }
    if (box.isEmpty())
        bound = {};
    else
        bound = {box.getCenter(), float((box.getMax() - box.getCenter()).length() + reach)};
}

bool DnaDrawing::setCorners(int newCorners)
{
    corners = newCorners;
    return glyphs.update(placed, corners);
}

// Drawing

bool DnaDrawing::draw(SoGLRenderAction* action, SoGroup* root, const PlacedGroup<SoSwitch>* boxes,
                      const PlacedGroup<SoSeparator>* bases)
{
    SoState* const state = action->getState();
    return GlyphDrawing::canDraw(state) && update(root, boxes, bases) &&
           setCorners(roundSpheres && DepthGrid::canProject(state) ? findCorners(state) : 0) &&
           glyphs.draw(action, [this, state] { drawAll(state); });
}

// Enough for the outline of the nearest sphere to be off by less than half a pixel, unless
// there are too many of them in view.
int DnaDrawing::findCorners(SoState* state) const
{
    const DepthGrid grid(state);
    const double pixels =
        grid.pixelsAtNearest(bound.centre, bound.radius, glyphs.getLargestSphere());
    if (M_PI * pixels * pixels <= FEWEST_PIXELS)
        return FEWEST_CORNERS;
    // A chord's distance from the circle is pixels (1 - cos(pi / corners)).
    const double needed = M_PI * std::sqrt(pixels / (2 * LARGEST_ERROR));
    int number = SMALLEST_CORNERS;
    while (number < needed && number < LARGEST_CORNERS)
        number += SMALLEST_CORNERS;
    if (number > MANY_CORNERS) {
        const double count = double(findSeen(basePlacements, grid).size());
        while (number > MANY_CORNERS &&
               count * ATOMS_PER_BASE * number * number > LARGEST_TRIANGLES)
            number -= SMALLEST_CORNERS;
    }
    return number;
}

void DnaDrawing::drawAll(SoState* state) const
{
    DepthGrid grid(state);
    if (grid.mayCover(bound.centre, bound.radius, area, SORTED_LAYERS) &&
        DepthGrid::isUsable(state)) {
        std::vector<InView<const Placed*>> boxes, bases = findSeen(basePlacements, grid);
        if (boxesShown)
            boxes = findSeen(boxPlacements, grid);
        if (pixelsOf(boxes) + pixelsOf(bases) > SORTED_LAYERS * grid.getViewportArea()) {
            double unread = 0;
            drawNearestFirst(boxes, grid, unread);
            drawNearestFirst(bases, grid, unread);
            return;
        }
    }
    if (boxesShown)
        drawPlacements(boxPlacements);
    if (corners > MANY_CORNERS) {
        std::vector<const Placed*> seen;
        for (const InView<const Placed*>& base : findSeen(basePlacements, grid))
            seen.push_back(base.what);
        glyphs.drawGlyphs(seen);
    } else {
        drawPlacements(basePlacements);
    }
}

void DnaDrawing::drawPlacements(const Placements& placements) const
{
    std::vector<const Placed*> all;
    all.reserve(placements.placed.size());
    for (const Placed& placed : placements.placed)
        all.push_back(&placed);
    glyphs.drawGlyphs(all);
}

std::vector<InView<const DnaDrawing::Placed*>> DnaDrawing::findSeen(const Placements& placements,
                                                                    const DepthGrid& grid) const
{
    std::vector<InView<const Placed*>> seen;
    seen.reserve(placements.placed.size());
    for (const Placed& placement : placements.placed) {
        SbMatrix toEye = placement.matrix;
        toEye.multRight(grid.getToEye());
        const GlyphDrawing::Ball& ball = glyphs.getBound(placement.glyph);
        const DepthGrid::Disc disc =
            grid.project(ball.centre, ball.radius, toEye, DepthGrid::stretchOf(toEye));
        if (grid.shows(disc)) {
            const double pixels = grid.pixelsOf(glyphs.getArea(placement.glyph), ball.radius, disc);
            seen.push_back({&placement, disc, -toEye[3][2], pixels});
        }
    }
    return seen;
}

void DnaDrawing::drawNearestFirst(std::vector<InView<const Placed*>>& seen, DepthGrid& grid,
                                  double& unread) const
{
    ::drawNearestFirst(
        seen, grid, unread,
        [this](const Placed* placement) { glyphs.drawGlyph(placement->glyph, placement->matrix); },
        [&](const Placed* placement) {
            return glyphs.drawSeen(placement->glyph, placement->matrix, grid);
        },
        [] {});
}
