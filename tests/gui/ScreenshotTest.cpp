// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoQtGeneralViewer.h>

#include <cmath>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QGLWidget>
#include <QImageReader>
#include <QLineEdit>
#include <QSpinBox>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <Inventor/C/glue/gl.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>

#include <ScreenshotDialog.h>

#include "ViewerWindow.h"
#include "support/keepPictures.h"

using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// The renderer is one per process, so a test says itself which background it has, and
// those that need a renderer that nobody has used run in processes of their own.
class ScreenshotTest : public ViewerWindowTest
{
protected:
    void SetUp() override
    {
        testing::FLAGS_gtest_death_test_style = "threadsafe";
        ViewerWindowTest::SetUp();
        ASSERT_TRUE(folder.isValid());
        dialog = window->findChild<ScreenshotDialog*>();
        ASSERT_TRUE(dialog);
        field<QLineEdit>("dirLineEdit")->setText(folder.path());
        // The cube is 150 x 150 of the 400 x 300 pixels.
        auto* camera = static_cast<SoOrthographicCamera*>(viewer->getCamera());
        camera->height = 4;
    }

    template <typename Widget>
    Widget* field(const char* name) const
    {
        return dialog->findChild<Widget*>(name);
    }
    // Takes a screenshot of a size and with an extension, empty for what is offered.
    void take(int width, int height, const QString& extension = QString())
    {
        answers.fillIn = [=](ScreenshotDialog& shown) {
            shown.setImageSize(width, height);
            if (!extension.isEmpty())
                field<QComboBox>("extComboBox")->setCurrentText(extension);
        };
        answers.boxes.clear();
        viewer->renderOffscreen();
    }
    // Of a test's own process, which does not destroy the test.
    [[noreturn]] void endProcess(bool right)
    {
        folder.remove();
        std::_Exit(right ? 0 : 1);
    }
    void useIndex() { field<QCheckBox>("indexCheckBox")->setChecked(true); }
    QString path(const QString& name) const { return folder.filePath(name); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files); }

    void expectBox(QMessageBox::Icon icon, const QString& title, const QString& text,
                   QMessageBox::StandardButtons buttons = QMessageBox::Ok, int number = 0) const
    {
        ASSERT_GT(int(answers.boxes.size()), number);
        const ModalAnswers::Box& box = answers.boxes[number];
        EXPECT_EQ(box.icon, icon);
        EXPECT_EQ(box.title.toStdString(), title.toStdString());
        EXPECT_EQ(box.text.toStdString(), text.toStdString());
        EXPECT_EQ(box.buttons, buttons);
        EXPECT_EQ(box.parent, viewer->getBaseWidget());
    }
    void expectWritten(const QString& name, int number = 0) const
    {
        expectBox(QMessageBox::Information, "Screenshot", "Output written to <br />" + path(name),
                  QMessageBox::Ok, number);
        EXPECT_EQ(int(answers.boxes.size()), number + 1);
    }

    QTemporaryDir folder;
    ScreenshotDialog* dialog = nullptr;
    ModalAnswers answers;
};

QImage read(const QString& path)
{
    QImageReader reader(path);
    const QImage image = reader.read();
    EXPECT_FALSE(image.isNull()) << path.toStdString() << ": "
                                 << reader.errorString().toStdString();
    return keepIfFailed(image);
}

QByteArray firstBytes(const QString& path, int count)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(count) : QByteArray();
}

// How many pixels of a line, or of a column, are rather red.
int redInRow(const QImage& image, int y)
{
    int count = 0;
    for (int x = 0; x < image.width(); ++x)
        count += image.pixelColor(x, y).red() > 128 && image.pixelColor(x, y).green() < 128;
    return count;
}
int redInColumn(const QImage& image, int x)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        count += image.pixelColor(x, y).red() > 128 && image.pixelColor(x, y).green() < 128;
    return count;
}

cc_glglue_offscreen_cb_functions NO_CONTEXTS = {
    [](unsigned int, unsigned int) -> void* { return nullptr; },
    [](void*) -> SbBool { return FALSE; }, [](void*) {}, [](void*) {}};

} // namespace

