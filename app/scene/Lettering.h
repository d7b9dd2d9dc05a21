// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_LETTERING_H
#define STRANDVIEW_APP_SCENE_LETTERING_H

#include <memory>
#include <string>
#include <vector>

#include <Inventor/SbVec2f.h>

class QColor;
class QFont;
class QGuiApplication;
class QImage;

namespace strandview {

/// Text as shapes, which stay sharp at every size. Lengths are in font sizes. Any script for
/// which the system has a font is set; what is no printable character is a blank.
///
/// Qt's fonts need an application object. Where the program has none, since it renders
/// without a window, there is one that needs no display for as long as any of these lives.
class Lettering
{
public:
    Lettering();
    ~Lettering();
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;

    double getWidth(const std::string& text) const;
    /// The text, or as much of its beginning as is not wider, with "…" behind.
    std::string elide(const std::string& text, double width) const;
    /// The inked part as quadrilaterals, four corners each, which overlap in nothing but their
    /// edges. The text begins at x = 0, and its baseline is y = 0.
    std::vector<SbVec2f> getShape(const std::string& text) const;
    /// The text with smooth edges on a plate of another colour with round corners, a bit larger
    /// than it, in a font of so many pixels. What is beside the plate is transparent.
    QImage getPlate(const std::string& text, int pixels, const QColor& ink,
                    const QColor& plate) const;

private:
    std::shared_ptr<QGuiApplication> application; ///< ours, or null
    std::unique_ptr<QFont> font;
};

} // namespace strandview

#endif
