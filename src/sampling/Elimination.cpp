#include "sampling/Elimination.h"

#include <Tessary/Sampling.h>

#include "host/ParallelLoop.h"

#include <cmath>

namespace Tessary {
namespace {

std::int32_t cellOf(float v)
{
    const float f = std::floor(v + 0.5f);
    return f >= -2147483648.0f && f < 2147483648.0f ? static_cast<std::int32_t>(f) : INT32_MIN;
}

LocalPosition filed(const float3& p, float s, uint i)
{
    const std::int32_t x = cellOf(s * p.x);
    const std::int32_t y = cellOf(s * p.y);
    const std::int32_t z = cellOf(s * p.z);
    LocalPosition result;
    result.index = i;
    result.segment = 0;
    result.local = {s * p.x - static_cast<float>(x), s * p.y - static_cast<float>(y),
                    s * p.z - static_cast<float>(z)};
    result.cell = {static_cast<uint>(x), static_cast<uint>(y), static_cast<uint>(z)};
    return result;
}

template <class Kill>
void around(const PointBins& bins, const LocalPosition& c, const Kill& kill)
{
    for (int dx = -1; dx <= 1; ++dx)
        for (int dy = -1; dy <= 1; ++dy)
            for (int dz = -1; dz <= 1; ++dz) {
                const auto found = bins.cellToBin.find({c.cell.x + static_cast<uint>(dx),
                                                        c.cell.y + static_cast<uint>(dy),
                                                        c.cell.z + static_cast<uint>(dz)});
                if (found == bins.cellToBin.end())
                    continue;
                for (uint j = bins.binOffsets[found->second];
                     j < bins.binOffsets[found->second + 1]; ++j) {
                    const LocalPosition& e = bins.points[j];
                    const float x = (static_cast<float>(dx) + e.local.x) - c.local.x;
                    const float y = (static_cast<float>(dy) + e.local.y) - c.local.y;
                    const float z = (static_cast<float>(dz) + e.local.z) - c.local.z;
                    if (1.0f >= (y * y + x * x) + z * z)
                        kill(e);
                }
            }
}

}  // namespace

Array<unsigned char> eliminate(const Array<float3>& positions, float distance,
                               const Array<float3>* fixedPoints)
{
    const float s = 1.0f / distance;
    const auto count = static_cast<uint>(positions.size());
    Array<unsigned char> rejected(count);
    PointBins bins;
    bins.points.resize(count);
    parallelForEach(count, LoopContext::Bound,
                    [&](uint i) { bins.points[i] = filed(positions[i], s, i); });
    bins.sortDedup();
    parallelForEach(static_cast<uint>(bins.binCells.size()), LoopContext::Bound,
                    [&](uint b) { bins.cellToBin.emplace(bins.binCells[b], b); });
    if (fixedPoints)
        for (const float3& p : *fixedPoints)
            around(bins, filed(p, s, 0), [&](const LocalPosition& e) { rejected[e.index] = 1; });
    for (uint i = 0; i < count; ++i) {
        if (rejected[i])
            continue;
        around(bins, filed(positions[i], s, i), [&](const LocalPosition& e) {
            if (e.index > i)
                rejected[e.index] = 1;
        });
    }
    return rejected;
}

}  // namespace Tessary
