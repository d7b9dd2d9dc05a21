// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotting/PlotStack.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

#include <QEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_marker.h>
#include <qwt_plot_renderer.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_engine.h>
#include <qwt_scale_widget.h>
#include <qwt_symbol.h>
#include <qwt_text.h>
#include <qwt_text_label.h>

namespace strandview {

namespace {

// More cannot be told apart in a panel some hundred pixels wide.
const std::size_t MOST_PLACES = 2000;

const double CURVE_WIDTH = 1.5;    // pixels
const int MARGIN = 5, SPACING = 8; // pixels, around all and between panels
const int RIGHT_MARGIN = 8;        // pixels, beside half of the x axis's last number
const int MAJOR_TICKS = 5, MINOR_TICKS = 4;
const QColor GRID_COLOUR(225, 225, 225);
const QColor MARK_COLOUR(60, 60, 60);
const char* const FAMILY = "sans-serif"; // also in files that others show

// As bright as a curve may be on white.
const double BRIGHTEST = 0.72;

QColor onWhite(const Colour& colour)
{
    const double brightness = 0.2126 * colour.red + 0.7152 * colour.green + 0.0722 * colour.blue;
    const double darker = brightness > BRIGHTEST ? BRIGHTEST / brightness : 1;
    const auto channel = [darker](float value) {
        return std::clamp(double(value) * darker, 0.0, 1.0);
    };
    return QColor::fromRgbF(channel(colour.red), channel(colour.green), channel(colour.blue));
}

QwtText plainText(const std::string& text, int points)
{
    QwtText made(QString::fromStdString(text), QwtText::PlainText);
    made.setFont(QFont(FAMILY, points));
    return made;
}

// As many digits as tell the scale's ticks apart.
int digitsOf(const QwtScaleDiv& scale)
{
    const QList<double> ticks = scale.ticks(QwtScaleDiv::MajorTick);
    double largest = 0, step = std::numeric_limits<double>::infinity();
    for (int i = 0; i < ticks.size(); ++i) {
        largest = std::max(largest, std::abs(ticks[i]));
        if (i > 0)
            step = std::min(step, std::abs(ticks[i] - ticks[i - 1]));
    }
    const bool isScale = largest > 0 && std::isfinite(step) && step > 0;
    return isScale ? std::clamp(int(std::ceil(std::log10(largest / step))) + 2, 6, 15) : 6;
}

// Numbers have a decimal point, whatever the locale.
class Scale : public QwtScaleDraw
{
public:
    Scale() { enableComponent(Backbone, false); } // the canvas has a frame

    QwtText label(double value) const override
    {
        return QLocale::c().toString(value, 'g', digitsOf(scaleDiv()));
    }
};

// Not-a-number is a gap; a value between two gaps is a dot.
class GappedCurve : public QwtPlotCurve
{
protected:
    void drawCurve(QPainter* painter, int style, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                   const QRectF& canvas, int from, int to) const override
    {
        const auto isThere = [this](int i) { return std::isfinite(sample(i).y()); };
        for (int begin = from; begin <= to; ++begin) {
            if (!isThere(begin))
                continue;
            int end = begin;
            while (end < to && isThere(end + 1))
                ++end;
            if (end > begin)
                QwtPlotCurve::drawCurve(painter, style, xMap, yMap, canvas, begin, end);
            else
                drawDot(*painter,
                        {xMap.transform(sample(begin).x()), yMap.transform(sample(begin).y())});
            begin = end;
        }
    }

private:
    static void drawDot(QPainter& painter, const QPointF& point)
    {
        painter.setBrush(painter.pen().color());
        painter.drawEllipse(point, CURVE_WIDTH, CURVE_WIDTH);
        painter.setBrush(Qt::NoBrush);
    }
};

} // namespace

// One panel. What is attached belongs to the plot.
class PlotStack::Panel : public QwtPlot
{
public:
    Panel(QWidget* parent, Titles placeOfTitle) : QwtPlot(parent), titlePlace(placeOfTitle)
    {
        setAutoReplot(false);
        auto* ground = new QwtPlotCanvas(this);
        ground->setFrameStyle(QFrame::Box | QFrame::Plain);
        ground->setLineWidth(1);
        ground->setPalette(QPalette(Qt::white));
        ground->setMouseTracking(true);
        setCanvas(ground);
        setCanvasBackground(Qt::white);
        // White to the margins, in every theme.
        QPalette white = palette();
        white.setColor(QPalette::Window, Qt::white);
        white.setColor(QPalette::WindowText, Qt::black);
        white.setColor(QPalette::Text, Qt::black);
        setPalette(white);
        setAutoFillBackground(true);
        for (const int axis : {int(xBottom), int(yLeft), int(yRight)}) {
            setAxisScaleDraw(axis, new Scale);
            setAxisFont(axis, QFont(FAMILY, 10));
            axisWidget(axis)->setMargin(0);
        }
        // Keeps room for half of the x axis's last number, so that all panels end alike.
        enableAxis(yRight);
        for (const auto part : {QwtScaleDraw::Labels, QwtScaleDraw::Ticks})
            axisScaleDraw(yRight)->enableComponent(part, false);
        plotLayout()->setAlignCanvasToScales(true);
        auto* grid = new QwtPlotGrid;
        grid->setPen(GRID_COLOUR, 0);
        grid->attach(this);
        line = new QwtPlotMarker;
        line->setLineStyle(QwtPlotMarker::VLine);
        line->setLinePen(MARK_COLOUR, 1, Qt::DashLine);
        dot = new QwtPlotMarker;
        dot->setSymbol(new QwtSymbol(QwtSymbol::Ellipse, Qt::white, QPen(MARK_COLOUR, 2), {9, 9}));
        for (QwtPlotMarker* marker : {line, dot}) {
            marker->setZ(100); // before all curves
            marker->setVisible(false);
            marker->attach(this);
        }
    }

