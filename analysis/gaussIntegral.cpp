// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/gaussIntegral.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <future>
#include <limits>
#include <numeric>
#include <thread>

#include <algebra3d/Four.h>

namespace strandview {

namespace {

using algebra3d::all;
using algebra3d::Four;
using algebra3d::FourVectors;
using algebra3d::load;
using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;
using Values = std::vector<double>;

const double PI = std::acos(-1.0);
/// Tangents up to that have their angle by a short series.
constexpr double SMALL_TANGENT = 1.0 / 16;
/// How far apart two edges may be because coordinates up to 2 are rounded.
constexpr double ROUNDING = 32 * std::numeric_limits<double>::epsilon();
/// How the rows of the sum are dealt out: as many parts on every machine, so that sums are the
/// same.
constexpr std::size_t PARTS = 16;

/// A curve by coordinates, for four edges at once: behind its end the last point comes again,
/// thrice.
struct Curve
{
    Values x, y, z;
    std::size_t edges;

    Curve(const Points& points, double scale) : edges(points.empty() ? 0 : points.size() - 1)
    {
        for (std::size_t i = 0; i < points.size() + 3 && !points.empty(); ++i) {
            const Vector& point = points[std::min(i, edges)];
            x.push_back(point.x * scale);
            y.push_back(point.y * scale);
            z.push_back(point.z * scale);
        }
    }
    FourVectors four(std::size_t first) const
    {
        return {load(&x[first]), load(&y[first]), load(&z[first])};
    }
    FourVectors fourTimes(std::size_t point) const
    {
        return {all(x[point]), all(y[point]), all(z[point])};
    }
};

/// A power of two, which changes no digit, that brings all coordinates to 1 at most: products of
/// six lengths neither over- nor underflow then.
double scaleOf(const Points& first, const Points& second)
{
    double largest = 0;
    for (const Points* points : {&first, &second})
        for (const Vector& point : *points)
            largest = std::max({largest, std::abs(point.x), std::abs(point.y), std::abs(point.z)});
    return largest > 0 && std::isfinite(largest) ? std::exp2(-std::ilogb(largest)) : 1;
}

/// Of small tangents, within their rounding.
ALWAYS_INLINE Four arcTangents(const Four& t)
{
    const Four s = t * t;
    return t * (1 - s * (1.0 / 3 - s * (1.0 / 5 - s * (1.0 / 7 - s * (1.0 / 9 - s * (1.0 / 11))))));
}

/// Edges in one plane have a triple product of 0, or what rounding leaves of it, which beside a
/// negative cosine would be half a turn.
double angleOf(double cosine, double sine, double triple, double rounding)
{
    return std::abs(triple) <= rounding ? 0 : std::atan2(sine, cosine);
}

/// Half of the solid angle of an edge and four others, which is their sum over the two triangles:
/// the angle of the product of two complex numbers with the same imaginary part.
ALWAYS_INLINE Four halfAngles(const FourVectors& start, const FourVectors& end,
                              const FourVectors& otherStart, const FourVectors& otherEnd)
{
    const FourVectors r13 = otherStart - start, r14 = otherEnd - start;
    const FourVectors r23 = otherStart - end, r24 = otherEnd - end;
    const Four n13 = norm(r13), n14 = norm(r14), n23 = norm(r23), n24 = norm(r24);
    const Four across = n13 * n24 + dot(r13, r24);
    const Four real1 = n14 * across + dot(r13, r14) * n24 + dot(r14, r24) * n13;
    const Four real2 = n23 * across + dot(r13, r23) * n24 + dot(r23, r24) * n13;
    const FourVectors edge = end - start, other = otherEnd - otherStart;
    const Four triple = dot(cross(other, edge), r13);
    const Four cosine = real1 * real2 - triple * triple, sine = triple * (real1 + real2);
    const Four size = sine < 0 ? -sine : sine;
    if (algebra3d::areAll(size < SMALL_TANGENT * cosine))
        return arcTangents(sine / cosine);
    const Four rounding = ROUNDING * norm(edge) * norm(other);
    Four angles = all(0);
    for (int i = 0; i < 4; ++i)
        angles[i] = angleOf(cosine[i], sine[i], triple[i], rounding[i]);
    return angles;
}

/// Of an edge with those of a curve from `first` on, four at a time, added to those of each, if
/// anybody wants them.
FOUR_AT_ONCE double sumOfRow(const Curve& curve, std::size_t edge, const Curve& others,
                             std::size_t first, double* ofOthers)
{
    const FourVectors start = curve.fourTimes(edge), end = curve.fourTimes(edge + 1);
    Four sum = all(0);
    for (std::size_t i = first; i < others.edges; i += 4) {
        const Four angles = halfAngles(start, end, others.four(i), others.four(i + 1));
        sum += angles;
        if (ofOthers)
            algebra3d::store(load(ofOthers + i) + angles, ofOthers + i);
    }
    return sum[0] + sum[1] + sum[2] + sum[3];
}

/// Whether several threads are to stop: who made it asks, all others look.
class Stop
{
public:
    explicit Stop(const GoOn& shallGoOn) : goOn(shallGoOn) {}

