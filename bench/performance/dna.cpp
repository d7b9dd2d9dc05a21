// SPDX-License-Identifier: GPL-3.0-or-later
// What a DNA costs per base pair. With arguments it only builds or draws, for the counting of
// instructions: dna PAIRS [FRAMES [changed]], the latter with new data before each frame.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <malloc.h>

#include <Inventor/SoDB.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <Inventor/nodes/SoTransform.h>
#include <OffscreenContext.h>
#include <SoDNA.h>
#include <SoGeneralScene.h>
#include <support/IdealDna.h>

#include "measuring.h"

namespace {

SoDNA* newDna()
{
    auto* dna = new SoDNA;
    dna->ref();
    return dna;
}

void build(const IdealDna& ideal, SoDNA* dna)
{
    ideal.give(*dna);
    dna->generate();
}

// Looks at the pairs, which makes their nodes.
void ask(SoDNA* dna)
{
    for (int group : {0, 1})
        static_cast<SoGroup*>(dna->getChild(group))->getNumChildren();
}

enum class Drawn {
    Dna,
    Bases,  // the DNA's graph alone: its bases draw themselves
    ByCoin, // Coin's own way: nothing is drawn from buffers under an override
};

// A DNA that moves from frame to frame, lit by the programs of a scene, as a viewer shows it.
class MovingScene
{
public:
    explicit MovingScene(int pairs)
        : frames{IdealDna(irregularSequence(std::size_t(pairs))),
                 IdealDna(irregularSequence(std::size_t(pairs)), 3.3, 0.6)}
    {
        root->ref();
        root->renderCaching = SoSeparator::OFF;
        auto* camera = new SoOrthographicCamera;
        root->addChild(camera);
        auto* lit = new SoGeneralScene;
        lit->addShaded(dna);
        root->addChild(lit);
        build(frames[0], dna);
        camera->viewAll(root, region);
    }
    ~MovingScene()
    {
        root->unref();
        dna->unref();
    }

    bool draw()
    {
        shown = 1 - shown;
        build(frames[shown], dna);
        return renderer.render(root);
    }

private:
    const SbViewportRegion region{200, 200};
    const IdealDna frames[2];
    int shown = 0;
    SoSeparator* const root = new SoSeparator;
    SoDNA* const dna = newDna();
    SoOffscreenRenderer renderer{region};
};

// A DNA under a camera and a light.
class Scene
{
public:
    Scene(int pairs, Drawn drawn)
    {
        root->ref();
        root->renderCaching = SoSeparator::OFF; // as under a viewer's camera and lights
        auto* camera = new SoOrthographicCamera;
        root->addChild(camera);
        root->addChild(new SoDirectionalLight);
        build(IdealDna(irregularSequence(std::size_t(pairs))), dna);
        if (drawn == Drawn::ByCoin) {
            auto* hints = new SoShapeHints;
            hints->setOverride(TRUE);
            root->addChild(hints);
        }
        if (drawn != Drawn::Dna) {
            root->addChild(dna->getChild(0));
            root->addChild(dna->getChild(1));
        } else {
            root->addChild(dna);
        }
        camera->viewAll(root, region);
    }
    ~Scene()
    {
        root->unref();
        dna->unref();
    }

