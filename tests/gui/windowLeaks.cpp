// SPDX-License-Identifier: GPL-3.0-or-later
// Mesa's software driver keeps the pixels of some windows that were resized and closed:
// seen with two empty windows already. For the programs that do that alone, because
// elsewhere such a leak could be that of an off-screen context.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:swrast_dri.so\n";
}
