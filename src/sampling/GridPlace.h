#pragma once

#include "base/Host.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace Tessary {

/// Where a scaled coordinate v lies on an axis of the grid: cell = floor(v + 0.5), local = v - cell.
/// Coordinates of neighbouring cells have slots that differ by 1, those of one cell the same slot, all
/// others slots farther apart.
///
/// Up to 2^24 the slot is the cell. Beyond, neighbouring floats are 2 or more apart, so each has a slot
/// of its own, without a neighbour; all that leave the 32-bit range share one cell, but two of them lie
/// within 1 of each other only where their offsets are equal, and are told apart by these. A cell that
/// many candidates share is thus always one that few of them can survive in.
struct GridPlace {
    std::int32_t slot;
    float local;        ///< the offset from the cell
    bool isOutOfRange;  ///< of 32-bit cells; the cell is then -2147483648

    /// Of the scaled coordinate `v`.
    static GridPlace of(float v)
    {
        const float f = v + 0.5f;
        if (std::fabs(f) < kExact) {
            auto cell = static_cast<std::int32_t>(f);
            cell -= static_cast<float>(cell) > f ? 1 : 0;
            return {cell, v - static_cast<float>(cell), false};
        }
        constexpr float kLimit = 2147483648.0f;
        if (std::fabs(f) < kLimit)
            return {slotBeyondExact(f), v - f, false};
        const float local = v + kLimit;
        return {slotBeyondExact(local - kLimit), local, true};
    }

private:
    static constexpr float kExact = 16777216.0f;

    static std::int32_t slotBeyondExact(float cell)
    {
        constexpr std::int32_t kBitsOfExact = 0x4B800000;
        const float magnitude = std::fabs(cell);
        std::int32_t bits;
        std::memcpy(&bits, &magnitude, sizeof bits);
        const std::int32_t slot = (1 << 24) + 2 * (bits - kBitsOfExact);
        return cell < 0.0f ? -slot : slot;
    }
};

}  // namespace Tessary
