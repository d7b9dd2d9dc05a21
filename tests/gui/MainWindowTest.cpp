// SPDX-License-Identifier: GPL-3.0-or-later
// The program's window as its user sees it: a real window, keys, clicks, menus and drops.
#include "window/MainWindow.h"
#include "window/fileFilter.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>

#include <sys/stat.h>

#include <Inventor/nodes/SoShaderParameter.h>
#include <LightingDialog.h>
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QGLWidget>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPixmap>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QUrl>
#include <QWheelEvent>
#include <gmock/gmock.h>

#include "programWindows.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "scene/Legend.h"
#include "scene/SceneBuilder.h"
#include "scene/SceneLoader.h"
#include "support/keepPictures.h"
#include "support/runProgram.h"
#include "window/AxisCross.h"
#include "window/StatusText.h"
#include "window/actions.h"
#include "window/runWindow.h"

namespace strandview {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

// Along x from 0 to 2; d2 is y.
const char* const STRAIGHT = "0 0 0 0 0.70710678118654752 0 0.70710678118654752\n"
                             "1 0 0 0 0.70710678118654752 0 0.70710678118654752\n"
                             "2 0 0 0 0.70710678118654752 0 0.70710678118654752\n";

const ColourMap BLUE_TO_RED{{{0, 0, 1}, {0, 1, 1}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}}};

bool isRed(const QColor& colour)
{
    return colour.red() > 100 && colour.green() < colour.red() / 2 && colour.blue() < 120;
}

int count(const QImage& picture, const std::function<bool(QColor)>& holds)
{
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            pixels += holds(picture.pixelColor(x, y));
    }
    return pixels;
}

int difference(const QColor& a, const QColor& b)
{
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                     std::abs(a.blue() - b.blue())});
}

// What a menu shows of an action, without mark-up for keys.
std::string plainText(const QAction& action)
{
    return action.text().section('\t', 0, 0).remove('&').toStdString();
}

// While it lives, every modal dialog and menu that opens is answered: by the given
// function, and is then closed if it is still there.
class Answers
{
public:
    explicit Answers(std::function<void(QWidget&)> answerDialog = nullptr)
        : answer(std::move(answerDialog))
    {
        timer.setSingleShot(true); // for answers that bring up another dialog
        QObject::connect(&timer, &QTimer::timeout, [this] { look(); });
        timer.start(20);
    }

    std::vector<std::string> texts; ///< of the message boxes, in order

private:
    void look()
    {
        timer.start(20);
        if (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
        const QPointer<QWidget> modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        if (const auto* box = qobject_cast<QMessageBox*>(modal))
            texts.push_back(box->text().toStdString());
        if (answer)
            answer(*modal);
        if (modal)
            modal->close();
    }

    std::function<void(QWidget&)> answer;
    QTimer timer;
};

class MainWindowTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        qputenv("LC_ALL", "C.UTF-8"); // not the one that programs start with
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        initialiseProgramOnce("MainWindowTest");
    }

    MainWindowTest()
    {
        QSettings().clear();
        qunsetenv("COIN_SHOW_FPS_COUNTER"); // a key toggles it, for all windows
        options.windowSize = {520, 420};
        options.radius = 0.2;
        options.tubeColour = Colour{1, 0, 0};
        options.showRibbon = false;
    }

    std::string write(const std::string& name, const std::string& text) const
    {
        const std::string path = folder.filePath(QString::fromStdString(name)).toStdString();
        std::ofstream(path) << text;
        return path;
    }

    MainWindow::Loader loader() const
    {
        return [this](const std::vector<std::string>& files, const Options& /*asked*/,
                      ReadReport& report, Progress& progress) {
            return prepareScene(files, options, report, progress);
        };
    }

    // A window on these files, shown.
    void open(const std::vector<std::string>& files)
    {
        window = std::make_unique<MainWindow>(options, loader());
        if (!files.empty()) {
            ReadReport report;
            DataScene* scene = loadScene(files, options, report);
            ASSERT_NE(scene, nullptr) << report.error;
            window->showScene(scene, files);
        }
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    QWidget* view() const { return window->findChild<QGLWidget*>(); }
    QLineEdit* zoomField() const { return window->findChild<QLineEdit*>("zoomLineEdit"); }

    std::string statusText() const
    {
        return dynamic_cast<const StatusText&>(
                   *window->findChild<QStatusBar*>()->findChild<QLabel*>())
            .getAll()
            .toStdString();
    }

    // Whether a label of the status bar is just this text.
    bool isToldInStatusBar(const QString& text) const
    {
        for (const QLabel* label : window->findChild<QStatusBar*>()->findChildren<QLabel*>()) {
            if (label->isVisible() && label->text() == text)
                return true;
        }
        return false;
    }

    QAction* action(const std::string& text) const
    {
        for (QAction* candidate : window->findChildren<QAction*>()) {
            if (plainText(*candidate) == text)
                return candidate;
        }
        ADD_FAILURE() << "no entry " << text;
        return nullptr;
    }

    // Opens them and waits until they are shown or refused.
    void load(const QStringList& files) const
    {
        window->openFiles(files);
        waitUntilLoaded();
    }
    void waitUntilLoaded() const
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !window->isLoading(); }, 20000));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(view(), key, modifiers);
    }

    // The screen's pixels of the view, or of the whole window.
    QImage shown() const { return grab(*view()); }
    static QImage grab(QWidget& widget)
    {
        return keepIfFailed(widget.screen()->grabWindow(widget.winId()).toImage());
    }

    // Waits for the screen.
    bool comesToShow(const std::function<bool(const QImage&)>& holds) const
    {
        return QTest::qWaitFor([&] { return holds(shown()); }, 20000);
    }
    bool comesToShowTheRod() const
    {
        return comesToShow(
            [](const QImage& p) { return count(p, isRed) > p.width() * p.height() / 50; });
    }

    // Where the view shows a point of the plane z = 0, as long as it looks along -z.
    QPoint pixelOf(double x, double y) const
    {
        const CameraNumbers camera = window->getCameraNumbers();
        const double pixels = std::min(view()->width(), view()->height()) / camera.size;
        return QPoint(int(view()->width() / 2.0 + (x - camera.position[0]) * pixels),
                      int(view()->height() / 2.0 - (y - camera.position[1]) * pixels));
    }

    void drop(const QList<QUrl>& urls) const
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &enter);
        accepted = enter.isAccepted();
        QDropEvent event(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        if (accepted)
            QApplication::sendEvent(window.get(), &event);
        QTest::qWait(50);
        waitUntilLoaded();
    }

    QTemporaryDir folder;
    Options options;
    std::unique_ptr<MainWindow> window;
    mutable bool accepted = false;
};

QUrl url(const std::string& file) { return QUrl::fromLocalFile(QString::fromStdString(file)); }

// Opening and closing

TEST_F(MainWindowTest, ShowsTheSceneOnTheBackgroundUntilItIsClosed)
{
    options.background = {0, 0, 1};
    options.files = {write("straight.txt", STRAIGHT)};

    // Looks until the rod is there, for at most a minute.
    QString title;
    QImage picture;
    QTimer timer;
    int looks = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible())
                continue;
            title = widget->windowTitle();
            picture = grab(*widget);
            if (count(picture, isRed) > picture.width() * picture.height() / 30 || ++looks == 300)
                widget->close();
        }
    });
    timer.start(200);
    ReadReport report;
    EXPECT_EQ(runWindow(options, loader(), report), "");
    EXPECT_EQ(report.error, "");

    EXPECT_EQ(title.toStdString(), options.files[0] + " - strandview");
    const int pixels = picture.width() * picture.height();
    EXPECT_GT(count(picture, isRed), pixels / 30);
    EXPECT_GT(count(picture, [](const QColor& c) { return c == QColor(0, 0, 255); }), pixels / 3);
}

TEST_F(MainWindowTest, SaysSoWhenItIsClosedBeforeItsPictureIsTaken)
{
    options.windowPicture = folder.filePath("window.png").toStdString();
    options.windowPictureAfter = 600;
    QTimer::singleShot(300, [] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            widget->close();
    });
    ReadReport report;
    EXPECT_THAT(runWindow(options, nullptr, report),
                AllOf(StartsWith(*options.windowPicture), HasSubstr("closed")));
    EXPECT_FALSE(QFile::exists(folder.filePath("window.png")));
}

TEST_F(MainWindowTest, APictureOfTheWindowIsNeverTakenBeforeTheViewIsPainted)
{
    const std::string file = write("straight.txt", STRAIGHT);
    const std::string out = folder.filePath("window.png").toStdString();
    for (int i = 0; i < 5; ++i) {
        const ProgramRun run =
            runProgram(STRANDVIEW_PROGRAM,
                       {"--size", "500x400", "--tube-colour", "#ff0000", "--background", "#0000ff",
                        "--radius", "0.2", "--screenshot-after", "0", out, file},
                       "", {{"DISPLAY", qgetenv("DISPLAY").toStdString()}});
        ASSERT_EQ(run.status, 0) << run.error;
        const QImage picture(QString::fromStdString(out));
        ASSERT_EQ(picture.size(), QSize(500, 400));
        EXPECT_GT(count(picture, isRed), 10000) << i;
        EXPECT_EQ(count(picture, [](const QColor& c) { return c == QColor(90, 10, 165); }), 0)
            << "the marks of the wait";
        // The corners of the view, above the status bar and below the tool bar.
        for (const QPoint corner : {QPoint(1, 80), QPoint(498, 80), QPoint(1, 360)})
            EXPECT_EQ(picture.pixelColor(corner), QColor(0, 0, 255)) << i;
        QFile::remove(QString::fromStdString(out));
    }
}

TEST_F(MainWindowTest, OpensOnTheXDisplayWhateverPlatformIsAskedFor)
{
    const std::string file = write("straight.txt", STRAIGHT);
    const std::string out = folder.filePath("window.png").toStdString();
    QDir(folder.path()).mkdir("run");
    const auto show = [&](const std::string& platform) {
        const ProgramRun run =
            runProgram(STRANDVIEW_PROGRAM, {"--screenshot-after", "0", out, file}, "",
                       {{"DISPLAY", qgetenv("DISPLAY").toStdString()},
                        {"XDG_RUNTIME_DIR", folder.filePath("run").toStdString()},
                        {"QT_QPA_PLATFORM", platform}});
        EXPECT_EQ(run.status, 0) << platform;
        EXPECT_TRUE(QFile::remove(QString::fromStdString(out))) << platform;
        return run.error;
    };
    const std::string notices = show("xcb");
    for (const char* platform : {"", "wayland", "wayland;xcb", "wayland-egl"})
        EXPECT_EQ(show(platform), notices) << platform;
    for (const char* platform : {"minimal", "no-such"})
        EXPECT_EQ(show(platform), std::string("strandview: found QT_QPA_PLATFORM=") + platform +
                                      ", expected xcb: the window opens on the X display\n" +
                                      notices);
}

