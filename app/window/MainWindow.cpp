// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/MainWindow.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QSettings>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <LightingDialog.h>
#include <ScreenshotDialog.h>
#include <SoQtGeneralViewer.h>

#include <strandview/formats/seriesFiles.h>
#include <strandview/model/Extent.h>

#include "camera/Camera.h"
#include "output/saveDefaults.h"
#include "pictures/PictureWriter.h"
#include "request/conversions.h"
#include "request/defaults.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/clipping.h"
#include "scene/readFiles.h"
#include "session/sessionFile.h"
#include "window/CoarseDrawing.h"
#include "window/CurveHover.h"
#include "window/CurvePanel.h"
#include "window/FileWatcher.h"
#include "window/FrameWaiter.h"
#include "window/History.h"
#include "window/LoadBar.h"
#include "window/LookPanel.h"
#include "window/MeasurementKeeper.h"
#include "window/MeasurementPanel.h"
#include "window/Menus.h"
#include "window/NamedViews.h"
#include "window/PictureDialog.h"
#include "window/PlacePanel.h"
#include "window/PlaceTeller.h"
#include "window/Player.h"
#include "window/ScreenFitter.h"
#include "window/SessionKeeper.h"
#include "window/SettingControl.h"
#include "window/SettingsPanel.h"
#include "window/SideBySide.h"
#include "window/StatusText.h"
#include "window/ThingsPanel.h"
#include "window/ViewPictures.h"
#include "window/WindowViewer.h"
#include "window/decimalComma.h"
#include "window/fileFilter.h"
#include "window/recentFiles.h"
#include "window/textBoxes.h"

namespace strandview {

namespace {

const char* const GEOMETRY = "windowGeometry";

// So long the window may wait for what is loaded, and not answer: nobody notices.
const std::chrono::milliseconds SOON(50);

// So near to a point of the data, in the desktop's pixels, a click means that point.
const double SNAP = 6;

std::string nameOf(const std::vector<std::string>& files)
{
    const std::string& first = files.front();
    const std::string name = first == "-" ? "standard input" : first;
    return files.size() > 1 ? name + " and " + std::to_string(files.size() - 1) + " more" : name;
}

QString titleFor(const std::vector<std::string>& files)
{
    return QString::fromStdString(files.empty() ? "strandview" : nameOf(files) + " - strandview");
}

// In front of those that share its place.
void showPanel(QDockWidget& dock, bool on)
{
    dock.setVisible(on);
    if (on)
        dock.raise();
}

// Of the field that has the keyboard, before it is left.
void forgetTyping()
{
    QWidget* const field = QApplication::focusWidget();
    if (auto* const line = qobject_cast<QLineEdit*>(field))
        line->setModified(false);
    else if (auto* const count = qobject_cast<QSpinBox*>(field))
        count->setValue(count->value());
    else if (auto* const number = qobject_cast<QDoubleSpinBox*>(field))
        number->setValue(number->value());
}

// "waiting for rod.txt:3: found 2 fields, expected 3", of a file that is named at the beginning.
Told toldOfWaiting(const std::string& fault, const std::vector<std::string>& files)
{
    for (const std::string& file : files) {
        if (fault.compare(0, file.size() + 1, file + ":") == 0)
            return {"waiting for " + file.substr(file.find_last_of('/') + 1) +
                        fault.substr(file.size()),
                    file};
    }
    return {"waiting: " + fault, ""};
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; });
}

std::vector<std::string> namesOf(const Session& session)
{
    std::vector<std::string> names;
    for (const SessionFile& file : session.files)
        names.push_back(file.name);
    return names;
}

QStringList localFiles(const QMimeData& data)
{
    QStringList files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    return files;
}

} // namespace

