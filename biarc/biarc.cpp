// SPDX-License-Identifier: GPL-3.0-or-later
#include <biarc/Biarc.h>
#include <biarc/Curve.h>
#include <biarc/PKFmanip.h>
#include <biarc/Tube.h>
#include <biarc/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>

namespace {

// Below this sine squared of the angle between chord and tangent an arc is straight.
const double STRAIGHT_SINE2 = 1e-7;

template <class Vector>
Vector unit(Vector vector)
{
    vector.normalize();
    return vector;
}

// Of the arc over a chord that its tangent at the start meets at an angle of the given
// cosine.
template <class Vector>
double arcRadius(const Vector& chord, double cosine)
{
    if (STRAIGHT_SINE2 > 1 - cosine * cosine)
        return -1;
    return std::sqrt(chord.norm2() * 0.25 / (1 - cosine * cosine));
}

double arcAngle(double cosine)
{
    double half;
    biarc::arcCosine(
        cosine, [](double& square) { square = std::sqrt(square); }, half);
    return 2 * half;
}

// Where the model circle, which starts in the origin along y, is after such an angle.
void modelPoint(double radius, double angle, double& x, double& y)
{
    double cosine, sine;
    if (std::abs(angle) <= biarc::SMALL_ANGLE) {
        biarc::ofSmallAngle(angle, cosine, sine);
    } else if (std::abs(angle) <= biarc::LARGEST_ANGLE) {
        biarc::cosineAndSine(angle, cosine, sine);
    } else {
        cosine = std::cos(angle);
        sine = std::sin(angle);
    }
    x = radius - radius * cosine;
    y = radius * sine;
}

// The weight of the middle control point that makes the conic a circular arc: the
// cosine of the angle between chord and tangent.
template <class Vector>
double circleWeight(const Vector& b0, const Vector& b1, const Vector& b2)
{
    return (b1 - b0).dot(b2 - b0) / (b1 - b0).norm() / (b2 - b0).norm();
}

template <class Vector>
Vector conic(const Vector& b0, const Vector& b1, const Vector& b2, double w, double tau)
{
    const double first = (1 - tau) * (1 - tau);
    const double second = 2 * w * tau * (1 - tau);
    const double third = tau * tau;
    return (first * b0 + second * b1 + third * b2) / (first + third + second);
}

// Where the tangent lines meet at the ends of the arc that leaves `from` along
// `tangent` and ends in `to`.
template <class Vector>
Vector tangentIntersection(const Vector& from, const Vector& to, const Vector& tangent)
{
    const Vector chord = to - from;
    return from + chord.norm2() * 0.5 / chord.dot(tangent) * tangent;
}

} // namespace

PKFmanip::PKFmanip() = default;
PKFmanip::~PKFmanip() = default;

template <class Vector>
void Tube<Vector>::clear_tube()
{
    points = std::vector<Vector>();
}

// Biarc

template <class Vector>
Biarc<Vector>::Biarc(const Vector& nodePoint, const Vector& nodeTangent)
    : biarcFlag(0), point(nodePoint), tangent(unit(nodeTangent)), id(-1), curve(nullptr)
{
    radius0 = radius1 = length0 = length1 = length = std::numeric_limits<double>::quiet_NaN();
}

template <class Vector>
const Biarc<Vector>& Biarc<Vector>::next() const
{
    if (!curve) {
        std::cout << "C problem\n";
        return *this;
    }
    std::size_t index = std::size_t(id) + 1;
    if (curve->closed)
        index %= curve->biarcs.size();
    return index < curve->biarcs.size() ? curve->biarcs[index] : *this;
}

template <class Vector>
void Biarc<Vector>::setMidTangent(const Vector& midTangent)
{
    matchTangent = midTangent;
    biarcFlag = 1;
    bezier0 = tangentIntersection(point, matchPoint, tangent);
    bezier1 = tangentIntersection(matchPoint, next().point, matchTangent);
    cache();
}

template <class Vector>
void Biarc<Vector>::cache()
{
    cacheArc(point, matchPoint, tangent, radius0, length0);
    cacheArc(matchPoint, next().point, matchTangent, radius1, length1);
    length = length0 + length1;
}

// _radius, and _arclength0 or _arclength1, with what they share computed once.
template <class Vector>
void Biarc<Vector>::cacheArc(const Vector& from, const Vector& to, const Vector& t, double& radius,
                             double& arcLength) const
{
    const Vector chord = to - from;
    const double chordLength = chord.norm();
    const double cosine = (chord / chordLength).dot(t);
    radius = arcRadius(chord, cosine);
    arcLength = radius < 0 ? chordLength : radius * arcAngle(cosine);
}

template <class Vector>
Vector Biarc<Vector>::getMidPoint() const
{
    if (biarcFlag)
        return matchPoint;
    std::cerr << "Biarc::getMidPoint() : Not a valid biarc.\n";
    return point;
}

