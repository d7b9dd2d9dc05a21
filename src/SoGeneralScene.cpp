// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoGeneralScene.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFragmentShader.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoShaderProgram.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoVertexShader.h>
#include <QFile>
#include <gsl/gsl_spline.h>
#include <toCoin.h>

#include "detail/copyOf.h"

using algebra3d::Vector3;

SO_NODE_SOURCE(SoGeneralScene);

const Vector3<double> SoGeneralScene::LIGHT_DIRS[3] = {Vector3<double>(0.2, -0.2, -1.0),
                                                       Vector3<double>(-0.2, -0.2, -1.0),
                                                       Vector3<double>(0.0, 0.2, -1.0)};
const double SoGeneralScene::LIGHT_INTENSITY[3] = {1.0, 0.0, 0.0};
const double SoGeneralScene::LIGHT_SHININESS[3] = {10.0, 10.0, 10.0};
const Vector3<double> SoGeneralScene::LINE_COLORS[2] = {Vector3<double>(1, 1, 1),
                                                        Vector3<double>(0, 0, 0)};
const double SoGeneralScene::LINE_ALPHA[2] = {1.0, 1.0};
const double SoGeneralScene::LINE_MARGINS[2] = {0.002, 0.002};
const int SoGeneralScene::LINE_NUM_STEPS[2] = {10, 10};
const double SoGeneralScene::LINE_STEPS[2] = {0.1, 0.1};

