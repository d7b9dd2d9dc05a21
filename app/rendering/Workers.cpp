// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/Workers.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace strandview {

namespace {

// So that the next one is read while the picture before is written.
const std::size_t DEALT_AHEAD = 2;
const int MOST_DEATHS = 2;

// What a worker says of a frame, before so many bytes of failure.
struct Answer
{
    std::size_t frame;
    FrameRenderer::Outcome::Kind kind;
    std::size_t failureSize;
};

std::size_t countOf(std::size_t jobs)
{
    return jobs > 0 ? jobs : std::max(1U, std::thread::hardware_concurrency());
}

// False at the end, or if it fails.
bool readAll(int file, void* to, std::size_t size)
{
    for (std::size_t got = 0; got < size;) {
        const ssize_t more = ::read(file, static_cast<char*>(to) + got, size - got);
        if (more == 0 || (more < 0 && errno != EINTR))
            return false;
        got += more > 0 ? std::size_t(more) : 0;
    }
    return true;
}

bool writeAll(int file, const void* from, std::size_t size)
{
    for (std::size_t put = 0; put < size;) {
        const ssize_t more = ::write(file, static_cast<const char*>(from) + put, size - put);
        if (more < 0 && errno != EINTR)
            return false;
        put += more > 0 ? std::size_t(more) : 0;
    }
    return true;
}

bool isThereMore(int file)
{
    pollfd waiting{file, POLLIN, 0};
    return ::poll(&waiting, 1, 0) > 0;
}

std::string endOf(int status)
{
    if (WIFSIGNALED(status))
        return std::string("ended by signal ") + std::to_string(WTERMSIG(status)) + " (" +
               ::strsignal(WTERMSIG(status)) + ")";
    return "ended with status " + std::to_string(WEXITSTATUS(status));
}

} // namespace

Workers::Workers(std::size_t jobs, MakeCode makeCodeOfWorker)
    : count(countOf(jobs)), makeCode(std::move(makeCodeOfWorker))
{
    std::signal(SIGPIPE, SIG_IGN); // a worker may be gone
}

// Those that still draw end after their picture.
Workers::~Workers()
{
    for (const Worker& worker : workers) {
        ::kill(worker.process, SIGTERM);
        ::close(worker.requests);
    }
    for (const Worker& worker : workers) {
        while (::waitpid(worker.process, nullptr, 0) < 0 && errno == EINTR) {
        }
        ::close(worker.answers);
    }
}

void Workers::draw(const std::vector<std::size_t>& frames, const Done& done,
                   const std::function<bool()>& goOn, const Say& say)
{
    left.assign(frames.begin(), frames.end());
    while (workers.size() < std::min(count, frames.size()))
        start();
    for (Worker& worker : workers)
        deal(worker);
    const auto isBusy = [](const Worker& worker) { return !worker.dealt.empty(); };
    while (goOn() && std::any_of(workers.begin(), workers.end(), isBusy)) {
        std::vector<pollfd> waiting;
        for (const Worker& worker : workers)
            waiting.push_back({worker.answers, POLLIN, 0});
        if (::poll(waiting.data(), waiting.size(), -1) < 0)
            continue; // a signal
        for (std::size_t i = waiting.size(); i-- > 0;) {
            if (waiting[i].revents != 0 && !hear(workers[i], done))
                bury(i, done, say);
        }
        for (Worker& worker : workers)
            deal(worker);
    }
}

void Workers::start()
{
    int requests[2], answers[2];
    if (::pipe2(requests, O_CLOEXEC) != 0 || ::pipe2(answers, O_CLOEXEC) != 0)
        throw std::bad_alloc(); // nothing else can be missing
    const pid_t process = ::fork();
    if (process < 0)
        throw std::bad_alloc();
    if (process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        for (const Worker& other : workers) { // whose end they must hear
            ::close(other.requests);
            ::close(other.answers);
        }
        ::close(requests[1]);
        ::close(answers[0]);
        work(requests[0], answers[1]);
    }
    ::close(requests[0]);
    ::close(answers[1]);
    workers.push_back({process, requests[1], answers[0], {}});
}

void Workers::deal(Worker& worker)
{
    while (!left.empty() && worker.dealt.size() < DEALT_AHEAD) {
        const std::size_t frame = left.front();
        left.pop_front();
        worker.dealt.push_back(frame);
        writeAll(worker.requests, &frame, sizeof frame); // else it is dead, which is heard
    }
}

// False if there is nothing more to hear from it, ever.
bool Workers::hear(Worker& worker, const Done& done)
{
    char bytes[4096];
    const ssize_t got = ::read(worker.answers, bytes, sizeof bytes);
    if (got <= 0)
        return got < 0 && errno == EINTR;
    worker.received.append(bytes, std::size_t(got));
    Answer answer;
    while (worker.received.size() >= sizeof answer) {
        std::memcpy(&answer, worker.received.data(), sizeof answer);
        if (worker.received.size() < sizeof answer + answer.failureSize)
            break;
        const std::string failure = worker.received.substr(sizeof answer, answer.failureSize);
        worker.received.erase(0, sizeof answer + answer.failureSize);
        worker.dealt.erase(std::find(worker.dealt.begin(), worker.dealt.end(), answer.frame));
        done(answer.frame, {answer.kind, failure});
    }
    return true;
}

// The frames of a dead worker come first again; the one that it was at may be the cause.
void Workers::bury(std::size_t index, const Done& done, const Say& say)
{
    const Worker dead = std::move(workers[index]);
    workers.erase(workers.begin() + std::ptrdiff_t(index));
    ::close(dead.requests);
    ::close(dead.answers);
    int status = 0;
    while (::waitpid(dead.process, &status, 0) < 0 && errno == EINTR) {
    }
    std::deque<std::size_t> again = dead.dealt;
    if (!again.empty() && ++deaths[again.front()] >= MOST_DEATHS) {
        done(again.front(), {Outcome::FAILED, "the process that drew it " + endOf(status) + ", " +
                                                  std::to_string(MOST_DEATHS) + " times"});
        again.pop_front();
    } else if (!again.empty()) {
        say("process " + std::to_string(dead.process) + " " + endOf(status) +
            ": its frames are dealt out again");
    }
    left.insert(left.begin(), again.begin(), again.end());
    if (!left.empty())
        start();
}

// In the worker, up to the end of its life: what the program keeps to tell or remove at its own end
// is no business of it.
void Workers::work(int requests, int answers) const
{
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    const std::string threads = std::to_string(std::max<std::size_t>(1, cores / count));
    ::setenv("LP_NUM_THREADS", threads.c_str(), 0); // unless the user has chosen
    const Done tell = [answers](std::size_t frame, const Outcome& outcome) {
        const Answer answer{frame, outcome.kind, outcome.failure.size()};
        std::string bytes(reinterpret_cast<const char*>(&answer), sizeof answer);
        bytes += outcome.failure;
        writeAll(answers, bytes.data(), bytes.size());
    };
    try {
        const Code code = makeCode();
        std::size_t frame = 0;
        while (readAll(requests, &frame, sizeof frame)) {
            code.render(frame, tell);
            if (!isThereMore(requests))
                code.finish(tell);
        }
        code.finish(tell);
    } catch (const std::bad_alloc&) {
        ::_exit(1);
    }
    ::_exit(0);
}

} // namespace strandview
