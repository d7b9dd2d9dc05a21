// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_READERS_DATACHECKS_H
#define STRANDVIEW_APP_READERS_DATACHECKS_H

#include <optional>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include "readers/ReadReport.h"

/// What the readers ask of numbers and letters, whatever the format of the file.

constexpr char expectedNumber[] = "a finite number";
constexpr char expectedCoordinate[] = "a coordinate between -1e18 and 1e18";
constexpr char expectedBase[] = "A, C, G or T";

/// Whether a finite number can be drawn: at most 1e18 in magnitude, so that the square
/// of a distance (at most 1.2e37) is finite in the single precision that is drawn with.
bool isCoordinate(double number);

/// Whether two points are one to the formulas, which divide by the square of their
/// distance: they are equal, or so near (below 1.5e-154) that it is no normal number.
bool areCoincident(const algebra3d::Vector3<double>& a, const algebra3d::Vector3<double>& b);

/// Points of one rod that are nearer than this are one: 1e-5 of the mean distance of
/// consecutive points, not counting coincident ones; 0 without any. Beside unit edges
/// the rings of the tubes were seen to fail from 1e-7 down, and to hold at 1e-6.
double smallestEdge(const std::vector<algebra3d::Vector3<double>>& points);

/// Whether the last of at least two points is the first one again, within smallestEdge().
bool isClosed(const std::vector<algebra3d::Vector3<double>>& points);

/// The quaternion divided by its norm, which is not 0.
algebra3d::Quaternion<double> scaledToUnit(algebra3d::Quaternion<double> q);

/// Checks that a quaternion of finite components is a rotation: its norm is 1 within
/// 0.01, the rod nodes' own tolerance. With options.normalise any quaternion but zero
/// is one, and is scaled to unit length. "found ..., expected ..." if it is none, else
/// nothing.
std::string checkRotation(algebra3d::Quaternion<double>& rotation, const ReadOptions& options);

/// A, C, G or T for such a letter, small or capital; nothing for any other character.
std::optional<char> parseBase(char letter);

#endif
