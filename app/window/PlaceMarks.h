// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLACEMARKS_H
#define STRANDVIEW_APP_WINDOW_PLACEMARKS_H

#include <string>
#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbVec3f.h>

class SoBaseColor;
class SoCoordinate3;
class SoDrawStyle;
class SoLineSet;
class SoNode;
class SoPointSet;
class SoSwitch;

namespace strandview {

class SoLabels;
class SoOverlay;

/// Dots on places, lines from each to the next, and texts beside those. They are of one size
/// wherever the camera is, readable on white and on black, and hidden by nothing.
///
///     marks.getNode()    is drawn after the scene, with its camera.
class PlaceMarks
{
public:
    /// Yellow: of what is clicked and chosen.
    static const SbColor YELLOW;
    /// Of what is there besides.
    static const SbColor BLUE;

    /// Places in the scene, which a line goes through.
    struct Line
    {
        std::vector<SbVec3f> places;
        std::string text = {};
        SbColor colour = YELLOW;
    };

    PlaceMarks();
    ~PlaceMarks();
    PlaceMarks(const PlaceMarks&) = delete;
    PlaceMarks& operator=(const PlaceMarks&) = delete;

    SoNode* getNode() const;

    /// Instead of those before.
    void setLines(const std::vector<Line>& lines);
    /// One line through all of them, in the scene, without a text.
    void setPlaces(const std::vector<SbVec3f>& places) { setLines({{places}}); }
    int countPlaces() const;
    /// The texts that are shown.
    std::vector<std::string> getTexts() const;
    /// The view's pixels in one of the desktop's.
    void setScale(float scale);

private:
    SoOverlay* overlay;
    SoSwitch* visibility;
    SoCoordinate3* points;
    SoBaseColor* colours;    ///< of the lines, and of the dots
    SoDrawStyle *rim, *core; ///< the core is drawn over the rim
    SoLineSet* lineSet;
    SoPointSet* dots;
    SoBaseColor* dotColours;
    SoLabels* labels;
};

} // namespace strandview

#endif
