#include "check/EarClipping.h"

#include "check/PointTree.h"

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
          m_stamp(polygon.size()),
          m_notConvex(polygon)
    {
        const auto count = static_cast<uint>(polygon.size());
        for (uint i = 0; i < count; ++i) {
            m_next[i] = i + 1 < count ? i + 1 : 0;
            m_previous[i] = i > 0 ? i - 1 : count - 1;
        }
        for (uint i = 0; i < count; ++i)
            lookAtTurn(i);
    }

    bool clip()
    {
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

    void lookAtTurn(uint i)
    {
        const int turn = orientation(m_points[m_previous[i]], m_points[i], m_points[m_next[i]]);
        m_turn[i] = static_cast<signed char>(turn);
        m_notConvex.setCounts(i, turn <= 0);
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
        m_notConvex.setCounts(i, false);
        lookAtTurn(before);
        lookAtTurn(after);
        queue(before);
        queue(after);
    }

    void add(uint a, uint b, uint c) { m_triangles.insert(m_triangles.end(), {a, b, c}); }

    // Where anything lies in the triangle, a corner that is not convex does.
    bool isEar(uint i)
    {
        const uint before = m_previous[i], after = m_next[i];
        const PlanePoint &a = m_points[before], &b = m_points[i], &c = m_points[after];
        return !m_notConvex.anyIn(a, b, c, [&](uint other) {
            const PlanePoint& p = m_points[other];
            return other != before && other != after && !(p == a) && !(p == b) && !(p == c);
        });
    }

    const std::vector<PlanePoint>& m_points;
    std::vector<uint>& m_triangles;
    std::size_t m_left;
    std::vector<uint> m_next, m_previous;  // a ring of those that are left; kNone behind others
    std::vector<signed char> m_turn;       // as orientation() has it, at each corner
    std::vector<uint> m_stamp;             // which entry of a queue counts
    std::vector<Queued> m_ears, m_flat;
    PointTree m_notConvex;  // those of them that are left
    uint m_last = 0;
};

}  // namespace

bool clipEars(const std::vector<PlanePoint>& polygon, std::vector<uint>& triangles)
{
    triangles.clear();
    return Clipper(polygon, triangles).clip();
}

}  // namespace TessaryMesh