TEST_F(MainWindowTest, FilesOfTheCommandLineAreRecentButStandardInputAndPipesAreNot)
{
    options.files = {write("straight.txt", STRAIGHT)};
    options.files.emplace_back("-");
    const std::string pipe = folder.filePath("pipe").toStdString();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    options.files.push_back(pipe);
    QTimer::singleShot(100, [] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            widget->close();
    });
    ReadReport report;
    const auto leaveInput = [this](const std::vector<std::string>& files, const Options& /*asked*/,
                                   ReadReport& loadReport, Progress& progress) {
        return prepareScene({files.front()}, options, loadReport, progress);
    };
    runWindow(options, leaveInput, report);
    EXPECT_EQ(QSettings().value("recentFiles").toStringList(),
              QStringList(QString::fromStdString(options.files[0])));
}

TEST_F(MainWindowTest, AnEmptyWindowIsOfTheBackgroundAndOffersWhatItCanDo)
{
    options.background = {1, 1, 1};
    open({});
    EXPECT_TRUE(comesToShow([](const QImage& p) { return p.pixelColor(9, 9) == Qt::white; }));
    EXPECT_EQ(window->windowTitle(), "strandview");
    EXPECT_TRUE(action("Open...")->isEnabled());
    EXPECT_TRUE(action("Keys")->isEnabled());
    for (const char* text : {"Save a picture...", "View all", "From x", "Perspective", "Lights...",
                             "Copy camera", "Lit, plain, wireframe"})
        EXPECT_FALSE(action(text)->isEnabled()) << text;
}

// Every key with every modifier, then every entry of the menus.
void tryEverything(MainWindow& window, QWidget& view)
{
    const Answers answers;
    std::vector<int> keys;
    for (int key = Qt::Key_Space; key <= Qt::Key_AsciiTilde; ++key)
        keys.push_back(key);
    for (int key = Qt::Key_Escape; key <= Qt::Key_PageDown; ++key)
        keys.push_back(key);
    keys.insert(keys.end(), {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_F1, Qt::Key_F5,
                             Qt::Key_F11, Qt::Key_F12});
    for (const int key : keys) {
        for (const auto modifier :
             {Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier}) {
            if (modifier == Qt::ControlModifier && (key == Qt::Key_Q || key == Qt::Key_W))
                continue; // close it
            // Of any key: keyClick() knows those alone that have a letter.
            QTest::sendKeyEvent(QTest::Click, &view, Qt::Key(key), QString(), modifier);
            QApplication::processEvents();
            while (QWidget* popup = QApplication::activePopupWidget())
                popup->close();
            ASSERT_TRUE(window.isVisible()) << "closed by key " << key << " + " << modifier;
        }
    }
    for (const auto button : {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton}) {
        QTest::mouseClick(&view, button, Qt::NoModifier, QPoint(30, 30));
        QTest::mouseClick(&view, button, Qt::ControlModifier, view.rect().center());
    }
    for (QAction* action : window.findChildren<QAction*>()) {
        if (plainText(*action) == "Quit" || plainText(*action) == "Close")
            continue;
        action->trigger();
        QApplication::processEvents();
    }
    for (QWidget* other : QApplication::topLevelWidgets()) {
        if (other != &window && other->isVisible())
            other->close();
    }
    QTest::qWait(50);
}

TEST_F(MainWindowTest, NothingHarmsAnEmptyWindow)
{
    open({});
    tryEverything(*window, *view());
    EXPECT_FALSE(window->hasScene());
    window->viewAll();
    window->setPerspective(true);
    window->viewFrom(Side::X);
    window->copyCamera();
    window->savePicture(folder.filePath("none.png"));
    EXPECT_FALSE(QFile::exists(folder.filePath("none.png")));
    QTest::keyClicks(zoomField(), "12");
    QTest::keyClick(zoomField(), Qt::Key_Return);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindowTest, NothingHarmsAWindowWithAScene)
{
    options.colourBy = "arclength";
    open({write("straight.txt", STRAIGHT)});
    tryEverything(*window, *view());
    EXPECT_TRUE(window->hasScene());
    EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindowTest, EntriesAndKeysCloseIt)
{
    for (const char* entry : {"Quit", "Close"}) {
        open({});
        action(entry)->trigger();
        EXPECT_FALSE(window->isVisible()) << entry;
    }
    for (const Qt::Key key : {Qt::Key_Q, Qt::Key_W}) {
        open({write("straight.txt", STRAIGHT)});
        press(key, Qt::ControlModifier);
        EXPECT_FALSE(window->isVisible()) << key;
    }
}

TEST_F(MainWindowTest, NumbersHaveADecimalPointWhateverTheUsersLocale)
{
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}

// Files

TEST_F(MainWindowTest, OpeningAnotherFileReplacesWhatIsShown)
{
    const std::string second = write("second.txt", "0 0 0\n0 8 0\n0 9 0\n");
    open({write("straight.txt", STRAIGHT)});
    const CameraNumbers before = window->getCameraNumbers();
    load({QString::fromStdString(second)});
    EXPECT_EQ(window->windowTitle().toStdString(), second + " - strandview");
    EXPECT_FALSE(window->getCameraNumbers() == before);
    EXPECT_NEAR(window->getCameraNumbers().position[1], 4.5, 0.01);
    EXPECT_THAT(statusText(),
                AllOf(StartsWith("1 rod without frames: "), EndsWith(" – " + second)));

    load({QString::fromStdString(second), QString::fromStdString(second)});
    EXPECT_EQ(window->windowTitle().toStdString(), second + " and 1 more - strandview");
}

TEST_F(MainWindowTest, AFileThatCannotBeOpenedIsToldAndLeavesWhatWasShown)
{
    const std::string bad = write("<b>bad.txt", "0 0 zero\n");
    open({write("straight.txt", STRAIGHT)});
    press(Qt::Key_A);
    const CameraNumbers before = window->getCameraNumbers();
    const QString title = window->windowTitle();
    for (const std::string& file : {bad, std::string("no/such.txt"), folder.path().toStdString()}) {
        Answers answers;
        load({QString::fromStdString(file)});
        ASSERT_EQ(answers.texts.size(), 1u) << file;
        EXPECT_THAT(answers.texts[0], HasSubstr(file));
    }
    EXPECT_EQ(window->windowTitle(), title);
    EXPECT_TRUE(window->getCameraNumbers() == before);
    EXPECT_TRUE(comesToShowTheRod());
    EXPECT_TRUE(QSettings().value("recentFiles").toStringList().isEmpty());
}

TEST_F(MainWindowTest, AFailureIsShownLetterByLetter)
{
    Qt::TextFormat format = Qt::RichText;
    open({});
    const Answers answers(
        [&](QWidget& dialog) { format = dynamic_cast<QMessageBox&>(dialog).textFormat(); });
    load({QString::fromStdString(write("x.txt", "0 0 <b>\n"))});
    EXPECT_EQ(format, Qt::PlainText);
}

TEST_F(MainWindowTest, OpensTheFilesThatAreChosen)
{
    const std::string file = write("straight.txt", STRAIGHT);
    open({});
    const Answers answers([&](QWidget& dialog) {
        auto& chooser = dynamic_cast<QFileDialog&>(dialog);
        chooser.findChild<QLineEdit*>()->setText(QString::fromStdString(file));
        QMetaObject::invokeMethod(&chooser, "accept");
    });
    QTest::keyClick(view(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(window->hasScene());
    EXPECT_EQ(window->windowTitle().toStdString(), file + " - strandview");
    EXPECT_TRUE(comesToShowTheRod());
}

TEST_F(MainWindowTest, TheDialogThatOpensFilesOffersAllFormats)
{
    QStringList filters;
    const Answers answers([&](QWidget& dialog) {
        if (const auto* chooser = qobject_cast<QFileDialog*>(&dialog))
            filters = chooser->nameFilters();
    });
    open({});
    window->chooseFiles();
    EXPECT_EQ(filters.join(";;"), fileFilter());
    EXPECT_EQ(filters.size(), 2);
}

TEST_F(MainWindowTest, DialogsStartWhereTheShownFileIs)
{
    QStringList folders;
    const Answers answers([&](QWidget& dialog) {
        if (const auto* chooser = qobject_cast<QFileDialog*>(&dialog))
            folders.append(chooser->directory().canonicalPath());
        else if (auto* save = dialog.findChild<QPushButton*>("pictureSave"))
            save->click();
    });
    QDir(folder.path()).mkdir("inner");
    open({write("inner/straight.txt", STRAIGHT)});
    window->chooseFiles();
    window->choosePicture();
    const QString inner = QFileInfo(folder.filePath("inner")).canonicalFilePath();
    EXPECT_EQ(folders, QStringList({inner, inner}));

    load({QString::fromStdString(write("straight.txt", STRAIGHT))});
    window->chooseFiles();
    EXPECT_EQ(folders.last(), QFileInfo(folder.path()).canonicalFilePath());
}

TEST_F(MainWindowTest, ScreenshotsGoWhereTheShownFileIsUnlessTheUserChoseAnotherFolder)
{
    const std::string file = write("straight.txt", STRAIGHT);
    open({});
    auto* where = window->findChild<QLineEdit*>("dirLineEdit");
    EXPECT_EQ(where->text(), "./");
    load({QString::fromStdString(file)});
    EXPECT_EQ(where->text(), folder.path());
    where->setText("/elsewhere");
    load({QString::fromStdString(file)});
    EXPECT_EQ(where->text(), "/elsewhere");
}

// Reading again

TEST_F(MainWindowTest, ReadsTheFilesAgainAndTheCameraStays)
{
    const std::string file = write("straight.txt", STRAIGHT);
    open({file});
    ASSERT_TRUE(comesToShowTheRod());
    press(Qt::Key_P);
    press(Qt::Key_D, Qt::AltModifier);
    const CameraNumbers before = window->getCameraNumbers();
    write("straight.txt", "0 0 0\n0 8 0\n0 9 0\n");
    press(Qt::Key_F5);
    waitUntilLoaded();
    EXPECT_TRUE(window->getCameraNumbers() == before);
    EXPECT_THAT(statusText(), HasSubstr("parallel transport"));
    EXPECT_EQ(window->windowTitle().toStdString(), file + " - strandview");
    window->viewFrom(Side::Z);
    EXPECT_NEAR(window->getCameraNumbers().position[1], 4.5, 0.01);
}

TEST_F(MainWindowTest, AFittedViewIsStillFittedAfterItsFilesWereReadAgain)
{
    open({write("straight.txt", STRAIGHT)});
    const CameraNumbers before = window->getCameraNumbers();
    action("Read again")->trigger();
    waitUntilLoaded();
    EXPECT_TRUE(window->getCameraNumbers() == before);
    window->resize(400, 700);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view()->width() == 400; }));
    EXPECT_LT(pixelOf(2, 0).x() - pixelOf(0, 0).x(), 400);
}

