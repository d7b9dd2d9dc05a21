// SPDX-License-Identifier: GPL-3.0-or-later
// Reads what libFuzzer makes up, as a file of one format: FUZZED_FORMAT in the environment.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string_view>

#include <strandview/formats/formats.h>

#include "fuzz/readAnything.h"

using namespace strandview;

namespace {

const Format& fuzzedFormat()
{
    const char* const name = std::getenv("FUZZED_FORMAT");
    const auto found = std::find_if(formats().begin(), formats().end(), [&](const Format& format) {
        return name && format.name == name;
    });
    if (found != formats().end())
        return *found;
    std::fputs("FUZZED_FORMAT is no name of a format\n", stderr);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Format& format = fuzzedFormat();
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const bool writes = std::hash<std::string_view>()(bytes) % 8 == 0; // the same ones each time
    readAnything(format, bytes, writes);
    return 0;
}
