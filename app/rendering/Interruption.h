// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_RENDERING_INTERRUPTION_H
#define STRANDVIEW_APP_RENDERING_INTERRUPTION_H

namespace strandview {

/// Notes SIGINT and SIGTERM, once each, as long as it lives, so that what is at work can end in
/// order; the same signal again ends the program as ever. One at a time.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool hasCome() const;
};

} // namespace strandview

#endif
