// SPDX-License-Identifier: GPL-3.0-or-later
#include "drawing.h"

#include <algorithm>

#include <GL/gl.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTexture2.h>

#include <TubeMesh.h>

#include "CoinEnvironment.h"
#include "renderPicture.h"

namespace {

const int materialCount = 200;

Colour materialColour(int index) { return {index, 255 - index, 128}; }

void startRecording(void*, SoAction* action)
{
    if (action->isOfType(SoGLRenderAction::getClassTypeId()))
        RecordingGL::start();
}

void stopRecording(void* calls, SoAction* action)
{
    if (action->isOfType(SoGLRenderAction::getClassTypeId()))
        *static_cast<RecordedCalls*>(calls) = RecordingGL::stop();
}

SoMaterial* distinctMaterials()
{
    auto* material = new SoMaterial;
    for (int i = 0; i < materialCount; ++i) {
        const Colour colour = materialColour(i);
        material->diffuseColor.set1Value(i, colour[0] / 255.0f, colour[1] / 255.0f,
                                         colour[2] / 255.0f);
    }
    return material;
}

SoTexture2* smallTexture()
{
    const unsigned char grey[] = {50, 100, 150, 200};
    auto* texture = new SoTexture2;
    texture->image.setValue(SbVec2s(2, 2), 1, grey);
    return texture;
}

// A vector as OpenGL gets it: rounded to float.
std::vector<float> asFloats(const algebra3d::Vector3<double>& v)
{
    return {float(v.x), float(v.y), float(v.z)};
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const DrawingState& state)
{
    const auto binding = state.binding;
    return stream << (binding == SoMaterialBinding::OVERALL              ? "Overall"
                      : binding == SoMaterialBinding::PER_FACE           ? "PerFace"
                      : binding == SoMaterialBinding::PER_VERTEX         ? "PerVertex"
                      : binding == SoMaterialBinding::PER_VERTEX_INDEXED ? "PerVertexIndexed"
                                                                         : "OtherBinding")
                  << (state.textured ? "Textured" : "Plain") << (state.lit ? "Lit" : "Unlit");
}

std::vector<DrawingState> allDrawingStates()
{
    std::vector<DrawingState> states;
    for (auto binding : {SoMaterialBinding::OVERALL, SoMaterialBinding::PER_FACE,
                         SoMaterialBinding::PER_VERTEX, SoMaterialBinding::PER_VERTEX_INDEXED})
        for (bool textured : {false, true})
            for (bool lit : {false, true})
                states.push_back({binding, textured, lit});
    return states;
}

RecordedCalls recordDrawing(SoNode* shape, const DrawingState& state)
{
    RecordedCalls calls;
    NodeRef<SoSeparator> scene(new SoSeparator);
    scene->addChild(new SoOrthographicCamera);
    scene->addChild(distinctMaterials());
    auto* binding = new SoMaterialBinding;
    binding->value = state.binding;
    scene->addChild(binding);
    auto* lightModel = new SoLightModel;
    lightModel->model = state.lit ? SoLightModel::PHONG : SoLightModel::BASE_COLOR;
    scene->addChild(lightModel);
    if (state.textured)
        scene->addChild(smallTexture());
    auto* before = new SoCallback;
    before->setCallback(startRecording, nullptr);
    scene->addChild(before);
    scene->addChild(shape);
    auto* after = new SoCallback;
    after->setCallback(stopRecording, &calls);
    scene->addChild(after);

    {
        const RecordingGL::WithoutBuffers without;
        EXPECT_TRUE(renderPicture(scene, 16, 16).isRendered());
    }

    RecordedCalls significant;
    std::vector<float> currentColour;
    for (const GLCall& call : calls) {
        if (call.name == "glMaterialf" || call.name == "glMaterialfv")
            continue;
        if (call.name == "glColor4ub") {
            if (call.arguments == currentColour)
                continue;
            currentColour = call.arguments;
        }
        significant.push_back(call);
    }
    return significant;
}

bool containsStrips(const RecordedCalls& calls)
{
    return std::any_of(calls.begin(), calls.end(), [](const GLCall& call) {
        return call.name == "glBegin" || call.name == "glVertex3f";
    });
}

void ExpectedDrawing::sendMaterial(int index)
{
    index = std::clamp(index, 0, materialCount - 1);
    if (index == currentMaterial)
        return;
    currentMaterial = index;
    const Colour colour = materialColour(index);
    calls.push_back({"glColor4ub", {float(colour[0]), float(colour[1]), float(colour[2]), 255}});
}

void ExpectedDrawing::drawBody(Mesh& mesh, int materialOffset)
{
    startBundle();
    if (!state.isPerVertex())
        sendMaterial(materialOffset);
    const int height = mesh.getHeight(), width = mesh.getWidth();
    for (int i = 0; i < height - 1; ++i) {
        calls.push_back({"glBegin", {GL_TRIANGLE_STRIP}});
        for (int j = 0; j < width; ++j) {
            for (int row : {i + 1, i}) {
                if (state.textured)
                    calls.push_back(
                        {"glTexCoord2f",
                         {float(double(j) / (width - 1)), float(double(row) / (height - 1))}});
                if (state.isPerVertex())
                    sendMaterial(mesh.getMaterialIndex(row, j) + materialOffset);
                if (state.lit)
                    calls.push_back({"glNormal3f", asFloats(mesh.getNormals()[row][j])});
                calls.push_back({"glVertex3f", asFloats(mesh.getPoints()[row][j])});
            }
        }
        calls.push_back({"glEnd", {}});
    }
}

void ExpectedDrawing::drawCaps(TubeMesh& tube, int materialOffset, bool lowerCapTakesLast,
                               bool upperCapTakesFirst)
{
    const int height = tube.getHeight();
    const int last = materialOffset + height - 1;
    startBundle();
    if (!state.isPerVertex())
        sendMaterial(materialOffset);
    sendMaterial(state.isPerVertex() && lowerCapTakesLast ? last : materialOffset);
    drawCap(tube, 0, 0, false);
    sendMaterial(state.isPerVertex() && !upperCapTakesFirst ? last : materialOffset);
    drawCap(tube, height - 1, double(height - 1) / height, true);
}

void ExpectedDrawing::drawCap(TubeMesh& tube, int row, double t, bool upper)
{
    const auto normal = upper ? tube.getUpperCapNormal() : tube.getLowerCapNormal();
    calls.push_back({"glBegin", {GL_TRIANGLE_FAN}});
    for (int k = tube.getWidth() - 2; k >= 0; --k) {
        if (state.textured)
            calls.push_back({"glTexCoord2f", {float(double(k) / tube.getWidth()), float(t)}});
        if (state.lit)
            calls.push_back({"glNormal3f", asFloats(normal)});
        calls.push_back({"glVertex3f", asFloats(tube.getPoints()[row][k])});
    }
    calls.push_back({"glEnd", {}});
}
