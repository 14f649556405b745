#include "primitives/EnclosingBall.h"

#include <algorithm>

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

// A point whose orthogonal part is shorter than this part of the radius, squared, spans nothing: the
// ball through it would be made of rounding errors.
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
                v = moved(v, m_levels[i].orthogonal,
                          -dot(v, m_levels[i].orthogonal) / m_levels[i].squaredOrthogonal);
        level.orthogonal = v;
        level.squaredOrthogonal = squaredLength(v);
        if (!(level.squaredOrthogonal >= kLeastOrthogonal * m_ball.squaredRadius))
            return false;
        const Ball& before = m_levels[m_depth - 1].ball;
        const double excess = before.squaredDistance(point) - before.squaredRadius;
        const double f = excess / (2.0 * level.squaredOrthogonal);
        level.ball = {moved(before.center, v, f), before.squaredRadius + excess * f / 2.0};
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
