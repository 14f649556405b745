#include <Tessary/Topology.h>

#include "host/MeshLayout.h"
#include "host/ParallelLoop.h"
#include "host/Prefetch.h"
#include "host/PropertyAccess.h"

#include <algorithm>
#include <atomic>
#include <vector>

// The triangle across a half-edge from point a to point b is the first, in the order of b's list of
// corners, that follows b with a. Lists are short on most meshes and walked as they are. A long one
// is not walked: the same triangle is found in a's list, if that is short, or else in an order of
// b's list that is made once.

namespace Tessary {
namespace {

constexpr uint kLongList = 64;  // corners

// A triangle mesh with its dual table.
struct Mesh {
    const uint* faceVertex;
    std::size_t cornerCount;
    const uint* dualOffset;
    std::size_t pointCount;
    const uint* dualCorners;
    std::size_t dualSize;

    // The slots of a point's list. A dual that was built twice has offsets beyond its corners.
    std::size_t listBegin(uint point) const { return dualOffset[point]; }
    std::size_t listEnd(uint point) const
    {
        return std::min<std::size_t>(dualOffset[std::size_t{point} + 1], dualSize);
    }
    std::size_t listSize(uint point) const
    {
        return listEnd(point) - std::min(listBegin(point), listEnd(point));
    }
    bool isLong(uint point) const { return listSize(point) > kLongList; }

    uint pointOf(uint corner) const { return corner < cornerCount ? faceVertex[corner] : kNone; }

    // Whether `corner` is followed by `point`. The last triangle may be incomplete.
    bool isFollowedBy(uint corner, uint point) const
    {
        const uint next = nextCorner(corner, corner / 3);
        return next < cornerCount && faceVertex[next] == point;
    }
};

struct Edge {
    uint triangle;
    uint start;
    uint end;
};

uint findInEndList(const Mesh& mesh, Edge edge)
{
    const std::size_t end = mesh.listEnd(edge.end);
    for (std::size_t slot = mesh.listBegin(edge.end); slot < end; ++slot) {
        const uint corner = mesh.dualCorners[slot];
        // This order: the triangle's own corner hardly ever passes the first test.
        if (mesh.isFollowedBy(corner, edge.start) && corner / 3 != edge.triangle)
            return corner / 3;
    }
    return kNone;
}

// The same from the other side, for lists that hold every corner of their point in ascending order:
// then the first in the end point's list is the smallest.
uint findInStartList(const Mesh& mesh, Edge edge)
{
    uint found = kNone;
    const std::size_t end = mesh.listEnd(edge.start);
    for (std::size_t slot = mesh.listBegin(edge.start); slot < end; ++slot) {
        const uint next = mesh.dualCorners[slot];
        const uint triangle = next / 3;
        const uint corner = next > 3 * triangle ? next - 1 : next + 2;
        if (corner < mesh.cornerCount && mesh.faceVertex[corner] == edge.end &&
            triangle != edge.triangle)
            found = std::min(found, triangle);
    }
    return found;
}

struct Lists {
    bool anyIsLong;
    bool areInOrder;  // each begins where the one before it ends, or behind
};

Lists lookAtLists(const Mesh& mesh)
{
    std::atomic<bool> anyIsLong{false};
    std::atomic<bool> areInOrder{true};
    parallelLoop(0, static_cast<uint>(mesh.pointCount), 1, LoopContext::Isolated,
                 [&](uint begin, uint end) {
                     bool isLong = false;
                     bool isInOrder = true;
                     for (uint point = begin; point < end; ++point) {
                         isLong |= mesh.isLong(point);
                         isInOrder &= mesh.dualOffset[point] <= mesh.dualOffset[point + 1];
                     }
                     if (isLong)
                         anyIsLong.store(true, std::memory_order_relaxed);
                     if (!isInOrder)
                         areInOrder.store(false, std::memory_order_relaxed);
                 });
    return {anyIsLong, areInOrder};
}

// Whether the slots [slot, end) hold corners of the points whose lists they are in, in ascending order
// for each point, given lists in order that are all of the dual.
bool areListsOf(const Mesh& mesh, uint slot, uint end)
{
    uint lastPoint = kNone;
    uint lastCorner = 0;
    if (slot > 0)
        lastPoint = mesh.pointOf(lastCorner = mesh.dualCorners[slot - 1]);
    bool all = true;
    for (; slot < end; ++slot) {
        const uint corner = mesh.dualCorners[slot];
        const uint point = mesh.pointOf(corner);
        if (point >= mesh.pointCount)
            return false;
        // The corners of a point follow each other from the beginning of its list on, so none is
        // there twice, so none is missing.
        const bool isFirst = slot == mesh.dualOffset[point];
        const bool isNext = point == lastPoint && corner > lastCorner;
        all &= (isFirst || isNext) && slot < mesh.dualOffset[point + 1];
        lastPoint = point;
        lastCorner = corner;
    }
    return all;
}

// Whether the dual is that of the mesh: as many entries as corners, each once and in its own list.
bool isDualOfMesh(const Mesh& mesh, const Lists& lists)
{
    if (mesh.dualSize < mesh.cornerCount || mesh.dualOffset[0] != 0 ||
        mesh.dualOffset[mesh.pointCount] != mesh.cornerCount || !lists.areInOrder)
        return false;
    std::atomic<bool> all{true};
    parallelLoop(0, static_cast<uint>(mesh.cornerCount), 1, LoopContext::Isolated,
                 [&](uint begin, uint end) {
                     if (!areListsOf(mesh, begin, end))
                         all.store(false, std::memory_order_relaxed);
                 });
    return all;
}

// A point's list by following point: the first triangle in it, and the first other one.
class OrderedList {
public:
    OrderedList(const Mesh& mesh, uint point)
    {
        std::vector<std::uint64_t> keys;
        const std::size_t begin = mesh.listBegin(point);
        keys.reserve(mesh.listSize(point));
        for (std::size_t slot = begin; slot < mesh.listEnd(point); ++slot) {
            const uint corner = mesh.dualCorners[slot];
            const uint next = nextCorner(corner, corner / 3);
            if (next < mesh.cornerCount)
                keys.push_back(std::uint64_t{mesh.faceVertex[next]} << 32 | (slot - begin));
        }
        std::sort(keys.begin(), keys.end());
        for (const std::uint64_t key : keys)
            add(static_cast<uint>(key >> 32), mesh.dualCorners[begin + static_cast<uint>(key)] / 3);
    }

