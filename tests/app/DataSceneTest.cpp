// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/DataScene.h"

#include <cmath>
#include <random>
#include <utility>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoTranslation.h>
#include <OffscreenContext.h>
#include <QImage>
#include <SoRod.h>
#include <gmock/gmock.h>
#include <toCoin.h>

#include "pictures/PictureWriter.h"
#include "request/settings.h"
#include "scene/SceneLoader.h"
#include "scene/SoOverlay.h"
#include "scene/SoSeeThrough.h"
#include "support/drawnCoarsely.h"
#include "support/graph.h"
#include "support/initialiseSceneOnce.h"
#include "support/renderPicture.h"
#include <algebra3d/Matrix3.h>

namespace strandview {

using algebra3d::Matrix3;
using algebra3d::Quaternion;
using algebra3d::Vector3;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Gt;
using testing::SizeIs;

namespace {

const double RADIUS = 2;
const double PITCH = 0.5; // height per radian
const double SPEED = std::sqrt(RADIUS * RADIUS + PITCH * PITCH);
const double TURN = 0.1; // radians between points
const int POINTS = 120;

Vector3<double> helix(double angle)
{
    return {RADIUS * std::cos(angle), RADIUS * std::sin(angle), PITCH * angle};
}

// A rod along the helix, with its reference count zero.
SoRod* makeHelix(int slices)
{
    auto* rod = new SoRod(0.2, 0.6, slices, 4, true, true, false);
    std::vector<Vector3<double>> points;
    std::vector<Quaternion<double>> rotations;
    for (int i = 0; i < POINTS; ++i) {
        const double c = std::cos(TURN * i), s = std::sin(TURN * i);
        const Vector3<double> d3(-RADIUS * s / SPEED, RADIUS * c / SPEED, PITCH / SPEED);
        const Vector3<double> d1(-c, -s, 0);
        points.push_back(helix(TURN * i));
        rotations.push_back(Matrix3<double>(d1, d3.cross(d1), d3).getQuaternion());
    }
    EXPECT_TRUE(rod->setData(points, rotations));
    return rod;
}

class DataSceneTest : public testing::Test
{
protected:
    DataSceneTest() { initialiseSceneOnce(); }

