// SPDX-License-Identifier: GPL-3.0-or-later
#include "detail/PlacedGroup.h"

#include <algorithm>

#include <Inventor/SbXfBox3f.h>
#include <Inventor/elements/SoLocalBBoxMatrixElement.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoTranslation.h>

#include <SoNucleobase.h>

namespace {

// The nodes that are placed, each once.
std::vector<SoNode*> nodesOf(const std::vector<PlacedNode>& placed)
{
    std::vector<SoNode*> nodes;
    for (const PlacedNode& each : placed) {
        if (std::find(nodes.begin(), nodes.end(), each.node) == nodes.end())
            nodes.push_back(each.node);
    }
    return nodes;
}

bool isKnown(SoNode* node)
{
    static const SoType types[] = {
        SoSeparator::getClassTypeId(),     SoNucleobase::getClassTypeId(),
        SoSwitch::getClassTypeId(),        SoMaterial::getClassTypeId(),
        SoComplexity::getClassTypeId(),    SoTranslation::getClassTypeId(),
        SoSphere::getClassTypeId(),        SoCube::getClassTypeId(),
        SoIndexedFaceSet::getClassTypeId()};
    if (std::find(std::begin(types), std::end(types), node->getTypeId()) == std::end(types))
        return false;
    const SoChildList* const children = node->getChildren();
    for (int i = 0; children && i < children->getLength(); ++i) {
        if (!isKnown((*children)[i]))
            return false;
    }
    return true;
}

// What an action finds about something, in the coordinates that it is in.
struct Bound
{
    SbXfBox3f box;
    bool hasCentre;
    SbVec3f centre;
};

// As a separator finds it about its children.
template <typename Traverse>
Bound boundOf(SoGetBoundingBoxAction* action, Traverse traverse)
{
    SoState* const state = action->getState();
    const SbXfBox3f before = action->getXfBoundingBox();
    state->push();
    SoLocalBBoxMatrixElement::makeIdentity(state);
    action->getXfBoundingBox().makeEmpty();
    traverse();
    const bool hasCentre = action->isCenterSet();
    const Bound bound{action->getXfBoundingBox(), hasCentre,
                      hasCentre ? action->getCenter() : SbVec3f(0, 0, 0)};
    action->resetCenter();
    action->getXfBoundingBox() = before;
    state->pop();
    return bound;
}

} // namespace

// That of a SoTransform, whose other factors are those of the identity.
SbMatrix matrixOf(const PlacedNode& placed)
{
    SbMatrix matrix;
    matrix.setRotate(placed.rotation);
    for (int i = 0; i < 3; ++i)
        matrix[3][i] = placed.translation[i];
    return matrix;
}

// Nobody is there yet to be notified. It is made before its transform, for memory is read
// fastest in the order in which they are visited.
SoSeparator* makeSeparator(const PlacedNode& placed)
{
    auto* separator = new SoSeparator;
    separator->ref();
    auto* transform = new SoTransform;
    const Silence ofTransform(transform), ofSeparator(separator);
    transform->translation = placed.translation;
    transform->rotation = placed.rotation;
    separator->addChild(transform);
    separator->addChild(placed.node);
    return separator;
}

bool areKnown(const std::vector<PlacedNode>& placed)
{
    const std::vector<SoNode*> nodes = nodesOf(placed);
    return std::all_of(nodes.begin(), nodes.end(), isKnown);
}

// Asked of one separator that holds the nodes of all.
bool mayFind(SoSearchAction& action, const std::vector<PlacedNode>& placed)
{
    if (placed.empty())
        return false;
    SoSeparator* const sample = makeSeparator(placed.front());
    for (SoNode* node : nodesOf(placed))
        sample->addChild(node);
    SoSearchAction search;
    SbBool derived = TRUE;
    const SoType type = action.getType(derived);
    search.setType(type, derived);
    search.setName(action.getName());
    search.setNode(action.getNode());
    search.setFind(action.getFind()); // which the others have set
    search.setSearchingAll(TRUE);
    search.apply(sample);
    const bool found = search.getPath() != nullptr;
    sample->unref();
    return found;
}

void extendByPlaced(SoGetBoundingBoxAction* action, const std::vector<PlacedNode>& placed)
{
    const std::vector<SoNode*> nodes = nodesOf(placed);
    std::vector<Bound> bounds;
    for (SoNode* node : nodes)
        bounds.push_back(boundOf(action, [&] { node->getBoundingBox(action); }));
    SbVec3f sum(0, 0, 0);
    int centres = 0;
    for (const PlacedNode& each : placed) {
        const auto which = std::find(nodes.begin(), nodes.end(), each.node) - nodes.begin();
        const Bound& bound = bounds[std::size_t(which)];
        if (bound.box.isEmpty())
            continue;
        const SbMatrix matrix = matrixOf(each);
        SbXfBox3f box = bound.box;
        box.transform(matrix);
        action->extendBy(box);
        if (bound.hasCentre) {
            SbVec3f centre;
            matrix.multVecMatrix(bound.centre, centre);
            action->setCenter(centre, TRUE);
            sum += action->getCenter();
            ++centres;
            action->resetCenter();
        }
    }
    if (centres > 0)
        action->setCenter(sum / float(centres), FALSE);
}

void extendBySeparated(SoGetBoundingBoxAction* action, const std::vector<PlacedNode>& placed)
{
    const Bound bound = boundOf(action, [&] { extendByPlaced(action, placed); });
    if (bound.box.isEmpty())
        return;
    action->extendBy(bound.box);
    if (bound.hasCentre)
        action->setCenter(bound.centre, TRUE);
}