// What is asked

TEST_F(ScreenshotTest, OffersEachExtensionOnceInOrderAndPngAtFirst)
{
    QStringList offered;
    QString current;
    answers.accepts = false;
    answers.fillIn = [&](ScreenshotDialog& shown) {
        const auto* box = shown.findChild<QComboBox*>("extComboBox");
        for (int i = 0; i < box->count(); ++i)
            offered.append(box->itemText(i));
        current = shown.getExtension();
    };
    viewer->renderOffscreen();
    EXPECT_EQ(current, "png");
    for (const char* extension : {"jpg", "png", "ps", "rgb"})
        EXPECT_EQ(offered.count(extension), 1) << extension;
    QStringList sorted = offered;
    sorted.sort();
    EXPECT_EQ(offered, sorted);
    EXPECT_EQ(sorted.removeDuplicates(), 0);
    // All that the renderer says it can write.
    SoOffscreenRenderer* renderer = SoQtGeneralViewer::getOSRenderer();
    for (const QString& extension : offered) {
        if (extension != "ps") {
            EXPECT_TRUE(renderer->isWriteSupported(extension.toLatin1().constData()));
        }
    }
}

TEST_F(ScreenshotTest, KeepsTheExtensionFromOneToTheNext)
{
    take(40, 30, "jpg");
    QString current;
    answers.accepts = false;
    answers.fillIn = [&](ScreenshotDialog& shown) { current = shown.getExtension(); };
    viewer->renderOffscreen();
    EXPECT_EQ(current, "jpg");
}

TEST_F(ScreenshotTest, OffersTheSizeOfTheViewInDevicePixels)
{
    const int ratio = area->devicePixelRatio();
    int width = 0, height = 0;
    answers.accepts = false;
    answers.fillIn = [&](ScreenshotDialog& shown) { shown.getImageSize(width, height); };
    viewer->renderOffscreen();
    EXPECT_EQ(width, 400 * ratio);
    EXPECT_EQ(height, 300 * ratio);
    resizeArea(320, 200);
    field<QDoubleSpinBox>("multDoubleSpinBox")->setValue(2.5);
    viewer->renderOffscreen();
    EXPECT_EQ(width, 800 * ratio);
    EXPECT_EQ(height, 500 * ratio);
}

TEST_F(ScreenshotTest, TheKeyIAsksUnderAnyModifier)
{
    answers.accepts = false;
    for (int modifiers = 0; modifiers < 8; ++modifiers)
        EXPECT_TRUE(press(SoKeyboardEvent::I, modifiers));
    EXPECT_EQ(answers.dialogs, 8);
    EXPECT_THAT(answers.boxes, IsEmpty());
}

TEST_F(ScreenshotTest, ACancelledOneDoesNothing)
{
    useIndex();
    dialog->setIndex(7);
    answers.accepts = false;
    take(40, 30);
    EXPECT_EQ(answers.dialogs, 1);
    EXPECT_THAT(answers.boxes, IsEmpty());
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_EQ(dialog->getIndex(), 7);
}

// What is written

TEST_F(ScreenshotTest, WritesThePictureAndSaysSo)
{
    take(80, 60);
    expectWritten("screenshot.png");
    const QImage image = read(path("screenshot.png"));
    EXPECT_EQ(image.size(), QSize(80, 60));
    EXPECT_EQ(image.pixelColor(40, 30), QColor(Qt::red));
    EXPECT_EQ(redInRow(image, 30), 30);
    EXPECT_EQ(redInColumn(image, 40), 30);
}

