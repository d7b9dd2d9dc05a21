// SPDX-License-Identifier: GPL-3.0-or-later
#include <ColourMapper.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <Inventor/SbColor.h>
#include <QBrush>
#include <QColor>
#include <QPalette>
#include <QString>
#include <QWidget>
#include <QtGlobal>

const double ColourMapper::DEFAULT_MIN = 0.0;
const double ColourMapper::DEFAULT_MAX = 1.0;

namespace {

using Colour = ColourMapper::Colour;

// A style sheet shows at most this many colours.
const std::size_t STYLE_SHEET_COLOURS = 6;

QColor toQColor(const Colour& colour)
{
    return QColor(int(colour.x * 255), int(colour.y * 255), int(colour.z * 255), 255);
}

} // namespace

ColourMapper::ColourMapper() : ColourMapper(DEFAULT_MIN, DEFAULT_MAX) {}

ColourMapper::ColourMapper(const double& a, const double& b)
    : ColourMapper(a, b, getDefaultColours())
{}

ColourMapper::ColourMapper(const double& a, const double& b, std::vector<Colour> ramp)
{
    setMapping(a, b);
    setColours(std::move(ramp));
}

void ColourMapper::setMapping(const double& a, const double& b)
{
    min = b > a ? a : b;
    max = b > a ? b : a;
    range = max - min;
}

void ColourMapper::setMapping(const double& a, const std::vector<double>& values, const double& b)
{
    setMapping(a, b);
    for (std::size_t i = 1; i < values.size() + 1 && i + 1 < steps.size(); ++i)
        steps[i] = minMaxToZeroOne(values[i - 1]);
    findReaches();
}

double ColourMapper::getMin() const { return min; }

double ColourMapper::getMax() const { return max; }

double ColourMapper::minMaxToZeroOne(double value) const { return (value - min) / range; }

double ColourMapper::zeroOneToMinMax(double t) const { return t * range + min; }

void ColourMapper::setColours(std::vector<Colour> newColours)
{
    colours = std::move(newColours);
    const std::size_t n = colours.size();
    steps.resize(n);
    for (std::size_t k = 0; k < n; ++k)
        steps[k] = double(k) / (double(n) - 1);
    findReaches();
}

void ColourMapper::findReaches()
{
    reaches.resize(steps.size());
    double reach = -std::numeric_limits<double>::infinity();
    for (std::size_t k = 1; k < steps.size(); ++k) {
        reach = std::max(reach, steps[k]);
        reaches[k] = reach;
    }
}

double ColourMapper::getNumSteps() const { return double(steps.size()); }

void ColourMapper::getColour(double value, Colour& out) const
{
    if (min == max) {
        out = Colour(0, 0, 1);
        return;
    }
    if (std::isnan(value) || value == std::numeric_limits<double>::infinity()) {
        out = Colour(1, 1, 1);
        return;
    }
    out = Colour();
    const double t = (std::clamp(value, min, max) - min) / (max - min);
    if (steps.size() < 2 || !(t <= reaches.back())) // t may be not-a-number
        return;
    const std::size_t i = findStop(t);
    const double u = (t - steps[i - 1]) / (steps[i] - steps[i - 1]);
    out = (1 - u) * colours[i - 1] + u * colours[i];
}

// The first one at or beyond t, which is the first up to which one is.
std::size_t ColourMapper::findStop(double t) const
{
    const std::size_t last = steps.size() - 1;
    const std::size_t ofEvenSteps = std::min(std::size_t(t * double(last)), last - 1) + 1;
    if (reaches[ofEvenSteps] >= t && (ofEvenSteps == 1 || reaches[ofEvenSteps - 1] < t))
        return ofEvenSteps;
    return std::size_t(std::lower_bound(reaches.begin() + 1, reaches.end(), t) - reaches.begin());
}

QString ColourMapper::getStyleSheet() const
{
    const std::size_t n = std::min(colours.size(), STYLE_SHEET_COLOURS);
    if (n < 2)
        return QString();
    QString sheet = "background-color: qlineargradient(x1:0, y1:0, x2:1, y2:0,stop:0 ";
    sheet += toQColor(colours.front()).name() + ", ";
    for (std::size_t k = 1; k + 1 < n; ++k) {
        sheet +=
            "stop:" + QString::number(steps[k], 'g', 6) + " " + toQColor(colours[k]).name() + ", ";
    }
    sheet += "stop:1 " + toQColor(colours.back()).name() + ");";
    return sheet;
}

const std::vector<Colour>& ColourMapper::getDefaultColours()
{
    static const std::vector<Colour> colours = {Colour(0, 0, 1), Colour(0, 1, 1), Colour(0, 1, 0),
                                                Colour(1, 1, 0), Colour(1, 0, 0)};
    return colours;
}

Colour ColourMapper::getRandomColour()
{
    const double goldenRatio = 0.6180339887498948;
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED // hosts seed qrand() with qsrand()
        const int random = qrand() % 2147483647;
    QT_WARNING_POP
    double hue = random / 2147483647.0 + goldenRatio;
    if (hue > 1)
        hue -= 1;
    SbColor colour;
    colour.setHSVValue(float(hue), 0.9f, 0.9f);
    return Colour(double(colour[0]), double(colour[1]), double(colour[2]));
}

Colour ColourMapper::getForeground(Colour background)
{
    // The luma of the ITU-R BT.601 primaries.
    const double luma = 0.299 * background.x + 0.587 * background.y + 0.114 * background.z;
    return luma < 0.55 ? Colour(1, 1, 1) : Colour();
}

void ColourMapper::updateWidgetColour(QWidget* widget, Colour foreground, Colour background,
                                      bool autoFill)
{
    if (!widget)
        return;
    QPalette palette(widget->palette());
    palette.setBrush(QPalette::All, widget->foregroundRole(), QBrush(toQColor(foreground)));
    palette.setBrush(QPalette::All, widget->backgroundRole(), QBrush(toQColor(background)));
    widget->setPalette(palette);
    widget->setAutoFillBackground(autoFill);
}
