// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_BACKFACES_H
#define STRANDVIEW_DRAWING_BACKFACES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <algebra3d/Vector3.h>

#include "drawing/DepthGrid.h"

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

/// A mesh whose columns meet and whose rows do, or end in caps, if all of its faces lie about
/// as the normals say. Nothing of any other, as of a tube that is bent more sharply than it is
/// thick.
std::optional<ClosedTube> measureClosedTube(Mesh& mesh, bool hasCaps);

/// Finds the faces of closed tubes that are turned away from the eye so clearly that every pixel of
/// theirs has another face of the tube before it, whatever is rounded. A picture without them is
/// the same, pixel for pixel; a software driver takes as long for a vertex and a triangle that
/// is not seen as for one that is.
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
        void look(int row, std::vector<std::uint8_t>& isAway) const;
        bool isEdgeLeftOut(int row, int next, int column, int edge);
        DepthGrid::Corner project(int row, int column);

        struct Projected
        {
            int row = -1, column = -1;
            DepthGrid::Corner corner = {0, 0, 0, 0};
        };

        const BackFaces& faces;
        Mesh& mesh;
        const ClosedTube& tube;
        const double leastTurn; ///< sine, of a corner that is clearly turned away
        int lookedAt = -1;
        std::vector<std::uint8_t> here, there; // which corners are clearly turned away
        std::vector<std::uint8_t> leftOut;
        std::array<Projected, 4> projected; // two edges, as a rule
        std::size_t oldest = 0;
    };

private:
    using Vector = algebra3d::Vector3<double>;

    explicit BackFaces(SoState* state);
    Vector towardsEye(const Vector& point) const { return parallel ? eye : eye - point; }
    static double clipAt(const Vector& point, const double* clip);
    bool isBetweenSamples(const DepthGrid::Corner& a, const DepthGrid::Corner& b) const;

    DepthGrid grid; // that is never read
    bool parallel;
    bool sampled; // at the middles of pixels alone
    Vector eye; // its place, or the direction to it, in the coordinates of the state's model matrix
    double clipDepth[4], clipW[4]; // from there: the third and the fourth clip coordinate
    double offset = 0;             // of the origin, in the eye's coordinates
    double pixelScale, depthScale; // what is as long as 1 there, where w is 1
    double shrink;                 // how much shorter a length may become there
};

#endif
