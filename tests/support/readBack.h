// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_READBACK_H
#define STRANDVIEW_TESTS_READBACK_H

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <strandview/formats/TextSink.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

namespace strandview {

/// A sink that keeps all that it is given in a text, which outlives it.
inline TextSink sinkInto(std::string& text)
{
    return [&text](std::string_view piece) {
        text += piece;
        return true;
    };
}

/// Takes whatever can be read of a folder, lets `writeAndRead(series)` make another series of each
/// that should be the same, or null of what is not meant, and calls `expectSame(frame, expected)`
/// for each frame. The names of those files.
template <typename WriteAndRead, typename ExpectSame>
std::set<std::string> readBackAll(const std::filesystem::path& folder, WriteAndRead writeAndRead,
                                  ExpectSame expectSame)
{
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string path = entry.path().string();
        ReadReport report;
        if (!entry.is_regular_file() || !readFile(path, {}, report))
            continue;
        SCOPED_TRACE(path);
        const std::unique_ptr<Series> series = openSeries({path}, {}, report);
        EXPECT_TRUE(series) << report.error;
        const std::unique_ptr<Series> back = series ? writeAndRead(*series) : nullptr;
        if (!back)
            continue;
        files.insert(entry.path().filename().string());
        EXPECT_EQ(back->count(), series->count());
        for (std::size_t i = 0; i < series->count(); ++i) {
            const LoadedFrame expected = series->load(i), frame = back->load(i);
            EXPECT_TRUE(expected.configuration && frame.configuration) << frame.error;
            if (expected.configuration && frame.configuration)
                expectSame(*frame.configuration, *expected.configuration);
            EXPECT_EQ(back->time(i), series->count() > 1 ? series->time(i) : std::nullopt);
        }
    }
    return files;
}

} // namespace strandview

#endif
