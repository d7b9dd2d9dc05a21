// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/NamedViews.h"

#include <functional>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <gtest/gtest.h>

#include "DataWindowTest.h"
#include "support/realInput.h"
#include "window/Player.h"

namespace strandview {

namespace {

const char* const ROD = "x y z\n-1 0 0\n0 0.2 0\n1 0 0\n";
const char* const LARGER_ROD = "x y z\n-10 0 0\n0 2 0\n10 0 5\n";

CameraNumbers cameraAt(float x) { return {false, {x, 2, 3}, {0, 0, 0, 1}, 4, 5}; }

std::vector<std::string> namesOf(const NamedViews& views)
{
    std::vector<std::string> names;
    for (const NamedView& view : views.get())
        names.push_back(view.name);
    return names;
}

class NamedViewsTest : public DataWindowTest
{
protected:
    void openRod()
    {
        ASSERT_NO_FATAL_FAILURE(openText(ROD, "rod.txt"));
        view()->setFocus();
        ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    }
    // Presses the key that keeps the view, and gives the name with keys.
    void keep(const std::vector<std::string>& name)
    {
        QTimer answer;
        int looks = 0;
        bool isAnswered = false;
        QObject::connect(&answer, &QTimer::timeout, [&] {
            auto* const dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            if (++looks > 200)
                dialog->reject(); // which would never end
            auto* const field = dialog->findChild<QLineEdit*>();
            if (isAnswered || !dialog->isActiveWindow() || !field->hasFocus())
                return;
            isAnswered = true;
            for (const std::string& key : name)
                pressRealKey(key);
            pressRealKey("Return");
        });
        answer.start(50);
        pressRealKey("Control+Shift+v");
        ASSERT_TRUE(comesTo([&] { return isAnswered && !QApplication::activeModalWidget(); }));
    }
    // Does something in the dialog once it is there, which closes it.
    void inDialog(const std::function<void(QDialog&)>& act)
    {
        QTimer::singleShot(0, [act] {
            auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
            dialog->close();
        });
        window->getViews().edit();
    }
    static QPushButton* button(const QDialog& dialog, const QString& text)
    {
        for (QPushButton* candidate : dialog.findChildren<QPushButton*>()) {
            if (candidate->text() == text)
                return candidate;
        }
        return nullptr;
    }
};

} // namespace

TEST_F(NamedViewsTest, AViewIsKeptByAKeyAndShownAgainByAnotherBitForBit)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    QSignalSpy changes(&window->getViews(), &NamedViews::changed);
    window->setPerspective(true);
    for (const char* key : {"Alt+d", "w"}) {
        const CameraNumbers before = window->getCameraNumbers();
        pressRealKey(key);
        ASSERT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == before); }));
    }
    const CameraNumbers first = window->getCameraNumbers();
    ASSERT_TRUE(first.perspective);
    ASSERT_NO_FATAL_FAILURE(keep({"e", "n", "d"}));
    window->viewFrom(Side::X);
    window->setPerspective(false);
    const CameraNumbers second = window->getCameraNumbers();
    ASSERT_NO_FATAL_FAILURE(keep({}));
    EXPECT_EQ(window->getViews().get(), (NamedViews::Views{{"end", first}, {"View 2", second}}));
    EXPECT_EQ(changes.count(), 2);

    pressRealKey("Alt+1");
    EXPECT_TRUE(comesTo([&] { return window->getCameraNumbers() == first; }));
    pressRealKey("Alt+2");
    EXPECT_TRUE(comesTo([&] { return window->getCameraNumbers() == second; }));
    EXPECT_EQ(changes.count(), 2) << "showing changes none";
}

TEST_F(NamedViewsTest, ViewsStayForOtherFilesAndWhenTheSameAreReadAgain)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    const CameraNumbers camera = window->getCameraNumbers();
    window->getViews().keep("here", camera);
    window->readAgain();
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
    EXPECT_EQ(namesOf(window->getViews()), std::vector<std::string>{"here"});
    ASSERT_NO_FATAL_FAILURE(
        window->openFiles({QString::fromStdString(folder.write("other.txt", LARGER_ROD))}));
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
    ASSERT_FALSE(window->getCameraNumbers() == camera);
    pressRealKey("Alt+1");
    EXPECT_TRUE(comesTo([&] { return window->getCameraNumbers() == camera; }));
}

