// SPDX-License-Identifier: GPL-3.0-or-later
// What is seen of data that are cut at a plane, and what can be picked of them.
#define GL_GLEXT_PROTOTYPES
#include "scene/clipping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <GL/gl.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <gtest/gtest.h>

#include <strandview/analysis/parallelTransport.h>
#include <strandview/formats/readFile.h>
#include <strandview/model/Extent.h>

#include "pictures/TileRenderer.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/Style.h"
#include "support/initialiseSceneOnce.h"
#include "support/renderPicture.h"

namespace strandview {

using Vector = algebra3d::Vector3<double>;

namespace {

const int SIZE = 220;
const strandview::Colour BACKGROUND{0, 0, 0};

// What is seen in each pixel, and how far away: 1 where nothing is.
struct View
{
    std::vector<std::uint32_t> colours;
    std::vector<float> depths;

    bool covers(std::size_t pixel) const { return depths[pixel] < 1; }
    int countCovered() const
    {
        return int(std::count_if(depths.begin(), depths.end(), [](float d) { return d < 1; }));
    }
    std::size_t mirrored(std::size_t pixel) const
    {
        return pixel / SIZE * SIZE + (SIZE - 1 - pixel % SIZE);
    }
};

int difference(std::uint32_t a, std::uint32_t b)
{
    int largest = 0;
    for (int shift = 0; shift < 24; shift += 8)
        largest = std::max(largest, std::abs(int(a >> shift & 255) - int(b >> shift & 255)));
    return largest;
}

Rod rodThrough(const std::vector<Vector>& points)
{
    Rod rod;
    rod.colour = "#4040ff";
    rod.points = points;
    rod.rotations = parallelTransport(points);
    return rod;
}

struct Sample
{
    const char* name;
    const char* file;
    const char* dna; // what is shown of it
};

void PrintTo(const Sample& sample, std::ostream* stream) { *stream << sample.name; }

class ClippingTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initialiseSceneOnce(); } // before the camera is made

    ~ClippingTest() override
    {
        if (root)
            root->unref();
    }

    void show(const Configuration& shown, const Options& options = {})
    {
        data = shown;
        TerminalProgress progress;
        std::string error;
        scene = buildScene(data, makeStyle(options, data), nullptr, progress, error);
        ASSERT_TRUE(scene) << error;
        root = new SoSeparator;
        root->ref();
        root->addChild(camera);
        root->addChild(scene);
        extent = measure(data);
        lookAlong({0, 0, -1});
    }
    // In parallel, at the middle of the box, whose depth and width are the view's.
    void lookAlong(SbVec3f direction)
    {
        direction.normalize();
        const SbBox3f box = scene->getBox();
        const float across = (box.getMax() - box.getMin()).length();
        camera->orientation = SbRotation(SbVec3f(0, 0, -1), direction);
        if (direction == SbVec3f(0, 0, 1)) // about y
            camera->orientation = SbRotation(SbVec3f(0, 1, 0), float(M_PI));
        camera->position = box.getCenter() - direction * across;
        camera->nearDistance = across / 4;
        camera->farDistance = across * 7 / 4;
        camera->focalDistance = across;
        camera->height = across;
    }
    View draw()
    {
        glEnable(GL_DEPTH_TEST);
        EXPECT_TRUE(renderer.render(root, 0, 0, BACKGROUND));
        View view;
        view.colours.resize(std::size_t(SIZE) * SIZE);
        view.depths.resize(view.colours.size());
        renderer.read(0, SIZE, view.colours.data());
        glReadPixels(0, 0, SIZE, SIZE, GL_DEPTH_COMPONENT, GL_FLOAT, view.depths.data());
        return view;
    }
    View drawCut(const Vector& normal, double distance)
    {
        scene->cut(ClipPlane{normal, distance});
        const View view = draw();
        scene->cut(std::nullopt);
        return view;
    }
    // Where a point of the plane z = 0 is seen, looking along -z.
    std::size_t pixelAt(double x, double y) const
    {
        const SbVec3f eye = camera->position.getValue();
        const double scale = SIZE / double(camera->height.getValue());
        const int column = int(SIZE / 2 + (x - double(eye[0])) * scale),
                  row = int(SIZE / 2 + (y - double(eye[1])) * scale);
        return std::size_t(row) * SIZE + std::size_t(column);
    }
    double middleAlong(const Vector& normal) const { return normal.dot(extent.centre); }
    double reach() const { return extent.sides.getNorm(); }

