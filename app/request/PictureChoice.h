// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_PICTURECHOICE_H
#define STRANDVIEW_APP_REQUEST_PICTURECHOICE_H

#include <map>
#include <string>
#include <vector>

#include "request/PictureRequest.h"
#include "request/StyleRequest.h"

namespace strandview {

/// What the user of a window chose of the pictures that it saves.
struct PictureChoice
{
    PictureRequest size;
    bool isOfView = true;         ///< as many pixels as the view has, whatever the size says
    bool keepsShape = true;       ///< that of the view, or of the size, when one side is another
    bool hasMeasurements = false; ///< those that the view shows
    /// What is another than in the view, of settingsOfPicture(), by name and as texts.
    std::map<std::string, std::string> settings;
};

bool operator==(const PictureChoice& a, const PictureChoice& b);
inline bool operator!=(const PictureChoice& a, const PictureChoice& b) { return !(a == b); }

/// The settings of a style that a picture can have otherwise than the view, because they change
/// nothing of how data are drawn: by name, those of them that there are.
std::vector<std::string> settingsOfPicture();

/// The style of the view with what was chosen of its picture.
StyleRequest styleOf(const PictureChoice& choice, StyleRequest ofView);

} // namespace strandview

#endif