    bool draw() { return renderer.render(root); }

private:
    const SbViewportRegion region{200, 200};
    SoSeparator* const root = new SoSeparator;
    SoDNA* const dna = newDna(); // its graph goes with it
    SoOffscreenRenderer renderer{region};
};

const int FIRST_FRAMES = 8; // until Coin has all its caches

void countFrames(Table& table, const std::string& program, int pairs, const std::string& what,
                 bool changed, double limit)
{
    const int frames = 10;
    const auto count = [&](int number) {
        std::vector<std::string> arguments{std::to_string(pairs), std::to_string(number)};
        if (changed)
            arguments.emplace_back("changed");
        return countInstructions(program, arguments);
    };
    const double first = count(FIRST_FRAMES), all = count(FIRST_FRAMES + frames);
    if (first < 0 || all < 0)
        table.missing(what, "valgrind or OpenGL cannot run");
    else
        table.limit(what, (all - first) / frames / pairs, "instructions/pair", limit);
}

void measureFrames(Table& table, int pairs, const std::string& name)
{
    Scene drawn(pairs, Drawn::Dna), bases(pairs, Drawn::Bases), traversed(pairs, Drawn::ByCoin);
    for (int frame = 0; frame < FIRST_FRAMES; ++frame) {
        drawn.draw();
        bases.draw();
        traversed.draw();
    }
    const std::vector<double> frames =
        medianSeconds({[&] { drawn.draw(); }, [&] { bases.draw(); }, [&] { traversed.draw(); }});
    const std::string frame = "Unchanged frame, " + name + " pairs";
    table.limit(frame, frames[0] / pairs * 1e9, "ns/pair", 1000);
    table.compare(frame, frames[0] / pairs * 1e9, "the graph traversed", frames[2] / pairs * 1e9,
                  "ns/pair", Table::Goal::AtLeast, 30);
    table.compare(frame + " of bases without a DNA", frames[1] / pairs * 1e9, "the graph traversed",
                  frames[2] / pairs * 1e9, "ns/pair", Table::Goal::None, 0);
}

// The nodes of as many pairs, made without a DNA: what Coin takes for them.
void addNodes(SoGroup* group, int pairs, SoNode* placed)
{
    for (int i = 0; i < 3 * pairs; ++i) {
        auto* transform = new SoTransform;
        transform->translation = SbVec3f(0, 0, float(i));
        transform->rotation = SbRotation(0, 0, 1, 0);
        auto* separator = new SoSeparator;
        separator->addChild(transform);
        separator->addChild(placed);
        group->addChild(separator);
    }
}

// The least seconds of filling a new node, small ones more often: in memory that the process
// has, or in fresh memory, which the system has to give.
template <typename Node>
double leastSeconds(int pairs, bool fresh, const std::function<void(Node*)>& fill)
{
    double least = 0;
    for (int i = 0; i < std::max(5, 10000 / pairs); ++i) {
        auto* node = new Node;
        node->ref();
        if (fresh)
            malloc_trim(0);
        const double took = secondsOf([&] { fill(node); });
        least = i == 0 ? took : std::min(least, took);
        node->unref();
    }
    return least;
}

// Compares the instructions of a pair with those at a tenth of the length, and returns them.
// A program without pairs takes so many.
double countBuilding(Table& table, const std::string& program, double none, int pairs,
                     const std::string& name, double before)
{
    const std::string what = "Data given and generated, " + name + " pairs";
    const double all = countInstructions(program, {std::to_string(pairs)});
    if (none < 0 || all < 0) {
        table.missing(what, "valgrind cannot run");
        return 0;
    }
    const double each = (all - none) / pairs;
    if (before > 0)
        table.compare(what, each, "a tenth of the length", before, "instructions/pair",
                      Table::Goal::AtMost, 1.1);
    else
        table.value(what, each, "instructions/pair");
    return each;
}

void measureBuilding(Table& table, int pairs, const std::string& name)
{
    const IdealDna ideal(irregularSequence(std::size_t(pairs)));
    SoDNA* const dna = newDna();
    const std::size_t before = mallinfo2().uordblks;
    build(ideal, dna);
    const double bytes = double(mallinfo2().uordblks - before);
    table.limit("Memory, " + name + " pairs", bytes / pairs, "bytes/pair", 500);
    const double again = medianSeconds({[&] { dna->generate(); }})[0];
    table.limit("Generated again, " + name + " pairs", again / pairs * 1e9, "ns/pair", 800);
    ask(dna);
    const double askedBytes = double(mallinfo2().uordblks - before);
    table.limit("Memory, " + name + " pairs that were asked for", askedBytes / pairs, "bytes/pair",
                5000);

    const auto fill = [&](SoDNA* empty) { build(ideal, empty); };
    const auto fillAndAsk = [&](SoDNA* empty) {
        build(ideal, empty);
        ask(empty);
    };
    auto* placed = new SoSeparator;
    placed->ref();
    const double kept = leastSeconds<SoDNA>(pairs, false, fill);
    const double first = leastSeconds<SoDNA>(pairs, true, fill);
    const double asked = leastSeconds<SoDNA>(pairs, true, fillAndAsk);
    const double nodes =
        leastSeconds<SoGroup>(pairs, true, [&](SoGroup* group) { addNodes(group, pairs, placed); });
    placed->unref();
    dna->unref();
    const std::string what = "Data given and generated, " + name + " pairs";
    table.limit(what + ", in memory that is there", kept / pairs * 1e9, "ns/pair", 800);
    table.limit(what + ", in fresh memory", first / pairs * 1e9, "ns/pair", 800);
    table.compare(what + ", in fresh memory, and asked for", asked / pairs * 1e9,
                  "Coin's nodes alone", nodes / pairs * 1e9, "ns/pair", Table::Goal::None, 0);
}

// The program's exit status.
template <typename AnyScene>
int drawFrames(AnyScene& scene, int frames)
{
    bool drawn = true;
    for (int frame = 0; frame < frames; ++frame)
        drawn = scene.draw() && drawn;
    return drawn ? 0 : 1;
}

} // namespace

