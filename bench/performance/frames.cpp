// SPDX-License-Identifier: GPL-3.0-or-later
// What the frames of a rod cost. With arguments it only draws, for the counting of
// instructions: frames SCENE VERTICES FRAMES, where SCENE is empty, still, moving (the
// camera) or changing (the rod).
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include <Inventor/C/glue/gl.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <OffscreenContext.h>
#include <SoRod.h>

#include "measuring.h"

namespace {

// A helix whose tube has about so many vertices.
SoRod* makeRod(int vertices)
{
    const int slices = 12, subsegments = 10;
    const int points = std::max(2, vertices / (slices * subsegments));
    std::vector<algebra3d::Vector3<double>> centreline;
    for (int i = 0; i < points; ++i) {
        const double t = 0.1 * i;
        centreline.emplace_back(std::cos(t), std::sin(t), 0.1 * t);
    }
    auto* rod = new SoRod(0.05, 0.1, slices, subsegments, true, true, false);
    rod->setData(centreline,
                 std::vector<algebra3d::Quaternion<double>>(static_cast<std::size_t>(points)));
    return rod;
}

// Whether there is OpenGL to draw with.
bool draw(const std::string& scene, int vertices, int frames)
{
    SoDB::init();
    SoInteraction::init();
    SoMeshShape::initClass();
    SoRod::initClass();
    OffscreenContext::install();

    const SbViewportRegion region(320, 240);
    auto* root = new SoSeparator;
    root->ref();
    auto* camera = new SoOrthographicCamera;
    root->addChild(camera);
    SoRod* rod = nullptr;
    if (scene != "empty") {
        rod = makeRod(vertices);
        root->addChild(rod);
    }
    camera->viewAll(root, region);

    void* context = cc_glglue_context_create_offscreen(320, 240);
    if (!context || !cc_glglue_context_make_current(context))
        return false;
    SoGLRenderAction action(region);
    action.setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
    for (int i = 0; i < frames; ++i) {
        if (scene == "moving")
            camera->position =
                camera->position.getValue() + SbVec3f(i % 2 ? 0.001f : -0.001f, 0, 0);
        if (scene == "changing")
            rod->touch();
        action.apply(root);
    }
    cc_glglue_context_reinstate_previous(context);
    root->unref();
    return true;
}

class Counter
{
public:
    explicit Counter(const char* programPath) : program(programPath) {}

    /// The instructions of each frame after so many that are not counted.
    double perFrame(const std::string& scene, int vertices, int before, int frames)
    {
        const double without = total(scene, vertices, before);
        const double with = total(scene, vertices, before + frames);
        failed = failed || without < 0 || with < 0;
        return (with - without) / frames;
    }
    bool hasFailed() const { return failed; }

private:
    double total(const std::string& scene, int vertices, int frames) const
    {
        return countInstructions(program,
                                 {scene, std::to_string(vertices), std::to_string(frames)});
    }

    std::string program;
    bool failed = false;
};

} // namespace

int main(int count, char** arguments)
{
    // Mesa's driver then does nothing: what is left is the processor's share.
    setenv("GALLIUM_NOOP", "1", 1);
    setenv("LP_NUM_THREADS", "0", 1);
    if (count == 4)
        return draw(arguments[1], std::atoi(arguments[2]), std::atoi(arguments[3])) ? 0 : 1;

    Table table(
        "Frames",
        "The instructions of one frame of a scene with a camera and a rod, tube and ribbon, "
        "without the graphics\ndriver's share (`GALLIUM_NOOP=1`). The first frame after a "
        "change is drawn in immediate mode,\nthe second fills vertex buffers, those after "
        "it draw from them.");
    Counter counter(arguments[0]);
    const std::string unit = "instructions";
    const double empty = counter.perFrame("empty", 0, 10, 1000);
    const struct
    {
        int vertices;
        const char* name;
    } sizes[] = {{10000, "10⁴"}, {100000, "10⁵"}, {1000000, "10⁶"}};
    if (!counter.hasFailed())
        table.value("Empty scene", empty, unit);
    double smallest = 0, smallestMoving = 0;
    for (const auto& [vertices, name] : sizes) {
        const std::string of = std::string(", ") + name + " vertices";
        const double still = counter.perFrame("still", vertices, 10, 1000);
        const double moving = counter.perFrame("moving", vertices, 10, 1000);
        const double filling = counter.perFrame("still", vertices, 1, 1);
        const double changing = counter.perFrame("changing", vertices, 1, 1);
        if (counter.hasFailed()) {
            table.missing("Frames" + of, "valgrind or OpenGL cannot run");
            continue;
        }
        table.limit("Unchanged frame" + of, still, unit, 34000);
        table.limit("Unchanged frame, camera moving" + of, moving, unit, 34000);
        if (vertices == sizes[0].vertices) {
            smallest = still;
            smallestMoving = moving;
        } else {
            table.compare("Unchanged frame" + of, still, "10⁴ vertices", smallest, unit,
                          Table::Goal::AtMost, 1.02);
            table.compare("Unchanged frame, camera moving" + of, moving, "10⁴ vertices",
                          smallestMoving, unit, Table::Goal::AtMost, 1.02);
        }
        table.compare("Frame that fills the buffers" + of, filling, "immediate mode", changing,
                      unit, Table::Goal::AtMost, 1.5);
    }
    table.print();
}