namespace {

template <typename Parameter>
Parameter* makeParameter(const char* name)
{
    auto* parameter = new Parameter;
    parameter->ref();
    parameter->name = name;
    return parameter;
}

QByteArray readResource(const char* path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template <typename Shader>
Shader* makeShader(const QByteArray& text, std::initializer_list<SoNode*> parameters)
{
    auto* shader = new Shader;
    shader->sourceType = SoShaderObject::GLSL_PROGRAM;
    shader->sourceProgram = text.constData();
    for (SoNode* parameter : parameters)
        shader->parameter.addNode(parameter);
    return shader;
}

SoShaderProgram* makeProgram(SoVertexShader* vertexShader, SoFragmentShader* fragmentShader)
{
    auto* program = new SoShaderProgram;
    program->ref();
    program->shaderObject.addNode(vertexShader);
    program->shaderObject.addNode(fragmentShader);
    return program;
}

template <typename Node>
void release(Node* node)
{
    if (node)
        node->unref();
}

// One white specular colour; the number set before has no lasting effect and is kept
// as it always was.
void whitenSpecularColour(SoMaterial* material, int entries)
{
    material->specularColor.setNum(entries);
    material->specularColor.setValue(1, 1, 1);
}

// The mapper's for value(i).
template <typename Value>
std::vector<SbColor> mappedColours(const ColourMapper* mapper, std::size_t count, Value value)
{
    const ColourMapper fallback;
    const ColourMapper& used = mapper ? *mapper : fallback;
    std::vector<SbColor> entries(count);
    ColourMapper::Colour colour;
    for (std::size_t i = 0; i < count; ++i) {
        used.getColour(value(i), colour);
        entries[i] = toSbColor(colour);
    }
    return entries;
}

// Ambient and diffuse colours from entry `offset` on.
void setEntries(SoMaterial* material, int offset, const std::vector<SbColor>& entries)
{
    if (entries.empty())
        return;
    material->ambientColor.setValues(offset, int(entries.size()), entries.data());
    material->diffuseColor.setValues(offset, int(entries.size()), entries.data());
}

// Of which a spline is made.
bool areEnough(const std::vector<double>& x, const std::vector<double>& y,
               const std::vector<double>& at)
{
    return std::min(x.size(), y.size()) >= 3 && at.size() >= 3;
}

// The vertex stage says where a vertex is before the planes, which not every driver finds out by
// itself; only while there is one, since what a stage says costs time.
void tellClipVertex(SoShaderProgram& program, bool tells)
{
    static const std::string POSITION = "gl_Position = ftransform();",
                             CLIP_VERTEX = " gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex;";
    auto& shader = static_cast<SoShaderObject&>(*program.shaderObject[0]);
    std::string text = shader.sourceProgram.getValue().getString();
    const std::size_t position = text.find(POSITION), told = text.find(CLIP_VERTEX);
    if (position == std::string::npos || tells == (told != std::string::npos))
        return;
    if (tells)
        text.insert(position + POSITION.size(), CLIP_VERTEX);
    else
        text.erase(told, CLIP_VERTEX.size());
    shader.sourceProgram = text.c_str();
    // The program is linked anew, and Coin sets the parameters of those stages alone that changed.
    static_cast<SoShaderObject&>(*program.shaderObject[1]).sourceProgram.touch();
}

bool isAscending(const std::vector<double>& x)
{
    for (std::size_t i = 0; i + 1 < x.size(); ++i) {
        if (!(x[i] <= x[i + 1]))
            return false;
    }
    return x.empty() || !std::isnan(x.front());
}

// Of samples that are enough, and ascend.
std::vector<SbColor> coloursAlongSpline(const ColourMapper* mapper, const std::vector<double>& x,
                                        const std::vector<double>& y, const std::vector<double>& at)
{
    const std::size_t samples = std::min(x.size(), y.size());
    const std::unique_ptr<gsl_interp_accel, decltype(&gsl_interp_accel_free)> accelerator(
        gsl_interp_accel_alloc(), gsl_interp_accel_free);
    const std::unique_ptr<gsl_spline, decltype(&gsl_spline_free)> spline(
        gsl_spline_alloc(gsl_interp_cspline, samples), gsl_spline_free);
    gsl_spline_init(spline.get(), x.data(), y.data(), samples);
    return mappedColours(mapper, at.size(), [&](std::size_t i) {
        return gsl_spline_eval(spline.get(), at[i], accelerator.get());
    });
}

} // namespace

void SoGeneralScene::initClass() { SO_NODE_INIT_CLASS(SoGeneralScene, SoSeparator, "SoSeparator"); }

SoGeneralScene::SoGeneralScene()
{
    SO_NODE_CONSTRUCTOR(SoGeneralScene);
    initScene();
}

SoGeneralScene::~SoGeneralScene()
{
    release(sceneRoot);
    release(isPersp);
    release(useTexture);
    release(useLightOff);
    release(useLightOn);
    release(lightDir);
    release(lightIntensity);
    release(shininess);
    release(lineColors);
    release(margins);
    release(numSteps);
    release(steps);
    release(solidProgram);
    release(shadedProgram);
}

// The skeleton

void SoGeneralScene::initScene()
{
    sceneRoot = new SoSeparator;
    sceneRoot->ref();
    prepareShaders();

    complexity = new SoComplexity;
    complexity->type = SoComplexity::SCREEN_SPACE;
    complexity->value = 1.0f;
    complexity->textureQuality = 1.0f;
    sceneRoot->addChild(complexity);

    drawStyle = new SoDrawStyle;
    drawStyle->lineWidth = lineWidth;

    solidGroup = new SoSeparator;
    solidGroup->addChild(drawStyle);
    solidGroup->addChild(solidProgram);
    sceneRoot->addChild(solidGroup);

    shadedGroup = new SoSeparator;
    shadedGroup->addChild(shadedProgram);
    sceneRoot->addChild(shadedGroup);

    changingGroup = new SoSeparator;
    changingGroup->addChild(drawStyle);
    modeSwitch = new SoSwitch;
    modeSwitch->addChild(shadedProgram);
    modeSwitch->addChild(solidProgram);
    modeSwitch->whichChild = 0;
    changingGroup->addChild(modeSwitch);
    sceneRoot->addChild(changingGroup);

    addChild(sceneRoot);
}

void SoGeneralScene::prepareShaders()
{
    const QByteArray vertexText = readResource(":/shaders/vert.glsl");
    const QByteArray fragmentText = readResource(":/shaders/frag.glsl");
    prepareShaderParams();
    // Uniforms belong to the whole program, whichever stage a parameter hangs on.
    solidProgram = makeProgram(makeShader<SoVertexShader>(vertexText, {useLightOff, useTexture}),
                               makeShader<SoFragmentShader>(fragmentText, {}));
    shadedProgram = makeProgram(
        makeShader<SoVertexShader>(vertexText, {isPersp, useLightOn, useTexture}),
        makeShader<SoFragmentShader>(fragmentText, {lightDir, lightIntensity, shininess}));
}

void SoGeneralScene::prepareShaderParams()
{
    isPersp = makeParameter<SoShaderParameter1i>("isPersp");
    useTexture = makeParameter<SoShaderParameter1i>("useTexture");
    useLightOff = makeParameter<SoShaderParameter1i>("useLight");
    useLightOn = makeParameter<SoShaderParameter1i>("useLight");
    lightDir = makeParameter<SoShaderParameterArray3f>("lightDir");
    lightIntensity = makeParameter<SoShaderParameterArray1f>("lightIntensity");
    shininess = makeParameter<SoShaderParameterArray1f>("shininess");
    lineColors = makeParameter<SoShaderParameterArray4f>("lineColors");
    margins = makeParameter<SoShaderParameterArray1f>("margins");
    numSteps = makeParameter<SoShaderParameterArray1i>("numSteps");
    steps = makeParameter<SoShaderParameterArray1f>("steps");

    isPersp->value = 0;
    useTexture->value = 0;
    useLightOff->value = 0;
    useLightOn->value = 1;
    for (int i = 0; i < 3; ++i) {
        const Vector3<double>& direction = LIGHT_DIRS[i];
        lightDir->value.set1Value(i, toSbVec3f(direction));
        lightIntensity->value.set1Value(i, float(LIGHT_INTENSITY[i]));
        shininess->value.set1Value(i, float(LIGHT_SHININESS[i]));
    }
    for (int i = 0; i < 2; ++i) {
        const Vector3<double>& colour = LINE_COLORS[i];
        lineColors->value.set1Value(i, float(colour.x), float(colour.y), float(colour.z),
                                    float(LINE_ALPHA[i]));
        margins->value.set1Value(i, float(LINE_MARGINS[i]));
        numSteps->value.set1Value(i, LINE_NUM_STEPS[i]);
        steps->value.set1Value(i, float(LINE_STEPS[i]));
    }
}

// Content

void SoGeneralScene::addShaded(SoNode* node) { shadedGroup->addChild(node); }

void SoGeneralScene::addSolid(SoNode* node) { solidGroup->addChild(node); }

void SoGeneralScene::addChanging(SoNode* node) { changingGroup->addChild(node); }

void SoGeneralScene::addChild(SoNode* node) { SoGroup::addChild(node); }

// Colouring

void SoGeneralScene::setColourMapper(ColourMapper* mapper)
{
    colourMapper = mapper ? mapper : &defaultMapper;
}

void SoGeneralScene::getColourMapperLimits(double& min, double& max)
{
    min = colourMapper->getMin();
    max = colourMapper->getMax();
}

void SoGeneralScene::setColourMapperLimits(double min, double max)
{
    colourMapper->setMapping(min, max);
}

void SoGeneralScene::generateMaterial(ColourMapper* mapper, SoMaterial* material, int offset,
                                      const std::vector<double>& values)
{
    whitenSpecularColour(material, int(values.size()) + offset);
    setEntries(material, offset, generateColours(mapper, values));
}

void SoGeneralScene::interpolateMaterial(ColourMapper* mapper, SoMaterial* material, int offset,
                                         const std::vector<double>& x, const std::vector<double>& y,
                                         const std::vector<double>& at)
{
    if (!areEnough(x, y, at))
        return;
    whitenSpecularColour(material, int(at.size()) + offset);
    if (isAscending(x)) {
        setEntries(material, offset, coloursAlongSpline(mapper, x, y, at));
    } else {
        material->ambientColor.setValue(0, 0, 0);
        material->diffuseColor.setValue(0, 0, 0);
    }
}

std::vector<SbColor> SoGeneralScene::generateColours(const ColourMapper* mapper,
                                                     const std::vector<double>& values)
{
    return mappedColours(mapper, values.size(), [&values](std::size_t i) { return values[i]; });
}

std::vector<SbColor> SoGeneralScene::interpolateColours(const ColourMapper* mapper,
                                                        const std::vector<double>& x,
                                                        const std::vector<double>& y,
                                                        const std::vector<double>& at)
{
    if (!areEnough(x, y, at))
        return {};
    return isAscending(x) ? coloursAlongSpline(mapper, x, y, at)
                          : std::vector<SbColor>(at.size(), SbColor(0, 0, 0));
}

// Look

SoGeneralScene::Shading SoGeneralScene::getShading() const { return Shading(drawStyleIndex); }

void SoGeneralScene::setShading(Shading shading)
{
    drawStyleIndex = shading;
    modeSwitch->whichChild = shading == LIT ? 0 : 1;
    drawStyle->style = shading == WIREFRAME ? SoDrawStyle::LINES : SoDrawStyle::FILLED;
}

void SoGeneralScene::toggleDrawStyle(bool complexityOnly)
{
    if (complexityOnly)
        showBoundingBoxes(complexity->type.getValue() == SoComplexity::SCREEN_SPACE);
    else
        setShading(Shading((drawStyleIndex + 1) % 3));
}

void SoGeneralScene::showBoundingBoxes(bool show)
{
    complexity->type = show ? SoComplexity::BOUNDING_BOX : SoComplexity::SCREEN_SPACE;
}

bool SoGeneralScene::isShowingBoundingBoxes() const
{
    return complexity && complexity->type.getValue() == SoComplexity::BOUNDING_BOX;
}

void SoGeneralScene::setShaderPersp(bool perspective)
{
    if (isPersp)
        isPersp->value = perspective ? 1 : 0;
}

void SoGeneralScene::setClipPlane(const SbPlane& plane)
{
    if (!clipPlane) {
        clipPlane = new SoClipPlane;
        changingGroup->insertChild(clipPlane, changingGroup->findChild(modeSwitch) + 1);
        tellClipVertex(*solidProgram, true);
        tellClipVertex(*shadedProgram, true);
    }
    if (clipPlane->plane.getValue() != plane)
        clipPlane->plane = plane;
}

void SoGeneralScene::dropClipPlane()
{
    if (!clipPlane)
        return;
    changingGroup->removeChild(clipPlane);
    clipPlane = nullptr;
    tellClipVertex(*solidProgram, false);
    tellClipVertex(*shadedProgram, false);
}

bool SoGeneralScene::isShaderPersp() const { return isPersp && isPersp->value.getValue() != 0; }

void SoGeneralScene::setGLLineData(SbVec2f range, float granularity)
{
    lineWidthMin = range[0];
    lineWidthMax = range[1];
    lineWidthStep = granularity;
    lineWidth = range[0];
}

void SoGeneralScene::changeLineWidth(int steps)
{
    const float width = lineWidth + float(steps) * lineWidthStep;
    const bool allowed = steps > 0 ? width <= lineWidthMax : width >= lineWidthMin;
    if (!allowed)
        return;
    setLineWidth(width);
}

void SoGeneralScene::setLineWidth(float pixels)
{
    lineWidth = pixels;
    drawStyle->lineWidth = pixels;
}

float SoGeneralScene::getLineWidth() const { return lineWidth; }

void SoGeneralScene::getLightingParameters(SoShaderParameterArray3f*& dirs,
                                           SoShaderParameterArray1f*& intensities,
                                           SoShaderParameterArray1f*& lightShininess)
{
    dirs = lightDir;
    intensities = lightIntensity;
    lightShininess = shininess;
}

// What the viewer calls

bool SoGeneralScene::processSoEvent(const SoEvent* event)
{
    if (SO_KEY_PRESS_EVENT(event, EQUAL))
        changeLineWidth(1);
    else if (SO_KEY_PRESS_EVENT(event, MINUS))
        changeLineWidth(-1);
    else if (SO_KEY_PRESS_EVENT(event, SPACE))
        toggleDrawStyle(event->wasShiftDown());
    else
        return false;
    return true;
}

bool SoGeneralScene::processPickEvent(const SoPickedPoint* /*point*/) { return false; }

void SoGeneralScene::update() {}

void SoGeneralScene::getBoundingBox(SoGetBoundingBoxAction* action)
{
    SoSeparator::getBoundingBox(action);
    if (!action)
        return;
    const SbBox3f box = action->getBoundingBox();
    box.getMin().getValue(bbMin[0], bbMin[1], bbMin[2]);
    box.getMax().getValue(bbMax[0], bbMax[1], bbMax[2]);
}

const char* SoGeneralScene::getFileFormatName() const { return "Separator"; }

void SoGeneralScene::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoSeparator::copyContents(from, copyConnections);
    const auto* original = static_cast<const SoGeneralScene*>(from);
    const auto hold = [copyConnections](auto* part, auto*& held) {
        holdCopyOf(part, held, copyConnections);
    };
    hold(original->sceneRoot, sceneRoot);
    hold(original->isPersp, isPersp);
    hold(original->useTexture, useTexture);
    hold(original->useLightOff, useLightOff);
    hold(original->useLightOn, useLightOn);
    hold(original->lightDir, lightDir);
    hold(original->lightIntensity, lightIntensity);
    hold(original->shininess, shininess);
    hold(original->lineColors, lineColors);
    hold(original->margins, margins);
    hold(original->numSteps, numSteps);
    hold(original->steps, steps);
    hold(original->solidProgram, solidProgram);
    hold(original->shadedProgram, shadedProgram);
    solidGroup = copyOf(original->solidGroup, copyConnections);
    shadedGroup = copyOf(original->shadedGroup, copyConnections);
    changingGroup = copyOf(original->changingGroup, copyConnections);
    modeSwitch = copyOf(original->modeSwitch, copyConnections);
    clipPlane = original->clipPlane ? copyOf(original->clipPlane, copyConnections) : nullptr;
    complexity = copyOf(original->complexity, copyConnections);
    drawStyle = copyOf(original->drawStyle, copyConnections);

    drawStyleIndex = original->drawStyleIndex;
    lineWidthMin = original->lineWidthMin;
    lineWidthMax = original->lineWidthMax;
    lineWidthStep = original->lineWidthStep;
    lineWidth = original->lineWidth;
    defaultMapper = original->defaultMapper;
    colourMapper = original->colourMapper == &original->defaultMapper ? &defaultMapper
                                                                      : original->colourMapper;
    std::copy_n(original->bbMin, 3, bbMin);
    std::copy_n(original->bbMax, 3, bbMax);
}
