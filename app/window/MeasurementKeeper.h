// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_MEASUREMENTKEEPER_H
#define STRANDVIEW_APP_WINDOW_MEASUREMENTKEEPER_H

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "output/measurementTable.h"
#include "request/Measurement.h"
#include "scene/measure.h"

namespace strandview {

class DataScene;
class MeasurementPanel;
class PlaceMarks;
class PlaceTeller;

/// The measurements that are kept: in a panel as a list, in the view as lines with their values,
/// told anew of each frame that is shown, and known of those that were shown. Of the window's
/// thread.
class MeasurementKeeper : public QObject
{
    Q_OBJECT

public:
    /// All of them outlive it.
    MeasurementKeeper(PlaceTeller& placeTeller, PlaceMarks& keptMarks,
                      MeasurementPanel& measurementPanel);

    const std::vector<Measurement>& get() const { return measurements; }
    /// Instead of those before, which is not told as a change of the user's.
    void set(const std::vector<Measurement>& next);

    enum Files { SAME_FILES, OTHER_FILES };
    /// Another scene, which shows this frame. What is kept of other files is forgotten.
    void setScene(const DataScene* shown, std::size_t frameOfSeries, Files files);
    /// After the same files: what was seen in these frames of before is so in these of now.
    void keepSeen(const std::map<std::size_t, std::size_t>& frames);
    /// Another frame, or other looks of things.
    void follow(std::size_t frameOfSeries);
    void follow();

    /// Keeps what is measured between the places that are clicked, if it is, and takes those back.
    /// What was kept in a line, or that there was nothing.
    std::string keep();
    /// Writes the values of every frame seen as CSV. Returns one line that says what failed, or
    /// nothing.
    std::string save(const std::string& fileName) const;

signals:
    /// The user changed them: the one place that all their changes come through.
    void changed();

private:
    struct Seen
    {
        std::weak_ptr<const Configuration> data; ///< while it is there
        std::map<std::string, double> values;    ///< by the texts of measurements
    };

    void change(const std::vector<Measurement>& next);
    void offer();
    std::optional<MeasuredValue> valueOf(const Measurement& measurement) const;
    void renew();    ///< values and marks
    void remember(); ///< the values, as those of this frame
    void forgetOtherUnits();
    void mark();
    void listSoon();
    void listNow();
    double angstrom() const;

    PlaceTeller& places;
    PlaceMarks& marks;
    MeasurementPanel& panel;
    const DataScene* scene = nullptr;
    std::size_t frame = 0;
    std::vector<Measurement> measurements;
    std::vector<std::optional<MeasuredValue>> values; ///< of the frame that is shown
    std::map<std::size_t, Seen> seen, seenBefore;     ///< by frames; in the scene before this one
    double seenAngstrom = 1;
    QTimer timer; ///< until the list may tell values again
};

} // namespace strandview

#endif
