// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_CONFIGURATION_H
#define STRANDVIEW_MODEL_CONFIGURATION_H

#include <cstddef>
#include <memory>
#include <vector>

#include <strandview/model/Arrow.h>
#include <strandview/model/Birod.h>
#include <strandview/model/Dna.h>
#include <strandview/model/Frame.h>
#include <strandview/model/LoneBase.h>
#include <strandview/model/Marker.h>
#include <strandview/model/Rod.h>
#include <strandview/modelExport.h>

namespace strandview {

/// All that a user asked to see, free of any style; of rods alone made as {rods}.
struct Configuration
{
    std::vector<Rod> rods;
    std::vector<Birod> birods = {};
    std::vector<Dna> dnas = {};
    std::vector<Marker> markers = {};
    std::vector<Frame> frames = {};
    std::vector<Arrow> arrows = {};
    std::vector<LoneBase> loneBases = {};
    /// What all of it was compared with, as that lies in its own file; null of most. Nothing that
    /// is shown, exported or measured with the data, and not appended with them.
    std::shared_ptr<const Configuration> reference = {};
};

/// Adds what another has behind what there is, kind by kind; nothing is left in the other. Its
/// molecules get numbers of their own.
STRANDVIEW_MODEL_EXPORT void append(Configuration& all, Configuration&& more);

/// The bytes of memory that the data take, less what short texts take of their own and without
/// their reference, which other data have, too.
STRANDVIEW_MODEL_EXPORT std::size_t memoryOf(const Configuration& data);

} // namespace strandview

#endif
