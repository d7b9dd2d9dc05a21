// SPDX-License-Identifier: GPL-3.0-or-later
// updateScene() of scene/SceneBuilder.h: what a frame shows is what a new scene of it would show.
#include "scene/SceneBuilder.h"

#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <regex>
#include <set>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>
#include <OffscreenContext.h>
#include <SoBirod.h>
#include <SoDNA.h>
#include <SoRod.h>
#include <algebra3d/Matrix3.h>
#include <gmock/gmock.h>

#include <strandview/analysis/parallelTransport.h>

#include "request/settings.h"
#include "request/thingTexts.h"
#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/Legend.h"
#include "scene/Progress.h"
#include "scene/prepareLook.h"
#include "support/RandomRods.h"
#include "support/StoppingAt.h"
#include "support/graph.h"
#include "support/initialiseSceneOnce.h"
#include "support/renderPicture.h"

namespace strandview {

using algebra3d::Matrix3;
using algebra3d::Quaternion;
using algebra3d::Vector3;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

enum Kind { RODS, BIRODS, MARKERS, ARROWS, DNAS, LONE_BASES, FRAMES, KINDS }; // as they are drawn

// A piece of a helix about a line along z, whose turns never meet.
struct Helix
{
    Vector3<double> centre;
    double radius;
    double phase;
    double speed; // radians between points
    int points;

    Vector3<double> at(int i) const
    {
        const double angle = phase + speed * i;
        return centre +
               Vector3<double>(radius * std::cos(angle), radius * std::sin(angle), 0.4 * i);
    }
    std::vector<Vector3<double>> all() const
    {
        std::vector<Vector3<double>> found;
        for (int i = 0; i < points; ++i)
            found.push_back(at(i));
        return found;
    }
    // d3 along the helix.
    std::vector<Quaternion<double>> frames() const
    {
        std::vector<Quaternion<double>> found;
        for (int i = 0; i < points; ++i) {
            const double angle = phase + speed * i;
            const Vector3<double> d1(std::cos(angle), std::sin(angle), 0);
            const Vector3<double> d3 = Vector3<double>(-radius * speed * std::sin(angle),
                                                       radius * speed * std::cos(angle), 0.4)
                                           .getUnit();
            found.push_back(Matrix3<double>(d1, d3.cross(d1), d3).getQuaternion());
        }
        return found;
    }
};

Rod makeRod(const Helix& helix, const std::string& origin)
{
    Rod rod;
    rod.origin = origin;
    rod.points = helix.all();
    rod.rotations = helix.frames();
    return rod;
}

Birod makeBirod(const Helix& helix, const std::string& origin)
{
    Birod birod;
    birod.origin = origin;
    birod.points = helix.all();
    birod.rotations = helix.frames();
    for (int i = 0; i < helix.points; ++i) {
        birod.points1.push_back(helix.at(i) + Vector3<double>(0.5, 0, 0));
        birod.points2.push_back(helix.at(i) - Vector3<double>(0.5, 0, 0));
    }
    birod.rotations1 = birod.rotations2 = birod.rotations;
    return birod;
}

Dna makeDna(const Helix& helix, const std::string& bases, const std::string& origin)
{
    Dna dna;
    dna.origin = origin;
    dna.bases = bases;
    for (std::size_t i = 0; i < bases.size(); ++i) {
        dna.pairPoints.push_back(helix.at(int(i)));
        dna.pairRotations.push_back(helix.frames()[i]);
    }
    dna.points1 = dna.points2 = dna.pairPoints;
    dna.rotations1 = dna.rotations2 = dna.pairRotations;
    return dna;
}

LoneBase makeLoneBase(const Vector3<double>& point, char letter, const std::string& origin)
{
    LoneBase base;
    base.origin = origin;
    base.base = letter;
    base.point = point;
    return base;
}

Marker makeMarker(const Vector3<double>& point, const std::string& colour, long long id)
{
    Marker marker;
    marker.origin = "glyphs.json: markers[0]";
    marker.point = point;
    marker.colour = colour;
    marker.id = id;
    return marker;
}

Arrow makeArrow(const Vector3<double>& from, const Vector3<double>& to)
{
    Arrow arrow;
    arrow.origin = "glyphs.json: arrows[0]";
    arrow.from = from;
    arrow.to = to;
    return arrow;
}

Frame makeFrame(const Vector3<double>& point, const Quaternion<double>& rotation)
{
    Frame frame;
    frame.origin = "glyphs.json: frames[0]";
    frame.point = point;
    frame.rotation = rotation;
    return frame;
}

Helix helixAt(double x, double radius = 1, int points = 8)
{
    return {Vector3<double>(x, 0, 0), radius, 0.3, 0.5, points};
}

// One of each, or as they are a little later.
Configuration oneOfEach(double time = 0)
{
    Configuration data;
    data.rods = {makeRod(helixAt(time, 1 + time), "rods.txt:1: rod 1")};
    data.birods = {makeBirod(helixAt(4, 1 + time), "ladder.json: birods[0]")};
    data.dnas = {makeDna(helixAt(8 + time), time > 0 ? "CGTA" : "ACG", "dna.txt:1: DNA 1")};
    data.loneBases = {
        makeLoneBase({-20 + time, 0, 0}, time > 0 ? 'C' : 'T', "1xyz.pdb: chain A, residue 7")};
    data.markers = {makeMarker({-3, time, 0}, time > 0 ? "blue" : "red", time > 0 ? 8 : 7)};
    data.arrows = {makeArrow({-3, -3, 0}, {-1, -3 + time, time})};
    data.frames = {
        makeFrame({-5, 2, time}, Quaternion<double>(0, 0, std::sin(time), std::cos(time)))};
    return data;
}

void setScalar(Rod& rod, const std::function<double(double)>& value)
{
    Scalar scalar{"k", {}};
    for (std::size_t i = 0; i < rod.points.size(); ++i)
        scalar.values.push_back(value(double(i) / double(rod.points.size() - 1)));
    rod.scalars = {scalar};
}

// The colours of all materials, one after the other, with their numbers.
std::vector<float> coloursOf(DataScene* scene)
{
    std::vector<float> colours;
    for (const SoMaterial* material : allOf<SoMaterial>(scene)) {
        for (const SoMFColor* field : {&material->ambientColor, &material->diffuseColor}) {
            colours.push_back(float(field->getNum()));
            for (int k = 0; k < field->getNum(); ++k) {
                const SbColor& colour = (*field)[k];
                colours.insert(colours.end(), {colour[0], colour[1], colour[2]});
            }
        }
    }
    return colours;
}

const int WIDTH = 160, HEIGHT = 120; // of pictures

template <typename Look>
void forEachPixel(Look look)
{
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x)
            look(x, y);
    }
}

class SceneUpdateTest : public testing::Test
{
protected:
    SceneUpdateTest()
    {
        initialiseSceneOnce();
        OffscreenContext::install();
        renderer = std::make_unique<SoOffscreenRenderer>(SbViewportRegion(WIDTH, HEIGHT));
    }
    ~SceneUpdateTest() override
    {
        if (scene)
            scene->unref();
    }

    void build(const Configuration& first)
    {
        if (options.colourBy) {
            ReadReport report;
            colouring = makeColouring(options, first, report);
            ASSERT_TRUE(colouring) << report.error;
        }
        std::string error;
        StoppingAt never;
        scene = buildScene(first, makeStyle(options, first), colouring ? &*colouring : nullptr,
                           never, error);
        ASSERT_NE(scene, nullptr) << error;
        scene->ref();
    }

    std::string update(const Configuration& next)
    {
        StoppingAt never;
        return updateScene(*scene, next, never);
    }

    // Shows the same data as other options ask for.
    std::string restyle(const Options& other, const Configuration& data)
    {
        StoppingAt never;
        ReadReport report;
        std::optional<PreparedLook> look = prepareLook(other, data, report, never);
        if (!look)
            return report.error;
        const Colouring* ofLook = look->colouring ? &*look->colouring : nullptr;
        std::string error =
            restyleScene(*scene, data, look->style, ofLook, std::move(look->geometry), never);
        if (error.empty())
            colouring = look->colouring;
        return error;
    }

    // The same in other colours alone.
    void recolour(const Configuration& data)
    {
        StoppingAt never;
        ReadReport report;
        const std::optional<PreparedLook> look =
            prepareColours(options, data, data, nullptr, nullptr, report, never);
        ASSERT_TRUE(look) << report.error;
        EXPECT_TRUE(look->geometry.rods.empty());
        scene->setData(std::make_shared<const Configuration>(data));
        recolourScene(*scene, look->style, look->colouring ? &*look->colouring : nullptr);
        colouring = look->colouring;
    }

