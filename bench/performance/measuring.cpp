// SPDX-License-Identifier: GPL-3.0-or-later
#include "measuring.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double secondsIn(const timeval& time) { return double(time.tv_sec) + 1e-6 * double(time.tv_usec); }

std::string threeDigits(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, value < 100 ? "%.3g" : "%.0f", value);
    return text;
}

std::string row(const std::vector<std::string>& cells)
{
    std::string line = "|";
    for (const std::string& cell : cells)
        line += " " + cell + " |";
    return line + "\n";
}

} // namespace

double secondsOf(const std::function<void()>& function)
{
    const auto begin = Clock::now();
    function();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::vector<double> medianSeconds(const std::vector<std::function<void()>>& functions, int rounds)
{
    const double secondsPerRound = 0.005;
    std::vector<int> calls;
    for (const auto& function : functions) {
        function(); // the first call is another matter
        const double seconds = secondsOf(function);
        calls.push_back(int(std::clamp(secondsPerRound / seconds, 1.0, 1000.0)));
    }

    std::vector<std::function<std::optional<double>()>> measurements;
    for (std::size_t i = 0; i < functions.size(); ++i) {
        measurements.emplace_back([&functions, &calls, i] {
            const double all = secondsOf([&] {
                for (int call = 0; call < calls[i]; ++call)
                    functions[i]();
            });
            return all / calls[i];
        });
    }
    return mediansInTurn(measurements, rounds);
}

std::vector<double>
mediansInTurn(const std::vector<std::function<std::optional<double>()>>& measurements, int rounds)
{
    std::vector<std::vector<double>> found(measurements.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < measurements.size(); ++i) {
            const std::optional<double> value = measurements[i]();
            if (!value)
                return {};
            found[i].push_back(*value);
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& ofOne : found)
        medians.push_back(median(ofOne));
    return medians;
}

double countInstructions(const std::string& program, const std::vector<std::string>& arguments)
{
    std::string command =
        "valgrind --tool=callgrind --callgrind-out-file=/dev/null '" + program + "'";
    for (const std::string& argument : arguments)
        command += " '" + argument + "'";
    command += " 2>&1";

    double instructions = -1;
    if (FILE* const output = popen(command.c_str(), "r")) {
        char line[1024];
        while (std::fgets(line, sizeof line, output)) {
            const std::string text = line;
            const std::string name = "Collected : ";
            const std::size_t at = text.find(name);
            if (at != std::string::npos)
                instructions = std::atof(text.c_str() + at + name.size());
        }
        if (pclose(output) != 0)
            instructions = -1;
    }
    if (instructions < 0)
        std::cerr << "valgrind could not count the instructions of " << program << "\n";
    return instructions;
}

std::optional<Usage> usageOf(const std::vector<std::string>& command)
{
    const auto begin = Clock::now();
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> argv;
        for (const std::string& argument : command)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0)
        return {};
    return Usage{std::chrono::duration<double>(Clock::now() - begin).count(),
                 secondsIn(usage.ru_utime) + secondsIn(usage.ru_stime),
                 1024.0 * double(usage.ru_maxrss)};
}

std::optional<double> secondsOf(const std::vector<std::string>& command)
{
    const std::optional<Usage> usage = usageOf(command);
    return usage ? std::optional(usage->seconds) : std::nullopt;
}

std::optional<double> processorSecondsOf(const std::vector<std::string>& command)
{
    const std::optional<Usage> usage = usageOf(command);
    return usage ? std::optional(usage->processorSeconds) : std::nullopt;
}

Table::Table(const std::string& title, const std::string& introduction)
    : text("## " + title + "\n\n" + introduction + "\n\n" +
           row({"What", "Ours", "Peer or limit", "Ratio", "Goal", "Holds?"}) +
           "|---|---|---|---|---|---|\n")
{}

void Table::compare(const std::string& what, double ours, const std::string& peerName, double peer,
                    const std::string& unit, Goal goal, double limit)
{
    const double ratio = goal == Goal::AtMost ? ours / peer : peer / ours;
    const bool holds = goal == Goal::AtMost ? ratio <= limit : ratio >= limit;
    const std::string sign = goal == Goal::AtMost ? "≤ " : "≥ ";
    text +=
        row({what, threeDigits(ours) + " " + unit, peerName + ": " + threeDigits(peer) + " " + unit,
             threeDigits(ratio), goal == Goal::None ? "–" : sign + threeDigits(limit),
             goal == Goal::None ? "–"
             : holds            ? "yes"
                                : "**no**"});
}

void Table::rate(const std::string& what, double ours, const std::string& peerName, double peer,
                 const std::string& unit, double atLeast)
{
    const double ratio = ours / peer;
    text +=
        row({what, threeDigits(ours) + " " + unit, peerName + ": " + threeDigits(peer) + " " + unit,
             threeDigits(ratio), atLeast == 0 ? "–" : "≥ " + threeDigits(atLeast),
             atLeast == 0       ? "–"
             : ratio >= atLeast ? "yes"
                                : "**no**"});
}

void Table::limit(const std::string& what, double ours, const std::string& unit, double limit)
{
    compare(what, ours, "limit", limit, unit, Goal::AtMost, 1);
}

void Table::value(const std::string& what, double ours, const std::string& unit)
{
    text += row({what, threeDigits(ours) + " " + unit, "–", "–", "–", "–"});
}

void Table::missing(const std::string& what, const std::string& why)
{
    text += row({what, "not measured: " + why, "–", "–", "–", "–"});
}

void Table::print() const { std::cout << text << "\n"; }
