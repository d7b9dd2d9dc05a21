// SPDX-License-Identifier: GPL-3.0-or-later
// Ten things that who works with rods and DNA does in a window, each in a few actions with the X
// server's keys and mouse: those that docs/window.md tells, whose table has a row for each.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QGLWidget>
#include <QImage>
#include <QInputDialog>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTreeView>
#include <QTreeWidget>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "User.h"
#include "plotting/PlotStack.h"
#include "request/thingTexts.h"
#include "scene/DataScene.h"
#include "scene/backbones.h"
#include "support/codeBlocks.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "window/CurvePanel.h"
#include "window/PictureDialog.h"
#include "window/PlacePanel.h"
#include "window/Player.h"
#include "window/SideBySide.h"
#include "window/ThingsModel.h"

namespace strandview {

using testing::HasSubstr;

namespace {

const std::filesystem::path PROJECT = PROJECT_FOLDER;

const int MOST_ACTIONS = 5;

bool isRed(const QColor& c) { return c.red() > 100 && c.green() < 60 && c.blue() < 60; }
bool isGreen(const QColor& c) { return c.green() > 100 && c.red() < 60 && c.blue() < 60; }
bool isBlue(const QColor& c) { return c.blue() > 100 && c.red() < 60 && c.green() < 60; }

// Of a tick in a list.
const int HALF_A_TICK = 10;

// "SeeInside" of "See inside".
std::string nameOfTask(const std::string& words)
{
    std::string name;
    bool begins = true;
    for (const char c : words) {
        const bool isLetter = std::isalnum(static_cast<unsigned char>(c)) != 0;
        if (isLetter)
            name += begins ? char(std::toupper(static_cast<unsigned char>(c))) : c;
        begins = !isLetter && c != '\'';
    }
    return name;
}

// What the guide says that is to be pressed and typed for a task, in that order.
std::vector<std::string> keysOfGuide(const std::string& task)
{
    static const std::regex row("\\| ([^|]+) \\| (.+) \\|"), key("`([^`]+)`");
    std::vector<std::string> keys;
    bool isThere = false;
    for (const std::string& line : readLines(PROJECT / "docs/window.md")) {
        std::smatch cells;
        if (!std::regex_match(line, cells, row) || nameOfTask(cells[1]) != task)
            continue;
        isThere = true;
        const std::string text = cells[2];
        for (std::sregex_iterator at(text.begin(), text.end(), key), end; at != end; ++at)
            keys.push_back((*at)[1]);
    }
    EXPECT_TRUE(isThere) << "no row of docs/window.md is of " << task;
    return keys;
}

// "Ctrl+Shift+V" of "Control+Shift+v"; "/" of "slash".
std::string asInGuide(const std::string& key)
{
    std::string text = std::regex_replace(key, std::regex("Control"), "Ctrl");
    text = std::regex_replace(text, std::regex("slash"), "/");
    if (text.size() == 1 || text[text.size() - 2] == '+')
        text.back() = char(std::toupper(static_cast<unsigned char>(text.back())));
    return text;
}

// As the X server calls it.
std::string keyOf(char letter)
{
    static const std::vector<std::pair<char, std::string>> names{
        {' ', "space"}, {'.', "period"}, {'#', "numbersign"}, {'-', "minus"}};
    for (const auto& [of, name] : names) {
        if (of == letter)
            return name;
    }
    return std::string(1, letter);
}

std::string rodAt(double y, const char* colour, double radius = 0.2)
{
    const std::string height = std::to_string(y);
    return R"({"points": [[0, )" + height + R"(, 0], [1, )" + height + R"(, 0], [2, )" + height +
           R"(, 0]], "radius": )" + std::to_string(radius) + R"(, "colour": ")" + colour + R"("})";
}

std::string fileOf(const std::string& rods)
{
    return R"({"strandview": 1, "rods": [)" + rods + "]}";
}

std::string threeRods()
{
    return fileOf(rodAt(0, "#ff0000") + ", " + rodAt(1, "#0000ff") + ", " + rodAt(2, "#ff0000"));
}

class WorkingUserTest : public DataWindowTest
{
protected:
    WorkingUserTest()
    {
        options.windowSize = {1100, 700};
        options.camera.side = Side::Z;
        options.showRibbon = false;
    }
    void TearDown() override
    {
        EXPECT_GT(actions, 0);
        EXPECT_LE(actions, MOST_ACTIONS);
        const std::string task = testing::UnitTest::GetInstance()->current_test_info()->name();
        EXPECT_EQ(pressed, keysOfGuide(task)) << "docs/window.md says something else";
    }

