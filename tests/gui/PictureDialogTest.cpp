// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PictureDialog.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "User.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "support/runProgram.h"
#include "window/MeasurementKeeper.h"
#include "window/PlaceMarks.h"
#include "window/Player.h"
#include "window/SideBySide.h"

namespace strandview {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const char* const ROD = "x y z load\n-1 0 0 3\n-0.5 0.1 0 -1\n0 0.2 0 0\n0.5 0.1 0 1\n1 0 0 2\n";

bool isInk(const QColor& c) { return c.value() < 60; }

class PictureDialogTest : public DataWindowTest
{
protected:
    // With the mouse on a key's place.
    void openRod(const StyleRequest& style = {})
    {
        static_cast<StyleRequest&>(options) = style;
        ASSERT_NO_FATAL_FAILURE(openText(ROD, "my rod.txt"));
        ASSERT_TRUE(comesToBePainted());
    }
    // Of several, the first is 0.
    QWidget& viewOf(std::size_t index) const
    {
        if (index == 0)
            return *view();
        return *window->getSideBySide().getViews().at(index - 1)->getViewer().getGLWidget();
    }
    void activate(std::size_t index) const
    {
        click(viewOf(index));
        ASSERT_TRUE(comesTo([&] { return viewOf(index).hasFocus(); }));
    }
    static PictureDialog* dialog()
    {
        return qobject_cast<PictureDialog*>(QApplication::activeModalWidget());
    }
    template <typename Widget>
    static Widget* find(const char* name)
    {
        return dialog()->findChild<Widget*>(name);
    }
    static User::Step inDialog(const std::function<void()>& act)
    {
        return {[] { return dialog() && dialog()->isActiveWindow() && dialog()->isEnabled(); },
                act};
    }
    // Types a name instead of what the dialog for files proposes, without an ending.
    static User::Step nameFile(const std::string& name)
    {
        const auto chooser = [] {
            return qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        };
        return {[chooser] { return chooser() && chooser()->isActiveWindow(); },
                [chooser, name] {
                    auto* const field = chooser()->findChild<QLineEdit*>();
                    ASSERT_TRUE(comesTo([&] { return field->hasFocus(); }));
                    pressRealKey("Control+a");
                    for (const char letter : name)
                        pressRealKey(std::string(1, letter));
                    ASSERT_TRUE(comesTo([&] { return field->text().toStdString() == name; }));
                    pressRealKey("Return");
                }};
    }
    // Until the keys that were pressed have reached it.
    static bool comesToHave(const char* field, double value)
    {
        return comesTo(
            [&] { return find<QAbstractSpinBox>(field)->property("value").toDouble() == value; });
    }
    // Ctrl+P, and what the user does then, until the window has the keyboard again.
    void savePicture(std::vector<User::Step> steps)
    {
        const User user(std::move(steps));
        pressRealKey("Control+p");
        ASSERT_TRUE(comesTo([&] { return user.isDone() && !QApplication::activeModalWidget(); }));
        ASSERT_TRUE(comesTo([&] { return window->isActiveWindow(); }));
    }
    std::string bytesOf(const std::string& name) const
    {
        std::ifstream stream(folder.path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }
    QImage picture(const std::string& name) const
    {
        return keepIfFailed(QImage(QString::fromStdString(folder.path(name))));
    }
    // Run as it was copied, but for the program's folder; it writes picture.png.
    std::string runCopiedCommand() const
    {
        QApplication::clipboard()->clear();
        pressRealKey("Control+Shift+c");
        EXPECT_TRUE(comesTo([] { return !QApplication::clipboard()->text().isEmpty(); }));
        const std::string line = QApplication::clipboard()->text().toStdString();
        const std::string program = "strandview";
        EXPECT_EQ(line.rfind(program + " ", 0), 0u);
        const ProgramRun run =
            runProgram("/bin/sh", {"-c", "cd '" + folder.path("") + "' && " + STRANDVIEW_PROGRAM +
                                             line.substr(program.size())});
        EXPECT_EQ(run.status, 0) << run.error;
        return line;
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path("")))
            names.push_back(entry.path().filename().string());
        return names;
    }
};

} // namespace

