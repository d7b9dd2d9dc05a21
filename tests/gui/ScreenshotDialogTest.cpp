// SPDX-License-Identifier: GPL-3.0-or-later
#include <ScreenshotDialog.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "windows.h"

namespace {

using testing::ElementsAre;

class ScreenshotDialogTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    QString finalName() const { return finalNameLabel->text(); }

    std::vector<int> imageSize() const
    {
        int width = 0, height = 0;
        dialog.getImageSize(width, height);
        return {width, height};
    }

    void show() { ASSERT_TRUE(showActive(dialog)); }

    static void click(QAbstractButton* button)
    {
        // A check box takes clicks on its left end, where the box is.
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }

    void type(QWidget* field, const QString& text)
    {
        ASSERT_TRUE(focus(*field));
        typeOver(*field, text);
        QTest::keyClick(field, Qt::Key_Tab);
    }

    // What exec() returns after a text typed into a field, and a last key.
    int execTyping(QWidget* field, const QString& text, Qt::Key last)
    {
        int result = -1;
        EXPECT_TRUE(duringDialog<ScreenshotDialog>([&] { result = dialog.exec(); },
                                                   [&](ScreenshotDialog&) {
                                                       EXPECT_TRUE(focus(*field));
                                                       typeOver(*field, text);
                                                       QTest::keyClick(field, last);
                                                       EXPECT_FALSE(dialog.isVisible());
                                                   }));
        return result;
    }

    ScreenshotDialog dialog{nullptr, 801, 600};
    QPushButton* dirButton = child<QPushButton>(dialog, "dirButton");
    QLineEdit* dirLineEdit = child<QLineEdit>(dialog, "dirLineEdit");
    QLineEdit* filenameLineEdit = child<QLineEdit>(dialog, "filenameLineEdit");
    QSpinBox* indexSpinBox = child<QSpinBox>(dialog, "indexSpinBox");
    QCheckBox* indexCheckBox = child<QCheckBox>(dialog, "indexCheckBox");
    QComboBox* extComboBox = child<QComboBox>(dialog, "extComboBox");
    QLabel* finalNameLabel = child<QLabel>(dialog, "finalNameLabel");
    QSpinBox* widthSpinBox = child<QSpinBox>(dialog, "widthSpinBox");
    QSpinBox* heightSpinBox = child<QSpinBox>(dialog, "heightSpinBox");
    QDoubleSpinBox* multDoubleSpinBox = child<QDoubleSpinBox>(dialog, "multDoubleSpinBox");
    QCheckBox* multCheckBox = child<QCheckBox>(dialog, "multCheckBox");
    QPushButton* okButton = child<QPushButton>(dialog, "okButton");
    QPushButton* cancelButton = child<QPushButton>(dialog, "cancelButton");
};

} // namespace

// The form

