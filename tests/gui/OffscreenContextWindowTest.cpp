// SPDX-License-Identifier: GPL-3.0-or-later
#include <OffscreenContext.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QGLWidget>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QThread>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSphere.h>
#include <SoQtGeneralViewer.h>

// Last, for Xlib's macros.
#include <GL/glx.h>

namespace {

// What is current on this thread, as GLX sees it.
struct Current
{
    GLXContext context = glXGetCurrentContext();
    Display* display = glXGetCurrentDisplay();
    GLXDrawable drawable = glXGetCurrentDrawable();
    GLXDrawable readDrawable = glXGetCurrentReadDrawable();

    bool operator==(const Current& other) const
    {
        return context == other.context && display == other.display && drawable == other.drawable &&
               readDrawable == other.readDrawable;
    }
};

// A scene that shows a sphere of radius 1 in one colour, in a view 4 high.
SoSeparator* sphereScene(SoMaterial* material)
{
    auto* scene = new SoSeparator;
    auto* camera = new SoOrthographicCamera;
    camera->position = SbVec3f(0, 0, 5);
    camera->height = 4;
    scene->addChild(camera);
    auto* lightModel = new SoLightModel;
    lightModel->model = SoLightModel::BASE_COLOR;
    scene->addChild(lightModel);
    scene->addChild(material);
    scene->addChild(new SoSphere);
    return scene;
}

// Whether an off-screen picture shows a white sphere before a blue background.
bool takesPicture()
{
    auto* white = new SoMaterial;
    white->diffuseColor = SbColor(1, 1, 1);
    SoSeparator* scene = sphereScene(white);
    scene->ref();
    SoOffscreenRenderer renderer(SbViewportRegion(90, 60));
    renderer.setBackgroundColor(SbColor(0, 0, 1));
    const bool done = renderer.render(scene);
    scene->unref();
    if (!done)
        return false;
    const unsigned char* corner = renderer.getBuffer();
    const unsigned char* centre = corner + 3 * (30 * 90 + 45);
    return centre[0] == 255 && centre[1] == 255 && centre[2] == 255 && corner[0] == 0 &&
           corner[1] == 0 && corner[2] == 255;
}

// A window with a red sphere before a black background.
class OffscreenContextWindowTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        if (!QApplication::instance()) {
            SoQt::init(argc, argv, name);
            SoQtGeneralViewer::initClass();
        }
        OffscreenContext::install();
    }

    void SetUp() override
    {
        window = new QWidget;
        window->resize(400, 300);
        // SoQt's own viewer stays as small as it was made in one of a hundred windows.
        viewer = new SoQtGeneralViewer(window);
        viewer->setDecoration(FALSE);
        viewer->setFeedbackVisibility(FALSE);
        viewer->setBackgroundColor(SbColor(0, 0, 0));
        material = new SoMaterial;
        material->diffuseColor = SbColor(1, 0, 0);
        scene = sphereScene(material);
        viewer->setSceneGraph(scene);
        viewer->show();
        SoQt::show(window);
        area = qobject_cast<QGLWidget*>(viewer->getGLWidget());
        ASSERT_TRUE(area);
        // Without a window manager the first frame is drawn before the window is there,
        // and nothing tells the viewer to draw it again.
        for (int i = 0; i < 1000 && getCentre() != QColor(Qt::red); ++i) {
            QApplication::processEvents();
            QThread::msleep(10);
            viewer->scheduleRedraw();
        }
        ASSERT_EQ(getCentre(), QColor(Qt::red));
    }

    void TearDown() override
    {
        delete viewer;
        delete window;
    }

    // The pixel in the middle of the screen's picture of the GL area.
    QColor getCentre() { return getPixel(area->width() / 2, area->height() / 2); }
    QColor getPixel(int x, int y)
    {
        const QPixmap picture = QApplication::primaryScreen()->grabWindow(area->winId());
        return QColor(picture.toImage().pixel(x, y));
    }

    // Handles events until the sphere has a colour on the screen, at most 10 seconds.
    void waitFor(const QColor& colour)
    {
        QElapsedTimer timer;
        timer.start();
        do {
            QApplication::processEvents();
            QThread::msleep(10);
        } while (getCentre() != colour && timer.elapsed() < 10000);
    }

    QWidget* window = nullptr;
    SoQtGeneralViewer* viewer = nullptr;
    QGLWidget* area = nullptr;
    SoMaterial* material = nullptr;
    SoSeparator* scene = nullptr;
};

} // namespace

