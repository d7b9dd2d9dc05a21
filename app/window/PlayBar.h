// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLAYBAR_H
#define STRANDVIEW_APP_WINDOW_PLAYBAR_H

#include <cstddef>
#include <optional>
#include <vector>

#include <QWidget>

#include "playing/PlayOrder.h"

class QAction;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QSlider;
class QSpinBox;

namespace strandview {

/// The bar below the view: which frame of a series is shown, and how the frames are played. Hidden
/// at first.
class PlayBar : public QWidget
{
    Q_OBJECT

public:
    /// The buttons do what the actions do, in their order.
    PlayBar(const std::vector<QAction*>& buttons, double framesPerSecond, QWidget* parent);

    /// Which frames are played.
    struct Range
    {
        std::size_t first = 0;
        std::optional<std::size_t> last = {}; ///< nothing: to the last frame that there is
    };

    /// The number of frames that are known, one at least, and whether there may be more. A range
    /// that ended with the last frame grows with them.
    void setCount(std::size_t frames, bool mayGrow);
    /// Of another series, whose range is all of it, or that of one that was there: as far as it has
    /// such frames, and all of it if it has none of them.
    void reset(const Range& asked = {0, {}});
    /// Tells which frame is shown.
    void showFrame(std::size_t frame, const std::optional<double>& time);
    /// Puts slider and field on the frame that is asked for, unless the user holds them.
    void setFrame(std::size_t frame);
    /// Both ends are frames that there are, the first not behind the last.
    void setRange(std::size_t first, std::size_t last);

    std::size_t getCount() const { return count; }
    bool mayGrow() const { return isGrowing; }
    PlayOrder getOrder() const;
    /// As the user gave it, be there such frames or not.
    const Range& getRange() const { return range; }
    double getFramesPerSecond() const;
    /// Whether frames are rather played late than left out.
    bool isEveryFrameShown() const;

signals:
    /// The user wants to see a frame.
    void frameChosen(int frame);
    /// The user changed how the frames are played.
    void orderChanged();
    /// The user has given a number, and the keyboard may go back to the view.
    void edited();

private:
    QWidget* makeFrameRow(const std::vector<QAction*>& buttons);
    QWidget* makeOrderRow(double framesPerSecond);
    QSpinBox* makeField(const QString& name, const QString& help);
    void setLimits();
    void showRange();
    void keepRangeInOrder(const QSpinBox* changed);
    void showText();

    QSlider* slider = nullptr;
    QSpinBox* field = nullptr;
    QLabel* label = nullptr;
    QComboBox* repeat = nullptr;
    QDoubleSpinBox* rate = nullptr;
    QSpinBox* every = nullptr;
    QSpinBox *from = nullptr, *to = nullptr;
    QCheckBox* everyFrame = nullptr;

    Range range;
    std::size_t count = 1;
    bool isGrowing = false;
    std::size_t shown = 0;
    std::optional<double> shownTime;
};

} // namespace strandview

#endif
