// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/pointRows.h>

#include <optional>
#include <string_view>
#include <system_error>

#include <strandview/formats/checks.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

std::string takePoint(FieldScanner& scanner, std::size_t column, algebra3d::Vector3<double>& point)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double number = 0;
        const bool isPlain = scanner.nextNumber(number); // of 16 digits at most
        const auto field = isPlain ? std::nullopt : scanner.nextField();
        if (isPlain ||
            (field && parseNumber(*field, number) == std::errc() && isCoordinate(number))) {
            point[int(axis)] = number;
            continue;
        }
        const std::string name =
            "column " + std::to_string(column + axis) + " (" + "xyz"[axis] + "): ";
        return name + (field ? "found " + inQuotes(*field) + ", expected " + EXPECTED_COORDINATE
                             : "found the end of the line, expected x y z");
    }
    return {};
}

std::string placeOf(const std::string& fileName, const FieldScanner& scanner, std::size_t firstLine)
{
    return fileName + ":" + std::to_string(scanner.getLine() + firstLine - 1) + ": ";
}

} // namespace strandview
