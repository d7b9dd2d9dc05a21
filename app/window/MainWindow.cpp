// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/MainWindow.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <iostream>
#include <utility>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/sensors/SoFieldSensor.h>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPixmap>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <LightingDialog.h>
#include <ScreenshotDialog.h>
#include <SoQtGeneralViewer.h>

#include "camera/Camera.h"
#include "camera/printCamera.h"
#include "pictures/PictureWriter.h"
#include "scene/DataScene.h"
#include "window/AxisCross.h"
#include "window/FrameWaiter.h"
#include "window/Keys.h"
#include "window/LoadBar.h"
#include "window/ScreenFitter.h"
#include "window/StatusText.h"
#include "window/checkDisplay.h"
#include "window/decimalComma.h"
#include "window/fileFilter.h"

namespace strandview {

namespace {

// What is loaded sooner is shown without a word about loading it.
const std::chrono::milliseconds PATIENCE(200);

const int RECENT_FILE_COUNT = 8;
const char* const RECENT_FILES = "recentFiles";
const char* const GEOMETRY = "windowGeometry";

// The groups in two columns, so that the page fits small screens.
QString keyPage()
{
    const std::vector<KeyGroup>& groups = keyHelp();
    QString page = "<table style='white-space: nowrap'><tr><td><table cellspacing='4'>";
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (i == groups.size() / 2)
            page += "</table></td><td><table cellspacing='4'>";
        page +=
            "<tr><td colspan='2'><b>" + QString::fromStdString(groups[i].title) + "</b></td></tr>";
        for (const KeyHelp& help : groups[i].keys)
            page += "<tr><td>" + QString::fromStdString(help.key).toHtmlEscaped() +
                    "&nbsp;&nbsp;</td><td>" + QString::fromStdString(help.does).toHtmlEscaped() +
                    "&nbsp;&nbsp;</td></tr>";
    }
    return page + "</table></td></tr></table>";
}

// Not even where a file's name or text looks like rich text is it shown as such.
void tellFailure(QWidget* parent, const QString& title, const std::string& failure)
{
    QMessageBox box(QMessageBox::Critical, title, QString::fromStdString(failure), QMessageBox::Ok,
                    parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

// A box that stays beside the window, as large as its text, or as the screen; then its text
// can be scrolled.
void showText(QWidget* parent, const QString& title, const QString& text)
{
    auto* box = new QDialog(parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(title);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, box);
    QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::close);
    auto* label = new QLabel(text);
    auto* area = new QScrollArea(box);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(label);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(area);
    layout->addWidget(buttons);
    // A scroll area asks for some lines alone, however long its text.
    box->resize(box->sizeHint() + (label->sizeHint() - area->sizeHint()).expandedTo(QSize(0, 0)));
    (new ScreenFitter(*box))->setParent(box);
    box->show();
}

QString titleFor(const std::vector<std::string>& files)
{
    if (files.empty())
        return "strandview";
    const std::string& first = files.front();
    QString title = first == "-" ? QString("standard input") : QString::fromStdString(first);
    if (files.size() > 1)
        title += " and " + QString::number(files.size() - 1) + " more";
    return title + " - strandview";
}

// Standard input is no file to open again.
QStringList namesOf(const std::vector<std::string>& files)
{
    QStringList names;
    for (const std::string& file : files) {
        if (file != "-")
            names.append(QString::fromStdString(file));
    }
    return names;
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; });
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

// Lets the window see the size that pictures take, what is clicked and when a frame is drawn, and
// leaves the home to it; shows axes of its own.
class MainWindow::Viewer : public SoQtGeneralViewer
{
public:
    Viewer(MainWindow& shownIn, QWidget* parent) : SoQtGeneralViewer(parent), window(shownIn)
    {
        setFeedbackVisibility(FALSE); // a cross over the scene, with yellow letters
        cameraWatcher.setPriority(0);
    }

    // SoQt takes the camera that it makes for the new home; and near what is long along the
    // view a perspective camera that shows as much as a parallel one would be inside it.
    void setCameraType(SoType type) override
    {
        const CameraRequest home = window.home;
        SoQtGeneralViewer::setCameraType(type);
        window.home = home;
        if (getCamera() && window.scene)
            keepInFront(*getCamera(), window.scene, SbViewportRegion(getGLSize()));
    }
    void saveHomePosition() override
    {
        SoQtGeneralViewer::saveHomePosition();
        if (getCamera())
            window.home.numbers = numbersOf(*getCamera());
    }
    void resetToHomePosition() override { window.place(window.home); }

