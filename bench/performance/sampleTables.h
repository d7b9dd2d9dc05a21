// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_BENCH_SAMPLETABLES_H
#define STRANDVIEW_BENCH_SAMPLETABLES_H

#include <cmath>
#include <fstream>
#include <iomanip>
#include <ostream>
#include <string>

/// How large the frame of a series is.
inline double breathing(int frame) { return 1 - 0.05 * (1 - std::cos(0.1 * frame)); }

/// A trefoil knot, which covers itself little: points alone, so many times as large, and before
/// each row what is told.
inline void writeKnot(std::ostream& table, int points, double size = 1,
                      const std::string& before = "")
{
    for (int i = 0; i < points; ++i) {
        const double t = 2 * M_PI * i / (points - 1);
        table << before << size * (std::sin(t) + 2 * std::sin(2 * t)) << ' '
              << size * (std::cos(t) - 2 * std::cos(2 * t)) << ' ' << -size * std::sin(3 * t)
              << '\n';
    }
}

/// Writes a file, numbers with ten digits.
template <typename Write>
void writeTable(const std::string& path, const Write& write)
{
    std::ofstream table(path);
    table << std::setprecision(10);
    write(table);
}

inline void writeKnot(const std::string& path, int points)
{
    writeTable(path, [points](std::ostream& table) { writeKnot(table, points); });
}

/// Frames of a knot that breathes.
inline void writeSeries(const std::string& path, int frames, int points)
{
    writeTable(path, [frames, points](std::ostream& table) {
        table << "t x y z\n";
        for (int frame = 0; frame < frames; ++frame)
            writeKnot(table, points, breathing(frame), std::to_string(frame) + " ");
    });
}

/// A helix with its Frenet frame, whose d3 is the tangent; its ribbon stands behind its turns.
inline void writeHelix(const std::string& path, int points)
{
    writeTable(path, [points](std::ostream& table) {
        const double lay = -std::atan2(1, 0.05) / 2;
        for (int i = 0; i < points; ++i) {
            const double t = 0.1 * i;
            const double c = std::cos(t / 2), s = std::sin(t / 2);
            table << std::cos(t) << ' ' << std::sin(t) << ' ' << 0.05 * t << ' '
                  << std::sin(lay) * c << ' ' << std::sin(lay) * s << ' ' << std::cos(lay) * s
                  << ' ' << std::cos(lay) * c << '\n';
        }
    });
}

#endif
