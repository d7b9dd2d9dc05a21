// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_CHECKS_H
#define STRANDVIEW_FORMATS_CHECKS_H

#include <cmath>
#include <optional>
#include <string>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// What the readers ask of numbers and letters, whatever the format of the file.

constexpr char EXPECTED_NUMBER[] = "a finite number";
constexpr char EXPECTED_COORDINATE[] = "a coordinate between -1e18 and 1e18";
constexpr char EXPECTED_BASE[] = "A, C, G or T"; // model/Dna.h

/// Whether a finite number can be drawn: at most 1e18 in magnitude, so that the square
/// of a distance (at most 1.2e37) is finite in the single precision that is drawn with.
constexpr double LARGEST_COORDINATE = 1e18;
inline bool isCoordinate(double number) { return std::abs(number) <= LARGEST_COORDINATE; }

/// Checks that a quaternion of finite components is a rotation: its norm is 1 within
/// algebra3d::ROTATION_TOLERANCE, as the nodes ask it. With options.normalise any quaternion but
/// zero is one, and is scaled to unit length. "found ..., expected ..." if it is none, else
/// nothing.
STRANDVIEW_FORMATS_EXPORT std::string checkRotation(algebra3d::Quaternion<double>& rotation,
                                                    const ReadOptions& options);

/// The one of BASE_LETTERS for such a letter, small or capital; nothing for any other character.
STRANDVIEW_FORMATS_EXPORT std::optional<char> parseBase(char letter);

} // namespace strandview

#endif