template <class Vector>
Vector Biarc<Vector>::getMidTangent() const
{
    if (biarcFlag)
        return matchTangent;
    std::cerr << "Biarc::getMidTangent() : Not a valid biarc.\n";
    return tangent;
}

template <class Vector>
Vector Biarc<Vector>::pointOnBiarc(double s) const
{
    return BiarcSampler<Vector>(*this).pointAt(s);
}

template <class Vector>
Vector Biarc<Vector>::tangentOnBiarc(double s) const
{
    return BiarcSampler<Vector>(*this).tangentAt(s);
}

template <class Vector>
ArcSampler<Vector> Biarc<Vector>::firstArc() const
{
    return {"Biarc::a0(float) : ", point, bezier0, matchPoint, radius0, length0};
}

template <class Vector>
ArcSampler<Vector> Biarc<Vector>::secondArc(const Vector& end) const
{
    return {"Biarc::a1(float) : ", matchPoint, bezier1, end, radius1, length1};
}

template <class Vector>
Vector Biarc<Vector>::pointOnArc0(double s) const
{
    return pointOnArc(firstArc(), s);
}

template <class Vector>
Vector Biarc<Vector>::pointOnArc1(double s) const
{
    return pointOnArc(secondArc(next().point), s);
}

template <class Vector>
Vector Biarc<Vector>::pointOnArc(const ArcSampler<Vector>& arc, double s) const
{
    if (s == 0)
        return arc.b0;
    if (s == arc.length)
        return arc.b2;
    return pointAtParameter(arc, arc.parameterAt(s));
}

template <class Vector>
Vector Biarc<Vector>::pointAtParameter(const ArcSampler<Vector>& arc, double tau) const
{
    if (biarcFlag && 0 <= tau && tau <= 1)
        return arc.pointAt(tau);
    std::cerr << arc.name << (biarcFlag ? "tau value problem\n" : "not a valid biarc\n");
    return Vector();
}

template <class Vector>
Vector Biarc<Vector>::a(const Vector& b0, const Vector& b1, const Vector& b2, double tau) const
{
    return conic(b0, b1, b2, circleWeight(b0, b1, b2), tau);
}

template <class Vector>
Vector Biarc<Vector>::a1(double tau) const
{
    return pointAtParameter(secondArc(next().point), tau);
}

template <class Vector>
double Biarc<Vector>::_radius(const Vector& from, const Vector& to, const Vector& t) const
{
    const Vector chord = to - from;
    return arcRadius(chord, unit(chord).dot(t));
}

template <class Vector>
double Biarc<Vector>::_angle(const Vector& from, const Vector& to, const Vector& t) const
{
    return arcAngle(unit(to - from).dot(t));
}

template <class Vector>
double Biarc<Vector>::_arclength0() const
{
    const double radius = _radius(point, matchPoint, tangent);
    return radius < 0 ? (matchPoint - point).norm() : radius * _angle(point, matchPoint, tangent);
}

template <class Vector>
double Biarc<Vector>::_arclength1() const
{
    const Vector& end = next().point;
    const double radius = _radius(matchPoint, end, matchTangent);
    return radius < 0 ? (end - matchPoint).norm() : radius * _angle(matchPoint, end, matchTangent);
}

// ArcSampler

template <class Vector>
ArcSampler<Vector>::ArcSampler(const char* evaluation, const Vector& start, const Vector& middle,
                               const Vector& end, double arcRadius, double arcLength)
    : name(evaluation),
      b0(start),
      b1(middle),
      b2(end),
      radius(arcRadius),
      length(arcLength),
      weight(circleWeight(start, middle, end))
{
    double endX, endY;
    modelPoint(radius, length / radius, endX, endY);
    chord = std::sqrt(endX * endX + endY * endY);
    chordX = endX / chord;
    chordY = endY / chord;
}

template <class Vector>
double ArcSampler<Vector>::parameterAt(double s) const
{
    double x, y;
    modelPoint(radius, s / radius, x, y);
    const double projection = x * chordX + y * chordY;
    if (projection > SMALLEST_PROJECTION)
        return std::clamp(projection / chord, 0.0, 1.0);
    return 0;
}

template <class Vector>
Vector ArcSampler<Vector>::pointAt(double tau) const
{
    return conic(b0, b1, b2, weight, tau);
}

// BiarcSampler

template <class Vector>
BiarcSampler<Vector>::BiarcSampler(const Biarc<Vector>& sampledBiarc)
    : biarc(sampledBiarc),
      nextBiarc(biarc.next()),
      arc0(biarc.firstArc()),
      arc1(biarc.secondArc(nextBiarc.point))
{}

template <class Vector>
Vector BiarcSampler<Vector>::pointAt(double s) const
{
    if (!isInside(s, "Biarc::pointOnBiarc(float) : value out of bounds\n",
                  "Biarc::pointOnBiarc(float) : Not a valid biarc\n"))
        return Vector();
    return validPoint(s);
}

