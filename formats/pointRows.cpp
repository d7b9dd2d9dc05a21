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
        const std::string name =
            "column " + std::to_string(column + axis) + " (" + "xyz"[axis] + "): ";
        const std::optional<std::string_view> field = scanner.nextField();
        if (!field)
            return name + "found the end of the line, expected x y z";
        double number = 0;
        if (parseNumber(*field, number) != std::errc() || !isCoordinate(number))
            return name + "found " + inQuotes(*field) + ", expected " + EXPECTED_COORDINATE;
        point[int(axis)] = number;
    }
    return {};
}

std::string placeOf(const std::string& fileName, const FieldScanner& scanner, std::size_t firstLine)
{
    return fileName + ":" + std::to_string(scanner.getLine() + firstLine - 1) + ": ";
}

} // namespace strandview