    // A new scene of a frame on the terms of the first one; with a reference.
    DataScene* buildAnew(const Configuration& frame)
    {
        const Style& style = scene->getStyle();
        StoppingAt never;
        std::string error;
        SceneGeometry geometry = computeGeometry(frame, style, scene->getPlacement(), never, error);
        EXPECT_EQ(error, "");
        std::optional<Colouring> followed;
        if (colouring)
            followed = followColouring(*colouring, frame);
        DataScene* anew = buildScene(frame, style, followed ? &*followed : nullptr,
                                     std::move(geometry), never, error);
        EXPECT_NE(anew, nullptr) << error;
        if (anew)
            anew->ref();
        return anew;
    }

    // Of the whole box, from above.
    ::Picture render(SoNode* shown, const SbBox3f& box)
    {
        auto* camera = new SoOrthographicCamera;
        camera->position = box.getCenter() + SbVec3f(0, 0, box.getSize().length());
        camera->height = 1.1f * std::max(box.getSize()[0], box.getSize()[1]);
        camera->nearDistance = 0;
        camera->farDistance = 2 * box.getSize().length();
        auto* root = new SoSeparator;
        root->ref();
        root->addChild(camera);
        root->addChild(shown);
        const ::Picture picture = renderPicture(*renderer, root);
        root->unref();
        return picture;
    }

    // The scene shows the frame as a new scene of it does, pixel for pixel.
    void expectShows(const Configuration& frame)
    {
        DataScene* anew = buildAnew(frame);
        ASSERT_NE(anew, nullptr);
        anew->showColours(scene->areColoursShown());
        for (std::size_t kind = 0; kind < KINDS; ++kind) {
            ASSERT_EQ(scene->getShown(kind).size(), anew->getShown(kind).size()) << kind;
            for (std::size_t i = 0; i < anew->getShown(kind).size(); ++i) {
                EXPECT_EQ(scene->getShown(kind)[i].name, anew->getShown(kind)[i].name);
                EXPECT_EQ(scene->getShown(kind)[i].box, anew->getShown(kind)[i].box);
            }
        }
        EXPECT_EQ(scene->getBox(), anew->getBox());
        EXPECT_TRUE(coloursOf(scene) == coloursOf(anew));
        const SbBox3f box = anew->getBox();
        if (!box.isEmpty()) {
            const Difference difference = compare(render(scene, box), render(anew, box));
            EXPECT_GT(difference.covered, 100);
            EXPECT_EQ(difference.pixels, 0) << difference;
        }
        anew->unref();
    }

    std::set<const SoNode*> allNodes()
    {
        const std::vector<SoNode*> all = allOf<SoNode>(scene);
        return {all.begin(), all.end()};
    }

    // What is told of what a ray from above through x and y hits; empty if nothing.
    std::string describe(float x, float y)
    {
        SoRayPickAction pick(SbViewportRegion(100, 100));
        pick.setRay(SbVec3f(x, y, 1000), SbVec3f(0, 0, -1));
        pick.apply(scene);
        const SoPickedPoint* point = pick.getPickedPoint();
        return point ? toLine(scene->describe(*point)) : "";
    }

    // The part that such a ray hits.
    std::optional<ThingPart> partAt(float x, float y)
    {
        SoRayPickAction pick(SbViewportRegion(100, 100));
        pick.setRay(SbVec3f(x, y, 1000), SbVec3f(0, 0, -1));
        pick.apply(scene);
        const SoPickedPoint* point = pick.getPickedPoint();
        const auto part = point ? scene->findPart(scene->placeOf(*point)) : std::nullopt;
        return part ? std::optional(part->part) : std::nullopt;
    }

    void setThings(const std::string& text)
    {
        options.things = {};
        ASSERT_EQ(readThings(text, options.things), "");
        scene->setLooks(options.things);
    }

    // Another scene, in these colours, without what is drawn over the data.
    void buildIn(const char* dna, const std::string& colourBy, const Configuration& data)
    {
        options.legend.place = LegendPlace::OFF;
        options.radius = 0.8;
        options.things = {};
        options.colourBy.reset();
        colouring.reset();
        if (!colourBy.empty())
            options.colourBy = colourBy;
        ASSERT_EQ(settingOf("dna").read(dna, options), "");
        if (scene)
            scene->unref();
        scene = nullptr;
        build(data);
    }

    // As windows and pictures blend what is seen through.
    ::Picture renderSorted(const SbBox3f& box)
    {
        SoGLRenderAction& action = *renderer->getGLRenderAction();
        action.setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
        return render(scene, box);
    }

    Options options;
    std::optional<Colouring> colouring;
    DataScene* scene = nullptr;
    std::unique_ptr<SoOffscreenRenderer> renderer;
};

TEST_F(SceneUpdateTest, ShowsTheNextFrameAsANewSceneDoes)
{
    build(oneOfEach());
    for (const double time : {0.2, 0.5, 0.0}) {
        SCOPED_TRACE(time);
        ASSERT_EQ(update(oneOfEach(time)), "");
        expectShows(oneOfEach(time));
    }
}

TEST_F(SceneUpdateTest, ShowsWhatTheNextFrameIsComparedWithAsANewSceneDoes)
{
    const auto reference = std::make_shared<const Configuration>(oneOfEach(0.6));
    const auto compared = [&](double time) {
        Configuration data = oneOfEach(time);
        data.reference = reference;
        return data;
    };
    options.compare = "reference.json";
    options.showGhost = true;
    build(compared(0));
    for (const double time : {0.2, 0.5, 0.0}) {
        SCOPED_TRACE(time);
        ASSERT_EQ(update(compared(time)), "");
        expectShows(compared(time));
    }
    const SbBox3f box = scene->getBox();
    const ::Picture with = render(scene, box);
    options.showGhost = false;
    ASSERT_EQ(restyle(options, compared(0)), "");
    const ::Picture without = render(scene, box);
    EXPECT_GT(compare(with, without).pixels, 100);
    DataScene* const anew = buildAnew(compared(0));
    EXPECT_EQ(scene->getBox(), anew->getBox());
    EXPECT_EQ(compare(render(anew, box), without).pixels, 0);
    anew->unref();
}

TEST_F(SceneUpdateTest, KeepsTheNodesOfDataThatStay)
{
    build(oneOfEach());
    std::vector<std::pair<SoSeparator*, SoNode*>> before;
    for (std::size_t kind = 0; kind < KINDS; ++kind) {
        ASSERT_EQ(scene->getShown(kind).size(), 1u);
        before.emplace_back(scene->getShown(kind)[0].group, scene->getShown(kind)[0].node);
    }
    ASSERT_EQ(update(oneOfEach(0.3)), "");
    for (std::size_t kind = 0; kind < KINDS; ++kind) {
        EXPECT_EQ(scene->getShown(kind)[0].group, before[kind].first) << kind;
        EXPECT_EQ(scene->getShown(kind)[0].node, before[kind].second) << kind;
    }
    EXPECT_EQ(scene->getShown(RODS)[0].node->getTypeId(), SoRod::getClassTypeId());
    EXPECT_EQ(scene->getShown(BIRODS)[0].node->getTypeId(), SoBirod::getClassTypeId());
}

TEST_F(SceneUpdateTest, OfRodsMakesNoNodeAtAll)
{
    options.colourBy = "k";
    Configuration first;
    for (int i = 0; i < 5; ++i) {
        first.rods.push_back(makeRod(helixAt(3 * i), "rod"));
        setScalar(first.rods.back(), [](double t) { return t; });
    }
    Configuration next = first;
    for (Rod& rod : next.rods) {
        rod.points[3].x += 0.2;
        setScalar(rod, [](double t) { return t * t; });
    }
    build(first);
    const std::set<const SoNode*> before = allNodes();
    EXPECT_GT(before.size(), 5u * 6u);
    ASSERT_EQ(update(next), "");
    EXPECT_EQ(allNodes(), before);
    expectShows(next);
}

TEST_F(SceneUpdateTest, OpensAndClosesARod)
{
    Configuration open;
    open.rods.resize(1);
    Rod& rod = open.rods[0];
    rod.points = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}};
    rod.rotations = parallelTransport(rod.points);
    Configuration closed = open;
    closed.rods[0].isClosed = true;
    build(open);
    const auto* const node = static_cast<const SoRod*>(scene->getShown(RODS)[0].node);
    for (const Configuration& frame : {closed, open, closed}) {
        ASSERT_EQ(update(frame), "");
        EXPECT_EQ(node->isClosed(), frame.rods[0].isClosed);
        EXPECT_EQ(node->getTubeMesh()->isMeetingItself(), frame.rods[0].isClosed);
    }
}

