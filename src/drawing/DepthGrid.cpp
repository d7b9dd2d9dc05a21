// SPDX-License-Identifier: GPL-3.0-or-later
#include "drawing/DepthGrid.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <Inventor/elements/SoClipPlaneElement.h>
#include <Inventor/elements/SoDepthBufferElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/system/gl.h>

namespace {

const int CELLS_ACROSS = 256; // of the viewport's larger side, so that reading costs most
const int SMALLEST_CELL = 4;

// Depths of 24 bits, and a few roundings of float on the way to them.
const float DEPTH_TOLERANCE = 1e-6f;

int getInteger(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

// Whether what is drawn first hides what is behind it, and nothing else.
bool hidesWhatIsBehind(SoState* state)
{
    SbBool test = FALSE, write = FALSE;
    SoDepthBufferElement::DepthWriteFunction function = SoDepthBufferElement::NEVER;
    SbVec2f range;
    SoDepthBufferElement::get(state, test, write, function, range);
    return test && write && range == SbVec2f(0, 1) &&
           (function == SoDepthBufferElement::LESS || function == SoDepthBufferElement::LEQUAL) &&
           SoClipPlaneElement::getInstance(state)->getNum() == 0 &&
           !glIsEnabled(GL_POLYGON_OFFSET_FILL);
}

// Whether a projection is that of a camera, parallel or perspective, in its middle or not.
bool isOfCamera(const SbMatrix& p)
{
    return p[0][1] == 0 && p[0][2] == 0 && p[0][3] == 0 && p[1][0] == 0 && p[1][2] == 0 &&
           p[1][3] == 0 && p[3][0] == p[3][0] * p[3][3] && p[3][1] == p[3][1] * p[3][3] &&
           ((p[2][3] == 0 && p[3][3] == 1) || (p[2][3] == -1 && p[3][3] == 0));
}

bool canRead()
{
    const int drawn = getInteger(GL_DRAW_FRAMEBUFFER_BINDING);
    return getInteger(GL_DEPTH_BITS) > 0 && drawn == getInteger(GL_READ_FRAMEBUFFER_BINDING) &&
           (drawn == 0 || getInteger(GL_SAMPLES) == 0) &&
           getInteger(GL_PIXEL_PACK_BUFFER_BINDING) == 0 && !glIsEnabled(GL_SCISSOR_TEST);
}

} // namespace

void DepthGrid::Area::extend(const Area& other)
{
    if (other.isEmpty())
        return;
    if (isEmpty()) {
        *this = other;
        return;
    }
    left = std::min(left, other.left);
    bottom = std::min(bottom, other.bottom);
    right = std::max(right, other.right);
    top = std::max(top, other.top);
}

void DepthGrid::simplify(std::vector<Area>& areas)
{
    areas.erase(
        std::remove_if(areas.begin(), areas.end(), [](const Area& area) { return area.isEmpty(); }),
        areas.end());
    Area all = nowhere();
    double size = 0;
    for (const Area& area : areas) {
        all.extend(area);
        size += area.getSize();
    }
    if (areas.size() > 1 && all.getSize() <= size)
        areas = {all};
}

DepthGrid::DepthGrid(SoState* state)
    : toEye(SoModelMatrixElement::get(state)), projection(SoProjectionMatrixElement::get(state))
{
    toEye.multRight(SoViewingMatrixElement::get(state));
    const SbViewportRegion& region = SoViewportRegionElement::get(state);
    for (int i = 0; i < 2; ++i)
        origin[i] = region.getViewportOriginPixels()[i];
    width = region.getViewportSizePixels()[0];
    height = region.getViewportSizePixels()[1];
    cell = std::max(SMALLEST_CELL, (std::max(width, height) + CELLS_ACROSS - 1) / CELLS_ACROSS);
    columns = (width + cell - 1) / cell;
    rows = (height + cell - 1) / cell;
}

bool DepthGrid::canProject(SoState* state)
{
    return isOfCamera(SoProjectionMatrixElement::get(state));
}

bool DepthGrid::isSoftware()
{
    const auto* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return renderer && (std::strstr(renderer, "llvmpipe") || std::strstr(renderer, "softpipe"));
}

bool DepthGrid::isUsable(SoState* state)
{
    return canProject(state) && hidesWhatIsBehind(state) && isSoftware() && canRead();
}

// The square root of a bound of the largest eigenvalue of the matrix times its transpose; exact
// for rotations with one scale.
double DepthGrid::stretchOf(const SbMatrix& m)
{
    double largest = 0;
    for (int i = 0; i < 3; ++i) {
        double sum = 0;
        for (int j = 0; j < 3; ++j) {
            sum += std::abs(double(m[i][0]) * m[j][0] + double(m[i][1]) * m[j][1] +
                            double(m[i][2]) * m[j][2]);
        }
        largest = std::max(largest, sum);
    }
    return std::sqrt(largest);
}

double DepthGrid::pixelsOf(double area, double radius, const Disc& disc) const
{
    const double scale = disc.radius / radius;
    const double pixels = area * scale * scale;
    return disc.radius > 0 && pixels < getViewportArea() ? pixels : getViewportArea();
}

double DepthGrid::pixelsAtNearest(const SbVec3f& centre, double radius, double length) const
{
    const double stretch = stretchOf(toEye);
    SbVec3f eye;
    toEye.multVecMatrix(centre, eye);
    const double w = double(eye[2]) * projection[2][3] + projection[3][3];
    const double least = w - radius * stretch * std::abs(projection[2][3]);
    if (!(least > 0))
        return std::numeric_limits<double>::infinity();
    return std::max(std::abs(projection[0][0]) * width, std::abs(projection[1][1]) * height) / 2 /
           least * stretch * length;
}

bool DepthGrid::mayCover(const SbVec3f& centre, double radius, double area, double layers) const
{
    if (width <= 0 || height <= 0 || !(radius > 0))
        return false;
    const double scale = pixelsAtNearest(centre, radius, 1);
    return area * scale * scale > layers * getViewportArea();
}

DepthGrid::Disc DepthGrid::project(const SbVec3f& centre, double radius, const SbMatrix& matrix,
                                   double stretch) const
{
    const SbMatrix& p = projection;
    const Disc anywhere = {0, 0, 0, 0};
    SbVec3f eye;
    matrix.multVecMatrix(centre, eye);
    const double r = radius * stretch * 1.0001; // for roundings
    const double w = double(eye[2]) * p[2][3] + p[3][3];
    const double least = w - r * std::abs(p[2][3]);
    const double depth = ((double(eye[2]) + r) * p[2][2] + p[3][2]) / least / 2 + 0.5;
    if (!(least > 0) || !(depth > 0))
        return anywhere;
    const double x = (double(eye[0]) * p[0][0] + double(eye[2]) * p[2][0] + p[3][0]) / w;
    const double y = (double(eye[1]) * p[1][1] + double(eye[2]) * p[2][1] + p[3][1]) / w;
    // A point of the ball is off by d, |d| <= r: its place by (p00 dx + (p20 - x p23) dz) / w',
    // where w' is at least `least`.
    const double across = std::max(std::abs(p[0][0]) * width, std::abs(p[1][1]) * height);
    const double along = std::hypot((double(p[2][0]) - x * p[2][3]) * width,
                                    (double(p[2][1]) - y * p[2][3]) * height);
    return {(x + 1) * width / 2, (y + 1) * height / 2, r * (across + along) / 2 / least,
            float(depth)};
}

DepthGrid::Disc DepthGrid::project(const SbVec3f& middle, const SbVec3f halves[3]) const
{
    const SbMatrix& p = projection;
    Disc disc = {0, 0, 0, 1};
    double xs[8], ys[8];
    for (int corner = 0; corner < 8; ++corner) {
        SbVec3f eye = middle;
        for (int i = 0; i < 3; ++i)
            eye += corner & (1 << i) ? halves[i] : -halves[i];
        const double w = double(eye[2]) * p[2][3] + p[3][3];
        const double depth = (double(eye[2]) * p[2][2] + p[3][2]) / w / 2 + 0.5;
        if (!(w > 0) || !(depth > 0))
            return {0, 0, 0, 0};
        xs[corner] = (double(eye[0]) * p[0][0] + double(eye[2]) * p[2][0] + p[3][0]) / w;
        ys[corner] = (double(eye[1]) * p[1][1] + double(eye[2]) * p[2][1] + p[3][1]) / w;
        xs[corner] = (xs[corner] + 1) * width / 2;
        ys[corner] = (ys[corner] + 1) * height / 2;
        disc.x += xs[corner] / 8;
        disc.y += ys[corner] / 8;
        disc.depth = std::min(disc.depth, float(depth));
    }
    for (int corner = 0; corner < 8; ++corner)
        disc.radius = std::max(disc.radius, std::hypot(xs[corner] - disc.x, ys[corner] - disc.y));
    return disc;
}

void DepthGrid::read()
{
    ++reads;
    pixels.resize(std::size_t(width) * std::size_t(height), 1); // beyond a window's edge, too
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_ROWS, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_PACK_SWAP_BYTES, GL_FALSE);
    glReadPixels(origin[0], origin[1], width, height, GL_DEPTH_COMPONENT, GL_FLOAT, pixels.data());
    glPopClientAttrib();

