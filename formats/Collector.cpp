// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/Collector.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include <algebra3d/rotations.h>

#include <strandview/analysis/elements.h>
#include <strandview/analysis/parallelTransport.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/text/wording.h>
#include <strandview/model/points.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;
using Rotations = std::vector<algebra3d::Quaternion<double>>;

/// A frame follows its rod if d3 is within 60 degrees of the points' direction, on
/// average. Sheared rods do; quaternions that are meant in another way do not.
constexpr double SMALLEST_MEAN_TANGENCY = 0.5;

using Indices = std::vector<std::size_t>;

/// Points of some curves, all of one length.
struct Curves
{
    explicit Curves(std::vector<const Points*> allCurves) : curves(std::move(allCurves))
    {
        for (const Points* points : curves) {
            const Edges edges = measureEdges(*points);
            smallestEdges.push_back(edges.smallest);
            areAllApart = areAllApart && edges.areLong;
        }
    }

    /// Whether the points of both indices are in different places in every curve.
    bool areApart(std::size_t i, std::size_t j) const
    {
        for (std::size_t c = 0; c < curves.size(); ++c) {
            const Vector &a = (*curves[c])[i], &b = (*curves[c])[j];
            if (areCoincident(a, b) || (b - a).getNorm() < smallestEdges[c])
                return false;
        }
        return true;
    }

    std::size_t size() const { return curves.front()->size(); }

    std::vector<const Points*> curves;
    std::vector<double> smallestEdges; ///< of each
    bool areAllApart = true;           ///< each point from the one before, in every curve
};

/// Which of some points are kept.
struct Kept
{
    std::size_t count;
    Indices indices; ///< of those, unless all are kept
};

/// Those that are in no curve at the place of the one before. Of a single curve they are two if
/// any two were distinct, since the far end of an edge of mean length or more is one of them.
Kept distinctPoints(const Curves& curves)
{
    if (curves.areAllApart)
        return {curves.size(), {}};
    std::size_t apart = std::min<std::size_t>(1, curves.size()); // before the first that is not
    while (apart < curves.size() && curves.areApart(apart - 1, apart))
        ++apart;
    if (apart == curves.size())
        return {apart, {}};
    Indices indices(apart);
    std::iota(indices.begin(), indices.end(), 0);
    for (std::size_t i = apart; i < curves.size(); ++i)
        if (curves.areApart(indices.back(), i))
            indices.push_back(i);
    return {indices.size(), std::move(indices)};
}

/// Moves what is kept to the front and cuts off the rest.
template <typename T>
void keep(std::vector<T>& values, const Indices& kept)
{
    for (std::size_t i = 0; i < kept.size(); ++i)
        values[i] = values[kept[i]];
    values.resize(kept.size());
}

void keepPoints(Rod& rod, const Indices& kept)
{
    if (rod.indices.empty())
        rod.indices = kept;
    else
        keep(rod.indices, kept);
    keep(rod.points, kept);
    if (!rod.lines.empty())
        keep(rod.lines, kept);
    if (!rod.rotations.empty())
        keep(rod.rotations, kept);
    for (Scalar& scalar : rod.scalars)
        keep(scalar.values, kept);
}

/// The same of all that belongs to a birod.
void keepPoints(Birod& birod, const Indices& kept)
{
    if (birod.indices.empty())
        birod.indices = kept;
    else
        keep(birod.indices, kept);
    for (Points* points : {&birod.points, &birod.points1, &birod.points2})
        keep(*points, kept);
    for (Rotations* rotations : {&birod.rotations, &birod.rotations1, &birod.rotations2})
        keep(*rotations, kept);
}

/// Until no points are too near: without those that are left out the mean distance is larger.
/// After so many rounds, which only a file that was made for it takes, the rest stays. Whether two
/// are left.
template <typename Keep>
bool leaveOutPoints(Curves curves, Keep keepAll)
{
    constexpr int mostRounds = 64;
    for (int round = 0; round < mostRounds; ++round) {
        const Kept kept = distinctPoints(curves);
        if (kept.count < 2)
            return false;
        if (kept.count == curves.size())
            break;
        keepAll(kept.indices);
        curves = Curves(curves.curves);
    }
    return true;
}

/// Of a closed rod, the last point of which stays where the first one is.
void leaveOutPointsOfClosed(Rod& rod)
{
    const auto repeatFirst = [&] { rod.points.back() = rod.points.front(); };
    repeatFirst();
    leaveOutPoints(Curves({&rod.points}), [&](const Indices& kept) {
        keepPoints(rod, kept);
        repeatFirst();
    });
}

