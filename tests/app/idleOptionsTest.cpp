// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/idleOptions.h"

#include <gmock/gmock.h>

#include "request/thingTexts.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Configuration rods(bool hasFrames = true)
{
    Rod rod;
    rod.points = {{0, 0, 0}, {0, 0, 1}};
    rod.rotations.resize(2);
    rod.hasFrames = hasFrames;
    return {{rod}};
}

Configuration dna()
{
    Configuration configuration{{}};
    configuration.dnas.emplace_back();
    configuration.dnas[0].bases = "A";
    return configuration;
}

Options given(const std::vector<std::string>& names)
{
    Options options;
    options.given = names;
    return options;
}

TEST(IdleOptions, AreNoneWhereEachHasSomethingToActOn)
{
    EXPECT_THAT(
        findIdleOptions(given({"--radius", "--ribbon-width", "--normalise", "--render"}), rods()),
        IsEmpty());
    EXPECT_THAT(findIdleOptions(given({"--dna", "--dna-unit", "--normalise"}), dna()), IsEmpty());
    EXPECT_THAT(findIdleOptions(given({"--closed"}), rods(false)), IsEmpty());
}

TEST(IdleOptions, AGhostNeedsAReferenceThatItCanBeSuperposedFrom)
{
    Options options = given({"--ghost"});
    options.showGhost = true;
    Configuration data = rods(), other = rods();
    data.reference = std::make_shared<const Configuration>(other);
    EXPECT_THAT(findIdleOptions(options, data), IsEmpty());
    other.rods[0].points.emplace_back(1, 0, 1);
    data.reference = std::make_shared<const Configuration>(other);
    EXPECT_THAT(findIdleOptions(options, data),
                ElementsAre("--ghost has no effect: found nothing of as many points in the "
                            "reference"));
}

TEST(IdleOptions, AreThoseOfThingsThatThereAreNot)
{
    Options options = given({"--thing"});
    ASSERT_EQ(readThings("rod 1: hidden; rods 2-9: hidden; DNA 1: name=a; others: hidden",
                         options.things),
              "");
    EXPECT_THAT(findIdleOptions(options, rods()),
                ElementsAre("--thing has no effect on rod 2: found none behind rod 1",
                            "--thing has no effect on DNA 1: found none"));
    options.given = {};
    EXPECT_THAT(findIdleOptions(options, rods()), IsEmpty());
}

TEST(IdleOptions, AreAllButThoseThatAreMeant)
{
    EXPECT_THAT(
        findIdleOptions(given({"--info", "--radius", "--json"}), {"--info", "--json"}, "it tells"),
        ElementsAre("--radius has no effect: it tells"));
    Options hidden = given({"--tube"});
    hidden.showTube = false;
    EXPECT_THAT(findIdleOptions(hidden, {}, "it tells"),
                ElementsAre("--no-tube has no effect: it tells"));
}

TEST(IdleOptions, AreToldInTheirOrderWithTheReason)
{
    EXPECT_THAT(findIdleOptions(given({"--dna-unit", "--pairs", "--dna"}), rods()),
                ElementsAre("--dna-unit has no effect: found no DNA",
                            "--pairs has no effect: found no DNA",
                            "--dna has no effect: found no DNA"));
    Options atoms = given({"--slices"});
    atoms.dna.backbone = false;
    EXPECT_THAT(findIdleOptions(atoms, dna()),
                ElementsAre("--slices has no effect: found no rods"));
    EXPECT_THAT(findIdleOptions(given({"--ribbon"}), dna()),
                ElementsAre("--ribbon has no effect: found no rods"));
}

TEST(IdleOptions, ClosingNeedsRodsThatAreNoStrandsOfDna)
{
    Configuration strands = rods();
    strands.rods[0].isBackbone = true;
    for (const Configuration& data : {dna(), strands})
        EXPECT_THAT(findIdleOptions(given({"--closed"}), data),
                    ElementsAre("--closed has no effect: found no rods"));
}

TEST(IdleOptions, AreThoseOfWhatAnotherOptionHides)
{
    Options options = given({"--tube", "--slices", "--tube-colour"});
    options.showTube = false;
    EXPECT_THAT(findIdleOptions(options, rods()),
                ElementsAre("--slices has no effect: --no-tube hides the tubes",
                            "--tube-colour has no effect: --no-tube hides the tubes"));
    options.dna.backbone = false;
    EXPECT_THAT(findIdleOptions(options, dna()),
                ElementsAre("--no-tube has no effect: found no rods",
                            "--slices has no effect: found no rods",
                            "--tube-colour has no effect: found no rods"));
}

TEST(IdleOptions, AreNoneOfTubesWhereABackboneIsDrawn)
{
    const std::vector<std::string> ofTubes = {"--radius", "--subsegments", "--slices",
                                              "--tube-colour", "--dna"};
    EXPECT_THAT(findIdleOptions(given(ofTubes), dna()), IsEmpty());
    Configuration strand = rods(false);
    strand.rods[0].isBackbone = true;
    EXPECT_THAT(findIdleOptions(given(ofTubes), strand), IsEmpty());
    EXPECT_THAT(findIdleOptions(given({"--ribbon-width"}), strand),
                ElementsAre("--ribbon-width has no effect: found no rods"));
}

TEST(IdleOptions, FramesThatWereMadeAreNotNormalised)
{
    EXPECT_THAT(findIdleOptions(given({"--normalise"}), rods(false)),
                ElementsAre("--normalise has no effect: found no frames"));
}

TEST(IdleOptions, ABackgroundThatIsLeftOutStillSuitsTheLegend)
{
    Options options = given({"--background"});
    options.transparent = true;
    EXPECT_THAT(findIdleOptions(options, rods()),
                ElementsAre("--background has no effect: --transparent leaves it out"));
    options.colourBy = "curvature";
    EXPECT_THAT(findIdleOptions(options, rods()), IsEmpty());
}

TEST(IdleOptions, AreThoseOfALegendThatIsLeftOut)
{
    const std::vector<std::string> ofLegend = {"--legend", "--legend-title", "--legend-unit",
                                               "--legend-format"};
    Options options = given(ofLegend);
    options.colourBy = "curvature";
    EXPECT_THAT(findIdleOptions(options, rods()), IsEmpty());
    options.legend.place = LegendPlace::OFF;
    EXPECT_THAT(findIdleOptions(options, rods()),
                ElementsAre("--legend-title has no effect: --legend off leaves it out",
                            "--legend-unit has no effect: --legend off leaves it out",
                            "--legend-format has no effect: --legend off leaves it out"));
    options.given = {"--background"};
    options.transparent = true;
    EXPECT_THAT(findIdleOptions(options, rods()),
                ElementsAre("--background has no effect: --transparent leaves it out"));
}

TEST(IdleOptions, NothingLeftOfTheRodsIsToldAsWell)
{
    Options options;
    options.showTube = false;
    EXPECT_THAT(findIdleOptions(options, rods()), IsEmpty()) << "the ribbon is shown";
    EXPECT_THAT(findIdleOptions(options, rods(false)),
                ElementsAre("--no-tube: nothing is left to see of rods without frames; --ribbon "
                            "shows a ribbon"));
    options.showRibbon = false;
    EXPECT_THAT(findIdleOptions(options, rods()),
                ElementsAre("--no-tube --no-ribbon: nothing of the rods is left to see"));
    EXPECT_THAT(findIdleOptions(options, dna()), IsEmpty());
}

} // namespace

} // namespace strandview
