// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef ALGEBRA3D_QUATERNION_H
#define ALGEBRA3D_QUATERNION_H

#include <cmath>

#include <algebra3d/algebra3dExport.h>

namespace algebra3d {

/// A quaternion (x, y, z, w), scalar last. A unit quaternion is a rotation; its
/// matrix, and so the material frame of a rod's point, is Matrix3(quaternion).
/// A plain value for any thread, as Vector3 is.
template <typename T>
class ALGEBRA3D_EXPORT Quaternion
{
public:
    /// The identity rotation (0, 0, 0, 1).
    Quaternion() : components{0, 0, 0, 1} {}
    Quaternion(T x, T y, T z, T w) : components{x, y, z, w} {}
    Quaternion(const Quaternion&) = default;
    Quaternion& operator=(const Quaternion&) = default;
    virtual ~Quaternion() = default;

    /// Component 0 to 3 in the order x, y, z, w; the index is not checked.
    T& operator[](int index) { return components[index]; }
    const T& operator[](int index) const { return components[index]; }

    /// The Euclidean length of the four components.
    T getNorm() const
    {
        const auto& q = components;
        return std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    }

private:
    T components[4];
};

extern template class Quaternion<double>;

} // namespace algebra3d

#endif
