#pragma once

#include "base/Host.h"
#include "check/Orientation.h"

#include <vector>

namespace TessaryMesh {

/// A face seen along the axis that is nearest to its normal, from the side on which its corners run
/// counter-clockwise: one coordinate of each point is left out, so the others are what they were.
class PlanarFace {
public:
    /// The face with these corners; memory of the face before is used again.
    void set(const Array<float3>& points, const uint* corners, uint size);

    /// Along the face's normal, of length 1; zeros where all corners are on a line. Where the face has next
    /// to no area, as where it crosses itself evenly, it is that of the largest triangle of its fan.
    const double3& normal() const { return m_normal; }

    /// Whether no triangle of the fan around the first corner is turned over.
    bool fitsFan() const;

    /// Whether a fan of which no triangle is turned over ends before it comes round to its first one.
    bool fanTurnsOnce() const;

    const std::vector<PlanePoint>& polygon() const { return m_polygon; }

private:
    double3 m_normal{};
    std::vector<PlanePoint> m_polygon;
};

}  // namespace TessaryMesh