TEST_F(MainWindowTest, AFileThatIsGoneWhenItIsReadAgainIsToldAndStaysInView)
{
    const std::string file = write("straight.txt", STRAIGHT);
    open({file});
    const CameraNumbers before = window->getCameraNumbers();
    QFile::remove(QString::fromStdString(file));
    Answers answers;
    press(Qt::Key_F5);
    waitUntilLoaded();
    ASSERT_EQ(answers.texts.size(), 1u);
    EXPECT_THAT(answers.texts[0], HasSubstr(file));
    EXPECT_TRUE(window->getCameraNumbers() == before);
    EXPECT_TRUE(comesToShowTheRod());
}

TEST_F(MainWindowTest, StandardInputAndPipesAreNotReadAgain)
{
    const std::string file = write("straight.txt", STRAIGHT);
    const std::string pipe = folder.filePath("pipe").toStdString();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& name : {std::string("-"), pipe}) {
        open({});
        ReadReport report;
        window->showScene(loadScene({file}, options, report), {name});
        press(Qt::Key_F5);
        EXPECT_THAT(statusText(), StartsWith("Only files can be read again"));
        EXPECT_TRUE(window->hasScene());
    }
}

TEST_F(MainWindowTest, OpensWhatIsDropped)
{
    const std::string file = write("straight.txt", STRAIGHT);
    open({});
    drop({url(file)});
    EXPECT_TRUE(accepted);
    EXPECT_TRUE(window->hasScene());
    EXPECT_TRUE(comesToShowTheRod());
}

TEST_F(MainWindowTest, TellsWhyADroppedFileCannotBeOpened)
{
    open({write("straight.txt", STRAIGHT)});
    const QString title = window->windowTitle();
    Answers answers;
    drop({url(write("bad.txt", "no numbers\n"))});
    EXPECT_TRUE(QTest::qWaitFor([&] { return !answers.texts.empty(); }));
    EXPECT_THAT(answers.texts, testing::ElementsAre(HasSubstr("bad.txt")));
    EXPECT_EQ(window->windowTitle(), title);
}

TEST_F(MainWindowTest, TakesNoDropsButFiles)
{
    open({});
    drop({QUrl("https://example.org/rod.txt")});
    EXPECT_FALSE(accepted);
    drop({});
    EXPECT_FALSE(accepted);
}

TEST_F(MainWindowTest, OffersTheLastEightFilesAgainTheNewestFirst)
{
    open({});
    QStringList files;
    for (int i = 0; i < 10; ++i) {
        files.prepend(QString::fromStdString(write("a&b " + std::to_string(i) + ".txt", STRAIGHT)));
        load({files.front()});
    }
    load({files[1]}); // once more: to the front
    files.move(1, 0);

    QMenu* recent = nullptr;
    for (QMenu* menu : window->findChildren<QMenu*>()) {
        if (menu->title() == "Open &recent")
            recent = menu;
    }
    ASSERT_NE(recent, nullptr);
    QMetaObject::invokeMethod(recent, "aboutToShow");
    ASSERT_EQ(recent->actions().size(), 8);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(recent->actions().at(i)->text().toStdString(),
                  QString(files[i]).replace('&', "&&").toStdString());
    }
    recent->actions().at(7)->trigger();
    EXPECT_EQ(window->windowTitle(), files[7] + " - strandview");
}

TEST_F(MainWindowTest, SaysThatNoFileIsRecent)
{
    open({});
    for (QMenu* menu : window->findChildren<QMenu*>()) {
        if (menu->title() != "Open &recent")
            continue;
        QMetaObject::invokeMethod(menu, "aboutToShow");
        ASSERT_EQ(menu->actions().size(), 1);
        EXPECT_FALSE(menu->actions().at(0)->isEnabled());
        return;
    }
    FAIL() << "no such menu";
}

// Window

TEST_F(MainWindowTest, TheNextWindowHasTheSizeOfTheLast)
{
    options.windowSize.reset();
    open({});
    window->resize(543, 432);
    QTest::qWait(100);
    ASSERT_EQ(window->size(), QSize(543, 432));
    window->close();
    open({});
    EXPECT_EQ(window->width(), 543);
    EXPECT_EQ(window->height(), 432);
}

TEST_F(MainWindowTest, ASizeAskedForIsNotRemembered)
{
    options.windowSize.reset();
    open({});
    window->resize(543, 432);
    QTest::qWait(100);
    window->close();
    options.windowSize = {600, 480};
    open({});
    EXPECT_EQ(window->size(), QSize(600, 480));
    window->close();
    options.windowSize.reset();
    open({});
    EXPECT_EQ(window->size(), QSize(543, 432));
}

TEST_F(MainWindowTest, IsNotLargerThanTheScreen)
{
    options.windowSize = {30000, 20000};
    open({});
    EXPECT_TRUE(QTest::qWaitFor([this] {
        return window->frameGeometry() != window->geometry() &&
               window->screen()->availableGeometry().contains(window->frameGeometry());
    }));
}

TEST_F(MainWindowTest, FillsTheScreenAndComesBack)
{
    open({write("straight.txt", STRAIGHT)});
    const auto comesToBe = [this](bool full) {
        return QTest::qWaitFor([&] {
            return (window->size() == window->screen()->size()) == full &&
                   action("Full screen")->isChecked() == full;
        });
    };
    press(Qt::Key_F11);
    EXPECT_TRUE(comesToBe(true));
    press(Qt::Key_F11);
    EXPECT_TRUE(comesToBe(false));
    EXPECT_EQ(window->size(), QSize(520, 420));
    action("Full screen")->trigger();
    EXPECT_TRUE(comesToBe(true));
}

TEST_F(MainWindowTest, TheNextWindowDoesNotFillTheScreen)
{
    options.windowSize.reset();
    open({});
    window->resize(543, 432);
    QTest::qWait(100);
    press(Qt::Key_F11);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window->width() > 543; }));
    window->close();
    open({});
    QTest::qWait(100);
    EXPECT_FALSE(window->isFullScreen());
    EXPECT_EQ(window->size(), QSize(543, 432));
}

TEST_F(MainWindowTest, CanBeMadeTinyAndLongTextsDoNotWidenIt)
{
    options.windowSize = {1, 1};
    open({write("straight.txt", STRAIGHT)});
    QTest::qWait(100);
    const int width = window->width();
    EXPECT_LT(width, 300);
    window->copyCamera();
    QTest::qWait(100);
    EXPECT_EQ(window->width(), width);
}

// Camera

TEST_F(MainWindowTest, AFittedViewIsFittedAnewToAnotherSize)
{
    open({write("straight.txt", STRAIGHT)});
    const auto rodEnds = [this] { return std::make_pair(pixelOf(0, 0).x(), pixelOf(2, 0).x()); };
    for (const QSize size : {QSize(700, 420), QSize(400, 700)}) {
        window->resize(size);
        ASSERT_TRUE(QTest::qWaitFor([&] { return view()->width() == size.width(); }));
        QTest::qWait(50);
        EXPECT_NEAR(rodEnds().first + rodEnds().second, view()->width(), 4);
        EXPECT_GT(rodEnds().second - rodEnds().first, 0.8 * view()->width());
        EXPECT_LT(rodEnds().second - rodEnds().first, view()->width());
    }
    // One that the user moved is left alone.
    press(Qt::Key_D);
    const CameraNumbers moved = window->getCameraNumbers();
    window->resize(600, 500);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view()->width() == 600; }));
    EXPECT_TRUE(window->getCameraNumbers() == moved);
    press(Qt::Key_V);
    EXPECT_NEAR(rodEnds().first + rodEnds().second, view()->width(), 4);
}

TEST_F(MainWindowTest, KeysMoveTheCameraAndMenusDoTheSame)
{
    open({write("straight.txt", STRAIGHT)});
    struct Same
    {
        Qt::Key key;
        Qt::KeyboardModifier modifier;
        const char* text;
    };
    for (const Same& same :
         {Same{Qt::Key_A, Qt::NoModifier, "Left"}, Same{Qt::Key_D, Qt::NoModifier, "Right"},
          Same{Qt::Key_W, Qt::NoModifier, "Up"}, Same{Qt::Key_S, Qt::NoModifier, "Down"},
          Same{Qt::Key_Q, Qt::NoModifier, "Forward"}, Same{Qt::Key_E, Qt::NoModifier, "Backward"},
          Same{Qt::Key_W, Qt::AltModifier, "In"}, Same{Qt::Key_S, Qt::AltModifier, "Out"},
          Same{Qt::Key_D, Qt::AltModifier, "About the horizontal axis"},
          Same{Qt::Key_D, Qt::ControlModifier, "About the vertical axis"},
          Same{Qt::Key_D, Qt::ShiftModifier, "About the viewing axis"},
          Same{Qt::Key_X, Qt::NoModifier, "x, z up"}, Same{Qt::Key_X, Qt::ShiftModifier, "x, y up"},
          Same{Qt::Key_Y, Qt::NoModifier, "y, z up"}, Same{Qt::Key_Y, Qt::ShiftModifier, "y, x up"},
          Same{Qt::Key_Z, Qt::ShiftModifier, "z, x up"},
          Same{Qt::Key_1, Qt::ControlModifier, "From x"},
          Same{Qt::Key_4, Qt::ControlModifier, "From -y"},
          Same{Qt::Key_6, Qt::ControlModifier, "From -z"}}) {
        SCOPED_TRACE(same.text);
        window->viewFrom(Side::Z);
        const CameraNumbers start = window->getCameraNumbers();
        press(same.key, same.modifier);
        const CameraNumbers byKey = window->getCameraNumbers();
        EXPECT_FALSE(byKey == start);
        window->viewFrom(Side::Z);
        action(same.text)->trigger();
        EXPECT_TRUE(window->getCameraNumbers() == byKey);
    }
}

