// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/keptPairs.h>

#include <gmock/gmock.h>

#include <strandview/analysis/basePairs.h>
#include <strandview/analysis/doubleStrands.h>

#include "support/idealNucleotides.h"

namespace strandview {

namespace {

using testing::ElementsAre;

using Nucleotides = std::vector<Nucleotide>;

// One of them taken out of its pair.
Nucleotides opened(Nucleotides all, std::size_t i)
{
    all[i].frame.point = all[i].frame.point + algebra3d::Vector3<double>(30, 0, 0);
    return all;
}

// As readers do.
DoubleStrands read(Nucleotides all, KeptPairs& pairs, bool* couldBeUsed = nullptr)
{
    const bool could = pairs.pair(all, [&all] { pairBases(all); });
    if (couldBeUsed)
        *couldBeUsed = could;
    return makeDoubleStrands(all,
                             {"here", 9, [](std::size_t strand) { return std::to_string(strand); }},
                             {}, pairs.findHelices(all));
}

// The pairs of each DNA, and how many bases have none.
std::vector<std::size_t> sizesOf(const DoubleStrands& found)
{
    std::vector<std::size_t> sizes;
    for (const Dna& dna : found.dnas)
        sizes.push_back(dna.bases.size());
    sizes.push_back(found.loneBases.size());
    return sizes;
}

// Frames of nucleotides; those without any cannot be loaded.
class NucleotideSeries : public Series
{
public:
    NucleotideSeries(std::vector<Nucleotides> all, std::shared_ptr<KeptPairs> pairsOfIt)
        : frames(std::move(all)), pairs(std::move(pairsOfIt))
    {}
    std::size_t count() const override { return frames.size(); }
    std::vector<std::size_t> loads;

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
    {
        loads.push_back(frame);
        if (frames[frame].empty() || (goOn && !goOn(0)))
            return {std::nullopt, {}, "cut"};
        DoubleStrands found = read(frames[frame], *pairs);
        LoadedFrame loaded;
        loaded.configuration.emplace();
        loaded.configuration->dnas = std::move(found.dnas);
        loaded.configuration->loneBases = std::move(found.loneBases);
        return loaded;
    }

    const std::vector<Nucleotides> frames;
    const std::shared_ptr<KeptPairs> pairs;
};

// Asks for no pairs.
class PlainSeries : public Series
{
public:
    explicit PlainSeries(std::vector<std::size_t>& loadedFrames) : loads(loadedFrames) {}
    std::size_t count() const override { return 5; }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& /*goOn*/) override
    {
        loads.push_back(frame);
        return {Configuration()};
    }

    std::vector<std::size_t>& loads;
};

std::size_t pairsIn(const LoadedFrame& loaded)
{
    return loaded.configuration->dnas.empty() ? 0 : loaded.configuration->dnas[0].bases.size();
}

} // namespace

TEST(KeptPairs, APairThatHasOpenedIsStillOne)
{
    const Nucleotides closed = idealDuplex("ACGGTC");
    KeptPairs pairs;
    pairs.setKeeping(true);
    EXPECT_THAT(sizesOf(read(closed, pairs)), ElementsAre(6, 0));
    pairs.setKeeping(false);
    EXPECT_TRUE(pairs.areKnown());
    const DoubleStrands found = read(opened(closed, 2), pairs);
    EXPECT_THAT(sizesOf(found), ElementsAre(6, 0));
    EXPECT_EQ(found.dnas[0].bases, "ACGGTC");
    EXPECT_NEAR(found.dnas[0].points1[2].x - found.dnas[0].points2[2].x, 30, 1e-12);
    EXPECT_NEAR(found.dnas[0].pairPoints[2].x - found.dnas[0].points2[2].x, 15, 1e-12);
    KeptPairs none;
    EXPECT_THAT(sizesOf(read(opened(closed, 2), none)), ElementsAre(2, 3, 2));
}

TEST(KeptPairs, APairThatHasClosedIsNone)
{
    const Nucleotides closed = idealDuplex("ACGGTC");
    KeptPairs pairs;
    pairs.setKeeping(true);
    read(opened(closed, 5), pairs);
    EXPECT_THAT(sizesOf(read(closed, pairs)), ElementsAre(5, 2));
}

// Whether pairs beside a nick are stacked depends on where they are.
TEST(KeptPairs, AHelixThatComesApartAtANickIsStillOne)
{
    Nucleotides nicked = idealDuplex("ACGGTC");
    cutBehind(2, 2, nicked);
    Nucleotides apart = nicked;
    for (const std::size_t i : {3, 4, 5, 6, 7, 8})
        apart[i].frame.point = apart[i].frame.point + algebra3d::Vector3<double>(0, 0, 9);
    KeptPairs pairs, none;
    EXPECT_THAT(sizesOf(read(apart, none)), ElementsAre(3, 3, 0));
    pairs.setKeeping(true);
    EXPECT_THAT(sizesOf(read(nicked, pairs)), ElementsAre(6, 0));
    EXPECT_THAT(sizesOf(read(apart, pairs)), ElementsAre(6, 0));
}