    /// Called once, after the next frame.
    std::function<void()> onDrawn;

    using SoQtGeneralViewer::getGLSize;
    using SoQtGeneralViewer::setSceneGraph;

    void setSceneGraph(SoNode* root) override
    {
        auto* withAxes = new SoSeparator;
        withAxes->addChild(axes.getNode());
        withAxes->addChild(root);
        SoQtGeneralViewer::setSceneGraph(withAxes);
    }

    void setCamera(SoCamera* camera) override
    {
        SoQtGeneralViewer::setCamera(camera);
        cameraWatcher.detach();
        if (!camera)
            return;
        cameraWatcher.attach(&camera->orientation);
        turnAxes(this, nullptr);
    }

    SbBool processSoEvent(const SoEvent* const event) override
    {
        hasPicked = false;
        const bool picks = isPick(event);
        const SbBool handled = SoQtGeneralViewer::processSoEvent(event);
        if (picks && !hasPicked && onMiss)
            onMiss();
        return handled;
    }

    void setViewing(SbBool viewing) override
    {
        SoQtGeneralViewer::setViewing(viewing);
        if (onMode)
            onMode();
    }

    bool hasPicked = false;       ///< in the event that is being processed
    std::function<void()> onMiss; ///< called after a click beside everything
    std::function<void()> onMode; ///< called after a change between turning and picking
    AxisCross axes;
    QPointer<FrameWaiter> frameWaiter;

protected:
    void actualRedraw() override
    {
        SoQtGeneralViewer::actualRedraw();
        const SbVec2s size = getGLSize();
        if (frameWaiter)
            frameWaiter->endFrame(size[0], size[1]);
        if (const auto tell = std::exchange(onDrawn, nullptr))
            tell();
    }

    void sizeChanged(const SbVec2s& size) override
    {
        SoQtGeneralViewer::sizeChanged(size);
        axes.setView(getGLSize(), float(getGLWidget()->devicePixelRatioF()));
    }

private:
    static void turnAxes(void* viewer, SoSensor* /*sensor*/)
    {
        auto* self = static_cast<Viewer*>(viewer);
        self->axes.setOrientation(self->getCamera()->orientation.getValue());
    }

    bool isPick(const SoEvent* event) const
    {
        return SO_MOUSE_RELEASE_EVENT(event, BUTTON2) ||
               (SO_MOUSE_RELEASE_EVENT(event, BUTTON1) && !isViewing());
    }

    MainWindow& window;
    SoFieldSensor cameraWatcher{turnAxes, this};
};

void initialiseWindows(const char* programName)
{
    const std::string notice = chooseX11();
    if (!notice.empty())
        std::cerr << programName << ": " << notice << "\n";
    SoQtGeneralViewer::setDefaultAntialiasingLevel(4);
    SoQt::init(programName, programName);
    std::setlocale(LC_NUMERIC, "C"); // Qt took the user's; numbers have a decimal point here
    QApplication::setOrganizationName("strandview");
    QApplication::setApplicationName("strandview");
    SoQtGeneralViewer::initClass();
}

MainWindow::MainWindow(const Options& startOptions, Loader sceneLoader)
    : SoQtGeneralViewerDialog(nullptr), options(startOptions), loader(std::move(sceneLoader))
{
    setWindowFlags(Qt::Window);
    setWindowTitle(titleFor({}));
    setAcceptDrops(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildMenus();

    auto* area = new QWidget(this);
    area->setMinimumSize(160, 120);
    layout->addWidget(area, 1);
    ownedViewer = std::make_unique<Viewer>(*this, area);
    viewer = ownedViewer.get();
    viewer->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    viewer->setHeadlight(FALSE); // the scene has its lights
    viewer->setDecoration(FALSE);
    const SbColor background(options.background.red, options.background.green,
                             options.background.blue);
    viewer->setBackgroundColor(background);
    if (background == SbColor(1, 1, 1))
        pressKey(SoKeyboardEvent::B);       // so that the key's next press gives black
    viewer->setSceneGraph(new SoSeparator); // without one the view stays black
    viewer->addResizeCB(refit, this);
    restoreWindow(); // before SoQt, which shows the whole window with the view
    viewer->show();

    statusText = new StatusText(statusBar);
    statusBar->addWidget(statusText, 1);
    modeLabel = new QLabel(statusBar);
    statusBar->addPermanentWidget(modeLabel);
    ownedViewer->onMiss = [this] { statusText->tell({}); };
    ownedViewer->onMode = [this] { followMode(); };
    loadBar = new LoadBar(stopAction, statusBar);
    statusBar->addWidget(loadBar, 1);
    layout->addWidget(statusBar);
    setupUi();
    acceptDecimalComma(*findChild<QLineEdit*>("zoomLineEdit"));
    acceptDecimalComma(*findChild<QDoubleSpinBox*>("multDoubleSpinBox"));

    followMode();
    viewer->getGLWidget()->setFocus();
}

MainWindow::~MainWindow() = default;

// Scene

void MainWindow::showScene(DataScene* newScene, const std::vector<std::string>& files,
                           CameraChoice choice)
{
    CameraRequest same;
    if (choice == SAME_CAMERA && scene)
        same.numbers = getCameraNumbers();
    const bool wasFitted = isFitted();
    scene = newScene;
    shownFiles = files;
    scene->onPick = [this](const Told& told) {
        ownedViewer->hasPicked = true;
        statusText->tell({told});
    };
    scene->showColours(coloursAction->isChecked());
    viewer->setSceneGraph(static_cast<SoGeneralScene*>(scene));
    home = scene->settle(options.camera);
    place(home);
    // The numbers were for the first scene.
    options.camera.numbers.reset();
    if (same.numbers) {
        place(same);
        if (wasFitted)
            fitted = getCameraNumbers();
    }
    prepareDialogs();
    setWindowTitle(titleFor(files));
    followMode();
}

void MainWindow::whenPainted(std::function<void()> act)
{
    ownedViewer->frameWaiter = new FrameWaiter(
        *viewer->getGLWidget(), [this] { viewer->scheduleRedraw(); }, std::move(act));
    ownedViewer->frameWaiter->setParent(this);
}

bool MainWindow::hasScene() const { return scene; }

CameraNumbers MainWindow::getCameraNumbers() const { return numbersOf(*viewer->getCamera()); }

// Loading

void MainWindow::openFiles(const QStringList& names, CameraChoice choice)
{
    std::vector<std::string> files;
    for (const QString& name : names)
        files.push_back(name.toStdString());
    if (files.empty())
        return;
    follow(
        std::make_unique<LoadJob>(files, loader),
        [this, files](const ReadReport& report) { tellOpened(files, report); }, choice);
    if (job->waitFor(PATIENCE))
        job->finish();
}

void MainWindow::follow(std::unique_ptr<LoadJob> newJob,
                        std::function<void(const ReadReport&)> tell, CameraChoice choice)
{
    stopLoading();
    job = std::move(newJob);
    showLoading();
    connect(job.get(), &LoadJob::progressed, loadBar, &LoadBar::setText);
    connect(job.get(), &LoadJob::finished, this,
            [this, tell, choice](DataScene* loaded, const ReadReport& report) {
                LoadJob* const ended = job.release();
                ended->deleteLater(); // not before it returns
                showLoading();
                if (loaded) {
                    showDrawing();
                    showScene(loaded, ended->getFiles(), choice);
                    rememberFiles(namesOf(ended->getFiles()));
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

void MainWindow::stopLoading()
{
    if (!job)
        return;
    job.release()->abandonTo(this);
    showLoading();
    emit loadingEnded();
}

bool MainWindow::isLoading() const { return job != nullptr; }

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
    stopAction->setEnabled(isLoading());
}

void MainWindow::readAgain()
{
    for (const std::string& file : shownFiles) {
        const QFileInfo info(QString::fromStdString(file));
        if (file == "-" || (info.exists() && !info.isFile())) {
            statusText->tell(
                {{"Only files can be read again", file == "-" ? "standard input" : file}});
            return;
        }
    }
    openFiles(namesOf(shownFiles), SAME_CAMERA);
}

// Camera

void MainWindow::place(const CameraRequest& request)
{
    if (!scene)
        return;
    viewer->setCameraType(request.isPerspective() ? SoPerspectiveCamera::getClassTypeId()
                                                  : SoOrthographicCamera::getClassTypeId());
    placeCamera(*viewer->getCamera(), request, scene, SbViewportRegion(ownedViewer->getGLSize()),
                scene->getLegendHeight());
    fitted.reset();
    if (!request.numbers)
        fitted = getCameraNumbers();
    update3DZoom();
}

void MainWindow::fit()
{
    fitScene(*viewer->getCamera(), scene, SbViewportRegion(ownedViewer->getGLSize()),
             scene->getLegendHeight());
    fitted = getCameraNumbers();
    update3DZoom();
}

bool MainWindow::isFitted() const { return scene && fitted && *fitted == getCameraNumbers(); }

void MainWindow::refit(void* window, SoQtGeneralViewer* /*viewer*/, const SbVec2s& /*size*/)
{
    auto* self = static_cast<MainWindow*>(window);
    if (self->isFitted())
        self->fit();
}

void MainWindow::viewAll()
{
    if (scene)
        fit();
}

void MainWindow::viewFrom(Side side)
{
    CameraRequest request;
    request.side = side;
    request.perspective = perspectiveAction->isChecked();
    place(request);
}

void MainWindow::setPerspective(bool perspective)
{
    if (!scene)
        return;
    const bool wasFitted = isFitted();
    viewer->setCameraType(perspective ? SoPerspectiveCamera::getClassTypeId()
                                      : SoOrthographicCamera::getClassTypeId());
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
    // The highlights came or went.
    for (LightingDialog* lights : findChildren<LightingDialog*>())
        lights->updateGUIFromShaders();
    // The legend's room comes or goes.
    if (wasFitted)
        fit();
}

void MainWindow::copyCamera()
{
    if (!scene)
        return;
    const std::string text = "--camera " + formatCamera(getCameraNumbers());
    QApplication::clipboard()->setText(QString::fromStdString(text));
    statusText->tell({{"Copied: " + text, ""}});
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
    viewer->getGLWidget()->setFocus();
}

void MainWindow::followViewer()
{
    for (QAction* action : sceneActions)
        action->setEnabled(scene);
    perspectiveAction->setChecked(scene && getCameraNumbers().perspective);
    boxesAction->setChecked(scene && scene->isShowingBoundingBoxes());
    framesAction->setChecked(std::getenv("COIN_SHOW_FPS_COUNTER"));
    wheelsAction->setChecked(viewer->isDecoration());
    pickingAction->setChecked(!viewer->isViewing());
    coloursAction->setEnabled(scene && scene->hasColours());
    const SbColor background = viewer->getBackgroundColor();
    if (scene)
        scene->setBackground({background[0], background[1], background[2]});
}

void MainWindow::followMode()
{
    const bool turning = viewer->isViewing();
    modeLabel->setText(turning ? "Turning" : "Picking");
    modeLabel->setToolTip("Esc: turning or picking");
    if (!turning)
        statusText->setHint("Picking: the left button tells a point. Dragging, wheel and arrows "
                            "are off; Esc turns again.");
    else if (scene)
        statusText->setHint("Right button: point and arc length. F1: all keys.");
    else
        statusText->setHint("Open a file, or drop it here. F1: all keys.");
    statusText->tell({});
    followViewer();
}

// Pictures

void MainWindow::choosePicture()
{
    QFileDialog dialog(this, "Save a picture of the view", folderOfFiles(),
                       "Pictures (" + pictureNamePatterns() + ")");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("png"); // before the dialog asks whether to overwrite
    dialog.selectFile("picture.png");
    if (dialog.exec() == QDialog::Accepted)
        savePicture(dialog.selectedFiles().constFirst());
}

void MainWindow::savePicture(const QString& file)
{
    if (!scene)
        return;
    const std::string name = file.toStdString();
    std::string failure = checkPictureName("Save a picture", name, false);
    if (failure.empty()) {
        const SbVec2s size = ownedViewer->getGLSize();
        const SbColor background = viewer->getBackgroundColor();
        CameraRequest camera;
        camera.numbers = getCameraNumbers();
        QApplication::setOverrideCursor(Qt::WaitCursor);
        failure = writePicture(scene, {name,
                                       size[0],
                                       size[1],
                                       options.samples,
                                       {background[0], background[1], background[2]},
                                       false,
                                       camera,
                                       0});
        QApplication::restoreOverrideCursor();
    }
    if (failure.empty())
        statusText->tell({{"Saved", name}});
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

void MainWindow::rememberFiles(const QStringList& files)
{
    QSettings settings;
    QStringList recent = settings.value(RECENT_FILES).toStringList();
    for (const QString& file : files) {
        const QString path = QFileInfo(file).absoluteFilePath();
        if (!QFileInfo(path).isFile()) // a pipe cannot be opened again
            continue;
        recent.removeAll(path);
        recent.prepend(path);
    }
    settings.setValue(RECENT_FILES, QStringList(recent.mid(0, RECENT_FILE_COUNT)));
}

void MainWindow::updateRecentMenu()
{
    recentMenu->clear();
    for (const QString& file : QSettings().value(RECENT_FILES).toStringList()) {
        // A single & would underline the letter after it.
        recentMenu->addAction(QString(file).replace('&', "&&"), this,
                              [this, file] { openFiles({file}); });
    }
    if (recentMenu->isEmpty())
        recentMenu->addAction("None yet")->setEnabled(false);
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

void MainWindow::changeEvent(QEvent* event)
{
    SoQtGeneralViewerDialog::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        fullScreenAction->setChecked(isFullScreen());
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

void MainWindow::buildMenus()
{
    auto* bar = new QMenuBar(this);
    layout()->setMenuBar(bar);
    tools = new QToolBar(this);
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    layout()->addWidget(tools);
    buildFileMenu(*bar->addMenu("&File"));
    tools->addSeparator();
    buildViewMenu(*bar->addMenu("&View"));
    buildLookMenu(*bar->addMenu("&Look"));
    buildHelpMenu(*bar->addMenu("&Help"));
}

void MainWindow::buildFileMenu(QMenu& menu)
{
    QAction* open = menu.addAction(style()->standardIcon(QStyle::SP_DialogOpenButton), "&Open...",
                                   this, &MainWindow::chooseFiles, QKeySequence("Ctrl+O"));
    recentMenu = menu.addMenu("Open &recent");
    connect(recentMenu, &QMenu::aboutToShow, this, &MainWindow::updateRecentMenu);
    stopAction = menu.addAction("S&top loading", this, &MainWindow::stopLoading,
                                QKeySequence(Qt::Key_Escape));
    stopAction->setIconText("Stop");
    stopAction->setEnabled(false);
    sceneActions.push_back(
        menu.addAction("Read a&gain", this, &MainWindow::readAgain, QKeySequence("F5")));
    menu.addSeparator();
    QAction* save =
        menu.addAction(style()->standardIcon(QStyle::SP_DialogSaveButton), "&Save a picture...",
                       this, &MainWindow::choosePicture, QKeySequence("Ctrl+P"));
    save->setIconText("Save a picture");
    sceneActions.push_back(save);
    sceneActions.push_back(addKeyAction(menu, "S&creenshot...", "I", SoKeyboardEvent::I));
    sceneActions.push_back(
        menu.addAction("Copy c&amera", this, &MainWindow::copyCamera, QKeySequence("Ctrl+K")));
    menu.addAction("Copy s&tatus text", this, &MainWindow::copyStatusText, QKeySequence("Ctrl+C"));
    menu.addSeparator();
    menu.addAction("C&lose", this, &QWidget::close, QKeySequence("Ctrl+W"));
    menu.addAction("&Quit", this, &QWidget::close, QKeySequence("Ctrl+Q"));

    tools->addAction(open);
    tools->addAction(save);
}

void MainWindow::buildViewMenu(QMenu& menu)
{
    QAction* all = menu.addAction("View &all", this, &MainWindow::viewAll, QKeySequence("V"));
    sceneActions.push_back(all);
    tools->addAction(all);
    // The viewer's own key is off while it picks.
    sceneActions.push_back(menu.addAction(
        "As at the &beginning", this, [this] { place(home); }, QKeySequence("Home")));
    menu.addSeparator();
    int digit = 1;
    for (const NamedSide& named : SIDES) {
        const QString name = named.name;
        QAction* action = menu.addAction(
            "From " + name, this, [this, from = named.side] { viewFrom(from); },
            QKeySequence("Ctrl+" + QString::number(digit++)));
        sceneActions.push_back(action);
        if (!name.startsWith('-'))
            tools->addAction(action);
    }
    menu.addSeparator();
    perspectiveAction = menu.addAction("&Perspective");
    perspectiveAction->setCheckable(true);
    perspectiveAction->setShortcut(QKeySequence("P"));
    connect(perspectiveAction, &QAction::triggered, this, &MainWindow::setPerspective);
    sceneActions.push_back(perspectiveAction);
    tools->addAction(perspectiveAction);
    fullScreenAction = menu.addAction("&Full screen");
    fullScreenAction->setCheckable(true);
    fullScreenAction->setShortcut(QKeySequence("F11"));
    connect(fullScreenAction, &QAction::triggered, this, &MainWindow::setFullScreen);
    menu.addSeparator();

    struct Step
    {
        QString text, keyName;
        int key;
        Qt::KeyboardModifier modifier;
    };
    const auto addSteps = [this, &menu](const QString& title, const std::vector<Step>& steps) {
        QMenu* submenu = menu.addMenu(title);
        for (const Step& step : steps)
            sceneActions.push_back(
                addKeyAction(*submenu, step.text, step.keyName, step.key, step.modifier));
    };
    addSteps("&Move", {{"Left", "A", SoKeyboardEvent::A, Qt::NoModifier},
                       {"Right", "D", SoKeyboardEvent::D, Qt::NoModifier},
                       {"Up", "W", SoKeyboardEvent::W, Qt::NoModifier},
                       {"Down", "S", SoKeyboardEvent::S, Qt::NoModifier},
                       {"Forward", "Q", SoKeyboardEvent::Q, Qt::NoModifier},
                       {"Backward", "E", SoKeyboardEvent::E, Qt::NoModifier}});
    addSteps("&Zoom", {{"In", "Alt+W", SoKeyboardEvent::W, Qt::AltModifier},
                       {"Out", "Alt+S", SoKeyboardEvent::S, Qt::AltModifier}});
    addSteps("&Turn",
             {{"About the horizontal axis", "Alt+D", SoKeyboardEvent::D, Qt::AltModifier},
              {"And back", "Alt+A", SoKeyboardEvent::A, Qt::AltModifier},
              {"About the vertical axis", "Ctrl+D", SoKeyboardEvent::D, Qt::ControlModifier},
              {"And back", "Ctrl+A", SoKeyboardEvent::A, Qt::ControlModifier},
              {"About the viewing axis", "Shift+D", SoKeyboardEvent::D, Qt::ShiftModifier},
              {"And back", "Shift+A", SoKeyboardEvent::A, Qt::ShiftModifier}});
    addSteps("From where it &is", {{"x, z up", "X", SoKeyboardEvent::X, Qt::NoModifier},
                                   {"x, y up", "Shift+X", SoKeyboardEvent::X, Qt::ShiftModifier},
                                   {"y, z up", "Y", SoKeyboardEvent::Y, Qt::NoModifier},
                                   {"y, x up", "Shift+Y", SoKeyboardEvent::Y, Qt::ShiftModifier},
                                   {"z, y up", "Z", SoKeyboardEvent::Z, Qt::NoModifier},
                                   {"z, x up", "Shift+Z", SoKeyboardEvent::Z, Qt::ShiftModifier}});
}

void MainWindow::buildLookMenu(QMenu& menu)
{
    QAction* drawStyle =
        addKeyAction(menu, "Lit, plain, &wireframe", "Space", SoKeyboardEvent::SPACE);
    drawStyle->setIconText("Draw style");
    QAction* lights = addKeyAction(menu, "&Lights...", "L", SoKeyboardEvent::L);
    lights->setIconText("Lights");
    for (QAction* action : {drawStyle, lights}) {
        sceneActions.push_back(action);
        tools->addAction(action);
    }
    boxesAction = addKeySwitch(menu, "Bounding &boxes", "Shift+Space", SoKeyboardEvent::SPACE,
                               Qt::ShiftModifier);
    sceneActions.push_back(boxesAction);
    coloursAction = menu.addAction("&Colours of data");
    coloursAction->setCheckable(true);
    coloursAction->setChecked(true);
    connect(coloursAction, &QAction::triggered, this, &MainWindow::setColours);
    sceneActions.push_back(addKeyAction(menu, "&Thicker lines", "=", SoKeyboardEvent::EQUAL));
    sceneActions.push_back(addKeyAction(menu, "Thi&nner lines", "-", SoKeyboardEvent::MINUS));
    menu.addSeparator();
    addKeyAction(menu, "White or black &background", "B", SoKeyboardEvent::B);
    QAction* axes = menu.addAction("A&xes in the corner");
    axes->setCheckable(true);
    axes->setChecked(true);
    connect(axes, &QAction::triggered, this, [this](bool shown) { ownedViewer->axes.show(shown); });
    framesAction = addKeySwitch(menu, "&Frames per second", "F", SoKeyboardEvent::F);
    wheelsAction = addKeySwitch(menu, "W&heels and buttons", "Return", SoKeyboardEvent::RETURN);
    pickingAction =
        addKeySwitch(menu, "&Picking instead of turning", "Esc", SoKeyboardEvent::ESCAPE);
}

void MainWindow::buildHelpMenu(QMenu& menu)
{
    menu.addAction("&Keys", this, &MainWindow::showKeys, QKeySequence("F1"));
    QAction* about = menu.addAction("&About strandview", this, &MainWindow::showAbout);
    about->setIconText("About");
    tools->addAction(about);
}

QAction* MainWindow::addKeyAction(QMenu& menu, const QString& text, const QString& keyName, int key,
                                  Qt::KeyboardModifier modifier)
{
    // The viewer takes the key itself: the menu only names it.
    return menu.addAction(text + "\t" + keyName, this,
                          [this, key, modifier] { pressKey(key, modifier); });
}

QAction* MainWindow::addKeySwitch(QMenu& menu, const QString& text, const QString& keyName, int key,
                                  Qt::KeyboardModifier modifier)
{
    QAction* action = addKeyAction(menu, text, keyName, key, modifier);
    action->setCheckable(true);
    return action;
}

void MainWindow::pressKey(int key, Qt::KeyboardModifier modifier)
{
    SoKeyboardEvent event;
    event.setTime(SbTime::getTimeOfDay());
    event.setKey(SoKeyboardEvent::Key(key));
    event.setShiftDown(modifier == Qt::ShiftModifier);
    event.setCtrlDown(modifier == Qt::ControlModifier);
    event.setAltDown(modifier == Qt::AltModifier);
    event.setState(SoButtonEvent::DOWN);
    ownedViewer->processSoEvent(&event);
    event.setState(SoButtonEvent::UP);
    ownedViewer->processSoEvent(&event);
}

void MainWindow::showKeys() { showText(this, "Keys and mouse", keyPage()); }

void MainWindow::showAbout()
{
    showText(this, "About strandview",
             "<b>strandview " STRANDVIEW_VERSION "</b><br />Shows elastic rods and DNA, "
             "right, smooth and fast.<br />Free software: GPL-3.0-or-later.");
}

// The whole of it

namespace {

// What the screen shows of the window, its frame left out.
std::string saveWindow(const QWidget& window, const std::string& file)
{
    const QImage image = window.screen()->grabWindow(window.winId()).toImage();
    return saveImage(image.convertToFormat(QImage::Format_RGB888), file);
}

void tellNotices(const ReadReport& report)
{
    for (const std::string& notice : report.notices)
        std::cerr << "strandview: " << notice << "\n";
}

} // namespace

std::string runWindow(const Options& options, const MainWindow::Loader& loader, ReadReport& report,
                      const MainWindow::Loader& first)
{
    std::unique_ptr<LoadJob> begun;
    if (!options.files.empty()) {
        begun = std::make_unique<LoadJob>(options.files, first ? first : loader);
        begun->waitFor(PATIENCE);
        report.error = begun->getFailure();
        if (!report.error.empty())
            return "";
    }

    MainWindow window(options, loader);
    if (begun) {
        window.follow(std::move(begun), [&](const ReadReport& loadReport) {
            report = loadReport;
            if (report.error.empty())
                tellNotices(report);
            else
                window.close();
        });
    }
    window.show();
    std::string failure;
    if (options.windowPicture) {
        failure = *options.windowPicture + ": the window was closed before its picture was taken";
        const auto takePicture = [&] {
            QTimer::singleShot(int(1000 * options.windowPictureAfter), &window, [&] {
                window.whenPainted([&] {
                    failure = saveWindow(window, *options.windowPicture);
                    window.close();
                });
            });
        };
        // Once: what the user opens meanwhile asks for no other.
        if (window.isLoading())
            QObject::connect(&window, &MainWindow::loadingEnded, &window,
                             [takePicture, first = true]() mutable {
                                 if (std::exchange(first, false))
                                     takePicture();
                             });
        else
            takePicture();
    }
    SoQt::mainLoop();
    if (options.printCamera && window.hasScene())
        failure += failure.empty() ? printCamera(window.getCameraNumbers()) : "";
    return failure;
}

} // namespace strandview
