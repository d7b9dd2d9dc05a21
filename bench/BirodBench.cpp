// SPDX-License-Identifier: GPL-3.0-or-later
// The time to generate the meshes of a birod, per vertex (a point and its normal): three
// tubes and three ribbons with all that a change of the data entails.
#include <benchmark/benchmark.h>

#include <cmath>

#include <Inventor/SoDB.h>

#include <SoBirod.h>
#include <algebra3d/Matrix3.h>

namespace {

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

const int SLICES = 12;
const int SUBSEGMENTS = 4;

// A double helix about an axis that bends slowly: no arc is straight.
SoBirod* makeBirod(int size)
{
    static const bool coinIsReady = [] {
        SoDB::init();
        SoMeshShape::initClass();
        SoBirod::initClass();
        return true;
    }();
    static_cast<void>(coinIsReady);

    std::vector<Vector> average, strand1, strand2;
    std::vector<Rotation> rotations;
    for (int i = 0; i < size; ++i) {
        const double bend = 1e-3 * i;
        average.emplace_back(50 * std::cos(bend), 0, 50 * std::sin(bend));
        rotations.emplace_back(0, 0, std::sin(0.15 * i), std::cos(0.15 * i));
        const Vector d1 = algebra3d::Matrix3<double>(rotations.back()).getColumn(0);
        strand1.push_back(average.back() + d1);
        strand2.push_back(average.back() - d1);
    }
    auto* birod = new SoBirod(0.1, 0.1, 0.3, 0.3, 0.1, 0.2, SLICES, SUBSEGMENTS, true, true, true,
                              true, false);
    birod->ref();
    birod->setData(average, rotations, strand1, rotations, strand2, rotations);
    return birod;
}

void birodGenerate(benchmark::State& state)
{
    SoBirod* birod = makeBirod(int(state.range(0)));
    for (auto _ : state) {
        birod->generate();
        benchmark::DoNotOptimize(birod->getRibbon2Mesh()->getPoints());
    }
    const double rows = SUBSEGMENTS * (double(state.range(0)) - 1) + 1;
    state.counters["per_vertex"] = benchmark::Counter(
        3 * rows * (SLICES + 1 + 2),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.SetComplexityN(state.range(0));
    birod->unref();
}

BENCHMARK(birodGenerate)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace
