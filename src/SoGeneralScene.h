// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOGENERALSCENE_H
#define STRANDVIEW_SOGENERALSCENE_H

#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbPlane.h>
#include <Inventor/SbVec2f.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

#include <ColourMapper.h>
#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

class SoClipPlane;
class SoComplexity;
class SoDrawStyle;
class SoEvent;
class SoMaterial;
class SoPickedPoint;
class SoShaderParameter1i;
class SoShaderParameterArray1f;
class SoShaderParameterArray1i;
class SoShaderParameterArray3f;
class SoShaderParameterArray4f;
class SoShaderProgram;
class SoSwitch;

/// The root under which everything shown hangs. It lights content per pixel, or leaves
/// it plain, and lets the user change how some of it is drawn.
///
/// Its one child holds a fixed skeleton:
///
///     complexity
///     solid group:    draw style, solid program, then what addSolid() added
///     shaded group:   shaded program, then what addShaded() added
///     changing group: draw style, switch between the two programs, a clipping plane if there is
///                     one, then what addChanging() added
///
/// The draw style and the programs are shared: a change of draw style reaches solid
/// and changing content at once, and never the shaded one. Lights are directional and
/// fixed to the camera; see LIGHT_DIRS.
///
/// The scene references its skeleton, which references what is added. A copy has a skeleton,
/// parameters and content of its own; a client's colour mapper is not owned, and shared by both.
/// Threads and references: see SoMeshShape.
class STRANDVIEW_EXPORT SoGeneralScene : public SoSeparator
{
    SO_NODE_HEADER(SoGeneralScene);

public:
    static void initClass();

    /// An empty scene: filled, lit, for an orthographic camera.
    SoGeneralScene();

    // Content

    /// Content that is lit per pixel.
    void addShaded(SoNode* node);
    /// Content in its material's colours, unlit.
    void addSolid(SoNode* node);
    /// Content whose drawing the user changes with the space bar; lit at first.
    void addChanging(SoNode* node);
    /// Plain SoGroup::addChild, past programs, draw style and complexity.
    void addChild(SoNode* node) override;

    // Colouring

    /// The mapper in use, not owned; null restores the scene's own.
    void setColourMapper(ColourMapper* mapper);
    virtual void getColourMapperLimits(double& min, double& max);
    virtual void setColourMapperLimits(double min, double max);

    /// Colours `material` by values, from entry `offset` on: ambient and diffuse colour
    /// i + offset are the mapper's for values[i]. Entries below stay; the specular
    /// colour becomes a single white. A null mapper means a default one.
    static void generateMaterial(ColourMapper* mapper, SoMaterial* material, int offset,
                                 const std::vector<double>& values);

    /// generateMaterial for the natural cubic spline through (x[i], y[i]), evaluated at
    /// each position of `at`; the shorter of x and y decides. Does nothing with fewer
    /// than 3 samples or 3 positions. If x is not ascending, ambient and diffuse colour
    /// become a single black. Equal neighbours in x, and positions outside it, are left
    /// to GSL and its error handler, which by default aborts.
    static void interpolateMaterial(ColourMapper* mapper, SoMaterial* material, int offset,
                                    const std::vector<double>& x, const std::vector<double>& y,
                                    const std::vector<double>& at);

    /// The colours that those two give to materials, without one: in any thread, while nobody
    /// changes the mapper. Of interpolateMaterial() none where that does nothing, and all black if
    /// x is not ascending.
    static std::vector<SbColor> generateColours(const ColourMapper* mapper,
                                                const std::vector<double>& values);
    static std::vector<SbColor> interpolateColours(const ColourMapper* mapper,
                                                   const std::vector<double>& x,
                                                   const std::vector<double>& y,
                                                   const std::vector<double>& at);

    // Look

