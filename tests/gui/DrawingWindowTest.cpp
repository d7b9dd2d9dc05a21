// SPDX-License-Identifier: GPL-3.0-or-later
// How shapes are drawn is the same whether a key, a control, a session or an option asks for it.
#include "request/DrawingLook.h"

#include <fstream>
#include <iterator>
#include <set>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QSlider>
#include <QTest>
#include <gmock/gmock.h>

#include <LightingDialog.h>

#include "DataWindowTest.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "support/runProgram.h"
#include "window/History.h"
#include "window/SideBySide.h"

namespace strandview {

using testing::HasSubstr;

namespace {

const char* const ROD = "-1 0 0\n-0.5 0.1 0\n0 0.2 0\n0.5 0.1 0\n1 0 0\n";

class DrawingWindowTest : public DataWindowTest
{
protected:
    void openRod()
    {
        options.slices = 8;
        options.radius = 0.2;
        ASSERT_NO_FATAL_FAILURE(openText(ROD, "rod.txt"));
        ASSERT_TRUE(comesToBePainted());
    }
    DrawingLook asked() const { return window->getStyle().drawing; }
    bool comesToBe(Shading shading) const
    {
        return comesTo([=] {
            return asked().shading == shading &&
                   scene->getShading() == SoGeneralScene::Shading(shading);
        });
    }
    // Until what follows is a step of its own.
    static void pause() { QTest::qWait(int(History::TOGETHER.count()) + 100); }
    std::string bytesOf(const std::string& name) const
    {
        std::ifstream picture(folder.path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(picture), std::istreambuf_iterator<char>()};
    }
    // The command that is copied makes the picture that is saved.
    void expectSamePicture()
    {
        window->savePicture(QString::fromStdString(folder.path("saved.png")));
        window->copyCommand();
        std::string line = QApplication::clipboard()->text().toStdString();
        line.replace(0, std::string("strandview").size(), STRANDVIEW_PROGRAM);
        const ProgramRun run =
            runProgram("/bin/sh", {"-c", "cd " + folder.path("") + " && " + line});
        ASSERT_EQ(run.status, 0) << run.error << line;
        EXPECT_NE(bytesOf("saved.png"), "");
        EXPECT_TRUE(bytesOf("picture.png") == bytesOf("saved.png")) << line;
    }
    // Clicks on a list, and goes down to an entry.
    void choose(const char* list, const QString& text) const
    {
        auto* const box = window->findChild<QComboBox*>(list);
        box->setFocus();
        ASSERT_TRUE(comesTo([&] { return box->hasFocus(); }));
        for (int i = 0; i < 5 && box->currentText() != text; ++i) {
            const QString before = box->currentText();
            pressRealKey("Down");
            ASSERT_TRUE(comesTo([&] { return box->currentText() != before; }));
        }
        EXPECT_EQ(box->currentText(), text);
    }
};

} // namespace

TEST_F(DrawingWindowTest, WhatTheViewersKeysChangeIsPartOfTheStyle)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    EXPECT_EQ(asked(), DrawingLook());
    for (const Shading shading : {Shading::PLAIN, Shading::WIREFRAME, Shading::LIT}) {
        pressRealKey("space");
        EXPECT_TRUE(comesToBe(shading));
    }
    pressRealKey("Shift+space");
    EXPECT_TRUE(comesTo([this] { return asked().boundingBoxes; }));
    pressRealKey("equal");
    EXPECT_TRUE(comesTo([this] { return asked().lineWidth > 1; }));
    EXPECT_EQ(float(asked().lineWidth), scene->getLineWidth());
    pressRealKey("minus");
    pressRealKey("Shift+space");
    EXPECT_TRUE(comesTo([this] { return asked() == DrawingLook(); }));
    EXPECT_TRUE(argumentsOf(window->getStyle()) == argumentsOf(options));
}

