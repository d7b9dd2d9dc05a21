// SPDX-License-Identifier: GPL-3.0-or-later
#include "sampling/fourAtOnce.h"

#include <biarc/trigonometry.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#include <algebra3d/Four.h>

#include "detail/runBoth.h"

using Vector = algebra3d::Vector3<double>;

namespace {

using algebra3d::all;
using algebra3d::Four;
using algebra3d::FourMasks;
using algebra3d::FourVectors;
using algebra3d::load;
using algebra3d::squareRoot;
using algebra3d::store;

typedef float FourFloats __attribute__((vector_size(16)));
typedef int FourInts __attribute__((vector_size(16)));
typedef std::uint8_t Bytes __attribute__((vector_size(16)));
typedef std::uint32_t TwoColours __attribute__((vector_size(8)));
typedef std::uint32_t EightColours __attribute__((vector_size(32)));
typedef float FourFloatsInMemory __attribute__((vector_size(16), aligned(4), may_alias));

ALWAYS_INLINE FourVectors all(const Vector3& v) { return {all(v[0]), all(v[1]), all(v[2])}; }

// That of four nodes, a component of it.
template <typename Of>
ALWAYS_INLINE FourVectors gather(const Biarc<Vector3>* nodes, Of of)
{
    const Vector3 &a = of(nodes[0]), &b = of(nodes[1]), &c = of(nodes[2]), &d = of(nodes[3]);
    return {Four{a[0], b[0], c[0], d[0]}, Four{a[1], b[1], c[1], d[1]},
            Four{a[2], b[2], c[2], d[2]}};
}

ALWAYS_INLINE void scatter(const FourVectors& v, int lane, Vector3& to)
{
    to = Vector3(v.x[lane], v.y[lane], v.z[lane]);
}

// As in biarc.cpp, formula by formula.

ALWAYS_INLINE FourVectors tangentIntersection(const FourVectors& from, const FourVectors& to,
                                              const FourVectors& tangent)
{
    const FourVectors chord = to - from;
    return from + dot(chord, chord) * 0.5 / dot(chord, tangent) * tangent;
}

struct FourArcs
{
    Four radius, length;
};

ALWAYS_INLINE FourArcs measure(const FourVectors& from, const FourVectors& to,
                               const FourVectors& tangent)
{
    const double straightSine2 = 1e-7;
    const FourVectors chord = to - from;
    const Four square = dot(chord, chord);
    const Four chordLength = squareRoot(square);
    const Four cosine = dot(chord / chordLength, tangent);
    const Four sine2 = 1 - cosine * cosine;
    const FourMasks isStraight = straightSine2 > sine2;
    const Four radius = isStraight ? all(-1) : squareRoot(square * 0.25 / sine2);
    Four half;
    biarc::arcCosine(
        cosine, [](Four& four) { four = squareRoot(four); }, half);
    return {radius, radius < 0 ? chordLength : radius * (2 * half)};
}

// Of four nodes that one more follows.
FOUR_AT_ONCE void makeMidpointRuleOfFour(Biarc<Vector3>* nodes)
{
    const auto pointOf = [](const Biarc<Vector3>& node) -> const Vector3& { return node.point; };
    const auto tangentOf = [](const Biarc<Vector3>& node) -> const Vector3& {
        return node.tangent;
    };
    const FourVectors p0 = gather(nodes, pointOf), t0 = gather(nodes, tangentOf);
    const FourVectors p1 = gather(nodes + 1, pointOf), t1 = gather(nodes + 1, tangentOf);

    const FourVectors d = p1 - p0;
    const Four chord = norm(d);
    const FourVectors e = d / chord;
    const Four c = dot(t0, t1);
    const Four a0 = dot(e, t0), a1 = dot(e, t1);
    const Four root = squareRoot(4 * a0 * a1 + 2 - 2 * c);
    const Four divisor = dot(e, t0 + t1) + root;
    const Four lambda = (root / 2 + a1) / divisor;
    const FourVectors match = (1 - lambda) * p0 + lambda * p1 + chord / (2 * divisor) * (t0 - t1);
    const FourVectors half = match - p0;
    const FourVectors tangent = 2 * dot(half, t0) / dot(half, half) * half - t0;
    const FourVectors bezier0 = tangentIntersection(p0, match, t0);
    const FourVectors bezier1 = tangentIntersection(match, p1, tangent);
    const FourArcs first = measure(p0, match, t0), second = measure(match, p1, tangent);
    const Four length = first.length + second.length;

    for (int lane = 0; lane < 4; ++lane) {
        Biarc<Vector3>& node = nodes[lane];
        node.biarcFlag = 1;
        scatter(match, lane, node.matchPoint);
        scatter(tangent, lane, node.matchTangent);
        scatter(bezier0, lane, node.bezier0);
        scatter(bezier1, lane, node.bezier1);
        node.radius0 = first.radius[lane];
        node.radius1 = second.radius[lane];
        node.length0 = first.length[lane];
        node.length1 = second.length[lane];
        node.length = length[lane];
    }
}

// BiarcSampler::sampleAt on two curved arcs, from there formula by formula. Each of four
// samples takes the numbers of the arc that it lies on. In one piece, as long as it is: its steps
// share nearly all of their values, which stay in registers. Most arcs are of small angles.
template <bool AreSmall>
ALWAYS_INLINE void sampleArcsOf(const BiarcSampler<Vector3>& sampler, double step, int begin,
                                int count, CurveSamples& samples, int at)
{
    const Biarc<Vector3>& node = sampler.getBiarc();
    const ArcSampler<Vector3>&arc0 = sampler.getArc0(), &arc1 = sampler.getArc1();
    const double halfway0 = node.length0 / 2, halfway1 = node.length0 + node.length1 / 2;
    const FourVectors t0 = all(node.tangent), tm = all(node.matchTangent),
                      tN = all(sampler.getNext().tangent);
    const Four zero = all(0), one = all(1);

    for (int i = 0; i < count; i += 4) {
        const double k = begin + i;
        const Four s = Four{k, k + 1, k + 2, k + 3} * step;
        const FourMasks onFirst = s <= node.length0;
        const auto number = [&](double ArcSampler<Vector3>::*of) {
            return onFirst ? all(arc0.*of) : all(arc1.*of);
        };
        const FourVectors b0 = select(onFirst, all(arc0.b0), all(arc1.b0));
        const FourVectors b1 = select(onFirst, all(arc0.b1), all(arc1.b1));
        const FourVectors b2 = select(onFirst, all(arc0.b2), all(arc1.b2));
        const Four radius = number(&ArcSampler<Vector3>::radius);
        const Four onArc = onFirst ? s : s - node.length0;

        Four cosine, sine;
        const Four angle = onArc / radius;
        if (AreSmall)
            biarc::ofSmallAngle(angle, cosine, sine);
        else
            biarc::cosineAndSine(angle, cosine, sine);
        const Four modelX = radius - radius * cosine;
        const Four modelY = radius * sine;
        const Four projection = modelX * number(&ArcSampler<Vector3>::chordX) +
                                modelY * number(&ArcSampler<Vector3>::chordY);
        const Four fraction = projection / number(&ArcSampler<Vector3>::chord);
        const Four atLeast0 = fraction < zero ? zero : fraction;
        const Four clamped = one < atLeast0 ? one : atLeast0;
        const Four tau = projection > arc0.SMALLEST_PROJECTION ? clamped : zero;

        const Four first = (1 - tau) * (1 - tau);
        const Four second = 2 * number(&ArcSampler<Vector3>::weight) * tau * (1 - tau);
        const Four third = tau * tau;
        FourVectors point = (first * b0 + second * b1 + third * b2) / (first + third + second);
        point = select(onArc == number(&ArcSampler<Vector3>::length), b2, point);
        point = select(onArc == zero, b0, point);

        const FourMasks nearStart = s <= (onFirst ? all(halfway0) : all(halfway1));
        const FourVectors known =
            select(nearStart, select(onFirst, tm, tN), select(onFirst, t0, tm));
        const FourVectors line = select(nearStart, b2 - point, point - b0);
        const FourVectors reflected = 2 * (dot(known, line) / dot(line, line)) * line - known;
        FourVectors tangent = reflected / norm(reflected);
        tangent = select(s == node.length, tN, tangent);
        tangent = select(s == node.length0, tm, tangent);
        tangent = select(s == zero, t0, tangent);

        store(point.x, samples.x + at + i);
        store(point.y, samples.y + at + i);
        store(point.z, samples.z + at + i);
        store(tangent.x, samples.tangentX + at + i);
        store(tangent.y, samples.tangentY + at + i);
        store(tangent.z, samples.tangentZ + at + i);
    }
}

FOUR_AT_ONCE void sampleSmallArcs(const BiarcSampler<Vector3>& sampler, double step, int begin,
                                  int count, CurveSamples& samples, int at)
{
    sampleArcsOf<true>(sampler, step, begin, count, samples, at);
}

FOUR_AT_ONCE void sampleArcs(const BiarcSampler<Vector3>& sampler, double step, int begin,
                             int count, CurveSamples& samples, int at)
{
    sampleArcsOf<false>(sampler, step, begin, count, samples, at);
}

static_assert(sizeof(Vector) == sizeof(Four) && alignof(Vector) == alignof(double),
              "a vector is its table of virtual functions and x, y, z");

// The components of a vector, behind a 0.
ALWAYS_INLINE Four components(const Vector& vector)
{
    return Four{0, vector.x, vector.y, vector.z};
}

// Constructs a vector of these values behind a 0; `made` is one that is made already, whose
// pointer to the virtual functions is copied.
ALWAYS_INLINE void construct(Vector* vector, const Four& values, const Four& made)
{
    store(__builtin_shufflevector(values, made, 4, 1, 2, 3), reinterpret_cast<double*>(vector));
}

// next() gives the frame of one ring after the other.
template <typename Next>
ALWAYS_INLINE void fillRings(const RingFiller& to, int count, Next next)
{
    const Vector zeroVector;
    const Four made = load(reinterpret_cast<const double*>(&zeroVector));

    // By value: the compiler cannot know that the vectors lie elsewhere.
    const double* const directions = to.directions;
    const std::ptrdiff_t columns = to.columns;
    const double radius = to.radius;
    Vector* point = to.points;
    Vector* normal = to.normals;
    Four low = {0, to.minimum[0], to.minimum[1], to.minimum[2]};
    Four high = {0, to.maximum[0], to.maximum[1], to.maximum[2]};
    for (int ring = 0; ring < count; ++ring) {
        Four centre, u, v;
        next(centre, u, v);
#pragma GCC unroll 4
        for (std::ptrdiff_t column = 0; column < columns; ++column) {
            const Four n = directions[2 * column] * u + directions[2 * column + 1] * v;
            const Four p = centre + radius * n;
            construct(normal++, n, made);
            construct(point++, p, made);
            low = p < low ? p : low;
            high = p > high ? p : high;
        }
    }
    for (int axis = 0; axis < 3; ++axis) {
        to.minimum[axis] = low[axis + 1];
        to.maximum[axis] = high[axis + 1];
    }
}

FOUR_AT_ONCE void fillGivenRings(const RingFiller& to, const TubeMesh::RingFrame* rings, int count)
{
    fillRings(to, count, [&](Four& centre, Four& u, Four& v) {
        centre = components(rings->centre);
        u = components(rings->u);
        v = components(rings->v);
        ++rings;
    });
}

FOUR_AT_ONCE void fillCarriedRings(const RingFiller& to, const CurveSamples& samples, Vector& d1,
                                   Vector& d2)
{
    int i = 0;
    Vector u = d1, v = d2;
    fillRings(to, samples.size, [&](Four& ringCentre, Four& ringU, Four& ringV) {
        // The next ring's frame depends on this one's: the processor computes it while
        // this ring is written.
        carryFrame(samples.tangent(i), u, v);
        ringCentre = Four{0, samples.x[i], samples.y[i], samples.z[i]};
        ringU = components(u);
        ringV = components(v);
        ++i;
    });
    d1 = u;
    d2 = v;
}

// Of each row the vectors of both columns.
ALWAYS_INLINE void constructRows(Vector* vectors, const FourVectors& a, const FourVectors& b,
                                 int rows, const Four& made)
{
    for (int i = 0; i < rows; ++i) {
        construct(vectors + 2 * i, Four{0, a.x[i], a.y[i], a.z[i]}, made);
        construct(vectors + 2 * i + 1, Four{0, b.x[i], b.y[i], b.z[i]}, made);
    }
}

// A box in each of four lanes.
struct FourBoxes
{
    FourVectors low, high;

