// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/fourStretches.h>

#include <algebra3d/Four.h>

namespace strandview {

namespace {

using algebra3d::all;
using algebra3d::Four;
using algebra3d::FourMasks;
using algebra3d::FourVectors;
using algebra3d::gather;
using algebra3d::load;
using algebra3d::store;
using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;

/// Of the square of the normals' product to that of the edge: below it digits are lost.
constexpr double SMALLEST_TURN = 1e-6;
/// Squares of lengths from there on have all digits, and their products with SMALLEST_TURN.
constexpr double SMALLEST_SQUARE = 1e-290;

struct FourQuaternions
{
    FourVectors v;
    Four w;
};

/// Hamilton's product, term by term as that of two Quaternions.
ALWAYS_INLINE FourQuaternions operator*(const FourQuaternions& a, const FourQuaternions& b)
{
    return {{a.w * b.v.x + a.v.x * b.w + a.v.y * b.v.z - a.v.z * b.v.y,
             a.w * b.v.y - a.v.x * b.v.z + a.v.y * b.w + a.v.z * b.v.x,
             a.w * b.v.z + a.v.x * b.v.y - a.v.y * b.v.x + a.v.z * b.w},
            a.w * b.w - a.v.x * b.v.x - a.v.y * b.v.y - a.v.z * b.v.z};
}

FOUR_AT_ONCE bool findTurnsOfFour(const Vector* first, std::size_t length, double (*turns)[4][4])
{
    FourVectors before = gather(first - 2, length), point = gather(first - 1, length);
    FourVectors next = gather(first, length);
    const FourVectors acrossFirst = next - before;
    const Four squareAcrossFirst = dot(acrossFirst, acrossFirst);
    FourVectors tangent = 1 / algebra3d::squareRoot(squareAcrossFirst) * acrossFirst;
    FourMasks areFine = squareAcrossFirst > SMALLEST_SQUARE;
    FourQuaternions product = {{all(0), all(0), all(0)}, all(1)};
    for (std::size_t i = 0; i < length; ++i) {
        before = point;
        point = next;
        next = gather(first + i + 1, length);
        const FourVectors edge = point - before, across = next - before;
        const Four squareAcross = dot(across, across);
        const FourVectors tangentBefore = tangent;
        tangent = 1 / algebra3d::squareRoot(squareAcross) * across;
        const FourVectors axis = cross(edge, tangent - tangentBefore);
        const Four w = dot(edge, tangent + tangentBefore);
        const Four square = dot(axis, axis) + w * w;
        areFine &= (squareAcross > SMALLEST_SQUARE) & (square > SMALLEST_SQUARE) &
                   (square > SMALLEST_TURN * dot(edge, edge));
        const Four scale = 1 / algebra3d::squareRoot(square);
        product = FourQuaternions{scale * axis, scale * w} * product;
        store(product.v.x, turns[i][0]);
        store(product.v.y, turns[i][1]);
        store(product.v.z, turns[i][2]);
        store(product.w, turns[i][3]);
    }
    return algebra3d::areAll(areFine);
}

/// The product of each turn and a rotation: component by component as that of two Quaternions, its
/// four at once.
FOUR_AT_ONCE void turnAll(const double (*turns)[4][4], std::size_t length, std::size_t stretch,
                          const Quaternion& rotation, Quaternion* frames)
{
    const double x = rotation[0], y = rotation[1], z = rotation[2], w = rotation[3];
    const Four byW = {x, y, z, w}, byX = {w, -z, y, -x}, byY = {z, w, -x, -y}, byZ = {-y, x, w, -z};
    for (std::size_t i = 0; i < length; ++i) {
        const auto turn = [&](int component) { return all(turns[i][component][stretch]); };
        store(turn(3) * byW + turn(0) * byX + turn(1) * byY + turn(2) * byZ, &frames[i][0]);
    }
}

} // namespace

bool FourStretches::findTurns(const Vector* first, std::size_t length)
{
    count = length;
    return findTurnsOfFour(first, length, turns);
}

void FourStretches::turn(std::size_t stretch, const Quaternion& before, Quaternion* frames) const
{
    turnAll(turns, count, stretch, before, frames);
}

} // namespace strandview
