// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/BesideReader.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <QThread>
#include <gtest/gtest.h>

#include "programWindows.h"

namespace strandview {

TEST(BesideReader, SeveralLeaveTheWindowHalfOfTheProcessors)
{
    initialiseProgramOnce("BesideReaderTest");
    std::mutex counting;
    int working = 0, most = 0;
    const FrameStore::Opener opener = [&](ReadReport& report, Progress& /*progress*/) {
        {
            const std::lock_guard<std::mutex> lock(counting);
            most = std::max(most, ++working);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const std::lock_guard<std::mutex> lock(counting);
        --working;
        report.error = "none";
        return nullptr;
    };
    const int processors = QThread::idealThreadCount(), count = processors + 2;
    int results = 0;
    std::vector<std::unique_ptr<BesideReader>> readers;
    for (int i = 0; i < count; ++i) {
        readers.push_back(std::make_unique<BesideReader>([&](BesideReader::Result& result) {
            EXPECT_EQ(result.error, "none");
            ++results;
        }));
        readers.back()->setSeries(opener);
        readers.back()->ask({});
    }
    EXPECT_TRUE(comesTo([&] { return results == count; }));
    EXPECT_LE(most, std::max(1, processors / 2));
    EXPECT_GT(most, 0);
}

} // namespace strandview