TEST_F(DrawingWindowTest, AControlAndAKeyGoOnFromEachOther)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    pressRealKey("o");
    auto* const list = window->findChild<QComboBox*>("shading");
    ASSERT_TRUE(comesTo([&] { return list->isVisible(); }));
    choose("shading", "plain");
    EXPECT_TRUE(comesToBe(Shading::PLAIN));
    view()->setFocus();
    ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    pressRealKey("space");
    EXPECT_TRUE(comesToBe(Shading::WIREFRAME));
    EXPECT_EQ(list->currentText(), "wireframe");

    StyleRequest thick = window->getStyle();
    thick.drawing.lineWidth = 3;
    window->setStyle(thick);
    EXPECT_EQ(scene->getLineWidth(), 3);
    EXPECT_EQ(window->findChild<QLineEdit*>("line-widthField")->text(), "3");
    pressRealKey("equal");
    EXPECT_TRUE(comesTo([this] { return asked().lineWidth > 3 && asked().lineWidth < 4.5; }));
}

TEST_F(DrawingWindowTest, EachIsTakenBackByItself)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    pressRealKey("space");
    ASSERT_TRUE(comesToBe(Shading::PLAIN));
    pause();
    pressRealKey("Shift+space");
    ASSERT_TRUE(comesTo([this] { return asked().boundingBoxes; }));
    pause();
    pressRealKey("equal");
    ASSERT_TRUE(comesTo([this] { return asked().lineWidth > 1; }));

    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([this] { return asked().lineWidth == 1 && scene->getLineWidth() == 1; }));
    EXPECT_TRUE(scene->isShowingBoundingBoxes());
    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([this] { return !scene->isShowingBoundingBoxes(); }));
    EXPECT_TRUE(comesToBe(Shading::PLAIN));
    pressRealKey("Control+z");
    EXPECT_TRUE(comesToBe(Shading::LIT));
    pressRealKey("Control+Shift+z");
    EXPECT_TRUE(comesToBe(Shading::PLAIN));
}

TEST_F(DrawingWindowTest, TheCopiedCommandDrawsAsTheViewersKeysHaveIt)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    expectSamePicture();
    const std::string lit = bytesOf("saved.png");
    pressRealKey("space");
    ASSERT_TRUE(comesToBe(Shading::PLAIN));
    expectSamePicture();
    EXPECT_THAT(QApplication::clipboard()->text().toStdString(), HasSubstr("--shading plain"));
    const std::string plain = bytesOf("saved.png");
    pressRealKey("space");
    for (int i = 0; i < 5; ++i)
        pressRealKey("equal");
    ASSERT_TRUE(comesToBe(Shading::WIREFRAME));
    expectSamePicture();
    const std::string wireframe = bytesOf("saved.png");
    pressRealKey("Shift+space");
    ASSERT_TRUE(comesTo([this] { return asked().boundingBoxes; }));
    expectSamePicture();
    EXPECT_EQ((std::set<std::string>{lit, plain, wireframe, bytesOf("saved.png")}).size(), 4u);
}

TEST_F(DrawingWindowTest, WhatTheDialogOfLightsChangesIsPartOfTheStyleAndTakenBackThere)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    const QImage before = screen();
    pressRealKey("l");
    auto* const dialog = window->findChild<LightingDialog*>();
    ASSERT_TRUE(comesTo([&] { return dialog->isActiveWindow(); }));
    auto* const field = dialog->findChild<QLineEdit*>("intensity2LineEdit");
    field->setFocus();
    ASSERT_TRUE(comesTo([&] { return field->hasFocus(); }));
    pressRealKey("Control+a");
    for (const char* key : {"0", "period", "5", "Return"})
        pressRealKey(key);
    DrawingLook lit;
    lit.light2 = parseLight("-0.2,-0.2,-1:0.5");
    ASSERT_TRUE(comesTo([&] { return asked() == lit; }));
    EXPECT_EQ(window->findChild<QLineEdit*>("light-2Field")->text(), "-0.2,-0.2,-1");
    EXPECT_EQ(window->findChild<QSlider*>("light-2Slider")->value(), 50);
    expectSamePicture();

    window->activateWindow();
    view()->setFocus();
    ASSERT_TRUE(comesTo([this] { return window->isActiveWindow() && view()->hasFocus(); }));
    EXPECT_TRUE(comesTo([&] { return screen() != before; }));
    pressRealKey("Control+z");
    ASSERT_TRUE(comesTo([this] { return asked() == DrawingLook(); }));
    EXPECT_EQ(field->text(), "0");
    pressRealKey("Control+Shift+z");
    EXPECT_TRUE(comesTo([&] { return asked() == lit && field->text() == "0.5"; }));
}

