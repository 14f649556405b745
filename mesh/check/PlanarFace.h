#pragma once

#include "base/Host.h"
#include "check/Orientation.h"

#include <vector>

namespace TessaryMesh {

/// A face seen along the axis that is nearest to its normal, from the side on which its corners run
/// counter-clockwise: one coordinate of each point is left out, so the others are what they were.
/// Where the face has no area, as where it crosses itself evenly, its largest fan triangle decides.
class PlanarFace {
public:
    /// The face with these corners; memory of the face before is used again.
    void set(const Array<float3>& points, const uint* corners, uint size);

    /// Whether no triangle of the fan around the first corner is turned over: then the fan is the face.
    bool fitsFan() const;

    const std::vector<PlanePoint>& polygon() const { return m_polygon; }

private:
    std::vector<PlanePoint> m_polygon;
};

}  // namespace TessaryMesh
