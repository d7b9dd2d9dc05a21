// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_COLOURMAPPER_H
#define STRANDVIEW_COLOURMAPPER_H

#include <cstddef>
#include <vector>

#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

class QString;
class QWidget;

/// Maps a scalar between two limits to a colour, along a ramp that is linear between
/// its stops. Colours are red, green and blue in [0, 1].
///
/// A plain value; copies are independent. Nothing is reported or checked: equal limits
/// make minMaxToZeroOne divide by zero, and a ramp of fewer than two stops maps
/// everything to black.
///
/// Any thread may use its own, and several may read one that none changes; getStyleSheet() touches
/// no widget. getRandomColour() has Qt's sequence per thread, updateWidgetColour() belongs to that
/// of the widgets.
class STRANDVIEW_EXPORT ColourMapper
{
public:
    using Colour = algebra3d::Vector3<double>;

    static const double DEFAULT_MIN; ///< 0
    static const double DEFAULT_MAX; ///< 1

    /// Limits DEFAULT_MIN and DEFAULT_MAX, the default ramp.
    ColourMapper();
    /// Limits as by setMapping(a, b), the default ramp.
    ColourMapper(const double& a, const double& b);
    ColourMapper(const double& a, const double& b, std::vector<Colour> colours);

    // Limits

    /// The limits, in either order. The stops keep their places on [0, 1].
    void setMapping(const double& a, const double& b);
    /// The limits, and the values at which the inner stops stand, in ascending order
    /// (unchecked). Surplus values are ignored; stops without a value stay.
    void setMapping(const double& a, const std::vector<double>& values, const double& b);
    double getMin() const;
    double getMax() const;

    /// From [min, max] to [0, 1] and back; neither clamps.
    double minMaxToZeroOne(double value) const;
    double zeroOneToMinMax(double t) const;

    // Ramp

    /// Replaces the ramp by evenly spaced stops of these colours.
    void setColours(std::vector<Colour> newColours);
    double getNumSteps() const;

    /// The colour of a value, clamped to the limits. Not-a-number and plus infinity are
    /// white, and if the limits are equal everything is blue, whatever the ramp. Stops that
    /// are evenly spaced take the same time however many they are, others that of a binary search.
    void getColour(double value, Colour& out) const;

    /// A Qt style sheet that paints the ramp from left to right. It shows at least two
    /// and at most six colours: of a longer ramp the first five and the last, and of a
    /// shorter one nothing, an empty text.
    QString getStyleSheet() const;

    // For host programs

    /// Blue, cyan, green, yellow, red.
    static const std::vector<Colour>& getDefaultColours();
    /// A saturated colour of random hue (from qrand()).
    static Colour getRandomColour();
    /// White or black, whichever is read more easily on the background.
    static Colour getForeground(Colour background);
    /// Paints a widget's text and background; null is ignored.
    static void updateWidgetColour(QWidget* widget, Colour foreground, Colour background,
                                   bool autoFill);

private:
    void findReaches();
    std::size_t findStop(double t) const;

    double min;
    double max;
    double range; // max - min
    std::vector<double> steps;
    std::vector<double> reaches; // the greatest of steps[1] up to each, to search in
    std::vector<Colour> colours;
};

#endif
