// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/Interruption.h"

#include <csignal>

namespace strandview {

namespace {

const int SIGNALS[] = {SIGINT, SIGTERM};

volatile std::sig_atomic_t came = 0;

void note(int signal)
{
    came = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

Interruption::Interruption()
{
    came = 0;
    for (const int signal : SIGNALS)
        std::signal(signal, note);
}

Interruption::~Interruption()
{
    for (const int signal : SIGNALS)
        std::signal(signal, SIG_DFL);
}

bool Interruption::hasCome() const { return came != 0; }

} // namespace strandview
