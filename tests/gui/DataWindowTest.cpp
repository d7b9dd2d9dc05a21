// SPDX-License-Identifier: GPL-3.0-or-later
#include "DataWindowTest.h"

#include <algorithm>
#include <cmath>

#include <QAction>
#include <QApplication>
#include <QGLWidget>
#include <QPixmap>
#include <QScreen>
#include <QSettings>
#include <QTest>

#include "command/parseOptions.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "scene/SceneLoader.h"
#include "scene/backbones.h"
#include "scene/readFiles.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "window/PlacePanel.h"
#include "window/SideBySide.h"
#include "window/StatusText.h"

namespace strandview {

void DataWindowTest::SetUpTestSuite()
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // which no test could find
    initialiseProgramOnce("DataWindowTest");
}

DataWindowTest::DataWindowTest() { QSettings().clear(); }

DataWindowTest::~DataWindowTest() = default;

MainWindow::Loader DataWindowTest::makeLoader()
{
    return [this](const std::vector<std::string>& files, const Options& asked, ReadReport& report,
                  Progress& progress) {
        const SceneMaker make = prepareScene(files, asked, report, progress, Opening::AT_ONCE);
        if (!make)
            return make;
        return SceneMaker(
            [this, make](ReadReport& made, Progress& nodes) { return scene = make(made, nodes); });
    };
}

void DataWindowTest::makeWindow()
{
    window = std::make_unique<MainWindow>(
        options, makeLoader(),
        [](const std::vector<std::string>& files, const Options& asked, ReadReport& report,
           Progress& progress) {
            return moveFrames(openFiles(files, asked, report, progress, Opening::AT_ONCE).series,
                              asked);
        },
        optionsOfSession);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
}

void DataWindowTest::open(const std::string& name)
{
    file = name;
    ASSERT_NO_FATAL_FAILURE(makeWindow());
    window->openFiles({QString::fromStdString(file)});
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
}

void DataWindowTest::start(const std::string& name)
{
    file = name;
    Options first = options;
    if (options.series.align || options.series.between > 0)
        first.frame.reset();
    ASSERT_NO_FATAL_FAILURE(makeWindow());
    const auto load = [load = makeLoader(), first](const std::vector<std::string>& files,
                                                   ReadReport& report, Progress& progress) {
        return load(files, first, report, progress);
    };
    window->follow(std::make_unique<LoadJob>(std::vector<std::string>{file}, load),
                   [](const ReadReport& report) { EXPECT_EQ(report.error, ""); });
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
}

void DataWindowTest::openText(const std::string& text, const std::string& name)
{
    open(folder.write(name, text));
}

void DataWindowTest::showNumbers() const
{
    ASSERT_TRUE(comesToBePainted());
    pressRealKey("n");
    ASSERT_TRUE(comesTo([this] { return window->findChild<PlacePanel*>()->isVisible(); }));
    ASSERT_TRUE(comesToBePainted());
}

bool DataWindowTest::comesToBePainted() const
{
    bool isPainted = false;
    window->whenPainted([&isPainted] { isPainted = true; });
    return comesTo([&] { return isPainted; });
}

void DataWindowTest::setThings(const std::string& text) const
{
    StyleRequest style = window->getStyle();
    ASSERT_EQ(settingOf("thing").read(text, style), "");
    window->setStyle(style);
}

DataScene* DataWindowTest::sceneBeside(std::size_t index) const
{
    const std::vector<BesideView*>& views = window->getSideBySide().getViews();
    return index < views.size() ? views[index]->getScene() : nullptr;
}

QWidget* DataWindowTest::view() const { return window->findChild<QGLWidget*>(); }

std::string DataWindowTest::statusText() const
{
    return window->findChild<StatusText*>()->getAll().toStdString();
}

QAction* DataWindowTest::action(const char* text) const
{
    for (QAction* known : window->findChildren<QAction*>()) {
        if (known->text().startsWith(text))
            return known;
    }
    ADD_FAILURE() << "no " << text;
    return nullptr;
}

std::string DataWindowTest::undoText() const { return action("&Undo")->text().toStdString(); }

QImage DataWindowTest::screen() const
{
    return keepIfFailed(view()->screen()->grabWindow(view()->winId()).toImage());
}

QPoint DataWindowTest::onScreen(double x, double y) const
{
    const CameraNumbers camera = window->getCameraNumbers();
    const double pixels = std::min(view()->width(), view()->height()) / camera.size;
    return view()->mapToGlobal(
        {int(std::lround(view()->width() / 2.0 + (x - camera.position[0]) * pixels)),
         int(std::lround(view()->height() / 2.0 - (y - camera.position[1]) * pixels))});
}

std::pair<algebra3d::Vector3<double>, algebra3d::Vector3<double>>
DataWindowTest::acrossGroove() const
{
    const Dna& dna = scene->getData()->dnas.at(0);
    const auto nearest = [&](Strand strand) {
        const auto all = idealBackbone(dna, strand, 1);
        return *std::max_element(all.begin() + 10, all.end() - 10,
                                 [](const auto& a, const auto& b) { return a.z < b.z; });
    };
    return {nearest(Strand::FIRST), nearest(Strand::SECOND)};
}

void DataWindowTest::click(double x, double y) const
{
    const QPoint place = onScreen(x, y);
    clickRealButton(place.x(), place.y());
}

void DataWindowTest::shiftClick(double x, double y) const
{
    const QPoint place = onScreen(x, y);
    clickRealButtonWith("Shift", place.x(), place.y());
}

void DataWindowTest::click(const QWidget& widget) { click(widget, widget.rect().center()); }

void DataWindowTest::click(const QWidget& widget, const QPoint& place)
{
    const QPoint there = widget.mapToGlobal(place);
    clickRealButton(there.x(), there.y());
}

void DataWindowTest::typeInto(const QWidget& field, const std::vector<std::string>& keys)
{
    if (!field.hasFocus())
        click(field);
    ASSERT_TRUE(comesTo([&] { return field.hasFocus(); })) << field.objectName().toStdString();
    pressRealKey("Control+a");
    for (const std::string& key : keys)
        pressRealKey(key);
}

bool DataWindowTest::turn(const QWidget& view, const std::function<CameraNumbers()>& camera)
{
    const CameraNumbers before = camera();
    const QPoint from = view.mapToGlobal(view.rect().center());
    // A busy window may see no place between the first and the last: then nothing is turned.
    for (int attempt = 0; attempt < 10 && camera() == before; ++attempt) {
        dragRealPointer(from.x(), from.y(), from.x() + 60, from.y() + 40);
        QTest::qWait(300);
    }
    return !(camera() == before);
}

std::string rodTo(double end) { return "0 0 0\n1 0 0\n" + std::to_string(end) + " 0 0\n"; }

std::string seriesTo(double end, int frames)
{
    std::string text;
    for (int i = 0; i < frames; ++i)
        text += (i == 0 ? "" : "\n\n") + rodTo(end + i);
    return text;
}

bool isYellow(const QColor& c) { return c.red() > 220 && c.green() > 180 && c.blue() < 90; }

int countPixels(const QImage& picture, bool (*holds)(const QColor&))
{
    if (picture.isNull()) {
        ADD_FAILURE() << "no picture";
        return -1;
    }
    int pixels = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            pixels += holds(picture.pixelColor(x, y));
    return pixels;
}

} // namespace strandview
