// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ViewPictures.h"

#include <QFile>
#include <QImage>
#include <gmock/gmock.h>

#include <SoQtGeneralViewer.h>

#include "DataWindowTest.h"
#include "scene/DataScene.h"

using testing::HasSubstr;

namespace strandview {

namespace {

class ViewPicturesTest : public DataWindowTest
{
protected:
    struct Opened : MainWindow
    {
        static SoQtGeneralViewer& viewerOf(MainWindow& window)
        {
            return *(window.*&Opened::viewer);
        }
    };
    void openBent()
    {
        ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.3 0\n1 0 0\n", "bent.txt"));
        ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    }
    // While it is drawn the window changes as it is told.
    std::string save(const char* name, const std::function<void()>& change = {})
    {
        PicturedView view{scene, &Opened::viewerOf(*window), scene->getData(), options, {}};
        view.picture.camera = window->getCameraNumbers();
        view.picture.size.width = view.picture.size.height = 1200; // in pieces
        bool isChanged = false;
        return ViewPictures(view).save({}, folder.path(name), [&](double done) {
            if (change && done > 0 && !isChanged) {
                isChanged = true;
                change();
            }
            return true;
        });
    }
    QImage saved(const char* name) const
    {
        return QImage(QString::fromStdString(folder.path(name)));
    }
};

TEST_F(ViewPicturesTest, AreOfWhatIsShownHoweverCoarselyItIsDrawnMeanwhile)
{
    ASSERT_NO_FATAL_FAILURE(openBent());
    ASSERT_EQ(save("alone.png"), "");
    ASSERT_FALSE(saved("alone.png").isNull());
    for (const bool coarse : {true, false}) {
        EXPECT_EQ(save("meanwhile.png", [&] { scene->drawCoarsely(coarse); }), "");
        EXPECT_EQ(scene->isDrawnCoarsely(), coarse) << "it was drawn in pieces";
        EXPECT_TRUE(saved("meanwhile.png") == saved("alone.png"));
    }
}

TEST_F(ViewPicturesTest, AreNotMadeOfTwoStates)
{
    ASSERT_NO_FATAL_FAILURE(openBent());
    const std::function<void()> hide = [this] {
        ThingLooks looks = scene->getLooks();
        looks.ofThings[{ThingKind::ROD, 0}].hidden = true;
        scene->setLooks(looks);
    };
    const std::function<void()> both = [&] {
        hide();
        scene->drawCoarsely(true);
    };
    for (const auto& change : {hide, both}) {
        scene->setLooks({});
        EXPECT_THAT(save("never.png", change), HasSubstr("became something else"));
        EXPECT_FALSE(QFile::exists(QString::fromStdString(folder.path("never.png"))));
    }
}

} // namespace

} // namespace strandview