TEST_F(SceneUpdateTest, KeepsSlabsBackbonesAndBases)
{
    Configuration first, next;
    first.dnas = {makeDna(helixAt(0), "ACGT", "DNA")};
    first.loneBases = {makeLoneBase({30, 0, 0}, 'A', "base")};
    next.dnas = {makeDna(helixAt(1), "CCGTA", "DNA")};
    next.loneBases = {makeLoneBase({31, 0, 0}, 'G', "base"), makeLoneBase({41, 0, 0}, 'N', "base")};
    build(first);
    const auto kept = [this] {
        std::set<const SoNode*> nodes;
        for (const SoNode* node : allNodes()) {
            if (node->isOfType(SoRod::getClassTypeId()) || node->isOfType(SoDNA::getClassTypeId()))
                nodes.insert(node);
        }
        return nodes;
    };
    const std::set<const SoNode*> before = kept();
    EXPECT_EQ(before.size(), 3u);
    ASSERT_EQ(update(next), "");
    EXPECT_EQ(kept(), before);
    expectShows(next);
    // A backbone of the file takes the place of the ideal ones.
    next.dnas[0].molecule = 1;
    next.rods = {makeRod(helixAt(0, 9), "chain A")};
    next.rods[0].isBackbone = true;
    next.rods[0].molecule = 1;
    ASSERT_EQ(update(next), "");
    expectShows(next);
    next.rods[0].isBackbone = false;
    ASSERT_EQ(update(next), "");
    expectShows(next);
}

TEST_F(SceneUpdateTest, TheHeadOfABackboneFollowsTheColoursOfItsEnd)
{
    options.colourBy = "k";
    Configuration data;
    data.rods = {makeRod(helixAt(0, 9), "chain A")};
    data.rods[0].isBackbone = true;
    setScalar(data.rods[0], [](double t) { return t; });
    build(data);
    setScalar(data.rods[0], [](double t) { return 1 - t; });
    ASSERT_EQ(update(data), "");
    expectShows(data);
    scene->showColours(false);
    expectShows(data);
    scene->showColours(true);
    data.rods[0].scalars.clear();
    ASSERT_EQ(update(data), "");
    expectShows(data);
}

// As of data that are compared with a reference, which has as many points as some frames.
TEST_F(SceneUpdateTest, ColoursOfDataComeAndGoWithTheirScalar)
{
    options.colourBy = "k";
    options.dna.baseBoxes = options.dna.pairBoxes = true;
    Configuration with;
    with.dnas = {makeDna(helixAt(8), "ACG", "DNA"), makeDna(helixAt(-8), "TTA", "DNA 2")};
    with.dnas[0].scalars = {{"k", {1, 2, 3}}};
    with.birods = {makeBirod(helixAt(0), "birod")};
    with.birods[0].scalars = {{"k", {1, 2, 3, 4, 5, 6, 7, 8}}};
    Configuration other = with;
    other.dnas[0] = makeDna(helixAt(8), "ACGTA", "DNA");
    other.dnas[1].scalars = {{"k", {3, 2, 1}}};
    other.birods[0].scalars.clear();
    build(with);
    for (const Configuration& frame : {other, with, other, with}) {
        ASSERT_EQ(update(frame), "");
        expectShows(frame);
        scene->showColours(false);
        expectShows(frame);
        scene->showColours(true);
        expectShows(frame);
    }
}

TEST_F(SceneUpdateTest, AddsWhatAppearsAndDropsWhatWent)
{
    Configuration more = oneOfEach();
    more.rods.push_back(makeRod(helixAt(-4, 0.7), "rods.txt:1: rod 2"));
    more.birods.push_back(makeBirod(helixAt(0), "ladder.json: birods[1]"));
    more.dnas.push_back(makeDna(helixAt(-12), "TTT", "dna.txt:2: DNA 2"));
    more.loneBases.push_back(makeLoneBase({-30, 3, 0}, 'N', "1xyz.pdb: chain B, residue 1"));
    more.markers.push_back(makeMarker({2, 2, 2}, "green", 12));
    more.arrows.push_back(makeArrow({0, 0, 5}, {3, 3, 5}));
    more.frames.push_back(makeFrame({1, -4, 0}, Quaternion<double>()));
    build(oneOfEach());
    SoNode* const rod = scene->getShown(RODS)[0].node;
    ASSERT_EQ(update(more), "");
    expectShows(more);
    EXPECT_EQ(scene->getShown(RODS)[0].node, rod);
    ASSERT_EQ(update(Configuration()), "");
    expectShows(Configuration());
    ASSERT_EQ(update(more), "");
    expectShows(more);
    SoNode* const again = scene->getShown(RODS)[0].node;
    ASSERT_EQ(update(oneOfEach(0.1)), "");
    expectShows(oneOfEach(0.1));
    EXPECT_EQ(scene->getShown(RODS)[0].node, again);
}

TEST_F(SceneUpdateTest, TubesOfBirodsFollowTheColoursOfAsManyRodsAsThereAre)
{
    Configuration data = oneOfEach();
    build(data);
    data.rods.push_back(makeRod(helixAt(-4, 0.7), "rods.txt:1: rod 2"));
    ASSERT_EQ(update(data), "");
    expectShows(data);
}

TEST_F(SceneUpdateTest, LeavesPlacementStyleAndSideAlone)
{
    // Moved to the origin, and enlarged.
    Configuration first, next;
    Helix helix = helixAt(0);
    helix.centre = {1e4, 0, 0};
    first.rods = {makeRod(helix, "rod")};
    helix.centre = {1e4 + 1, 2, 30};
    next.rods = {makeRod(helix, "rod")};
    build(first);
    const Placement placement = scene->getPlacement();
    ASSERT_NE(placement.origin.x, 0);
    const double radius = static_cast<SoRod*>(scene->getShown(RODS)[0].node)->getTubeRadius();
    const std::optional<Side> side = scene->settle({}).side;
    ASSERT_EQ(update(next), "");
    EXPECT_EQ((scene->getPlacement().origin - placement.origin).getNorm(), 0);
    EXPECT_EQ(scene->getPlacement().scale, placement.scale);
    EXPECT_EQ(static_cast<SoRod*>(scene->getShown(RODS)[0].node)->getTubeRadius(), radius);
    EXPECT_EQ(scene->settle({}).side, side);
    expectShows(next);
}

TEST_F(SceneUpdateTest, TouchesNoCameraBesideTheScene)
{
    build(oneOfEach());
    auto* root = new SoSeparator;
    root->ref();
    auto* camera = new SoOrthographicCamera;
    root->addChild(camera);
    root->addChild(scene);
    const auto before = camera->getNodeId();
    const auto ofScene = scene->getNodeId();
    ASSERT_EQ(update(oneOfEach(0.4)), "");
    EXPECT_EQ(camera->getNodeId(), before);
    EXPECT_NE(scene->getNodeId(), ofScene) << "the window is told to draw again";
    root->unref();
}

TEST_F(SceneUpdateTest, PicksAreToldByTheNamesAndPlacesOfTheNewFrame)
{
    Configuration first, next;
    first.markers = {makeMarker({0, 0, 0}, "red", 7), makeMarker({20, 0, 0}, "red", 8)};
    build(first);
    EXPECT_THAT(describe(0, 0), EndsWith("glyphs.json: markers[0]: id 7"));
    next.markers = {makeMarker({40, 0, 0}, "red", 9)};
    ASSERT_EQ(update(next), "");
    EXPECT_EQ(describe(0, 0), "");
    EXPECT_EQ(describe(20, 0), "");
    EXPECT_THAT(describe(40, 0), StartsWith("point 40 0 "));
    EXPECT_THAT(describe(40, 0), EndsWith("glyphs.json: markers[0]: id 9"));
}

// A frame that cannot be shown, and the line about it.
struct Refused
{
    std::string name;
    std::function<void(Configuration&)> spoil;
    std::string error;
};

void PrintTo(const Refused& refused, std::ostream* stream) { *stream << refused.name; }

class RefusedFrameTest : public SceneUpdateTest, public testing::WithParamInterface<Refused>
{
};

TEST_P(RefusedFrameTest, LeavesTheSceneAsItWas)
{
    const Configuration first = oneOfEach();
    build(first);
    const auto id = scene->getNodeId();
    Configuration next = oneOfEach(0.5);
    next.rods.push_back(next.rods[0]);
    GetParam().spoil(next);
    EXPECT_THAT(update(next), StartsWith(GetParam().error));
    EXPECT_EQ(scene->getNodeId(), id) << "nothing below it was changed";
    expectShows(first);
}