TEST_F(ScreenshotDialogTest, IsModalToTheApplicationWithItsNameTitleAndHeights)
{
    EXPECT_EQ(dialog.objectName(), "ScreenshotDialog");
    EXPECT_EQ(dialog.windowTitle(), "Screenshot data");
    EXPECT_EQ(dialog.windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(dialog.minimumHeight(), 250);
    EXPECT_EQ(dialog.maximumHeight(), 257);
    EXPECT_EQ(dialog.maximumWidth(), QWIDGETSIZE_MAX);
    QWidget parent;
    auto* owned = new ScreenshotDialog(&parent, 1, 1);
    EXPECT_EQ(owned->parentWidget(), &parent);
    EXPECT_TRUE(owned->isWindow());
}

TEST_F(ScreenshotDialogTest, HasTheTextsOfItsWidgets)
{
    EXPECT_EQ(dirButton->text(), "Choose dir");
    EXPECT_EQ(dirLineEdit->text(), "./");
    EXPECT_EQ(filenameLineEdit->text(), "screenshot");
    EXPECT_EQ(indexCheckBox->text(), "use index");
    EXPECT_EQ(multCheckBox->text(), "mult. of current view");
    EXPECT_EQ(okButton->text(), "OK");
    EXPECT_EQ(cancelButton->text(), "Cancel");
    const std::pair<const char*, const char*> labels[] = {
        {"filenameLabel", "Filename stem"}, {"indexLabel", "Index"},
        {"extLabel", "File extension"},     {"finalNameDescrLabel", "Final filename"},
        {"sizeLabel", "Image size"},        {"timesLabel", "x"}};
    for (const auto& [name, text] : labels)
        EXPECT_EQ(child<QLabel>(dialog, name)->text(), text);
}

TEST_F(ScreenshotDialogTest, StartsWithItsRangesAndValues)
{
    EXPECT_EQ(indexSpinBox->minimum(), 0);
    EXPECT_EQ(indexSpinBox->maximum(), 99);
    EXPECT_EQ(dialog.getIndex(), 0);
    EXPECT_FALSE(dialog.isIndexUsed());
    EXPECT_EQ(extComboBox->count(), 0);
    EXPECT_EQ(dialog.getExtension(), "");
    EXPECT_EQ(finalName(), "screenshot.");
    for (const QSpinBox* side : {widthSpinBox, heightSpinBox}) {
        EXPECT_EQ(side->minimum(), 1);
        EXPECT_EQ(side->maximum(), 100000);
    }
    EXPECT_EQ(multDoubleSpinBox->decimals(), 3);
    EXPECT_EQ(multDoubleSpinBox->minimum(), 0.001);
    EXPECT_EQ(multDoubleSpinBox->maximum(), 999.999);
    EXPECT_EQ(multDoubleSpinBox->singleStep(), 0.1);
    EXPECT_EQ(multDoubleSpinBox->value(), 1);
    EXPECT_TRUE(multCheckBox->isChecked());
    EXPECT_FALSE(indexSpinBox->isEnabled());
    EXPECT_TRUE(multDoubleSpinBox->isEnabled());
}

TEST_F(ScreenshotDialogTest, TheImageIs640By480UntilASizeIsSet)
{
    EXPECT_THAT(imageSize(), ElementsAre(640, 480));
    dialog.setGLSize(801, 600);
    EXPECT_THAT(imageSize(), ElementsAre(801, 600));
}

TEST_F(ScreenshotDialogTest, PutsEachRowOfTheFormInItsPlace)
{
    const auto& data = *dialog.findChild<QGridLayout*>("dataLayout");
    const auto place = [&](const char* name) {
        return placeOf(data, child<QWidget>(dialog, name));
    };
    EXPECT_EQ(place("dirButton"), (Place{0, 0, 1, 1}));
    EXPECT_EQ(place("dirLineEdit"), (Place{0, 1, 1, 4}));
    EXPECT_EQ(place("filenameLabel"), (Place{1, 0, 1, 1}));
    EXPECT_EQ(place("filenameLineEdit"), (Place{1, 1, 1, 4}));
    EXPECT_EQ(place("indexLabel"), (Place{2, 0, 1, 1}));
    EXPECT_EQ(place("indexSpinBox"), (Place{2, 1, 1, 3}));
    EXPECT_EQ(place("indexCheckBox"), (Place{2, 4, 1, 1}));
    EXPECT_EQ(place("extLabel"), (Place{3, 0, 1, 1}));
    EXPECT_EQ(place("extComboBox"), (Place{3, 1, 1, 4}));
    EXPECT_EQ(place("finalNameDescrLabel"), (Place{4, 0, 1, 1}));
    EXPECT_EQ(place("finalNameLabel"), (Place{4, 1, 1, 4}));
    EXPECT_EQ(place("sizeLabel"), (Place{5, 0, 1, 1}));
    EXPECT_EQ(place("widthSpinBox"), (Place{5, 1, 1, 1}));
    EXPECT_EQ(place("timesLabel"), (Place{5, 2, 1, 1}));
    EXPECT_EQ(place("heightSpinBox"), (Place{5, 3, 1, 1}));
    EXPECT_EQ(place("multDoubleSpinBox"), (Place{6, 1, 1, 3}));
    EXPECT_EQ(place("multCheckBox"), (Place{6, 4, 1, 1}));

    auto* outer = qobject_cast<QGridLayout*>(dialog.layout());
    ASSERT_TRUE(outer);
    EXPECT_EQ(outer->objectName(), "gridLayout");
    EXPECT_EQ(data.parent(), outer);
    EXPECT_EQ(placeOf(*outer, okButton).row, 1);
    EXPECT_EQ(placeOf(*outer, cancelButton).row, 1);
    EXPECT_LT(placeOf(*outer, okButton).column, placeOf(*outer, cancelButton).column);
}

TEST_F(ScreenshotDialogTest, LabelsOfTheFirstColumnAreToTheRight)
{
    for (const char* name :
         {"filenameLabel", "indexLabel", "extLabel", "finalNameDescrLabel", "sizeLabel"})
        EXPECT_EQ(child<QLabel>(dialog, name)->alignment(), Qt::AlignRight | Qt::AlignVCenter)
            << name;
}

TEST_F(ScreenshotDialogTest, NothingIsCutOffAtItsSmallestAndInAWideWindow)
{
    dialog.setExtensions({"jpeg", "png", "ps"}, "png");
    show();
    for (const QSize size : {QSize(1, 1), QSize(1000, 1000)}) {
        dialog.resize(size);
        QTest::qWait(50);
        EXPECT_EQ(dialog.height(), size.height() == 1 ? 250 : 257);
        EXPECT_THAT(badlyPlaced(dialog), testing::IsEmpty()) << size.width();
    }
}

TEST_F(ScreenshotDialogTest, ALongNameDoesNotPushTheButtonsOffTheScreen)
{
    show();
    const int width = dialog.width();
    filenameLineEdit->setText(QString(300, 'm'));
    QTest::qWait(50);
    EXPECT_EQ(dialog.width(), width);
    EXPECT_TRUE(dialog.rect().contains(cancelButton->geometry()));
    EXPECT_EQ(finalName(), QString(300, 'm') + ".");
}

TEST_F(ScreenshotDialogTest, TabGoesThroughTheFormRowByRow)
{
    show();
    indexCheckBox->setChecked(true);
    ASSERT_TRUE(focus(*dirButton));
    std::vector<std::string> order;
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order.push_back(QApplication::focusWidget()->objectName().toStdString());
    }
    EXPECT_THAT(order,
                ElementsAre("dirLineEdit", "filenameLineEdit", "indexSpinBox", "indexCheckBox",
                            "extComboBox", "widthSpinBox", "heightSpinBox", "multDoubleSpinBox",
                            "multCheckBox", "okButton", "cancelButton", "dirButton"));
}

