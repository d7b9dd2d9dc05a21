// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_BENCH_SAMPLETABLES_H
#define STRANDVIEW_BENCH_SAMPLETABLES_H

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>

#include <unistd.h>

/// A file that goes with the program.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& ending)
        : path(std::filesystem::temp_directory_path() /
               ("strandview-" + std::to_string(getpid()) + ending))
    {}
    ~TemporaryFile() { std::filesystem::remove(path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string path;
};

/// A helix with its Frenet frame, whose d3 is the tangent; its ribbon stands behind its turns.
inline void writeHelix(const std::string& path, int points)
{
    std::ofstream table(path);
    table << std::setprecision(10);
    const double lay = -std::atan2(1, 0.05) / 2;
    for (int i = 0; i < points; ++i) {
        const double t = 0.1 * i;
        const double c = std::cos(t / 2), s = std::sin(t / 2);
        table << std::cos(t) << ' ' << std::sin(t) << ' ' << 0.05 * t << ' ' << std::sin(lay) * c
              << ' ' << std::sin(lay) * s << ' ' << std::cos(lay) * s << ' ' << std::cos(lay) * c
              << '\n';
    }
}

#endif
