#pragma once

#include "base/CountingSort.h"

#include <cstddef>

namespace Tessary {

/// The lists of corners by point while they are made. As for every way to make them, each point's
/// cursor is zero before, and the end of its list after.
struct DualLists {
    const uint* faceVertex;
    std::size_t cornerCount;
    uint* cursors;  ///< one for each point
    std::size_t pointCount;
    uint* slots;  ///< one for each corner
};

/// Counts the corners of a range in the cursors of their points.
void countCorners(const DualLists& lists, Range corners);

/// Gives the corners of a range the slots at their points' cursors.
void listCorners(const DualLists& lists, Range corners);

/// Whether pieces of the corners name points of their own, as in a mesh whose points are numbered along
/// its surface.
bool isInPointOrder(const DualLists& lists);

/// For a mesh in point order: a thread for each window of points.
void listInWindows(const DualLists& lists);

/// For a large mesh in any order: a radix sort, on several threads. 2 bytes per corner.
void listInBlocks(const DualLists& lists);

}  // namespace Tessary
