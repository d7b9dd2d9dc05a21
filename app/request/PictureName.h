// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_PICTURENAME_H
#define STRANDVIEW_APP_REQUEST_PICTURENAME_H

#include <cstddef>
#include <string>

namespace strandview {

/// The name of a picture, or of the pictures of a series: then the frame's number stands where
/// the text has "%d", or with zeros before it so that there are N digits at least, "%0Nd" with N
/// up to 19; "%%" is a per cent sign. A text with none of these is a name as it stands.
class PictureName
{
public:
    explicit PictureName(const std::string& nameOrPattern);

    /// How many places there are for the frame's number; more than one is no pattern.
    std::size_t countNumbers() const { return numbers; }
    bool isPattern() const { return numbers == 1; }

    /// Of the picture of a frame.
    std::string of(std::size_t frame) const;

private:
    std::string text, after; ///< around the number
    std::size_t numbers = 0;
    std::size_t digits = 1;
};

} // namespace strandview

#endif
