// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SceneBuilder.h"

#include <algorithm>
#include <cmath>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoShape.h>
#include <Inventor/nodes/SoSwitch.h>
#include <SoArrow.h>
#include <SoBirod.h>
#include <SoDNA.h>
#include <SoFrame.h>
#include <SoMarker.h>
#include <SoRod.h>
#include <gmock/gmock.h>

#include <strandview/analysis/parallelTransport.h>

#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SoPlacedSolids.h"
#include "support/StoppingAt.h"
#include "support/graph.h"
#include "support/initialiseSceneOnce.h"

namespace strandview {

using algebra3d::Quaternion;
using algebra3d::Vector3;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class SceneBuilderTest : public testing::Test
{
protected:
    SceneBuilderTest() { initialiseSceneOnce(); }
    ~SceneBuilderTest() override
    {
        if (scene)
            scene->unref();
    }

    // The scene of the data, or null and the error.
    DataScene* build(const Configuration& data, const Options& options = {},
                     const Colouring* colouring = nullptr)
    {
        TerminalProgress progress;
        scene = buildScene(data, makeStyle(options, data), colouring, progress, error);
        if (scene)
            scene->ref();
        return scene;
    }

    template <typename Node>
    std::vector<Node*> find()
    {
        return allOf<Node>(scene);
    }

    SbBox3f box()
    {
        SoGetBoundingBoxAction bounds(SbViewportRegion(100, 100));
        bounds.apply(scene);
        return bounds.getBoundingBox();
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

    // Between the own colours of the first birod or DNA and those of data.
    enum Kind { BIROD = 1, DNA = 4 };
    SoSwitch* choiceOf(Kind kind) { return scene->getShown(kind).at(0).colours; }

    // Of the rod with that index.
    SbColor colourOf(std::size_t index)
    {
        SoSearchAction search;
        search.setNode(find<SoRod>()[index]);
        search.setSearchingAll(TRUE);
        search.apply(scene);
        const auto* group = static_cast<SoGroup*>(search.getPath()->getNodeFromTail(1));
        return static_cast<SoMaterial*>(group->getChild(0))->diffuseColor[0];
    }

    DataScene* scene = nullptr;
    std::string error;
};

// Of a DNA these parts and no other.
Options showing(std::initializer_list<bool DnaLook::*> parts)
{
    Options options;
    options.dna = {false, false, false, false, false, 1};
    for (bool DnaLook::*part : parts)
        options.dna.*part = true;
    return options;
}

// Pairs one above the other along z, 10 apart, in the unit of `angstrom`.
Dna makeDna(const std::string& bases, double angstrom = 1)
{
    Dna dna;
    dna.origin = "dna.txt:1: DNA 1";
    dna.bases = bases;
    for (std::size_t i = 0; i < bases.size(); ++i) {
        dna.pairPoints.emplace_back(0, 0, 10.0 * double(i) * angstrom);
        dna.pairRotations.emplace_back();
    }
    dna.points1 = dna.points2 = dna.pairPoints;
    dna.rotations1 = dna.rotations2 = dna.pairRotations;
    return dna;
}

// Strands at x = 1 and x = -1 along y.
Birod makeBirod()
{
    Birod birod;
    birod.origin = "ladder.json: birods[0]";
    const double s = std::sqrt(0.5);
    for (int i = 0; i < 4; ++i) {
        birod.points.emplace_back(0, i, 0);
        birod.points1.emplace_back(1, i, 0);
        birod.points2.emplace_back(-1, i, 0);
        birod.rotations.emplace_back(-s, 0, 0, s);
    }
    birod.rotations1 = birod.rotations2 = birod.rotations;
    return birod;
}

Configuration glyphs()
{
    Configuration data;
    Marker marker;
    marker.origin = "glyphs.json: markers[0]";
    marker.point = {5, 0, 0};
    marker.shape = Marker::Shape::CUBE;
    marker.size = 2.0;
    marker.colour = "blue";
    marker.transparency = 0.25;
    marker.id = 7;
    data.markers.push_back(marker);
    Frame frame;
    frame.origin = "glyphs.json: frames[0]";
    frame.point = {0, 0, 0};
    frame.size = 2.0;
    data.frames.push_back(frame);
    Arrow arrow;
    arrow.origin = "glyphs.json: arrows[0]";
    arrow.from = {0, -5, 0};
    arrow.to = {4, -5, 0};
    arrow.radius = 0.5;
    data.arrows.push_back(arrow);
    return data;
}

TEST_F(SceneBuilderTest, SaysWhatItBuildsAndStopsWhereItIsToldTo)
{
    Configuration data;
    const std::vector<algebra3d::Vector3<double>> points = {{0, 0, 0}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i)
        data.rods.push_back({"rod", points, std::vector<algebra3d::Quaternion<double>>(2), {}});
    data.arrows.resize(2);
    const Style style = makeStyle({}, data);
    StoppingAt never;
    scene = buildScene(data, style, nullptr, never, error);
    ASSERT_NE(scene, nullptr) << error;
    scene->ref();
    EXPECT_THAT(never.texts,
                testing::ElementsAre("Building rod 1 of 3", "Building rod 2 of 3",
                                     "Building rod 3 of 3", "Showing rod 1 of 3",
                                     "Showing rod 2 of 3", "Showing rod 3 of 3",
                                     "Building arrow 1 of 2", "Building arrow 2 of 2"));
    for (int i = 1; i <= 8; ++i) {
        StoppingAt progress(i);
        EXPECT_EQ(buildScene(data, style, nullptr, progress, error), nullptr) << i;
        EXPECT_EQ(error, "building the scene was stopped");
        EXPECT_EQ(progress.texts.size(), std::size_t(i));
    }
}

TEST_F(SceneBuilderTest, ShowsABirodThroughItsOwnPointsAndTellsTheAveragesArcLength)
{
    Configuration data;
    data.birods.push_back(makeBirod());
    ASSERT_TRUE(build(data)) << error;
    const auto birods = find<SoBirod>();
    ASSERT_EQ(birods.size(), 1u);
    EXPECT_TRUE(birods[0]->isValid());
    EXPECT_EQ(birods[0]->getStrandXPos(), 0);
    EXPECT_EQ(birods[0]->getStrandYPos(), 0);
    EXPECT_THAT(describe(1, 1.5), StartsWith("point 1 1.5 "));
    EXPECT_THAT(describe(1, 1.5), EndsWith(", arc length 1.5 of 3 – ladder.json: birods[0]"));
    EXPECT_THAT(describe(-1, 0.5), HasSubstr("arc length 0.5 of 3"));
    EXPECT_EQ(describe(0.5, 0.5), "") << "the ribbon is seen from its edge";
}

TEST_F(SceneBuilderTest, ShowsAClosedRodWithoutASeam)
{
    Configuration data;
    data.rods.resize(2);
    for (Rod& rod : data.rods) {
        for (int i = 0; i < 8; ++i)
            rod.points.emplace_back(std::cos(M_PI / 4 * i), std::sin(M_PI / 4 * i), 0);
        rod.points.push_back(rod.points.front());
        rod.rotations = parallelTransport(rod.points);
    }
    data.rods[1].isClosed = true;
    ASSERT_TRUE(build(data)) << error;
    const auto rods = find<SoRod>();
    ASSERT_EQ(rods.size(), 2u);
    EXPECT_FALSE(rods[0]->isClosed());
    EXPECT_FALSE(rods[0]->getTubeMesh()->isMeetingItself());
    EXPECT_TRUE(rods[1]->isClosed());
    EXPECT_TRUE(rods[1]->getTubeMesh()->isMeetingItself());
}

TEST_F(SceneBuilderTest, TellsWhichBaseOfADnaWasPicked)
{
    Configuration data;
    data.dnas.push_back(makeDna("AC"));
    ASSERT_TRUE(build(data, showing({&DnaLook::atoms}))) << error;
    // From above the last pair hides the first. Strand 1's bases lie along d2, y.
    EXPECT_THAT(describe(0, 4), StartsWith("pair 2 CG, strand 1, point 0 4 1"));
    EXPECT_THAT(describe(0, 4), EndsWith(" – dna.txt:1: DNA 1"));
    EXPECT_THAT(describe(0, -4), StartsWith("pair 2 CG, strand 2, point 0 -4 1"));
    EXPECT_EQ(describe(20, 0), "");
}

TEST_F(SceneBuilderTest, BackbonesAreDrawnCoarselyIfAsked)
{
    Configuration data;
    data.dnas.push_back(makeDna("ACGT"));
    ASSERT_TRUE(build(data, showing({&DnaLook::backbone}))) << error;
    const auto backbones = find<SoRod>();
    ASSERT_EQ(backbones.size(), 2U);
    for (const SoRod* backbone : backbones)
        EXPECT_TRUE(backbone->isDrawnCoarsely()) << "wherever the scene is";
}

TEST_F(SceneBuilderTest, TellsThePairOfAPairsBox)
{
    Configuration data;
    data.dnas.push_back(makeDna("GAT"));
    ASSERT_TRUE(build(data, showing({&DnaLook::pairBoxes}))) << error;
    EXPECT_THAT(describe(0, 4), StartsWith("pair 3 TA, point 0 4 "));
}

TEST_F(SceneBuilderTest, TellsThePairAndTheStrandOfASlab)
{
    Configuration data;
    data.dnas.push_back(makeDna("AGN"));
    ASSERT_TRUE(build(data)) << error;
    EXPECT_THAT(describe(0, 4), StartsWith("pair 3 NN, strand 1, point 0 4 20.65"));
    EXPECT_THAT(describe(0, -4), StartsWith("pair 3 NN, strand 2, point 0 -4 20.65"));
    EXPECT_THAT(describe(0, 4), EndsWith(" – dna.txt:1: DNA 1"));
    scene->unref();

    data.dnas[0].pairPoints[2].x = data.dnas[0].points1[2].x = data.dnas[0].points2[2].x = 50;
    ASSERT_TRUE(build(data)) << error;
    EXPECT_THAT(describe(0, 4), StartsWith("pair 2 GC, strand 1, "));
    EXPECT_THAT(describe(0, -4), StartsWith("pair 2 GC, strand 2, "));
    EXPECT_THAT(describe(50, -4), StartsWith("pair 3 NN, strand 2, "));
}

// Colours of data for the pairs of a DNA, from black at 0 to white at 1.
Colouring colouringOf(const std::vector<double>& places)
{
    Colouring colouring;
    colouring.name = "roll";
    colouring.ramp = ColourMapper(0, 1);
    colouring.ramp.setColours({{0, 0, 0}, {1, 1, 1}});
    colouring.places = {places};
    return colouring;
}

// Of the parts of a DNA's pairs in colours of data: 0 boxes of pairs, 1 and 2 what there is of the
// bases of a strand.
const SoPlacedSolids& partOf(const SoSwitch* choice, int part)
{
    const auto* pairs =
        static_cast<SoGroup*>(static_cast<SoGroup*>(choice->getChild(1))->getChild(1));
    return *static_cast<SoPlacedSolids*>(
        static_cast<SoSwitch*>(pairs->getChild(part))->getChild(0));
}

std::vector<Colour> coloursIn(const SoSwitch* choice, int part)
{
    std::vector<Colour> colours;
    for (const SoPlacedSolids::Place& place : partOf(choice, part).getPlaces())
        colours.push_back(place.colour);
    return colours;
}

// Of the brightest corner of what stands in a part's places.
float brightestIn(const SoSwitch* choice, int part)
{
    float most = 0;
    for (const Solid& solid : partOf(choice, part).getSolids())
        for (const Solid::Corner& corner : solid.corners)
            most = std::max(most, corner.brightness);
    return most;
}

TEST_F(SceneBuilderTest, GivesEveryPairTheColourOfItsDataAndTellsWhichIsPicked)
{
    Configuration data;
    data.dnas.push_back(makeDna("AGN"));
    const Colouring colouring = colouringOf({0, 1, 0.5});
    for (const auto& look :
         {showing({&DnaLook::bases}), showing({&DnaLook::baseBoxes, &DnaLook::pairBoxes}),
          showing({&DnaLook::bases, &DnaLook::atoms, &DnaLook::backbone})}) {
        ASSERT_TRUE(build(data, look, &colouring)) << error;
        for (const int strand : {1, 2}) {
            const auto colours = coloursIn(choiceOf(DNA), strand);
            ASSERT_EQ(colours.size(), 3u) << "of a base each";
            for (std::size_t i = 0; i < 3; ++i)
                for (const float part : {colours[i].red, colours[i].green, colours[i].blue})
                    EXPECT_NEAR(part, i == 0 ? 0 : i == 1 ? 1 : 0.5, 1e-3);
            EXPECT_EQ(brightestIn(choiceOf(DNA), strand), 1);
        }
        EXPECT_EQ(coloursIn(choiceOf(DNA), 0).empty(), !look.dna.pairBoxes);
        EXPECT_THAT(describe(0, 4), StartsWith("pair 3 NN, ")) << "of all that is shown";
        EXPECT_THAT(describe(0, 4), HasSubstr(look.dna.pairBoxes ? "point" : "strand 1, point"));
        EXPECT_THAT(describe(0, -4), EndsWith(" – dna.txt:1: DNA 1"));
        scene->unref();
        scene = nullptr;
    }
}

TEST_F(SceneBuilderTest, ShowsInColoursOfDataWhatItShowsInItsOwn)
{
    Configuration data;
    data.dnas.push_back(makeDna("ACGTN"));
    data.dnas[0].points1[1].x = 3; // no two at one place
    const Colouring colouring = colouringOf({0, 0.25, 0.5, 0.75, 1});
    for (const auto& look :
         {showing({&DnaLook::bases}), showing({&DnaLook::baseBoxes}),
          showing({&DnaLook::pairBoxes}), showing({&DnaLook::baseBoxes, &DnaLook::pairBoxes})}) {
        ASSERT_TRUE(build(data, look, &colouring)) << error;
        SoSwitch* const choice = choiceOf(DNA);
        ASSERT_NE(choice, nullptr);
        EXPECT_EQ(choice->whichChild.getValue(), 1);
        const SbBox3f ofData = box();
        choice->whichChild = 0;
        const SbBox3f own = box();
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR(ofData.getMin()[axis], own.getMin()[axis], 1e-4);
            EXPECT_NEAR(ofData.getMax()[axis], own.getMax()[axis], 1e-4);
        }
        scene->unref();
        scene = nullptr;
    }
}

TEST_F(SceneBuilderTest, GivesBackbonesTheColoursOfTheirPairs)
{
    Configuration data;
    data.dnas.push_back(makeDna("ACG"));
    const Colouring colouring = colouringOf({0, 0, 1});
    ASSERT_TRUE(build(data, showing({&DnaLook::backbone}), &colouring)) << error;
    const auto rods = find<SoRod>();
    ASSERT_EQ(rods.size(), 2u);
    for (std::size_t strand = 0; strand < 2; ++strand) {
        SoSearchAction search;
        search.setNode(rods[strand]);
        search.setSearchingAll(TRUE);
        search.apply(scene);
        const auto* group = static_cast<SoGroup*>(search.getPath()->getNodeFromTail(1));
        const auto* choice = dynamic_cast<SoSwitch*>(group->getChild(0));
        ASSERT_NE(choice, nullptr);
        EXPECT_EQ(choice->whichChild.getValue(), 1);
        const auto* material =
            static_cast<SoMaterial*>(static_cast<SoGroup*>(choice->getChild(1))->getChild(0));
        const SbColor first = material->diffuseColor[0];
        const SbColor last = material->diffuseColor[rods[strand]->getTubeMesh()->getHeight() - 1];
        EXPECT_NEAR(first[0], strand == 0 ? 0 : 1, 1e-5); // strand 2 begins at the last pair
        EXPECT_NEAR(last[0], strand == 0 ? 1 : 0, 1e-5);
        choiceOf(DNA)->whichChild = 0;
        EXPECT_EQ(choice->whichChild.getValue(), 0) << "follows";
        choiceOf(DNA)->whichChild = 1;
    }
}

TEST_F(SceneBuilderTest, GivesABirodTheColoursOfItsData)
{
    Configuration data;
    data.birods.push_back(makeBirod());
    Colouring colouring = colouringOf({});
    colouring.birods = 1;
    colouring.places = {{0, 0, 0, 0}, {1, 1, 1, 1}, {0.5, 0.5, 0.5, 0.5}};
    ASSERT_TRUE(build(data, {}, &colouring)) << error;
    const SoBirod& birod = *find<SoBirod>().at(0);
    SoSwitch* const choice = choiceOf(BIROD);
    ASSERT_NE(choice, nullptr);
    const auto& colours =
        static_cast<SoMaterial*>(static_cast<SoGroup*>(choice->getChild(1))->getChild(0))
            ->diffuseColor;
    const int average = birod.getAvgTubeMesh()->getHeight() + birod.getAvgRibbonMesh()->getHeight();
    const int strand = birod.getTube1Mesh()->getHeight() + birod.getRibbon1Mesh()->getHeight();
    ASSERT_GT(colours.getNum(), average + strand);
    EXPECT_EQ(colours[0][0], 0);
    EXPECT_EQ(colours[average - 1][0], 0);
    EXPECT_EQ(colours[average][0], 1);
    EXPECT_EQ(colours[average + strand - 1][0], 1);
    EXPECT_NEAR(colours[average + strand][0], 0.5, 1e-6);
}

TEST_F(SceneBuilderTest, TellsTheBaseThatABackboneIsNear)
{
    Configuration data;
    data.dnas.push_back(makeDna("AAC"));
    ASSERT_TRUE(build(data, showing({&DnaLook::backbone}))) << error;
    // The upper ends, of strand 1 the 3' end, of strand 2 the 5' end: the last pair of both.
    EXPECT_THAT(describe(-5.24f, 7.81f), StartsWith("pair 3 CG, strand 1, point -5.24"));
    EXPECT_THAT(describe(-0.3f, -9.37f), StartsWith("pair 3 CG, strand 2, point -0.3"));
    EXPECT_EQ(describe(0, 0), "");
}

TEST_F(SceneBuilderTest, ShowsOfABaseThatIsNotKnownABoxAndNoAtoms)
{
    const auto shownBases = [this](const std::string& bases) {
        Configuration data;
        data.dnas.push_back(makeDna(bases));
        EXPECT_TRUE(build(data, showing({&DnaLook::atoms, &DnaLook::baseBoxes}))) << error;
        return find<SoNucleobase>();
    };
    const auto isGrey = [](const SoNucleobase* base) {
        const auto colour = base->getBoxColour();
        return colour.x == colour.y && colour.y == colour.z;
    };
    for (const SoNucleobase* base : shownBases("AC")) {
        EXPECT_TRUE(base->areAtomsShown());
        EXPECT_FALSE(isGrey(base));
    }
    EXPECT_EQ(find<SoNucleobase>().size(), 4u);
    scene->unref();
    for (const SoNucleobase* base : shownBases("N")) {
        EXPECT_FALSE(base->areAtomsShown());
        EXPECT_TRUE(base->isBoxShown());
        EXPECT_TRUE(isGrey(base));
    }
    EXPECT_EQ(find<SoNucleobase>().size(), 2u);
    EXPECT_THAT(describe(0, 4), StartsWith("pair 1 NN, strand 1, point 0 4 0.75"));
}

// Of strand 1 of that molecule, beside its pairs.
Rod makeBackbone(std::size_t molecule)
{
    Rod rod;
    rod.origin = "1xyz.pdb: chain A";
    for (int i = 0; i < 4; ++i) {
        rod.points.emplace_back(-3, 9, 10 * i);
        rod.rotations.emplace_back();
    }
    rod.hasFrames = false;
    rod.isBackbone = true;
    rod.molecule = molecule;
    return rod;
}

TEST_F(SceneBuilderTest, ADnaHasIdealBackbonesUnlessItsMoleculeHasOthers)
{
    const auto shownTubes = [this](const Configuration& data) {
        EXPECT_TRUE(build(data)) << error;
        int shown = 0;
        for (const SoRod* rod : find<SoRod>())
            shown += rod->isValid() && rod->isShowingTube();
        scene->unref();
        scene = nullptr;
        return shown;
    };
    Configuration data;
    data.dnas = {makeDna("ACG")};
    data.dnas[0].molecule = 1;
    EXPECT_EQ(shownTubes(data), 2);
    data.rods = {makeBackbone(2)};
    EXPECT_EQ(shownTubes(data), 3);
    data.rods = {makeBackbone(1)};
    EXPECT_EQ(shownTubes(data), 1);
    data.rods[0].isBackbone = false;
    EXPECT_EQ(shownTubes(data), 3);
}

TEST_F(SceneBuilderTest, ABackboneIsATubeOfItsMoleculeThatEndsInAHead)
{
    Configuration data;
    data.dnas = {makeDna("ACG")};
    data.dnas[0].molecule = 2;
    data.rods = {makeBackbone(1)};
    Options options;
    options.showRibbon = true;
    ASSERT_TRUE(build(data, options)) << error;
    const auto rods = find<SoRod>();
    ASSERT_EQ(rods.size(), 3u);
    const SbColor first = colourOf(0);
    EXPECT_NE(first, colourOf(1));
    EXPECT_EQ(colourOf(1), colourOf(2));
    for (const SoRod* rod : rods) {
        EXPECT_EQ(rod->getTubeRadius(), 1);
        EXPECT_FALSE(rod->isShowingRibbon());
    }
    // Along z from 30 on.
    EXPECT_THAT(describe(-3, 9), HasSubstr(", arc length 30 of 30 – 1xyz.pdb"));
    scene->unref();

    data.dnas[0].molecule = 1;
    ASSERT_TRUE(build(data, showing({&DnaLook::bases}))) << error;
    EXPECT_EQ(describe(-3, 9), "") << "hidden with the DNA's";
    scene->unref();

    options.tubeColour = Colour{1, 0, 0};
    options.radius = 0.5;
    data.dnas[0].molecule = 2;
    ASSERT_TRUE(build(data, options)) << error;
    for (const SoRod* rod : find<SoRod>())
        EXPECT_EQ(rod->getTubeRadius(), 0.5);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(colourOf(i), SbColor(1, 0, 0));
}

TEST_F(SceneBuilderTest, ARodHasTheColourAndTheRadiusOfItsFile)
{
    Configuration data;
    Rod rod = makeBackbone(0);
    rod.isBackbone = false;
    rod.colour = "#ff0000";
    rod.radius = 0.25;
    data.rods = {rod};
    ASSERT_TRUE(build(data)) << error;
    EXPECT_EQ(find<SoRod>()[0]->getTubeRadius(), 0.25);
    EXPECT_NEAR(find<SoRod>()[0]->getRibbonWidth(), 0.75, 1e-12);
    EXPECT_EQ(colourOf(0), SbColor(1, 0, 0));
    scene->unref();

    Options options;
    options.tubeColour = Colour{0, 0, 1};
    options.radius = 0.5;
    ASSERT_TRUE(build(data, options)) << error;
    EXPECT_EQ(find<SoRod>()[0]->getTubeRadius(), 0.5);
    EXPECT_EQ(colourOf(0), SbColor(0, 0, 1));
    scene->unref();

    data.rods[0].colour = "reddish";
    EXPECT_FALSE(build(data));
    EXPECT_EQ(error, "1xyz.pdb: chain A.colour: found 'reddish', expected #rrggbb or an SVG colour "
                     "name");
}

LoneBase makeLoneBase(char letter, double x)
{
    LoneBase base;
    base.origin = std::string("1xyz.pdb: base ") + letter;
    base.base = letter;
    base.point = {x, 0, 0};
    return base;
}

TEST_F(SceneBuilderTest, TellsEachBaseWithoutAPairByItsName)
{
    Configuration data;
    data.loneBases = {makeLoneBase('A', 0), makeLoneBase('N', 20), makeLoneBase('A', 40)};
    data.loneBases[2].origin = "another";
    for (const Options& options :
         {Options(), showing({&DnaLook::baseBoxes}), showing({&DnaLook::atoms})}) {
        ASSERT_TRUE(build(data, options)) << error;
        EXPECT_THAT(describe(0, 4), StartsWith("base A, point 0 4 "));
        EXPECT_THAT(describe(0, 4), EndsWith(" – 1xyz.pdb: base A"));
        EXPECT_THAT(describe(40, 4), EndsWith(" – another"));
        EXPECT_EQ(describe(20, 4) != "", !options.dna.atoms) << "of N there are no atoms";
        EXPECT_EQ(describe(0, -4), "") << "the base lies along d2";
        scene->unref();
    }
    ASSERT_TRUE(build(data)) << error;
    EXPECT_THAT(describe(20, 4), StartsWith("base N, point 20 4 0.65"));
    EXPECT_GT(box().getSize()[0], 40);
}

TEST_F(SceneBuilderTest, BasesWithoutAPairThatTheirUserNamesAreToldByThatAndTheirNumber)
{
    const std::size_t loneBases = 5; // of the kinds
    Configuration data;
    data.loneBases = {makeLoneBase('A', 0), makeLoneBase('C', 20)};
    ASSERT_TRUE(build(data)) << error;
    ThingLooks looks;
    looks.ofThings[scene->idOf({loneBases, 0})].name = "loose";
    scene->setLooks(looks);
    EXPECT_THAT(describe(20, 4), StartsWith("base C, "));
    EXPECT_THAT(describe(20, 4), EndsWith(" – loose, base 2"));
}

TEST_F(SceneBuilderTest, ShowsOfADnaWhatIsAskedFor)
{
    Configuration data;
    data.dnas.push_back(makeDna("A"));
    ASSERT_TRUE(build(data, showing({&DnaLook::baseBoxes, &DnaLook::pairBoxes}))) << error;
    const auto dnas = find<SoDNA>();
    ASSERT_EQ(dnas.size(), 1u);
    EXPECT_FALSE(dnas[0]->areAtomsShown());
    EXPECT_TRUE(dnas[0]->areBaseBoxesShown());
    EXPECT_TRUE(dnas[0]->areBasePairBoxesShown());
}

TEST_F(SceneBuilderTest, ADnaInNanometresIsTheSameATenthAsLarge)
{
    Configuration inAngstrom, inNanometres;
    inAngstrom.dnas.push_back(makeDna("ACGT"));
    inNanometres.dnas.push_back(makeDna("ACGT", 0.1));
    ASSERT_TRUE(build(inAngstrom)) << error;
    const SbBox3f large = box();
    const std::string told = describe(0, 4);
    EXPECT_THAT(told, HasSubstr("point 0 4 3"));
    scene->unref();

    Options options;
    options.dna.angstrom = 0.1;
    ASSERT_TRUE(build(inNanometres, options)) << error;
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(box().getSize()[axis], 0.1f * large.getSize()[axis], 1e-4f);
    EXPECT_THAT(describe(0, 0.4f), HasSubstr("pair 4 TA, strand 1, point 0 0.4 3"));
}

TEST_F(SceneBuilderTest, TheBoxOfADnaHoldsAllOfItAndLittleMore)
{
    // Turned pairs, of which Coin makes much larger boxes.
    Dna dna = makeDna("ACGTACGTAC");
    for (std::size_t i = 0; i < dna.bases.size(); ++i) {
        const double angle = 0.3 * double(i);
        dna.pairRotations[i] = Quaternion<double>(0, 0, std::sin(angle), std::cos(angle));
        dna.pairPoints[i] = {20 * std::cos(angle), 20 * std::sin(angle), double(i)};
    }
    dna.points1 = dna.points2 = dna.pairPoints;
    dna.rotations1 = dna.rotations2 = dna.pairRotations;
    Configuration data;
    data.dnas.push_back(dna);
    ASSERT_TRUE(build(data)) << error;
    const SbBox3f told = box();

    // Every corner of every triangle, where it is shown.
    SbBox3f exact;
    SoCallbackAction corners;
    const auto extend = [](void* box, SoCallbackAction* action, const SoPrimitiveVertex* a,
                           const SoPrimitiveVertex* b, const SoPrimitiveVertex* c) {
        for (const SoPrimitiveVertex* corner : {a, b, c}) {
            SbVec3f placed;
            action->getModelMatrix().multVecMatrix(corner->getPoint(), placed);
            static_cast<SbBox3f*>(box)->extendBy(placed);
        }
    };
    corners.addTriangleCallback(SoShape::getClassTypeId(), extend, &exact);
    corners.apply(scene);
    ASSERT_FALSE(exact.isEmpty());
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_LE(told.getMin()[axis], exact.getMin()[axis]) << axis;
        EXPECT_GE(told.getMax()[axis], exact.getMax()[axis]) << axis;
        EXPECT_LE(told.getSize()[axis], exact.getSize()[axis] + 18) << axis;
    }
}

