// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_INITIALISESCENEONCE_H
#define STRANDVIEW_TESTS_INITIALISESCENEONCE_H

#include "SceneBuilder.h"

/// initialiseScene(), for the first test of a program that needs it.
inline void initialiseSceneOnce()
{
    static const bool initialised = (initialiseScene(), true);
    static_cast<void>(initialised);
}

#endif
