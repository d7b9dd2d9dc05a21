// SPDX-License-Identifier: GPL-3.0-or-later
// curvature [FILE]: prints the curvature at each point of the first rod in a file.
#include <cstdio>

#include <strandview/analysis/scalars.h>
#include <strandview/formats/readFile.h>

int main(int count, char** arguments)
{
    strandview::ReadReport report;
    const auto read = strandview::readFile(count > 1 ? arguments[1] : "-", {}, report);
    if (!read || read->rods.empty())
        return std::fprintf(stderr, "no rod: %s\n", report.error.c_str()), 2;
    const auto curvatures = strandview::findScalar(read->rods[0], "curvature");
    for (const double curvature : *curvatures)
        std::printf("%g\n", curvature);
}
