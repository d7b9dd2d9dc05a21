// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/PictureWriter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <new>
#include <vector>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>

#include <SoDNA.h>
#include <SoGeneralScene.h>

#include "camera/Camera.h"
#include "output/OutputFile.h"
#include "pictures/LeanPrograms.h"
#include "pictures/SampleMeans.h"
#include "pictures/TileRenderer.h"
#include "pictures/writePdf.h"
#include "pictures/writePng.h"
#include "pictures/writeSvg.h"
#include "request/limits.h"

namespace strandview {

namespace {

const int LARGEST_TILE_SIDE = 4096;        // that every driver has
const qsizetype LARGEST_AT_ONCE = 1 << 28; // bytes, that are filtered in memory of their own
const Colour BLACK{0, 0, 0};
const Colour WHITE{1, 1, 1};
const char* const TOO_LITTLE_MEMORY = "found too little memory for so many pixels";

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

using Write = std::function<void(std::string_view)>;

// Those that are written here. PNG is, unless it is too large for that.
void (*writerOf(const QByteArray& format))(const QImage& image, const Write& write)
{
    if (format == "png")
        return &writePng;
    if (format == "pdf")
        return &writePdf;
    return format == "svg" ? &writeSvg : nullptr;
}

// What papers and slides take, as far as it can be written; some cannot be transparent.
QList<QByteArray> writableFormats(bool transparent)
{
    QList<QByteArray> formats{"png", "pdf", "svg", "tif", "tiff"};
    if (!transparent)
        formats += {"jpg", "jpeg", "bmp", "ppm"};
    const QList<QByteArray> supported = QImageWriter::supportedImageFormats();
    formats.erase(
        std::remove_if(formats.begin(), formats.end(),
                       [&](const QByteArray& f) { return !writerOf(f) && !supported.contains(f); }),
        formats.end());
    return formats;
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
        traversal.addPreCallback(SoDNA::getClassTypeId(), skip, nullptr);
        traversal.apply(scene);
        for (const auto& [style, width] : widths) {
            // 0 stands for OpenGL's own width, 1.
            style->lineWidth = float(factor) * (width > 0 ? width : 1);
        }
    }
    ~LineWidener()
    {
        for (const auto& [style, width] : widths) {
            style->lineWidth = width;
            style->unref();
        }
    }
    LineWidener(const LineWidener&) = delete;
    LineWidener& operator=(const LineWidener&) = delete;

    float getWidest() const
    {
        float widest = 0;
        for (const auto& [style, width] : widths)
            widest = std::max(widest, style->lineWidth.getValue());
        return widest;
    }

private:
    static SoCallbackAction::Response note(void* widener, SoCallbackAction* traversal,
                                           const SoNode* /*style*/)
    {
        auto* style = static_cast<SoDrawStyle*>(traversal->getCurPathTail());
        auto& widths = static_cast<LineWidener*>(widener)->widths;
        if (widths.emplace(style, style->lineWidth.getValue()).second)
            style->ref(); // the scene may drop it between two tiles
        return SoCallbackAction::CONTINUE;
    }

    // A DNA has no lines, and makes its pairs for whom goes through them.
    static SoCallbackAction::Response skip(void* /*nothing*/, SoCallbackAction* /*traversal*/,
                                           const SoNode* /*dna*/)
    {
        return SoCallbackAction::PRUNE;
    }

