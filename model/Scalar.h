// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_SCALAR_H
#define STRANDVIEW_MODEL_SCALAR_H

#include <string>
#include <vector>

namespace strandview {

/// One named number per point of a rod; not-a-number where it is not known.
struct Scalar
{
    std::string name;
    std::vector<double> values;
};

} // namespace strandview

#endif
