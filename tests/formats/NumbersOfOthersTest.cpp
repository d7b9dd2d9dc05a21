// SPDX-License-Identifier: GPL-3.0-or-later
// What is computed of data that others wrote, beside the numbers that are known of them.
#include <cmath>
#include <numeric>
#include <string>

#include <gmock/gmock.h>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/scalars.h>
#include <strandview/analysis/shape.h>
#include <strandview/analysis/topology.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

#include "support/FilesOfOthers.h"

namespace strandview {

namespace {

class NumbersOfOthers : public FilesOfOthers
{
protected:
    Configuration load(const std::string& name, bool shallClose = false)
    {
        ReadOptions options;
        options.close = shallClose;
        ReadReport report;
        auto read = readFile(folder + name, options, report);
        EXPECT_TRUE(read) << report.error;
        return read.value_or(Configuration());
    }
    double writheOf(const std::string& name)
    {
        const Configuration data = load(name, true);
        return topologyOf(trackOf(data.rods.at(0))).writhe.value();
    }
    Topology ofPairs(const Configuration& data) { return topologyOf(tracksOf(data).at(0)); }
};

double turnsOfSteps(const Dna& dna)
{
    double degrees = 0;
    for (const StepParameters& step : stepsOf(dna))
        degrees += step.twist;
    return degrees / 360;
}

} // namespace

TEST_F(NumbersOfOthers, AMinicircleOf336Pairs)
{
    const Configuration data = load("minicircle336.par");
    const Topology found = ofPairs(data);
    EXPECT_EQ(found.linkingNumber.value(), 32);
    EXPECT_NEAR(found.twist.value(), 31.949147, 5e-7);
    EXPECT_NEAR(found.writhe.value(), 0.050853, 5e-7);
    EXPECT_NEAR(found.twist.value() + found.writhe.value(), 32, 1e-10);
    EXPECT_NEAR(turnsOfSteps(data.dnas.at(0)), 31.912, 5e-4); // which is another number
}

TEST_F(NumbersOfOthers, AMinicircleOf68Pairs)
{
    const Configuration data = load("minicircle68.bplist");
    const Topology found = ofPairs(data);
    EXPECT_EQ(found.linkingNumber.value(), 6);
    EXPECT_NEAR(found.twist.value(), 6, 5e-3);
}

TEST_F(NumbersOfOthers, WrithesOfClosedCurves)
{
    EXPECT_NEAR(writheOf("trefoil_tight328.vect"), -3.414866, 5e-7);
    EXPECT_NEAR(writheOf("trefoil_supercoiled.xyz"), -8.890715, 1e-6);
    EXPECT_NEAR(writheOf("calc_writhe_circle_x2.raw"), 1.005543, 5e-7);
    EXPECT_NEAR(writheOf("calc_writhe_pletonemic_supercoil.raw"), -4.940250, 1e-6);
}

TEST_F(NumbersOfOthers, ATightTrefoilTouchesItselfAtItsDiameter)
{
    const Configuration data = load("trefoil_tight328.vect");
    const auto contact = contactOf(data.rods.at(0).points);
    ASSERT_TRUE(contact);
    EXPECT_NEAR(contact->distance, 1, 2e-3); // of a tube of radius 0.5
    EXPECT_NEAR(lengthOf(data.rods[0].points), 16.376, 5e-4);
}

TEST_F(NumbersOfOthers, GaussIntegralsOfASupercoilThatIsHeldByItsEnds)
{
    ReadReport report;
    const auto series = openSeries({folder + "tweezer10.xyz"}, {}, report);
    ASSERT_TRUE(series) << report.error;
    const double known[] = {18.45322, 18.62791};
    for (const std::size_t last : {0u, 1u}) {
        const LoadedFrame loaded = series->load(9 * last);
        ASSERT_TRUE(loaded.configuration) << loaded.error;
        const Topology found = topologyOf(trackOf(loaded.configuration->rods.at(0)));
        EXPECT_NEAR(found.gaussIntegral.value(), known[last], 5e-6);
        EXPECT_FALSE(found.writhe || found.linkingNumber);
    }
}

TEST_F(NumbersOfOthers, AChainOfPairs)
{
    const Configuration data = load("helixmc_data0.npz");
    EXPECT_NEAR(lengthOf(data.dnas.at(0).pairPoints), 10406.545, 5e-4);
    EXPECT_NEAR(turnsOfSteps(data.dnas[0]), 293.9329, 5e-5);
}

TEST_F(NumbersOfOthers, EveryScalarOfEveryLineHasAValueForEachOfItsRows)
{
    for (const char* name : {"1bna.pdb", "minicircle336.par", "minicircle68.bplist",
                             "trefoil_tight328.vect", "softarm_br2.npz", "fibers3x3.txt",
                             "protein_3kzn_a.xyz", "duplex202_classic.dat", "holliday.dat"}) {
        SCOPED_TRACE(name);
        const Configuration data = load(name);
        for (const Track& track : tracksOf(data)) {
            SCOPED_TRACE(titleOf(track));
            const std::vector<std::string> names = scalarNames(track);
            EXPECT_GE(names.size(), 7u);
            for (const std::string& scalar : names) {
                SCOPED_TRACE(scalar);
                const auto values = findScalar(track, scalar);
                ASSERT_TRUE(values);
                EXPECT_EQ(values->size(), track.points.size());
                EXPECT_EQ(roundingOf(track, scalar).size(), track.points.size());
                const Quantity* const quantity = findQuantity(track.kind, scalar);
                const bool isOpenStep =
                    quantity && quantity->place == ScalarPlace::STEP && !track.isClosed;
                for (std::size_t i = 0; i < values->size(); ++i)
                    EXPECT_EQ(std::isfinite((*values)[i]),
                              !(isOpenStep && i + 1 == values->size()));
            }
        }
    }
}

} // namespace strandview
