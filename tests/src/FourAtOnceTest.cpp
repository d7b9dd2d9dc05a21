// SPDX-License-Identifier: GPL-3.0-or-later
// What is computed for several numbers at once is what is computed for one alone.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <Inventor/SbColor.h>

#include "sampling/fourAtOnce.h"

namespace {

using Vector = algebra3d::Vector3<double>;

// One more than is written at a time, and what no result is.
template <typename T>
std::vector<T> withRim(std::size_t count)
{
    return std::vector<T>(count + 16, T(77));
}

template <typename T>
void expectRimUntouched(const std::vector<T>& values, std::size_t count)
{
    EXPECT_TRUE(std::all_of(values.begin() + std::ptrdiff_t(count), values.end(), [](T value) {
        return value == T(77);
    })) << count;
}

std::array<std::uint8_t, 4> bytesOf(std::uint32_t colour)
{
    std::array<std::uint8_t, 4> bytes;
    std::memcpy(bytes.data(), &colour, sizeof colour);
    return bytes;
}

std::array<std::uint8_t, 4> unpacked(std::uint32_t packed)
{
    return {std::uint8_t(packed >> 24), std::uint8_t(packed >> 16), std::uint8_t(packed >> 8),
            std::uint8_t(packed)};
}

} // namespace

TEST(FourAtOnce, VerticesAreRoundedAsOneIs)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> exponent(-320, 40);
    const auto number = [&] {
        const double magnitude = std::pow(10.0, exponent(random));
        return random() % 2 ? magnitude : -magnitude;
    };
    std::vector<std::size_t> counts(40);
    std::iota(counts.begin(), counts.end(), 0);
    // By one thread, and by two.
    for (std::size_t many : {MANY_VERTICES - 1, MANY_VERTICES, MANY_VERTICES + 1})
        counts.push_back(many);
    for (std::size_t count : counts) {
        std::vector<Vector> points, normals;
        for (std::size_t i = 0; i < count; ++i) {
            points.emplace_back(number(), number(), number());
            normals.emplace_back(number(), std::numeric_limits<double>::infinity(), 0.1);
        }
        auto rounded = withRim<float>(6 * count);
        roundVertices(points.data(), normals.data(), count, rounded.data());
        for (std::size_t i = 0; i < count; ++i) {
            for (int axis = 0; axis < 3; ++axis) {
                EXPECT_EQ(rounded[6 * i + std::size_t(axis)], float(points[i][axis]));
                EXPECT_EQ(rounded[6 * i + 3 + std::size_t(axis)], float(normals[i][axis]));
            }
        }
        expectRimUntouched(rounded, 6 * count);
    }
}

TEST(FourAtOnce, ColoursAreRoundedAsCoinRoundsOne)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<float> part(0, 1);
    for (std::size_t count = 1; count < 40; ++count) {
        for (const std::size_t transparencyCount : {std::size_t(1), std::size_t(2), count}) {
            std::vector<float> colours, transparencies;
            for (std::size_t i = 0; i < 3 * count; ++i)
                colours.push_back(random() % 8 ? part(random) : float(random() % 256) / 255);
            for (std::size_t i = 0; i < transparencyCount; ++i)
                transparencies.push_back(part(random));
            auto rounded = withRim<std::uint32_t>(count);
            roundColours(colours.data(), count, transparencies.data(), transparencyCount,
                         rounded.data());
            for (std::size_t i = 0; i < count; ++i) {
                const float transparency = transparencies[std::min(i, transparencyCount - 1)];
                EXPECT_EQ(bytesOf(rounded[i]),
                          unpacked(SbColor(&colours[3 * i]).getPackedValue(transparency)));
            }
            expectRimUntouched(rounded, count);
        }
    }
}

TEST(FourAtOnce, RowsGetTheColourOfTheirMaterial)
{
    std::vector<std::uint32_t> colours(50);
    for (std::size_t i = 0; i < colours.size(); ++i)
        colours[i] = std::uint32_t(1000003 * i);
    for (std::size_t width = 1; width < 36; ++width) {
        for (const std::size_t rows : {0, 1, 2, 60}) {
            for (const std::size_t step : {0, 1, 3}) {
                auto filled = withRim<std::uint32_t>(rows * width);
                spreadColours(colours.data(), colours.size(), 4, step, rows, width, filled.data());
                for (std::size_t i = 0; i < rows * width; ++i)
                    ASSERT_EQ(filled[i],
                              colours[std::min(4 + step * (i / width), colours.size() - 1)])
                        << width << " " << i;
                expectRimUntouched(filled, rows * width);
            }
        }
    }
}
