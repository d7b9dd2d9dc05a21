// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_INDEXEDSERIES_H
#define STRANDVIEW_FORMATS_INDEXEDSERIES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <strandview/formats/IndexedText.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Series.h>

namespace strandview {

/// The frames of a text that are known to be whole, as far as it was looked at: those behind which
/// another one begins, and the last one if it could be read.
class STRANDVIEW_FORMATS_EXPORT KnownFrames
{
public:
    /// Both of them are the caller's, and only these frames are to look on in the text.
    KnownFrames(Source& textSource, TextIndex& textIndex) : source(textSource), index(textIndex) {}

    enum class Look {
        WHOLE,    ///< to the end
        ENOUGH,   ///< so many frames have begun: it can go on
        STOPPED,  ///< by ReadOptions::goOn: so it can then
        NO_FRAME, ///< there is none, or the only one cannot be read
        FAILED    ///< behind the frames that were found
    };
    /// Looks on from where it stopped, to the end, or a little farther than to so many frames. The
    /// last one of several is left out with a notice if it is cut short. report.error unless it was
    /// WHOLE.
    Look look(const ReadOptions& options, ReadReport& report, std::size_t enough = ALL);

    /// Looks for the first frame: opened at once (ReadOptions::atOnce) no farther than that takes,
    /// and FAILED then tells of a fault behind it, which leaves it; else to the end, and any fault
    /// is NO_FRAME.
    Look lookForFirst(const ReadOptions& options, ReadReport& report);
    /// Whether that found it.
    static bool isFound(Look look) { return look != Look::STOPPED && look != Look::NO_FRAME; }

    std::size_t count() const { return known; }
    LoadedFrame load(std::size_t frame, const ReadOptions& options);

    /// Whether a frame has nothing to show: report.error says so. It says of another one that
    /// reading was stopped, and nothing else. The first frame is kept until it is loaded.
    bool isEmpty(std::size_t frame, const ReadOptions& options, ReadReport& report);

private:
    static constexpr std::size_t ALL = static_cast<std::size_t>(-1);

    bool lookAtLast(const ReadOptions& options, const bool& isStopped, ReadReport& report);

    Source& source;
    TextIndex& index;
    std::size_t known = 0;
    std::optional<LoadedFrame> first; ///< read when it was the last one
};

/// The frames of one text, found by one pass over it and read when they are loaded: of a file
/// nothing else is kept.
///
/// A last frame that is cut short is left out, with a notice; an only one is refused. Where frames
/// may be empty (TextIndex::mayBeEmpty) they are configurations with nothing in them; if all are
/// the series is refused, for which they are read from the first one on up to one that is not.
///
/// Opened at once (ReadOptions::atOnce) the text is looked at in lookForMore(), and so is one that
/// grows; Series.h and ReadReport.h tell what comes of that.
class STRANDVIEW_FORMATS_EXPORT IndexedSeries : public Series
{
public:
    /// Null and report.error if that fails.
    static std::unique_ptr<Series> open(std::unique_ptr<Source> source,
                                        std::unique_ptr<TextFrames> frames,
                                        const ReadOptions& options, ReadReport& report);
    static std::unique_ptr<Series> open(std::unique_ptr<Source> source,
                                        std::unique_ptr<TextIndex> index,
                                        const ReadOptions& options, ReadReport& report);

    /// The first frame alone, without a look at the others.
    static std::optional<Configuration> readFirst(Source& source, TextFrames& frames,
                                                  const ReadOptions& options, ReadReport& report);

    /// The first frame, and in report.frames how many there are: counted, unless
    /// ReadOptions::atOnce.
    static std::optional<Configuration> readFirst(Source& source, TextIndex& index,
                                                  const ReadOptions& options, ReadReport& report);

    /// A series of one frame that gets no more of them in memory, loaded now; any other as it is.
    /// Null and report.error if that frame cannot be loaded.
    static std::unique_ptr<Series> inMemoryIfAlone(std::unique_ptr<Series> series,
                                                   const ReadOptions& options, ReadReport& report);

    std::size_t count() const override { return known.count() + (fault.empty() ? 0 : 1); }
    std::optional<double> time(std::size_t frame) const override;

private:
    IndexedSeries(std::unique_ptr<Source> textSource, std::unique_ptr<TextFrames> textFrames,
                  std::unique_ptr<TextIndex> textIndex, const ReadOptions& readOptions);
    static std::unique_ptr<Series> opened(std::unique_ptr<IndexedSeries> series,
                                          const ReadOptions& options, ReadReport& report);
    bool lookFirst(const ReadOptions& options, ReadReport& report);
    bool requireShown(const ReadOptions& options, ReadReport& report);
    bool end(const std::string& reason);
    bool findMore(const GoOn& goOn, std::vector<std::string>& notices) override;
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::unique_ptr<Source> source;
    std::unique_ptr<TextFrames> frames; ///< of the index, if it has any
    std::unique_ptr<TextIndex> index;
    KnownFrames known;
    ReadOptions options;
    bool mayHaveMore = false;
    std::optional<std::uint64_t> sizeSeen; ///< of a file that grows, up to its end
    std::string fault;                     ///< of what is behind the known frames
};

} // namespace strandview

#endif
