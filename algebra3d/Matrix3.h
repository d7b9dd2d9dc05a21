// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef ALGEBRA3D_MATRIX3_H
#define ALGEBRA3D_MATRIX3_H

#include <cmath>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>
#include <algebra3d/algebra3dExport.h>

namespace algebra3d {

/// A 3 by 3 matrix. As the rotation of a unit quaternion its columns 0, 1 and 2
/// are the material frame d1, d2, d3 of a rod's point; d3 is the tangent.
/// A plain value for any thread, as Vector3 is.
template <typename T>
class ALGEBRA3D_EXPORT Matrix3
{
public:
    /// The identity, or the zero matrix.
    explicit Matrix3(bool identity)
    {
        for (int column = 0; column < 3; ++column)
            columns[column][column] = identity ? T(1) : T(0);
    }

    Matrix3(const Vector3<T>& d1, const Vector3<T>& d2, const Vector3<T>& d3) : columns{d1, d2, d3}
    {}

    /// The rotation v -> q v q* / |q|^2, which is the same for every multiple of q.
    /// The zero quaternion gives the identity.
    explicit Matrix3(const Quaternion<T>& q)
    {
        const T norm2 = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
        const T s = norm2 == T(0) ? T(0) : T(2) / norm2;
        const T xx = s * q[0] * q[0], yy = s * q[1] * q[1], zz = s * q[2] * q[2];
        const T xy = s * q[0] * q[1], xz = s * q[0] * q[2], yz = s * q[1] * q[2];
        const T wx = s * q[3] * q[0], wy = s * q[3] * q[1], wz = s * q[3] * q[2];
        columns[0] = Vector3<T>(T(1) - (yy + zz), xy + wz, xz - wy);
        columns[1] = Vector3<T>(xy - wz, T(1) - (xx + zz), yz + wx);
        columns[2] = Vector3<T>(xz + wy, yz - wx, T(1) - (xx + yy));
    }

    /// Row and column 0 to 2; the indices are not checked.
    T& operator()(int row, int column) { return columns[column][row]; }
    const T& operator()(int row, int column) const { return columns[column][row]; }

    Vector3<T> getColumn(int column) const { return columns[column]; }

    /// The unit quaternion of a rotation matrix, w >= 0 where w decides the branch.
    ///
    /// Of the four equivalent expressions the one with the largest divisor is taken
    /// (S. W. Shepperd, Quaternion from rotation matrix, J. Guidance and Control 1,
    /// 1978, 223-224).
    Quaternion<T> getQuaternion() const
    {
        const Matrix3& m = *this;
        const T trace = m(0, 0) + m(1, 1) + m(2, 2);
        int largest = 3;
        T value = trace;
        for (int i = 0; i < 3; ++i) {
            if (m(i, i) > value) {
                value = m(i, i);
                largest = i;
            }
        }
        Quaternion<T> q;
        if (largest == 3) {
            const T root = std::sqrt(T(1) + trace);
            q = Quaternion<T>((m(2, 1) - m(1, 2)) / (2 * root), (m(0, 2) - m(2, 0)) / (2 * root),
                              (m(1, 0) - m(0, 1)) / (2 * root), root / 2);
        } else {
            const int i = largest, j = (i + 1) % 3, k = (i + 2) % 3;
            const T root = std::sqrt(T(1) + m(i, i) - m(j, j) - m(k, k));
            q[i] = root / 2;
            q[j] = (m(i, j) + m(j, i)) / (2 * root);
            q[k] = (m(i, k) + m(k, i)) / (2 * root);
            q[3] = (m(k, j) - m(j, k)) / (2 * root);
        }
        return q;
    }

private:
    Vector3<T> columns[3];
};

extern template class Matrix3<double>;

} // namespace algebra3d

#endif
