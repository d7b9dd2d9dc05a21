// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_OPTIONS_H
#define STRANDVIEW_APP_REQUEST_OPTIONS_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "request/BesideRequest.h"
#include "request/CameraRequest.h"
#include "request/FrameSlice.h"
#include "request/Measurement.h"
#include "request/PictureRequest.h"
#include "request/PlotRequest.h"
#include "request/Session.h"
#include "request/StyleRequest.h"

namespace strandview {

/// Which pictures of a series are rendered, and how.
struct SeriesRequest
{
    bool isOfFiles = false;           ///< each file is a frame; a folder is all that are in it
    std::optional<FrameSlice> frames; ///< all if left out
    Shard shard;
    bool overwrite = false;      ///< also pictures that are there
    bool listFrames = false;     ///< instead of rendering them
    bool align = false;          ///< each frame is superposed on the first
    int between = 0;             ///< so many more frames between each two
    bool ownPairs = false;       ///< each frame has the pairs of nucleotides that are found in it
    std::optional<int> turn;     ///< instead: so many pictures around one frame
    bool stamp = false;          ///< frame and time are written into the picture
    int jobs = 1;                ///< processes that draw; 0 for one per core
    double framesPerSecond = 25; ///< of a film, or of playing
    int cacheMegabytes = 256;    ///< of frames that a window keeps
    bool follow = false;         ///< a window goes on to the last frame of a file that grows
};

/// What the command line asks for. What is not given is chosen from the data.
struct Options : StyleRequest
{
    std::vector<std::string> files;
    /// What named them, and says what options do not; its frame is that of a window and of a
    /// single picture.
    std::optional<Session> session;
    std::vector<std::string> given; ///< every option of the command line, such as "--radius"
    /// Those that a picture depends on, with their values: the same text for the same look.
    std::string look;
    /// Those that say how files are read, as they were given.
    std::vector<std::string> reading;
    bool normalise = false;
    bool closed = false;      ///< every rod, ReadOptions::close
    int frameRows = 0;        ///< of tables, ReadOptions::frameRows
    std::optional<int> frame; ///< of a series, counted from 0; else the first, or all to export
    SeriesRequest series;

    /// What was found is told on standard output, for people or as JSON; nothing is shown.
    bool info = false;
    bool listScalars = false; ///< instead: those that colours, plots and tables offer
    bool asJson = false;
    /// Also those numbers of it, or of a table to export, that take long: of more than
    /// MOST_EDGE_PAIRS.
    bool allNumbers = false;

    /// The data to write instead of showing them.
    std::optional<std::string> exportFile;

    /// Curves to write instead.
    PlotRequest plot;

    /// The picture to write, or the pattern of names of a series' pictures; without one a window
    /// opens.
    std::optional<std::string> picture;
    int pictureWidth = 1200;
    int pictureHeight = 900;
    /// The same on paper, if it was given so.
    std::optional<PaperSize> paperSize;
    std::optional<int> dpi;   ///< pixels per inch that the picture's file tells
    int samples = 3;          ///< the picture is rendered this many times wider and higher
    bool transparent = false; ///< no background in the picture
    /// What is measured: pictures show it, a window keeps it, and --info tells it.
    std::vector<Measurement> measurements;

    /// The window, its size in pixels remembered from the last time unless given.
    std::optional<std::pair<int, int>> windowSize;
    /// A picture to take of the window, after so many seconds; then the program ends.
    std::optional<std::string> windowPicture;
    double windowPictureAfter = 0;
    BesideRequest beside;
    bool watch = false; ///< a window reads its files again whenever they change

    CameraRequest camera;
    bool printCamera = false; ///< to standard output, at the end

    bool saveDefaults = false; ///< the style is written for later starts instead
    bool hasDefaults =
        false; ///< such a file is there, which a command of what is shown leaves aside

    bool colourIfPossible = false; ///< what has no such scalar is shown all the same, with a notice

    PictureRequest getPictureSize() const
    {
        return {pictureWidth, pictureHeight, paperSize, dpi, samples, transparent};
    }
};

} // namespace strandview

#endif
