// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_BACKFACES_H
#define STRANDVIEW_DRAWING_BACKFACES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <algebra3d/Vector3.h>

#include "drawing/MeshRows.h"

class Mesh;
class SoState;

/// A closed tube without folds, which hides what is turned away from who is outside.
struct ClosedTube
{
    double slant; ///< the sine of the largest angle between a face and the normal of a corner of it
    double radius;                               ///< the smallest
    algebra3d::Vector3<double> minimum, maximum; ///< of the points
    int firstRow, endRow; ///< those that are not about as near to a cap as that hides less
};

/// A mesh of those of its rows that are told, the first and the last among them, whose columns meet
/// and whose rows do, or end in caps, if all of its faces lie about as the normals say. Nothing of
/// any other, as of a tube that is bent more sharply than it is thick.
std::optional<ClosedTube> measureClosedTube(Mesh& mesh, const MeshRows& rows, bool hasCaps);

/// Finds the faces of closed tubes that are turned away from the eye so clearly that every pixel of
/// theirs has another face of the tube before it, whatever is rounded. A picture without them is
/// the same, pixel for pixel; a software driver takes as long for a vertex and a triangle that
/// is not seen as for one that is. So where some are left out, those that lie beyond a side of the
/// view are, too, as in the tiles of a large picture.
///
/// Lives within one frame, under a traversal's matrices and view.
class BackFaces
{
public:
    /// None where leaving them out would not pay or might be seen: not with a software driver, or
    /// something is drawn that does not hide all behind it, or by a program that moves points or
    /// leaves out pixels.
    static std::optional<BackFaces> find(SoState* state);

    /// Whether the eye sees all of a tube from outside, and large enough.
    bool mayLeaveOut(const ClosedTube& tube) const;

    /// Goes along a tube.
    class Walk
    {
    public:
        Walk(const BackFaces& backFaces, Mesh& walkedMesh, const ClosedTube& walkedTube);
        /// For each face between two rows, the first of which is the second of the call before,
        /// whether it may be left out. Good until the next call.
        const std::vector<std::uint8_t>& between(int row, int next);

    private:
        struct Row
        {
            std::vector<std::uint8_t> isAway; // which corners are clearly turned away
            unsigned sidesBeyond = 0;         // of the view, where all corners are
        };

        void look(int row, Row& seen) const;
        bool isEdgeLeftOut(int row, int next, int column, int edge) const;

        const BackFaces& faces;
        Mesh& mesh;
        const ClosedTube& tube;
        const double leastTurn; ///< sine, of a corner that is clearly turned away
        const double rounding;  ///< of a corner, in the eye's coordinates
        int lookedAt = -1;
        Row here, there;
        std::vector<std::uint8_t> leftOut;
    };

private:
    using Vector = algebra3d::Vector3<double>;

    struct InWindow
    {
        double x, y;  // in pixels
        double scale; // pixels of the eye's unit of length there
    };

    explicit BackFaces(SoState* state);
    Vector towardsEye(const Vector& point) const { return parallel ? eye : eye - point; }
    double largestCoordinate(const ClosedTube& tube) const;
    double clipAt(const Vector& point, int axis) const;
    InWindow project(const Vector& point) const;
    unsigned sidesBeyond(const Vector& point, double rounding) const;
    bool isBetweenSamples(const InWindow& a, const InWindow& b, double rounding) const;

    bool parallel;
    bool sampled; // at the middles of pixels alone
    Vector eye; // its place, or the direction to it, in the coordinates of the state's model matrix
    double clip[4][4]; // from there: what makes each clip coordinate of a point's three, and 1
    double half[2];    // of the viewport's sides, in pixels
    double offset = 0; // of the origin, in the eye's coordinates
    double leastPixels, mostPixels; // of a unit there, where w is 1, one way or the other
    double depthScale;              // of the depth buffer likewise
    double stretch, shrink;         // how much longer and shorter a length may become there
};

#endif