INSTANTIATE_TEST_SUITE_P(
    , RefusedFrameTest,
    testing::Values(
        Refused{"MarkersColour", [](Configuration& data) { data.markers[0].colour = "bluish"; },
                "glyphs.json: markers[0].colour: found 'bluish', expected #rrggbb"},
        Refused{"ArrowsColour", [](Configuration& data) { data.arrows[0].colour = "#12"; },
                "glyphs.json: arrows[0].colour: found '#12', expected #rrggbb"},
        Refused{"Rod", [](Configuration& data) { data.rods[0].points[2] = data.rods[0].points[0]; },
                "rods.txt:1: rod 1.points[1]: found edges that turn straight back"},
        Refused{"Birod",
                [](Configuration& data) { data.birods[0].points2[2] = data.birods[0].points2[0]; },
                "ladder.json: birods[0].strand2.points[1]: found edges that turn straight back"},
        Refused{"Marker", [](Configuration& data) { data.markers[0].point.x = 1e25; },
                "found a scene that is 1e+25 across, expected at most 1e+19"},
        Refused{"MarkersSize", [](Configuration& data) { data.markers[0].size = 1e25; },
                "found a scene that is 2e+25 across, expected at most 1e+19"},
        Refused{"Arrow", [](Configuration& data) { data.arrows[0].to.y = -1e25; },
                "found a scene that is 1e+25 across, expected at most 1e+19"},
        Refused{"Frame", [](Configuration& data) { data.frames[0].size = 1e25; },
                "found a scene that is 2.2e+25 across, expected at most 1e+19"},
        Refused{"Dna", [](Configuration& data) { data.dnas[0].points1[1].z = 1e25; },
                "found a scene that is 1e+25 across, expected at most 1e+19"},
        Refused{"NewArrow",
                [](Configuration& data) {
                    data.arrows.push_back(makeArrow({0, 0, 0}, {0, 0, 1e25}));
                },
                "found a scene that is 1e+25 across, expected at most 1e+19"},
        Refused{"LongRod",
                [](Configuration& data) {
                    data.rods[0] = makeRod(helixAt(0, 1, 1000000), "rods.txt:1: rod 1");
                },
                "found 1056"}),
    [](const auto& test) { return test.param.name; });

TEST_F(SceneUpdateTest, StoppedAnywhereItLeavesTheSceneAsItWas)
{
    const Configuration first = oneOfEach();
    build(first);
    const auto id = scene->getNodeId();
    Configuration next = oneOfEach(0.5);
    next.dnas.push_back(next.dnas[0]);
    // Geometry of a rod, a birod and two DNA, then all eight.
    for (int i = 1; i <= 12; ++i) {
        StoppingAt progress(i);
        EXPECT_EQ(updateScene(*scene, next, progress), "building the scene was stopped") << i;
        EXPECT_EQ(scene->getNodeId(), id) << i;
    }
    StoppingAt progress(13);
    EXPECT_EQ(updateScene(*scene, next, progress), "");
    expectShows(next);
}

TEST_F(SceneUpdateTest, ColoursFollowTheScalarOnTheRangeOfTheFirstFrame)
{
    options.colourBy = "k";
    Configuration first, next;
    first.rods = {makeRod(helixAt(0), "rod"), makeRod(helixAt(4), "rod")};
    for (Rod& rod : first.rods)
        setScalar(rod, [](double t) { return 10 * t; });
    build(first);
    next = first;
    setScalar(next.rods[0], [](double t) { return 5 + 2 * t; });
    ASSERT_EQ(update(next), "");
    expectShows(next);
    EXPECT_EQ(scene->getColouring()->min, 0);
    EXPECT_EQ(scene->getColouring()->max, 10);
    EXPECT_FALSE(scene->getColouring()->isAbove);

    // Beyond the ends, which the legend tells; and fewer points than before.
    next.rods[0] = makeRod(helixAt(0, 1, 4), "rod");
    setScalar(next.rods[0], [](double t) { return 30 * t; });
    ASSERT_EQ(update(next), "");
    expectShows(next);
    EXPECT_TRUE(scene->getColouring()->isAbove);

    // A rod without it is in its own colours, and has colours of data again later.
    next.rods[1].scalars.clear();
    ASSERT_EQ(update(next), "");
    expectShows(next);
    EXPECT_EQ(scene->getShown(RODS)[1].colours, nullptr);
    ASSERT_EQ(update(first), "");
    expectShows(first);
    EXPECT_NE(scene->getShown(RODS)[1].colours, nullptr);
    EXPECT_FALSE(scene->getColouring()->isAbove);
}

TEST_F(SceneUpdateTest, ColoursThatAreNotShownAreThereWhenTheyAre)
{
    options.colourBy = "k";
    Configuration first, next;
    first.rods = {makeRod(helixAt(0), "rod")};
    setScalar(first.rods[0], [](double t) { return t; });
    next.rods = {makeRod(helixAt(0, 1.2), "rod"), makeRod(helixAt(4), "rod")};
    for (Rod& rod : next.rods)
        setScalar(rod, [](double t) { return t * t; });
    build(first);
    scene->showColours(false);
    ASSERT_EQ(update(next), "");
    expectShows(next);
    scene->showColours(true);
    expectShows(next);
}

TEST_F(SceneUpdateTest, OfAConstantOtherNumbersAreBeyondItsEnds)
{
    options.colourBy = "k";
    Configuration data;
    data.rods = {makeRod(helixAt(0), "rod")};
    setScalar(data.rods[0], [](double) { return 3; });
    build(data);
    ASSERT_EQ(colouring->constant, "3");
    setScalar(data.rods[0], [](double t) { return t < 0.4 ? 3 : 4; });
    ASSERT_EQ(update(data), "");
    expectShows(data);
    EXPECT_TRUE(scene->getColouring()->isAbove);
    EXPECT_FALSE(scene->getColouring()->isBelow);
    EXPECT_EQ(scene->getColouring()->constant, "3");
}

TEST_F(SceneUpdateTest, TheLegendKeepsTheBackgroundThatItIsReadOn)
{
    options.colourBy = "k";
    Configuration data;
    data.rods = {makeRod(helixAt(0), "rod")};
    setScalar(data.rods[0], [](double t) { return t; });
    build(data);
    scene->setBackground({0, 0, 0});
    setScalar(data.rods[0], [](double t) { return 2 * t; }); // a new legend
    ASSERT_EQ(update(data), "");
    expectShows(data);
}

// A frame of up to three of each kind.
Configuration randomFrame(RandomNumbers& random)
{
    const auto point = [&random] {
        return Vector3<double>(random.uniform(-8, 8), random.uniform(-8, 8), random.uniform(-3, 3));
    };
    const auto helix = [&] {
        return Helix{point(), random.uniform(0.5, 2), random.uniform(0, 6),
                     random.uniform(0.2, 0.7), random.integer(2, 12)};
    };
    const auto repeat = [&random](auto make, auto& all) {
        for (int count = random.integer(0, 3); count > 0; --count)
            all.push_back(make());
    };
    const auto number = [&random] { return std::to_string(random.integer(0, 99)); };
    Configuration data;
    repeat(
        [&] {
            Rod rod = makeRod(helix(), "rod " + number());
            rod.hasFrames = random.integer(0, 2) > 0;
            rod.isBackbone = random.integer(0, 2) == 0;
            rod.molecule = std::size_t(random.integer(0, 2));
            if (random.integer(0, 2) == 0)
                rod.radius = random.uniform(0.05, 0.3);
            if (random.integer(0, 2) == 0)
                rod.colour = "teal";
            if (random.integer(0, 3) > 0)
                setScalar(rod, [&](double) { return random.uniform(-0.5, 1.5); });
            return rod;
        },
        data.rods);
    repeat([&] { return makeBirod(helix(), "birod " + number()); }, data.birods);
    repeat(
        [&] {
            Helix axis = helix();
            axis.points = 12;
            std::string bases;
            for (int count = random.integer(1, 4); count > 0; --count)
                bases += "ACGTN"[random.integer(0, 4)];
            Dna dna = makeDna(axis, bases, "DNA " + number());
            dna.isClosed = random.integer(0, 2) == 0;
            dna.molecule = std::size_t(random.integer(0, 2));
            return dna;
        },
        data.dnas);
    repeat([&] { return makeLoneBase(point(), "ACGTN"[random.integer(0, 4)], "base " + number()); },
           data.loneBases);
    repeat(
        [&] {
            const char* const colours[] = {"red", "#00f", "teal"};
            Marker marker =
                makeMarker(point(), colours[random.integer(0, 2)], random.integer(0, 9));
            marker.shape = Marker::Shape(random.integer(0, 2));
            marker.transparency = random.integer(0, 1) * 0.5;
            if (random.integer(0, 1) == 1)
                marker.size = random.uniform(0.2, 2);
            return marker;
        },
        data.markers);
    repeat(
        [&] {
            const Vector3<double> from = point();
            Arrow arrow = makeArrow(from, random.integer(0, 5) == 0 ? from : point());
            if (random.integer(0, 1) == 1)
                arrow.radius = random.uniform(0.1, 0.4);
            if (random.integer(0, 1) == 1)
                arrow.colour = "orange";
            return arrow;
        },
        data.arrows);
    repeat([&] { return makeFrame(point(), random.unitQuaternion()); }, data.frames);
    return data;
}

