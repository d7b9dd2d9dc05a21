// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_CURVEPANEL_H
#define STRANDVIEW_APP_WINDOW_CURVEPANEL_H

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <strandview/model/Configuration.h>

#include "plotting/Plot.h"
#include "plotting/PlotStack.h"
#include "request/PlotRequest.h"

class QComboBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace strandview {

class DataScene;

/// Curves of the data that a window shows: scalars that are ticked, over arc length, number, or the
/// frames that were seen, with the names and colours that the user gave to things that are not
/// hidden. It computes only while it is visible, and says which place the mouse is
/// over. Of the window's thread.
class CurvePanel : public QWidget
{
    Q_OBJECT

public:
    /// A place of the data: a point or pair, from 0, of a line.
    struct Place
    {
        LineId line;
        std::size_t row = 0;
    };

    explicit CurvePanel(QWidget* parent = nullptr);

    enum Change { OTHER_FILES, NEXT_FRAME };
    /// Shows the data of a scene from now on, which outlives the panel, or another one is given.
    /// What is computed from them is computed soon, at most some times a second.
    void showScene(const DataScene& shown, std::size_t frame, Change change);
    /// A frame that cannot be read is a gap over frames.
    void showGap(std::size_t frame);
    /// Names, colours or hiding in the scene are others.
    void followLooks();

    /// Marks a place in the curves, or none.
    void mark(const std::optional<Place>& place);
    /// The place whose scalars are plotted over frames.
    void choose(const Place& place);

    const PlotStack& getStack() const { return *stack; }
    QSize sizeHint() const override;
    /// The names that are ticked, without those that take too long.
    std::vector<std::string> getScalars() const;
    /// Whether nothing is left to compute.
    bool isUpToDate() const { return !isStale; }
    /// "Over frames: rod 1, point 3 (from 0)".
    QString getPlaceText() const;

    /// Writes what is plotted; tells in a message box if that fails.
    void save(const QString& file);

public slots:
    void chooseFile();

signals:
    /// The mouse is over this place of a curve.
    void hovered(const strandview::CurvePanel::Place& place);
    void left();
    /// The mouse clicked this place of a curve.
    void placeClicked(const strandview::CurvePanel::Place& place);
    /// A frame was clicked in curves over frames.
    void frameChosen(std::size_t frame);
    void saved(const QString& file);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void listScalars();
    void limitSlow();
    void plotSoon();
    void plotNow();
    std::optional<Plot> plotOfLines();
    std::optional<Plot> plotOfFrames();
    bool readFrames(const std::vector<std::string>& names);
    void show(const Plot& plot, bool areFrames);
    void tellHover(const PlotPlace& place);
    void tellPlace();

    QListWidget* list;
    QComboBox* axis;
    QPushButton* saveButton;
    QLabel* placeLabel;
    PlotStack* stack;

    const DataScene* scene = nullptr;
    std::shared_ptr<const Configuration> data;
    std::optional<Place> chosen;
    /// Those that were seen, as long as somebody keeps them.
    std::map<std::size_t, std::weak_ptr<const Configuration>> seen;
    /// Of the chosen place in them, by scalar and frame.
    std::map<std::string, std::map<std::size_t, double>> history;
    QTimer timer;
    QElapsedTimer sincePlot;
    bool isStale = false, areRangesNew = true;
    bool isOverFrames = false; ///< what is plotted now
    long long costOfPlot = 0;  ///< milliseconds
};

} // namespace strandview

#endif