TEST_F(MainWindowTest, OpensAlongTheShortestSideOfTheDataAndHomeReturnsThere)
{
    open({write("upright.txt", "0 0 0\n0 0 1\n0 0 2\n")});
    const CameraNumbers atStart = window->getCameraNumbers();
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window->getCameraNumbers(), atStart) << "from x";
    press(Qt::Key_5, Qt::ControlModifier);
    EXPECT_FALSE(window->getCameraNumbers() == atStart);
    press(Qt::Key_Home);
    EXPECT_EQ(window->getCameraNumbers(), atStart);
}

// A straight rod along x as long as its view from x is wide a hundred times over.
const char* const LONG = "-10 0 0 0 0.70710678118654752 0 0.70710678118654752\n"
                         "0 0 0 0 0.70710678118654752 0 0.70710678118654752\n"
                         "10 0 0 0 0.70710678118654752 0 0.70710678118654752\n";

struct KeyPress
{
    Qt::Key key;
    Qt::KeyboardModifier modifier = Qt::NoModifier;
};

TEST_F(MainWindowTest, HomeIsTheCameraOfTheBeginningWhateverWasPressedBefore)
{
    const std::vector<std::vector<KeyPress>> presses{
        {{Qt::Key_P}},
        {{Qt::Key_1, Qt::ControlModifier}, {Qt::Key_P}},
        {{Qt::Key_P}, {Qt::Key_P}, {Qt::Key_D, Qt::AltModifier}},
        {{Qt::Key_D, Qt::ControlModifier}, {Qt::Key_P}, {Qt::Key_W, Qt::AltModifier}},
        {{Qt::Key_1, Qt::ControlModifier}, {Qt::Key_W, Qt::AltModifier}, {Qt::Key_P}, {Qt::Key_V}}};
    for (const bool perspective : {false, true}) {
        options.camera.perspective = perspective;
        open({write("long.txt", LONG)});
        const CameraNumbers atStart = window->getCameraNumbers();
        ASSERT_EQ(atStart.perspective, perspective);
        for (std::size_t i = 0; i < presses.size(); ++i) {
            for (const KeyPress& pressed : presses[i])
                press(pressed.key, pressed.modifier);
            EXPECT_FALSE(window->getCameraNumbers() == atStart) << i;
            press(Qt::Key_Home);
            EXPECT_EQ(formatCamera(window->getCameraNumbers()), formatCamera(atStart)) << i;
            EXPECT_EQ(action("Perspective")->isChecked(), perspective) << i;
        }
    }
}

TEST_F(MainWindowTest, HomeIsTheCameraAskedForByItsNumbers)
{
    options.camera.numbers = parseCamera("perspective,3,4,5,0.5,0.5,0.5,0.5,6,0.7");
    open({write("straight.txt", STRAIGHT)});
    for (const Qt::Key key : {Qt::Key_P, Qt::Key_V, Qt::Key_X, Qt::Key_Home})
        press(key);
    EXPECT_EQ(formatCamera(window->getCameraNumbers()), formatCamera(*options.camera.numbers));
}

TEST_F(MainWindowTest, TheViewAskedForIsThatOfTheBeginningAndOfHomeInAnyShape)
{
    const std::string file = write("long.txt", LONG);
    options.camera.azimuth = 30;
    options.camera.elevation = 20;
    options.camera.margin = 0.1;
    open({file});
    const auto sizeOf = [this] { return window->getCameraNumbers().size; };
    const float fitted = sizeOf();
    const CameraNumbers plain = window->getCameraNumbers();
    options.camera.zoom = 2;
    options.camera.centre = CameraRequest::Vector(10, 0, 0);
    open({file});
    const CameraNumbers atStart = window->getCameraNumbers();
    EXPECT_FLOAT_EQ(atStart.size, fitted / 2);
    EXPECT_EQ(atStart.orientation, plain.orientation);
    press(Qt::Key_V);
    EXPECT_FLOAT_EQ(sizeOf(), fitted) << "all of it, with its margin";
    press(Qt::Key_P);
    press(Qt::Key_Home);
    EXPECT_EQ(formatCamera(window->getCameraNumbers()), formatCamera(atStart));
    window->resize(420, 620);
    QTest::qWait(200);
    const float narrow = sizeOf();
    press(Qt::Key_Home);
    EXPECT_FLOAT_EQ(sizeOf(), narrow) << "it follows the shape";
    press(Qt::Key_V);
    EXPECT_FLOAT_EQ(sizeOf(), 2 * narrow);
}

TEST_F(MainWindowTest, HomeShowsAllInAWindowOfAnotherShape)
{
    open({write("long.txt", LONG)});
    press(Qt::Key_D, Qt::AltModifier);
    window->resize(420, 620);
    QTest::qWait(200);
    press(Qt::Key_Home);
    const CameraNumbers home = window->getCameraNumbers();
    press(Qt::Key_V);
    EXPECT_EQ(formatCamera(window->getCameraNumbers()), formatCamera(home));
}

TEST_F(MainWindowTest, PerspectiveKeepsTheCameraInFrontOfEverything)
{
    open({write("long.txt", LONG)});
    const std::vector<std::vector<KeyPress>> presses{
        {{Qt::Key_1, Qt::ControlModifier}},
        {{Qt::Key_1, Qt::ControlModifier}, {Qt::Key_W, Qt::AltModifier}},
        {{Qt::Key_2, Qt::ControlModifier}, {Qt::Key_D}},
        {{Qt::Key_1, Qt::ControlModifier}, {Qt::Key_D, Qt::ShiftModifier}}};
    for (std::size_t i = 0; i < presses.size(); ++i) {
        SCOPED_TRACE(i);
        for (const KeyPress& pressed : presses[i])
            press(pressed.key, pressed.modifier);
        const double zoom = zoomField()->text().toDouble();
        const CameraNumbers parallel = window->getCameraNumbers();
        press(Qt::Key_P);
        const CameraNumbers camera = window->getCameraNumbers();
        ASSERT_TRUE(camera.perspective);
        EXPECT_GT(std::abs(camera.position[0]), 10);
        if (i > 0) { // or it is fitted anew
            EXPECT_NEAR(zoomField()->text().toDouble(), zoom, 1e-4 * zoom);
            press(Qt::Key_P);
            EXPECT_NEAR(window->getCameraNumbers().size, parallel.size, 1e-4 * parallel.size);
        } else {
            press(Qt::Key_P);
        }
    }
}

TEST_F(MainWindowTest, PerspectiveIsToggledByKeyMenuAndToolBarAndStillFits)
{
    open({write("straight.txt", STRAIGHT)});
    const CameraNumbers start = window->getCameraNumbers();
    EXPECT_FALSE(start.perspective);
    press(Qt::Key_P);
    EXPECT_TRUE(window->getCameraNumbers().perspective);
    EXPECT_TRUE(action("Perspective")->isChecked());
    // Fitted: seeing all again changes nothing.
    const CameraNumbers perspective = window->getCameraNumbers();
    press(Qt::Key_V);
    EXPECT_TRUE(window->getCameraNumbers() == perspective);
    action("Perspective")->trigger();
    EXPECT_FALSE(window->getCameraNumbers().perspective);
    EXPECT_FALSE(action("Perspective")->isChecked());
    EXPECT_TRUE(window->getCameraNumbers() == start);
    const QList<QAction*> tools = window->findChild<QToolBar*>()->actions();
    EXPECT_TRUE(tools.contains(action("Perspective")));
}

TEST_F(MainWindowTest, TheLegendStaysAsItIsHoweverTheSceneIsSeen)
{
    options.colourBy = "arclength";
    options.colours = BLUE_TO_RED;
    open({write("straight.txt", STRAIGHT)});
    // The axis cross is further to the right.
    const auto legend = [](const QImage& p) {
        return p.copy(0, p.height() * 9 / 10, p.width() * 3 / 4, p.height() / 10);
    };
    const auto blue = [](const QColor& c) { return c.blue() > 250 && c.green() < 100; };
    ASSERT_TRUE(comesToShow([&](const QImage& p) { return count(legend(p), blue) > 20; }));
    QTest::qWait(1000); // for the last frame
    const QImage before = shown();
    for (const Qt::Key key : {Qt::Key_P, Qt::Key_X, Qt::Key_Y, Qt::Key_P, Qt::Key_V}) {
        press(key);
        QTest::qWait(500);
        EXPECT_EQ(legend(shown()), legend(before)) << key;
    }
    press(Qt::Key_X);
    EXPECT_TRUE(comesToShow([&](const QImage& p) { return p != before; }));
}

bool isBlue(const QColor& colour) { return colour.blue() > 200 && colour.green() < 60; }

TEST_F(MainWindowTest, ColoursOfDataAreSwitchedOffAndOn)
{
    options.colourBy = "arclength"; // on the left the rod is blue, and so is the legend
    options.colours = BLUE_TO_RED;
    open({write("straight.txt", STRAIGHT)});
    const auto legend = [](const QImage& p) {
        return p.copy(0, p.height() * 9 / 10, p.width() * 3 / 4, p.height() / 10);
    };
    const auto isColoured = [&](const QImage& p) {
        return count(p, isBlue) > 500 && count(legend(p), isBlue) > 20;
    };
    const auto isPlain = [&](const QImage& p) {
        return count(p, isBlue) < 50 && count(legend(p), isBlue) == 0 &&
               count(p, isRed) > p.width() * p.height() / 50;
    };
    ASSERT_TRUE(comesToShow(isColoured));
    const CameraNumbers withLegend = window->getCameraNumbers();
    QAction* colours = action("Colours of data");
    EXPECT_TRUE(colours->isEnabled() && colours->isCheckable() && colours->isChecked());
    colours->trigger();
    EXPECT_TRUE(comesToShow(isPlain));
    EXPECT_FALSE(colours->isChecked());
    EXPECT_FALSE(window->getCameraNumbers() == withLegend) << "the legend's room is free";

    load({QString::fromStdString(write("other.txt", STRAIGHT))});
    EXPECT_TRUE(comesToShow(isPlain)) << "of other files, too";
    colours->trigger();
    EXPECT_TRUE(comesToShow(isColoured));
    EXPECT_TRUE(window->getCameraNumbers() == withLegend);

    press(Qt::Key_A);
    const CameraNumbers moved = window->getCameraNumbers();
    colours->trigger();
    EXPECT_TRUE(window->getCameraNumbers() == moved) << "what the user moved stays";
}