TEST_F(SceneUpdateTest, AnySequenceOfFramesShowsWhatNewScenesShow)
{
    options.dna.baseBoxes = true;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        RandomNumbers random(seed);
        Configuration first = randomFrame(random);
        first.rods.push_back(makeRod(helixAt(0), "rod"));
        setScalar(first.rods.back(), [](double t) { return t; });
        options.colourBy = seed % 2 == 0 ? std::optional<std::string>("k") : std::nullopt;
        options.dna.pairBoxes = seed % 3 == 0;
        options.dna.atoms = seed % 3 == 1;
        options.dna.bases = seed % 3 != 1;
        options.dna.backbone = seed % 5 != 0;
        colouring.reset();
        build(first);
        for (int i = 0; i < 5; ++i) {
            SCOPED_TRACE(i);
            const Configuration next = randomFrame(random);
            ASSERT_EQ(update(next), "");
            expectShows(next);
        }
        scene->unref();
        scene = nullptr;
    }
}

} // namespace

// Styles

TEST_F(SceneUpdateTest, ShowsAnotherStyleAsANewSceneDoes)
{
    build(oneOfEach());
    const std::pair<const char*, const char*> changes[] = {
        {"radius", "0.3"},
        {"ribbon-width", "0.7"},
        {"slices", "5"},
        {"subsegments", "3"},
        {"ribbon", "off"},
        {"ribbon", "on"},
        {"two-sided", "on"},
        {"tube", "off"},
        {"tube", "on"},
        {"tube-colour", "red"},
        {"dna", "atoms,pairs"},
        {"ribbon-colour", "blue"},
        {"dna", "backbone,boxes"},
        {"dna-unit", "nm"},
        {"transparency", "0.5"},
        {"thing", "rod 1: transparency=0, radius=0.5, no ribbon; birod 1: radius=0.2"},
        {"thing", "rod 1: ribbon-width=2, two-sided, slices=4; DNA 1: subsegments=2, slices=3"},
        {"thing", "birod 1: no tube, ribbon, ribbon-colour=red"},
        {"thing", "DNA 1: no tube; birod 1: no ribbon, colour=lime; rod 1: hidden"}};
    for (const auto& [name, value] : changes) {
        SCOPED_TRACE(std::string(name) + " " + value);
        ASSERT_EQ(settingOf(name).read(value, options), "");
        ASSERT_EQ(restyle(options, oneOfEach()), "");
        expectShows(oneOfEach());
    }
}

TEST_F(SceneUpdateTest, ColoursOfDataComeAndGoAsInANewScene)
{
    Configuration data = oneOfEach();
    setScalar(data.rods[0], [](double t) { return t; });
    build(data);
    const std::vector<float> own = coloursOf(scene);
    for (const char* name : {"k", "curvature", "roll"}) {
        SCOPED_TRACE(name);
        options.colourBy = name;
        ASSERT_EQ(restyle(options, data), "");
        EXPECT_TRUE(scene->hasColours());
        EXPECT_EQ(scene->getColouring()->name, name);
        expectShows(data);
    }
    options.colourBy.reset();
    ASSERT_EQ(restyle(options, data), "");
    EXPECT_FALSE(scene->hasColours());
    EXPECT_EQ(scene->getLegendRoom(), FreeEdges());
    EXPECT_TRUE(coloursOf(scene) == own);
    expectShows(data);
}

TEST_F(SceneUpdateTest, ALegendMovesGoesAndComesBackWithAStyle)
{
    options.colourBy = "k";
    Configuration data;
    data.rods = {makeRod(helixAt(0), "rod")};
    setScalar(data.rods[0], [](double t) { return t; });
    build(data);
    for (const LegendPlace place :
         {LegendPlace::TOP, LegendPlace::OFF, LegendPlace::BOTTOM, LegendPlace::OFF}) {
        options.legend.place = place;
        options.legend.title = "place " + std::to_string(int(place));
        ASSERT_EQ(restyle(options, data), "");
        EXPECT_EQ(scene->getLegendRoom(), roomOf(place));
        EXPECT_TRUE(scene->hasColours());
        EXPECT_TRUE(scene->areColoursShown()) << "also without a legend";
        expectShows(data);
    }
    scene->showColours(false);
    EXPECT_FALSE(scene->areColoursShown());
    options.legend.place = LegendPlace::TOP;
    ASSERT_EQ(restyle(options, data), "");
    EXPECT_EQ(scene->getLegendRoom(), FreeEdges()) << "colours are off";
    scene->showColours(true);
    EXPECT_EQ(scene->getLegendRoom(), roomOf(LegendPlace::TOP));
}

TEST_F(SceneUpdateTest, AStyleThatDoesNotSuitTheDataLeavesTheSceneAsItIs)
{
    build(oneOfEach());
    const std::set<const SoNode*> before = allNodes();
    Options other = options;
    other.radius = 1e9;
    EXPECT_THAT(restyle(other, oneOfEach()), HasSubstr("--radius: found 1e+09"));
    other = options;
    other.colourBy = "no such scalar";
    EXPECT_THAT(restyle(other, oneOfEach()), HasSubstr("no such scalar"));
    EXPECT_EQ(allNodes(), before);
    expectShows(oneOfEach());
}

TEST_F(SceneUpdateTest, WhatTheUserChangedOfADatumStaysInAnotherStyle)
{
    build(oneOfEach());
    ASSERT_EQ(readThings("rod 1: hidden; birod 1: colour=red", options.things), "");
    scene->setLooks(options.things);
    options.radius = 0.2;
    ASSERT_EQ(restyle(options, oneOfEach()), "");
    EXPECT_EQ(describe(1, 0), ""); // the rod
    const ShownDatum& birod = scene->getShown(BIRODS)[0];
    EXPECT_EQ(birod.getColour(birod), SbColor(1, 0, 0));
}

// Each setting that says so of itself, of tubes, ribbons, birods and DNA.
TEST_F(SceneUpdateTest, OtherColoursAreThoseOfANewSceneAndTheirShapesStay)
{
    const std::multimap<std::string, const char*> values{
        {"tube-colour", "red"},    {"ribbon-colour", "blue"},    {"background", "black"},
        {"colour-by", "k"},        {"colour-by", "roll"},        {"colour-by", "curvature"},
        {"colours", "cividis_r"},  {"range", "0:0.5"},           {"range", "symmetric"},
        {"below-colour", "red"},   {"above-colour", "blue"},     {"nan-colour", "white"},
        {"legend", "top"},         {"legend-title", "t"},        {"legend-unit", "u"},
        {"legend-format", ".2f"},  {"scale-bar", "on"},          {"scale-unit", "mm"},
        {"shading", "plain"},      {"shading", "wireframe"},     {"shading", "lit"},
        {"line-width", "2.5"},     {"bounding-boxes", "on"},     {"bounding-boxes", "off"},
        {"light-1", "1,0,-1:0.7"}, {"light-2", "0.5"},           {"light-3", "0,1,0"},
        {"shininess", "3,50,0"},   {"ghost-transparency", "0.9"}};
    options.showRibbon = true;
    options.transparency = 0.3;
    options.clip = parseClipPlane("x:0.7");
    ASSERT_EQ(readThings("rod 1: colour=#00ff00, ribbon-colour=blue, transparency=0.5, radius=0.2; "
                         "birod 1: colour=red; DNA 1: transparency=0",
                         options.things),
              "");
    options.compare = "reference.json";
    options.showGhost = true;
    Configuration data = oneOfEach();
    data.reference = std::make_shared<const Configuration>(oneOfEach(0.6));
    setScalar(data.rods[0], [](double t) { return t; });
    build(data);
    const auto* const rod = static_cast<const SoRod*>(scene->getShown(RODS)[0].node);
    const auto* const birod = static_cast<const SoBirod*>(scene->getShown(BIRODS)[0].node);
    const auto shapes = [&] {
        return std::pair<const void*, const void*>(rod->getTubeMesh(), birod->getAvgTubeMesh());
    };
    const auto before = shapes();
    for (const Setting& setting : settings()) {
        if (!setting.isColour)
            continue;
        const auto [first, last] = values.equal_range(setting.name);
        ASSERT_NE(first, last) << setting.name << ": say here what to try";
        for (auto value = first; value != last; ++value) {
            SCOPED_TRACE(setting.name + std::string(" ") + value->second);
            const StyleRequest shown = options;
            ASSERT_EQ(setting.read(value->second, options), "");
            EXPECT_TRUE(haveSameShapes(shown, options));
            ASSERT_NO_FATAL_FAILURE(recolour(data));
            EXPECT_TRUE(shapes() == before);
            expectShows(data);
        }
    }
    options.colourBy.reset();
    ASSERT_NO_FATAL_FAILURE(recolour(data));
    EXPECT_FALSE(scene->hasColours());
    expectShows(data);
}