TEST_F(OffscreenContextWindowTest, BringsTheContextOfTheWindowBack)
{
    area->makeCurrent();
    const Current before;
    ASSERT_TRUE(before.context);
    ASSERT_TRUE(before.drawable);

    EXPECT_TRUE(takesPicture());
    EXPECT_TRUE(Current() == before);
    EXPECT_TRUE(takesPicture());
    EXPECT_TRUE(Current() == before);
}

TEST_F(OffscreenContextWindowTest, LeavesNothingCurrentWhereNothingWas)
{
    area->doneCurrent();
    ASSERT_FALSE(glXGetCurrentContext());
    EXPECT_TRUE(takesPicture());
    EXPECT_FALSE(glXGetCurrentContext());
}

TEST_F(OffscreenContextWindowTest, TheNextFrameOfTheWindowIsRight)
{
    area->makeCurrent();
    ASSERT_TRUE(takesPicture());

    // Drawn into the back buffer with the context as it was brought back.
    material->diffuseColor = SbColor(0, 1, 0);
    SoGLRenderAction* action = viewer->getGLRenderAction();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    action->apply(viewer->getSceneManager()->getSceneGraph());
    unsigned char pixel[3] = {};
    const SbVec2s size = action->getViewportRegion().getViewportSizePixels();
    glReadBuffer(GL_BACK);
    glReadPixels(size[0] / 2, size[1] / 2, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, pixel);
    EXPECT_THAT(pixel, testing::ElementsAre(0, 255, 0));

    // And drawn by the viewer itself, as the screen shows it.
    waitFor(Qt::green);
    EXPECT_EQ(getCentre(), QColor(Qt::green));
    EXPECT_EQ(getPixel(3, 3), QColor(Qt::black));
}

TEST_F(OffscreenContextWindowTest, APictureTakenWhileTheWindowIsDrawnDisturbsNeither)
{
    // Taken once, before the material and the sphere of the window's frame.
    struct Taken
    {
        int count = 0;
        bool right = false;
        bool broughtBack = false;
    } taken;
    auto* callback = new SoCallback;
    callback->setCallback(
        [](void* data, SoAction* action) {
            auto* result = static_cast<Taken*>(data);
            if (!action->isOfType(SoGLRenderAction::getClassTypeId()) || result->count++ > 0)
                return;
            const Current before;
            result->right = before.context && takesPicture();
            result->broughtBack = Current() == before;
        },
        &taken);
    scene->insertChild(callback, 1);
    material->diffuseColor = SbColor(0, 1, 0);
    waitFor(Qt::green);

    EXPECT_GE(taken.count, 1);
    EXPECT_TRUE(taken.right);
    EXPECT_TRUE(taken.broughtBack);
    EXPECT_EQ(getCentre(), QColor(Qt::green));
    EXPECT_EQ(getPixel(3, 3), QColor(Qt::black));
    scene->removeChild(callback);
}

TEST_F(OffscreenContextWindowTest, ARendererOutlivesTheWindow)
{
    SoOffscreenRenderer renderer(SbViewportRegion(60, 60));
    area->makeCurrent();
    scene->ref();
    ASSERT_TRUE(renderer.render(scene));
    delete viewer;
    viewer = nullptr;
    delete window;
    window = nullptr;

    EXPECT_TRUE(renderer.render(scene));
    const unsigned char* centre = renderer.getBuffer() + 3 * (30 * 60 + 30);
    EXPECT_EQ(QColor(centre[0], centre[1], centre[2]), QColor(Qt::red));
    scene->unref();
}

// The application object is made by the first test: listing them needs no display.
int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
