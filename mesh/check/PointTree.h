#pragma once

#include "base/Host.h"
#include "check/Orientation.h"

#include <cstddef>
#include <vector>

namespace TessaryMesh {

/// Points of the plane of which some count, to look up those in a triangle: a k-d tree whose nodes know
/// the box of their points and how many of them count.
///
///              1            node k has the children 2k and 2k + 1; the last level are leaves
///          2       3        of sixteen points or fewer. A node is passed over where none of its
///        4   5   6   7      points count or its box lies beyond a side of the triangle.
///
/// cost  n log n to build; log n to change a point; to look one up, log n and some of those near the
///       triangle's sides, however unevenly the points are spread
class PointTree {
public:
    /// Of which none counts yet. The points have to stay where they are.
    explicit PointTree(const std::vector<PlanePoint>& points);

    /// Whether the point is among those that count.
    void setCounts(uint point, bool counts);

    /// Whether isHit(point) is true for one of the points that count and lie in the triangle, which runs
    /// counter-clockwise, or on its sides.
    template <class IsHit>
    bool anyIn(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c,
               const IsHit& isHit) const
    {
        const Triangle triangle(a, b, c);
        // Depth first: on the stack is the node and what is to the right of the path to it.
        std::size_t stack[kMostLevels], size = 0;
        stack[size++] = 1;
        while (size > 0) {
            const std::size_t node = stack[--size];
            if (m_counting[node] == 0 || isApart(m_box[node], triangle))
                continue;
            if (node < m_firstLeaf) {
                stack[size++] = 2 * node + 1;
                stack[size++] = 2 * node;
                continue;
            }
            for (uint i = m_begin[node - m_firstLeaf]; i < m_begin[node - m_firstLeaf + 1]; ++i)
                if (m_counts[m_order[i]] && isIn(m_points[m_order[i]], triangle) &&
                    isHit(m_order[i]))
                    return true;
        }
        return false;
    }

private:
    static constexpr std::size_t kMostLevels = 32;

    struct Box {
        PlanePoint low, high;
    };

    struct Triangle {
        Triangle(const PlanePoint& first, const PlanePoint& second, const PlanePoint& third);

        PlanePoint a, b, c;
        Box box;
    };

    static bool isApart(const Box& box, const Triangle& triangle);
    static bool isIn(const PlanePoint& p, const Triangle& triangle);
    void split(std::size_t node, uint begin, uint end);

    const std::vector<PlanePoint>& m_points;
    std::size_t m_firstLeaf = 1;
    std::vector<Box> m_box;        // by node
    std::vector<uint> m_counting;  // by node
    std::vector<uint> m_begin;     // of each leaf's points in m_order, and the end
    std::vector<uint> m_order;     // the points, leaf by leaf
    std::vector<uint> m_leaf;      // by point
    std::vector<bool> m_counts;    // by point
};

}  // namespace TessaryMesh
