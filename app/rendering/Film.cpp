// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/Film.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include <unistd.h>

#include <QImage>
#include <QStandardPaths>
#include <QStringList>

#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

struct FilmFormat
{
    const char* ending;
    const char* container; ///< as ffmpeg calls it
    const char* coding;    ///< options, after the margin's filter
};

// Colours are those of HDTV, told to the player: without a word each takes others. H.264 and VP9
// halve them in each direction, which needs an even size.
const char* const VIDEO_FILTER =
    "pad=ceil(iw/2)*2:ceil(ih/2)*2:color=MARGIN,scale=out_color_matrix=bt709:out_range=tv";
const FilmFormat FILM_FORMATS[] = {
    {".mp4", "mp4",
     "-c:v libx264 -crf 18 -pix_fmt yuv420p -colorspace bt709 -color_primaries bt709 -color_trc "
     "bt709 "
     "-movflags +faststart"},
    {".webm", "webm",
     "-c:v libvpx-vp9 -crf 24 -b:v 0 -row-mt 1 -deadline good -cpu-used 4 -pix_fmt yuv420p "
     "-colorspace bt709 -color_primaries bt709 -color_trc bt709"},
    {".gif", "gif", "-loop 0"},
};
// A palette for each picture: one for all would keep all of them in memory.
const char* const GIF_FILTER =
    "split[a][b];[a]palettegen=stats_mode=single[p];[b][p]paletteuse=new=1";

const FilmFormat* formatOf(const std::string& name)
{
    const std::string small = inSmallLetters(name);
    for (const FilmFormat& format : FILM_FORMATS) {
        const std::string ending = format.ending;
        if (small.size() > ending.size() &&
            small.compare(small.size() - ending.size(), ending.size(), ending) == 0)
            return &format;
    }
    return nullptr;
}

// "0xRRGGBB".
std::string hexOf(const Colour& colour)
{
    char text[16];
    const auto byte = [](float part) { return unsigned(std::lround(255 * part)); };
    std::snprintf(text, sizeof text, "0x%02x%02x%02x", byte(colour.red), byte(colour.green),
                  byte(colour.blue));
    return text;
}

} // namespace

bool isFilm(const std::string& name) { return formatOf(name) != nullptr; }

void Film::Encoder::setupChildProcess() { ::setpgid(0, 0); }

Film::Film(const std::string& fileName, double framesPerSecond, const Colour& marginColour)
    : name(fileName), part(fileName + ".part"), rate(framesPerSecond), margin(hexOf(marginColour))
{}

Film::~Film()
{
    if (!encoder)
        return;
    encoder->kill();
    encoder->waitForFinished(-1);
    ::unlink(part.c_str());
}

std::string Film::start(const QImage& first)
{
    const QString program = QStandardPaths::findExecutable("ffmpeg");
    if (program.isEmpty())
        return name + ": found no ffmpeg, which makes films: install it (Debian: apt install "
                      "ffmpeg), or render pictures ('f_%05d.png')";
    const FilmFormat& format = *formatOf(name);
    const bool isGif = std::string(format.container) == "gif";
    QString filter = isGif ? GIF_FILTER : VIDEO_FILTER;
    filter.replace("MARGIN", QString::fromStdString(margin));
    QStringList arguments{"-hide_banner",
                          "-loglevel",
                          "error",
                          "-y",
                          "-f",
                          "rawvideo",
                          "-pixel_format",
                          "rgb24",
                          "-video_size",
                          QString("%1x%2").arg(first.width()).arg(first.height()),
                          "-framerate",
                          QString::fromStdString(formatted(rate)),
                          "-i",
                          "-",
                          "-an",
                          "-filter_complex",
                          filter};
    arguments += QString(format.coding).split(' ');
    arguments += {"-f", format.container, QString::fromStdString(part)};
    encoder = std::make_unique<Encoder>();
    encoder->setStandardOutputFile(QProcess::nullDevice());
    encoder->start(program, arguments);
    return encoder->waitForStarted(-1) ? "" : failure();
}

std::string Film::add(const QImage& picture)
{
    std::string fault = encoder ? "" : start(picture);
    const QImage image = picture.convertToFormat(QImage::Format_RGB888);
    for (int y = 0; fault.empty() && y < image.height(); ++y)
        encoder->write(reinterpret_cast<const char*>(image.constScanLine(y)), 3LL * image.width());
    while (fault.empty() && encoder->bytesToWrite() > 0) {
        if (!encoder->waitForBytesWritten(-1))
            fault = failure();
    }
    return fault;
}

std::string Film::finish()
{
    encoder->closeWriteChannel();
    encoder->waitForFinished(-1);
    const bool isWhole = encoder->exitStatus() == QProcess::NormalExit && encoder->exitCode() == 0;
    std::string fault = isWhole ? "" : failure();
    if (isWhole && std::rename(part.c_str(), name.c_str()) != 0)
        fault = name + ": " + std::strerror(errno);
    if (fault.empty())
        encoder.reset();
    return fault;
}

// The last that ffmpeg said.
std::string Film::failure()
{
    encoder->waitForFinished(1000);
    const QString said = QString::fromUtf8(encoder->readAllStandardError()).trimmed();
    const std::string last = said.section('\n', -1).toStdString();
    return name + ": ffmpeg failed" + (last.empty() ? "" : ": " + onOneLine(last));
}

} // namespace strandview
