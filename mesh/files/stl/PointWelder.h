#pragma once

#include "base/Host.h"

#include <cstddef>
#include <cstdint>

namespace TessaryMesh {

/// Numbers points by their first occurrence: those with the same bits get the same number.
///
/// Near constant time a point. The table is hashed with a number of this process's own, so that no file can
/// be made whose points all collide; numbers do not depend on it.
class PointWelder {
public:
    PointWelder();

    uint add(const float3& point);

    /// The points in the order of their numbers.
    Array<float3>& points() { return m_points; }

private:
    std::size_t slotOf(const float3& point) const;
    void grow();

    Array<float3> m_points;
    Array<uint> m_slots;  // numbers of points; a power of two of slots, at most half of them taken
    std::uint64_t m_key;
};

}  // namespace TessaryMesh
