// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENELOADER_H
#define STRANDVIEW_APP_SCENELOADER_H

#include <string>
#include <vector>

#include "Options.h"
#include "readers/ReadReport.h"

class DataScene;

/// Reads the files, all of them or nothing, and builds the scene that the options ask
/// for; Coin must have been initialised. Its reference count is zero. Null, and one line
/// in report.error, if anything fails.
DataScene* loadScene(const std::vector<std::string>& files, const Options& options,
                     ReadReport& report);

#endif
