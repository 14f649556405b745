#include "check/PolygonCrossing.h"

#include "base/Host.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>

namespace TessaryMesh {
namespace {

// The order in which a line that is a little tilted sweeps over points, so that no side is parallel to it.
bool isBefore(const PlanePoint& a, const PlanePoint& b)
{
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

struct Side {
    PlanePoint start, end;
};

// 1 above the side's line, -1 below it, 0 on it.
int heightOver(const Side& side, const PlanePoint& p)
{
    return orientation(side.start, side.end, p);
}

bool cross(const Side& s, const Side& t)
{
    return heightOver(s, t.start) * heightOver(s, t.end) < 0 &&
           heightOver(t, s.start) * heightOver(t, s.end) < 0;
}

/// Order of sides along a line that meets both, as long as they do not cross before it. Those on one line
/// have some order.
struct IsBelow {
    const std::vector<Side>& sides;

    bool operator()(uint i, uint k) const
    {
        const Side &s = sides[i], &t = sides[k];
        const bool isFirst = isBefore(s.start, t.start);
        const Side &first = isFirst ? s : t, &later = isFirst ? t : s;
        int height = heightOver(first, later.start);
        if (height == 0)
            height = heightOver(first, later.end);
        return height == 0 ? i < k : (height > 0) == isFirst;
    }
};

/// The method of Shamos and Hoey (Geometric intersection problems, 1976): the sides that a line meets which
/// sweeps over the plane are kept in their order along it, and two that become neighbours are looked at.
/// The first two that cross are neighbours before they do; until then the order holds.
class Sweep {
public:
    explicit Sweep(const std::vector<PlanePoint>& polygon) : m_met(IsBelow{m_sides})
    {
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const PlanePoint &a = polygon[i], &b = polygon[i + 1 < polygon.size() ? i + 1 : 0];
            if (!(a == b))
                m_sides.push_back(isBefore(a, b) ? Side{a, b} : Side{b, a});
        }
    }

    bool findsCrossing()
    {
        std::vector<Event> events;
        for (uint i = 0; i < m_sides.size(); ++i) {
            events.push_back({m_sides[i].start, i, true});
            events.push_back({m_sides[i].end, i, false});
        }
        // Required: at a point sides end before others begin, which do not cross there.
        std::sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
            return a.at == b.at ? a.begins < b.begins : isBefore(a.at, b.at);
        });
        m_place.resize(m_sides.size());
        return std::any_of(events.begin(), events.end(), [this](const Event& event) {
            return event.begins ? begin(event.side) : end(event.side);
        });
    }

private:
    using Met = std::set<uint, IsBelow>;

    struct Event {
        PlanePoint at;
        uint side;
        bool begins;
    };

    bool begin(uint side)
    {
        const auto place = m_met.insert(side).first;
        m_place[side] = place;
        const auto next = std::next(place);
        return (place != m_met.begin() && cross(m_sides[*std::prev(place)], m_sides[side])) ||
               (next != m_met.end() && cross(m_sides[side], m_sides[*next]));
    }

    bool end(uint side)
    {
        const auto next = m_met.erase(m_place[side]);
        return next != m_met.end() && next != m_met.begin() &&
               cross(m_sides[*std::prev(next)], m_sides[*next]);
    }

    std::vector<Side> m_sides;
    Met m_met;
    std::vector<Met::iterator> m_place;
};

}  // namespace

bool crossesItself(const std::vector<PlanePoint>& polygon)
{
    return Sweep(polygon).findsCrossing();
}

}  // namespace TessaryMesh