    bool isAsked()
    {
        if (goOn && std::this_thread::get_id() == asking && !goOn())
            stopped = true;
        return stopped;
    }

private:
    const GoOn& goOn;
    const std::thread::id asking = std::this_thread::get_id();
    std::atomic<bool> stopped{false};
};

/// Calls work(part) for each part, by as many threads as there are processors where it is much.
template <typename Work>
void forEachPart(bool isMuch, Work work)
{
    const std::size_t threads =
        isMuch ? std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, PARTS) : 1;
    const auto run = [&work, threads](std::size_t thread) {
        for (std::size_t part = thread; part < PARTS; part += threads)
            work(part);
    };
    std::vector<std::future<void>> others;
    for (std::size_t thread = 1; thread < threads; ++thread)
        others.push_back(std::async(std::launch::async | std::launch::deferred, run, thread));
    run(0);
    for (std::future<void>& other : others)
        other.get();
}

double sumOf(const Values& values) { return std::accumulate(values.begin(), values.end(), 0.0); }

} // namespace

std::vector<double> gaussIntegralOfEdges(const Points& points, const GoOn& goOn)
{
    Stop stop(goOn);
    const Curve curve(points, scaleOf(points, {}));
    const std::size_t room = curve.edges + 3;
    std::vector<Values> sums(PARTS);
    forEachPart(points.size() >= POINTS_FOR_THREADS, [&](std::size_t part) {
        Values ofPart(room);
        // Two edges that follow each other lie in one plane.
        for (std::size_t edge = part; edge < curve.edges && !stop.isAsked(); edge += PARTS)
            ofPart[edge] += sumOfRow(curve, edge, curve, edge + 2, ofPart.data());
        sums[part] = std::move(ofPart);
    });
    if (stop.isAsked())
        return {};
    Values integrals(curve.edges);
    for (std::size_t edge = 0; edge < curve.edges; ++edge) {
        for (const Values& ofPart : sums)
            integrals[edge] += ofPart[edge];
        integrals[edge] /= 2 * PI;
    }
    return integrals;
}

double gaussIntegral(const Points& points) { return sumOf(gaussIntegralOfEdges(points)); }

double gaussIntegral(const Points& first, const Points& second)
{
    const double scale = scaleOf(first, second);
    const Curve curve(first, scale), others(second, scale);
    Values sums(PARTS);
    forEachPart(std::max(first.size(), second.size()) >= POINTS_FOR_THREADS, [&](std::size_t part) {
        for (std::size_t edge = part; edge < curve.edges; edge += PARTS)
            sums[part] += sumOfRow(curve, edge, others, 0, nullptr);
    });
    return sumOf(sums) / (2 * PI);
}

std::optional<long long> linkingNumber(const Points& first, const Points& second)
{
    for (const Points* points : {&first, &second}) {
        if (points->empty())
            return {};
        const Vector gap = points->back() - points->front();
        if (gap.dot(gap) != 0)
            return {};
    }
    const double integral = gaussIntegral(first, second);
    const double whole = std::round(integral);
    return std::abs(integral - whole) <= 1e-6 ? std::optional((long long)whole) : std::nullopt;
}

} // namespace strandview
