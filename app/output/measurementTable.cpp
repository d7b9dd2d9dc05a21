// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/measurementTable.h"

#include <cmath>

#include <strandview/formats/text/wording.h>

#include "output/OutputFile.h"

namespace strandview {

namespace {

// Between quotation marks where it has to be, on one line.
std::string fieldOf(const std::string& text)
{
    const std::string line = onOneLine(text);
    if (line.find_first_of(",\"") == std::string::npos)
        return line;
    std::string quoted = "\"";
    for (const char c : line)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + "\"";
}

std::string fieldOf(const std::optional<double>& value)
{
    if (!value)
        return "";
    return std::isfinite(*value) ? formatted(*value) : "nan";
}

} // namespace

std::string measurementTable(const std::vector<Measurement>& measurements,
                             const std::vector<std::string>& units,
                             const std::vector<MeasuredFrame>& frames)
{
    std::string table = "frame";
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        const std::string& name = measurements[i].name;
        table += "," + fieldOf((name.empty() ? "" : name + ": ") + textOf(measurements[i]) + " [" +
                               units[i] + "]");
    }
    table += "\n";
    for (const MeasuredFrame& frame : frames) {
        table += std::to_string(frame.number);
        for (const std::optional<double>& value : frame.values)
            table += "," + fieldOf(value);
        table += "\n";
    }
    return table;
}

std::string writeMeasurementTable(const std::string& table, const std::string& fileName)
{
    return writeFile(fileName, table);
}

} // namespace strandview
