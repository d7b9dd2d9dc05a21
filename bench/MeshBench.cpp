// SPDX-License-Identifier: GPL-3.0-or-later
// The time to build a mesh, per vertex (a point and its normal), and beside it that of
// the plain formulas with a sine and a cosine per point and a row at a time.
#include <benchmark/benchmark.h>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <TubeMesh.h>
#include <algebra3d/Matrix3.h>
#include <support/PlainReference.h>

namespace {

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

const double RADIUS = 0.1;
const int SLICES = 12;
const int SUBSEGMENTS = 4;

struct Rod
{
    std::vector<Vector> points, edge, d2s;
    std::vector<Rotation> rotations;
};

// A helix on a slowly bending axis: no arc is straight.
Rod makeRod(int size)
{
    Rod rod;
    for (int i = 0; i < size; ++i) {
        const double a = 0.3 * i;
        const double bend = 1e-3 * i;
        rod.points.emplace_back(std::cos(a) + 50 * std::cos(bend), std::sin(a),
                                50 * std::sin(bend));
        rod.rotations.emplace_back(std::sin(a / 2), 0, 0, std::cos(a / 2));
        rod.d2s.push_back(algebra3d::Matrix3<double>(rod.rotations.back()).getColumn(1));
        rod.edge.push_back(rod.points.back() + 0.3 * rod.d2s.back());
    }
    return rod;
}

void report(benchmark::State& state, double rows, double columns)
{
    state.counters["per_vertex"] =
        benchmark::Counter(rows * columns, benchmark::Counter::kIsIterationInvariantRate |
                                               benchmark::Counter::kInvert);
    state.SetComplexityN(state.range(0));
}

double sampledRows(const benchmark::State& state)
{
    return SUBSEGMENTS * (double(state.range(0)) - 1) + 1;
}

void biarcTubeMesh(benchmark::State& state)
{
    const Rod rod = makeRod(int(state.range(0)));
    for (auto _ : state) {
        BiarcTubeMesh mesh(rod.points, RADIUS, SLICES, SUBSEGMENTS, false, false);
        benchmark::DoNotOptimize(mesh.getPoints());
    }
    report(state, sampledRows(state), SLICES + 1);
}

void biarcTubePlain(benchmark::State& state)
{
    const auto points = plain::toPlain(makeRod(int(state.range(0))).points);
    for (auto _ : state) {
        const plain::Curve curve = plain::curveThrough(points, plain::estimatedTangents(points));
        benchmark::DoNotOptimize(plain::biarcTube(curve, RADIUS, SLICES, SUBSEGMENTS));
    }
    report(state, sampledRows(state), SLICES + 1);
}

void biarcRibbonMesh(benchmark::State& state)
{
    Rod rod = makeRod(int(state.range(0)));
    for (auto _ : state) {
        BiarcRibbonMesh mesh(rod.points, rod.edge, 0.3, SUBSEGMENTS);
        benchmark::DoNotOptimize(mesh.getPoints());
    }
    report(state, sampledRows(state), 2);
}

void biarcRibbonPlain(benchmark::State& state)
{
    const Rod rod = makeRod(int(state.range(0)));
    const auto edgeA = plain::toPlain(rod.points);
    const auto edgeB = plain::toPlain(rod.edge);
    for (auto _ : state)
        benchmark::DoNotOptimize(plain::biarcRibbon(edgeA, edgeB, SUBSEGMENTS));
    report(state, sampledRows(state), 2);
}

void tubeMesh(benchmark::State& state)
{
    const Rod rod = makeRod(int(state.range(0)));
    for (auto _ : state) {
        TubeMesh mesh(rod.points, rod.rotations, RADIUS, SLICES, false, false);
        benchmark::DoNotOptimize(mesh.getPoints());
    }
    report(state, double(state.range(0)), SLICES + 1);
}

void tubePlain(benchmark::State& state)
{
    const Rod rod = makeRod(int(state.range(0)));
    const auto points = plain::toPlain(rod.points);
    const auto d2s = plain::toPlain(rod.d2s);
    for (auto _ : state)
        benchmark::DoNotOptimize(plain::tube(points, d2s, RADIUS, SLICES));
    report(state, double(state.range(0)), SLICES + 1);
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
    bench->Complexity(benchmark::oN);
}

BENCHMARK(biarcTubeMesh)->Apply(sizes);
BENCHMARK(biarcTubePlain)->Apply(sizes);
BENCHMARK(biarcRibbonMesh)->Apply(sizes);
BENCHMARK(biarcRibbonPlain)->Apply(sizes);
BENCHMARK(tubeMesh)->Apply(sizes);
BENCHMARK(tubePlain)->Apply(sizes);

} // namespace