    // Actions, which are counted

    void key(const std::string& name)
    {
        ++actions;
        pressed.push_back(asInGuide(name));
        pressRealKey(name);
    }
    // Instead of what is in the field that has the keyboard, and leaves it with that key.
    void enter(const std::string& text, const char* last = "Return")
    {
        ++actions;
        pressed.push_back(text);
        pressRealKey("Control+a");
        for (const char letter : text)
            pressRealKey(keyOf(letter));
        pressRealKey(last);
    }
    void clickAt(const QPoint& place)
    {
        ++actions;
        clickRealButton(place.x(), place.y());
    }
    void clickAt(double x, double y) { clickAt(onScreen(x, y)); }
    void clickOn(const QWidget& widget) { clickAt(widget.mapToGlobal(widget.rect().center())); }
    void shiftClickAt(double x, double y)
    {
        ++actions;
        shiftClick(x, y);
    }
    void clickTwiceAt(const QPoint& place)
    {
        actions += 2;
        doubleClickRealButton(place.x(), place.y());
    }
    // Opens a list with a click, and clicks an entry.
    void choose(const char* list, const QString& text)
    {
        auto* const box = window->findChild<QComboBox*>(list);
        ASSERT_NE(box, nullptr) << list;
        ASSERT_GE(box->findText(text), 0) << text.toStdString();
        clickOn(*box);
        const QAbstractItemView& entries = *box->view();
        ASSERT_TRUE(comesTo([&] { return entries.isVisible(); }));
        ASSERT_TRUE(comesToRest());
        QTest::qWait(QApplication::doubleClickInterval()); // or the list takes it for one click
        const QModelIndex entry = box->model()->index(box->findText(text), 0);
        clickAt(entries.viewport()->mapToGlobal(entries.visualRect(entry).center()));
        ASSERT_TRUE(comesTo([&] { return !entries.isVisible() && box->currentText() == text; }));
    }

    // What is waited for

    // A panel slides into its place, and what is shown becomes another.
    bool comesToRest() const
    {
        std::vector<QRect> last;
        int same = 0;
        const auto places = [this] {
            std::vector<QRect> now{QRect(view()->mapToGlobal({0, 0}), view()->size())};
            for (const QDockWidget* dock : window->findChildren<QDockWidget*>()) {
                if (dock->isVisible())
                    now.emplace_back(dock->mapToGlobal({0, 0}), dock->size());
            }
            return now;
        };
        return comesTo([&] {
            const std::vector<QRect> now = places();
            same = std::exchange(last, now) == now && !window->isRestyling() ? same + 1 : 0;
            return same > 5;
        });
    }
    // Until a panel is there.
    template <typename Panel>
    Panel* comesToHave() const
    {
        auto* const panel = window->findChild<Panel*>();
        EXPECT_TRUE(comesTo([&] { return panel->isVisible(); }));
        EXPECT_TRUE(comesToRest());
        EXPECT_TRUE(comesToBePainted());
        return panel;
    }
    // A dialog that waits for its user, in whose first field one can type.
    template <typename Dialog>
    static User::Step inDialog(const std::function<void()>& act)
    {
        return {[] {
                    auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
                    return dialog && dialog->isActiveWindow() && dialog->focusWidget() &&
                           dialog->focusWidget()->hasFocus();
                },
                act};
    }
    // Does `begin`, which brings up the first dialog, and waits until all are gone.
    void withDialogs(const std::function<void()>& begin, std::vector<User::Step> steps) const
    {
        const User user(std::move(steps));
        begin();
        ASSERT_TRUE(comesTo([&] { return user.isDone() && !QApplication::activeModalWidget(); }));
        ASSERT_TRUE(comesTo([this] { return window->isActiveWindow(); }));
        ASSERT_TRUE(comesToRest());
        ASSERT_TRUE(comesToBePainted());
    }

    // What is seen

