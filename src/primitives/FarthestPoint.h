#pragma once

#include "primitives/EnclosingBall.h"

namespace Tessary {

/// The pass over all points that the search for their ball repeats.
class FarthestPoint {
public:
    static constexpr std::size_t kNone = ~std::size_t{0};

    struct Found {
        std::size_t index;
        double squaredDistance;
    };

    explicit FarthestPoint(const Array<float3>& points);

    /// The point farthest from `center`, of equally far ones the first, if it is farther than
    /// `atLeast`; else kNone and `atLeast`. A point at a distance that is NaN is never found.
    Found from(const Vector3d& center, double atLeast);

    /// The largest squared distance to `center` in float; 0 where there is none.
    float largestFloatDistance(const float3& center);

private:
    std::size_t blockBegin(std::size_t block) const;

    const Array<float3>& m_points;
    std::vector<Found> m_found;  // per block
};

}  // namespace Tessary
