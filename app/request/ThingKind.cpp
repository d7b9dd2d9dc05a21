// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ThingKind.h"

#include <algorithm>

namespace strandview {

const std::vector<ThingPart>& partsOf(ThingKind kind)
{
    static const std::vector<ThingPart> none, ofDna{ThingPart::STRAND_1, ThingPart::STRAND_2},
        ofBirods{ThingPart::STRAND_1, ThingPart::STRAND_2, ThingPart::AVERAGE};
    if (kind == ThingKind::BIROD)
        return ofBirods;
    return kind == ThingKind::DNA ? ofDna : none;
}

ThingPart partOf(ThingKind kind, int strand)
{
    const ThingPart part = strand == 1   ? ThingPart::STRAND_1
                           : strand == 2 ? ThingPart::STRAND_2
                                         : ThingPart::AVERAGE;
    const std::vector<ThingPart>& parts = partsOf(kind);
    return std::count(parts.begin(), parts.end(), part) > 0 ? part : ThingPart::WHOLE;
}

const char* nameOf(ThingPart part)
{
    switch (part) {
    case ThingPart::STRAND_1:
        return "strand 1";
    case ThingPart::STRAND_2:
        return "strand 2";
    case ThingPart::AVERAGE:
        return "average";
    case ThingPart::WHOLE:
        break;
    }
    return "";
}

} // namespace strandview
