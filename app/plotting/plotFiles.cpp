// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotting/plotFiles.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string_view>

#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QLoggingCategory>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/wording.h>
#include <strandview/model/Series.h>

#include "output/OutputFile.h"
#include "pictures/PictureWriter.h"
#include "plotting/PlotStack.h"
#include "plotting/plotFrames.h"
#include "scene/Progress.h"
#include "scene/idleOptions.h"
#include "scene/readFiles.h"

namespace strandview {

namespace {

// In pixels of a screen.
const int WIDTH = 900, PANEL_HEIGHT = 240, AXIS_HEIGHT = 80;
const double INCH = 0.0254;      // metres
const double POINTS = 72;        // per inch, of paper
const int PDF_RESOLUTION = 1200; // per inch, of the places of lines

// What says which numbers are plotted, and how.
const std::set<std::string> OF_PLOT{"--plot",    "--scalars",     "--against",   "--at",
                                    "--frame",   "--frames",      "--size",      "--series",
                                    "--closed",  "--pairs",       "--normalise", "--frame-rows",
                                    "--compare", "--tube-colour", "--dna-unit"};

std::string endingOf(const std::string& name)
{
    return inSmallLetters(std::filesystem::path(name).extension().string());
}

// Widgets without a display; numbers have a decimal point afterwards as before.
std::unique_ptr<QApplication> makeApplication()
{
    static char name[] = "strandview";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    if (QCoreApplication::instance())
        return nullptr;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Such as that of a machine without sessions, which has no folder for them.
    QLoggingCategory::setFilterRules("default.warning=false");
    auto application = std::make_unique<QApplication>(count, arguments);
    std::setlocale(LC_NUMERIC, "C");
    return application;
}

void draw(PlotStack& stack, QPaintDevice& device, const QSizeF& size)
{
    QPainter painter(&device);
    painter.fillRect(QRectF(0, 0, device.width(), device.height()), Qt::white);
    stack.draw(painter, size);
}

QByteArray svgOf(PlotStack& stack, const QSize& size)
{
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setResolution(stack.logicalDpiX());
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    generator.setTitle("strandview");
    draw(stack, generator, size);
    return buffer.data();
}

QByteArray pdfOf(PlotStack& stack, const QSize& size)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setPageSize(QPageSize(QSizeF(size) * POINTS / stack.logicalDpiX(), QPageSize::Point,
                                 "plot", QPageSize::ExactMatch));
    writer.setPageMargins({0, 0, 0, 0});
    writer.setResolution(PDF_RESOLUTION);
    writer.setCreator("strandview");
    draw(stack, writer, size);
    return buffer.data();
}

// The picture's resolution makes fonts and lines as wide as it is larger.
QImage imageOf(PlotStack& stack, const QSize& size)
{
    QImage image(size, QImage::Format_RGB888);
    if (image.isNull())
        return image;
    const double scale = double(size.width()) / WIDTH;
    const int dotsPerMetre = int(std::ceil(scale * stack.logicalDpiX() / INCH));
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    const double asDrawn = double(image.logicalDpiX()) / stack.logicalDpiX();
    draw(stack, image, QSizeF(size) / asDrawn);
    return image;
}

std::string save(const QByteArray& bytes, const std::string& name)
{
    return writeFile(name, std::string_view(bytes.constData(), std::size_t(bytes.size())));
}

std::optional<Plot> plotOneFrame(const Options& options, ReadReport& report, Progress& progress)
{
    const std::optional<Configuration> data = readFiles(options.files, options, report, progress);
    if (!data)
        return std::nullopt;
    // That it is the first of several is told by whoever read them but did not count them.
    if (report.frames > 1 && !options.frame && options.series.isOfFiles)
        report.notices.push_back("the first of " + counted(report.frames, "frame") +
                                 "; --frame N takes another, --against time all");
    else if (report.frames > 1 && !options.frame)
        report.notices.push_back("--against time plots all frames");
    return plotOf(*data, makeStyle(options, *data), options.plot, report.error);
}

std::optional<Plot> plotOverTime(const Options& options, ReadReport& report, Progress& progress,
                                 bool& isWhole)
{
    const OpenedFiles opened = openFiles(options.files, options, report, progress);
    if (!opened.series)
        return std::nullopt;
    Series& series = *opened.series;
    std::vector<std::size_t> frames =
        framesOf(options.series.frames.value_or(FrameSlice()), series.count());
    if (frames.empty()) {
        report.error = "--frames: found none of " + counted(series.count(), "frame") +
                       ", expected one at least";
        return std::nullopt;
    }
    std::sort(frames.begin(), frames.end());
    TimePlot plot(options.plot);
    std::optional<Style> style; // of the first frame, as the colours of a series are
    std::string fault;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        progress.show("Plotting: frame " + std::to_string(i) + " of " +
                      std::to_string(frames.size()));
        const LoadedFrame loaded = series.load(frames[i]);
        const std::optional<double> time = series.time(frames[i]);
        if (!loaded.configuration) {
            fault = fault.empty() ? loaded.error : fault;
            report.notices.push_back("frame " + std::to_string(frames[i]) + ": " + loaded.error);
            plot.addMissing(frames[i], time);
            continue;
        }
        if (!style)
            style = makeStyle(options, *loaded.configuration);
        plot.add(*loaded.configuration, *style, frames[i], time);
    }
    isWhole = fault.empty();
    if (!style)
        report.error = fault;
    return style ? plot.finish(report.error) : std::nullopt;
}

} // namespace

std::string checkPlotName(const std::string& option, const std::string& name)
{
    const std::string ending = endingOf(name);
    return ending == ".svg" || ending == ".pdf" || ending == ".png"
               ? ""
               : option + ": found " + inQuotes(name) +
                     ", expected a name that ends in .svg, .pdf or .png";
}

QSize plotSize(std::size_t panels) { return {WIDTH, int(panels) * PANEL_HEIGHT + AXIS_HEIGHT}; }

std::string writePlot(PlotStack& stack, const std::string& name, const QSize& size)
{
    const std::string ending = endingOf(name);
    if (ending == ".svg")
        return save(svgOf(stack, size), name);
    if (ending == ".pdf")
        return save(pdfOf(stack, size), name);
    const QImage image = imageOf(stack, size);
    return image.isNull() ? name + ": too little memory for the picture" : saveImage(image, name);
}

std::string plotFiles(const Options& options, ReadReport& report, bool& isWhole)
{
    isWhole = true;
    const bool isOverTime = options.plot.against == PlotAxis::TIME;
    if (isOverTime && !options.plot.at)
        report.error = checkLineNumbers(options.plot);
    if (!report.error.empty())
        return "";
    TerminalProgress progress;
    const std::optional<Plot> plot = isOverTime ? plotOverTime(options, report, progress, isWhole)
                                                : plotOneFrame(options, report, progress);
    progress.hide();
    if (!plot)
        return "";
    const auto idle = findIdleOptions(options, OF_PLOT, "--plot draws curves alone");
    report.notices.insert(report.notices.end(), idle.begin(), idle.end());
    if (plot->lines.size() > PlotStack::LARGEST_LEGEND)
        report.notices.push_back("no legend: found " + counted(plot->lines.size(), "line"));
    const std::unique_ptr<QApplication> application = makeApplication();
    PlotStack stack;
    stack.show(*plot);
    const QSize size = options.windowSize
                           ? QSize(options.windowSize->first, options.windowSize->second)
                           : plotSize(plot->panels.size());
    return writePlot(stack, *options.plot.file, size);
}

} // namespace strandview
