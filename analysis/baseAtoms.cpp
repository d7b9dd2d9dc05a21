// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/baseAtoms.h>

#include <array>
#include <cstddef>

namespace strandview {

namespace {

// The order of the tables.
constexpr std::string_view BASES = "ATGC";
using AtomsOfBases = std::array<std::vector<BaseAtom>, BASES.size()>;

constexpr std::size_t MOST_ATOMS = 12;
constexpr char NAMES[BASES.size()][MOST_ATOMS][4] = {
#include <strandview/model/idealBaseNames.inc>
};
constexpr double PLACES[BASES.size()][MOST_ATOMS][3] = {
#include <strandview/model/idealBaseCoordinates.inc>
};

/// Without the first one, C1', which is the sugar's.
AtomsOfBases makeDrawnAtoms()
{
    AtomsOfBases all;
    for (std::size_t base = 0; base < BASES.size(); ++base)
        for (std::size_t i = 1; i < MOST_ATOMS && NAMES[base][i][0] != '\0'; ++i)
            all[base].push_back({NAMES[base][i], algebra3d::Vector3<double>(PLACES[base][i])});
    return all;
}

// In the plane z = 0, but for a thousandth of an ångström.
AtomsOfBases makeStandardRingAtoms()
{
    return {{{{"N9", {-1.291, 4.498, 0}},
              {"C8", {0.024, 4.897, 0}},
              {"N7", {0.877, 3.902, 0}},
              {"C5", {0.071, 2.771, 0}},
              {"C6", {0.369, 1.398, 0}},
              {"N1", {-0.668, 0.532, 0}},
              {"C2", {-1.912, 1.023, 0}},
              {"N3", {-2.320, 2.290, 0}},
              {"C4", {-1.267, 3.124, 0}}},
             {{"N1", {-1.284, 4.500, 0}},
              {"C2", {-1.462, 3.135, 0}},
              {"N3", {-0.298, 2.407, 0}},
              {"C4", {0.994, 2.897, 0}},
              {"C5", {1.106, 4.338, 0}},
              {"C6", {-0.024, 5.057, 0}}},
             {{"N9", {-1.289, 4.551, 0}},
              {"C8", {0.023, 4.962, 0}},
              {"N7", {0.870, 3.969, 0}},
              {"C5", {0.071, 2.833, 0}},
              {"C6", {0.424, 1.460, 0}},
              {"N1", {-0.700, 0.641, 0}},
              {"C2", {-1.999, 1.087, 0}},
              {"N3", {-2.342, 2.364, 0.001}},
              {"C4", {-1.265, 3.177, 0}}},
             {{"N1", {-1.285, 4.542, 0}},
              {"C2", {-1.472, 3.158, 0}},
              {"N3", {-0.391, 2.344, 0}},
              {"C4", {0.837, 2.868, 0}},
              {"C5", {1.056, 4.275, 0}},
              {"C6", {-0.023, 5.068, 0}}}}};
}

const std::vector<BaseAtom>& atomsOf(char base, const AtomsOfBases& all)
{
    static const std::vector<BaseAtom> none;
    const std::size_t index = BASES.find(base);
    return index == std::string_view::npos ? none : all[index];
}

} // namespace

const std::vector<BaseAtom>& drawnAtoms(char base)
{
    static const AtomsOfBases all = makeDrawnAtoms();
    return atomsOf(base, all);
}

const std::vector<BaseAtom>& standardRingAtoms(char base)
{
    static const AtomsOfBases all = makeStandardRingAtoms();
    return atomsOf(base, all);
}

} // namespace strandview
