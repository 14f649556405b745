#pragma once

#include "base/Host.h"

#include <cstddef>

namespace TessaryMesh {

/// For each corner a number that it shares with the corners of the same point and the same index: a
/// mesh of these numbers in the place of points comes apart along the index seams. Counts up from 0
/// by point, then index. Near linear time.
struct SeamCorners {
    Array<uint> number;
    uint count = 0;
};

SeamCorners seamCorners(const Array<uint>& faceVertex, std::size_t pointCount,
                        const Array<uint>& indices);

}  // namespace TessaryMesh
