// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/Configuration.h>

#include <string>

#include <gtest/gtest.h>

namespace strandview {

namespace {

// One of each kind, with an origin that tells which.
Configuration oneOfEach(const std::string& name)
{
    Configuration all;
    all.rods.resize(1);
    all.birods.resize(1);
    all.dnas.resize(1);
    all.markers.resize(1);
    all.frames.resize(1);
    all.arrows.resize(1);
    all.loneBases.resize(1);
    all.rods[0].origin = name + " rod";
    all.birods[0].origin = name + " birod";
    all.dnas[0].origin = name + " DNA";
    all.markers[0].origin = name + " marker";
    all.frames[0].origin = name + " frame";
    all.arrows[0].origin = name + " arrow";
    all.loneBases[0].origin = name + " base";
    return all;
}

template <typename Item>
void expectOrigins(const std::vector<Item>& items, const std::string& kind)
{
    ASSERT_EQ(items.size(), 2u) << kind;
    EXPECT_EQ(items[0].origin, "first " + kind);
    EXPECT_EQ(items[1].origin, "second " + kind);
}

TEST(Configuration, AppendsEachKindBehindItsOwn)
{
    Configuration all = oneOfEach("first"), more = oneOfEach("second");
    append(all, std::move(more));
    expectOrigins(all.rods, "rod");
    expectOrigins(all.birods, "birod");
    expectOrigins(all.dnas, "DNA");
    expectOrigins(all.markers, "marker");
    expectOrigins(all.frames, "frame");
    expectOrigins(all.arrows, "arrow");
    expectOrigins(all.loneBases, "base");
}

TEST(Configuration, TellsTheMemoryOfItsData)
{
    Configuration all = oneOfEach("first");
    const std::size_t before = memoryOf(all);
    all.rods[0].points.resize(1000);
    all.rods[0].scalars.resize(1);
    all.rods[0].scalars[0].values.resize(1000);
    all.birods[0].rotations2.resize(1000);
    all.dnas[0].bases.resize(1000);
    all.dnas[0].standard.emplace().points1.resize(1000);
    const std::size_t data = 1000 * (2 * sizeof(algebra3d::Vector3<double>) +
                                     sizeof(algebra3d::Quaternion<double>) + sizeof(double) + 1);
    EXPECT_GE(memoryOf(all), before + data - 100); // a short text takes no memory of its own
    EXPECT_LE(memoryOf(all), before + data + 1000);
}

TEST(Configuration, KeepsMoleculesApartThatItAppends)
{
    Configuration all = oneOfEach("first"), more = oneOfEach("second");
    all.rods[0].molecule = 1;
    all.dnas[0].molecule = 3;
    more.rods[0].molecule = 2;
    more.loneBases[0].molecule = 2;
    append(all, std::move(more));
    EXPECT_EQ(all.rods[0].molecule, 1u);
    EXPECT_EQ(all.dnas[0].molecule, 3u);
    EXPECT_EQ(all.rods[1].molecule, 5u);
    EXPECT_EQ(all.loneBases[1].molecule, 5u);
    EXPECT_EQ(all.dnas[1].molecule, 0u) << "belonged to nothing";
}

} // namespace

} // namespace strandview
