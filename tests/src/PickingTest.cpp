// SPDX-License-Identifier: GPL-3.0-or-later
// Rays that meet the meshes of a shape, and rays that meet the same triangles one by one.
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoPickStyle.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <Inventor/nodes/SoTransform.h>
#include <gtest/gtest.h>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <RibbonMesh.h>
#include <SoBirod.h>
#include <SoRod.h>

#include "support/CoinEnvironment.h"
#include "support/MeshShape.h"
#include "support/RandomRods.h"
#include "support/graph.h"

using Vector = algebra3d::Vector3<double>;
using Vectors = std::vector<Vector>;
using Quaternion = algebra3d::Quaternion<double>;

namespace {

const SbViewportRegion viewport(400, 300);
const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
const double INFINITE = std::numeric_limits<double>::infinity();

// Emits the triangles that another shape tells a callback action, all of them, whatever
// the action. Coin tests each of them against a ray.
class PlainShape : public SoMeshShape
{
public:
    explicit PlainShape(SoNode* original) : box(boxOf(original))
    {
        SoCallbackAction action;
        action.addTriangleCallback(SoShape::getClassTypeId(), append, this);
        action.apply(original);
    }
    void GLRender(SoGLRenderAction*) override {}

    std::vector<SbVec3f> getPoints() const
    {
        std::vector<SbVec3f> points;
        for (const SoPrimitiveVertex& corner : corners)
            points.push_back(corner.getPoint());
        return points;
    }

protected:
    ~PlainShape() override = default;
    void generatePrimitives(SoAction* action) override
    {
        beginShape(action, TRIANGLES);
        for (const SoPrimitiveVertex& corner : corners)
            shapeVertex(&corner);
        endShape();
    }
    void computeBBox(SoAction*, SbBox3f& theBox, SbVec3f& centre) override
    {
        theBox = box;
        centre = box.getCenter();
    }

private:
    static void append(void* self, SoCallbackAction*, const SoPrimitiveVertex* a,
                       const SoPrimitiveVertex* b, const SoPrimitiveVertex* c)
    {
        for (const SoPrimitiveVertex* corner : {a, b, c})
            static_cast<PlainShape*>(self)->corners.push_back(*corner);
    }

    SbBox3f box;
    std::vector<SoPrimitiveVertex> corners;
};

// A grid that a test fills as it likes.
class HostMesh : public Mesh
{
public:
    HostMesh(int rows, int columns) : Mesh(false, false) { allocate(rows, columns); }
    using Mesh::setHeight;
    void allocate(int rows, int columns)
    {
        setWidth(columns);
        setHeight(rows);
        allocateMemory();
        resetBB();
    }
    void fill(const std::function<Vector(int, int)>& point)
    {
        for (int row = 0; row < getHeight(); ++row) {
            for (int column = 0; column < getWidth(); ++column) {
                getPoints()[row][column] = point(row, column);
                getNormals()[row][column] = Vector(1, row, column).getUnit();
                updateBB(getPoints()[row][column]);
            }
        }
    }
    int getMaterialIndex(int row, int column) const override
    {
        ++emittedVertices;
        return Mesh::getMaterialIndex(row, column);
    }
    mutable int emittedVertices = 0;
};

template <typename Vec>
bool same(const Vec& a, const Vec& b)
{
    for (int axis = 0; axis < int(sizeof(Vec) / sizeof(float)); ++axis) {
        if (a[axis] != b[axis] && !(std::isnan(a[axis]) && std::isnan(b[axis])))
            return false;
    }
    return true;
}

::testing::AssertionResult same(const SoPickedPointList& actual, const SoPickedPointList& expected)
{
    if (actual.getLength() != expected.getLength())
        return ::testing::AssertionFailure()
               << actual.getLength() << " points, not " << expected.getLength();
    for (int i = 0; i < actual.getLength(); ++i) {
        const SoPickedPoint &a = *actual[i], &e = *expected[i];
        if (!same(a.getPoint(), e.getPoint()) || !same(a.getObjectPoint(), e.getObjectPoint()) ||
            !same(a.getNormal(), e.getNormal()) ||
            !same(a.getTextureCoords(), e.getTextureCoords()) ||
            a.getMaterialIndex() != e.getMaterialIndex() || a.isOnGeometry() != e.isOnGeometry() ||
            a.getDetail() != nullptr || e.getDetail() != nullptr)
            return ::testing::AssertionFailure() << "point " << i << " differs";
    }
    return ::testing::AssertionSuccess();
}

// A shape and the plain one, each behind the same nodes.
class PickedPair
{
public:
    using Aim = std::function<void(SoRayPickAction&)>;

