// SPDX-License-Identifier: GPL-3.0-or-later
#include "drawing/BackFaces.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/SbDPMatrix.h>
#include <Inventor/elements/SoDrawStyleElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/misc/SoState.h>

#include <Mesh.h>

#include "drawing/DepthGrid.h"
#include "drawing/ProgramTexts.h"

using Vector = algebra3d::Vector3<double>;

namespace {

// A normal that is turned away by so much more than the faces about it differ from it has less
// than the last of them before it that is turned towards the eye: through the tube, along the
// view, it is farther than LEAST_DEPTH radii. So it is half a radius from a cap.
const double LEAST_TURN = 0.05;
const double LEAST_DEPTH = 0.1;
const double LARGEST_SLANT = 0.7;
// Narrower tubes, in pixels, are rounded to other shapes.
const double LEAST_RADIUS = 0.5;
// 24 bits, and all roundings of float on the way to them.
const double DEPTH_STEPS = 32 / double(1 << 24);
// Of a coordinate in radii; floats have 24 bits.
const double LARGEST_COORDINATE = 1e5;
// Of coordinates, on their way to the window.
const double ROUNDING = 8 * double(std::numeric_limits<float>::epsilon());
// By which a rasteriser may move an edge, and more, in pixels.
const double EDGE_TOLERANCE = 1.0 / 16;
// Sine; less is turned neither towards the eye nor away from it.
const double LEAST_FACING = 0.02;

int getInteger(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

bool isDrawnWhole(SoState* state)
{
    for (const GLenum test : {GL_BLEND, GL_ALPHA_TEST, GL_STENCIL_TEST, GL_POLYGON_STIPPLE,
                              GL_CULL_FACE, GL_COLOR_LOGIC_OP}) {
        if (glIsEnabled(test))
            return false;
    }
    GLint modes[2] = {GL_FILL, GL_FILL}; // front and back
    glGetIntegerv(GL_POLYGON_MODE, modes);
    if (modes[0] != GL_FILL || modes[1] != GL_FILL ||
        SoDrawStyleElement::get(state) != SoDrawStyleElement::FILLED ||
        getInteger(GL_DEPTH_BITS) < 24)
        return false;
    const auto program = GLuint(getInteger(GL_CURRENT_PROGRAM));
    const auto texts = program ? readProgramTexts(program) : ProgramTexts();
    return !program || (texts && drawsAllInPlace(*texts));
}

bool areEqualFloats(const Vector& a, const Vector& b)
{
    return float(a.x) == float(b.x) && float(a.y) == float(b.y) && float(a.z) == float(b.z);
}

// Whether the last column is the first, and, without caps, the last row is.
bool meetsItself(Mesh& mesh, const MeshRows& rows, bool hasCaps)
{
    Vector** const points = mesh.getPoints();
    const int height = mesh.getHeight(), width = mesh.getWidth();
    for (int i = 0; i < rows.getSize(); ++i) {
        if (!areEqualFloats(points[rows[i]][0], points[rows[i]][width - 1]))
            return false;
    }
    return hasCaps || std::equal(points[0], points[0] + width, points[height - 1], areEqualFloats);
}

// The least cosine, squared, between a triangle's outer normal (not of unit length) and those of
// its corners; negative if one is on the other side, or there is no normal.
double leastCosine(const Vector& across, const Vector& along, const Vector& a, const Vector& b,
                   const Vector& c)
{
    const Vector face = across.cross(along);
    const double least = std::min({face.dot(a), face.dot(b), face.dot(c)});
    const double cosine = least * std::abs(least) / face.dot(face);
    return std::isfinite(cosine) ? cosine : -1;
}

double leastCosineOfStrip(const Vector* here, const Vector* next, const Vector* normalsHere,
                          const Vector* normalsNext, int width)
{
    double least = 1;
    for (int j = 0; j + 1 < width; ++j) {
        least = std::min({least,
                          leastCosine(next[j + 1] - next[j], next[j] - here[j], normalsNext[j],
                                      normalsHere[j], normalsNext[j + 1]),
                          leastCosine(here[j + 1] - here[j], next[j + 1] - here[j + 1],
                                      normalsNext[j + 1], normalsHere[j], normalsHere[j + 1])});
    }
    return least;
}

double radiusOf(const Vector* row, int width) { return (row[width / 2] - row[0]).getNorm() / 2; }

bool areUnit(const Vector* normals, int width)
{
    return std::all_of(normals, normals + width,
                       [](const Vector& normal) { return normal.dot(normal) < 1.001; });
}

void extend(ClosedTube& tube, const Vector& point)
{
    for (int axis = 0; axis < 3; ++axis) {
        tube.minimum[axis] = std::min(tube.minimum[axis], point[axis]);
        tube.maximum[axis] = std::max(tube.maximum[axis], point[axis]);
    }
}

// The rows that are not within half a radius of a cap.
void leaveOutEnds(ClosedTube& tube, Vector** points)
{
    const double nearest = tube.radius / 2;
    const Vector first = points[0][0], last = points[tube.endRow - 1][0];
    while (tube.firstRow < tube.endRow && (points[tube.firstRow][0] - first).getNorm() < nearest)
        ++tube.firstRow;
    while (tube.firstRow < tube.endRow && (points[tube.endRow - 1][0] - last).getNorm() < nearest)
        --tube.endRow;
}

} // namespace

std::optional<ClosedTube> measureClosedTube(Mesh& mesh, const MeshRows& rows, bool hasCaps)
{
    const double infinite = std::numeric_limits<double>::infinity();
    const int height = mesh.getHeight(), width = mesh.getWidth();
    if (!mesh.isValid() || height < 2 || width < 6 || !meetsItself(mesh, rows, hasCaps))
        return {};
    Vector **const points = mesh.getPoints(), **const normals = mesh.getNormals();
    ClosedTube tube = {0, infinite, {infinite, infinite, infinite}, {}, 0, height};
    tube.maximum = -tube.minimum;
    const double enough = 1 - LARGEST_SLANT * LARGEST_SLANT;
    double least = 1;
    for (int i = 0; i < rows.getSize(); ++i) {
        const int row = rows[i];
        if (!areUnit(normals[row], width))
            return {};
        for (int j = 0; j + 1 < width; ++j)
            extend(tube, points[row][j]);
        tube.radius = std::min(tube.radius, radiusOf(points[row], width));
        if (i + 1 < rows.getSize())
            least = std::min(least, leastCosineOfStrip(points[row], points[rows[i + 1]],
                                                       normals[row], normals[rows[i + 1]], width));
        if (!(least >= enough))
            return {};
    }
    tube.slant = std::sqrt(1 - least);
    if (hasCaps)
        leaveOutEnds(tube, points);
    return tube;
}

std::optional<BackFaces> BackFaces::find(SoState* state)
{
    if (!DepthGrid::isSoftware() || !DepthGrid::canProject(state) ||
        !DepthGrid::hidesWhatIsBehind(state) || !isDrawnWhole(state))
        return {};
    const BackFaces faces(state);
    if (!(faces.shrink > 0))
        return {};
    return faces;
}

BackFaces::BackFaces(SoState* state)
{
    SbDPMatrix toEye(SoModelMatrixElement::get(state));
    toEye.multRight(SbDPMatrix(SoViewingMatrixElement::get(state)));
    const SbDPMatrix fromEye = toEye.inverse();
    const SbMatrix& p = SoProjectionMatrixElement::get(state);
    const SbVec2s size = SoViewportRegionElement::get(state).getViewportSizePixels();
    parallel = p[2][3] == 0;
    sampled = getInteger(GL_SAMPLES) <= 1;
    const int row = parallel ? 2 : 3;
    eye = Vector(fromEye[row][0], fromEye[row][1], fromEye[row][2]);
    for (int i = 0; i < 3; ++i)
        offset = std::max(offset, std::abs(toEye[3][i]));
    for (int axis = 0; axis < 4; ++axis) {
        for (int i = 0; i < 4; ++i) {
            clip[axis][i] = 0;
            for (int k = 0; k < 4; ++k)
                clip[axis][i] += toEye[i][k] * p[k][axis];
        }
    }
    for (int i = 0; i < 2; ++i)
        half[i] = size[i] / 2.0;
    const double across = std::abs(p[0][0]) * half[0], up = std::abs(p[1][1]) * half[1];
    leastPixels = std::min(across, up);
    mostPixels = std::max(across, up);
    depthScale = std::abs(double(parallel ? p[2][2] : p[3][2])) / 2;
    const bool known = toEye[0][3] == 0 && toEye[1][3] == 0 && toEye[2][3] == 0 &&
                       (!parallel || (p[2][0] == 0 && p[2][1] == 0));
    stretch = DepthGrid::stretchOf(SbMatrix(toEye));
    shrink = known ? std::abs(toEye.det3()) / (stretch * stretch) : 0;
}

bool BackFaces::mayLeaveOut(const ClosedTube& tube) const
{
    double farthest = 0;
    for (int i = 0; i < 8; ++i) {
        const Vector corner(i & 1 ? tube.minimum.x : tube.maximum.x,
                            i & 2 ? tube.minimum.y : tube.maximum.y,
                            i & 4 ? tube.minimum.z : tube.maximum.z);
        const double w = clipAt(corner, 3);
        // Neither before the near plane, nor as near to it as rounding may carry.
        if (!(w > 0 && clipAt(corner, 2) + w > 1e-4 * w))
            return false;
        farthest = std::max(farthest, w);
    }
    const double radius = tube.radius * shrink; // in the eye's coordinates
    const double steps = depthScale / (parallel ? 1 : farthest * farthest);
    return radius * leastPixels / farthest >= LEAST_RADIUS &&
           LEAST_DEPTH / 2 * radius * steps >= DEPTH_STEPS &&
           largestCoordinate(tube) <= LARGEST_COORDINATE * tube.radius;
}

// What is rounded in floats, in the coordinates of the tube.
double BackFaces::largestCoordinate(const ClosedTube& tube) const
{
    double largest = offset / shrink;
    for (int axis = 0; axis < 3; ++axis)
        largest = std::max({largest, std::abs(tube.minimum[axis]), std::abs(tube.maximum[axis])});
    return largest;
}

double BackFaces::clipAt(const Vector& point, int axis) const
{
    const double* const c = clip[axis];
    return point.x * c[0] + point.y * c[1] + point.z * c[2] + c[3];
}

BackFaces::InWindow BackFaces::project(const Vector& point) const
{
    const double w = clipAt(point, 3);
    return {(clipAt(point, 0) / w + 1) * half[0], (clipAt(point, 1) / w + 1) * half[1],
            mostPixels / w};
}

// Whether no pixel's middle is near to the edge between two corners, which are right within a
// length.
bool BackFaces::isBetweenSamples(const InWindow& a, const InWindow& b, double rounding) const
{
    const double tolerance = EDGE_TOLERANCE + rounding * std::max(a.scale, b.scale);
    const auto isFree = [tolerance](double one, double other) {
        return std::floor(std::max(one, other) + tolerance - 0.5) <
               std::ceil(std::min(one, other) - tolerance - 0.5);
    };
    return sampled && (isFree(a.x, b.x) || isFree(a.y, b.y));
}

// The sides of the view, as bits, beyond all of which one more pixel lies between it and a point.
// Corners are right within a length.
unsigned BackFaces::sidesBeyond(const Vector& point, double rounding) const
{
    const double w = clipAt(point, 3);
    unsigned sides = 0;
    for (int axis = 0; axis < 2; ++axis) {
        const double at = clipAt(point, axis);
        const double most = w + (w + rounding * mostPixels) / half[axis];
        sides |= unsigned(at > most) << (2 * axis) | unsigned(at < -most) << (2 * axis + 1);
    }
    return sides;
}

BackFaces::Walk::Walk(const BackFaces& backFaces, Mesh& walkedMesh, const ClosedTube& walkedTube)
    : faces(backFaces),
      mesh(walkedMesh),
      tube(walkedTube),
      leastTurn(walkedTube.slant + LEAST_TURN),
      rounding(ROUNDING * backFaces.stretch * backFaces.largestCoordinate(walkedTube)),
      here{std::vector<std::uint8_t>(std::size_t(walkedMesh.getWidth()))},
      there(here),
      leftOut(here.isAway.size() - 1)
{}

const std::vector<std::uint8_t>& BackFaces::Walk::between(int row, int next)
{
    if (lookedAt == row)
        std::swap(here, there);
    else
        look(row, here);
    look(next, there);
    lookedAt = next;
    if (here.sidesBeyond & there.sidesBeyond) {
        std::fill(leftOut.begin(), leftOut.end(), std::uint8_t(1));
        return leftOut;
    }
    for (std::size_t j = 0; j < leftOut.size(); ++j) {
        const bool left = here.isAway[j] && there.isAway[j];
        const bool right = here.isAway[j + 1] && there.isAway[j + 1];
        leftOut[j] = (left && right) ||
                     (left != right && isEdgeLeftOut(row, next, int(j), int(left ? j + 1 : j)));
    }
    return leftOut;
}

// Nothing is said of corners that are beyond a side, of which few are drawn.
void BackFaces::Walk::look(int row, Row& seen) const
{
    const Vector *const points = mesh.getPoints()[row], *const normals = mesh.getNormals()[row];
    std::vector<std::uint8_t>& isAway = seen.isAway;
    seen.sidesBeyond = ~0U;
    for (std::size_t j = 0; j < isAway.size() && seen.sidesBeyond; ++j)
        seen.sidesBeyond &= faces.sidesBeyond(points[j], rounding);
    if (seen.sidesBeyond || row < tube.firstRow || row >= tube.endRow) {
        std::fill(isAway.begin(), isAway.end(), std::uint8_t(0));
        return;
    }
    const double least = leastTurn * leastTurn;
    for (std::size_t j = 0; j < isAway.size(); ++j) {
        const Vector view = faces.towardsEye(points[j]);
        const double turn = normals[j].dot(view);
        isAway[j] = turn < 0 && turn * turn > least * view.dot(view);
    }
}

// A face between clear corners and an edge of the tube as it is seen: hidden but where it ends.
bool BackFaces::Walk::isEdgeLeftOut(int row, int next, int column, int edge) const
{
    const Vector *const here = mesh.getPoints()[row], *const there = mesh.getPoints()[next];
    const auto isAway = [this](const Vector& across, const Vector& along, const Vector& corner) {
        const Vector face = across.cross(along), view = faces.towardsEye(corner);
        const double turn = face.dot(view);
        return turn < 0 &&
               turn * turn > LEAST_FACING * LEAST_FACING * face.dot(face) * view.dot(view);
    };
    const int j = column;
    return isAway(there[j + 1] - there[j], there[j] - here[j], here[j]) &&
           isAway(here[j + 1] - here[j], there[j + 1] - here[j + 1], here[j]) &&
           faces.isBetweenSamples(faces.project(here[edge]), faces.project(there[edge]), rounding);
}
