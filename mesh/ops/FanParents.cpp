#include "ops/FanParents.h"

#include "base/Host.h"
#include "base/ParallelBlocks.h"

namespace TessaryMesh {
namespace {

std::size_t triangleCount(const Array<uint>& faceOffset)
{
    const std::size_t faces = faceOffset.size() - 1;
    return faceOffset[faces] - 2 * faces;
}

// Calls visit(face, first corner, first triangle, triangle count) for each face.
template <class Visit>
void forEachFan(const Array<uint>& faceOffset, const Visit& visit)
{
    forEachRange(faceOffset.size() - 1, 4096, [&](std::size_t begin, std::size_t end) {
        for (std::size_t face = begin; face < end; ++face) {
            const uint first = faceOffset[face];
            visit(static_cast<uint>(face), first, std::size_t{first} - 2 * face,
                  faceOffset[face + 1] - first - 2);
        }
    });
}

}  // namespace

Ptr<Array<uint>> facesOfTriangles(const Array<uint>& faceOffset)
{
    const auto faces = makeMutable<Array<uint>>(triangleCount(faceOffset));
    uint* const out = faces->data();
    forEachFan(faceOffset, [out](uint face, uint, std::size_t triangle, uint count) {
        for (uint j = 0; j < count; ++j)
            out[triangle + j] = face;
    });
    return faces;
}

Ptr<Array<uint>> cornersOfTriangles(const Array<uint>& faceOffset)
{
    const auto corners = makeMutable<Array<uint>>(3 * triangleCount(faceOffset));
    uint* const out = corners->data();
    forEachFan(faceOffset, [out](uint, uint first, std::size_t triangle, uint count) {
        for (uint j = 0; j < count; ++j) {
            uint* const corner = out + 3 * (triangle + j);
            corner[0] = first;
            corner[1] = first + j + 1;
            corner[2] = first + j + 2;
        }
    });
    return corners;
}

}  // namespace TessaryMesh