    Configuration data;
    Extent extent;
    DataScene* scene = nullptr;
    SoSeparator* root = nullptr;
    SoOrthographicCamera* camera = new SoOrthographicCamera;
    TileRenderer renderer{SbViewportRegion(SIZE, SIZE), SIZE, SIZE, SbVec2s(SIZE, SIZE)};
};

class ClippedSampleTest : public ClippingTest, public testing::WithParamInterface<Sample>
{
protected:
    void showSample()
    {
        ReadReport report;
        const auto read = readFile(std::string(SAMPLES_FOLDER) + "/" + GetParam().file, {}, report);
        ASSERT_TRUE(read) << report.error;
        Options options;
        StyleRequest& style = options;
        ASSERT_EQ(settingOf("dna").read(GetParam().dna, style), "");
        Configuration opaque = *read;
        for (Marker& marker : opaque.markers)
            marker.transparency = 0; // or there is more than one surface in a pixel
        show(opaque, options);
    }
};

const Sample SAMPLES[] = {{"tubesAndRibbon", "trefoil.txt", "none"},
                          {"birods", "rods.json", "none"},
                          {"glyphs", "glyphs.json", "none"},
                          {"basesAndBackbone", "dna.txt", "backbone,bases"},
                          {"boxes", "dna.txt", "boxes"},
                          {"pairBoxes", "dna.txt", "pairs"},
                          {"atoms", "dna.txt", "atoms"},
                          {"oneStrand", "hairpin.dat", "backbone,bases"},
                          {"loneBases", "sticky_end.pdb", "bases,atoms"}};

INSTANTIATE_TEST_SUITE_P(Of, ClippedSampleTest, testing::ValuesIn(SAMPLES),
                         [](const auto& of) { return std::string(of.param.name); });

} // namespace

TEST_P(ClippedSampleTest, APlaneBeyondAllDataChangesNoPixel)
{
    ASSERT_NO_FATAL_FAILURE(showSample());
    const Vector normal(0.36, 0.48, 0.8);
    const View whole = draw();
    const View cut = drawCut(normal, middleAlong(normal) + 10 * reach());
    ASSERT_GT(whole.countCovered(), 500);
    int others = 0;
    for (std::size_t i = 0; i < whole.colours.size(); ++i)
        others += whole.colours[i] != cut.colours[i];
    EXPECT_EQ(others, 0);
    EXPECT_EQ(drawCut(normal, middleAlong(normal) - 10 * reach()).countCovered(), 0);
}

// In each pixel the nearer one of both halves is what is seen of the whole.
TEST_P(ClippedSampleTest, APlaneAndItsOppositeShowAllThatIsSeen)
{
    ASSERT_NO_FATAL_FAILURE(showSample());
    std::mt19937 random(7);
    std::normal_distribution<double> part;
    for (int round = 0; round < 6; ++round) {
        Vector normal(part(random), part(random), part(random));
        normal = normal * (1 / normal.getNorm());
        lookAlong(SbVec3f(float(part(random)), float(part(random)), float(part(random))));
        Vector within = extent.centre;
        for (int axis = 0; axis < 3; ++axis)
            within[axis] += 0.1 * extent.sides[axis] * part(random);
        const double middle = normal.dot(within);
        const View whole = draw(), one = drawCut(normal, middle),
                   other = drawCut(normal * -1, -middle);
        ASSERT_GT(std::min(one.countCovered(), other.countCovered()), 50);
        int wrong = 0;
        for (std::size_t i = 0; i < whole.colours.size(); ++i) {
            const View& nearer = one.depths[i] < other.depths[i] ? one : other;
            wrong += std::abs(nearer.depths[i] - whole.depths[i]) > 1e-4f ||
                     difference(nearer.colours[i], whole.colours[i]) > 3;
        }
        EXPECT_LE(wrong, whole.countCovered() / 300) << round;
    }
}

// Where half of the data covers a pixel from behind, its inside covers it from the cut.
TEST_P(ClippedSampleTest, WhatIsCutOpenIsSeenFromInsideWhereItIsSeenFromOutside)
{
    ASSERT_NO_FATAL_FAILURE(showSample());
    const double middle = extent.centre.z;
    const View inside = drawCut({0, 0, 1}, middle);
    lookAlong({0, 0, 1});
    const View outside = drawCut({0, 0, 1}, middle);
    int others = 0;
    for (std::size_t i = 0; i < inside.depths.size(); ++i)
        others += inside.covers(i) != outside.covers(outside.mirrored(i));
    ASSERT_GT(outside.countCovered(), 500);
    EXPECT_LE(others, outside.countCovered() / 50);
}