    uint find(Edge edge) const
    {
        const auto found =
            std::lower_bound(m_entries.begin(), m_entries.end(), edge.start,
                             [](const Entry& entry, uint next) { return entry.next < next; });
        if (found == m_entries.end() || found->next != edge.start)
            return kNone;
        return found->first != edge.triangle ? found->first : found->other;
    }

private:
    struct Entry {
        uint next;
        uint first;
        uint other;
    };

    void add(uint next, uint triangle)
    {
        if (m_entries.empty() || m_entries.back().next != next)
            m_entries.push_back({next, triangle, kNone});
        else if (m_entries.back().other == kNone && m_entries.back().first != triangle)
            m_entries.back().other = triangle;
    }

    std::vector<Entry> m_entries;
};

// The ordered lists of all points with long lists.
class OrderedLists {
public:
    explicit OrderedLists(const Mesh& mesh)
    {
        for (std::size_t point = 0; point < mesh.pointCount; ++point)
            if (mesh.isLong(static_cast<uint>(point)))
                m_points.push_back(static_cast<uint>(point));
        for (const uint point : m_points)
            m_lists.emplace_back(mesh, point);
    }

    uint find(Edge edge) const
    {
        const auto point = std::lower_bound(m_points.begin(), m_points.end(), edge.end);
        return m_lists[static_cast<std::size_t>(point - m_points.begin())].find(edge);
    }

private:
    std::vector<uint> m_points;
    std::vector<OrderedList> m_lists;
};

// Writes `find(edge)` for every half-edge of the triangles.
template <class Find>
void forEachHalfEdge(const Mesh& mesh, uint* adjacentTri, const Find& find)
{
    // Points may come in any order, so their lists are asked for well before they are walked.
    constexpr std::size_t kOffsetsAhead = 24;
    constexpr std::size_t kListsAhead = 12;
    const uint triangleCount = static_cast<uint>(mesh.cornerCount / 3);
    parallelLoop(0, triangleCount, 1, LoopContext::Isolated, [&](uint begin, uint end) {
        for (uint t = begin; t < end; ++t) {
            const uint* const ahead = mesh.faceVertex + std::size_t{3} * t;
            for (int k = 0; k < 3 && t + kOffsetsAhead < triangleCount; ++k) {
                TESSARY_PREFETCH(mesh.dualOffset + ahead[3 * kOffsetsAhead + k]);
                TESSARY_PREFETCH(mesh.dualCorners + mesh.dualOffset[ahead[3 * kListsAhead + k]]);
            }
            const uint* const point = mesh.faceVertex + std::size_t{3} * t;
            uint* const out = adjacentTri + std::size_t{3} * t;
            out[0] = find(Edge{t, point[0], point[1]});
            out[1] = find(Edge{t, point[1], point[2]});
            out[2] = find(Edge{t, point[2], point[0]});
        }
    });
}

void findAroundLongLists(const Mesh& mesh, const Lists& lists, uint* adjacentTri)
{
    const bool isDual = isDualOfMesh(mesh, lists);
    const auto isFromStart = [&](Edge edge) { return isDual && !mesh.isLong(edge.start); };
    std::atomic<bool> needsOrder{false};
    forEachHalfEdge(mesh, adjacentTri, [&](Edge edge) {
        if (!mesh.isLong(edge.end))
            return findInEndList(mesh, edge);
        if (isFromStart(edge))
            return findInStartList(mesh, edge);
        needsOrder.store(true, std::memory_order_relaxed);
        return kNone;
    });
    if (!needsOrder)
        return;
    const OrderedLists ordered(mesh);
    const uint triangleCount = static_cast<uint>(mesh.cornerCount / 3);
    parallelForEach(triangleCount, LoopContext::Isolated, [&](uint t) {
        for (uint corner = 3 * t; corner < 3 * t + 3; ++corner) {
            const Edge edge{t, mesh.faceVertex[corner], mesh.faceVertex[nextCorner(corner, t)]};
            if (mesh.isLong(edge.end) && !isFromStart(edge))
                adjacentTri[corner] = ordered.find(edge);
        }
    });
}

}  // namespace

void populateAdjacentTri(const Array<uint>& triFaceVertex, const Array<uint>& dualFaceOffset,
                         const Array<uint>& dualFaceVertex, Array<uint>& adjacentTri)
{
    adjacentTri.resize(triFaceVertex.size());
    if (triFaceVertex.size() < 3 || dualFaceOffset.empty())
        return;
    const Mesh mesh{triFaceVertex.data(),      triFaceVertex.size(),  dualFaceOffset.data(),
                    dualFaceOffset.size() - 1, dualFaceVertex.data(), dualFaceVertex.size()};
    const Lists lists = lookAtLists(mesh);
    if (lists.anyIsLong)
        findAroundLongLists(mesh, lists, adjacentTri.data());
    else
        forEachHalfEdge(mesh, adjacentTri.data(),
                        [&mesh](Edge edge) { return findInEndList(mesh, edge); });
}

void addAdjacentTri(Object& geometry, const String& target, const String& faceVertexName,
                    const String& dualComponentName, const String& dualFaceVertexName,
                    const String& dualFaceOffsetName)
{
    const Ptr<Array<uint>> faceVertex = getDataArray<uint>(geometry, faceVertexName);
    if (!faceVertex)
        return;
    if (!geometry.hasProperty(dualComponentName))
        addDual(geometry, Geometry::sPointComp, faceVertexName, dualComponentName,
                dualFaceVertexName, dualFaceOffsetName);
    const Ptr<Array<uint>> dualFaceOffset = getDataArray<uint>(geometry, dualFaceOffsetName);
    const Ptr<Array<uint>> dualFaceVertex = getDataArray<uint>(geometry, dualFaceVertexName);
    if (!dualFaceOffset || !dualFaceVertex)
        return;
    const MutablePtr<Array<uint>> adjacentTri =
        addDataArray<uint>(target, "face_vertex_adjacent_tri", faceVertex->size(), kNone, geometry);
    populateAdjacentTri(*faceVertex, *dualFaceOffset, *dualFaceVertex, *adjacentTri);
}

}  // namespace Tessary