TEST_F(PictureDialogTest, AWidthThatIsTypedIsThatOfThePictureAndOfTheCopiedCommand)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    const QSize size = view()->size();
    ASSERT_NO_FATAL_FAILURE(
        savePicture({inDialog([&] {
                         EXPECT_EQ(find<QDoubleSpinBox>("pictureWidth")->value(), size.width());
                         EXPECT_EQ(find<QDoubleSpinBox>("pictureHeight")->value(), size.height());
                         for (const char* key : {"3", "0", "0"})
                             pressRealKey(key);
                         ASSERT_TRUE(comesToHave("pictureWidth", 300));
                         pressRealKey("Return");
                     }),
                     nameFile("knot")}));
    const QImage saved = picture("knot.png");
    EXPECT_EQ(saved.width(), 300);
    EXPECT_NEAR(saved.height(), 300.0 * size.height() / size.width(), 0.51);
    EXPECT_GT(countPixels(saved, [](const QColor& c) { return c.blue() > c.red() + 40; }), 1000);
    EXPECT_THAT(statusText(), HasSubstr("knot.png"));
    const std::string line = runCopiedCommand();
    EXPECT_THAT(line, HasSubstr(" --size 300x"));
    EXPECT_TRUE(bytesOf("knot.png") == bytesOf("picture.png")) << line;
}

// All of them as large as the view that they are of.
TEST_F(PictureDialogTest, ItAndTheCopiedCommandAreOfTheViewThatWasClickedLast)
{
    options.beside = besideOf({"same", "same"});
    StyleRequest style;
    style.colourBy = "load";
    ASSERT_NO_FATAL_FAILURE(openRod(style));
    ASSERT_TRUE(comesTo([this] { return sceneBeside(0) && sceneBeside(1); }));
    std::set<std::string> pictures;
    const char* const names[] = {"first", "second", "third"};
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_NO_FATAL_FAILURE(activate(i));
        const QSize size = viewOf(i).size();
        ASSERT_NO_FATAL_FAILURE(savePicture(
            {inDialog([&] {
                 EXPECT_EQ(find<QDoubleSpinBox>("pictureWidth")->value(), size.width());
                 EXPECT_EQ(find<QDoubleSpinBox>("pictureHeight")->value(), size.height());
                 pressRealKey("Return");
             }),
             nameFile(names[i])}));
        const std::string ofView = std::string(", of the ") + names[i] + " view";
        EXPECT_THAT(statusText(), StartsWith("Saved" + ofView));
        const std::string line = runCopiedCommand();
        EXPECT_THAT(statusText(), StartsWith("Copied" + ofView + ": strandview "));
        const std::string bytes = bytesOf(names[i] + std::string(".png"));
        EXPECT_TRUE(bytes == bytesOf("picture.png")) << line;
        pictures.insert(bytes);
    }
    EXPECT_EQ(pictures.size(), 3u);
}

TEST_F(PictureDialogTest, OfAViewOfTheFirstFrameItIsThatFrame)
{
    options.beside = {{"first"}, false};
    options.colourBy = "curvature";
    const std::string bent = "t x y z\n0 0 0 0\n0 1 0.1 0\n0 2 0 0\n1 0 0 0\n1 1 0.5 0\n1 2 0 0\n";
    ASSERT_NO_FATAL_FAILURE(openText(bent, "run.txt"));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && sceneBeside(); }));
    player()->goTo(1);
    ASSERT_TRUE(comesTo([this] {
        return player()->getFrame() == 1 && player()->isUpToDate() &&
               !window->getSideBySide().isAtWork();
    }));
    ASSERT_NO_FATAL_FAILURE(activate(1));
    ASSERT_TRUE(comesToBePainted());
    for (const char* frame : {"0", "1"}) {
        window->savePicture(QString::fromStdString(folder.path("frame.png")));
        EXPECT_THAT(runCopiedCommand(), HasSubstr(std::string(" --frame ") + frame));
        EXPECT_EQ(picture("frame.png"), picture("picture.png"));
        ASSERT_NO_FATAL_FAILURE(activate(0));
    }
}

