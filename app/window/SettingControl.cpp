// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SettingControl.h"

#include <algorithm>
#include <cmath>

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
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
#include "window/colourDialog.h"
#include "window/decimalComma.h"

namespace strandview {

namespace {

using Text = std::optional<std::string>;
using Vector = algebra3d::Vector3<double>;

QString toQt(const Text& text) { return QString::fromStdString(text.value_or("")); }

// A control that is one widget of Qt's.
template <typename Widget>
class OneWidget : public SettingControl
{
protected:
    OneWidget(const Setting& ofWidget, QWidget* parent)
        : SettingControl(ofWidget, new Widget(parent)), part(static_cast<Widget*>(widget))
    {}

    Widget* const part;
};

// Acts when the user has changed the line and leaves it, or presses Enter.
template <typename Deed>
void whenEdited(QLineEdit& line, const Deed& act)
{
    QObject::connect(&line, &QLineEdit::editingFinished, &line, [&line, act] {
        const bool isChanged = line.isModified();
        line.setModified(false);
        if (isChanged)
            act();
    });
}

template <typename Deed>
void whenChosen(QComboBox& list, const Deed& act)
{
    QObject::connect(&list, QOverload<int>::of(&QComboBox::activated), &list, act);
}

void addWords(QComboBox& list, const std::vector<std::string>& words)
{
    for (const std::string& word : words)
        list.addItem(QString::fromStdString(word));
}

// However long what can be chosen is.
void keepNarrow(QComboBox& list)
{
    list.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    list.setMinimumContentsLength(14);
}

// Typed, or chosen among some.
void letType(QComboBox& list)
{
    list.setEditable(true);
    list.setInsertPolicy(QComboBox::NoInsert);
}

// On and off.
class SwitchControl : public OneWidget<QCheckBox>
{
public:
    SwitchControl(const Setting& ofSwitch, QWidget* parent) : OneWidget(ofSwitch, parent)
    {
        connect(part, &QCheckBox::clicked, this,
                [this](bool on) { emit chosen(on ? "on" : "off"); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        part->setChecked(shown == std::optional<std::string>("on"));
    }
};

// A number in a field, and a slider from a least step to 100.
class FieldAndSlider : public SettingControl
{
protected:
    static constexpr int STEPS = 100;

    FieldAndSlider(const Setting& ofNumber, int leastStep, QWidget* parent)
        : SettingControl(ofNumber, makeRow(parent)),
          field(new QLineEdit(widget)),
          slider(new QSlider(Qt::Horizontal, widget))
    {
        name(field, "Field", setting.label);
        name(slider, "Slider", QString(setting.label) + ", slider");
        field->setMaximumWidth(field->fontMetrics().horizontalAdvance("0.00000000"));
        slider->setRange(leastStep, STEPS);
        slider->setMinimumWidth(60);
        widget->layout()->addWidget(field);
        widget->layout()->addWidget(slider);
        widget->setFocusProxy(field);
        acceptDecimalComma(*field);
        whenEdited(*field, [this] { emit chosen(field->text()); });
        connect(slider, &QSlider::valueChanged, this,
                [this](int step) { emit chosen(QString::number(valueOf(step), 'g', 3)); });
    }

    virtual double valueOf(int step) const = 0;
    // Not while its user drags it.
    void setStep(double step)
    {
        const QSignalBlocker quiet(slider);
        if (!slider->isSliderDown())
            slider->setValue(int(std::lround(step)));
    }

    QLineEdit* const field;
    QSlider* const slider;
};

// From a tenth to ten times what the data suggest.
class LengthControl : public FieldAndSlider
{
public:
    LengthControl(const Setting& ofLength, QWidget* parent)
        : FieldAndSlider(ofLength, -STEPS, parent)
    {}
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
        setStep(STEPS * std::log10(*length / middle));
    }

private:
    double valueOf(int step) const override
    {
        return middle * std::pow(10.0, double(step) / STEPS);
    }

    double middle = 0;
};

// From 0 to 1.
class ShareControl : public FieldAndSlider
{
public:
    ShareControl(const Setting& ofShare, QWidget* parent) : FieldAndSlider(ofShare, 0, parent) {}
    void show(const Text& /*asked*/, const Text& shown) override
    {
        if (!field->isModified())
            field->setText(toQt(shown));
        setStep(STEPS * parseNumber<double>(shown.value_or("")).value_or(0));
    }

private:
    double valueOf(int step) const override { return double(step) / STEPS; }
};

class CountControl : public OneWidget<QSpinBox>
{
public:
    CountControl(const Setting& ofCount, QWidget* parent)
        : OneWidget(ofCount, parent), line(part->findChild<QLineEdit*>())
    {
        part->setRange(setting.least, setting.most);
        part->setKeyboardTracking(false);
        connect(part, QOverload<int>::of(&QSpinBox::valueChanged), this, [this](int count) {
            line->setModified(false);
            emit chosen(QString::number(count));
        });
        connect(part, &QSpinBox::editingFinished, this, [this] { line->setModified(false); });
    }
    // What is asked for, from which the next step goes on before it is shown.
    void show(const Text& asked, const Text& shown) override
    {
        if (line->isModified())
            return;
        const QSignalBlocker quiet(part);
        const Text& text = asked ? asked : shown;
        part->setValue(parseNumber<int>(text.value_or("")).value_or(setting.least));
    }

private:
    QLineEdit* const line; // which is typed into
};

QIcon swatch(const QColor& colour)
{
    QPixmap picture(32, 16);
    picture.fill(colour);
    return {picture};
}

class ColourControl : public OneWidget<QPushButton>
{
public:
    ColourControl(const Setting& ofColour, QWidget* parent) : OneWidget(ofColour, parent)
    {
        part->setAutoDefault(false);
        connect(part, &QPushButton::clicked, this, [this] { choose(); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        colour = shown ? QColor(toQt(shown)) : QColor();
        part->setIcon(colour.isValid() ? swatch(colour) : QIcon());
        part->setText(colour.isValid() ? colour.name() : QString::fromStdString(setting.leftOpen));
    }

private:
    // Each colour of the dialog is shown as it is looked at.
    void choose()
    {
        QColorDialog dialog(colour.isValid() ? colour : QColor(Qt::gray), part);
        dialog.setWindowTitle(setting.label);
        letTypeColour(dialog);
        connect(&dialog, &QColorDialog::currentColorChanged, this,
                [this](const QColor& next) { emit chosen(next.name()); });
        emit trialBegun();
        const bool isTaken = dialog.exec() == QDialog::Accepted;
        emit trialEnded();
        if (isTaken)
            emit chosen(dialog.selectedColor().name());
    }

    QColor colour;
};

class ChoiceControl : public OneWidget<QComboBox>
{
public:
    ChoiceControl(const Setting& ofChoice, QWidget* parent) : OneWidget(ofChoice, parent)
    {
        addWords(*part, setting.words);
        whenChosen(*part, [this] { emit chosen(part->currentText()); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        part->setCurrentIndex(std::max(0, part->findText(toQt(shown))));
    }
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

class ScalarControl : public OneWidget<QComboBox>
{
public:
    ScalarControl(const Setting& ofScalar, QWidget* parent) : OneWidget(ofScalar, parent)
    {
        keepNarrow(*part);
        offer({});
        whenChosen(*part, [this](int index) {
            if (index == 0)
                emit cleared();
            else
                emit chosen(part->itemText(index));
        });
    }
    void offer(const std::vector<std::string>& words) override
    {
        const QString now = part->currentText();
        part->clear();
        part->addItem(NO_SCALAR);
        addWords(*part, words);
        part->setCurrentIndex(std::max(0, part->findText(now)));
    }
    // Also a name that these data do not have.
    void show(const Text& asked, const Text& /*shown*/) override
    {
        if (asked && part->findText(toQt(asked)) < 0)
            part->addItem(toQt(asked));
        part->setCurrentIndex(asked ? part->findText(toQt(asked)) : 0);
    }
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
            connect(end, &QLineEdit::editingFinished, this, [this, end] { tellEdited(*end); });
        }
        whenChosen(*list, [this] {
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

    // One end beyond the other stays until that has been typed, too, or both have been left.
    void tellEdited(const QLineEdit& end)
    {
        if (!min->isModified() && !max->isModified())
            return;
        const auto least = parseNumber<double>(min->text().toStdString());
        const auto most = parseNumber<double>(max->text().toStdString());
        const bool isOneBeyond =
            least && most && *least >= *most && !(min->isModified() && max->isModified());
        const bool isLeft = !min->hasFocus() && !max->hasFocus();
        if (isOneBeyond && !isLeft && !end.hasFocus())
            return;
        if (!isOneBeyond || isLeft) {
            min->setModified(false);
            max->setModified(false);
        }
        emit chosen(min->text() + ":" + max->text());
    }

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
        letType(*list);
        list->setIconSize({64, 14});
        list->setMinimumContentsLength(10);
        list->setToolTip("A name, or two colours or more with commas: navy,white,darkred");
        for (const std::string& word : setting.words)
            list->addItem(pictureOf(*findColourMap(word)), QString::fromStdString(word));
        widget->setFocusProxy(list);
        whenChosen(*list, [this] { choose(); });
        whenEdited(*list->lineEdit(), [this] { choose(); });
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
        if (list->lineEdit()->isModified())
            return;
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
class TextControl : public OneWidget<QLineEdit>
{
public:
    TextControl(const Setting& ofText, QWidget* parent) : OneWidget(ofText, parent)
    {
        whenEdited(*part, [this] { emit chosen(part->text()); });
    }
    void show(const Text& asked, const Text& shown) override
    {
        if (!part->isModified())
            part->setText(toQt(asked ? asked : shown));
    }
};

// A direction to type, and a slider for the intensity.
class LightControl : public SettingControl
{
public:
    LightControl(const Setting& ofLight, QWidget* parent)
        : SettingControl(ofLight, makeRow(parent)),
          field(new QLineEdit(widget)),
          slider(new QSlider(Qt::Horizontal, widget))
    {
        name(field, "Field", QString(setting.label) + ", direction");
        name(slider, "Slider", QString(setting.label) + ", intensity");
        field->setMinimumWidth(field->fontMetrics().horizontalAdvance("-0.2,-0.2,-1 "));
        slider->setRange(0, STEPS);
        slider->setMinimumWidth(60);
        widget->layout()->addWidget(field);
        widget->layout()->addWidget(slider);
        widget->setFocusProxy(field);
        whenEdited(*field, [this] { tell(field->text(), light.intensity); });
        connect(slider, &QSlider::valueChanged, this,
                [this](int step) { tell(toQt(directionOf(light)), double(step) / STEPS); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        light = parseLight(shown.value_or("off")).value_or(Light());
        if (!field->isModified())
            field->setText(toQt(directionOf(light)));
        const QSignalBlocker quiet(slider);
        if (!slider->isSliderDown())
            slider->setValue(int(std::lround(STEPS * light.intensity)));
    }

private:
    static constexpr int STEPS = 100;

    static Text directionOf(Light light)
    {
        light.intensity = 1;
        return light.direction ? formatLight(light) : Text();
    }
    void tell(const QString& direction, double intensity)
    {
        const QString text = toQt(formatted(intensity));
        emit chosen(direction.isEmpty() ? text : direction + ":" + text);
    }

    QLineEdit* const field;
    QSlider* const slider;
    Light light;
};

// Some formats to choose from, or one that is typed.
class FormatControl : public OneWidget<QComboBox>
{
public:
    FormatControl(const Setting& ofFormat, QWidget* parent) : OneWidget(ofFormat, parent)
    {
        letType(*part);
        addWords(*part, setting.words);
        whenChosen(*part, [this] { emit chosen(part->currentText()); });
        whenEdited(*part->lineEdit(), [this] { emit chosen(part->currentText()); });
    }
    void show(const Text& /*asked*/, const Text& shown) override
    {
        if (!part->lineEdit()->isModified())
            part->setCurrentText(toQt(shown));
    }
};

// On and off, the way that the plane looks, and where it is: as a number, or between the ends of
// the data.
class ClipControl : public SettingControl
{
public:
    ClipControl(const Setting& ofPlane, QWidget* parent)
        : SettingControl(ofPlane, new QWidget(parent)),
          on(new QCheckBox("cut", widget)),
          list(new QComboBox(widget)),
          flip(new QPushButton("Flip", widget)),
          field(new QLineEdit(widget)),
          slider(new QSlider(Qt::Horizontal, widget))
    {
        auto* column = new QVBoxLayout(widget);
        column->setContentsMargins(0, 0, 0, 0);
        QWidget *const way = makeRow(widget), *const place = makeRow(widget);
        column->addWidget(way);
        column->addWidget(place);
        for (QWidget* part : std::initializer_list<QWidget*>{on, list, flip})
            way->layout()->addWidget(part);
        for (QWidget* part : std::initializer_list<QWidget*>{field, slider})
            place->layout()->addWidget(part);
        const QString label = setting.label;
        name(on, "Switch", label);
        name(list, "List", label + ", which way");
        name(flip, "Flip", label + ", the other side");
        name(field, "Field", label + ", distance");
        name(slider, "Slider", label + ", slider");
        list->addItems({"x", "y", "z", "as seen", "slanted"});
        list->setToolTip("What is on that side of the plane is cut away");
        flip->setToolTip("Cuts away the other side");
        flip->setAutoDefault(false);
        field->setMaximumWidth(field->fontMetrics().horizontalAdvance("0.00000000"));
        field->setToolTip("From the origin to the plane, in the data's unit");
        slider->setRange(-STEPS, STEPS);
        slider->setMinimumWidth(60);
        widget->setFocusProxy(on);
        acceptDecimalComma(*field);
        connectParts();
    }
    void setSurroundings(const Surroundings& ofThese) override { surroundings = ofThese; }
    void show(const Text& asked, const Text& shown) override
    {
        const bool isOn = asked.has_value();
        on->setChecked(isOn);
        if (!isOn)
            forgetTyping(); // of a field that loses the keyboard now
        for (QWidget* part : std::initializer_list<QWidget*>{list, flip, field, slider})
            part->setEnabled(isOn);
        if (!isOn)
            return;
        plane = *parseClipPlane(*asked);
        const auto settled = parseClipPlane(shown.value_or(*asked));
        list->setCurrentIndex(indexOf(plane->normal));
        const std::optional<double> distance = settled ? settled->distance : plane->distance;
        if (!field->isModified())
            field->setText(plane->distance ? toQt(formatted(*plane->distance))
                           : distance      ? shortened(*distance, reachOfData().second)
                                           : QString());
        if (!distance || slider->isSliderDown())
            return;
        const auto [middle, reach] = reachOfData();
        const QSignalBlocker quiet(slider);
        slider->setValue(
            int(std::lround(STEPS * std::clamp((*distance - middle) / reach, -1., 1.))));
    }

private:
    enum { X, Y, Z, AS_SEEN, SLANTED };
    static constexpr int STEPS = 200; // from the middle of the data to an end

    void connectParts()
    {
        connect(on, &QCheckBox::clicked, this, [this](bool isOn) {
            if (isOn)
                tell(plane.value_or(planeFacing(towardsViewer())));
            else
                emit cleared();
        });
        whenChosen(*list, [this](int index) {
            if (index != SLANTED)
                tell({index == AS_SEEN ? roundedView() : normalOf(index), {}});
            else if (plane)
                list->setCurrentIndex(indexOf(plane->normal)); // there is nothing to choose
        });
        connect(flip, &QPushButton::clicked, this, [this] {
            ClipPlane other = *plane;
            other.normal = other.normal * -1;
            if (other.distance)
                other.distance = 0 - *other.distance; // no -0
            tell(other);
        });
        whenEdited(*field, [this] {
            emit chosen(toQt(formatClipPlane({plane->normal, {}})) + ":" + field->text());
        });
        connect(slider, &QSlider::valueChanged, this, [this](int position) {
            const auto [middle, reach] = reachOfData();
            tell({plane->normal, shortened(middle + reach * position / STEPS, reach).toDouble()});
        });
    }
    void tell(const ClipPlane& next) { emit chosen(toQt(formatClipPlane(next))); }

    Vector towardsViewer() const
    {
        return surroundings.towardsViewer ? surroundings.towardsViewer() : Vector(0, 0, 1);
    }
    // With as many decimals as tell two positions of the slider apart.
    static QString shortened(double distance, double reach)
    {
        const int power = int(std::floor(std::log10(reach / STEPS)));
        const double unit = std::pow(10.0, power);
        const double rounded = power < 0 ? QString::number(distance, 'f', -power).toDouble()
                                         : std::round(distance / unit) * unit;
        return toQt(formatted(rounded + 0.0)); // no -0
    }
    // In digits that a user would type.
    Vector roundedView() const
    {
        const Vector exact = towardsViewer();
        const auto rounded = [](double part) { return std::round(1000 * part) / 1000 + 0.0; };
        return {rounded(exact.x), rounded(exact.y), rounded(exact.z)};
    }
    static Vector normalOf(int axis)
    {
        return {axis == X ? 1. : 0., axis == Y ? 1. : 0., axis == Z ? 1. : 0.};
    }
    static int indexOf(const Vector& normal)
    {
        for (const int axis : {X, Y, Z}) {
            if (std::abs(normal.dot(normalOf(axis))) == normal.getNorm())
                return axis;
        }
        return SLANTED;
    }
    // Along the normal: where the middle of the data is, and how far it is from there to an end.
    std::pair<double, double> reachOfData() const
    {
        const auto box = surroundings.box ? surroundings.box() : std::nullopt;
        if (!box || !plane)
            return {0, 1};
        const Vector normal = plane->unitNormal(), half = (box->second - box->first) * 0.5;
        double reach = 0;
        for (int axis = 0; axis < 3; ++axis)
            reach += std::abs(normal[axis]) * half[axis];
        return {normal.dot(box->first + half), reach > 0 ? reach : 1};
    }

    QCheckBox* const on;
    QComboBox* const list;
    QPushButton* const flip;
    QLineEdit* const field;
    QSlider* const slider;
    Surroundings surroundings;
    std::optional<ClipPlane> plane; ///< that was asked for last
};

// Each choice lets files be read, or asks for one: so it is made in the open list alone.
class ReferenceControl : public OneWidget<QComboBox>
{
public:
    ReferenceControl(const Setting& ofReference, QWidget* parent) : OneWidget(ofReference, parent)
    {
        part->addItems({"nothing", "the first frame", "a file..."});
        keepNarrow(*part);
        whenChosen(*part, [this](int index) { choose(index); });
        part->installEventFilter(this);
    }
    void setSurroundings(const Surroundings& ofThese) override { surroundings = ofThese; }
    void show(const Text& asked, const Text& /*shown*/) override
    {
        now = asked;
        while (part->count() > FILE_NAME)
            part->removeItem(FILE_NAME);
        if (asked && *asked != "first")
            part->addItem(toQt(asked));
        part->setCurrentIndex(!asked ? NOTHING : *asked == "first" ? FIRST : FILE_NAME);
    }

private:
    enum { NOTHING, FIRST, CHOOSE, FILE_NAME };

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Wheel) {
            event->ignore();
            return true;
        }
        if (event->type() != QEvent::KeyPress || !choosesAnother(*static_cast<QKeyEvent*>(event)))
            return SettingControl::eventFilter(watched, event);
        part->showPopup();
        return true;
    }
    static bool choosesAnother(const QKeyEvent& key)
    {
        const auto moves = {Qt::Key_Up,       Qt::Key_Down, Qt::Key_PageUp,
                            Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
        const QString text = key.text();
        return std::find(moves.begin(), moves.end(), key.key()) != moves.end() ||
               (!text.isEmpty() && text[0].isPrint());
    }
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
        const QString folder = surroundings.folder ? surroundings.folder() : QString();
        const QString file = QFileDialog::getOpenFileName(part, "Compare with", folder);
        if (file.isEmpty())
            show(now, {});
        else
            emit chosen(file);
    }

    Text now;
    Surroundings surroundings;
};

} // namespace

SettingControl* SettingControl::make(const Setting& setting, QWidget* parent)
{
    switch (setting.kind) {
    case SettingKind::SWITCH:
        return new SwitchControl(setting, parent);
    case SettingKind::LENGTH:
    case SettingKind::LINE_WIDTH:
        return new LengthControl(setting, parent);
    case SettingKind::SHARE:
        return new ShareControl(setting, parent);
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
    case SettingKind::LIGHT:
        return new LightControl(setting, parent);
    case SettingKind::SHININESS:
    case SettingKind::TEXT:
        return new TextControl(setting, parent);
    case SettingKind::NUMBER_FORMAT:
        return new FormatControl(setting, parent);
    case SettingKind::CLIP:
        return new ClipControl(setting, parent);
    case SettingKind::COLOUR_MAP:
        return new MapControl(setting, parent);
    case SettingKind::REFERENCE:
        return new ReferenceControl(setting, parent);
    case SettingKind::THINGS: // the panel of things sets them
        break;
    }
    return nullptr;
}

SettingControl::SettingControl(const Setting& settingToSet, QWidget* controlWidget)
    : QObject(controlWidget), setting(settingToSet), widget(controlWidget)
{
    name(widget, "", setting.label);
    widget->setToolTip(QString::fromStdString(setting.help));
}

void SettingControl::forgetTyping()
{
    QList<QLineEdit*> lines = widget->findChildren<QLineEdit*>();
    if (auto* const line = qobject_cast<QLineEdit*>(widget))
        lines.append(line);
    for (QLineEdit* line : lines)
        line->setModified(false);
    if (auto* const box = qobject_cast<QSpinBox*>(widget)) {
        const QSignalBlocker quiet(box);
        box->setValue(box->value()); // which it would read of its line
    }
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
