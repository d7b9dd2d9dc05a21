// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples.h"

#include <cmath>
#include <memory>
#include <random>
#include <utility>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>
#include <gsl/gsl_integration.h>
#include <gsl/gsl_math.h>
#include <gsl/gsl_sf_ellint.h>
#include <gsl/gsl_sf_elljac.h>

#include <strandview/analysis/doubleStrands.h>

namespace strandview::samples {
namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;

/// A number that depends on a curve's parameter, with its first and second derivative.
/// A plain number is a constant.
struct Jet
{
    Jet(double f, double f1 = 0, double f2 = 0) : value(f), first(f1), second(f2) {}

    double value, first, second;
};

Jet operator+(const Jet& f, const Jet& g)
{
    return {f.value + g.value, f.first + g.first, f.second + g.second};
}
Jet operator*(const Jet& f, const Jet& g)
{
    return {f.value * g.value, f.first * g.value + f.value * g.first,
            f.second * g.value + 2 * f.first * g.first + f.value * g.second};
}
Jet operator-(const Jet& f, const Jet& g) { return f + -1 * g; }

/// The chain rule, given the outer function's value and derivatives at f.
Jet composed(const Jet& f, double value, double first, double second)
{
    return {value, first * f.first, second * f.first * f.first + first * f.second};
}
Jet sin(const Jet& f)
{
    const double s = std::sin(f.value), c = std::cos(f.value);
    return composed(f, s, c, -s);
}
Jet cos(const Jet& f)
{
    const double s = std::sin(f.value), c = std::cos(f.value);
    return composed(f, c, -s, -c);
}
Jet tanh(const Jet& f)
{
    const double t = std::tanh(f.value), slope = 1 - t * t;
    return composed(f, t, slope, -2 * t * slope);
}
Jet exp(const Jet& f)
{
    const double e = std::exp(f.value);
    return composed(f, e, e, e);
}
Jet logCosh(const Jet& f)
{
    const double t = std::tanh(f.value);
    return composed(f, std::log(std::cosh(f.value)), t, 1 - t * t);
}

/// A curve's point with the first and second derivative by the curve's parameter.
struct CurvePoint
{
    CurvePoint(const Jet& x, const Jet& y, const Jet& z)
        : position(x.value, y.value, z.value),
          velocity(x.first, y.first, z.first),
          acceleration(x.second, y.second, z.second)
    {}

    double speed() const { return velocity.getNorm(); }
    Vector tangent() const { return velocity.getUnit(); }
    double curvature() const
    {
        return velocity.cross(acceleration).getNorm() / std::pow(speed(), 3);
    }