TEST_F(ScreenshotTest, ShowsWhatTheWindowShows)
{
    for (const bool perspective : {false, true}) {
        if (perspective)
            viewer->setCameraType(SoPerspectiveCamera::getClassTypeId());
        // Out of the middle, and turned.
        viewer->rotateCamera(SbVec3f(0.3f, 1, 0), 0.5);
        viewer->moveCamera(SbVec3f(0.12f, -0.07f, 0));
        const SbVec2s size = viewer->getGLSize();
        take(2 * size[0], 2 * size[1]);
        const QImage shot =
            read(path("screenshot.png"))
                .scaled(size[0], size[1], Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                .convertToFormat(QImage::Format_RGB32);
        int differing = 0, red = 0;
        // The window is drawn anew after the dialog.
        waitUntil(
            [&] {
                viewer->scheduleRedraw();
                const QImage grab = grabArea().convertToFormat(QImage::Format_RGB32);
                differing = red = 0;
                for (int y = 0; y < grab.height(); ++y) {
                    for (int x = 0; x < grab.width(); ++x) {
                        red += qRed(grab.pixel(x, y)) > 128;
                        differing +=
                            std::abs(qRed(grab.pixel(x, y)) - qRed(shot.pixel(x, y))) > 100;
                    }
                }
                return differing < red / 100;
            },
            3000);
        EXPECT_GT(red, size[0] * size[1] / 10);
        // The outline's pixels alone may differ.
        EXPECT_LT(differing, red / 100);
    }
}

TEST_F(ScreenshotTest, KeepsTheFramingInWideAndInTallPictures)
{
    // The smaller side shows the camera's height of 4, the cube is half of that.
    const int sizes[][2] = {{300, 100}, {100, 300}, {200, 200}};
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(width);
        take(width, height);
        const QImage image = read(path("screenshot.png"));
        EXPECT_EQ(image.size(), QSize(width, height));
        EXPECT_EQ(redInRow(image, height / 2), std::min(width, height) / 2);
        EXPECT_EQ(redInColumn(image, width / 2), std::min(width, height) / 2);
    }
}

TEST_F(ScreenshotTest, RendersCameraAndSceneAloneAndMapsTheViewportMeanwhile)
{
    struct Seen
    {
        SoCamera* camera;
        std::vector<int> mappings;
        std::vector<SoNode*> graph;
    } seen{viewer->getCamera(), {}, {}};
    auto* callback = new SoCallback;
    callback->setCallback(
        [](void* data, SoAction* action) {
            auto* result = static_cast<Seen*>(data);
            auto* head = action->getCurPath()->getHead();
            // The window's own frames have more above the scene.
            if (!action->isOfType(SoGLRenderAction::getClassTypeId()) ||
                head->getTypeId() != SoSeparator::getClassTypeId() ||
                static_cast<SoSeparator*>(head)->getChild(0) != result->camera)
                return;
            result->mappings.push_back(result->camera->viewportMapping.getValue());
            const SoChildList* children = head->getChildren();
            result->graph.clear();
            for (int i = 0; i < children->getLength(); ++i)
                result->graph.push_back((*children)[i]);
        },
        &seen);
    scene->addSolid(callback);
    for (const SoCamera::ViewportMapping mapping :
         {SoCamera::LEAVE_ALONE, SoCamera::CROP_VIEWPORT_NO_FRAME, SoCamera::ADJUST_CAMERA}) {
        seen.camera->viewportMapping = mapping;
        seen.mappings.clear();
        take(80, 30);
        EXPECT_THAT(seen.mappings, testing::AllOf(testing::Not(IsEmpty()),
                                                  testing::Each(SoCamera::ADJUST_CAMERA)));
        EXPECT_THAT(seen.graph, testing::ElementsAre(seen.camera, scene));
        EXPECT_EQ(seen.camera->viewportMapping.getValue(), mapping);
    }
}

TEST_F(ScreenshotTest, LeavesTheWindowAsItWas)
{
    const SbViewportRegion region = viewer->getViewportRegion();
    const SbVec3f position = viewer->getCamera()->position.getValue();
    for (int i = 0; i < 20; ++i)
        take(90 + i, 60);
    EXPECT_EQ(viewer->getViewportRegion(), region);
    EXPECT_EQ(viewer->getCamera()->position.getValue(), position);
    EXPECT_EQ(viewer->getGeneralScene(), scene);
    EXPECT_GT(scene->getRefCount(), 1);
    press(SoKeyboardEvent::B);
    expectOnScreen(3, 3, Qt::white);
    expectOnScreen(getMiddle()[0], getMiddle()[1], Qt::red);
}

