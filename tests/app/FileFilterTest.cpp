// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/fileFilter.h"

#include <gtest/gtest.h>

#include <strandview/formats/formats.h>

namespace strandview {

TEST(FileFilter, OffersTheEndingsOfAllFormatsAndSessionsAndAllFiles)
{
    std::string patterns;
    for (const Format& format : formats()) {
        for (const std::string& ending : format.endings)
            patterns += (patterns.empty() ? "*" : " *") + ending;
    }
    EXPECT_EQ(fileFilter().toStdString(),
              "Configurations (" + patterns + " *.strandview);;All files (*)");
}

} // namespace strandview