    Vector position, velocity, acceleration;
};

/// A curve as the formula of its coordinates.
using Formula = CurvePoint (*)(const Jet& parameter);

CurvePoint pointAt(Formula curve, double parameter) { return curve({parameter, 1}); }

/// The rotation with ribbon direction d2 and tangent d3; d1 = d2 x d3. Of its two
/// quaternions the one nearer to the last rotation.
void addPoint(std::vector<Vector>& points, std::vector<Quaternion>& rotations, const Vector& point,
              const Vector& d2, const Vector& d3)
{
    const Quaternion q = algebra3d::Matrix3<double>(d2.cross(d3), d2, d3).getQuaternion();
    points.push_back(point);
    rotations.push_back(rotations.empty() ? q : algebra3d::nearer(q, rotations.back()));
}

void addPoint(Rod& rod, const Vector& point, const Vector& d2, const Vector& d3)
{
    addPoint(rod.points, rod.rotations, point, d2, d3);
}

/// The arc length between two near parameters, by ten Gauss-Legendre points.
double arcLength(Formula curve, double begin, double end)
{
    static const std::unique_ptr<gsl_integration_glfixed_table,
                                 decltype(&gsl_integration_glfixed_table_free)>
        table(gsl_integration_glfixed_table_alloc(10), gsl_integration_glfixed_table_free);
    double length = 0;
    for (std::size_t i = 0; i < table->n; ++i) {
        double parameter, weight;
        gsl_integration_glfixed_point(begin, end, i, &parameter, &weight, table.get());
        length += weight * pointAt(curve, parameter).speed();
    }
    return length;
}

/// Parameters from 0 to end, ends included, at equal arc lengths; and the curve's length.
std::pair<std::vector<double>, double> equalArcLengths(Formula curve, double end, int count)
{
    double length = 0;
    for (int i = 0; i + 1 < count; ++i)
        length += arcLength(curve, end * i / (count - 1), end * (i + 1) / (count - 1));

    const double step = length / (count - 1);
    std::vector<double> parameters{0};
    while (int(parameters.size()) + 1 < count) {
        const double from = parameters.back();
        double to = from + step / pointAt(curve, from).speed();
        for (int newton = 0; newton < 6; ++newton)
            to -= (arcLength(curve, from, to) - step) / pointAt(curve, to).speed();
        parameters.push_back(to);
    }
    parameters.push_back(end);
    return {parameters, length};
}

Vector reflected(const Vector& v, const Vector& mirrorNormal)
{
    return v - mirrorNormal * (2 * v.dot(mirrorNormal) / mirrorNormal.dot(mirrorNormal));
}

/// Parallel transport of a normal along the curve by the double reflection of
/// W. Wang, B. Juettler, D. Zheng, Y. Liu, Computation of rotation minimizing
/// frames, ACM Trans. Graphics 27 (2008), article 2; of fourth order in the piece.
Vector transported(Formula curve, double from, double to, Vector normal)
{
    constexpr int pieces = 32;
    CurvePoint here = pointAt(curve, from);
    for (int i = 1; i <= pieces; ++i) {
        const CurvePoint next = pointAt(curve, from + (to - from) * i / pieces);
        const Vector chord = next.position - here.position;
        const Vector between = next.tangent() - reflected(here.tangent(), chord);
        normal = reflected(reflected(normal, chord), between);
        here = next;
    }
    return normal;
}

/// The closed curve of the given period. d2 begins against the principal normal, is
/// transported in parallel and turned about the tangent at a constant rate: of the
/// rates that close the frame the one nearest to that of so many whole turns.
Rod closedRod(Formula curve, double period, int count, int turns)
{
    const auto [parameters, length] = equalArcLengths(curve, period, count);
    const CurvePoint start = pointAt(curve, 0);
    const Vector first =
        start.velocity.cross(start.acceleration).cross(start.velocity).getUnit() * -1.0;
    std::vector<Vector> normals{first};
    for (int i = 1; i < count; ++i)
        normals.push_back(transported(curve, parameters[i - 1], parameters[i], normals.back()));

    // The holonomy: the angle from the first normal to the last, about the tangent.
    const double holonomy =
        std::atan2(first.cross(normals.back()).dot(start.tangent()), first.dot(normals.back()));
    const double twist = (2 * M_PI * turns - holonomy) / length;

    Rod rod;
    rod.scalars = {{"arclength", {}}, {"curvature", {}}, {"twist", {}}};
    for (int i = 0; i < count; ++i) {
        const double s = length * i / (count - 1);
        // The ends are one place: the last row is the first, not its neighbour in rounding.
        const bool last = i + 1 == count;
        const CurvePoint point = last ? start : pointAt(curve, parameters[i]);
        const Vector tangent = point.tangent();
        const Vector d2 = last ? first
                               : normals[i] * std::cos(twist * s) +
                                     tangent.cross(normals[i]) * std::sin(twist * s);
        addPoint(rod, point.position, d2, tangent);
        rod.scalars[0].values.push_back(s);
        rod.scalars[1].values.push_back(point.curvature());
        rod.scalars[2].values.push_back(twist);
    }
    return rod;
}

} // namespace

// Frenet frame: d1 is the principal normal, d2 the binormal.
Rod helix()
{
    constexpr double radius = 1, pitch = 1.25, turns = 5;
    constexpr int count = 201;

    const double b = pitch / (2 * M_PI), c = std::hypot(radius, b);
    Rod rod;
    rod.scalars = {{"arclength", {}}, {"curvature", {}}, {"torsion", {}}};
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * M_PI * turns * i / (count - 1);
        const double cosine = std::cos(angle), sine = std::sin(angle);
        addPoint(rod, Vector(b * angle - turns * pitch / 2, radius * cosine, radius * sine),
                 Vector(radius, b * sine, -b * cosine) * (1 / c),
                 Vector(b, -radius * sine, radius * cosine) * (1 / c));
        rod.scalars[0].values.push_back(c * angle);
        rod.scalars[1].values.push_back(radius / (c * c));
        rod.scalars[2].values.push_back(b / (c * c));
    }
    return rod;
}

