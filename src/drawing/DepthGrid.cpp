// SPDX-License-Identifier: GPL-3.0-or-later
#include "drawing/DepthGrid.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

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

void DepthGrid::Areas::add(const Area& area)
{
    if (area.isEmpty())
        return;
    for (Piece& piece : pieces) {
        Area both = piece.area;
        both.extend(area);
        if (both.getSize() <= piece.added + area.getSize() + PIXELS_PER_DRAW) {
            piece = {both, std::min(piece.added + area.getSize(), both.getSize())};
            return;
        }
    }
    pieces.push_back({area, area.getSize()});
}

double DepthGrid::Areas::getSize() const
{
    double size = 0;
    for (const Piece& piece : pieces)
        size += piece.added;
    return size;
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

bool DepthGrid::hidesWhatIsBehind(SoState* state)
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

DepthGrid::Corner DepthGrid::project(const SbVec3f& point, const SbMatrix& matrix) const
{
    const double rounding = 4 * double(std::numeric_limits<float>::epsilon());
    double eye[3], errors[3];
    for (int i = 0; i < 3; ++i) {
        const double terms[] = {double(point[0]) * matrix[0][i], double(point[1]) * matrix[1][i],
                                double(point[2]) * matrix[2][i], double(matrix[3][i])};
        eye[i] = terms[0] + terms[1] + terms[2] + terms[3];
        errors[i] = rounding * (std::abs(terms[0]) + std::abs(terms[1]) + std::abs(terms[2]) +
                                std::abs(terms[3]));
    }
    const SbMatrix& p = projection;
    const double w = eye[2] * p[2][3] + p[3][3];
    const double x = (eye[0] * p[0][0] + eye[2] * p[2][0] + p[3][0]) / w;
    const double y = (eye[1] * p[1][1] + eye[2] * p[2][1] + p[3][1]) / w;
    const double depth = (eye[2] * p[2][2] + p[3][2]) / w / 2 + 0.5;
    if (!(w > 0) || !(depth > 0))
        return {0, 0, 0, 0};
    const double across =
        errors[0] * std::abs(p[0][0]) * width / 2 + errors[1] * std::abs(p[1][1]) * height / 2;
    const double along = errors[2] *
                         (std::abs(double(p[2][0]) - x * p[2][3]) * width +
                          std::abs(double(p[2][1]) - y * p[2][3]) * height) /
                         2;
    return {(x + 1) * width / 2, (y + 1) * height / 2, (across + along) / w, float(depth)};
}

void DepthGrid::read()
{
    ++reads;
    // The rasteriser moves corners by parts of a pixel; a sample is anywhere in it.
    tolerance = getInteger(GL_SAMPLES) > 0 ? 1 : 1.0 / 128;
    pixels.resize(std::size_t(width) * std::size_t(height), 1); // beyond a window's edge, too
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_ROWS, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_PACK_SWAP_BYTES, GL_FALSE);
    glReadPixels(origin[0], origin[1], width, height, GL_DEPTH_COMPONENT, GL_FLOAT, pixels.data());
    glPopClientAttrib();
    measureCells();
    measureBlocks();
}

// First of the columns of pixels in a row of cells, which a compiler takes many at once.
void DepthGrid::measureCells()
{
    farthest.resize(1);
    farthest[0].assign(std::size_t(columns) * std::size_t(rows), 0);
    std::vector<float> ofColumns(std::size_t(width), 0);
    float* inCell = farthest[0].data();
    for (int row = 0; row < rows; ++row) {
        std::fill(ofColumns.begin(), ofColumns.end(), 0.0F);
        for (int y = row * cell; y < std::min((row + 1) * cell, height); ++y) {
            const float* const line = pixels.data() + std::size_t(y) * std::size_t(width);
            for (std::size_t x = 0; x < ofColumns.size(); ++x)
                ofColumns[x] = line[x] > ofColumns[x] ? line[x] : ofColumns[x];
        }
        for (int column = 0; column < columns; ++column, ++inCell)
            *inCell = *std::max_element(ofColumns.begin() + column * cell,
                                        ofColumns.begin() + std::min((column + 1) * cell, width));
    }
}

namespace {

// As many blocks of so many cells as have all of these.
int blocksOf(int cells, int size) { return (cells + size - 1) / size; }

// Counts them, as a compiler does for many at once: most often there is none.
bool isAnyAtLeast(float depth, const float* begin, const float* end)
{
    int count = 0;
    for (const float* at = begin; at < end; ++at)
        count += *at >= depth ? 1 : 0;
    return count > 0;
}

} // namespace

void DepthGrid::measureBlocks()
{
    for (int size = 2; size < 2 * std::max(columns, rows); size *= 2) {
        const int fineColumns = blocksOf(columns, size / 2), fineRows = blocksOf(rows, size / 2);
        const auto width = std::size_t(blocksOf(columns, size));
        std::vector<float> blocks(width * std::size_t(blocksOf(rows, size)), 0);
        const float* fine = farthest.back().data();
        for (int row = 0; row < fineRows; ++row) {
            float* const inRow = blocks.data() + std::size_t(row / 2) * width;
            for (int column = 0; column < fineColumns; ++column, ++fine)
                inRow[column / 2] = std::max(inRow[column / 2], *fine);
        }
        farthest.push_back(std::move(blocks));
    }
}

