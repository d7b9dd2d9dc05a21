// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ViewPictures.h"

#include <atomic>
#include <chrono>
#include <future>
#include <utility>

#include <QImage>
#include <QWidget>

#include <SoQtGeneralViewer.h>

#include "scene/DataScene.h"
#include "scene/MeasuredLine.h"

namespace strandview {

// Has the scene drawn as a picture of it is to look, while it lives.
class ViewPictures::Dress
{
public:
    Dress(const PicturedView& view, const Options& options)
        : scene(*view.scene), before(view.scene->getStyle())
    {
        if (view.first)
            scene.redress(makeStyle(options, *view.first));
        dressed = scene.countStyles();
        if (scene.getData())
            scene.setMeasured(makeMeasured(options.measurements, *scene.getData(), scene));
    }
    ~Dress()
    {
        scene.setMeasured(nullptr);
        if (scene.countStyles() == dressed) // no other style has come meanwhile
            scene.redress(before);
    }
    Dress(const Dress&) = delete;
    Dress& operator=(const Dress&) = delete;

private:
    DataScene& scene;
    const Style before;
    std::size_t dressed = 0;
};

namespace {

// Keeps a view as it is on the screen: what is drawn meanwhile would look like the picture.
class FrozenView
{
public:
    explicit FrozenView(SoQtGeneralViewer& viewer) : frozen(viewer)
    {
        frozen.setAutoRedraw(FALSE);
        frozen.getGLWidget()->setUpdatesEnabled(false);
    }
    ~FrozenView()
    {
        frozen.getGLWidget()->setUpdatesEnabled(true);
        frozen.setAutoRedraw(TRUE);
        frozen.scheduleRedraw();
    }
    FrozenView(const FrozenView&) = delete;
    FrozenView& operator=(const FrozenView&) = delete;

private:
    SoQtGeneralViewer& frozen;
};

} // namespace

ViewPictures::ViewPictures(PicturedView pictured) : view(std::move(pictured)) { view.scene->ref(); }

ViewPictures::~ViewPictures() { view.scene->unref(); }

ShownPicture ViewPictures::describe(const PictureChoice& choice) const
{
    ShownPicture picture = view.picture;
    PictureRequest size = choice.size;
    if (choice.isOfView) {
        size.width = view.picture.size.width;
        size.height = view.picture.size.height;
        size.paper.reset();
    } else if (size.paper) {
        size.width = int(pixelsOf(size.paper->width, size.resolution()));
        size.height = int(pixelsOf(size.paper->height, size.resolution()));
    }
    picture.size = size;
    return picture;
}

// As if they had been asked for on the command line.
Options ViewPictures::optionsOf(const PictureChoice& choice) const
{
    Options options = view.options;
    static_cast<StyleRequest&>(options) = styleOf(choice, options);
    if (!choice.hasMeasurements)
        options.measurements.clear();
    const ShownPicture picture = describe(choice);
    options.picture = picture.name;
    options.pictureWidth = picture.size.width;
    options.pictureHeight = picture.size.height;
    return options;
}

Picture ViewPictures::makePicture(const PictureChoice& choice) const
{
    const ShownPicture shown = describe(choice);
    const Options options = optionsOf(choice);
    CameraRequest camera;
    camera.numbers = shown.camera;
    Picture picture{"",
                    shown.size.width,
                    shown.size.height,
                    shown.size.samples,
                    options.background,
                    shown.size.transparent,
                    camera,
                    0,
                    shown.size.resolution()};
    picture.title = titleOf(shown.files);
    picture.command = [options, shown](const CameraNumbers& /*the same*/) {
        return writeCommandToKeep(options, shown);
    };
    return picture;
}

QImage ViewPictures::preview(const PictureChoice& choice, const QSize& room) const
{
    const int samples = 2;
    Picture picture = makePicture(choice);
    const QSize size =
        QSize(picture.width, picture.height).scaled(room, Qt::KeepAspectRatio).expandedTo({1, 1});
    picture.width = size.width();
    picture.height = size.height();
    picture.samples = samples;
    const Dress dress(view, optionsOf(choice));
    QImage image;
    return PictureWriter().draw(view.scene, picture, image).empty() ? image : QImage();
}

std::string ViewPictures::save(const PictureChoice& choice, const std::string& file,
                               const PictureWriter::GoOn& goOn) const
{
    const double drawing = 0.8; // of the work
    const Picture picture = makePicture(choice);
    const FrozenView frozen(*view.viewer);
    QImage image;
    {
        const Dress dress(view, optionsOf(choice));
        // The scene is nobody else's meanwhile, or the picture would be made of two.
        bool goesOn = true, isSame = true;
        const auto proceed = [&](double done) {
            const SbUniqueId before = view.scene->getIdOfPicture();
            goesOn = goOn(drawing * done);
            isSame = view.scene->getIdOfPicture() == before;
            return goesOn && isSame;
        };
        const std::string failure =
            PictureWriter().draw(view.scene, picture, image, nullptr, proceed);
        if (!goesOn)
            return PICTURE_STOPPED;
        if (!isSame)
            return "what is shown became something else while its picture was drawn; nothing was "
                   "saved";
        if (!failure.empty())
            return failure;
    }
    std::atomic<bool> isWanted(true);
    const auto write = [&] {
        try {
            return saveImage(image, file, [&isWanted] { return isWanted.load(); });
        } catch (const std::bad_alloc&) {
            return file + ": " + TOO_LITTLE_MEMORY_FOR_FRAME;
        }
    };
    std::future<std::string> written = std::async(std::launch::async, write);
    while (written.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready)
        isWanted = goOn(drawing) && isWanted;
    return written.get();
}

} // namespace strandview