// With theta the tangent's angle to the x axis and k the modulus:
// sin(theta / 2) = k sn s, theta' = 2 k cn s, x = 2 E(am s) - s, y = -2 k cn s.
Rod elastica()
{
    constexpr double k = 0.82;
    constexpr int periods = 3, count = 301;

    const double E = gsl_sf_ellint_Ecomp(k, GSL_PREC_DOUBLE);
    const double period = 4 * gsl_sf_ellint_Kcomp(k, GSL_PREC_DOUBLE);
    const double advance = 8 * E - period;
    Rod rod;
    rod.scalars = {{"arclength", {}}, {"curvature", {}}};
    for (int i = 0; i < count; ++i) {
        const double s = period * periods * i / (count - 1);
        double sn, cn, dn;
        gsl_sf_elljac_e(s, k * k, &sn, &cn, &dn);
        // am s is near 2 pi s / period, atan2 gives it without its whole turns.
        const double amplitude = std::atan2(sn, cn);
        const double turns = std::round(s / period - amplitude / (2 * M_PI));
        const double e = gsl_sf_ellint_E(amplitude, k, GSL_PREC_DOUBLE) + turns * 4 * E;
        const double cosine = 1 - 2 * k * k * sn * sn, sine = 2 * k * sn * dn;
        addPoint(rod, Vector(2 * e - s - advance * periods / 2, -2 * k * cn, 0),
                 Vector(sine, -cosine, 0), Vector(cosine, sine, 0));
        rod.scalars[0].values.push_back(s);
        rod.scalars[1].values.push_back(2 * k * cn);
    }
    return rod;
}

Rod trefoil()
{
    // Twice around the z axis, three times around the torus' core, right-handed.
    const auto curve = [](const Jet& t) {
        constexpr double coreRadius = 2, sectionRadius = 0.7, height = 0.8;
        const Jet rho = coreRadius + sectionRadius * cos(3 * t);
        return CurvePoint(rho * cos(2 * t), rho * sin(2 * t), -1 * height * sin(3 * t));
    };
    return closedRod(curve, 2 * M_PI, 301, 0);
}

Rod supercoil()
{
    const auto curve = [](const Jet& t) {
        // A flat strip of two strands, with a loop at either end.
        constexpr double radius = 0.47, loopSize = 3.4;
        const Jet x = 8.4 * cos(t) + 0.8 * cos(3 * t);
        const Jet y = radius * tanh(1.5 * sin(t)) + loopSize * sin(t) * exp(-4.5 * sin(t) * sin(t));
        // Wound about the x axis, evenly as far as the loops and by whole turns between
        // them, so that the loops lie in one plane.
        constexpr double windingEnd = 5.5, fade = 0.7, rate = 4 * M_PI / windingEnd;
        const Jet phi =
            rate * fade / 2 *
            (logCosh((x + windingEnd) * (1 / fade)) - logCosh((x - windingEnd) * (1 / fade)));
        // The x axis bent to a circle.
        constexpr double bend = 6;
        const Jet rho = bend + y * cos(phi);
        return CurvePoint(rho * sin(x * (1 / bend)), rho * cos(x * (1 / bend)), y * sin(phi));
    };
    return closedRod(curve, 2 * M_PI, 400, -2);
}

namespace {

/// A rod of so many points from the origin on, along the z axis there. Its strains, u1 and u2
/// (bending) and u3 (twist) about d1, d2 and d3, are those of the function at each arc length; the
/// frame and the centreline follow by integration.
template <typename Strain>
Rod integrated(const Strain& strainAt, double length, int count)
{
    constexpr int pieces = 64;
    Vector point, d1(1, 0, 0), d2(0, 1, 0), d3(0, 0, 1);
    Rod rod;
    const double step = length / (count - 1) / pieces;
    for (int i = 0; i < count; ++i) {
        const double s = length * i / (count - 1);
        addPoint(rod, point, d2, d3);
        // Every piece turns the frame about the fixed axis of its middle.
        for (int piece = 0; piece < pieces; ++piece) {
            const Vector v = strainAt(s + (piece + 0.5) * step);
            const Vector axis = (d1 * v.x + d2 * v.y + d3 * v.z).getUnit();
            const auto turned = [&axis](const Vector& w, double angle) {
                return algebra3d::rotated(w, algebra3d::about(axis, angle));
            };
            const double angle = v.getNorm() * step;
            point += turned(d3, angle / 2) * step;
            d1 = turned(d1, angle);
            d2 = turned(d2, angle);
            d3 = turned(d3, angle);
        }
    }
    return rod;
}

} // namespace

