// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_DEFAULTS_H
#define STRANDVIEW_APP_REQUEST_DEFAULTS_H

#include <string>
#include <vector>

#include "request/StyleRequest.h"

namespace strandview {

/// What a setting is to say, as text, and where that stands.
struct SettingText
{
    std::string name;  ///< of the setting
    std::string value; ///< as its option takes it; "on" or "off" of a switch
    std::string place; ///< "defaults.conf:3"
};

/// Lets the request say what the texts say, one after the other. Nothing, or one line about the
/// first that cannot be, "defaults.conf:3: radius: found 'x', expected a length above 0", and the
/// request is as it was.
std::string readSettings(const std::vector<SettingText>& texts, StyleRequest& request);

/// The file that each start begins with: defaults.conf in the folder strandview of
/// $XDG_CONFIG_HOME, or of .config at home; empty where there is neither.
std::string usualDefaultsFile();

/// Lets the request say what a file of lines "name = value" says; lines that begin with # and blank
/// ones say nothing, and a value may stand between double quotation marks. Nothing, also of a file
/// that is not there, or one line about the first fault, and the request is as it was.
std::string readDefaults(const std::string& file, StyleRequest& request);

/// The text of such a file: what the request says, and each other setting as a comment with what is
/// usual.
std::string defaultsText(const StyleRequest& request);

/// What of a request is meant for other data, too: without a reference, a range, words about a
/// scalar, what is said of single things, or a clipping plane.
StyleRequest forOtherData(StyleRequest request);

} // namespace strandview

#endif
