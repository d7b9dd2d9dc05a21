// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/interpolate.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include <algebra3d/rotations.h>

#include <strandview/analysis/parallelTransport.h>
#include <strandview/model/points.h>

namespace strandview {

namespace {

using Point = algebra3d::Vector3<double>;
using Points = std::vector<Point>;
using Rotation = algebra3d::Quaternion<double>;
using Rotations = std::vector<Rotation>;

// ---- What has to be alike: one line about the first thing that is not, or nothing.

std::string compareCounts(std::size_t from, std::size_t to, const std::string& what)
{
    return from == to
               ? ""
               : "found " + std::to_string(to) + " " + what + ", expected " + std::to_string(from);
}

std::string compareBases(const std::string& from, const std::string& to, const std::string& of)
{
    const auto [a, b] = std::mismatch(from.begin(), from.end(), to.begin(), to.end());
    if (a == from.end() || b == to.end())
        return "";
    return std::string("found ") + *b + " as base " + std::to_string(a - from.begin() + 1) + of +
           ", expected " + *a;
}

std::string compareEnds(bool isFromClosed, bool isToClosed, const std::string& in)
{
    if (isFromClosed == isToClosed)
        return "";
    return isFromClosed ? "found ends that are apart" + in + ", expected a closed one"
                        : "found ends that meet" + in + ", expected an open one";
}

std::string compare(const Rod& from, const Rod& to, const std::string& in)
{
    const std::string points = compareCounts(from.points.size(), to.points.size(), "points" + in);
    return points.empty() ? compareEnds(from.isClosed, to.isClosed, in) : points;
}

std::string compare(const Birod& from, const Birod& to, const std::string& in)
{
    return compareCounts(from.points.size(), to.points.size(), "points" + in);
}

std::string compare(const Dna& from, const Dna& to, const std::string& in)
{
    for (const std::string& difference :
         {compareCounts(from.pairPoints.size(), to.pairPoints.size(), "pairs" + in),
          compareBases(from.bases, to.bases, in), compareEnds(from.isClosed, to.isClosed, in)})
        if (!difference.empty())
            return difference;
    return "";
}

template <typename Item>
std::string compareEach(const std::vector<Item>& from, const std::vector<Item>& to,
                        const std::string& noun)
{
    std::string difference = compareCounts(from.size(), to.size(), noun + "s");
    for (std::size_t i = 0; difference.empty() && i < from.size(); ++i)
        difference = compare(from[i], to[i], " in " + noun + " " + std::to_string(i + 1));
    return difference;
}

std::string lettersOf(const std::vector<LoneBase>& bases)
{
    std::string letters;
    std::transform(bases.begin(), bases.end(), std::back_inserter(letters),
                   [](const LoneBase& base) { return base.base; });
    return letters;
}

std::string compare(const Configuration& from, const Configuration& to)
{
    for (const std::string& difference :
         {compareEach(from.rods, to.rods, "rod"), compareEach(from.birods, to.birods, "birod"),
          compareEach(from.dnas, to.dnas, "DNA"),
          compareCounts(from.loneBases.size(), to.loneBases.size(), "bases in no pair"),
          compareBases(lettersOf(from.loneBases), lettersOf(to.loneBases), " of those in no pair"),
          compareCounts(from.markers.size(), to.markers.size(), "markers"),
          compareCounts(from.arrows.size(), to.arrows.size(), "arrows"),
          compareCounts(from.frames.size(), to.frames.size(), "frames")})
        if (!difference.empty())
            return difference;
    return "";
}

// ---- What goes from the one to the other, of as many items

/// Takes whatever has a number, a place or a direction a share of the way on.
class Step
{
public:
    explicit Step(double shareOfWay) : share(shareOfWay) {}

    void operator()(double& from, double to) const { from += share * (to - from); }
    void operator()(Point& from, const Point& to) const { from += share * (to - from); }
    void operator()(Rotation& from, const Rotation& to) const
    {
        from = algebra3d::scaledToUnit(algebra3d::slerp(from, to, share));
    }
    template <typename Item>
    void operator()(std::vector<Item>& from, const std::vector<Item>& to) const
    {
        for (std::size_t i = 0; i < from.size(); ++i)
            (*this)(from[i], to[i]);
    }
    void operator()(std::optional<double>& from, const std::optional<double>& to) const
    {
        if (from && to)
            (*this)(*from, *to);
    }

    void operator()(Rod& from, const Rod& to) const;
    void operator()(Birod& from, const Birod& to) const
    {
        takeScalars(from.scalars, to.scalars);
        each(from, to, &Birod::points, &Birod::rotations, &Birod::points1, &Birod::rotations1,
             &Birod::points2, &Birod::rotations2);
    }
    void operator()(Dna& from, const Dna& to) const;
    void operator()(LoneBase& from, const LoneBase& to) const
    {
        each(from, to, &LoneBase::point, &LoneBase::rotation);
    }
    void operator()(Marker& from, const Marker& to) const
    {
        each(from, to, &Marker::point, &Marker::size, &Marker::transparency);
    }
    void operator()(Arrow& from, const Arrow& to) const
    {
        each(from, to, &Arrow::from, &Arrow::to, &Arrow::radius);
    }
    void operator()(Frame& from, const Frame& to) const
    {
        each(from, to, &Frame::point, &Frame::rotation, &Frame::size);
    }

