// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PlayBar.h"

#include <algorithm>
#include <limits>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProxyStyle>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include "scene/Ticks.h"
#include "window/decimalComma.h"

namespace strandview {

namespace {

// A click beside the handle brings it there.
class JumpStyle : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        return hint == SH_Slider_AbsoluteSetButtons
                   ? int(Qt::LeftButton)
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

// Qt counts in int.
int asInt(std::size_t frame)
{
    return int(std::min<std::size_t>(frame, std::numeric_limits<int>::max()));
}

QHBoxLayout* makeRow(QWidget* row)
{
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(4, 1, 4, 1);
    layout->setSpacing(4);
    return layout;
}

} // namespace

PlayBar::PlayBar(const std::vector<QAction*>& buttons, double framesPerSecond, QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (QWidget* row : {makeFrameRow(buttons), makeOrderRow(framesPerSecond)}) {
        row->setMinimumWidth(1); // what a narrow window has no room for is cut off
        layout->addWidget(row);
    }
    reset();
    hide();
}

QWidget* PlayBar::makeFrameRow(const std::vector<QAction*>& buttons)
{
    auto* row = new QWidget(this);
    QHBoxLayout* layout = makeRow(row);
    for (QAction* action : buttons) {
        auto* button = new QToolButton(row);
        button->setDefaultAction(action);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus); // the keyboard stays with the view
        layout->addWidget(button);
    }
    slider = new QSlider(Qt::Horizontal, row);
    slider->setObjectName("frameSlider");
    slider->setAccessibleName("Frame, slider");
    auto* style = new JumpStyle;
    style->setParent(slider);
    slider->setStyle(style);
    slider->setFocusPolicy(Qt::NoFocus);
    connect(slider, &QSlider::valueChanged, this, &PlayBar::frameChosen);
    layout->addWidget(slider, 1);
    field = makeField("frameField", "The frame, counted from 0");
    field->setAccessibleName("Frame");
    connect(field, QOverload<int>::of(&QSpinBox::valueChanged), this, &PlayBar::frameChosen);
    layout->addWidget(field);
    label = new QLabel(row);
    label->setObjectName("frameLabel");
    label->setTextFormat(Qt::PlainText);
    layout->addWidget(label);
    return row;
}

QWidget* PlayBar::makeOrderRow(double framesPerSecond)
{
    auto* row = new QWidget(this);
    QHBoxLayout* layout = makeRow(row);
    const auto add = [&](const QString& name, QWidget* widget) {
        if (!name.isEmpty()) {
            auto* beside = new QLabel(name, row);
            beside->setBuddy(widget);
            layout->addWidget(beside);
        }
        layout->addWidget(widget);
    };
    repeat = new QComboBox(row);
    repeat->setObjectName("repeatBox");
    repeat->setAccessibleName("How often it is played");
    repeat->addItems({"Once", "Loop", "To and fro"}); // as PlayOrder::Repeat
    repeat->setFocusPolicy(Qt::NoFocus);
    connect(repeat, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &PlayBar::orderChanged);
    add("", repeat);
    rate = new QDoubleSpinBox(row);
    rate->setObjectName("rateField");
    rate->setRange(0.01, 1000);
    rate->setDecimals(2);
    rate->setValue(framesPerSecond);
    rate->setKeyboardTracking(false);
    rate->setFocusPolicy(Qt::ClickFocus);
    acceptDecimalComma(*rate);
    connect(rate, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &PlayBar::orderChanged);
    connect(rate, &QDoubleSpinBox::editingFinished, this, &PlayBar::edited);
    add("Frames per second", rate);
    every = makeField("everyField", "1: every frame; 10: every tenth");
    every->setRange(1, 9999);
    connect(every, QOverload<int>::of(&QSpinBox::valueChanged), this, &PlayBar::orderChanged);
    add("Step", every);
    from = makeField("fromField", "The first frame that is played");
    to = makeField("toField", "The last frame that is played");
    for (QSpinBox* end : {from, to})
        connect(end, QOverload<int>::of(&QSpinBox::valueChanged), this,
                [this, end] { keepRangeInOrder(end); });
    add("From", from);
    add("to", to);
    everyFrame = new QCheckBox("Every frame", row);
    everyFrame->setObjectName("everyFrameBox");
    everyFrame->setToolTip("Leave no frame out: what comes late is played late");
    everyFrame->setFocusPolicy(Qt::NoFocus);
    connect(everyFrame, &QCheckBox::toggled, this, &PlayBar::orderChanged);
    add("", everyFrame);
    layout->addStretch(1);
    return row;
}

