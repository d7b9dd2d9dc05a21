// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef ALGEBRA3D_LARGEPAGES_H
#define ALGEBRA3D_LARGEPAGES_H

#include <algorithm>
#include <cstddef>

#include <algebra3d/algebra3dExport.h>

// Memory for many vectors. Touching fresh memory costs more than what is computed for them: in
// large pages, where the system has them, it takes a third to a tenth of the time.

namespace algebra3d {

/// Asks for large pages in so many bytes that are not touched yet, where some fit in. Only a hint:
/// nothing fails. May be called from any thread.
ALGEBRA3D_EXPORT void useLargePages(void* memory, std::size_t bytes);

/// reserve() of a vector or a string, in large pages.
template <typename Container>
void reserveMany(Container& container, std::size_t count)
{
    if (count <= container.capacity())
        return;
    container.reserve(count);
    const std::size_t used = container.size();
    useLargePages(container.data() + used,
                  (container.capacity() - used) * sizeof(typename Container::value_type));
}

/// Room for one more, so that a container which grows by one at a time does so in large pages.
template <typename Container>
void reserveNext(Container& container)
{
    if (container.size() == container.capacity())
        reserveMany(container, std::max<std::size_t>(2 * container.capacity(), 16));
}

} // namespace algebra3d

#endif
