// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_READFILES_H
#define STRANDVIEW_APP_SCENE_READFILES_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>

#include "request/Options.h"

namespace strandview {

class Progress;

/// What the readers are to do, and ask whether to go on.
ReadOptions readOptionsOf(const Options& options, std::function<bool(double share)> goOn);

/// All files in one configuration, in their order; nothing after the first that cannot be read, or
/// once it is stopped, and one line in report.error. Of a series it is the frame of options.frame,
/// or the first; beside a series a file of one configuration is in every frame. In any thread.
std::optional<Configuration> readFiles(const std::vector<std::string>& files,
                                       const Options& options, ReadReport& report,
                                       Progress& progress);

} // namespace strandview

#endif