TEST_P(ClippedSampleTest, TilesOfALargePictureAreCutAtThePlaceOfThePlane)
{
    ASSERT_NO_FATAL_FAILURE(showSample());
    const Vector normal(0.6, 0, 0.8);
    const View whole = drawCut(normal, middleAlong(normal));
    scene->cut(ClipPlane{normal, middleAlong(normal)});
    const int half = SIZE / 2;
    const auto side = short(half);
    TileRenderer tiles(SbViewportRegion(SIZE, SIZE), SIZE, SIZE, SbVec2s(side, side));
    int others = 0;
    for (const int left : {0, half}) {
        for (const int below : {0, half}) {
            ASSERT_TRUE(tiles.render(root, left, below, BACKGROUND));
            std::vector<std::uint32_t> colours(std::size_t(half) * half);
            tiles.read(0, half, colours.data());
            for (int row = 0; row < half; ++row) {
                for (int column = 0; column < half; ++column)
                    others +=
                        difference(colours[std::size_t(row) * half + column],
                                   whole.colours[std::size_t(below + row) * SIZE + left + column]) >
                        1;
            }
        }
    }
    EXPECT_LE(others, whole.countCovered() / 200);
}

// What is cut away lets the ray through to what is behind it.
TEST_P(ClippedSampleTest, WhatIsPickedIsTheFirstThatStays)
{
    ASSERT_NO_FATAL_FAILURE(showSample());
    const Vector normal(0.48, 0.36, 0.8);
    const double distance = middleAlong(normal);
    const SbPlane plane = planeInScene({normal, distance}, scene->getPlacement());
    std::mt19937 random(3);
    std::uniform_int_distribution<short> pixel(SIZE / 5, SIZE * 4 / 5);
    int changed = 0, misses = 0;
    for (int round = 0; round < 600; ++round) {
        SoRayPickAction all(SbViewportRegion(SIZE, SIZE)), first(SbViewportRegion(SIZE, SIZE));
        all.setPickAll(TRUE);
        const SbVec2s place(pixel(random), pixel(random));
        all.setPoint(place);
        first.setPoint(place);
        scene->cut(std::nullopt);
        all.apply(root);
        scene->cut(ClipPlane{normal, distance});
        first.apply(root);
        const SoPickedPointList& points = all.getPickedPointList();
        const SoPickedPoint* expected = nullptr;
        for (int i = 0; i < points.getLength() && !expected; ++i) {
            if (plane.isInHalfSpace(points[i]->getPoint())) {
                expected = points[i];
                changed += i > 0;
            }
        }
        misses += points.getLength() > 0 && !expected;
        const SoPickedPoint* const picked = first.getPickedPoint();
        ASSERT_EQ(picked != nullptr, expected != nullptr) << round;
        if (picked) {
            EXPECT_LT((picked->getPoint() - expected->getPoint()).length(), 1e-4 * reach());
        }
    }
    EXPECT_GT(changed, 0);
    EXPECT_GT(misses, 0);
}

TEST_P(ClippedSampleTest, AnotherPlaneChangesNoNodeOfTheData)
{
    ASSERT_NO_FATAL_FAILURE(showSample());
    const auto nodes = [this] {
        std::vector<std::pair<const SoNode*, SbUniqueId>> all;
        for (const Thing& thing : scene->getThings()) {
            const ShownDatum& datum = scene->getShown(thing.kind)[thing.index];
            all.emplace_back(datum.node, datum.node->getNodeId());
        }
        return all;
    };
    const auto before = nodes();
    ASSERT_FALSE(before.empty());
    for (const char* text : {"z", "x:0.1", "-1,2,3:0"}) {
        scene->cut(settled(*parseClipPlane(text), extent));
        EXPECT_EQ(nodes(), before) << text;
        EXPECT_NE(scene->getClipPlane(), nullptr);
    }
    scene->cut(std::nullopt);
    EXPECT_EQ(nodes(), before);
    EXPECT_EQ(scene->getClipPlane(), nullptr);
}