TEST_F(MainWindowTest, TheDialogOfLightsTellsTheHighlightsOfTheColoursShown)
{
    options.colourBy = "arclength";
    open({write("straight.txt", STRAIGHT)});
    auto* field = window->findChild<QLineEdit*>("shininess1LineEdit");
    ASSERT_EQ(field->text(), "0");
    action("Colours of data")->trigger();
    EXPECT_EQ(field->text(), "10");
    action("Colours of data")->trigger();
    EXPECT_EQ(field->text(), "0");
}

TEST_F(MainWindowTest, AFileWithoutTheScalarIsShownInItsOwnColours)
{
    const std::string heat = "x y z qx qy qz qw heat\n"
                             "0 0 0 0 0.70710678 0 0.70710678 1\n"
                             "2 0 0 0 0.70710678 0 0.70710678 3\n";
    const QString with = QString::fromStdString(write("heat.txt", heat));
    const QString without = QString::fromStdString(write("straight.txt", STRAIGHT));
    options.colourBy = "heat";
    options.colours = BLUE_TO_RED;
    open({with.toStdString()});
    const auto isColoured = [](const QImage& p) { return count(p, isBlue) > 500; };
    ASSERT_TRUE(comesToShow(isColoured));

    options.colourIfPossible = true; // as the program has it from then on
    load({without});
    EXPECT_TRUE(comesToShowTheRod());
    EXPECT_THAT(statusText(), HasSubstr("not coloured"));
    EXPECT_THAT(statusText(), HasSubstr("found no scalar 'heat'"));
    EXPECT_FALSE(action("Colours of data")->isEnabled());
    load({with});
    EXPECT_TRUE(comesToShow(isColoured));
    EXPECT_TRUE(action("Colours of data")->isEnabled());
}

TEST_F(MainWindowTest, TheZoomFieldShowsTheZoomAndTakesAnother)
{
    open({write("straight.txt", STRAIGHT)});
    const auto zoom = [this] {
        return std::min(view()->width(), view()->height()) /
               double(window->getCameraNumbers().size);
    };
    EXPECT_NEAR(zoomField()->text().toDouble(), zoom(), 1e-3 * zoom());
    press(Qt::Key_W, Qt::AltModifier);
    EXPECT_NEAR(zoomField()->text().toDouble(), zoom(), 1e-3 * zoom());

    zoomField()->setFocus();
    zoomField()->selectAll();
    QTest::keyClicks(zoomField(), "50");
    QTest::keyClick(zoomField(), Qt::Key_Return);
    EXPECT_NEAR(zoom(), 50, 1e-3);
    EXPECT_TRUE(window->isVisible());
    // The view has the keys again.
    EXPECT_TRUE(view()->hasFocus());

    zoomField()->setText("much");
    QTest::keyClick(zoomField(), Qt::Key_Return);
    EXPECT_NEAR(zoom(), 50, 1e-3);
    EXPECT_EQ(zoomField()->text(), "50");
}

TEST_F(MainWindowTest, LettersThatAreTypedIntoTheZoomFieldAreNoShortCuts)
{
    open({write("straight.txt", STRAIGHT)});
    zoomField()->setFocus();
    zoomField()->clear();
    QTest::keyClicks(zoomField(), "pv");
    EXPECT_EQ(zoomField()->text(), "pv");
    EXPECT_FALSE(window->getCameraNumbers().perspective);
}

TEST_F(MainWindowTest, AClickIntoTheViewBringsTheKeysThere)
{
    open({write("straight.txt", STRAIGHT)});
    zoomField()->setFocus();
    ASSERT_FALSE(view()->hasFocus());
    QTest::mouseClick(view(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    EXPECT_TRUE(view()->hasFocus());
}

TEST_F(MainWindowTest, CopiesTheCameraForTheCommandLine)
{
    open({write("straight.txt", STRAIGHT)});
    press(Qt::Key_D, Qt::AltModifier);
    press(Qt::Key_P);
    press(Qt::Key_K, Qt::ControlModifier);
    const std::string text = QApplication::clipboard()->text().toStdString();
    ASSERT_THAT(text, StartsWith("--camera "));
    const std::optional<CameraNumbers> copied = parseCamera(text.substr(9));
    ASSERT_TRUE(copied);
    EXPECT_TRUE(*copied == window->getCameraNumbers());
    EXPECT_THAT(statusText(), HasSubstr(text));
}

TEST_F(MainWindowTest, TakesACameraByItsNumbersForTheFirstSceneAlone)
{
    options.camera.numbers = parseCamera("perspective,3,4,5,0.5,0.5,0.5,0.5,6,0.7");
    const std::string file = write("straight.txt", STRAIGHT);
    open({file});
    EXPECT_TRUE(window->getCameraNumbers() == *options.camera.numbers);
    window->resize(600, 500);
    QTest::qWait(100);
    EXPECT_TRUE(window->getCameraNumbers() == *options.camera.numbers);
    load({QString::fromStdString(file)});
    EXPECT_FALSE(window->getCameraNumbers() == *options.camera.numbers);
}

// Picks

TEST_F(MainWindowTest, ThePointThatIsPickedAndItsArcLengthAreTold)
{
    const std::string file = write("straight.txt", STRAIGHT);
    open({file});
    ASSERT_TRUE(comesToShowTheRod());
    for (const double x : {0.25, 1.0, 1.7}) {
        for (const double y : {-0.1, 0.0, 0.15}) {
            SCOPED_TRACE(testing::Message() << x << ", " << y);
            QTest::mouseClick(view(), Qt::RightButton, Qt::NoModifier, pixelOf(x, y));
            const std::string text = statusText();
            ASSERT_THAT(text, StartsWith("point "));
            EXPECT_THAT(text, EndsWith(" – " + file + ":1: rod 1"));
            std::istringstream numbers(text.substr(std::string("point ").size()));
            double px = 0, py = 0, pz = 0, at = 0, length = 0;
            std::string word;
            numbers >> px >> py >> pz >> word >> word >> word >> at >> word >> length;
            const double pixel = 1.5 / zoomField()->text().toDouble();
            EXPECT_NEAR(px, x, pixel);
            EXPECT_NEAR(py, y, pixel);
            EXPECT_NEAR(pz, std::sqrt(0.04 - py * py), 0.02);
            EXPECT_NEAR(at, x, pixel);
            EXPECT_NEAR(at, px, 1e-4);
            EXPECT_DOUBLE_EQ(length, 2);
        }
    }
}

TEST_F(MainWindowTest, AClickBesideEverythingTakesBackWhatWasPicked)
{
    open({write("straight.txt", STRAIGHT)});
    ASSERT_TRUE(comesToShowTheRod());
    const std::string hint = statusText();
    const auto click = [this](Qt::MouseButton button, const QPoint& place) {
        QTest::mouseClick(view(), button, Qt::NoModifier, place);
        return statusText();
    };
    EXPECT_THAT(click(Qt::RightButton, pixelOf(1, 0)), HasSubstr("arc length 1 of 2"));
    // Of a button that does not pick, nothing is to be seen.
    EXPECT_THAT(click(Qt::LeftButton, QPoint(3, 3)), HasSubstr("arc length 1 of 2"));
    EXPECT_EQ(click(Qt::RightButton, QPoint(3, 3)), hint);
}

TEST_F(MainWindowTest, APicksNumbersAreSeenBeforeALongName)
{
    options.windowSize = {800, 420};
    const std::string name(120, 'n');
    const std::string file = write(name + ".txt", STRAIGHT);
    open({file});
    ASSERT_TRUE(comesToShowTheRod());
    QTest::mouseClick(view(), Qt::RightButton, Qt::NoModifier, pixelOf(1, 0));
    const auto* label = window->findChild<QStatusBar*>()->findChild<QLabel*>();
    EXPECT_THAT(label->text().toStdString(), HasSubstr(", arc length 1 of 2"));
    EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->width());
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), statusText());
    EXPECT_THAT(statusText(), EndsWith(file + ":1: rod 1"));
}

