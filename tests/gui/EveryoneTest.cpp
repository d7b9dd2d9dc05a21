// SPDX-License-Identifier: GPL-3.0-or-later
// The window for those who have no mouse, hear what it shows, or need it large.
#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>
#include <gmock/gmock.h>

#include <LightingDialog.h>

#include "DataWindowTest.h"
#include "request/settings.h"
#include "support/realInput.h"

namespace strandview {

namespace {

// Two frames, so that it can be played, of two rods.
const char* const SERIES = "t x y z load\n"
                           "0 -1 0 0 3\n0 -0.5 0.1 0 -1\n0 0 0.2 0 0\n0 0.5 0.1 0 1\n0 1 0 0 2\n"
                           "1 -1 0 0 3\n1 -0.5 0.2 0 -1\n1 0 0.4 0 0\n1 0.5 0.2 0 1\n1 1 0 0 2\n";

std::string nameOf(const QWidget& widget)
{
    return std::string(widget.metaObject()->className()) + " " + widget.objectName().toStdString();
}

// What a screen reader says of it.
std::string heardOf(QWidget& widget)
{
    if (qobject_cast<QComboBox*>(&widget)) // its text is what is chosen
        return widget.accessibleName().toStdString();
    QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(&widget);
    return spoken ? spoken->text(QAccessible::Name).toStdString() : "";
}

// A part of a control of Qt's, which the control speaks for; bars that a key scrolls otherwise.
bool isPartOfAControl(const QWidget& widget)
{
    const QWidget* const parent = widget.parentWidget();
    return qobject_cast<const QScrollBar*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(parent) ||
           qobject_cast<const QComboBox*>(parent) || widget.objectName().startsWith("qt_") ||
           qobject_cast<const QTabBar*>(parent) || widget.inherits("QComboBoxListView") ||
           (parent && parent->inherits("QAbstractItemView")) ||
           (parent && parent->inherits("QAbstractScrollArea"));
}

bool isControl(const QWidget& widget)
{
    return qobject_cast<const QAbstractButton*>(&widget) ||
           qobject_cast<const QAbstractItemView*>(&widget) ||
           qobject_cast<const QAbstractSlider*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(&widget) ||
           qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QLineEdit*>(&widget) ||
           qobject_cast<const QTextEdit*>(&widget);
}

class EveryoneTest : public DataWindowTest
{
protected:
    // With all panels, one below the other.
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(openText(SERIES, "series.txt"));
        docks = window->findChildren<QDockWidget*>();
        ASSERT_GT(docks.size(), 4);
        ASSERT_TRUE(comesToBePainted());
    }
    void showAll() const
    {
        for (QDockWidget* dock : docks)
            dock->show();
        ASSERT_TRUE(comesTo([this] {
            return std::all_of(docks.begin(), docks.end(),
                               [](const QDockWidget* dock) { return !dock->isHidden(); });
        }));
    }
    // Alone, so that it has all the room.
    void showAlone(QDockWidget& shown) const
    {
        for (QDockWidget* dock : docks)
            dock->setVisible(dock == &shown);
        ASSERT_TRUE(comesTo([&] { return shown.widget()->isVisible(); }));
        QTest::qWait(50); // until it has its place
    }
    std::vector<QWidget*> controls() const
    {
        std::vector<QWidget*> all;
        for (QWidget* widget : window->findChildren<QWidget*>()) {
            if (isControl(*widget) && !isPartOfAControl(*widget))
                all.push_back(widget);
        }
        return all;
    }
    // Those that the key can come to.
    static std::vector<QWidget*> reachable(const QWidget& panel)
    {
        std::vector<QWidget*> all;
        for (QWidget* widget : panel.findChildren<QWidget*>()) {
            if ((widget->focusPolicy() & Qt::TabFocus) && widget->isVisible() &&
                widget->isEnabled() && !isPartOfAControl(*widget) && !widget->focusProxy())
                all.push_back(widget);
        }
        return all;
    }

    QList<QDockWidget*> docks;
};

} // namespace

