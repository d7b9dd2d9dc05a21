// SPDX-License-Identifier: GPL-3.0-or-later
// File > Save as defaults: what the window shows is what later starts begin with.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMessageBox>
#include <QTimer>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "request/defaults.h"
#include "request/settings.h"
#include "support/realInput.h"

namespace strandview {

namespace {

class SaveDefaultsWindowTest : public DataWindowTest
{
protected:
    ~SaveDefaultsWindowTest() override
    {
        QFile::remove(QString::fromStdString(usualDefaultsFile()));
    }
    QAction* entry() const
    {
        for (QAction* known : window->findChildren<QAction*>())
            if (known->text() == "Save as de&faults...")
                return known;
        return nullptr;
    }
    // Chooses the entry, and answers what is asked then by a key. What was asked.
    std::string chooseAndPress(const char* key) const
    {
        std::string asked;
        QTimer::singleShot(0, window.get(), [&asked, key] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            asked = (box->text() + box->informativeText()).toStdString();
            ASSERT_TRUE(comesTo([box] { return box->isActiveWindow(); }));
            pressRealKey(key);
        });
        entry()->trigger();
        return asked;
    }
    static StyleRequest kept()
    {
        StyleRequest request;
        EXPECT_EQ(readDefaults(usualDefaultsFile(), request), "");
        return request;
    }
};

} // namespace

TEST_F(SaveDefaultsWindowTest, KeepsTheLookThatIsShownButWhatIsOfTheseDataAlone)
{
    options.colourBy = "curvature";
    options.rangeMin = 0;
    options.legend.title = "Bending";
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.1 0\n1 0 0\n", "rod.txt"));
    ASSERT_NE(entry(), nullptr);
    pressRealKey("b");
    ASSERT_TRUE(
        comesTo([this] { return settingOf("background").write(window->getStyle()).has_value(); }));

    EXPECT_THAT(chooseAndPress("Escape"), testing::HasSubstr(usualDefaultsFile()));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(usualDefaultsFile())));

    chooseAndPress("Return");
    StyleRequest expected;
    expected.colourBy = "curvature";
    expected.background = window->getStyle().background;
    EXPECT_EQ(kept(), expected);
    EXPECT_EQ(statusText(), "Written: " + usualDefaultsFile());
}

TEST_F(SaveDefaultsWindowTest, ACommandThatIsCopiedAfterwardsLeavesThemAside)
{
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.1 0\n1 0 0\n", "rod.txt"));
    const auto copied = [this] {
        QApplication::clipboard()->clear();
        pressRealKey("Control+Shift+c");
        EXPECT_TRUE(comesTo([] { return !QApplication::clipboard()->text().isEmpty(); }));
        return QApplication::clipboard()->text().toStdString();
    };
    EXPECT_THAT(copied(), testing::Not(testing::HasSubstr("--no-defaults")));
    chooseAndPress("Return");
    EXPECT_THAT(copied(), testing::StartsWith("strandview --no-defaults "));
}

} // namespace strandview