// The file

TEST_F(ScreenshotDialogTest, TheFinalNameFollowsEveryFieldAsItIsEdited)
{
    show();
    dialog.setExtensions({"jpg", "png", "ps"}, "png");
    EXPECT_EQ(finalName(), "screenshot.png");

    ASSERT_TRUE(focus(*filenameLineEdit));
    typeOver(*filenameLineEdit, "knot");
    EXPECT_EQ(finalName(), "knot.png");
    QTest::keyClicks(filenameLineEdit, "_");
    EXPECT_EQ(finalName(), "knot_.png");

    click(indexCheckBox);
    EXPECT_TRUE(dialog.isIndexUsed());
    EXPECT_EQ(finalName(), "knot_0.png");
    type(indexSpinBox, "7");
    EXPECT_EQ(dialog.getIndex(), 7);
    EXPECT_EQ(finalName(), "knot_7.png");
    QTest::keyClick(indexSpinBox, Qt::Key_Up);
    EXPECT_EQ(finalName(), "knot_8.png");

    ASSERT_TRUE(focus(*extComboBox));
    QTest::keyClick(extComboBox, Qt::Key_Down);
    EXPECT_EQ(dialog.getExtension(), "ps");
    EXPECT_EQ(finalName(), "knot_8.ps");

    click(indexCheckBox);
    EXPECT_EQ(finalName(), "knot_.ps");
}

TEST_F(ScreenshotDialogTest, TheFinalNameReadsAsTyped)
{
    filenameLineEdit->setText("<b>&amp;</b>");
    EXPECT_EQ(finalName(), "<b>&amp;</b>.");
    // Not set in bold, as a label does with what it takes for HTML.
    EXPECT_EQ(finalNameLabel->textFormat(), Qt::PlainText);
}

