// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureWriter.h"

#include <algorithm>
#include <map>

#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QSaveFile>

#include <OffscreenContext.h>
#include <SoGeneralScene.h>

#include "Camera.h"

namespace {

// Collects Coin's messages while it lives, so that a failure can be told in one line.
class MessageCollector
{
public:
    MessageCollector()
        : previousHandler(SoDebugError::getHandlerCallback()),
          previousData(SoDebugError::getHandlerData())
    {
        SoDebugError::setHandlerCallback(collect, this);
    }
    ~MessageCollector() { SoDebugError::setHandlerCallback(previousHandler, previousData); }
    MessageCollector(const MessageCollector&) = delete;
    MessageCollector& operator=(const MessageCollector&) = delete;

    std::string first;

private:
    static void collect(const SoError* error, void* data)
    {
        std::string& first = static_cast<MessageCollector*>(data)->first;
        if (first.empty())
            first = error->getDebugString().getString();
    }

    SoErrorCB* previousHandler;
    void* previousData;
};

QByteArray imageFormat(const std::string& file)
{
    return QFileInfo(QString::fromStdString(file)).suffix().toLower().toLatin1();
}

// What papers and slides take, as far as Qt can write it; some cannot be transparent.
QList<QByteArray> writableFormats(bool transparent)
{
    QList<QByteArray> formats{"png", "tif", "tiff"};
    if (!transparent)
        formats += {"jpg", "jpeg", "bmp", "ppm"};
    const QList<QByteArray> supported = QImageWriter::supportedImageFormats();
    formats.erase(std::remove_if(formats.begin(), formats.end(),
                                 [&](const QByteArray& f) { return !supported.contains(f); }),
                  formats.end());
    return formats;
}

// How much of the background shows is found by rendering before black and before white
// (A. R. Smith and J. F. Blinn, Blue screen matting, SIGGRAPH 1996): what covers a sample
// is black's picture, and covers all that white's does not exceed it by. So neither the
// colour of what is shown nor that of the background matters.
QImage separate(const QImage& beforeBlack, const QImage& beforeWhite)
{
    QImage separated(beforeBlack.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < separated.height(); ++y) {
        const uchar* black = beforeBlack.constScanLine(y);
        const uchar* white = beforeWhite.constScanLine(y);
        auto* pixel = reinterpret_cast<QRgb*>(separated.scanLine(y));
        for (int x = 0; x < separated.width(); ++x, black += 3, white += 3) {
            const int shining =
                std::min({white[0] - black[0], white[1] - black[1], white[2] - black[2]});
            const int alpha = 255 - std::max(shining, 0);
            pixel[x] = qRgba(std::min<int>(black[0], alpha), std::min<int>(black[1], alpha),
                             std::min<int>(black[2], alpha), alpha);
        }
    }
    return separated;
}

// One picture of the graph; null if it failed.
QImage render(SoOffscreenRenderer& renderer, SoNode* graph, const Colour& background)
{
    renderer.setBackgroundColor(SbColor(background.red, background.green, background.blue));
    if (!renderer.render(graph))
        return QImage();
    const SbVec2s size = renderer.getViewportRegion().getWindowSize();
    // Coin's rows run upwards.
    const QImage upwards(renderer.getBuffer(), size[0], size[1], 3 * size[0],
                         QImage::Format_RGB888);
    return upwards.mirrored(false, true);
}

// Makes the lines of a scene, whose widths are in pixels, wider while it lives, so that
// they are as wide as ever once the samples are brought together.
class LineWidener
{
public:
    LineWidener(SoNode* scene, int factor)
    {
        // A search would miss what is in an overlay.
        SoCallbackAction traversal;
        traversal.addPreCallback(SoDrawStyle::getClassTypeId(), note, this);
        traversal.apply(scene);
        for (const auto& [style, width] : widths) {
            // 0 stands for OpenGL's own width, 1.
            style->lineWidth = float(factor) * (width > 0 ? width : 1);
        }
    }
    ~LineWidener()
    {
        for (const auto& [style, width] : widths)
            style->lineWidth = width;
    }
    LineWidener(const LineWidener&) = delete;
    LineWidener& operator=(const LineWidener&) = delete;

private:
    static SoCallbackAction::Response note(void* widener, SoCallbackAction* traversal,
                                           const SoNode* /*style*/)
    {
        auto* style = static_cast<SoDrawStyle*>(traversal->getCurPathTail());
        static_cast<LineWidener*>(widener)->widths[style] = style->lineWidth.getValue();
        return SoCallbackAction::CONTINUE;
    }