    bool has(bool (*holds)(const QColor&)) const
    {
        const QImage shown = screen(); // beside the axes in the corner
        return countPixels(shown.copy(0, 0, shown.width() - 100, shown.height()), holds) > 100;
    }
    QTreeView* things() const { return window->findChild<QTreeView*>("thingsList"); }
    // Of what is in the list of things.
    using DataWindowTest::onScreen;
    QRect onScreen(const QModelIndex& index) const
    {
        const QRect cell = things()->visualRect(index);
        return {things()->viewport()->mapToGlobal(cell.topLeft()), cell.size()};
    }
    // Of a thing of the only file, on the screen.
    QRect cellOf(int row, int column) const
    {
        const QAbstractItemModel& model = *things()->model();
        return onScreen(model.index(row, column, model.index(0, ThingsModel::NAME)));
    }

private:
    int actions = 0;
    std::vector<std::string> pressed;
};

// The height of the highest pixel of a rod in a view, above the lowest.
int heightIn(const QWidget& view)
{
    const QImage shown = keepIfFailed(view.screen()->grabWindow(view.winId()).toImage());
    int first = -1, last = -1;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width() - 100; ++x)
            if (isRed(shown.pixelColor(x, y))) {
                first = first < 0 ? y : first;
                last = y;
            }
    return first < 0 ? -1 : last - first;
}

} // namespace

TEST_F(WorkingUserTest, FindThePlaceOfLargestCurvature)
{
    std::string text;
    for (int i = -20; i <= 20; ++i)
        text += std::to_string(0.1 * i) + " " + std::to_string(0.01 * i * i) + " 0\n";
    openText(text, "parabola.txt");
    key("g");
    const PlotStack& curves = comesToHave<CurvePanel>()->getStack();
    key("n");
    const PlacePanel& numbers = *comesToHave<PlacePanel>();
    ASSERT_TRUE(comesTo([&] { return !curves.getPlot().panels.empty(); }));
    ASSERT_EQ(curves.getPlot().panels[0].name, "curvature");
    const std::vector<double>& values = curves.getPlot().panels[0].values.at(0);
    const auto peak = std::size_t(std::max_element(values.begin(), values.end()) - values.begin());
    clickAt(curves.mapToGlobal(curves.positionOf(0, {0, peak})));
    ASSERT_TRUE(comesTo([&] { return numbers.getText().contains("curvature"); }));
    EXPECT_THAT(numbers.getText().toStdString(), HasSubstr("index from 0\t20\n"));
    EXPECT_THAT(statusText(), HasSubstr("rod 1"));
    EXPECT_TRUE(comesTo([this] {
        return isYellow(screen().pixelColor(view()->mapFromGlobal(onScreen(0, 0))));
    })) << "at the vertex";
}

TEST_F(WorkingUserTest, CompareTwoFrames)
{
    options.tubeColour = Colour{1, 0, 0};
    options.radius = 0.1;
    openText("0 0 0\n1 0 0\n2 0 0\n\n\n0 0 0\n1 0.3 0\n2 1 0\n\n\n0 0 0\n1 1 0\n2 2 0\n",
             "run.txt");
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    key("Control+End");
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 2 && player()->isUpToDate(); }));
    key("F3");
    ASSERT_TRUE(comesTo([this] { return window->findChildren<QGLWidget*>().size() == 2; }));
    ASSERT_TRUE(comesToRest());
    const QWidget& first = *window->getSideBySide().getFirstArea()->findChild<QGLWidget*>();
    const QWidget& beside = *window->getSideBySide().getViews().at(0)->getViewer().getGLWidget();
    EXPECT_TRUE(comesTo([&] {
        const int height = heightIn(beside);
        return height > 0 && heightIn(first) > 5 * height;
    })) << "risen, and beside it as it lay at first";
}

