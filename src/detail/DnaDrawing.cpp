// SPDX-License-Identifier: GPL-3.0-or-later
#include <detail/DnaDrawing.h>

#include <algorithm>

#include <Inventor/SbBox3f.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>

#include <detail/exactly.h>

namespace {

// How often the viewport must be covered, if nothing hid anything, for an order to pay; and how
// often before the first look at the depth buffer, which costs about a layer, and before the
// next, in which there is less and less to be found, twice, three times as often and so on.
const double SORTED_LAYERS = 1;
const double READ_LAYERS = 4;

} // namespace

// Reading the graph

bool DnaDrawing::update(SoGroup* root, SoSwitch* boxes, SoGroup* bases)
{
    const std::uint64_t id = root->getNodeId();
    if (id == seenId)
        return drawable;
    placed.clear();
    drawable = root->getNumChildren() == 2 && root->getChild(0) == boxes &&
               root->getChild(1) == bases && isAllOrNothing(boxes) &&
               updatePlacements(boxes, boxPlacements) && updatePlacements(bases, basePlacements) &&
               glyphs.update(placed);
    boxesShown = boxes->whichChild.getValue() == SO_SWITCH_ALL;
    seenId = id;
    if (!drawable)
        boxPlacements = basePlacements = {};
    measure();
    return drawable;
}

// Matrices are made again only where the transform is another one, or changed.
bool DnaDrawing::updatePlacements(SoGroup* group, std::vector<Placement>& placements)
{
    const int n = group->getNumChildren();
    placements.resize(std::size_t(n));
    placements.shrink_to_fit();
    for (int i = 0; i < n; ++i) {
        const auto* separator = exactly<SoSeparator>(group->getChild(i));
        if (!separator || separator->getNumChildren() != 2)
            return false;
        const auto* transform = exactly<SoTransform>(separator->getChild(0));
        if (!transform)
            return false;
        Placement& placement = placements[std::size_t(i)];
        const int glyph = findGlyph(separator->getChild(1));
        if (glyph < 0)
            return false;
        placement.glyph = std::uint32_t(glyph);
        if (placement.transform == transform && transform->getNodeId() <= seenId)
            continue;
        placement.transform = transform;
        placement.matrix.setTransform(
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
        for (const Placement& placement : *placements) {
            const GlyphDrawing::Ball& ball = glyphs.getBound(placement.glyph);
            const double stretch = DepthGrid::stretchOf(placement.matrix);
            SbVec3f centre;
            placement.matrix.multVecMatrix(ball.centre, centre);
            box.extendBy(centre);
            reach = std::max(reach, ball.radius * stretch);
            area += glyphs.getArea(placement.glyph) * stretch * stretch;
        }
    }
    if (box.isEmpty())
        bound = {};
    else
        bound = {box.getCenter(), float((box.getMax() - box.getCenter()).length() + reach)};
}

// Drawing

bool DnaDrawing::draw(SoGLRenderAction* action, SoGroup* root, SoSwitch* boxes, SoGroup* bases)
{
    SoState* const state = action->getState();
    return GlyphDrawing::canDraw(state) && update(root, boxes, bases) &&
           glyphs.draw(action, [this, state] { drawAll(state); });
}

void DnaDrawing::drawAll(SoState* state) const
{
    DepthGrid grid(state);
    if (mayOverdraw(grid)) {
        std::vector<Seen> seenBoxes, seenBases = findSeen(basePlacements, grid);
        if (boxesShown)
            seenBoxes = findSeen(boxPlacements, grid);
        double pixels = 0;
        for (const std::vector<Seen>* all : {&seenBoxes, &seenBases}) {
            for (const Seen& seen : *all)
                pixels += seen.pixels;
        }
        if (pixels > SORTED_LAYERS * grid.getViewportArea()) {
            double unread = 0;
            drawNearestFirst(seenBoxes, grid, unread);
            drawNearestFirst(seenBases, grid, unread);
            return;
        }
    }
    if (boxesShown)
        drawPlacements(boxPlacements);
    drawPlacements(basePlacements);
}

void DnaDrawing::drawPlacements(const std::vector<Placement>& placements) const
{
    for (const Placement& placement : placements)
        glyphs.drawGlyph(placement.glyph, placement.matrix);
}

// Whether it would all cover the viewport more than once if it were where its nearest point is.
bool DnaDrawing::mayOverdraw(const DepthGrid& grid) const
{
    if (!grid.isUsable() || !(bound.radius > 0))
        return false;
    const double stretch = DepthGrid::stretchOf(grid.getToEye());
    const double scale = grid.getScaleAtNearest(bound.centre, bound.radius, stretch);
    return !(area * stretch * stretch * scale * scale <= SORTED_LAYERS * grid.getViewportArea());
}

std::vector<DnaDrawing::Seen> DnaDrawing::findSeen(const std::vector<Placement>& placements,
                                                   const DepthGrid& grid) const
{
    std::vector<Seen> seen;
    seen.reserve(placements.size());
    for (const Placement& placement : placements) {
        SbMatrix toEye = placement.matrix;
        toEye.multRight(grid.getToEye());
        const GlyphDrawing::Ball& ball = glyphs.getBound(placement.glyph);
        const DepthGrid::Disc disc =
            grid.project(ball.centre, ball.radius, toEye, DepthGrid::stretchOf(toEye));
        if (grid.seen(disc).isEmpty())
            continue;
        const double scale = disc.radius / double(ball.radius);
        const double pixels = glyphs.getArea(placement.glyph) * scale * scale;
        const bool near = !(disc.radius > 0); // too near for its pixels to be told
        seen.push_back({&placement, disc, -toEye[3][2], near ? grid.getViewportArea() : pixels});
    }
    return seen;
}

// One behind the other, so that the shader sees little of what is hidden; and without what the
// depth buffer hides once it holds some layers. What is placed alike keeps its order, for the
// last of coincident faces is seen.
void DnaDrawing::drawNearestFirst(std::vector<Seen>& order, DepthGrid& grid, double& unread) const
{
    std::stable_sort(order.begin(), order.end(),
                     [](const Seen& a, const Seen& b) { return a.distance < b.distance; });
    for (const Seen& seen : order) {
        if (unread > READ_LAYERS * (1 + grid.getReads()) * grid.getViewportArea()) {
            grid.read();
            unread = 0;
        }
        const Placement& placement = *seen.placement;
        if (grid.getReads() == 0) {
            glyphs.drawGlyph(placement.glyph, placement.matrix);
            unread += seen.pixels;
        } else if (!grid.seen(seen.disc).isEmpty()) {
            unread += glyphs.drawSeen(placement.glyph, placement.matrix, grid);
        }
    }
    grid.leave();
}