    std::map<SoDrawStyle*, float> widths;
};

} // namespace

int fittingSamples(int wanted, int width, int height)
{
    const long long largestSide = LARGEST_PICTURE_SIDE, largestCount = LARGEST_PIXEL_COUNT;
    int samples = wanted;
    while (samples > 0 && (largestSide < (long long)samples * std::max(width, height) ||
                           largestCount < (long long)samples * width * samples * height))
        --samples;
    return samples;
}

std::string checkPictureName(const std::string& option, const std::string& file, bool transparent)
{
    const QList<QByteArray> formats = writableFormats(transparent);
    const bool named = !QFileInfo(QString::fromStdString(file)).completeBaseName().isEmpty();
    if (named && formats.contains(imageFormat(file)))
        return "";
    return option + ": found '" + file + "', expected a name that ends in one of ." +
           formats.join(" .").toStdString() + (transparent ? ", with --transparent" : "");
}

QString pictureNamePatterns() { return "*." + writableFormats(false).join(" *."); }

// Encoded first, so that what can fail while writing is the disk alone.
std::string saveImage(const QImage& image, const std::string& name)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, imageFormat(name));
    if (!writer.write(image))
        return name + ": " + writer.errorString().toStdString();

    const QFileInfo target(QString::fromStdString(name));
    if (target.exists() && !target.isFile())
        return name + ": found something that is no file, expected a file or nothing there";
    QSaveFile file(target.filePath());
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return name + ": " + file.errorString().toStdString();
    return "";
}

std::string writePicture(SoGeneralScene* scene, const Picture& picture, CameraNumbers* usedCamera)
{
    const SbViewportRegion region{short(picture.samples * picture.width),
                                  short(picture.samples * picture.height)};
    SoCamera* camera = makeCamera(picture.camera, scene, region, picture.bottom);
    auto* root = new SoSeparator;
    root->ref();
    root->addChild(camera);
    root->addChild(scene);
    if (usedCamera)
        *usedCamera = numbersOf(*camera);
    const bool perspectiveBefore = scene->isShaderPersp();
    scene->setShaderPersp(picture.camera.isPerspective());

    const LineWidener lines(scene, picture.samples);

    OffscreenContext::install();
    SoOffscreenRenderer renderer(region);
    renderer.setComponents(SoOffscreenRenderer::RGB);
    renderer.getGLRenderAction()->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    MessageCollector messages;
    QImage image;
    if (picture.transparent) {
        image = render(renderer, root, {0, 0, 0});
        const QImage beforeWhite = image.isNull() ? QImage() : render(renderer, root, {1, 1, 1});
        image = beforeWhite.isNull() ? QImage() : separate(image, beforeWhite);
    } else {
        image = render(renderer, root, picture.background);
    }
    root->unref();
    scene->setShaderPersp(perspectiveBefore);
    if (image.isNull())
        return "the picture could not be rendered: " + messages.first;

    if (picture.samples > 1) {
        // By a whole factor this is the mean of each pixel's samples.
        image = image.scaled(picture.width, picture.height, Qt::IgnoreAspectRatio,
                             Qt::SmoothTransformation);
    }
    image =
        image.convertToFormat(picture.transparent ? QImage::Format_ARGB32 : QImage::Format_RGB888);
    return saveImage(image, picture.file);
}