TEST_F(PictureDialogTest, OfAViewOfAnotherFileItIsThatOfTheFirstAndSaysSo)
{
    options.beside = {{folder.write("other.txt", "0 0 0\n1 2 0\n")}, false};
    ASSERT_NO_FATAL_FAILURE(openRod());
    ASSERT_TRUE(comesTo([this] { return sceneBeside(); }));
    ASSERT_NO_FATAL_FAILURE(activate(1));
    window->savePicture(QString::fromStdString(folder.path("saved.png")));
    EXPECT_THAT(statusText(), StartsWith("Saved, of the first view"));
    const std::string line = runCopiedCommand();
    EXPECT_THAT(statusText(), StartsWith("Copied, of the first view: "));
    EXPECT_THAT(line, HasSubstr(formatCamera(window->getCameraNumbers())));
    EXPECT_TRUE(bytesOf("saved.png") == bytesOf("picture.png"));
}

TEST_F(PictureDialogTest, MillimetresAreTypedWithACommaAndKeptInTheFile)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    ASSERT_NO_FATAL_FAILURE(savePicture(
        {inDialog([&] {
             auto* const unit = find<QComboBox>("pictureUnit");
             unit->setFocus();
             ASSERT_TRUE(comesTo([&] { return unit->hasFocus(); }));
             pressRealKey("Down");
             ASSERT_TRUE(comesTo([&] { return unit->currentText() == "mm"; }));
             EXPECT_EQ(find<QSpinBox>("pictureDpi")->value(), 300);
             auto* const shape = find<QCheckBox>("pictureShape");
             shape->setFocus();
             pressRealKey("space");
             ASSERT_TRUE(comesTo([&] { return !shape->isChecked(); }));
             typeInto(*find<QAbstractSpinBox>("pictureWidth"), {"4", "2", "comma", "5"});
             ASSERT_TRUE(comesToHave("pictureWidth", 42.5));
             typeInto(*find<QAbstractSpinBox>("pictureHeight"), {"3", "0"});
             ASSERT_TRUE(comesToHave("pictureHeight", 30));
             typeInto(*find<QAbstractSpinBox>("pictureSamples"), {"1"});
             ASSERT_TRUE(comesToHave("pictureSamples", 1));
             typeInto(*find<QAbstractSpinBox>("pictureDpi"), {"1", "5", "0"});
             auto* const told = find<QLabel>("pictureTold");
             ASSERT_TRUE(comesTo([&] { return told->text().contains("251 x 177"); }))
                 << told->text().toStdString();
             pressRealKey("Return");
         }),
         nameFile("page")}));
    const QImage saved = picture("page.png");
    EXPECT_EQ(saved.size(), QSize(251, 177));
    EXPECT_NEAR(saved.dotsPerMeterX(), 150 / 0.0254, 1);
    const std::string line = runCopiedCommand();
    EXPECT_THAT(line, HasSubstr(" --size 42.5x30mm --dpi 150 --samples 1 "));
    EXPECT_TRUE(bytesOf("page.png") == bytesOf("picture.png")) << line;
}