TEST_F(ScreenshotDialogTest, AnIndexThatIsNotUsedChangesNothingAndCannotBeTyped)
{
    dialog.setExtensions({"png"}, "png");
    dialog.setIndex(5);
    EXPECT_EQ(dialog.getIndex(), 5);
    EXPECT_EQ(finalName(), "screenshot.png");
    EXPECT_FALSE(indexSpinBox->isEnabled());
    indexCheckBox->setChecked(true);
    EXPECT_TRUE(indexSpinBox->isEnabled());
    EXPECT_EQ(finalName(), "screenshot5.png");
    indexCheckBox->setChecked(false);
    EXPECT_FALSE(indexSpinBox->isEnabled());
    EXPECT_EQ(finalName(), "screenshot.png");
}

TEST_F(ScreenshotDialogTest, TheIndexStaysWithin0And99)
{
    dialog.setExtensions({"png"}, "png");
    indexCheckBox->setChecked(true);
    dialog.setIndex(99);
    EXPECT_EQ(finalName(), "screenshot99.png");
    dialog.setIndex(100);
    EXPECT_EQ(dialog.getIndex(), 99);
    EXPECT_EQ(finalName(), "screenshot99.png");
    dialog.setIndex(-1);
    EXPECT_EQ(dialog.getIndex(), 0);
    EXPECT_EQ(finalName(), "screenshot0.png");
}

TEST_F(ScreenshotDialogTest, OffersTheExtensionsInTheGivenOrder)
{
    const QStringList given = {"ps", "Png", "png", "jpg", "png"};
    dialog.setExtensions(given, "png");
    QStringList offered;
    for (int i = 0; i < extComboBox->count(); ++i)
        offered.append(extComboBox->itemText(i));
    EXPECT_EQ(offered, given);
    // The first that is the same, case and all.
    EXPECT_EQ(extComboBox->currentIndex(), 2);
    EXPECT_EQ(finalName(), "screenshot.png");

    dialog.setExtensions({"tiff", "rgb"}, "rgb");
    EXPECT_EQ(extComboBox->count(), 2);
    EXPECT_EQ(dialog.getExtension(), "rgb");
    EXPECT_EQ(finalName(), "screenshot.rgb");
}

TEST_F(ScreenshotDialogTest, ADefaultThatIsNotOfferedLeavesTheFirst)
{
    for (const char* other : {"png", "PS", ""}) {
        dialog.setExtensions({"ps", "rgb"}, other);
        EXPECT_EQ(dialog.getExtension(), "ps") << other;
        EXPECT_EQ(finalName(), "screenshot.ps") << other;
    }
}

TEST_F(ScreenshotDialogTest, WithoutExtensionsTheNameEndsInAFullStop)
{
    dialog.setExtensions({"png"}, "png");
    dialog.setExtensions({}, "png");
    EXPECT_EQ(extComboBox->count(), 0);
    EXPECT_EQ(dialog.getExtension(), "");
    EXPECT_EQ(finalName(), "screenshot.");
    EXPECT_TRUE(dialog.getFinalPath().endsWith("/screenshot."));
}

TEST_F(ScreenshotDialogTest, ThePathIsAbsolute)
{
    dialog.setExtensions({"png"}, "png");
    EXPECT_EQ(dialog.getDir(), "./");
    EXPECT_EQ(dialog.getFinalPath(), QDir("./").absoluteFilePath("screenshot.png"));
    EXPECT_EQ(QDir::cleanPath(dialog.getFinalPath()), QDir::currentPath() + "/screenshot.png");
    dirLineEdit->setText("/a/b");
    EXPECT_EQ(dialog.getFinalPath(), "/a/b/screenshot.png");
    dirLineEdit->setText("");
    EXPECT_EQ(QDir::cleanPath(dialog.getFinalPath()), QDir::currentPath() + "/screenshot.png");
}

TEST_F(ScreenshotDialogTest, CharactersOutsideAsciiDoNotSurviveIntoTheDirectory)
{
    dialog.setExtensions({"png"}, "png");
    QString all;
    for (ushort code = 0x20; code <= 0x17f; ++code)
        all.append(QChar(code));
    dirLineEdit->setText(all);
    const QString typed = dirLineEdit->text();
    const QString dir = dialog.getDir();
    ASSERT_EQ(dir.size(), typed.size());
    for (int i = 0; i < dir.size(); ++i)
        EXPECT_EQ(dir[i], typed[i].unicode() < 128 ? typed[i] : QChar('?')) << i;

    dirLineEdit->setText(QString::fromUtf8("/tmp/\xc3\xa9t\xc3\xa9"));
    EXPECT_EQ(dialog.getFinalPath(), "/tmp/?t?/screenshot.png");
    // As typed in its field all the same.
    EXPECT_EQ(dirLineEdit->text(), QString::fromUtf8("/tmp/\xc3\xa9t\xc3\xa9"));
}

