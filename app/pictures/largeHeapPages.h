// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_LARGEHEAPPAGES_H
#define STRANDVIEW_APP_PICTURES_LARGEHEAPPAGES_H

namespace strandview {

/// Has what the program will allocate come from a quarter of a gigabyte in large pages, where the
/// system has them: a picture is made of a hundred megabytes that are touched once, half of them
/// by OpenGL's driver, and in small pages a seventh of its time is the system's for giving them.
/// Only a hint: nothing fails, and what is not touched takes no memory. For the main thread, once,
/// before much is allocated; what is freed is kept for what follows. Threads share it: in memory of
/// their own, those that write the pictures of a series would have the system clear it again.
void useLargeHeapPages();

} // namespace strandview

#endif
