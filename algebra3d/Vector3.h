// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef ALGEBRA3D_VECTOR3_H
#define ALGEBRA3D_VECTOR3_H

#include <cmath>

#include <algebra3d/algebra3dExport.h>

namespace algebra3d {

/// A point or a direction in space: three components with value semantics.
///
/// The operations are the plain component-wise formulas, evaluated in the order
/// written here, so that results can be compared bit for bit.
/// Values hold no reference to anything: any thread may use its own, and several may read one.
template <typename T>
class ALGEBRA3D_EXPORT Vector3
{
public:
    T x, y, z;

    /// The zero vector.
    Vector3() : x(0), y(0), z(0) {}
    Vector3(T xValue, T yValue, T zValue) : x(xValue), y(yValue), z(zValue) {}
    /// From three consecutive numbers.
    explicit Vector3(const T* components) : x(components[0]), y(components[1]), z(components[2]) {}
    Vector3(const Vector3&) = default;
    Vector3& operator=(const Vector3&) = default;
    virtual ~Vector3() = default;

    /// Component 0, 1 or 2; the index is not checked.
    T& operator[](int index) { return index == 0 ? x : index == 1 ? y : z; }
    const T& operator[](int index) const { return index == 0 ? x : index == 1 ? y : z; }

    Vector3 operator+(const Vector3& other) const
    {
        return Vector3(x + other.x, y + other.y, z + other.z);
    }
    Vector3 operator-(const Vector3& other) const
    {
        return Vector3(x - other.x, y - other.y, z - other.z);
    }
    Vector3 operator-() const { return Vector3(-x, -y, -z); }
    Vector3& operator+=(const Vector3& other)
    {
        x += other.x;
        y += other.y;
        z += other.z;
        return *this;
    }
    Vector3 operator*(const T& factor) const { return Vector3(x * factor, y * factor, z * factor); }
    friend Vector3 operator*(const T& factor, const Vector3& vector) { return vector * factor; }

    /// The right-handed product: (1, 0, 0).cross((0, 1, 0)) is (0, 0, 1).
    Vector3 cross(const Vector3& other) const
    {
        return Vector3(y * other.z - z * other.y, z * other.x - x * other.z,
                       x * other.y - y * other.x);
    }
    T dot(const Vector3& other) const { return x * other.x + y * other.y + z * other.z; }

    /// The Euclidean length.
    T getNorm() const { return std::sqrt(dot(*this)); }

    /// The vector divided by its length; the zero vector stays zero.
    Vector3 getUnit() const
    {
        const T norm = getNorm();
        return norm == T(0) ? *this : Vector3(x / norm, y / norm, z / norm);
    }
    /// getUnit() in place.
    void normalize() { *this = getUnit(); }
};

extern template class Vector3<double>;

} // namespace algebra3d

#endif