TEST_F(MainWindowTest, TheLeftButtonPicksOnlyAfterEscape)
{
    const std::string file = write("straight.txt", STRAIGHT);
    open({file});
    ASSERT_TRUE(comesToShowTheRod());
    const std::string before = statusText();
    QTest::mouseClick(view(), Qt::LeftButton, Qt::NoModifier, pixelOf(1, 0));
    EXPECT_EQ(statusText(), before);
    press(Qt::Key_Escape);
    QTest::mouseClick(view(), Qt::LeftButton, Qt::NoModifier, pixelOf(1, 0));
    EXPECT_THAT(statusText(), HasSubstr("arc length"));
    QTest::mouseClick(view(), Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
    EXPECT_THAT(statusText(), StartsWith("Picking: "));
}

TEST_F(MainWindowTest, TurningOrPickingIsToldByStatusBarAndMenuWhoeverChangesIt)
{
    open({write("straight.txt", STRAIGHT)});
    const std::string turningHint = statusText();
    const auto expectMode = [&](bool picking) {
        EXPECT_EQ(action("Picking instead of turning")->isChecked(), picking);
        EXPECT_TRUE(isToldInStatusBar(picking ? "Picking" : "Turning"));
        EXPECT_FALSE(isToldInStatusBar(picking ? "Turning" : "Picking"));
        if (picking)
            EXPECT_THAT(statusText(), AllOf(StartsWith("Picking: "), HasSubstr("Esc turns again")));
        else
            EXPECT_EQ(statusText(), turningHint);
    };
    expectMode(false);
    press(Qt::Key_Escape);
    expectMode(true);
    action("Picking instead of turning")->trigger();
    expectMode(false);
    action("Picking instead of turning")->trigger();
    expectMode(true);
    // A mode outlives the scene that it was chosen for.
    load({QString::fromStdString(write("second.txt", STRAIGHT))});
    expectMode(true);
    press(Qt::Key_Escape);
    expectMode(false);
    // Of the viewer's own buttons the first is for picking, the second for turning.
    press(Qt::Key_Return);
    QList<QPushButton*> buttons;
    for (QPushButton* button : window->findChildren<QPushButton*>()) {
        if (button->isVisible())
            buttons.append(button);
    }
    ASSERT_GE(buttons.size(), 2);
    buttons[0]->click();
    expectMode(true);
    buttons[1]->click();
    expectMode(false);
    press(Qt::Key_Return);
}

TEST_F(MainWindowTest, WhatIsSaidToBeOffWhilePickingIsOff)
{
    open({write("straight.txt", STRAIGHT)});
    const auto moves = [this](const std::function<void()>& act) {
        window->viewFrom(Side::Z);
        const CameraNumbers before = window->getCameraNumbers();
        act();
        return !(window->getCameraNumbers() == before);
    };
    const auto drag = [this](Qt::MouseButton button) {
        QTest::mousePress(view(), button, Qt::NoModifier, QPoint(200, 100));
        for (int x = 210; x < 260; x += 10) {
            QMouseEvent move(QEvent::MouseMove, QPointF(x, 120), Qt::NoButton, button,
                             Qt::NoModifier);
            QApplication::sendEvent(view(), &move);
        }
        QTest::mouseRelease(view(), button, Qt::NoModifier, QPoint(260, 120));
    };
    const auto turnWheel = [this] {
        const QPoint middle = view()->rect().center();
        QWheelEvent wheel(middle, view()->mapToGlobal(middle), QPoint(), QPoint(0, 120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view(), &wheel);
    };
    for (const bool picking : {false, true}) {
        SCOPED_TRACE(picking);
        EXPECT_EQ(moves([&] { drag(Qt::LeftButton); }), !picking);
        EXPECT_EQ(moves([&] { drag(Qt::MiddleButton); }), !picking);
        EXPECT_EQ(moves(turnWheel), !picking);
        EXPECT_EQ(moves([&] { press(Qt::Key_Left); }), !picking);
        EXPECT_TRUE(moves([&] { press(Qt::Key_D); }));
        EXPECT_TRUE(moves([&] { press(Qt::Key_X); }));
        EXPECT_TRUE(moves([&] { press(Qt::Key_W, Qt::AltModifier); }));
        EXPECT_TRUE(moves([&] { press(Qt::Key_P); }));
        press(Qt::Key_P);
        window->viewFrom(Side::X);
        const CameraNumbers moved = window->getCameraNumbers();
        press(Qt::Key_Home);
        EXPECT_FALSE(window->getCameraNumbers() == moved);
        press(Qt::Key_Escape);
    }
}

TEST_F(MainWindowTest, MenusTickWhatIsOnWhetherAKeyOrTheMenuSwitchedIt)
{
    open({write("straight.txt", STRAIGHT)});
    struct Switch
    {
        const char* text;
        Qt::Key key;
        Qt::KeyboardModifier modifier;
    };
    for (const Switch& one :
         {Switch{"Bounding boxes", Qt::Key_Space, Qt::ShiftModifier},
          Switch{"Frames per second", Qt::Key_F, Qt::NoModifier},
          Switch{"Wheels and buttons", Qt::Key_Return, Qt::NoModifier},
          Switch{"Picking instead of turning", Qt::Key_Escape, Qt::NoModifier}}) {
        SCOPED_TRACE(one.text);
        QAction* entry = action(one.text);
        ASSERT_TRUE(entry->isCheckable());
        EXPECT_FALSE(entry->isChecked());
        press(one.key, one.modifier);
        EXPECT_TRUE(entry->isChecked());
        entry->trigger();
        EXPECT_FALSE(entry->isChecked());
        entry->trigger();
        EXPECT_TRUE(entry->isChecked());
        press(one.key, one.modifier);
        EXPECT_FALSE(entry->isChecked());
    }
}

TEST_F(MainWindowTest, AnotherSceneShowsBoxesAsTheOneBeforeAndTheMenuSaysSo)
{
    open({write("straight.txt", STRAIGHT)});
    press(Qt::Key_Space, Qt::ShiftModifier);
    load({QString::fromStdString(write("second.txt", STRAIGHT))});
    EXPECT_TRUE(action("Bounding boxes")->isChecked());
    press(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_FALSE(action("Bounding boxes")->isChecked());
    load({QString::fromStdString(write("third.txt", STRAIGHT))});
    EXPECT_FALSE(action("Bounding boxes")->isChecked());
}

TEST_F(MainWindowTest, ACtrlClickBringsThePointToTheMiddle)
{
    open({write("straight.txt", STRAIGHT)});
    ASSERT_TRUE(comesToShowTheRod());
    QTest::mouseClick(view(), Qt::LeftButton, Qt::ControlModifier, pixelOf(0.5, 0));
    EXPECT_NEAR(window->getCameraNumbers().position[0], 0.5, 0.02);
}

// Look

// The corner that holds the axes.
QImage axesOf(const QImage& view)
{
    const int side = 2 * int(AxisCross::HALF_SIDE);
    return view.copy(view.width() - side, view.height() - side, side, side);
}

bool isAxis(const QColor& c)
{
    const int most = std::max({c.red(), c.green(), c.blue()});
    const int least = std::min({c.red(), c.green(), c.blue()});
    return most > 120 && most - least > 100;
}

TEST_F(MainWindowTest, AxesInTheCornerAreSeenInTheWindowAloneAndCanBeTakenAway)
{
    options.tubeColour = Colour{0.5, 0.5, 0.5};
    open({write("straight.txt", STRAIGHT)});
    const auto seen = [](const QImage& p) { return count(axesOf(p), isAxis) > 100; };
    const auto notSeen = [](const QImage& p) { return count(p, isAxis) == 0; };
    EXPECT_TRUE(comesToShow(seen));
    EXPECT_EQ(
        count(shown(),
              [](const QColor& c) { return c.red() > 200 && c.green() > 200 && c.blue() < 100; }),
        0)
        << "no yellow";
    press(Qt::Key_B);
    EXPECT_TRUE(comesToShow(
        [&](const QImage& p) { return seen(p) && p.pixelColor(4, 4) == QColor(Qt::black); }));
    const QString file = folder.filePath("picture.png");
    window->savePicture(file);
    EXPECT_TRUE(notSeen(keepIfFailed(QImage(file))));
    action("Axes in the corner")->trigger();
    EXPECT_TRUE(comesToShow(notSeen));
    action("Axes in the corner")->trigger();
    EXPECT_TRUE(comesToShow(seen));
}

TEST_F(MainWindowTest, AxesAreAboveALegendWhereTheViewIsTooNarrowForBoth)
{
    ASSERT_EQ(settingOf("colour-by").read("arclength", options), "");
    ASSERT_EQ(settingOf("colours").read("black,white", options), "");
    options.windowSize = {420, 600};
    open({write("straight.txt", STRAIGHT)});
    const int side = 2 * int(AxisCross::HALF_SIDE);
    const auto inCorner = [](const QImage& p) { return count(axesOf(p), isAxis) > 100; };
    const auto above = [&](const QImage& p) {
        const int room = int(std::ceil(roomOf(LegendPlace::BOTTOM, 0).bottom * float(p.height())));
        const QImage there = p.copy(p.width() - side, p.height() - side - room, side, side);
        return count(p, isAxis) > 100 && count(there, isAxis) == count(p, isAxis);
    };
    EXPECT_TRUE(comesToShow(above));
    action("Colours of data")->trigger();
    EXPECT_TRUE(comesToShow(inCorner));
    action("Colours of data")->trigger();
    EXPECT_TRUE(comesToShow(above));
    window->resize(900, 600);
    EXPECT_TRUE(comesToShow(inCorner));
}

TEST_F(MainWindowTest, AxesTurnWithTheCamera)
{
    options.tubeColour = Colour{0.5, 0.5, 0.5};
    open({write("straight.txt", STRAIGHT)});
    const auto red = [](const QColor& c) { return c.red() > 180 && c.green() < 100; };
    const auto redWidth = [&](const QImage& p) {
        const QImage axes = axesOf(p);
        int columns = 0;
        for (int x = 0; x < axes.width(); ++x)
            columns += count(axes.copy(x, 0, 1, axes.height()), red) > 0;
        return columns;
    };
    EXPECT_TRUE(comesToShow([&](const QImage& p) { return redWidth(p) > 30; }));
    press(Qt::Key_P);
    press(Qt::Key_X);
    EXPECT_TRUE(comesToShow([&](const QImage& p) { return redWidth(p) > 0 && redWidth(p) < 20; }));
    press(Qt::Key_Y);
    EXPECT_TRUE(comesToShow([&](const QImage& p) { return redWidth(p) > 30; }));
}

TEST_F(MainWindowTest, ACommaTypedIntoANumberIsAPoint)
{
    open({write("straight.txt", STRAIGHT)});
    zoomField()->setFocus();
    zoomField()->selectAll();
    QTest::keyClicks(zoomField(), "50,5");
    QTest::keyClick(zoomField(), Qt::Key_Return);
    EXPECT_EQ(zoomField()->text(), "50.5");

    ReadReport report;
    DataScene* scene = loadScene({write("straight.txt", STRAIGHT)}, options, report);
    window->showScene(scene, {});
    press(Qt::Key_L);
    auto* lights = window->findChild<LightingDialog*>();
    auto* intensity = lights->findChild<QLineEdit*>("intensity2LineEdit");
    intensity->selectAll();
    QTest::keyClicks(intensity, "0,25");
    QTest::keyClick(intensity, Qt::Key_Return);
    EXPECT_EQ(intensity->text(), "0.25");
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    scene->getLightingParameters(directions, intensities, shininess);
    EXPECT_EQ(intensities->value[1], 0.25f);

    const Answers answers([](QWidget& dialog) {
        auto* factor = dialog.findChild<QDoubleSpinBox*>("multDoubleSpinBox");
        factor->selectAll();
        QTest::keyClicks(factor, "1,5");
        EXPECT_EQ(factor->value(), 1.5);
    });
    press(Qt::Key_I);
}

TEST_F(MainWindowTest, TheBackgroundKeyChangesBetweenWhiteAndBlackAndTheMenuAgain)
{
    open({write("straight.txt", STRAIGHT)});
    const auto corner = [](const QColor& colour) {
        return [colour](const QImage& p) { return p.pixelColor(4, 4) == colour; };
    };
    EXPECT_TRUE(comesToShow(corner(Qt::white)));
    press(Qt::Key_B);
    EXPECT_TRUE(comesToShow(corner(Qt::black)));
    action("White or black background")->trigger();
    EXPECT_TRUE(comesToShow(corner(Qt::white)));
}

// The whole table of actions, in a real window.

class ActionsTest : public MainWindowTest
{
protected:
    class OpenWindow : public MainWindow
    {
    public:
        using MainWindow::MainWindow;
        using MainWindow::viewer;
    };

    void SetUp() override { openAnew(); }

    void openAnew()
    {
        auto made = std::make_unique<OpenWindow>(options, loader());
        opened = made.get();
        window = std::move(made);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        // Its parts may still be given their places, after which what is fitted fits otherwise.
        QSize last;
        ASSERT_TRUE(comesTo([&] {
            QTest::qWait(30);
            return std::exchange(last, view()->size()) == view()->size();
        }));
        reset();
    }

    // A fresh scene in the window as it was.
    void reset()
    {
        opened->viewer->setDecoration(FALSE); // before the scene is fitted
        window->setStyle(options);
        ReadReport report;
        const std::string file = write("straight.txt", STRAIGHT);
        scene = loadScene({file}, options, report);
        window->showScene(scene, {file});
        opened->viewer->stepCamera(SoQtGeneralViewer::ORBIT_VERTICALLY);
        opened->viewer->stepCamera(SoQtGeneralViewer::ORBIT_HORIZONTALLY);
        opened->viewer->changeLineWidth(1);
        opened->viewer->setWhiteBackground(true);
        opened->viewer->setViewing(TRUE);
        qunsetenv("COIN_SHOW_FPS_COUNTER");
        window->update3DZoom();
    }

    // Of all that the viewer's keys change.
    std::string state() const
    {
        std::ostringstream text;
        text << formatCamera(window->getCameraNumbers()) << " shading " << scene->getShading()
             << " boxes " << scene->isShowingBoundingBoxes() << " lines " << scene->getLineWidth()
             << " background " << opened->viewer->getBackgroundColor().getPackedValue()
             << " wheels " << bool(opened->viewer->isDecoration()) << " turning "
             << bool(opened->viewer->isViewing()) << " frames "
             << SoQtGeneralViewer::isShowingFramesPerSecond() << " dialogs " << dialogs;
        for (const auto* lights : window->findChildren<LightingDialog*>())
            text << " lights " << lights->isVisible();
        for (const QAction* entry : window->findChildren<QAction*>())
            text << (entry->isChecked() ? '1' : '0');
        text << " zoom " << zoomField()->text().toStdString();
        return text.str();
    }

    // What the table calls by its text and keys.
    QAction* entryOf(const Action& told) const
    {
        for (QAction* candidate : window->findChildren<QAction*>()) {
            const QString text = candidate->text().section('\t', 0, 0);
            const bool hasShortcut = candidate->shortcut() == QKeySequence(told.keys);
            const bool tellsMore = *told.keys && hasShortcut && text.startsWith(told.text);
            if ((text == told.text || tellsMore) &&
                (hasShortcut || candidate->text().section('\t', 1) == told.keys))
                return candidate;
        }
        return nullptr;
    }

    void pressKeysOf(const Action& told) const
    {
        const int key = QKeySequence(told.keys)[0];
        QTest::sendKeyEvent(QTest::Click, view(), Qt::Key(key & ~Qt::KeyboardModifierMask),
                            QString(), Qt::KeyboardModifiers(key & Qt::KeyboardModifierMask));
        QApplication::processEvents();
    }

    template <typename Try>
    void tryEach(const Try& tryAction)
    {
        for (const ActionGroup& group : actions()) {
            for (const Action& told : group.actions) {
                if (!told.text)
                    continue;
                SCOPED_TRACE(std::string(group.title) + " " + told.text);
                QAction* entry = entryOf(told);
                ASSERT_TRUE(entry);
                tryAction(told, *entry);
            }
        }
    }

    OpenWindow* opened = nullptr;
    DataScene* scene = nullptr; // kept by the viewer
    int dialogs = 0;            // that came up
};

TEST_F(ActionsTest, AllAreInTheMenusAndThoseOfTheToolBarThereAndNothingElse)
{
    int entries = 0, buttons = 0;
    const auto* tools = window->findChild<QToolBar*>();
    tryEach([&](const Action& told, QAction& entry) {
        ++entries;
        buttons += (told.traits & IN_TOOL_BAR) != 0;
        EXPECT_EQ(entry.isCheckable(), (told.traits & CHECKABLE) != 0);
        EXPECT_EQ(tools->actions().contains(&entry), (told.traits & IN_TOOL_BAR) != 0);
    });
    // A user's own files and views.
    const auto isFilled = [](const QMenu& menu) {
        return menu.title() == "Open &recent" || menu.title() == "&Named views";
    };
    const auto countEntries = [isFilled](const QList<QAction*>& held) {
        return std::count_if(held.begin(), held.end(), [isFilled](const QAction* one) {
            return !one->isSeparator() && (!one->menu() || isFilled(*one->menu()));
        });
    };
    EXPECT_EQ(countEntries(tools->actions()), buttons);
    std::vector<std::string> texts;
    for (const QAction* button : tools->actions()) {
        if (!button->isSeparator())
            texts.push_back(button->iconText().toStdString());
    }
    EXPECT_THAT(texts,
                testing::ElementsAre("Open", "Save a picture", "View all", "From x", "From y",
                                     "From z", "Perspective", "Draw style", "Lights", "About"));
    int inMenus = 0;
    for (const QMenu* menu : window->findChild<QMenuBar*>()->findChildren<QMenu*>())
        inMenus += isFilled(*menu) ? 0 : int(countEntries(menu->actions()));
    EXPECT_EQ(inMenus, entries);
}

TEST_F(ActionsTest, EveryKeyOfTheViewDoesWhatItsEntryDoes)
{
    const Answers answers([this](QWidget&) { ++dialogs; });
    int tried = 0;
    tryEach([&](const Action& told, QAction& entry) {
        if (!(told.traits & KEY_OF_VIEWER))
            return;
        ++tried;
        const auto stateAfter = [&](const std::function<void()>& act) {
            reset();
            dialogs = 0;
            act();
            return state();
        };
        const std::string before = stateAfter([] {});
        const std::string byEntry = stateAfter([&] { entry.trigger(); });
        EXPECT_NE(byEntry, before);
        EXPECT_EQ(stateAfter([&] { pressKeysOf(told); }), byEntry);
    });
    EXPECT_GE(tried, 30);
}

TEST_F(ActionsTest, EveryOtherKeyTriggersItsEntryOnce)
{
    const Answers answers;
    int tried = 0;
    for (const ActionGroup& group : actions()) {
        for (const Action& told : group.actions) {
            if (!told.text || !*told.keys || (told.traits & KEY_OF_VIEWER))
                continue;
            SCOPED_TRACE(told.text);
            ++tried;
            openAnew(); // what the last one did may be a dialog, or have closed it
            QAction* entry = entryOf(told);
            ASSERT_TRUE(entry);
            entry->setEnabled(true); // to stop loading, too
            int triggered = 0;
            QObject::connect(entry, &QAction::triggered, [&] { ++triggered; });
            pressKeysOf(told);
            EXPECT_EQ(triggered, 1);
            waitUntilLoaded();
            entry->disconnect();
        }
    }
    EXPECT_GE(tried, 37);
}

TEST_F(MainWindowTest, EveryKeyThatTheViewKnowsStandsOnTheHelpPage)
{
    open({write("straight.txt", STRAIGHT)});
    std::string page;
    for (const KeyGroup& group : keyHelp()) {
        for (const KeyHelp& help : group.keys)
            page += " " + help.key + " ";
    }
    int moving = 0;
    const auto tryKey = [&](int key, const std::string& name) {
        SCOPED_TRACE(name);
        window->viewFrom(Side::Z);
        press(Qt::Key_D, Qt::ShiftModifier);
        press(Qt::Key_D);
        const CameraNumbers before = window->getCameraNumbers();
        QTest::sendKeyEvent(QTest::Click, view(), Qt::Key(key), QString(), Qt::NoModifier);
        if (window->getCameraNumbers() == before)
            return;
        ++moving;
        EXPECT_THAT(page, HasSubstr(" " + name));
    };
    for (int key = Qt::Key_A; key <= Qt::Key_Z; ++key) {
        if (key != Qt::Key_I && key != Qt::Key_L) // which bring up windows of their own
            tryKey(key, std::string(1, char('A' + key - Qt::Key_A)));
    }
    for (int key = Qt::Key_0; key <= Qt::Key_9; ++key)
        tryKey(key, std::string(1, char('0' + key - Qt::Key_0)));
    for (const int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down})
        tryKey(key, "arrows");
    for (const auto& [key, name] :
         std::vector<std::pair<int, std::string>>{{Qt::Key_Home, "Home"},
                                                  {Qt::Key_End, "End"},
                                                  {Qt::Key_PageUp, "Page up"},
                                                  {Qt::Key_PageDown, "Page down"},
                                                  {Qt::Key_Insert, "Insert"},
                                                  {Qt::Key_Delete, "Delete"},
                                                  {Qt::Key_Backspace, "Backspace"},
                                                  {Qt::Key_Tab, "Tab"},
                                                  {Qt::Key_Plus, "+"},
                                                  {Qt::Key_Comma, ","},
                                                  {Qt::Key_Period, "."}})
        tryKey(key, name);
    EXPECT_GE(moving, 16); // A D W S Q E X Y Z V P, Home and the arrows
}

TEST_F(MainWindowTest, ShowsEveryKeyOnOnePageAndSaysWhatItIs)
{
    open({});
    press(Qt::Key_F1);
    action("About strandview")->trigger();
    std::string texts;
    for (QDialog* box : window->findChildren<QDialog*>()) {
        if (!box->isVisible())
            continue;
        EXPECT_FALSE(box->isModal());
        for (const QLabel* label : box->findChildren<QLabel*>()) {
            EXPECT_GE(label->width(), label->sizeHint().width());
            EXPECT_GE(label->height(), label->sizeHint().height());
            texts += label->text().toStdString();
        }
        // Small screens have 1280 by 720 pixels.
        EXPECT_LT(box->width(), 1200);
        EXPECT_LT(box->height(), 640);
        box->close();
    }
    for (const KeyGroup& group : keyHelp()) {
        for (const KeyHelp& help : group.keys)
            EXPECT_THAT(texts,
                        HasSubstr(QString::fromStdString(help.does).toHtmlEscaped().toStdString()));
    }
    EXPECT_THAT(texts, HasSubstr("GPL-3.0-or-later"));
}

TEST_F(MainWindowTest, ThePageOfKeysIsNotLargerThanTheScreenAndCanBeScrolled)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSize(3 * usual.pointSize());
    open({});
    QApplication::setFont(large);
    press(Qt::Key_F1);
    const auto boxes = window->findChildren<QDialog*>();
    const auto shown = std::find_if(boxes.begin(), boxes.end(),
                                    [](const QDialog* dialog) { return dialog->isVisible(); });
    ASSERT_NE(shown, boxes.end());
    const QDialog* box = *shown;
    EXPECT_TRUE(QTest::qWaitFor([box] {
        return box->frameGeometry() != box->geometry() &&
               box->screen()->availableGeometry().contains(box->frameGeometry());
    }));
    const auto* area = box->findChild<QScrollArea*>();
    ASSERT_TRUE(area);
    EXPECT_GT(area->widget()->width(), box->width());
    EXPECT_GT(area->horizontalScrollBar()->maximum(), 0);
    QApplication::setFont(usual);
}

// Pictures

TEST_F(MainWindowTest, ThePictureOfACopiedCameraIsWhatTheWindowShows)
{
    options.showRibbon = true;
    const std::string file = write("helix.txt", [] {
        std::ostringstream table;
        for (int i = 0; i < 60; ++i)
            table << std::cos(0.2 * i) << ' ' << std::sin(0.2 * i) << ' ' << 0.05 * i << '\n';
        return table.str();
    }());
    open({file});
    const std::string out = folder.filePath("picture.png").toStdString();
    for (const bool perspective : {false, true}) {
        SCOPED_TRACE(perspective);
        window->setPerspective(perspective);
        press(Qt::Key_D, Qt::AltModifier);
        press(Qt::Key_A, Qt::ControlModifier);
        press(Qt::Key_W, Qt::AltModifier);
        ASSERT_TRUE(comesToShowTheRod());
        QTest::qWait(1000); // for the last frame
        const QImage seen = shown();
        const ProgramRun run = runProgram(
            STRANDVIEW_PROGRAM, {"--render", out, "--size",
                                 std::to_string(seen.width()) + "x" + std::to_string(seen.height()),
                                 "--radius", "0.2", "--tube-colour", "#ff0000", "--ribbon",
                                 "--camera", formatCamera(window->getCameraNumbers()), file});
        ASSERT_EQ(run.status, 0) << run.error;
        const QImage rendered(QString::fromStdString(out));
        ASSERT_EQ(rendered.size(), seen.size());
        int covered = 0, differing = 0;
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                // The axis cross is the window's alone.
                if (x > 0.75 * seen.width() && y > 0.65 * seen.height())
                    continue;
                covered += rendered.pixelColor(x, y) != QColor(Qt::white);
                differing += difference(rendered.pixelColor(x, y), seen.pixelColor(x, y)) > 12;
            }
        }
        RecordProperty(perspective ? "perspective" : "orthographic", differing);
        EXPECT_GT(covered, 20000);
        EXPECT_LT(differing, covered / 20);
    }
}