TEST_F(EveryoneTest, EveryControlIsNamedForThoseWhoHearIt)
{
    ASSERT_NO_FATAL_FAILURE(showAll());
    EXPECT_GT(controls().size(), 60u);
    for (QWidget* control : controls())
        EXPECT_NE(heardOf(*control), "") << nameOf(*control);
    EXPECT_NE(heardOf(*view()), "");
}

TEST_F(EveryoneTest, WhatATextBesideAControlSaysIsSaidOfTheControl)
{
    ASSERT_NO_FATAL_FAILURE(showAll());
    int labels = 0;
    for (const QFormLayout* form : window->findChildren<QFormLayout*>()) {
        for (int row = 0; row < form->rowCount(); ++row) {
            QLayoutItem* const item = form->itemAt(row, QFormLayout::LabelRole);
            const auto* label = item ? qobject_cast<QLabel*>(item->widget()) : nullptr;
            if (!label)
                continue;
            ++labels;
            ASSERT_NE(label->buddy(), nullptr) << label->text().toStdString();
            EXPECT_EQ(heardOf(*label->buddy()), label->text().remove('&').toStdString());
        }
    }
    EXPECT_GT(labels, 15);
}

TEST_F(EveryoneTest, TabGoesThroughAPanelInTheOrderInWhichItIsReadAndRoundTheWindow)
{
    for (QDockWidget* dock : docks) {
        SCOPED_TRACE(dock->windowTitle().toStdString());
        ASSERT_NO_FATAL_FAILURE(showAlone(*dock));
        const std::vector<QWidget*> all = reachable(*dock->widget());
        ASSERT_FALSE(all.empty());
        const auto top = [&](const QWidget* widget) {
            return widget->mapTo(dock->widget(), QPoint(0, 0)).y();
        };
        QWidget* const first =
            *std::min_element(all.begin(), all.end(),
                              [&](const QWidget* a, const QWidget* b) { return top(a) < top(b); });
        first->setFocus();
        ASSERT_TRUE(comesTo([&] { return first->hasFocus(); }));
        std::vector<QWidget*> order{first};
        do {
            QWidget* const before = QApplication::focusWidget();
            pressRealKey("Tab");
            ASSERT_TRUE(comesTo([&] { return QApplication::focusWidget() != before; }))
                << nameOf(*before);
            order.push_back(QApplication::focusWidget());
        } while (order.back() != first && order.size() < 200);
        EXPECT_EQ(order.back(), first) << "it comes back";
        EXPECT_THAT(order, testing::Contains(view()));
        for (QWidget* widget : all)
            EXPECT_THAT(order, testing::Contains(widget)) << nameOf(*widget);
        for (QScrollArea* area : dock->widget()->findChildren<QScrollArea*>())
            area->verticalScrollBar()->setValue(0);
        int bottom = -1;
        for (const QWidget* widget : order) {
            if (!dock->widget()->isAncestorOf(widget) || widget == order.back())
                continue;
            EXPECT_GE(top(widget) + widget->height(), bottom) << nameOf(*widget);
            bottom = top(widget);
        }
    }
}

TEST_F(EveryoneTest, EscGivesTheKeyboardBackToTheViewAndForgetsWhatWasTyped)
{
    for (QDockWidget* dock : docks) {
        ASSERT_NO_FATAL_FAILURE(showAlone(*dock));
        for (QWidget* widget : reachable(*dock->widget())) {
            widget->setFocus();
            ASSERT_TRUE(comesTo([&] { return widget->hasFocus(); })) << nameOf(*widget);
            const StyleRequest before = window->getStyle();
            auto* const line = qobject_cast<QLineEdit*>(widget);
            if (line) {
                pressRealKey("7");
                ASSERT_TRUE(comesTo([&] { return line->text().contains('7'); })) << nameOf(*line);
            }
            pressRealKey("Escape");
            EXPECT_TRUE(comesTo([this] { return view()->hasFocus(); })) << nameOf(*widget);
            EXPECT_TRUE(window->getStyle() == before) << nameOf(*widget);
            EXPECT_FALSE(line && line->isModified()) << nameOf(*widget);
        }
    }
}

