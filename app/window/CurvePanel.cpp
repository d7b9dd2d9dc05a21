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

#include <strandview/analysis/scalars.h>

#include "plotting/plotFiles.h"
#include "plotting/plotFrames.h"
#include "window/textBoxes.h"

namespace strandview {

namespace {

const int LEAST_HEIGHT = 110; // of a panel, pixels
const int LIST_HEIGHT = 110;
const int WIDTH = 400; // unless the user drags it

// Curves take at most this share of the time in which frames are played, and are drawn anew at most
// so often.
const long long SHARE = 5;        // a fifth
const long long LEAST_PAUSE = 40; // milliseconds

// Of frames that were seen, when another place was clicked: so long at once, the rest soon.
const long long AT_ONCE = 40; // milliseconds

// What takes the square of the number of points is plotted of lines of so many alone.
const std::size_t MOST_POINTS_OF_SLOW = 2000;

const double NONE = std::numeric_limits<double>::quiet_NaN();

enum Axis { ALONG, BY_NUMBER, OVER_FRAMES };

bool isTooSlow(const Configuration& data, const std::string& name)
{
    const std::vector<Track> tracks = plottedTracks(data, 1);
    return std::any_of(tracks.begin(), tracks.end(), [&name](const Track& track) {
        return track.points.size() > MOST_POINTS_OF_SLOW && isSlow(track, name);
    });
}

} // namespace

CurvePanel::CurvePanel(QWidget* parent) : QWidget(parent)
{
    setObjectName("curvePanel");
    list = new QListWidget(this);
    list->setObjectName("plotScalars");
    list->setMaximumHeight(LIST_HEIGHT);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    axis = new QComboBox(this);
    axis->setObjectName("plotAxis");
    axis->addItems({"Over arc length", "Over numbers", "Over frames seen"});
    saveButton = new QPushButton("Save...", this);
    saveButton->setObjectName("plotSave");
    saveButton->setToolTip("Saves the curves as SVG, PDF or PNG");
    placeLabel = new QLabel(this);
    placeLabel->setTextFormat(Qt::PlainText);
    placeLabel->setWordWrap(true);
    stack = new PlotStack;
    auto* scrolled = new QScrollArea(this);
    scrolled->setWidgetResizable(true);
    scrolled->setFrameShape(QFrame::NoFrame);
    scrolled->setWidget(stack);

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
        if (isOverFrames)
            emit frameChosen(std::size_t(line.x[place.place]));
        else
            choose({line.id, place.place});
    });
    placeLabel->hide();
    tellPlace();
}

QSize CurvePanel::sizeHint() const { return {WIDTH, 2 * WIDTH}; }

void CurvePanel::showData(std::shared_ptr<const Configuration> shown, const Style& shownStyle,
                          std::size_t shownFrame, Change change)
{
    data = std::move(shown);
    style = shownStyle;
    frame = shownFrame;
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

// Those that were ticked stay so if there are any, else the usual ones are.
void CurvePanel::listScalars()
{
    const std::vector<std::string> before = getScalars();
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
        const bool isRefused = isTooSlow(*data, name);
        item->setFlags(isRefused ? Qt::NoItemFlags : Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(has(ticked, name) && !isRefused ? Qt::Checked : Qt::Unchecked);
        if (isRefused)
            item->setToolTip("For --plot: it takes long for so many points");
    }
}

std::vector<std::string> CurvePanel::getScalars() const
{
    std::vector<std::string> names;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->checkState() == Qt::Checked)
            names.push_back(list->item(i)->text().toStdString());
    }
    return names;
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
    PlotRequest request;
    request.scalars = getScalars();
    std::optional<Plot> plot;
    std::string untold; // of scalars that this frame has not
    isOverFrames = axis->currentIndex() == OVER_FRAMES;
    if (isOverFrames)
        plot = plotOfFrames();
    else if (data && !request.scalars.empty()) {
        if (axis->currentIndex() == BY_NUMBER)
            request.against = PlotAxis::NUMBER;
        else
            request.against = PlotAxis::ARC_LENGTH;
        plot = plotOf(*data, style, request, untold);
    }
    stack->show(plot.value_or(Plot()), std::exchange(areRangesNew, false) ? PlotStack::NEW_RANGES
                                                                          : PlotStack::KEEP_RANGES);
    stack->setMinimumHeight(LEAST_HEIGHT * int(stack->getPlot().panels.size()));
    saveButton->setEnabled(!stack->getPlot().panels.empty());
    costOfPlot = clock.elapsed();
    sincePlot.start();
    if (isStale)
        plotSoon();
}

// The chosen place in the frames that are still there; what was known of others stays.
std::optional<Plot> CurvePanel::plotOfFrames()
{
    if (!data || !chosen)
        return std::nullopt;
    const std::vector<std::string> names = getScalars();
    QElapsedTimer clock;
    clock.start();
    for (const auto& [number, kept] : seen) {
        const std::shared_ptr<const Configuration> there = kept.lock();
        if (!there)
            continue;
        if (clock.elapsed() > AT_ONCE) {
            isStale = true;
            break;
        }
        for (const std::string& name : names) {
            auto& values = history[name];
            if (values.count(number) > 0)
                continue;
            const std::vector<Track> tracks = plottedTracks(*there, style.dna.angstrom);
            const Track* const track = findTrack(tracks, chosen->line);
            const auto all = track ? findScalar(*track, name) : std::nullopt;
            values[number] = all && chosen->row < all->size() ? (*all)[chosen->row] : NONE;
        }
    }
    PlotRequest request;
    request.scalars = names;
    std::string untold;
    std::optional<Plot> plot = names.empty() ? std::nullopt : plotOf(*data, style, request, untold);
    if (!plot)
        return std::nullopt;
    const auto line = std::find_if(plot->lines.begin(), plot->lines.end(),
                                   [this](const auto& one) { return one.id == chosen->line; });
    if (line == plot->lines.end())
        return std::nullopt;
    PlotLine only = *line;
    only.x.clear();
    for (const auto& [number, kept] : seen)
        only.x.push_back(double(number));
    for (PlotPanel& panel : plot->panels) {
        std::vector<double> values;
        const auto& known = history[panel.name];
        for (const auto& [number, kept] : seen) {
            const auto value = known.find(number);
            values.push_back(value == known.end() ? NONE : value->second);
        }
        panel.values = {values};
    }
    plot->lines = {only};
    plot->xName = "frame";
    plot->xUnit.clear();
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
        data ? plottedTracks(*data, style.dna.angstrom) : std::vector<Track>();
    const Track* const track = chosen ? findTrack(tracks, chosen->line) : nullptr;
    if (!track) {
        placeLabel->setText("Over frames: the place that was clicked, in the view or in a curve");
        return;
    }
    const bool isPair = track->dna != nullptr;
    placeLabel->setText(QString::fromStdString("Over frames: " + titleOf(*track) +
                                               (isPair ? ", pair " : ", point ") +
                                               std::to_string(chosen->row + (isPair ? 1 : 0))));
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