TEST_F(WorkingUserTest, HideAStrand)
{
    options.dna.bases = false;
    ASSERT_EQ(readThings("DNA 1 strand 1: colour=#ff0000; DNA 1 strand 2: colour=#0000ff",
                         options.things),
              "");
    open(std::string(SAMPLES_FOLDER) + "/dna.txt");
    ASSERT_TRUE(comesTo([this] { return has(isRed) && has(isBlue); }));
    key("t");
    ASSERT_TRUE(comesTo([this] { return things()->isVisible(); }));
    ASSERT_TRUE(comesToRest());
    const QAbstractItemModel& model = *things()->model();
    const QModelIndex dna = model.index(0, ThingsModel::NAME, model.index(0, ThingsModel::NAME));
    const QRect name = cellOf(0, ThingsModel::NAME);
    clickAt(QPoint(name.left() - things()->indentation() / 2, name.center().y()));
    ASSERT_TRUE(comesTo([&] { return things()->isExpanded(dna); }));
    ASSERT_TRUE(comesToRest());
    const QRect second = onScreen(model.index(1, ThingsModel::NAME, dna));
    clickAt(QPoint(second.left() + HALF_A_TICK, second.center().y()));
    EXPECT_TRUE(comesTo([this] { return !has(isBlue); }));
    EXPECT_TRUE(has(isRed)) << "the other one stays";
}

TEST_F(WorkingUserTest, MakeYesterdaysPictureInAnotherColour)
{
    options.tubeColour = Colour{0, 0, 1};
    options.radius = 0.1;
    openText("0 0 0\n1 0.7 0\n2 0 0\n", "rod.txt");
    pressRealKey("Control+4");
    pressRealKey("Shift+D");
    ASSERT_TRUE(comesToBePainted());
    const CameraNumbers camera = window->getCameraNumbers();
    const QImage yesterday = screen();
    window->saveSession(QString::fromStdString(folder.path("work.strandview")));
    ASSERT_TRUE(comesTo([this] { return statusText().find("Saved") == 0; }));
    window.reset();

    options.tubeColour.reset();
    openText("0 0 0\n1 0 0\n2 0 1\n", "today.txt");
    withDialogs([this] { key("Control+o"); },
                {inDialog<QFileDialog>([this] { enter("work.strandview"); })});
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
    key("o");
    ASSERT_TRUE(
        comesTo([this] { return window->findChild<QPushButton*>("tube-colour")->isVisible(); }));
    ASSERT_TRUE(comesToRest());
    withDialogs([this] { clickOn(*window->findChild<QPushButton*>("tube-colour")); },
                {inDialog<QDialog>([this] { enter("#ff0000"); })});
    EXPECT_TRUE(comesTo([&] { return has(isRed) && !has(isBlue); }));
    const QImage today = screen(); // which the panel leaves less room
    ASSERT_EQ(today.height(), yesterday.height());
    const int cut = (yesterday.width() - today.width()) / 2;
    const int blue = countPixels(yesterday.copy(cut, 0, today.width(), today.height()), isBlue);
    EXPECT_NEAR(countPixels(today, isRed), blue, 0.02 * blue);
    EXPECT_EQ(window->getCameraNumbers(), camera);
}

TEST_F(WorkingUserTest, MeasureAGroove)
{
    options.dna.bases = false;
    open(std::string(SAMPLES_FOLDER) + "/dna.txt");
    ASSERT_TRUE(comesToBePainted());
    key("n");
    comesToHave<PlacePanel>();
    const Dna& dna = scene->getData()->dnas.at(0);
    const auto nearest = [&](Strand strand) {
        const auto all = idealBackbone(dna, strand, 1);
        return *std::max_element(all.begin() + 10, all.end() - 10,
                                 [](const auto& a, const auto& b) { return a.z < b.z; });
    };
    const auto first = nearest(Strand::FIRST), second = nearest(Strand::SECOND);
    clickAt(first.x, first.y);
    ASSERT_TRUE(comesTo([this] { return countPixels(screen(), isYellow) > 0; }));
    shiftClickAt(second.x, second.y);
    const std::string width = readable((first - second).getNorm()) + " Å";
    auto* const list = window->findChild<QTreeWidget*>("measurementList");
    const PlacePanel& numbers = *window->findChild<PlacePanel*>();
    ASSERT_TRUE(comesTo([&] { return numbers.getText().contains("distance"); }));
    key("m");
    ASSERT_TRUE(comesTo([&] { return list->topLevelItemCount() == 1; }));
    EXPECT_EQ(list->topLevelItem(0)->text(1).toStdString(), width);
}

TEST_F(WorkingUserTest, SeeInside)
{
    openText(fileOf(rodAt(0, "#ff0000", 0.5) + ", " + rodAt(0, "#0000ff", 0.2)), "rods.json");
    ASSERT_TRUE(comesToBePainted());
    ASSERT_TRUE(has(isRed));
    ASSERT_FALSE(has(isBlue)) << "inside the other one";
    key("slash");
    EXPECT_TRUE(comesTo([this] { return has(isBlue); }));
}

