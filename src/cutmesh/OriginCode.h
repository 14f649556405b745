#pragma once

// Where a cut point lies, in one word: corner c of a triangle in the upper 30 bits, one of four kinds in
// the lower two.
//
//   next            The quad of corner c is entries 4c to 4c + 3, in the order of the kinds: each entry
//   |  .            lies where its own number says as a code.
//   1     .
//   |  2     .
//   c -- 3 -- previous

#include "base/Host.h"

namespace Tessary {

enum class CutKind : uint { AtCorner, OnLeavingEdge, InTriangle, OnArrivingEdge };

inline CutKind kindOf(uint code)
{
    return static_cast<CutKind>(code & 3);
}

inline uint cornerOf(uint code)
{
    return code >> 2;
}

inline uint originCode(uint corner, CutKind kind)
{
    return corner << 2 | static_cast<uint>(kind);
}

}  // namespace Tessary