    ALWAYS_INLINE void extend(const FourVectors& v)
    {
        low = {v.x < low.x ? v.x : low.x, v.y < low.y ? v.y : low.y, v.z < low.z ? v.z : low.z};
        high = {v.x > high.x ? v.x : high.x, v.y > high.y ? v.y : high.y,
                v.z > high.z ? v.z : high.z};
    }
    ALWAYS_INLINE void extend(const FourVectors& v, int lanes)
    {
        const FourMasks isIn = Four{0, 1, 2, 3} < double(lanes);
        const FourBoxes before = *this;
        extend(v);
        low = select(isIn, low, before.low);
        high = select(isIn, high, before.high);
    }
    void addTo(double* minimum, double* maximum) const
    {
        for (int lane = 0; lane < 4; ++lane) {
            const double least[] = {low.x[lane], low.y[lane], low.z[lane]};
            const double most[] = {high.x[lane], high.y[lane], high.z[lane]};
            for (int axis = 0; axis < 3; ++axis) {
                minimum[axis] = std::min(minimum[axis], least[axis]);
                maximum[axis] = std::max(maximum[axis], most[axis]);
            }
        }
    }
};

ALWAYS_INLINE FourVectors unitOf(const FourVectors& v)
{
    const Four length = norm(v);
    return select(length == all(0), v, v / length);
}

ALWAYS_INLINE FourVectors pointsFrom(const CurveSamples& samples, int i)
{
    return {load(samples.x + i), load(samples.y + i), load(samples.z + i)};
}

ALWAYS_INLINE FourVectors tangentsFrom(const CurveSamples& samples, int i)
{
    return {load(samples.tangentX + i), load(samples.tangentY + i), load(samples.tangentZ + i)};
}

FOUR_AT_ONCE void fillRibbonRows(const CurveSamples& edgeA, const CurveSamples& edgeB,
                                 Vector* points, Vector* normals, double* minimum, double* maximum)
{
    const Vector zeroVector;
    const Four made = load(reinterpret_cast<const double*>(&zeroVector));
    const Four infinite = all(std::numeric_limits<double>::infinity());
    FourBoxes box = {{infinite, infinite, infinite}, {-infinite, -infinite, -infinite}};
    for (int i = 0; i < edgeA.size; i += 4) {
        const int rows = std::min(edgeA.size - i, 4);
        const FourVectors a = pointsFrom(edgeA, i), b = pointsFrom(edgeB, i);
        const FourVectors across = b - a;
        const FourVectors normalA = unitOf(cross(across, tangentsFrom(edgeA, i)));
        const FourVectors normalB = unitOf(cross(across, tangentsFrom(edgeB, i)));
        if (rows == 4) {
            box.extend(a);
            box.extend(b);
            constructRows(points + 2 * i, a, b, 4, made);
            constructRows(normals + 2 * i, normalA, normalB, 4, made);
        } else {
            box.extend(a, rows);
            box.extend(b, rows);
            constructRows(points + 2 * i, a, b, rows, made);
            constructRows(normals + 2 * i, normalA, normalB, rows, made);
        }
    }
    box.addTo(minimum, maximum);
}

// The components of a vector, rounded, before a 0. Reads the pointer of the vector behind it, which
// as a number would be one that processors are slow with.
ALWAYS_INLINE void storeRounded(const Vector* vector, float* rounded)
{
    const FourMasks components = reinterpret_cast<FourMasks>(load(&vector->x));
    const auto beforeZero = reinterpret_cast<Four>(components & FourMasks{-1, -1, -1, 0});
    *reinterpret_cast<FourFloatsInMemory*>(rounded) =
        __builtin_convertvector(beforeZero, FourFloats);
}

// Each writes one float too many, in which the next one then begins.
FOUR_AT_ONCE void roundAllButLast(const Vector* points, const Vector* normals, std::size_t count,
                                  float* rounded)
{
#pragma GCC unroll 4
    for (std::size_t i = 0; i + 1 < count; ++i) {
        storeRounded(points + i, rounded + 6 * i);
        storeRounded(normals + i, rounded + 6 * i + 3);
    }
}

// The last one by itself, for nothing is written behind it.
void roundSome(const Vector* points, const Vector* normals, std::size_t count, float* rounded)
{
    if (count == 0)
        return;
    roundAllButLast(points, normals, count, rounded);
    rounded += 6 * (count - 1);
    for (const Vector* vector : {points + count - 1, normals + count - 1}) {
        for (int axis = 0; axis < 3; ++axis)
            *rounded++ = float((*vector)[axis]);
    }
}

// Red, green, blue and opacity, 0 to 255.
ALWAYS_INLINE FourInts rounded(const float* colour, float transparency)
{
    FourFloats parts = *reinterpret_cast<const FourFloatsInMemory*>(colour);
    parts[3] = 1 - transparency;
    return __builtin_convertvector(parts * 255.0F + 0.5F, FourInts) & 255;
}

// Reads the first number of the colour behind the last one.
FOUR_AT_ONCE void roundFourColours(const float* colours, std::size_t fours,
                                   const float* transparencies, std::size_t transparencyStep,
                                   std::uint32_t* to)
{
    const Bytes columns = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    for (std::size_t i = 0; i < fours; ++i, colours += 12, transparencies += 4 * transparencyStep) {
        FourInts parts = {}; // four reds, then four greens, ...
        for (int j = 0; j < 4; ++j)
            parts |= rounded(colours + 3 * j, transparencies[std::size_t(j) * transparencyStep])
                     << (8 * j);
        const Bytes bytes = __builtin_shuffle(reinterpret_cast<Bytes>(parts), columns);
        std::memcpy(to + 4 * i, &bytes, sizeof bytes);
    }
}

// From as many on as are stored at once; the last of a row overlap those before.
template <typename Colours>
ALWAYS_INLINE std::uint32_t* fillRow(std::uint32_t* to, std::size_t width, std::uint32_t colour)
{
    constexpr std::size_t atOnce = sizeof(Colours) / sizeof colour;
    const Colours all = Colours{} + colour;
    for (std::size_t j = 0; j + atOnce < width; j += atOnce)
        std::memcpy(to + j, &all, sizeof all);
    std::memcpy(to + width - atOnce, &all, sizeof all);
    return to + width;
}

FOUR_AT_ONCE void fillRows(const std::uint32_t* colours, std::size_t last, std::size_t first,
                           std::size_t step, std::size_t rows, std::size_t width, std::uint32_t* to)
{
    std::size_t index = first;
    if (width >= 8)
        for (std::size_t i = 0; i < rows; ++i, index += step)
            to = fillRow<EightColours>(to, width, colours[std::min(index, last)]);
    else if (width >= 2)
        for (std::size_t i = 0; i < rows; ++i, index += step)
            to = fillRow<TwoColours>(to, width, colours[std::min(index, last)]);
    else
        for (std::size_t i = 0; i < rows * width; ++i, index += step)
            to[i] = colours[std::min(index, last)];
}

FOUR_AT_ONCE void normalise(double* x, double* y, double* z, int count)
{
    for (int i = 0; i < count; i += 4) {
        const FourVectors unit = unitOf({load(x + i), load(y + i), load(z + i)});
        store(unit.x, x + i);
        store(unit.y, y + i);
        store(unit.z, z + i);
    }
}

} // namespace