TEST_F(ScreenshotTest, IsAsLargeAsAskedFor)
{
    take(5000, 3000);
    expectWritten("screenshot.png");
    const QImage image = read(path("screenshot.png"));
    EXPECT_EQ(image.size(), QSize(5000, 3000));
    EXPECT_EQ(redInRow(image, 1500), 1500);
    EXPECT_EQ(redInColumn(image, 2500), 1500);
    EXPECT_EQ(image.pixelColor(1752, 1500), QColor(Qt::red));
    EXPECT_NE(image.pixelColor(1748, 1500), QColor(Qt::red));
}

TEST_F(ScreenshotTest, IsWrittenInEachFormatThatIsOffered)
{
    answers.accepts = false;
    take(64, 48);
    answers.accepts = true;
    const auto* box = field<QComboBox>("extComboBox");
    QStringList offered;
    for (int i = 0; i < box->count(); ++i)
        offered.append(box->itemText(i));
    ASSERT_GE(offered.size(), 4);

    const QList<QByteArray> readable = QImageReader::supportedImageFormats();
    int readByQt = 0;
    for (const QString& extension : offered) {
        SCOPED_TRACE(extension.toStdString());
        take(64, 48, extension);
        const QString name = "screenshot." + extension;
        ASSERT_THAT(answers.boxes, SizeIs(1));
        expectWritten(name);
        const QByteArray start = firstBytes(path(name), 200);
        ASSERT_GT(start.size(), 8);
        if (extension == "ps") {
            EXPECT_TRUE(start.startsWith("%!PS-Adobe"));
            EXPECT_TRUE(start.contains("%%Creator: Coin"));
        } else if (extension == "eps") {
            EXPECT_TRUE(start.startsWith("%!PS-Adobe"));
        } else if (extension == "rgb" || extension == "rgba" || extension == "bw" ||
                   extension == "inta" || extension == "int") {
            // SGI: magic number, and width and height in big-endian at bytes 6 and 8.
            EXPECT_EQ(start.left(2), QByteArray("\x01\xda", 2));
            EXPECT_EQ(start.mid(6, 4), QByteArray("\0\x40\0\x30", 4));
        } else if (extension == "tiff" || extension == "tif") {
            EXPECT_TRUE(start.startsWith("II*") || start.startsWith("MM"));
        } else if (extension == "jp2") {
            EXPECT_EQ(start.mid(4, 4), "jP  ");
        } else {
            ASSERT_THAT(readable, Contains(extension.toLatin1()));
            const QImage image = read(path(name));
            EXPECT_EQ(image.size(), QSize(64, 48));
            const QColor middle = image.pixelColor(32, 24);
            EXPECT_GT(middle.red(), 240);
            EXPECT_LT(middle.green() + middle.blue(), 30);
            ++readByQt;
        }
    }
    EXPECT_GE(readByQt, 2);
}

