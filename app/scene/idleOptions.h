// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_IDLEOPTIONS_H
#define STRANDVIEW_APP_SCENE_IDLEOPTIONS_H

#include <set>
#include <string>
#include <vector>

#include <strandview/model/Configuration.h>

#include "request/Options.h"

namespace strandview {

/// A line for each option on the command line that changes nothing about these data, such
/// as "--dna has no effect: found no DNA"; and one if nothing of the rods is left to see.
std::vector<std::string> findIdleOptions(const Options& options,
                                         const Configuration& configuration);

/// A line for each option on the command line that is none of those that are `meant`, such as
/// "--radius has no effect: --plot draws curves alone".
std::vector<std::string> findIdleOptions(const Options& options, const std::set<std::string>& meant,
                                         const std::string& reason);

} // namespace strandview

#endif
