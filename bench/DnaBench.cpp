// SPDX-License-Identifier: GPL-3.0-or-later
// What a DNA costs per base pair: the time and the memory to build it, and the CPU time of a
// frame of an unchanged scene, which is the CPU's share alone under GALLIUM_NOOP=1.
#include <benchmark/benchmark.h>

#include <cstddef>

#include <malloc.h>

#include <Inventor/SoDB.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <OffscreenContext.h>
#include <SoDNA.h>

#include "support/IdealDna.h"

namespace {

void initOnce()
{
    static const bool done = [] {
        SoDB::init();
        OffscreenContext::install();
        SoNucleobase::initClass();
        SoDNA::initClass();
        return true;
    }();
    static_cast<void>(done);
}

void report(benchmark::State& state)
{
    state.counters["per_pair"] =
        benchmark::Counter(double(state.range(0)), benchmark::Counter::kIsIterationInvariantRate |
                                                       benchmark::Counter::kInvert);
    state.SetComplexityN(state.range(0));
}

// Data are given, and the pairs of the time before replaced.
void buildDna(benchmark::State& state)
{
    initOnce();
    const IdealDna ideal(irregularSequence(std::size_t(state.range(0))));
    auto* dna = new SoDNA;
    dna->ref();
    const std::size_t before = mallinfo2().uordblks;
    ideal.give(*dna);
    dna->generate();
    const std::size_t after = mallinfo2().uordblks;
    for (auto _ : state) {
        ideal.give(*dna);
        dna->generate();
    }
    state.counters["bytes_per_pair"] = double(after - before) / double(state.range(0));
    report(state);
    dna->unref();
}

void drawScene(benchmark::State& state, bool traversed)
{
    initOnce();
    const IdealDna ideal(irregularSequence(std::size_t(state.range(0))));
    const SbViewportRegion region(200, 200);
    auto* root = new SoSeparator;
    root->ref();
    root->renderCaching = SoSeparator::OFF; // as under a viewer's camera and lights
    auto* camera = new SoOrthographicCamera;
    root->addChild(camera);
    root->addChild(new SoDirectionalLight);
    auto* dna = new SoDNA;
    dna->ref();
    ideal.give(*dna);
    dna->generate();
    if (traversed) {
        root->addChild(dna->getChild(0));
        root->addChild(dna->getChild(1));
    } else {
        root->addChild(dna);
    }
    camera->viewAll(root, region);
    SoOffscreenRenderer renderer(region);
    for (int i = 0; i < 8; ++i) // until all caches are there
        renderer.render(root);
    for (auto _ : state)
        renderer.render(root);
    report(state);
    root->unref();
    dna->unref();
}

void drawDna(benchmark::State& state) { drawScene(state, false); }

// The same graph without a SoDNA: Coin's own way through it.
void traverseDna(benchmark::State& state) { drawScene(state, true); }

BENCHMARK(buildDna)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(drawDna)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(traverseDna)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond);

} // namespace