    explicit PickedPair(SoNode* shape) : plainShape(new PlainShape(shape))
    {
        actual->addChild(state);
        actual->addChild(shape);
        plain->addChild(state);
        plain->addChild(plainShape);
    }
    SoGroup* getState() const { return state; }
    SoNode* getScene() const { return actual; }
    std::vector<SbVec3f> getCorners() const { return plainShape->getPoints(); }

    // The number of points that both pick; they must be the same ones.
    int expectSamePicks(const Aim& aim, bool all, float radius) const
    {
        SoRayPickAction picks[2] = {SoRayPickAction(viewport), SoRayPickAction(viewport)};
        SoSeparator* const scenes[2] = {actual, plain};
        for (int i = 0; i < 2; ++i) {
            picks[i].setPickAll(all);
            picks[i].setRadius(radius);
            aim(picks[i]);
            picks[i].apply(scenes[i]);
        }
        EXPECT_TRUE(same(picks[0].getPickedPointList(), picks[1].getPickedPointList()));
        return picks[1].getPickedPointList().getLength();
    }

private:
    NodeRef<SoGroup> state{new SoGroup};
    NodeRef<SoSeparator> actual{new SoSeparator};
    NodeRef<SoSeparator> plain{new SoSeparator};
    NodeRef<PlainShape> plainShape;
};

SbVec3f toFloat(const Vector& v) { return SbVec3f(float(v.x), float(v.y), float(v.z)); }

bool isFinite(const SbVec3f& v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

// Rays of all kinds near some triangles, three points each.
class RandomRays
{
public:
    RandomRays(const std::vector<SbVec3f>& triangleCorners, unsigned seed) : random(seed)
    {
        for (std::size_t i = 0; i + 2 < triangleCorners.size(); i += 3) {
            const SbVec3f* const triangle = &triangleCorners[i];
            if (!isFinite(triangle[0]) || !isFinite(triangle[1]) || !isFinite(triangle[2]))
                continue;
            for (int k = 0; k < 3; ++k) {
                corners.push_back(triangle[k]);
                box.extendBy(triangle[k]);
            }
        }
        if (corners.empty()) {
            corners.assign(3, SbVec3f(0, 0, 0));
            box.setBounds(-1, -1, -1, 1, 1, 1);
        }
        size = std::max((box.getMax() - box.getMin()).length(), 1e-6F);
    }

    PickedPair::Aim next()
    {
        SbVec3f start, direction;
        choose(start, direction);
        // One in four has limits, which cut through the triangles.
        float nearest = -1, farthest = -1;
        if (random.integer(0, 3) == 0) {
            const float distance = (box.getCenter() - start).length();
            nearest = std::max(0.0F, distance + size * float(random.uniform(-1, 0.5)));
            farthest = nearest + size * float(random.uniform(0.01, 1));
        }
        return [=](SoRayPickAction& action) { action.setRay(start, direction, nearest, farthest); };
    }

private:
    SbVec3f corner() { return corners[std::size_t(random.integer(0, int(corners.size()) - 1))]; }
    SbVec3f away() // from next to the surface to far off
    {
        return toFloat(random.unitVector()) * size * std::pow(10.0F, float(random.uniform(-2, 3)));
    }
    SbVec3f axis()
    {
        SbVec3f result(0, 0, 0);
        result[random.integer(0, 2)] = random.integer(0, 1) ? 1 : -1;
        return result;
    }
    SbVec3f between(float widening)
    {
        SbVec3f result;
        for (int k = 0; k < 3; ++k) {
            const float t = float(random.uniform(-widening, 1 + widening));
            result[k] = box.getMin()[k] + t * (box.getMax()[k] - box.getMin()[k]);
        }
        return result;
    }

    void choose(SbVec3f& start, SbVec3f& direction)
    {
        SbVec3f target = between(0.3F);
        switch (random.integer(0, 7)) {
        case 0: // near the triangles
            start = target + away();
            break;
        case 1: // from among them
            start = target;
            direction = toFloat(random.unitVector());
            return;
        case 2: // at a shared corner
            target = corner();
            start = target + away();
            break;
        case 3:   // within a triangle
        case 4: { // or on its edge
            const std::size_t first =
                3 * std::size_t(random.integer(0, int(corners.size()) / 3 - 1));
            const float t = float(random.uniform(0, 1));
            target = corners[first] + (corners[first + 1] - corners[first]) * t;
            if (random.integer(0, 1))
                target += (corners[first + 2] - target) * float(random.uniform(0, 1));
            start = target + away();
            break;
        }
        case 5: { // along an edge
            const std::size_t first =
                3 * std::size_t(random.integer(0, int(corners.size()) / 3 - 1));
            target = corners[first];
            const SbVec3f edge = corners[first + 1 + std::size_t(random.integer(0, 1))] - target;
            start = target - edge * float(random.integer(0, 8));
            direction = edge.length() > 0 ? edge : axis();
            return;
        }
        case 6: // along an axis, through a corner
            direction = axis();
            start = corner() - direction * size * float(random.uniform(-0.5, 2));
            return;
        default: // along a side of the box
            for (int k = 0; k < 3; ++k)
                target[k] = (random.integer(0, 1) ? box.getMin() : box.getMax())[k];
            direction = axis();
            start = target - direction * size * float(random.uniform(-0.5, 2));
            return;
        }
        direction = target - start;
        if (direction.length() == 0)
            direction = axis();
    }

    RandomNumbers random;
    std::vector<SbVec3f> corners;
    SbBox3f box;
    float size;
};

// Returns how many of the rays hit.
int expectSameForRays(const PickedPair& pair, int count, unsigned seed)
{
    RandomNumbers random(seed);
    RandomRays rays(pair.getCorners(), seed);
    int hits = 0;
    for (int i = 0; i < count; ++i) {
        SCOPED_TRACE("ray " + std::to_string(i) + " of seed " + std::to_string(seed));
        const bool all = random.integer(0, 1);
        if (pair.expectSamePicks(rays.next(), all, float(random.integer(0, 20))) > 0)
            ++hits;
        if (testing::Test::HasFailure())
            break;
    }
    return hits;
}

int expectSameForRays(Mesh& mesh, int count, unsigned seed)
{
    NodeRef<MeshShape> shape(new MeshShape(&mesh));
    return expectSameForRays(PickedPair(shape), count, seed);
}

} // namespace

class PickingTest : public CoinTest
{
};

// Meshes

TEST_F(PickingTest, TubesArePickedAsTheirTriangles)
{
    int hits = 0;
    unsigned seed = 1;
    for (const RodKind kind : allRodKinds()) {
        for (const int slices : {3, 12, 70}) {
            SCOPED_TRACE(nameOf(kind));
            const RandomRod rod = randomRod(kind, 12, seed);
            BiarcTubeMesh mesh(rod.points, kind == RodKind::LARGE ? 1e5 : 0.2, slices,
                               slices == 70 ? 1 : 4, false, false);
            hits += expectSameForRays(mesh, 150, seed++);
        }
    }
    EXPECT_GT(hits, 1000);
}

TEST_F(PickingTest, RibbonsArePickedAsTheirTriangles)
{
    int hits = 0;
    unsigned seed = 100;
    for (const RodKind kind : allRodKinds()) {
        SCOPED_TRACE(nameOf(kind));
        RandomRod rod = randomRod(kind, 40, seed);
        Vectors edge = rod.points;
        for (Vector& point : edge)
            point += Vector(0.1, 0.2, 0);
        BiarcRibbonMesh mesh(rod.points, edge, 0.3, 5);
        hits += expectSameForRays(mesh, 200, seed++);
    }
    EXPECT_GT(hits, 500);
}

TEST_F(PickingTest, GridsOfAnyFormArePickedAsTheirTriangles)
{
    RandomNumbers random(7);
    int hits = 0;
    for (unsigned seed = 200; seed < 260; ++seed) {
        HostMesh mesh(random.integer(1, 60), random.integer(2, 50));
        const double roughness = random.integer(0, 2) == 0 ? 0 : random.uniform(0, 2);
        const double scale = std::pow(10, random.integer(-6, 6));
        mesh.fill([&](int row, int column) {
            return scale * Vector(row, column, random.uniform(-roughness, roughness));
        });
        SCOPED_TRACE(scale);
        hits += expectSameForRays(mesh, 60, seed);
    }
    EXPECT_GT(hits, 1500);
}

// Small whole numbers make coincident points, collinear ones and flat boxes.
TEST_F(PickingTest, DegenerateTrianglesArePickedAsPlainly)
{
    RandomNumbers random(8);
    for (unsigned seed = 300; seed < 360; ++seed) {
        HostMesh mesh(random.integer(2, 40), random.integer(2, 6));
        const Vector line(random.integer(-3, 3), random.integer(-3, 3), random.integer(-3, 3));
        const int kind = random.integer(0, 2);
        mesh.fill([&](int row, int column) {
            if (kind == 0) // a band without width, along any line
                return double(row) * line;
            if (kind == 1) // collinear rows that grow
                return double(row * column) * line;
            return Vector(random.integer(0, 2), random.integer(0, 2), random.integer(0, row));
        });
        expectSameForRays(mesh, 60, seed);
    }
}

// A cap within a line, and rays at points of that line which are not in the cap: whether
// Coin's test of such a triangle is hit is a matter of rounding.
TEST_F(PickingTest, DegenerateCapsArePickedAsPlainly)
{
    RandomNumbers random(14);
    int hits = 0;
    for (int i = 0; i < 200; ++i) {
        TubeMesh mesh({{0, 0, 0}, {0, 0, 5}, {0, 0, 9}, {0, 0, 12}}, std::vector<Quaternion>(4), 1,
                      6, false, false);
        const Vector line(random.integer(1, 5), random.integer(1, 5), random.integer(1, 5));
        const int broken = random.integer(0, 1) ? 0 : mesh.getHeight() - 1;
        for (int column = 0; column < mesh.getWidth(); ++column)
            mesh.getPoints()[broken][column] = double(random.integer(-4, 4)) * line;
        NodeRef<MeshShape> shape(new MeshShape(&mesh));
        const PickedPair pair(shape);
        for (int k = 0; k < 40; ++k) {
            const SbVec3f target = toFloat(double(random.integer(-12, 12)) * line);
            const SbVec3f from(float(random.integer(-9, 9)), float(random.integer(-9, 9)), 1);
            hits += pair.expectSamePicks(
                [&](SoRayPickAction& action) { action.setRay(target + from, -from); }, true, 1);
        }
    }
    EXPECT_GT(hits, 1000);
}

TEST_F(PickingTest, PointsThatAreNotFiniteArePickedAsPlainly)
{
    RandomNumbers random(9);
    int hits = 0;
    for (unsigned seed = 400; seed < 440; ++seed) {
        HostMesh mesh(50, 4);
        mesh.fill([&](int row, int column) { return Vector(row, column, random.uniform(0, 1)); });
        for (int broken = random.integer(1, 3); broken > 0; --broken) {
            const double values[] = {NOT_A_NUMBER, INFINITE, -INFINITE, 1e300, 3e38};
            mesh.getPoints()[random.integer(0, 49)][random.integer(0, 3)][random.integer(0, 2)] =
                values[random.integer(0, 4)];
        }
        hits += expectSameForRays(mesh, 60, seed);
    }
    EXPECT_GT(hits, 1000);
}

TEST_F(PickingTest, ATubeWithoutFinitePointsIsPickedAsPlainly)
{
    const Vectors points(3, Vector(1, 2, 3)); // coincident points have no direction
    BiarcTubeMesh mesh(points, 0.1, 5, 3, false, false);
    expectSameForRays(mesh, 50, 450);
}

TEST_F(PickingTest, MeshesFarFromTheOriginArePickedAsTheirTriangles)
{
    int hits = 0;
    for (unsigned seed = 460; seed < 480; ++seed) {
        RandomNumbers random(seed);
        const Vector far = std::pow(10, random.uniform(2, 7)) * random.unitVector();
        HostMesh mesh(40, 6);
        mesh.fill(
            [&](int row, int column) { return far + Vector(row, column, random.uniform(0, 1)); });
        hits += expectSameForRays(mesh, 60, seed);
    }
    EXPECT_GT(hits, 300);
}

// A ray to a corner of a flat box touches it in that point alone.
TEST_F(PickingTest, ACornerOfAFlatMeshIsHitWheneverCoinSaysSo)
{
    RandomNumbers random(15);
    int hits = 0;
    for (int i = 0; i < 3000; ++i) {
        const Vector place = random.uniform(0, 9) * random.unitVector();
        const int flat = random.integer(0, 2);
        HostMesh mesh(2, 2);
        mesh.fill([&](int row, int column) {
            Vector point = place;
            point[(flat + 1) % 3] += row;
            point[(flat + 2) % 3] += column;
            return point;
        });
        NodeRef<MeshShape> shape(new MeshShape(&mesh));
        const SbVec3f corner =
            toFloat(mesh.getPoints()[random.integer(0, 1)][random.integer(0, 1)]);
        const SbVec3f start = corner + toFloat(random.unitVector()) * float(random.uniform(0.1, 5));
        hits += PickedPair(shape).expectSamePicks(
            [&](SoRayPickAction& action) { action.setRay(start, corner - start); }, true, 1);
    }
    EXPECT_GT(hits, 500);
}

TEST_F(PickingTest, MeshesAsLargeAsAFloatArePickedAsPlainly)
{
    for (unsigned seed = 480; seed < 500; ++seed) {
        RandomNumbers random(seed);
        HostMesh mesh(40, 6);
        const double scale = std::pow(10, random.uniform(33, 37));
        mesh.fill([&](int row, int column) {
            return scale * Vector(row - 20, column, random.uniform(0, 1));
        });
        expectSameForRays(mesh, 60, seed);
    }
}

// Rods and birods

TEST_F(PickingTest, RodsArePickedAsTheirTrianglesWhateverIsShown)
{
    const RandomRod data = randomRod(RodKind::RANDOM_WALK, 12, 3);
    int hits = 0;
    for (unsigned shown = 0; shown < 4; ++shown) {
        NodeRef<SoRod> rod(new SoRod(0.15, 0.4, 7, 5, shown & 1, shown & 2, true));
        ASSERT_TRUE(rod->setData(data.points, data.rotations));
        const int hit = expectSameForRays(PickedPair(rod), 400, 500 + shown);
        EXPECT_EQ(hit > 0, shown > 0);
        hits += hit;
    }
    EXPECT_GT(hits, 500);
}

TEST_F(PickingTest, BirodsArePickedAsTheirTrianglesWhateverIsShown)
{
    const RandomRod data = randomRod(RodKind::SMOOTH, 10, 4);
    Vectors points1 = data.points, points2 = data.points;
    for (Vector& point : points1)
        point += Vector(0.7, 0, 0);
    for (Vector& point : points2)
        point += Vector(-0.7, 0, 0);
    for (unsigned shown = 0; shown < 16; ++shown) {
        NodeRef<SoBirod> birod(new SoBirod(0.1, 0.2, 0.5, 0.4, 0.2, 0.1, 5, 3, shown & 1, shown & 2,
                                           shown & 4, shown & 8, false));
        ASSERT_TRUE(birod->setData(data.points, data.rotations, points1, data.rotations, points2,
                                   data.rotations));
        EXPECT_EQ(expectSameForRays(PickedPair(birod), 100, 510 + shown) > 0, shown > 0);
    }
}

// What stands before the shape

class PickingBehindTest : public PickingTest
{
protected:
    PickingBehindTest()
    {
        const RandomRod data = randomRod(RodKind::RANDOM_WALK, 12, 5);
        rod->setData(data.points, data.rotations);
        pair = std::make_unique<PickedPair>(rod);
    }
    template <typename Node>
    Node* add()
    {
        auto* const node = new Node;
        pair->getState()->addChild(node);
        return node;
    }

