#pragma once

// Which value each element of a cut mesh addresses, whatever the type of the values.

#include "base/Host.h"
#include "cutmesh/CutMesh.h"

namespace Tessary {

/// New indices, and an origin code for each value that is to be appended to the source's values.
struct NewIndices {
    MutablePtr<Array<uint>> indices;
    Array<uint> appended;
};

/// One index per point of the target: the source's index at points that are not cut.
NewIndices pointIndices(const CutMesh& cut, const Array<uint>& sourceIndices, uint valueCount);

/// One index per corner of the target's quads. Entry 4c is the source's index at corner c of the
/// triangles, entries 4c + 1 to 4c + 3 are new ones.
NewIndices cornerIndices(CutMesh& cut, const Array<uint>& sourceIndices, uint valueCount);

/// One index per face of the target. No values are appended.
NewIndices faceIndices(const CutMesh& cut, const Array<uint>& sourceIndices);

}  // namespace Tessary
