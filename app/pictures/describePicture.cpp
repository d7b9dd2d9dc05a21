// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/describePicture.h"

#include <cmath>

#include <QImage>
#include <QImageReader>
#include <nlohmann/json.hpp>

namespace strandview {

namespace {

using Json = nlohmann::ordered_json;

struct NamedText
{
    const char* key; ///< in the file
    const char* inJson;
    const char* words; ///< before it
};

const NamedText TEXTS[] = {{"Title", "title", "shows"},
                           {"Software", "software", "made by"},
                           {"Camera", "camera", "camera"},
                           {"Command", "command", "command"}};

std::optional<QImage> readPicture(const std::string& file)
{
    QImageReader reader(QString::fromStdString(file));
    reader.setDecideFormatFromContent(true);
    const QByteArray format = reader.format();
    QImage image;
    if ((format != "png" && format != "jpeg") || !reader.read(&image))
        return std::nullopt;
    return image;
}

int dotsPerInch(const QImage& image) { return int(std::lround(image.dotsPerMeterX() * 0.0254)); }

} // namespace

std::optional<std::string> describePicture(const std::string& file)
{
    const std::optional<QImage> image = readPicture(file);
    if (!image)
        return std::nullopt;
    std::string text = file + ": a picture, " + std::to_string(image->width()) + " x " +
                       std::to_string(image->height()) + " pixels, " +
                       std::to_string(dotsPerInch(*image)) + " to the inch\n";
    for (const NamedText& named : TEXTS) {
        const std::string told = image->text(named.key).toStdString();
        if (!told.empty())
            text += "  " + std::string(named.words) + ": " + told + "\n";
    }
    return text;
}

std::optional<std::string> pictureToJson(const std::string& file)
{
    const std::optional<QImage> image = readPicture(file);
    if (!image)
        return std::nullopt;
    Json json{{"picture", file},
              {"width", image->width()},
              {"height", image->height()},
              {"dpi", dotsPerInch(*image)}};
    for (const NamedText& named : TEXTS) {
        const std::string told = image->text(named.key).toStdString();
        json[named.inJson] = told.empty() ? Json() : Json(told);
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace strandview
