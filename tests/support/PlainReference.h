// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_PLAINREFERENCE_H
#define STRANDVIEW_TESTS_PLAINREFERENCE_H

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <biarc/trigonometry.h>

/// The formulas of biarc curves, tubes and ribbons written down once more, one after
/// the other and without any short cut, to compare the library with. Products and
/// sums are evaluated from left to right, so the doubles must be the same.
namespace plain {

struct Vec
{
    double x = 0, y = 0, z = 0;
};

inline Vec operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec operator*(double f, Vec v) { return {f * v.x, f * v.y, f * v.z}; }
inline Vec operator*(Vec v, double f) { return f * v; }
inline Vec operator/(Vec v, double f) { return {v.x / f, v.y / f, v.z / f}; }
inline double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec cross(Vec a, Vec b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double norm(Vec v) { return std::sqrt(dot(v, v)); }
inline Vec unit(Vec v) { return v / norm(v); }
/// v mirrored in the line spanned by `line`.
inline Vec reflect(Vec v, Vec line) { return 2 * (dot(v, line) / dot(line, line)) * line - v; }

/// From any type whose components are read by index.
template <typename Vector>
Vec toPlain(const Vector& v)
{
    return {v[0], v[1], v[2]};
}
template <typename Vector>
std::vector<Vec> toPlain(const std::vector<Vector>& vectors)
{
    std::vector<Vec> result;
    for (const Vector& v : vectors)
        result.push_back(toPlain(v));
    return result;
}

// Biarcs

struct Biarc
{
    Vec p0, t0, m, tm, pN, tN;
    Vec bezier0, bezier1;
    double radius0, radius1;
    double length0, length1, length;
};

/// Of the arc from a to b that is tangent to t in a; -1 if it is straight.
inline double arcRadius(Vec a, Vec b, Vec t)
{
    const Vec d = b - a;
    const double c = dot(unit(d), t);
    if (1e-7 > 1 - c * c)
        return -1;
    return std::sqrt(dot(d, d) * 0.25 / (1 - c * c));
}

inline double arcLength(Vec a, Vec b, Vec t)
{
    const double radius = arcRadius(a, b, t);
    if (radius < 0)
        return norm(b - a);
    double half;
    biarc::arcCosine(
        dot(unit(b - a), t), [](double& square) { square = std::sqrt(square); }, half);
    return radius * (2 * half);
}

/// The biarc between two nodes with a given matching point and tangent.
inline Biarc biarcThrough(Vec p0, Vec t0, Vec m, Vec tm, Vec pN, Vec tN)
{
    Biarc b;
    b.p0 = p0;
    b.t0 = t0;
    b.m = m;
    b.tm = tm;
    b.pN = pN;
    b.tN = tN;
    b.bezier0 = p0 + (dot(m - p0, m - p0) * 0.5 / dot(m - p0, t0)) * t0;
    b.bezier1 = m + (dot(pN - m, pN - m) * 0.5 / dot(pN - m, tm)) * tm;
    b.radius0 = arcRadius(p0, m, t0);
    b.radius1 = arcRadius(m, pN, tm);
    b.length0 = arcLength(p0, m, t0);
    b.length1 = arcLength(m, pN, tm);
    b.length = b.length0 + b.length1;
    return b;
}

/// The biarc between two nodes, the matching point chosen by the midpoint rule.
inline Biarc matchedBiarc(Vec P0, Vec T0, Vec P1, Vec T1)
{
    const Vec d = P1 - P0;
    const double L = norm(d);
    const Vec e = d / L;
    const double c = dot(T0, T1);
    const double a0 = dot(e, T0);
    const double a1 = dot(e, T1);
    const double S = std::sqrt(4 * a0 * a1 + 2 - 2 * c);
    const double D = dot(e, T0 + T1) + S;
    const double lambda = (S / 2 + a1) / D;
    const Vec m = (1 - lambda) * P0 + lambda * P1 + (L / (2 * D)) * (T0 - T1);
    const Vec tm = (2 * dot(m - P0, T0) / dot(m - P0, m - P0)) * (m - P0) - T0;
    return biarcThrough(P0, T0, m, tm, P1, T1);
}

/// The rational quadratic Bezier curve that is a circular arc.
inline Vec conic(Vec b0, Vec b1, Vec b2, double tau)
{
    const double w = dot(b1 - b0, b2 - b0) / norm(b1 - b0) / norm(b2 - b0);
    return ((1 - tau) * (1 - tau) * b0 + 2 * w * tau * (1 - tau) * b1 + tau * tau * b2) /
           ((1 - tau) * (1 - tau) + tau * tau + 2 * w * tau * (1 - tau));
}

/// The point at s of a model circle through the origin, as a fraction of the chord.
inline double chordFraction(double s, double r, double arcLengthOfAll)
{
    const auto onCircle = [r](double angle) -> Vec {
        double cosine = std::cos(angle), sine = std::sin(angle);
        // The last bit of those of the standard library differs from system to system.
        if (std::abs(angle) <= biarc::LARGEST_ANGLE)
            biarc::cosineAndSine(angle, cosine, sine);
        return {r - r * cosine, r * sine, 0};
    };
    const Vec q = onCircle(s / r);
    const Vec qE = onCircle(arcLengthOfAll / r);
    const double k = norm(qE);
    const double g = dot(q, unit(qE));
    if (!(g > 1e-7))
        return 0;
    const double tau = g / k;
    if (tau < 0)
        return 0;
    if (tau > 1)
        return 1;
    return tau;
}

inline Vec pointOnArc0(const Biarc& b, double s)
{
    if (s == 0)
        return b.p0;
    if (s == b.length0)
        return b.m;
    return conic(b.p0, b.bezier0, b.m, chordFraction(s, b.radius0, b.length0));
}

inline Vec pointOnArc1(const Biarc& b, double s)
{
    if (s == 0)
        return b.m;
    if (s == b.length1)
        return b.pN;
    return conic(b.m, b.bezier1, b.pN, chordFraction(s, b.radius1, b.length1));
}

/// At most at s = length; there is no message here.
inline Vec pointOnBiarc(const Biarc& b, double s)
{
    if (b.radius0 >= 0 && b.radius1 >= 0)
        return s <= b.length0 ? pointOnArc0(b, s) : pointOnArc1(b, s - b.length0);
    return b.p0 + (b.pN - b.p0) * s / b.length;
}

inline Vec tangentOnBiarc(const Biarc& b, double s)
{
    if (b.radius0 < 0 || b.radius1 < 0)
        return unit(b.t0 + (b.tN - b.t0) * (s / b.length));
    const Vec P = pointOnBiarc(b, s);
    if (s == 0)
        return b.t0;
    if (s == b.length0)
        return b.tm;
    if (s == b.length)
        return b.tN;
    if (s <= b.length0 / 2)
        return unit(reflect(b.tm, b.m - P));
    if (s <= b.length0)
        return unit(reflect(b.t0, P - b.p0));
    if (s <= b.length0 + b.length1 / 2)
        return unit(reflect(b.tN, b.pN - P));
    return unit(reflect(b.tm, P - b.m));
}

// Curves

inline std::vector<Vec> estimatedTangents(const std::vector<Vec>& p, bool closed = false)
{
    const std::size_t n = p.size();
    std::vector<Vec> t(n);
    for (std::size_t i = 1; i + 1 < n; ++i)
        t[i] = unit(p[i + 1] - p[i - 1]);
    t[0] = closed ? unit(p[1] - p[n - 1]) : unit(p[1] - p[0]);
    t[n - 1] = closed ? unit(p[0] - p[n - 2]) : unit(p[n - 1] - p[n - 2]);
    return t;
}

/// The unit vector along `given` that does not point against `estimated`.
inline Vec alongPointOrder(Vec given, Vec estimated)
{
    if (dot(given, estimated) < 0)
        return unit(-1 * given);
    return unit(given);
}

struct Curve
{
    std::vector<Vec> points;
    std::vector<Vec> tangents;
    std::vector<Biarc> biarcs; ///< one fewer than points, as many if closed
};

inline Curve curveThrough(const std::vector<Vec>& points, const std::vector<Vec>& tangents,
                          bool closed = false)
{
    Curve curve{points, tangents, {}};
    const std::size_t n = points.size();
    for (std::size_t i = 0; i < (closed ? n : n - 1); ++i) {
        const std::size_t next = (i + 1) % n;
        curve.biarcs.push_back(matchedBiarc(points[i], tangents[i], points[next], tangents[next]));
    }
    return curve;
}

/// An open curve at equal steps of arc length from each node, the last node included.
struct Samples
{
    std::vector<Vec> points;
    std::vector<Vec> tangents;
    std::vector<double> nodeLengths; ///< one per node
    std::vector<double> rowLengths;  ///< one per sample
};

inline Samples sample(const Curve& curve, int count)
{
    Samples samples;
    double s = 0;
    for (const Biarc& biarc : curve.biarcs) {
        const double h = biarc.length / count;
        samples.nodeLengths.push_back(s);
        for (int k = 0; k < count; ++k) {
            samples.rowLengths.push_back(s);
            samples.points.push_back(pointOnBiarc(biarc, k * h));
            samples.tangents.push_back(tangentOnBiarc(biarc, k * h));
            s = s + h;
        }
    }
    samples.nodeLengths.push_back(s);
    samples.rowLengths.push_back(s);
    samples.points.push_back(curve.points.back());
    samples.tangents.push_back(curve.tangents.back());
    return samples;
}

// Meshes

/// Compared in double, stored as float.
struct Box
{
    float minimum[3];
    float maximum[3];

    Box()
    {
        std::fill_n(minimum, 3, std::numeric_limits<float>::infinity());
        std::fill_n(maximum, 3, -std::numeric_limits<float>::infinity());
    }
    void include(Vec v)
    {
        const double p[3] = {v.x, v.y, v.z};
        for (int k = 0; k < 3; ++k) {
            if (double(minimum[k]) > p[k])
                minimum[k] = float(p[k]);
            if (p[k] > double(maximum[k]))
                maximum[k] = float(p[k]);
        }
    }
};

struct Grid
{
    std::vector<std::vector<Vec>> points;  ///< [row][column]
    std::vector<std::vector<Vec>> normals; ///< [row][column]
    Box box;
    std::vector<double> nodeLengths; ///< empty if the mesh has no such table
    std::vector<double> rowLengths;
};

/// One more row: a ring from u towards v, its last column the first again.
inline void addRing(Grid& grid, Vec centre, Vec u, Vec v, double radius, int slices)
{
    std::vector<Vec> points, normals;
    const double step = 6.283185307179586 / slices;
    double angle = 0;
    for (int k = 0; k < slices; ++k) {
        normals.push_back(std::cos(angle) * u + std::sin(angle) * v);
        points.push_back(centre + radius * normals.back());
        grid.box.include(points.back());
        angle += step;
    }
    points.push_back(points[0]);
    normals.push_back(normals[0]);
    grid.box.include(points.back());
    grid.points.push_back(points);
    grid.normals.push_back(normals);
}

/// A tube around the points themselves. d2s has one angular origin per ring; there are
/// as many rings as the shorter sequence has entries.
inline Grid tube(const std::vector<Vec>& P, const std::vector<Vec>& d2s, double radius, int slices)
{
    Grid grid;
    for (std::size_t i = 0; i < std::min(P.size(), d2s.size()); ++i) {
        Vec t;
        if (i > 0)
            t = t + unit(P[i] - P[i - 1]);
        if (i + 1 < P.size())
            t = t + unit(P[i + 1] - P[i]);
        t = unit(t);
        const Vec d = unit(cross(t, d2s[i]));
        const Vec e = cross(d, t);
        addRing(grid, P[i], e, d, radius, slices);
    }
    return grid;
}

/// The tube around a biarc curve, with a section frame that is carried along.
inline Grid biarcTube(const Curve& curve, double radius, int slices, int count)
{
    const Samples samples = sample(curve, count);
    Grid grid;
    grid.nodeLengths = samples.nodeLengths;
    grid.rowLengths = samples.rowLengths;
    Vec d1 = {0, 1, 0};
    Vec d2 = {0, 0, 1};
    for (std::size_t row = 0; row < samples.points.size(); ++row) {
        const bool last = row + 1 == samples.points.size();
        const Vec t = last ? samples.tangents[row] : unit(samples.tangents[row]);
        if (std::abs(dot(d1, t)) >= 0.5) {
            d1 = unit(cross(d2, t));
            d2 = cross(t, d1);
        } else {
            d2 = unit(cross(t, d1));
            d1 = cross(d2, t);
        }
        addRing(grid, samples.points[row], d1, d2, radius, slices);
    }
    return grid;
}

/// The ribbon between two biarc curves. The tables are those of the second edge, and
/// the last row is not in the box.
inline Grid biarcRibbon(const std::vector<Vec>& edgeA, const std::vector<Vec>& edgeB, int count)
{
    const Samples a = sample(curveThrough(edgeA, estimatedTangents(edgeA)), count);
    const Samples b = sample(curveThrough(edgeB, estimatedTangents(edgeB)), count);
    Grid grid;
    grid.nodeLengths = b.nodeLengths;
    grid.rowLengths = b.rowLengths;
    for (std::size_t row = 0; row < a.points.size(); ++row) {
        const Vec side = b.points[row] - a.points[row];
        grid.points.push_back({a.points[row], b.points[row]});
        grid.normals.push_back(
            {unit(cross(side, a.tangents[row])), unit(cross(side, b.tangents[row]))});
        if (row + 1 < a.points.size()) {
            grid.box.include(a.points[row]);
            grid.box.include(b.points[row]);
        }
    }
    return grid;
}

} // namespace plain

#endif
