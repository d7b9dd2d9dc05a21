// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_MESHROWS_H
#define STRANDVIEW_DRAWING_MESHROWS_H

#include <cstddef>
#include <utility>
#include <vector>

/// Rows of a mesh in their order: all of them, or some.
class MeshRows
{
public:
    explicit MeshRows(int count) : size(count) {}
    explicit MeshRows(std::vector<int> someRows) : rows(std::move(someRows)), size(int(rows.size()))
    {}

    int getSize() const { return size; }
    bool areAll() const { return rows.empty(); }
    int operator[](int i) const { return rows.empty() ? i : rows[std::size_t(i)]; }

private:
    std::vector<int> rows; // empty if they are all
    int size;
};

#endif
