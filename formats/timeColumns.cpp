// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/timeColumns.h>

#include <string>

#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>

namespace strandview {

TimeName timeNameOf(std::string_view column)
{
    const std::string_view name = withoutUnit(column);
    const std::string lower = inSmallLetters(name);
    return name == "t"        ? TimeName::T
           : lower == "time"  ? TimeName::TIME
           : lower == "frame" ? TimeName::FRAME
                              : TimeName::NONE;
}

} // namespace strandview