    farthest.assign(std::size_t(columns) * std::size_t(rows), 0);
    const float* pixel = pixels.data();
    for (int y = 0; y < height; ++y) {
        float* const row = farthest.data() + std::size_t(y / cell) * std::size_t(columns);
        for (int column = 0; column < columns; ++column) {
            const int number = std::min(cell, width - column * cell);
            float largest = row[column];
            for (int i = 0; i < number; ++i)
                largest = std::max(largest, pixel[i]);
            row[column] = largest;
            pixel += number;
        }
    }
}

// Within some of the cells.
DepthGrid::Area DepthGrid::seen(const Disc& disc, const Area& cells) const
{
    if (!(disc.radius > 0) || !std::isfinite(disc.x + disc.y + disc.radius))
        return {cells.left * cell, cells.bottom * cell, cells.right * cell, cells.top * cell};
    // One pixel more, for roundings.
    const double radius = disc.radius + 1;
    const auto cellOf = [this](double pixel, int last) {
        return int(std::clamp(std::floor(pixel / cell), -1.0, double(last)));
    };
    const int bottom = std::max(cells.bottom, cellOf(disc.y - radius, rows));
    const int top = std::min(cells.top - 1, cellOf(disc.y + radius, rows));
    const float depth = disc.depth - DEPTH_TOLERANCE;
    Area area = nowhere();
    for (int row = bottom; row <= top; ++row) {
        // The disc is widest where the row of cells is nearest to its middle.
        const double below = double(row) * cell;
        const double distance = std::clamp(disc.y, below, below + cell) - disc.y;
        const double half = std::sqrt(std::max(radius * radius - distance * distance, 0.0));
        const int left = std::max(cells.left, cellOf(disc.x - half, columns));
        const int right = std::min(cells.right - 1, cellOf(disc.x + half, columns));
        if (left > right)
            continue;
        int first = left, last = right;
        if (!farthest.empty()) {
            const float* const depths = farthest.data() + std::size_t(row) * std::size_t(columns);
            while (first <= last && depths[first] < depth)
                ++first;
            while (first <= last && depths[last] < depth)
                --last;
            if (first > last)
                continue;
        }
        area.extend({first * cell, row * cell, (last + 1) * cell, (row + 1) * cell});
    }
    return area;
}

