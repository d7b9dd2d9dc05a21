// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_BENCH_MEASURING_H
#define STRANDVIEW_BENCH_MEASURING_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

// What the programs behind script/bench share. Each measures one section of
// docs/performance.md and prints it. Other work on the machine disturbs a time, so times
// are only compared with what was measured in turn with them, and instructions are
// counted.

/// The seconds of one call.
double secondsOf(const std::function<void()>& function);

/// The median of at least one value.
double median(std::vector<double> values);

/// The median seconds of one call of each function. They are called in turn, as often per
/// round as makes a round of one function some milliseconds long.
std::vector<double> medianSeconds(const std::vector<std::function<void()>>& functions,
                                  int rounds = 15);

/// The medians of what is measured in turn; none if one of the measurements is nothing.
std::vector<double>
mediansInTurn(const std::vector<std::function<std::optional<double>()>>& measurements, int rounds);

/// The instructions that a run of the program takes, as callgrind counts them. Negative,
/// with a line on standard error, if valgrind cannot run it.
double countInstructions(const std::string& program, const std::vector<std::string>& arguments);

/// What a run of a program takes, those that it waits for included.
struct Usage
{
    double seconds;          ///< that pass
    double processorSeconds; ///< the program's own and the system's, of all threads
    double peakMemory;       ///< bytes, of the largest process
};

/// Runs a program, found as a shell does, without its output. Nothing if it fails. A process counts
/// the memory that it was forked with, so call it before anything large is here.
std::optional<Usage> usageOf(const std::vector<std::string>& command);
std::optional<double> secondsOf(const std::vector<std::string>& command);
std::optional<double> processorSecondsOf(const std::vector<std::string>& command);

/// A section: a Markdown table of what is measured, ours, the peer or the limit beside it,
/// their ratio, the goal and whether it holds.
class Table
{
public:
    enum class Goal { AtLeast, AtMost, None };

    Table(const std::string& title, const std::string& introduction);

    /// A value and what it is compared with, in the same unit, and a goal for peer / ours
    /// (AtLeast: times faster) or ours / peer (AtMost: times as much).
    void compare(const std::string& what, double ours, const std::string& peerName, double peer,
                 const std::string& unit, Goal goal, double limit);
    /// A rate, of which more is better, beside another: times as fast; a goal of 0 is none.
    void rate(const std::string& what, double ours, const std::string& peerName, double peer,
              const std::string& unit, double atLeast);
    /// A value with a limit of its own, which is also its peer.
    void limit(const std::string& what, double ours, const std::string& unit, double limit);
    /// A value that stands for itself.
    void value(const std::string& what, double ours, const std::string& unit);
    /// What could not be measured, and why.
    void missing(const std::string& what, const std::string& why);

    void print() const;

private:
    std::string text;
};

#endif