TEST_F(PictureDialogTest, AUnitThatIsTypedBehindANumberIsThatOfTheSize)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    const double shape = double(view()->width()) / view()->height();
    ASSERT_NO_FATAL_FAILURE(savePicture({inDialog([&] {
        auto* const unit = find<QComboBox>("pictureUnit");
        const auto comesToBe = [&](const char* field, double side, const char* name) {
            return comesToHave(field, side) && comesTo([&] { return unit->currentText() == name; });
        };
        ASSERT_EQ(unit->currentText(), "pixels");
        typeInto(*find<QAbstractSpinBox>("pictureWidth"), {"8", "comma", "5", "space", "c", "m"});
        EXPECT_TRUE(comesToBe("pictureWidth", 85, "mm"));
        EXPECT_NEAR(find<QDoubleSpinBox>("pictureHeight")->value(), 85 / shape, 0.006);
        typeInto(*find<QAbstractSpinBox>("pictureHeight"), {"3", "0", "m", "m"});
        EXPECT_TRUE(comesToBe("pictureHeight", 30, "mm"));
        EXPECT_NEAR(find<QDoubleSpinBox>("pictureWidth")->value(), 30 * shape, 0.006);
        typeInto(*find<QAbstractSpinBox>("pictureWidth"), {"4", "0", "0", "space", "p", "x"});
        EXPECT_TRUE(comesToBe("pictureWidth", 400, "pixels"));
        typeInto(*find<QAbstractSpinBox>("pictureWidth"), {"5", "q", "0", "m"});
        pressRealKey("Tab");
        EXPECT_TRUE(comesToBe("pictureWidth", 50, "pixels")) << "no unit, and the letters of none";
        pressRealKey("Escape");
    })}));
}

TEST_F(PictureDialogTest, BackgroundAndLegendOfThePictureLeaveTheViewAsItIs)
{
    StyleRequest style;
    style.colourBy = "load";
    ASSERT_NO_FATAL_FAILURE(openRod(style));
    const auto inkAtTop = [](const QImage& image) {
        return countPixels(image.copy(0, 0, image.width(), image.height() / 8), isInk);
    };
    QImage before, after;
    ASSERT_NO_FATAL_FAILURE(savePicture(
        {inDialog([&] {
             auto* const preview = find<QLabel>("picturePreview");
             ASSERT_TRUE(comesTo([&] { return preview->pixmap(Qt::ReturnByValue).width() > 0; }));
             before = preview->pixmap(Qt::ReturnByValue).toImage();
             auto* const legend = find<QComboBox>("legend");
             legend->setFocus();
             ASSERT_TRUE(comesTo([&] { return legend->hasFocus(); }));
             for (int i = 0; i < 9 && legend->currentText() != "top"; ++i) {
                 const QString now = legend->currentText();
                 pressRealKey("Down");
                 ASSERT_TRUE(comesTo([&] { return legend->currentText() != now; }));
             }
             ASSERT_TRUE(comesTo([&] {
                 after = preview->pixmap(Qt::ReturnByValue).toImage();
                 return inkAtTop(after) > inkAtTop(before) + 20;
             }));
             pressRealKey("Return");
         }),
         nameFile("top")}));
    EXPECT_GT(inkAtTop(picture("top.png")), 60);
    EXPECT_EQ(inkAtTop(before), 0);
    EXPECT_EQ(scene->getStyle().legend.place, LegendPlace::BOTTOM);
    EXPECT_EQ(window->getStyle(), style);
    ASSERT_TRUE(comesToBePainted());
    EXPECT_EQ(inkAtTop(screen()), 0);
    const std::string line = runCopiedCommand();
    EXPECT_THAT(line, HasSubstr(" --legend top "));
    EXPECT_TRUE(bytesOf("top.png") == bytesOf("picture.png")) << line;
}

TEST_F(PictureDialogTest, ABackgroundThatIsTriedAndNotTakenIsNotThePictures)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    const auto colours = [] {
        return qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
    };
    bool isTried = false;
    QString shown;
    ASSERT_NO_FATAL_FAILURE(savePicture(
        {inDialog([&] {
             find<QPushButton>("background")->setFocus();
             ASSERT_TRUE(comesTo([] { return find<QPushButton>("background")->hasFocus(); }));
             pressRealKey("space");
         }),
         {[colours] { return colours() && colours()->isActiveWindow(); },
          [&, colours] {
              colours()->setCurrentColor(Qt::red);
              const auto* const button =
                  colours()->parentWidget()->window()->findChild<QPushButton*>("background");
              isTried = button->text() == "#ff0000";
              pressRealKey("Escape");
          }},
         inDialog([&] {
             shown = find<QPushButton>("background")->text();
             pressRealKey("Return");
         }),
         nameFile("tried")}));
    EXPECT_TRUE(isTried);
    EXPECT_EQ(shown, "#ffffff");
    EXPECT_EQ(picture("tried.png").pixelColor(3, 3), QColor(Qt::white));
}