TEST_F(ScreenshotTest, PostScriptIsCoinsOwn)
{
    take(200, 100, "ps");
    expectWritten("screenshot.ps");
    QFile file(path("screenshot.ps"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_TRUE(text.startsWith("%!PS-Adobe"));
    EXPECT_TRUE(text.contains("%%Creator: Coin"));
    EXPECT_TRUE(text.contains("%%EOF"));
}

// The background

TEST_F(ScreenshotTest, TheFirstOfAProcessIsBlackAndTheNextHasTheViewersBackground)
{
    EXPECT_EXIT(
        {
            viewer->setBackgroundColor(SbColor(1, 1, 1));
            take(80, 60);
            const QColor first = read(path("screenshot.png")).pixelColor(2, 2);
            viewer->setBackgroundColor(SbColor(0, 0, 1));
            take(80, 60);
            const QColor second = read(path("screenshot.png")).pixelColor(2, 2);
            take(80, 60);
            const QColor third = read(path("screenshot.png")).pixelColor(2, 2);
            const bool right = first == QColor(Qt::black) && second == QColor(Qt::white) &&
                               third == QColor(Qt::blue);
            endProcess(right);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ScreenshotTest, WhatIsNotWrittenDoesNotChangeTheNextBackground)
{
    viewer->setBackgroundColor(SbColor(0, 0, 1));
    take(80, 60);
    viewer->setBackgroundColor(SbColor(0, 1, 0));
    answers.answer = QMessageBox::No;
    take(80, 60);
    EXPECT_EQ(SoQtGeneralViewer::getOSRenderer()->getBackgroundColor(), SbColor(0, 0, 1));
    answers.answer = QMessageBox::Yes;
    take(80, 60);
    EXPECT_EQ(read(path("screenshot.png")).pixelColor(2, 2), QColor(Qt::blue));
    EXPECT_EQ(SoQtGeneralViewer::getOSRenderer()->getBackgroundColor(), SbColor(0, 1, 0));
}

TEST_F(ScreenshotTest, TheRendererIsOneForAllAnd640By480AtFirst)
{
    EXPECT_EQ(SoQtGeneralViewer::getOSRenderer(), SoQtGeneralViewer::getOSRenderer());
    EXPECT_EXIT(
        {
            SoOffscreenRenderer* renderer = SoQtGeneralViewer::getOSRenderer();
            const bool right =
                renderer->getViewportRegion().getViewportSizePixels() == SbVec2s(640, 480) &&
                renderer->getBackgroundColor() == SbColor(0, 0, 0);
            endProcess(right);
        },
        testing::ExitedWithCode(0), "");
    take(123, 45);
    EXPECT_EQ(SoQtGeneralViewer::getOSRenderer()->getViewportRegion().getViewportSizePixels(),
              SbVec2s(123, 45));
}

// What goes wrong, and the index

TEST_F(ScreenshotTest, AsksBeforeItOverwrites)
{
    useIndex();
    take(80, 60);
    expectWritten("screenshot0.png");
    EXPECT_EQ(dialog->getIndex(), 1);
    dialog->setIndex(0);
    const QString question = "Overwrite the existing file<br />" + path("screenshot0.png");

    answers.answer = QMessageBox::No;
    take(40, 30);
    ASSERT_THAT(answers.boxes, SizeIs(1));
    expectBox(QMessageBox::Question, "Confirm overwrite", question,
              QMessageBox::Yes | QMessageBox::No);
    EXPECT_FALSE(answers.boxes[0].hasChosenDefault);
    EXPECT_EQ(read(path("screenshot0.png")).size(), QSize(80, 60));
    EXPECT_EQ(dialog->getIndex(), 1);

    dialog->setIndex(0);
    answers.answer = QMessageBox::Yes;
    take(40, 30);
    ASSERT_THAT(answers.boxes, SizeIs(2));
    expectBox(QMessageBox::Question, "Confirm overwrite", question,
              QMessageBox::Yes | QMessageBox::No);
    expectWritten("screenshot0.png", 1);
    EXPECT_EQ(read(path("screenshot0.png")).size(), QSize(40, 30));
    EXPECT_EQ(dialog->getIndex(), 1);
}

TEST_F(ScreenshotTest, TheIndexStaysWhereItIsNotUsed)
{
    dialog->setIndex(5);
    take(40, 30);
    expectWritten("screenshot.png");
    EXPECT_EQ(dialog->getIndex(), 5);
}

TEST_F(ScreenshotTest, TheIndexEndsAt99)
{
    useIndex();
    dialog->setIndex(98);
    take(40, 30);
    expectWritten("screenshot98.png");
    take(40, 30);
    expectWritten("screenshot99.png");
    EXPECT_EQ(dialog->getIndex(), 99);
    take(40, 30);
    ASSERT_THAT(answers.boxes, SizeIs(2));
    expectBox(QMessageBox::Question, "Confirm overwrite",
              "Overwrite the existing file<br />" + path("screenshot99.png"),
              QMessageBox::Yes | QMessageBox::No);
}

TEST_F(ScreenshotTest, SaysThatItCouldNotWriteAndGoesOn)
{
    useIndex();
    field<QLineEdit>("dirLineEdit")->setText(path("nowhere"));
    for (const char* extension : {"png", "rgb", "ps", "jpg"}) {
        SCOPED_TRACE(extension);
        dialog->setIndex(3);
        take(40, 30, extension);
        ASSERT_THAT(answers.boxes, SizeIs(1));
        expectBox(QMessageBox::Critical, "Screenshot failed",
                  "Could not write to fil e<br />" + path("nowhere/screenshot3.") + extension);
        EXPECT_EQ(dialog->getIndex(), 4);
    }
}

TEST_F(ScreenshotTest, SaysThatAFolderIsInTheWay)
{
    for (const QString extension : {"png", "ps"}) {
        SCOPED_TRACE(extension.toStdString());
        const QString name = "screenshot." + extension;
        ASSERT_TRUE(QDir(folder.path()).mkdir(name));
        take(40, 30, extension);
        ASSERT_THAT(answers.boxes, SizeIs(2));
        expectBox(QMessageBox::Question, "Confirm overwrite",
                  "Overwrite the existing file<br />" + path(name),
                  QMessageBox::Yes | QMessageBox::No);
        expectBox(QMessageBox::Critical, "Screenshot failed",
                  "Could not write to fil e<br />" + path(name), QMessageBox::Ok, 1);
        EXPECT_TRUE(QFileInfo(path(name)).isDir());
    }
}

TEST_F(ScreenshotTest, SizesThatCoinCannotHoldFail)
{
    useIndex();
    for (const auto& [width, height] :
         {std::pair(32768, 30), std::pair(40, 100000), std::pair(65537, 65537)}) {
        const int index = dialog->getIndex();
        take(width, height);
        ASSERT_THAT(answers.boxes, SizeIs(1));
        expectBox(QMessageBox::Critical, "Screenshot failed", "Off-screen rendering failed");
        EXPECT_EQ(dialog->getIndex(), index + 1);
    }
    EXPECT_THAT(files(), IsEmpty());
    take(40, 30);
    expectWritten("screenshot3.png");
}

TEST_F(ScreenshotTest, OnePixelIsEnough)
{
    take(1, 1);
    expectWritten("screenshot.png");
    EXPECT_EQ(read(path("screenshot.png")).size(), QSize(1, 1));
}

TEST_F(ScreenshotTest, WithoutOffscreenContextsItSaysSoAndRestoresTheCamera)
{
    EXPECT_EXIT(
        {
            SoQtGeneralViewer::getOSRenderer();
            cc_glglue_context_set_offscreen_cb_functions(&NO_CONTEXTS);
            viewer->getCamera()->viewportMapping = SoCamera::LEAVE_ALONE;
            useIndex();
            take(40, 30);
            const bool right =
                answers.boxes.size() == 1 && answers.boxes[0].icon == QMessageBox::Critical &&
                answers.boxes[0].title == "Screenshot failed" &&
                answers.boxes[0].text == "Off-screen rendering failed" &&
                answers.boxes[0].buttons == QMessageBox::Ok && dialog->getIndex() == 1 &&
                viewer->getCamera()->viewportMapping.getValue() == SoCamera::LEAVE_ALONE &&
                files().isEmpty();
            endProcess(right);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ScreenshotTest, WithoutASceneItFails)
{
    delete viewer;
    delete dialog;
    viewer = new OpenViewer(window);
    dialog = window->findChild<ScreenshotDialog*>();
    field<QLineEdit>("dirLineEdit")->setText(folder.path());
    take(40, 30);
    ASSERT_THAT(answers.boxes, SizeIs(1));
    expectBox(QMessageBox::Critical, "Screenshot failed", "Off-screen rendering failed");
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(ScreenshotTest, TheDialogMayGoWhileItIsShown)
{
    answers.fillIn = [](ScreenshotDialog& shown) { shown.deleteLater(); };
    viewer->renderOffscreen();
    EXPECT_LE(answers.boxes.size(), 1U);
    viewer->renderOffscreen();
}

TEST_F(ScreenshotTest, NamesThatAreNotAsciiAreWrittenWithQuestionMarks)
{
    field<QLineEdit>("filenameLineEdit")
        ->setText(QString::fromUtf8("b\xc3\xa9"
                                    "b\xc3\xa9"));
    take(40, 30);
    EXPECT_THAT(files(), testing::ElementsAre(QString("b?b?.png")));
}
