// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_MAINWINDOW_H
#define STRANDVIEW_APP_WINDOW_MAINWINDOW_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QStringList>

#include <SoQtGeneralViewerDialog.h>

#include <strandview/formats/ReadReport.h>

#include "request/Options.h"
#include "window/LoadJob.h"

class QAction;
class QLabel;
class QMenu;
class QToolBar;

namespace strandview {

class DataScene;
class LoadBar;
class StatusText;

/// Prepares Qt, Coin and SoQt for windows; before any node is made.
void initialiseWindows(const char* programName);

/// The program's window: the viewer with a menu, a tool bar, and a status bar that shows
/// the zoom and what was picked. Its menu reaches everything that the keys do.
class MainWindow : public SoQtGeneralViewerDialog
{
    Q_OBJECT

public:
    using Loader = LoadJob::Loader;

    MainWindow(const Options& options, Loader loader);
    ~MainWindow() override;

    enum CameraChoice { NEW_CAMERA, SAME_CAMERA };

    /// Shows the scene of these files instead of the present one, with the camera that
    /// the options ask for, or that of the present one.
    void showScene(DataScene* scene, const std::vector<std::string>& files,
                   CameraChoice choice = NEW_CAMERA);
    /// Puts the files at the top of those to open again.
    static void rememberFiles(const QStringList& files);
    CameraNumbers getCameraNumbers() const;
    bool hasScene() const;
    /// Acts once, as soon as the screen shows a whole frame that was drawn after this call.
    void whenPainted(std::function<void()> act);

    /// Shows the scene of a job when it is there, and then tells of success or failure. What
    /// is being loaded is stopped.
    void follow(std::unique_ptr<LoadJob> newJob, std::function<void(const ReadReport&)> tell,
                CameraChoice choice = NEW_CAMERA);
    bool isLoading() const;

signals:
    /// Nothing is being loaded any more: it is shown, has failed or was stopped.
    void loadingEnded();

public slots:
    void update3DZoom() override;
    /// And gives the keyboard back to the view.
    void setCameraZoom() override;

    // File
    void chooseFiles();
    /// Loads the files, which stops what is being loaded, and shows them then; tells in a
    /// message box if it cannot, and shows what it showed. What takes long is not waited for.
    void openFiles(const QStringList& files, CameraChoice choice = NEW_CAMERA);
    /// The files that are shown, with the camera as it is.
    void readAgain();
    /// What is shown stays.
    void stopLoading();
    void choosePicture();
    /// Writes what the view shows, with smooth edges; tells in a message box if it cannot.
    void savePicture(const QString& file);
    void copyCamera();
    /// What the status bar tells, all of it.
    void copyStatusText();

    // View
    void viewAll();
    void viewFrom(Side side);
    void setPerspective(bool perspective);
    void setFullScreen(bool full);

    // Look
    /// Whether data give the colours, in this scene and in those to come.
    void setColours(bool ofData);

    // Help
    void showKeys();
    void showAbout();

protected:
    void changeEvent(QEvent* event) override;
    void done(int result) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    class Viewer;

    void buildMenus();
    void buildFileMenu(QMenu& menu);
    void buildViewMenu(QMenu& menu);
    void buildLookMenu(QMenu& menu);
    void buildHelpMenu(QMenu& menu);
    /// An entry that does what a key of the viewer does.
    QAction* addKeyAction(QMenu& menu, const QString& text, const QString& keyName, int key,
                          Qt::KeyboardModifier modifier = Qt::NoModifier);
    QAction* addKeySwitch(QMenu& menu, const QString& text, const QString& keyName, int key,
                          Qt::KeyboardModifier modifier = Qt::NoModifier);
    void pressKey(int key, Qt::KeyboardModifier modifier = Qt::NoModifier);

    void updateRecentMenu();
    /// Where the first of the shown files is; empty for none.
    QString folderOfFiles() const;
    void prepareDialogs();
    void restoreWindow();
    void showLoading();
    void showDrawing();
    void tellOpened(const std::vector<std::string>& files, const ReadReport& report);

    void place(const CameraRequest& request);
    void fit();
    /// Whether the view is as it was fitted.
    bool isFitted() const;
    /// A view that the user left as it was fitted is fitted anew to another size.
    static void refit(void* window, SoQtGeneralViewer* viewer, const SbVec2s& size);
    void followViewer();
    void followMode();

    Options options;
    Loader loader;
    std::unique_ptr<Viewer> ownedViewer;
    std::unique_ptr<QObject> screenFitter;
    DataScene* scene = nullptr; // kept by the viewer
    std::vector<std::string> shownFiles;
    std::optional<CameraNumbers> fitted;
    CameraRequest home;           ///< where the scene is seen from at the beginning
    std::unique_ptr<LoadJob> job; // at work, else null

    QToolBar* tools = nullptr;
    StatusText* statusText = nullptr;
    QLabel* modeLabel = nullptr; // turning or picking
    LoadBar* loadBar = nullptr;
    QAction* stopAction = nullptr;
    QMenu* recentMenu = nullptr;
    QString screenshotFolder = "./"; // as the dialog comes
    QAction* perspectiveAction = nullptr;
    QAction* fullScreenAction = nullptr;
    // Ticked as the viewer is, whoever changed it.
    QAction* boxesAction = nullptr;
    QAction* framesAction = nullptr;
    QAction* wheelsAction = nullptr;
    QAction* pickingAction = nullptr;
    QAction* coloursAction = nullptr;
    std::vector<QAction*> sceneActions; // that need a scene
};

/// Loads the options' files, if there are any, and shows them until the user closes the window;
/// by a loader of their own if there is a first one. What is there soon is
/// shown at once, and what is refused soon never opens a window; a later refusal closes it: both
/// give report.error. Notices go to standard error. Returns one line that says what failed of the
/// window itself, or nothing.
std::string runWindow(const Options& options, const MainWindow::Loader& loader, ReadReport& report,
                      const MainWindow::Loader& first = nullptr);

} // namespace strandview

#endif
