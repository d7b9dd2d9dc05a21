// SPDX-License-Identifier: GPL-3.0-or-later
// The program starts itself once more with tests that fail, which are disabled otherwise.
#include "support/keepPictures.h"

#include <QDir>
#include <QFileInfo>
#include <gmock/gmock.h>

#include "support/runProgram.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

QImage plain(const QColor& colour, int width = 4)
{
    QImage picture(width, 3, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

TEST(KeepPicturesSubject, DISABLED_ComparesPictures)
{
    QImage found = plain(Qt::red);
    found.setPixelColor(1, 2, QColor(254, 0, 0));
    keepIfFailed(found, plain(Qt::red));
    EXPECT_EQ(found.pixelColor(1, 2), QColor(Qt::red));
}

TEST(KeepPicturesSubject, DISABLED_ComparesPicturesOfTwoSizes)
{
    keepIfFailed(plain(Qt::red), plain(Qt::red, 5));
    FAIL();
}

TEST(KeepPicturesSubject, DISABLED_SeesManyPicturesAndFailsTwice)
{
    for (int i = 0; i < 50; ++i)
        EXPECT_FALSE(keepIfFailed(plain(Qt::blue)).isNull());
    ADD_FAILURE();
    keepIfFailed(plain(Qt::green));
    FAIL();
}

TEST(KeepPicturesSubject, DISABLED_FailsWithoutPictures) { FAIL(); }

TEST(KeepPicturesSubject, DISABLED_SeesAPictureAndHolds) { keepIfFailed(plain(Qt::blue)); }

class Sizes : public testing::TestWithParam<int>
{
};

TEST_P(Sizes, DISABLED_FailWithAPicture)
{
    keepIfFailed(plain(Qt::red, GetParam()));
    FAIL();
}

INSTANTIATE_TEST_SUITE_P(KeepPictures, Sizes, testing::Values(7));

class KeepPicturesTest : public testing::Test
{
protected:
    static ProgramRun runDisabled(const std::string& test)
    {
        return runProgram("/proc/self/exe",
                          {"--gtest_also_run_disabled_tests", "--gtest_filter=" + test});
    }

    static QDir folder(const char* name) { return QDir(QString(PICTURES_OUT) + "/" + name); }

    static std::vector<std::string> filesIn(const QDir& folder)
    {
        std::vector<std::string> names;
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name))
            names.push_back(name.toStdString());
        return names;
    }
};

TEST_F(KeepPicturesTest, AFailureKeepsWhatWasComparedAndTellsWhere)
{
    const QDir kept = folder("KeepPicturesSubject/DISABLED_ComparesPictures");
    const ProgramRun run = runDisabled("KeepPicturesSubject.DISABLED_ComparesPictures");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("The pictures are in " + kept.path().toStdString() + "\n"));
    ASSERT_THAT(filesIn(kept), ElementsAre("difference-1.png", "expected-1.png", "found-1.png"));
    EXPECT_EQ(QImage(kept.filePath("found-1.png")).pixelColor(1, 2), QColor(254, 0, 0));
    EXPECT_EQ(QImage(kept.filePath("expected-1.png")).pixelColor(1, 2), QColor(Qt::red));
    const QImage difference(kept.filePath("difference-1.png"));
    EXPECT_GT(difference.pixelColor(1, 2).red(), 80) << "a level of 255 is to be seen";
    EXPECT_EQ(difference.pixelColor(2, 2), QColor(Qt::black));
}

TEST_F(KeepPicturesTest, PicturesOfTwoSizesHaveNoDifference)
{
    runDisabled("KeepPicturesSubject.DISABLED_ComparesPicturesOfTwoSizes");
    EXPECT_THAT(filesIn(folder("KeepPicturesSubject/DISABLED_ComparesPicturesOfTwoSizes")),
                ElementsAre("expected-1.png", "found-1.png"));
}

TEST_F(KeepPicturesTest, TheLastPicturesBeforeEachFailureAreKept)
{
    runDisabled("KeepPicturesSubject.DISABLED_SeesManyPicturesAndFailsTwice");
    EXPECT_THAT(filesIn(folder("KeepPicturesSubject/DISABLED_SeesManyPicturesAndFailsTwice")),
                ElementsAre("seen-45.png", "seen-46.png", "seen-47.png", "seen-48.png",
                            "seen-49.png", "seen-50.png", "seen-51.png"));
}

TEST_F(KeepPicturesTest, ATestWithoutPicturesOrWithoutAFailureKeepsNone)
{
    for (const char* name : {"DISABLED_FailsWithoutPictures", "DISABLED_SeesAPictureAndHolds"}) {
        const QDir kept = folder("KeepPicturesSubject").filePath(name);
        ASSERT_TRUE(kept.mkpath("of/before"));
        const ProgramRun run = runDisabled(std::string("KeepPicturesSubject.") + name);
        EXPECT_THAT(run.output, Not(HasSubstr("The pictures are in")));
        EXPECT_FALSE(kept.exists()) << "what was left by a run before";
    }
}

TEST_F(KeepPicturesTest, ParametersArePartOfTheFoldersName)
{
    runDisabled("KeepPictures/Sizes.DISABLED_FailWithAPicture/0");
    EXPECT_THAT(filesIn(folder("KeepPictures-Sizes/DISABLED_FailWithAPicture-0")),
                ElementsAre("seen-1.png"));
}

} // namespace
