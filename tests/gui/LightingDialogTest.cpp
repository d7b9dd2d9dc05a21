// SPDX-License-Identifier: GPL-3.0-or-later
#include <LightingDialog.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <Inventor/nodes/SoShaderParameter.h>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SoGeneralScene.h>

#include "windows.h"

namespace {

using testing::ElementsAre;

const char* const VALUE_NAMES[] = {"x", "y", "z", "intensity", "shininess"};

QString fieldName(const char* value, int light)
{
    return QString("%1%2LineEdit").arg(value).arg(light);
}

// The dialog of a real scene's lights.
class LightingDialogTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    void SetUp() override
    {
        scene = new SoGeneralScene;
        scene->ref();
        scene->getLightingParameters(directions, intensities, shininess);
        dialog = std::make_unique<LightingDialog>(nullptr, directions, intensities, shininess);
    }

    void TearDown() override
    {
        dialog.reset();
        scene->unref();
    }

    // light: 1 to 3
    QLineEdit* field(const char* value, int light) const
    {
        return child<QLineEdit>(*dialog, fieldName(value, light).toLatin1());
    }

    std::vector<std::string> texts(int light) const
    {
        std::vector<std::string> shown;
        for (const char* value : VALUE_NAMES)
            shown.push_back(field(value, light)->text().toStdString());
        return shown;
    }

    // Direction, intensity and shininess as stored.
    std::vector<float> values(int light) const
    {
        const SbVec3f& direction = directions->value[light - 1];
        return {direction[0], direction[1], direction[2], intensities->value[light - 1],
                shininess->value[light - 1]};
    }

    void show() { ASSERT_TRUE(showActive(*dialog)); }

