// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_RENDERING_FILM_H
#define STRANDVIEW_APP_RENDERING_FILM_H

#include <memory>
#include <string>

#include <QProcess>

#include "request/Colour.h"

class QImage;

namespace strandview {

/// Whether the ending of a name is that of a film.
bool isFilm(const std::string& name);

/// A film of pictures of one size, which ffmpeg makes: H.264 (".mp4"), VP9 (".webm") or GIF. It
/// appears complete or not at all; meanwhile it is beside its place, with ".part" behind its name.
class Film
{
public:
    /// The colour is that of the margin of a pixel that films of an odd size get.
    Film(const std::string& fileName, double framesPerSecond, const Colour& marginColour);
    /// Ends ffmpeg, and removes what was not finished.
    ~Film();
    Film(const Film&) = delete;
    Film& operator=(const Film&) = delete;

    /// One more picture. Like the other, one line that says what failed, or nothing.
    std::string add(const QImage& picture);
    /// After all of them.
    std::string finish();

private:
    /// Out of reach of a terminal's Ctrl+C, which is for us alone.
    class Encoder : public QProcess
    {
        void setupChildProcess() override;
    };

    std::string start(const QImage& first);
    std::string failure();

    const std::string name;
    const std::string part; ///< the name that it has until it is complete
    const double rate;
    const std::string margin;
    std::unique_ptr<Encoder> encoder; ///< from the first picture on
};

} // namespace strandview

#endif
