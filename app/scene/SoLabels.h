// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOLABELS_H
#define STRANDVIEW_APP_SCENE_SOLABELS_H

#include <memory>
#include <string>
#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/nodes/SoNode.h>
#include <Inventor/nodes/SoSubNode.h>

namespace strandview {

class Lettering;

/// Where the middle of a label of a size is: `gap` beside what it labels, as that is seen, all in
/// pixels. Of one point that is to the right above it, of two and of four beside the line between
/// those in the middle, above it or, of an upright one, to the right, and of three outside of their
/// corner.
SbVec2f labelPlace(const std::vector<SbVec2f>& points, const SbVec2f& size, float gap);

/// Texts beside points of the scene, on dark plates that are readable on every background: of one
/// size in pixels wherever the camera is, and hidden by nothing that was drawn before. What is
/// behind the camera has none. They have no extent and are not picked; a file keeps nothing of
/// them.
class SoLabels : public SoNode
{
    SO_NODE_HEADER(SoLabels);

public:
    struct Label
    {
        std::vector<SbVec3f> points; ///< one to four
        std::string text;            ///< an empty one is not drawn
        SbColor colour;              ///< of the letters
    };

    static void initClass();
    SoLabels();

    void setLabels(const std::vector<Label>& newLabels);
    const std::vector<Label>& getLabels() const { return labels; }
    /// The view's pixels in one of the desktop's.
    void setScale(float newScale);

    void GLRender(SoGLRenderAction* action) override;

protected:
    ~SoLabels() override;

private:
    struct Plate;

    void paint();

    std::vector<Label> labels;
    std::vector<Plate> plates;            ///< one for each label
    std::unique_ptr<Lettering> lettering; ///< once it is needed
    float scale = 1;
};

} // namespace strandview

#endif
