#include "files/gltf/GltfVertices.h"

#include <algorithm>
#include <numeric>

namespace TessaryMesh {
namespace {

int compare(uint a, uint b, const Array<uint>& faceVertex,
            const std::vector<GltfVertices::Compare>& comparisons)
{
    if (faceVertex[a] != faceVertex[b])
        return faceVertex[a] < faceVertex[b] ? -1 : 1;
    for (const auto& each : comparisons)
        if (const int order = each(a, b))
            return order;
    return 0;
}

// For each corner the first one of the same point with the same values.
Array<uint> firstAlike(const Array<uint>& faceVertex,
                       const std::vector<GltfVertices::Compare>& comparisons)
{
    Array<uint> order(faceVertex.size()), first(faceVertex.size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(), [&](uint a, uint b) {
        const int found = compare(a, b, faceVertex, comparisons);
        return found != 0 ? found < 0 : a < b;
    });
    for (std::size_t i = 0; i < order.size(); ++i) {
        const bool isNew = i == 0 || compare(order[i - 1], order[i], faceVertex, comparisons) != 0;
        first[order[i]] = isNew ? order[i] : first[order[i - 1]];
    }
    return first;
}

}  // namespace

GltfVertices GltfVertices::find(std::size_t pointCount, const Array<uint>& faceVertex,
                                const std::vector<Compare>& comparisons)
{
    const Array<uint> first = firstAlike(faceVertex, comparisons);
    Array<uint> begin(pointCount + 1);
    for (std::size_t c = 0; c < first.size(); ++c)
        begin[faceVertex[c] + 1] += first[c] == c;
    for (std::size_t p = 0; p < pointCount; ++p)
        begin[p + 1] = begin[p] + std::max(begin[p + 1], 1u);
    GltfVertices found;
    found.point = Array<uint>(begin[pointCount]);
    found.corner = Array<uint>(begin[pointCount], kNone);
    found.ofCorner = Array<uint>(faceVertex.size());
    for (std::size_t p = 0; p < pointCount; ++p)
        std::fill(found.point.begin() + begin[p], found.point.begin() + begin[p + 1],
                  static_cast<uint>(p));
    for (std::size_t c = 0; c < first.size(); ++c) {
        if (first[c] == c) {
            found.ofCorner[c] = begin[faceVertex[c]]++;
            found.corner[found.ofCorner[c]] = static_cast<uint>(c);
        } else {
            found.ofCorner[c] = found.ofCorner[first[c]];
        }
    }
    return found;
}

}  // namespace TessaryMesh
