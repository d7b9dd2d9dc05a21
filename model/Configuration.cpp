// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/Configuration.h>

#include <iterator>
#include <utility>

namespace strandview {

namespace {

template <typename Item>
void append(std::vector<Item>& all, std::vector<Item>& more)
{
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

} // namespace

void append(Configuration& all, Configuration&& more)
{
    append(all.rods, more.rods);
    append(all.birods, more.birods);
    append(all.dnas, more.dnas);
    append(all.markers, more.markers);
    append(all.frames, more.frames);
    append(all.arrows, more.arrows);
    more = {};
}

} // namespace strandview