/// Whether d3 is the direction to the next point, by and large. Points in one place have
/// none.
bool followsPoints(const Rotations& rotations, const Points& points)
{
    double sum = 0;
    std::size_t edges = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        if (areCoincident(points[i], points[i + 1]))
            continue;
        const Vector d3 = algebra3d::rotated(Vector(0, 0, 1), rotations[i]);
        sum += d3.dot((points[i + 1] - points[i]).getUnit());
        ++edges;
    }
    return sum >= SMALLEST_MEAN_TANGENCY * double(edges);
}

/// Whether all points are one to the last bit.
bool areEqual(const Points& points)
{
    return std::all_of(points.begin(), points.end(), [&](const Vector& point) {
        const Vector& first = points.front();
        return point.x == first.x && point.y == first.y && point.z == first.z;
    });
}

constexpr char FOUND_TOO_NEAR[] =
    "found points nearer than 1.5e-154 to one another, expected a unit in which they are apart";

constexpr char FOUND_TOO_FEW_PLACES[] =
    "found fewer than 3 points that are apart, expected at least 3 in a closed rod";

/// Makes values of elements, one fewer than the points, values of the points; whether
/// they were.
bool takeToPoints(Rotations& rotations, const Points& points)
{
    const bool areOfElements = points.size() >= 2 && rotations.size() + 1 == points.size();
    if (areOfElements)
        rotations = rotationsAtPoints(rotations, isClosed(points));
    return areOfElements;
}
bool takeToPoints(std::vector<double>& values, const Points& points)
{
    const bool areOfElements = points.size() >= 2 && values.size() + 1 == points.size();
    if (areOfElements)
        values = valuesAtPoints(values, isClosed(points));
    return areOfElements;
}

/// Again at the end, with what belongs to it.
void repeatFirstPoint(Rod& rod)
{
    rod.points.push_back(rod.points.front());
    if (!rod.rotations.empty())
        rod.rotations.push_back(rod.rotations.front());
    for (Scalar& scalar : rod.scalars)
        scalar.values.push_back(scalar.values.front());
    if (!rod.lines.empty())
        rod.lines.push_back(rod.lines.front());
    if (rod.indices.empty()) {
        rod.indices.resize(rod.points.size());
        std::iota(rod.indices.begin(), rod.indices.end(), 0);
        rod.indices.pop_back();
    }
    rod.indices.push_back(rod.indices.front());
}

template <typename T>
void append(std::vector<T> values, std::vector<T>& all)
{
    if (all.empty())
        all = std::move(values);
    else
        std::move(values.begin(), values.end(), std::back_inserter(all));
}

bool isEmpty(const Configuration& configuration)
{
    return configuration.rods.empty() && configuration.birods.empty() &&
           configuration.dnas.empty() && configuration.markers.empty() &&
           configuration.frames.empty() && configuration.arrows.empty() &&
           configuration.loneBases.empty();
}

} // namespace

/// By its points' own, or by what is said of it or of all; there and back is no closed curve.
std::string Collector::close(Rod& rod, bool doEndsMeet)
{
    const std::size_t places = rod.points.size() - doEndsMeet;
    const bool isSaid = rod.isClosed;
    if (isSaid && places < 3)
        return "found " + counted(places, "distinct point") +
               ", expected at least 3 in a closed rod";
    rod.isClosed = places > 2 && (doEndsMeet || isSaid || (closes && !rod.isBackbone));
    if (!rod.isClosed)
        return {};
    closedRods += !doEndsMeet && !isSaid;
    if (!doEndsMeet)
        repeatFirstPoint(rod);
    // What was apart may be too near, now that the last point is elsewhere or there is one more.
    const std::size_t count = rod.points.size();
    leaveOutPointsOfClosed(rod);
    mergedPoints += count - rod.points.size();
    rod.isClosed = rod.points.size() > 3;
    return rod.isClosed || !isSaid ? "" : FOUND_TOO_FEW_PLACES;
}

