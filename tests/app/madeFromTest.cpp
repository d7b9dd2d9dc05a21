// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/madeFrom.h"

#include <string>

#include <QImage>
#include <gtest/gtest.h>

#include "pictures/PictureWriter.h"
#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

class MadeFromTest : public testing::Test
{
protected:
    std::string readFrom(const std::string& name) const { return madeFrom(folder.path(name)); }
    void save(const std::string& name) const
    {
        ASSERT_EQ(saveImage(image, folder.path(name)), "") << name;
    }

    const TemporaryFolder folder;
    QImage image{30, 20, QImage::Format_RGB888};
};

} // namespace

TEST_F(MadeFromTest, EveryFormatThatKeepsTextsKeepsItBesideTheOthers)
{
    image.fill(Qt::red);
    image.setText("Command", "strandview --title 'strandview-made-from: x <metadata>/Title<FEFF'");
    image.setText("Title", "/strandview-made-from<FEFF0041>");
    for (const char* name : {"a.png", "a.jpg", "a.pdf", "a.svg"}) {
        image.setText(MADE_FROM, "");
        ASSERT_NO_FATAL_FAILURE(save(name));
        EXPECT_EQ(readFrom(name), "") << name;
        image.setText(MADE_FROM, "0a1b-9f");
        ASSERT_NO_FATAL_FAILURE(save(name));
        EXPECT_EQ(readFrom(name), "0a1b-9f") << name;
    }
}

TEST_F(MadeFromTest, OfATransparentPageItIsKept)
{
    image = image.convertToFormat(QImage::Format_RGBA8888);
    image.fill(Qt::transparent);
    image.setText(MADE_FROM, "0a1b-9f");
    for (const char* name : {"a.png", "a.pdf", "a.svg"}) {
        ASSERT_NO_FATAL_FAILURE(save(name));
        EXPECT_EQ(readFrom(name), "0a1b-9f") << name;
    }
}

TEST_F(MadeFromTest, OtherFilesTellNothing)
{
    image.fill(Qt::red);
    image.setText(MADE_FROM, "0a1b-9f");
    for (const char* name : {"a.tif", "a.bmp", "a.ppm"}) {
        ASSERT_NO_FATAL_FAILURE(save(name));
        EXPECT_EQ(readFrom(name), "") << name;
    }
    EXPECT_EQ(readFrom("none.png"), "");
    EXPECT_EQ(madeFrom(folder.path()), "");
    const std::string key = MADE_FROM;
    for (const std::string& text :
         {std::string(), std::string("%PDF-"), "%PDF-1.4 /" + key + "<FEFF",
          "%PDF-1.4 /" + key + "<FEFF00", "%PDF-1.4 /" + key + "<FEFF004",
          "%PDF-1.4 /" + key + "<FEFFzzzz>", std::string("<?xml"),
          std::string("<?xml version=\"1.0\"?><svg><metadata>a</metadata>"),
          "<?xml version=\"1.0\"?><svg><image/><metadata id=\"" + key + "\">a</metadata>"}) {
        folder.write("text", text);
        EXPECT_EQ(readFrom("text"), "") << text;
    }
}

} // namespace strandview