    template <typename Item, typename... Members>
    void each(Item& from, const Item& to, Members Item::*... members) const
    {
        ((*this)(from.*members, to.*members), ...);
    }

private:
    template <typename Frames>
    void takePairs(Frames& from, const Frames& to) const
    {
        each(from, to, &Frames::pairPoints, &Frames::pairRotations, &Frames::points1,
             &Frames::rotations1, &Frames::points2, &Frames::rotations2);
    }
    void takeScalars(std::vector<Scalar>& from, const std::vector<Scalar>& to) const;

    const double share;
};

void Step::takeScalars(std::vector<Scalar>& from, const std::vector<Scalar>& to) const
{
    std::vector<Scalar> both;
    for (Scalar& scalar : from) {
        const auto same = std::find_if(to.begin(), to.end(), [&scalar](const Scalar& other) {
            return other.name == scalar.name;
        });
        if (same == to.end())
            continue;
        (*this)(scalar.values, same->values);
        both.push_back(std::move(scalar));
    }
    from = std::move(both);
}

void Step::operator()(Rod& from, const Rod& to) const
{
    each(from, to, &Rod::points, &Rod::radius);
    takeScalars(from.scalars, to.scalars);
    if (from.hasFrames && to.hasFrames)
        (*this)(from.rotations, to.rotations);
    else
        from.rotations.clear(); // made when the points are known to be apart
}

void Step::operator()(Dna& from, const Dna& to) const
{
    takePairs(from, to);
    takeScalars(from.scalars, to.scalars);
    if (from.standard && to.standard) {
        takePairs(*from.standard, *to.standard);
        (*this)(from.standard->rms, to.standard->rms);
    } else {
        from.standard.reset();
    }
}

/// One line if a point of a curve is where the one before is.
std::string checkApart(const Points& points, const std::string& of)
{
    const auto same = std::adjacent_find(points.begin(), points.end(), &areCoincident);
    if (same == points.end())
        return "";
    const auto number = same - points.begin() + 1;
    return "found points " + std::to_string(number) + " and " + std::to_string(number + 1) + of +
           " in one place on their way, expected them apart";
}

/// Whether all curves can be drawn; then rods without frames of their own get some.
bool finishCurves(Configuration& data, std::string& refusal)
{
    for (std::size_t i = 0; refusal.empty() && i < data.rods.size(); ++i) {
        Rod& rod = data.rods[i];
        refusal = checkApart(rod.points, " of rod " + std::to_string(i + 1));
        if (refusal.empty() && rod.rotations.empty()) {
            rod.rotations = parallelTransport(rod.points);
            rod.hasFrames = false;
        }
    }
    for (std::size_t i = 0; i < data.birods.size(); ++i)
        for (const Points* points :
             {&data.birods[i].points, &data.birods[i].points1, &data.birods[i].points2})
            if (refusal.empty())
                refusal = checkApart(*points, " of birod " + std::to_string(i + 1));
    return refusal.empty();
}

} // namespace

std::optional<Configuration> interpolate(const Configuration& from, const Configuration& to,
                                         double share, std::string& refusal)
{
    refusal = compare(from, to);
    if (!refusal.empty())
        return {};
    std::optional<Configuration> middle = from;
    Step(share).each(*middle, to, &Configuration::rods, &Configuration::birods,
                     &Configuration::dnas, &Configuration::loneBases, &Configuration::markers,
                     &Configuration::arrows, &Configuration::frames);
    if (!finishCurves(*middle, refusal))
        return {};
    return middle;
}

// ---- InterpolatedSeries

InterpolatedSeries::InterpolatedSeries(std::unique_ptr<Series> seriesToFill,
                                       std::size_t framesBetween)
    : SeriesAround(std::move(seriesToFill)), steps(framesBetween + 1)
{}

std::size_t InterpolatedSeries::count() const
{
    const std::size_t ofSeries = series->count();
    return ofSeries == 0 ? 0 : (ofSeries - 1) * steps + 1;
}

std::optional<double> InterpolatedSeries::time(std::size_t frame) const
{
    const std::optional<double> from = series->time(frame / steps);
    if (frame % steps == 0 || !from)
        return from;
    const std::optional<double> to = series->time(frame / steps + 1);
    if (!to)
        return {};
    return *from + double(frame % steps) / double(steps) * (*to - *from);
}

LoadedFrame InterpolatedSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    const std::size_t before = frame / steps;
    if (frame % steps == 0)
        return loadEnd(before, goOn);
    LoadedFrame between;
    for (const std::size_t end : {before, before + 1}) {
        const LoadedFrame& loaded = loadEnd(end, goOn);
        between.notices.insert(between.notices.end(), loaded.notices.begin(), loaded.notices.end());
        if (!loaded.configuration) {
            between.error = loaded.error;
            return between;
        }
    }
    std::string difference;
    between.configuration =
        interpolate(*loadEnd(before, goOn).configuration, *loadEnd(before + 1, goOn).configuration,
                    double(frame % steps) / double(steps), difference);
    if (between.configuration)
        return between;
    between.error = "between frames " + std::to_string(before) + " and " +
                    std::to_string(before + 1) + ": " + difference;
    if (refusal.empty())
        refusal = between.error;
    return between;
}

const LoadedFrame& InterpolatedSeries::loadEnd(std::size_t frame, const GoOn& goOn)
{
    std::optional<End>& end = ends[frame % 2];
    if (!end || end->frame != frame || !end->loaded.configuration) {
        end.reset(); // its memory, before there is more
        end = End{frame, series->load(frame, goOn)};
    }
    return end->loaded;
}

} // namespace strandview
