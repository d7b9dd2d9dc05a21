// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/digest.h"

#include <cmath>

#include <gtest/gtest.h>

namespace strandview {

namespace {

Configuration withPoint(double z)
{
    Configuration configuration;
    configuration.markers.emplace_back();
    configuration.markers.back().point = {1, 2, z};
    return configuration;
}

} // namespace

// FIPS 180-2, appendix B.1.
TEST(Digest, OfATextIsSha256)
{
    EXPECT_EQ(digestOf(std::string("abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Digest, TellsDataThatDifferInTheLastBit)
{
    EXPECT_EQ(digestOf(withPoint(0.1)), digestOf(withPoint(0.1)));
    EXPECT_NE(digestOf(withPoint(0.1)), digestOf(withPoint(std::nextafter(0.1, 1))));
}

TEST(Digest, TellsScalarsOfDnaAndBirods)
{
    Configuration plain, more;
    for (Configuration* data : {&plain, &more}) {
        data->dnas.emplace_back();
        data->birods.emplace_back();
    }
    more.dnas[0].scalars = {{"extension", {1}}};
    EXPECT_NE(digestOf(plain), digestOf(more));
    more.dnas[0].scalars.clear();
    more.birods[0].scalars = {{"extension", {1}}};
    EXPECT_NE(digestOf(plain), digestOf(more));
}

} // namespace strandview
