// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_WRITTENPIPE_H
#define STRANDVIEW_TESTS_WRITTENPIPE_H

#include <chrono>
#include <fstream>
#include <future>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace strandview {

/// A named pipe that a thread writes to. Whoever opens it reads it to its end.
class WrittenPipe
{
public:
    /// The rest, if there is any, is written when letGo() says so, and the pipe is open until then.
    WrittenPipe(const std::string& path, const std::string& beginning, const std::string& rest = "")
    {
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        writer = std::thread([this, path, beginning, rest] {
            std::ofstream pipe(path, std::ios::binary);
            pipe << beginning << std::flush;
            if (!rest.empty())
                wait();
            pipe << rest;
        });
    }
    ~WrittenPipe() { writer.join(); }
    WrittenPipe(const WrittenPipe&) = delete;
    WrittenPipe& operator=(const WrittenPipe&) = delete;

    void letGo() { lettingGo.set_value(); }

private:
    void wait()
    {
        // Who waits for the end without it fails, and not for ever.
        const std::chrono::seconds patience(20);
        EXPECT_EQ(isLetGo.wait_for(patience), std::future_status::ready)
            << "the end was waited for";
    }

    std::promise<void> lettingGo;
    const std::future<void> isLetGo = lettingGo.get_future();
    std::thread writer;
};

} // namespace strandview

#endif