    // The curves that there are, in the lines' order; without a legend no names.
    void show(const Plot& plot, std::size_t index)
    {
        const PlotPanel& panel = plot.panels[index];
        curves.resize(plot.lines.size());
        for (std::size_t i = 0; i < curves.size(); ++i) {
            if (!curves[i]) {
                curves[i] = std::make_unique<GappedCurve>();
                curves[i]->setRenderHint(QwtPlotItem::RenderAntialiased);
                curves[i]->attach(this);
            }
            curves[i]->setTitle(plainText(plot.lines[i].title, 10));
            curves[i]->setPen(onWhite(plot.lines[i].colour), CURVE_WIDTH);
            setSamples(*curves[i], plot.lines[i].x, panel.values[i]);
        }
        QwtText title = plainText(strandview::axisTitle(panel.name, panel.unit), 11);
        if (titlePlace == BESIDE) {
            setAxisTitle(yLeft, title);
            return;
        }
        titleLabel()->setFont(title.font()); // it would be bold
        title.setRenderFlags(Qt::AlignLeft | Qt::AlignVCenter);
        setTitle(title);
    }

    // From the first tick below to the first above.
    void setRange(Span span)
    {
        QwtLinearScaleEngine engine;
        double step = 0;
        engine.autoScale(MAJOR_TICKS, span.min, span.max, step);
        setAxisScaleDiv(yLeft, engine.divideScale(span.min, span.max, MAJOR_TICKS, MINOR_TICKS));
    }

    void setXAxis(const Plot& plot, bool isShown)
    {
        const Span span = xSpan(plot);
        setAxisScale(xBottom, span.min, span.max);
        enableAxis(xBottom, isShown);
        setAxisTitle(xBottom, plainText(strandview::axisTitle(plot.xName, plot.xUnit), 11));
    }

    void showLegend(bool isShown)
    {
        if (isShown == (legend() != nullptr))
            return;
        if (!isShown) {
            insertLegend(nullptr);
            return;
        }
        auto* box = new QwtLegend;
        box->setDefaultItemMode(QwtLegendData::ReadOnly);
        insertLegend(box, TopLegend);
    }

    // The extents that axes need, before they are made alike.
    double leftExtent()
    {
        axisScaleDraw(yLeft)->setMinimumExtent(0);
        updateAxes();
        return axisScaleDraw(yLeft)->extent(axisFont(yLeft));
    }
    int rightOverhang() const
    {
        int start = 0, end = 0;
        axisWidget(xBottom)->getBorderDistHint(start, end);
        return end;
    }
    void setExtents(double left, double right)
    {
        axisScaleDraw(yLeft)->setMinimumExtent(left);
        axisScaleDraw(yRight)->setMinimumExtent(right);
        updateLayout();
    }

