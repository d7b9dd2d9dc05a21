// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SAMPLING_BIARCSAMPLING_H
#define STRANDVIEW_SAMPLING_BIARCSAMPLING_H

#include <algorithm>
#include <vector>

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

/// Takes over the memory of a table, which is empty then, for another one.
template <typename T>
void takeCapacity(std::vector<T>& table, std::vector<T>& replaced)
{
    table = std::move(replaced);
    table.clear();
    replaced.clear();
}

/// Walks along a curve of n nodes in `count` equal steps of arc length per biarc and
/// calls visit(first row, samples) for the steps' starts, many at once; the last node is
/// left to the caller. Writes the arc lengths so far, per node and per row, the last node
/// included. Returns the last node's row.
template <typename Visit>
int sampleCurve(const Curve<Vector3>& curve, int n, int count, std::vector<double>& nodeLengths,
                std::vector<double>& rowLengths, Visit visit)
{
    double s = 0;
    int row = 0;
    CurveSamples samples;
    const auto flush = [&] {
        visit(row - samples.size, samples);
        samples.size = 0;
    };
    const int biarcs = std::min(n - 1, int(curve.biarcs.size()));
    for (int i = 0; i < biarcs; ++i) {
        const Biarc<Vector3>& biarc = curve.biarcs[std::size_t(i)];
        const BiarcSampler<Vector3> sampler(biarc);
        const double step = biarc.length / count;
        nodeLengths[std::size_t(i)] = s;
        for (int k = 0; k < count;) {
            const int run = std::min(count - k, CurveSamples::CAPACITY - samples.size);
            sampleBiarc(sampler, step, k, run, samples);
            for (const int end = row + run; row < end; ++row, s += step)
                rowLengths[std::size_t(row)] = s;
            k += run;
            if (samples.size == CurveSamples::CAPACITY)
                flush();
        }
    }
    flush();
    nodeLengths[std::size_t(n - 1)] = s;
    rowLengths[std::size_t(row)] = s;
    return row;
}

#endif
