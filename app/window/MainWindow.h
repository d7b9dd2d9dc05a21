// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_MAINWINDOW_H
#define STRANDVIEW_APP_WINDOW_MAINWINDOW_H

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QStringList>
#include <QTimer>

#include <SoQtGeneralViewerDialog.h>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Series.h>

#include "request/Options.h"
#include "request/PictureChoice.h"
#include "scene/Stage.h"
#include "scene/Told.h"
#include "window/History.h"
#include "window/LoadJob.h"
#include "window/PlayBar.h"
#include "window/Restyler.h"
#include "window/SideBySide.h"
#include "window/WindowState.h"
#include "window/actions.h"

class QDockWidget;
class QLabel;
class QMainWindow;
class SoPickedPoint;

namespace strandview {

class CoarseDrawing;
class CurveHover;
class CurvePanel;
class DataScene;
class FileWatcher;
class LoadBar;
class LookPanel;
class MeasurementKeeper;
class Menus;
class NamedViews;
class PlaceMarks;
class PlacePanel;
class PlaceTeller;
class Player;
class SessionKeeper;
class SettingsPanel;
class StatusText;
class ThingsPanel;
class WindowViewer;
struct PicturedView;

/// The program's window: the viewer with a menu, a tool bar, and a status bar that shows
/// the zoom and what was picked. Menus, tool bar and keys are those of actions().
class MainWindow : public SoQtGeneralViewerDialog
{
    Q_OBJECT

public:
    /// As prepareScene(), in another thread, with what is asked for then.
    using Loader =
        std::function<SceneMaker(const std::vector<std::string>& files, const Options& options,
                                 ReadReport& report, Progress& progress)>;
    /// Opens files as a series, in another thread; see FrameStore::Opener.
    using SeriesOpener = std::function<std::unique_ptr<Series>(
        const std::vector<std::string>& files, const Options& options, ReadReport& report,
        Progress& progress)>;

    /// What a session asks for; or nothing, and one line in `fault`.
    using SessionReader =
        std::function<std::optional<Options>(const std::string& name, std::string& fault)>;

    /// Without an opener the first frame of a series is shown alone; without a reader sessions are
    /// files like any others.
    MainWindow(const Options& options, Loader loader, SeriesOpener opener = {},
               SessionReader reader = {});
    ~MainWindow() override;

    enum CameraChoice { NEW_CAMERA, SAME_CAMERA };

    /// Shows the scene of these files instead of the present one, with the camera that
    /// the options ask for, or that of the present one.
    void showScene(DataScene* scene, const std::vector<std::string>& files,
                   CameraChoice choice = NEW_CAMERA);
    CameraNumbers getCameraNumbers() const;
    /// Of the view that its user turns: see SideBySide::getActive().
    CameraNumbers getActiveCamera() const;
    bool hasScene() const;
    /// Acts once, as soon as the screen shows a whole frame that was drawn after this call, and
    /// those of further views that were due with it.
    void whenPainted(std::function<void()> act);

    using Tell = std::function<void(const ReadReport&)>;
    /// Shows the scene of a job when it is there, with what is asked for then if that is not the
    /// same, and then tells of success or failure. What is being loaded is stopped.
    void follow(std::unique_ptr<LoadJob> newJob, Tell tell, CameraChoice choice = NEW_CAMERA,
                const std::optional<Options>& asked = {});
    bool isLoading() const;
    bool isWatching() const { return options.watch; }

    /// What further views show.
    const BesideRequest& getBeside() const { return options.beside; }
    const SideBySide& getSideBySide() const { return *sideBySide; }

    /// Plays the series that is shown; null for what has one frame.
    Player* getPlayer() const { return player.get(); }

    /// The places that are clicked, as the view shows them.
    const PlaceMarks& getMarks() const;
    /// The measurements that are kept.
    MeasurementKeeper& getMeasurements() const { return *measurements; }

    /// What is asked for of the style, by options and panels.
    const StyleRequest& getStyle() const { return options; }
    /// What its user can take back.
    WindowState getState() const;
    /// The files, the camera and all that was chosen.
    Session getSession() const;
    /// How pictures of the view are saved and copied as command lines; as the view is at first.
    const PictureChoice& getPictureChoice() const { return pictureChoice; }
    void setPictureChoice(const PictureChoice& next) { pictureChoice = next; }

    /// The views that its user keeps by names, in any files; tells when the user changes them.
    NamedViews& getViews() { return *views; }

