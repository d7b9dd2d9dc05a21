// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef ALGEBRA3D_ROTATIONS_H
#define ALGEBRA3D_ROTATIONS_H

#include <cmath>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

// Arithmetic of quaternions as rotations: q turns v into the vector part of q v q*. Angles
// are in radians. Nothing is checked or normalised unless it is said; all of it may be
// called from any thread.

namespace algebra3d {

/// Hamilton's product: first the rotation b, then a.
template <typename T>
Quaternion<T> operator*(const Quaternion<T>& a, const Quaternion<T>& b)
{
    return Quaternion<T>(a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1],
                         a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0],
                         a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3],
                         a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2]);
}

/// q*: of a unit quaternion the inverse rotation.
template <typename T>
Quaternion<T> conjugate(const Quaternion<T>& q)
{
    return Quaternion<T>(-q[0], -q[1], -q[2], q[3]);
}

/// The sum of the products of the components: of unit quaternions the cosine of half the
/// angle between the rotations, negative where one of the two has to change its sign
/// before anything is averaged.
template <typename T>
T dot(const Quaternion<T>& a, const Quaternion<T>& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

/// Of q and -q, which are one rotation, that nearer to another quaternion.
template <typename T>
Quaternion<T> nearer(const Quaternion<T>& q, const Quaternion<T>& other)
{
    return dot(q, other) < 0 ? Quaternion<T>(-q[0], -q[1], -q[2], -q[3]) : q;
}

/// The quaternion, which is not zero, divided by its norm: of any size, since no square over-
/// or underflows.
template <typename T>
Quaternion<T> scaledToUnit(Quaternion<T> q)
{
    T largest = 0;
    for (int i = 0; i < 4; ++i)
        largest = std::fmax(largest, std::abs(q[i]));
    for (int i = 0; i < 4; ++i)
        q[i] /= largest;
    const T norm = q.getNorm();
    for (int i = 0; i < 4; ++i)
        q[i] /= norm;
    return q;
}

/// How far from 1 the norm of a rotation may be: components rounded to three digits are within
/// it, and what was meant in another way is not.
constexpr double ROTATION_TOLERANCE = 0.01;

/// Whether the norm is 1 within ROTATION_TOLERANCE; with a component that is no number it is not.
template <typename T>
bool isRotation(const Quaternion<T>& q)
{
    return std::abs(q.getNorm() - 1) <= ROTATION_TOLERANCE;
}

/// The vector turned by a unit quaternion: column j of its matrix is the turned j-th axis.
template <typename T>
Vector3<T> rotated(const Vector3<T>& v, const Quaternion<T>& q)
{
    const Vector3<T> u(q[0], q[1], q[2]);
    const Vector3<T> across = u.cross(v) * T(2);
    return v + across * q[3] + u.cross(across);
}

/// The rotation by an angle about an axis of any length, right-handed; by any angle about
/// the zero vector it is the identity.
template <typename T>
Quaternion<T> about(const Vector3<T>& axis, T angle)
{
    const T length = axis.getNorm();
    if (length == T(0))
        return Quaternion<T>();
    const T s = std::sin(angle / 2) / length;
    return Quaternion<T>(s * axis.x, s * axis.y, s * axis.z, std::cos(angle / 2));
}

/// The smallest rotation that takes the direction of a to that of b; the identity if either
/// is zero. Of opposite directions, which many half turns connect, one about an axis
/// across a.
template <typename T>
Quaternion<T> between(const Vector3<T>& a, const Vector3<T>& b)
{
    const Vector3<T> from = a.getUnit(), to = b.getUnit();
    if (from.dot(from) == T(0) || to.dot(to) == T(0))
        return Quaternion<T>();
    // The direction half-way leaves half the angle between, so nothing has to be halved;
    // it is long where the angle is small, which keeps small rotations exact.
    const Vector3<T> middle = from + to;
    if (middle.dot(middle) > T(1e-12)) {
        const Vector3<T> half = middle.getUnit();
        const Vector3<T> axis = from.cross(half);
        return Quaternion<T>(axis.x, axis.y, axis.z, from.dot(half));
    }
    const bool alongX = std::abs(from.x) > T(0.6);
    const Vector3<T> axis = from.cross(alongX ? Vector3<T>(0, 1, 0) : Vector3<T>(1, 0, 0));
    return about(axis, T(M_PI));
}

/// The rotation at part t of the shorter way from a to b, both unit, at constant angular
/// velocity (K. Shoemake, Animating rotation with quaternion curves, SIGGRAPH 1985). t may
/// lie outside of 0 to 1; slerp(a, b, 0.5) is the half-way rotation.
template <typename T>
Quaternion<T> slerp(const Quaternion<T>& a, const Quaternion<T>& b, T t)
{
    const Quaternion<T> end = nearer(b, a);
    // From the chord, not the cosine, which loses small angles.
    const Quaternion<T> chord(end[0] - a[0], end[1] - a[1], end[2] - a[2], end[3] - a[3]);
    const T angle = 2 * std::asin(std::fmin(chord.getNorm() / 2, T(1)));
    const T sine = std::sin(angle);
    const bool near = angle < T(1e-6); // the arc is its chord within rounding
    const T wa = near ? 1 - t : std::sin((1 - t) * angle) / sine;
    const T wb = near ? t : std::sin(t * angle) / sine;
    return Quaternion<T>(wa * a[0] + wb * end[0], wa * a[1] + wb * end[1], wa * a[2] + wb * end[2],
                         wa * a[3] + wb * end[3]);
}

} // namespace algebra3d

#endif