TEST_F(PictureDialogTest, ATransparentPictureHasNoBackground)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    ASSERT_NO_FATAL_FAILURE(savePicture({inDialog([&] {
                                             auto* const box =
                                                 find<QCheckBox>("pictureTransparent");
                                             box->setFocus();
                                             pressRealKey("space");
                                             ASSERT_TRUE(comesTo([&] { return box->isChecked(); }));
                                             pressRealKey("Return");
                                         }),
                                         nameFile("clear")}));
    EXPECT_EQ(picture("clear.png").pixelColor(2, 2).alpha(), 0);
    EXPECT_THAT(runCopiedCommand(), HasSubstr(" --transparent "));
    EXPECT_TRUE(bytesOf("clear.png") == bytesOf("picture.png"));
}

TEST_F(PictureDialogTest, MeasurementsAreInThePictureWhoseTickAsksForThem)
{
    options.camera.side = Side::Z;
    ASSERT_NO_FATAL_FAILURE(openRod());
    const int children = scene->getNumChildren();
    const auto save = [this](const std::string& name, bool isTicked) {
        savePicture({inDialog([isTicked] {
                         auto* const box = find<QCheckBox>("pictureMeasurements");
                         EXPECT_FALSE(box->isChecked());
                         if (isTicked) {
                             ASSERT_TRUE(box->isEnabled());
                             box->setFocus();
                             pressRealKey("space");
                             ASSERT_TRUE(comesTo([&] { return box->isChecked(); }));
                         }
                         pressRealKey("Return");
                     }),
                     nameFile(name)});
    };
    pressRealKey("n");
    ASSERT_TRUE(comesToBePainted());
    click(-0.5, 0.1);
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 1; }));
    shiftClick(0.5, 0.1);
    ASSERT_TRUE(comesTo([this] { return window->getMarks().countPlaces() == 2; }));
    pressRealKey("m");
    ASSERT_TRUE(comesTo([this] { return window->getMeasurements().get().size() == 1; }));
    view()->setFocus();
    ASSERT_NO_FATAL_FAILURE(save("bare", false));
    ASSERT_NO_FATAL_FAILURE(save("with", true));
    EXPECT_LT(countPixels(picture("bare.png"), isInk), 20);
    EXPECT_GT(countPixels(picture("with.png"), isInk), 100);
    const std::string line = runCopiedCommand();
    EXPECT_THAT(line, HasSubstr(" --measure 'distance rod 1:1,rod 1:3' "));
    EXPECT_TRUE(bytesOf("with.png") == bytesOf("picture.png")) << line;
    EXPECT_EQ(scene->getNumChildren(), children);
    EXPECT_TRUE(window->getPictureChoice().hasMeasurements);
}

TEST_F(PictureDialogTest, AWindowThatBeginsWithMeasurementsKeepsThemAndHasThemInItsPictures)
{
    options.measurements = {*parseNamedMeasurement("rod 1:0,rod 1:4 as end to end"),
                            *parseNamedMeasurement("rod 1:0,rod 1:99")};
    options.measurements[0].name = "it's long";
    ASSERT_NO_FATAL_FAILURE(openRod());
    EXPECT_EQ(window->getMeasurements().get(), options.measurements);
    ASSERT_NO_FATAL_FAILURE(
        savePicture({inDialog([] {
                         EXPECT_TRUE(find<QCheckBox>("pictureMeasurements")->isChecked());
                         pressRealKey("Return");
                     }),
                     nameFile("long")}));
    EXPECT_GT(countPixels(picture("long.png"), isInk), 100);
    const std::string line = runCopiedCommand();
    EXPECT_THAT(line, HasSubstr(" as it'\\''s long' "));
    EXPECT_TRUE(bytesOf("long.png") == bytesOf("picture.png")) << line;
}