std::vector<DepthGrid::Area> DepthGrid::seenInParts(const Disc& disc) const
{
    const Area all = seen(disc);
    const Area cells = {all.left / cell, all.bottom / cell, (all.right + cell - 1) / cell,
                        (all.top + cell - 1) / cell};
    // Each of them is a draw.
    const int parts = 4; // a side
    if (std::min(cells.right - cells.left, cells.top - cells.bottom) < 2 * parts) {
        std::vector<Area> areas = {all};
        simplify(areas);
        return areas;
    }
    std::vector<Area> areas;
    for (int row = 0; row < parts; ++row) {
        const int bottom = cells.bottom + (cells.top - cells.bottom) * row / parts;
        const int top = cells.bottom + (cells.top - cells.bottom) * (row + 1) / parts;
        std::vector<Area> inRow;
        for (int column = 0; column < parts; ++column) {
            const int left = cells.left + (cells.right - cells.left) * column / parts;
            const int right = cells.left + (cells.right - cells.left) * (column + 1) / parts;
            inRow.push_back(seen(disc, {left, bottom, right, top}));
        }
        simplify(inRow);
        areas.insert(areas.end(), inRow.begin(), inRow.end());
    }
    simplify(areas);
    return areas;
}

void DepthGrid::enter(const Area& area)
{
    if (!scissoring) {
        glPushAttrib(GL_SCISSOR_BIT);
        glEnable(GL_SCISSOR_TEST);
        scissoring = true;
    }
    glScissor(origin[0] + area.left, origin[1] + area.bottom, area.right - area.left,
              area.top - area.bottom);
}

void DepthGrid::leave()
{
    if (scissoring)
        glPopAttrib();
    scissoring = false;
}