void makeMidpointRule(Curve<Vector3>& curve)
{
    const std::size_t nodes = curve.biarcs.size();
    if (curve.closed || nodes < 5)
        return curve.makeMidpointRule();
    const std::size_t last = nodes - 5;
    for (std::size_t i = 0; i < last; i += 4)
        makeMidpointRuleOfFour(&curve.biarcs[i]);
    makeMidpointRuleOfFour(&curve.biarcs[last]); // some again
}

void sampleBiarc(const BiarcSampler<Vector3>& sampler, double step, int first, int count,
                 CurveSamples& samples)
{
    const Biarc<Vector3>& node = sampler.getBiarc();
    const int end = first + count;
    // Straight ones, and what is not finite or not valid.
    if (!sampler.isCurved() || !((end - 1) * step <= node.length && node.length <= DBL_MAX)) {
        for (int k = first; k < end; ++k) {
            Vector3 point, tangent;
            sampler.sampleAt(k * step, point, tangent);
            samples.append(point, tangent);
        }
        return;
    }

    const int at = samples.size;
    samples.size += count;
    const double angle = std::max(node.length0 / node.radius0, node.length1 / node.radius1);
    if (angle <= biarc::SMALL_ANGLE)
        sampleSmallArcs(sampler, step, first, count, samples, at);
    else
        sampleArcs(sampler, step, first, count, samples, at);
}

