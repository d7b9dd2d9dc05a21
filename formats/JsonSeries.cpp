// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/JsonSeries.h>

#include <string_view>
#include <utility>

#include <strandview/formats/IndexedSeries.h>
#include <strandview/formats/JsonIndex.h>
#include <strandview/formats/JsonReader.h>
#include <strandview/formats/wholeText.h>

namespace strandview {

std::optional<Configuration> readJson(Source& source, const ReadOptions& options,
                                      ReadReport& report)
{
    report.error.clear();
    if (const auto index = JsonIndex::of(source, options, report))
        return IndexedSeries::readFirst(source, *index, options, report);
    const auto text = report.error.empty() ? readWholeText(source, options, report) : std::nullopt;
    return text ? readJson(*text, source.getName(), options, report) : std::nullopt;
}

std::unique_ptr<Series> openJson(std::unique_ptr<Source> source, const ReadOptions& options,
                                 ReadReport& report)
{
    report.error.clear();
    if (auto index = JsonIndex::of(*source, options, report))
        return IndexedSeries::inMemoryIfAlone(
            IndexedSeries::open(std::move(source), std::move(index), options, report), options,
            report);
    const auto text = report.error.empty() ? readWholeText(*source, options, report) : std::nullopt;
    return text ? openJson(*text, source->getName(), options, report) : nullptr;
}

} // namespace strandview