// The directory dialog

TEST_F(ScreenshotDialogTest, ChoosingADirectoryPutsItInTheField)
{
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("pictures"));
    dirLineEdit->setText(folder.path());
    show();
    const bool asked = duringDialog<QFileDialog>(
        [&] { click(dirButton); },
        [&](QFileDialog& choice) {
            EXPECT_EQ(choice.windowTitle(), "Choose screenshot directory");
            EXPECT_EQ(choice.parentWidget(), &dialog);
            EXPECT_TRUE(choice.testOption(QFileDialog::ShowDirsOnly));
            EXPECT_TRUE(choice.testOption(QFileDialog::DontResolveSymlinks));
            EXPECT_EQ(choice.directory().absolutePath(), folder.path());
            auto* name = child<QLineEdit>(choice, "fileNameEdit");
            name->setText("pictures");
            QTest::keyClick(name, Qt::Key_Return);
        });
    EXPECT_TRUE(asked);
    EXPECT_EQ(dirLineEdit->text(), folder.path() + "/pictures");
    EXPECT_EQ(dialog.getFinalPath(), folder.path() + "/pictures/screenshot.");
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(ScreenshotDialogTest, CancellingTheChoiceLeavesTheDirectory)
{
    const QString typed = QString::fromUtf8("/tmp/\xc3\xa9");
    dirLineEdit->setText(typed);
    show();
    const bool asked = duringDialog<QFileDialog>([&] { click(dirButton); },
                                                 [](QFileDialog& choice) {
                                                     QTest::keyClick(&choice, Qt::Key_Escape);
                                                     EXPECT_FALSE(choice.isVisible());
                                                 });
    EXPECT_TRUE(asked);
    EXPECT_EQ(dirLineEdit->text(), typed);
    EXPECT_TRUE(dialog.isVisible());
}

// The size

TEST_F(ScreenshotDialogTest, TheSizeIsTheViewsTimesTheFactorCutToWholePixels)
{
    show();
    type(multDoubleSpinBox, "1.5");
    EXPECT_EQ(multDoubleSpinBox->value(), 1.5);
    EXPECT_THAT(imageSize(), ElementsAre(1201, 900));
    dialog.setGLSize(33, 35);
    EXPECT_THAT(imageSize(), ElementsAre(49, 52));
    type(multDoubleSpinBox, "0.999");
    EXPECT_THAT(imageSize(), ElementsAre(32, 34));
    QTest::keyClick(multDoubleSpinBox, Qt::Key_Up);
    EXPECT_EQ(multDoubleSpinBox->value(), 1.099);
    EXPECT_THAT(imageSize(), ElementsAre(36, 38));
}

TEST_F(ScreenshotDialogTest, TheFactorHasADecimalPointInEveryLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    ScreenshotDialog german(nullptr, 800, 600);
    QLocale::setDefault(before);
    auto* factor = child<QDoubleSpinBox>(german, "multDoubleSpinBox");
    EXPECT_EQ(factor->text(), "1.000");
    ASSERT_TRUE(showActive(german));
    typeOver(*factor, "1.5");
    EXPECT_EQ(factor->value(), 1.5);
    int width = 0, height = 0;
    german.getImageSize(width, height);
    EXPECT_EQ(width, 1200);
    EXPECT_EQ(height, 900);
}

TEST_F(ScreenshotDialogTest, NoSideIsBelowOnePixel)
{
    multDoubleSpinBox->setValue(0.001);
    dialog.setGLSize(640, 480);
    EXPECT_THAT(imageSize(), ElementsAre(1, 1));
    dialog.setImageSize(0, -5);
    EXPECT_THAT(imageSize(), ElementsAre(1, 1));
    dialog.setImageSize(-1, 7);
    EXPECT_THAT(imageSize(), ElementsAre(1, 7));
    multDoubleSpinBox->setValue(1);
    dialog.setGLSize(0, -100);
    EXPECT_THAT(imageSize(), ElementsAre(1, 1));
}

