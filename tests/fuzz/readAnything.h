// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_READANYTHING_H
#define STRANDVIEW_TESTS_READANYTHING_H

#include <string_view>

#include <strandview/formats/Format.h>

namespace strandview {

/// Reads any bytes as a file of a format: whatever they are, the reader ends, leaves memory alone,
/// and gives data that are whole and can be written, or one line. What is not so ends the program,
/// after a line on standard error. Behind a line "====" are the bytes of a topology, which is in a
/// folder with the others then. Whether the data can be written, and what is written be read again,
/// takes most of the time, and is asked with `writes` alone.
void readAnything(const Format& format, std::string_view bytes, bool writes = true);

} // namespace strandview

#endif
