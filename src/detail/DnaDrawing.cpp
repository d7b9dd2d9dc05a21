// SPDX-License-Identifier: GPL-3.0-or-later
#include <detail/DnaDrawing.h>

#include <algorithm>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>

#include <detail/exactly.h>

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

// Drawing

bool DnaDrawing::draw(SoGLRenderAction* action, SoGroup* root, SoSwitch* boxes, SoGroup* bases)
{
    return GlyphDrawing::canDraw(action->getState()) && update(root, boxes, bases) &&
           glyphs.draw(action, [this] {
               if (boxesShown)
                   drawPlacements(boxPlacements);
               drawPlacements(basePlacements);
           });
}

void DnaDrawing::drawPlacements(const std::vector<Placement>& placements) const
{
    for (const Placement& placement : placements)
        glyphs.drawGlyph(placement.glyph, placement.matrix);
}