    /// How changing content is drawn; wireframe, solid content, too.
    enum Shading { LIT, PLAIN, WIREFRAME };
    Shading getShading() const;
    void setShading(Shading shading);
    /// The next step of: lit and filled, unlit and filled, unlit wireframe. With
    /// complexityOnly the draw style stays, and shapes change between themselves and
    /// their bounding boxes.
    void toggleDrawStyle(bool complexityOnly);
    /// Whether shapes are drawn as their bounding boxes.
    bool isShowingBoundingBoxes() const;
    void showBoundingBoxes(bool show);
    /// Lines thicker by as many steps of OpenGL's granularity, thinner by a negative number
    /// of them; beyond the limits nothing changes.
    void changeLineWidth(int steps);
    /// In pixels; what setGLLineData() said at first.
    float getLineWidth() const;
    /// Whatever the limits are; what changeLineWidth() begins with from now on, until
    /// setGLLineData() says another.
    void setLineWidth(float pixels);
    /// Whether highlights are those of a perspective camera.
    void setShaderPersp(bool perspective);
    bool isShaderPersp() const;
    /// Lets changing content end at a plane: what is in the plane's half space stays
    /// (SbPlane::isInHalfSpace()), all else is cut away and cannot be picked. What is cut open is
    /// lit inside, too. In the scene's coordinates.
    void setClipPlane(const SbPlane& plane);
    /// Shows changing content whole again.
    void dropClipPlane();
    /// Null if there is none; also for what else is to be cut there.
    SoClipPlane* getClipPlane() const { return clipPlane; }
    /// The smallest and largest line width and their granularity in OpenGL. The draw
    /// style keeps its width until the user changes it.
    void setGLLineData(SbVec2f range, float granularity);
    /// The scene's own "lightDir", "lightIntensity" and "shininess", three entries each,
    /// for editing: a change shows in the next render.
    void getLightingParameters(SoShaderParameterArray3f*& dirs,
                               SoShaderParameterArray1f*& intensities,
                               SoShaderParameterArray1f*& shininess);

    // What the viewer calls; subclasses may do more

    /// "=" and "-" are changeLineWidth(1) and (-1), the space bar is
    /// toggleDrawStyle(shift held). Whether the event was one of these keys, pressed.
    virtual bool processSoEvent(const SoEvent* event);
    /// Nothing; false.
    virtual bool processPickEvent(const SoPickedPoint* point);
    /// Nothing.
    virtual void update();

    void getBoundingBox(SoGetBoundingBoxAction* action) override;
    /// In a file it is the plain separator that it is made of, which any Coin program reads:
    /// it shows the same then, and is no SoGeneralScene any more.
    const char* getFileFormatName() const override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

    // Initial values

    /// From the light to the scene, in eye space: x to the right, y up, z to the viewer.
    static const algebra3d::Vector3<double> LIGHT_DIRS[3];
    static const double LIGHT_INTENSITY[3]; ///< 0: off
    static const double LIGHT_SHININESS[3]; ///< 0: no highlight
    // The line parameters exist, but no program uses them.
    static const algebra3d::Vector3<double> LINE_COLORS[2];
    static const double LINE_ALPHA[2];
    static const double LINE_MARGINS[2];
    static const int LINE_NUM_STEPS[2];
    static const double LINE_STEPS[2];

protected:
    ~SoGeneralScene() override;
    /// Builds the skeleton.
    void initScene();
    /// Builds both programs from the library's shader texts, and attaches parameters.
    void prepareShaders();
    /// Makes and sets all parameters.
    void prepareShaderParams();

private:
    SoSeparator* sceneRoot = nullptr;
    SoSeparator* solidGroup = nullptr;
    SoSeparator* shadedGroup = nullptr;
    SoSeparator* changingGroup = nullptr;

    SoShaderParameter1i* isPersp = nullptr;
    SoShaderParameter1i* useTexture = nullptr;
    // One name, two values: off in the solid program, on in the shaded one.
    SoShaderParameter1i* useLightOff = nullptr;
    SoShaderParameter1i* useLightOn = nullptr;
    SoShaderParameterArray3f* lightDir = nullptr;
    SoShaderParameterArray1f* lightIntensity = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
    SoShaderParameterArray4f* lineColors = nullptr;
    SoShaderParameterArray1f* margins = nullptr;
    SoShaderParameterArray1i* numSteps = nullptr;
    SoShaderParameterArray1f* steps = nullptr;

    SoSwitch* modeSwitch = nullptr;
    SoShaderProgram* solidProgram = nullptr;
    SoShaderProgram* shadedProgram = nullptr;
    SoClipPlane* clipPlane = nullptr; ///< a child of the changing group, or null
    SoComplexity* complexity = nullptr;
    SoDrawStyle* drawStyle = nullptr;
    int drawStyleIndex = 0;

    float lineWidthMin = 0.125f;
    float lineWidthMax = 0.125f;
    float lineWidthStep = 0;
    float lineWidth = 0;

    ColourMapper defaultMapper;
    ColourMapper* colourMapper = &defaultMapper;

    // Corners of the box that was last computed through this node.
    float bbMin[3] = {};
    float bbMax[3] = {};
};

#endif
