// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_KEEPPICTURES_H
#define STRANDVIEW_TESTS_KEEPPICTURES_H

#include <QImage>

/// Pictures that a test saw. If the test fails, those of it that were seen last are written into
/// the folder PICTURES_OUT/SUITE/TEST, and standard output tells which folder that is. What an
/// earlier run left there goes when the test begins.
///
/// "seen-N.png"; returns the picture.
QImage keepIfFailed(const QImage& picture);
/// Two that are compared: "found-N.png", "expected-N.png", and where they have one size
/// "difference-N.png", what differs at all brighter than a third.
void keepIfFailed(const QImage& found, const QImage& expected);

#endif
