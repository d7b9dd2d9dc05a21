// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef BIARC_VECTOR3_H
#define BIARC_VECTOR3_H

#include <cmath>

#include <biarc/biarcExport.h>

/// A 3-vector of doubles, the point type of the biarc curves. Distinct from
/// algebra3d::Vector3: nothing converts between the two but its user.
class BIARC_EXPORT Vector3
{
public:
    /// The zero vector.
    Vector3() : components{0, 0, 0} {}
    Vector3(double x, double y, double z) : components{x, y, z} {}

    /// Component 0, 1 or 2; the index is not checked.
    double& operator[](int index) { return components[index]; }
    const double& operator[](int index) const { return components[index]; }

    Vector3 operator+(const Vector3& other) const { return Vector3(*this) += other; }
    Vector3 operator-(const Vector3& other) const
    {
        return Vector3(components[0] - other[0], components[1] - other[1],
                       components[2] - other[2]);
    }
    Vector3& operator+=(const Vector3& other)
    {
        for (int i = 0; i < 3; ++i)
            components[i] += other[i];
        return *this;
    }
    Vector3& operator/=(double divisor)
    {
        for (double& component : components)
            component /= divisor;
        return *this;
    }

    double dot(const Vector3& other) const
    {
        return components[0] * other[0] + components[1] * other[1] + components[2] * other[2];
    }
    double norm2() const { return dot(*this); }
    double norm() const { return std::sqrt(norm2()); }

    /// Divides by the length, unguarded: the zero vector becomes not-a-number.
    void normalize() { *this /= norm(); }

    /// The mirror image of this vector in the line spanned by v: the part along v
    /// stays, the part across it changes sign.
    Vector3 reflect(const Vector3& v) const;

private:
    double components[3];
};

inline Vector3 operator*(const Vector3& vector, double factor)
{
    return Vector3(vector[0] * factor, vector[1] * factor, vector[2] * factor);
}
inline Vector3 operator*(double factor, const Vector3& vector) { return vector * factor; }
inline Vector3 operator/(const Vector3& vector, double divisor)
{
    return Vector3(vector) /= divisor;
}

inline Vector3 Vector3::reflect(const Vector3& v) const
{
    return 2.0 * (dot(v) / v.dot(v)) * v - *this;
}

#endif
