// SPDX-License-Identifier: GPL-3.0-or-later
#include "programWindows.h"

#include <utility>

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include "scene/SceneBuilder.h"
#include "window/checkDisplay.h"
#include "window/runWindow.h"

namespace strandview {

void initialiseProgramOnce(const char* name)
{
    static bool isDone = false;
    if (std::exchange(isDone, true))
        return;
    ASSERT_EQ(checkDisplay(), "");
    static QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    initialiseWindows(name);
    initialiseScene();
}

bool comesTo(const std::function<bool()>& holds) { return QTest::qWaitFor(holds, 30000); }

} // namespace strandview