// Of the locale's, C, which writes a point.
TEST_F(EveryoneTest, EveryFieldOfANumberTakesACommaAndAPoint)
{
    ASSERT_NO_FATAL_FAILURE(showAll());
    std::map<QWidget*, const QLineEdit*> fields;
    for (QDoubleSpinBox* box : window->findChildren<QDoubleSpinBox*>())
        fields[box] = box->findChild<QLineEdit*>();
    auto* const zoom = window->findChild<QLineEdit*>("zoomLineEdit");
    fields[zoom] = zoom;
    for (QLineEdit* line : window->findChild<LightingDialog*>()->findChildren<QLineEdit*>())
        fields[line] = line;
    EXPECT_GE(fields.size(), 1u + 2u + 15u);
    for (const auto& [field, line] : fields) {
        for (const char* typed : {"0,5", "0.5"}) {
            QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(field, typed);
            EXPECT_EQ(line->text().toStdString(), "0.5") << nameOf(*field);
        }
    }
}

namespace {

using Typing = void (*)(QLineEdit& field);

// Instead of what stands there: one half, in the ways in which hands write it.
const std::vector<Typing> HALVES{[](QLineEdit& field) { QTest::keyClicks(&field, "0.5"); },
                                 [](QLineEdit& field) { QTest::keyClicks(&field, "0,5"); },
                                 [](QLineEdit& field) {
                                     QTest::keyClicks(&field, "05");
                                     QTest::keyClick(&field, Qt::Key_Left);
                                     QTest::keyClicks(&field, ",");
                                 },
                                 [](QLineEdit& field) {
                                     QApplication::clipboard()->setText("0,5");
                                     QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
                                 }};

} // namespace

TEST_F(EveryoneTest, EverySettingThatIsANumberTakesACommaAndAPointAndIsSetThen)
{
    ASSERT_NO_FATAL_FAILURE(showAll());
    StyleRequest style = window->getStyle();
    ASSERT_EQ(settingOf("colour-by").read("load", style), ""); // or there is no range
    ASSERT_EQ(settingOf("range").read("0:1", style), "");
    ASSERT_EQ(settingOf("clip").read("x:0", style), "");
    ASSERT_EQ(settingOf("compare").read("first", style), ""); // or there is no ghost
    ASSERT_EQ(settingOf("ghost").read("on", style), "");
    window->setStyle(style);
    ASSERT_TRUE(comesTo([this] { return !window->isLoading() && !window->isRestyling(); }));
    std::map<std::string, std::pair<std::string, std::string>> fields{
        {"rangeMin", {"range", "0.5:1"}},
        {"rangeMax", {"range", "0:0.5"}},
        {"clipField", {"clip", "x:0.5"}}};
    for (const Setting& setting : settings()) {
        if (setting.kind == SettingKind::LENGTH || setting.kind == SettingKind::SHARE ||
            setting.kind == SettingKind::LINE_WIDTH)
            fields[setting.name + std::string("Field")] = {setting.name, "0.5"};
    }
    EXPECT_GE(fields.size(), 3u + 4u);
    for (const auto& [name, expected] : fields) {
        auto* const field = window->findChild<QLineEdit*>(name.c_str());
        ASSERT_NE(field, nullptr) << name;
        for (std::size_t way = 0; way < HALVES.size(); ++way) {
            window->setStyle(style);
            ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
            const auto said = [&, &setting = settingOf(expected.first)] {
                return setting.value(window->getStyle()).value_or("");
            };
            ASSERT_NE(said(), expected.second) << name;
            QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
            HALVES[way](*field);
            EXPECT_EQ(field->text().toStdString(), "0.5") << name << ", " << way;
            QTest::keyClick(field, Qt::Key_Return);
            EXPECT_EQ(said(), expected.second) << name << ", " << way;
        }
    }
}

