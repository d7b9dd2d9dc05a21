// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_CONVERSIONS_H
#define STRANDVIEW_APP_REQUEST_CONVERSIONS_H

#include <toCoin.h>

#include "request/Colour.h"

namespace strandview {

// Colours that were asked for, as Coin's and the library's; the rest is in toCoin.h.

using ::toSbColor;

inline SbColor toSbColor(const Colour& colour)
{
    return SbColor(colour.red, colour.green, colour.blue);
}

inline algebra3d::Vector3<double> toVector(const Colour& colour)
{
    return {double(colour.red), double(colour.green), double(colour.blue)};
}

} // namespace strandview

#endif
