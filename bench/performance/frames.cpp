// SPDX-License-Identifier: GPL-3.0-or-later
// What the frames of a rod cost. With arguments it only draws, for the counting of
// instructions: frames SCENE POINTS FRAMES, where SCENE is one of the scenes below; and prints
// the seconds of a frame.
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <Inventor/C/glue/gl.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <OffscreenContext.h>
#include <SoRod.h>

#include "measuring.h"

namespace {

const int SLICES = 12, SUBSEGMENTS = 10;
const int COLUMNS = SLICES + 1 + 2; // of the tube and the ribbon

int rowsOf(int points) { return SUBSEGMENTS * (points - 1) + 1; }

using Points = std::vector<algebra3d::Vector3<double>>;
using Rotations = std::vector<algebra3d::Quaternion<double>>;

// A helix, a little wider or narrower.
Points makePoints(int count, double radius)
{
    Points points;
    for (int i = 0; i < count; ++i) {
        const double t = 0.1 * i;
        points.emplace_back(radius * std::cos(t), radius * std::sin(t), 0.1 * t);
    }
    return points;
}

void renderMeshes(void* shown, SoAction* action)
{
    if (!action->isOfType(SoGLRenderAction::getClassTypeId()))
        return;
    auto& rod = *static_cast<SoRod*>(shown);
    rod.getTubeMesh()->render(static_cast<SoGLRenderAction*>(action), 0);
    rod.getRibbonMesh()->render(static_cast<SoGLRenderAction*>(action), 1);
}

class Scene
{
public:
    Scene(const std::string& sceneName, int pointCount)
        : name(sceneName), count(pointCount), points{makePoints(count, 1), makePoints(count, 1.01)}
    {
        root->ref();
        root->addChild(camera);
        if (name == "empty")
            return;
        if (name == "recoloured" || name == "coloured") {
            auto* binding = new SoMaterialBinding;
            binding->value = SoMaterialBinding::PER_VERTEX;
            root->addChild(binding);
            root->addChild(material);
            recolour(0);
        }
        rod->ref();
        rod->setData(points[0], rotations);
        if (name == "immediate") {
            auto* meshes = new SoCallback;
            meshes->setCallback(renderMeshes, rod);
            root->addChild(meshes);
        } else {
            root->addChild(rod);
        }
        camera->viewAll(root, region);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene()
    {
        root->unref();
        if (name != "empty")
            rod->unref();
    }

    void draw(SoGLRenderAction& action, int frame)
    {
        if (name == "moving")
            camera->position =
                camera->position.getValue() + SbVec3f(frame % 2 ? 0.001f : -0.001f, 0, 0);
        if (name == "changing" || name == "coloured" || name == "building")
            rod->setData(points.at(std::size_t(frame % 2)), rotations);
        if (name == "recoloured")
            recolour(frame);
        if (name == "widened") {
            rod->setTubeRadius(frame % 2 ? 0.05 : 0.06);
            rod->generate();
        }
        if (name == "building")
            return;
        action.apply(root);
        glFlush(); // as whoever shows a frame does: until then a driver may keep its buffers
    }

    const SbViewportRegion region{320, 240};

private:
    // Of the tube's rows, then of the ribbon's.
    void recolour(int frame)
    {
        const int rows = 2 * rowsOf(count);
        if (material->diffuseColor.getNum() == 0 || material->diffuseColor.getNum() != rows) {
            material->diffuseColor.setNum(rows);
            for (int i = 0; i < rows; ++i)
                material->diffuseColor.set1Value(i, float(i % 256) / 255, 0.5f, 1);
        }
        material->diffuseColor.set1Value(0, float(frame % 2), 0, 0);
    }

    const std::string name;
    const int count;
    const std::array<Points, 2> points;
    const Rotations rotations = Rotations(std::size_t(count));
    SoSeparator* const root = new SoSeparator;
    SoOrthographicCamera* const camera = new SoOrthographicCamera;
    SoMaterial* const material = new SoMaterial;
    SoRod* const rod = new SoRod(0.05, 0.1, SLICES, SUBSEGMENTS, true, true, false);
};

// Whether there is OpenGL to draw with.
bool draw(const std::string& name, int points, int frames)
{
    SoDB::init();
    SoInteraction::init();
    SoMeshShape::initClass();
    SoRod::initClass();
    OffscreenContext::install();

    void* context = cc_glglue_context_create_offscreen(320, 240);
    if (!context || !cc_glglue_context_make_current(context))
        return false;
    Scene scene(name, points);
    SoGLRenderAction action(scene.region);
    action.setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
    const int warm = std::min(frames, 2);
    for (int i = 0; i < warm; ++i)
        scene.draw(action, i);
    const auto begin = std::chrono::steady_clock::now();
    for (int i = warm; i < frames; ++i)
        scene.draw(action, i);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    std::cout << seconds.count() / std::max(frames - warm, 1) << "\n";
    cc_glglue_context_reinstate_previous(context);
    return true;
}

#ifdef STRANDVIEW_PEER
// What a program prints; negative if it fails.
double printedBy(const std::string& command)
{
    FILE* const output = popen(command.c_str(), "r");
    if (!output)
        return -1;
    double number = -1;
    const bool isRead = std::fscanf(output, "%lf", &number) == 1;
    return pclose(output) == 0 && isRead ? number : -1;
}
#endif

// Both in turn, so that other work on the machine disturbs both.
void addPeer(Table& table, [[maybe_unused]] const std::string& program)
{
    for (const int points : {1000, 10000, 100000}) {
        const std::string what = "New data given and drawn, " + std::to_string(points) + " points";
#ifdef STRANDVIEW_PEER
        const std::string size = std::to_string(points) + " ";
        const std::string frames = std::to_string(std::max(300000 / points, 6));
        std::vector<double> ours, peers;
        for (int round = 0; round < 5; ++round) {
            ours.push_back(printedBy(program + " changing " + size + frames));
            peers.push_back(printedBy(std::string(STRANDVIEW_PEER " ") + size + frames));
        }
        if (median(ours) > 0 && *std::min_element(peers.begin(), peers.end()) > 0) {
            table.compare(what, 1e3 * median(ours), "VTK, the tube alone", 1e3 * median(peers),
                          "ms", Table::Goal::AtLeast, 4);
            continue;
        }
        table.missing(what, "VTK cannot draw here");
#else
        table.missing(what, "VTK is not there");
#endif
    }
}

class Counter
{
public:
    explicit Counter(const char* programPath) : program(programPath) {}

