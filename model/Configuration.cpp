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

// What vectors hold, beside themselves.
template <typename... Items>
std::size_t memoryIn(const std::vector<Items>&... vectors)
{
    return (0 + ... + (vectors.capacity() * sizeof(Items)));
}

std::size_t memoryOfScalars(const std::vector<Scalar>& scalars)
{
    std::size_t bytes = memoryIn(scalars);
    for (const Scalar& scalar : scalars)
        bytes += memoryIn(scalar.values);
    return bytes;
}

std::size_t memoryIn(const Rod& rod)
{
    return memoryIn(rod.points, rod.rotations, rod.lines, rod.indices) +
           memoryOfScalars(rod.scalars);
}

std::size_t memoryIn(const Birod& birod)
{
    return memoryIn(birod.points, birod.rotations, birod.points1, birod.rotations1, birod.points2,
                    birod.rotations2, birod.indices) +
           memoryOfScalars(birod.scalars);
}

std::size_t memoryIn(const Dna& dna)
{
    std::size_t bytes = dna.bases.capacity() +
                        memoryIn(dna.pairPoints, dna.pairRotations, dna.points1, dna.rotations1,
                                 dna.points2, dna.rotations2) +
                        memoryOfScalars(dna.scalars);
    if (const auto& standard = dna.standard)
        bytes += memoryIn(standard->pairPoints, standard->pairRotations, standard->points1,
                          standard->rotations1, standard->points2, standard->rotations2);
    return bytes;
}

} // namespace

std::size_t memoryOf(const Configuration& data)
{
    std::size_t bytes = sizeof data + memoryIn(data.rods, data.birods, data.dnas, data.markers,
                                               data.frames, data.arrows, data.loneBases);
    for (const Rod& rod : data.rods)
        bytes += memoryIn(rod);
    for (const Birod& birod : data.birods)
        bytes += memoryIn(birod);
    for (const Dna& dna : data.dnas)
        bytes += memoryIn(dna);
    return bytes;
}

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