    NodeRef<SoRod> rod{new SoRod(0.3, 0.8, 7, 5, true, true, false)};
    std::unique_ptr<PickedPair> pair;
};

TEST_F(PickingBehindTest, EveryPickStyle)
{
    auto* const style = add<SoPickStyle>();
    for (const auto value : {SoPickStyle::SHAPE, SoPickStyle::BOUNDING_BOX, SoPickStyle::UNPICKABLE,
                             SoPickStyle::SHAPE_ON_TOP, SoPickStyle::BOUNDING_BOX_ON_TOP,
                             SoPickStyle::SHAPE_FRONTFACES}) {
        style->style = value;
        EXPECT_EQ(expectSameForRays(*pair, 150, 600 + unsigned(value)) > 0,
                  value != SoPickStyle::UNPICKABLE);
    }
}

TEST_F(PickingBehindTest, EveryKindOfShapeHints)
{
    auto* const hints = add<SoShapeHints>();
    for (const auto type : {SoShapeHints::UNKNOWN_SHAPE_TYPE, SoShapeHints::SOLID}) {
        for (const auto ordering : {SoShapeHints::UNKNOWN_ORDERING, SoShapeHints::CLOCKWISE,
                                    SoShapeHints::COUNTERCLOCKWISE}) {
            hints->shapeType = type;
            hints->vertexOrdering = ordering;
            EXPECT_GT(expectSameForRays(*pair, 100, 610 + unsigned(3 * type + ordering)), 0);
        }
    }
}

TEST_F(PickingBehindTest, EveryMaterialBinding)
{
    auto* const binding = add<SoMaterialBinding>();
    for (const auto value :
         {SoMaterialBinding::OVERALL, SoMaterialBinding::PER_FACE, SoMaterialBinding::PER_VERTEX,
          SoMaterialBinding::PER_VERTEX_INDEXED}) {
        binding->value = value;
        EXPECT_GT(expectSameForRays(*pair, 100, 620 + unsigned(value)), 0);
    }
}

TEST_F(PickingBehindTest, ClipPlanes)
{
    const SbVec3f centre = boxOf(pair->getScene()).getCenter();
    RandomNumbers random(11);
    for (int count = 0; count < 2; ++count) {
        add<SoClipPlane>()->plane = SbPlane(toFloat(random.unitVector()), centre);
        EXPECT_GT(expectSameForRays(*pair, 200, 630 + unsigned(count)), 0);
    }
}

// The rays are aimed at the triangles as they stand in the shape's coordinates, and turned
// with them, so they come a rounding next to corners and edges.
TEST_F(PickingBehindTest, Transforms)
{
    auto* const transform = add<SoTransform>();
    RandomNumbers random(12);
    int hits = 0;
    for (unsigned seed = 640; seed < 680; ++seed) {
        transform->translation = toFloat(random.unitVector()) * float(random.uniform(0, 1e4));
        transform->rotation = SbRotation(toFloat(random.unitVector()), float(random.uniform(0, 6)));
        const auto factor = [&] { return std::pow(10.0F, float(random.uniform(-3, 3))); };
        transform->scaleFactor =
            random.integer(0, 1) ? SbVec3f(factor(), factor(), -factor()) : SbVec3f(1, 1, 1);
        SbMatrix matrix;
        matrix.setTransform(transform->translation.getValue(), transform->rotation.getValue(),
                            transform->scaleFactor.getValue());
        std::vector<SbVec3f> corners = pair->getCorners();
        for (SbVec3f& corner : corners)
            matrix.multVecMatrix(corner, corner);
        RandomRays rays(corners, seed);
        for (int i = 0; i < 50; ++i)
            hits += pair->expectSamePicks(rays.next(), i % 2, 5) > 0;
    }
    EXPECT_GT(hits, 800);
}

TEST_F(PickingBehindTest, ATransformThatFlattensEverything)
{
    add<SoTransform>()->scaleFactor = SbVec3f(1, 0, 1); // no way back to the shape's coordinates
    EXPECT_EQ(expectSameForRays(*pair, 50, 690), 0);
}

TEST_F(PickingBehindTest, CamerasOfBothKinds)
{
    RandomNumbers random(13);
    int hits = 0;
    for (int kind = 0; kind < 2; ++kind) {
        auto* const camera =
            kind == 0 ? static_cast<SoCamera*>(new SoOrthographicCamera) : new SoPerspectiveCamera;
        pair->getState()->removeAllChildren();
        pair->getState()->addChild(camera);
        for (int view = 0; view < 20; ++view) {
            camera->orientation =
                SbRotation(toFloat(random.unitVector()), float(random.uniform(0, 6)));
            camera->viewAll(pair->getScene(), viewport);
            if (view % 2) { // the planes cut through the rod
                camera->nearDistance = camera->focalDistance.getValue() * 0.95F;
                camera->farDistance = camera->focalDistance.getValue() * 1.1F;
            }
            for (int i = 0; i < 40; ++i) {
                const SbVec2f at(float(random.uniform(0.2, 0.8)), float(random.uniform(0.2, 0.8)));
                hits += pair->expectSamePicks(
                            [&](SoRayPickAction& action) { action.setNormalizedPoint(at); }, i % 2,
                            float(random.integer(1, 10))) > 0;
            }
        }
    }
    EXPECT_GT(hits, 100);
}

// How much is tested, and when that is worked out anew

TEST_F(PickingTest, FewTrianglesAreTestedForAHitAndNoneForAMiss)
{
    const int rows = 100000, columns = 8;
    HostMesh mesh(rows, columns);
    mesh.fill([](int row, int column) { return Vector(row, column, 0); });
    NodeRef<MeshShape> shape(new MeshShape(&mesh));
    const auto emitted = [&](const SbVec3f& start, const SbVec3f& direction, bool hits) {
        SoRayPickAction action(viewport);
        action.setRay(start, direction);
        mesh.emittedVertices = 0;
        action.apply(shape);
        EXPECT_EQ(action.getPickedPoint() != nullptr, hits);
        return mesh.emittedVertices;
    };
    const int perStrip = 2 * columns;
    EXPECT_EQ(emitted(SbVec3f(500, 8, 9), SbVec3f(0, 0, -1), false), 0);
    EXPECT_EQ(emitted(SbVec3f(-1, 3.5F, 9), SbVec3f(0, 0, -1), false), 0);
    EXPECT_EQ(emitted(SbVec3f(500, 3.5F, 9), SbVec3f(1, 0, 0), false), 0);
    EXPECT_EQ(emitted(SbVec3f(501.5F, 3.3F, 9), SbVec3f(0, 0, -1), true), 2 * perStrip);
    EXPECT_LE(emitted(SbVec3f(500, 3, 9), SbVec3f(1, 0, -1), true), 6 * perStrip);
}

TEST_F(PickingTest, OtherActionsAreToldAllTriangles)
{
    HostMesh mesh(1000, 2);
    mesh.fill([](int row, int column) { return Vector(row, column, 0); });
    NodeRef<MeshShape> shape(new MeshShape(&mesh));
    SoRayPickAction miss(viewport);
    miss.setRay(SbVec3f(0, 0, -1), SbVec3f(0, 0, -1));
    miss.apply(shape);
    NodeRef<PlainShape> plain(new PlainShape(shape));
    EXPECT_EQ(plain->getPoints().size(), 3U * 2 * 999);
}

class PickingAgainTest : public PickingTest
{
protected:
    PickingAgainTest()
    {
        mesh.fill([](int row, int column) { return Vector(row, column, 0); });
    }
    bool hitsAt(float x, float y) const
    {
        SoRayPickAction action(viewport);
        action.setRay(SbVec3f(x, y, 9), SbVec3f(0, 0, -1));
        action.apply(shape);
        return action.getPickedPoint() != nullptr;
    }

