#include "check/FaceFan.h"

#include "base/Vectors.h"
#include "check/EarClipping.h"
#include "check/PolygonCrossing.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace TessaryMesh {
namespace {

double largest(const float3& p)
{
    return std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
}

// Whether neither triangle of a quad's fan is turned over, seen along the quad's normal: true of all but a few,
// for which nothing more need be looked at.
bool isSplitWell(const Array<float3>& points, const uint* corners)
{
    const float3& first = points[corners[0]];
    const double3 diagonal = difference(points[corners[2]], first);
    const double3 a = cross(difference(points[corners[1]], first), diagonal);
    const double3 b = cross(diagonal, difference(points[corners[3]], first));
    const double between = dot(a, b);
    return dot(a, a) + between > 0 && dot(b, b) + between > 0;
}

}  // namespace

FaceFan::Fit FaceFan::look(const Array<float3>& points, const uint* corners, uint size)
{
    if (size <= 3 || (size == 4 && isSplitWell(points, corners)))
        return Fit::Fits;
    m_planar.set(points, corners, size);
    const bool isTurnedOver = !m_planar.fitsFan();
    if (!isTurnedOver && m_planar.fanTurnsOnce())
        return Fit::Fits;
    measure(points, corners, size);
    if (isTurnedOver && m_outside <= m_rounding)
        return Fit::Fits;
    if (!clipEars(m_planar.polygon(), m_triangles) || crossesItself(m_planar.polygon()))
        return Fit::Crosses;
    return isSlight(points, corners, size) ? Fit::Slightly : Fit::Leaves;
}

// Rounding moves a point by half a unit in the last place along each axis, 2^-24 of the largest coordinate
// or less, and with it the sides by sqrt 2 as much.
void FaceFan::measure(const Array<float3>& points, const uint* corners, uint size)
{
    const double3 n = m_planar.normal();
    double sum = 0, sides = 0, reach = 0;
    m_outside = 0;
    for (uint k = 0; k < size; ++k) {
        const float3 &p = points[corners[k]], &next = points[corners[k + 1 < size ? k + 1 : 0]];
        const float3& first = points[corners[0]];
        const double t = dot(cross(difference(p, first), difference(next, first)), n) / 2;
        sum += t;
        m_outside += std::max(0.0, -t);
        sides += length(difference(next, p));
        reach = std::max(reach, largest(p));
    }
    m_area = std::fabs(sum);
    m_rounding = 0x1p-23 * reach * sides;
}

// A curve of many cells that are merged into one face, a rim or a row on a torus, bends inwards a little at
// each of them. Nobody minds that, as long as the fan covers no more than a thirty-second too much, and its
// corners do not turn inwards by more than about 7 degrees altogether: what is left out is no dent then.
bool FaceFan::isSlight(const Array<float3>& points, const uint* corners, uint size) const
{
    constexpr double kMostOutside = 1.0 / 32, kMostTurn = 1.0 / 8;  // of the area; sines
    if (m_outside * 2 > kMostOutside * m_area)
        return false;
    const double3 n = m_planar.normal();
    double turn = 0;
    for (uint k = 0; k < size; ++k) {
        const float3& p = points[corners[k]];
        const double3 in = difference(p, points[corners[k > 0 ? k - 1 : size - 1]]);
        const double3 out = difference(points[corners[k + 1 < size ? k + 1 : 0]], p);
        const double sine = -dot(cross(in, out), n), sizes = length(in) * length(out);
        if (sine > 0)
            turn += dot(in, out) > 0 ? sine / sizes : 1;
    }
    return turn <= kMostTurn;
}

}  // namespace TessaryMesh
