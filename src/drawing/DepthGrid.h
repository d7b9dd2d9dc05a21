// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_DEPTHGRID_H
#define STRANDVIEW_DRAWING_DEPTHGRID_H

#include <array>
#include <vector>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbVec3f.h>

class SoState;

/// What OpenGL's depth buffer hides, coarsely: tells in front of what has been drawn, and where
/// in the window, a ball would be seen. Nothing that would be seen is told to be hidden, but for
/// gaps narrower than a pixel where it has several samples.
///
/// Lives within one frame. Pixels are those of the viewport, from its lower left corner.
class DepthGrid
{
public:
    /// Pixels left <= x < right, bottom <= y < top.
    struct Area
    {
        int left, bottom, right, top;

        bool isEmpty() const { return left >= right || bottom >= top; }
        double getSize() const { return double(right - left) * double(top - bottom); }
        void extend(const Area& other);
    };

    /// That are drawn, though hidden, while another draw begins.
    static constexpr double PIXELS_PER_DRAW = 2000;

    static Area nowhere() { return {0, 0, 0, 0}; }

    /// A few areas about many.
    class Areas
    {
    public:
        /// Unless it is empty; one with another one where a draw more would cost more than what
        /// is between them.
        void add(const Area& area);
        void clear() { pieces.clear(); }
        bool isEmpty() const { return pieces.empty(); }
        /// Of those added.
        double getSize() const;
        /// Calls visit(area) for each that is left.
        template <typename Visit>
        void visit(Visit visit) const
        {
            for (const Piece& piece : pieces)
                visit(piece.area);
        }

    private:
        struct Piece
        {
            Area area;
            double added; // pixels
        };

        std::vector<Piece> pieces;
    };

    /// A ball in the viewport, and how near its nearest point is.
    struct Disc
    {
        double x, y, radius; ///< in pixels; a radius that is not positive: it may be anywhere
        float depth;         ///< of the depth buffer, 0 to 1
    };

    /// A point in the viewport: in pixels, each right within `slack`, and of the depth buffer.
    struct Corner
    {
        double x, y, slack;
        float depth; ///< 0 to 1; if it is not positive the point may be anywhere
    };
    using Quad = std::array<Corner, 4>; ///< one after the other around it

    /// Under a traversal's matrices and view. Nothing is hidden before read().
    explicit DepthGrid(SoState* state);

    /// Whether a processor draws the pixels: it takes its time for hidden ones as well, and answers
    /// at once. A graphics card drops them by itself, and would be waited for.
    static bool isSoftware();
    /// Whether what is opaque hides what is behind it, and nothing else.
    static bool hidesWhatIsBehind(SoState* state);
    /// Whether it pays to look, and what is behind is hidden: only Mesa's software drivers take
    /// time for it; and it is not hidden with a depth test of another kind, with clipping planes
    /// or with other matrices than those of cameras. Shaders are taken to leave points in place.
    static bool isUsable(SoState* state);
    /// Whether the projection is one of those that project() knows: of a camera.
    static bool canProject(SoState* state);

    /// From the coordinates of the state's model matrix to those of the eye.
    const SbMatrix& getToEye() const { return toEye; }
    double getViewportArea() const { return double(width) * double(height); }

    /// The disc of a ball in coordinates that a matrix brings to the eye's, stretched by at most
    /// `stretch`.
    Disc project(const SbVec3f& centre, double radius, const SbMatrix& matrix,
                 double stretch) const;
    /// The corner at a point in coordinates that a matrix brings to the eye's.
    Corner project(const SbVec3f& point, const SbMatrix& matrix) const;
    /// About how many pixels an area has that is within the ball of a disc.
    double pixelsOf(double area, double radius, const Disc& disc) const;
    /// The pixels of a length where a ball, in coordinates of the state's model matrix, is nearest;
    /// infinite where it is not all in front of the eye.
    double pixelsAtNearest(const SbVec3f& centre, double radius, double length) const;
    /// Whether an area within a ball, in coordinates of the state's model matrix, would cover the
    /// viewport that often if all of it were where the ball is nearest.
    bool mayCover(const SbVec3f& centre, double radius, double area, double layers) const;
    /// By how much a matrix stretches lengths at most.
    static double stretchOf(const SbMatrix& matrix);

    int getReads() const { return reads; }
    /// Takes the depths as they are now.
    void read();
    /// Whether a disc may be seen.
    bool shows(const Disc& disc) const;
    /// The smallest area outside of which a disc cannot be seen.
    Area seen(const Disc& disc) const;
    /// Adds where a quadrilateral of two triangles is seen, told pixel by pixel: of many that end
    /// where one in front of them ends, as the turns of a coil seen along itself do, no disc would
    /// be hidden.
    void addSeen(const Quad& quad, Areas& areas) const;

    /// Lets OpenGL draw in an area only, until leave().
    void enter(const Area& area);
    void leave();

private:
    struct Outline;
    struct Span
    {
        double from, to; // pixels
    };

    void measureCells();
    void measureBlocks();
    bool isFar(int level, int block, Span span, float depth, int& first, int& last) const;
    template <typename SpanOf, typename Visit>
    void visitFar(Span heights, float depth, SpanOf spanOf, Visit visit) const;
    template <typename Visit>
    void visitSeen(const Disc& disc, Visit visit) const;
    void addSeenConvex(const Quad& quad, Areas& areas) const;
    bool isSeenInCell(int column, int row, const Outline& outline, float depth) const;

    SbMatrix toEye, projection;
    int origin[2] = {0, 0};
    int width = 0, height = 0;
    bool scissoring = false;
    int cell = 1; // pixels per side of a cell
    int columns = 0, rows = 0;
    int reads = 0;
    double tolerance = 0; // about a pixel's middle, where it may be covered
    // The largest depths in cells, row by row, then in blocks of two by two of those before, up to
    // the whole viewport; none before read().
    std::vector<std::vector<float>> farthest;
    std::vector<float> pixels;
};

#endif