    /// Whether a style that was asked for is not shown yet, or for the moment with jagged edges.
    bool isRestyling() const;

signals:
    /// Nothing is being loaded any more: it is shown, has failed or was stopped.
    void loadingEnded();
    /// The next frame has the style that was asked for.
    void styleShown();
    /// The view has drawn a frame.
    void frameDrawn();

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
    /// Whether files are read again whenever they change: those that are shown, and those to come.
    /// What cannot be read is waited for.
    void setWatching(bool on);
    /// What is shown stays.
    void stopLoading();
    /// Saves the session under the name that it has, or asks for one.
    void keepSession();
    void chooseSession();
    /// Tells in the status bar when it is there, or in a message box why not.
    void saveSession(const QString& file);
    /// Asks how a picture is to be, and where, and saves it.
    void choosePicture();
    /// Writes what the view shows, with smooth edges, as it was chosen for pictures; tells in a
    /// message box if it cannot.
    void savePicture(const QString& file);
    void copyCamera();
    /// The command line that makes the picture that savePicture() would write.
    void copyCommand();
    void saveDefaults();
    /// What the status bar tells, all of it.
    void copyStatusText();

    // View
    void viewAll();
    void viewFrom(Side side);
    void setPerspective(bool perspective);
    void setFullScreen(bool full);
    /// Opens and closes further views; tells in the status bar what cannot be shown there.
    void setBeside(const strandview::BesideRequest& request);

    // Look
    /// Whether data give the colours, in this scene and in those to come.
    void setColours(bool ofData);
    /// Shows all in another style, as soon as it is prepared: of this scene and of those to come.
    void setStyle(const strandview::StyleRequest& next);

    // Help
    void showKeys();
    void showAbout();

protected:
    /// Esc, beside the view: gives the keyboard back to it, and forgets what was typed.
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void done(int result) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    /// What a picture shows, in this style.
    PicturedView getPictured(const StyleRequest& style) const;
    /// The further view that it is of, null for the first: that which its user turns, unless that
    /// shows another file, which by itself has other coordinates and colours.
    const BesideView* picturedBeside() const;
    /// ", of the second view": where there are several, of which of them something is.
    std::string wordsOf(const BesideView* view) const;

    void buildMenus();
    /// What the view is in.
    QWidget* buildView();
    void buildStatusBar();
    void perform(const Deed& deed, bool on);
    void command(Command command, bool on);

    /// Empty if its user chooses none.
    std::string askForFile(const QString& title);
    /// Where the first of the shown files is; empty for none.
    QString folderOfFiles() const;
    void prepareDialogs();
    void restoreWindow();
    void openSession(const std::string& name);
    /// Loads files as `asked` says, and goes on with `next`, if anything, once they are shown.
    /// With the options that there are.
    void loadAsNow(const std::vector<std::string>& files, CameraChoice choice, Tell tell);
    void load(const std::vector<std::string>& files, const Options& asked, CameraChoice choice,
              const std::optional<Options>& next, Tell tell);
    void finishIfSoon();
    void tellLoadingLater();
    void tellChanged(const std::vector<std::string>& files);
    QString title() const;
    void showLoading();
    void drawCoarselyFirst();
    void showDrawing();
    void buildWatcher();
    void watchFiles();
    void readChanged();
    void tellOpened(const std::vector<std::string>& files, const ReadReport& report);

    // Further views
    void buildViews();
    void showBeside(bool on);
    void addBeside(const std::string& what);
    void closeBeside(std::size_t index);
    void openBeside(SideBySide::Files files);
    /// With the cameras that they have, or will have.
    BesideRequest besideNow() const;
    void placeBeside();
    BesideView::Source besideSource(const std::string& what) const;
    void followBeside(BesideView::Change change);
    void keepRoom();

    void buildPanels();
    void buildNumbers();
    void takeMeasurements();
    void keepMeasurement();
    void buildSettings();
    /// What of a style needs no preparation: how all is drawn, and how single things look.
    void showThings();
    /// Prepares the style that is asked for, of the frame that is shown.
    void restyle();
    void showStyle(Restyler::Result& result);
    void cut();
    /// With handles in the view, of the plane that there is or a new one.
    void moveClip(bool on);
    void followClip();
    /// Whether one was asked for that is not shown.
    bool dropComparison();
    void showBackground();
    void abandonJob();
    /// Lets the panels show what is asked for.
    void tellStyle();
    void buildHistory();
    /// What differs from what is shown.
    void showState(const WindowState& state);
    void buildCurves();
    /// Beside the view, closed; an entry of the menu shows it.
    QDockWidget* addPanel(QWidget* panel, const char* title, Command toggle);
    /// Tells what was clicked, and measures with Shift.
    void pick(const SoPickedPoint& picked);
    void followPanels();
    /// In the view.
    void outlineChosen();
    /// Moves the camera before a thing, without turning it.
    void centre(const SbBox3f& box);

