#include "ops/ParentMaps.h"

#include "base/Host.h"
#include "base/ParallelBlocks.h"

namespace TessaryMesh {

IndexArray through(const IndexArray& later, const IndexArray& earlier)
{
    if (!later || !earlier)
        return later;
    const auto map = makeMutable<Array<uint>>(later->size());
    forEachRange(map->size(), std::size_t{1} << 14, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i)
            (*map)[i] = (*earlier)[(*later)[i]];
    });
    return map;
}

NamedArrays ParentMaps::arrays() const
{
    NamedArrays arrays;
    if (face)
        arrays.push_back(namedArray("face", face));
    if (corner)
        arrays.push_back(namedArray("corner", corner));
    if (triangle)
        arrays.push_back(namedArray("triangle", triangle));
    return arrays;
}

}  // namespace TessaryMesh
