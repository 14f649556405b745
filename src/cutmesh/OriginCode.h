#pragma once

// Where a cut point lies: a corner of a triangle and one of four kinds, in one word. Corner c of the
// triangles has the quad 4c to 4c + 3, and each of its entries lies where that number says as a code.

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
