// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_SOQTGENERALVIEWER_H
#define STRANDVIEW_SOQTGENERALVIEWER_H

#include <map>
#include <memory>
#include <optional>

#include <Inventor/Qt/viewers/SoQtExaminerViewer.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <QPointer>

#include <StrandviewExport.h>

class LightingDialog;
class ScreenshotDialog;
class SoGeneralScene;
class SoMouseButtonEvent;
class SoOffscreenRenderer;
class SoQtGeneralViewer;

/// Sees every event that the viewer processes; it cannot consume one.
using SoQtGeneralViewerEventCB = void(void* userData, SoQtGeneralViewer* viewer,
                                      const SoEvent* event);
/// Is told the viewer's new size.
using SoQtGeneralViewerResizeCB = void(void* userData, SoQtGeneralViewer* viewer,
                                       const SbVec2s& size);

/// An examiner viewer for a SoGeneralScene: keys that move the camera, picks that reach
/// the scene, callbacks for the host, a dialog for the lights, and screenshots.
///
/// Keys, besides those of the scene (see SoGeneralScene::processSoEvent):
///
///     a d w s           move the picture left, right, up, down by a tenth of the view
///     q e               move the camera forward, backward by a tenth of the focal distance
///     alt, ctrl, shift  with a and d: orbit about the horizontal, vertical, viewing axis
///     alt               with w and s: zoom in and out
///     x y z             look along -x, -y, -z; with shift, another axis up
///     l b f i           lights; white or black; frames per second; screenshot
///     Return            show or hide the decoration
///
/// Each key is one of the operations below, which menus and buttons call as well.
///
/// Releasing the left button with ctrl held over an object puts the focal point there.
///
/// When its window appears or changes its size a few more frames follow, the last after 1.6
/// seconds: what is drawn before the X server shows the window is lost.
///
/// Without a scene or a camera every operation is harmless and does nothing.
///
/// For the thread of Qt's event loop alone, which is Coin's. Its maker deletes the viewer; its
/// dialogs are children of the parent widget and go with that. It references what it shows.
class STRANDVIEW_EXPORT SoQtGeneralViewer : public SoQtExaminerViewer
{
    SOQT_OBJECT_HEADER(SoQtGeneralViewer, SoQtExaminerViewer);

public:
    /// As SoQtExaminerViewer's, without the pop-up menu, with the axis cross. Installs
    /// OffscreenContext.
    SoQtGeneralViewer(QWidget* parent = nullptr, const char* name = nullptr, SbBool embed = TRUE);
    ~SoQtGeneralViewer() override;

    // Anti-aliasing, of OpenGL widgets created afterwards

    /// The samples per pixel of Qt's default OpenGL format.
    static int getDefaultAntialiasingLevel();
    /// level: clamped to 1 to 12.
    static void setDefaultAntialiasingLevel(int level);

    /// Whether a software driver may draw with one sample per pixel, in less than half of the
    /// time: for what changes in every frame, with SoMeshShape::drawCoarsely(). Edges are jagged
    /// then, and as they should be in the frame after it is switched off. A graphics card draws as
    /// ever. At first not.
    void drawCoarsely(bool coarse);
    bool isDrawnCoarsely() const;
    /// Whether a software driver, on the processor, drew the last frame; false before the first.
    bool isDrawnBySoftware() const;

    // Screenshots

    /// The one renderer of all viewers. Its size and background colour stay from one
    /// screenshot to the next.
    static SoOffscreenRenderer* getOSRenderer();
    /// Key i. Asks for file and size, renders the scene with the viewer's camera, writes the
    /// picture and tells how it went. The background is the one that the renderer was
    /// given by the screenshot before, black at first.
    void renderOffscreen();

    // Look. Whether the decoration shows is SoQt's: setDecoration(), isDecoration().

    /// Shows the dialog of the scene's lights. Key l.
    virtual void setUpLighting();
    /// SoGeneralScene::toggleDrawStyle() of the scene: its next shading, or boxes for shapes
    /// and back. The space bar, without and with shift.
    void cycleShading();
    void toggleBoundingBoxes();
    bool isShowingBoundingBoxes() const;
    /// SoGeneralScene::changeLineWidth() of the scene. Keys = and -.
    void changeLineWidth(int steps);
    /// White, or else black. A background of another colour counts as what it was last, black
    /// at first, so that the first toggle makes it white. Key b.
    void setWhiteBackground(bool white);
    void toggleBackground();
    bool isBackgroundWhite() const;
    /// Whether frames per second stand in the view: Coin's COIN_SHOW_FPS_COUNTER in the
    /// environment, for all viewers. Key f.
    void toggleFramesPerSecond();
    static bool isShowingFramesPerSecond();

    // Camera; F is the focal point, f the focal distance

