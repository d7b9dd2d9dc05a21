// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/CameraNumbers.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gmock/gmock.h>

namespace strandview {

namespace {

CameraNumbers someCamera(bool perspective)
{
    return {perspective, {1.5f, -2, 0.25f}, {0, 0, 0, 1}, 7.5f, perspective ? 0.75f : 12.0f};
}

bool sameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

void expectSameBits(const CameraNumbers& a, const CameraNumbers& b)
{
    EXPECT_EQ(a.perspective, b.perspective);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(sameBits(a.position[i], b.position[i])) << i;
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(sameBits(a.orientation[i], b.orientation[i])) << i;
    EXPECT_TRUE(sameBits(a.focalDistance, b.focalDistance));
    EXPECT_TRUE(sameBits(a.size, b.size));
}

TEST(CameraNumbers, ReadAsTypeAndNineNumbers)
{
    EXPECT_EQ(formatCamera(someCamera(false)), "orthographic,1.5,-2,0.25,0,0,0,1,7.5,12");
    EXPECT_EQ(formatCamera(someCamera(true)), "perspective,1.5,-2,0.25,0,0,0,1,7.5,0.75");
}

TEST(CameraNumbers, ComeBackBitForBit)
{
    std::mt19937 random(5);
    std::normal_distribution<float> normal;
    std::uniform_real_distribution<float> exponent(-30, 30);
    const auto anyNumber = [&] { return normal(random) * std::pow(10.0f, exponent(random)); };
    for (int i = 0; i < 2000; ++i) {
        CameraNumbers camera;
        camera.perspective = i % 2;
        for (float& coordinate : camera.position)
            coordinate = anyNumber();
        float square = 0;
        for (float& component : camera.orientation) {
            component = normal(random);
            square += component * component;
        }
        for (float& component : camera.orientation)
            component /= std::sqrt(square);
        camera.focalDistance = std::abs(anyNumber());
        camera.size = camera.perspective ? std::abs(std::remainder(anyNumber(), 3.1f)) + 1e-6f
                                         : std::abs(anyNumber());
        const std::optional<CameraNumbers> back = parseCamera(formatCamera(camera));
        ASSERT_TRUE(back) << formatCamera(camera);
        expectSameBits(*back, camera);
    }
}

TEST(CameraNumbers, KeepNegativeZerosAndTheSmallestNumbers)
{
    CameraNumbers camera = someCamera(false);
    camera.position = {-0.0f, std::numeric_limits<float>::denorm_min(),
                       -std::numeric_limits<float>::max()};
    const std::optional<CameraNumbers> back = parseCamera(formatCamera(camera));
    ASSERT_TRUE(back) << formatCamera(camera);
    expectSameBits(*back, camera);
}

TEST(CameraNumbers, NormaliseAQuaternionThatWasShortenedByHand)
{
    const std::optional<CameraNumbers> camera =
        parseCamera("orthographic,0,0,0,0.57,-0.57,0.42,0.42,1,1");
    ASSERT_TRUE(camera);
    double square = 0;
    for (const float component : camera->orientation)
        square += double(component) * component;
    EXPECT_NEAR(square, 1, 1e-6);
    EXPECT_NEAR(camera->orientation[0] / camera->orientation[2], 0.57 / 0.42, 1e-6);
    EXPECT_FLOAT_EQ(camera->orientation[1], -camera->orientation[0]);
}

TEST(CameraNumbers, AnOrientationHasTheNormOfARotation)
{
    // As the quaternions of files: 1 within 0.01.
    for (const char* w : {"0.9901", "1.0099"})
        EXPECT_TRUE(parseCamera(std::string("orthographic,0,0,5,0,0,0,") + w + ",5,2")) << w;
    for (const char* w : {"0.9899", "1.0101"})
        EXPECT_FALSE(parseCamera(std::string("orthographic,0,0,5,0,0,0,") + w + ",5,2")) << w;
}

TEST(CameraNumbers, AreEqualOnlyInEveryNumber)
{
    const CameraNumbers camera = someCamera(false);
    EXPECT_TRUE(camera == someCamera(false));
    EXPECT_FALSE(camera == someCamera(true));
    for (int i = 0; i < 9; ++i) {
        CameraNumbers other = camera;
        float* const numbers[] = {
            &other.position[0],    &other.position[1],    &other.position[2],
            &other.orientation[0], &other.orientation[1], &other.orientation[2],
            &other.orientation[3], &other.focalDistance,  &other.size};
        *numbers[i] = std::nextafter(*numbers[i], 100.0f);
        EXPECT_FALSE(camera == other) << i;
    }
}

class BadCameraNumbers : public testing::TestWithParam<const char*>
{
};

TEST_P(BadCameraNumbers, AreRefused) { EXPECT_FALSE(parseCamera(GetParam())); }

INSTANTIATE_TEST_SUITE_P(
    , BadCameraNumbers,
    testing::Values("", ",", "orthographic", "0,0,0,0,0,0,1,1,1",
                    // another type, or none quite
                    "isometric,0,0,0,0,0,0,1,1,1", "Orthographic,0,0,0,0,0,0,1,1,1",
                    " orthographic,0,0,0,0,0,0,1,1,1", "--camera orthographic,0,0,0,0,0,0,1,1,1",
                    // a number too few or too many
                    "orthographic,0,0,0,0,0,0,1,1", "orthographic,0,0,0,0,0,0,1,1,1,1",
                    "orthographic,0,0,0,0,0,0,1,1,1,", "orthographic,0,0,0,0,0,0,1,1,",
                    "orthographic,,0,0,0,0,0,1,1,1",
                    // no numbers
                    "orthographic,0,0,zero,0,0,0,1,1,1", "orthographic,0,0,0x,0,0,0,1,1,1",
                    "orthographic,0,0, 0,0,0,0,1,1,1", "orthographic,nan,0,0,0,0,0,1,1,1",
                    "orthographic,inf,0,0,0,0,0,1,1,1", "orthographic,1e39,0,0,0,0,0,1,1,1",
                    // no rotation
                    "orthographic,0,0,0,0,0,0,0,1,1", "orthographic,0,0,0,0,0,0,2,1,1",
                    "orthographic,0,0,0,1,0,0,1,1,1", "orthographic,0,0,0,1e30,0,0,1,1,1",
                    // no distance or size
                    "orthographic,0,0,0,0,0,0,1,0,1", "orthographic,0,0,0,0,0,0,1,-1,1",
                    "orthographic,0,0,0,0,0,0,1,1,0", "orthographic,0,0,0,0,0,0,1,1,-1",
                    "perspective,0,0,0,0,0,0,1,1,0", "perspective,0,0,0,0,0,0,1,1,3.15"));

} // namespace

} // namespace strandview