    /// The instructions of each frame after so many that are not counted.
    double perFrame(const std::string& scene, int points, int before, int frames)
    {
        const double without = total(scene, points, before);
        const double with = total(scene, points, before + frames);
        failed = failed || without < 0 || with < 0;
        return (with - without) / frames;
    }
    bool hasFailed() const { return failed; }

private:
    double total(const std::string& scene, int points, int frames) const
    {
        return countInstructions(program, {scene, std::to_string(points), std::to_string(frames)});
    }

    std::string program;
    bool failed = false;
};

void addUnchanged(Table& table, Counter& counter)
{
    const struct
    {
        int points;
        const char* name;
    } sizes[] = {{70, "10⁴"}, {700, "10⁵"}, {7000, "10⁶"}};
    double smallest = 0, smallestMoving = 0;
    for (const auto& [points, name] : sizes) {
        const std::string of = std::string(", ") + name + " vertices";
        const double still = counter.perFrame("still", points, 10, 1000);
        const double moving = counter.perFrame("moving", points, 10, 1000);
        if (counter.hasFailed())
            return;
        table.limit("Unchanged frame" + of, still, "instructions", 34000);
        table.limit("Unchanged frame, camera moving" + of, moving, "instructions", 34000);
        if (points == sizes[0].points) {
            smallest = still;
            smallestMoving = moving;
            continue;
        }
        table.compare("Unchanged frame" + of, still, "10⁴ vertices", smallest, "instructions",
                      Table::Goal::AtMost, 1.02);
        table.compare("Unchanged frame, camera moving" + of, moving, "10⁴ vertices", smallestMoving,
                      "instructions", Table::Goal::AtMost, 1.02);
    }
}

void addChanged(Table& table, Counter& counter, int points, double empty)
{
    const int rows = rowsOf(points);
    const double vertices = double(rows) * COLUMNS;
    const std::string of = ", " + std::to_string(points) + " points";
    const int frames = points > 1000 ? 1 : 4; // of the many one tells as much
    const auto perVertex = [&](const char* scene, double without) {
        return (counter.perFrame(scene, points, 2, frames) - without) / vertices;
    };
    const double building = perVertex("building", 0);
    const double changing = perVertex("changing", empty);
    const double coloured = perVertex("coloured", empty);
    const double recoloured = perVertex("recoloured", empty);
    const double widened = perVertex("widened", empty);
    const double immediate = perVertex("immediate", empty);
    if (counter.hasFailed())
        return;
    const std::string unit = "instructions/vertex";
    table.limit("New data given" + of, building, unit, 55);
    table.limit("The frame after new data" + of, changing - building, unit, 20);
    table.limit("The frame after new data, with a colour per row" + of, coloured - building, unit,
                20);
    table.compare("The frame after new data" + of, changing - building, "immediate mode", immediate,
                  unit, Table::Goal::AtLeast, 20);
    table.limit("New data given and the frame after it, per row" + of, changing * COLUMNS,
                "instructions", 1100);
    table.limit("New colours and the frame after them" + of, recoloured, unit, 10);
    table.compare("Another radius and the frame after it" + of, widened, "new data", changing, unit,
                  Table::Goal::AtMost, 1.02);
}

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
        "without the graphics\ndriver's share (`GALLIUM_NOOP=1`); those of a frame after a change "
        "without those of an empty\nscene. Tubes have 12 slices and 10 subsegments. VTK's tube "
        "filter is given as many samples, "
        "ready-made;\nits times and those beside them are of both cores.");
    Counter counter(arguments[0]);
    const double empty = counter.perFrame("empty", 2, 10, 1000);
    if (!counter.hasFailed())
        table.value("Empty scene", empty, "instructions");
    addUnchanged(table, counter);
    for (const int points : {1000, 10000})
        addChanged(table, counter, points, empty);
    if (counter.hasFailed())
        table.missing("Frames", "valgrind or OpenGL cannot run");
    addPeer(table, arguments[0]);
    table.print();
}