// Whether some of a block's cells, those in the span, are at least as far as a depth. From the
// first to the last one they are then; blocks of a higher level are of two by two.
bool DepthGrid::isFar(int level, int block, Span span, float depth, int& first, int& last) const
{
    const int number = blocksOf(columns, 1 << level);
    // Rounded down, by cutting off what is behind the point of a number that is not negative.
    const auto blockOf = [size = cell << level, number](double pixel) {
        return int(std::clamp(pixel / size, -1.0, double(number)) + 1) - 1;
    };
    first = std::max(0, blockOf(span.from));
    last = std::min(number - 1, blockOf(span.to));
    if (!(span.from <= span.to) || first > last)
        return false;
    if (farthest.empty())
        return true;
    const float* const depths =
        farthest[std::size_t(level)].data() + std::size_t(block) * std::size_t(number);
    return isAnyAtLeast(depth, depths + first, depths + last + 1);
}

// Calls visit(row, first, last) for rows of cells within heights, some of which are at least as far
// as a depth, until it says that it is enough. spanOf(bottom, top) tells what counts between two
// heights. Large blocks are looked at first, and smaller ones where those are far: most often few.
template <typename SpanOf, typename Visit>
void DepthGrid::visitFar(Span heights, float depth, SpanOf spanOf, Visit visit) const
{
    const auto rowOf = [this](double height) {
        return int(std::clamp(std::floor(height / cell), -1.0, double(rows)));
    };
    const int bottom = std::max(0, rowOf(heights.from)),
              top = std::min(rows - 1, rowOf(heights.to));
    const int most = 2; // from the first of the largest blocks to the last
    int largest = 0;
    while (!farthest.empty() && (top >> largest) - (bottom >> largest) > most)
        ++largest;
    int level = largest;
    for (int row = bottom; row <= top;) {
        const int block = row >> level, size = cell << level;
        const Span span = spanOf(double(block) * size, double(block + 1) * size);
        int first = 0, last = 0;
        if (!isFar(level, block, span, depth, first, last)) {
            row = (block + 1) << level;
        } else if (level > 0) {
            --level;
            continue;
        } else if (visit(row, first, last)) {
            return;
        } else {
            ++row;
        }
        while (level < largest && row % (2 << level) == 0)
            ++level;
    }
}

// Calls visit(area) for what is seen in each row of cells until it says that it is enough.
template <typename Visit>
void DepthGrid::visitSeen(const Disc& disc, Visit visit) const
{
    if (!(disc.radius > 0) || !std::isfinite(disc.x + disc.y + disc.radius)) {
        visit(Area{0, 0, columns * cell, rows * cell});
        return;
    }
    // One pixel more, for roundings.
    const double radius = disc.radius + 1;
    const float depth = disc.depth - DEPTH_TOLERANCE;
    const auto spanOf = [&](double bottom, double top) {
        // The disc is widest where the rows are nearest to its middle.
        const double distance = std::clamp(disc.y, bottom, top) - disc.y;
        const double half = std::sqrt(std::max(radius * radius - distance * distance, 0.0));
        return Span{disc.x - half, disc.x + half};
    };
    visitFar({disc.y - radius, disc.y + radius}, depth, spanOf, [&](int row, int first, int last) {
        if (!farthest.empty()) {
            const float* const depths =
                farthest[0].data() + std::size_t(row) * std::size_t(columns);
            while (first < last && depths[first] < depth)
                ++first;
            while (first < last && depths[last] < depth)
                --last;
        }
        return visit(Area{first * cell, row * cell, (last + 1) * cell, (row + 1) * cell});
    });
}

bool DepthGrid::shows(const Disc& disc) const
{
    bool shown = false;
    visitSeen(disc, [&](const Area& area) { return shown = !area.isEmpty(); });
    return shown;
}

DepthGrid::Area DepthGrid::seen(const Disc& disc) const
{
    Area area = nowhere();
    visitSeen(disc, [&](const Area& inRow) {
        area.extend(inRow);
        return false;
    });
    return area;
}