TEST_F(DrawingWindowTest, APanelLightsTheViewAndItsDialogFollows)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    pressRealKey("o");
    auto* const field = window->findChild<QLineEdit*>("light-1Field");
    ASSERT_TRUE(comesTo([&] { return field->isVisible(); }));
    field->setFocus();
    ASSERT_TRUE(comesTo([&] { return field->hasFocus(); }));
    pressRealKey("Control+a");
    for (const char* key : {"1", "comma", "0", "comma", "minus", "1", "Return"})
        pressRealKey(key);
    ASSERT_TRUE(comesTo([this] { return asked().light1.has_value(); }));
    EXPECT_EQ(asked().light1, parseLight("1,0,-1"));
    EXPECT_EQ(window->findChild<QLineEdit*>("x1LineEdit")->text(), "1");
    auto* const slider = window->findChild<QSlider*>("light-1Slider");
    slider->setFocus();
    ASSERT_TRUE(comesTo([&] { return slider->hasFocus(); }));
    pressRealKey("Left");
    ASSERT_TRUE(comesTo([this] { return asked().light1->intensity < 1; }));
    EXPECT_EQ(asked().light1, parseLight("1,0,-1:0.99"));
    EXPECT_EQ(window->findChild<QLineEdit*>("intensity1LineEdit")->text(), "0.99");
    expectSamePicture();
}

TEST_F(DrawingWindowTest, HighlightsThatAreAskedForAreThereInColoursOfDataToo)
{
    options.colourBy = "arclength";
    ASSERT_NO_FATAL_FAILURE(openRod());
    auto* const dialog = window->findChild<QLineEdit*>("shininess1LineEdit");
    auto* const control = window->findChild<QLineEdit*>("shininess");
    EXPECT_EQ(dialog->text(), "0");
    EXPECT_EQ(control->text(), "0");
    expectSamePicture();
    StyleRequest style = window->getStyle();
    style.drawing.shininess = Shininess{30, 30, 30};
    window->setStyle(style);
    EXPECT_EQ(dialog->text(), "30");
    EXPECT_EQ(control->text(), "30");
    expectSamePicture();
    window->setColours(false);
    EXPECT_EQ(dialog->text(), "30");
    style.drawing.shininess.reset();
    window->setStyle(style);
    EXPECT_EQ(dialog->text(), "10");
    EXPECT_EQ(control->text(), "10");
}

TEST_F(DrawingWindowTest, WhatIsAskedForAtTheStartIsWhatTheKeysBeginWith)
{
    options.drawing = {Shading::PLAIN, true, 2.5, {}, {}, {}, {}};
    ASSERT_NO_FATAL_FAILURE(openRod());
    EXPECT_EQ(scene->getShading(), SoGeneralScene::PLAIN);
    EXPECT_TRUE(scene->isShowingBoundingBoxes());
    EXPECT_EQ(scene->getLineWidth(), 2.5f);
    EXPECT_EQ(asked(), options.drawing);
    pressRealKey("minus");
    EXPECT_TRUE(comesTo([this] { return asked().lineWidth < 2.5 && asked().lineWidth > 1; }));
    pressRealKey("space");
    EXPECT_TRUE(comesToBe(Shading::WIREFRAME));
}

TEST_F(DrawingWindowTest, OtherFilesAndTheSecondViewAreDrawnInTheSameWay)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    window->setBeside({{folder.write("beside.txt", ROD)}});
    ASSERT_TRUE(comesTo([this] { return sceneBeside(); }));
    pressRealKey("space");
    ASSERT_TRUE(comesToBe(Shading::PLAIN));
    EXPECT_EQ(sceneBeside()->getShading(), SoGeneralScene::PLAIN);
    window->setBeside({});

    window->openFiles({QString::fromStdString(folder.write("other.txt", ROD))});
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
    EXPECT_TRUE(comesToBe(Shading::PLAIN));
    view()->setFocus();
    ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    pressRealKey("space");
    EXPECT_TRUE(comesToBe(Shading::WIREFRAME));
}

} // namespace strandview
