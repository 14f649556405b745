#include "primitives/EnclosingBall.h"

#include "base/Assert.h"

#include <algorithm>

// The ball through the points p_0, p_1, ... on the boundary grows by one of them at a time (B. Gaertner,
// "Fast and robust smallest enclosing balls", 1999). It is moved along the part of the new point that is
// orthogonal to what the others span:
//
//   v_k = (p_k - p_0) - sum of v_i ((p_k - p_0) . v_i) / z_i     1 <= i < k
//   z_k = |v_k|^2
//   e   = |p_k - c_(k-1)|^2 - r^2_(k-1)                          how far p_k is outside
//   f   = e / (2 z_k)
//   c_k = c_(k-1) + f v_k,   r^2_k = r^2_(k-1) + e f / 2         centre and squared radius

namespace Tessary {
namespace {

double dot(const Vector3d& a, const Vector3d& b)
{
    return (a.x * b.x + a.y * b.y) + a.z * b.z;
}

// from + along * by
Vector3d moved(const Vector3d& from, const Vector3d& along, double by)
{
    return {from.x + along.x * by, from.y + along.y * by, from.z + along.z * by};
}

// Required: a point with z_k below so much of the squared radius spans nothing. The ball through it
// would be made of rounding errors.
constexpr double kLeastOrthogonal = 0x1p-46;

}  // namespace

void EnclosingBall::moveToFront(const Entry& entry)
{
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(),
                     [&entry](const Entry& other) { return other.index == entry.index; });
    if (found == m_entries.end())
        m_entries.insert(m_entries.begin(), entry);
    else
        std::rotate(m_entries.begin(), found, found + 1);
}

Ball EnclosingBall::rebuilt()
{
    TESSARY_ASSERT(!m_entries.empty(), "a ball of no points");
    m_ball = {m_entries.front().point, 0.0};
    m_depth = 0;
    enclose(m_entries.size());
    return m_ball;
}

// The ball through the points pushed so far and `point`; false, and the ball as it was, where that
// one lies too close to what they span. NaN spans nothing.
bool EnclosingBall::push(const Vector3d& point)
{
    Level& level = m_levels[m_depth];
    if (m_depth == 0) {
        m_first = point;
        level.ball = {point, 0.0};
    } else {
        Vector3d v = point - m_first;
        for (int round = 0; round < 2; ++round)  // the second removes what rounding left
            for (std::size_t i = 1; i < m_depth; ++i)
                v = moved(v, m_levels[i].v, -dot(v, m_levels[i].v) / m_levels[i].z);
        level.v = v;
        level.z = squaredLength(v);
        if (!(level.z >= kLeastOrthogonal * m_ball.squaredRadius))
            return false;
        const Ball& before = m_levels[m_depth - 1].ball;
        const double e = before.squaredDistance(point) - before.squaredRadius;
        const double f = e / (2.0 * level.z);
        level.ball = {moved(before.center, v, f), before.squaredRadius + e * f / 2.0};
    }
    m_ball = level.ball;
    ++m_depth;
    return true;
}

// Makes the ball enclose the entries before `end`, with those pushed so far on its boundary.
void EnclosingBall::enclose(std::size_t end)
{
    m_supportEnd = 0;
    if (m_depth == kMaxSupport)
        return;
    for (std::size_t i = 0; i < end; ++i) {
        const Vector3d point = m_entries[i].point;
        if (!(m_ball.squaredDistance(point) > m_ball.squaredRadius) || !push(point))
            continue;
        enclose(i);
        --m_depth;
        moveToFront(i);
    }
}

void EnclosingBall::moveToFront(std::size_t position)
{
    const auto first = m_entries.begin();
    const auto entry = first + static_cast<std::ptrdiff_t>(position);
    std::rotate(first, entry, entry + 1);
    if (position >= m_supportEnd)
        ++m_supportEnd;
}

}  // namespace Tessary