TEST(KeptPairs, OtherNucleotidesHavePairsOfTheirOwn)
{
    KeptPairs pairs;
    pairs.setKeeping(true);
    bool couldBeUsed = false;
    read(idealDuplex("ACGGTC"), pairs, &couldBeUsed);
    EXPECT_TRUE(couldBeUsed && !pairs.areOthers());
    for (const char* letters : {"ACGGT", "ACGGTCA", "ACGGTG"}) {
        EXPECT_THAT(sizesOf(read(idealDuplex(letters), pairs, &couldBeUsed)),
                    ElementsAre(std::string(letters).size(), 0));
        EXPECT_TRUE(!couldBeUsed && pairs.areOthers());
    }
    EXPECT_THAT(sizesOf(read(opened(idealDuplex("ACGGTC"), 0), pairs, &couldBeUsed)),
                ElementsAre(6, 0));
    EXPECT_TRUE(couldBeUsed && !pairs.areOthers());
}

TEST(KeptPairs, AreNotKeptUnlessTheyAreToBe)
{
    KeptPairs pairs;
    bool couldBeUsed = false;
    read(idealDuplex("ACG"), pairs, &couldBeUsed);
    EXPECT_TRUE(couldBeUsed) << "there are none that could";
    EXPECT_FALSE(pairs.areKnown());
    EXPECT_TRUE(pairs.wereMissed());
}

TEST(PairKeepingSeries, PairsAreThoseOfTheFirstFrameWhicheverIsLoadedFirst)
{
    const Nucleotides closed = idealDuplex("ACGGTC");
    const std::vector<Nucleotides> frames{opened(closed, 5), closed, opened(closed, 0)};
    for (const std::size_t first : {0, 1, 2}) {
        SCOPED_TRACE(first);
        const auto pairs = std::make_shared<KeptPairs>();
        PairKeepingSeries series(std::make_unique<NucleotideSeries>(frames, pairs), pairs);
        EXPECT_EQ(series.count(), 3U);
        EXPECT_EQ(pairsIn(series.load(first)), 5U);
        for (const std::size_t frame : {2, 1, 0}) {
            const LoadedFrame loaded = series.load(frame);
            EXPECT_EQ(pairsIn(loaded), 5U);
            EXPECT_EQ(loaded.configuration->dnas.size(), 1U);
            EXPECT_EQ(loaded.configuration->loneBases.size(), 2U);
        }
    }
}

TEST(PairKeepingSeries, TheFirstFrameIsTheFirstThatThereIs)
{
    const Nucleotides closed = idealDuplex("ACGGTC");
    const std::vector<Nucleotides> frames{{}, closed, opened(closed, 0)};
    for (const std::size_t first : {0, 2}) {
        const auto pairs = std::make_shared<KeptPairs>();
        PairKeepingSeries series(std::make_unique<NucleotideSeries>(frames, pairs), pairs);
        EXPECT_EQ(series.load(first).configuration.has_value(), first > 0);
        EXPECT_EQ(pairsIn(series.load(2)), 6U);
        EXPECT_EQ(series.load(0).error, "cut");
    }
}

TEST(PairKeepingSeries, OfFramesWithoutNucleotidesNoOtherIsLoaded)
{
    std::vector<std::size_t> loads;
    PairKeepingSeries series(std::make_unique<PlainSeries>(loads), std::make_shared<KeptPairs>());
    for (const std::size_t frame : {4, 2, 4})
        EXPECT_TRUE(series.load(frame).configuration);
    EXPECT_THAT(loads, ElementsAre(4, 2, 4));
}

TEST(PairKeepingSeries, TheFirstFrameIsLoadedOnceForAll)
{
    const Nucleotides closed = idealDuplex("ACG");
    const auto pairs = std::make_shared<KeptPairs>();
    auto inner = std::make_unique<NucleotideSeries>(std::vector<Nucleotides>(4, closed), pairs);
    const NucleotideSeries& loaded = *inner;
    PairKeepingSeries series(std::move(inner), pairs);
    for (const std::size_t frame : {3, 2, 1})
        series.load(frame);
    EXPECT_THAT(loaded.loads, ElementsAre(3, 0, 3, 2, 1));
}

TEST(PairKeepingSeries, WhenItIsStoppedItLooksForThePairsAgain)
{
    const Nucleotides closed = idealDuplex("ACG");
    const auto pairs = std::make_shared<KeptPairs>();
    PairKeepingSeries series(
        std::make_unique<NucleotideSeries>(
            std::vector<Nucleotides>{opened(closed, 0), closed, closed}, pairs),
        pairs);
    int asked = 0;
    EXPECT_EQ(series.load(2, [&asked](double) { return asked++ == 0; }).error, "cut");
    EXPECT_EQ(pairsIn(series.load(2)), 2U);
}

} // namespace strandview
