// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_ONESAMPLE_H
#define STRANDVIEW_DRAWING_ONESAMPLE_H

#include <GL/gl.h>

#include "drawing/DepthGrid.h"

/// While one lives, a software driver, which takes its time for each sample of a pixel, looks at
/// one alone: edges are jagged, and drawn in less than half of the time. A graphics card draws as
/// ever. In a current context.
class OneSample
{
public:
    explicit OneSample(bool isWanted)
        : isOff(isWanted && glIsEnabled(GL_MULTISAMPLE) && DepthGrid::isSoftware())
    {
        if (isOff)
            glDisable(GL_MULTISAMPLE);
    }
    ~OneSample()
    {
        if (isOff)
            glEnable(GL_MULTISAMPLE);
    }
    OneSample(const OneSample&) = delete;
    OneSample& operator=(const OneSample&) = delete;

private:
    const bool isOff;
};

#endif
