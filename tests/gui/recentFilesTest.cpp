// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/recentFiles.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QSettings>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include "windows.h"

namespace strandview {

namespace {

class RecentFilesTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    // In a folder of its own, not the user's settings.
    RecentFilesTest()
    {
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
        QCoreApplication::setOrganizationName("strandview-tests");
        QSettings().clear();
    }

    QString makeFile(const QString& name) const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }

    QStringList offered()
    {
        QStringList texts;
        offerRecentFiles(menu, [this](const QStringList& files) { opened = files; });
        for (const QAction* action : menu.actions())
            texts.append(action->text());
        return texts;
    }

    const QTemporaryDir folder;
    QMenu menu;
    QStringList opened;
};

TEST_F(RecentFilesTest, StandardInputIsNoFileToOpenAgain)
{
    EXPECT_EQ(namesOf({"a.txt", "-", "b.txt"}), QStringList({"a.txt", "b.txt"}));
}

TEST_F(RecentFilesTest, NoneYetIsSaidAndCannotBeChosen)
{
    EXPECT_EQ(offered(), QStringList{"None yet"});
    EXPECT_FALSE(menu.actions().front()->isEnabled());
}

TEST_F(RecentFilesTest, TheEightOpenedLastAreOfferedTheNewestFirst)
{
    QStringList files;
    for (int i = 0; i < 10; ++i)
        files.prepend(makeFile(QString::number(i) + ".txt"));
    for (int i = 0; i < 10; ++i)
        rememberFiles({files[9 - i]});
    EXPECT_EQ(offered(), QStringList(files.mid(0, 8)));
    rememberFiles({files[5]});
    EXPECT_EQ(offered().front(), files[5]);
    EXPECT_EQ(offered().count(files[5]), 1);
}

TEST_F(RecentFilesTest, WhatIsNoFileIsForgotten)
{
    rememberFiles({folder.path(), folder.filePath("missing.txt"), "/dev/null"});
    EXPECT_EQ(offered(), QStringList{"None yet"});
}

TEST_F(RecentFilesTest, AnEntryOpensItsFileWhateverItsName)
{
    const QString file = makeFile("rods & ribbons.txt");
    rememberFiles({file});
    EXPECT_THAT(offered().front().toStdString(), testing::HasSubstr("rods && ribbons.txt"));
    menu.actions().front()->trigger();
    EXPECT_EQ(opened, QStringList{file});
}

} // namespace

} // namespace strandview
