#include "check/EarClipping.h"

#include "check/PointGrid.h"

#include <algorithm>
#include <cstddef>

namespace TessaryMesh {
namespace {

class Clipper {
public:
    Clipper(const std::vector<PlanePoint>& polygon, std::vector<uint>& triangles)
        : m_points(polygon),
          m_triangles(triangles),
          m_left(polygon.size()),
          m_next(polygon.size()),
          m_previous(polygon.size()),
          m_turn(polygon.size()),
          m_stamp(polygon.size())
    {
        const auto count = static_cast<uint>(polygon.size());
        for (uint i = 0; i < count; ++i) {
            m_next[i] = i + 1 < count ? i + 1 : 0;
            m_previous[i] = i > 0 ? i - 1 : count - 1;
        }
        for (uint i = 0; i < count; ++i)
            m_turn[i] = static_cast<signed char>(turnAt(i));
    }

    bool clip()
    {
        rebuildGrid();
        for (int scans = 0; m_left > 3 && scans < kMostScans; ++scans) {
            const std::size_t before = m_left;
            queueAll();
            clipQueued();
            if (m_left == before)
                return false;
        }
        if (m_left != 3)
            return false;
        const uint a = m_triangles.empty() ? 0 : m_last;
        add(m_previous[a], a, m_next[a]);
        return m_turn[a] >= 0;
    }

private:
    // A corner that is no ear becomes one only beside a clipped one, as long as the polygon does not touch
    // itself; what such polygons need more is few looks at all that is left.
    static constexpr int kMostScans = 64;

    struct Queued {
        uint corner, stamp;
    };

    int turnAt(uint i) const
    {
        return orientation(m_points[m_previous[i]], m_points[i], m_points[m_next[i]]);
    }

    bool isLeft(uint i) const { return m_next[i] != kNone; }

    void queueAll()
    {
        uint i = 0;
        while (!isLeft(i))
            ++i;
        for (std::size_t k = 0; k < m_left; ++k, i = m_next[i])
            queue(i);
    }

    // Behind the others: what was queued before does not count any more.
    void queue(uint i)
    {
        ++m_stamp[i];
        if (m_turn[i] == 0 && !isSpike(i))
            m_flat.push_back({i, m_stamp[i]});
        else if (m_turn[i] == 0 || (m_turn[i] > 0 && isEar(i)))
            m_ears.push_back({i, m_stamp[i]});
    }

    // Whether both sides of a corner without an angle lie on each other.
    bool isSpike(uint i) const
    {
        const PlanePoint &a = m_points[m_previous[i]], &b = m_points[i], &c = m_points[m_next[i]];
        return (a.x < b.x && c.x < b.x) || (a.x > b.x && c.x > b.x) || (a.y < b.y && c.y < b.y) ||
               (a.y > b.y && c.y > b.y);
    }

    void clipQueued()
    {
        std::size_t ear = 0, flat = 0;
        while (m_left > 3 && (ear < m_ears.size() || flat < m_flat.size())) {
            const Queued first = ear < m_ears.size() ? m_ears[ear++] : m_flat[flat++];
            if (isLeft(first.corner) && m_stamp[first.corner] == first.stamp)
                cut(first.corner);
        }
        m_ears.clear();
        m_flat.clear();
    }

    void cut(uint i)
    {
        const uint before = m_previous[i], after = m_next[i];
        add(before, i, after);
        m_next[before] = after;
        m_previous[after] = before;
        m_next[i] = kNone;
        --m_left;
        m_last = after;
        m_inGrid -= m_turn[i] <= 0;
        for (const uint beside : {before, after}) {
            m_inGrid -= m_turn[beside] <= 0;
            m_turn[beside] = static_cast<signed char>(turnAt(beside));
            m_inGrid += m_turn[beside] <= 0;
        }
        if (4 * m_inGrid < m_grid.size() || m_wasted > 8 * m_grid.size())
            rebuildGrid();
        queue(before);
        queue(after);
    }

    void add(uint a, uint b, uint c) { m_triangles.insert(m_triangles.end(), {a, b, c}); }

    // Where anything lies in the triangle, a corner that is not convex does.
    bool isEar(uint i)
    {
        const uint before = m_previous[i], after = m_next[i];
        const PlanePoint &a = m_points[before], &b = m_points[i], &c = m_points[after];
        const PlanePoint low{std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y})};
        const PlanePoint high{std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y})};
        return !m_grid.anyIn(low, high, [&](uint other) {
            const PlanePoint& p = m_points[other];
            const bool counts = isLeft(other) && m_turn[other] <= 0;
            m_wasted += counts ? 0 : 1;
            return counts && other != before && other != after && p.x >= low.x && p.x <= high.x &&
                   p.y >= low.y && p.y <= high.y && !(p == a) && !(p == b) && !(p == c) &&
                   orientation(a, b, p) >= 0 && orientation(b, c, p) >= 0 &&
                   orientation(c, a, p) >= 0;
        });
    }

    void rebuildGrid()
    {
        std::vector<uint> numbers;
        for (uint i = 0; i < m_points.size(); ++i)
            if (isLeft(i) && m_turn[i] <= 0)
                numbers.push_back(i);
        m_inGrid = numbers.size();
        m_wasted = 0;
        m_grid.build(m_points, numbers);
    }

    const std::vector<PlanePoint>& m_points;
    std::vector<uint>& m_triangles;
    std::size_t m_left;
    std::vector<uint> m_next, m_previous;  // a ring of those that are left; kNone behind others
    std::vector<signed char> m_turn;       // as orientation() has it, at each corner
    std::vector<uint> m_stamp;             // which entry of a queue counts
    std::vector<Queued> m_ears, m_flat;
    PointGrid m_grid;          // of corners that were not convex
    std::size_t m_inGrid = 0;  // how many still are not
    std::size_t m_wasted = 0;  // looks at others since it was built
    uint m_last = 0;
};

}  // namespace

bool clipEars(const std::vector<PlanePoint>& polygon, std::vector<uint>& triangles)
{
    triangles.clear();
    return Clipper(polygon, triangles).clip();
}

}  // namespace TessaryMesh
