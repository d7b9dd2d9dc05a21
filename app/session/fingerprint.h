// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SESSION_FINGERPRINT_H
#define STRANDVIEW_APP_SESSION_FINGERPRINT_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "request/Session.h"

namespace strandview {

/// Whether to go on; see Series::GoOn.
using GoOn = std::function<bool()>;

/// A file as it is now: how long it is, and SHA-256 of its content in hexadecimal digits. Of a
/// folder, which may be of any size, it is that of the names and lengths of the files directly in
/// it, in the order of their names. Nothing, and one line in `fault`, if it cannot be read; nothing
/// alone if it is not to go on. In any thread.
std::optional<SessionFile> fingerprintOf(const std::string& name, const GoOn& goOn,
                                         std::string& fault);

/// A line for each of these files that is not what it was: "rod.txt: has changed since the session
/// was saved". Those that are not there are left to readers. None of what is left if it is not to
/// go on. In any thread.
std::vector<std::string> findChanged(const std::vector<SessionFile>& files, const GoOn& goOn);

} // namespace strandview

#endif
