// SPDX-License-Identifier: GPL-3.0-or-later
#include "camera/printCamera.h"

#include <cerrno>
#include <cstring>
#include <iostream>

namespace strandview {

std::string printCamera(const CameraNumbers& camera)
{
    if (std::cout << formatCamera(camera) << std::endl)
        return "";
    return std::string("standard output: ") + std::strerror(errno);
}

} // namespace strandview