void normaliseTangents(CurveSamples& samples)
{
    normalise(samples.tangentX, samples.tangentY, samples.tangentZ, samples.size);
}

void fillRibbon(const CurveSamples& edgeA, const CurveSamples& edgeB, Vector* points,
                Vector* normals, double* minimum, double* maximum)
{
    fillRibbonRows(edgeA, edgeB, points, normals, minimum, maximum);
}

void roundVertices(const Vector* points, const Vector* normals, std::size_t count, float* rounded)
{
    const std::size_t half = count / 2;
    const auto round = [=](std::size_t first, std::size_t end) {
        roundSome(points + first, normals + first, end - first, rounded + 6 * first);
    };
    runBoth(
        count >= MANY_VERTICES, [=] { round(0, half); }, [=] { round(half, count); });
}

// By fours as far as there is a transparency for each, or one for all.
void roundColours(const float* colours, std::size_t count, const float* transparencies,
                  std::size_t transparencyCount, std::uint32_t* to)
{
    const std::size_t step = transparencyCount > 1 ? 1 : 0;
    const std::size_t alike = step == 0 ? count : std::min(count, transparencyCount);
    const std::size_t fours = alike == 0 ? 0 : (alike - 1) / 4;
    roundFourColours(colours, fours, transparencies, step, to);
    for (std::size_t i = 4 * fours; i < count; ++i) {
        const float* const colour = colours + 3 * i;
        const float parts[] = {colour[0], colour[1], colour[2],
                               1 - transparencies[std::min(i, transparencyCount - 1)]};
        std::uint8_t bytes[4];
        for (int j = 0; j < 4; ++j)
            bytes[j] = std::uint8_t(int(parts[j] * 255.0F + 0.5F));
        std::memcpy(to + i, bytes, sizeof bytes);
    }
}

void spreadColours(const std::uint32_t* colours, std::size_t count, std::size_t first,
                   std::size_t step, std::size_t rows, std::size_t width, std::uint32_t* to)
{
    fillRows(colours, count - 1, first, step, rows, width, to);
}

void RingFiller::fill(const TubeMesh::RingFrame* rings, int count)
{
    fillGivenRings(*this, rings, count);
}

void RingFiller::fillCarried(const CurveSamples& samples, Vector& d1, Vector& d2)
{
    fillCarriedRings(*this, samples, d1, d2);
}