TEST_F(SceneUpdateTest, WhatTheUserColouredStaysSoInOtherColours)
{
    build(oneOfEach());
    ASSERT_EQ(readThings("birod 1: colour=#00ff00", options.things), "");
    scene->setLooks(options.things);
    options.tubeColour = Colour{1, 0, 0};
    ASSERT_NO_FATAL_FAILURE(recolour(oneOfEach()));
    const ShownDatum &birod = scene->getShown(BIRODS)[0], &rod = scene->getShown(RODS)[0];
    EXPECT_EQ(birod.getColour(birod), SbColor(0, 1, 0));
    EXPECT_EQ(rod.getColour(rod), SbColor(1, 0, 0));
}

// A colour that asks for a ribbon shows one that was not there.
TEST_F(SceneUpdateTest, OtherShapesAreThoseOfAnySettingThatIsNoColourAndOfARibbonThatComes)
{
    const StyleRequest usual;
    for (const auto& [name, value] : {std::pair("radius", "0.3"),
                                      {"slices", "5"},
                                      {"dna", "atoms"},
                                      {"ribbon-colour", "red"}}) {
        StyleRequest next;
        ASSERT_EQ(settingOf(name).read(value, next), "");
        EXPECT_FALSE(haveSameShapes(usual, next)) << name;
        EXPECT_FALSE(haveSameShapes(next, usual)) << name;
        EXPECT_TRUE(haveSameShapes(next, next)) << name;
    }
}

TEST_F(SceneUpdateTest, AColourOfItsOwnComesBackWithAStyleThatNamesNoOther)
{
    build(oneOfEach());
    const SbColor before = scene->getShown(RODS)[0].getColour(scene->getShown(RODS)[0]);
    ASSERT_EQ(readThings("rod 1: colour=lime", options.things), "");
    ASSERT_EQ(restyle(options, oneOfEach()), "");
    EXPECT_EQ(scene->getShown(RODS)[0].getColour(scene->getShown(RODS)[0]), SbColor(0, 1, 0));
    options.things = {};
    ASSERT_EQ(restyle(options, oneOfEach()), "");
    EXPECT_EQ(scene->getShown(RODS)[0].getColour(scene->getShown(RODS)[0]), before);
}

TEST_F(SceneUpdateTest, FramesHaveWhatSingleThingsHaveOfTheirOwn)
{
    ASSERT_EQ(readThings("rod 1: radius=0.5, no ribbon; birod 1: slices=4, ribbon-colour=red; "
                         "DNA 1: radius=2",
                         options.things),
              "");
    build(oneOfEach());
    ASSERT_EQ(update(oneOfEach(0.3)), "");
    expectShows(oneOfEach(0.3));
}

TEST_F(SceneUpdateTest, AThingLooksAsAllDoWhereAllLookSo)
{
    Configuration data = oneOfEach();
    data.markers.clear(); // whose size is that of the radius of all
    data.frames.clear();
    data.arrows.clear();
    options.radius = 0.3;
    options.slices = 7;
    options.subsegments = 3;
    options.showRibbon = false;
    build(data);
    const SbBox3f box = scene->getBox();
    const ::Picture all = render(scene, box);
    const double radius = *options.radius;
    options.slices.reset();
    options.subsegments.reset();
    options.showRibbon.reset();
    options.radius = 0.1;
    ASSERT_EQ(restyle(options, data), "");
    EXPECT_GT(compare(render(scene, box), all).pixels, 50);
    for (const ThingKind kind : {ThingKind::ROD, ThingKind::BIROD, ThingKind::DNA}) {
        ThingLook& look = options.things.ofThings[{kind, 0}];
        look.radius = radius;
        look.slices = 7;
        look.subsegments = 3;
        look.showRibbon = false;
    }
    ASSERT_EQ(restyle(options, data), "");
    EXPECT_EQ(compare(render(scene, box), all).pixels, 0);
}

TEST_F(SceneUpdateTest, ALengthOfAThingThatDoesNotSuitTheDataIsTold)
{
    build(oneOfEach());
    ASSERT_EQ(readThings("rod 1: radius=1e9", options.things), "");
    EXPECT_THAT(restyle(options, oneOfEach()), HasSubstr("--thing rod 1: radius: found 1e+09"));
}

TEST_F(SceneUpdateTest, ANewSceneHidesWhatItsStyleDoes)
{
    ASSERT_EQ(readThings("rod 1: hidden", options.things), "");
    build(oneOfEach());
    EXPECT_EQ(describe(1, 0), ""); // the rod
}

// A frame that comes afterwards has the style of the last change.
TEST_F(SceneUpdateTest, FramesAfterAnotherStyleHaveIt)
{
    build(oneOfEach());
    options.radius = 0.25;
    options.slices = 6;
    ASSERT_EQ(restyle(options, oneOfEach()), "");
    ASSERT_EQ(update(oneOfEach(0.4)), "");
    expectShows(oneOfEach(0.4));
    EXPECT_EQ(scene->getStyle().slices, 6);
}

// A birod and a DNA beside each other, whose bases are known but one.
Configuration strands()
{
    Configuration data;
    data.birods = {makeBirod(helixAt(0), "ladder.json: birods[0]")};
    Birod& birod = data.birods[0]; // as large as the bases
    for (auto* points : {&birod.points, &birod.points1, &birod.points2}) {
        for (Vector3<double>& point : *points)
            point = point * 6.0;
    }
    data.dnas = {makeDna(helixAt(30), "ACGNTA", "dna.txt:1: DNA 1")};
    for (std::size_t i = 0; i < data.dnas[0].bases.size(); ++i)
        data.dnas[0].pairPoints[i].z = data.dnas[0].points1[i].z = data.dnas[0].points2[i].z =
            3.4 * double(i);
    return data;
}

// In each pixel is what is nearest: so all is drawn by one part or another, and as that is alone.
TEST_F(SceneUpdateTest, EachStrandIsDrawnAloneAsItIsAmongAll)
{
    options.legend.place = LegendPlace::OFF;
    options.radius = 0.8;
    ASSERT_EQ(
        readThings("birod 1 strand 2: radius=1.2; DNA 1 strand 1: radius=1.1", options.things), "");
    for (const char* colourBy : {"", "curvature", "roll"}) {
        for (const char* dna : {"backbone,bases", "backbone,boxes,pairs", "atoms", "bases,atoms"}) {
            SCOPED_TRACE(std::string(dna) + " " + colourBy);
            options.colourBy.reset();
            colouring.reset();
            if (*colourBy)
                options.colourBy = colourBy;
            ASSERT_EQ(settingOf("dna").read(dna, options), "");
            ASSERT_NO_FATAL_FAILURE(build(strands()));
            const SbBox3f box = scene->getBox();
            const ::Picture all = render(scene, box);
            std::vector<::Picture> alone;
            for (const ThingKind kind : {ThingKind::BIROD, ThingKind::DNA}) {
                for (const ThingPart part : partsOf(kind)) {
                    ThingLooks looks = options.things;
                    looks.showOnly({{kind, 0, part}});
                    scene->setLooks(looks);
                    alone.push_back(render(scene, box));
                    const Difference hidden = compare(alone.back(), all);
                    EXPECT_GT(hidden.pixels, 30) << nameOf(ThingId{kind, 0, part});
                    EXPECT_GT(compare(alone.back(), alone.front()).covered, 30);
                    expectShows(strands());
                }
            }
            int strange = 0;
            forEachPixel([&](int x, int y) {
                const ::Colour seen = all.getColour(x, y);
                strange += std::none_of(alone.begin(), alone.end(), [&](const ::Picture& one) {
                    return one.getColour(x, y) == seen;
                });
            });
            EXPECT_EQ(strange, 0);
            scene->setLooks(options.things);
            EXPECT_EQ(compare(render(scene, box), all).pixels, 0);
            scene->unref();
            scene = nullptr;
        }
    }
}

