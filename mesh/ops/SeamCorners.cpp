#include "ops/SeamCorners.h"

#include <Tessary/Topology.h>

#include "base/Host.h"

#include <algorithm>

namespace TessaryMesh {

SeamCorners seamCorners(const Array<uint>& faceVertex, std::size_t pointCount,
                        const Array<uint>& indices)
{
    Array<uint> offset(pointCount + 1), corners(faceVertex.size(), kNone);
    Tessary::constructDualMesh(faceVertex, offset, corners);

    SeamCorners seams{Array<uint>(faceVertex.size())};
    for (std::size_t point = 0; point < pointCount; ++point) {
        uint* const begin = corners.begin() + offset[point];
        uint* const end = corners.begin() + offset[point + 1];
        std::sort(begin, end, [&](uint a, uint b) { return indices[a] < indices[b]; });
        for (uint* corner = begin; corner < end; ++corner) {
            if (corner == begin || indices[*corner] != indices[corner[-1]])
                ++seams.count;
            seams.number[*corner] = seams.count - 1;
        }
    }
    return seams;
}

}  // namespace TessaryMesh
