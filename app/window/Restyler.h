// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_RESTYLER_H
#define STRANDVIEW_APP_WINDOW_RESTYLER_H

#include <memory>
#include <optional>

#include <QFutureWatcher>
#include <QObject>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>

#include "request/Options.h"
#include "scene/prepareLook.h"

namespace strandview {

/// Prepares other looks of data that are shown, in another thread, so that the window answers
/// while its user drags a slider. In the window's thread.
class Restyler : public QObject
{
    Q_OBJECT

public:
    /// What a look is to be prepared of.
    struct Task
    {
        Options options;
        std::shared_ptr<const Configuration> frame, first; ///< the same of what has one frame
        std::shared_ptr<const ValueSummary> others;        ///< of all but the first, if known
        bool ofColours = false; ///< alone: the shapes that are shown are those that are asked for
        RowsOfData shown;       ///< then, to be coloured
    };
    struct Result
    {
        Task task;
        std::optional<PreparedLook> look; ///< or an error in the report
        ReadReport report;
    };

    explicit Restyler(QObject* parent = nullptr);
    /// Stops what is being done.
    ~Restyler() override;

    /// Begins at once, or as soon as what is being done has ended; of several that wait, the last.
    void ask(Task task);
    /// Forgets what was asked for: finished() will not come any more for it.
    void forget();
    bool isAtWork() const { return isWorking; }
    /// Whether nothing is being done that will show other shapes.
    bool keepsShapes() const { return !isWorking || isOfColours; }

signals:
    void finished(const std::shared_ptr<strandview::Restyler::Result>& result);

private:
    void begin(Task task);
    void end();

    class StopFlag;
    const std::shared_ptr<StopFlag> flag; ///< of what is being done
    QFutureWatcher<std::shared_ptr<Result>> work;
    std::optional<Task> next;
    bool isWorking = false;   ///< until what came of it was told
    bool isOfColours = false; ///< alone, what is being done
    bool isForgotten = false; ///< what is being done
};

} // namespace strandview

#endif