TEST_F(MainWindowTest, SavesThePictureThatItShows)
{
    open({write("straight.txt", STRAIGHT)});
    press(Qt::Key_B);
    ASSERT_TRUE(comesToShowTheRod());
    const QString file = folder.filePath("saved.png");
    window->savePicture(file);
    EXPECT_EQ(statusText(), "Saved – " + file.toStdString());
    const QImage saved(file);
    EXPECT_EQ(saved.size(), view()->size());
    EXPECT_EQ(saved.pixelColor(3, 3), QColor(Qt::black));
    const int red = count(saved, isRed);
    EXPECT_NEAR(count(shown(), isRed), red, 0.05 * red);
}

// Run as it was copied, but for the program's folder.
TEST_F(MainWindowTest, TheCopiedCommandMakesTheSavedPictureByteForByte)
{
    options = {};
    options.windowSize = {900, 720};
    options.showRibbon = true;
    std::string bent = "x y z load\n";
    for (int i = 0; i < 30; ++i)
        bent += std::to_string(0.1 * i) + " " + std::to_string(std::sin(0.2 * i)) + " " +
                std::to_string(0.05 * i) + " " + std::to_string(i % 7) + "\n";
    open({write("my rod.txt", bent), write("straight.txt", STRAIGHT)});
    const std::vector<std::pair<const char*, const char*>> styles[] = {
        {},
        {{"radius", "0.07"}, {"tube-colour", "crimson"}, {"background", "black"}},
        {{"colour-by", "load"}, {"colours", "batlow_r"}, {"range", "1:"}},
        {{"colour-by", "curvature"}, {"ribbon", "off"}, {"slices", "7"}},
        {{"thing", "rod 1: colour=#00ff00; rod 2: hidden"}},
        {{"thing", "rod 1: radius=0.06, no ribbon, slices=5; rod 2: no tube, two-sided"}},
        {{"transparency", "0.6"}, {"thing", "rod 1: transparency=0.3"}},
        {{"thing", "rod 1: shown, name=\"it's, mine\"; others: hidden"}}};
    for (const auto& style : styles) {
        StyleRequest next;
        for (const auto& [name, value] : style)
            ASSERT_EQ(settingOf(name).read(value, next), "");
        SCOPED_TRACE(testing::PrintToString(argumentsOf(next)));
        window->setStyle(next);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !window->isRestyling(); }));
        press(Qt::Key_D, Qt::AltModifier); // another camera each time
        const QString saved = folder.filePath("saved.png");
        window->savePicture(saved);
        window->copyCommand();
        std::string line = QApplication::clipboard()->text().toStdString();
        ASSERT_THAT(line, StartsWith("strandview "));
        line.replace(0, std::string("strandview").size(), STRANDVIEW_PROGRAM);
        const ProgramRun run =
            runProgram("/bin/sh", {"-c", "cd " + folder.path().toStdString() + " && " + line});
        ASSERT_EQ(run.status, 0) << run.error << line;
        QFile one(saved), other(folder.filePath("picture.png"));
        ASSERT_TRUE(one.open(QIODevice::ReadOnly) && other.open(QIODevice::ReadOnly));
        EXPECT_TRUE(one.readAll() == other.readAll());
        const QImage picture(saved);
        const QColor empty = picture.pixelColor(1, 1);
        EXPECT_GT(count(picture, [&empty](const QColor& c) { return c != empty; }), 3000);
    }
}