    // What is told of what a ray along -z through x and y hits; empty if nothing.
    static std::string describe(DataScene& scene, float x, float y)
    {
        SoRayPickAction pick(SbViewportRegion(100, 100));
        pick.setRay(SbVec3f(x, y, 50), SbVec3f(0, 0, -1));
        pick.apply(&scene);
        const SoPickedPoint* point = pick.getPickedPoint();
        return point ? toLine(scene.describe(*point)) : "";
    }
};

double nearestArcLength(BiarcTubeMesh& tube, const Vector3<double>& point)
{
    return nearestOnTube(tube, point).arcLength;
}

// A straight rod along x, 4 long, in the scene's coordinates.
SoRod* makeStraight()
{
    auto* rod = new SoRod(0.2, 0.6, 24, 4, true, false, false);
    const double s = std::sqrt(0.5);
    rod->setData({{0, 0, 0}, {2, 0, 0}, {4, 0, 0}},
                 std::vector<Quaternion<double>>(3, Quaternion<double>(0, s, 0, s)));
    return rod;
}

TEST_F(DataSceneTest, TheNearestArcLengthIsThatOfASearchOverAllRows)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> coordinate(-3, 3), height(-1, PITCH * TURN * POINTS + 1);
    for (const int slices : {3, 7, 24}) {
        SCOPED_TRACE(slices);
        SoRod* rod = makeHelix(slices);
        rod->ref();
        BiarcTubeMesh& tube = *rod->getTubeMesh();
        const std::vector<double>& arcLengths = tube.getInterpParamValues();
        // The centreline between the rows, sampled densely.
        std::vector<Vector3<double>> samples;
        std::vector<double> at;
        for (std::size_t row = 0; row + 1 < arcLengths.size(); ++row) {
            for (double t = 0; t <= 1; t += 0.01) {
                const double s = (1 - t) * arcLengths[row] + t * arcLengths[row + 1];
                samples.push_back((1 - t) * helix(arcLengths[row] / SPEED) +
                                  t * helix(arcLengths[row + 1] / SPEED));
                at.push_back(s);
            }
        }
        for (int i = 0; i < 50; ++i) {
            const Vector3<double> point(coordinate(random), coordinate(random), height(random));
            const double found = nearestArcLength(*rod->getTubeMesh(), point);
            double nearest = INFINITY, distanceOfFound = INFINITY;
            for (std::size_t k = 0; k < samples.size(); ++k) {
                const double distance = (samples[k] - point).getNorm();
                nearest = std::min(nearest, distance);
                if (std::abs(at[k] - found) < 0.001)
                    distanceOfFound = std::min(distanceOfFound, distance);
            }
            // Two places may be as near, so that distances are compared.
            EXPECT_NEAR(distanceOfFound, nearest, 1e-3) << i;
        }
        rod->unref();
    }
}

TEST_F(DataSceneTest, TheNearestArcLengthOfAPointOfTheSurfaceIsThatOfItsCentre)
{
    SoRod* rod = makeHelix(24);
    rod->ref();
    BiarcTubeMesh& tube = *rod->getTubeMesh();
    // The rows are taken as joined by chords, which are tilted by half the angle between
    // rows: seen from the surface their foot moves by the radius times as much.
    const double tolerance = 1.05 * 0.2 * RADIUS / (SPEED * SPEED) * (SPEED * TURN / 4) / 2;
    for (int row = 0; row < tube.getHeight(); row += 7) {
        for (int slice = 0; slice < tube.getWidth(); slice += 5) {
            EXPECT_NEAR(nearestArcLength(*rod->getTubeMesh(), tube.getPoints()[row][slice]),
                        tube.getInterpParamValues()[row], tolerance);
        }
    }
    rod->unref();
}

TEST_F(DataSceneTest, BeyondItsEndsARodHasTheArcLengthsOfItsEnds)
{
    SoRod* rod = makeStraight();
    rod->ref();
    EXPECT_EQ(nearestArcLength(*rod->getTubeMesh(), {-3, 1, 0}), 0);
    EXPECT_DOUBLE_EQ(nearestArcLength(*rod->getTubeMesh(), {9, 1, 0}), 4);
    EXPECT_NEAR(nearestArcLength(*rod->getTubeMesh(), {1.25, 7, -2}), 1.25, 1e-12);
    rod->unref();
}

TEST_F(DataSceneTest, TellsRodPointAndArcLengthInTheDatasCoordinatesAndUnit)
{
    // The data are a thousandth as large, and far away.
    Placement placement;
    placement.origin = {100, -200, 300};
    placement.scale = 1000;
    auto* scene = new DataScene(placement);
    scene->ref();
    SoRod* rod = makeStraight();
    auto* group = new SoSeparator;
    group->addChild(rod);
    ShownDatum datum;
    datum.group = group;
    datum.node = rod;
    datum.name = "rods.txt:1: rod 1";
    datum.centralTube = [](const SoNode& node) {
        return static_cast<const SoRod&>(node).getTubeMesh();
    };
    scene->add(0, datum);
    EXPECT_EQ(describe(*scene, 1, 0),
              "point 100.001 -200 300, arc length 0.001 of 0.004 – rods.txt:1: rod 1");
    EXPECT_EQ(describe(*scene, 1, 3), "");
    scene->unref();
}

// A cube of edge 2 about a place on x, which its box tells.
ShownDatum makeCube(float x, const std::string& name, ThingKind kind = ThingKind::OTHER)
{
    auto* place = new SoTranslation;
    place->translation = SbVec3f(x, 0, 0);
    ShownDatum datum;
    datum.kind = kind;
    datum.group = new SoSeparator;
    datum.group->addChild(place);
    datum.node = new SoCube;
    datum.group->addChild(datum.node);
    datum.name = name;
    datum.box = SbBox3f(x - 1, -1, -1, x + 1, 1, 1);
    return datum;
}

TEST_F(DataSceneTest, KeepsDataByKindAndIndex)
{
    auto* scene = new DataScene({});
    scene->ref();
    EXPECT_TRUE(scene->getShown(3).empty());
    EXPECT_TRUE(scene->getBox().isEmpty());
    scene->add(1, makeCube(0, "first"));
    scene->add(1, makeCube(10, "second"));
    scene->add(0, makeCube(20, "of another kind"));
    ASSERT_EQ(scene->getShown(1).size(), 2u);
    EXPECT_EQ(describe(*scene, 10, 0), "point 10 0 1 – second");
    EXPECT_EQ(describe(*scene, 20, 0), "point 20 0 1 – of another kind");
    EXPECT_EQ(scene->getBox(), SbBox3f(-1, -1, -1, 21, 1, 1));

    ShownDatum changed = scene->getShown(1)[1];
    changed.name = "changed";
    changed.box = SbBox3f(9, -1, -1, 11, 1, 30);
    scene->change(1, 1, changed);
    EXPECT_EQ(describe(*scene, 10, 0), "point 10 0 1 – changed");
    EXPECT_EQ(scene->getBox().getMax()[2], 30);

    scene->keepFirst(1, 2);
    EXPECT_EQ(scene->getShown(1).size(), 2u);
    scene->keepFirst(1, 1);
    EXPECT_EQ(scene->getShown(1).size(), 1u);
    EXPECT_EQ(describe(*scene, 10, 0), "");
    EXPECT_EQ(describe(*scene, 0, 0), "point 0 0 1 – first");
    EXPECT_EQ(describe(*scene, 20, 0), "point 20 0 1 – of another kind");
    EXPECT_EQ(scene->getBox(), SbBox3f(-1, -1, -1, 21, 1, 1));
    scene->keepFirst(0, 0);
    scene->keepFirst(1, 0);
    EXPECT_TRUE(scene->getBox().isEmpty());
    scene->unref();
}

TEST_F(DataSceneTest, WhatIsHiddenAndNamedStaysSoForThatKindAndIndex)
{
    auto* scene = new DataScene({});
    scene->ref();
    scene->add(1, makeCube(0, "first"));
    scene->add(1, makeCube(10, "second"));
    const ThingId second = scene->idOf({1, 1});
    ThingLooks looks;
    looks.ofThings[second].hidden = true;
    looks.ofThings[second].name = "mine";
    scene->setLooks(looks);
    EXPECT_EQ(describe(*scene, 10, 0), "");
    EXPECT_EQ(describe(*scene, 0, 0), "point 0 0 1 – first");
    // A frame with fewer, then one with more.
    scene->keepFirst(1, 1);
    scene->add(1, makeCube(20, "another"));
    EXPECT_EQ(describe(*scene, 20, 0), "");
    looks.ofThings[second].hidden = false;
    scene->setLooks(looks);
    EXPECT_EQ(describe(*scene, 20, 0), "point 20 0 1 – mine");

    Style style{};
    style.things = looks;
    auto* again = new DataScene({}, style);
    again->ref();
    again->add(1, makeCube(0, "first"));
    again->add(1, makeCube(10, "second"));
    EXPECT_EQ(describe(*again, 10, 0), "point 10 0 1 – mine");
    again->unref();
    scene->unref();
}

TEST_F(DataSceneTest, WhatIsHiddenOrDeletedTakesNoRoomAndNorDoOtherFramesThen)
{
    const SbBox3f both(-1, -1, -1, 11, 1, 1), first(-1, -1, -1, 1, 1, 1),
        room(-5, -5, -5, 20, 5, 5);
    auto* scene = new DataScene({});
    scene->ref();
    scene->add(1, makeCube(0, "first", ThingKind::BIROD));
    scene->add(1, makeCube(10, "second", ThingKind::BIROD));
    ThingLook hidden, deleted;
    hidden.hidden = true;
    deleted.isDeleted = true;
    ThingLooks looks;
    for (const ThingLook& taken : {hidden, deleted}) {
        scene->setRoom({});
        EXPECT_EQ(scene->getBox(), both);
        looks.ofThings[{ThingKind::BIROD, 1}] = taken;
        scene->setLooks(looks);
        EXPECT_EQ(scene->getBox(), first);
        scene->setRoom(room);
        EXPECT_EQ(scene->getBox(), first);
        looks.ofThings[{ThingKind::BIROD, 0}] = taken;
        scene->setLooks(looks);
        EXPECT_TRUE(scene->getBox().isEmpty());
        looks.showAll();
        scene->setLooks(looks);
        EXPECT_EQ(scene->getBox(), room);
    }
    scene->setRoom({});
    looks.showOnly({{ThingKind::BIROD, 0}});
    scene->setLooks(looks);
    EXPECT_EQ(scene->getBox(), first);
    scene->unref();
}

TEST_F(DataSceneTest, WhatIsShownAloneStaysSoBesideWhatComes)
{
    auto* scene = new DataScene({});
    scene->ref();
    scene->add(1, makeCube(0, "first", ThingKind::BIROD));
    scene->add(1, makeCube(10, "second", ThingKind::BIROD));
    EXPECT_EQ(scene->getThings(), (std::vector<Thing>{{1, 0}, {1, 1}}));
    ThingLooks looks;
    looks.showOnly({{ThingKind::BIROD, 1}});
    scene->setLooks(looks);
    scene->add(0, makeCube(20, "another", ThingKind::ROD));
    EXPECT_EQ(describe(*scene, 0, 0), "");
    EXPECT_EQ(describe(*scene, 10, 0), "point 10 0 1 – second");
    EXPECT_EQ(describe(*scene, 20, 0), "");
    EXPECT_TRUE(scene->getLook({0, 0}).isHidden());
    looks.showOnly({});
    scene->setLooks(looks);
    EXPECT_EQ(describe(*scene, 10, 0), "");

    looks.showAll();
    scene->setLooks(looks);
    scene->add(0, makeCube(30, "the last", ThingKind::ROD));
    for (const int x : {0, 10, 20, 30})
        EXPECT_NE(describe(*scene, float(x), 0), "") << x;
    scene->unref();
}

TEST_F(DataSceneTest, WhatIsDeletedFromViewIsHiddenUntilAllIsShown)
{
    auto* scene = new DataScene({});
    scene->ref();
    scene->add(1, makeCube(0, "first"));
    ThingLooks looks;
    looks.ofThings[scene->idOf({1, 0})].isDeleted = true;
    scene->setLooks(looks);
    EXPECT_EQ(describe(*scene, 0, 0), "");
    looks.showOnly({scene->idOf({1, 0})});
    scene->setLooks(looks);
    EXPECT_EQ(describe(*scene, 0, 0), "");
    looks.showAll();
    scene->setLooks(looks);
    EXPECT_EQ(describe(*scene, 0, 0), "point 0 0 1 – first");
    EXPECT_FALSE(scene->getLook({1, 0}).isDeleted);
    scene->unref();
}

TEST_F(DataSceneTest, APlaceHasTheNameAndTheLettersOfWhatIsShownNow)
{
    auto* scene = new DataScene({});
    scene->ref();
    for (const char* name : {"first", "second"}) {
        ShownDatum datum = makeCube(0, name);
        datum.kind = ThingKind::DNA;
        datum.bases = "ACG";
        scene->add(1, datum);
    }
    PickedPlace place;
    place.kind = ThingKind::DNA;
    place.datum = 1;
    place.row = 2;
    place = scene->renewed(place);
    EXPECT_EQ(toLine(tell(place)), "pair 3 GC, point 0 0 0 – second");

    ShownDatum ofNextFrame = scene->getShown(1)[1];
    ofNextFrame.name = "of the next frame";
    ofNextFrame.bases = "TTT";
    scene->change(1, 1, ofNextFrame);
    place = scene->renewed(place);
    EXPECT_EQ(toLine(tell(place)), "pair 3 TA, point 0 0 0 – of the next frame");

    ThingLooks looks;
    looks.ofThings[scene->idOf({1, 1})].name = "mine";
    scene->setLooks(looks);
    place = scene->renewed(place);
    EXPECT_EQ(place.name, "mine");
    scene->keepFirst(1, 1);
    EXPECT_EQ(toLine(tell(scene->renewed(place))), "pair 3 TA, point 0 0 0 – mine");
    place.kind = ThingKind::OTHER;
    place.datum = 0;
    EXPECT_EQ(scene->renewed(place).name, "mine") << "of no datum";
    scene->unref();
}

TEST_F(DataSceneTest, LooksAreThoseOfThingsByTheirKind)
{
    auto* scene = new DataScene({});
    scene->ref();
    for (const ThingKind kind : {ThingKind::ROD, ThingKind::LONE_BASES}) {
        ShownDatum datum = makeCube(0, "a thing");
        datum.kind = kind;
        scene->add(kind == ThingKind::ROD ? 2 : 3, datum);
    }
    ThingLooks looks;
    looks.ofThings[{ThingKind::ROD, 0}].name = "arm";
    looks.ofThings[{ThingKind::LONE_BASES, 0}].hidden = true;
    scene->setLooks(looks);
    EXPECT_EQ(scene->getLook({2, 0}).name, "arm");
    EXPECT_EQ(scene->lookOf(ThingKind::ROD, 0).name, "arm");
    EXPECT_FALSE(scene->lookOf(ThingKind::ROD, 1).name);
    EXPECT_TRUE(scene->lookOf(ThingKind::LONE_BASES, 7).isHidden()) << "they are one thing";
    EXPECT_FALSE(scene->lookOf(ThingKind::BIROD, 0).isHidden());
    scene->unref();
}

// Whether each rod of a scene is drawn without rows that nobody tells apart, in their order.
std::vector<bool> areDrawnCoarsely(DataScene& scene)
{
    OffscreenContext::install();
    auto* const root = new SoSeparator;
    root->ref();
    root->addChild(new SoOrthographicCamera);
    root->addChild(&scene);
    const DrawnCoarsely watched(root);
    EXPECT_TRUE(renderPicture(root, 10, 10).isRendered());
    std::vector<bool> are;
    for (const DrawnCoarsely::Drawing& drawing : watched.drawings)
        are.push_back(drawing.isCoarse);
    root->unref();
    return are;
}

TEST_F(DataSceneTest, DrawsRodsThatAreThereAndThatComeCoarselyIfAsked)
{
    const auto makeRod = [] {
        ShownDatum datum;
        datum.group = new SoSeparator;
        datum.node = new SoRod(0.1, 0.2, 8, 2, true, true, false);
        datum.group->addChild(datum.node);
        return datum;
    };
    auto* scene = new DataScene({});
    scene->ref();
    scene->add(0, makeRod());
    scene->add(1, makeCube(10, "no rod"));
    EXPECT_THAT(areDrawnCoarsely(*scene), ElementsAre(false));
    scene->drawCoarsely(true);
    scene->add(0, makeRod());
    EXPECT_TRUE(scene->isDrawnCoarsely());
    EXPECT_THAT(areDrawnCoarsely(*scene), ElementsAre(true, true));
    scene->drawCoarsely(false);
    EXPECT_FALSE(scene->isDrawnCoarsely());
    EXPECT_THAT(areDrawnCoarsely(*scene), ElementsAre(false, false));
    scene->unref();
}

TEST_F(DataSceneTest, DrawsWhatIsSeenThroughCoarselyIfAsked)
{
    ShownDatum datum;
    datum.kind = ThingKind::ROD;
    datum.group = new SoSeparator;
    datum.node = makeHelix(8);
    datum.group->addChild(datum.node);
    auto* scene = new DataScene({});
    scene->ref();
    scene->add(0, datum);
    scene->setTransparency(0.5);
    for (const bool coarse : {true, false}) {
        scene->drawCoarsely(coarse);
        EXPECT_THAT(areDrawnCoarsely(*scene), AllOf(SizeIs(Gt(1U)), Each(coarse)))
            << "what is turned away, and what is turned towards the eye";
    }
    scene->unref();
}

TEST_F(DataSceneTest, IsDrawnAnewWhereItIsToBeDrawnCoarsely)
{
    auto* scene = new DataScene({});
    scene->ref();
    for (const bool coarse : {true, false}) {
        const auto before = scene->getNodeId();
        scene->drawCoarsely(coarse);
        const auto after = scene->getNodeId();
        EXPECT_NE(after, before);
        scene->drawCoarsely(coarse);
        EXPECT_EQ(scene->getNodeId(), after);
    }
    scene->unref();
}

// A scene that mirrors another of two rods and a cube.
class MirroredSceneTest : public DataSceneTest
{
protected:
    MirroredSceneTest() : first(new DataScene({})), second(new DataScene({}))
    {
        first->ref();
        second->ref();
        first->add(0, rodOf(makeStraight(), "rods.txt:1: rod 1"));
        first->add(0, rodOf(makeHelix(8), "rods.txt:9: rod 2"));
        first->add(1, makeCube(10, "cube"));
        second->mirror(*first);
    }
    ~MirroredSceneTest() override
    {
        first->unref();
        second->unref();
    }

