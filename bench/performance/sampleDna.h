// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_BENCH_SAMPLEDNA_H
#define STRANDVIEW_BENCH_SAMPLEDNA_H

#include <cmath>
#include <fstream>
#include <ostream>
#include <string>

#include <support/IdealDna.h>

/// The rows of a DNA. Its pairs turn by 34.3 degrees each unless told otherwise, so that none is
/// behind another exactly.
inline void writeDna(std::ostream& table, int pairs, double degrees = 34.3)
{
    const IdealDna dna(irregularSequence(std::size_t(pairs)), 3.4, degrees * M_PI / 180);
    for (std::size_t i = 0; i < dna.sequence.size(); ++i) {
        table << dna.sequence[i];
        for (int frame = 0; frame < 3; ++frame) {
            for (int axis = 0; axis < 3; ++axis)
                table << ' ' << dna.points[i][axis];
            for (int axis = 0; axis < 4; ++axis)
                table << ' ' << dna.rotations[i][axis];
        }
        table << '\n';
    }
}

inline void writeDna(const std::string& path, int pairs)
{
    std::ofstream table(path);
    writeDna(table, pairs);
}

#endif