QSpinBox* PlayBar::makeField(const QString& name, const QString& help)
{
    auto* made = new QSpinBox(this);
    made->setObjectName(name);
    made->setToolTip(help);
    made->setKeyboardTracking(false);
    made->setFocusPolicy(Qt::ClickFocus);
    connect(made, &QSpinBox::editingFinished, this, &PlayBar::edited);
    return made;
}

void PlayBar::reset(const Range& asked)
{
    range = asked;
    count = 1;
    isGrowing = true;
    shown = 0;
    shownTime.reset();
    label->setMinimumWidth(1);
    setLimits();
    showRange();
}

void PlayBar::setCount(std::size_t frames, bool mayGrow)
{
    if (frames == count && mayGrow == isGrowing) // nor is anything typed into a field lost
        return;
    count = std::max<std::size_t>(frames, 1);
    isGrowing = mayGrow;
    if (!isGrowing && range.first >= count)
        range = {0, {}};
    setLimits();
    showRange();
    showText();
}

void PlayBar::setLimits()
{
    const int last = asInt(count - 1);
    const QSignalBlocker noFrame(slider), noField(field), noFrom(from), noTo(to);
    slider->setRange(0, last);
    slider->setPageStep(std::max(1, last / 10));
    for (QSpinBox* numbers : {field, from, to})
        numbers->setRange(0, last);
}

// What of it is there.
void PlayBar::showRange()
{
    const QSignalBlocker noFrom(from), noTo(to);
    from->setValue(asInt(std::min(range.first, count - 1)));
    to->setValue(asInt(std::min(range.last.value_or(count - 1), count - 1)));
}

void PlayBar::setRange(std::size_t first, std::size_t last)
{
    range = {first, last};
    if (asInt(last) == asInt(count - 1))
        range.last.reset();
    showRange();
    emit orderChanged();
}

// What is given last holds.
void PlayBar::keepRangeInOrder(const QSpinBox* changed)
{
    setRange(std::size_t(changed == to ? std::min(from->value(), to->value()) : from->value()),
             std::size_t(changed == from ? std::max(from->value(), to->value()) : to->value()));
}

void PlayBar::showFrame(std::size_t frame, const std::optional<double>& time)
{
    shown = frame;
    shownTime = time;
    showText();
}

void PlayBar::setFrame(std::size_t frame)
{
    const QSignalBlocker noFrame(slider), noField(field);
    if (!slider->isSliderDown())
        slider->setValue(asInt(frame));
    if (!field->hasFocus())
        field->setValue(asInt(frame));
}

void PlayBar::showText()
{
    const QString number = QString::number(shown), all = QString::number(count);
    QString text = "frame " + number + " of " + all + (isGrowing ? " so far" : "");
    if (shownTime)
        text += ", t = " + QString::fromStdString(numberText(*shownTime, 6));
    label->setText(text);
    label->setToolTip("Frames are counted from 0");
    // So that the slider does not move under the hand as numbers grow.
    label->setMinimumWidth(std::max(label->minimumWidth(), label->sizeHint().width()));
}

PlayOrder PlayBar::getOrder() const
{
    return {std::size_t(from->value()), std::size_t(to->value()), std::size_t(every->value()),
            PlayOrder::Repeat(repeat->currentIndex())};
}

double PlayBar::getFramesPerSecond() const { return rate->value(); }

bool PlayBar::isEveryFrameShown() const { return everyFrame->isChecked(); }

} // namespace strandview
