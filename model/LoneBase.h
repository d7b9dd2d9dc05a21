// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_LONEBASE_H
#define STRANDVIEW_MODEL_LONEBASE_H

#include <cstddef>
#include <string>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

namespace strandview {

/// A base in no pair, of a single strand or beside a double one. Its frame is as those of a
/// strand 1 (model/Dna.h): the base lies along d2, and its sugar is at the end.
struct LoneBase
{
    std::string origin; ///< "1xyz.pdb: chain A, residue 7"
    char base = 'N';    ///< of BASE_LETTERS or UNKNOWN_BASE
    algebra3d::Vector3<double> point;
    algebra3d::Quaternion<double> rotation;
    std::size_t molecule = 0; ///< as that of a Rod
};

} // namespace strandview

#endif