    /// Pixels per scene unit at the focal plane, for the view's smaller side m: for a
    /// perspective camera (m / 2 / f) / tan(heightAngle / 2), otherwise m / height.
    virtual double getCameraZoom() const;
    /// Zooms about F, which stays: a perspective camera moves along its viewing
    /// direction, any other changes its height. The zoom is at least 1e-10.
    virtual void setCameraZoom(double zoom);
    /// Looks at F along `direction`, with `up` upwards, from the distance f. Both are
    /// normalised.
    virtual void setupCamera(SbVec3f direction, SbVec3f up);
    /// Turns the camera about F: `axis` in the camera's own frame (x to the right, y up,
    /// z to the viewer), `angle` in radians.
    virtual void rotateCamera(SbVec3f axis, double angle);
    /// Moves camera and F: the picture goes by x and y, in parts of the view volume's
    /// width and height, and the camera by z forward, in parts of f.
    virtual void moveCamera(const SbVec3f& v);
    /// What one key press does to the camera.
    enum CameraStep {
        // moveCamera() by a tenth: the picture, and by q and e the camera
        MOVE_LEFT,
        MOVE_RIGHT,
        MOVE_UP,
        MOVE_DOWN,
        MOVE_FORWARD,
        MOVE_BACKWARD,
        // setCameraZoom(), a quarter more or a fifth less
        ZOOM_IN,
        ZOOM_OUT,
        // rotateCamera() about the camera's own axes x, y, z and back, a full turn by
        // getNumCameraRotSteps()
        ORBIT_HORIZONTALLY,
        ORBIT_HORIZONTALLY_BACK,
        ORBIT_VERTICALLY,
        ORBIT_VERTICALLY_BACK,
        ROLL,
        ROLL_BACK,
        // setupCamera() along -x, -y, -z
        FROM_X_Z_UP,
        FROM_Y_Z_UP,
        FROM_Z_Y_UP,
        FROM_X_Y_UP,
        FROM_Y_X_UP,
        FROM_Z_X_UP
    };
    void stepCamera(CameraStep step);
    /// The number of rotation steps for a full turn.
    virtual int getNumCameraRotSteps();
    /// What is not greater than 0 becomes 12.
    virtual void setNumCameraRotSteps(int n);

    // The host's callbacks
    //
    // In each chain a function stands once, its first user data stays, and the functions
    // are called in the order of their addresses. They may add and remove while the
    // chain runs.

    /// Called before the viewer acts on an event.
    virtual void addPreEventProcessCB(SoQtGeneralViewerEventCB* cb, void* userData);
    virtual void removePreEventProcessCB(SoQtGeneralViewerEventCB* cb);
    /// Called after it, except for the keys that end with their action: all but b, f, i.
    virtual void addPostEventProcessCB(SoQtGeneralViewerEventCB* cb, void* userData);
    virtual void removePostEventProcessCB(SoQtGeneralViewerEventCB* cb);

    // Scene

    /// Null before the scene is set, and after it was destroyed.
    virtual SoGeneralScene* getGeneralScene();
    /// Shows the scene, all of it, with an orthographic camera along -z with y up, and
    /// lets its lights be edited. Null changes nothing.
    virtual void setSceneGraph(SoGeneralScene* scene);

    virtual void addResizeCB(SoQtGeneralViewerResizeCB* cb, void* userData);
    virtual void removeResizeCB(SoQtGeneralViewerResizeCB* cb);

    /// SoGeneralScene::update() of the scene.
    virtual void update();

    // Of the base classes

    /// Shows a graph that is no scene of ours; the recorded scene stays.
    void setSceneGraph(SoNode* root) override;
    /// Also tells the scene's shaders whether the camera is a perspective one. Types
    /// that are neither perspective nor orthographic change nothing.
    void setCameraType(SoType type) override;

protected:
    void actualRedraw() override;
    void sizeChanged(const SbVec2s& size) override;
    SbBool processSoEvent(const SoEvent* const event) override;

private:
    enum KeyResult { NOT_HANDLED, HANDLED, HANDLED_AND_DONE };

    void recordScene(SoGeneralScene* scene);
    static void forgetScene(void* viewer, SoSensor* sensor);

    KeyResult processKey(const SoEvent& event);
    void processMouseButton(const SoMouseButtonEvent& event, bool handled);

    SbVec2s getViewSize() const;
    bool renderSceneForScreenshot();
    void writeScreenshot();

    SoGeneralScene* sceneRoot = nullptr; // not owned
    SoNodeSensor sceneWatcher;           // tells when it goes
    // The parent widget's children, which may go before the viewer.
    QPointer<ScreenshotDialog> screenshotDialog;
    QPointer<LightingDialog> lightingDialog;
    QPointer<QWidget> base;
    std::unique_ptr<QObject> areaFitter;
    std::unique_ptr<QObject> redrawer;
    bool whiteBackground = false;
    bool isCoarse = false;
    bool isBySoftware = false;
    int cameraRotSteps = 12;
    std::map<SoQtGeneralViewerResizeCB*, void*> resizeCBs;
    std::map<SoQtGeneralViewerEventCB*, void*> preEventCBs;
    std::map<SoQtGeneralViewerEventCB*, void*> postEventCBs;
};

#endif
