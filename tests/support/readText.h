// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_SUPPORT_READTEXT_H
#define STRANDVIEW_TESTS_SUPPORT_READTEXT_H

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/TableReader.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// What came of one text; nothing of it stays when the text was refused.
struct Reading
{
    std::optional<Configuration> configuration;
    ReadReport report;
};

/// Either reader of the program.
using TextReader = std::optional<Configuration> (*)(std::string_view text,
                                                    const std::string& fileName,
                                                    const ReadOptions& options, ReadReport& report);

inline Reading readWith(TextReader reader, const std::string& text, const std::string& fileName,
                        const ReadOptions& options)
{
    Reading reading;
    reading.configuration = reader(text, fileName, options, reading.report);
    return reading;
}

/// By a reader that is given a source.
using SourceReader = std::optional<Configuration> (*)(Source& source, const ReadOptions& options,
                                                      ReadReport& report);

inline Reading readWith(SourceReader reader, const std::string& text)
{
    Reading reading;
    reading.configuration = reader(*Source::ofBytes("here", text), {}, reading.report);
    return reading;
}

/// A table as a text.
inline std::optional<Configuration> readTableText(std::string_view text,
                                                  const std::string& fileName,
                                                  const ReadOptions& options, ReadReport& report)
{
    return readTable(*Source::ofBytes(fileName, std::string(text)), options, report);
}

/// The rods of a text that must be accepted.
inline std::vector<Rod> acceptedRods(const Reading& reading)
{
    EXPECT_EQ(reading.report.error, "");
    return reading.configuration ? reading.configuration->rods : std::vector<Rod>();
}

/// The only rod of a text that must be accepted.
inline Rod onlyRod(const Reading& reading)
{
    const std::vector<Rod> rods = acceptedRods(reading);
    EXPECT_EQ(rods.size(), 1U);
    return rods.size() == 1 ? rods[0] : Rod();
}

using Points = std::vector<std::array<double, 3>>;
using Rotations = std::vector<std::array<double, 4>>;

inline Points numbersOf(const std::vector<algebra3d::Vector3<double>>& points)
{
    Points numbers;
    for (const auto& p : points)
        numbers.push_back({p.x, p.y, p.z});
    return numbers;
}

inline Rotations numbersOf(const std::vector<algebra3d::Quaternion<double>>& rotations)
{
    Rotations numbers;
    for (const auto& q : rotations)
        numbers.push_back({q[0], q[1], q[2], q[3]});
    return numbers;
}

inline void expectSameDna(const Dna& found, const Dna& expected)
{
    EXPECT_EQ(found.bases, expected.bases);
    EXPECT_EQ(numbersOf(found.pairPoints), numbersOf(expected.pairPoints));
    EXPECT_EQ(numbersOf(found.pairRotations), numbersOf(expected.pairRotations));
    EXPECT_EQ(numbersOf(found.points1), numbersOf(expected.points1));
    EXPECT_EQ(numbersOf(found.rotations1), numbersOf(expected.rotations1));
    EXPECT_EQ(numbersOf(found.points2), numbersOf(expected.points2));
    EXPECT_EQ(numbersOf(found.rotations2), numbersOf(expected.rotations2));
}

} // namespace strandview

#endif
