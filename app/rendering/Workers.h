// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_RENDERING_WORKERS_H
#define STRANDVIEW_APP_RENDERING_WORKERS_H

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

#include "rendering/FrameRenderer.h"

namespace strandview {

/// Processes of this machine that draw frames, each with its share of the software rasteriser's
/// threads. They are forks of this one: nothing of OpenGL may have been used, and no thread may
/// run, before.
///
/// Frames are dealt out as workers are free. A worker that dies is replaced, and its frames are
/// dealt out again; one that kills a second worker has failed.
class Workers
{
public:
    using Outcome = FrameRenderer::Outcome;
    using Done = FrameRenderer::Done;
    using Say = std::function<void(const std::string& line)>;

    /// What a worker does: draws a frame, of which it may tell later, and waits for what is not
    /// told yet.
    struct Code
    {
        std::function<void(std::size_t frame, const Done& done)> render;
        std::function<void(const Done& done)> finish;
    };
    /// Called in each worker, once.
    using MakeCode = std::function<Code()>;

    /// One for every core if `jobs` is 0.
    Workers(std::size_t jobs, MakeCode makeCodeOfWorker);
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// Draws the frames. Each is told once, unless `goOn` says to stop, which is asked whenever
    /// something comes or a signal arrives. What happens to workers is told to `say`.
    void draw(const std::vector<std::size_t>& frames, const Done& done,
              const std::function<bool()>& goOn, const Say& say);

private:
    struct Worker
    {
        pid_t process;
        int requests;                  ///< to it
        int answers;                   ///< from it
        std::deque<std::size_t> dealt; ///< what it has not answered yet
        std::string received = {};
    };

    void start();
    void deal(Worker& worker);
    bool hear(Worker& worker, const Done& done);
    void bury(std::size_t index, const Done& done, const Say& say);
    [[noreturn]] void work(int requests, int answers) const;

    const std::size_t count;
    const MakeCode makeCode;
    std::vector<Worker> workers;
    std::deque<std::size_t> left;
    std::map<std::size_t, int> deaths; ///< of workers that were drawing a frame
};

} // namespace strandview

#endif
