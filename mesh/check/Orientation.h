#pragma once

namespace TessaryMesh {

struct PlanePoint {
    float x, y;
};

inline bool operator==(const PlanePoint& a, const PlanePoint& b)
{
    return a.x == b.x && a.y == b.y;
}

/// The side of the line from a to b that c lies on: 1 to the left, -1 to the right, 0 on it. Exact for all
/// finite points.
int orientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c);

}  // namespace TessaryMesh