    // Besides the canvas.
    double legendHeight(double width) const
    {
        const auto* box = dynamic_cast<const QwtLegend*>(legend());
        return box ? box->heightForWidth(int(width)) + plotLayout()->spacing() : 0;
    }
    double titleHeight(double width) const
    {
        return titlePlace == ABOVE
                   ? titleLabel()->heightForWidth(int(width)) + plotLayout()->spacing()
                   : 0;
    }
    double axisHeight() const
    {
        return axisEnabled(xBottom) ? axisWidget(xBottom)->sizeHint().height() : 0;
    }

    void mark(const Plot& plot, std::size_t index, const std::optional<PlotPlace>& place)
    {
        line->setVisible(place.has_value());
        dot->setVisible(false);
        if (!place)
            return;
        const double x = plot.lines[place->line].x[place->place];
        line->setXValue(x);
        const std::vector<double>& values = plot.panels[index].values[place->line];
        if (values.empty() || !std::isfinite(values[place->place]))
            return;
        dot->setValue(x, values[place->place]);
        dot->setVisible(true);
    }

    QPointF pixelOf(double x, double y) const
    {
        return {canvasMap(xBottom).transform(x), canvasMap(yLeft).transform(y)};
    }

private:
    static void setSamples(QwtPlotCurve& curve, const std::vector<double>& x,
                           const std::vector<double>& y)
    {
        QVector<QPointF> points;
        const std::vector<std::size_t> places = placesToDraw(x, y, MOST_PLACES);
        points.reserve(int(places.size()));
        for (const std::size_t place : places)
            points.append({x[place], y[place]});
        curve.setSamples(points);
    }

    const Titles titlePlace;
    std::vector<std::unique_ptr<GappedCurve>> curves; ///< detach themselves
    QwtPlotMarker *line, *dot;
};

PlotStack::PlotStack(Titles placesOfTitles, QWidget* parent)
    : QWidget(parent), titles(placesOfTitles)
{
    QPalette white = palette();
    white.setColor(QPalette::Window, Qt::white);
    setPalette(white);
    setAutoFillBackground(true);
}

void PlotStack::makePanels()
{
    while (panels.size() > plot.panels.size()) {
        delete panels.back();
        panels.pop_back();
    }
    while (panels.size() < plot.panels.size()) {
        panels.push_back(new Panel(this, titles));
        panels.back()->canvas()->installEventFilter(this);
        panels.back()->setVisible(true);
    }
}

void PlotStack::show(const Plot& newPlot, Ranges ranges)
{
    const auto haveSameName = [](const PlotPanel& one, const PlotPanel& other) {
        return one.name == other.name && one.unit == other.unit;
    };
    const bool areKept = ranges == KEEP_RANGES && spans.size() == newPlot.panels.size() &&
                         std::equal(newPlot.panels.begin(), newPlot.panels.end(),
                                    plot.panels.begin(), plot.panels.end(), haveSameName);
    marked = markIn(newPlot);
    plot = newPlot;
    makePanels();
    std::vector<Span> next;
    for (std::size_t i = 0; i < panels.size(); ++i) {
        next.push_back(ySpan(plot.panels[i]));
        if (areKept)
            next[i] = {std::min(next[i].min, spans[i].min), std::max(next[i].max, spans[i].max)};
        panels[i]->show(plot, i);
        panels[i]->setRange(next[i]);
        panels[i]->setXAxis(plot, i + 1 == panels.size());
        panels[i]->showLegend(i == 0 && plot.lines.size() > 1 &&
                              plot.lines.size() <= LARGEST_LEGEND);
        panels[i]->mark(plot, i, marked);
    }
    spans = next;
    align();
    placePanels();
    for (Panel* panel : panels)
        panel->replot();
}

// The mouse need not move while frames are played below it.
std::optional<PlotPlace> PlotStack::markIn(const Plot& next) const
{
    if (!marked || next.xName != plot.xName)
        return std::nullopt;
    const LineId& id = plot.lines[marked->line].id;
    const auto line = std::find_if(next.lines.begin(), next.lines.end(),
                                   [&id](const PlotLine& one) { return one.id == id; });
    if (line == next.lines.end() || marked->place >= line->x.size())
        return std::nullopt;
    return PlotPlace{std::size_t(line - next.lines.begin()), marked->place};
}

// All canvases begin and end alike.
void PlotStack::align()
{
    double left = 0;
    for (Panel* panel : panels)
        left = std::max(left, panel->leftExtent());
    const double right = panels.empty() ? 0 : panels.back()->rightOverhang() + RIGHT_MARGIN;
    for (Panel* panel : panels)
        panel->setExtents(left, right);
}

// Canvases of one height.
std::vector<QRectF> PlotStack::arrange(const QSizeF& size) const
{
    std::vector<QRectF> places;
    if (panels.empty())
        return places;
    const double width = std::max(0.0, size.width() - 2 * MARGIN);
    const double legend = panels.front()->legendHeight(width);
    const double axis = panels.back()->axisHeight();
    const double title = panels.front()->titleHeight(width); // of one line each
    const double fixed =
        legend + axis + 2 * MARGIN + (title + SPACING) * double(panels.size()) - SPACING;
    const double canvas = std::max(0.0, (size.height() - fixed) / double(panels.size()));
    double top = MARGIN;
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const double height =
            title + canvas + (i == 0 ? legend : 0) + (i + 1 == panels.size() ? axis : 0);
        places.emplace_back(MARGIN, top, width, height);
        top += height + SPACING;
    }
    return places;
}

