// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/Configuration.h>

#include <algorithm>
#include <cstddef>
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

template <typename Data, typename Visit>
void forMolecules(Data& data, Visit visit)
{
    for (auto& rod : data.rods)
        visit(rod.molecule);
    for (auto& dna : data.dnas)
        visit(dna.molecule);
    for (auto& base : data.loneBases)
        visit(base.molecule);
}

std::size_t largestMolecule(const Configuration& data)
{
    std::size_t largest = 0;
    forMolecules(data, [&largest](std::size_t molecule) { largest = std::max(largest, molecule); });
    return largest;
}

} // namespace

void append(Configuration& all, Configuration&& more)
{
    const std::size_t taken = largestMolecule(all);
    forMolecules(more, [taken](std::size_t& molecule) { molecule += molecule > 0 ? taken : 0; });
    append(all.rods, more.rods);
    append(all.birods, more.birods);
    append(all.dnas, more.dnas);
    append(all.markers, more.markers);
    append(all.frames, more.frames);
    append(all.arrows, more.arrows);
    append(all.loneBases, more.loneBases);
    more = {};
}

} // namespace strandview
