// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SESSION_SESSIONFILE_H
#define STRANDVIEW_APP_SESSION_SESSIONFILE_H

#include <optional>
#include <string>

#include "request/Session.h"
#include "session/fingerprint.h"

namespace strandview {

extern const char* const SESSION_ENDING; ///< ".strandview"

/// Whether a file of this name is taken for a session.
bool isSessionName(const std::string& name);

/// Writes a session under its name, whose names of files, of the folder where the program runs,
/// become those of the session's folder; their lengths and digests are found, which takes a second
/// for a gigabyte. One line that says what failed, or nothing; the file appears whole or not at
/// all, and not if it is not to go on. In any thread.
std::string saveSession(Session session, const GoOn& goOn);

/// Reads one, whose names become those of the folder where the program runs. Nothing, and one line
/// in `fault`, if it is none.
std::optional<Session> readSession(const std::string& name, std::string& fault);

} // namespace strandview

#endif
