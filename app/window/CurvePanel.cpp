// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/CurvePanel.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <utility>

#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <strandview/analysis/scalarAt.h>
#include <strandview/analysis/scalars.h>

#include "plotting/plotFiles.h"
#include "plotting/plotFrames.h"
#include "scene/DataScene.h"
#include "window/plotLooks.h"
#include "window/textBoxes.h"

namespace strandview {

namespace {

const int LEAST_HEIGHT = 130; // of a panel, pixels
const int LIST_HEIGHT = 110, LEAST_LIST_HEIGHT = 40;
const int WIDTH = 400; // unless the user drags it

// Curves take at most this share of the time in which frames are played, and are drawn anew at most
// so often.
const long long SHARE = 5;        // a fifth
const long long LEAST_PAUSE = 40; // milliseconds

// Of frames that were seen, when another place was clicked: so long at once, the rest soon.
const long long AT_ONCE = 40; // milliseconds

// What takes the square of the number of points is plotted where all lines together have so many
// pairs of edges, as one of 2,000 points has.
const char* const SLOW_SCALAR = "writhe_density";
const double MOST_PAIRS_AT_ONCE = 2e6;

const double NONE = std::numeric_limits<double>::quiet_NaN();

enum Axis { ALONG, BY_NUMBER, OVER_FRAMES };

bool isSlowTooLong(const Configuration& data)
{
    return edgePairsOfScalars(plottedTracks(data, 1)) > MOST_PAIRS_AT_ONCE;
}

std::vector<std::string> tickedNames(const QListWidget& list, Qt::ItemFlags flags)
{
    std::vector<std::string> names;
    for (int i = 0; i < list.count(); ++i) {
        const QListWidgetItem& item = *list.item(i);
        if (item.checkState() == Qt::Checked && (item.flags() & flags) == flags)
            names.push_back(item.text().toStdString());
    }
    return names;
}

} // namespace

CurvePanel::CurvePanel(QWidget* parent) : QWidget(parent)
{
    setObjectName("curvePanel");
    list = new QListWidget(this);
    list->setObjectName("plotScalars");
    list->setAccessibleName("Numbers that are plotted");
    list->setMinimumHeight(LEAST_LIST_HEIGHT);
    list->setMaximumHeight(LIST_HEIGHT);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    axis = new QComboBox(this);
    axis->setObjectName("plotAxis");
    axis->setAccessibleName("What they are plotted over");
    axis->addItems({"Over arc length", "Over numbers", "Over frames seen"});
    saveButton = new QPushButton("Save...", this);
    saveButton->setObjectName("plotSave");
    saveButton->setToolTip("Saves the curves as SVG, PDF or PNG");
    placeLabel = new QLabel(this);
    placeLabel->setTextFormat(Qt::PlainText);
    placeLabel->setWordWrap(true);
    stack = new PlotStack(PlotStack::ABOVE);
    auto* scrolled = new QScrollArea(this);
    scrolled->setWidgetResizable(true);
    scrolled->setFrameShape(QFrame::NoFrame);
    scrolled->setWidget(stack);
    scrolled->setMinimumHeight(LEAST_HEIGHT);
    scrolled->setFocusPolicy(Qt::NoFocus);

    auto* row = new QHBoxLayout;
    row->addWidget(axis, 1);
    row->addWidget(saveButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(list);
    layout->addLayout(row);
    layout->addWidget(placeLabel);
    layout->addWidget(scrolled, 1);
    setMinimumWidth(240);
    // A click leaves the keyboard to the view, and Return is one of its keys.
    for (QWidget* widget : std::initializer_list<QWidget*>{list, axis, saveButton})
        widget->setFocusPolicy(Qt::TabFocus);
    saveButton->setAutoDefault(false);

    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, &CurvePanel::plotNow);
    const auto change = [this] {
        placeLabel->setVisible(axis->currentIndex() == OVER_FRAMES);
        areRangesNew = true;
        plotSoon();
    };
    connect(list, &QListWidget::itemChanged, this, change);
    connect(axis, QOverload<int>::of(&QComboBox::currentIndexChanged), this, change);
    connect(saveButton, &QPushButton::clicked, this, &CurvePanel::chooseFile);
    connect(stack, &PlotStack::hovered, this, &CurvePanel::tellHover);
    connect(stack, &PlotStack::left, this, &CurvePanel::left);
    connect(stack, &PlotStack::left, this, [this] { stack->mark(std::nullopt); });
    connect(stack, &PlotStack::clicked, this, [this](const PlotPlace& place) {
        const PlotLine& line = stack->getPlot().lines[place.line];
        if (isOverFrames) {
            emit frameChosen(std::size_t(line.x[place.place]));
            return;
        }
        const Place clicked{line.id, place.place};
        choose(clicked);
        emit placeClicked(clicked);
    });
    placeLabel->hide();
    tellPlace();
}

QSize CurvePanel::sizeHint() const { return {WIDTH, 2 * WIDTH}; }

void CurvePanel::showScene(const DataScene& shown, std::size_t frame, Change change)
{
    scene = &shown;
    data = shown.getData();
    if (change == OTHER_FILES) {
        seen.clear();
        history.clear();
        chosen.reset();
        areRangesNew = true;
        listScalars();
        tellPlace();
    }
    if (data)
        seen[frame] = data;
    plotSoon();
}

void CurvePanel::showGap(std::size_t frame)
{
    seen[frame].reset();
    for (auto& [name, values] : history)
        values.erase(frame);
    plotSoon();
}

void CurvePanel::followLooks()
{
    tellPlace();
    plotSoon();
}

// Those that were ticked stay so if there are any, else the usual ones are.
void CurvePanel::listScalars()
{
    const std::vector<std::string> before = tickedNames(*list, Qt::NoItemFlags);
    const QSignalBlocker blocker(list);
    list->clear();
    if (!data)
        return;
    const std::vector<std::string> names = plottableScalars(*data);
    const auto has = [](const std::vector<std::string>& all, const std::string& name) {
        return std::find(all.begin(), all.end(), name) != all.end();
    };
    const bool isAnyLeft = std::any_of(before.begin(), before.end(),
                                       [&](const std::string& name) { return has(names, name); });
    const std::vector<std::string> ticked = isAnyLeft ? before : standardScalars(*data);
    for (const std::string& name : names) {
        auto* item = new QListWidgetItem(QString::fromStdString(name), list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(has(ticked, name) ? Qt::Checked : Qt::Unchecked);
    }
    limitSlow();
}

// A frame may have more points than those before; what was ticked comes back where it has fewer.
void CurvePanel::limitSlow()
{
    QListWidgetItem* const item = list->findItems(SLOW_SCALAR, Qt::MatchExactly).value(0);
    if (!item)
        return;
    const QSignalBlocker blocker(list);
    const bool isTooSlow = data && isSlowTooLong(*data);
    item->setFlags(isTooSlow ? Qt::NoItemFlags : Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    item->setToolTip(isTooSlow ? "For --plot: it takes long for so many points" : "");
}

std::vector<std::string> CurvePanel::getScalars() const
{
    return tickedNames(*list, Qt::ItemIsEnabled);
}

// At most a part of the time, however long curves take.
void CurvePanel::plotSoon()
{
    isStale = true;
    if (!isVisible() || timer.isActive())
        return;
    const long long pause = std::max(LEAST_PAUSE, SHARE * costOfPlot);
    const long long passed = sincePlot.isValid() ? sincePlot.elapsed() : pause;
    timer.start(int(std::max(0LL, pause - passed)));
}

void CurvePanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (isStale)
        plotSoon();
}

void CurvePanel::plotNow()
{
    if (!isVisible())
        return;
    isStale = false;
    QElapsedTimer clock;
    clock.start();
    limitSlow();
    const bool areFrames = axis->currentIndex() == OVER_FRAMES;
    Plot plot = (areFrames ? plotOfFrames() : plotOfLines()).value_or(Plot());
    if (scene)
        strandview::followLooks(plot, *scene);
    show(plot, areFrames);
    costOfPlot = clock.elapsed();
    sincePlot.start();
    if (isStale)
        plotSoon();
}

// What is marked over frames is a frame: others may come before it.
void CurvePanel::show(const Plot& plot, bool areFrames)
{
    const std::optional<PlotPlace>& mark = stack->getMark();
    std::optional<double> markedFrame;
    if (mark && isOverFrames && areFrames)
        markedFrame = stack->getPlot().lines[mark->line].x[mark->place];
    isOverFrames = areFrames;
    stack->show(plot, std::exchange(areRangesNew, false) ? PlotStack::NEW_RANGES
                                                         : PlotStack::KEEP_RANGES);
    if (markedFrame && stack->getMark())
        stack->mark(PlotPlace{0, nearestPlace(plot.lines[0].x, *markedFrame)});
    stack->setMinimumHeight(LEAST_HEIGHT * int(plot.panels.size()));
    saveButton->setEnabled(!plot.panels.empty());
}

std::optional<Plot> CurvePanel::plotOfLines()
{
    PlotRequest request;
    request.scalars = getScalars();
    if (!data || request.scalars.empty())
        return std::nullopt;
    request.against = axis->currentIndex() == BY_NUMBER ? PlotAxis::NUMBER : PlotAxis::ARC_LENGTH;
    std::string untold; // of scalars that this frame has not
    return plotOf(*data, scene->getStyle(), request, untold);
}

// The chosen place in the frames that are still there; what was known of others stays. Whether
// there was time for all of them.
bool CurvePanel::readFrames(const std::vector<std::string>& names)
{
    QElapsedTimer clock;
    clock.start();
    for (const auto& [number, kept] : seen) {
        const std::shared_ptr<const Configuration> there = kept.lock();
        const bool isKnown =
            std::all_of(names.begin(), names.end(),
                        [&, of = number](const auto& n) { return history[n].count(of) > 0; });
        if (!there || isKnown)
            continue;
        if (clock.elapsed() > AT_ONCE)
            return false;
        const std::vector<Track> tracks = plottedTracks(*there, scene->getStyle().dna.angstrom);
        const Track* const track = findTrack(tracks, chosen->line);
        for (const std::string& name : names) {
            if (history[name].count(number) == 0)
                history[name][number] =
                    (track ? scalarAt(*track, name, chosen->row) : std::nullopt).value_or(NONE);
        }
    }
    return true;
}

std::optional<Plot> CurvePanel::plotOfFrames()
{
    const std::vector<std::string> names = getScalars();
    if (!data || !chosen || names.empty())
        return std::nullopt;
    isStale = !readFrames(names);
    std::optional<Plot> plot = outlineOf(chosen->line, *data, scene->getStyle(), names);
    if (!plot)
        return std::nullopt;
    plot->xName = "frame";
    for (const auto& [number, kept] : seen) {
        plot->lines[0].x.push_back(double(number));
        for (PlotPanel& panel : plot->panels) {
            const auto& known = history[panel.name];
            const auto value = known.find(number);
            panel.values[0].push_back(value == known.end() ? NONE : value->second);
        }
    }
    return plot;
}

void CurvePanel::choose(const Place& place)
{
    chosen = place;
    history.clear();
    tellPlace();
    if (axis->currentIndex() == OVER_FRAMES) {
        areRangesNew = true;
        plotSoon();
    }
}

QString CurvePanel::getPlaceText() const { return placeLabel->text(); }

void CurvePanel::tellPlace()
{
    const std::vector<Track> tracks =
        data && chosen ? plottedTracks(*data, 1) : std::vector<Track>();
    const Track* const track = chosen ? findTrack(tracks, chosen->line) : nullptr;
    if (!track) {
        placeLabel->setText("Over frames: the place that was clicked, in the view or in a curve");
        return;
    }
    const std::string name = lookOf(chosen->line, *scene).name.value_or(titleOf(*track));
    placeLabel->setText(QString::fromStdString(
        "Over frames: " + name +
        (track->dna ? ", pair " + std::to_string(chosen->row + 1) + " (from 1)"
                    : ", point " + std::to_string(chosen->row) + " (from 0)")));
}

void CurvePanel::mark(const std::optional<Place>& place)
{
    if (isOverFrames)
        return;
    const std::vector<PlotLine>& lines = stack->getPlot().lines;
    const auto line =
        !place ? lines.end() : std::find_if(lines.begin(), lines.end(), [&](const PlotLine& one) {
            return one.id == place->line;
        });
    if (line == lines.end())
        stack->mark(std::nullopt);
    else
        stack->mark(PlotPlace{std::size_t(line - lines.begin()), place->row});
}

void CurvePanel::tellHover(const PlotPlace& place)
{
    stack->mark(place);
    if (!isOverFrames)
        emit hovered({stack->getPlot().lines[place.line].id, place.place});
}

void CurvePanel::chooseFile()
{
    QFileDialog dialog(this, "Save the curves", "", "Curves (*.svg *.pdf *.png)");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("svg");
    dialog.selectFile("curves.svg");
    if (dialog.exec() == QDialog::Accepted)
        save(dialog.selectedFiles().constFirst());
}

void CurvePanel::save(const QString& file)
{
    const std::string name = file.toStdString();
    std::string failure = checkPlotName("Save the curves", name);
    if (failure.empty()) {
        PlotStack copy; // of the size of a file's
        copy.show(stack->getPlot());
        failure = writePlot(copy, name, plotSize(stack->getPlot().panels.size()));
    }
    if (failure.empty())
        emit saved(file);
    else
        tellFailure(this, "Cannot save", failure);
}

} // namespace strandview
