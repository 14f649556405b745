#pragma once

// The half-edges of a block of points, in the order of the edge table.

#include "base/CountingSort.h"
#include "base/MeshLayout.h"
#include "base/Prefetch.h"
#include "topology/HalfEdgeKeys.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace Tessary {

/// Keys as they were filed: their lower halves in the table, the upper ones beside it.
struct Filed {
    uint* lower;
    uint* upper;

    Key get(std::size_t i) const { return Key{upper[i]} << 32 | lower[i]; }
    void set(std::size_t i, Key key) const
    {
        lower[i] = static_cast<uint>(key);
        upper[i] = static_cast<uint>(key >> 32);
    }
};

/// Sorts without jumps: each key goes where the number of smaller ones tells.
template <std::size_t N>
void sortByRank(const Key* keys, Key* sorted)
{
    uint rank[N + 1] = {};
    for (std::size_t i = 1; i < N; ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const uint isLess = keys[i] < keys[j];
            rank[j] += isLess;
            rank[i] += 1 - isLess;
        }
    for (std::size_t i = 0; i < N; ++i)
        sorted[rank[i]] = keys[i];
}

template <std::size_t... N>
constexpr auto sortersByRank(std::index_sequence<N...>)
{
    return std::array{sortByRank<N>...};
}

/// Most points have few half-edges; entry n sorts n of them.
inline constexpr auto kSortFew = sortersByRank(std::make_index_sequence<13>());

/// Sorts the half-edges of a block of points, in memory that serves one block after another.
class BlockSorter {
public:
    /// `faceVertex` stays referred to.
    BlockSorter(const uint* faceVertex, HalfEdgeKeys keyOf)
        : m_faceVertex(faceVertex), m_keyOf(keyOf)
    {}

    /// Puts half-edges of a block into one bucket per point. Blocks have a power of two of points.
    void fillBuckets(const Filed& filed, std::size_t count, std::size_t pointCount)
    {
        const Key mask = pointCount - 1;
        m_bucketEnd.assign(pointCount, 0);
        uint* const next = m_bucketEnd.data();
        for (std::size_t i = 0; i < count; ++i)
            ++next[m_keyOf.place(filed.get(i)) & mask];
        exclusiveScan(next, pointCount);
        makeRoom(count);
        Key* const keys = m_keys.data();
        for (std::size_t i = 0; i < count; ++i) {
            const Key key = filed.get(i);
            keys[next[m_keyOf.place(key) & mask]++] = key;
        }
    }

    /// Takes half-edges that lie in their buckets already; the first one starts at `begin`.
    void takeBuckets(const uint* corners, std::size_t begin, const uint* bucketEnd,
                     std::size_t pointCount)
    {
        m_bucketEnd.resize(pointCount);
        for (std::size_t point = 0; point < pointCount; ++point)
            m_bucketEnd[point] = bucketEnd[point] - static_cast<uint>(begin);
        const std::size_t count = m_bucketEnd.back();
        makeRoom(count);
        const uint* const faceVertex = m_faceVertex;
        const HalfEdgeKeys keyOf = m_keyOf;
        Key* const keys = m_keys.data();
        constexpr std::size_t kAhead = 32;
        for (std::size_t i = 0; i < count; ++i) {
            if (i + kAhead < count)
                TESSARY_PREFETCH(faceVertex + corners[i + kAhead]);
            const uint corner = corners[i];
            const uint next = nextCorner(corner);
            keys[i] = keyOf.make(Ends(faceVertex[corner], faceVertex[next]), corner);
        }
    }

    /// Writes sorted corners, and to `singles` the indices of those that have no partner. False where
    /// neighbours run the same way.
    bool sortInto(uint* corners, std::vector<uint>& singles)
    {
        uint* corner = corners;
        Key* begin = m_keys.data();
        Key few[kSortFew.size()];
        for (const uint bucketEnd : m_bucketEnd) {
            Key* const end = m_keys.data() + bucketEnd;
            const Key* key = sorted(begin, end, few);
            const Key* const last = key + (end - begin);
            begin = end;
            while (key < last) {
                // Required: only neighbours are compared, so a half-edge after a pair starts anew.
                const bool hasPartner = key + 1 < last && m_keyOf.areOfOneEdge(key[0], key[1]);
                if (hasPartner && m_keyOf.runTheSameWay(key[0], key[1]))
                    return false;
                if (!hasPartner)
                    singles.push_back(static_cast<uint>(corner - corners));
                *corner++ = m_keyOf.corner(*key++);
                if (hasPartner)
                    *corner++ = m_keyOf.corner(*key++);
            }
        }
        return true;
    }

private:
    void makeRoom(std::size_t count)
    {
        if (m_keys.size() < count)
            m_keys.resize(count);
    }

    // Few keys are sorted into `few`, more of them in place.
    static const Key* sorted(Key* begin, Key* end, Key* few)
    {
        const auto count = static_cast<std::size_t>(end - begin);
        if (count < kSortFew.size()) {
            kSortFew[count](begin, few);
            return few;
        }
        std::sort(begin, end);
        return begin;
    }

    const uint* m_faceVertex;
    HalfEdgeKeys m_keyOf;
    std::vector<uint> m_bucketEnd;
    std::vector<Key> m_keys;
};

}  // namespace Tessary
