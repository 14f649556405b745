#include "sampling/TriangleArea.h"

#include <cmath>

// The edges e1 and e2 are the columns of a matrix, which Givens rotations (W. Givens, "Computation of
// plane unitary rotations transforming a general matrix to triangular form", 1958) turn into the
// triangular R of its QR factorisation:
//
//   | e1.x  e2.x |   yz   | *  * |   xy   | r11  * |   yz   | r11   *  |
//   | e1.y  e2.y |  --->  | *  * |  --->  |  0   * |  --->  |  0   r22 |      area = |r11 r22| / 2
//   | e1.z  e2.z |        | 0  * |        |  0   * |        |  0    0  |
//
//   rotation of (a, b) into (r, 0):  c = a / r,  s = -b / r;  (x, y) -> (x c - y s, y c + x s)
//   t = the smaller of a, b over the larger,  r = larger sqrt(1 + t^2), so that no square overflows
//
// There is no cancellation as in a cross product. Everything is rounded in the written order, operation
// by operation; only t^2 + 1 is fused.

namespace Tessary {
namespace {

// The turn by which a pair (a, b) becomes (r, 0).
struct Rotation {
    float c, s;

    Rotation(float a, float b)
    {
        const float absA = std::fabs(a);
        const float absB = std::fabs(b);
        if (absB > absA) {
            const float t = a / absB;
            const float scale = 1.0f / std::sqrt(std::fma(t, t, 1.0f));
            c = t * scale;
            s = -std::copysign(scale, b);
        } else if (absA > absB) {
            const float t = b / absA;
            const float scale = 1.0f / std::sqrt(std::fma(t, t, 1.0f));
            c = std::copysign(scale, a);
            s = -t * scale;
        } else {
            // Required: (0, 0) turns too.
            const float scale = 1.0f / std::sqrt(2.0f);
            c = std::copysign(scale, a);
            s = -std::copysign(scale, b);
        }
    }

    float first(float x, float y) const { return x * c - y * s; }
    float second(float x, float y) const { return y * c + x * s; }
};

float3 difference(const float3& a, const float3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

}  // namespace

float triangleArea(const float3& p0, const float3& p1, const float3& p2)
{
    const float3 e1 = difference(p1, p0);
    const float3 e2 = difference(p2, p0);

    const Rotation yz(e1.y, e1.z);  // zeroes e1.z
    const float e1_y = yz.first(e1.y, e1.z);
    const float e2_y = yz.first(e2.y, e2.z);
    const float e2_z = yz.second(e2.y, e2.z);

    const Rotation xy(e1.x, e1_y);  // zeroes e1.y
    const float r11 = xy.first(e1.x, e1_y);
    const float e2_y_turned = xy.second(e2.x, e2_y);

    const Rotation below(e2_y_turned, e2_z);  // zeroes e2.z
    const float r22 = below.first(e2_y_turned, e2_z);
    return std::fabs((r11 * 0.5f) * r22);
}

}  // namespace Tessary
