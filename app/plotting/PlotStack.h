// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PLOTTING_PLOTSTACK_H
#define STRANDVIEW_APP_PLOTTING_PLOTSTACK_H

#include <cstddef>
#include <optional>
#include <vector>

#include <QRectF>
#include <QWidget>

#include "plotting/Plot.h"

class QPainter;
class QwtPlot;

namespace strandview {

/// One place of a curve of a plot.
struct PlotPlace
{
    std::size_t line;  ///< of Plot::lines
    std::size_t place; ///< of its x

    bool operator==(const PlotPlace& other) const
    {
        return line == other.line && place == other.place;
    }
};

/// Shows a Plot: its panels below each other, as wide as each other, with one x axis below the last
/// of them and, for several lines, a legend above the first. Of the window's thread.
class PlotStack : public QWidget
{
    Q_OBJECT

public:
    /// More lines than these have no legend.
    static constexpr std::size_t LARGEST_LEGEND = 16;

    /// Where each panel has its title: turned beside its axis, or above it, where even a panel that
    /// is lower than its title is long has all of it.
    enum Titles { BESIDE, ABOVE };
    explicit PlotStack(Titles placesOfTitles = BESIDE, QWidget* parent = nullptr);

    /// Instead of the one before. Where that had the same panels, and their ranges are kept, axes
    /// only grow, so that they stand still while frames are played. A place of a line stays marked
    /// where the line still has it, over the same axis.
    enum Ranges { NEW_RANGES, KEEP_RANGES };
    void show(const Plot& newPlot, Ranges ranges = NEW_RANGES);
    const Plot& getPlot() const { return plot; }

    /// Marks a place in all panels, or none.
    void mark(const std::optional<PlotPlace>& place);
    const std::optional<PlotPlace>& getMark() const { return marked; }

    /// Draws all panels into a rectangle of pixels of this widget; the device's own may be smaller,
    /// by its resolution. Without the mark.
    void draw(QPainter& painter, const QSizeF& size);

    /// Where a place is on the screen, in a panel, for whoever drives the mouse.
    QPoint positionOf(std::size_t panel, const PlotPlace& place) const;

signals:
    /// The mouse is nearest to this place of a curve.
    void hovered(const strandview::PlotPlace& place);
    /// The left button was pressed there.
    void clicked(const strandview::PlotPlace& place);
    /// It is over no curve any more.
    void left();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Panel;

    void makePanels();
    std::optional<PlotPlace> markIn(const Plot& next) const;
    void align();
    std::vector<QRectF> arrange(const QSizeF& size) const;
    void placePanels();
    std::optional<PlotPlace> placeAt(std::size_t index, const QPoint& pixel) const;

    const Titles titles;
    Plot plot;
    std::vector<Panel*> panels; ///< children
    std::vector<Span> spans;    ///< of their values, before they end at ticks
    std::optional<PlotPlace> marked;
};

} // namespace strandview

#endif
