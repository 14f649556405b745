#pragma once

#include "base/Host.h"

namespace Tessary {

/// A table from which a triangle is drawn in proportion to its area in constant time: slot t, each as
/// likely as the others, stands for triangle t below its threshold (in units of 2^-32) and for alias[t]
/// from there on. A power of two of slots, so that a mask picks one.
struct AliasTable {
    Array<uint> alias;
    Array<uint> threshold;
    uint mask = 0;
};

/// The table of triangles with these areas, at least one, whose sum is `totalArea`.
AliasTable makeAliasTable(Array<float> areas, float totalArea);

}  // namespace Tessary
