// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureWriter.h"

#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
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

// What papers and slides take, as far as Qt can write it.
QList<QByteArray> writableFormats()
{
    QList<QByteArray> formats;
    for (const char* format : {"png", "jpg", "jpeg", "tif", "tiff", "bmp", "ppm"}) {
        if (QImageWriter::supportedImageFormats().contains(format))
            formats.append(format);
    }
    return formats;
}

} // namespace

std::string checkPictureName(const std::string& file)
{
    const QList<QByteArray> formats = writableFormats();
    const bool named = !QFileInfo(QString::fromStdString(file)).completeBaseName().isEmpty();
    if (named && formats.contains(imageFormat(file)))
        return "";
    return "--render: found '" + file + "', expected a name that ends in one of ." +
           formats.join(" .").toStdString();
}

std::string writePicture(SoGeneralScene* scene, const Picture& picture)
{
    const int width = picture.samples * picture.width;
    const int height = picture.samples * picture.height;
    const SbViewportRegion region{short(width), short(height)};
    auto* root = new SoSeparator;
    root->ref();
    root->addChild(makeCamera(scene, region, picture.bottom));
    root->addChild(scene);

    OffscreenContext::install();
    SoOffscreenRenderer renderer(region);
    renderer.setComponents(SoOffscreenRenderer::RGB);
    renderer.setBackgroundColor(
        SbColor(picture.background.red, picture.background.green, picture.background.blue));
    MessageCollector messages;
    const bool rendered = renderer.render(root);
    root->unref();
    if (!rendered)
        return "the picture could not be rendered: " + messages.first;

    // Coin's rows run upwards.
    const QImage upwards(renderer.getBuffer(), width, height, 3 * width, QImage::Format_RGB888);
    QImage image = upwards.mirrored(false, true);
    if (picture.samples > 1) {
        // By a whole factor this is the mean of each pixel's samples.
        image = image.scaled(picture.width, picture.height, Qt::IgnoreAspectRatio,
                             Qt::SmoothTransformation);
    }
    return saveImage(image.convertToFormat(QImage::Format_RGB888), picture.file);
}