TEST_F(NamedViewsTest, ADialogListsThoseOfASessionThatComesMeanwhile)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    NamedViews& views = window->getViews();
    for (const char* name : {"a", "b", "c"})
        views.keep(name, cameraAt(float(*name)));
    inDialog([&](QDialog& dialog) {
        auto* const list = dialog.findChild<QListWidget*>();
        list->setCurrentRow(2);
        views.set({{"x", cameraAt(1)}});
        ASSERT_EQ(list->count(), 1);
        EXPECT_EQ(list->item(0)->text(), "x");
        button(dialog, "&Delete")->click();
        EXPECT_FALSE(button(dialog, "&Show")->isEnabled());
    });
    EXPECT_TRUE(views.get().empty());
}

TEST_F(NamedViewsTest, ADialogRenamesAndDeletes)
{
    ASSERT_NO_FATAL_FAILURE(openRod());
    NamedViews& views = window->getViews();
    for (const char* name : {"a", "b", "c"})
        views.keep(name, cameraAt(float(*name)));
    QSignalSpy changes(&views, &NamedViews::changed);
    inDialog([](QDialog& dialog) {
        auto* const list = dialog.findChild<QListWidget*>();
        list->item(1)->setText("  front & back ");
        EXPECT_EQ(list->item(1)->text(), "front & back");
        list->item(2)->setText("a"); // which another one has
        EXPECT_EQ(list->item(2)->text(), "c");
        list->setCurrentRow(0);
        button(dialog, "&Delete")->click();
        EXPECT_EQ(list->count(), 2);
        button(dialog, "&Show")->click();
    });
    EXPECT_EQ(namesOf(views), (std::vector<std::string>{"front & back", "c"}));
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(window->getCameraNumbers(), cameraAt('b'));
    inDialog([](QDialog& dialog) {
        for (int left = 2; left > 0; --left)
            button(dialog, "&Delete")->click();
        EXPECT_FALSE(button(dialog, "&Delete")->isEnabled());
    });
    EXPECT_TRUE(views.get().empty());
}

class NamedViewsMenuTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initialiseProgramOnce("DataWindowTest"); }

    std::vector<QString> texts() const
    {
        std::vector<QString> all;
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator())
                all.push_back(action->text());
        }
        return all;
    }

    QMenu menu;
    QWidget window;
    NamedViews views{menu, &window};
};

TEST_F(NamedViewsMenuTest, TheMenuListsTheViewsWithKeysForTheFirstNine)
{
    EXPECT_EQ(texts(), (std::vector<QString>{"None yet", "&Rename or delete..."}));
    for (int i = 1; i <= 10; ++i)
        views.keep("R&D " + QString::number(i), cameraAt(float(i)));
    ASSERT_EQ(texts().size(), 11u);
    EXPECT_EQ(texts()[9], "R&&D 10");
    CameraNumbers shown = cameraAt(0);
    views.onShow = [&shown](const CameraNumbers& camera) { shown = camera; };
    for (int i = 1; i <= 10; ++i) {
        QAction* const action = menu.actions()[i - 1];
        EXPECT_EQ(action->shortcut(),
                  i < 10 ? QKeySequence("Alt+" + QString::number(i)) : QKeySequence());
        action->trigger();
        EXPECT_EQ(shown, cameraAt(float(i)));
    }
}

TEST_F(NamedViewsMenuTest, ANameIsThatOfOneViewAndNeverEmpty)
{
    QSignalSpy changes(&views, &NamedViews::changed);
    views.keep("one", cameraAt(1));
    views.keep("two", cameraAt(2));
    views.keep(" ", cameraAt(3));
    EXPECT_EQ(changes.count(), 2);
    views.keep(" one ", cameraAt(4)); // instead of the first
    EXPECT_EQ(views.get(), (NamedViews::Views{{"one", cameraAt(4)}, {"two", cameraAt(2)}}));
    EXPECT_EQ(changes.count(), 3);
    EXPECT_FALSE(views.rename(0, "two"));
    EXPECT_FALSE(views.rename(0, ""));
    EXPECT_EQ(changes.count(), 3);
    views.set({{"three", cameraAt(3)}});
    EXPECT_EQ(changes.count(), 3) << "the user changed nothing";
    EXPECT_EQ(texts().front(), "three");
}

} // namespace strandview