// The strains are random trigonometric sums.
Rod randomRod()
{
    constexpr unsigned seed = 17;
    constexpr double length = 30, bending = 4, twisting = 2;
    constexpr int modes = 6, count = 301;

    // Equal on every standard library: the engine is fixed by the C++ standard,
    // its distributions are not. In [-1, 1).
    std::mt19937_64 engine(seed);
    const auto uniform = [&engine] { return std::ldexp(double(engine() >> 11), -52) - 1; };

    struct Mode
    {
        double amplitude, phase;
    };
    Mode strain[3][modes];
    for (auto& sum : strain)
        for (Mode& mode : sum) {
            mode.amplitude = uniform() / modes;
            mode.phase = M_PI * uniform();
        }
    const auto strainAt = [&strain](double s) {
        Vector u;
        for (int i = 0; i < 3; ++i)
            for (int m = 0; m < modes; ++m)
                u[i] += (i < 2 ? bending : twisting) * strain[i][m].amplitude *
                        std::cos(2 * M_PI * (m + 1) * s / length + strain[i][m].phase);
        return u;
    };

    Rod rod = integrated(strainAt, length, count);
    rod.scalars = {{"arclength", {}}, {"curvature", {}}, {"twist", {}}};
    for (int i = 0; i < count; ++i) {
        const double s = length * i / (count - 1);
        const Vector u = strainAt(s);
        rod.scalars[0].values.push_back(s);
        rod.scalars[1].values.push_back(std::hypot(u.x, u.y));
        rod.scalars[2].values.push_back(u.z);
    }
    return rod;
}

// Curled up to its tip, and then less and less.
std::vector<Rod> arm()
{
    constexpr double length = 1;
    constexpr int frames = 5, elements = 30;
    std::vector<Rod> all;
    for (int frame = 0; frame < frames; ++frame) {
        const double share = 1 - double(frame) / frames;
        const auto strainAt = [share](double s) { return Vector(share * (2 + 14 * s), 0, 3); };
        const Rod fine = integrated(strainAt, length, 2 * elements + 1);
        Rod& rod = all.emplace_back();
        for (int i = 0; i <= elements; ++i) {
            rod.points.push_back(fine.points[2 * i]);
            if (i < elements)
                rod.rotations.push_back(fine.rotations[2 * i + 1]);
        }
    }
    return all;
}

// An alpha helix has 3.6 residues a turn and a rise of 1.5 each (L. Pauling, R. B. Corey,
// H. R. Branson, The structure of proteins, Proc. Natl. Acad. Sci. USA 37, 1951, 205-211).
std::vector<Rod> pulledHelix()
{
    constexpr int frames = 4, residues = 30;
    constexpr double bond = 3.8, turn = 2 * M_PI / 3.6;
    std::vector<Rod> all;
    for (int frame = 0; frame < frames; ++frame) {
        const double rise = 1.5 + 0.5 * frame;
        const double radius = std::sqrt(bond * bond - rise * rise) / (2 * std::sin(turn / 2));
        Rod& rod = all.emplace_back();
        for (int i = 0; i < residues; ++i)
            rod.points.emplace_back(rise * i, radius * std::cos(turn * i),
                                    radius * std::sin(turn * i));
    }
    return all;
}

// Each fibre is an arc of a circle that begins near the origin. They grow at their tips.
std::vector<std::vector<Rod>> aster()
{
    constexpr int frames = 3, fibres = 7;
    constexpr double spacing = 0.25;
    std::vector<std::vector<Rod>> all;
    for (int frame = 0; frame < frames; ++frame) {
        std::vector<Rod>& rods = all.emplace_back(fibres);
        for (int k = 0; k < fibres; ++k) {
            const double place = 2 * M_PI * k / fibres, curvature = 0.4 * std::cos(3 * k);
            const double lift = 0.3 * std::sin(5 * k);
            const Vector outwards(std::cos(place), std::sin(place), 0);
            const Vector across(-outwards.y, outwards.x, 0);
            for (int i = 0; i < 8 + k % 3 + 2 * frame; ++i) {
                const double s = spacing * i, angle = curvature * s / 2;
                const double chord = i == 0 ? 0 : std::sin(angle) / (curvature / 2);
                rods[k].points.push_back(outwards * (0.3 + chord * std::cos(angle)) +
                                         across * (chord * std::sin(angle)) +
                                         Vector(0, 0, lift * s));
            }
        }
    }
    return all;
}