TEST_F(MainWindowTest, TheLinesOfASavedPictureAreAsWideAsThoseOfTheWindow)
{
    options.slices = 8;
    options.subsegments = 1;
    options.tubeColour = Colour{0, 0, 0};
    open({write("straight.txt", STRAIGHT)});
    press(Qt::Key_Space);
    press(Qt::Key_Space); // wireframe
    for (const int thicker : {0, 30}) {
        for (int i = 0; i < thicker; ++i)
            press(Qt::Key_Equal);
        const QString file = folder.filePath("lines.png");
        window->savePicture(file);
        // How much ink there is, but for the axis cross.
        const auto ink = [](const QImage& picture) {
            double sum = 0;
            for (int y = 0; y < picture.height() * 13 / 20; ++y) {
                for (int x = 0; x < picture.width() * 3 / 4; ++x)
                    sum += 1 - picture.pixelColor(x, y).lightnessF();
            }
            return sum;
        };
        const double saved = ink(keepIfFailed(QImage(file)));
        EXPECT_GT(saved, 500);
        EXPECT_TRUE(comesToShow([&](const QImage& p) {
            return std::abs(ink(p) - saved) <= 0.15 * ink(p);
        })) << thicker;
    }
}

TEST_F(MainWindowTest, TheTicksOfASavedLegendAreAsWideAsThoseOfTheWindow)
{
    options.colourBy = "arclength"; // 0 to 2: five ticks
    open({write("straight.txt", STRAIGHT)});
    const QString file = folder.filePath("legend.png");
    // Twice, as a picture leaves the scene as it was.
    for (int i = 0; i < 2; ++i) {
        window->savePicture(file);
        // How much ink there is in a row between the frame and the numbers.
        const auto ticks = [](const QImage& picture) {
            const int y = int(picture.height() * (1 + 0.88) / 2);
            double sum = 0;
            for (int x = 0; x < picture.width() * 3 / 4; ++x)
                sum += 1 - picture.pixelColor(x, y).lightnessF();
            return sum;
        };
        EXPECT_TRUE(
            comesToShow([&](const QImage& p) { return std::abs(ticks(p) - 5 * 2) <= 0.1; }));
        EXPECT_NEAR(ticks(keepIfFailed(QImage(file))), 5 * 2, 0.1);
    }
}

TEST_F(MainWindowTest, ASavedPictureGetsAnEndingAndNothingIsOverwrittenUnasked)
{
    open({write("straight.txt", STRAIGHT)});
    const std::string old = write("picture.png", "the old picture");
    bool asked = false;
    const Answers answers([&](QWidget& dialog) {
        if (auto* box = qobject_cast<QMessageBox*>(&dialog)) {
            asked = true;
            box->button(QMessageBox::No)->click();
        } else if (auto* chooser = qobject_cast<QFileDialog*>(&dialog)) {
            if (asked)
                return; // closes
            chooser->findChild<QLineEdit*>()->setText(folder.filePath("picture"));
            QMetaObject::invokeMethod(chooser, "accept");
        } else if (auto* save = dialog.findChild<QPushButton*>("pictureSave")) {
            save->click();
        }
    });
    press(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(asked);
    std::ifstream stream(old);
    std::string text;
    std::getline(stream, text);
    EXPECT_EQ(text, "the old picture");
}

TEST_F(MainWindowTest, APictureThatCannotBeSavedIsToldAndLeavesNothing)
{
    open({write("straight.txt", STRAIGHT)});
    const QStringList before = QDir(folder.path()).entryList();
    Answers answers;
    for (const char* name : {"picture.xyz", "picture", "missing/picture.png"})
        window->savePicture(folder.filePath(name));
    EXPECT_EQ(answers.texts.size(), 3u);
    EXPECT_EQ(QDir(folder.path()).entryList(), before);
}

} // namespace

} // namespace strandview
