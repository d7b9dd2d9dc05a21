// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_WINDOWVIEWER_H
#define STRANDVIEW_APP_WINDOW_WINDOWVIEWER_H

#include <functional>
#include <memory>
#include <optional>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/sensors/SoFieldSensor.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <QPointer>

#include <SoQtGeneralViewer.h>

#include "request/CameraRequest.h"
#include "window/AxisCross.h"
#include "window/ClipHandles.h"
#include "window/FrameTurns.h"
#include "window/FrameWaiter.h"
#include "window/PlaceMarks.h"
#include "window/ThingOutline.h"

namespace strandview {

class DataScene;

/// The window's viewer: it lets the window see the size that pictures take, what is clicked and
/// when a frame is drawn, leaves the home to it, and shows axes of its own.
class WindowViewer : public SoQtGeneralViewer
{
public:
    explicit WindowViewer(QWidget* parent);
    ~WindowViewer() override;

    // What the window is told; each may be empty
    std::function<void()> onHome;  ///< instead of SoQt's return to its home
    std::function<void()> onDrawn; ///< once, after the next frame
    std::function<void()> onFrame; ///< after each frame
    std::function<void()> onMiss;  ///< after a click beside everything
    /// The mouse has moved to there, in the view's pixels
    std::function<void(const SbVec2s& place)> onMove;
    std::function<void()> onCamera; ///< after a change of what the camera shows
    /// The key that goes to the next control, or with Shift to the one before
    std::function<void(bool isForward)> onTab;
    std::function<void()> onMode; ///< after a change between turning and picking

    CameraRequest home;             ///< where the scene is seen from at the beginning
    bool picksWhileTurning = false; ///< clicks of the left button, too, that turn nothing
    // Of the event that is being processed
    bool hasPicked = false;   ///< whoever picks says so
    bool isClick = false;     ///< a button was released at about the place where it was pressed
    bool isShiftDown = false; ///< then, too

    AxisCross axes;
    PlaceMarks marks;
    PlaceMarks keptMarks; ///< of measurements
    PlaceMarks hoverMark; ///< of a place that the mouse is over elsewhere
    ThingOutline outline;
    ClipHandles clipHandles;
    QPointer<FrameWaiter> frameWaiter;
    std::shared_ptr<FrameTurns> turns; ///< with other views; without them it draws at once

    using SoQtGeneralViewer::getGLSize;
    using SoQtGeneralViewer::setSceneGraph;

    /// The home stays, and a perspective camera is in front of everything.
    void setCameraType(SoType type) override;
    void saveHomePosition() override;
    void resetToHomePosition() override;
    /// With the axes and the marks.
    void setSceneGraph(SoNode* root) override;
    void setCamera(SoCamera* camera) override;
    /// Sees its scene as another viewer does its own: with a camera of the same kind and numbers.
    void followCamera(const WindowViewer& other);
    /// Sees what it shows as asked for, or all of it without being turned. Nothing is shown before
    /// that.
    void place(const CameraRequest& request);
    void fit(std::optional<double> margin);
    void setPerspective(bool perspective);
    /// A box of that in the middle, as large as it can be.
    void centre(const SbBox3f& box);
    /// With its data. Where a frame of all rows takes a software driver long, those nearer than
    /// half a pixel are never drawn; to be said again of other data.
    void drawCoarsely(bool coarse);
    void drawAsBefore() { drawCoarsely(isDrawnCoarsely()); }
    void setViewing(SbBool viewing) override;
    /// What a click at that place of the view would pick; null if nothing.
    std::unique_ptr<SoPickedPoint> pickedAt(const SbVec2s& place);

protected:
    SbBool processSoEvent(const SoEvent* event) override;
    void redraw() override;
    void actualRedraw() override;
    void sizeChanged(const SbVec2s& size) override;

private:
    void nameButtons();
    static void turnAxes(void* viewer, SoSensor* sensor);
    static void tellCamera(void* viewer, SoSensor* sensor);
    void followButton(const SoEvent* event);
    bool isPick(const SoEvent* event) const;
    /// A click of the left button while it turns.
    bool isQuickPick(const SoEvent* event) const;
    void pickAt(const SbVec2s& place);

    DataScene* data = nullptr; ///< that is shown, if it is one
    SbVec2s pressed;           ///< where a button was

    SoFieldSensor cameraWatcher{turnAxes, this};
    SoNodeSensor cameraTeller{tellCamera, this};
};

} // namespace strandview

#endif