TEST_F(SceneBuilderTest, PlacesMarkersWithTheirIdShapeSizeColourAndTransparency)
{
    ASSERT_TRUE(build(glyphs())) << error;
    const auto markers = find<SoMarker>();
    ASSERT_EQ(markers.size(), 1u);
    EXPECT_EQ(markers[0]->getId(), 7);
    EXPECT_EQ(markers[0]->getShape(), SoMarker::CUBE);
    EXPECT_EQ(markers[0]->getSize(), 2);
    EXPECT_EQ(markers[0]->getTransparency(), 0.25);
    double red = -1, green = -1, blue = -1;
    markers[0]->getColour(red, green, blue);
    EXPECT_EQ(red, 0);
    EXPECT_EQ(green, 0);
    EXPECT_EQ(blue, 1);
    EXPECT_EQ(describe(5, 0), "point 5 0 1 – glyphs.json: markers[0]: id 7");
}

TEST_F(SceneBuilderTest, PlacesArrowsAndFramesInTheirSize)
{
    ASSERT_TRUE(build(glyphs())) << error;
    EXPECT_EQ(find<SoArrow>().size(), 1u + 3u) << "the arrow, and those of the marker's cross";
    EXPECT_EQ(find<SoFrame>().size(), 1u);
    EXPECT_EQ(describe(0.5f, -5), "point 0.5 -5 0.5 – glyphs.json: arrows[0]");
    EXPECT_THAT(describe(1, 0), StartsWith("point 1 0 0."));
    const SbBox3f all = box();
    EXPECT_NEAR(all.getMax()[2], 2, 1e-3) << "the frame's axis z";
    EXPECT_NEAR(all.getMin()[1], -5 - 1.1, 0.01) << "the arrow's head";
}

