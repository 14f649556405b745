#pragma once

#include "base/Host.h"

namespace Tessary {

/// xxHash32 (Y. Collet) of one 32-bit word: the n-th random number of a stream is the hash of n.
inline uint counterHash(uint word, uint seed)
{
    const auto rotatedBy17 = [](uint value) { return value << 17 | value >> 15; };
    uint acc = seed + 0x165667B5u + word * 0xC2B2AE3Du;
    acc = rotatedBy17(acc) * 0x27D4EB2Fu;
    acc ^= acc >> 15;
    acc *= 0x85EBCA77u;
    acc ^= acc >> 13;
    acc *= 0xC2B2AE3Du;
    return acc ^ acc >> 16;
}

}  // namespace Tessary
