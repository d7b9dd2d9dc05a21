// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/Player.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "window/PlayBar.h"

namespace strandview {

namespace {

// Often enough for any screen.
const int TICK = 8; // ms

// Frames that are read ahead, if there is memory for them.
const std::uint64_t AHEAD = 64;

} // namespace

Player::Player(DataScene& shownScene, std::size_t shownFrame, FrameStore::Opener opener,
               FrameStore::Plan firstPlan, PlayBar& playBar)
    : scene(shownScene),
      bar(playBar),
      plan(std::move(firstPlan)),
      shown(shownFrame),
      asked(shownFrame),
      store(std::move(opener), plan, [this] {
          QMetaObject::invokeMethod(
              this, [this] { follow(); }, Qt::QueuedConnection);
      })
{
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(TICK);
    connect(&timer, &QTimer::timeout, this, &Player::tick);
    connect(&bar, &PlayBar::frameChosen, this, [this](int frame) { goTo(std::size_t(frame)); });
    connect(&bar, &PlayBar::orderChanged, this, [this] {
        if (playing)
            playFrom(asked);
    });
    bar.setCount(shown + 1, true);
    bar.setFrame(shown);
    bar.showFrame(shown, {});
}

Player::~Player() = default;

void Player::setPlaying(bool on)
{
    if (on == playing)
        return;
    playing = on;
    if (on) {
        playFrom(isAtEnd() ? bar.getOrder().first : asked);
        timer.start();
    } else {
        timer.stop();
    }
    emit playingChanged(playing);
}

void Player::playFrom(std::size_t frame)
{
    beginAt(bar.getOrder().after({frame}, 0));
    ask(start, 1);
}

void Player::goTo(std::size_t frame)
{
    if (playing)
        playFrom(frame);
    else
        ask({frame}, 1);
}

void Player::step(long long frames)
{
    setPlaying(false);
    const std::size_t next = bar.getOrder().beside(asked, frames);
    ask({next, frames >= 0}, 1);
}

void Player::goToFirst() { goTo(bar.getOrder().first); }

void Player::goToLast() { goTo(bar.getOrder().last); }

void Player::toggleRangeStart()
{
    const PlayOrder order = bar.getOrder();
    bar.setRange(order.first == shown ? 0 : shown, std::max(order.last, shown));
}

void Player::toggleRangeEnd()
{
    const PlayOrder order = bar.getOrder();
    bar.setRange(std::min(order.first, shown), order.last == shown ? bar.getCount() - 1 : shown);
}

void Player::follow(const FrameStore::Plan& next, FrameStore::StageChange change)
{
    plan = next;
    store.follow(plan, ++plans, change);
    ask({asked}, 1);
}

bool Player::isUpToDate() const { return shown == asked; }

// A frame, and then those that a stride of so many steps leads to.
void Player::ask(PlayOrder::Place place, std::uint64_t stride)
{
    const PlayOrder order = bar.getOrder();
    std::vector<std::size_t> ahead;
    PlayOrder::Place next = place;
    for (std::uint64_t i = 0; i < AHEAD && !next.isAtEnd; ++i) {
        next = place.isForward || order.repeat != PlayOrder::ONCE
                   ? order.after(next, stride)
                   : PlayOrder::Place{order.beside(next.frame, -(long long)(order.every)), false};
        if (next.frame != place.frame)
            ahead.push_back(next.frame);
        else if (order.repeat != PlayOrder::TO_AND_FRO)
            break;
    }
    asked = place.frame;
    bar.setFrame(asked);
    store.want(asked, std::move(ahead));
}

void Player::tick()
{
    const bool isEveryFrame = bar.isEveryFrameShown();
    if (isEveryFrame && !isUpToDate())
        return;
    const double due = double(clock.nsecsElapsed()) * 1e-9 * bar.getFramesPerSecond();
    const auto dueSteps = std::uint64_t(std::floor(due));
    if (dueSteps == steps)
        return;
    const PlayOrder order = bar.getOrder();
    const std::uint64_t next = isEveryFrame ? steps + 1 : dueSteps;
    const PlayOrder::Place place = order.after(start, next);
    ask(place, next - steps);
    steps = next;
    if (isEveryFrame && dueSteps > next) // late: the next ones are due from now on
        beginAt(place);
    if (isAtEnd())
        setPlaying(false);
}

// Where there may be more frames it is no end.
bool Player::isAtEnd() const
{
    const PlayOrder order = bar.getOrder();
    return order.repeat == PlayOrder::ONCE && order.after({asked}, 0).isAtEnd &&
           !(bar.mayGrow() && order.last + 1 == bar.getCount());
}

void Player::beginAt(PlayOrder::Place place)
{
    start = place;
    steps = 0;
    clock.start();
}

void Player::follow()
{
    followState(store.getState());
    if (std::optional<FrameToPlay> next = store.take())
        show(std::move(*next));
}

void Player::followState(const FrameStore::State& state)
{
    std::vector<std::string> lines = state.notices;
    if (!state.error.empty())
        lines.push_back(state.error);
    if (lines.size() > std::exchange(toldBefore, lines.size()))
        emit opened(lines);
    if (!state.isOpened)
        return;
    const std::size_t before = bar.getCount();
    const bool wasAtLast = asked + 1 == before;
    // Those that are counted may be fewer yet than the one that was loaded first tells.
    bar.setCount(std::max(state.count, state.mayGrow ? shown + 1 : 1), state.mayGrow);
    if (playing && bar.getCount() != before) // the order is another one
        playFrom(asked);
    else if (asked >= bar.getCount() && !state.mayGrow) // of a file that became shorter
        ask({bar.getCount() - 1}, 1);
    else if (plan.options.series.follow && wasAtLast && bar.getCount() > before)
        ask({bar.getCount() - 1}, 1);
    if (state.stage && std::exchange(stage, state.stage) != state.stage) {
        emit staged(*stage);
        plan.colouring = scene.getColouring(); // in the range of all frames now
        follow(plan, FrameStore::SAME_STAGE);
    }
}

void Player::show(FrameToPlay next)
{
    if (next.plan != plans) { // its geometry is of another style
        ask({asked}, 1);
        return;
    }
    std::string error = next.error;
    if (next.data) {
        if (next.colouring && plan.options.ownRange)
            scene.setColouring(*next.colouring);
        Progress unwatched;
        error = updateScene(scene, *next.data, next.colouring ? &*next.colouring : nullptr,
                            std::move(next.geometry), unwatched);
    }
    if (next.data && error.empty())
        scene.setData(next.data);
    shown = next.frame;
    bar.showFrame(next.frame, next.time);
    if (!next.notices.empty())
        emit noticed(shown, next.notices);
    if (error.empty())
        emit frameShown(shown);
    else
        emit failed(shown, error);
}

} // namespace strandview