void PlotStack::placePanels()
{
    const std::vector<QRectF> places = arrange(size());
    for (std::size_t i = 0; i < panels.size(); ++i)
        panels[i]->setGeometry(places[i].toAlignedRect());
}

void PlotStack::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placePanels();
}

void PlotStack::mark(const std::optional<PlotPlace>& place)
{
    const bool isThere =
        place && place->line < plot.lines.size() && place->place < plot.lines[place->line].x.size();
    const std::optional<PlotPlace> next = isThere ? place : std::nullopt;
    if (next == marked)
        return;
    marked = next;
    for (std::size_t i = 0; i < panels.size(); ++i) {
        panels[i]->mark(plot, i, marked);
        panels[i]->replot();
    }
}

void PlotStack::draw(QPainter& painter, const QSizeF& size)
{
    for (std::size_t i = 0; i < panels.size(); ++i)
        panels[i]->mark(plot, i, std::nullopt);
    const double scale = double(painter.device()->logicalDpiX()) / logicalDpiX();
    QwtPlotRenderer renderer;
    renderer.setDiscardFlag(QwtPlotRenderer::DiscardBackground);
    const std::vector<QRectF> places = arrange(size);
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const QRectF& place = places[i];
        renderer.render(
            panels[i], &painter,
            {scale * place.x(), scale * place.y(), scale * place.width(), scale * place.height()});
    }
    for (std::size_t i = 0; i < panels.size(); ++i)
        panels[i]->mark(plot, i, marked);
}

QPoint PlotStack::positionOf(std::size_t panel, const PlotPlace& place) const
{
    const QPointF pixel = panels[panel]->pixelOf(
        plot.lines[place.line].x[place.place], plot.panels[panel].values[place.line][place.place]);
    return panels[panel]->canvas()->mapTo(const_cast<PlotStack*>(this), pixel.toPoint());
}

// Of each curve that place whose x is nearest; of these the one that is nearest to the mouse.
std::optional<PlotPlace> PlotStack::placeAt(std::size_t index, const QPoint& pixel) const
{
    const Panel& panel = *panels[index];
    const double x = panel.invTransform(QwtPlot::xBottom, pixel.x());
    std::optional<PlotPlace> nearest;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < plot.lines.size(); ++i) {
        const std::vector<double>& values = plot.panels[index].values[i];
        if (values.empty())
            continue;
        const std::size_t place = nearestPlace(plot.lines[i].x, x);
        const QPointF found = panel.pixelOf(plot.lines[i].x[place], values[place]) - pixel;
        const double distance = std::hypot(found.x(), found.y());
        if (distance < least) { // never of a gap
            least = distance;
            nearest = {i, place};
        }
    }
    return nearest;
}

bool PlotStack::eventFilter(QObject* watched, QEvent* event)
{
    const auto* const mouse =
        event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonPress
            ? static_cast<QMouseEvent*>(event)
            : nullptr;
    if (event->type() == QEvent::Leave)
        emit left();
    if (mouse) {
        for (std::size_t i = 0; i < panels.size(); ++i) {
            if (panels[i]->canvas() != watched)
                continue;
            const auto place = placeAt(i, mouse->pos());
            if (place && event->type() == QEvent::MouseMove)
                emit hovered(*place);
            else if (place && mouse->button() == Qt::LeftButton)
                emit clicked(*place);
            break; // whoever was told may have changed the panels
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace strandview