TEST_F(SceneUpdateTest, StrandsHaveRadiiOfTheirOwn)
{
    const auto radii = [&](const char* things) {
        options.things = {};
        EXPECT_EQ(readThings(things, options.things), "");
        const Configuration data = strands();
        StoppingAt never;
        std::string error;
        const SceneGeometry geometry =
            computeGeometry(data, makeStyle(options, data), never, error);
        EXPECT_EQ(error, "");
        const SoBirod::Meshes& birod = geometry.birods.at(0).meshes;
        const auto& backbones = geometry.dnas.at(0).backbones;
        std::vector<double> found;
        for (const auto* tube : {&birod.avgTube, &birod.tube1, &birod.tube2,
                                 &backbones[0].meshes.tube, &backbones[1].meshes.tube})
            found.push_back((*tube)->getRadius() / geometry.placement.scale);
        return found;
    };
    const auto are = [](const std::vector<double>& expected) {
        return testing::Pointwise(testing::DoubleNear(1e-12), expected);
    };
    options.radius = 0.5;
    EXPECT_THAT(radii(""), are({0.3, 0.5, 0.5, 0.5, 0.5}));
    EXPECT_THAT(radii("birod 1: radius=1; DNA 1: radius=2"), are({0.6, 1, 1, 2, 2}));
    EXPECT_THAT(radii("birod 1 average: radius=0.7; birod 1 strand 2: radius=0.4; "
                      "DNA 1 strand 1: radius=0.9"),
                are({0.7, 0.5, 0.4, 0.9, 0.5}));
    EXPECT_THAT(radii("birod 1: radius=1; birod 1 strand 1: radius=0.4; DNA 1: radius=2; "
                      "DNA 1 strand 2: radius=0.9"),
                are({0.6, 0.4, 1, 2, 0.9}));
}

TEST_F(SceneUpdateTest, StrandsThatAreHiddenOrSeenThroughStaySoInFramesAndOtherStyles)
{
    options.colourBy = "roll";
    options.dna.atoms = options.dna.bases = true;
    const auto at = [](double time) {
        Configuration data = oneOfEach(time);
        data.dnas[0].bases[1] = time > 0.5 ? 'N' : 'C';
        return data;
    };
    build(at(0));
    for (const char* things :
         {"birod 1 strand 1: hidden; DNA 1 strand 2: hidden", "birod 1 average: hidden",
          "birod 1: hidden; birod 1 strand 2: shown; DNA 1: hidden",
          "birod 1 strand 1: transparency=0.5; DNA 1 strand 2: transparency=0.4",
          "birod 1: transparency=0.5; birod 1 average: transparency=0; DNA 1: transparency=0.6; "
          "DNA 1 strand 1: transparency=0",
          "birod 1 strand 2: hidden; birod 1 strand 1: transparency=0.7; DNA 1 strand 1: hidden; "
          "DNA 1 strand 2: transparency=0.3",
          "birod 1 strand 2: hidden, colour=red; DNA 1 strand 1: hidden",
          "birod 1 strand 2: colour=red; DNA 1 strand 1: colour=red"}) {
        SCOPED_TRACE(things);
        setThings(things);
        expectShows(at(0));
        ASSERT_EQ(update(at(0.4)), "");
        expectShows(at(0.4));
        ASSERT_EQ(update(at(0.6)), "");
        expectShows(at(0.6));
        scene->showColours(false);
        expectShows(at(0.6));
        scene->showColours(true);
        options.radius = options.radius ? *options.radius + 0.02 : 0.2;
        ASSERT_EQ(restyle(options, at(0)), "");
        expectShows(at(0));
        ASSERT_EQ(settingOf("colours").read("cividis", options), "");
        ASSERT_NO_FATAL_FAILURE(recolour(at(0)));
        expectShows(at(0));
    }
}

TEST_F(SceneUpdateTest, AStrandHasAColourOfItsOwnBesideThatOfItsThing)
{
    build(strands());
    const auto colour = [this](Kind kind, ThingPart part) {
        const ShownDatum& datum = scene->getShown(kind)[0];
        return datum.ofParts->getColour(datum, part);
    };
    const SbColor usual = colour(BIRODS, ThingPart::AVERAGE), red(1, 0, 0), blue(0, 0, 1);
    setThings("birod 1 strand 2: colour=red; DNA 1 strand 1: colour=red; DNA 1: colour=blue");
    EXPECT_EQ(colour(BIRODS, ThingPart::STRAND_2), red);
    EXPECT_NE(colour(BIRODS, ThingPart::STRAND_1), red);
    EXPECT_EQ(colour(BIRODS, ThingPart::AVERAGE), usual);
    EXPECT_EQ(colour(DNAS, ThingPart::STRAND_1), red);
    EXPECT_EQ(colour(DNAS, ThingPart::STRAND_2), blue);
    ASSERT_EQ(update(strands()), "");
    EXPECT_EQ(colour(BIRODS, ThingPart::STRAND_2), red);
    setThings("birod 1 strand 2: colour=red; others: hidden; birod 1 strand 2: shown");
    const SbBox3f box = scene->getBox();
    const ::Picture alone = render(scene, box);
    int reds = 0, others = 0;
    forEachPixel([&](int x, int y) {
        const auto [r, g, b] = alone.getColour(x, y);
        const bool isRed = r > g + 20 && g == b;
        reds += isRed;
        others += !isRed && r + g + b > 0;
    });
    EXPECT_GT(reds, 100);
    EXPECT_LT(others, reds / 5) << "highlights are white";
}

TEST_F(SceneUpdateTest, AHiddenStrandIsNotPickedAndTakesNoRoom)
{
    options.radius = 0.8;
    build(strands());
    const Vector3<double> first = strands().birods[0].points1[0],
                          second = strands().birods[0].points2[0];
    const SbBox3f all = scene->getBox();
    EXPECT_EQ(partAt(float(first.x), float(first.y)), ThingPart::STRAND_1);
    EXPECT_EQ(partAt(float(second.x), float(second.y)), ThingPart::STRAND_2);
    setThings("birod 1 strand 1: hidden; birod 1 average: hidden; DNA 1: hidden");
    EXPECT_NE(partAt(float(first.x), float(first.y)), ThingPart::STRAND_1);
    EXPECT_EQ(partAt(float(second.x), float(second.y)), ThingPart::STRAND_2);
    const SbBox3f ofSecond = scene->boxOf({BIRODS, 0, ThingPart::STRAND_2});
    EXPECT_EQ(scene->getBox(), ofSecond);
    EXPECT_TRUE(all.intersect(ofSecond.getCenter()));
    EXPECT_LT(ofSecond.getMax()[0] + 5, scene->boxOf({BIRODS, 0, ThingPart::STRAND_1}).getMax()[0]);
}

TEST_F(SceneUpdateTest, AStrandIsToldByItsOwnName)
{
    build(strands());
    const Vector3<double> point = strands().birods[0].points2[0];
    const auto told = [&] { return describe(float(point.x), float(point.y)); };
    EXPECT_THAT(told(), EndsWith("birods[0]"));
    setThings("birod 1: name=ladder; birod 1 strand 1: name=left");
    EXPECT_THAT(told(), EndsWith("ladder"));
    setThings("birod 1: name=ladder; birod 1 strand 2: name=right");
    EXPECT_THAT(told(), EndsWith("right"));
}

