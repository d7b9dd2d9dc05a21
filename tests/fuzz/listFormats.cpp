// SPDX-License-Identifier: GPL-3.0-or-later
// The formats that can be fuzzed: the name of each in a line.
#include <iostream>

#include <strandview/formats/formats.h>

int main()
{
    for (const strandview::Format& format : strandview::formats())
        std::cout << format.name << "\n";
}
