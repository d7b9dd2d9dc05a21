// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/exportFiles.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/wording.h>
#include <strandview/formats/writeCsv.h>
#include <strandview/formats/writeJson.h>

#include "output/OutputFile.h"
#include "request/limits.h"
#include "scene/Progress.h"
#include "scene/idleOptions.h"
#include "scene/readFiles.h"

namespace strandview {

namespace {

// What says which data are read, and how.
const std::set<std::string> OF_DATA{"--export", "--frame", "--series",     "--normalise",
                                    "--closed", "--pairs", "--frame-rows", "--compare"};

// Where they say what is in a table.
const std::set<std::string> OF_TABLES{"--dna-unit", "--all-numbers"};

bool endsWith(const std::string& name, const char* ending)
{
    return inSmallLetters(std::filesystem::path(name).extension().string()) == ending;
}

bool isTable(const std::string& name) { return endsWith(name, ".csv"); }

CsvOptions csvOptionsOf(const Options& options)
{
    CsvOptions asked;
    asked.angstrom = options.dna.angstrom;
    if (!options.allNumbers)
        asked.mostEdgePairs = MOST_EDGE_PAIRS;
    return asked;
}

bool writeAllFrames(const Options& options, const TextSink& sink, ReadReport& report,
                    Progress& progress)
{
    const auto say = [&](double share) {
        progress.show("Exporting " + *options.exportFile + ": " +
                      std::to_string(std::lround(100 * share)) + " %");
        return !progress.isStopped();
    };
    const std::unique_ptr<Series> series =
        openFiles(options.files, options, report, progress).series;
    if (!series)
        return false;
    return isTable(*options.exportFile)
               ? writeCsv(*series, sink, csvOptionsOf(options), say, report)
               : writeJson(*series, sink, say, report);
}

bool writeOneFrame(const Options& options, const TextSink& sink, ReadReport& report,
                   Progress& progress)
{
    const std::optional<Configuration> all = readFiles(options.files, options, report, progress);
    if (!all)
        return false;
    return isTable(*options.exportFile) ? writeCsv(*all, sink, csvOptionsOf(options), report)
                                        : writeJson(*all, sink);
}

// What was given for a picture or a window.
void tellIdleOptions(const Options& options, ReadReport& report)
{
    std::set<std::string> meant = OF_DATA;
    if (isTable(*options.exportFile))
        meant.insert(OF_TABLES.begin(), OF_TABLES.end());
    const auto idle = findIdleOptions(options, meant, "--export writes the data alone");
    report.notices.insert(report.notices.end(), idle.begin(), idle.end());
}

} // namespace

std::string checkExportName(const std::string& name)
{
    return isTable(name) || endsWith(name, ".json") || name == "-"
               ? ""
               : "--export: found " + inQuotes(name) +
                     ", expected a name that ends in .json or .csv";
}

std::string exportFiles(const Options& options, ReadReport& report)
{
    OutputFile file(*options.exportFile);
    const std::string failure = file.open();
    if (!failure.empty())
        return failure;
    const TextSink sink = [&file](std::string_view text) { return file.write(text); };
    TerminalProgress progress;
    const bool isSeries = options.files.size() == 1 || options.series.isOfFiles;
    const bool isAllFrames = isSeries && !options.frame;
    const bool isWritten = isAllFrames ? writeAllFrames(options, sink, report, progress)
                                       : writeOneFrame(options, sink, report, progress);
    if (!report.error.empty())
        return "";
    if (isWritten)
        tellIdleOptions(options, report);
    return file.finish();
}

} // namespace strandview
