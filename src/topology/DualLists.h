#pragma once

#include "base/CountingSort.h"

#include <algorithm>
#include <cstddef>

namespace Tessary {

/// The lists of corners by point while they are made: each point's cursor is zero before, and the end of
/// its list after. Whoever makes them has to look whether all slots are free; where one is not, he returns
/// false with all cursors zero again.
struct DualLists {
    const uint* faceVertex;
    std::size_t cornerCount;
    uint* cursors;  ///< one for each point
    std::size_t pointCount;
    uint* slots;  ///< one for each corner
};

/// Calls `visit(corner, point)` for a range of corners, and returns whether all slots of that range are
/// free. They are looked at in between, in blocks that leave no time for it to be seen: counting waits for
/// its own stores.
template <class Visit>
bool visitAndProve(const DualLists& lists, Range corners, const Visit& visitor)
{
    constexpr std::size_t kBlock = 64;
    const Visit visit = visitor;  // copies that registers can hold
    const uint* const points = lists.faceVertex;
    const uint* const slots = lists.slots;
    uint taken = 0;
    std::size_t corner = corners.begin;
    while (corner + kBlock <= corners.end) {
        for (std::size_t i = 0; i < kBlock; ++i)
            taken |= ~slots[corner + i];
        for (const std::size_t end = corner + kBlock; corner < end; ++corner)
            visit(corner, points[corner]);
    }
    for (; corner < corners.end; ++corner) {
        taken |= ~slots[corner];
        visit(corner, points[corner]);
    }
    return taken == 0;
}

/// Counts the corners of a range in the cursors of their points, and looks at their slots.
bool countAndProve(const DualLists& lists, Range corners);

/// Gives the corners of a range the slots at their points' cursors.
void listCorners(const DualLists& lists, Range corners);

/// Whether pieces of the corners name points of their own, as in a mesh whose points are numbered along
/// its surface.
bool isInPointOrder(const DualLists& lists);

/// For a mesh in point order: a thread for each window of points.
bool listInWindows(const DualLists& lists);

/// For a large mesh in any order: a radix sort, on several threads. 2 bytes per corner.
bool listInBlocks(const DualLists& lists);

}  // namespace Tessary
