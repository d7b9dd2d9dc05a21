// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/Workers.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Outcome = FrameRenderer::Outcome;

std::vector<std::size_t> upTo(std::size_t count)
{
    std::vector<std::size_t> frames;
    for (std::size_t i = 0; i < count; ++i)
        frames.push_back(i);
    return frames;
}

// Lets workers do something else than draw.
class WorkersTest : public testing::Test
{
protected:
    using Deed = std::function<Outcome(std::size_t frame)>;

    void draw(std::size_t jobs, std::size_t frames, const Deed& deed)
    {
        Workers workers(jobs, [&deed]() -> Workers::Code {
            return {
                [&deed](std::size_t frame, const Workers::Done& done) { done(frame, deed(frame)); },
                [](const Workers::Done&) {}};
        });
        workers.draw(
            upTo(frames),
            [this](std::size_t frame, const Outcome& outcome) {
                ++told[frame];
                if (outcome.kind == Outcome::FAILED)
                    failures[frame] = outcome.failure;
                said.insert(outcome.failure);
            },
            [this] { return goOn(); }, [this](const std::string& line) { lines.push_back(line); });
    }

    void expectEachOnce(std::size_t frames) const
    {
        EXPECT_THAT(told, SizeIs(frames));
        for (const auto& [frame, times] : told)
            EXPECT_EQ(times, 1) << frame;
    }

    // Whether the frame is met for the first time, by any worker.
    bool isFirst(std::size_t frame) const
    {
        const std::string mark = folder.path(std::to_string(frame));
        const bool isNew = !std::filesystem::exists(mark);
        std::ofstream(mark) << ' ';
        return isNew;
    }

    const TemporaryFolder folder;
    std::function<bool()> goOn = [] { return true; };
    std::map<std::size_t, int> told;
    std::map<std::size_t, std::string> failures;
    std::set<std::string> said;
    std::vector<std::string> lines;
};

} // namespace

TEST_F(WorkersTest, EveryFrameIsToldOnceHoweverManyThereAre)
{
    for (const std::size_t jobs : {1, 2, 5}) {
        for (const std::size_t frames : {1, 4, 300}) {
            told.clear();
            draw(jobs, frames, [](std::size_t) { return Outcome{Outcome::WRITTEN}; });
            expectEachOnce(frames);
        }
    }
    EXPECT_THAT(failures, IsEmpty());
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(WorkersTest, AreProcessesOfTheirOwnThatShareTheWork)
{
    draw(3, 40, [](std::size_t) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return Outcome{Outcome::WAS_THERE, std::to_string(getpid())};
    });
    EXPECT_THAT(said, SizeIs(3));
    EXPECT_EQ(said.count(std::to_string(getpid())), 0U);
}

TEST_F(WorkersTest, TellFailuresOfAnyLength)
{
    draw(2, 3, [](std::size_t frame) {
        return Outcome{frame == 1 ? Outcome::FAILED : Outcome::WRITTEN,
                       frame == 1 ? std::string(100'000, 'x') : ""};
    });
    EXPECT_THAT(failures, ElementsAre(testing::Pair(1, std::string(100'000, 'x'))));
}

TEST_F(WorkersTest, TheFramesOfOneThatDiesAreDealtOutAgain)
{
    draw(2, 30, [this](std::size_t frame) {
        if (frame % 10 == 3 && isFirst(frame))
            std::raise(SIGKILL);
        return Outcome{Outcome::WRITTEN};
    });
    expectEachOnce(30);
    EXPECT_THAT(failures, IsEmpty());
    EXPECT_THAT(lines, SizeIs(3));
    EXPECT_THAT(lines[0], HasSubstr("ended by signal 9 (Killed): its frames are dealt out again"));
}

TEST_F(WorkersTest, AFrameThatKillsTwiceHasFailedAndTheOthersAreDrawn)
{
    draw(2, 10, [](std::size_t frame) {
        if (frame == 4)
            std::_Exit(7);
        return Outcome{Outcome::WRITTEN};
    });
    expectEachOnce(10);
    EXPECT_THAT(failures, ElementsAre(testing::Pair(
                              4, "the process that drew it ended with status 7, 2 times")));
}

TEST_F(WorkersTest, CanBeStoppedAndLeaveNoProcessBehind)
{
    int asked = 0;
    goOn = [&asked] { return ++asked < 5; };
    draw(2, 1000, [](std::size_t) { return Outcome{Outcome::WRITTEN}; });
    EXPECT_LT(told.size(), 1000U);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
}

// The cores are shared, unless the user said how many threads a process has.
TEST_F(WorkersTest, EachHasItsShareOfTheRasterisersThreads)
{
    const auto threads = [](std::size_t) {
        const char* const set = std::getenv("LP_NUM_THREADS");
        return Outcome{Outcome::WRITTEN, set ? set : "none"};
    };
    unsetenv("LP_NUM_THREADS");
    draw(1000, 1, threads);
    EXPECT_THAT(said, ElementsAre("1"));
    said.clear();
    setenv("LP_NUM_THREADS", "7", 1);
    draw(2, 1, threads);
    unsetenv("LP_NUM_THREADS");
    EXPECT_THAT(said, ElementsAre("7"));
}

} // namespace strandview