namespace {

/// Turned so that the diagonal (1, 1, 1) comes to the z axis.
CurvePoint diagonalUp(const Jet& x, const Jet& y, const Jet& z)
{
    return CurvePoint((x - y) * std::sqrt(1 / 2.0), (x + y - 2 * z) * std::sqrt(1 / 6.0),
                      (x + y + z) * std::sqrt(1 / 3.0));
}

} // namespace

// Three ellipses in orthogonal planes: no two are linked, all three are.
std::vector<Rod> borromeanRings()
{
    static constexpr double longAxis = 2.6, shortAxis = 1.6;
    constexpr int count = 73;
    const auto inXY = [](const Jet& t) {
        return diagonalUp(longAxis * cos(t), shortAxis * sin(t), 0);
    };
    const auto inYZ = [](const Jet& t) {
        return diagonalUp(0, longAxis * cos(t), shortAxis * sin(t));
    };
    const auto inZX = [](const Jet& t) {
        return diagonalUp(shortAxis * sin(t), 0, longAxis * cos(t));
    };
    return {closedRod(inXY, 2 * M_PI, count, 0), closedRod(inYZ, 2 * M_PI, count, 0),
            closedRod(inZX, 2 * M_PI, count, 0)};
}

namespace {

constexpr double RISE = 3.38; ///< from pair to pair along the axis, in Angstrom

/// A base pair: its middle and its directors. d3 is along the helix, d2 along the pair
/// from the base of strand 2 to that of strand 1, d1 into the major groove.
struct Pair
{
    Vector middle, d1, d2, d3;

    Vector at(double x, double y) const { return middle + d1 * x + d2 * y; }
};

/// The pair at a place of the axis, with d1 turned from the normal by the angle.
Pair pairAt(const Vector& middle, const Vector& tangent, const Vector& normal, double angle)
{
    const Vector d1 = normal * std::cos(angle) + tangent.cross(normal) * std::sin(angle);
    return {middle, d1, tangent.cross(d1), tangent};
}

/// A place of the circle about the z axis, turned there by the angle against outwards.
Pair pairOnCircle(double radius, double place, double angle)
{
    const Vector outwards(std::cos(place), std::sin(place), 0);
    return pairAt(outwards * radius, Vector(-outwards.y, outwards.x, 0), outwards, angle);
}

/// The bases are in the pair's place, where those of flat pairs meet, turned about d2
/// against each other by the propeller twist.
void addPair(Dna& dna, char base, const Pair& pair, double propeller)
{
    const auto turnedD3 = [&pair](double angle) {
        return pair.d3 * std::cos(angle) + pair.d1 * std::sin(angle);
    };
    dna.bases += base;
    addPoint(dna.pairPoints, dna.pairRotations, pair.middle, pair.d2, pair.d3);
    addPoint(dna.points1, dna.rotations1, pair.middle, pair.d2, turnedD3(propeller / 2));
    addPoint(dna.points2, dna.rotations2, pair.middle, pair.d2, turnedD3(-propeller / 2));
}

// The first crystal structure of B-DNA was of this dodecamer: R. Wing et al., Crystal
// structure analysis of a complete turn of B-DNA, Nature 287, 1980, 755-758.
constexpr char DODECAMER[] = "CGCGAATTCGCG";

} // namespace

Dna straightDna()
{
    constexpr int count = 60, pairsPerTurn = 10;
    Dna dna;
    for (int i = 0; i < count; ++i) {
        const Vector middle(RISE * i - RISE * (count - 1) / 2, 0, 0);
        const double angle = 2 * M_PI * i / pairsPerTurn;
        addPair(dna, DODECAMER[i % 12], pairAt(middle, Vector(1, 0, 0), Vector(0, 1, 0), angle), 0);
    }
    return dna;
}

// A quarter of a circle. Runs of A in phase with the helix, as in DNA that is bent.
Dna bentDna()
{
    constexpr int count = 60, pairsPerTurn = 10;
    constexpr double bend = M_PI / 2, propeller = -11 * M_PI / 180;
    const double radius = RISE * (count - 1) / bend;
    Dna dna;
    for (int i = 0; i < count; ++i) {
        const double place = M_PI / 4 + bend * i / (count - 1);
        addPair(dna, "AAAAAACGGC"[i % 10], pairOnCircle(radius, place, 2 * M_PI * i / pairsPerTurn),
                propeller);
    }
    return dna;
}

