// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_BESIDEVIEW_H
#define STRANDVIEW_APP_WINDOW_BESIDEVIEW_H

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QWidget>

#include "request/BesideRequest.h"
#include "request/CameraNumbers.h"
#include "request/CameraRequest.h"
#include "scene/DataScene.h"
#include "window/BesideReader.h"
#include "window/WindowViewer.h"

namespace strandview {

class ViewCaption;

/// A further view of a window, under a caption: of another configuration in the same coordinates,
/// style and range of colours as the first view has its own.
class BesideView : public QWidget
{
public:
    /// What it shows.
    struct Source
    {
        std::string what;          ///< as BesideRequest has it
        std::string caption;       ///< what that is, for the user
        FrameStore::Opener opener; ///< of its series; without one it shows the first view's data
        bool isStill = false;      ///< the first frame, whichever the first view shows
    };

    /// Its viewer is made later, by makeViewer().
    BesideView(const SbColor& background, QWidget* parent);
    ~BesideView() override;

    /// Shows that from the next show() on.
    void take(Source next);
    const std::string& getWhat() const { return source.what; }
    std::string getCaption() const;
    void setActive(bool active);

    enum Change { NEXT_FRAME, OTHER_LOOK, NEW_SOURCE };
    /// With a viewer: shows data as the scene of the first view shows its own, as soon as they are
    /// prepared: anew in another look than before. NEW_SOURCE is for views that take() and have not
    /// shown anything since. The first view's data are shown at once, by its nodes, once this has
    /// its place.
    void show(const DataScene& first, std::size_t frame, Change change);
    bool isAtWork() const { return !viewer || awaitedFirst || reader.isAtWork(); }

    /// What is hidden, named, seen through and cut, as the first scene has it.
    void followLooks(const DataScene& first);
    /// Whether data give the colours.
    void showColours(bool ofData);
    void setBackground(const SbColor& background);
    void drawCoarsely(bool coarse);
    bool isDrawnCoarsely() const { return viewer && viewer->isDrawnCoarsely(); }

    /// Where the driver makes the context of a view, which takes as long as a frame.
    void makeViewer(const WindowViewer& first);
    bool hasViewer() const { return viewer != nullptr; }
    /// Whether it shows the first view's data, by its nodes.
    bool isMirror() const { return !source.opener && sharesBuffers; }
    /// Once it has one.
    WindowViewer& getViewer() const { return *viewer; }
    /// Null until something is shown.
    DataScene* getScene() const { return scene; }
    /// The room that all have taken that were shown in this look.
    const SbBox3f& getRoom() const { return room; }

    // Its camera, where it is not that of the first view

    /// Where it begins.
    void setStart(const CameraRequest& request) { start = request; }
    const std::optional<CameraRequest>& getStart() const { return start; }
    /// Has a camera from now on; tells which one was set before, if one was.
    std::optional<BesideCamera> begin();
    /// Begins once more with what it shows next, wherever that is to be seen from.
    void beginAnew();
    /// As soon as it has begun, and instead of where it would.
    void setCamera(const BesideCamera& camera);
    /// That, or the present one; nothing if it follows from what is to be shown.
    std::optional<BesideCamera> getCamera() const;
    /// What is free at the borders where all is fitted; the usual if left open.
    void setMargin(const std::optional<double>& ofFitted) { margin = ofFitted; }
    /// Where all that it shows is fitted, it is so in any size that the view has, until the camera
    /// is moved.
    void place(const CameraRequest& request);
    void fit();
    /// If it was fitted to another size.
    void refit();
    void setPerspective(bool perspective);
    /// Sees it as that viewer does.
    void follow(const WindowViewer& other);
    CameraNumbers getCameraNumbers() const;
    /// The direction to who sees it, of length 1, or will see it; 0 if that is open.
    CameraRequest::Vector seenFrom() const;

    /// Tells nobody anything from now on, and stops what it does: before it is deleted.
    void abandon();

    // What is told; each may be empty
    std::function<void()> onBegin;  ///< something is shown for the first time: begin() is due
    std::function<void()> onShown;  ///< something else is shown
    std::function<void()> onResize; ///< it has another size
    std::function<void(const std::string& error)> onFailure; ///< it cannot be shown
    std::function<void(const Told& told)> onPick;
    std::function<void()> onCamera;
    std::function<void()> onClose; ///< its user wants it closed

private:
    void mirror(const DataScene& first);
    void showResult(BesideReader::Result& result);
    std::string hand(BesideReader::Result& result);
    void adopt(DataScene& made);
    void tellShown(std::size_t inLook);
    void keepLooks(const DataScene& ofFirst);
    void showLooks();
    void tellCaption();
    bool isFitted() const;
    static void tellSize(void* view, SoQtGeneralViewer* viewer, const SbVec2s& size);

    Source source;
    bool isNew = false; ///< the source
    SbColor background;
    ViewCaption* caption;
    QWidget* area;
    std::unique_ptr<WindowViewer> viewer;
    bool sharesBuffers = false;                    ///< OpenGL's, with the first view
    DataScene* scene = nullptr;                    ///< kept by the viewer
    std::shared_ptr<const DataScene> awaitedFirst; ///< whose data are shown in a moment
    SbBox3f room;
    bool hasBegun = false;
    std::optional<CameraRequest> start;
    std::optional<BesideCamera> awaited; ///< until it has begun
    std::optional<CameraNumbers> fitted;
    std::optional<double> margin;
    // What the first scene has without other nodes.
    ThingLooks looks;
    double transparency = 0;
    std::optional<ClipPlane> clip;
    DrawingLook drawing;
    bool hasColours = true;
    std::size_t look = 0, shownLook = 0;
    BesideReader reader;
};

} // namespace strandview

#endif
