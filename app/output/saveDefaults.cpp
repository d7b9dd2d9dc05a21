// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/saveDefaults.h"

#include <filesystem>
#include <system_error>

#include "output/OutputFile.h"
#include "request/defaults.h"

namespace strandview {

std::string saveDefaults(const StyleRequest& request, const std::string& file)
{
    namespace fs = std::filesystem;
    if (file.empty())
        return "found neither XDG_CONFIG_HOME nor HOME, expected one, for the file of the defaults";
    const fs::path folder = fs::path(file).parent_path();
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure)
        return folder.string() + ": " + failure.message();
    return writeFile(file, defaultsText(request));
}

} // namespace strandview
