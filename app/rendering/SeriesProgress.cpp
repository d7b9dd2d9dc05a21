// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/SeriesProgress.h"

#include <cmath>
#include <cstdio>

#include <unistd.h>

#include "request/print.h"

namespace strandview {

namespace {

const std::chrono::seconds INTERVAL(5);

std::string inUnits(double seconds)
{
    const double minute = 60, hour = 3600;
    const auto text = [](double value, const char* unit) {
        return std::to_string(std::lround(value)) + unit;
    };
    if (seconds < 2 * minute)
        return text(seconds, " s");
    return seconds < 2 * hour ? text(seconds / minute, " min") : text(seconds / hour, " h");
}

std::string twoDigits(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, value < 10 ? "%.2g" : "%.0f", value);
    return text;
}

} // namespace

SeriesProgress::SeriesProgress(std::size_t countOfAll)
    : isTerminal(isatty(STDERR_FILENO) != 0), all(countOfAll)
{}

void SeriesProgress::add(bool isDrawn)
{
    ++done;
    drawn += isDrawn ? 1 : 0;
    const Clock::time_point now = Clock::now();
    const std::string state = text(std::chrono::duration<double>(now - start).count());
    line.show(state);
    if (!isTerminal && now - told >= INTERVAL) {
        tell(state);
        told = now;
    }
}

// What was there before takes no time, so that the time left is that of drawing.
std::string SeriesProgress::text(double seconds) const
{
    std::string text = std::to_string(done) + " of " + std::to_string(all) + " pictures";
    if (drawn == 0 || seconds <= 0)
        return text;
    const double rate = double(drawn) / seconds;
    return text + ", " + twoDigits(rate) + " per second, " + inUnits(double(all - done) / rate) +
           " left";
}

} // namespace strandview