    void typeWithReturn(QLineEdit* edit, const QString& text)
    {
        if (!dialog->isVisible())
            show();
        ASSERT_TRUE(focus(*edit));
        typeOver(*edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    SoGeneralScene* scene = nullptr;
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
    std::unique_ptr<LightingDialog> dialog;
};

} // namespace

// The form

TEST_F(LightingDialogTest, IsNotModalWithItsNameTitleAndHeights)
{
    EXPECT_EQ(dialog->objectName(), "LightingDialog");
    EXPECT_EQ(dialog->windowTitle(), "Ligting settigns");
    EXPECT_FALSE(dialog->isModal());
    EXPECT_EQ(dialog->minimumHeight(), 120);
    EXPECT_EQ(dialog->maximumHeight(), 257);
    EXPECT_TRUE(dialog->findChildren<QAbstractButton*>().empty());
    EXPECT_EQ(dialog->findChildren<QLineEdit*>().size(), 15);
    for (const QLineEdit* edit : dialog->findChildren<QLineEdit*>())
        EXPECT_FALSE(edit->validator());
    QWidget parent;
    auto* owned = new LightingDialog(&parent, directions, intensities, shininess);
    EXPECT_EQ(owned->parentWidget(), &parent);
    EXPECT_TRUE(owned->isWindow());
}

TEST_F(LightingDialogTest, HasItsHeadingsCentredAndItsLightsToTheRight)
{
    const std::pair<const char*, const char*> headings[] = {{"xLabel", "x"},
                                                            {"yLabel", "Y"},
                                                            {"zLabel", "z"},
                                                            {"intensityLabel", "Intensity"},
                                                            {"shininessLabel", "Shininess"}};
    for (const auto& [name, text] : headings) {
        EXPECT_EQ(child<QLabel>(*dialog, name)->text(), text);
        EXPECT_EQ(child<QLabel>(*dialog, name)->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    }
    for (int light = 1; light <= 3; ++light) {
        const auto* label = child<QLabel>(*dialog, QString("light%1Label").arg(light).toLatin1());
        EXPECT_EQ(label->text(), QString("Light %1").arg(light));
        EXPECT_EQ(label->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    }
}

TEST_F(LightingDialogTest, PutsEveryWidgetInItsPlace)
{
    const auto& data = *dialog->findChild<QGridLayout*>("dataLayout");
    const auto place = [&](const QString& name) {
        return placeOf(data, child<QWidget>(*dialog, name.toLatin1()));
    };
    EXPECT_EQ(place("xLabel"), (Place{0, 2, 1, 1}));
    EXPECT_EQ(place("yLabel"), (Place{0, 3, 1, 1}));
    EXPECT_EQ(place("zLabel"), (Place{0, 4, 1, 1}));
    EXPECT_EQ(place("intensityLabel"), (Place{0, 6, 1, 1}));
    EXPECT_EQ(place("shininessLabel"), (Place{0, 7, 1, 1}));
    EXPECT_EQ(place("leftLine"), (Place{1, 1, 3, 1}));
    EXPECT_EQ(place("rightLine"), (Place{1, 5, 3, 1}));
    for (int light = 1; light <= 3; ++light) {
        EXPECT_EQ(place(QString("light%1Label").arg(light)), (Place{light, 0, 1, 1}));
        EXPECT_EQ(place(fieldName("x", light)), (Place{light, 2, 1, 1}));
        EXPECT_EQ(place(fieldName("y", light)), (Place{light, 3, 1, 1}));
        EXPECT_EQ(place(fieldName("z", light)), (Place{light, 4, 1, 1}));
        EXPECT_EQ(place(fieldName("intensity", light)), (Place{light, 6, 1, 1}));
        EXPECT_EQ(place(fieldName("shininess", light)), (Place{light, 7, 1, 1}));
    }
    for (const char* name : {"leftLine", "rightLine"}) {
        const auto* line = child<QFrame>(*dialog, name);
        EXPECT_EQ(line->frameShape(), QFrame::VLine);
        EXPECT_EQ(line->frameShadow(), QFrame::Sunken);
    }
    ASSERT_TRUE(dialog->layout());
    EXPECT_EQ(dialog->layout()->objectName(), "gridLayout");
    EXPECT_TRUE(qobject_cast<QGridLayout*>(dialog->layout()));
    EXPECT_EQ(data.parent(), dialog->layout());
}

TEST_F(LightingDialogTest, NothingIsCutOffAtItsSmallestAndInAWideWindow)
{
    show();
    for (const QSize size : {QSize(1, 1), QSize(1000, 1000)}) {
        dialog->resize(size);
        QTest::qWait(50);
        EXPECT_EQ(dialog->height(), size.height() == 1 ? 120 : 257);
        EXPECT_THAT(badlyPlaced(*dialog), testing::IsEmpty()) << size.width();
    }
}

TEST_F(LightingDialogTest, TabGoesThroughTheFieldsLightByLight)
{
    show();
    ASSERT_TRUE(focus(*field("x", 1)));
    std::vector<QString> order, expected;
    for (int light = 1; light <= 3; ++light) {
        for (const char* value : VALUE_NAMES) {
            expected.push_back(fieldName(value, light));
            order.push_back(QApplication::focusWidget()->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
    }
    EXPECT_EQ(order, expected);
    EXPECT_EQ(QApplication::focusWidget(), field("x", 1));
}

// From the arrays to the fields

TEST_F(LightingDialogTest, OpensWithTheLightsOfTheScene)
{
    EXPECT_THAT(texts(1), ElementsAre("0.2", "-0.2", "-1", "1", "10"));
    EXPECT_THAT(texts(2), ElementsAre("-0.2", "-0.2", "-1", "0", "10"));
    EXPECT_THAT(texts(3), ElementsAre("0", "0.2", "-1", "0", "10"));
}

TEST_F(LightingDialogTest, ShowsSixSignificantDigits)
{
    directions->value.set1Value(0, 0.5f, 1e-7f, 1234567);
    directions->value.set1Value(1, 1 / 3.f, -123456, 1e20f);
    intensities->value.set1Value(2, 0.1234567f);
    shininess->value.set1Value(2, 250);
    dialog->updateGUIFromShaders();
    EXPECT_THAT(texts(1), ElementsAre("0.5", "1e-07", "1.23457e+06", "1", "10"));
    EXPECT_THAT(texts(2), ElementsAre("0.333333", "-123456", "1e+20", "0", "10"));
    EXPECT_THAT(texts(3), ElementsAre("0", "0.2", "-1", "0.123457", "250"));
}

TEST_F(LightingDialogTest, DoesNotFollowChangesMadeElsewhere)
{
    intensities->value.set1Value(0, 0.25f);
    EXPECT_THAT(texts(1), ElementsAre("0.2", "-0.2", "-1", "1", "10"));
    dialog->updateGUIFromShaders();
    EXPECT_THAT(texts(1), ElementsAre("0.2", "-0.2", "-1", "0.25", "10"));
}

// From the fields to the arrays

TEST_F(LightingDialogTest, ReturnInEachFieldTakesItsValueAtOnce)
{
    float number = 0;
    for (int light = 1; light <= 3; ++light) {
        for (int i = 0; i < 5; ++i) {
            number += 0.0625f;
            typeWithReturn(field(VALUE_NAMES[i], light), QString::number(number));
            EXPECT_EQ(values(light)[i], number) << VALUE_NAMES[i] << light;
        }
    }
    EXPECT_THAT(values(1), ElementsAre(0.0625f, 0.125f, 0.1875f, 0.25f, 0.3125f));
    EXPECT_THAT(values(2), ElementsAre(0.375f, 0.4375f, 0.5f, 0.5625f, 0.625f));
    EXPECT_THAT(values(3), ElementsAre(0.6875f, 0.75f, 0.8125f, 0.875f, 0.9375f));
    EXPECT_EQ(directions->value.getNum(), 3);
    EXPECT_EQ(intensities->value.getNum(), 3);
    EXPECT_EQ(shininess->value.getNum(), 3);
    EXPECT_TRUE(dialog->isVisible()) << "Return closes nothing";
}

TEST_F(LightingDialogTest, OneReturnTakesAllFifteenFields)
{
    show();
    int number = 0;
    for (int light = 1; light <= 3; ++light) {
        for (const char* value : VALUE_NAMES) {
            ASSERT_TRUE(focus(*field(value, light)));
            typeOver(*field(value, light), QString::number(++number / 16.));
        }
    }
    // Not before.
    EXPECT_THAT(values(1), ElementsAre(0.2f, -0.2f, -1, 1, 10));
    QTest::keyClick(field("y", 2), Qt::Key_Return);
    EXPECT_THAT(values(1), ElementsAre(0.0625f, 0.125f, 0.1875f, 0.25f, 0.3125f));
    EXPECT_THAT(values(2), ElementsAre(0.375f, 0.4375f, 0.5f, 0.5625f, 0.625f));
    EXPECT_THAT(values(3), ElementsAre(0.6875f, 0.75f, 0.8125f, 0.875f, 0.9375f));
}

TEST_F(LightingDialogTest, TheEnterKeyOfTheNumbersIsAReturn)
{
    show();
    ASSERT_TRUE(focus(*field("shininess", 3)));
    typeOver(*field("shininess", 3), "20");
    QTest::keyClick(field("shininess", 3), Qt::Key_Enter);
    EXPECT_EQ(shininess->value[2], 20);
}

TEST_F(LightingDialogTest, ClampsIntensitiesTo0And1)
{
    const std::pair<const char*, float> typed[] = {{"1.7", 1}, {"-0.2", 0},      {"0.5", 0.5f},
                                                   {"inf", 1}, {"-inf", 0},      {"nan", 0},
                                                   {"1", 1},   {"1e-07", 1e-7f}, {"-0", 0}};
    for (const auto& [text, stored] : typed) {
        for (int light = 1; light <= 3; ++light) {
            typeWithReturn(field("intensity", light), text);
            EXPECT_EQ(intensities->value[light - 1], stored) << text;
            EXPECT_EQ(field("intensity", light)->text(), QString::number(stored, 'g', 6)) << text;
        }
    }
}

TEST_F(LightingDialogTest, RaisesShininessTo0)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const std::pair<const char*, float> typed[] = {{"-3", 0},  {"250", 250}, {"1e6", 1e6f},
                                                   {"nan", 0}, {"-inf", 0},  {"inf", infinite},
                                                   {"-0", 0}};
    for (const auto& [text, stored] : typed) {
        for (int light = 1; light <= 3; ++light) {
            typeWithReturn(field("shininess", light), text);
            EXPECT_EQ(shininess->value[light - 1], stored) << text;
            EXPECT_EQ(field("shininess", light)->text(), QString::number(stored, 'g', 6)) << text;
        }
    }
}

TEST_F(LightingDialogTest, WhatIsNoNumberCountsAs0)
{
    for (const char* text : {"abc", "", "1,5", "0.5x", "--1", "0x10"}) {
        for (int i = 0; i < 5; ++i) {
            field(VALUE_NAMES[i], 2)->setText("0.5");
            typeWithReturn(field(VALUE_NAMES[i], 2), text);
            EXPECT_EQ(values(2)[i], 0) << text << " as " << VALUE_NAMES[i];
            EXPECT_EQ(field(VALUE_NAMES[i], 2)->text(), "0") << text << " as " << VALUE_NAMES[i];
        }
    }
    // Blanks around a number are none.
    typeWithReturn(field("x", 2), " 2 ");
    EXPECT_EQ(values(2)[0], 2);
    EXPECT_EQ(field("x", 2)->text(), "2");
}

TEST_F(LightingDialogTest, ADirectionOfNoNumberIsTheZeroVector)
{
    field("y", 1)->setText("0");
    field("z", 1)->setText("0");
    typeWithReturn(field("x", 1), "abc");
    EXPECT_EQ(directions->value[0], SbVec3f(0, 0, 0));
}

TEST_F(LightingDialogTest, NeverNormalisesADirection)
{
    field("x", 3)->setText("0");
    field("y", 3)->setText("0");
    typeWithReturn(field("z", 3), "2");
    EXPECT_EQ(directions->value[2], SbVec3f(0, 0, 2));
    EXPECT_THAT(texts(3), ElementsAre("0", "0", "2", "0", "10"));
    typeWithReturn(field("y", 3), "-1e10");
    EXPECT_EQ(directions->value[2], SbVec3f(0, -1e10f, 2));
}

TEST_F(LightingDialogTest, ADirectionIsStoredAsTypedEvenBeyondNumbers)
{
    typeWithReturn(field("x", 1), "nan");
    EXPECT_TRUE(std::isnan(directions->value[0][0]));
    EXPECT_EQ(field("x", 1)->text(), "nan");
    for (const char* text : {"1e39", "1e400", "inf"}) {
        typeWithReturn(field("x", 1), text);
        EXPECT_EQ(directions->value[0][0], std::numeric_limits<float>::infinity()) << text;
        EXPECT_EQ(field("x", 1)->text(), "inf") << text;
    }
}

TEST_F(LightingDialogTest, ReformatsWhatWasTyped)
{
    const std::pair<const char*, const char*> typed[] = {
        {".5", "0.5"},  {"0.0000001", "1e-07"},     {"+3", "3"},
        {"1E2", "100"}, {"0.12345678", "0.123457"}, {"1234567", "1.23457e+06"}};
    for (const auto& [text, shown] : typed) {
        typeWithReturn(field("x", 1), text);
        EXPECT_EQ(field("x", 1)->text(), shown) << text;
    }
}

// Without all of the arrays

TEST_F(LightingDialogTest, WithAnyArrayNullItStaysEmptyAndChangesNothing)
{
    for (int missing = 0; missing < 3; ++missing) {
        LightingDialog empty(nullptr, missing == 0 ? nullptr : directions,
                             missing == 1 ? nullptr : intensities,
                             missing == 2 ? nullptr : shininess);
        for (QLineEdit* edit : empty.findChildren<QLineEdit*>()) {
            EXPECT_EQ(edit->text(), "");
            edit->setText("0.5");
        }
        empty.updateGUIFromShaders();
        empty.updateShaderParameters();
        QTest::keyClick(child<QLineEdit>(empty, "x1LineEdit"), Qt::Key_Return);
        EXPECT_EQ(child<QLineEdit>(empty, "x1LineEdit")->text(), "0.5");
        EXPECT_THAT(values(1), ElementsAre(0.2f, -0.2f, -1, 1, 10));

        bool opened = false;
        int result = -1;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            opened = true;
            empty.reject();
        });
        timer.start(0);
        result = empty.exec();
        EXPECT_EQ(result, 0);
        EXPECT_FALSE(opened) << missing;
    }
    LightingDialog empty(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(empty.exec(), 0);
}

TEST_F(LightingDialogTest, ExecOpensItAndReturnsItsResult)
{
    int result = -1;
    const auto exec = [&] { result = dialog->exec(); };
    EXPECT_TRUE(duringDialog<LightingDialog>(exec, [&](LightingDialog& opened) {
        EXPECT_TRUE(opened.isVisible());
        EXPECT_TRUE(focus(*field("x", 1)));
        typeOver(*field("x", 1), "7");
        QTest::keyClick(field("x", 1), Qt::Key_Return);
        EXPECT_EQ(directions->value[0][0], 7);
        EXPECT_TRUE(opened.isVisible());
        QTest::keyClick(field("x", 1), Qt::Key_Escape);
        EXPECT_FALSE(opened.isVisible());
    }));
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(
        duringDialog<LightingDialog>(exec, [](LightingDialog& opened) { opened.accept(); }));
    EXPECT_EQ(result, 1);
    // Through the slot, too.
    EXPECT_TRUE(duringDialog<LightingDialog>(
        [&] {
            EXPECT_TRUE(QMetaObject::invokeMethod(dialog.get(), "exec", Q_RETURN_ARG(int, result)));
        },
        [](LightingDialog& opened) { opened.reject(); }));
    EXPECT_EQ(result, 0);
}

TEST_F(LightingDialogTest, IsShownBesideOtherWindows)
{
    show();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}