// The look of what is cut open inside is that of the same face seen from the other side.
TEST_F(ClippingTest, TheInsideOfATubeIsLitAsItsOutsideIs)
{
    Configuration data;
    data.rods = {rodThrough({{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}})};
    Options options;
    options.showRibbon = false;
    options.radius = 0.3;
    options.slices = 200;
    ASSERT_NO_FATAL_FAILURE(show(data, options));
    const View whole = draw(), open = drawCut({0, 0, 1}, 0);
    const std::size_t middle = pixelAt(0.1, 0), up = pixelAt(0.1, 0.15), down = pixelAt(0.1, -0.15);
    EXPECT_LT(whole.depths[middle], open.depths[middle]);
    EXPECT_LE(difference(open.colours[middle], whole.colours[middle]), 6);
    // Above the axis the outside is turned up to the light, and the inside down.
    EXPECT_GT(difference(whole.colours[up], whole.colours[down]), 10);
    EXPECT_LE(difference(open.colours[up], whole.colours[down]), 6);
    EXPECT_LE(difference(open.colours[down], whole.colours[up]), 6);
}

TEST_F(ClippingTest, FramesAndStylesToComeAreCutWhereTheFirstIs)
{
    Configuration data;
    data.rods = {rodThrough({{-1, 0, 0}, {0, 0.5, 0}, {1, 0, 0}})};
    Options options;
    options.clip = parseClipPlane("x");
    ASSERT_NO_FATAL_FAILURE(show(data, options));
    EXPECT_EQ(scene->getStyle().clip, parseClipPlane("x:0"));
    const View first = draw();
    const auto rightHalf = [](const View& view) {
        int covered = 0;
        for (std::size_t i = 0; i < view.depths.size(); ++i)
            covered += i % SIZE > SIZE / 2 + 1 && view.covers(i);
        return covered;
    };
    EXPECT_EQ(rightHalf(first), 0);
    data.rods = {rodThrough({{-1, 0, 0}, {0, -0.5, 0}, {3, 0, 0}})};
    Progress progress;
    ASSERT_EQ(updateScene(*scene, data, progress), "");
    const View second = draw();
    EXPECT_GT(second.countCovered(), 100);
    EXPECT_EQ(rightHalf(second), 0);
    Style whole = scene->getStyle();
    whole.clip.reset();
    std::string error;
    SceneGeometry geometry = computeGeometry(data, whole, progress, error);
    ASSERT_EQ(restyleScene(*scene, data, whole, nullptr, std::move(geometry), progress), "");
    EXPECT_GT(rightHalf(draw()), 100);
}

TEST(ClippingPlaceTest, APlaneThatLiesBeyondOrBeforeAllDataIsToldWithWhereTheyAre)
{
    const Placement placement{{100, 0, -20}, 0.5}; // of data from 98 to 104, 0 to 2 and -22 to -18
    const SbBox3f box(-1, 0, -1, 2, 1, 1);
    Options options;
    const auto told = [&](const std::string& plane) {
        options.clip = parseClipPlane(plane);
        EXPECT_TRUE(options.clip) << plane;
        return findIdleClip(options, box, placement);
    };
    EXPECT_EQ(told("x:1000"), "") << "nobody asked for it on the command line";
    options.given = {"--clip"};
    EXPECT_EQ(told("x:104.1"), "--clip has no effect: found data from 98 to 104 along its normal");
    EXPECT_EQ(told("x:97.9"),
              "--clip leaves nothing to see: found data from 98 to 104 along its normal");
    EXPECT_EQ(told("-x:-97.9"),
              "--clip has no effect: found data from -104 to -98 along its normal");
    EXPECT_EQ(told("0,3,4:-17.7"),
              "--clip leaves nothing to see: found data from -17.6 to -13.2 along its normal");
    for (const char* plane : {"x", "x:98.1", "x:103.9", "-z:18.1", "y:1", "0,3,4:-14.3"})
        EXPECT_EQ(told(plane), "") << plane;
    EXPECT_EQ(findIdleClip(options, SbBox3f(), placement), "") << "of no data";
}

TEST(ClippingPlaceTest, APlaneInTheSceneIsWhereItIsInTheData)
{
    const Placement placement{{1e6, -2e6, 5e5}, 1000};
    const ClipPlane plane{{2, -1, 2}, 7};
    const SbPlane inScene = planeInScene(plane, placement);
    const Vector unit = plane.unitNormal(), across = unit.cross({0, 0, 1});
    for (const double beyond : {-0.01, 0.01}) {
        const Vector point = unit * (7 + beyond) + across * 3;
        const Vector there = placement.toScene(point);
        // In doubles: floats would move it by more.
        const SbVec3f normal = inScene.getNormal();
        const double side = double(normal[0]) * there.x + double(normal[1]) * there.y +
                            double(normal[2]) * there.z - double(inScene.getDistanceFromOrigin());
        EXPECT_EQ(side > 0, beyond < 0) << beyond << " " << side;
    }
}

} // namespace strandview