TEST_F(ScreenshotDialogTest, NoSideIsAbove100000Pixels)
{
    dialog.setImageSize(100001, INT_MAX);
    EXPECT_THAT(imageSize(), ElementsAre(100000, 100000));
    multDoubleSpinBox->setValue(999.999);
    dialog.setGLSize(INT_MAX, 20000);
    EXPECT_THAT(imageSize(), ElementsAre(100000, 100000));
    dialog.setGLSize(INT_MIN, INT_MAX);
    EXPECT_THAT(imageSize(), ElementsAre(1, 100000));
}

TEST_F(ScreenshotDialogTest, ATypedSizeHoldsOnceItIsNoMultipleOfTheView)
{
    show();
    click(multCheckBox);
    EXPECT_FALSE(multCheckBox->isChecked());
    EXPECT_FALSE(multDoubleSpinBox->isEnabled());
    EXPECT_THAT(imageSize(), ElementsAre(640, 480));
    type(widthSpinBox, "1234");
    type(heightSpinBox, "567");
    dialog.setGLSize(50, 60);
    multDoubleSpinBox->setValue(2);
    EXPECT_THAT(imageSize(), ElementsAre(1234, 567));

    click(multCheckBox);
    EXPECT_TRUE(multDoubleSpinBox->isEnabled());
    EXPECT_THAT(imageSize(), ElementsAre(100, 120));
}

TEST_F(ScreenshotDialogTest, ATypedSizeHoldsUntilTheNextChangeOfFactorOrView)
{
    show();
    type(widthSpinBox, "1234");
    EXPECT_THAT(imageSize(), ElementsAre(1234, 480));
    type(multDoubleSpinBox, "2");
    EXPECT_THAT(imageSize(), ElementsAre(1602, 1200));
    type(heightSpinBox, "5");
    EXPECT_THAT(imageSize(), ElementsAre(1602, 5));
    dialog.setGLSize(10, 20);
    EXPECT_THAT(imageSize(), ElementsAre(20, 40));
}

// Its end

TEST_F(ScreenshotDialogTest, ExecIsTrueAfterOkAndFalseAfterCancel)
{
    int result = -1;
    const auto exec = [&] { result = dialog.exec(); };
    EXPECT_TRUE(duringDialog<ScreenshotDialog>(exec, [&](auto&) { click(okButton); }));
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(duringDialog<ScreenshotDialog>(exec, [&](auto&) { click(cancelButton); }));
    EXPECT_EQ(result, 0);
}

TEST_F(ScreenshotDialogTest, ReturnInATextFieldIsOk)
{
    EXPECT_EQ(execTyping(filenameLineEdit, "knot", Qt::Key_Return), 1);
    EXPECT_EQ(finalName(), "knot.");
}

TEST_F(ScreenshotDialogTest, ReturnInANumberFieldTakesTheNumberAndIsOk)
{
    EXPECT_EQ(execTyping(widthSpinBox, "77", Qt::Key_Return), 1);
    EXPECT_THAT(imageSize(), ElementsAre(77, 480));
}

TEST_F(ScreenshotDialogTest, EscapeCancels)
{
    EXPECT_EQ(execTyping(filenameLineEdit, "knot", Qt::Key_Escape), 0);
}

TEST_F(ScreenshotDialogTest, ReturnIsOkAsSoonAsItOpens)
{
    int result = -1;
    EXPECT_TRUE(duringDialog<ScreenshotDialog>([&] { result = dialog.exec(); },
                                               [&](auto&) {
                                                   EXPECT_TRUE(okButton->isDefault());
                                                   QWidget* first = dialog.focusWidget();
                                                   QTest::keyClick(first ? first : &dialog,
                                                                   Qt::Key_Return);
                                                   EXPECT_FALSE(dialog.isVisible());
                                               }));
    EXPECT_EQ(result, 1);
}

