// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_DATAWINDOWTEST_H
#define STRANDVIEW_TESTS_DATAWINDOWTEST_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QImage>
#include <QPoint>
#include <gtest/gtest.h>

#include <algebra3d/Vector3.h>

#include "programWindows.h"
#include "request/CameraNumbers.h"
#include "request/Options.h"
#include "support/TemporaryFolder.h"
#include "window/MainWindow.h"

class QAction;
class QWidget;

namespace strandview {

class DataScene;
class Player;

/// A window of the program that shows files, as its user has it: with the X server's keys and
/// mouse, of a screen on which it is alone. Settings are those of a first start.
class DataWindowTest : public testing::Test
{
protected:
    static void SetUpTestSuite();

    DataWindowTest();
    ~DataWindowTest() override;

    /// Shows a window with these options, which is active and has loaded the file then. Fatal
    /// failures if it does not come to that.
    void open(const std::string& name);
    /// As the program begins with it, at the frame that the options ask for.
    void start(const std::string& name);
    /// Of a file that is written for it.
    void openText(const std::string& text, const std::string& name);
    /// Shows the numbers of places by their key.
    void showNumbers() const;
    /// Whether a whole frame that was drawn from now on is on the screen at last.
    [[nodiscard]] bool comesToBePainted() const;

    /// Lets single things look so, as the option --thing does.
    void setThings(const std::string& text) const;
    Player* player() const { return window->getPlayer(); }
    QWidget* view() const;
    /// Of a further view, the first of them unless said; null as long as it shows nothing.
    DataScene* sceneBeside(std::size_t index = 0) const;
    std::string statusText() const;
    /// An entry of the menus that begins so, "&Undo"; a failure if there is none.
    QAction* action(const char* text) const;
    /// "&Undo camera"
    std::string undoText() const;
    /// What the screen shows of the view.
    QImage screen() const;

    // On the screen

    /// Of a point of the plane z = 0, seen from z in parallel.
    QPoint onScreen(double x, double y) const;
    /// Clicks there.
    void click(double x, double y) const;
    void shiftClick(double x, double y) const;
    /// Of the first DNA the points of its backbones that are nearest to who looks from z, not at
    /// its ends: across a groove.
    std::pair<algebra3d::Vector3<double>, algebra3d::Vector3<double>> acrossGroove() const;
    /// Clicks in the middle of a widget, or at one of its places.
    static void click(const QWidget& widget);
    static void click(const QWidget& widget, const QPoint& place);
    /// Types these keys in place of all that is in a field, which is clicked if it has not the
    /// keyboard. Fatal failures if it does not get it.
    static void typeInto(const QWidget& field, const std::vector<std::string>& keys);
    /// Turns what a view shows until its camera is another one; false if it does not come to that.
    [[nodiscard]] static bool turn(const QWidget& view,
                                   const std::function<CameraNumbers()>& camera);

private:
    MainWindow::Loader makeLoader();
    void makeWindow();

protected:
    const TemporaryFolder folder;
    Options options;
    std::string file;
    DataScene* scene = nullptr; ///< the window's, once it is loaded
    std::unique_ptr<MainWindow> window;
};

/// A straight rod along x, from 0 to there.
std::string rodTo(double end);
/// Frames of such a rod, each longer by 1.
std::string seriesTo(double end, int frames);

/// The colour of the marks of places.
bool isYellow(const QColor& c);

/// How many pixels have such a colour; of null, which shows nothing, a failure and -1.
int countPixels(const QImage& picture, bool (*holds)(const QColor&));

} // namespace strandview

#endif