TEST_F(PictureDialogTest, WithoutMeasurementsThereIsNothingToTick)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    ASSERT_NO_FATAL_FAILURE(savePicture({inDialog([] {
        EXPECT_FALSE(find<QCheckBox>("pictureMeasurements")->isEnabled());
        pressRealKey("Escape");
    })}));
}

TEST_F(PictureDialogTest, WhatWasChosenStaysForTheNextPictureUnlessItWasCancelled)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    const auto typeWidth = [](const char* digit) {
        typeInto(*find<QAbstractSpinBox>("pictureWidth"), {digit, "0", "0"});
        ASSERT_TRUE(comesToHave("pictureWidth", 100 * (digit[0] - '0')));
    };
    ASSERT_NO_FATAL_FAILURE(savePicture({inDialog([&] {
                                             typeWidth("2");
                                             pressRealKey("Return");
                                         }),
                                         nameFile("first")}));
    ASSERT_NO_FATAL_FAILURE(savePicture({inDialog([&] {
        EXPECT_EQ(find<QDoubleSpinBox>("pictureWidth")->value(), 200);
        typeWidth("5");
        pressRealKey("Escape");
    })}));
    ASSERT_NO_FATAL_FAILURE(savePicture({inDialog([&] {
        EXPECT_EQ(find<QDoubleSpinBox>("pictureWidth")->value(), 200);
        auto* const asView = find<QPushButton>("pictureAsView");
        asView->setFocus();
        pressRealKey("space");
        ASSERT_TRUE(comesToHave("pictureWidth", view()->width()));
        pressRealKey("Escape");
    })}));
    EXPECT_EQ(window->getPictureChoice().size.width, 200);
}

TEST_F(PictureDialogTest, APictureThatIsCancelledWhileItIsDrawnLeavesNoFileAndTheDialog)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    const auto before = files();
    ASSERT_NO_FATAL_FAILURE(savePicture(
        {inDialog([&] {
             typeInto(*find<QAbstractSpinBox>("pictureWidth"), {"6", "0", "0", "0"});
             ASSERT_TRUE(comesToHave("pictureWidth", 6000));
             pressRealKey("Return");
         }),
         nameFile("large"),
         {[] { return dialog() && find<QProgressBar>("pictureProgress")->isVisible(); },
          [] {
              for (const char* button : {"pictureSave", "pictureAsView"})
                  EXPECT_FALSE(find<QPushButton>(button)->isEnabled()) << button;
              EXPECT_FALSE(find<QDoubleSpinBox>("pictureWidth")->isEnabled());
              find<QPushButton>("pictureCancel")->click();
          }},
         {[] { return dialog() && !find<QProgressBar>("pictureProgress")->isVisible(); },
          [] {
              for (const char* button : {"pictureSave", "pictureAsView"})
                  EXPECT_TRUE(find<QPushButton>(button)->isEnabled()) << button;
              EXPECT_TRUE(find<QDoubleSpinBox>("pictureWidth")->isEnabled());
              pressRealKey("Escape");
          }}}));
    EXPECT_EQ(files(), before);
    EXPECT_EQ(window->getPictureChoice(), PictureChoice());
    EXPECT_TRUE(comesToBePainted());
}

TEST_F(PictureDialogTest, ASizeThatNoPictureHasIsToldAndNotSaved)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    ASSERT_NO_FATAL_FAILURE(savePicture({inDialog([&] {
        typeInto(*find<QAbstractSpinBox>("pictureWidth"), {"3", "2", "0", "0", "0"});
        ASSERT_TRUE(comesToHave("pictureWidth", 32000));
        typeInto(*find<QAbstractSpinBox>("pictureHeight"), {"3", "2", "0", "0", "0"});
        auto* const told = find<QLabel>("pictureTold");
        EXPECT_TRUE(comesTo([&] { return told->text().contains("expected sides from 1 to"); }));
        EXPECT_FALSE(find<QPushButton>("pictureSave")->isEnabled());
        pressRealKey("Escape");
    })}));
}

} // namespace strandview
