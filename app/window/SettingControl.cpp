// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SettingControl.h"

#include <algorithm>
#include <cmath>

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

#include <strandview/formats/text/wording.h>

#include "request/parseNumber.h"
#include "window/decimalComma.h"

namespace strandview {

namespace {

using Text = std::optional<std::string>;

QString toQt(const Text& text) { return QString::fromStdString(text.value_or("")); }

// On and off.
class SwitchControl : public SettingControl
{
public:
    SwitchControl(const Setting& ofSwitch, QWidget* parent)
        : SettingControl(ofSwitch, new QCheckBox(parent)), box(static_cast<QCheckBox*>(widget))
    {
        connect(box, &QCheckBox::clicked, this,
                [this](bool on) { emit chosen(on ? "on" : "off"); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        box->setChecked(shown == std::optional<std::string>("on"));
    }

private:
    QCheckBox* const box;
};

// A field, and a slider from a tenth to ten times what the data suggest.
class LengthControl : public SettingControl
{
public:
    LengthControl(const Setting& ofLength, QWidget* parent)
        : SettingControl(ofLength, makeRow(parent)),
          field(new QLineEdit(widget)),
          slider(new QSlider(Qt::Horizontal, widget))
    {
        name(field, "Field", setting.label);
        name(slider, "Slider", QString(setting.label) + ", slider");
        field->setMaximumWidth(field->fontMetrics().horizontalAdvance("0.00000000"));
        slider->setRange(-STEPS, STEPS);
        slider->setMinimumWidth(60);
        widget->layout()->addWidget(field);
        widget->layout()->addWidget(slider);
        widget->setFocusProxy(field);
        acceptDecimalComma(*field);
        connect(field, &QLineEdit::editingFinished, this, [this] {
            if (field->isModified())
                emit chosen(field->text());
            field->setModified(false);
        });
        connect(slider, &QSlider::valueChanged, this, [this](int position) {
            const double length = middle * std::pow(10.0, double(position) / STEPS);
            emit chosen(QString::number(length, 'g', 3));
        });
    }
    void show(const Text& asked, const Text& shown) override
    {
        const Text& text = asked ? asked : shown;
        const std::optional<double> length = parseNumber<double>(text.value_or(""));
        if (!field->isModified())
            field->setText(asked    ? toQt(asked)
                           : length ? QString::number(*length, 'g', 4)
                                    : QString());
        if (!length || slider->isSliderDown())
            return;
        if (!asked || middle == 0)
            middle = *length;
        const QSignalBlocker quiet(slider);
        slider->setValue(int(std::lround(STEPS * std::log10(*length / middle))));
    }

private:
    static constexpr int STEPS = 100; // of a power of ten

    QLineEdit* const field;
    QSlider* const slider;
    double middle = 0;
};

class CountControl : public SettingControl
{
public:
    CountControl(const Setting& ofCount, QWidget* parent)
        : SettingControl(ofCount, new QSpinBox(parent)), box(static_cast<QSpinBox*>(widget))
    {
        box->setRange(setting.least, setting.most);
        box->setKeyboardTracking(false);
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this,
                [this](int count) { emit chosen(QString::number(count)); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        const QSignalBlocker quiet(box);
        box->setValue(parseNumber<int>(shown.value_or("")).value_or(setting.least));
    }

private:
    QSpinBox* const box;
};

QIcon swatch(const QColor& colour)
{
    QPixmap picture(32, 16);
    picture.fill(colour);
    return {picture};
}

class ColourControl : public SettingControl
{
public:
    ColourControl(const Setting& ofColour, QWidget* parent)
        : SettingControl(ofColour, new QPushButton(parent)),
          button(static_cast<QPushButton*>(widget))
    {
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this] { choose(); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        colour = shown ? QColor(toQt(shown)) : QColor();
        button->setIcon(colour.isValid() ? swatch(colour) : QIcon());
        button->setText(colour.isValid() ? colour.name() : "one each");
    }

private:
    // Each colour of the dialog is shown as it is looked at.
    void choose()
    {
        const QColor before = colour;
        QColorDialog dialog(before.isValid() ? before : QColor(Qt::gray), button);
        dialog.setWindowTitle(setting.label);
        connect(&dialog, &QColorDialog::currentColorChanged, this,
                [this](const QColor& next) { emit chosen(next.name()); });
        if (dialog.exec() == QDialog::Accepted)
            emit chosen(dialog.selectedColor().name());
        else if (before.isValid())
            emit chosen(before.name());
        else
            emit cleared();
    }

    QPushButton* const button;
    QColor colour;
};

class ChoiceControl : public SettingControl
{
public:
    ChoiceControl(const Setting& ofChoice, QWidget* parent)
        : SettingControl(ofChoice, new QComboBox(parent)), list(static_cast<QComboBox*>(widget))
    {
        for (const std::string& word : setting.words)
            list->addItem(QString::fromStdString(word));
        connect(list, QOverload<int>::of(&QComboBox::activated), this,
                [this] { emit chosen(list->currentText()); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        list->setCurrentIndex(std::max(0, list->findText(toQt(shown))));
    }

private:
    QComboBox* const list;
};

// Ticks, one below the other.
class PartsControl : public SettingControl
{
public:
    PartsControl(const Setting& ofParts, QWidget* parent)
        : SettingControl(ofParts, new QWidget(parent))
    {
        auto* column = new QVBoxLayout(widget);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(2);
        for (const std::string& word : setting.words) {
            const QString text = QString::fromStdString(word);
            auto* box = new QCheckBox(text, widget);
            name(box, word.c_str(), QString(setting.label) + ": " + text);
            column->addWidget(box);
            boxes.push_back(box);
            connect(box, &QCheckBox::clicked, this, [this] { emit chosen(getText()); });
        }
        widget->setFocusProxy(boxes.front());
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        const QStringList words = toQt(shown).split(',');
        for (QCheckBox* box : boxes)
            box->setChecked(words.contains(box->text()));
    }

private:
    QString getText() const
    {
        QStringList words;
        for (const QCheckBox* box : boxes) {
            if (box->isChecked())
                words.append(box->text());
        }
        return words.isEmpty() ? QString("none") : words.join(',');
    }

    std::vector<QCheckBox*> boxes;
};

const char* const NO_SCALAR = "none: colours of their own";

class ScalarControl : public SettingControl
{
public:
    ScalarControl(const Setting& ofScalar, QWidget* parent)
        : SettingControl(ofScalar, new QComboBox(parent)), list(static_cast<QComboBox*>(widget))
    {
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        list->setMinimumContentsLength(14);
        offer({});
        connect(list, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
            if (index == 0)
                emit cleared();
            else
                emit chosen(list->itemText(index));
        });
    }
    void offer(const std::vector<std::string>& words) override
    {
        const QString now = list->currentText();
        list->clear();
        list->addItem(NO_SCALAR);
        for (const std::string& word : words)
            list->addItem(QString::fromStdString(word));
        list->setCurrentIndex(std::max(0, list->findText(now)));
    }
    // Also a name that these data do not have.
    void show(const Text& asked, const Text& /*shown*/) override
    {
        if (asked && list->findText(toQt(asked)) < 0)
            list->addItem(toQt(asked));
        list->setCurrentIndex(asked ? list->findText(toQt(asked)) : 0);
    }

private:
    QComboBox* const list;
};

// Which range, and its ends, where they are told by hand.
class RangeControl : public SettingControl
{
public:
    RangeControl(const Setting& ofRange, QWidget* parent)
        : SettingControl(ofRange, new QWidget(parent)),
          list(new QComboBox(widget)),
          min(new QLineEdit(widget)),
          max(new QLineEdit(widget))
    {
        auto* column = new QVBoxLayout(widget);
        column->setContentsMargins(0, 0, 0, 0);
        column->addWidget(list);
        QWidget* const ends = makeRow(widget);
        column->addWidget(ends);
        for (const auto& [text, data] : {std::pair("of all values", "auto"),
                                         {"of each frame", "frame"},
                                         {"symmetric about 0", "symmetric"},
                                         {"by hand", BY_HAND}})
            list->addItem(text, data);
        name(list, "List", setting.label);
        name(min, "Min", QString(setting.label) + ", least value");
        name(max, "Max", QString(setting.label) + ", greatest value");
        ends->layout()->addWidget(min);
        ends->layout()->addWidget(new QLabel("to", ends));
        ends->layout()->addWidget(max);
        widget->setFocusProxy(list);
        for (QLineEdit* end : {min, max}) {
            acceptDecimalComma(*end);
            connect(end, &QLineEdit::editingFinished, this, [this, end] {
                if (end->isModified())
                    emit chosen(min->text() + ":" + max->text());
                end->setModified(false);
            });
        }
        connect(list, QOverload<int>::of(&QComboBox::activated), this, [this] {
            const QString data = list->currentData().toString();
            emit chosen(data == BY_HAND ? min->text() + ":" + max->text() : data);
        });
    }
    // The limits are always shown as they are.
    void show(const Text& asked, const Text& shown) override
    {
        const bool isByHand = asked && asked->find(':') != std::string::npos;
        list->setCurrentIndex(list->findData(isByHand ? QString(BY_HAND)
                                             : asked  ? toQt(asked)
                                                      : QString("auto")));
        const QStringList ends = toQt(shown).split(':');
        for (QLineEdit* end : {min, max}) {
            const int index = end == min ? 0 : 1;
            if (!end->isModified())
                end->setText(ends.size() == 2 ? ends[index] : QString());
        }
    }

private:
    static constexpr const char* BY_HAND = "by hand";

    QComboBox* const list;
    QLineEdit *const min, *const max;
};

// From left to right.
QIcon pictureOf(const ColourMap& map)
{
    QPixmap picture(64, 14);
    QPainter painter(&picture);
    QLinearGradient ramp(0, 0, picture.width(), 0);
    const auto last = double(map.colours.size() - 1);
    for (std::size_t i = 0; i < map.colours.size(); ++i) {
        const Colour& colour = map.colours[i];
        ramp.setColorAt(double(i) / last, QColor::fromRgbF(double(colour.red), double(colour.green),
                                                           double(colour.blue)));
    }
    painter.fillRect(picture.rect(), ramp);
    return {picture};
}

// By name, with their pictures, or typed: colours with commas.
class MapControl : public SettingControl
{
public:
    MapControl(const Setting& ofMap, QWidget* parent)
        : SettingControl(ofMap, new QWidget(parent)),
          list(new QComboBox(widget)),
          reversed(new QCheckBox("the other way round", widget))
    {
        auto* column = new QVBoxLayout(widget);
        column->setContentsMargins(0, 0, 0, 0);
        column->addWidget(list);
        column->addWidget(reversed);
        name(list, "List", setting.label);
        name(reversed, "Reversed", QString(setting.label) + " the other way round");
        list->setEditable(true);
        list->setInsertPolicy(QComboBox::NoInsert);
        list->setIconSize({64, 14});
        list->setMinimumContentsLength(10);
        list->setToolTip("A name, or two colours or more with commas: navy,white,darkred");
        for (const std::string& word : setting.words)
            list->addItem(pictureOf(*findColourMap(word)), QString::fromStdString(word));
        widget->setFocusProxy(list);
        connect(list, QOverload<int>::of(&QComboBox::activated), this, [this] { choose(); });
        connect(list->lineEdit(), &QLineEdit::editingFinished, this, [this] {
            if (list->lineEdit()->isModified())
                choose();
            list->lineEdit()->setModified(false);
        });
        connect(reversed, &QCheckBox::clicked, this, [this] { choose(); });
    }
    void show(const Text& asked, const Text& shown) override
    {
        QString text = toQt(asked ? asked : shown);
        const bool isReversed = text.endsWith("_r");
        if (isReversed)
            text.chop(2);
        reversed->setChecked(isReversed);
        reversed->setEnabled(!text.contains(','));
        if (!list->lineEdit()->isModified())
            list->setCurrentText(text);
        const int index = list->findText(text);
        if (index >= 0)
            list->setCurrentIndex(index);
    }

private:
    void choose()
    {
        const QString text = list->currentText();
        const bool isNamed = list->findText(text) >= 0;
        emit chosen(text + (isNamed && reversed->isChecked() ? "_r" : ""));
    }

    QComboBox* const list;
    QCheckBox* const reversed;
};

// A line, which is told when it is done.
class TextControl : public SettingControl
{
public:
    TextControl(const Setting& ofText, QWidget* parent)
        : SettingControl(ofText, new QLineEdit(parent)), field(static_cast<QLineEdit*>(widget))
    {
        connect(field, &QLineEdit::editingFinished, this, [this] {
            if (!field->isModified())
                return;
            field->setModified(false);
            emit chosen(field->text());
        });
    }
    void show(const Text& asked, const Text& shown) override
    {
        if (!field->isModified())
            field->setText(toQt(asked ? asked : shown));
    }

private:
    QLineEdit* const field;
};

// Some formats to choose from, or one that is typed.
class FormatControl : public SettingControl
{
public:
    FormatControl(const Setting& ofFormat, QWidget* parent)
        : SettingControl(ofFormat, new QComboBox(parent)), list(static_cast<QComboBox*>(widget))
    {
        list->setEditable(true);
        list->setInsertPolicy(QComboBox::NoInsert);
        for (const std::string& word : setting.words)
            list->addItem(QString::fromStdString(word));
        connect(list, QOverload<int>::of(&QComboBox::activated), this,
                [this] { emit chosen(list->currentText()); });
        connect(list->lineEdit(), &QLineEdit::editingFinished, this, [this] {
            if (!list->lineEdit()->isModified())
                return;
            list->lineEdit()->setModified(false);
            emit chosen(list->currentText());
        });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        if (!list->lineEdit()->isModified())
            list->setCurrentText(toQt(shown));
    }

private:
    QComboBox* const list;
};

class ReferenceControl : public SettingControl
{
public:
    ReferenceControl(const Setting& ofReference, QWidget* parent)
        : SettingControl(ofReference, new QComboBox(parent)), list(static_cast<QComboBox*>(widget))
    {
        list->addItems({"nothing", "the first frame", "a file..."});
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        list->setMinimumContentsLength(14);
        connect(list, QOverload<int>::of(&QComboBox::activated), this, &ReferenceControl::choose);
    }
    void show(const Text& asked, const Text& /*shown*/) override
    {
        now = asked;
        while (list->count() > FILE_NAME)
            list->removeItem(FILE_NAME);
        if (asked && *asked != "first")
            list->addItem(toQt(asked));
        list->setCurrentIndex(!asked ? NOTHING : *asked == "first" ? FIRST : FILE_NAME);
    }

private:
    enum { NOTHING, FIRST, CHOOSE, FILE_NAME };

    void choose(int index)
    {
        if (index == NOTHING)
            emit cleared();
        else if (index == FIRST)
            emit chosen("first");
        else if (index == CHOOSE)
            chooseFile();
    }
    void chooseFile()
    {
        const QString file = QFileDialog::getOpenFileName(list, "Compare with");
        if (file.isEmpty())
            show(now, {});
        else
            emit chosen(file);
    }

    QComboBox* const list;
    Text now;
};

} // namespace

SettingControl* SettingControl::make(const Setting& setting, QWidget* parent)
{
    switch (setting.kind) {
    case SettingKind::SWITCH:
        return new SwitchControl(setting, parent);
    case SettingKind::LENGTH:
        return new LengthControl(setting, parent);
    case SettingKind::COUNT:
        return new CountControl(setting, parent);
    case SettingKind::COLOUR:
        return new ColourControl(setting, parent);
    case SettingKind::CHOICE:
        return new ChoiceControl(setting, parent);
    case SettingKind::PARTS:
        return new PartsControl(setting, parent);
    case SettingKind::SCALAR:
        return new ScalarControl(setting, parent);
    case SettingKind::RANGE:
        return new RangeControl(setting, parent);
    case SettingKind::TEXT:
        return new TextControl(setting, parent);
    case SettingKind::NUMBER_FORMAT:
        return new FormatControl(setting, parent);
    case SettingKind::COLOUR_MAP:
        return new MapControl(setting, parent);
    case SettingKind::REFERENCE:
        return new ReferenceControl(setting, parent);
    }
    return nullptr;
}

SettingControl::SettingControl(const Setting& settingToSet, QWidget* controlWidget)
    : QObject(controlWidget), setting(settingToSet), widget(controlWidget)
{
    name(widget, "", setting.label);
    widget->setToolTip(QString::fromStdString(setting.help));
}

QWidget* SettingControl::makeRow(QWidget* parent)
{
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    return row;
}

void SettingControl::name(QWidget* part, const char* suffix, const QString& description) const
{
    part->setObjectName(QString(setting.name) + suffix);
    part->setAccessibleName(description);
}

} // namespace strandview