namespace {

// The minicircle: the pairs round it, how often the strands are linked, and its axis.
constexpr int CIRCLE_PAIRS = 84, CIRCLE_LINK = 8;
constexpr double CIRCLE_RADIUS = RISE * CIRCLE_PAIRS / (2 * M_PI);

/// Behind the last pair comes the first one again.
Pair pairOfCircle(int index)
{
    const double turn = 2 * M_PI * (index % CIRCLE_PAIRS) / CIRCLE_PAIRS;
    return pairOnCircle(CIRCLE_RADIUS, turn, CIRCLE_LINK * turn);
}

/// From its 5' end on; strand 2 runs against the pairs. The phosphorus atoms of B-DNA are near
/// (-3, +-8.9) of their pairs' frames.
Rod backboneOfCircle(bool isFirst)
{
    constexpr double phosphorusX = -3, phosphorusY = 8.9;
    // How a vector of the pair turns on its way along the axis, per length.
    const Vector bending = Vector(0, 0, 1) * (1 / CIRCLE_RADIUS);
    constexpr double twisting = CIRCLE_LINK / CIRCLE_RADIUS;
    Rod backbone;
    backbone.isClosed = backbone.isBackbone = true;
    backbone.molecule = 1;
    for (int i = 0; i <= CIRCLE_PAIRS; ++i) {
        const Pair pair = pairOfCircle(isFirst ? i : CIRCLE_PAIRS - i);
        const Vector point = pair.at(phosphorusX, isFirst ? phosphorusY : -phosphorusY);
        const Vector outwards = point - pair.middle;
        const Vector along = (pair.d3 + (bending + pair.d3 * twisting).cross(outwards)).getUnit();
        const Vector d3 = isFirst ? along : along * -1.0;
        addPoint(backbone, point, (outwards - d3 * outwards.dot(d3)).getUnit(), d3);
    }
    return backbone;
}

} // namespace

Configuration minicircle()
{
    constexpr double baseX = -0.24, baseY = 2.6; // the middles of the bases, near that
    Configuration configuration;
    configuration.rods = {backboneOfCircle(true), backboneOfCircle(false)};
    Dna& dna = configuration.dnas.emplace_back();
    dna.isClosed = true;
    dna.molecule = 1;
    Birod& birod = configuration.birods.emplace_back();
    for (int i = 0; i <= CIRCLE_PAIRS; ++i) {
        const Pair pair = pairOfCircle(i);
        if (i < CIRCLE_PAIRS)
            addPair(dna, DODECAMER[i % 12], pair, 0);
        addPoint(birod.points, birod.rotations, pair.middle, pair.d2, pair.d3);
        addPoint(birod.points1, birod.rotations1, pair.at(baseX, baseY), pair.d2, pair.d3);
        addPoint(birod.points2, birod.rotations2, pair.at(baseX, -baseY), pair.d2, pair.d3);
    }
    return configuration;
}

// The path of DNA in the nucleosome is a left-handed superhelix of radius 41.9 and pitch 25.9,
// with 1.67 turns of 133.6 pairs (T. J. Richmond, C. A. Davey, The structure of DNA in the
// nucleosome core, Nature 423, 2003, 145-150); its DNA has 10.2 pairs a turn.
Dna superhelix()
{
    constexpr int count = 134;
    constexpr double radius = 41.9, pitch = 25.9, pairsPerTurn = 10.2;
    const double length = 2 * M_PI * std::hypot(radius, pitch / (2 * M_PI)); // of a turn
    Dna dna;
    for (int i = 0; i < count; ++i) {
        const double place = 2 * M_PI * RISE * i / length;
        const Vector outwards(std::cos(place), -std::sin(place), 0);
        const Vector around(-std::sin(place), -std::cos(place), 0);
        const Vector tangent = around * (2 * M_PI * radius / length) + Vector(0, 0, pitch / length);
        const Vector middle = outwards * radius + Vector(0, 0, pitch * place / (2 * M_PI));
        addPair(dna, UNKNOWN_BASE, pairAt(middle, tangent, outwards, 2 * M_PI * i / pairsPerTurn),
                0);
    }
    return dna;
}

