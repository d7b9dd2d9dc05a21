// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_PLACEDGROUP_H
#define STRANDVIEW_DETAIL_PLACEDGROUP_H

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbRotation.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>

#include "detail/Silence.h"
#include "detail/copyOf.h"

/// A node and where it stands: what a separator of a transform and the node shows.
struct PlacedNode
{
    SbVec3f translation;
    SbRotation rotation;
    SoNode* node; ///< not referenced
};

/// What its transform makes of it.
SbMatrix matrixOf(const PlacedNode& placed);
/// A new, referenced separator of a transform and the node.
SoSeparator* makeSeparator(const PlacedNode& placed);
/// Whether the nodes and all below them are of the kinds that a DNA is made of, which show
/// themselves and do nothing else.
bool areKnown(const std::vector<PlacedNode>& placed);
/// Whether a search would find anything in one of the separators.
bool mayFind(SoSearchAction& action, const std::vector<PlacedNode>& placed);
/// What traversing the separators would do, for known nodes.
void extendByPlaced(SoGetBoundingBoxAction* action, const std::vector<PlacedNode>& placed);
/// The same, as the children of a separator.
void extendBySeparated(SoGetBoundingBoxAction* action, const std::vector<PlacedNode>& placed);

/// A switch or a separator whose children are separators of a transform and a node each, made
/// once somebody asks for them: most graphs of many pairs are drawn and bounded, and never looked
/// at. To whom looks they have been there since place(), and to Coin it is a group as any, of
/// Group's type. Once they are made they are as any children, to be changed and removed.
///
/// It references the transforms that it made, beside their separators, until the next place().
template <typename Group>
class PlacedGroup : public Group
{
public:
    /// Removes the children, and has n others: get(i) is a PlacedNode. Notifies nobody; that is
    /// left to the caller. The nodes are to stay while they have not been replaced.
    template <typename Get>
    void place(std::size_t n, Get get)
    {
        const Silence ofThis(this);
        unrefTransforms();
        if (made)
            Group::removeAllChildren();
        placed.resize(n);
        for (std::size_t i = 0; i < n; ++i)
            placed[i] = get(i);
        made = n == 0;
    }

    /// Whether the children are there; else they are what getPlaced() says.
    bool areMade() const { return made; }
    const std::vector<PlacedNode>& getPlaced() const { return placed; }

    // Whoever asks for children

    void addChild(SoNode* node) override { asMade()->Group::addChild(node); }
    void insertChild(SoNode* node, int index) override
    {
        asMade()->Group::insertChild(node, index);
    }
    SoNode* getChild(int index) const override { return asMade()->Group::getChild(index); }
    int findChild(const SoNode* node) const override { return asMade()->Group::findChild(node); }
    int getNumChildren() const override { return asMade()->Group::getNumChildren(); }
    void removeChild(int index) override { asMade()->Group::removeChild(index); }
    void removeChild(SoNode* node) override { asMade()->Group::removeChild(node); }
    void removeAllChildren() override { asMade()->Group::removeAllChildren(); }
    void replaceChild(int index, SoNode* node) override
    {
        asMade()->Group::replaceChild(index, node);
    }
    void replaceChild(SoNode* old, SoNode* node) override
    {
        asMade()->Group::replaceChild(old, node);
    }
    SoChildList* getChildren() const override { return asMade()->Group::getChildren(); }
    SbBool affectsState() const override { return asMade()->Group::affectsState(); }

    // Actions that reach them

    void doAction(SoAction* action) override { asMade()->Group::doAction(action); }
    void GLRender(SoGLRenderAction* action) override { asMade()->Group::GLRender(action); }
    void GLRenderBelowPath(SoGLRenderAction* action) override
    {
        asMade()->Group::GLRenderBelowPath(action);
    }
    void GLRenderInPath(SoGLRenderAction* action) override
    {
        asMade()->Group::GLRenderInPath(action);
    }
    void GLRenderOffPath(SoGLRenderAction* action) override
    {
        asMade()->Group::GLRenderOffPath(action);
    }
    void callback(SoCallbackAction* action) override { asMade()->Group::callback(action); }
    void getMatrix(SoGetMatrixAction* action) override { asMade()->Group::getMatrix(action); }
    void pick(SoPickAction* action) override { asMade()->Group::pick(action); }
    void rayPick(SoRayPickAction* action) override { asMade()->Group::rayPick(action); }
    void getPrimitiveCount(SoGetPrimitiveCountAction* action) override
    {
        asMade()->Group::getPrimitiveCount(action);
    }
    void write(SoWriteAction* action) override { asMade()->Group::write(action); }
    void addWriteReference(SoOutput* output, SbBool isFromField) override
    {
        asMade()->Group::addWriteReference(output, isFromField);
    }

    // Actions that are answered without them

    void search(SoSearchAction* action) override
    {
        if (made || mayFind(*action, placed))
            asMade()->Group::search(action);
        else
            SoNode::search(action);
    }
    void handleEvent(SoHandleEventAction* action) override
    {
        if (made || !areKnown(placed))
            asMade()->Group::handleEvent(action);
    }
    void audioRender(SoAudioRenderAction* action) override
    {
        if (made || !areKnown(placed))
            asMade()->Group::audioRender(action);
    }
    void getBoundingBox(SoGetBoundingBoxAction* action) override
    {
        if (made || !showsAll() || !areKnown(placed))
            asMade()->Group::getBoundingBox(action);
        else if (std::is_same_v<Group, SoSeparator>)
            extendBySeparated(action, placed);
        else
            extendByPlaced(action, placed);
    }

    // Coin would make a plain group for the copy.
    SoNode* addToCopyDict() const override
    {
        if (SoFieldContainer* copy = SoFieldContainer::checkCopy(this))
            return static_cast<SoNode*>(copy);
        auto* copy = new PlacedGroup;
        SoFieldContainer::addCopy(this, copy);
        return copy;
    }

protected:
    ~PlacedGroup() override { unrefTransforms(); }

    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override
    {
        const auto* original = static_cast<const PlacedGroup*>(from)->asMade();
        Group::copyContents(from, copyConnections);
        transforms.resize(original->transforms.size());
        for (std::size_t i = 0; i < transforms.size(); ++i)
            holdCopyOf(original->transforms[i], transforms[i], copyConnections);
    }

private:
    bool showsAll() const
    {
        if constexpr (std::is_same_v<Group, SoSwitch>)
            return !this->whichChild.isIgnored() && this->whichChild.getValue() == SO_SWITCH_ALL;
        return true;
    }

    // To look at children is to have them made.
    PlacedGroup* asMade() const
    {
        auto* const self = const_cast<PlacedGroup*>(this);
        if (!made)
            self->make();
        return self;
    }

    void make()
    {
        made = true;
        const Silence ofThis(this);
        transforms.reserve(placed.size());
        for (const PlacedNode& each : placed) {
            SoSeparator* const separator = makeSeparator(each);
            transforms.push_back(static_cast<SoTransform*>(separator->getChild(0)));
            transforms.back()->ref();
            Group::addChild(separator);
            separator->unref();
        }
        std::vector<PlacedNode>().swap(placed);
    }

    void unrefTransforms()
    {
        for (SoTransform* transform : transforms)
            transform->unref();
        transforms = {};
    }

    std::vector<PlacedNode> placed; // those that are to be made
    bool made = true;
    std::vector<SoTransform*> transforms;
};

#endif
