#pragma once

#include "base/Host.h"

namespace Tessary {

/// Candidates in the order of the result, by triangle, and in a triangle as drawn.
///
///   triangleOf    1 2 0 2 0 2      order     2 4 3 5 (candidate 0 is passed over, 1 is rejected)
///   isRejected    0 1 0 0 0 0      offsets   0 2 2 4: triangle t has order[offsets[t], offsets[t + 1])
struct TriangleGroups {
    Array<uint> order;
    MutablePtr<Array<uint>> offsets;  ///< one more than triangles
};

/// Groups the candidates from 1 on that are not rejected; an empty `isRejected` rejects none. Required:
/// candidate 0, where it survives, is passed over and does not count. Linear; bound to the job.
TriangleGroups groupByTriangle(const Array<uint>& triangleOf,
                               const Array<unsigned char>& isRejected, uint triangleCount);

}  // namespace Tessary
