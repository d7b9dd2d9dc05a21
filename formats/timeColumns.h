// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TIMECOLUMNS_H
#define STRANDVIEW_FORMATS_TIMECOLUMNS_H

#include <string_view>

#include <strandview/formatsExport.h>

namespace strandview {

/// Names of columns that may tell when a frame is, those first that go before the others.
enum class TimeName {
    T,     ///< "t", not "T", a temperature
    TIME,  ///< "time", in any case
    FRAME, ///< "frame", in any case: a number and no time
    NONE
};

/// Of a column's name, with a unit in brackets or without.
STRANDVIEW_FORMATS_EXPORT TimeName timeNameOf(std::string_view column);

} // namespace strandview

#endif
