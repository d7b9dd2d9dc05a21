// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_SILENCE_H
#define STRANDVIEW_DETAIL_SILENCE_H

#include <Inventor/nodes/SoNode.h>

/// Keeps a node from notifying: one notification in the end tells as much as one per change.
class Silence
{
public:
    explicit Silence(SoNode* silent) : node(silent), before(silent->enableNotify(FALSE)) {}
    ~Silence() { node->enableNotify(before); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    SoNode* node;
    SbBool before;
};

#endif