TEST_F(SceneUpdateTest, TheNodesOfAStrandCoverWhatItCoversInTheScene)
{
    options.radius = 0.8;
    options.legend.place = LegendPlace::OFF;
    for (const char* dna : {"backbone,bases", "boxes,pairs", "atoms"}) {
        for (const char* colourBy : {"", "roll"}) {
            if (*colourBy)
                options.colourBy = colourBy;
            ASSERT_EQ(settingOf("dna").read(dna, options), "");
            ASSERT_NO_FATAL_FAILURE(build(strands()));
            const SbBox3f box = scene->getBox();
            for (const Kind kind : {BIRODS, DNAS}) {
                for (const Thing& part : scene->getParts({kind, 0})) {
                    SCOPED_TRACE(std::string(dna) + " " + nameOf(scene->idOf(part)));
                    ThingLooks looks;
                    looks.showOnly({scene->idOf(part)});
                    scene->setLooks(looks);
                    const ::Picture inScene = render(scene, box),
                                    alone = render(scene->nodeOf(part), box);
                    int covered = 0, different = 0;
                    forEachPixel([&](int x, int y) {
                        const bool isCovered = alone.getColour(x, y) != BLACK;
                        covered += isCovered;
                        different += isCovered != (inScene.getColour(x, y) != BLACK);
                    });
                    EXPECT_GT(covered, 30);
                    EXPECT_EQ(scene->nodeOf(part), scene->nodeOf(part)) << "not made anew";
                    const bool hasPairs = kind == DNAS && options.dna.pairBoxes;
                    if (!hasPairs) { // which no strand has
                        EXPECT_LT(different, covered / 50);
                    }
                }
            }
            scene->unref();
            scene = nullptr;
            colouring.reset();
        }
        options.colourBy.reset();
    }
}

// What is seen through

TEST_F(SceneUpdateTest, WhatIsSeenThroughWhollyIsNotSeen)
{
    options.legend.place = LegendPlace::OFF;
    const auto curvesAndBases = [](double time) {
        Configuration data = oneOfEach(time);
        data.dnas[0].bases[1] = 'N';
        data.markers.clear();
        data.arrows.clear();
        data.frames.clear();
        return data;
    };
    for (const char* dna : {"backbone,bases", "boxes,pairs", "atoms"}) {
        for (const char* colourBy : {"", "roll"}) {
            SCOPED_TRACE(std::string(dna) + " " + colourBy);
            ASSERT_NO_FATAL_FAILURE(buildIn(dna, colourBy, curvesAndBases(0)));
            const SbBox3f box = scene->getBox();
            const ::Picture before = renderSorted(box);
            const auto covered = [&] { return renderSorted(box).countOther(BLACK); };
            EXPECT_GT(covered(), 500);
            scene->setTransparency(1);
            EXPECT_EQ(covered(), 0);
            ASSERT_EQ(update(curvesAndBases(0.4)), "");
            EXPECT_EQ(covered(), 0);
            ASSERT_EQ(update(curvesAndBases(0)), "");
            scene->setTransparency(0);
            EXPECT_EQ(compare(renderSorted(box), before).pixels, 0);
        }
    }
}

TEST_F(SceneUpdateTest, AStrandThatIsSeenThroughWhollyIsAsIfItWasHidden)
{
    for (const char* dna : {"backbone,bases", "backbone,boxes,pairs", "atoms", "bases,atoms"}) {
        for (const char* colourBy : {"", "roll"}) {
            ASSERT_NO_FATAL_FAILURE(buildIn(dna, colourBy, strands()));
            const SbBox3f box = scene->getBox();
            for (const ThingKind kind : {ThingKind::BIROD, ThingKind::DNA}) {
                for (const ThingPart part : partsOf(kind)) {
                    for (const char* ofWhole : {"0", "0.5"}) {
                        const bool isOpaque = ofWhole == std::string("0");
                        if (!isOpaque && part == ThingPart::AVERAGE)
                            continue; // strands that are seen through alike are one shape
                        const std::string whole = nameOf(ThingId{kind, 0}),
                                          strand = nameOf(ThingId{kind, 0, part}),
                                          beside = whole + ": transparency=" + ofWhole;
                        SCOPED_TRACE(std::string(ofWhole) + " " + strand + " " + dna + " " +
                                     colourBy);
                        setThings(beside);
                        const ::Picture all = renderSorted(box);
                        setThings(beside + "; " + strand + ": hidden");
                        const ::Picture hidden = renderSorted(box);
                        EXPECT_GT(compare(all, hidden).pixels, 30);
                        setThings(beside + "; " + strand + ": transparency=1");
                        EXPECT_EQ(compare(renderSorted(box), hidden).pixels, 0);
                        setThings(beside + "; " + strand + ": transparency=0");
                        EXPECT_EQ(compare(renderSorted(box), all).pixels == 0, isOpaque);
                    }
                }
            }
        }
    }
}

TEST_F(SceneUpdateTest, AStrandAloneIsSeenThroughAsItIsWhereItsWholeThingIs)
{
    for (const char* dna : {"backbone,bases", "boxes", "atoms"}) {
        for (const char* colourBy : {"", "roll"}) {
            ASSERT_NO_FATAL_FAILURE(buildIn(dna, colourBy, strands()));
            const SbBox3f box = scene->getBox();
            for (const ThingKind kind : {ThingKind::BIROD, ThingKind::DNA}) {
                for (const ThingPart part : partsOf(kind)) {
                    const std::string whole = nameOf(ThingId{kind, 0}),
                                      strand = nameOf(ThingId{kind, 0, part}),
                                      alone = "others: hidden; " + strand + ": shown";
                    SCOPED_TRACE(alone + " " + dna + " " + colourBy);
                    setThings(alone);
                    const ::Picture opaque = renderSorted(box);
                    setThings(alone + "; " + whole + ": transparency=0.5");
                    const ::Picture seenThrough = renderSorted(box);
                    EXPECT_GT(compare(opaque, seenThrough).pixels, 50);
                    setThings(alone + "; " + strand + ": transparency=0.5");
                    EXPECT_EQ(compare(renderSorted(box), seenThrough).pixels, 0);
                }
            }
        }
    }
}

TEST_F(SceneUpdateTest, AStrandOfABirodBlendsAsARodOfItsOwnDoes)
{
    options.legend.place = LegendPlace::OFF;
    options.radius = 0.8;
    options.showRibbon = false;
    Configuration data;
    data.birods = {strands().birods[0]};
    data.rods.resize(1);
    data.rods[0].origin = "strand.txt:1: rod 1";
    data.rods[0].points = data.birods[0].points1;
    data.rods[0].rotations = parallelTransport(data.rods[0].points);
    ASSERT_NO_FATAL_FAILURE(build(data));
    const SbBox3f box = scene->getBox();
    for (const char* seenThrough : {"", ", transparency=0.3", ", transparency=0.8"}) {
        SCOPED_TRACE(seenThrough);
        const std::string look = std::string(": colour=orange") + seenThrough;
        setThings("birod 1 strand 1: hidden; rod 1" + look);
        const ::Picture asRod = renderSorted(box);
        setThings("rod 1: hidden; birod 1 strand 1" + look);
        const Difference difference = compare(renderSorted(box), asRod);
        EXPECT_GT(difference.covered, 1000);
        // Their ends are cut differently.
        EXPECT_LT(difference.pixels, difference.covered / 100) << difference;
    }
}

TEST_F(SceneUpdateTest, WhatIsSeenThroughIsPickedAndToldAsBefore)
{
    Configuration data = strands();
    data.loneBases = {makeLoneBase({-20, 0, 0}, 'T', "1xyz.pdb: chain A, residue 7"),
                      makeLoneBase({-20, 12, 0}, 'G', "1xyz.pdb: chain A, residue 8")};
    for (const char* dna : {"backbone,bases", "boxes,pairs", "atoms", "bases,atoms"}) {
        for (const char* colourBy : {"", "roll"}) {
            SCOPED_TRACE(std::string(dna) + " " + colourBy);
            ASSERT_NO_FATAL_FAILURE(buildIn(dna, colourBy, data));
            const SbVec3f least = scene->getBox().getMin(), size = scene->getBox().getSize();
            const auto toldEverywhere = [&] {
                std::vector<std::string> all;
                for (int i = 0; i < 40; ++i) {
                    for (int j = 0; j < 20; ++j)
                        all.push_back(describe(least[0] + size[0] * float(i) / 40,
                                               least[1] + size[1] * float(j) / 20));
                }
                return all;
            };
            const std::vector<std::string> before = toldEverywhere();
            EXPECT_GT(std::set<std::string>(before.begin(), before.end()).size(), 10u);
            setThings("birod 1 strand 1: transparency=0.5; DNA 1 strand 2: transparency=0.4; "
                      "bases: transparency=0.7");
            const std::vector<std::string> told = toldEverywhere();
            const std::regex place("point [-0-9.e ]*"); // found in another way, as other faces
            for (std::size_t i = 0; i < told.size(); ++i)
                EXPECT_EQ(std::regex_replace(told[i], place, ""),
                          std::regex_replace(before[i], place, ""));
        }
    }
}

} // namespace strandview