std::string Collector::add(Rod rod)
{
    bool hasElements = takeToPoints(rod.rotations, rod.points);
    for (Scalar& scalar : rod.scalars)
        hasElements = takeToPoints(scalar.values, rod.points) || hasElements;
    const std::size_t count = rod.points.size();
    const Curves curve({&rod.points});
    bool doEndsMeet = count > 0 && isClosed(rod.points, curve.smallestEdges[0]);
    if (!leaveOutPoints(curve, [&](const Indices& kept) { keepPoints(rod, kept); }))
        return areEqual(rod.points)
                   ? "found " + counted(std::min(count, std::size_t(1)), "distinct point") +
                         ", expected at least 2 in a rod"
                   : FOUND_TOO_NEAR;
    const std::size_t merged = count - rod.points.size();
    doEndsMeet = doEndsMeet || (merged > 0 && isClosed(rod.points));
    const std::string fault = close(rod, doEndsMeet);
    if (!fault.empty())
        return fault;
    rodsOfElements += hasElements;
    mergedPoints += merged;
    if (rod.rotations.empty()) {
        const bool isAsItWas = merged == 0 && !rod.isClosed;
        rod.rotations =
            isAsItWas ? parallelTransport(rod.points, doEndsMeet) : parallelTransport(rod.points);
        rod.hasFrames = false;
        transportedRods += !rod.isBackbone; // which nobody expects to have any
    } else {
        strayingRods += !followsPoints(rod.rotations, rod.points);
    }
    configuration.rods.push_back(std::move(rod));
    return {};
}

std::string Collector::add(Birod birod)
{
    bool hasElements = takeToPoints(birod.rotations, birod.points);
    hasElements = takeToPoints(birod.rotations1, birod.points1) || hasElements;
    hasElements = takeToPoints(birod.rotations2, birod.points2) || hasElements;
    const std::size_t count = birod.points.size();
    const Curves curves({&birod.points, &birod.points1, &birod.points2});
    if (!leaveOutPoints(curves, [&](const Indices& kept) { keepPoints(birod, kept); }))
        return "found " + counted(std::min(count, std::size_t(1)), "point") +
               " distinct in the average and in both strands, expected at least 2 in a birod";
    birodsOfElements += hasElements;
    mergedPoints += count - birod.points.size();
    strayingBirods += !followsPoints(birod.rotations, birod.points);
    configuration.birods.push_back(std::move(birod));
    return {};
}

std::string Collector::add(Dna dna)
{
    if (dna.bases.empty())
        return "found 0 bases, expected at least 1";
    strayingDnas += !followsPoints(dna.pairRotations, dna.pairPoints);
    configuration.dnas.push_back(std::move(dna));
    return {};
}

void Collector::add(Marker marker) { configuration.markers.push_back(std::move(marker)); }
void Collector::add(Frame frame) { configuration.frames.push_back(std::move(frame)); }
void Collector::add(Arrow arrow) { configuration.arrows.push_back(std::move(arrow)); }

void Collector::add(LoneBase base) { configuration.loneBases.push_back(std::move(base)); }

void Collector::add(std::vector<LoneBase> bases)
{
    append(std::move(bases), configuration.loneBases);
}

void Collector::add(std::vector<Dna> dnas)
{
    for (const Dna& dna : dnas)
        strayingDnas += !followsPoints(dna.pairRotations, dna.pairPoints);
    append(std::move(dnas), configuration.dnas);
}

std::optional<Configuration> Collector::finish(const std::string& fileName, const char* expected,
                                               ReadReport& report)
{
    if (isEmpty(configuration)) {
        report.error = fileName + ": found nothing to show, expected at least one " + expected;
        return {};
    }
    const auto notice = [&](std::size_t count, const char* noun, const std::string& what) {
        if (count > 0)
            report.notices.push_back(fileName + ": " + counted(count, noun) + " " + what);
    };
    const auto doesNotFollow = [](const std::string& points) {
        return "whose d3 does not follow the " + points +
               ": is d3 the tangent (quaternions: scalar last; directors: d1, d2, d3)?";
    };
    notice(closedRods, "rod", "closed: the ends were apart");
    if (closes && closedRods == 0 && !configuration.rods.empty())
        report.notices.push_back(fileName +
                                 ": --closed has no effect: found no rod whose ends are apart");
    notice(transportedRods, "rod",
           "without frames: made by parallel transport, for a ribbon where one is asked for "
           "(--ribbon)");
    const std::string ofElements = "with frames or scalars of elements: taken to the points";
    notice(rodsOfElements, "rod", ofElements);
    notice(birodsOfElements, "birod", ofElements);
    notice(strayingRods, "rod", doesNotFollow("points"));
    notice(strayingBirods, "birod", doesNotFollow("average's points"));
    notice(strayingDnas, "DNA", doesNotFollow("pairs"));
    notice(mergedPoints, "point", "left out, at the same place as the point before");
    return std::move(configuration);
}

} // namespace strandview
