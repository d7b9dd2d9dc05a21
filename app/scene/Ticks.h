// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_TICKS_H
#define STRANDVIEW_APP_SCENE_TICKS_H

#include <string>
#include <vector>

namespace strandview {

/// Round numbers on a scale, and how they are written below it.
struct Ticks
{
    std::vector<double> values;
    /// One per value, all with as many decimals as the step between them has.
    std::vector<std::string> labels;
    /// What makes the labels values, in this order: "×10⁶", "+300", "×10⁻⁴ + 300", or nothing.
    std::string note;
};

/// The multiples, from min to max, of a step of 1, 2 or 5 times a power of ten, of
/// which at most `mostSteps` lie between them, and hardly fewer. Large, small and long
/// numbers are told by a common power of ten and a common offset. For 8 steps these are three
/// to nine ticks; none if there is no such range (isRange()).
Ticks makeTicks(double min, double max, int mostSteps);

/// The values of makeTicks() for 8 steps.
std::vector<double> roundTicks(double min, double max);

/// A number that stands alone, with at most this many digits that count: "0.3", "−1.5×10⁻⁷".
std::string numberText(double value, int digits);

} // namespace strandview

#endif
