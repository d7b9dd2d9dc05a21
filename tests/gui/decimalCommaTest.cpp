// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/decimalComma.h"

#include <QApplication>
#include <QClipboard>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

#include "windows.h"

namespace strandview {

namespace {

class DecimalCommaTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }
};

TEST_F(DecimalCommaTest, BecomesAPointInAFieldAsItIsTyped)
{
    QLineEdit field;
    acceptDecimalComma(field);
    QTest::keyClicks(&field, "0,5");
    EXPECT_EQ(field.text(), "0.5");
    // Also in the middle, and the cursor stays behind it.
    field.setText("25");
    field.setCursorPosition(1);
    QTest::keyClicks(&field, ",7");
    EXPECT_EQ(field.text(), "2.75");
}

TEST_F(DecimalCommaTest, BecomesAPointInAFieldAsItIsPasted)
{
    QLineEdit field;
    acceptDecimalComma(field);
    QApplication::clipboard()->setText("-1,25");
    field.paste();
    EXPECT_EQ(field.text(), "-1.25");
}

TEST_F(DecimalCommaTest, StaysInATextThatTheProgramSets)
{
    QLineEdit field;
    acceptDecimalComma(field);
    field.setText("0,5");
    EXPECT_EQ(field.text(), "0,5");
}

TEST_F(DecimalCommaTest, BecomesAPointInASpinBox)
{
    QDoubleSpinBox box;
    box.setLocale(QLocale::c());
    acceptDecimalComma(box);
    typeOver(box, "1,5");
    EXPECT_EQ(box.value(), 1.5);
    EXPECT_EQ(box.text(), "1.5");
}

} // namespace

} // namespace strandview