namespace {

// What is written on it, and the room that it takes.
bool isCut(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        const bool mayBeCut = label->wordWrap() || label->text().isEmpty() ||
                              label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
        return !mayBeCut && (label->width() < label->minimumSizeHint().width() ||
                             label->height() < label->minimumSizeHint().height());
    }
    if (qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QComboBox*>(&widget) ||
        qobject_cast<const QAbstractSpinBox*>(&widget) || qobject_cast<const QLineEdit*>(&widget))
        return widget.width() < widget.minimumSizeHint().width() ||
               widget.height() < widget.minimumSizeHint().height();
    return false;
}

} // namespace

// At the scale that the desktop has.
TEST_F(EveryoneTest, NoTextOfAPanelIsCut)
{
    for (QDockWidget* dock : docks) {
        SCOPED_TRACE(dock->windowTitle().toStdString());
        ASSERT_NO_FATAL_FAILURE(showAlone(*dock));
        int looked = 0;
        for (const QWidget* widget : dock->findChildren<QWidget*>()) {
            if (!widget->isVisible() || isPartOfAControl(*widget))
                continue;
            ++looked;
            EXPECT_FALSE(isCut(*widget))
                << nameOf(*widget) << " of " << widget->width() << " x " << widget->height()
                << ", not " << widget->minimumSizeHint().width() << " x "
                << widget->minimumSizeHint().height();
            // Beside the panel nothing is seen, below it may be scrolled to.
            const int right = widget->mapTo(dock, QPoint(widget->width(), 0)).x();
            EXPECT_LE(right, dock->width()) << nameOf(*widget);
        }
        EXPECT_GT(looked, 0);
    }
}

namespace {

QPalette darkPalette()
{
    QPalette dark(QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    for (const QPalette::ColorRole text :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        dark.setColor(QPalette::Active, text, QColor(235, 235, 235));
    return dark;
}

// As https://www.w3.org/TR/WCAG21/#dfn-relative-luminance defines it.
double luminanceOf(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

// From 1 to 21, between what there is most of and what differs most from that.
double contrastOf(const QImage& picture)
{
    std::map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    }
    const auto most =
        std::max_element(counts.begin(), counts.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    const double ground = luminanceOf(most->first);
    double contrast = 1;
    for (const auto& [colour, count] : counts) {
        const double one = luminanceOf(colour);
        contrast =
            std::max(contrast, (std::max(one, ground) + 0.05) / (std::min(one, ground) + 0.05));
    }
    return contrast;
}

} // namespace

// As https://www.w3.org/TR/WCAG21/#contrast-minimum asks of texts.
TEST_F(EveryoneTest, WhatIsWrittenIsReadOnADarkDesktopAsOnALightOne)
{
    const QPalette light = QApplication::palette();
    for (const bool isDark : {false, true}) {
        SCOPED_TRACE(isDark ? "dark" : "light");
        QApplication::setPalette(isDark ? darkPalette() : light);
        int looked = 0;
        for (QDockWidget* dock : docks) {
            SCOPED_TRACE(dock->windowTitle().toStdString());
            ASSERT_NO_FATAL_FAILURE(showAlone(*dock));
            for (QWidget* widget : dock->findChildren<QWidget*>()) {
                const auto* const label = qobject_cast<const QLabel*>(widget);
                const auto* const button = qobject_cast<const QAbstractButton*>(widget);
                const bool isWritten =
                    (label && !label->text().isEmpty()) || (button && !button->text().isEmpty());
                if (!isWritten || !widget->isVisible() || !widget->isEnabled())
                    continue;
                ++looked;
                EXPECT_GE(contrastOf(widget->grab().toImage()), 4.5) << nameOf(*widget);
            }
        }
        EXPECT_GT(looked, 40);
        int icons = 0;
        for (QToolButton* button : window->findChildren<QToolButton*>()) {
            const bool isIcon =
                button->toolButtonStyle() == Qt::ToolButtonIconOnly && !button->icon().isNull();
            if (!isIcon || !button->isVisible() || !button->isEnabled())
                continue;
            ++icons;
            EXPECT_GE(contrastOf(button->grab().toImage()), 3) << nameOf(*button);
        }
        EXPECT_GT(icons, 4);
    }
    QApplication::setPalette(light);
}

} // namespace strandview
