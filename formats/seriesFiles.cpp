// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/seriesFiles.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <strandview/formats/formats.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

namespace fs = std::filesystem;

bool isData(const fs::directory_entry& entry)
{
    std::error_code unknown;
    return entry.is_regular_file(unknown) && entry.path().filename().string().front() != '.' &&
           formatOfEnding(entry.path().string());
}

// Adds the files of a folder; false, with report.error, if it cannot be read.
bool addFolder(const std::string& folder, std::vector<std::string>& files, ReadReport& report)
{
    std::error_code fault;
    for (fs::directory_iterator entry(folder, fault), end; !fault && entry != end;
         entry.increment(fault)) {
        if (isData(*entry))
            files.push_back(entry->path().string());
    }
    if (fault)
        report.error = onOneLine(folder) + ": " + fault.message();
    return !fault;
}

} // namespace

std::vector<std::string> seriesFiles(const std::vector<std::string>& paths, ReadReport& report)
{
    std::vector<std::string> files;
    for (const std::string& path : paths) {
        std::error_code unknown;
        if (!fs::is_directory(path, unknown))
            files.push_back(path);
        else if (!addFolder(path, files, report))
            return {};
    }
    if (files.empty())
        report.error = onOneLine(paths.empty() ? "--series" : paths.front()) +
                       ": found no file of a known ending, expected one for each frame";
    std::sort(files.begin(), files.end(), [](const std::string& one, const std::string& other) {
        return ::strverscmp(one.c_str(), other.c_str()) < 0;
    });
    return files;
}

} // namespace strandview
