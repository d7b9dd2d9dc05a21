// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLACEMARKS_H
#define STRANDVIEW_APP_WINDOW_PLACEMARKS_H

#include <vector>

#include <Inventor/SbVec3f.h>

class SoCoordinate3;
class SoDrawStyle;
class SoLineSet;
class SoNode;
class SoPointSet;
class SoSwitch;

namespace strandview {

class SoOverlay;

/// Dots on the places that were clicked, and a line from the first to the second. They are of one
/// size wherever the camera is, readable on white and on black, and hidden by nothing.
///
///     marks.getNode()    is drawn after the scene, with its camera.
class PlaceMarks
{
public:
    PlaceMarks();
    ~PlaceMarks();
    PlaceMarks(const PlaceMarks&) = delete;
    PlaceMarks& operator=(const PlaceMarks&) = delete;

    SoNode* getNode() const;

    /// None, one or two, in the scene.
    void setPlaces(const std::vector<SbVec3f>& places);
    int countPlaces() const;
    /// The view's pixels in one of the desktop's.
    void setScale(float scale);

private:
    SoOverlay* overlay;
    SoSwitch* visibility;
    SoCoordinate3* points;
    SoDrawStyle *rim, *core; ///< the core is drawn over the rim
    SoLineSet* lines;
    SoPointSet* dots;
};

} // namespace strandview

#endif
