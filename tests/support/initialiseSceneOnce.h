// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_INITIALISESCENEONCE_H
#define STRANDVIEW_TESTS_INITIALISESCENEONCE_H

#include "scene/SceneBuilder.h"

/// strandview::initialiseScene(), for the first test of a program that needs it.
inline void initialiseSceneOnce()
{
    static const bool initialised = (strandview::initialiseScene(), true);
    static_cast<void>(initialised);
}

#endif
