#include <Tessary/Topology.h>

#include "base/ParallelReduce.h"
#include "topology/BlockBuckets.h"
#include "topology/EdgeBlocks.h"
#include "topology/PointBuckets.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <utility>
#include <vector>

// A bucket sort of the half-edges by larger point, in the edge table itself:
//
//   bucket          | of point 0 | of point 1 | ...     in one scatter or in two
//   sort and pair   | 0 7 | 3 |  | 1 5 | ...            each bucket, by smaller point, then corner
//   expand          | 0 7 | 3 - |  | 1 5 | ...          where boundary edges need their mark

namespace Tessary {
namespace {

// Whether triangles that follow each other have points near each other: then one scatter is faster
// (1 M triangles in natural order: 55 ms, in two 71), else two are (random order: 164 ms, in one 211;
// 4 M: 437 and 599). Up to some 40,000 triangles, caches hold all buckets and both take as long.
bool isInPointOrder(const Triangles& mesh)
{
    constexpr std::size_t kSmallMesh = 16384;
    constexpr std::size_t kSamples = 512;
    constexpr uint kFar = 16384;  // so many points' cursors alone take 64 kB
    if (mesh.count < kSmallMesh)
        return true;
    std::size_t farCount = 0;
    for (std::size_t i = 0; i < kSamples; ++i) {
        const uint* const point = mesh.faceVertex + 3 * (mesh.count * i / kSamples);
        const Ends neighbours(point[0], point[3]);
        farCount += neighbours.larger - neighbours.smaller > kFar;
    }
    return farCount < kSamples / 8;
}

// Room for the corners, and for the marks of a short boundary. A table that held as many corners keeps
// them: elements are zeroed only where there are more.
void makeRoom(std::size_t cornerCount, Array<uint>& table)
{
    if (table.size() < cornerCount)
        table.resize(0);
    table.resize(std::max(table.size(), cornerCount + cornerCount / 32));
}

// Sorts the half-edges block by block. False where neighbours run the same way.
template <class Buckets>
bool sortBlocks(const Buckets& buckets, const HalfEdgeKeys& keyOf, uint* table, EdgeBlocks& blocks)
{
    const auto sortSome = [&](uint begin, uint end) {
        KeyBuckets keys;
        bool succeeded = true;
        for (uint block = begin; block < end; ++block) {
            buckets.load(block, keys);
            succeeded &=
                sortAndPair(keys, keyOf, table + blocks.begin[block], blocks.singles[block]);
        }
        return succeeded;
    };
    return parallelReduce(blocks.count(), 1, LoopContext::Isolated, true, sortSome,
                          std::logical_and<>());
}

// False where neighbours run the same way.
template <class Buckets>
bool fillTable(const Triangles& mesh, const HalfEdgeKeys& keyOf, Array<uint>& table)
{
    EdgeBlocks blocks;
    {
        const Buckets buckets(mesh, keyOf, table.data());
        blocks.begin = buckets.blockBegins();
        blocks.singles.resize(blocks.begin.size() - 1);
        if (!sortBlocks(buckets, keyOf, table.data(), blocks))
            return false;
    }
    expandInPlace(blocks, table);
    return true;
}

// All points in one block, whose keys are bucketed at once. False where neighbours run the same way.
bool fillSmallTable(const Triangles& mesh, const HalfEdgeKeys& keyOf, Array<uint>& table)
{
    KeyBuckets buckets;
    buckets.end.resize(mesh.pointCount);
    buckets.makeRoom(mesh.cornerCount());
    uint* const cursors = buckets.end.data();
    Key* const keys = buckets.keys.data();
    forEachHalfEdge(mesh, {0, mesh.count}, [=](Ends ends, uint) { ++cursors[ends.larger]; });
    exclusiveScan(cursors, mesh.pointCount);
    forEachHalfEdge(mesh, {0, mesh.count}, [=](Ends ends, uint corner) {
        keys[cursors[ends.larger]++] = keyOf.make(ends, corner);
    });
    EdgeBlocks blocks{{0, mesh.cornerCount()}, std::vector<std::vector<uint>>(1)};
    if (!sortAndPair(buckets, keyOf, table.data(), blocks.singles[0]))
        return false;
    expandInPlace(blocks, table);
    return true;
}

bool fillTable(const Array<uint>& triFaceVertex, std::size_t pointCount, Array<uint>& table)
{
    // 10,000 triangles beside a plain serial bucket sort: 1.16 of its time so, in blocks on two threads 1.29;
    // 1,000: 1.15 and 1.45.
    constexpr std::size_t kSmallMesh = 20000;
    const Triangles mesh{triFaceVertex.data(), triFaceVertex.size() / 3, pointCount};
    const HalfEdgeKeys keyOf(mesh);
    makeRoom(mesh.cornerCount(), table);
    if (mesh.count <= kSmallMesh)
        return fillSmallTable(mesh, keyOf, table);
    return isInPointOrder(mesh) || !BlockBuckets::canTake(keyOf)
               ? fillTable<PointBuckets>(mesh, keyOf, table)
               : fillTable<BlockBuckets>(mesh, keyOf, table);
}

// The points by rank, for a mesh that names few points of a wide range.
Array<uint> ranksOf(const Array<uint>& points)
{
    std::vector<uint> sorted(points.begin(), points.end());
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    Array<uint> ranks(points.size());
    std::transform(points.begin(), points.end(), ranks.begin(), [&sorted](uint point) {
        return static_cast<uint>(std::lower_bound(sorted.begin(), sorted.end(), point) -
                                 sorted.begin());
    });
    return ranks;
}

// One more than the largest point that is named; there is one.
std::size_t pointCountOf(const Array<uint>& faceVertex)
{
    const uint* const points = faceVertex.data();
    return std::size_t{1} +
           parallelMax(faceVertex.size(), [points](std::size_t corner) { return points[corner]; });
}

}  // namespace

void computeTriEdges(const Array<uint>& triFaceVertex, Array<uint>& triEdges)
{
    if (triFaceVertex.size() < 3) {
        triEdges.resize(0);
        return;
    }
    const std::size_t pointCount = pointCountOf(triFaceVertex);
    // Counters for points that no triangle names may cost at most as much as the mesh.
    const bool succeeded = pointCount <= 4 * triFaceVertex.size() + 1024
                               ? fillTable(triFaceVertex, pointCount, triEdges)
                               : fillTable(ranksOf(triFaceVertex), triFaceVertex.size(), triEdges);
    if (!succeeded) {
        std::cerr << "Non manifold or inconsistently oriented mesh detected\n"
                  << "Edge computation canceled\n";
        triEdges.resize(0);
    }
}

}  // namespace Tessary
