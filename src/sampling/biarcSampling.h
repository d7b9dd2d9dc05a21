// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SAMPLING_BIARCSAMPLING_H
#define STRANDVIEW_SAMPLING_BIARCSAMPLING_H

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <ArcLengths.h>
#include <algebra3d/Vector3.h>
#include <biarc/Curve.h>

#include "sampling/fourAtOnce.h"

inline Vector3 toBiarc(const algebra3d::Vector3<double>& v) { return Vector3(v.x, v.y, v.z); }

inline algebra3d::Vector3<double> fromBiarc(const Vector3& v)
{
    return algebra3d::Vector3<double>(v[0], v[1], v[2]);
}

/// The last of the first n nodes of a curve, which is not empty.
inline const Biarc<Vector3>& lastNode(const Curve<Vector3>& curve, int n)
{
    return curve.biarcs[std::min(std::size_t(n), curve.biarcs.size()) - 1];
}

/// Takes over the nodes of a curve, which has none then, for setNodes().
inline void takeNodes(Curve<Vector3>& curve, Curve<Vector3>& replaced)
{
    curve.biarcs = std::move(replaced.biarcs);
    replaced.biarcs.clear();
}

/// Gives a curve so many nodes and no others: node(i, point, tangent) sets those of each, which is
/// then as Curve::append() makes it, but for what makeMidpointRule() computes.
template <typename Node>
void setNodes(Curve<Vector3>& curve, std::size_t count, Node node)
{
    auto& nodes = curve.biarcs;
    while (nodes.size() > count)
        nodes.pop_back();
    nodes.reserve(count);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i].curve = &curve;
        node(i, nodes[i].point, nodes[i].tangent);
    }
    while (nodes.size() < count) {
        curve.append({}, {});
        node(nodes.size() - 1, nodes.back().point, nodes.back().tangent);
    }
    if (count > 0) { // of which nothing is computed
        const Vector3 point = nodes.back().point, tangent = nodes.back().tangent;
        nodes.pop_back();
        curve.append(point, {});
        nodes.back().tangent = tangent;
    }
}

/// Some that may be written: those that are there, with what they hold, or new ones if there are
/// none or others have them.
inline ArcLengths& ownLengths(std::shared_ptr<ArcLengths>& lengths)
{
    if (!lengths || lengths.use_count() > 1)
        lengths = std::make_shared<ArcLengths>();
    // Whoever had them last, in another thread, has read them.
    std::atomic_thread_fence(std::memory_order_acquire);
    return *lengths;
}

inline const ArcLengths& lengthsOr(const std::shared_ptr<ArcLengths>& lengths)
{
    static const ArcLengths none;
    return lengths ? *lengths : none;
}

/// The arc lengths along a curve, per node and per row.
struct LengthTables
{
    std::vector<double>& ofNodes;
    std::vector<double>& ofRows;
};

/// Walks along a curve of n nodes in `count` equal steps of arc length per biarc, without the last
/// node. Writes the lengths so far into the tables, if some are given.
class CurveWalk
{
public:
    CurveWalk(const Curve<Vector3>& walkedCurve, int n, int countPerBiarc,
              const LengthTables* lengthTables)
        : curve(walkedCurve),
          biarcs(std::min(n - 1, int(walkedCurve.biarcs.size()))),
          count(countPerBiarc),
          tables(lengthTables)
    {}

    /// The steps' starts that come next, as many as there is room for. Whether there are any.
    bool next(CurveSamples& samples)
    {
        samples.size = 0;
        while (biarc < biarcs && samples.size < CurveSamples::CAPACITY) {
            if (step == 0)
                begin();
            const int run = std::min(count - step, CurveSamples::CAPACITY - samples.size);
            sampleBiarc(*sampler, stepLength, step, run, samples);
            for (int i = 0; i < run; ++i, length += stepLength) {
                if (tables)
                    tables->ofRows[std::size_t(row + i)] = length;
            }
            row += run;
            step += run;
            if (step == count) {
                step = 0;
                ++biarc;
            }
        }
        return samples.size > 0;
    }

    /// The row that comes next.
    int getRow() const { return row; }
    double getLength() const { return length; }

private:
    void begin()
    {
        const Biarc<Vector3>& begun = curve.biarcs[std::size_t(biarc)];
        sampler.emplace(begun);
        stepLength = begun.length / count;
        if (tables)
            tables->ofNodes[std::size_t(biarc)] = length;
    }

    const Curve<Vector3>& curve;
    const int biarcs, count;
    const LengthTables* const tables;
    int biarc = 0, step = 0, row = 0;
    double length = 0, stepLength = 0;
    std::optional<BiarcSampler<Vector3>> sampler; // of this biarc
};

/// Walks along a curve and calls visit(first row, samples) for the steps' starts, many at once; the
/// last node is left to the caller. Fills the tables, the last node included. Returns its row.
template <typename Visit>
int sampleCurve(const Curve<Vector3>& curve, int n, int count, const LengthTables& tables,
                Visit visit)
{
    CurveWalk walk(curve, n, count, &tables);
    CurveSamples samples;
    while (walk.next(samples))
        visit(walk.getRow() - samples.size, samples);
    tables.ofNodes[std::size_t(n - 1)] = walk.getLength();
    tables.ofRows[std::size_t(walk.getRow())] = walk.getLength();
    return walk.getRow();
}

#endif
