// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/StatusText.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <gmock/gmock.h>

#include "windows.h"

namespace strandview {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string LONG_NAME =
    "/home/somebody/simulations/2024/supercoiled/minicircles/long/run 17/helix.txt:1: rod 1";

class StatusTextTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    void show(int width)
    {
        status.resize(width, 24);
        status.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&status));
        ASSERT_TRUE(QTest::qWaitFor([&] { return status.width() == width; }));
    }

    std::string shown() const { return status.text().toStdString(); }
    bool fits() const
    {
        return status.fontMetrics().horizontalAdvance(status.text()) <= status.width();
    }

    StatusText status{nullptr};
};

TEST_F(StatusTextTest, ShowsAllOfWhatThereIsRoomFor)
{
    show(1200);
    status.tell({{"point 1 2 3, arc length 4 of 5", LONG_NAME}});
    EXPECT_EQ(shown(), "point 1 2 3, arc length 4 of 5 – " + LONG_NAME);
}

TEST_F(StatusTextTest, NumbersStayWholeAndTheEndOfTheNameIsShownAtAnyWidth)
{
    show(400);
    status.tell({{"point 1 2 3, arc length 4 of 5", LONG_NAME}});
    for (const int width : {400, 350, 500}) {
        status.resize(width, 24);
        ASSERT_TRUE(QTest::qWaitFor([&] { return status.width() == width; }));
        EXPECT_THAT(shown(), StartsWith("point 1 2 3, arc length 4 of 5 – …"));
        EXPECT_THAT(shown(), EndsWith("rod 1"));
        EXPECT_TRUE(fits()) << width;
    }
}

TEST_F(StatusTextTest, OfTheNameNothingIsShownWhereThereIsRoomForTheNumbersAlone)
{
    const QString numbers = "point 1 2 3, arc length 4 of 5";
    show(status.fontMetrics().horizontalAdvance(numbers) + 25);
    status.tell({{numbers.toStdString(), LONG_NAME}});
    EXPECT_EQ(shown(), numbers.toStdString());
    status.resize(100, 24);
    EXPECT_THAT(shown(), StartsWith("point"));
    EXPECT_THAT(shown(), EndsWith("…"));
    EXPECT_TRUE(fits());
}

TEST_F(StatusTextTest, TheToolTipHasAllOfItLetterByLetter)
{
    show(300);
    status.tell({{"2 points left out", LONG_NAME}, {"1 rod without frames", "<b>&.txt"}});
    EXPECT_THAT(status.toolTip().toStdString(), HasSubstr("2 points left out – " + LONG_NAME));
    EXPECT_THAT(status.toolTip().toStdString(), HasSubstr("1 rod without frames – &lt;b&gt;&amp;"));
    EXPECT_THAT(status.toolTip().toStdString(), Not(HasSubstr("<b>")));
}

TEST_F(StatusTextTest, CopiesAllOfItALineForEach)
{
    show(300);
    status.tell({{"2 points left out", LONG_NAME}, {"1 rod without frames", "b.txt"}});
    status.copy();
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              "2 points left out – " + LONG_NAME + "\n1 rod without frames – b.txt");
}

TEST_F(StatusTextTest, CopiesWhatIsSelectedAlone)
{
    show(600);
    status.tell({{"point 1 2 3", "b.txt"}});
    status.setSelection(6, 5);
    status.copy();
    EXPECT_EQ(QApplication::clipboard()->text(), "1 2 3");
}

TEST_F(StatusTextTest, OneNameOfTwoThingsStandsOnceBehindThem)
{
    show(900);
    status.tell({{"2 points left out", "b.txt"}, {"1 rod without frames", "b.txt"}});
    EXPECT_EQ(shown(), "2 points left out; 1 rod without frames – b.txt");
}

TEST_F(StatusTextTest, HintsWhileThereIsNothingToTell)
{
    show(600);
    status.setHint("Open a file");
    EXPECT_EQ(shown(), "Open a file");
    status.tell({{"point 1 2 3", ""}});
    EXPECT_EQ(shown(), "point 1 2 3");
    status.setHint("F1: all keys");
    EXPECT_EQ(shown(), "point 1 2 3");
    status.tell({});
    EXPECT_EQ(shown(), "F1: all keys");
}

TEST_F(StatusTextTest, IsOneLineWhateverTheName)
{
    show(600);
    status.tell({{"point 1 2 3", "a\nb.txt"}});
    EXPECT_EQ(shown(), "point 1 2 3 – a b.txt");
}

} // namespace

} // namespace strandview