    HostMesh mesh{100, 4};
    NodeRef<MeshShape> shape{new MeshShape(&mesh)};
};

TEST_F(PickingAgainTest, PointsThatWereChangedAreFoundOnceTheNodeIsTouched)
{
    EXPECT_TRUE(hitsAt(50.3F, 0.2F));
    for (int column = 0; column < 4; ++column)
        mesh.getPoints()[99][column] = Vector(500, column, 0);
    shape->touch();
    EXPECT_TRUE(hitsAt(400, 0.2F));
    mesh.fill([](int row, int column) { return Vector(row, 100 + column, 0); });
    shape->touch();
    EXPECT_FALSE(hitsAt(50.3F, 0.2F));
    EXPECT_TRUE(hitsAt(50.3F, 100.2F));
}

TEST_F(PickingAgainTest, AMeshThatIsFilledAnewIsPickedAnew)
{
    EXPECT_TRUE(hitsAt(50.3F, 0.2F));
    mesh.allocate(20, 3);
    mesh.fill([](int row, int column) { return Vector(row, 50 + column, 0); });
    EXPECT_FALSE(hitsAt(10.3F, 0.2F));
    EXPECT_TRUE(hitsAt(10.3F, 50.2F));
    mesh.clear();
    EXPECT_FALSE(hitsAt(10.3F, 50.2F));
}

TEST_F(PickingAgainTest, AMeshThatIsAllocatedAgainIsPickedAnew)
{
    EXPECT_TRUE(hitsAt(50.3F, 0.2F));
    mesh.allocateMemory();
    mesh.fill([](int row, int column) { return Vector(row, 20 + column, 0); });
    EXPECT_FALSE(hitsAt(50.3F, 0.2F));
    EXPECT_TRUE(hitsAt(50.3F, 20.2F));
    mesh.setHeight(20);
    EXPECT_FALSE(hitsAt(50.3F, 20.2F));
    EXPECT_TRUE(hitsAt(10.3F, 20.2F));
}

TEST_F(PickingAgainTest, AMeshOfTwoNodesIsPickedThroughBoth)
{
    NodeRef<MeshShape> other(new MeshShape(&mesh));
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_TRUE(hitsAt(50.3F, 0.2F));
        expectSameForRays(PickedPair(other), 20, unsigned(turn));
    }
}

TEST_F(PickingAgainTest, ARodIsPickedWhereItIsGeneratedAgain)
{
    NodeRef<SoRod> rod(new SoRod(0.1, 0.5, 6, 4, true, true, false));
    const std::vector<Quaternion> rotations(3);
    const auto hits = [&](float x) {
        SoRayPickAction action(viewport);
        action.setRay(SbVec3f(x, 0.01F, 9), SbVec3f(0, 0, -1));
        action.apply(rod);
        return action.getPickedPoint() != nullptr;
    };
    for (const float x : {0.0F, 5.0F, -3.0F}) {
        rod->setData({{x, 0, 0}, {x, 0, 1}, {x, 0, 2}}, rotations);
        EXPECT_TRUE(hits(x));
        EXPECT_FALSE(hits(x + 1));
    }
}
