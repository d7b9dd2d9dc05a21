// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/writeCsv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <strandview/analysis/scalars.h>
#include <strandview/analysis/tracks.h>
#include <strandview/formats/FrameLoader.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>
#include <strandview/formats/timeColumns.h>

namespace strandview {

namespace {

using Values = std::vector<double>;

constexpr char INDEX[] = "index";
constexpr char ARCLENGTH[] = "arclength";

bool isOneOf(const std::string& name, std::initializer_list<const char*> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool hasFrames(const Track& track) { return !track.rod || track.rod->hasFrames; }

bool isNameOfTime(const std::string& name) { return timeNameOf(name) != TimeName::NONE; }

/// Whether a reader would take rows of one value for a frame: it changes, and no value but the last
/// stands in one row alone.
bool tellsFrames(const Configuration& configuration, const std::string& name)
{
    std::vector<std::pair<double, std::size_t>> runs;
    for (const Rod& rod : configuration.rods)
        for (const Scalar& scalar : rod.scalars)
            for (std::size_t i = 0; scalar.name == name && i < scalar.values.size(); ++i) {
                const double value = scalar.values[i];
                if (!std::isfinite(value))
                    continue;
                if (runs.empty() || runs.back().first != value)
                    runs.push_back({value, 0});
                ++runs.back().second;
            }
    return runs.size() > 1 && std::all_of(runs.begin(), runs.end() - 1,
                                          [](const auto& run) { return run.second > 1; });
}

/// What all lines have together. A line may lack some of them.
class Columns
{
public:
    struct Column
    {
        std::string scalar; ///< its name in the data
        std::string header;
    };

    explicit Columns(const CsvOptions& csvOptions) : options(csvOptions) {}

    /// Those of a frame that will be written.
    void add(const Configuration& configuration)
    {
        const std::vector<Track> tracks = tracksOf(configuration, options.angstrom);
        edgePairs += edgePairsOfScalars(tracks);
        const std::size_t pointsBefore = points;
        for (const Track& track : tracks) {
            points += track.points.size();
            haveFrames = haveFrames || hasFrames(track);
            haveBases = haveBases || !basesOf(track).empty();
            for (const std::string& name : scalarNames(track))
                addScalar(track, name);
        }
        if (points == pointsBefore)
            emptyFrames.push_back(frames);
        ++frames;
        for (const Column& column : scalars)
            if (isNameOfTime(column.scalar) && tellsFrames(configuration, column.scalar))
                framesTold.insert(column.scalar);
        others[0].count += configuration.markers.size();
        others[1].count += configuration.frames.size();
        others[2].count += configuration.arrows.size();
        others[3].count += configuration.loneBases.size();
    }

    /// Once all are known. False, and report.error, if there is no line.
    bool finish(bool areOfFrames, bool areTimed, ReadReport& report)
    {
        if (points == 0) {
            report.error = "CSV: found no rod, birod or DNA, expected at least one";
            return false;
        }
        haveFrameNumber = areOfFrames;
        haveTime = areTimed;
        leaveOutSlow(report);
        tellEmptyFrames(report);
        for (Column& column : scalars)
            rename(column, report);
        for (const Others& other : others)
            if (other.count > 0)
                report.notices.push_back("CSV: " + counted(other.count, other.noun) + other.behind +
                                         " left out: a table holds rods, birods and DNA");
        return true;
    }

    std::vector<Column> scalars;
    bool haveFrames = false, haveBases = false, haveFrameNumber = false, haveTime = false;
    bool areSlowLeftOut = false; ///< what takes long (isSlow()) is not computed

private:
    void addScalar(const Track& track, const std::string& name)
    {
        if (isOneOf(name, {INDEX, ARCLENGTH}))
            return;
        if (known.insert(name).second)
            scalars.push_back({name, name});
        if (isSlow(track, name))
            pointsOfSlow[name] += track.points.size();
        else if (isGiven(track, name))
            given.insert(name);
    }

    /// A column that some lines bring with them stays, for those.
    void leaveOutSlow(ReadReport& report)
    {
        areSlowLeftOut = edgePairs > options.mostEdgePairs;
        for (auto column = scalars.begin(); areSlowLeftOut && column != scalars.end();) {
            const auto slow = pointsOfSlow.find(column->scalar);
            const bool isKept = given.count(column->scalar) > 0;
            if (slow != pointsOfSlow.end())
                report.notices.push_back("CSV: " + slow->first + " left out" +
                                         (isKept ? " of what does not bring its own" : "") +
                                         ": of " + counted(slow->second, "point") +
                                         " it takes long; --all-numbers writes it all the same");
            column = slow == pointsOfSlow.end() || isKept ? column + 1 : scalars.erase(column);
        }
    }

    /// Of a frame without rows nothing is written but its lack.
    void tellEmptyFrames(ReadReport& report) const
    {
        if (emptyFrames.empty())
            return;
        const std::string first = "frame " + std::to_string(emptyFrames.front());
        report.notices.push_back(
            "CSV: " +
            (emptyFrames.size() == 1
                 ? first
                 : counted(emptyFrames.size(), "frame") + ", the first of them " + first + ",") +
            " left out: found no rod, birod or DNA");
    }

    /// A name that is read back as it is, as that of a scalar.
    void rename(Column& column, ReadReport& report)
    {
        for (char& c : column.header)
            if (c == '"' || c == '#' || (c >= 0 && c < ' '))
                c = '_';
        column.header = std::string(trimmed(column.header));
        while (isTaken(column.header))
            column.header += "_";
        headers.insert(column.header);
        if (column.header != column.scalar)
            report.notices.push_back("CSV: scalar " + inQuotes(column.scalar) + " is written as " +
                                     inQuotes(column.header));
    }

    bool isTaken(const std::string& name) const
    {
        const std::string lower = inSmallLetters(withoutUnit(name));
        const bool isGeometry = isOneOf(lower, {"x", "y", "z", "qx", "qy", "qz", "qw", "base"});
        const bool isDirector = !haveFrames && lower.size() == 3 && lower[0] == 'd' &&
                                lower[1] >= '1' && lower[1] <= '3' && lower[2] >= 'x' &&
                                lower[2] <= 'z';
        const bool isTime = isNameOfTime(name) && (haveFrameNumber || framesTold.count(name) > 0);
        return name.empty() || isNumber(name) || isGeometry || isDirector || isTime ||
               isOneOf(name, {INDEX, ARCLENGTH}) || headers.count(name) > 0;
    }

    const CsvOptions& options;
    std::set<std::string> known;      ///< scalars
    std::set<std::string> framesTold; ///< those that a reader would take for the time of frames
    std::set<std::string> headers;    ///< of them
    std::set<std::string> given;      ///< by some of the lines
    std::map<std::string, std::size_t> pointsOfSlow; ///< that they would be computed for
    double edgePairs = 0;
    std::size_t points = 0;
    std::size_t frames = 0;
    std::vector<std::size_t> emptyFrames;
    struct Others
    {
        const char* noun;
        const char* behind = "";
        std::size_t count = 0;
    };
    std::array<Others, 4> others = {
        {{"marker"}, {"frame glyph"}, {"arrow"}, {"base", " in no pair"}}};
};

class Csv
{
public:
    Csv(const TextSink& sink, const Columns& allColumns, const CsvOptions& csvOptions)
        : text(sink), columns(allColumns), options(csvOptions)
    {
        std::string names = columns.haveFrameNumber ? "frame," : "";
        names += columns.haveTime ? "time," : "";
        names += std::string(INDEX) + "," + ARCLENGTH + ",x,y,z";
        names += columns.haveFrames ? ",qx,qy,qz,qw" : "";
        names += columns.haveBases ? ",base" : "";
        for (const Columns::Column& column : columns.scalars)
            names += "," + quoted(column.header);
        text.put(names + "\n");
    }

    /// The lines of a frame; of the time, if there are times.
    void put(const Configuration& configuration, std::size_t frame, double time)
    {
        begin = columns.haveFrameNumber ? std::to_string(frame) + "," : "";
        begin += columns.haveTime ? formatted(time) + "," : "";
        bool isFirst = true;
        for (const Track& track : tracksOf(configuration, options.angstrom)) {
            if (!text.isTaken())
                return;
            if (!isEmpty)
                text.put(isFirst ? "\n\n" : "\n");
            isFirst = isEmpty = false;
            put(track);
        }
    }

    bool finish() { return text.flush(); }

private:
    /// Only where the name needs it.
    static std::string quoted(const std::string& name)
    {
        return name.find_first_of(", ;\t") == std::string::npos ? name : "\"" + name + "\"";
    }

    void put(const Track& track)
    {
        text.put("# " + onOneLine(titleOf(track)) + "\n");
        const std::optional<Values> index = findScalar(track, INDEX);
        const std::optional<Values> arclength = findScalar(track, ARCLENGTH);
        const std::string bases = basesOf(track);
        std::vector<std::optional<Values>> scalars;
        for (const Columns::Column& column : columns.scalars)
            scalars.push_back(columns.areSlowLeftOut && isSlow(track, column.scalar)
                                  ? std::nullopt
                                  : findScalar(track, column.scalar));
        for (std::size_t row = 0; row < track.points.size() && text.isTaken(); ++row) {
            text.put(begin);
            if (index)
                putValue(track, row, (*index)[row]);
            else
                text.put(std::to_string(row));
            text.put(",");
            putValue(track, row, arclength ? (*arclength)[row] : NAN);
            putPlace(track, row);
            if (columns.haveBases)
                text.put(bases.empty() ? "," : std::string(",") + bases[row]);
            for (const std::optional<Values>& values : scalars) {
                text.put(",");
                if (values)
                    putValue(track, row, (*values)[row]);
            }
            text.put("\n");
        }
    }

    void putPlace(const Track& track, std::size_t row)
    {
        for (int i = 0; i < 3; ++i) {
            text.put(",");
            text.putDigits(track.points[row][i]);
        }
        for (int i = 0; i < 4 && columns.haveFrames; ++i) {
            text.put(",");
            if (hasFrames(track))
                text.putDigits(track.rotations[row][i]);
        }
    }

    // Behind the last pair of an open DNA there is no step.
    void putValue(const Track& track, std::size_t row, double value)
    {
        const bool isLastPair = track.kind == Track::Kind::DNA_PAIRS && !track.isClosed &&
                                row > 0 && row + 1 == track.points.size();
        if (std::isfinite(value))
            text.putDigits(value);
        else if (!isLastPair)
            text.put("nan");
    }

    PieceText text;
    const Columns& columns;
    const CsvOptions& options;
    std::string begin; ///< of each row of this frame
    bool isEmpty = true;
};

} // namespace

bool writeCsv(const Configuration& configuration, const TextSink& sink, const CsvOptions& options,
              ReadReport& report)
{
    Columns columns(options);
    columns.add(configuration);
    if (!columns.finish(false, false, report))
        return false;
    Csv csv(sink, columns, options);
    csv.put(configuration, 0, 0);
    return csv.finish();
}

bool writeCsv(Series& series, const TextSink& sink, const CsvOptions& options,
              const Series::GoOn& goOn, ReadReport& report)
{
    report.error.clear();
    const bool areSeveral = series.count() > 1;
    double done = 0; // of both rounds
    const Series::GoOn goOnInRound = [&](double share) {
        return !goOn || goOn(areSeveral ? done + share / 2 : share);
    };
    FrameLoader loader(series, goOnInRound, report);
    if (!areSeveral) {
        const std::optional<Configuration> only = loader.load(0);
        return only && writeCsv(*only, sink, options, report);
    }
    Columns columns(options);
    for (std::size_t frame = 0; frame < series.count(); ++frame) {
        const std::optional<Configuration> loaded = loader.load(frame);
        if (!loaded)
            return false;
        columns.add(*loaded);
    }
    const bool areTimed = areTimesKnown(series);
    if (!columns.finish(true, areTimed, report))
        return false;
    done = 0.5;
    Csv csv(sink, columns, options);
    for (std::size_t frame = 0; frame < series.count(); ++frame) {
        const std::optional<Configuration> loaded = loader.load(frame);
        if (!loaded)
            return false;
        csv.put(*loaded, frame, series.time(frame).value_or(0));
    }
    return csv.finish();
}

} // namespace strandview
