// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SCENELOADER_H
#define STRANDVIEW_APP_SCENE_SCENELOADER_H

#include <functional>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>

#include "request/Options.h"
#include "scene/readFiles.h"

namespace strandview {

class DataScene;
class Progress;

/// Makes the nodes of what was read: to be called once, in the thread that Coin is used in.
/// The scene's reference count is zero, and it has the data. Null, and one line in report.error, if
/// it fails or is stopped.
using SceneMaker = std::function<DataScene*(ReadReport& report, Progress& progress)>;

/// Reads the files, all of them or nothing, and computes what their scene needs but its
/// nodes: in any thread, since nothing of Coin or Qt is touched. Null, and one line in
/// report.error, if anything fails or it is stopped. Opening is as of readFiles().
SceneMaker prepareScene(const std::vector<std::string>& files, const Options& options,
                        ReadReport& report, Progress& progress, Opening opening = Opening::WHOLE);

/// Both at once, of what was read, for a picture: the scene keeps no data. Coin must have been
/// initialised.
DataScene* makeScene(Configuration configuration, const Options& options, ReadReport& report,
                     Progress& progress);
/// The same of files, with the progress on a terminal.
DataScene* loadScene(const std::vector<std::string>& files, const Options& options,
                     ReadReport& report);

} // namespace strandview

#endif
