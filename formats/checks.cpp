// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/checks.h>

#include <algebra3d/rotations.h>

#include <strandview/formats/text/wording.h>
#include <strandview/model/Dna.h>

namespace strandview {

namespace {

bool isZero(const algebra3d::Quaternion<double>& q)
{
    return q[0] == 0 && q[1] == 0 && q[2] == 0 && q[3] == 0;
}

} // namespace

std::string checkRotation(algebra3d::Quaternion<double>& rotation, const ReadOptions& options)
{
    if (options.normalise) {
        if (isZero(rotation))
            return "found the zero quaternion, expected any other";
        rotation = algebra3d::scaledToUnit(rotation);
        return {};
    }
    if (algebra3d::isRotation(rotation))
        return {};
    return "found a quaternion of norm " + formatted(rotation.getNorm()) + ", expected 1 within " +
           formatted(algebra3d::ROTATION_TOLERANCE) + " (--normalise accepts others)";
}

std::optional<char> parseBase(char letter)
{
    const char base =
        letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    return BASE_LETTERS.find(base) == std::string_view::npos ? std::nullopt : std::optional(base);
}

} // namespace strandview
