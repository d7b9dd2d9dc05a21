// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/print.h"

#include <cerrno>
#include <cstring>
#include <iostream>

namespace strandview {

std::string print(const std::string& text)
{
    if (std::cout << text << std::flush)
        return "";
    return std::string("standard output: ") + std::strerror(errno);
}

void tell(const std::string& line) { std::cerr << "strandview: " << line << std::endl; }

} // namespace strandview
