// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef BIARC_BIARC_H
#define BIARC_BIARC_H

#include <biarc/Vector3.h>

template <class Vector>
class BIARC_EXPORT ArcSampler;
template <class Vector>
class BIARC_EXPORT BiarcSampler;
template <class Vector>
class BIARC_EXPORT Curve;

/// One node of a curve and the biarc that leaves it: two circular arcs, from the
/// node's point p0 (tangent t0) to the matching point m (matching tangent tm) and
/// from there to the next node's point pN (tangent tN).
///
/// pN and tN are not stored: they belong to the next biarc of the owning curve,
/// in a closed curve the one after the last is the first. An operation that needs
/// them before the biarc is appended to a curve writes "C problem\n" to standard
/// output; its result then means nothing.
///
/// Bad calls are not errors. They write one line to standard error and give the
/// zero vector. Coincident points and opposite tangents give numbers that are not
/// finite, without a message. Only Vector3 is instantiated.
///
/// It refers to its curve without owning it, and goes with it. Threads: see Curve.
template <class Vector>
class BIARC_EXPORT Biarc
{
public:
    int biarcFlag;        ///< 1 once a matching tangent is set: only then is the biarc valid
    Vector point;         ///< p0
    Vector tangent;       ///< t0, a unit vector
    Vector matchPoint;    ///< m
    Vector matchTangent;  ///< tm
    Vector bezier0;       ///< middle control point of the first arc
    Vector bezier1;       ///< middle control point of the second arc
    int id;               ///< index in the curve, -1 until appended
    Curve<Vector>* curve; ///< the owning curve, null until appended
    double radius0;       ///< of the first arc; -1 marks a straight one
    double radius1;       ///< of the second arc; -1 marks a straight one
    double length0;       ///< arc length of the first arc
    double length1;       ///< arc length of the second arc
    double length;        ///< length0 + length1; like the other four not-a-number until cache()

    /// A node that belongs to no curve yet. The tangent is normalised, unguarded: a zero
    /// one is not-a-number until the curve computes its tangents.
    Biarc(const Vector& nodePoint, const Vector& nodeTangent);

    // Building

    /// Makes the biarc valid: stores tm, and from it and matchPoint the control
    /// points, where the tangent lines at the two ends of each arc meet. Ends with
    /// cache().
    void setMidTangent(const Vector& midTangent);
    /// Recomputes both radii and the three lengths.
    void cache();

    /// m and tm. Of a biarc that is not valid: a line on standard error, and p0, t0.
    Vector getMidPoint() const;
    Vector getMidTangent() const;

    /// The biarc that follows in the curve, whose point and tangent are pN and tN; this
    /// one where there is none.
    const Biarc& next() const;

    // Evaluation, s being the arc length from p0 in [0, length]

    /// The point at s. It is found at the chord fraction of a circle's point and so
    /// lies on the arc, close to but not exactly at arc length s. If either arc is
    /// straight, the whole biarc is taken as the segment from p0 to pN.
    Vector pointOnBiarc(double s) const;
    /// The unit tangent at s: a known end tangent reflected in the chord from that
    /// end to the point, always from the end that is farther away.
    Vector tangentOnBiarc(double s) const;

    /// The point at arc length s from p0 on the first, or from m on the second arc.
    Vector pointOnArc0(double s) const;
    Vector pointOnArc1(double s) const;

    /// The rational quadratic Bezier curve with end points b0 and b2, middle control
    /// point b1 and the weight that makes it a circular arc, at tau in [0, 1]
    /// (G. Farin, Curves and Surfaces for CAGD, conics in standard form).
    Vector a(const Vector& b0, const Vector& b1, const Vector& b2, double tau) const;
    /// That curve for the second arc.
    Vector a1(double tau) const;

    // Geometry of the arc from a to b that is tangent to t in a

    /// Its radius; -1 if it is straight.
    double _radius(const Vector& a, const Vector& b, const Vector& t) const;
    /// Its central angle in radians.
    double _angle(const Vector& a, const Vector& b, const Vector& t) const;
    /// The arc lengths of this biarc's arcs.
    double _arclength0() const;
    double _arclength1() const;

private:
    friend class BiarcSampler<Vector>;

    void cacheArc(const Vector& from, const Vector& to, const Vector& t, double& radius,
                  double& arcLength) const;
    ArcSampler<Vector> firstArc() const;
    ArcSampler<Vector> secondArc(const Vector& end) const;
    Vector pointOnArc(const ArcSampler<Vector>& arc, double s) const;
    Vector pointAtParameter(const ArcSampler<Vector>& arc, double tau) const;
};

/// One circular arc made ready for evaluation at many arc lengths.
template <class Vector>
class BIARC_EXPORT ArcSampler
{
public:
    const char* name;  ///< of the evaluation, in messages
    Vector b0, b1, b2; ///< control points: b0 is the start, b2 the end
    double radius;
    double length;
    double chord;          ///< of the model circle's arc, which starts in the origin along y
    double chordX, chordY; ///< its unit direction
    double weight;         ///< of b1

    ArcSampler(const char* evaluation, const Vector& start, const Vector& middle, const Vector& end,
               double arcRadius, double arcLength);

    /// The Bezier parameter for arc length s: a model circle's point is projected on
    /// the chord, and the chord fraction taken, clamped to [0, 1].
    double parameterAt(double s) const;
    /// Biarc::a for these control points.
    Vector pointAt(double tau) const;

    /// A projection on the chord that is not above this counts as none.
    static constexpr double SMALLEST_PROJECTION = 1e-7;
};

/// Evaluates one biarc at many arc lengths: the same points and tangents, bit for
/// bit, as Biarc::pointOnBiarc and Biarc::tangentOnBiarc give, and the same
/// messages. What the samples have in common is computed once, and a tangent is
/// made from its point. The biarc must not change or move meanwhile.
template <class Vector>
class BIARC_EXPORT BiarcSampler
{
public:
    explicit BiarcSampler(const Biarc<Vector>& sampledBiarc);

    Vector pointAt(double s) const;
    Vector tangentAt(double s) const;
    /// Both at once.
    void sampleAt(double s, Vector& point, Vector& tangent) const;

    /// Whether both arcs are curved: only then are the points those of the arcs.
    bool isCurved() const { return biarc.biarcFlag && biarc.radius0 >= 0 && biarc.radius1 >= 0; }
    const Biarc<Vector>& getBiarc() const { return biarc; }
    const Biarc<Vector>& getNext() const { return nextBiarc; }
    const ArcSampler<Vector>& getArc0() const { return arc0; }
    const ArcSampler<Vector>& getArc1() const { return arc1; }

private:
    bool isInside(double s, const char* outOfBounds, const char* invalid) const;
    Vector validPoint(double s) const;
    Vector validTangent(double s, const Vector& point) const;

    const Biarc<Vector>& biarc;
    const Biarc<Vector>& nextBiarc;
    ArcSampler<Vector> arc0, arc1;
};

extern template class Biarc<Vector3>;
extern template class ArcSampler<Vector3>;
extern template class BiarcSampler<Vector3>;

#endif
