#pragma once

#include "base/Assert.h"
#include "base/Host.h"
#include "cutmesh/Interpolation.h"

#include <optional>

namespace Tessary {

/// What the transfers of one call share. Arrays that the meshes lack are null.
struct CutMesh {
    const Object& source;
    Object& target;
    CutWeights weights;
    const Array<uint>& pointIds;
    const Array<uint>& pointOrigins;
    Ptr<Array<uint>> faceOffset;   // of the source
    Ptr<Array<uint>> cornerPoint;  // of the triangles
    Ptr<Array<uint>> dualOffset;   // of the triangles
    Ptr<Array<uint>> dualCorner;
    std::optional<Array<uint>> neighbours;  // see polygonNeighbours; made when first needed

    bool hasTriangles() const { return bool(cornerPoint); }
    bool hasFaces() const { return faceOffset && !faceOffset->empty(); }
    bool hasNeighbours() const
    {
        return hasFaces() && hasTriangles() && dualOffset && !dualOffset->empty() && dualCorner;
    }

    uint originOf(uint point) const
    {
        TESSARY_ASSERT(point < pointIds.size() && pointIds[point] < pointOrigins.size(),
                       "point " << point << " of " << pointIds.size());
        return pointOrigins[pointIds[point]];
    }
};

/// One property on its way.
struct CutTransfer {
    CutMesh& cut;
    const String& name;
    const Object& property;
    String component;
    Array<String> chain;
};

/// Interpolate the property if its default value is of one of the types that are blended, or picked.
/// False where it is of none, or the property cannot be interpolated; then nothing has changed.
bool blendProperty(const CutTransfer& transfer, const Any& defaultValue);
bool pickProperty(const CutTransfer& transfer, const Any& defaultValue);

}  // namespace Tessary