    void buildPlayBar();
    /// Where playing is to begin.
    struct Start
    {
        std::size_t frame = 0;
        PlayBar::Range range = {};
        bool isPlaying = false;
        bool isLast = false; ///< where there are more files now, too
    };
    /// If the files that are shown have several frames, and can be read again.
    void beginToPlay(const ReadReport& report, Start start);
    Start startAsNow() const;
    void playOnceShown(std::size_t frame);
    void endPlaying();
    /// Of the files that are loaded, the one that is shown first.
    std::size_t loadedFrame() const;
    void tellSeries(const std::vector<std::string>& notices);
    void tellFrame(std::size_t frame, const std::vector<std::string>& notices);
    /// Those of the notices that were not told of these files yet.
    std::vector<std::string> tellOnce(const std::vector<std::string>& notices);
    /// Makes camera and colours suit all frames.
    void settle(const Stage& stage);

    void place(const CameraRequest& request);
    void goHome();
    // Of the view that its user turns
    void placeActive(const CameraRequest& request);
    void bringActiveHome();
    WindowViewer& activeViewer() const;
    SoQtGeneralViewer* getZoomedViewer() const override;
    void fit();
    /// Whether the view is as it was fitted.
    bool isFitted() const;
    /// A view that the user left as it was fitted is fitted anew to another size.
    static void refit(void* window, SoQtGeneralViewer* viewer, const SbVec2s& size);
    void followViewer();
    void followDrawing();
    void showLights();
    void followMode();
    /// What the mouse does, while there is nothing else to tell.
    void showHint();

    Options options;
    Loader loader;
    SeriesOpener seriesOpener;
    SessionReader sessionReader;
    SideBySide* sideBySide = nullptr; ///< goes before the viewer, whose camera it follows
    std::unique_ptr<WindowViewer> ownedViewer;
    std::unique_ptr<CoarseDrawing> coarseDrawing;
    std::unique_ptr<QObject> screenFitter;
    DataScene* scene = nullptr; // kept by the viewer
    std::vector<std::string> shownFiles;
    std::optional<CameraNumbers> fitted, homeNumbers;
    std::unique_ptr<LoadJob> job; // at work, else null
    std::unique_ptr<Player> player;
    FileWatcher* watcher = nullptr;
    FileStamps readStamps; ///< of what is shown, when it was read
    Restyler restyler;
    std::unique_ptr<SessionKeeper> sessions;
    StyleRequest shownStyle; ///< as far as it is shown
    bool hasClipHandles = false;
    BesideRequest closedBeside; ///< what was in further views
    PictureChoice pictureChoice;
    /// Of these files: what is left open follows from it.
    std::shared_ptr<const Configuration> firstFrame;

    std::unique_ptr<Menus> menus;
    std::unique_ptr<History> history;
    std::unique_ptr<History::Pause> trial; ///< while a style is tried
    NamedViews* views = nullptr;
    StatusText* statusText = nullptr;
    QLabel* modeLabel = nullptr;  // turning or picking
    QMainWindow* docks = nullptr; // view and panels
    QDockWidget *placeDock = nullptr, *thingsDock = nullptr, *curveDock = nullptr;
    QDockWidget *lookDock = nullptr, *colourDock = nullptr;
    LookPanel* look = nullptr;
    SettingsPanel *lookPanel = nullptr, *colourPanel = nullptr;
    ThingsPanel* things = nullptr;
    CurvePanel* curves = nullptr;
    std::unique_ptr<CurveHover> curveHover;
    std::unique_ptr<PlaceTeller> places;
    std::unique_ptr<MeasurementKeeper> measurements;
    QTimer lookTimer; ///< until panels follow what the user changed of things
    LoadBar* loadBar = nullptr;
    PlayBar* playBar = nullptr;
    std::vector<std::string> frameFiles; ///< that frames are told of: those of a series each
    std::vector<Told> loadNotices;       ///< of the files that are shown
    std::set<std::string> toldOnce;      ///< of these files, by withoutPlace()
    QString screenshotFolder = "./";     // as the dialog comes
};

} // namespace strandview

#endif