int main(int count, char** arguments)
{
    // Mesa's driver then does nothing: what is left is the processor's share, on one thread.
    setenv("GALLIUM_NOOP", "1", 1);
    setenv("GALLIUM_THREAD", "0", 1);
    setenv("LP_NUM_THREADS", "0", 1);
    SoDB::init();
    OffscreenContext::install();
    SoNucleobase::initClass();
    SoDNA::initClass();
    SoGeneralScene::initClass();
    if (count == 2) {
        build(IdealDna(irregularSequence(std::size_t(std::atoi(arguments[1])))), newDna());
        return 0;
    }
    if (count == 3) {
        Scene scene(std::atoi(arguments[1]), Drawn::Dna);
        return drawFrames(scene, std::atoi(arguments[2]));
    }
    if (count == 4) {
        MovingScene scene(std::atoi(arguments[1]));
        return drawFrames(scene, std::atoi(arguments[2]));
    }

    Table table(
        "DNA",
        "What a base pair costs, without the graphics driver's share (`GALLIUM_NOOP=1`): to draw "
        "it again where\nnothing changed, with new data under a scene's programs, and to build "
        "it, without\nthe nodes of its pairs or, once they are asked for, with them. The graph "
        "traversed is\nthe same one, drawn in Coin's own way: without our buffers, "
        "with its caches. Fresh memory is what the\nprocess did not have before; Coin's nodes "
        "alone are as many separators and transforms, made without a `SoDNA`.");
    const struct
    {
        int pairs;
        const char* name;
    } sizes[] = {{1000, "10³"}, {10000, "10⁴"}};
    for (const auto& [pairs, name] : sizes) {
        const std::string ofPairs = std::string(", ") + name + " pairs";
        countFrames(table, arguments[0], pairs, "Unchanged frame" + ofPairs, false, 9000);
        countFrames(table, arguments[0], pairs, "New data and their frame" + ofPairs, true, 4000);
        measureFrames(table, pairs, name);
    }
    const std::vector<std::pair<int, std::string>> lengths{
        {100, "10²"}, {1000, "10³"}, {10000, "10⁴"}, {100000, "10⁵"}};
    const double none = countInstructions(arguments[0], {"0"});
    double before = 0;
    for (const auto& [pairs, name] : lengths) {
        before = countBuilding(table, arguments[0], none, pairs, name, before);
        measureBuilding(table, pairs, name);
    }
    table.print();
}