TEST_F(ScreenshotDialogTest, KeepsItsFieldsFromOneScreenshotToTheNext)
{
    dialog.setExtensions({"jpg", "png", "ps"}, "jpg");
    indexCheckBox->setChecked(true);
    multCheckBox->setChecked(false);
    const auto typeAndAccept = [&](ScreenshotDialog&) {
        dirLineEdit->setText("/tmp");
        filenameLineEdit->setText("rod");
        dialog.setIndex(3);
        dialog.setImageSize(70, 50);
        click(okButton);
    };
    EXPECT_TRUE(duringDialog<ScreenshotDialog>([&] { dialog.exec(); }, typeAndAccept));
    // As the viewer does before the next.
    dialog.setGLSize(300, 200);
    dialog.setExtensions({"jpg", "png", "ps"}, dialog.getExtension());
    EXPECT_TRUE(duringDialog<ScreenshotDialog>([&] { dialog.exec(); },
                                               [](ScreenshotDialog& opened) { opened.reject(); }));
    EXPECT_EQ(dialog.getFinalPath(), "/tmp/rod3.jpg");
    EXPECT_THAT(imageSize(), ElementsAre(70, 50));
}

// For classes derived from it

TEST_F(ScreenshotDialogTest, ItsOperationsAreVirtual)
{
    class Derived : public ScreenshotDialog
    {
    public:
        Derived() : ScreenshotDialog(nullptr, 10, 10) {}
        QString getDir() const override { return "/derived"; }
        bool isIndexUsed() const override { return true; }
        int getIndex() const override { return 1234; }
        QString getExtension() const override { return "ext"; }
        void setImageSize(int width, int height) override { sides = {width, height}; }
        void updateDir() override { ++dirUpdates; }
        void updateFinalName() override
        {
            ++nameUpdates;
            ScreenshotDialog::updateFinalName();
        }
        void updateSize() override
        {
            ++sizeUpdates;
            ScreenshotDialog::updateSize();
        }
        std::vector<int> sides;
        int dirUpdates = 0;
        int nameUpdates = 0;
        int sizeUpdates = 0;
    } derived;

    // Each signal calls the slot once, and the slot of the derived class.
    child<QPushButton>(derived, "dirButton")->click();
    EXPECT_EQ(derived.dirUpdates, 1);
    child<QLineEdit>(derived, "filenameLineEdit")->setText("x");
    EXPECT_EQ(derived.nameUpdates, 1);
    child<QCheckBox>(derived, "indexCheckBox")->toggle();
    EXPECT_EQ(derived.nameUpdates, 2);
    child<QSpinBox>(derived, "indexSpinBox")->setValue(4);
    EXPECT_EQ(derived.nameUpdates, 3);
    child<QDoubleSpinBox>(derived, "multDoubleSpinBox")->setValue(3);
    EXPECT_EQ(derived.sizeUpdates, 1);
    EXPECT_THAT(derived.sides, ElementsAre(30, 30));
    child<QCheckBox>(derived, "multCheckBox")->toggle();
    EXPECT_EQ(derived.sizeUpdates, 2);
    EXPECT_EQ(derived.getFinalPath(), "/derived/x1234.ext");
}

TEST_F(ScreenshotDialogTest, DeclaresItsVirtualOperationsInOrder)
{
    // A pointer to a virtual member function holds the offset of its slot.
    const auto slot = [](auto operation) {
        std::ptrdiff_t offset = 0;
        std::memcpy(&offset, &operation, sizeof offset);
        return offset;
    };
    using Dialog = ScreenshotDialog;
    const std::vector<std::ptrdiff_t> slots_ = {
        slot(&Dialog::getDir),       slot(&Dialog::isIndexUsed),  slot(&Dialog::getIndex),
        slot(&Dialog::setIndex),     slot(&Dialog::getExtension), slot(&Dialog::setExtensions),
        slot(&Dialog::setGLSize),    slot(&Dialog::getImageSize), slot(&Dialog::setImageSize),
        slot(&Dialog::getFinalPath), slot(&Dialog::updateDir),    slot(&Dialog::updateFinalName),
        slot(&Dialog::updateSize),
    };
    for (size_t i = 1; i < slots_.size(); ++i)
        EXPECT_EQ(slots_[i] - slots_[i - 1], std::ptrdiff_t(sizeof(void*))) << i;
}
