// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_STOPPINGAT_H
#define STRANDVIEW_TESTS_STOPPINGAT_H

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "scene/Progress.h"

namespace strandview {

/// Stops the work when it is told something the so-many-th time, and keeps what it was told.
class StoppingAt : public Progress
{
public:
    explicit StoppingAt(std::size_t stopCount = std::numeric_limits<std::size_t>::max())
        : patience(stopCount)
    {}
    void show(const std::string& text) override { texts.push_back(text); }
    void announce(const std::string& text) override { texts.push_back(text); }
    bool isStopped() const override { return texts.size() >= patience; }

    std::size_t patience;
    std::vector<std::string> texts;
};

} // namespace strandview

#endif
