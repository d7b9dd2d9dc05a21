// SPDX-License-Identifier: GPL-3.0-or-later
// The time to colour scalars, per value: a material as a whole, and a colour alone.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/nodes/SoMaterial.h>

#include <ColourMapper.h>
#include <SoGeneralScene.h>

namespace {

// Over the whole ramp, and a little beyond it on both sides.
std::vector<double> makeValues(std::size_t size)
{
    std::vector<double> values;
    values.reserve(size);
    for (std::size_t i = 0; i < size; ++i)
        values.push_back(0.5 + 0.55 * std::sin(0.37 * double(i)));
    return values;
}

SoMaterial* makeMaterial()
{
    static const bool coinIsReady = (SoDB::init(), true);
    static_cast<void>(coinIsReady);
    auto* material = new SoMaterial;
    material->ref();
    return material;
}

void report(benchmark::State& state)
{
    state.counters["per_value"] =
        benchmark::Counter(double(state.range(0)), benchmark::Counter::kIsIterationInvariantRate |
                                                       benchmark::Counter::kInvert);
    state.SetComplexityN(state.range(0));
}

void generateMaterial(benchmark::State& state)
{
    const std::vector<double> values = makeValues(std::size_t(state.range(0)));
    SoMaterial* const material = makeMaterial();
    ColourMapper mapper;
    for (auto _ : state) {
        SoGeneralScene::generateMaterial(&mapper, material, 0, values);
        benchmark::DoNotOptimize(material->diffuseColor.getValues(0));
    }
    report(state);
    material->unref();
}

// As many positions as values, between 1000 samples.
void interpolateMaterial(benchmark::State& state)
{
    const std::vector<double> y = makeValues(1000);
    std::vector<double> x, at;
    for (std::size_t i = 0; i < y.size(); ++i)
        x.push_back(double(i));
    const auto size = std::size_t(state.range(0));
    for (std::size_t i = 0; i < size; ++i)
        at.push_back(x.back() * double(i) / double(size));
    SoMaterial* const material = makeMaterial();
    ColourMapper mapper;
    for (auto _ : state) {
        SoGeneralScene::interpolateMaterial(&mapper, material, 0, x, y, at);
        benchmark::DoNotOptimize(material->diffuseColor.getValues(0));
    }
    report(state);
    material->unref();
}

void getColour(benchmark::State& state)
{
    const std::vector<double> values = makeValues(std::size_t(state.range(0)));
    const ColourMapper mapper;
    ColourMapper::Colour colour;
    for (auto _ : state) {
        for (double value : values) {
            mapper.getColour(value, colour);
            benchmark::DoNotOptimize(colour);
        }
    }
    report(state);
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMicrosecond);
    bench->Complexity(benchmark::oN);
}

BENCHMARK(generateMaterial)->Apply(sizes);
BENCHMARK(interpolateMaterial)->Apply(sizes);
BENCHMARK(getColour)->Apply(sizes);

} // namespace