MainWindow::MainWindow(const Options& startOptions, Loader sceneLoader, SeriesOpener opener,
                       SessionReader reader)
    : SoQtGeneralViewerDialog(nullptr),
      options(startOptions),
      loader(std::move(sceneLoader)),
      seriesOpener(std::move(opener)),
      sessionReader(std::move(reader)),
      sessions(std::make_unique<SessionKeeper>())
{
    pictureChoice.size.samples = options.samples;
    setWindowFlags(Qt::Window);
    setWindowTitle(titleFor({}));
    setAcceptDrops(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildMenus();
    docks = new QMainWindow(this);
    docks->setWindowFlags(Qt::Widget);
    docks->setContextMenuPolicy(Qt::NoContextMenu);
    docks->setCentralWidget(buildView());
    layout->addWidget(docks, 1);
    buildHistory();
    buildPanels();
    restoreWindow(); // before SoQt, which shows the whole window with the view
    viewer->show();
    viewer->getGLWidget()->setAccessibleName("View");
    buildPlayBar();
    buildStatusBar();
    buildWatcher();
    setupUi();
    zoomLineEdit->setMaximumWidth( // of large letters, too
        std::max(80, zoomLineEdit->fontMetrics().horizontalAdvance("0.00000e+000")));
    acceptDecimalComma(*zoomLineEdit);
    acceptDecimalComma(*findChild<QDoubleSpinBox*>("multDoubleSpinBox"));

    followMode();
    viewer->getGLWidget()->setFocus();
}

MainWindow::~MainWindow()
{
    sideBySide->close();
    for (QDockWidget* dock : {placeDock, thingsDock, curveDock})
        dock->disconnect(this);       // it is hidden once the members are gone
    things->setScene(nullptr, false); // which a name that is being edited would be given
}

void MainWindow::buildMenus()
{
    auto* bar = new QMenuBar(this);
    layout()->setMenuBar(bar);
    auto* tools = new QToolBar(this);
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    layout()->addWidget(tools);
    menus = std::make_unique<Menus>(*bar, *tools,
                                    [this](const Deed& deed, bool on) { perform(deed, on); });
    (*menus)[Command::STOP_LOADING]->setEnabled(false);
    menus->followSeries(false);
    (*menus)[Command::SHOW_AXES]->setChecked(true);
    (*menus)[Command::SHOW_COLOURS]->setChecked(!options.session ||
                                                options.session->areColoursShown);
    QMenu* recent = (*menus)[Command::OPEN_RECENT]->menu();
    connect(recent, &QMenu::aboutToShow, this, [this, recent] {
        offerRecentFiles(*recent, [this](const QStringList& files) { openFiles(files); });
    });
    views = new NamedViews(*(*menus)[Command::NAMED_VIEWS]->menu(), this);
    views->onShow = [this](const CameraNumbers& camera) {
        CameraRequest kept;
        kept.numbers = camera;
        placeActive(kept);
    };
    connect(views, &NamedViews::changed, this, [this] { history->note(); });
}

QWidget* MainWindow::buildView()
{
    sideBySide = new SideBySide(docks);
    ownedViewer = std::make_unique<WindowViewer>(sideBySide->getFirstArea());
    viewer = ownedViewer.get();
    viewer->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    viewer->setHeadlight(FALSE); // the scene has its lights
    viewer->setDecoration(FALSE);
    const SbColor background = toSbColor(options.background);
    if (background == SbColor(1, 1, 1))
        viewer->setWhiteBackground(true); // so that the key's next press gives black
    else
        viewer->setBackgroundColor(background);
    viewer->setSceneGraph(new SoSeparator); // without one the view stays black
    viewer->addResizeCB(refit, this);
    ownedViewer->onTab = [this](bool isForward) { focusNextPrevChild(isForward); };
    coarseDrawing = std::make_unique<CoarseDrawing>([this](bool coarse) {
        ownedViewer->drawCoarsely(coarse);
        sideBySide->drawCoarsely(coarse);
    });
    ownedViewer->onHome = [this] { goHome(); };
    ownedViewer->onFrame = [this] { emit frameDrawn(); };
    ownedViewer->clipHandles.onMoved = [this](const ClipPlane& plane) {
        StyleRequest next = options;
        next.clip = plane;
        setStyle(next);
    };
    buildViews();
    return sideBySide;
}

void MainWindow::buildViews()
{
    sideBySide->setFirst(*ownedViewer);
    sideBySide->onViewer = [this] { followBeside(BesideView::NEW_SOURCE); };
    sideBySide->onShown = [this] {
        keepRoom();
        drawCoarselyFirst();
    };
    sideBySide->onCamera = [this] {
        history->noteSoon();
        update3DZoom();
    };
    sideBySide->onPick = [this](const Told& told) { statusText->tell({told}); };
    sideBySide->onFailure = [this](std::size_t index, const std::string& error) {
        statusText->tell({toldOf(error, options.beside.what)});
        if (sideBySide->getViews()[index]->getScene()) // it may come to be whole again
            return;
        const History::Pause pause(*history);
        closeBeside(index);
    };
    sideBySide->onClose = [this](std::size_t index) { closeBeside(index); };
    sideBySide->onActive = [this] { update3DZoom(); };
}

void MainWindow::buildHistory()
{
    history = std::make_unique<History>([this] { return getState(); },
                                        [this](const WindowState& state) { showState(state); });
    sideBySide->setHistory(*history);
    QAction* const undo = (*menus)[Command::UNDO];
    QAction* const redo = (*menus)[Command::REDO];
    QUndoStack& steps = history->steps;
    const auto follow = [](QAction& action, const QString& verb, const QString& what) {
        action.setText(what.isEmpty() ? verb : verb + ' ' + what);
        action.setEnabled(!what.isEmpty());
    };
    const auto followAll = [this, follow, undo, redo] {
        follow(*undo, "&Undo", history->steps.undoText());
        follow(*redo, "&Redo", history->steps.redoText());
    };
    for (const auto change : {&QUndoStack::undoTextChanged, &QUndoStack::redoTextChanged})
        connect(&steps, change, this, followAll);
    followAll();
    ownedViewer->onCamera = [this] {
        history->noteSoon();
        sideBySide->followFirst();
    };
}

void MainWindow::buildPanels()
{
    buildNumbers();
    buildSettings();
    things = new ThingsPanel(docks);
    things->onCentre = [this](const SbBox3f& box) { centre(box); };
    things->onChosen = [this] { outlineChosen(); };
    things->onLooks = [this](const ThingLooks& next) {
        StyleRequest style = options;
        style.things = next;
        setStyle(style);
    };
    thingsDock = addPanel(things, "Things", Command::SHOW_THINGS);
    for (const QDockWidget* dock : {placeDock, thingsDock})
        connect(dock, &QDockWidget::visibilityChanged, this, &MainWindow::followPanels);
    buildCurves();
    lookTimer.setSingleShot(true); // a button changes thousands of looks
    connect(&lookTimer, &QTimer::timeout, this, [this] {
        places->follow();
        measurements->follow();
        outlineChosen();
        curves->followLooks();
        curveHover->follow();
    });
}

void MainWindow::buildNumbers()
{
    auto* panel = new PlacePanel(docks);
    auto* list = new MeasurementPanel(docks);
    auto* both = new QSplitter(Qt::Vertical, docks);
    both->addWidget(panel);
    both->addWidget(list);
    both->setChildrenCollapsible(false);
    both->setStretchFactor(0, 1);
    placeDock = addPanel(both, "Numbers", Command::SHOW_NUMBERS);
    places = std::make_unique<PlaceTeller>(ownedViewer->marks, *panel);
    measurements = std::make_unique<MeasurementKeeper>(*places, ownedViewer->keptMarks, *list);
    connect(measurements.get(), &MeasurementKeeper::changed, this, [this] { history->note(); });
    list->folder = [this] { return folderOfFiles(); };
    connect(list, &MeasurementPanel::keepAsked, this, &MainWindow::keepMeasurement);
    connect(list, &MeasurementPanel::saveAsked, this, [this](const QString& file) {
        const std::string failure = measurements->save(file.toStdString());
        if (failure.empty())
            statusText->tell({{"Saved", file.toStdString()}});
        else
            tellFailure(this, "Cannot save", failure);
    });
}

// Those that the window begins with are of its first files.
void MainWindow::takeMeasurements()
{
    if (options.measurements.empty())
        return;
    pictureChoice.hasMeasurements = true; // which they are asked for in
    measurements->set(std::exchange(options.measurements, {}));
}

void MainWindow::keepMeasurement() { statusText->tell({{measurements->keep(), ""}}); }

void MainWindow::buildSettings()
{
    look = new LookPanel(docks);
    lookPanel = look->getSettings();
    lookDock = addPanel(look, "Look", Command::SHOW_LOOK);
    colourPanel = new SettingsPanel({"Colour by data"}, docks);
    colourDock = addPanel(colourPanel, "Colours", Command::SHOW_COLOUR_SETTINGS);
    docks->tabifyDockWidget(lookDock, colourDock);
    for (SettingsPanel* panel : {lookPanel, colourPanel})
        panel->setSurroundings(
            Surroundings{[this] { return scene ? boxOfData(*scene) : std::nullopt; },
                         [this] { return towardsViewer(getActiveCamera()); },
                         [this] { return folderOfFiles(); }});
    lookPanel->setObjectName("lookPanel");
    colourPanel->setObjectName("colourPanel");
    connect(look, &LookPanel::changed, this, &MainWindow::setStyle);
    connect(colourPanel, &SettingsPanel::changed, this, &MainWindow::setStyle);
    const auto beginTrial = [this] { trial = std::make_unique<History::Pause>(*history); };
    const auto endTrial = [this] { trial.reset(); };
    connect(look, &LookPanel::trialBegun, this, beginTrial);
    connect(look, &LookPanel::trialEnded, this, endTrial);
    connect(colourPanel, &SettingsPanel::trialBegun, this, beginTrial);
    connect(colourPanel, &SettingsPanel::trialEnded, this, endTrial);
    connect(&restyler, &Restyler::finished, this,
            [this](const std::shared_ptr<Restyler::Result>& result) { showStyle(*result); });
    shownStyle = options;
    tellStyle();
}

void MainWindow::buildCurves()
{
    curves = new CurvePanel(docks);
    curveDock = addPanel(curves, "Curves", Command::SHOW_CURVES);
    curveHover = std::make_unique<CurveHover>(*ownedViewer, *curves);
    connect(curveDock, &QDockWidget::visibilityChanged, this,
            [this](bool visible) { curveHover->setOn(visible); });
    connect(curves, &CurvePanel::frameChosen, this, [this](std::size_t frame) {
        if (player)
            player->goTo(frame);
    });
    connect(curves, &CurvePanel::placeClicked, this, [this](const CurvePanel::Place& place) {
        if (!scene || !scene->getData())
            return;
        places->add(pickedPlaceOf(place, *scene), false);
        statusText->tell(places->getTold());
    });
    connect(curves, &CurvePanel::saved, this, [this](const QString& file) {
        statusText->tell({{"Saved", file.toStdString()}});
    });
}

QDockWidget* MainWindow::addPanel(QWidget* panel, const char* title, Command toggle)
{
    auto* dock = new QDockWidget(title, docks);
    dock->setWidget(panel);
    docks->addDockWidget(Qt::RightDockWidgetArea, dock);
    dock->hide();
    connect(dock->toggleViewAction(), &QAction::toggled, (*menus)[toggle], &QAction::setChecked);
    return dock;
}

void MainWindow::buildPlayBar()
{
    std::vector<QAction*> buttons;
    for (const Command command : {Command::FIRST_FRAME, Command::FRAME_BACK, Command::PLAY,
                                  Command::FRAME_FORWARD, Command::LAST_FRAME})
        buttons.push_back((*menus)[command]);
    playBar = new PlayBar(buttons, options.series.framesPerSecond, this);
    connect(playBar, &PlayBar::edited, this, [this] { activeViewer().getGLWidget()->setFocus(); });
    layout()->addWidget(playBar);
}

void MainWindow::buildStatusBar()
{
    statusText = new StatusText(statusBar);
    statusBar->addWidget(statusText, 1);
    modeLabel = new QLabel(statusBar);
    statusBar->addPermanentWidget(modeLabel);
    loadBar = new LoadBar((*menus)[Command::STOP_LOADING], statusBar);
    statusBar->addWidget(loadBar, 1);
    layout()->addWidget(statusBar);
    ownedViewer->onMiss = [this] {
        if (ownedViewer->isShiftDown) // what is measured from stays, and what is chosen
            return;
        things->choose({});
        places->forget();
        statusText->tell({});
    };
    ownedViewer->onMode = [this] { followMode(); };
    connect(sessions.get(), &SessionKeeper::saved, this,
            [this](const Session& session, const std::string& failure) {
                if (!failure.empty()) {
                    statusText->tell({});
                    tellFailure(this, "Cannot save", failure);
                    return;
                }
                statusText->tell({{"Saved", session.name}});
                rememberFiles({QString::fromStdString(session.name)});
                if (namesOf(session) != shownFiles)
                    return; // others were opened meanwhile
                options.session = session;
                setWindowTitle(title());
            });
    connect(sessions.get(), &SessionKeeper::foundChanged, this, &MainWindow::tellChanged);
}

// Scene

void MainWindow::showScene(DataScene* newScene, const std::vector<std::string>& files,
                           CameraChoice choice)
{
    CameraRequest same;
    if (choice == SAME_CAMERA && scene)
        same.numbers = getCameraNumbers();
    const std::optional<CameraNumbers> homeBefore = ownedViewer->home.numbers;
    const bool wasFitted = isFitted(), isFirst = !scene;
    const History::Pause pause(*history);
    endPlaying();
    restyler.forget();
    scene = newScene;
    shownFiles = files;
    scene->onPick = [this](const SoPickedPoint& picked) { pick(picked); };
    scene->onLook = [this] { lookTimer.start(); };
    scene->onLights = [this] { followDrawing(); };
    if (choice == NEW_CAMERA) {
        places->forget();
        closedBeside = {};
    }
    scene->setLooks(options.things);
    firstFrame = scene->getData();
    if (firstFrame)
        colourPanel->offerScalars(namesOfScalars(*firstFrame, options.dna.angstrom));
    shownStyle = options;
    tellStyle();
    places->setScene(scene);
    measurements->setScene(scene, loadedFrame(),
                           choice == SAME_CAMERA ? MeasurementKeeper::SAME_FILES
                                                 : MeasurementKeeper::OTHER_FILES);
    things->setScene(scene, choice == SAME_CAMERA);
    outlineChosen();
    curveHover->setScene(scene);
    curves->showScene(*scene, loadedFrame(), CurvePanel::OTHER_FILES);
    scene->showColours((*menus)[Command::SHOW_COLOURS]->isChecked());
    cut(); // of now, whatever it was when it began to be read
    drawCoarselyFirst();
    viewer->setSceneGraph(static_cast<SoGeneralScene*>(scene));
    scene->draw(options.drawing);
    scene->keepLineWidth();
    if (!isFirst && choice == NEW_CAMERA) { // these were for the scene before
        options.camera.centre.reset();
        options.camera.zoom = 1;
    }
    ownedViewer->home = scene->settle(options.camera);
    if (same.numbers && homeBefore)
        ownedViewer->home.numbers = homeBefore;
    goHome();
    // The numbers were for the first scene.
    options.camera.numbers.reset();
    if (same.numbers) {
        place(same);
        if (wasFitted)
            fitted = getCameraNumbers();
    }
    prepareDialogs();
    setWindowTitle(title());
    followMode();
    if (choice == NEW_CAMERA || isFirst)
        history->begin();
}

void MainWindow::pick(const SoPickedPoint& picked)
{
    ownedViewer->hasPicked = true;
    if (!ownedViewer->isClick)
        return;
    const double pixel = viewer->getGLWidget()->devicePixelRatioF() /
                         std::max(viewer->getCameraZoom(), 1e-300); // in the scene
    const PickedPlace place = scene->placeOf(picked, SNAP * pixel);
    if (thingsDock->isVisible()) {
        things->pick(scene->findPart(place), ownedViewer->isShiftDown);
        if (ownedViewer->isShiftDown && !placeDock->isVisible()) // or it measures as well
            return;
    }
    places->add(place, ownedViewer->isShiftDown);
    statusText->tell(places->getTold());
    if (const auto chosen = curvePlaceOf(place))
        curves->choose(*chosen);
}

// What a click does depends on which of them are there.
void MainWindow::followPanels()
{
    ownedViewer->picksWhileTurning = placeDock->isVisible() || thingsDock->isVisible();
    places->follow();
    outlineChosen();
    showHint();
}

// While the panel is there, and not around what is hidden.
void MainWindow::outlineChosen()
{
    std::vector<ThingOutline::Shown> shown;
    for (const Thing& thing : thingsDock->isVisible() ? things->chosen() : ThingsPanel::Things()) {
        if (scene->getLook(thing).isHidden())
            continue;
        shown.push_back({scene->nodeOf(thing), scene->boxOf(thing)});
    }
    look->offer(things->namesOfChosen());
    ownedViewer->outline.setThings(shown, scene ? scene->getClipPlane() : nullptr);
    viewer->scheduleRedraw();
}

void MainWindow::centre(const SbBox3f& box)
{
    const BesideView* const active = sideBySide->getActive();
    if (!(active ? active->getScene() : scene) || box.isEmpty())
        return;
    activeViewer().centre(box);
    update3DZoom();
}

void MainWindow::whenPainted(std::function<void()> act)
{
    ownedViewer->frameWaiter = new FrameWaiter(
        *viewer->getGLWidget(), [this] { viewer->scheduleRedraw(); },
        [this, act = std::move(act)] { sideBySide->whenDrawn(act); });
    ownedViewer->frameWaiter->setParent(this);
}

bool MainWindow::isRestyling() const
{
    return restyler.isAtWork() || coarseDrawing->isChanging() || sideBySide->isRefining();
}

const PlaceMarks& MainWindow::getMarks() const { return ownedViewer->marks; }

bool MainWindow::hasScene() const { return scene; }

CameraNumbers MainWindow::getCameraNumbers() const { return numbersOf(*viewer->getCamera()); }

WindowViewer& MainWindow::activeViewer() const
{
    const BesideView* const active = sideBySide->getActive();
    return active ? active->getViewer() : *ownedViewer;
}

SoQtGeneralViewer* MainWindow::getZoomedViewer() const { return &activeViewer(); }

CameraNumbers MainWindow::getActiveCamera() const { return numbersOf(*activeViewer().getCamera()); }

// Loading

void MainWindow::openFiles(const QStringList& names, CameraChoice choice)
{
    std::vector<std::string> files;
    for (const QString& name : names)
        files.push_back(name.toStdString());
    if (files.empty())
        return;
    if (sessionReader && files.size() == 1 && isSessionName(files.front())) {
        openSession(files.front());
        return;
    }
    loadAsNow(files, choice,
              [this, files](const ReadReport& report) { tellOpened(files, report); });
    finishIfSoon();
}

void MainWindow::loadAsNow(const std::vector<std::string>& files, CameraChoice choice, Tell tell)
{
    options.frame.reset();           // that was of the first files
    if (!scene && options.session) { // and so was a session that was not loaded to its end
        options.session.reset();
        options.camera.numbers.reset();
        options.beside.cameras.clear();
    }
    Options asked = options;
    asked.colourIfPossible = true; // other files need not have that scalar
    if (scene && choice == NEW_CAMERA)
        asked.things = {}; // nor those things
    load(files, asked, choice, std::nullopt, std::move(tell));
}

void MainWindow::load(const std::vector<std::string>& files, const Options& asked,
                      CameraChoice choice, const std::optional<Options>& next, Tell tell)
{
    const auto loadAsAsked = [load = loader, asked](const std::vector<std::string>& toLoad,
                                                    ReadReport& report, Progress& progress) {
        return load(toLoad, asked, report, progress);
    };
    follow(std::make_unique<LoadJob>(files, loadAsAsked, referenceOf(asked)), std::move(tell),
           choice, next);
}

// What takes no time is shown with the next frame, and nothing is said of what takes hardly any.
void MainWindow::finishIfSoon()
{
    if (job->waitFor(SOON))
        job->finish();
    else
        tellLoadingLater();
}

void MainWindow::tellLoadingLater()
{
    loadBar->hide();
    QTimer::singleShot(LoadJob::PATIENCE, job.get(), [this, which = job.get()] {
        if (job.get() == which)
            showLoading();
    });
}

void MainWindow::follow(std::unique_ptr<LoadJob> newJob, Tell tell, CameraChoice choice,
                        const std::optional<Options>& asked)
{
    if (job)
        abandonJob();
    job = std::move(newJob);
    showLoading();
    connect(job.get(), &LoadJob::progressed, loadBar, &LoadBar::setText);
    // Until then the panels may ask for another.
    StyleRequest style = asked ? *asked : options;
    if (!asked && scene && choice == NEW_CAMERA)
        style.things = {};
    connect(job.get(), &LoadJob::finished, this,
            [this, tell, choice, asked, style](DataScene* loaded, const ReadReport& report) {
                LoadJob* const ended = job.release();
                ended->deleteLater(); // not before it returns
                showLoading();
                if (loaded) {
                    if (asked) {
                        options = *asked;
                        showBackground();
                        (*menus)[Command::SHOW_COLOURS]->setChecked(
                            !asked->session || asked->session->areColoursShown);
                    } else if (scene && choice == NEW_CAMERA) {
                        options.session.reset();
                        options.things = {}; // of the files before
                    }
                    Start start{std::size_t(options.frame.value_or(0))};
                    if (choice == SAME_CAMERA && player)
                        start = startAsNow();
                    showDrawing();
                    const std::vector<std::string> before = frameFiles;
                    showScene(loaded, ended->getFiles(), choice);
                    rememberFiles(namesOf(ended->getFiles()));
                    beginToPlay(report, start);
                    if (choice == SAME_CAMERA && options.series.isOfFiles)
                        measurements->keepSeen(
                            sameFrames(before, readStamps, frameFiles, ended->getStamps()));
                    openBeside(choice == SAME_CAMERA ? SideBySide::READ_AGAIN
                                                     : SideBySide::OTHER_FILES);
                    readStamps = ended->getStamps();
                    watchFiles();
                    shownStyle = style;
                    if (style != options && scene->getData())
                        restyle();
                    if (options.session && choice == NEW_CAMERA) {
                        const History::Pause pause(*history);
                        pictureChoice = options.session->picture;
                        measurements->set(options.session->measurements);
                        views->set(options.session->views);
                        rememberFiles({QString::fromStdString(options.session->name)});
                        sessions->findChanged(*options.session);
                    }
                    takeMeasurements();
                } else {
                    const bool wasOtherAsked = dropComparison();
                    if (ended->getFiles() == shownFiles && !wasOtherAsked)
                        watcher->retry(ended->getStamps());
                }
                tell(report);
                emit loadingEnded();
            });
}

void MainWindow::tellOpened(const std::vector<std::string>& files, const ReadReport& report)
{
    if (!report.error.empty()) {
        tellFailure(this, "Cannot open", report.error);
        return;
    }
    std::vector<Told> notices;
    for (const std::string& notice : report.notices)
        notices.push_back(toldOf(notice, files));
    statusText->tell(notices);
}

// Sessions

void MainWindow::openSession(const std::string& name)
{
    std::string fault;
    std::optional<Options> next = sessionReader(name, fault);
    if (!next) {
        tellFailure(this, "Cannot open", fault);
        return;
    }
    // What a session does not say.
    next->windowSize = options.windowSize;
    next->series.framesPerSecond = options.series.framesPerSecond;
    next->series.cacheMegabytes = options.series.cacheMegabytes;
    next->watch = options.watch;
    next->hasDefaults = options.hasDefaults;
    load(next->files, *next, NEW_CAMERA, next,
         [this, files = next->files](const ReadReport& report) { tellOpened(files, report); });
    finishIfSoon();
}

Session MainWindow::getSession() const
{
    Session session;
    if (options.session)
        session.name = options.session->name;
    for (const std::string& file : shownFiles)
        session.files.push_back({file, 0, ""});
    session.reading = options.reading;
    session.style = options;
    session.areColoursShown = (*menus)[Command::SHOW_COLOURS]->isChecked();
    session.camera = getCameraNumbers();
    if (player)
        session.frame = player->getFrame();
    const SbVec2s size = ownedViewer->getGLSize();
    session.pictureSize = {size[0], size[1]};
    session.picture = pictureChoice;
    session.measurements = measurements->get();
    session.views = views->get();
    session.beside = besideNow();
    return session;
}

void MainWindow::keepSession()
{
    if (options.session)
        saveSession(QString::fromStdString(options.session->name));
    else
        chooseSession();
}

void MainWindow::chooseSession()
{
    if (!scene)
        return;
    const QString first = shownFiles.empty() ? "" : QString::fromStdString(shownFiles.front());
    QFileDialog dialog(this, "Save the session", folderOfFiles(),
                       QString("Sessions (*") + SESSION_ENDING + ")");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(SESSION_ENDING + 1);
    dialog.selectFile(QFileInfo(first).completeBaseName() + SESSION_ENDING);
    if (dialog.exec() == QDialog::Accepted)
        saveSession(dialog.selectedFiles().constFirst());
}

void MainWindow::saveSession(const QString& file)
{
    if (!scene)
        return;
    if (findReadOnce(shownFiles)) {
        tellFailure(this, "Cannot save",
                    "found data of standard input or a pipe, expected files, which a session can "
                    "name");
        return;
    }
    Session session = getSession();
    session.name = file.toStdString();
    statusText->tell({{"Saving", session.name}});
    sessions->save(session);
}

void MainWindow::tellChanged(const std::vector<std::string>& files)
{
    std::vector<Told> told = loadNotices; // beside what opening them told
    for (const std::string& line : files)
        told.push_back(toldOf(line, shownFiles));
    statusText->tell(told);
}

QString MainWindow::title() const
{
    return titleFor(options.session ? std::vector<std::string>{options.session->name} : shownFiles);
}

// Series

// Who looks at the last frame that a program has written goes on to the next.
MainWindow::Start MainWindow::startAsNow() const
{
    const std::size_t frame = player->getFrame();
    if (options.series.follow && frame + 1 == playBar->getCount())
        return {0, playBar->getRange(), player->isPlaying()}; // the player finds the last itself
    const bool isOfWatchedFiles =
        options.watch && options.series.isOfFiles && options.series.between == 0;
    return {frame, playBar->getRange(), player->isPlaying(),
            isOfWatchedFiles && frame + 1 == frameFiles.size()};
}

void MainWindow::beginToPlay(const ReadReport& report, Start start)
{
    const std::size_t loaded = loadedFrame();
    options.frame.reset();
    ReadReport untold; // the loader told of the folder what there is to tell
    frameFiles = options.series.isOfFiles ? seriesFiles(shownFiles, untold) : shownFiles;
    if (start.isLast && !frameFiles.empty())
        start.frame = std::max(start.frame, frameFiles.size() - 1);
    loadNotices.clear();
    for (const std::string& notice : report.notices)
        loadNotices.push_back(toldOf(notice, frameFiles));
    toldOnce.clear();
    tellOnce(report.notices);
    const bool isSeries = report.frames > 1 || options.series.follow;
    if (!isSeries || !seriesOpener || findReadOnce(shownFiles))
        return;
    Options ofFrames = options;
    ofFrames.colourIfPossible = true; // or this file would not be shown
    const auto open = [opener = seriesOpener, files = shownFiles, ofFrames](ReadReport& opened,
                                                                            Progress& progress) {
        return opener(files, ofFrames, opened, progress);
    };
    playBar->reset(start.range);
    player = std::make_unique<Player>(
        *scene, loaded, open,
        FrameStore::Plan{scene->getStyle(), scene->getPlacement(), ofFrames, scene->getColouring()},
        *playBar);
    connect(player.get(), &Player::playingChanged, (*menus)[Command::PLAY], &QAction::setChecked);
    connect(player.get(), &Player::playingChanged, this,
            [this](bool on) { coarseDrawing->setPlaying(on); });
    connect(player.get(), &Player::failed, this, [this](std::size_t of, const std::string& error) {
        statusText->tell({toldOfFrame(of, {error, ""})});
        curves->showGap(of);
    });
    connect(player.get(), &Player::noticed, this, &MainWindow::tellFrame);
    connect(player.get(), &Player::frameShown, this, [this](std::size_t shown) {
        ownedViewer->drawAsBefore();
        places->follow();
        measurements->follow(shown);
        things->follow();
        outlineChosen();
        curves->showScene(*scene, shown, CurvePanel::NEXT_FRAME);
        curveHover->follow();
        followBeside(BesideView::NEXT_FRAME);
    });
    connect(player.get(), &Player::opened, this,
            [this](const std::vector<std::string>& notices) { tellSeries(notices); });
    connect(player.get(), &Player::staged, this, &MainWindow::settle);
    if (start.frame != loaded)
        player->goTo(start.frame);
    if (start.isPlaying)
        playOnceShown(start.frame);
    menus->followSeries(true);
    playBar->show();
}

// On from a frame that is on its way.
void MainWindow::playOnceShown(std::size_t frame)
{
    if (player->getFrame() == frame) {
        player->setPlaying(true);
        return;
    }
    auto* once = new QObject(player.get());
    connect(player.get(), &Player::frameShown, once, [this, once] {
        once->deleteLater();
        player->setPlaying(true);
    });
}

// Frames that are moved, or put between others, begin with the first.
std::size_t MainWindow::loadedFrame() const
{
    const bool areMoved = options.series.align || options.series.between > 0;
    return areMoved ? 0 : std::size_t(options.frame.value_or(0));
}

// Beside what loading the first frame told.
void MainWindow::tellSeries(const std::vector<std::string>& notices)
{
    std::vector<Told> all = loadNotices;
    tellOnce(notices);
    for (const std::string& notice : notices) {
        const Told told = toldOf(notice, frameFiles);
        const bool isNew = std::none_of(all.begin(), all.end(), [&told](const Told& other) {
            return toLine(other) == toLine(told);
        });
        if (isNew)
            all.push_back(told);
    }
    if (all.size() > loadNotices.size())
        statusText->tell(all);
}

// While thousands are played each thing is told once, whichever file of a series it is of. Of files
// beside each other each has its own.
std::vector<std::string> MainWindow::tellOnce(const std::vector<std::string>& notices)
{
    static const std::vector<std::string> none;
    const std::vector<std::string>& alike = options.series.isOfFiles ? frameFiles : none;
    std::vector<std::string> news;
    for (const std::string& notice : notices) {
        if (toldOnce.insert(withoutPlace(notice, alike)).second)
            news.push_back(notice);
    }
    return news;
}

void MainWindow::tellFrame(std::size_t frame, const std::vector<std::string>& notices)
{
    std::vector<Told> news;
    for (const std::string& notice : tellOnce(notices))
        news.push_back(toldOfFrame(frame, toldOf(notice, frameFiles)));
    if (!news.empty())
        statusText->tell(news);
}

void MainWindow::endPlaying()
{
    player.reset();
    coarseDrawing->setPlaying(false);
    playBar->hide();
    menus->followSeries(false);
    (*menus)[Command::PLAY]->setChecked(false);
}

void MainWindow::settle(const Stage& stage)
{
    const History::Pause pause(*history);
    const bool wasFitted = isFitted(), wasAtHome = homeNumbers == getCameraNumbers();
    keepRoom();
    scene->setSide(stage.side);
    if (stage.colouring && scene->getColouring() && !options.ownRange)
        scene->setColouring(*stage.colouring);
    followBeside(BesideView::OTHER_LOOK); // in the range of all frames
    if (!ownedViewer->home.numbers)
        ownedViewer->home = scene->settle(options.camera);
    if (wasAtHome)
        goHome();
    else if (wasFitted)
        fit();
}

void MainWindow::stopLoading()
{
    if (!job)
        return;
    abandonJob();
    dropComparison();
}

void MainWindow::abandonJob()
{
    job.release()->abandonTo(this);
    showLoading();
    emit loadingEnded();
}

bool MainWindow::isLoading() const { return job != nullptr; }

// Of much data, so that they are seen at once.
void MainWindow::drawCoarselyFirst()
{
    const auto& further = sideBySide->getViews();
    const bool isMuch = std::any_of(further.begin(), further.end(), [](const BesideView* view) {
        return view->getScene() && takesLong(*view->getScene());
    });
    if (isMuch || (scene && takesLong(*scene)))
        coarseDrawing->noteChange();
}

// The first frame of much data takes long, and the window does not answer then.
void MainWindow::showDrawing()
{
    loadBar->setText("Drawing");
    loadBar->show();
    loadBar->repaint();
    ownedViewer->onDrawn = [this] { showLoading(); };
}

// Only while something is loaded is Esc the key that stops it.
void MainWindow::showLoading()
{
    ownedViewer->onDrawn = nullptr;
    loadBar->setText("");
    loadBar->setVisible(isLoading());
    (*menus)[Command::STOP_LOADING]->setEnabled(isLoading());
}

void MainWindow::readAgain()
{
    if (const auto file = findReadOnce(shownFiles))
        statusText->tell(
            {{"Only files can be read again", *file == "-" ? "standard input" : *file}});
    else
        openFiles(namesOf(shownFiles), SAME_CAMERA);
}

// Files that change

void MainWindow::buildWatcher()
{
    watcher = new FileWatcher(this);
    watcher->mayRead = [this] { // what is begun with keys or mouse is not disturbed
        return !isLoading() && !QApplication::activeModalWidget() &&
               !QApplication::activePopupWidget() && QApplication::mouseButtons() == Qt::NoButton;
    };
    connect(watcher, &FileWatcher::changed, this, &MainWindow::readChanged);
    connect(watcher, &FileWatcher::missed, this, [this](const QString& path) {
        statusText->tell(
            {toldOfWaiting(path.toStdString() + ": it is gone", {path.toStdString()})});
    });
    (*menus)[Command::WATCH_FILES]->setChecked(options.watch);
}

void MainWindow::setWatching(bool on)
{
    options.watch = on;
    (*menus)[Command::WATCH_FILES]->setChecked(on);
    watchFiles();
}

void MainWindow::watchFiles()
{
    std::vector<std::string> files;
    if (options.watch && scene && !findReadOnce(shownFiles)) {
        files = referenceOf(options);
        files.insert(files.begin(), shownFiles.begin(), shownFiles.end());
    }
    watcher->leaveGrowth(player && options.series.follow);
    watcher->watch(files, readStamps);
}

// Nobody waits for it: what takes long, or fails, is told and no more.
void MainWindow::readChanged()
{
    loadAsNow(shownFiles, SAME_CAMERA, [this](const ReadReport& report) {
        if (report.error.empty())
            tellOpened(shownFiles, report);
        else
            statusText->tell({toldOfWaiting(report.error, shownFiles)});
    });
    tellLoadingLater();
}

// Camera

void MainWindow::place(const CameraRequest& request)
{
    if (!scene)
        return;
    ownedViewer->place(request);
    fitted.reset();
    if (!request.numbers && !request.isFramed())
        fitted = getCameraNumbers();
    update3DZoom();
}

void MainWindow::goHome()
{
    place(ownedViewer->home);
    homeNumbers = getCameraNumbers();
}

void MainWindow::fit()
{
    const bool staysHome = isFitted() && homeNumbers == fitted;
    ownedViewer->fit(options.camera.margin);
    fitted = getCameraNumbers();
    if (staysHome) // in another size
        homeNumbers = fitted;
    update3DZoom();
}

bool MainWindow::isFitted() const { return scene && fitted && *fitted == getCameraNumbers(); }

void MainWindow::refit(void* window, SoQtGeneralViewer* /*viewer*/, const SbVec2s& /*size*/)
{
    auto* self = static_cast<MainWindow*>(window);
    const History::Pause pause(*self->history);
    const bool isAtHome = self->scene && self->homeNumbers == self->getCameraNumbers();
    if (isAtHome && !self->ownedViewer->home.numbers)
        self->goHome(); // in another size
    else if (self->isFitted())
        self->fit();
}

void MainWindow::viewAll()
{
    if (BesideView* const view = sideBySide->getActive())
        view->fit();
    else if (scene)
        fit();
}

void MainWindow::viewFrom(Side side)
{
    CameraRequest request;
    request.side = side;
    request.margin = options.camera.margin;
    request.perspective = (*menus)[Command::SET_PERSPECTIVE]->isChecked();
    placeActive(request);
}

void MainWindow::placeActive(const CameraRequest& request)
{
    if (BesideView* const view = sideBySide->getActive())
        view->place(request);
    else
        place(request);
}

void MainWindow::bringActiveHome()
{
    if (BesideView* const view = sideBySide->getActive())
        view->place(view->getStart().value_or(ownedViewer->home));
    else
        goHome();
}

void MainWindow::setPerspective(bool perspective)
{
    if (!scene)
        return;
    if (BesideView* const view = sideBySide->getActive()) {
        view->setPerspective(perspective);
        return;
    }
    const bool wasFitted = isFitted();
    ownedViewer->setPerspective(perspective);
    if (perspective && options.scaleBar)
        statusText->tell({{"No scale bar: a view in perspective has no one scale", ""}});
    // What is nearer than the middle grows, and may no longer fit.
    if (wasFitted)
        fit();
    else
        update3DZoom();
}

void MainWindow::setColours(bool ofData)
{
    if (!scene)
        return;
    const bool wasFitted = isFitted();
    scene->showColours(ofData);
    sideBySide->showColours(ofData);
    history->noteSoon();
    showLights(); // highlights came or went
    tellStyle();
    // The legend's room comes or goes.
    if (wasFitted)
        fit();
}

// Further views

void MainWindow::showBeside(bool on)
{
    if (!on) {
        closedBeside = besideNow();
        setBeside({});
    } else if (!closedBeside.what.empty()) {
        setBeside(closedBeside);
    } else if (options.compare) {
        setBeside(besideOf({*options.compare}));
    } else {
        setBeside(besideOf({player ? BesideRequest::FIRST_FRAME : BesideRequest::SAME}));
    }
}

void MainWindow::addBeside(const std::string& what)
{
    if (!what.empty() && options.beside.what.size() < BesideRequest::MOST)
        setBeside(withView(options.beside, what));
}

void MainWindow::closeBeside(std::size_t index)
{
    sideBySide->close(index); // and no other that shows the same
    setBeside(withoutView(options.beside, index));
}

void MainWindow::setBeside(const BesideRequest& request)
{
    const bool isOther = request.what != options.beside.what;
    options.beside = request;
    history->note();
    sideBySide->setTied(request.isTied);
    if (isOther) {
        openBeside(SideBySide::SAME_FILES);
    } else {
        placeBeside();
        keepRoom();
    }
    followViewer();
}

void MainWindow::openBeside(SideBySide::Files files)
{
    std::vector<BesideView::Source> sources;
    if (scene)
        std::transform(options.beside.what.begin(), options.beside.what.end(),
                       std::back_inserter(sources),
                       [this](const std::string& what) { return besideSource(what); });
    const std::string caption = shownFiles.empty() ? "" : nameOf(shownFiles);
    const History::Pause pause(*history);
    sideBySide->open(caption, std::move(sources), files, ownedViewer->home);
    sideBySide->setTied(options.beside.isTied);
    placeBeside();
    drawCoarselyFirst();
    followBeside(BesideView::NEW_SOURCE);
    keepRoom();
}

// Where they were asked for, once: then their user moves them.
void MainWindow::placeBeside()
{
    if (scene && !options.beside.isTied)
        sideBySide->setCameras(std::exchange(options.beside.cameras, {}));
}

BesideRequest MainWindow::besideNow() const
{
    BesideRequest now = options.beside;
    const auto asked = std::exchange(now.cameras, {});
    if (now.isTied)
        return now;
    now.cameras = sideBySide->getCameras(now.what);
    for (std::size_t i = 0; i < std::min(asked.size(), now.cameras.size()); ++i) {
        if (!now.cameras[i])
            now.cameras[i] = asked[i];
    }
    return now;
}

// Of the files that are shown now.
BesideView::Source MainWindow::besideSource(const std::string& what) const
{
    const bool isFirst = what == BesideRequest::FIRST_FRAME, isSame = what == BesideRequest::SAME;
    BesideView::Source source{what, isFirst ? "First frame" : isSame ? "The same" : what, nullptr};
    if (isSame || !seriesOpener || (isFirst && !player))
        return source;
    Options ofFrames = options;
    ofFrames.colourIfPossible = true;
    if (!isFirst) {
        ofFrames.series.isOfFiles = QFileInfo(QString::fromStdString(what)).isDir();
        if (options.compare == BesideRequest::FIRST_FRAME)
            ofFrames.compare.reset(); // that would be its own
    }
    source.isStill = isFirst;
    source.opener = [opener = seriesOpener, files = isFirst ? shownFiles : std::vector{what},
                     ofFrames](ReadReport& report, Progress& progress) {
        return opener(files, ofFrames, report, progress);
    };
    return source;
}

void MainWindow::followBeside(BesideView::Change change)
{
    if (scene && scene->getData())
        sideBySide->show(*scene, player ? player->getFrame() : 0, change);
}

// Of all frames and of all views, so that one camera suits them.
void MainWindow::keepRoom()
{
    if (!scene)
        return;
    const History::Pause pause(*history);
    const bool wasFitted = isFitted();
    const bool isStaged = player && player->getStage();
    SbBox3f room = isStaged ? player->getStage()->roomIn(scene->getPlacement()) : SbBox3f();
    if (options.beside.isTied)
        room.extendBy(sideBySide->getRoom());
    scene->setRoom(room);
    if (wasFitted)
        fit();
}

// Style

void MainWindow::setStyle(const StyleRequest& next)
{
    const bool isReadAgain = next.compare != options.compare;
    const bool isCutOtherwise = next.clip != options.clip;
    const bool needsNodes = !areOfSameNodes(restyler.isAtWork() ? options : shownStyle, next);
    static_cast<StyleRequest&>(options) = next;
    history->note();
    if (isCutOtherwise)
        cut();
    tellStyle();
    showBackground();
    if (!scene || !scene->getData())
        return;
    showThings();
    if (isReadAgain) {
        readAgain(); // readers compare
        if (!isLoading())
            dropComparison(); // what was read at once is shown; what cannot be read again is not
    } else if (needsNodes) {
        restyle();
    } else if (!restyler.isAtWork()) { // or what comes is followed by all that needs no nodes
        shownStyle = options;
        followViewer();
        coarseDrawing->noteChange();
        emit styleShown();
    }
}

void MainWindow::showBackground()
{
    const SbColor background = toSbColor(options.background);
    if (background != viewer->getBackgroundColor())
        viewer->setBackgroundColor(background);
}

// At once, whatever is being prepared.
void MainWindow::cut()
{
    if (scene && scene->getData()) {
        shownStyle.clip = options.clip;
        std::optional<ClipPlane> plane = options.clip;
        if (plane && !plane->distance) // which takes a look at each point
            plane = settled(*plane, measure(*firstFrame));
        scene->cut(plane);
        outlineChosen();
    }
    followClip();
}

void MainWindow::moveClip(bool on)
{
    hasClipHandles = on;
    if (on && !options.clip) {
        StyleRequest next = options;
        next.clip = planeFacing(towardsViewer(getActiveCamera()));
        setStyle(next);
    }
    followClip();
}

void MainWindow::followClip()
{
    const bool hasBox = scene && !scene->getBox().isEmpty(); // or there is no place for handles
    const auto plane = hasBox ? scene->getStyle().clip : std::nullopt;
    hasClipHandles = hasClipHandles && plane;
    (*menus)[Command::MOVE_CLIP]->setChecked(hasClipHandles);
    if (hasClipHandles)
        ownedViewer->clipHandles.show(*plane, scene->getPlacement(), scene->getBox());
    else
        ownedViewer->clipHandles.hide();
}

// One that was asked for and did not come would keep other files from being read.
bool MainWindow::dropComparison()
{
    if (options.compare == shownStyle.compare)
        return false;
    options.compare = shownStyle.compare;
    history->refuse();
    tellStyle();
    return true;
}

void MainWindow::showThings()
{
    const bool isDrawnOtherwise = scene->getStyle().drawing != options.drawing;
    scene->draw(options.drawing);
    shownStyle.drawing = options.drawing;
    if (isDrawnOtherwise) {
        showLights();
        tellStyle(); // as it is lit now
    }
    const bool wasFitted = isFitted();
    const SbBox3f before = scene->getBox();
    scene->setTransparency(options.transparency);
    scene->setLooks(options.things);
    things->follow();
    sideBySide->followLooks(*scene);
    // What is shown again may lie outside of a view that was fitted without it.
    SbBox3f both = before;
    both.extendBy(scene->getBox());
    if (wasFitted && both != before) {
        const History::Pause pause(*history);
        fit();
    }
}

void MainWindow::restyle()
{
    Restyler::Task task;
    task.options = options;
    task.frame = scene->getData();
    task.first = firstFrame;
    task.ofColours = restyler.keepsShapes() && haveSameShapes(shownStyle, options);
    if (task.ofColours)
        task.shown = rowsOf(*scene);
    const auto stage = player ? player->getStage() : nullptr;
    if (stage && stage->colouring && stage->colouring->name == options.colourBy)
        task.others = {stage, &stage->values};
    restyler.ask(std::move(task));
    coarseDrawing->awaitChange();
}

void MainWindow::showStyle(Restyler::Result& result)
{
    const auto tell = [this](const std::string& fault) {
        for (SettingsPanel* panel : {lookPanel, colourPanel})
            panel->tellFault(fault);
    };
    std::string fault = result.report.error;
    std::vector<std::string> notices;
    const bool wasFitted = isFitted();
    const FreeEdges roomBefore = scene->getLegendRoom();
    // Of a frame that another one followed meanwhile, too: a series that plays would outrun any
    // style, and the player shows the frame that is asked for anew.
    if (result.look) {
        PreparedLook& look = *result.look;
        look.style.clip = scene->getStyle().clip; // of now
        Progress unwatched;
        if (result.task.ofColours && look.colouring && result.task.frame != scene->getData())
            look.colouring = followColouring(*look.colouring, *scene->getData(), unwatched);
        const Colouring* const colouring = look.colouring ? &*look.colouring : nullptr;
        notices = tellOnce(look.geometry.ghostFaults);
        if (result.task.ofColours)
            recolourScene(*scene, look.style, colouring, std::move(look.geometry));
        else
            fault = restyleScene(*scene, *result.task.frame, look.style, colouring,
                                 std::move(look.geometry), unwatched);
    }
    tell(fault);
    if (!fault.empty()) { // what is shown stays, unless more was asked for meanwhile
        if (!restyler.isAtWork())
            static_cast<StyleRequest&>(options) = shownStyle;
        history->refuse();
        showThings();
        tellStyle();
        return;
    }
    if (!result.task.ofColours)
        scene->setData(result.task.frame);
    const bool isOtherScalar = shownStyle.colourBy != result.task.options.colourBy;
    shownStyle = result.task.options;
    showThings(); // others may have been hidden meanwhile
    shownStyle.clip = options.clip;
    scene->showColours((*menus)[Command::SHOW_COLOURS]->isChecked());
    if (wasFitted && scene->getLegendRoom() != roomBefore) {
        const History::Pause pause(*history);
        fit();
    }
    if (player)
        player->follow(
            {scene->getStyle(), scene->getPlacement(), result.task.options, scene->getColouring()},
            isOtherScalar ? FrameStore::NEW_STAGE : FrameStore::SAME_STAGE);
    showLights(); // highlights come and go with colours of data
    followClip();
    outlineChosen();
    places->follow();
    measurements->follow();
    curves->followLooks();
    followBeside(BesideView::OTHER_LOOK);
    tellStyle();
    followViewer();
    coarseDrawing->noteChange();
    for (const std::string& notice : notices)
        statusText->tell({toldOf(notice, shownFiles)});
    emit styleShown();
}

WindowState MainWindow::getState() const
{
    WindowState state;
    state.style = options;
    state.areColoursShown = (*menus)[Command::SHOW_COLOURS]->isChecked();
    if (scene) {
        state.measurements = measurements->get();
        state.views = views->get();
        state.beside = besideNow();
        state.camera = getCameraNumbers();
    }
    return state;
}

void MainWindow::showState(const WindowState& state)
{
    const WindowState now = getState();
    if (state.style != now.style)
        setStyle(state.style);
    measurements->set(state.measurements);
    if (state.views != now.views)
        views->set(state.views);
    if (!(state.beside == now.beside))
        setBeside(state.beside);
    if (state.areColoursShown != now.areColoursShown) {
        (*menus)[Command::SHOW_COLOURS]->setChecked(state.areColoursShown);
        setColours(state.areColoursShown);
    }
    if (state.camera == now.camera)
        return;
    const auto fittedBefore = fitted; // in another size it is fitted anew, if this is it
    CameraRequest request;
    request.numbers = state.camera;
    place(request);
    fitted = fittedBefore;
}

void MainWindow::tellStyle()
{
    StyleRequest shown = options;
    if (scene) {
        shown = resolve(options, scene->getStyle());
        shown.drawing = scene->getShownDrawing();
        if (const auto& colouring = scene->getColouring()) {
            shown.ownRange = shown.symmetricRange = false;
            shown.colours = colouring->map;
            shown.rangeMin = colouring->min;
            shown.rangeMax = colouring->max;
            shown.legend.title = options.legend.title.value_or(colouring->name);
            shown.legend.unit = options.legend.unit.value_or(colouring->unit);
        }
    }
    look->show(options, shown, scene ? &scene->getStyle() : nullptr);
    colourPanel->show(options, shown);
}

void MainWindow::copyCamera()
{
    if (!scene)
        return;
    const std::string text = "--camera " + formatCamera(getActiveCamera());
    QApplication::clipboard()->setText(QString::fromStdString(text));
    statusText->tell({{"Copied" + wordsOf(sideBySide->getActive()) + ": " + text, ""}});
}

void MainWindow::copyCommand()
{
    if (!scene)
        return;
    const ViewPictures pictures(getPictured(options));
    const std::string line =
        writeCommand(pictures.optionsOf(pictureChoice), pictures.describe(pictureChoice));
    QApplication::clipboard()->setText(QString::fromStdString(line));
    statusText->tell({{"Copied" + wordsOf(picturedBeside()) + ": " + line, ""}});
}

void MainWindow::saveDefaults()
{
    const std::string file = usualDefaultsFile();
    if (!askForDefaults(this, file))
        return;
    const std::string failure = strandview::saveDefaults(forOtherData(options), file);
    if (!failure.empty()) {
        tellFailure(this, "Save as defaults", failure);
        return;
    }
    options.hasDefaults = true; // of commands that are copied from now on
    statusText->tell({{"Written: " + file, ""}});
}

const BesideView* MainWindow::picturedBeside() const
{
    const BesideView* const active = sideBySide->getActive();
    if (!active || !active->getScene() || isFile(active->getWhat()))
        return nullptr;
    // A still view is in the range of the frame beside it, which no command gives.
    const bool isInOtherRange = options.ownRange && active->getWhat() == BesideRequest::FIRST_FRAME;
    return isInOtherRange ? nullptr : active;
}

std::string MainWindow::wordsOf(const BesideView* view) const
{
    const auto& further = sideBySide->getViews();
    if (further.empty())
        return "";
    const auto found = std::find(further.begin(), further.end(), view);
    return ", of the " + nameOfView(view ? 1 + std::size_t(found - further.begin()) : 0);
}

PicturedView MainWindow::getPictured(const StyleRequest& style) const
{
    const BesideView* const beside = picturedBeside();
    const bool isFirstFrame = beside && beside->getWhat() == BesideRequest::FIRST_FRAME;
    WindowViewer& seen = beside ? beside->getViewer() : *ownedViewer;
    PicturedView pictured{scene, ownedViewer.get(), firstFrame, options, {}};
    if (isFirstFrame) { // the same is drawn from the first view's own
        pictured.scene = beside->getScene();
        pictured.viewer = &seen;
    }
    static_cast<StyleRequest&>(pictured.options) = style;
    if (!scene->areColoursShown())
        pictured.options.colourBy.reset();
    pictured.options.measurements = shownOf(measurements->get());
    pictured.picture.files = shownFiles;
    pictured.picture.camera = numbersOf(*seen.getCamera());
    pictured.picture.size.width = seen.getGLSize()[0];
    pictured.picture.size.height = seen.getGLSize()[1];
    if (player)
        pictured.picture.frame = isFirstFrame ? 0 : player->getFrame();
    return pictured;
}

void MainWindow::copyStatusText() { statusText->copy(); }

// What is shown of the viewer

void MainWindow::update3DZoom()
{
    SoQtGeneralViewerDialog::update3DZoom();
    followViewer();
}

void MainWindow::setCameraZoom()
{
    SoQtGeneralViewerDialog::setCameraZoom();
    activeViewer().getGLWidget()->setFocus();
}

void MainWindow::followViewer()
{
    menus->followScene(scene);
    const auto check = [this](Command command, bool on) { (*menus)[command]->setChecked(on); };
    check(Command::SET_PERSPECTIVE, scene && getActiveCamera().perspective);
    check(Command::TOGGLE_BOXES, viewer->isShowingBoundingBoxes());
    check(Command::TOGGLE_FRAMES, SoQtGeneralViewer::isShowingFramesPerSecond());
    check(Command::TOGGLE_WHEELS, viewer->isDecoration());
    check(Command::TOGGLE_PICKING, !viewer->isViewing());
    check(Command::SHOW_BESIDE, !options.beside.what.empty());
    for (const Command add : {Command::ADD_SAME, Command::ADD_FIRST_FRAME, Command::ADD_FILE})
        (*menus)[add]->setEnabled(scene && options.beside.what.size() < BesideRequest::MOST &&
                                  (player || add != Command::ADD_FIRST_FRAME));
    check(Command::TIE_VIEWS, options.beside.isTied);
    (*menus)[Command::SHOW_COLOURS]->setEnabled(scene && scene->hasColours());
    const SbColor background = viewer->getBackgroundColor();
    sideBySide->setBackground(background);
    if (scene)
        scene->setBackground({background[0], background[1], background[2]});
    if (background != toSbColor(options.background)) { // the viewer's key
        options.background = shownStyle.background = {background[0], background[1], background[2]};
        history->note();
        tellStyle();
    }
    followDrawing();
}

// In the viewer's dialog.
void MainWindow::showLights()
{
    for (LightingDialog* lights : findChildren<LightingDialog*>())
        lights->updateGUIFromShaders();
}

// What the viewer's keys and dialog changed of it.
void MainWindow::followDrawing()
{
    if (!scene || scene->getDrawing() == scene->getStyle().drawing)
        return;
    scene->draw(scene->getDrawing());
    options.drawing = shownStyle.drawing = scene->getStyle().drawing;
    sideBySide->followLooks(*scene);
    history->note();
    tellStyle();
}

void MainWindow::followMode()
{
    const bool turning = viewer->isViewing();
    modeLabel->setText(turning ? "Turning" : "Picking");
    modeLabel->setToolTip("Esc: turning or picking");
    showHint();
    statusText->tell({});
    followViewer();
}

void MainWindow::showHint()
{
    if (!statusText)
        return;
    if (!viewer->isViewing())
        statusText->setHint("Picking: the left button tells a point. Dragging, wheel and arrows "
                            "are off; Esc turns again.");
    else if (scene && placeDock->isVisible())
        statusText->setHint("Click: all numbers there. With Shift: measures, up to four places.");
    else if (scene && thingsDock->isVisible())
        statusText->setHint("Click: chooses a thing. With Shift: several.");
    else if (scene)
        statusText->setHint("Right button: point and arc length. F1: all keys.");
    else
        statusText->setHint("Open a file, or drop it here. F1: all keys.");
}

// Pictures

void MainWindow::choosePicture()
{
    if (!scene)
        return;
    if (player)
        player->setPlaying(false); // the picture is that of one frame
    // Of what is shown then: a style that was asked for may come while it asks.
    const PictureRequest size = getPictured(shownStyle).picture.size;
    PictureDialog dialog(pictureChoice,
                         {shownStyle,
                          {size.width, size.height},
                          !shownOf(measurements->get()).empty(),
                          folderOfFiles(),
                          [this](const PictureChoice& choice, const QSize& room) {
                              return ViewPictures(getPictured(shownStyle)).preview(choice, room);
                          },
                          [this](const PictureChoice& choice, const std::string& file,
                                 const PictureWriter::GoOn& goOn) {
                              return ViewPictures(getPictured(shownStyle)).save(choice, file, goOn);
                          }},
                         this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    pictureChoice = dialog.getChoice();
    statusText->tell({{"Saved" + wordsOf(picturedBeside()), dialog.getSaved().toStdString()}});
}

void MainWindow::savePicture(const QString& file)
{
    if (!scene)
        return;
    const std::string name = file.toStdString();
    std::string failure = checkPictureName("Save a picture", name, pictureChoice.size.transparent);
    if (failure.empty()) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        failure =
            ViewPictures(getPictured(shownStyle)).save(pictureChoice, name, [](double /*done*/) {
                return true;
            });
        QApplication::restoreOverrideCursor();
    }
    if (failure.empty())
        statusText->tell({{"Saved" + wordsOf(picturedBeside()), name}});
    else
        tellFailure(this, "Cannot save", failure);
}

// Files

QString MainWindow::folderOfFiles() const
{
    const QStringList names = namesOf(shownFiles);
    return names.empty() ? QString() : QFileInfo(names.front()).absolutePath();
}

void MainWindow::chooseFiles()
{
    openFiles(QFileDialog::getOpenFileNames(this, "Open", folderOfFiles(), fileFilter()));
}

std::string MainWindow::askForFile(const QString& title)
{
    return QFileDialog::getOpenFileName(this, title, folderOfFiles(), fileFilter()).toStdString();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!localFiles(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    // Later: the program that the files come from waits for this to return.
    QTimer::singleShot(0, this,
                       [this, files = localFiles(*event->mimeData())] { openFiles(files); });
}

// Window

// The viewer makes its dialog of the lights anew for each scene.
void MainWindow::prepareDialogs()
{
    for (const LightingDialog* lights : findChildren<LightingDialog*>()) {
        for (QLineEdit* field : lights->findChildren<QLineEdit*>())
            acceptDecimalComma(*field);
    }
    auto* folder = findChild<QLineEdit*>("dirLineEdit");
    if (folder->text() != screenshotFolder)
        return; // the user's choice
    const QString path = folderOfFiles();
    // The dialog's paths are ASCII.
    screenshotFolder = !path.isEmpty() && isAscii(path) ? path : QString("./");
    folder->setText(screenshotFolder);
}

void MainWindow::setFullScreen(bool full)
{
    setWindowState(full ? windowState() | Qt::WindowFullScreen
                        : windowState() & ~Qt::WindowFullScreen);
}

// The view has an Esc of its own: this one comes from beside it.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    QWidget* const view = activeViewer().getGLWidget();
    if (event->key() != Qt::Key_Escape || view->hasFocus()) {
        SoQtGeneralViewerDialog::keyPressEvent(event);
        return;
    }
    forgetTyping();
    for (SettingsPanel* panel : {lookPanel, colourPanel})
        panel->forgetTyping();
    tellStyle();
    update3DZoom();
    view->setFocus();
}

void MainWindow::changeEvent(QEvent* event)
{
    SoQtGeneralViewerDialog::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        (*menus)[Command::SET_FULL_SCREEN]->setChecked(isFullScreen());
}

void MainWindow::restoreWindow()
{
    resize(1000, 750);
    if (options.windowSize)
        resize(options.windowSize->first, options.windowSize->second);
    else
        restoreGeometry(QSettings().value(GEOMETRY).toByteArray());
    setFullScreen(false); // not even if the last window ended so
    screenFitter = std::make_unique<ScreenFitter>(*this);
}

void MainWindow::done(int result)
{
    stopLoading();
    if (!options.windowSize)
        QSettings().setValue(GEOMETRY, saveGeometry());
    SoQtGeneralViewerDialog::done(result);
}

// Menus

void MainWindow::perform(const Deed& deed, bool on)
{
    if (const auto* asked = std::get_if<Command>(&deed))
        command(*asked, on);
    else if (const auto* step = std::get_if<SoQtGeneralViewer::CameraStep>(&deed))
        activeViewer().stepCamera(*step);
    else
        viewFrom(std::get<Side>(deed));
    update3DZoom();
}

// Longer than others: a line for each command.
void MainWindow::command(Command asked, bool isOn)
{
    using Does = std::function<void(MainWindow & w, bool on)>;
    const auto ofPlayer = [](void (*does)(Player & player, bool on)) {
        return [does](MainWindow& w, bool on) {
            if (w.player)
                does(*w.player, on);
        };
    };
    static const std::map<Command, Does> deeds{
        {Command::OPEN, [](MainWindow& w, bool) { w.chooseFiles(); }},
        {Command::STOP_LOADING, [](MainWindow& w, bool) { w.stopLoading(); }},
        {Command::READ_AGAIN, [](MainWindow& w, bool) { w.readAgain(); }},
        {Command::SAVE_SESSION, [](MainWindow& w, bool) { w.keepSession(); }},
        {Command::SAVE_SESSION_AS, [](MainWindow& w, bool) { w.chooseSession(); }},
        {Command::WATCH_FILES, [](MainWindow& w, bool on) { w.setWatching(on); }},
        {Command::SAVE_PICTURE, [](MainWindow& w, bool) { w.choosePicture(); }},
        {Command::TAKE_SCREENSHOT, [](MainWindow& w, bool) { w.activeViewer().renderOffscreen(); }},
        {Command::COPY_CAMERA, [](MainWindow& w, bool) { w.copyCamera(); }},
        {Command::COPY_COMMAND, [](MainWindow& w, bool) { w.copyCommand(); }},
        {Command::SAVE_DEFAULTS, [](MainWindow& w, bool) { w.saveDefaults(); }},
        {Command::COPY_STATUS, [](MainWindow& w, bool) { w.copyStatusText(); }},
        {Command::UNDO, [](MainWindow& w, bool) { w.history->steps.undo(); }},
        {Command::REDO, [](MainWindow& w, bool) { w.history->steps.redo(); }},
        {Command::CLOSE, [](MainWindow& w, bool) { w.close(); }},
        {Command::QUIT, [](MainWindow& w, bool) { w.close(); }},
        {Command::VIEW_ALL, [](MainWindow& w, bool) { w.viewAll(); }},
        {Command::GO_HOME, [](MainWindow& w, bool) { w.bringActiveHome(); }},
        {Command::KEEP_VIEW, [](MainWindow& w, bool) { w.views->askToKeep(w.getActiveCamera()); }},
        {Command::SET_PERSPECTIVE, [](MainWindow& w, bool on) { w.setPerspective(on); }},
        {Command::SHOW_BESIDE, [](MainWindow& w, bool on) { w.showBeside(on); }},
        {Command::TIE_VIEWS,
         [](MainWindow& w, bool on) {
             w.setBeside({w.options.beside.what, on});
         }},
        {Command::FOUR_VIEWS, [](MainWindow& w, bool) { w.setBeside(fourOfTheSame()); }},
        {Command::ADD_SAME, [](MainWindow& w, bool) { w.addBeside(BesideRequest::SAME); }},
        {Command::ADD_FIRST_FRAME,
         [](MainWindow& w, bool) { w.addBeside(BesideRequest::FIRST_FRAME); }},
        {Command::ADD_FILE,
         [](MainWindow& w, bool) { w.addBeside(w.askForFile("Add a view of")); }},
        {Command::SET_FULL_SCREEN, [](MainWindow& w, bool on) { w.setFullScreen(on); }},
        {Command::CYCLE_SHADING, [](MainWindow& w, bool) { w.viewer->cycleShading(); }},
        {Command::SET_LIGHTS, [](MainWindow& w, bool) { w.viewer->setUpLighting(); }},
        {Command::TOGGLE_BOXES, [](MainWindow& w, bool) { w.viewer->toggleBoundingBoxes(); }},
        {Command::SHOW_COLOURS, [](MainWindow& w, bool on) { w.setColours(on); }},
        {Command::MOVE_CLIP, [](MainWindow& w, bool on) { w.moveClip(on); }},
        {Command::THICKEN_LINES, [](MainWindow& w, bool) { w.viewer->changeLineWidth(1); }},
        {Command::THIN_LINES, [](MainWindow& w, bool) { w.viewer->changeLineWidth(-1); }},
        {Command::TOGGLE_BACKGROUND, [](MainWindow& w, bool) { w.viewer->toggleBackground(); }},
        {Command::SHOW_AXES,
         [](MainWindow& w, bool on) {
             w.ownedViewer->axes.show(on);
             w.sideBySide->showAxes(on);
         }},
        {Command::TOGGLE_FRAMES, [](MainWindow& w, bool) { w.viewer->toggleFramesPerSecond(); }},
        {Command::TOGGLE_WHEELS, [](MainWindow& w, bool on) { w.viewer->setDecoration(on); }},
        {Command::TOGGLE_PICKING, [](MainWindow& w, bool on) { w.viewer->setViewing(!on); }},
        {Command::PLAY, ofPlayer([](Player& player, bool on) { player.setPlaying(on); })},
        {Command::FIRST_FRAME, ofPlayer([](Player& player, bool) { player.goToFirst(); })},
        {Command::FRAME_BACK, ofPlayer([](Player& player, bool) { player.step(-1); })},
        {Command::FRAME_FORWARD, ofPlayer([](Player& player, bool) { player.step(1); })},
        {Command::LAST_FRAME, ofPlayer([](Player& player, bool) { player.goToLast(); })},
        {Command::TEN_FRAMES_BACK, ofPlayer([](Player& player, bool) { player.step(-10); })},
        {Command::TEN_FRAMES_FORWARD, ofPlayer([](Player& player, bool) { player.step(10); })},
        {Command::START_RANGE, ofPlayer([](Player& player, bool) { player.toggleRangeStart(); })},
        {Command::END_RANGE, ofPlayer([](Player& player, bool) { player.toggleRangeEnd(); })},
        {Command::SHOW_CURVES, [](MainWindow& w, bool on) { w.curveDock->setVisible(on); }},
        {Command::SHOW_LOOK, [](MainWindow& w, bool on) { showPanel(*w.lookDock, on); }},
        {Command::SHOW_COLOUR_SETTINGS,
         [](MainWindow& w, bool on) { showPanel(*w.colourDock, on); }},
        {Command::SHOW_NUMBERS, [](MainWindow& w, bool on) { w.placeDock->setVisible(on); }},
        {Command::KEEP_MEASUREMENT, [](MainWindow& w, bool) { w.keepMeasurement(); }},
        {Command::SHOW_THINGS, [](MainWindow& w, bool on) { w.thingsDock->setVisible(on); }},
        {Command::SHOW_KEYS, [](MainWindow& w, bool) { w.showKeys(); }},
        {Command::SHOW_ABOUT, [](MainWindow& w, bool) { w.showAbout(); }}};
    deeds.at(asked)(*this, isOn);
}

void MainWindow::showKeys() { showText(this, "Keys and mouse", keyPage()); }

void MainWindow::showAbout()
{
    showText(this, "About strandview",
             "<b>strandview " STRANDVIEW_VERSION "</b><br />Shows elastic rods and DNA, "
             "right, smooth and fast.<br />Free software: GPL-3.0-or-later.");
}

} // namespace strandview