    std::map<SoDrawStyle*, float> widths;
};

SbViewportRegion regionOf(const Picture& picture)
{
    return {short(picture.width), short(picture.height)};
}

// How a picture is rendered: in tiles of so many pixels, with a border of so many samples
// around each. What is drawn in lines ends where its middle leaves the tile.
struct Division
{
    int width;
    int height;
    int border;
};

// The fewest tiles within the limits, and as alike as can be.
Division divide(const Picture& picture, int border)
{
    const int n = picture.samples;
    const long long sides = (long long)n * std::max(picture.width, picture.height);
    if (sides <= LARGEST_TILE_SIDE &&
        (long long)n * picture.width * n * picture.height <= picture.samplesAtOnce)
        return {picture.width, picture.height, 0};
    const auto fitting = [&](int pixels, int otherSide) {
        const int side = std::min(LARGEST_TILE_SIDE, picture.samplesAtOnce / otherSide);
        const int fit = std::max(1, (side - 2 * border) / n);
        const int count = (pixels + fit - 1) / fit;
        return (pixels + count - 1) / count;
    };
    const int square = int(std::sqrt(picture.samplesAtOnce));
    int width = fitting(picture.width, square);
    const int height = fitting(picture.height, n * width + 2 * border);
    width = fitting(picture.width, n * height + 2 * border);
    return {width, height, border};
}

// Fills in the part of the picture that a tile shows, its border left out. `black` holds all
// samples before black if the picture is transparent.
void setPixels(QImage& image, const QRect& part, const TileRenderer& renderer, int rowLength,
               const std::vector<std::uint32_t>& black, int n, int border)
{
    SampleMeans means(n);
    std::vector<std::uint32_t> samples(std::size_t(n) * rowLength);
    for (int row = 0; row < part.height(); ++row) {
        const int below = border + n * row;
        renderer.read(below, n, samples.data());
        uchar* pixels =
            image.scanLine(part.bottom() - row) + std::ptrdiff_t(part.x()) * image.depth() / 8;
        if (black.empty())
            means.setOpaque(pixels, part.width(), &samples[border], rowLength);
        else
            means.setTransparent(pixels, part.width(),
                                 &black[std::size_t(below) * rowLength + border], &samples[border],
                                 rowLength);
    }
}

// Otherwise a picture would tell that of the screen that its program has, or none.
void setResolution(QImage& image, int dpi)
{
    const int perMetre = int(std::lround(dpi / 0.0254));
    image.setDotsPerMeterX(perMetre);
    image.setDotsPerMeterY(perMetre);
}

// What is to be known of a picture that lies about: the text of a camera makes the same view again,
// the command all of it.
void setTexts(QImage& image, const Picture& picture, const CameraNumbers& camera)
{
    image.setText("Software", "strandview " STRANDVIEW_VERSION);
    image.setText("Camera", QString::fromStdString(formatCamera(camera)));
    if (!picture.title.empty())
        image.setText("Title", QString::fromStdString(picture.title));
    if (picture.command)
        image.setText("Command", QString::fromStdString(picture.command(camera)));
}

// By Qt. Returns what failed, or nothing.
std::string encode(const QImage& image, const QByteArray& format, QByteArray& bytes)
{
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    if (writer.write(image))
        return "";
    return writer.error() == QImageWriter::UnknownError ? TOO_LITTLE_MEMORY
                                                        : writer.errorString().toStdString();
}

} // namespace

std::string checkPictureName(const std::string& option, const std::string& file, bool transparent)
{
    const QList<QByteArray> formats = writableFormats(transparent);
    const bool named = !QFileInfo(QString::fromStdString(file)).completeBaseName().isEmpty();
    if (named && formats.contains(imageFormat(file)))
        return "";
    return option + ": found '" + file + "', expected a name that ends in one of ." +
           formats.join(" .").toStdString() + (transparent ? ", with --transparent" : "");
}

QString pictureNamePatterns(bool transparent)
{
    return "*." + writableFormats(transparent).join(" *.");
}

// Nothing is written before all is encoded, so that what can fail while writing is the disk alone.
std::string saveImage(const QImage& image, const std::string& name,
                      const std::function<bool()>& isWanted)
{
    const QByteArray format = imageFormat(name);
    const bool isTooLarge = format == "png" && image.sizeInBytes() > LARGEST_AT_ONCE;
    auto* const writeImage = isTooLarge ? nullptr : writerOf(format);
    QByteArray bytes;
    if (!writeImage) {
        const std::string failure = encode(image, format, bytes);
        if (!failure.empty())
            return name + ": " + failure;
    }
    OutputFile file(name);
    const std::string failure = file.open();
    if (!failure.empty())
        return failure;
    try {
        if (writeImage)
            writeImage(image, [&file](std::string_view part) { file.write(part); });
        else
            file.write({bytes.constData(), std::size_t(bytes.size())});
    } catch (const std::bad_alloc&) {
        return name + ": " + TOO_LITTLE_MEMORY;
    }
    return !isWanted || isWanted() ? file.finish() : PICTURE_STOPPED;
}

