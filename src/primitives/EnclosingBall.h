#pragma once

#include "base/Host.h"

#include <cstddef>
#include <vector>

namespace Tessary {

struct Vector3d {
    double x = 0.0, y = 0.0, z = 0.0;
};

inline Vector3d operator-(const Vector3d& a, const Vector3d& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline double squaredLength(const Vector3d& v)
{
    return (v.x * v.x + v.y * v.y) + v.z * v.z;
}

inline Vector3d widened(const float3& p)
{
    return {p.x, p.y, p.z};
}

struct Ball {
    Vector3d center;
    double squaredRadius = 0.0;

    double squaredDistance(const Vector3d& p) const { return squaredLength(p - center); }
};

/// The smallest ball around a short list of points, which are kept in the order in which they proved
/// to matter.
///
/// Welzl's move-to-front recursion (E. Welzl, "Smallest enclosing disks (balls and ellipsoids)", 1991): a
/// point outside the ball of those before it lies on the boundary of theirs and its own ball.
class EnclosingBall {
public:
    struct Entry {
        std::size_t index;  ///< of the caller
        Vector3d point;
    };

    /// The points so far; those before supportEnd() carry the ball, as far as rounding goes.
    const std::vector<Entry>& entries() const { return m_entries; }
    std::size_t supportEnd() const { return m_supportEnd; }

    void append(const Entry& entry) { m_entries.push_back(entry); }

    /// Moves the entry with this index, or a new one, to the front.
    void moveToFront(const Entry& entry);

    /// Builds the ball of all entries, beginning with the one in front.
    Ball rebuilt();

private:
    // What a point on the boundary has added to the ball through those before it.
    struct Level {
        Vector3d v;      // part of (point - first point) orthogonal to the levels before
        double z = 0.0;  // its squared length
        Ball ball;
    };
    static constexpr std::size_t kMaxSupport = 4;

    bool push(const Vector3d& point);
    void enclose(std::size_t end);
    void moveToFront(std::size_t position);

    std::vector<Entry> m_entries;
    std::size_t m_supportEnd = 0;
    Vector3d m_first;
    Level m_levels[kMaxSupport];
    std::size_t m_depth = 0;
    Ball m_ball;
};

}  // namespace Tessary
