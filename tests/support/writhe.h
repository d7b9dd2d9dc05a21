// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_SUPPORT_WRITHE_H
#define STRANDVIEW_TESTS_SUPPORT_WRITHE_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include <algebra3d/Vector3.h>

namespace strandview {

/// The Gauss integral of a polygon with itself, exact for its straight edges; of a closed one,
/// whose last point is the first again, its writhe (K. Klenin, J. Langowski, Biopolymers 54, 2000,
/// 307-317, method 1a).
inline double writheOf(const std::vector<algebra3d::Vector3<double>>& points)
{
    using Vector = algebra3d::Vector3<double>;
    const auto angle = [](const Vector& a, const Vector& b) {
        return std::asin(std::clamp(a.dot(b), -1.0, 1.0));
    };
    double sum = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        for (std::size_t j = i + 2; j + 1 < points.size(); ++j) {
            const Vector r13 = points[j] - points[i], r14 = points[j + 1] - points[i];
            const Vector r23 = points[j] - points[i + 1], r24 = points[j + 1] - points[i + 1];
            const Vector n1 = r13.cross(r14), n2 = r14.cross(r24);
            const Vector n3 = r24.cross(r23), n4 = r23.cross(r13);
            if (n1.getNorm() * n2.getNorm() * n3.getNorm() * n4.getNorm() == 0)
                continue; // in one plane
            const Vector a = n1.getUnit(), b = n2.getUnit(), c = n3.getUnit(), d = n4.getUnit();
            const double solid = angle(a, b) + angle(b, c) + angle(c, d) + angle(d, a);
            const double side =
                (points[j + 1] - points[j]).cross(points[i + 1] - points[i]).dot(r13);
            sum += side > 0 ? solid : -solid;
        }
    return sum / (2 * std::acos(-1.0));
}

} // namespace strandview

#endif