PictureWriter::PictureWriter() : programs(std::make_unique<LeanPrograms>()) {}

PictureWriter::~PictureWriter() = default;

std::string PictureWriter::draw(SoGeneralScene* scene, const Picture& picture, QImage& image,
                                CameraNumbers* usedCamera, const GoOn& goOn)
{
    SoCamera* camera = makeCamera(picture.camera, scene, regionOf(picture), picture.edges);
    auto* root = new SoSeparator;
    root->ref();
    root->addChild(camera);
    root->addChild(scene);
    const CameraNumbers numbers = numbersOf(*camera);
    if (usedCamera)
        *usedCamera = numbers;
    const bool perspectiveBefore = scene->isShaderPersp();
    scene->setShaderPersp(picture.camera.isPerspective());
    image = QImage(picture.width, picture.height,
                   picture.transparent ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    setResolution(image, picture.dpi);
    setTexts(image, picture, numbers);
    std::string failure = TOO_LITTLE_MEMORY;
    try {
        if (!image.isNull())
            failure = render(root, picture, image, goOn);
    } catch (const std::bad_alloc&) {
        failure = TOO_LITTLE_MEMORY;
    }
    root->unref();
    scene->setShaderPersp(perspectiveBefore);
    return failure;
}

std::string PictureWriter::render(SoNode* graph, const Picture& picture, QImage& image,
                                  const GoOn& goOn)
{
    const int n = picture.samples;
    const LineWidener lines(graph, n);
    programs->use(graph);
    const Division division = divide(picture, int(std::ceil(lines.getWidest() / 2)) + 1);
    const SbVec2s tile{short(n * division.width + 2 * division.border),
                       short(n * division.height + 2 * division.border)};

    MessageCollector messages;
    TileRenderer& tiles = rendererFor(picture, tile);
    std::vector<std::uint32_t> black;
    for (int y = 0; y < picture.height; y += division.height) {
        for (int x = 0; x < picture.width; x += division.width) {
            const QRect part =
                QRect(x, y, division.width, division.height).intersected(image.rect());
            if (goOn && (x > 0 || y > 0)) {
                const double done =
                    (y + double(x) / picture.width * part.height()) / picture.height;
                bool goesOn = true;
                if (!tiles.letOthersDraw([&] { goesOn = goOn(done); }) || !goesOn)
                    return PICTURE_STOPPED;
            }
            const int left = n * x - division.border;
            const int below = n * (picture.height - 1 - part.bottom()) - division.border;
            bool rendered =
                tiles.render(graph, left, below, picture.transparent ? BLACK : picture.background);
            if (rendered && picture.transparent) {
                black.resize(std::size_t(tile[0]) * tile[1]);
                tiles.read(0, tile[1], black.data());
                rendered = tiles.render(graph, left, below, WHITE);
            }
            if (!rendered) {
                renderer.reset(); // so that the next picture tries again
                return "the picture could not be rendered: " + messages.first;
            }
            setPixels(image, part, tiles, tile[0], black, n, division.border);
        }
    }
    return "";
}

TileRenderer& PictureWriter::rendererFor(const Picture& picture, const SbVec2s& tile)
{
    const int width = picture.samples * picture.width, height = picture.samples * picture.height;
    if (!renderer || !renderer->fits(regionOf(picture), width, height, tile)) {
        renderer.reset(); // its memory first
        renderer = std::make_unique<TileRenderer>(regionOf(picture), width, height, tile);
    }
    return *renderer;
}

std::string writePicture(SoGeneralScene* scene, const Picture& picture, CameraNumbers* usedCamera)
{
    QImage image;
    std::string failure = PictureWriter().draw(scene, picture, image, usedCamera);
    try {
        return failure.empty() ? saveImage(image, picture.file) : failure;
    } catch (const std::bad_alloc&) {
        return TOO_LITTLE_MEMORY;
    }
}

} // namespace strandview
