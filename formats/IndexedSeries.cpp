// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/IndexedSeries.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include <strandview/analysis/keptPairs.h>
#include <strandview/formats/Milestones.h>
#include <strandview/model/MemorySeries.h>

namespace strandview {

namespace {

/// Whether the readers keep the pairs that they find.
void setKeeping(bool keep, const ReadOptions& options)
{
    if (options.pairs)
        options.pairs->setKeeping(keep);
}

/// What the first frame alone is read with: of a file that is growing it may have no end yet.
ReadOptions ofStill(const ReadOptions& options)
{
    ReadOptions asked = options;
    asked.growing = false;
    return asked;
}

} // namespace

// ---- KnownFrames

KnownFrames::Look KnownFrames::look(const ReadOptions& options, ReadReport& report,
                                    std::size_t enough)
{
    bool isEnough = false, isStopped = false;
    const auto goOn = [&](double share) {
        isStopped = isStopped || (options.goOn && !options.goOn(share));
        return !isStopped;
    };
    ReadOptions asked = options, ofLast = options;
    asked.goOn = [&](double share) {
        isEnough = index.count() >= enough;
        return !isEnough && goOn(share);
    };
    // Or whoever goes on for less time than a frame takes would never come to the end.
    ofLast.goOn = options.atOnce || options.growing ? ReadOptions().goOn : goOn;
    const bool isAtEnd = index.lookOn(source, asked, report);
    if (index.count() > 1)
        known = std::max(known, index.count() - 1);
    if (!isAtEnd && (isEnough || isStopped || index.count() == 0))
        return isEnough ? Look::ENOUGH : isStopped ? Look::STOPPED : Look::NO_FRAME;
    ReadReport beforeFault; // where the last frame ends all the same
    const bool isFrame = lookAtLast(ofLast, isStopped, isAtEnd ? report : beforeFault);
    if (isStopped)
        return Look::STOPPED;
    if (isAtEnd)
        return isFrame ? Look::WHOLE : Look::NO_FRAME;
    return known > 0 ? Look::FAILED : Look::NO_FRAME;
}

KnownFrames::Look KnownFrames::lookForFirst(const ReadOptions& options, ReadReport& report)
{
    constexpr std::size_t two = 2; // where the second one begins the first one ends
    const Look found = look(options, report, options.atOnce ? two : ALL);
    return found == Look::FAILED && !options.atOnce ? Look::NO_FRAME : found;
}

/// Whether there is a frame; or report.error.
bool KnownFrames::lookAtLast(const ReadOptions& options, const bool& isStopped, ReadReport& report)
{
    if (known == index.count())
        return true;
    ReadReport ofLast;
    setKeeping(known == 0, options); // of the first one, which is not read again
    FrameRead read = index.read(known, source, options, ofLast);
    setKeeping(false, options);
    if (!read.configuration && (known == 0 || isStopped)) {
        report.error = ofLast.error;
        return false;
    }
    if (read.isCut)
        report.notices.push_back(
            ofLast.error + "; frame " + std::to_string(known) +
            (options.growing ? " is left out until it is whole" : ", the last one, is left out"));
    else if (known++ == 0)
        first = {std::move(read.configuration), std::move(ofLast.notices), {}};
    return true;
}

LoadedFrame KnownFrames::load(std::size_t frame, const ReadOptions& options)
{
    if (frame == 0 && first)
        return *std::exchange(first, std::nullopt);
    ReadReport report;
    FrameRead read = index.read(frame, source, options, report);
    if (read.isEmpty)
        return {Configuration(), std::move(report.notices), {}};
    return {std::move(read.configuration), std::move(report.notices), std::move(report.error)};
}

bool KnownFrames::isEmpty(std::size_t frame, const ReadOptions& options, ReadReport& report)
{
    if (frame == 0 && first)
        return false;
    ReadReport ofFrame;
    bool isStopped = false;
    ReadOptions asked = options;
    asked.goOn = [&](double share) {
        isStopped = isStopped || (options.goOn && !options.goOn(share));
        return !isStopped;
    };
    setKeeping(true, options); // of the first one that has some
    FrameRead read = index.read(frame, source, asked, ofFrame);
    setKeeping(false, options);
    if (read.isEmpty || isStopped)
        report.error = std::move(ofFrame.error);
    else if (frame == 0)
        first = {std::move(read.configuration), std::move(ofFrame.notices),
                 std::move(ofFrame.error)};
    return read.isEmpty;
}

// ---- IndexedSeries

IndexedSeries::IndexedSeries(std::unique_ptr<Source> textSource,
                             std::unique_ptr<TextFrames> textFrames,
                             std::unique_ptr<TextIndex> textIndex, const ReadOptions& readOptions)
    : source(std::move(textSource)),
      frames(std::move(textFrames)),
      index(std::move(textIndex)),
      known(*source, *index),
      options(readOptions)
{
    options.goOn = {};
}

std::unique_ptr<Series> IndexedSeries::open(std::unique_ptr<Source> source,
                                            std::unique_ptr<TextFrames> frames,
                                            const ReadOptions& options, ReadReport& report)
{
    auto index = std::make_unique<IndexedText>(*frames);
    return opened(std::unique_ptr<IndexedSeries>(new IndexedSeries(
                      std::move(source), std::move(frames), std::move(index), options)),
                  options, report);
}

std::unique_ptr<Series> IndexedSeries::open(std::unique_ptr<Source> source,
                                            std::unique_ptr<TextIndex> index,
                                            const ReadOptions& options, ReadReport& report)
{
    return opened(std::unique_ptr<IndexedSeries>(
                      new IndexedSeries(std::move(source), nullptr, std::move(index), options)),
                  options, report);
}

std::unique_ptr<Series> IndexedSeries::opened(std::unique_ptr<IndexedSeries> series,
                                              const ReadOptions& options, ReadReport& report)
{
    const bool isOpen = (!options.growing || series->source->canGrow(options, report)) &&
                        series->lookFirst(options, report) &&
                        (!series->index->mayBeEmpty() || series->requireShown(options, report));
    return isOpen ? std::move(series) : nullptr;
}

bool IndexedSeries::lookFirst(const ReadOptions& readOptions, ReadReport& report)
{
    using Look = KnownFrames::Look;
    const Look look = known.lookForFirst(readOptions, report);
    if (!KnownFrames::isFound(look))
        return false;
    mayHaveMore = look == Look::ENOUGH || (look == Look::WHOLE && options.growing);
    if (look == Look::WHOLE)
        sizeSeen = source->getSize();
    else if (look == Look::FAILED)
        end(report.error);
    report.error.clear();
    return true;
}

bool IndexedSeries::requireShown(const ReadOptions& asked, ReadReport& report)
{
    std::string ofFirst;
    for (std::size_t frame = 0; frame < known.count(); ++frame) {
        ReadReport ofFrame;
        if (!known.isEmpty(frame, asked, ofFrame)) {
            report.error = ofFrame.error; // it was stopped
            return report.error.empty();
        }
        if (frame == 0)
            ofFirst = ofFrame.error;
        const bool mayLook = frame + 1 == known.count() && mayHaveMore && !options.growing;
        if (mayLook && lookForMore(asked.goOn, &report.notices)) {
            report.error = source->getName() + ": " + READING_STOPPED;
            return false;
        }
    }
    report.error = ofFirst;
    return false;
}

std::optional<Configuration> IndexedSeries::readFirst(Source& source, TextFrames& frames,
                                                      const ReadOptions& options,
                                                      ReadReport& report)
{
    const ReadOptions asked = ofStill(options);
    // Where the second one begins the first one ends.
    IndexedText text(frames);
    if (!text.lookFor(2, source, asked, report))
        return {};
    report.frames = text.count() > 1 ? SEVERAL_FRAMES : 1;
    return text.read(0, source, asked, report).configuration;
}

std::optional<Configuration> IndexedSeries::readFirst(Source& source, TextIndex& index,
                                                      const ReadOptions& options,
                                                      ReadReport& report)
{
    const ReadOptions asked = ofStill(options);
    KnownFrames frames(source, index);
    ReadReport ofAll;
    using Look = KnownFrames::Look;
    const Look look = frames.lookForFirst(asked, ofAll);
    if (!KnownFrames::isFound(look)) {
        report.error = ofAll.error;
        return {};
    }
    report.frames = look == Look::WHOLE ? frames.count() : SEVERAL_FRAMES;
    if (index.mayBeEmpty() && frames.isEmpty(0, asked, report))
        return {};
    LoadedFrame first = frames.load(0, asked);
    report.error = std::move(first.error);
    if (options.growing) // whoever follows the others tells of them
        ofAll.notices.clear();
    for (const auto* notices : {&first.notices, &ofAll.notices})
        if (first.configuration)
            report.notices.insert(report.notices.end(), notices->begin(), notices->end());
    return std::move(first.configuration);
}

std::unique_ptr<Series> IndexedSeries::inMemoryIfAlone(std::unique_ptr<Series> series,
                                                       const ReadOptions& options,
                                                       ReadReport& report)
{
    const auto askForMore = [](double) { return false; };
    if (!series || series->count() > 1 || series->lookForMore(askForMore))
        return series;
    LoadedFrame only = series->load(0, options.goOn);
    report.error = std::move(only.error);
    if (!only.configuration)
        return nullptr;
    report.notices.insert(report.notices.end(), only.notices.begin(), only.notices.end());
    const std::optional<double> time = series->time(0);
    std::vector<Configuration> frames;
    frames.push_back(std::move(*only.configuration));
    return std::make_unique<MemorySeries>(std::move(frames), time ? std::vector<double>{*time}
                                                                  : std::vector<double>());
}

std::optional<double> IndexedSeries::time(std::size_t frame) const
{
    return frame < known.count() ? index->time(frame) : std::nullopt;
}

bool IndexedSeries::findMore(const GoOn& goOn, std::vector<std::string>& notices)
{
    ReadReport report;
    if (!mayHaveMore)
        return false;
    if (options.growing && !source->lookAgain(report))
        return end(report.error);
    if (options.growing && sizeSeen == source->getSize())
        return true;
    options.goOn = goOn;
    const KnownFrames::Look look = known.look(options, report);
    options.goOn = {};
    if (look == KnownFrames::Look::STOPPED)
        return true;
    if (look != KnownFrames::Look::WHOLE)
        return end(report.error);
    sizeSeen = source->getSize();
    if (options.growing) // a last frame that is cut is one that is being written
        return true;
    std::move(report.notices.begin(), report.notices.end(), std::back_inserter(notices));
    return mayHaveMore = false;
}

/// Always false.
bool IndexedSeries::end(const std::string& reason)
{
    fault = reason;
    return mayHaveMore = false;
}

LoadedFrame IndexedSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    options.goOn = goOn;
    LoadedFrame loaded =
        frame < known.count() ? known.load(frame, options) : LoadedFrame{std::nullopt, {}, fault};
    options.goOn = {};
    return loaded;
}

} // namespace strandview
