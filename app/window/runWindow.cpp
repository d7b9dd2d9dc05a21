// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/runWindow.h"

#include <clocale>
#include <functional>
#include <iostream>
#include <memory>
#include <utility>

#include <Inventor/Qt/SoQt.h>
#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTimer>

#include <SoQtGeneralViewer.h>

#include "pictures/PictureWriter.h"
#include "request/print.h"
#include "window/MainWindow.h"
#include "window/checkDisplay.h"

namespace strandview {

void initialiseWindows(const char* programName)
{
    const std::string notice = chooseX11();
    if (!notice.empty())
        std::cerr << programName << ": " << notice << "\n";
    SoQtGeneralViewer::setDefaultAntialiasingLevel(4);
    SoQt::init(programName, programName);
    std::setlocale(LC_NUMERIC, "C"); // Qt took the user's; numbers have a decimal point here
    QApplication::setOrganizationName("strandview");
    QApplication::setApplicationName("strandview");
    SoQtGeneralViewer::initClass();
}

namespace {

// What the screen shows of the window, its frame left out.
std::string saveWindow(const QWidget& window, const std::string& file)
{
    const QImage image = window.screen()->grabWindow(window.winId()).toImage();
    return saveImage(image.convertToFormat(QImage::Format_RGB888), file);
}

void tellNotices(const ReadReport& report)
{
    for (const std::string& notice : report.notices)
        tell(notice);
}

// When all is on the screen as it stays.
void whenAtRest(MainWindow& window, const std::function<void()>& act)
{
    const int lookEvery = 20; // milliseconds
    if (window.isRestyling())
        QTimer::singleShot(lookEvery, &window, [&window, act] { whenAtRest(window, act); });
    else
        window.whenPainted(act);
}

// Of the window when its files are loaded and some seconds have passed, and closes it. What failed
// is told when the window goes.
void takePictureOnce(MainWindow& window, const Options& options, std::string& failure)
{
    failure = *options.windowPicture + ": the window was closed before its picture was taken";
    const auto take = [&window, &options, &failure] {
        QTimer::singleShot(int(1000 * options.windowPictureAfter), &window, [&] {
            whenAtRest(window, [&] {
                failure = saveWindow(window, *options.windowPicture);
                window.close();
            });
        });
    };
    // Once: what the user opens meanwhile asks for no other.
    if (window.isLoading())
        QObject::connect(&window, &MainWindow::loadingEnded, &window,
                         [take, first = true]() mutable {
                             if (std::exchange(first, false))
                                 take();
                         });
    else
        take();
}

} // namespace

std::string runWindow(const Options& options, const MainWindow::Loader& loader, ReadReport& report,
                      const MainWindow::SeriesOpener& opener,
                      const MainWindow::SessionReader& reader)
{
    std::unique_ptr<LoadJob> begun;
    if (!options.files.empty()) {
        Options first = options;
        if (options.series.align || options.series.between > 0) // the player goes to the frame
            first.frame.reset();
        begun = std::make_unique<LoadJob>(
            options.files,
            [loader, first](const std::vector<std::string>& files, ReadReport& loadReport,
                            Progress& progress) {
                return loader(files, first, loadReport, progress);
            },
            referenceOf(options));
        begun->waitFor(LoadJob::PATIENCE);
        report.error = begun->getFailure();
        if (!report.error.empty())
            return "";
    }

    MainWindow window(options, loader, opener, reader);
    if (begun) {
        window.follow(std::move(begun), [&](const ReadReport& loadReport) {
            report = loadReport;
            if (report.error.empty())
                tellNotices(report);
            else
                window.close();
        });
    }
    window.show();
    std::string failure;
    if (options.windowPicture)
        takePictureOnce(window, options, failure);
    SoQt::mainLoop();
    if (options.printCamera && window.hasScene())
        failure += failure.empty() ? print(formatCamera(window.getCameraNumbers()) + "\n") : "";
    return failure;
}

} // namespace strandview
