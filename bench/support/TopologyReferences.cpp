#include "support/TopologyReferences.h"

#include "support/Measure.h"

#include <algorithm>
#include <thread>
#include <utility>
#include <vector>

namespace Bench {
namespace {

uint after(uint corner)
{
    return corner % 3 == 2 ? corner - 2 : corner + 1;
}

void sortSmall(std::uint64_t* begin, std::uint64_t* end)
{
    if (end - begin > 24) {
        std::sort(begin, end);
        return;
    }
    for (std::uint64_t* next = begin; next < end; ++next) {
        const std::uint64_t key = *next;
        std::uint64_t* hole = next;
        for (; hole > begin && hole[-1] > key; --hole)
            *hole = hole[-1];
        *hole = key;
    }
}

uint acrossByShorterList(const uint* fv, const uint* offset, const uint* corners, uint triangle,
                         uint a, uint b)
{
    if (offset[b + 1] - offset[b] <= offset[a + 1] - offset[a]) {
        for (uint s = offset[b]; s < offset[b + 1]; ++s) {
            const uint x = corners[s];
            if (fv[after(x)] == a && x / 3 != triangle)
                return x / 3;
        }
        return kNone;
    }
    for (uint s = offset[a]; s < offset[a + 1]; ++s) {
        const uint y = corners[s];
        if (fv[y % 3 == 0 ? y + 2 : y - 1] == b && y / 3 != triangle)
            return y / 3;
    }
    return kNone;
}

void walkTriangles(const Array<uint>& faceVertex, const Dual& dual, uint begin, uint end, uint* out)
{
    const uint* const fv = faceVertex.data();
    const uint* const offset = dual.offset.data();
    const uint* const corners = dual.corners.data();
    const std::size_t triangleCount = faceVertex.size() / 3;
    for (std::size_t t = begin; t < end; ++t) {
        if (t + 24 < triangleCount)
            for (int k = 0; k < 3; ++k) {
                __builtin_prefetch(offset + fv[3 * (t + 24) + k]);
                __builtin_prefetch(corners + offset[fv[3 * (t + 12) + k]]);
            }
        for (uint k = 0; k < 3; ++k)
            out[3 * t + k] = acrossByShorterList(fv, offset, corners, static_cast<uint>(t),
                                                 fv[3 * t + k], fv[3 * t + (k + 1) % 3]);
    }
}

}  // namespace

Dual::Dual(const Triangles& mesh)
    : m_pointCount(mesh.pointCount), m_cornerCount(mesh.faceVertex.size())
{}

void Dual::prepare()
{
    offset.resize(m_pointCount + 1);
    corners.resize(m_cornerCount);
    std::fill(offset.begin(), offset.end(), 0u);
    std::fill(corners.begin(), corners.end(), kNone);
}

void Dual::release()
{
    offset = {};
    corners = {};
}

void countingSortDual(const Array<uint>& faceVertex, Dual& dual)
{
    const std::size_t cornerCount = faceVertex.size();
    const std::size_t pointCount = dual.offset.size() - 1;
    const uint* const points = faceVertex.data();
    uint* const offset = dual.offset.data();
    uint* const corners = dual.corners.data();
    for (std::size_t corner = 0; corner < cornerCount; ++corner)
        ++offset[points[corner]];
    uint sum = 0;
    for (std::size_t point = 0; point <= pointCount; ++point)
        sum += std::exchange(offset[point], sum);
    for (std::size_t corner = 0; corner < cornerCount; ++corner)
        corners[offset[points[corner]]++] = static_cast<uint>(corner);
    std::copy_backward(offset, offset + pointCount, offset + pointCount + 1);
    offset[0] = 0;
}

void countingSortEdges(const Array<uint>& faceVertex, Array<uint>& triEdges)
{
    const uint cornerCount = static_cast<uint>(faceVertex.size());
    const uint* const fv = faceVertex.data();
    const std::size_t pointCount =
        cornerCount > 0 ? std::size_t{*std::max_element(fv, fv + cornerCount)} + 1 : 0;
    Array<uint> bucketEnd(pointCount + 1);
    for (uint c = 0; c < cornerCount; ++c)
        ++bucketEnd[std::size_t{std::max(fv[c], fv[after(c)])} + 1];
    for (std::size_t p = 1; p <= pointCount; ++p)
        bucketEnd[p] += bucketEnd[p - 1];
    Array<std::uint64_t> keys(cornerCount);
    for (uint c = 0; c < cornerCount; ++c) {
        const uint p = fv[c];
        const uint q = fv[after(c)];
        keys[bucketEnd[std::max(p, q)]++] = std::uint64_t{std::min(p, q)} << 32 | c;
    }
    triEdges.resize(0);
    std::size_t begin = 0;
    for (std::size_t p = 0; p < pointCount; ++p) {
        const std::size_t end = bucketEnd[p];
        sortSmall(keys.data() + begin, keys.data() + end);
        while (begin < end) {
            const bool paired = begin + 1 < end && keys[begin] >> 32 == keys[begin + 1] >> 32;
            triEdges.push_back(static_cast<uint>(keys[begin]));
            triEdges.push_back(paired ? static_cast<uint>(keys[begin + 1]) : kNone);
            begin += paired ? 2 : 1;
        }
    }
}

void smoothQuads(const Array<uint>& faceVertex, const Array<uint>& triEdges, uint firstIndex,
                 Array<uint>& quadFaceVertex)
{
    quadFaceVertex.resize(4 * faceVertex.size());
    uint* const quads = quadFaceVertex.data();
    const auto edgeCount = static_cast<uint>(triEdges.size() / 2);
    for (std::size_t i = 0; i < 2 * std::size_t{edgeCount}; ++i)
        if (const uint corner = triEdges[i]; corner != kNone) {
            const uint point = firstIndex + static_cast<uint>(i / 2);
            quads[std::size_t{4} * corner + 1] = point;
            quads[std::size_t{4} * after(corner) + 3] = point;
        }
    uint inner = firstIndex + edgeCount;
    for (std::size_t corner = 0; corner < faceVertex.size(); corner += 3, ++inner)
        for (std::size_t k = 0; k < 3; ++k) {
            quads[4 * (corner + k)] = faceVertex[corner + k];
            quads[4 * (corner + k) + 2] = inner;
        }
}

void walkShorterLists(const Array<uint>& faceVertex, const Dual& dual, Array<uint>& adjacentTri)
{
    const uint triangleCount = static_cast<uint>(faceVertex.size() / 3);
    if (triangleCount < kWorthAThread) {
        walkTriangles(faceVertex, dual, 0, triangleCount, adjacentTri.data());
        return;
    }
    std::thread other([&] {
        walkTriangles(faceVertex, dual, triangleCount / 2, triangleCount, adjacentTri.data());
    });
    walkTriangles(faceVertex, dual, 0, triangleCount / 2, adjacentTri.data());
    other.join();
}

}  // namespace Bench
