// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "window/ThingOutline.h"

#include <algorithm>

#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include "camera/Camera.h"

namespace strandview {

namespace {

// Of what is inside of a perspective camera's reach, the nearest that is looked at.
const float NEAREST = 1e-4f;

// While one lives, OpenGL's state is its own.
class OwnState
{
public:
    OwnState()
    {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    }
    ~OwnState()
    {
        glPopClientAttrib();
        glPopAttrib();
    }
    OwnState(const OwnState&) = delete;
    OwnState& operator=(const OwnState&) = delete;
};

} // namespace

ThingOutline::ThingOutline() : group(new SoSeparator)
{
    group->ref();
    group->renderCaching = SoSeparator::OFF;
}

ThingOutline::~ThingOutline() { group->unref(); }

void ThingOutline::setThings(const std::vector<Shown>& things, SoNode* clipPlane)
{
    box.makeEmpty();
    std::vector<SoNode*> nodes;
    if (clipPlane)
        nodes.push_back(clipPlane);
    for (const Shown& thing : things) {
        box.extendBy(thing.box);
        nodes.push_back(thing.node);
    }
    bool isSame = std::size_t(group->getNumChildren()) == nodes.size();
    for (std::size_t i = 0; isSame && i < nodes.size(); ++i)
        isSame = group->getChild(int(i)) == nodes[i];
    if (isSame)
        return;
    group->removeAllChildren();
    for (SoNode* node : nodes)
        group->addChild(node);
}

void ThingOutline::prepare(const SoCamera& camera, const SoGLRenderAction& action, double scale)
{
    if (group->getNumChildren() == 0 || box.isEmpty()) {
        picture = {};
        view = {};
        return;
    }
    const View now{numbersOf(camera), action.getViewportRegion(), scale,
                   unsigned(group->getNodeId())};
    if (now.camera == view.camera && now.region == view.region && now.scale == view.scale &&
        now.things == view.things)
        return;
    view = now;
    picture = outlineOf(drawAlone(camera, action), scale);
}

// Every pixel that they cover becomes white, whatever their colours.
CoverMask ThingOutline::drawAlone(const SoCamera& camera, const SoGLRenderAction& action)
{
    auto* root = new SoSeparator;
    root->ref();
    root->renderCaching = SoSeparator::OFF;
    root->addChild(cameraBefore(camera));
    auto* plain = new SoLightModel;
    plain->model = SoLightModel::BASE_COLOR;
    root->addChild(plain);
    auto* depth = new SoDepthBuffer;
    depth->test = FALSE;
    depth->write = FALSE;
    root->addChild(depth);
    root->addChild(group);

    const SbVec2s origin = action.getViewportRegion().getViewportOriginPixels(),
                  size = action.getViewportRegion().getViewportSizePixels();
    CoverMask mask{size[0], size[1], {}};
    mask.covers.resize(std::size_t(size[0]) * std::size_t(size[1]));
    const OwnState state;
    glDisable(GL_SCISSOR_TEST);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_COLOR_LOGIC_OP);
    glLogicOp(GL_SET);
    SoGLRenderAction alone(action.getViewportRegion());
    alone.setCacheContext(action.getCacheContext());
    alone.apply(root);
    glReadPixels(origin[0], origin[1], size[0], size[1], GL_RED, GL_UNSIGNED_BYTE,
                 mask.covers.data());
    root->unref();
    return mask;
}

// One that cuts nothing of the things: their depths are not compared.
SoCamera* ThingOutline::cameraBefore(const SoCamera& camera) const
{
    auto* copy = static_cast<SoCamera*>(camera.copy());
    SbVec3f forward(0, 0, -1);
    camera.orientation.getValue().multVec(forward, forward);
    const SbVec3f middle = box.getCenter();
    const float distance = forward.dot(middle - camera.position.getValue()),
                reach = (box.getMax() - box.getMin()).length();
    copy->farDistance = distance + reach;
    copy->nearDistance = distance - reach;
    if (camera.isOfType(SoPerspectiveCamera::getClassTypeId()))
        copy->nearDistance = std::max(distance - reach, NEAREST * std::max(distance + reach, 0.0f));
    return copy;
}

void ThingOutline::draw() const
{
    if (picture.width == 0)
        return;
    const OwnState state;
    for (const GLenum off : {GL_DEPTH_TEST, GL_LIGHTING, GL_TEXTURE_2D, GL_ALPHA_TEST, GL_FOG,
                             GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_COLOR_LOGIC_OP})
        glDisable(off);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const SbVec2s origin = view.region.getViewportOriginPixels();
    glWindowPos2i(origin[0] + picture.left, origin[1] + picture.bottom);
    glPixelZoom(1, 1);
    glDrawPixels(picture.width, picture.height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
}

} // namespace strandview