namespace {

/// Adds a nucleotide to the strand of the last one, or to the next strand.
void addNucleotide(std::vector<Nucleotide>& all, char base, const BaseFrame& frame, bool isFirst)
{
    Nucleotide one;
    one.base = base;
    one.frame = frame;
    if (!all.empty()) {
        one.strand = all.back().strand + (isFirst ? 1 : 0);
        if (!isFirst) {
            one.previous = all.size() - 1;
            all.back().next = all.size();
        }
    }
    all.push_back(one);
}

/// Of strand 1 of a straight B-DNA along the z axis, ten pairs a turn.
BaseFrame frameInStack(int index)
{
    const Vector up(0, 0, 1);
    return {up * (RISE * index), algebra3d::about(up, 2 * M_PI * index / 10)};
}

} // namespace

std::vector<Nucleotide> stickyEnd()
{
    std::vector<Nucleotide> all;
    const std::string letters = std::string(DODECAMER) + "TT";
    for (int i = 0; i < int(letters.size()); ++i)
        addNucleotide(all, letters[i], frameInStack(i), i == 0);
    for (int i = 11; i >= 0; --i)
        addNucleotide(all, complementOf(DODECAMER[i]), turnedOver(frameInStack(i)), i == 11);
    return all;
}

// Backbones of oxDNA are a unit of 8.518 off the axis. The loop's go on between those of the last
// pair, on a circle about a place above it, with the same distance from one to the next.
std::vector<Nucleotide> hairpin()
{
    constexpr char stem[] = "GCATCGAGTCAC";
    constexpr int pairs = 12, loop = 6;
    constexpr double unit = 8.518, radius = 1.21 * unit;
    const double height = std::sqrt(radius * radius - unit * unit);
    const double opening = std::asin(unit / radius); // half of the angle that the circle leaves out
    const BaseFrame last = frameInStack(pairs - 1);
    const Vector up(0, 0, 1), side = algebra3d::rotated(Vector(0, 1, 0), last.rotation);

    std::vector<Nucleotide> all;
    for (int i = 0; i < pairs; ++i)
        addNucleotide(all, stem[i], frameInStack(i), i == 0);
    for (int i = 1; i <= loop; ++i) {
        // From the bottom of the circle round over its top.
        const double angle = opening + (2 * M_PI - 2 * opening) * i / (loop + 1);
        const Vector outwards = side * std::sin(angle) - up * std::cos(angle);
        const Vector along = side * std::cos(angle) + up * std::sin(angle);
        const Vector base = last.point + up * height + outwards * (radius + unit);
        const Vector d2 = outwards * -1.0;
        addNucleotide(
            all, 'T',
            {base, algebra3d::Matrix3<double>(d2.cross(along), d2, along).getQuaternion()}, false);
    }
    for (int i = pairs - 1; i >= 0; --i)
        addNucleotide(all, complementOf(stem[i]), turnedOver(frameInStack(i)), false);
    return all;
}

// A clock of markers, arrows to every second of them, and frames along the z axis.
Configuration glyphs()
{
    constexpr const char* colours[] = {"tomato", "gold", "yellowgreen", "steelblue", "#9932cc"};
    Configuration configuration;
    for (int i = 0; i < 12; ++i) {
        const double angle = 2 * M_PI * i / 12;
        const Vector outwards(std::sin(angle), std::cos(angle), 0);
        Marker marker;
        marker.point = outwards * 3.0;
        marker.shape = static_cast<Marker::Shape>(i % 3);
        marker.size = 0.35 + 0.05 * i;
        marker.colour.emplace(colours[i % 5]);
        marker.transparency = 0.25 * (i / 3);
        marker.id = i == 0 ? 12 : i;
        configuration.markers.push_back(marker);
        if (i % 2 == 1)
            continue;
        Arrow arrow;
        arrow.from = outwards * 0.5;
        arrow.to = outwards * 2.5;
        arrow.radius = 0.05;
        arrow.colour.emplace(colours[i % 5]);
        configuration.arrows.push_back(arrow);
    }
    for (int i = 0; i < 5; ++i) {
        Frame frame;
        frame.point = Vector(0, 0, i - 2);
        frame.rotation = algebra3d::about(Vector(0, 0, 1), i * M_PI / 6);
        frame.size = 0.8;
        configuration.frames.push_back(frame);
    }
    return configuration;
}

} // namespace strandview::samples