TEST_F(WorkingUserTest, ColourOneRodOfMany)
{
    openText(threeRods(), "rods.json");
    ASSERT_TRUE(comesTo([this] { return has(isRed) && has(isBlue); }));
    key("t");
    ASSERT_TRUE(comesTo([this] { return things()->isVisible(); }));
    ASSERT_TRUE(comesToRest());
    withDialogs([this] { clickTwiceAt(cellOf(1, ThingsModel::COLOUR).center()); },
                {inDialog<QDialog>([this] { enter("#00ff00"); })});
    EXPECT_TRUE(comesTo([this] { return has(isGreen) && !has(isBlue); }));
    EXPECT_TRUE(has(isRed)) << "the others stay";
}

TEST_F(WorkingUserTest, ColoursOfOneRangeInAllFramesSymmetricAbout0)
{
    // Of the first frame from -1 to 0, of the second one to 3.
    const auto frame = [](const std::string& last) {
        return R"({"rods": [{"points": [[0, 0, 0], [1, 0, 0], [2, 0, 0], [3, 0, 0], [4, 0, 0]],
                   "radius": 0.5, "scalars": {"load": [-1, -1, -1, -1, )" +
               last + "]}}]}";
    };
    openText(R"({"strandview": 1, "series": [)" + frame("0") + ", " + frame("3") + "]}",
             "run.json");
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    key("c");
    ASSERT_TRUE(comesTo([this] { return window->findChild<QWidget*>("colour-by")->isVisible(); }));
    ASSERT_TRUE(comesToRest());
    choose("colour-by", "load");
    ASSERT_TRUE(comesToRest());
    choose("rangeList", "symmetric about 0");
    ASSERT_TRUE(comesToRest());
    const auto end = [this](const char* name) {
        return window->findChild<QLineEdit*>(name)->text().toStdString();
    };
    EXPECT_TRUE(comesTo([&] { return end("rangeMin") == "-3"; })) << end("rangeMin");
    EXPECT_EQ(end("rangeMax"), "3");
    ASSERT_TRUE(comesToBePainted());
    const auto colourOfMinus1 = [this] {
        return screen().pixelColor(view()->mapFromGlobal(onScreen(0.5, 0)));
    };
    const QColor first = colourOfMinus1();
    player()->goTo(1);
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 1 && player()->isUpToDate(); }));
    ASSERT_TRUE(comesToBePainted());
    const QColor now = colourOfMinus1();
    for (const auto& part : {&QColor::red, &QColor::green, &QColor::blue})
        EXPECT_NEAR((now.*part)(), (first.*part)(), 2);
    EXPECT_EQ(end("rangeMax"), "3");
}

TEST_F(WorkingUserTest, KeepAViewAndComeBackToIt)
{
    openText("0 0 0\n1 0.7 0\n2 0 0\n", "rod.txt");
    ASSERT_TRUE(comesToBePainted());
    const QImage before = screen();
    withDialogs([this] { key("Control+Shift+v"); },
                {inDialog<QInputDialog>([this] { enter("front"); })});
    key("Control+d");
    ASSERT_TRUE(comesTo([&] { return screen() != before; }));
    key("Alt+1");
    EXPECT_TRUE(comesTo([&] { return screen() == before; }));
}

TEST_F(WorkingUserTest, SaveAPicture85MmWideAt600Dpi)
{
    openText("0 0 0\n1 0.7 0\n2 0 0\n", "rod.txt");
    ASSERT_TRUE(comesToBePainted());
    withDialogs([this] { key("Control+p"); }, {inDialog<PictureDialog>([this] {
                                                   enter("85 mm", "Tab");
                                                   key("Alt+i");
                                                   enter("600");
                                               }),
                                               inDialog<QFileDialog>([this] { enter("figure"); })});
    const QImage saved(QString::fromStdString(folder.path("figure.png")));
    EXPECT_EQ(saved.width(), std::lround(85 / 25.4 * 600));
    EXPECT_NEAR(saved.dotsPerMeterX(), 600 / 0.0254, 1);
    EXPECT_NEAR(double(saved.height()) / saved.width(), double(view()->height()) / view()->width(),
                1e-3);
}

} // namespace strandview