    static ShownDatum rodOf(SoRod* rod, const std::string& name)
    {
        ShownDatum datum;
        datum.kind = ThingKind::ROD;
        datum.name = name;
        datum.group = new SoSeparator;
        datum.node = rod;
        datum.group->addChild(rod);
        datum.box = boxOf(rod);
        datum.setTransparency = [](const ShownDatum&, double, const DnaLook&) { ++changes; };
        datum.setSolid = [](const ShownDatum&, bool) { ++changes; };
        datum.setColour = [](const ShownDatum&, const SbColor&) { ++changes; };
        return datum;
    }
    static std::vector<const SoSeparator*> groupsOf(const DataScene& scene)
    {
        std::vector<const SoSeparator*> groups;
        for (const Thing& thing : scene.getThings())
            groups.push_back(scene.getShown(thing.kind)[thing.index].group);
        return groups;
    }

    static int changes; ///< of nodes
    DataScene *first, *second;
};

int MirroredSceneTest::changes = 0;

TEST_F(MirroredSceneTest, HasTheSameNodesAndTellsWhatIsPickedOfThem)
{
    EXPECT_THAT(groupsOf(*second), SizeIs(3));
    EXPECT_EQ(groupsOf(*second), groupsOf(*first));
    EXPECT_EQ(allOf<SoRod>(second), allOf<SoRod>(first));
    EXPECT_EQ(second->getBox(), first->getBox());
    EXPECT_THAT(describe(*second, 1, 0), testing::HasSubstr("rod 1"));
    EXPECT_EQ(describe(*second, 1, 0), describe(*first, 1, 0));
}

TEST_F(MirroredSceneTest, FollowsWhatComesAndGoes)
{
    first->keepFirst(0, 1);
    first->keepFirst(1, 0);
    first->add(2, makeCube(20, "another"));
    second->mirror(*first);
    EXPECT_THAT(groupsOf(*second), SizeIs(2));
    EXPECT_EQ(groupsOf(*second), groupsOf(*first));
    EXPECT_EQ(second->getBox(), first->getBox());
    first->keepFirst(0, 0);
    first->add(0, rodOf(makeStraight(), "next"));
    second->mirror(*first);
    EXPECT_EQ(groupsOf(*second), groupsOf(*first));
    EXPECT_THAT(describe(*second, 1, 0), testing::HasSubstr("next"));
}

TEST_F(MirroredSceneTest, HasLooksWithoutTouchingTheNodes)
{
    ThingLooks looks;
    looks.show({ThingKind::ROD, 0}, false);
    looks.ofThings[{ThingKind::ROD, 1}].colour = strandview::Colour{1, 0, 0};
    changes = 0;
    first->setLooks(looks);
    first->setTransparency(0.5);
    first->cut(ClipPlane{Vector3<double>(1, 0, 0), 0.5});
    EXPECT_GT(std::exchange(changes, 0), 0);
    std::vector<SbUniqueId> before;
    for (const SoSeparator* group : groupsOf(*first))
        before.push_back(group->getNodeId());
    second->mirror(*first);
    EXPECT_TRUE(second->getLook({0, 0}).isHidden());
    EXPECT_EQ(allOf<SoSeeThrough>(second).size(), allOf<SoSeeThrough>(first).size());
    EXPECT_NE(second->getClipPlane(), nullptr);
    EXPECT_NE(second->getClipPlane(), first->getClipPlane());
    EXPECT_EQ(second->getBox(), first->getBox());
    std::vector<SbUniqueId> after;
    for (const SoSeparator* group : groupsOf(*first))
        after.push_back(group->getNodeId());
    EXPECT_EQ(after, before);
    EXPECT_EQ(changes, 0);
}

TEST_F(MirroredSceneTest, IsDrawnCoarselyByItself)
{
    second->drawCoarsely(true);
    EXPECT_THAT(areDrawnCoarsely(*first), ElementsAre(false, false));
    EXPECT_THAT(areDrawnCoarsely(*second), ElementsAre(true, true));
    first->drawCoarsely(true);
    second->drawCoarsely(false);
    EXPECT_THAT(areDrawnCoarsely(*first), ElementsAre(true, true));
    EXPECT_THAT(areDrawnCoarsely(*second), ElementsAre(false, false));
}

TEST_F(MirroredSceneTest, OutlivesTheOther)
{
    const std::string told = describe(*first, 1, 0);
    first->unref();
    EXPECT_EQ(describe(*second, 1, 0), told);
    EXPECT_THAT(areDrawnCoarsely(*second), ElementsAre(false, false));
    first = new DataScene({});
    first->ref();
    second->mirror(*first);
    EXPECT_THAT(groupsOf(*second), SizeIs(0));
}

TEST_F(MirroredSceneTest, ShowsItsOwnOnceItIsNoMirror)
{
    second->endMirror();
    EXPECT_FALSE(second->isMirror());
    EXPECT_THAT(groupsOf(*second), SizeIs(0));
    EXPECT_THAT(groupsOf(*first), SizeIs(3));
    second->add(0, rodOf(makeStraight(), "own"));
    EXPECT_THAT(describe(*second, 1, 0), testing::HasSubstr("own"));
    EXPECT_THAT(describe(*first, 1, 0), testing::HasSubstr("rod 1"));
}

TEST_F(DataSceneTest, TellsThePointAloneOfWhatIsNoRod)
{
    auto* scene = new DataScene({});
    scene->ref();
    scene->addShaded(new SoSphere);
    EXPECT_EQ(describe(*scene, 0, 0), "point 0 0 1");
    scene->unref();
}

TEST_F(DataSceneTest, TellsWhoListensAndLeavesThePickToTheViewer)
{
    auto* scene = new DataScene({});
    scene->ref();
    scene->addShaded(new SoSphere);
    SoRayPickAction pick(SbViewportRegion(100, 100));
    pick.setRay(SbVec3f(0, 0, 50), SbVec3f(0, 0, -1));
    pick.apply(scene);
    ASSERT_TRUE(pick.getPickedPoint());
    EXPECT_FALSE(scene->processPickEvent(pick.getPickedPoint())); // nobody listens
    std::string told;
    scene->onPick = [&](const SoPickedPoint& picked) { told = toLine(scene->describe(picked)); };
    EXPECT_FALSE(scene->processPickEvent(pick.getPickedPoint()));
    EXPECT_EQ(told, "point 0 0 1");
    scene->unref();
}

std::vector<float> shininessOf(SoGeneralScene& scene)
{
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    scene.getLightingParameters(directions, intensities, shininess);
    const float* values = shininess->value.getValues(0);
    return {values, values + shininess->value.getNum()};
}

void setShininess(SoGeneralScene& scene, float value)
{
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    scene.getLightingParameters(directions, intensities, shininess);
    shininess->value.set1Value(0, value);
}

TEST_F(DataSceneTest, ColoursOfDataHaveNoHighlightsUnlessTheUserChangesThem)
{
    auto* scene = new DataScene({});
    scene->ref();
    EXPECT_FALSE(scene->hasColours());
    const std::vector<float> usual = shininessOf(*scene);
    EXPECT_GT(usual[0], 0);
    scene->setColouring(Colouring());
    EXPECT_TRUE(scene->hasColours());
    EXPECT_THAT(shininessOf(*scene), testing::Each(0));
    EXPECT_GT(scene->getLegendRoom().bottom, 0);

    scene->showColours(false);
    EXPECT_EQ(shininessOf(*scene), usual);
    EXPECT_EQ(scene->getLegendRoom(), FreeEdges());
    scene->showColours(true);
    EXPECT_THAT(shininessOf(*scene), testing::Each(0));

    setShininess(*scene, 5);
    for (const bool show : {true, false, true, false}) {
        scene->showColours(show);
        EXPECT_EQ(shininessOf(*scene)[0], 5);
    }
    scene->unref();
}

TEST_F(DataSceneTest, IsDrawnAsItsStyleSaysButForWhatTheViewersKeysChange)
{
    Style style{};
    style.drawing = {Shading::WIREFRAME, true, 2.5, {}, {}, {}, {}};
    auto* scene = new DataScene({}, style);
    scene->ref();
    EXPECT_EQ(scene->getShading(), SoGeneralScene::WIREFRAME);
    EXPECT_TRUE(scene->isShowingBoundingBoxes());
    scene->setGLLineData(SbVec2f(1, 10), 0.1f); // by a viewer
    scene->keepLineWidth();
    EXPECT_EQ(scene->getLineWidth(), 2.5f);
    EXPECT_EQ(scene->getDrawing(), style.drawing);

    scene->changeLineWidth(1);
    DrawingLook thicker = style.drawing;
    thicker.lineWidth = 2.6;
    EXPECT_EQ(scene->getDrawing(), thicker);
    scene->toggleDrawStyle(false);
    scene->toggleDrawStyle(true);
    EXPECT_EQ(scene->getDrawing(), (DrawingLook{Shading::LIT, false, 2.6, {}, {}, {}, {}}));
    EXPECT_EQ(scene->getStyle().drawing, style.drawing) << "until it is told";

    scene->draw(DrawingLook());
    EXPECT_EQ(scene->getDrawing(), DrawingLook());
    EXPECT_EQ(scene->getLineWidth(), 1);
    scene->unref();
}

TEST_F(DataSceneTest, LightsAreThoseOfItsStyleButForWhatTheirDialogChanges)
{
    Style style{};
    style.drawing.light2 = parseLight("1,0,-1:0.25");
    style.drawing.light3 = parseLight("0.5");
    style.drawing.shininess = Shininess{10, 0, 40};
    auto* scene = new DataScene({}, style);
    scene->ref();
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    scene->getLightingParameters(directions, intensities, shininess);
    EXPECT_EQ(directions->value[1], SbVec3f(1, 0, -1));
    EXPECT_EQ(directions->value[2], toSbVec3f(SoGeneralScene::LIGHT_DIRS[2]));
    EXPECT_EQ(intensities->value[0], 1);
    EXPECT_EQ(intensities->value[1], 0.25f);
    EXPECT_EQ(intensities->value[2], 0.5f);
    EXPECT_EQ(shininess->value[2], 40);
    EXPECT_EQ(scene->getDrawing(), style.drawing);

    directions->value.set1Value(0, SbVec3f(0, 0.1f, -1));
    intensities->value.set1Value(1, 0.7f);
    shininess->value.set1Value(2, 30);
    DrawingLook changed = style.drawing;
    changed.light1 = parseLight("0,0.1,-1");
    changed.light2 = parseLight("1,0,-1:0.7");
    changed.shininess = Shininess{10, 0, 30};
    EXPECT_EQ(scene->getDrawing(), changed);
    scene->draw(changed);
    EXPECT_EQ(scene->getDrawing(), changed);
    EXPECT_EQ(intensities->value[1], 0.7f);

    scene->draw({});
    EXPECT_EQ(directions->value[1], toSbVec3f(SoGeneralScene::LIGHT_DIRS[1]));
    EXPECT_EQ(intensities->value[1], 0);
    EXPECT_EQ(scene->getDrawing(), DrawingLook());
    scene->unref();
}

TEST_F(DataSceneTest, WhatIsNoLightIsDrawnAsTheNearestThatIsOne)
{
    auto* scene = new DataScene({});
    scene->ref();
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    scene->getLightingParameters(directions, intensities, shininess);
    directions->value.set1Value(0, SbVec3f(NAN, INFINITY, -1));
    shininess->value.set1Value(0, INFINITY);
    const DrawingLook drawing = scene->getDrawing();
    EXPECT_EQ(formatLight(drawing.light1.value()), "0,1e+18,-1");
    EXPECT_EQ(parseShininess(formatShininess(drawing.shininess.value())), drawing.shininess);
    scene->draw(drawing);
    EXPECT_EQ(scene->getDrawing(), drawing);
    scene->unref();
}

TEST_F(DataSceneTest, ColoursOfDataHaveTheHighlightsThatItsStyleAsksFor)
{
    Style style{};
    style.drawing.shininess = Shininess{20, 20, 20};
    auto* scene = new DataScene({}, style);
    scene->ref();
    for (const bool show : {true, false}) {
        scene->setColouring(Colouring());
        scene->showColours(show);
        EXPECT_THAT(shininessOf(*scene), testing::Each(20));
    }
    scene->showColours(true);
    scene->draw({});
    EXPECT_THAT(shininessOf(*scene), testing::Each(0));
    EXPECT_EQ(scene->getShownDrawing().shininess, Shininess{});
    scene->showColours(false);
    EXPECT_THAT(shininessOf(*scene), testing::Each(10));
    EXPECT_EQ(scene->getShownDrawing().shininess, (Shininess{10, 10, 10}));
    scene->unref();
}

TEST_F(DataSceneTest, TheHelpTellsTheLightsThatThereAreByThemselves)
{
    auto* scene = new DataScene({});
    scene->ref();
    StyleRequest shown;
    shown.drawing = scene->getShownDrawing();
    for (const char* name : {"light-1", "light-2", "light-3", "shininess"})
        EXPECT_THAT(settingOf(name).help,
                    testing::HasSubstr("[" + settingOf(name).value(shown).value()));
    scene->unref();
}

TEST_F(DataSceneTest, WhereNoLineWidthIsAskedForTheKeysBeginWithTheViewers)
{
    auto* scene = new DataScene({});
    scene->ref();
    scene->setGLLineData(SbVec2f(0.5f, 10), 0.25f);
    scene->keepLineWidth();
    EXPECT_EQ(scene->getDrawing(), DrawingLook());
    scene->changeLineWidth(1);
    EXPECT_EQ(scene->getDrawing().lineWidth, 0.75);
    scene->unref();
}

TEST_F(DataSceneTest, OneLegendTellsWhicheverColouringThereIsAndStaysHidden)
{
    auto* scene = new DataScene({});
    scene->ref();
    Colouring next;
    next.max = 7;
    next.places = {{0.5}};
    scene->setColouring(Colouring());
    scene->setColouring(next);
    EXPECT_TRUE(scene->areColoursShown());
    scene->showColours(false);
    for (const double max : {8, 9}) {
        next.max = max;
        scene->setColouring(next);
        next.isAbove = !next.isAbove;
        scene->updateLegend(next);
        EXPECT_EQ(scene->getColouring()->max, max);
        EXPECT_EQ(scene->getColouring()->isAbove, next.isAbove);
        EXPECT_THAT(scene->getColouring()->places, testing::IsEmpty());
        EXPECT_FALSE(scene->areColoursShown());
        EXPECT_THAT(allOf<SoOverlay>(scene), SizeIs(1));
    }
    scene->unref();
}

// With a legend elsewhere, in other letters, on another background.
TEST_F(DataSceneTest, ARedressedSceneIsDrawnAsOneThatWasMadeSoAndComesBack)
{
    Options usual;
    usual.colourBy = "arclength";
    Options other = usual;
    other.background = {0, 0, 0};
    other.legend.place = LegendPlace::TOP;
    other.picture = "small.png";
    other.pictureWidth = other.pictureHeight = 200; // of small pictures letters are larger
    const std::vector<std::string> files{std::string(SAMPLES_FOLDER) + "/trefoil.txt"};
    ReadReport report;
    DataScene* scenes[] = {loadScene(files, usual, report), loadScene(files, other, report)};
    const auto drawn = [](DataScene& scene) {
        const Picture picture{"", 200, 200, 1, {1, 1, 1}, false, scene.settle({}), 0};
        QImage image;
        EXPECT_EQ(PictureWriter().draw(&scene, picture, image), "");
        return image;
    };
    for (DataScene* scene : scenes) {
        ASSERT_NE(scene, nullptr) << report.error;
        scene->ref();
    }
    const Style before = scenes[0]->getStyle();
    ASSERT_NE(before.legendTextSize, scenes[1]->getStyle().legendTextSize);
    const QImage first = drawn(*scenes[0]);
    EXPECT_NE(first, drawn(*scenes[1]));
    scenes[0]->redress(scenes[1]->getStyle());
    EXPECT_EQ(drawn(*scenes[0]), drawn(*scenes[1]));
    scenes[0]->redress(before);
    EXPECT_EQ(drawn(*scenes[0]), first);
    for (DataScene* scene : scenes)
        scene->unref();
}

TEST_F(DataSceneTest, ASceneWithoutColoursOfDataHasNoneToShow)
{
    auto* scene = new DataScene({});
    scene->ref();
    const std::vector<float> usual = shininessOf(*scene);
    scene->showColours(true);
    scene->showColours(false);
    EXPECT_EQ(shininessOf(*scene), usual);
    scene->unref();
}

} // namespace

} // namespace strandview
