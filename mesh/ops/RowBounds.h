#pragma once

#include "base/Host.h"

namespace TessaryMesh {

/// Where along z, in a row of cells of one size, a triangle can touch them: whatever the overlap test
/// of triangles and boxes would find, with its rounding, lies within.
class RowBounds {
public:
    /// `reach` is larger than any coordinate of a cell's middle, seen from a point of the triangle.
    RowBounds(const float3 (&points)[3], double cellSize, double reach);

    /// Narrows the range of z of the cells' middles in the row at `x` and `y`; false where none is
    /// left.
    bool narrow(double x, double y, double& low, double& high) const;

private:
    /// The middles of cells that no axis separates from the triangle lie between two planes: z is
    /// between low and high plus slopeX x + slopeY y, seen from the triangle's first point. Where the
    /// axis is level, low <= slopeX x + slopeY y <= high.
    struct Slab {
        double slopeX, slopeY;
        double low, high;
        bool isLevel;
    };

    void add(const double3& axis, double rounding);

    double m_cellSize, m_reach;
    float3 m_origin;
    double3 m_points[3];  // seen from the origin
    Slab m_slabs[10];
    int m_slabCount = 0;
};

}  // namespace TessaryMesh
