// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_BIROD_H
#define STRANDVIEW_MODEL_BIROD_H

#include <cstddef>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/model/Scalar.h>

namespace strandview {

/// Two strands and the average of both: six sequences of one length, at least 2. In each
/// of the three curves consecutive points are distinct.
struct Birod
{
    std::string origin;                             ///< "ladder.json: birods[0]"
    std::vector<algebra3d::Vector3<double>> points; ///< of the average
    std::vector<algebra3d::Quaternion<double>> rotations;
    std::vector<algebra3d::Vector3<double>> points1;
    std::vector<algebra3d::Quaternion<double>> rotations1;
    std::vector<algebra3d::Vector3<double>> points2;
    std::vector<algebra3d::Quaternion<double>> rotations2;
    std::vector<std::size_t> indices = {}; ///< of its points in the file, if some were left out
    std::vector<Scalar> scalars = {};      ///< of the average, a value per point each; of no file
};

} // namespace strandview

#endif
