// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLAYER_H
#define STRANDVIEW_APP_WINDOW_PLAYER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "playing/FrameStore.h"
#include "playing/PlayOrder.h"

namespace strandview {

class DataScene;
class PlayBar;

/// Plays a series in a scene: which frame is shown follows the clock and what the user chooses.
/// Frames come from a thread of their own (FrameStore); the nodes of the scene are updated in that
/// of the window.
class Player : public QObject
{
    Q_OBJECT

public:
    /// The scene, which shows a frame already, and the bar, which was reset for the series, outlive
    /// the player. With
    /// options.series.follow it goes on to the last frame as more are found, as long as the last
    /// one is shown.
    Player(DataScene& scene, std::size_t shownFrame, FrameStore::Opener opener,
           FrameStore::Plan plan, PlayBar& bar);
    ~Player() override;

    bool isPlaying() const { return playing; }
    /// From the frame that is shown on, or, at the end, from the range's first. Stopping stays.
    void setPlaying(bool on);

    /// Shows a frame as soon as it is there; playing goes on from it.
    void goTo(std::size_t frame);
    /// So many frames further, within the range; playing stops.
    void step(long long frames);
    void goToFirst();
    void goToLast();
    /// Lets the range begin, or end, with the frame that is shown; again with all frames, where it
    /// does so already.
    void toggleRangeStart();
    void toggleRangeEnd();

    /// The scene has another style, and so will the frames to come.
    void follow(const FrameStore::Plan& plan, FrameStore::StageChange change);

    std::size_t getFrame() const { return shown; }
    /// Whether nothing that was asked for is missing.
    bool isUpToDate() const;
    /// Whether it is known what all frames have in common.
    bool isStaged() const { return stage != nullptr; }
    const std::shared_ptr<const Stage>& getStage() const { return stage; }
    const FrameStore& getStore() const { return store; }

signals:
    void playingChanged(bool on);
    /// Another frame is shown, or the same one anew.
    void frameShown(std::size_t frame);
    /// All that there is to tell of the series so far.
    void opened(const std::vector<std::string>& lines);
    /// A frame cannot be shown, so that what was shown stays, and why, in one line.
    void failed(std::size_t frame, const std::string& error);
    /// What was done to the data of a frame that was shown, each time that it is.
    void noticed(std::size_t frame, const std::vector<std::string>& notices);
    /// What all frames have in common is known now; the player shows the frame anew afterwards.
    void staged(const strandview::Stage& stage);

private:
    void follow(); ///< what the other thread has to tell
    void followState(const FrameStore::State& state);
    void show(FrameToPlay next);
    void tick();
    bool isAtEnd() const;
    void playFrom(std::size_t frame);
    void beginAt(PlayOrder::Place place);
    void ask(PlayOrder::Place place, std::uint64_t stride);

    DataScene& scene;
    PlayBar& bar;
    FrameStore::Plan plan; ///< that frames are shown with
    std::size_t shown, asked;
    bool playing = false;
    std::size_t toldBefore = 0;         ///< lines about the series
    std::shared_ptr<const Stage> stage; ///< the last
    std::size_t plans = 0;              ///< so many before the one that frames are shown with

    QTimer timer;
    QElapsedTimer clock;
    PlayOrder::Place start;  ///< where playing was at when the clock began
    std::uint64_t steps = 0; ///< since then

    FrameStore store; ///< the last: its thread tells this object
};

} // namespace strandview

#endif