template <class Vector>
Vector BiarcSampler<Vector>::tangentAt(double s) const
{
    // "val", unlike the message for points: both are kept as they always were.
    if (!isInside(s, "Biarc::tangentOnBiarc(float) : val out of bounds\n",
                  "Biarc::tangentOnBiarc(float) : Not a valid biarc\n"))
        return Vector();
    return validTangent(s, validPoint(s));
}

template <class Vector>
void BiarcSampler<Vector>::sampleAt(double s, Vector& point, Vector& tangent) const
{
    if (s > biarc.length || !biarc.biarcFlag) {
        point = pointAt(s);
        tangent = tangentAt(s);
    } else {
        point = validPoint(s);
        tangent = validTangent(s, point);
    }
}

// Whether the biarc can be evaluated at s; negative values are not refused.
template <class Vector>
bool BiarcSampler<Vector>::isInside(double s, const char* outOfBounds, const char* invalid) const
{
    if (s > biarc.length) {
        std::cerr << outOfBounds;
        return false;
    }
    if (!biarc.biarcFlag) {
        std::cerr << invalid;
        return false;
    }
    return true;
}

template <class Vector>
Vector BiarcSampler<Vector>::validPoint(double s) const
{
    const Biarc<Vector>& b = biarc;
    if (!(b.radius0 >= 0 && b.radius1 >= 0))
        return b.point + (nextBiarc.point - b.point) * s / b.length;
    return s <= b.length0 ? b.pointOnArc(arc0, s) : b.pointOnArc(arc1, s - b.length0);
}

template <class Vector>
Vector BiarcSampler<Vector>::validTangent(double s, const Vector& point) const
{
    const Biarc<Vector>& b = biarc;
    if (b.radius0 < 0 || b.radius1 < 0)
        return unit(b.tangent + (nextBiarc.tangent - b.tangent) * (s / b.length));
    if (s == 0)
        return b.tangent;
    if (s == b.length0)
        return b.matchTangent;
    if (s == b.length)
        return nextBiarc.tangent;
    if (s <= b.length0 / 2)
        return unit(b.matchTangent.reflect(b.matchPoint - point));
    if (s <= b.length0)
        return unit(b.tangent.reflect(point - b.point));
    if (s <= b.length0 + b.length1 / 2)
        return unit(nextBiarc.tangent.reflect(nextBiarc.point - point));
    return unit(b.matchTangent.reflect(point - b.matchPoint));
}

// Curve

template <class Vector>
Curve<Vector>::Curve() : closed(0)
{}

template <class Vector>
Curve<Vector>::~Curve() = default;

template <class Vector>
void Curve<Vector>::append(const Vector& point, const Vector& tangent)
{
    biarcs.emplace_back(point, tangent);
    biarcs.back().id = int(biarcs.size()) - 1;
    biarcs.back().curve = this;
}

template <class Vector>
void Curve<Vector>::computeTangents()
{
    const std::size_t n = biarcs.size();
    if (n < 2)
        return;
    const auto direction = [this](std::size_t from, std::size_t to) {
        return unit(biarcs[to].point - biarcs[from].point);
    };
    for (std::size_t i = 1; i + 1 < n; ++i)
        biarcs[i].tangent = direction(i - 1, i + 1);
    biarcs[0].tangent = closed ? direction(n - 1, 1) : direction(0, 1);
    biarcs[n - 1].tangent = closed ? direction(n - 2, 0) : direction(n - 2, n - 1);
}

template <class Vector>
void Curve<Vector>::makeMidpointRule()
{
    const std::size_t n = biarcs.size();
    const std::size_t matched = closed || n == 0 ? n : n - 1;
    for (std::size_t i = 0; i < matched; ++i) {
        Biarc<Vector>& biarc = biarcs[i];
        const Biarc<Vector>& next = biarc.next();
        const Vector& t0 = biarc.tangent;
        const Vector& t1 = next.tangent;

        const Vector d = next.point - biarc.point;
        const double chord = d.norm();
        const Vector e = d / chord;
        const double c = t0.dot(t1);
        const double a0 = e.dot(t0);
        const double a1 = e.dot(t1);
        const double root = std::sqrt(4 * a0 * a1 + 2 - 2 * c);
        const double divisor = e.dot(t0 + t1) + root;
        const double lambda = (root / 2 + a1) / divisor;

        biarc.matchPoint =
            (1 - lambda) * biarc.point + lambda * next.point + chord / (2 * divisor) * (t0 - t1);
        // The reflection of t0 in the chord from p0 to m.
        const Vector half = biarc.matchPoint - biarc.point;
        biarc.setMidTangent(2 * half.dot(t0) / half.norm2() * half - t0);
    }
}

template class Biarc<Vector3>;
template class ArcSampler<Vector3>;
template class BiarcSampler<Vector3>;
template class Curve<Vector3>;
template class Tube<Vector3>;
