// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/Colour.h"

#include <QColor>

namespace strandview {

std::optional<Colour> parseColour(const std::string& text)
{
    const QColor colour(QString::fromStdString(text));
    if (!colour.isValid() || colour.alpha() != 255)
        return std::nullopt;
    return Colour{float(colour.redF()), float(colour.greenF()), float(colour.blueF())};
}

} // namespace strandview
