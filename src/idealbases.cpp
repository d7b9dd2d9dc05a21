// SPDX-License-Identifier: GPL-3.0-or-later
#include <idealbases.h>

namespace idealbases {

const char BASES[5] = "ATGC";

const int NUM_ATOMS[4] = {11, 10, 12, 9};

const char ATOMS[4][MAX_ATOMS][4] = {
#include <strandview/model/idealBaseNames.inc>
};

const double COORDS[4][MAX_ATOMS][3] = {
#include <strandview/model/idealBaseCoordinates.inc>
};

const int NUM_ORDER[4] = {9, 6, 9, 6};

const int ORDER[4][MAX_ORDER] = {
    {2, 6, 5, 4, 8, 7, 9, 3, 1}, // C4, N3, C2, N1, C6, C5, N7, C8, N9
    {1, 2, 4, 5, 6, 3},          // N1, C2, N3, C4, C5, C6
    {2, 6, 5, 4, 8, 7, 9, 3, 1},
    {1, 2, 4, 5, 6, 3},
};

} // namespace idealbases