TEST_F(SceneBuilderTest, RefusesAColourThatIsNone)
{
    Configuration data = glyphs();
    data.markers[0].colour = "bluish";
    EXPECT_FALSE(build(data));
    EXPECT_EQ(error, "glyphs.json: markers[0].colour: found 'bluish', expected #rrggbb or an SVG "
                     "colour name");
    data = glyphs();
    data.arrows[0].colour = "#12";
    EXPECT_FALSE(build(data));
    EXPECT_THAT(error, StartsWith("glyphs.json: arrows[0].colour: found '#12'"));
}

TEST_F(SceneBuilderTest, ShowsASinglePointOfAnything)
{
    Configuration data;
    Marker marker;
    marker.point = {1e6, 2e6, 3e6};
    data.markers.push_back(marker);
    ASSERT_TRUE(build(data)) << error;
    EXPECT_GT(box().getSize()[0], 0);
    scene->unref();

    data = {};
    data.dnas.push_back(makeDna("G"));
    ASSERT_TRUE(build(data)) << error;
    EXPECT_GT(box().getSize()[0], 5);
}

TEST_F(SceneBuilderTest, RefusesABirodThatTurnsStraightBack)
{
    Configuration data;
    data.birods.push_back(makeBirod());
    data.birods[0].points2[2] = data.birods[0].points2[0];
    EXPECT_FALSE(build(data));
    EXPECT_THAT(
        error,
        StartsWith(
            "ladder.json: birods[0].strand2.points[1]: found edges that turn straight back"));
}

} // namespace

} // namespace strandview
