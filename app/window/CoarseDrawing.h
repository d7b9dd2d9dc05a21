// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_COARSEDRAWING_H
#define STRANDVIEW_APP_WINDOW_COARSEDRAWING_H

#include <functional>

#include <QObject>
#include <QTimer>

namespace strandview {

class DataScene;

/// Whether a software driver takes so long for a frame of all rows that its user waits for it, and
/// any other one for the first.
bool takesLong(const DataScene& scene);

/// Lets be drawn coarsely what its user is changing, which takes a fraction of the time, and once
/// more finely when nothing has changed for a moment. What plays is drawn so all the time.
class CoarseDrawing : public QObject
{
public:
    /// draw: draws all coarsely from now on, or finely; called also where that is so already.
    explicit CoarseDrawing(std::function<void(bool coarse)> draw);

    /// Something is being changed, or shown that was.
    void noteChange();
    /// A change is asked for: what is drawn coarsely stays so, what is not is not drawn for it.
    void awaitChange();
    /// Not long ago.
    bool isChanging() const { return rest.isActive(); }
    void setPlaying(bool on);

private:
    void follow();

    const std::function<void(bool coarse)> draw;
    QTimer rest; ///< since the last change
    bool isPlaying = false;
};

} // namespace strandview

#endif
