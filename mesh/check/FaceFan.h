#pragma once

#include "base/Host.h"
#include "check/PlanarFace.h"

#include <vector>

namespace TessaryMesh {

/// Looks at faces one after the other: how does the fan around its first corner fit a face?
///
///   t_k = (p_k - p_0) x (p_k+1 - p_0) . n / 2     areas of the fan's triangles, n along the face's normal
///   area = sum t_k,  outside = sum max(0, -t_k)   the fan covers area + 2 outside: what a triangle that is
///                                                 turned over covers is ground outside or another's
///
/// So a face that is not planar is not told for its bends, but only where it is turned over seen along n.
class FaceFan {
public:
    enum class Fit {
        Fits,      ///< up to what rounding of the points to floats may do
        Slightly,  ///< see isSlight()
        Leaves,    ///< the face is concave
        Crosses    ///< the face crosses itself
    };

    /// How the face with these corners is fitted.
    Fit look(const Array<float3>& points, const uint* corners, uint size);

    double area() const { return m_area; }
    double fanArea() const { return m_area + 2 * m_outside; }

    /// Where it is left: places of triangles that are the face, as many as its fan has.
    const std::vector<uint>& triangles() const { return m_triangles; }

private:
    void measure(const Array<float3>& points, const uint* corners, uint size);
    bool isSlight(const Array<float3>& points, const uint* corners, uint size) const;

    PlanarFace m_planar;
    std::vector<uint> m_triangles;
    double m_area = 0, m_outside = 0, m_rounding = 0;
};

}  // namespace TessaryMesh