namespace {

// Twice the area of a triangle, positive where its corners go round counter-clockwise.
double twiceArea(const DepthGrid::Corner& p, const DepthGrid::Corner& q, const DepthGrid::Corner& r)
{
    return (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
}

// Whether the corners go round one way all along: then its two triangles cover the quadrilateral.
bool isConvex(const DepthGrid::Quad& quad)
{
    bool left = false, right = false;
    for (std::size_t i = 0; i < 4; ++i) {
        const double turn = twiceArea(quad[i], quad[(i + 1) % 4], quad[(i + 2) % 4]);
        left = left || turn > 0;
        right = right || turn < 0;
    }
    return !left || !right;
}

} // namespace

// The pixels of a convex quadrilateral, row by row: those between its edges on the left and its
// edges on the right. Level edges are left to its bottom and top.
struct DepthGrid::Outline
{
    Outline(const Quad& quad, double tolerance)
    {
        const bool turnsLeft =
            twiceArea(quad[0], quad[1], quad[2]) + twiceArea(quad[0], quad[2], quad[3]) >= 0;
        Line *left = lefts, *right = rights;
        for (std::size_t i = 0; i < 4; ++i) {
            const Corner &from = quad[i], &to = quad[(i + 1) % 4];
            const double x = to.x - from.x, y = to.y - from.y;
            if (std::abs(y) <= LEVEL * std::abs(x))
                continue;
            const double slope = x / y, room = tolerance * (1 + std::abs(slope));
            if ((y < 0) == turnsLeft)
                *left++ = {slope, from.x - slope * from.y - room};
            else
                *right++ = {slope, from.x - slope * from.y + room};
        }
    }

    // Of the middles of pixels, in rows whose middles are from bottom to top.
    Span spanOf(double bottom, double top) const
    {
        Span span = {lefts[0].least(bottom, top), rights[0].most(bottom, top)};
        for (int i = 1; i < MOST; ++i) {
            span.from = std::max(span.from, lefts[i].least(bottom, top));
            span.to = std::min(span.to, rights[i].most(bottom, top));
        }
        return span;
    }

private:
    static constexpr double LEVEL = 1e-9;
    static constexpr double FAR = 1e9;
    static constexpr int MOST = 3; // edges on one side

    struct Line
    {
        double slope, start; // at y = 0

        double least(double bottom, double top) const
        {
            return std::min(slope * bottom, slope * top) + start;
        }
        double most(double bottom, double top) const
        {
            return std::max(slope * bottom, slope * top) + start;
        }
    };

    // One more for those of no area, all of whose edges may be on one side.
    Line lefts[MOST + 1] = {{0, -FAR}, {0, -FAR}, {0, -FAR}, {0, -FAR}};
    Line rights[MOST + 1] = {{0, FAR}, {0, FAR}, {0, FAR}, {0, FAR}};
};

void DepthGrid::addSeen(const Quad& quad, Areas& areas) const
{
    if (isConvex(quad)) {
        addSeenConvex(quad, areas);
    } else {
        addSeenConvex({quad[0], quad[1], quad[2], quad[2]}, areas);
        addSeenConvex({quad[0], quad[2], quad[3], quad[3]}, areas);
    }
}

// As if all of it were as near as its nearest corner.
void DepthGrid::addSeenConvex(const Quad& quad, Areas& areas) const
{
    const auto& [a, b, c, d] = quad;
    const double slack = std::max({a.slack, b.slack, c.slack, d.slack}) + tolerance;
    const double bottom = std::min({a.y, b.y, c.y, d.y}) - slack;
    const double top = std::max({a.y, b.y, c.y, d.y}) + slack;
    const double left = std::min({a.x, b.x, c.x, d.x}) - slack;
    const double right = std::max({a.x, b.x, c.x, d.x}) + slack;
    const float nearest = std::min({a.depth, b.depth, c.depth, d.depth});
    if (!(nearest > 0) || !std::isfinite(bottom + top + left + right) || farthest.empty()) {
        areas.add({0, 0, columns * cell, rows * cell});
        return;
    }
    if (right < 0 || left > width || top < 0 || bottom > height)
        return;
    const float depth = nearest - DEPTH_TOLERANCE;
    const Outline outline(quad, slack);
    const auto spanOf = [&](double lowest, double highest) {
        const Span span = outline.spanOf(lowest + 0.5, highest - 0.5);
        return Span{std::max(span.from, left), std::min(span.to, right)};
    };
    visitFar({bottom, top}, depth, spanOf, [&](int row, int first, int last) {
        const float* const depths = farthest[0].data() + std::size_t(row) * std::size_t(columns);
        for (int column = first; column <= last; ++column) {
            if (depths[column] >= depth && isSeenInCell(column, row, outline, depth))
                areas.add({column * cell, row * cell, (column + 1) * cell, (row + 1) * cell});
        }
        return false;
    });
}

bool DepthGrid::isSeenInCell(int column, int row, const Outline& outline, float depth) const
{
    const int left = column * cell, right = std::min(left + cell, width) - 1;
    for (int y = row * cell; y < std::min((row + 1) * cell, height); ++y) {
        const Span span = outline.spanOf(y + 0.5, y + 0.5);
        const double from = std::ceil(std::max(span.from - 0.5, double(left)));
        const double to = std::floor(std::min(span.to - 0.5, double(right)));
        const float* const line = pixels.data() + std::size_t(y) * std::size_t(width);
        if (from <= to && std::any_of(line + int(from), line + int(to) + 1,
                                      [depth](float pixel) { return pixel >= depth; }))
            return true;
    }
    return false;
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
